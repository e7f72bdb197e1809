#include "Layouts.h"
#include "VendorRecords.h"

namespace {

// The region holds the IMEI, among others.
constexpr FieldRow astVendorParameter[] = {
    FIELD(VendorParameter, u16Offset, "offset into the region"),
    FIELD(VendorParameter, u16DataSize, "n, the number of data bytes"),
    FIELD(VendorParameter, aucData, "data", .u16Count = 0,
          .stCounter = VendorParameter::u16DataSize, .eShown = Shown::Bytes,
          .eGuard = Guard::Identity),
};

constexpr FieldRow astVendorRegionSize[] = {
    FIELD(VendorRegionSize, u32Bytes, "size of the region", .pcUnit = "bytes"),
};

} // namespace

constexpr Layout stVendorParameter = {"VendorParameter", astVendorParameter,
                                      VendorParameter::aucData};
constexpr Layout stVendorRegionSize = LAYOUT(VendorRegionSize, astVendorRegionSize);
