#include "MIBIndication.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "Console.h"
#include "MIBRecord.h"
#include "Report.h"
#include "SFIDTable.h"

namespace {

constexpr const char *pcGetHeading = "\nGet Response received"; // of set answers too
constexpr const char *pcClosingRule = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

// A record of an answer.
struct MIBAnswer {
    uint32_t u32AttributeID;
    int32_t iStatus;
    uint32_t u32DataLength;
    ByteView stValue;  // the value's bytes, as many as stated and in the payload
    ByteView stLayout; // all of the payload from the value on: for fixed layouts
    ByteView stNext;   // the records behind this one
};

// The record at the beginning of stBytes.
MIBAnswer ReadRecord(ByteView stBytes) {
    using namespace MIBRecord;
    const ByteView stLayout = stBytes.From(Value);
    const uint32_t u32DataLength = Get(stBytes, DataLength);
    return {Get(stBytes, AttributeID), GetSigned(stBytes, Status), u32DataLength,
            stLayout.From(0, u32DataLength), stLayout,
            // A record without a value has one value byte all the same.
            stLayout.From(std::max(u32DataLength, Size - Value))};
}

// Every modulation and coding scheme has one counter in a group.
constexpr const char *apcSchemes[] = {
    "CCQpsk12Rate1",  "CCQpsk12Rate2",  "CCQpsk12Rate4",  "CCQpsk12Rate6",  "CCQpsk34",
    "CC16Qam12",      "CC16Qam34",      "CC64Qam12",      "CC64Qam23",      "CC64Qam34",
    "CTCQpsk12Rate1", "CTCQpsk12Rate2", "CTCQpsk12Rate4", "CTCQpsk12Rate6", "CTCQpsk34",
    "CTC16Qam12",     "CTC16Qam34",     "CTC64Qam12",     "CTC64Qam23",     "CTC64Qam34",
    "CTC64Qam56",
};
static_assert(std::size(apcSchemes) == MIBCounterGroup::Count);

constexpr const char *pcBurstsReceived = "TvlBasebandBurstRcv";
constexpr const char *pcPdusReceived = "TvlBasebandPduRcv";
constexpr const char *pcPdusSent = "TvlBasebandPduTx";
constexpr const char *pcBurstsSent = "TvlBasebandBurstsTx";

// A counter group of a zone: its heading, the first part of its counters'
// names, and where it begins.
struct CounterGroup {
    const char *pcHeading;
    const char *pcPrefix;
    uint32_t u32Offset;
};

constexpr CounterGroup astBurstGroups[] = {
    {"\n\n~~~~~~~~~~MIMO MAT A ~~~~~~~~~~~\n", pcBurstsReceived, MIBBurstZone::MatrixA},
    {"\n\n~~~~~~~~~~MIMO MAT B ~~~~~~~~~~~\n", pcBurstsReceived, MIBBurstZone::MatrixB},
    {"\n\n~~~~~~~~~~NON MIMO ~~~~~~~~~~~\n", pcBurstsReceived, MIBBurstZone::NonMIMO},
};

constexpr ReportRow astDLZoneRows[] = {
    {"ECINR Rate   : [%d]\n", MIBDLZone::ECINRRate},
    {"PCINR Rate 1 : [%d]\n", MIBDLZone::PCINRRate1},
    {"PCINR Rate 2 : [%d]\n", MIBDLZone::PCINRRate2},
    {"Last Frame Number ECINR : [%d]\n", MIBDLZone::ECINRFrame},
    {"Last Frame Number PCINR : [%d]\n", MIBDLZone::PCINRFrame},
    {"Zone last Frame Number : [%u]\n", MIBDLZone::FrameNumber},
};

constexpr CounterGroup astDLGroups[] = {
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved MIMO MAT A Info ~~~~~~~~~~~\n", pcPdusReceived,
     MIBDLZone::PdusMatrixA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved MIMO MAT B info~~~~~~~~~~~\n", pcPdusReceived,
     MIBDLZone::PdusMatrixB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved NON MIMO info~~~~~~~~~~~\n", pcPdusReceived,
     MIBDLZone::PdusNonMIMO},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved MIMO MAT A Info ~~~~~~~~~~~\n",
     pcBurstsReceived, MIBDLZone::BurstsMatrixA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved MIMO MAT B info~~~~~~~~~~~\n",
     pcBurstsReceived, MIBDLZone::BurstsMatrixB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved NON MIMO info~~~~~~~~~~~\n", pcBurstsReceived,
     MIBDLZone::BurstsNonMIMO},
};

