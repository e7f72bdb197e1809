// The record of MIB requests and answers (type 24), and the multiple forms.
#ifndef MIB_RECORD_H
#define MIB_RECORD_H

#include "Wire.h"

namespace MIBRecord {
inline constexpr Field AttributeID{0, FieldType::U32};
inline constexpr Field KeyCount{4, FieldType::U8};
inline constexpr Field Key1{5, FieldType::U32};
inline constexpr Field Key2{9, FieldType::U32};
inline constexpr Field DataLength{21, FieldType::U32};
inline constexpr Field Status{25, FieldType::I8};
inline constexpr uint32_t Value = 26;
// The fixed size counts one value byte: n value bytes make n + 26 bytes, none 27.
inline constexpr uint32_t Size = 27;
} // namespace MIBRecord

// Several records back to back.
namespace MIBRecordList {
inline constexpr Field Count{0, FieldType::U16};
inline constexpr uint32_t Records = 2;
} // namespace MIBRecordList

// Attributes that somebody asks for by number.
namespace MIBAttribute {
inline constexpr uint32_t ActiveSFIDs = 1503;
inline constexpr uint32_t MRUTable = 1612;
} // namespace MIBAttribute

#endif
