#include "IdleMode.h"

#include <string_view>

#include "Console.h"
#include "Input.h"
#include "LinkRecords.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

constexpr const char *apcIdleModeMenuLines[] = {
    "\n 1. IDLE MODE REQUEST",
    "\n 2. IDLE MODE STATUS REQUEST",
    "\n 3. IDLE MODE INACTIVITY TIMER CHANGE REQUEST",
    "\n 4. IDLE MODE WAKE UP REQUEST",
};

constexpr Menu stIdleModeMenu = {"\n\n*********** Idle Mode SubMenu ***********",
                                 apcIdleModeMenuLines, "\n\n************************************"};

constexpr const char *pcIndicationClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";
constexpr const char *pcWakeUpClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

constexpr const char *pcIdleModeFailure =
    "\nFailed to send the IDLE MODE REQUEST Message to device!!";

int32_t SendOrReport(uint32_t u32SubType, const char *pcFailure, ByteView stPayload = {}) {
    if (SendRequest(TYPE_IDLE_MODE, u32SubType, stPayload) != 0) {
        PutText(pcFailure);
    }
    return 0;
}

constexpr ReportRow astIndicationRows[] = {
    {"\n PREAMBLE ID  : %d", IdleIndication::u32PreambleID},
    {"\n CINR MEAN : %d dB", IdleIndication::u32CINRMean},
};

// A report of one word.
uint32_t PutWordReport(const WiMAXMessage *pstMessage, std::string_view strBanner,
                       const ReportRow &stRow) {
    if (pstMessage != nullptr) {
        PutLine(strBanner);
        PutRow(View(pstMessage).stPayload, stRow);
        PutLine(pcIndicationClosing);
    }
    return 0;
}

} // namespace

int32_t SendIdleModeRequest() { return SendOrReport(SUBTYPE_IDLE_MODE, pcIdleModeFailure); }

int32_t SendIdleModeStatusRequest() {
    return SendOrReport(SUBTYPE_IDLE_MODE_STATUS, pcIdleModeFailure);
}

int32_t SendIdleModeInactivityTimerRequest() {
    Record<StatusWord::Size> stTimer;
    Put(stTimer.Span(), StatusWord::u32Value,
        AskUnsigned("\nEnter the Idle Mode Inactivity Timer value (in secs) : "));
    return SendOrReport(
        SUBTYPE_IDLE_MODE_INACTIVITY_TIMER,
        "\nFailed to send the IDLE MODE INACITIVITY TIMER REQUEST Message to device!!",
        stTimer.View());
}

int32_t SendIdleModeWakeupRequest() {
    return SendOrReport(SUBTYPE_IDLE_MODE_WAKE_UP,
                        "\nFailed to send the IDLE MODE WAKEUP REQUEST Message to device!!");
}

int32_t SendIdleModeMsg() {
    int32_t iResult = 0;
    switch (AskMenu(stIdleModeMenu)) {
    case 1:
        iResult = SendIdleModeRequest();
        break;
    case 2:
        iResult = SendIdleModeStatusRequest();
        break;
    case 3:
        iResult = SendIdleModeInactivityTimerRequest();
        break;
    case 4:
        iResult = SendIdleModeWakeupRequest();
        break;
    default:
        PutLine("\nSORRY! INVALID OPTION SELECTED!");
        break;
    }
    // Every request returns 0 today: a failed send has its own line.
    if (iResult != 0) {
        PutFormat("\n Error : %d", iResult);
        if (iResult == iNoMIBSupport) {
            PutLine("\n BINARY DOES NOT SUPPORT MIBS");
        }
    }
    return 0;
}

uint32_t IdleModeIndication(const WiMAXMessage *pstMessage) {
    using namespace IdleIndication;
    if (pstMessage == nullptr) {
        return 0;
    }
    const ByteView stPayload = View(pstMessage).stPayload;
    PutLine("\n~~~~~~~~~~ IDLE MODE INDICATION ~~~~~~~~~~");
    if (Get(stPayload, u32State) != 0) {
        PutLine("\n MODEM IS GOING INTO IDLE MODE.");
        PutRow(stPayload, {"\n PLANNED IDLE MODE TIMEOUT : %d", u32State});
    } else {
        PutLine("\n MODEM HAS COME OUT FROM IDLE MODE.");
    }
    PutRows(stPayload, astIndicationRows);
    PutNumber("\n RSSI MEAN: %d dB", static_cast<uint32_t>(GetSigned(stPayload, s32RSSIMean) / 4));
    PutRow(stPayload, {"\n BS ID  :  %02X %02X %02X %02X %02X %02X", aucBSID});
    PutVendorData("\n Vendor specific data ", stPayload, s32VendorDataLength, aucVendorData);
    PutLine(pcIndicationClosing);
    return 0;
}

uint32_t IdleModeStatusResponse(const WiMAXMessage *pstMessage) {
    return PutWordReport(pstMessage, "\n~~~~~~~~~~ IDLE MODE STATUS RESPONSE ~~~~~~~~~~\n",
                         {"IDLE MODE STATUS : %d \n", StatusWord::u32Value});
}

uint32_t IdleModeInactivityTImerResponse(const WiMAXMessage *pstMessage) {
    return PutWordReport(
        pstMessage, "\n~~~~~~~~~~ IDLE MODE INACTIVITY TIMER RESPONSE ~~~~~~~~~~\n",
        {"IDLE MODE INACTIVITY TIMER RETURN STATUS : %d \n", StatusWord::u32Value});
}

uint32_t IdleModeWakeupResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const bool bSuccess = Get(View(pstMessage).stPayload, StatusWord::u32Value) != 0;
    PutLine("\n~~~~~~~~~~ IDLE MODE WAKEUP RESPONSE ~~~~~~~~~~\n");
    PutText("IDLE MODE WAKEUP RESPONSE RECEIVED AS ");
    PutLine(bSuccess ? "SUCCESS" : "FAILURE");
    PutLine(pcWakeUpClosing);
    return 0;
}
