#include "Layouts.h"
#include "SecurityRecords.h"

namespace {

constexpr FieldRow astSecurityRecord[] = {
    FIELD(SecurityRecord, u32ParameterID, "parameter ID"),
    FIELD(SecurityRecord, u32DataLength, "n, the number of value bytes"),
    FIELD(SecurityRecord, s8Status, "status: 0 in requests and on success"),
    FIELD(SecurityRecord, aucValue, "value", .u16Count = 0,
          .stCounter = SecurityRecord::u32DataLength, .eShown = Shown::Value,
          .eGuard = Guard::Secret),
};

// The length is the size that was asked for.
constexpr FieldRow astSecuritySize[] = {
    FIELD(SecurityRecord, u32ParameterID, "parameter ID"),
    FIELD(SecurityRecord, u32DataLength, "size of the value"),
    FIELD(SecurityRecord, s8Status, "status: 0 on success"),
};

constexpr FieldRow astSecurityGetRequest[] = {
    FIELD(SecurityRecord, u32ParameterID, "parameter ID"),
    RESERVED(4, 6),
};

constexpr FieldRow astSecuritySizeRequest[] = {
    FIELD(SecuritySizeRequest, u32ParameterID, "parameter ID"),
};

} // namespace

constexpr Layout stSecurityRecord = {"SecurityRecord", astSecurityRecord, SecurityRecord::aucValue};
constexpr Layout stSecurityGetRequest = {"SecurityGetRequest", astSecurityGetRequest,
                                         SecurityRecord::Size};
constexpr Layout stSecuritySize = {"SecuritySize", astSecuritySize, SecurityRecord::aucValue};
constexpr Layout stSecuritySizeRequest = LAYOUT(SecuritySizeRequest, astSecuritySizeRequest);