constexpr CounterGroup astULGroups[] = {
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted CSM PILOT A Info ~~~~~~~~~~~\n", pcPdusSent,
     MIBULZone::PdusPilotA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted CSM PILOT B Info ~~~~~~~~~~~\n", pcPdusSent,
     MIBULZone::PdusPilotB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted NON CSM Info ~~~~~~~~~~~\n", pcPdusSent,
     MIBULZone::PdusNonCSM},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent CSM PILOTA Info ~~~~~~~~~~~\n", pcBurstsSent,
     MIBULZone::BurstsPilotA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent CSM PILOTB Info ~~~~~~~~~~~\n", pcBurstsSent,
     MIBULZone::BurstsPilotB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent NON CSM Info ~~~~~~~~~~~\n", pcBurstsSent,
     MIBULZone::BurstsNonCSM},
};

void PutCounterGroups(ByteView stZone, std::span<const CounterGroup> astGroups) {
    using namespace MIBCounterGroup;
    for (const CounterGroup &stGroup : astGroups) {
        PutText(stGroup.pcHeading);
        for (uint32_t i = 0; i < Count; ++i) {
            PutText(stGroup.pcPrefix);
            PutText(apcSchemes[i]);
            PutNumber(": [%d]\n", Get(stZone, First, stGroup.u32Offset + i * WidthOf(First.eType)));
        }
    }
}

void PutZoneBursts(const MIBAnswer &stAnswer) {
    const KeyTurn stTurn;
    const uint32_t u32ZoneSize = stAnswer.u32DataLength / MIBBurstZone::Count;
    for (uint32_t i = 0; i < MIBBurstZone::Count; ++i) {
        PutNumber("\nZone Is: [%d]\n", i);
        PutCounterGroups(stAnswer.stLayout.From(i * u32ZoneSize), astBurstGroups);
        WaitForKey();
    }
}

void PutZoneStatistics(const MIBAnswer &stAnswer) {
    using namespace MIBZoneStatistics;
    const KeyTurn stTurn;
    const ByteView stLayout = stAnswer.stLayout;
    PutRow(stLayout, {"Frame number for UL: [%d]\n", MIBULZone::FrameNumber}, ULZones);
    for (uint32_t i = 0; i < NumDLZones; ++i) {
        const ByteView stZone = stLayout.From(DLZones + i * MIBDLZone::Size, MIBDLZone::Size);
        PutRow(stLayout, {"\nMajor Group indicator : [%d]\n", MajorGroup});
        PutNumber("DL Zone [%d] Information :\n\n", i);
        PutRows(stZone, astDLZoneRows);
        PutCounterGroups(stZone, astDLGroups);
        WaitForKey();
    }
    for (uint32_t i = 0; i < NumULZones; ++i) {
        const ByteView stZone = stLayout.From(ULZones + i * MIBULZone::Size, MIBULZone::Size);
        PutNumber("UL Zone [%d] Information :\n\n", i);
        PutRow(stZone, {"Zone last Frame Number : [%u]\n", MIBULZone::FrameNumber});
        PutCounterGroups(stZone, astULGroups);
        WaitForKey();
    }
}

void PutActiveSFIDs(const MIBAnswer &stAnswer) {
    using namespace MIBActiveSFIDs;
    PutText("\nList of active SFIDs :");
    const uint32_t u32Count =
        RecordsPresent(stAnswer.stLayout, Entries, EntrySize, Get(stAnswer.stLayout, Count));
    for (uint32_t i = 0; i < u32Count; ++i) {
        const ByteView stEntry = stAnswer.stLayout.From(Entries + i * EntrySize, EntrySize);
        PutRow(stEntry, {"\n    SFID   : %d", SFID});
        AddSFID(Get(stEntry, SFID));
    }
}

