// Payloads of the OMA-DM requests (type 33) and of the IMEI block (type 34,
// subtype 4), all of them answered inside the send, and the tree image file.
// Offsets in bytes from the start of the payload, the record or the file.
#ifndef OMADM_RECORDS_H
#define OMADM_RECORDS_H

#include "Wire.h"

// One step of the way from the tree's root to a node.
namespace OMADMElement {
inline constexpr Field u8Class{0, FieldType::U8};
inline constexpr Field u8Number{1, FieldType::U8};
inline constexpr Field u32Index{4, FieldType::U32}; // 0 for a node that is no array
inline constexpr uint32_t Size = 8;
static_assert(EndOf(u32Index) == Size);
} // namespace OMADMElement

namespace OMADMPath {
inline constexpr uint32_t MaxElements = 10;
inline constexpr uint32_t Size = MaxElements * OMADMElement::Size;
} // namespace OMADMPath

// Subtypes 2 and 3: a node's value is written or read.
namespace OMADMParameter {
inline constexpr Field u32ValueSize{0, FieldType::U32};
inline constexpr uint32_t astPath = 5; // OMADMElement records
inline constexpr Field u32NumElements{85, FieldType::U32};
inline constexpr uint32_t aucValue = 89;
// The fixed size counts one value byte: n value bytes go out as n + 90 bytes.
inline constexpr uint32_t Size = 90;
// The largest value that a message holds.
inline constexpr uint32_t MaxValueSize = WIMAX_DATA_SIZE - Size;
static_assert(astPath + OMADMPath::Size == u32NumElements.u16Offset);
static_assert(EndOf(u32NumElements) == aucValue && aucValue + 1 == Size);
} // namespace OMADMParameter

// Subtype 4: the size of a node's value is asked; the answer fills NodeSize.
namespace OMADMSizeQuery {
inline constexpr uint32_t astPath = 0; // OMADMElement records
inline constexpr Field u32NumElements{80, FieldType::U32};
inline constexpr Field u32NodeSize{85, FieldType::U32};
inline constexpr uint32_t Size = 89;
static_assert(astPath + OMADMPath::Size == u32NumElements.u16Offset);
static_assert(EndOf(u32NodeSize) == Size);
} // namespace OMADMSizeQuery

// Subtype 1: the interface version of the application; the answer has the
// version of the library.
namespace OMADMVersion {
inline constexpr Field u32Major{0, FieldType::U32};
inline constexpr Field u32Minor{4, FieldType::U32};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(u32Minor) == Size);
} // namespace OMADMVersion

// Subtype 5: the name of a tree image file, padded with zeroes.
namespace OMADMTreeUpdate {
inline constexpr uint32_t acFileName = 0;
inline constexpr uint32_t Size = 128;
} // namespace OMADMTreeUpdate

// The head of a tree image file, and its length.
namespace OMADMTreeImage {
inline constexpr Field u32Version{0, FieldType::U32};
inline constexpr Field u32Length{4, FieldType::U32};
inline constexpr uint32_t Size = 13544;
} // namespace OMADMTreeImage

// Type 34, subtype 4.
namespace IMEIBlock {
inline constexpr uint32_t aucData = 4;
inline constexpr uint32_t DataSize = 24;
inline constexpr uint32_t Size = 28;
static_assert(aucData + DataSize == Size);
} // namespace IMEIBlock

#endif
