#include "MIBIndication.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

#include "Console.h"
#include "MIBRecord.h"
#include "Report.h"
#include "SFIDTable.h"

namespace {

constexpr const char *pcGetHeading = "\nGet Response received"; // of set answers too
constexpr const char *pcMIBClosingRule = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

// A record of an answer.
struct MIBAnswer {
    uint32_t u32AttributeID;
    uint32_t u32Status;
    uint32_t u32DataLength;
    ByteView stValue;  // the value's bytes, as many as stated and in the payload
    ByteView stLayout; // all of the payload from the value on: for fixed layouts
    ByteView stNext;   // the records behind this one
};

// The record at the beginning of stBytes.
MIBAnswer ReadRecord(ByteView stBytes) {
    using namespace MIBRecord;
    const ByteView stLayout = stBytes.From(aucValue);
    const uint32_t u32DataLength = Get(stBytes, MIBRecord::u32DataLength);
    return {Get(stBytes, u32AttributeID), Get(stBytes, s8Status), u32DataLength,
            stLayout.From(0, u32DataLength), stLayout,
            // A record without a value has one value byte all the same.
            stLayout.From(std::max(u32DataLength, Size - aucValue))};
}

// Every modulation and coding scheme has one counter in a group.
constexpr std::string_view astrSchemes[] = {
    "CCQpsk12Rate1",  "CCQpsk12Rate2",  "CCQpsk12Rate4",  "CCQpsk12Rate6",  "CCQpsk34",
    "CC16Qam12",      "CC16Qam34",      "CC64Qam12",      "CC64Qam23",      "CC64Qam34",
    "CTCQpsk12Rate1", "CTCQpsk12Rate2", "CTCQpsk12Rate4", "CTCQpsk12Rate6", "CTCQpsk34",
    "CTC16Qam12",     "CTC16Qam34",     "CTC64Qam12",     "CTC64Qam23",     "CTC64Qam34",
    "CTC64Qam56",
};
static_assert(std::size(astrSchemes) == MIBCounterGroup::Count);

constexpr std::string_view strBurstsReceived = "TvlBasebandBurstRcv";
constexpr std::string_view strPdusReceived = "TvlBasebandPduRcv";
constexpr std::string_view strPdusSent = "TvlBasebandPduTx";
constexpr std::string_view strBurstsSent = "TvlBasebandBurstsTx";

// A counter group of a zone: its heading, the first part of its counters'
// names, and where it begins.
struct CounterGroup {
    std::string_view strHeading;
    std::string_view strPrefix;
    uint32_t u32Offset;
};

constexpr CounterGroup astBurstGroups[] = {
    {"\n\n~~~~~~~~~~MIMO MAT A ~~~~~~~~~~~\n", strBurstsReceived, MIBBurstZone::stMatrixA},
    {"\n\n~~~~~~~~~~MIMO MAT B ~~~~~~~~~~~\n", strBurstsReceived, MIBBurstZone::stMatrixB},
    {"\n\n~~~~~~~~~~NON MIMO ~~~~~~~~~~~\n", strBurstsReceived, MIBBurstZone::stNonMIMO},
};

constexpr ReportRow astDLZoneRows[] = {
    {"ECINR Rate   : [%d]\n", MIBDLZone::s8ECINRRate},
    {"PCINR Rate 1 : [%d]\n", MIBDLZone::s8PCINRRate1},
    {"PCINR Rate 2 : [%d]\n", MIBDLZone::s8PCINRRate2},
    {"Last Frame Number ECINR : [%d]\n", MIBDLZone::s32ECINRFrame},
    {"Last Frame Number PCINR : [%d]\n", MIBDLZone::s32PCINRFrame},
    {"Zone last Frame Number : [%u]\n", MIBDLZone::u32FrameNumber},
};

constexpr CounterGroup astDLGroups[] = {
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved MIMO MAT A Info ~~~~~~~~~~~\n", strPdusReceived,
     MIBDLZone::stPdusMatrixA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved MIMO MAT B info~~~~~~~~~~~\n", strPdusReceived,
     MIBDLZone::stPdusMatrixB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Recieved NON MIMO info~~~~~~~~~~~\n", strPdusReceived,
     MIBDLZone::stPdusNonMIMO},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved MIMO MAT A Info ~~~~~~~~~~~\n",
     strBurstsReceived, MIBDLZone::stBurstsMatrixA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved MIMO MAT B info~~~~~~~~~~~\n",
     strBurstsReceived, MIBDLZone::stBurstsMatrixB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Recieved NON MIMO info~~~~~~~~~~~\n", strBurstsReceived,
     MIBDLZone::stBurstsNonMIMO},
};

