#include "Statistics.h"

#include <iterator>
#include <span>

#include "Console.h"
#include "Input.h"
#include "LinkRecords.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"
#include "StationRecords.h"

namespace {

constexpr const char *apcStatisticsMenuLines[] = {"\n 1. BASEBAND STATISTICS REQUEST"};

constexpr Menu stStatisticsMenu = {"\n******** STATISTICS MENU ********", apcStatisticsMenuLines,
                                   "\n\n*********************************"};

constexpr const char *apcIntervalLines[] = {
    "\nENTER THE INTERVAL FOR PERIODIC REQUEST (IN MILLI SECONDS).",
    "\nENTER ZERO TO STOP CURRENT PERIODIC REQUEST ",
    "\nOR TO REQUEST BASEBAND STATISTICS ONLY ONCE. ",
};

constexpr const char *apcResetLines[] = {
    "\n 1. DISABLE STATISTICS RESET ON RE-SYNCH",
    "\n 2. ENABLE STATISTICS RESET ON RE-SYCH",
};

constexpr Menu stResetMenu = {"\n*********** STATISTICS RESET CONTROL REQUEST ***********",
                              apcResetLines,
                              "\n\n******************************************************"};

// The policy behind each line of the menu.
constexpr uint32_t au32Policies[] = {StatisticsReset::Disable, StatisticsReset::Enable};
static_assert(std::size(au32Policies) == std::size(apcResetLines));

constexpr CodeName astResetStatus[] = {
    {StatisticsReset::Failed, "\nFAILED TO APPLY RESET CONTROL POLICY!"},
    {StatisticsReset::Applied, "\nSUCCESSFULLY APPLIED RESET CONTROL POLICY!"},
};

constexpr ReportRow astHeadRows[] = {
    {"\nNum frames recvd\t: %d", Statistics::u32FramesReceived},
    {"\nSize of Stats Struct\t: %d", Statistics::u32RecordSize},
    {"\nCenterFrequency in KHz \t: %d", Statistics::u32CenterFrequency},
};

// A row that shows one number twice: decimal and hexadecimal.
struct TwiceRow {
    TextWith<2> stText;
    Field stField;
};

constexpr TwiceRow astCounterRows[] = {
    {"\nCUR CINR\t\t: %d (0x%x)", Statistics::u32CINR},
    {"\nCUR RSSI\t\t: %d (0x%x)", Statistics::u32RSSI},
    {"\nNum Of CqichTxmtd\t: %d (0x%x)", Statistics::u32CQICHTransmitted},
    {"\nNum Of CRC Errors\t: %d (0x%x)", Statistics::u32CRCErrors},
    {"\nFrames in Error\t\t: %d (0x%x)", Statistics::u32FramesInError},
    {"\nNum Of Hcs Errors\t: %d (0x%x)", Statistics::u32HCSErrors},
};

constexpr TwiceRow astRadioRows[] = {
    {"\nDownlink burst data FEC\t: %d (0x%x)", Statistics::u8BurstFEC},
    {"\nTx Power\t\t: %d (0x%x)", Statistics::s8TxPower},
};

constexpr ReportRow astConnectionRows[] = {
    {"\nBaseID\t\t\t: %02x %02x %02x %02x %02x %02x", Statistics::aucBSID},
    {"\nNumber of BRTH \t:0x%x", Statistics::u32BandwidthRequests},
    {"\nNumber of Connections \t:%d", Statistics::s32NumConnections},
};

void PutRowsTwice(ByteView stView, std::span<const TwiceRow> astRows) {
    for (const TwiceRow &stRow : astRows) {
        const uint32_t u32Value = Get(stView, stRow.stField);
        const uint32_t au32Twice[] = {u32Value, u32Value};
        PutNumbers(stRow.stText, au32Twice);
    }
}

// In single precision, and without more of it on any host: hence volatile.
float FrameErrorRate(uint32_t u32InError, uint32_t u32Received) {
    const volatile auto fInError = static_cast<float>(u32InError);
    const volatile auto fReceived = static_cast<float>(u32Received);
    const volatile float fRate = fInError / fReceived;
    return fRate;
}

void PutStatistics(ByteView stPayload) {
    using namespace Statistics;
    PutLine("\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~");
    PutRows(stPayload, astHeadRows);
    PutRowsTwice(stPayload, astCounterRows);
    const uint32_t u32Received = Get(stPayload, u32FramesReceived);
    if (u32Received != 0) {
        const float fRate = FrameErrorRate(Get(stPayload, u32FramesInError), u32Received);
        PutText("\n\nFrame Error Rate\t: ");
        PutReal(static_cast<double>(fRate));
    }
    PutRowsTwice(stPayload, astRadioRows);
    PutRows(stPayload, astConnectionRows);
    const uint32_t u32Connections =
        RecordsPresent(stPayload, au32TransportCIDs.u16Offset, WidthOf(au32TransportCIDs.eType),
                       GetSigned(stPayload, s32NumConnections));
    PutElements("\nTransport CID \t:0x%x", stPayload, au32TransportCIDs, u32Connections);
    PutLine("\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
}

} // namespace

uint32_t GetStatisticsRequest() {
    if (AskMenu(stStatisticsMenu) != 1) {
        return 1;
    }
    PutTexts(apcIntervalLines);
    Record<StatusWord::Size> stRequest;
    Put(stRequest.Span(), StatusWord::u32Value, AskUnsigned("\nPRIOD VALUE : "));
    SendRequest(TYPE_STATISTICS, SUBTYPE_STATISTICS, stRequest.View());
    return 0;
}

int32_t StatisticsResetControlRequest() {
    const int32_t iChoice = AskMenu(stResetMenu);
    if (iChoice < 1 || iChoice > std::ssize(au32Policies)) {
        PutText("\nSORRY!! INVALID OPTION SELECTED!!");
        return -1;
    }
    Record<StatusWord::Size> stRequest;
    Put(stRequest.Span(), StatusWord::u32Value, au32Policies[iChoice - 1]);
    return SendRequest(TYPE_STATISTICS, SUBTYPE_STATISTICS_RESET_CONTROL, stRequest.View());
}

uint32_t StatisticsResetControlResponse(uint32_t u32Status) {
    PutLine("\n~~~~~~ STATISTICS RESET CONTROL RESPONSE ~~~~~~");
    PutText(NameOf(astResetStatus, u32Status, "\nUKNOWN STATUS RETURNED FROM THE LIBRARY!!"));
    PutLine("\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 1;
}

uint32_t GetStatisticsResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_STATISTICS:
        PutStatistics(stReceived.stPayload);
        return 1;
    case SUBTYPE_STATISTICS_RESET_CONTROL:
        return StatisticsResetControlResponse(Get(stReceived.stPayload, StatusWord::u32Value));
    default:
        PutText("\nINVALID STATISTICS RESPONSE MESSAGE SUB-TYPE");
        return 0;
    }
}
