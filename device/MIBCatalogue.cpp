#include "Layouts.h"
#include "MIBRecord.h"

namespace {

constexpr FieldRow astNetworkEntryTiming[] = {
    FIELD(MIBNetworkEntryTiming, u32NwSearchTime, "search"),
    FIELD(MIBNetworkEntryTiming, u32PhySyncTime, "PHY synchronisation"),
    FIELD(MIBNetworkEntryTiming, u32MacSyncTime, "MAC synchronisation"),
    FIELD(MIBNetworkEntryTiming, u32RangingTime, "ranging"),
    FIELD(MIBNetworkEntryTiming, u32SbcTime, "capabilities"),
    FIELD(MIBNetworkEntryTiming, u32AuthPhaseTime, "authentication"),
    FIELD(MIBNetworkEntryTiming, u32RegNegTime, "registration"),
    FIELD(MIBNetworkEntryTiming, u32ProvSfTime, "provisioned flows"),
    FIELD(MIBNetworkEntryTiming, u32NwEntryTime, "whole entry"),
};
constexpr Layout stNetworkEntryTiming = {"NetworkEntryTiming", astNetworkEntryTiming,
                                         MIBNetworkEntryTiming::Size};

constexpr CaseRow astValues[] = {
    {MIBAttribute::NetworkEntryTiming, &stNetworkEntryTiming},
};

constexpr FieldRow astMIBAnswer[] = {
    FIELD(MIBRecord, u32AttributeID, "attribute ID"),
    FIELD(MIBRecord, u8KeyCount, "how many keys count: 0, 1 or 2"),
    FIELD(MIBRecord, u32Key1, "first key"),
    FIELD(MIBRecord, u32Key2, "second key"),
    RESERVED(13, 8),
    FIELD(MIBRecord, u32DataLength, "n, the number of value bytes"),
    FIELD(MIBRecord, s8Status, "status: 0 in requests and on success"),
    FIELD(MIBRecord, aucValue, "value", .u16Count = 0, .stCounter = MIBRecord::u32DataLength,
          .eShown = Shown::Value, .astCases = astValues, .stSelector = MIBRecord::u32AttributeID),
};

} // namespace

constexpr Layout stMIBAnswer = LAYOUT(MIBRecord, astMIBAnswer);
