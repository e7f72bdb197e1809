// Payloads of the OMA-DM requests (type 33) and of the IMEI block (type 34,
// subtype 4), all of them answered inside the send, and the tree image file.
// Offsets in bytes from the start of the payload, the record or the file.
#ifndef OMADM_RECORDS_H
#define OMADM_RECORDS_H

#include "Wire.h"

// One step of the way from the tree's root to a node.
namespace OMADMElement {
inline constexpr Field Class{0, FieldType::U8};
inline constexpr Field Number{1, FieldType::U8};
inline constexpr Field Index{4, FieldType::U32}; // 0 for a node that is no array
inline constexpr uint32_t Size = 8;
static_assert(EndOf(Index) == Size);
} // namespace OMADMElement

namespace OMADMPath {
inline constexpr uint32_t MaxElements = 10;
inline constexpr uint32_t Size = MaxElements * OMADMElement::Size;
} // namespace OMADMPath

// Subtypes 2 and 3: a node's value is written or read.
namespace OMADMParameter {
inline constexpr Field ValueSize{0, FieldType::U32};
inline constexpr uint32_t Path = 5; // OMADMElement records
inline constexpr Field NumElements{85, FieldType::U32};
inline constexpr uint32_t Value = 89;
// The fixed size counts one value byte: n value bytes go out as n + 90 bytes.
inline constexpr uint32_t Size = 90;
// The largest value that a message holds.
inline constexpr uint32_t MaxValueSize = WIMAX_DATA_SIZE - Size;
static_assert(Path + OMADMPath::Size == NumElements.u16Offset);
static_assert(EndOf(NumElements) == Value && Value + 1 == Size);
} // namespace OMADMParameter

// Subtype 4: the size of a node's value is asked; the answer fills NodeSize.
namespace OMADMSizeQuery {
inline constexpr uint32_t Path = 0; // OMADMElement records
inline constexpr Field NumElements{80, FieldType::U32};
inline constexpr Field NodeSize{85, FieldType::U32};
inline constexpr uint32_t Size = 89;
static_assert(Path + OMADMPath::Size == NumElements.u16Offset);
static_assert(EndOf(NodeSize) == Size);
} // namespace OMADMSizeQuery

// Subtype 1: the interface version of the application; the answer has the
// version of the library.
namespace OMADMVersion {
inline constexpr Field Major{0, FieldType::U32};
inline constexpr Field Minor{4, FieldType::U32};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(Minor) == Size);
} // namespace OMADMVersion

// Subtype 5: the name of a tree image file, padded with zeroes.
namespace OMADMTreeUpdate {
inline constexpr uint32_t FileName = 0;
inline constexpr uint32_t Size = 128;
} // namespace OMADMTreeUpdate

// The head of a tree image file, and its length.
namespace OMADMTreeImage {
inline constexpr Field Version{0, FieldType::U32};
inline constexpr Field Length{4, FieldType::U32};
inline constexpr uint32_t Size = 13544;
} // namespace OMADMTreeImage

// Type 34, subtype 4.
namespace IMEIBlock {
inline constexpr uint32_t Data = 4;
inline constexpr uint32_t DataSize = 24;
inline constexpr uint32_t Size = 28;
static_assert(Data + DataSize == Size);
} // namespace IMEIBlock

#endif
