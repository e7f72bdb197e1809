#include "Logging.h"

#include <string_view>

#include "Console.h"
#include "DiagnosticRecords.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

constexpr const char *pcLoggingMenuClosing = "\n\n********************************************";

constexpr const char *apcMACLines[] = {"\n 1. ENABLE MAC LOGGING ", "\n 2. DISABLE MAC LOGGING "};
constexpr const char *apcPHYLines[] = {"\n 1. ENABLE PHY LOGGING ", "\n 2. DISABLE PHY LOGGING "};

constexpr Menu stMACMenu = {"\n\n*********** MAC LOGGING CONTROL ***********", apcMACLines,
                            pcLoggingMenuClosing};
constexpr Menu stPHYMenu = {"\n\n*********** PHY LOGGING CONTROL ***********", apcPHYLines,
                            pcLoggingMenuClosing};

uint32_t ControlLogging(const Menu &stMenu, uint32_t u32Type, const char *pcFailure) {
    const int32_t iChoice = AskMenu(stMenu);
    if (iChoice != 1 && iChoice != 2) {
        PutLine("\nSORRY! INVALID OPTION SELECTED!");
        return 0;
    }
    if (SendRequest(u32Type, iChoice == 1 ? SUBTYPE_LOGGING_ENABLE : SUBTYPE_LOGGING_DISABLE) !=
        0) {
        PutText(pcFailure);
        return 0;
    }
    return 1;
}

void PutLogData(const WiMAXMessage *pstMessage, uint32_t u32Size) {
    if (pstMessage == nullptr) {
        return;
    }
    PutEachByte(" 0x%02x", View(pstMessage).stPayload.From(0, u32Size));
    PutText("\n");
}

// How one kind of log is printed.
struct LogForm {
    std::string_view strUnderline;
    uint32_t u32EntrySize;
    void (*pfnPutEntry)(ByteView stEntry);
};

bool IsEmpty(ByteView stData, uint16_t u16Length) {
    if (stData.pucData != nullptr && u16Length != 0) {
        return false;
    }
    PutLine("\nEMPTY LOG DATA");
    return true;
}

void PutLog(const LogForm &stForm, std::string_view strHeading, ByteView stData,
            uint16_t u16Length) {
    PutText(strHeading);
    PutLine(stForm.strUnderline);
    const int32_t iAnnounced =
        static_cast<int16_t>(u16Length) / static_cast<int32_t>(stForm.u32EntrySize);
    const uint32_t u32Entries = RecordsPresent(stData, 0, stForm.u32EntrySize, iAnnounced);
    for (uint32_t i = 0; i < u32Entries; ++i) {
        stForm.pfnPutEntry(stData.From(i * stForm.u32EntrySize, stForm.u32EntrySize));
    }
}

constexpr CodeName astRangingHeadings[] = {
    {SUBTYPE_LOG_INITIAL_RANGING, "\nINITIAL RANGING LOG"},
    {SUBTYPE_LOG_BW_RANGING, "\nBW RANGING LOG"},
    {SUBTYPE_LOG_PERIODIC_RANGING, "\nPERIODIC RANGING LOG"},
};

constexpr ReportRow astRangingRows[] = {
    {"\nCODE : 0x%X", RangingLogEntry::u32Code},
    {"\nFRAME NUMBER : 0x%X", RangingLogEntry::u32FrameNumber},
    {"\nSUB-CHANNEL : 0x%X", RangingLogEntry::u32SubChannel},
    {"\nSYMBOL : 0x%X\n", RangingLogEntry::u32Symbol},
};

constexpr LogForm stRangingForm = {"\n*******************", RangingLogEntry::Size,
                                   [](ByteView stEntry) { PutRows(stEntry, astRangingRows); }};

constexpr CodeName astPowerHeadings[] = {
    {SUBTYPE_LOG_CLOSED_LOOP_POWER, "\nCLOSED LOOP POWER ADJDUSTMENT LOG"},
    {SUBTYPE_LOG_OPEN_LOOP_POWER, "\nOPEN LOOP POWER ADJDUSTMENT LOG"},
};

constexpr ReportRow astPowerRows[] = {
    {"\nFRAME OFFSET : %d", PowerLogEntry::u32FrameOffset},
    {"\nFRAME NUMBER : %d", PowerLogEntry::u32FrameNumber},
    {"\nPOWER : %d\n", PowerLogEntry::u32Power},
};

void PutPowerEntry(ByteView stEntry) {
    const auto fQuarters = static_cast<float>(GetSigned(stEntry, PowerLogEntry::s32Adjustment));
    PutText("\nPOWER ADJUSTMENT : ");
    PutReal(static_cast<double>(fQuarters) / 4.0);
    PutText(" dBm");
    PutRows(stEntry, astPowerRows);
}

constexpr LogForm stPowerForm = {"\n*********************************", PowerLogEntry::Size,
                                 PutPowerEntry};

constexpr std::string_view strShortUnderline = "\n************";

constexpr ReportRow astBandwidthRows[] = {
    {"\nALLOCATION RECEIVED : %d", BandwidthLogEntry::u16AllocationReceived},
    {"\nPDU LENGTH : %d", BandwidthLogEntry::u16PDULength},
    {"\nCID : %d", BandwidthLogEntry::u16CID},
    {"\nVCID : %d", BandwidthLogEntry::u16VCID},
    {"\nSCH TYPE : %d", BandwidthLogEntry::u8SchedulingType},
    {"\nBW REQ : %d", BandwidthLogEntry::u8BandwidthRequest},
    {"\nQUEUE DEPTH : %d", BandwidthLogEntry::u16QueueDepth},
    {"\nFRAME NUMBER : %d\n", BandwidthLogEntry::u32FrameNumber},
};

