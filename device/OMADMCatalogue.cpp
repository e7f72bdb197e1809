#include "Layouts.h"
#include "OMADMRecords.h"

namespace {

constexpr FieldRow astOMADMElement[] = {
    FIELD(OMADMElement, u8Class, "class of the node"),
    FIELD(OMADMElement, u8Number, "number of the node"),
    RESERVED(2, 2),
    FIELD(OMADMElement, u32Index, "array index, 0 for a node that is no array"),
};
constexpr Layout stOMADMElement = LAYOUT(OMADMElement, astOMADMElement);

constexpr FieldRow astOMADMParameter[] = {
    FIELD(OMADMParameter, u32ValueSize, "n, the size of the value"),
    RESERVED(4, 1),
    FIELD(OMADMParameter, astPath, "path", .u16Count = OMADMPath::MaxElements,
          .stCounter = OMADMParameter::u32NumElements, .pstRecord = &stOMADMElement),
    FIELD(OMADMParameter, u32NumElements, "number of steps"),
    FIELD(OMADMParameter, aucValue, "value, and one byte more", .u16Count = 0,
          .stCounter = OMADMParameter::u32ValueSize, .eShown = Shown::Bytes,
          .eGuard = Guard::Secret),
};

constexpr FieldRow astOMADMSizeQuery[] = {
    FIELD(OMADMSizeQuery, astPath, "path", .u16Count = OMADMPath::MaxElements,
          .stCounter = OMADMSizeQuery::u32NumElements, .pstRecord = &stOMADMElement),
    FIELD(OMADMSizeQuery, u32NumElements, "number of steps"),
    RESERVED(84, 1),
    FIELD(OMADMSizeQuery, u32NodeSize, "size; filled in by the answer"),
};

constexpr FieldRow astOMADMVersion[] = {
    FIELD(OMADMVersion, u32Major,
          "major, 3 for this client; the library's own in the answer of a refusal"),
    FIELD(OMADMVersion, u32Minor, "minor, 0"),
};

constexpr FieldRow astOMADMTreeUpdate[] = {
    FIELD(OMADMTreeUpdate, acFileName, "file name, padded with zeroes",
          .u16Count = OMADMTreeUpdate::Size, .eShown = Shown::Text),
};

constexpr FieldRow astIMEIBlock[] = {
    RESERVED(0, 4),
    FIELD(IMEIBlock, aucData, "IMEI block", .u16Count = IMEIBlock::DataSize, .eShown = Shown::Bytes,
          .eGuard = Guard::Identity),
};

constexpr FieldRow astIMEIRequest[] = {RESERVED(0, IMEIBlock::Size)};

} // namespace

constexpr Layout stOMADMParameter = LAYOUT(OMADMParameter, astOMADMParameter);
constexpr Layout stOMADMSizeQuery = LAYOUT(OMADMSizeQuery, astOMADMSizeQuery);
constexpr Layout stOMADMVersion = LAYOUT(OMADMVersion, astOMADMVersion);
constexpr Layout stOMADMTreeUpdate = LAYOUT(OMADMTreeUpdate, astOMADMTreeUpdate);
constexpr Layout stIMEIRequest = {"IMEIRequest", astIMEIRequest, IMEIBlock::Size};
constexpr Layout stIMEIBlock = LAYOUT(IMEIBlock, astIMEIBlock);
