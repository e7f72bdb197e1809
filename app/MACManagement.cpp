#include "MACManagement.h"

#include "Console.h"
#include "DiagnosticRecords.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

const MACMgmtMsg MACMgmtMsgs[u32MACMgmtMsgs] = {
    {0, "Uplink Channel Descriptor"},
    {1, "Downlink Channel Descriptor"},
    {2, "Downlink Access Definition"},
    {3, "Uplink Access Definition"},
    {4, "Ranging Request"},
    {5, "Ranging Response"},
    {6, "Registration Request"},
    {7, "Registration Response"},
    {9, "Privacy Key Management Request"},
    {10, "Privacy Key Management Response"},
    {11, "Dynamic Service Addition Request"},
    {12, "Dynamic Service Addition Response"},
    {13, "Dynamic Service Addition Acknowledge"},
    {14, "Dynamic Service Change Request"},
    {15, "Dynamic Service Change Response"},
    {16, "Dynamic Service Change Acknowledge"},
    {17, "Dynamic Service Deletion Request"},
    {18, "Dynamic Service Deletion Response"},
    {21, "Multicast Assignment Request"},
    {22, "Multicast Assignment Response"},
    {23, "Downlink Burst Profile Change Request"},
    {24, "Downlink Burst Profile Change Response"},
    {25, "Reset Command"},
    {26, "SS Basic Capability Request"},
    {27, "SS Basic Capability Response"},
    {28, "SS network clock comparision"},
    {29, "De/Re-register Command"},
    {30, "DSx Received Message"},
    {31, "Config File TFTP Complete Message"},
    {32, "Config File TFTP Complete Response"},
    {33, "Standalone ARQ Feedback"},
    {34, "ARQ Discard message"},
    {35, "ARQ Reset message"},
    {36, "Channel measurement Report Request"},
    {37, "Channel measurement Report Response"},
    {38, "Fast Power Control"},
    {39, "Mesh Network Configuration"},
    {40, "Mesh Network Entry"},
    {41, "Mesh Distributed Schedule"},
    {42, "Mesh Centralized Schedule"},
    {43, "Mesh Centralized Schedule Configuration"},
    {44, "AAS Feedback Request"},
    {45, "AAS Feedback Response"},
    {46, "AAS Beam Select message"},
    {47, "AAS Beam Request message"},
    {48, "AAS Beam Response message"},
    {49, "SS De-Registration message"},
    {50, "sleep request message"},
    {51, "sleep response message"},
    {52, "traffic indication message"},
    {53, "neighbour advertisement message"},
    {54, "scanning interval allocation request"},
    {55, "scanning interval allocation response"},
    {56, "BS HO request message"},
    {57, "MS HO request message"},
    {58, "BS HO response message"},
    {59, "HO indication message"},
    {60, "Scanning result report message"},
    {61, "BS broadcast paging message"},
    {62, "MBAS MAP message"},
    {63, "Power control mode change request message"},
    {64, "Power control mode change response message"},
    {65, "Setup/Tear-down of long term MIMO precoding"},
    {66, "Association result report message"},
};