void PutMRUTable(const MIBAnswer &stAnswer) {
    using namespace MIBMRUEntry;
    const uint32_t u32Count = stAnswer.u32DataLength / Size;
    PutNumber("\n\n Total MRU Entries : [%d]\n", u32Count);
    for (uint32_t i = 0; i < RecordsPresent(stAnswer.stLayout, 0, Size, u32Count); ++i) {
        const ByteView stEntry = stAnswer.stLayout.From(i * Size, Size);
        const uint32_t u32Index = Get(stEntry, Index);
        PutRow(stEntry, {"\n MRU Index : [%d]\n", Index});
        for (uint32_t k = 0; k < NumFrequencies; ++k) {
            const uint32_t au32Frequency[] = {
                k, u32Index, Get(stEntry, Frequencies, k * WidthOf(Frequencies.eType))};
            PutNumbers("\n Freq %d of Index [%d] - [%d]\n", au32Frequency);
        }
        const uint32_t au32Bandwidth[] = {u32Index, Get(stEntry, Bandwidth)};
        PutNumbers("\n Bandwidth of Index [%d] - [%d] MHz\n", au32Bandwidth);
    }
}

// The entries of a neighbour list, each with its number.
template <void (*pfnPutEntry)(ByteView stEntry)>
void PutNeighbours(const MIBAnswer &stAnswer, uint32_t u32EntrySize, const char *pcCount,
                   const char *pcEntry) {
    using namespace MIBNeighbourList;
    PutRow(stAnswer.stLayout, {pcCount, Count});
    const uint32_t u32Count =
        RecordsPresent(stAnswer.stLayout, Entries, u32EntrySize, Get(stAnswer.stLayout, Count));
    for (uint32_t i = 0; i < u32Count; ++i) {
        PutNumber(pcEntry, i);
        pfnPutEntry(stAnswer.stLayout.From(Entries + i * u32EntrySize, u32EntrySize));
    }
}

void PutNeighbour(ByteView stEntry) {
    using namespace MIBNeighbour;
    constexpr ReportRow astChannelRows[] = {
        {"    Preamble         : %d\n", Preamble},
        {"    ChannelBandwidth : %d Mhz\n", ChannelBandwidth, 1000000},
        {"    Centerfreq       : %d MHz\n", CenterFrequency, 8},
    };
    constexpr ReportRow astSignalRows[] = {
        {"    RSSI             : %d dBm\n", RSSI, 4},
        {"    CINR             : %d dB\n", CINR},
    };
    uint32_t au32BSID[BSIDSize];
    for (uint32_t i = 0; i < BSIDSize; ++i) {
        au32BSID[i] = Get(stEntry, BSID, BSIDSize - 1 - i);
    }
    PutRows(stEntry, astChannelRows);
    PutNumbers("    Bsid             : %02x %02x %02x %02x %02x %02x\n", au32BSID);
    PutRows(stEntry, astSignalRows);
}

void PutMeasuredNeighbour(ByteView stEntry) {
    using namespace MIBMeasuredNeighbour;
    constexpr ReportRow astRows[] = {
        {"\tFrequency (MHz) : %f\n", Frequency, 8},
        {"\tPreambleId      : %d\n", PreambleID},
        {"\tBandwidth (MHz) : %f\n", Bandwidth, 1000000},
        {"\tBSId            : %02x %02x %02x %02x %02x %02x\n", BSID},
        {"\tRSSI (dBm)      : %f\n", RSSI, 65536},
        {"\tR1CINR          : %f\n", R1CINR, 65536},
        {"\tR3CINR          : %f\n", R3CINR, 65536},
        {"\tToF             : %f\n", ToF, 16},
        {"\tRTD             : %d\n", RTD},
        {"\tMeasDur         : %d\n", MeasDur},
        {"\tFlags(Hex)      : %x\n", Flags},
    };
    PutRows(stEntry, astRows);
}

