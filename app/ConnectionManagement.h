// The connection management menu: the link's life cycle from search to shutdown.
#ifndef CONNECTION_MANAGEMENT_H
#define CONNECTION_MANAGEMENT_H

#include <cstdint>

#include "Wire.h"

// Main menu choice 1. Returns the low 8 bits of the send result; 1 for choices
// 1 and 12 and when the choice or the scan mode is none; 0 after a failed
// shutdown request.
uint32_t ConnectionManagement();

// Main menu choice 24. Returns 1.
uint32_t SendHalfMiniCardStatusRequest();

// A list of centre frequencies, as searches carry it.
namespace DiscreteFrequencyList {
inline constexpr uint32_t MaxFrequencies = 25;
inline constexpr Field u32NumFrequencies{0, FieldType::U32};
inline constexpr Field au32Frequencies{4, FieldType::U32}; // kHz
inline constexpr uint32_t Size = 104;
} // namespace DiscreteFrequencyList

// Asks for the list (DiscreteFrequencyList). Returns 1 when it was filled, 0 on
// a bad entry. No menu leads here.
uint32_t FillDiscreteFrequencyInfo(ByteSpan stList);

#endif
