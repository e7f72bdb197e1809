#include "ChipsetControl.h"

#include <string_view>

#include "Console.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"
#include "StationRecords.h"

std::atomic<int32_t> iFWDlFlag{0};

namespace {

constexpr std::string_view strConfigurationFile = "/lib/firmware/macqor.cfg";
constexpr std::string_view strFirmwareFile = "/lib/firmware/macqor200.bin";
static_assert(strConfigurationFile.size() < DownloadRequest::PathSize);
static_assert(strFirmwareFile.size() < DownloadRequest::PathSize);

constexpr uint32_t u32PollInterval = 4000; // microseconds

constexpr const char *apcChipsetControlMenuLines[] = {
    "\n 1. CHIPSET RESET",
    "\n 2. FIRMWARE DOWNLOAD",
    "\n 3. BASEBAND MODEM STATUS CHECK",
};

constexpr Menu stChipsetControlMenu = {"\n******** CONNCETION MGMT MENU ********",
                                       apcChipsetControlMenuLines,
                                       "\n\n**************************************"};

constexpr CodeName astModemStates[] = {
    {ModemStatus::Active, "\nMODEM STATUS: MODE_ACTIVE"},
    {ModemStatus::Crashed, "\nMODEM STATUS: MODEM_CRASHED_HANG"},
    {ModemStatus::InShutdownMode, "\nMODEM STATUS: MODEM_IN_SHUTDOWN_MODE"},
    {ModemStatus::InIdleMode, "\nMODEM STATUS: MODEM_IN_IDLE_MODE"},
    {ModemStatus::DownloadInProgress, "\nMODEM STATUS: MODEM_FIRMWARE_DOWNLOAD_IN_PROGRESS"},
};

uint32_t ResetChipset() {
    if (SendRequest(TYPE_CHIPSET, SUBTYPE_CHIPSET_RESET) != 0) {
        PutText("\nFailed to send the RESET Message to device!!");
        return 0;
    }
    return 1;
}

uint32_t CheckModemStatus() {
    WiMAXMessage stMessage;
    Record<ModemStatus::Size> stRequest;
    if (SendForAnswer(&stMessage, TYPE_CHIPSET, SUBTYPE_MODEM_STATUS, stRequest.View()) != 0) {
        PutText("\nFailed to get the baseband modem status :-(!!");
        return 0;
    }
    // The library has put the answer where the request was.
    PutText(NameOf(astModemStates, Get(PayloadOf(stMessage), ModemStatus::u8State),
                   "\nMODEM STATUS: UNKNOWN"));
    return 1;
}

// Whether it could be sent does not matter: the modem's report decides.
void SendFile(uint32_t u32FileType, std::string_view strPath) {
    Record<DownloadRequest::Size> stRequest;
    Put(stRequest.Span(), DownloadRequest::u32FileType, u32FileType);
    PutBytes(
        stRequest.Span(), DownloadRequest::acPath,
        {reinterpret_cast<const uint8_t *>(strPath.data()), static_cast<uint32_t>(strPath.size())});
    SendRequest(TYPE_CHIPSET, SUBTYPE_FIRMWARE_DOWNLOAD, stRequest.View());
}

void PutDownloadStatus(ByteView stPayload) {
    using namespace DownloadStatus;
    const uint32_t u32FileType = Get(stPayload, DownloadStatus::u32FileType);
    PutLine("\n~~~~~~~~~~ FIRMWARE DOWNLOAD STATUS RECEIVED ~~~~~~~~~~");
    PutRow(stPayload, {"\n Firmware Download Status : %d", u32Status});
    switch (u32FileType) {
    case DownloadFile::Configuration:
        PutText("\n Configuration File : ");
        PutString(stPayload.From(acPath));
        break;
    case DownloadFile::Firmware:
        PutText("\n Firmware File : ");
        PutString(stPayload.From(acPath));
        break;
    default:
        PutText("\n Invalid file type set");
        break;
    }
    PutLine("\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    if (u32FileType == DownloadFile::Configuration && Get(stPayload, u32Status) == 0) {
        // Shown first: the menu goes on as soon as the flag is clear.
        FlushOutput();
        iFWDlFlag = 0;
    }
}

} // namespace

uint32_t FirmwareDownload() {
    PutLine("received path");
    PutLine("received path");
    // Before the send: the report may come before the send returns.
    iFWDlFlag = -1;
    SendFile(DownloadFile::Configuration, strConfigurationFile);
    while (iFWDlFlag != 0) {
        PauseMicroseconds(u32PollInterval);
        EndIfTold();
    }
    SendFile(DownloadFile::Firmware, strFirmwareFile);
    return 0;
}

uint32_t ChipsetControl() {
    switch (AskMenu(stChipsetControlMenu)) {
    case 1:
        return ResetChipset();
    case 2:
        return FirmwareDownload();
    case 3:
        return CheckModemStatus();
    default:
        return 1;
    }
}

uint32_t ChipsetResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_CHIPSET_RESET:
        PutLine("\n~~~~~~~~~~ RESET INDICATION RECEIVED ~~~~~~~~~~");
        break;
    case SUBTYPE_FIRMWARE_DOWNLOAD:
        PutDownloadStatus(stReceived.stPayload);
        break;
    default:
        break;
    }
    return 0;
}