namespace {

constexpr char acUnknownMessage[] = "UNKNOWN MAC Management message.";
static_assert(sizeof acUnknownMessage <= iMACMessageNameSize);

constexpr const char *apcMACManagementMenuLines[] = {
    "\n 1. ENABLE MAC MANAGEMENT MSGS",
    "\n 2. DISABLE MAC MANAGEMENT MSGS",
    "\n 3. GET MAC MESSAGES STATUS LOGGING ",
};

constexpr Menu stMACManagementMenu = {"\n******** MAC MANAGEMENT MESSAGE MENU********",
                                      apcMACManagementMenuLines,
                                      "\n\n********************************************"};

// Refused is what lies below the middle entry and above it at once, and that
// is nothing: every choice goes out.
bool IsRefused(int32_t iChoice) {
    constexpr int32_t iMiddle = 2;
    return iChoice < iMiddle && iChoice > iMiddle; // NOLINT(misc-redundant-expression)
}

// A choice that is not in the menu asks for the state, which changes nothing.
uint32_t SubTypeOf(int32_t iChoice) {
    switch (iChoice) {
    case 1:
        return SUBTYPE_MAC_MGMT_ENABLE;
    case 2:
        return SUBTYPE_MAC_MGMT_DISABLE;
    default:
        return SUBTYPE_MAC_MGMT_STATUS;
    }
}

constexpr CodeName astDirections[] = {
    {TraceRecord::BSToMS, "\nMESSAGE DIRECTION : BS to MS"},
    {TraceRecord::MSToBS, "\nMESSAGE DIRECTION : MS to BS"},
};

constexpr ReportRow astTraceTail[] = {
    {"\nCID  :  0x%X", TraceRecord::u32CID},
    {"\nCMAC OK  :  %d", TraceRecord::u8CMACResult},
};

void PutMessageName(uint32_t u32Code) {
    char acName[iMACMessageNameSize];
    GetMACMessageName(u32Code, acName, sizeof acName);
    PutNumber("\nMESSAGE : (CODE : %d) ", u32Code);
    PutText(acName);
    PutText(" ");
}

void PutTraceRecord(ByteView stPayload) {
    using namespace TraceRecord;
    PutLine("\n~~~~~~~~~~MAC MGMT INDICATION ~~~~~~~~~~");
    PutRow(stPayload, {"\nFRAME NUMBER : 0x%X", u32FrameNumber});
    PutText(NameOf(astDirections, Get(stPayload, u8Direction), ""));
    PutMessageName(Get(stPayload, u32Code));
    const int32_t iLength = GetSigned(stPayload, s32BodyLength);
    if (iLength != 0) {
        PutRow(stPayload, {"\nData (%d) bytes :\n", s32BodyLength});
        PutEachByte(" 0x%02x",
                    stPayload.From(aucBody, static_cast<uint32_t>(std::max<int32_t>(iLength, 0))));
        PutText("\n");
    }
    PutRows(stPayload, astTraceTail);
    PutLine("\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
}

void PutTraceState(ByteView stPayload) {
    PutLine("\n~~~~~~~~~~MAC MGMT MESSAGE STATUS TO HOST~~~~~~~~~~");
    PutLine(Get(stPayload, TraceState::u32State) == TraceState::Enabled
                ? "\nMAC MGMT MESSAGES TO HOST IS ENABLED"
                : "\nMAC MGMT MESSAGES TO HOST IS DISABLED");
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
}

} // namespace

uint32_t MACMgmtMessageRequest() {
    const int32_t iChoice = AskMenu(stMACManagementMenu);
    if (IsRefused(iChoice)) {
        PutLine("SORRY!! INCORRECT OPTION!!");
        return 0;
    }
    return static_cast<uint8_t>(SendRequest(TYPE_MAC_MGMT, SubTypeOf(iChoice)));
}

void GetMACMessageName(uint32_t u32Code, char *pcBuffer, int32_t iSize) {
    if (pcBuffer == nullptr || iSize < iMACMessageNameSize) {
        return;
    }
    std::memset(pcBuffer, 0, static_cast<size_t>(iSize));
    for (const MACMgmtMsg &stMsg : MACMgmtMsgs) {
        if (stMsg.u8Code == u32Code) {
            std::memcpy(pcBuffer, stMsg.acName, iMACMessageNameSize);
            return;
        }
    }
    std::memcpy(pcBuffer, acUnknownMessage, sizeof acUnknownMessage);
}

uint32_t MACMgmtMessage(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_MAC_MGMT_TRACE_IND:
        PutTraceRecord(stReceived.stPayload);
        break;
    case SUBTYPE_MAC_MGMT_STATUS:
        PutTraceState(stReceived.stPayload);
        break;
    default:
        break;
    }
    return 0;
}
