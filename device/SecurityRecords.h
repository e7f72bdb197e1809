// The record of the security parameters (type 34): the payload of set and get
// requests and of every answer. Offsets in bytes from the start of the payload.
#ifndef SECURITY_RECORDS_H
#define SECURITY_RECORDS_H

#include "Wire.h"

namespace SecurityRecord {
inline constexpr uint32_t LastParameter = 10;
inline constexpr Field u32ParameterID{0, FieldType::U32};
inline constexpr Field u32DataLength{4, FieldType::U32};
inline constexpr Field s8Status{8, FieldType::I8};
inline constexpr uint32_t aucValue = 9;
inline constexpr Field u16ShortValue{aucValue, FieldType::U16};
inline constexpr Field u32LongValue{aucValue, FieldType::U32};
// The fixed size counts one value byte; a set request has n bytes more.
inline constexpr uint32_t Size = 10;
static_assert(EndOf(s8Status) == aucValue);
} // namespace SecurityRecord

// Subtype 3, request: the ID alone.
namespace SecuritySizeRequest {
inline constexpr Field u32ParameterID{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
} // namespace SecuritySizeRequest

#endif
