// Payloads of the vendor-specific parameters (type 10): a region of bytes that
// is read and written by offset. Offsets in bytes from the start of the payload.
#ifndef VENDOR_RECORDS_H
#define VENDOR_RECORDS_H

#include "Wire.h"

// Subtypes 1 and 3, requests and indications.
namespace VendorParameter {
inline constexpr Field u16Offset{0, FieldType::U16}; // into the region
inline constexpr Field u16DataSize{2, FieldType::U16};
inline constexpr uint32_t aucData = 4;
// The fixed size counts one data byte: n data bytes go out as n + 5 bytes.
inline constexpr uint32_t Size = 5;
// The most data bytes that a message holds.
inline constexpr uint32_t MaxDataSize = WIMAX_DATA_SIZE - Size;
static_assert(EndOf(u16DataSize) == aucData && aucData + 1 == Size);
} // namespace VendorParameter

// Subtype 4, indication.
namespace VendorRegionSize {
inline constexpr Field u32Bytes{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
} // namespace VendorRegionSize

// What lies where in the region.
struct VendorEntry {
    uint16_t u16Offset;
    uint16_t u16Size;
};

namespace VendorRegion {
inline constexpr VendorEntry IMEI{217, 8};    // read only
inline constexpr VendorEntry ATRLock{225, 2}; // can be written
} // namespace VendorRegion

#endif