void PutIntegerNeighbours(const MIBAnswer &stAnswer) {
    PutNeighbours<PutNeighbour>(stAnswer, MIBNeighbour::Size, "Number of Neighbours %d\n",
                                "~~~~~~ Neighbour %d ~~~~~~~~ \n");
}

void PutMeasuredNeighbours(const MIBAnswer &stAnswer) {
    PutNeighbours<PutMeasuredNeighbour>(stAnswer, MIBMeasuredNeighbour::Size,
                                        "\nNumber of Neighbours %d\n",
                                        "\n~~~~~~~ Neighbour %d ~~~~~~~ \n");
}

void PutTriggerStatus(const MIBAnswer &stAnswer) {
    using namespace MIBTriggerStatus;
    struct Trigger {
        const char *pcText;
        Field stStatus;
    };
    constexpr Trigger astTriggers[] = {
        {"Trigger Status for Serving BS \t : ", ServingBS},
        {"Trigger Status for IntraFA Group : ", IntraFA},
        {"Trigger Status for InterFA Group : ", InterFA},
    };
    constexpr const char *pcNotDefined = "TRIGGER_STATUS_NOT_DEFINED";
    constexpr CodeName astNames[] = {
        {Failed, "TRIGGER_STATUS_FAILED"},
        {Passed, "TRIGGER_STATUS_PASSED"},
        {NoMeasurements, "TRIGGER_STATUS_NO_MEASUREMENTS"},
        {NotDefined, pcNotDefined},
    };
    constexpr const char *pcBanner = "\n\n~~~~~~~~~~ Trigger Status Information ~~~~~~~~~~";
    PutLine(pcBanner);
    for (const Trigger &stTrigger : astTriggers) {
        PutText(stTrigger.pcText);
        PutLine(NameOf(astNames, Get(stAnswer.stLayout, stTrigger.stStatus), pcNotDefined));
    }
    PutClosingLine(pcBanner);
}

void PutControlMessagesDropped(const MIBAnswer &stAnswer) {
    using namespace MIBControlMessagesDropped;
    constexpr const char *apcNames[] = {
        "cm_responses",       "cm_control_newdsx_multiclassifier_resp",
        "link_control_resp",  "status_rsp",
        "stats_pointer_resp", "idle_mode_status",
        "auth_ss_host_msg",   "low_priority_message",
    };
    static_assert(std::size(apcNames) == Count);
    constexpr const char *pcBanner =
        "\n\n~~~~~~~~~~ Control Messages Dropped By Application ~~~~~~~~~~";
    PutLine(pcBanner);
    for (uint32_t i = 0; i < Count; ++i) {
        PutFormat("%-40s: %d\n", apcNames[i],
                  GetSigned(stAnswer.stLayout, First, i * WidthOf(First.eType)));
    }
    PutClosingLine(pcBanner);
}

constexpr ReportRow astNetworkEntryTimingRows[] = {
    {"\n\n~~~~~~~~~~Network entry timing statistics START~~~~~~~~~~~\n"},
    {"u32AuthPhaseTime: [%d]\n", MIBNetworkEntryTiming::AuthPhase},
    {"u32PhySyncTime: [%d]\n", MIBNetworkEntryTiming::PhySync},
    {"u32MacSyncTime: [%d]\n", MIBNetworkEntryTiming::MacSync},
    {"u32NwEntryTime: [%d]\n", MIBNetworkEntryTiming::NwEntry},
    {"u32NwSearchTime: [%d]\n", MIBNetworkEntryTiming::NwSearch},
    {"u32ProvSfTime: [%d]\n", MIBNetworkEntryTiming::ProvSf},
    {"u32RangingTime: [%d]\n", MIBNetworkEntryTiming::Ranging},
    {"u32RegNegTime: [%d]\n", MIBNetworkEntryTiming::RegNeg},
    {"u32SbcTime: [%d]\n", MIBNetworkEntryTiming::Sbc},
    {"\n\n~~~~~~~~~~Network entry timing statistics END ~~~~~~~~~~~\n"},
};