constexpr CounterGroup astULGroups[] = {
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted CSM PILOT A Info ~~~~~~~~~~~\n", strPdusSent,
     MIBULZone::stPdusPilotA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted CSM PILOT B Info ~~~~~~~~~~~\n", strPdusSent,
     MIBULZone::stPdusPilotB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Pdus Transmitted NON CSM Info ~~~~~~~~~~~\n", strPdusSent,
     MIBULZone::stPdusNonCSM},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent CSM PILOTA Info ~~~~~~~~~~~\n", strBurstsSent,
     MIBULZone::stBurstsPilotA},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent CSM PILOTB Info ~~~~~~~~~~~\n", strBurstsSent,
     MIBULZone::stBurstsPilotB},
    {"\n\n~~~~~~~~~~Per Zone Per MCS Bursts Sent NON CSM Info ~~~~~~~~~~~\n", strBurstsSent,
     MIBULZone::stBurstsNonCSM},
};

void PutCounterGroups(ByteView stZone, std::span<const CounterGroup> astGroups) {
    using namespace MIBCounterGroup;
    static constexpr TextWith<1> stCounter = ": [%d]\n";
    for (const CounterGroup &stGroup : astGroups) {
        PutText(stGroup.strHeading);
        for (uint32_t i = 0; i < Count; ++i) {
            PutText(stGroup.strPrefix);
            PutText(astrSchemes[i]);
            PutNumber(stCounter,
                      Get(stZone, s32First, stGroup.u32Offset + i * WidthOf(s32First.eType)));
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
    PutRow(stLayout, {"Frame number for UL: [%d]\n", MIBULZone::u32FrameNumber}, astULZones);
    for (uint32_t i = 0; i < NumDLZones; ++i) {
        const ByteView stZone = stLayout.From(astDLZones + i * MIBDLZone::Size, MIBDLZone::Size);
        PutRow(stLayout, {"\nMajor Group indicator : [%d]\n", u32MajorGroup});
        PutNumber("DL Zone [%d] Information :\n\n", i);
        PutRows(stZone, astDLZoneRows);
        PutCounterGroups(stZone, astDLGroups);
        WaitForKey();
    }
    for (uint32_t i = 0; i < NumULZones; ++i) {
        const ByteView stZone = stLayout.From(astULZones + i * MIBULZone::Size, MIBULZone::Size);
        PutNumber("UL Zone [%d] Information :\n\n", i);
        PutRow(stZone, {"Zone last Frame Number : [%u]\n", MIBULZone::u32FrameNumber});
        PutCounterGroups(stZone, astULGroups);
        WaitForKey();
    }
}

void PutActiveSFIDs(const MIBAnswer &stAnswer) {
    using namespace MIBActiveSFIDs;
    static constexpr ReportRow stSFID = {"\n    SFID   : %d", u32SFID};
    PutText("\nList of active SFIDs :");
    const uint32_t u32Count = RecordsPresent(stAnswer.stLayout, astEntries, EntrySize,
                                             Get(stAnswer.stLayout, MIBActiveSFIDs::u32Count));
    for (uint32_t i = 0; i < u32Count; ++i) {
        const ByteView stEntry = stAnswer.stLayout.From(astEntries + i * EntrySize, EntrySize);
        PutRow(stEntry, stSFID);
        AddSFID(Get(stEntry, u32SFID));
    }
}

void PutMRUTable(const MIBAnswer &stAnswer) {
    using namespace MIBMRUEntry;
    static constexpr TextWith<3> stFrequency = "\n Freq %d of Index [%d] - [%d]\n";
    const uint32_t u32Count = stAnswer.u32DataLength / Size;
    PutNumber("\n\n Total MRU Entries : [%d]\n", u32Count);
    for (uint32_t i = 0; i < RecordsPresent(stAnswer.stLayout, 0, Size, u32Count); ++i) {
        const ByteView stEntry = stAnswer.stLayout.From(i * Size, Size);
        const uint32_t u32Index = Get(stEntry, MIBMRUEntry::u32Index);
        PutNumber("\n MRU Index : [%d]\n", u32Index);
        for (uint32_t k = 0; k < NumFrequencies; ++k) {
            const uint32_t au32Frequency[] = {
                k, u32Index, Get(stEntry, au32Frequencies, k * WidthOf(au32Frequencies.eType))};
            PutNumbers(stFrequency, au32Frequency);
        }
        const uint32_t au32Bandwidth[] = {u32Index, Get(stEntry, u32Bandwidth)};
        PutNumbers("\n Bandwidth of Index [%d] - [%d] MHz\n", au32Bandwidth);
    }
}

// The entries of a neighbour list, each with its number.
template <void (*pfnPutEntry)(ByteView stEntry)>
void PutNeighbours(const MIBAnswer &stAnswer, uint32_t u32EntrySize, const ReportRow &stCount,
                   const TextWith<1> &stEntry) {
    using namespace MIBNeighbourList;
    PutRow(stAnswer.stLayout, stCount);
    const uint32_t u32Count = RecordsPresent(stAnswer.stLayout, astEntries, u32EntrySize,
                                             Get(stAnswer.stLayout, MIBNeighbourList::u32Count));
    for (uint32_t i = 0; i < u32Count; ++i) {
        PutNumber(stEntry, i);
        pfnPutEntry(stAnswer.stLayout.From(astEntries + i * u32EntrySize, u32EntrySize));
    }
}

void PutNeighbour(ByteView stEntry) {
    using namespace MIBNeighbour;
    static constexpr ReportRow astChannelRows[] = {
        {"    Preamble         : %d\n", u32Preamble},
        {"    ChannelBandwidth : %d Mhz\n", u32ChannelBandwidth, 1000000},
        {"    Centerfreq       : %d MHz\n", u32CenterFrequency, 8},
    };
    static constexpr ReportRow astSignalRows[] = {
        {"    RSSI             : %d dBm\n", s32RSSI, 4},
        {"    CINR             : %d dB\n", u32CINR},
    };
    static constexpr TextWith<6> stBSID = "    Bsid             : %02x %02x %02x %02x %02x %02x\n";
    uint32_t au32BSID[BSIDSize];
    for (uint32_t i = 0; i < BSIDSize; ++i) {
        au32BSID[i] = Get(stEntry, aucBSID, BSIDSize - 1 - i);
    }
    PutRows(stEntry, astChannelRows);
    PutNumbers(stBSID, au32BSID);
    PutRows(stEntry, astSignalRows);
}

void PutMeasuredNeighbour(ByteView stEntry) {
    using namespace MIBMeasuredNeighbour;
    static constexpr ReportRow astRows[] = {
        {"\tFrequency (MHz) : %f\n", u32Frequency, 8},
        {"\tPreambleId      : %d\n", u32PreambleID},
        {"\tBandwidth (MHz) : %f\n", u32Bandwidth, 1000000},
        {"\tBSId            : %02x %02x %02x %02x %02x %02x\n", aucBSID},
        {"\tRSSI (dBm)      : %f\n", u32RSSI, 65536},
        {"\tR1CINR          : %f\n", u32R1CINR, 65536},
        {"\tR3CINR          : %f\n", u32R3CINR, 65536},
        {"\tToF             : %f\n", u32ToF, 16},
        {"\tRTD             : %d\n", u32RTD},
        {"\tMeasDur         : %d\n", u32MeasDur},
        {"\tFlags(Hex)      : %x\n", u32Flags},
    };
    PutRows(stEntry, astRows);
}

void PutIntegerNeighbours(const MIBAnswer &stAnswer) {
    PutNeighbours<PutNeighbour>(stAnswer, MIBNeighbour::Size,
                                {"Number of Neighbours %d\n", MIBNeighbourList::u32Count},
                                "~~~~~~ Neighbour %d ~~~~~~~~ \n");
}

void PutMeasuredNeighbours(const MIBAnswer &stAnswer) {
    PutNeighbours<PutMeasuredNeighbour>(stAnswer, MIBMeasuredNeighbour::Size,
                                        {"\nNumber of Neighbours %d\n", MIBNeighbourList::u32Count},
                                        "\n~~~~~~~ Neighbour %d ~~~~~~~ \n");
}

void PutTriggerStatus(const MIBAnswer &stAnswer) {
    using namespace MIBTriggerStatus;
    struct Trigger {
        std::string_view strText;
        Field stStatus;
    };
    static constexpr Trigger astTriggers[] = {
        {"Trigger Status for Serving BS \t : ", u8ServingBS},
        {"Trigger Status for IntraFA Group : ", u8IntraFA},
        {"Trigger Status for InterFA Group : ", u8InterFA},
    };
    constexpr std::string_view strNotDefined = "TRIGGER_STATUS_NOT_DEFINED";
    constexpr CodeName astNames[] = {
        {Failed, "TRIGGER_STATUS_FAILED"},
        {Passed, "TRIGGER_STATUS_PASSED"},
        {NoMeasurements, "TRIGGER_STATUS_NO_MEASUREMENTS"},
        {NotDefined, strNotDefined},
    };
    constexpr const char *pcBanner = "\n\n~~~~~~~~~~ Trigger Status Information ~~~~~~~~~~";
    PutLine(pcBanner);
    for (const Trigger &stTrigger : astTriggers) {
        PutText(stTrigger.strText);
        PutLine(NameOf(astNames, Get(stAnswer.stLayout, stTrigger.stStatus), strNotDefined));
    }
    PutClosingLine(pcBanner);
}

void PutControlMessagesDropped(const MIBAnswer &stAnswer) {
    using namespace MIBControlMessagesDropped;
    static constexpr TextWith<1> astTexts[] = {
        "cm_responses                            : %d\n",
        "cm_control_newdsx_multiclassifier_resp  : %d\n",
        "link_control_resp                       : %d\n",
        "status_rsp                              : %d\n",
        "stats_pointer_resp                      : %d\n",
        "idle_mode_status                        : %d\n",
        "auth_ss_host_msg                        : %d\n",
        "low_priority_message                    : %d\n",
    };
    static_assert(std::size(astTexts) == Count);
    constexpr const char *pcBanner =
        "\n\n~~~~~~~~~~ Control Messages Dropped By Application ~~~~~~~~~~";
    PutLine(pcBanner);
    for (uint32_t i = 0; i < Count; ++i) {
        PutNumber(astTexts[i], Get(stAnswer.stLayout, s32First, i * WidthOf(s32First.eType)));
    }
    PutClosingLine(pcBanner);
}

constexpr ReportRow astNetworkEntryTimingRows[] = {
    {"\n\n~~~~~~~~~~Network entry timing statistics START~~~~~~~~~~~\n"},
    {"u32AuthPhaseTime: [%d]\n", MIBNetworkEntryTiming::u32AuthPhaseTime},
    {"u32PhySyncTime: [%d]\n", MIBNetworkEntryTiming::u32PhySyncTime},
    {"u32MacSyncTime: [%d]\n", MIBNetworkEntryTiming::u32MacSyncTime},
    {"u32NwEntryTime: [%d]\n", MIBNetworkEntryTiming::u32NwEntryTime},
    {"u32NwSearchTime: [%d]\n", MIBNetworkEntryTiming::u32NwSearchTime},
    {"u32ProvSfTime: [%d]\n", MIBNetworkEntryTiming::u32ProvSfTime},
    {"u32RangingTime: [%d]\n", MIBNetworkEntryTiming::u32RangingTime},
    {"u32RegNegTime: [%d]\n", MIBNetworkEntryTiming::u32RegNegTime},
    {"u32SbcTime: [%d]\n", MIBNetworkEntryTiming::u32SbcTime},
    {"\n\n~~~~~~~~~~Network entry timing statistics END ~~~~~~~~~~~\n"},
};

constexpr ReportRow astAntennaSwitchRows[] = {
    {"\n\t~~~~~ TX Antenna Switch Information ~~~~~\n"},
    {"\tFiltering Coefficient for Antenna1(Q23.9 format) : %f\n", MIBAntennaSwitch::u32Filtering1,
     512},
    {"\tFiltering Coefficient for Antenna2(Q23.9 format) : %f\n", MIBAntennaSwitch::u32Filtering2,
     512},
    {"\tSwitching margin for Antenna1                    : %d\n", MIBAntennaSwitch::u32Margin1},
    {"\tSwitching margin for Antenna2                    : %d\n", MIBAntennaSwitch::u32Margin2},
    {"\tSmooth RSSI for Antenna1(Q1.27.4 format)         : %f\n", MIBAntennaSwitch::s32SmoothRSSI1,
     16},
    {"\tSmooth RSSI for Antenna2(Q1.27.4 format)         : %f\n", MIBAntennaSwitch::s32SmoothRSSI2,
     16},
    {"\tAntenna Selection mode                           : %d\n",
     MIBAntennaSwitch::u32SelectionMode},
    {"\tCurrent TX Antenna                               : %d\n",
     MIBAntennaSwitch::u32CurrentAntenna},
};

// The minus sign stands before every value, a negative one too.
constexpr ReportRow astNegatedRows[] = {{" UINT eq : -%d", {0, FieldType::I32}}};

template <const auto &astRows> void PutRowsOf(const MIBAnswer &stAnswer) {
    PutRows(stAnswer.stLayout, astRows);
}

constexpr TextWith<2> stBurstErrorRate = "\nDlPerRxBurstErrorRateUpper[%d]\t:\t%d\n";
constexpr TextWith<2> stPerAttemptReceived = "\nPerAttemptRcvSuccess[%d]\t:\t%d\n";
constexpr TextWith<2> stSubmapErrors = "\nSubmap Errors[%d]\t:\t%d\n";
constexpr TextWith<2> stPerAttemptCompleted = "\nPerAttemptrcvTranscompleted[%d]\t:\t%d\n";
constexpr TextWith<2> stSoundingType = "\nTxAAsoundingtype[%d]\t:\t%d\n";

template <const TextWith<2> &stText> void PutFourCounters(const MIBAnswer &stAnswer) {
    using namespace MIBFourCounters;
    for (uint32_t i = 0; i < Count; ++i) {
        const uint32_t au32Values[] = {
            i, Get(stAnswer.stLayout, s32First, i * WidthOf(s32First.eType))};
        PutNumbers(stText, au32Values);
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
    {MIBAttribute::BurstErrorRate, PutFourCounters<stBurstErrorRate>},
    {MIBAttribute::PerAttemptReceived, PutFourCounters<stPerAttemptReceived>},
    {MIBAttribute::SubmapErrors, PutFourCounters<stSubmapErrors>},
    {MIBAttribute::PerAttemptCompleted, PutFourCounters<stPerAttemptCompleted>},
    {MIBAttribute::SoundingType, PutFourCounters<stSoundingType>},
    {MIBAttribute::ControlMessagesDropped, PutControlMessagesDropped},
};

const AttributeReport *ReportOf(uint32_t u32AttributeID) {
    const AttributeReport *pstFound = std::find_if(
        std::begin(astReports), std::end(astReports),
        [&](const AttributeReport &stReport) { return stReport.u32AttributeID == u32AttributeID; });
    return pstFound != std::end(astReports) ? pstFound : nullptr;
}

void PutMIBValue(const MIBAnswer &stAnswer) {
    constexpr Field stWord{0, FieldType::I32};
    static constexpr ReportRow stWordRow = {" UINT eq : %d", stWord};
    PutEachByte(" 0x%02x", stAnswer.stValue);
    if (stAnswer.u32DataLength == WidthOf(stWord.eType)) {
        PutRow(stAnswer.stValue, stWordRow);
    }
    PutText("\n");
}

void PutOID(const MIBAnswer &stAnswer) {
    static constexpr TextWith<1> stOID = "\n MIB OID - %d : ";
    PutNumber(stOID, stAnswer.u32AttributeID);
}

// A status other than success, of a single get or set.
void PutSingleError(const MIBAnswer &stAnswer) {
    PutNumber(" Error Code while MIB Set: (%d) \n", stAnswer.u32Status);
}

void PutMultipleError(const MIBAnswer &stAnswer) {
    PutNumber("Error Code - (%d) \n", stAnswer.u32Status);
}

void PutSetAnswer(const MIBAnswer &stAnswer) {
    PutText(pcGetHeading);
    if (stAnswer.u32Status != 0) {
        PutSingleError(stAnswer);
    } else {
        PutText("\nMIB Set is Successful !!!");
    }
}

// Returns true when the attribute had a report of its own.
bool PutGetAnswer(const MIBAnswer &stAnswer) {
    PutText(pcGetHeading);
    PutOID(stAnswer);
    if (stAnswer.u32Status != 0) {
        PutSingleError(stAnswer);
        return false;
    }
    const AttributeReport *pstReport = ReportOf(stAnswer.u32AttributeID);
    if (pstReport == nullptr) {
        PutMIBValue(stAnswer);
        return false;
    }
    pstReport->pfnPut(stAnswer);
    return true;
}

void PutMultipleSetRecord(const MIBAnswer &stAnswer) {
    if (stAnswer.u32Status != 0) {
        PutOID(stAnswer);
        PutMultipleError(stAnswer);
    }
}

void PutMultipleGetRecord(const MIBAnswer &stAnswer) {
    PutOID(stAnswer);
    if (stAnswer.u32Status != 0) {
        PutText(" ");
        PutMultipleError(stAnswer);
    } else {
        PutMIBValue(stAnswer);
    }
}

// The records of a multiple answer, as many as were announced and have at
// least their status in the payload.
void PutRecords(ByteView stPayload, void (*pfnPut)(const MIBAnswer &stAnswer)) {
    const uint32_t u32Count = Get(stPayload, MIBRecordList::u16Count);
    ByteView stRest = stPayload.From(MIBRecordList::astRecords);
    for (uint32_t i = 0; i < u32Count && stRest.u32Length >= MIBRecord::aucValue; ++i) {
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
    PutLine(pcMIBClosingRule);
    return 1;
}
