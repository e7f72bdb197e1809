// Payloads of the device configuration. Offsets in bytes from the start of the
// payload.
#ifndef DEVICE_RECORDS_H
#define DEVICE_RECORDS_H

#include "Wire.h"

// Type 13, subtype 6, indication.
namespace IPFilterStatus {
inline constexpr Field u32Status{0, FieldType::U32};
inline constexpr uint32_t Size = 4;

inline constexpr uint32_t Invalid = 0;
inline constexpr uint32_t Success = 1;
inline constexpr uint32_t NotSupported = 4;
} // namespace IPFilterStatus

#endif
