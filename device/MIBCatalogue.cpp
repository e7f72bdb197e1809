#include "Layouts.h"
#include "MIBRecord.h"

namespace {

// ---- Values, by attribute ----

constexpr FieldRow astCenterFrequency[] = {
    FIELD(MIBCenterFrequency, u32CenterFrequency, "centre frequency"),
    FIELD(MIBCenterFrequency, u32Bandwidth, "bandwidth"),
    RESERVED(8, 8),
};
constexpr Layout stCenterFrequency = {"CenterFrequencyAndBandwidth", astCenterFrequency,
                                      MIBCenterFrequency::Size};

constexpr FieldRow astActiveSFID[] = {
    FIELD(MIBActiveSFIDs, u32SFID, "SFID"),
    RESERVED(4, 132),
};
constexpr Layout stActiveSFID = {"ActiveSFID", astActiveSFID, MIBActiveSFIDs::EntrySize};

constexpr FieldRow astActiveSFIDs[] = {
    FIELD(MIBActiveSFIDs, u32Count, "number of service flows"),
    FIELD(MIBActiveSFIDs, astEntries, "service flows", .u16Count = 0,
          .stCounter = MIBActiveSFIDs::u32Count, .pstRecord = &stActiveSFID),
};
constexpr Layout stActiveSFIDs = {"ActiveSFIDs", astActiveSFIDs, MIBActiveSFIDs::astEntries};

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

constexpr FieldRow astMRUEntry[] = {
    FIELD(MIBMRUEntry, u32Index, "index"),
    FIELD(MIBMRUEntry, au32Frequencies, "frequencies", .u16Count = MIBMRUEntry::NumFrequencies),
    FIELD(MIBMRUEntry, u32Bandwidth, "bandwidth", .pcUnit = "MHz"),
};
constexpr Layout stMRUEntry = {"MRUEntry", astMRUEntry, MIBMRUEntry::Size};

constexpr FieldRow astMRUTable[] = {
    NAMED("astEntries", 0U, "entries to the end of the value", .u16Count = 0,
          .pstRecord = &stMRUEntry),
};
constexpr Layout stMRUTable = {"MRUTable", astMRUTable, 0};

constexpr FieldRow astNeighbour[] = {
    FIELD(MIBNeighbour, u32Preamble, "preamble"),
    FIELD(MIBNeighbour, u32ChannelBandwidth, "bandwidth", .pcUnit = "Hz"),
    FIELD(MIBNeighbour, u32CenterFrequency, "centre frequency", .pcUnit = "MHz", .u32Divisor = 8),
    FIELD(MIBNeighbour, aucBSID, "BS ID, the last byte first", .u16Count = MIBNeighbour::BSIDSize,
          .eShown = Shown::Bytes),
    RESERVED(18, 2),
    FIELD(MIBNeighbour, s32RSSI, "RSSI", .pcUnit = "dBm", .u32Divisor = 4),
    SIGNED_FIELD(MIBNeighbour, u32CINR, "CINR", .pcUnit = "dB"),
};
constexpr Layout stNeighbour = {"Neighbour", astNeighbour, MIBNeighbour::Size};

constexpr FieldRow astMeasuredNeighbour[] = {
    RESERVED(0, 4),
    FIELD(MIBMeasuredNeighbour, u32PreambleID, "preamble"),
    FIELD(MIBMeasuredNeighbour, u32Frequency, "frequency", .pcUnit = "MHz", .u32Divisor = 8),
    FIELD(MIBMeasuredNeighbour, u32Bandwidth, "bandwidth", .pcUnit = "Hz"),
    FIELD(MIBMeasuredNeighbour, aucBSID, "BS ID", .u16Count = MIBNeighbour::BSIDSize,
          .eShown = Shown::Address),
    RESERVED(22, 2),
    FIELD(MIBMeasuredNeighbour, u32R1CINR, "R1 CINR", .u32Divisor = 65536),
    FIELD(MIBMeasuredNeighbour, u32R3CINR, "R3 CINR", .u32Divisor = 65536),
    FIELD(MIBMeasuredNeighbour, u32RSSI, "RSSI, shown unsigned", .pcUnit = "dBm",
          .u32Divisor = 65536),
    FIELD(MIBMeasuredNeighbour, u32ToF, "time of flight", .u32Divisor = 16),
    FIELD(MIBMeasuredNeighbour, u32RTD, "RTD"),
    FIELD(MIBMeasuredNeighbour, u32MeasDur, "duration of the measurement"),
    FIELD(MIBMeasuredNeighbour, u32Flags, "flags", .eShown = Shown::Hexadecimal),
};
constexpr Layout stMeasuredNeighbour = {"MeasuredNeighbour", astMeasuredNeighbour,
                                        MIBMeasuredNeighbour::Size};

// A list of neighbours that have that layout.
template <const Layout &stEntry>
constexpr FieldRow astNeighbourList[] = {
    FIELD(MIBNeighbourList, u32Count, "number of neighbours"),
    FIELD(MIBNeighbourList, astEntries, "neighbours, from 0", .u16Count = 0,
          .stCounter = MIBNeighbourList::u32Count, .pstRecord = &stEntry),
};
constexpr Layout stNeighbours = {"Neighbours", astNeighbourList<stNeighbour>,
                                 MIBNeighbourList::astEntries};
constexpr Layout stMeasuredNeighbours = {
    "MeasuredNeighbours", astNeighbourList<stMeasuredNeighbour>, MIBNeighbourList::astEntries};

constexpr FieldRow astAntennaSwitch[] = {
    FIELD(MIBAntennaSwitch, u32Filtering1, "filtering coefficient of antenna 1", .u32Divisor = 512),
    FIELD(MIBAntennaSwitch, u32Filtering2, "filtering coefficient of antenna 2", .u32Divisor = 512),
    FIELD(MIBAntennaSwitch, u32Margin1, "switching margin of antenna 1"),
    FIELD(MIBAntennaSwitch, u32Margin2, "switching margin of antenna 2"),
    FIELD(MIBAntennaSwitch, s32SmoothRSSI1, "smooth RSSI of antenna 1", .u32Divisor = 16),
    FIELD(MIBAntennaSwitch, s32SmoothRSSI2, "smooth RSSI of antenna 2", .u32Divisor = 16),
    FIELD(MIBAntennaSwitch, u32SelectionMode, "selection mode"),
    FIELD(MIBAntennaSwitch, u32CurrentAntenna, "current antenna"),
};
constexpr Layout stAntennaSwitch = {"AntennaSwitch", astAntennaSwitch, MIBAntennaSwitch::Size};

constexpr CodeRow astTriggerStates[] = {
    CODE(MIBTriggerStatus, Failed),
    CODE(MIBTriggerStatus, Passed),
    CODE(MIBTriggerStatus, NoMeasurements),
    CODE(MIBTriggerStatus, NotDefined),
};

constexpr FieldRow astTriggerStatus[] = {
    FIELD(MIBTriggerStatus, u8ServingBS,
          "serving BS: 0 failed, 1 passed, 2 no measurements, 3 and above not defined",
          .astCodes = astTriggerStates),
    FIELD(MIBTriggerStatus, u8IntraFA, "intra-FA group", .astCodes = astTriggerStates),
    FIELD(MIBTriggerStatus, u8InterFA, "inter-FA group", .astCodes = astTriggerStates),
};
constexpr Layout stTriggerStatus = {"TriggerStatus", astTriggerStatus, 3};

constexpr FieldRow astOneNumber[] = {
    NAMED("s32Value", (Field{0, FieldType::I32}), "one number, shown behind a minus sign"),
};
constexpr Layout stNegated1467 = {"Negated1467", astOneNumber, 4};
constexpr Layout stNegated1468 = {"Negated1468", astOneNumber, 4};

constexpr FieldRow astFourCounters[] = {
    NAMED("as32Counters", MIBFourCounters::s32First, "counters",
          .u16Count = MIBFourCounters::Count),
};
constexpr uint32_t u32FourCountersSize = MIBFourCounters::Count * 4;
constexpr Layout stPerAttemptReceived = {"PerAttemptReceived", astFourCounters,
                                         u32FourCountersSize};
constexpr Layout stPerAttemptCompleted = {"PerAttemptCompleted", astFourCounters,
                                          u32FourCountersSize};
constexpr Layout stSubmapErrors = {"SubmapErrors", astFourCounters, u32FourCountersSize};
constexpr Layout stBurstErrorRate = {"BurstErrorRate", astFourCounters, u32FourCountersSize};
constexpr Layout stSoundingType = {"SoundingType", astFourCounters, u32FourCountersSize};

constexpr FieldRow astControlMessagesDropped[] = {
    NAMED("s32CmResponses", (Field{0, FieldType::I32}), "cm_responses"),
    NAMED("s32CmControlNewDsxMulticlassifierResp", (Field{4, FieldType::I32}),
          "cm_control_newdsx_multiclassifier_resp"),
    NAMED("s32LinkControlResp", (Field{8, FieldType::I32}), "link_control_resp"),
    NAMED("s32StatusRsp", (Field{12, FieldType::I32}), "status_rsp"),
    NAMED("s32StatsPointerResp", (Field{16, FieldType::I32}), "stats_pointer_resp"),
    NAMED("s32IdleModeStatus", (Field{20, FieldType::I32}), "idle_mode_status"),
    NAMED("s32AuthSsHostMsg", (Field{24, FieldType::I32}), "auth_ss_host_msg"),
    NAMED("s32LowPriorityMessage", (Field{28, FieldType::I32}), "low_priority_message"),
};
constexpr Layout stControlMessagesDropped = {"ControlMessagesDropped", astControlMessagesDropped,
                                             MIBControlMessagesDropped::Count * 4};

// ---- Zones ----

constexpr FieldRow astCounterGroup[] = {
    NAMED("as32Counters", MIBCounterGroup::s32First,
          "one counter for each modulation and coding scheme", .u16Count = MIBCounterGroup::Count),
};
constexpr Layout stCounterGroup = {"CounterGroup", astCounterGroup, MIBCounterGroup::Size};

constexpr FieldRow astBurstZone[] = {
    FIELD(MIBBurstZone, stMatrixA, "matrix A", .pstRecord = &stCounterGroup),
    FIELD(MIBBurstZone, stMatrixB, "matrix B", .pstRecord = &stCounterGroup),
    FIELD(MIBBurstZone, stNonMIMO, "without MIMO", .pstRecord = &stCounterGroup),
};
constexpr Layout stBurstZone = {"BurstZone", astBurstZone, MIBBurstZone::Size};

constexpr FieldRow astZoneBursts[] = {
    NAMED("astZones", 0U, "zones, each a tenth of the value long", .u16Count = MIBBurstZone::Count,
          .pstRecord = &stBurstZone),
};
constexpr Layout stZoneBursts = {"ZoneBursts", astZoneBursts,
                                 MIBBurstZone::Count *MIBBurstZone::Size};

constexpr FieldRow astDLZone[] = {
    FIELD(MIBDLZone, u32FrameNumber, "last frame number"),
    FIELD(MIBDLZone, s8PCINRRate1, "PCINR rate 1"),
    FIELD(MIBDLZone, s8PCINRRate2, "PCINR rate 2"),
    FIELD(MIBDLZone, s8ECINRRate, "ECINR rate"),
    RESERVED(7, 1),
    FIELD(MIBDLZone, s32PCINRFrame, "last frame of PCINR"),
    FIELD(MIBDLZone, s32ECINRFrame, "last frame of ECINR"),
    RESERVED(16, 8),
    FIELD(MIBDLZone, stBurstsMatrixA, "bursts, matrix A", .pstRecord = &stCounterGroup),
    FIELD(MIBDLZone, stBurstsMatrixB, "bursts, matrix B", .pstRecord = &stCounterGroup),
    FIELD(MIBDLZone, stBurstsNonMIMO, "bursts without MIMO", .pstRecord = &stCounterGroup),
    FIELD(MIBDLZone, stPdusMatrixA, "PDUs, matrix A", .pstRecord = &stCounterGroup),
    FIELD(MIBDLZone, stPdusMatrixB, "PDUs, matrix B", .pstRecord = &stCounterGroup),
    FIELD(MIBDLZone, stPdusNonMIMO, "PDUs without MIMO", .pstRecord = &stCounterGroup),
};
constexpr Layout stDLZone = {"DLZone", astDLZone, MIBDLZone::Size};

constexpr FieldRow astULZone[] = {
    FIELD(MIBULZone, u32FrameNumber, "last frame number"),
    RESERVED(4, 16),
    FIELD(MIBULZone, stBurstsPilotA, "bursts, pilot A", .pstRecord = &stCounterGroup),
    FIELD(MIBULZone, stBurstsPilotB, "bursts, pilot B", .pstRecord = &stCounterGroup),
    FIELD(MIBULZone, stBurstsNonCSM, "bursts without CSM", .pstRecord = &stCounterGroup),
    FIELD(MIBULZone, stPdusPilotA, "PDUs, pilot A", .pstRecord = &stCounterGroup),
    FIELD(MIBULZone, stPdusPilotB, "PDUs, pilot B", .pstRecord = &stCounterGroup),
    FIELD(MIBULZone, stPdusNonCSM, "PDUs without CSM", .pstRecord = &stCounterGroup),
};
constexpr Layout stULZone = {"ULZone", astULZone, MIBULZone::Size};

constexpr FieldRow astZoneStatistics[] = {
    FIELD(MIBZoneStatistics, u32MajorGroup, "major group indicator"),
    RESERVED(4, 12),
    FIELD(MIBZoneStatistics, astDLZones, "downlink zones",
          .u16Count = MIBZoneStatistics::NumDLZones, .pstRecord = &stDLZone),
    FIELD(MIBZoneStatistics, astULZones, "uplink zones", .u16Count = MIBZoneStatistics::NumULZones,
          .pstRecord = &stULZone),
};
constexpr Layout stZoneStatistics = {"ZoneStatistics", astZoneStatistics, MIBZoneStatistics::Size};

constexpr CaseRow astWrittenValues[] = {
    {MIBAttribute::CenterFrequencyAndBandwidth, &stCenterFrequency},
};

constexpr CaseRow astReadValues[] = {
    {MIBAttribute::CenterFrequencyAndBandwidth, &stCenterFrequency},
    {MIBAttribute::PerAttemptReceived, &stPerAttemptReceived},
    {MIBAttribute::Negated1467, &stNegated1467},
    {MIBAttribute::Negated1468, &stNegated1468},
    {MIBAttribute::PerAttemptCompleted, &stPerAttemptCompleted},
    {MIBAttribute::SubmapErrors, &stSubmapErrors},
    {MIBAttribute::Neighbours, &stNeighbours},
    {MIBAttribute::ActiveSFIDs, &stActiveSFIDs},
    {MIBAttribute::MeasuredNeighbours, &stMeasuredNeighbours},
    {MIBAttribute::ZoneBursts, &stZoneBursts},
    {MIBAttribute::MRUTable, &stMRUTable},
    {MIBAttribute::NetworkEntryTiming, &stNetworkEntryTiming},
    {MIBAttribute::ZoneStatistics, &stZoneStatistics},
    {MIBAttribute::AntennaSwitch, &stAntennaSwitch},
    {MIBAttribute::TriggerStatus, &stTriggerStatus},
    {MIBAttribute::BurstErrorRate, &stBurstErrorRate},
    {MIBAttribute::SoundingType, &stSoundingType},
    {MIBAttribute::ControlMessagesDropped, &stControlMessagesDropped},
};

// ---- Records ----

#define MIB_HEAD                                                                                   \
    FIELD(MIBRecord, u32AttributeID, "attribute ID"),                                              \
        FIELD(MIBRecord, u8KeyCount, "how many keys count: 0, 1 or 2"),                            \
        FIELD(MIBRecord, u32Key1, "first key"), FIELD(MIBRecord, u32Key2, "second key"),           \
        RESERVED(13, 8), FIELD(MIBRecord, u32DataLength, "n, the number of value bytes"),          \
        FIELD(MIBRecord, s8Status, "status: 0 in requests and on success")

constexpr FieldRow astMIBGetRecord[] = {
    MIB_HEAD,
    RESERVED(MIBRecord::aucValue, 1),
};

// A record with a value, which has one of these layouts.
template <const auto &astCases>
constexpr FieldRow astMIBRecord[] = {
    MIB_HEAD,
    {.stName = "aucValue",
     .stField = PlaceOf(MIBRecord::aucValue),
     .pcMeaning = "value",
     .u16Count = 0,
     .stCounter = MIBRecord::u32DataLength,
     .eShown = Shown::Value,
     .astCases = astCases,
     .stSelector = MIBRecord::u32AttributeID},
};

// A list of records that have that layout.
template <const Layout &stRecord>
constexpr FieldRow astMIBRecordList[] = {
    FIELD(MIBRecordList, u16Count, "number of records"),
    FIELD(MIBRecordList, astRecords, "records", .u16Count = 0, .stCounter = MIBRecordList::u16Count,
          .pstRecord = &stRecord),
};

} // namespace

constexpr Layout stMIBGetRecord = {"MIBGetRecord", astMIBGetRecord, MIBRecord::Size};
// In a list, a record without a value has no byte for it, unlike in an answer.
constexpr Layout stMIBSetRecord = {"MIBSetRecord", astMIBRecord<astWrittenValues>,
                                   MIBRecord::aucValue};
constexpr Layout stMIBRecord = {"MIBRecord", astMIBRecord<astReadValues>, MIBRecord::Size};
constexpr Layout stMIBGetList = {"MIBGetList", astMIBRecordList<stMIBGetRecord>,
                                 MIBRecordList::astRecords};
constexpr Layout stMIBSetList = {"MIBSetList", astMIBRecordList<stMIBSetRecord>,
                                 MIBRecordList::astRecords};
constexpr Layout stMIBList = {"MIBRecordList", astMIBRecordList<stMIBRecord>,
                              MIBRecordList::astRecords};