void PutBandwidthEntry(ByteView stEntry) {
    using namespace BandwidthLogEntry;
    if (Get(stEntry, u16CID) == PaddingCID && Get(stEntry, u16VCID) == PaddingVCID) {
        PutText("\nPadding packet\n-----------------");
    }
    PutRows(stEntry, astBandwidthRows);
}

constexpr LogForm stBandwidthForm = {strShortUnderline, BandwidthLogEntry::Size, PutBandwidthEntry};

constexpr ReportRow astCIDRows[] = {
    {"\nCID : %d", CIDLogEntry::u16CID},
    {"\nVCID : %d", CIDLogEntry::u16VCID},
    {"\nDIR : %d", CIDLogEntry::u16Direction},
    {"\nARQ : %d\n", CIDLogEntry::u16ARQ},
};

constexpr LogForm stCIDForm = {strShortUnderline, CIDLogEntry::Size,
                               [](ByteView stEntry) { PutRows(stEntry, astCIDRows); }};

constexpr ReportRow stCQICHRow = {"\nCQICH : %d\n", CQICHLogEntry::u32Value};

constexpr LogForm stCQICHForm = {strShortUnderline, CQICHLogEntry::Size,
                                 [](ByteView stEntry) { PutRow(stEntry, stCQICHRow); }};

// A log whose heading depends on the kind.
void PutLogOfKind(const LogForm &stForm, std::string_view strHeading, std::string_view strUnknown,
                  ByteView stData, uint16_t u16Length) {
    if (IsEmpty(stData, u16Length)) {
        return;
    }
    if (strHeading.empty()) {
        PutLine(strUnknown);
        return;
    }
    PutLog(stForm, strHeading, stData, u16Length);
}

void PutLogger(uint32_t u32Kind, ByteView stData, uint16_t u16Length) {
    switch (u32Kind) {
    case SUBTYPE_LOG_INITIAL_RANGING:
    case SUBTYPE_LOG_BW_RANGING:
    case SUBTYPE_LOG_PERIODIC_RANGING:
        DisplayRangeLog(u32Kind, stData, u16Length);
        break;
    case SUBTYPE_LOG_BANDWIDTH:
        DisplayBWLLog(stData, u16Length);
        break;
    case SUBTYPE_LOG_CLOSED_LOOP_POWER:
    case SUBTYPE_LOG_OPEN_LOOP_POWER:
        DisplayPowerAdjLog(u32Kind, stData, u16Length);
        break;
    case SUBTYPE_LOG_CID:
        DisplayCIDLog(stData, u16Length);
        break;
    case SUBTYPE_LOG_CQICH:
        DisplayCQICHLog(stData, u16Length);
        break;
    default:
        break;
    }
}

} // namespace

uint32_t ControlMACLogging() {
    return ControlLogging(stMACMenu, TYPE_MAC_LOGGING,
                          "\nFailed to send the IDLE MODE REQUEST Message to device!!");
}

uint32_t ControlPHYLogging() {
    return ControlLogging(stPHYMenu, TYPE_PHY_LOGGING,
                          "\nFailed to send the PHY LOG REQUEST Message to device!!");
}

uint32_t ProcessMACLOggingInfo(const WiMAXMessage *pstMessage) {
    PutLogData(pstMessage, u32MACLogSize);
    return 0;
}

uint32_t ProcessPHYLOggingInfo(const WiMAXMessage *pstMessage) {
    PutLogData(pstMessage, u32PHYLogSize);
    return 0;
}

uint32_t LogIndication(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    if (stReceived.u32Type != TYPE_START_LOGGER) {
        PutLine("\nINVALID MESSAGE TYPE!");
        return 0;
    }
    PutLine("\n~~~~~~ LOGGER INDICATION RECEIVED ~~~~~~");
    PutLogger(stReceived.u32SubType, stReceived.stPayload.From(LogRecord::aucData),
              static_cast<uint16_t>(Get(stReceived.stPayload, LogRecord::s16Length)));
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 1;
}

void DisplayRangeLog(uint32_t u32Kind, ByteView stData, uint16_t u16Length) {
    PutLogOfKind(stRangingForm, NameOf(astRangingHeadings, u32Kind, ""),
                 "\nUNKNOWN RANGING LOG TYPE!!", stData, u16Length);
}

void DisplayPowerAdjLog(uint32_t u32Kind, ByteView stData, uint16_t u16Length) {
    PutLogOfKind(stPowerForm, NameOf(astPowerHeadings, u32Kind, ""),
                 "\nUNKNOWN POWER ADJ LOG TYPE!!", stData, u16Length);
}

void DisplayBWLLog(ByteView stData, uint16_t u16Length) {
    if (!IsEmpty(stData, u16Length)) {
        PutLog(stBandwidthForm, "\nBW LOG", stData, u16Length);
    }
}

void DisplayCIDLog(ByteView stData, uint16_t u16Length) {
    if (!IsEmpty(stData, u16Length)) {
        PutLog(stCIDForm, "\nCID LOG", stData, u16Length);
    }
}

void DisplayCQICHLog(ByteView stData, uint16_t u16Length) {
    if (!IsEmpty(stData, u16Length)) {
        PutLog(stCQICHForm, "\nCQICH LOG", stData, u16Length);
    }
}

uint32_t DebugDump(std::string_view strTitle, ByteView stData) {
    if (stData.pucData == nullptr || stData.u32Length == 0) {
        return 0;
    }
    PutText("\n================= ");
    PutText(strTitle);
    PutText(" =================\n");
    PutHexLines("\n %08x : ", 0, "%02x ", stData);
    PutLine("\n================================================");
    return 0;
}