constexpr ReportRow astAntennaSwitchRows[] = {
    {"\n\t~~~~~ TX Antenna Switch Information ~~~~~\n"},
    {"\tFiltering Coefficient for Antenna1(Q23.9 format) : %f\n", MIBAntennaSwitch::Filtering1,
     512},
    {"\tFiltering Coefficient for Antenna2(Q23.9 format) : %f\n", MIBAntennaSwitch::Filtering2,
     512},
    {"\tSwitching margin for Antenna1                    : %d\n", MIBAntennaSwitch::Margin1},
    {"\tSwitching margin for Antenna2                    : %d\n", MIBAntennaSwitch::Margin2},
    {"\tSmooth RSSI for Antenna1(Q1.27.4 format)         : %f\n", MIBAntennaSwitch::SmoothRSSI1,
     16},
    {"\tSmooth RSSI for Antenna2(Q1.27.4 format)         : %f\n", MIBAntennaSwitch::SmoothRSSI2,
     16},
    {"\tAntenna Selection mode                           : %d\n", MIBAntennaSwitch::SelectionMode},
    {"\tCurrent TX Antenna                               : %d\n", MIBAntennaSwitch::CurrentAntenna},
};

// The minus sign stands before every value, a negative one too.
constexpr ReportRow astNegatedRows[] = {{" UINT eq : -%d", {0, FieldType::I32}}};

template <const auto &astRows> void PutRowsOf(const MIBAnswer &stAnswer) {
    PutRows(stAnswer.stLayout, astRows);
}

constexpr char acBurstErrorRate[] = "\nDlPerRxBurstErrorRateUpper[%d]\t:\t%d\n";
constexpr char acPerAttemptReceived[] = "\nPerAttemptRcvSuccess[%d]\t:\t%d\n";
constexpr char acSubmapErrors[] = "\nSubmap Errors[%d]\t:\t%d\n";
constexpr char acPerAttemptCompleted[] = "\nPerAttemptrcvTranscompleted[%d]\t:\t%d\n";
constexpr char acSoundingType[] = "\nTxAAsoundingtype[%d]\t:\t%d\n";

template <const auto &acText> void PutFourCounters(const MIBAnswer &stAnswer) {
    using namespace MIBFourCounters;
    for (uint32_t i = 0; i < Count; ++i) {
        const uint32_t au32Values[] = {i, Get(stAnswer.stLayout, First, i * WidthOf(First.eType))};
        PutNumbers(acText, au32Values);
    }
}

// The attributes that have a report of their own.
struct AttributeReport {
    uint32_t u32AttributeID;
    void (*pfnPut)(const MIBAnswer &stAnswer);
};

constexpr AttributeReport astReports[] = {
    {MIBAttribute::ZoneBursts, PutZoneBursts},
    {MIBAttribute::ActiveSFIDs, PutActiveSFIDs},
    {MIBAttribute::ZoneStatistics, PutZoneStatistics},
    {MIBAttribute::NetworkEntryTiming, PutRowsOf<astNetworkEntryTimingRows>},
    {MIBAttribute::MRUTable, PutMRUTable},
    {MIBAttribute::Negated1467, PutRowsOf<astNegatedRows>},
    {MIBAttribute::Negated1468, PutRowsOf<astNegatedRows>},
    {MIBAttribute::Neighbours, PutIntegerNeighbours},
    {MIBAttribute::MeasuredNeighbours, PutMeasuredNeighbours},
    {MIBAttribute::AntennaSwitch, PutRowsOf<astAntennaSwitchRows>},
    {MIBAttribute::TriggerStatus, PutTriggerStatus},
    {MIBAttribute::BurstErrorRate, PutFourCounters<acBurstErrorRate>},
    {MIBAttribute::PerAttemptReceived, PutFourCounters<acPerAttemptReceived>},
    {MIBAttribute::SubmapErrors, PutFourCounters<acSubmapErrors>},
    {MIBAttribute::PerAttemptCompleted, PutFourCounters<acPerAttemptCompleted>},
    {MIBAttribute::SoundingType, PutFourCounters<acSoundingType>},
    {MIBAttribute::ControlMessagesDropped, PutControlMessagesDropped},
};

const AttributeReport *ReportOf(uint32_t u32AttributeID) {
    const AttributeReport *pstFound = std::find_if(
        std::begin(astReports), std::end(astReports),
        [&](const AttributeReport &stReport) { return stReport.u32AttributeID == u32AttributeID; });
    return pstFound != std::end(astReports) ? pstFound : nullptr;
}

void PutValue(const MIBAnswer &stAnswer) {
    constexpr Field stWord{0, FieldType::I32};
    PutEachByte(" 0x%02x", stAnswer.stValue);
    if (stAnswer.u32DataLength == WidthOf(stWord.eType)) {
        PutRow(stAnswer.stValue, {" UINT eq : %d", stWord});
    }
    PutText("\n");
}

void PutOID(const MIBAnswer &stAnswer) { PutNumber("\n MIB OID - %d : ", stAnswer.u32AttributeID); }

// A status other than success, of a single get or set.
void PutSingleError(const MIBAnswer &stAnswer) {
    PutFormat(" Error Code while MIB Set: (%d) \n", stAnswer.iStatus);
}

void PutMultipleError(const MIBAnswer &stAnswer) {
    PutFormat("Error Code - (%d) \n", stAnswer.iStatus);
}

void PutSetAnswer(const MIBAnswer &stAnswer) {
    PutText(pcGetHeading);
    if (stAnswer.iStatus != 0) {
        PutSingleError(stAnswer);
    } else {
        PutText("\nMIB Set is Successful !!!");
    }
}

// Returns true when the attribute had a report of its own.
bool PutGetAnswer(const MIBAnswer &stAnswer) {
    PutText(pcGetHeading);
    PutOID(stAnswer);
    if (stAnswer.iStatus != 0) {
        PutSingleError(stAnswer);
        return false;
    }
    const AttributeReport *pstReport = ReportOf(stAnswer.u32AttributeID);
    if (pstReport == nullptr) {
        PutValue(stAnswer);
        return false;
    }
    pstReport->pfnPut(stAnswer);
    return true;
}

void PutMultipleSetRecord(const MIBAnswer &stAnswer) {
    if (stAnswer.iStatus != 0) {
        PutOID(stAnswer);
        PutMultipleError(stAnswer);
    }
}

void PutMultipleGetRecord(const MIBAnswer &stAnswer) {
    PutOID(stAnswer);
    if (stAnswer.iStatus != 0) {
        PutText(" ");
        PutMultipleError(stAnswer);
    } else {
        PutValue(stAnswer);
    }
}

// The records of a multiple answer, as many as were announced and have at
// least their status in the payload.
void PutRecords(ByteView stPayload, void (*pfnPut)(const MIBAnswer &stAnswer)) {
    const uint32_t u32Count = Get(stPayload, MIBRecordList::Count);
    ByteView stRest = stPayload.From(MIBRecordList::Records);
    for (uint32_t i = 0; i < u32Count && stRest.u32Length >= MIBRecord::Value; ++i) {
        const MIBAnswer stAnswer = ReadRecord(stRest);
        pfnPut(stAnswer);
        stRest = stAnswer.stNext;
    }
}

} // namespace

uint32_t MIBIndication(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 1;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~~~~~~~~~~ MIB MESSAGE RECEIVED ~~~~~~~~~~~~~~~");
    switch (stReceived.u32SubType) {
    case SUBTYPE_MIB_SET:
        PutSetAnswer(ReadRecord(stReceived.stPayload));
        break;
    case SUBTYPE_MIB_GET:
        if (PutGetAnswer(ReadRecord(stReceived.stPayload))) {
            return 0;
        }
        break;
    case SUBTYPE_MULTIPLE_MIB_SET:
        PutText("\nMultiple MIB Set Response receved");
        PutRecords(stReceived.stPayload, PutMultipleSetRecord);
        break;
    case SUBTYPE_MULTIPLE_MIB_GET:
        PutText(pcGetHeading);
        PutRecords(stReceived.stPayload, PutMultipleGetRecord);
        break;
    default:
        break;
    }
    PutLine(pcClosingRule);
    return 1;
}
