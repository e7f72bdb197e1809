#include "LinkStatus.h"

#include <algorithm>
#include <string_view>

#include "Console.h"
#include "Message.h"
#include "Report.h"

SharedBytes<u32MaxBaseStations * BaseStation::Size> g_BSINFO;
std::atomic<uint32_t> g_u32NumberOfBaseStations{0};
std::atomic<uint32_t> g_u32NAPID{0};
SharedBytes<NSPDiscovery::Size> g_BSNSPLIST;

namespace {

constexpr uint32_t u32HalfMiniCardPause = 1000000; // microseconds

constexpr ReportRow stStationBSID = {"\nBS ID  :%02X %02X %02X %02X %02X %02X",
                                     BaseStation::aucBSID};
constexpr TextWith<1> stStationNAPID = "\nNAPID  :%d";
constexpr TextWith<1> stStationHeading = "\nBASE STATION : %d\n-------------------\n";
constexpr ReportRow stStationsFound = {"\n%d BASE STATIONS FOUND.\n", StationList::u32NumStations};

constexpr ReportRow astStationRows[] = {
    {"\nPreamble Index ID  :%d", BaseStation::u32PreambleIndex},
    {"\nCenter Frequency : %d kHz", BaseStation::u32CenterFrequency},
    {"\nBandwidth : %d kHz", BaseStation::u32Bandwidth},
    {"\nRelative Signal Strength : %d dBm", BaseStation::s32SignalStrength},
    {"\nCINR : %d dB", BaseStation::s32CINR},
    {"\nDCD change count : %d ", BaseStation::u32DCDChangeCount},
    {"\nNSP change count : %d ", BaseStation::u32NSPChangeCount},
};

constexpr ReportRow stWakeUpBSID = {"\nBS ID  :%02X %02X %02X %02X %02X %02X %02X",
                                    BaseStation::aucWakeUpBSID};

constexpr ReportRow astWakeUpRows[] = {
    {"\nPreamble Index ID  :%d", BaseStation::u32PreambleIndex},
    {"\nCenter Frequency : %d kHz", BaseStation::u32CenterFrequency},
    {"\nBandwidth : %d kHz", BaseStation::u32Bandwidth},
    {"\nRelative Signal Strength : %d dBm", BaseStation::s32SignalStrength},
    {"\nCINR : %d dB", BaseStation::s32CINR},
    {"\nDcdChangeCount : %d", BaseStation::u32DCDChangeCount},
    {"\nNspChangeCount : %d\n\n", BaseStation::u32NSPChangeCount},
};

constexpr CodeName astSearchStatus[] = {
    {StationList::SearchComplete, "SEARCH IS COMPLETE!!"},
    {StationList::SearchInProgress, "SEARCH IS IN PROGRESS!!"},
};

constexpr CodeName astDiscoveryStatus[] = {
    {NSPDiscovery::Success, "NSP_DISCOVERY_SUCCESS"},
    {NSPDiscovery::NotNeeded, "NSP_DISCOVERY_NOT_NEEDED"},
    {NSPDiscovery::NotSupported, "NSP_16G_NOT_SUPPORTED"},
    {NSPDiscovery::SearchFailure, "NSP_SEARCH_FAILURE"},
    {NSPDiscovery::Aborted, "NSP_DISCOVERY_ABORT"},
    {NSPDiscovery::ScanDurationTimeout, "NSP_DISCOVERY_SCAN_DURATION_TIMEOUT"},
};

constexpr ReportRow astDiscoveryRows[] = {
    {"\nBS ID  :%02X %02X %02X %02X %02X %02X", NSPDiscovery::aucBSID},
    {"\nDCD change count : %d", NSPDiscovery::u32DCDChangeCount},
    {"\nNSP change count : %d", NSPDiscovery::u32NSPChangeCount},
    {"\nNumber of NSP entries: %d", NSPDiscovery::s32NumNSPs},
    {"\nPID : %d", NSPDiscovery::u32PID},
    {"\nCF  : %d", NSPDiscovery::u32CF},
    {"\nBandwidth  : %d", NSPDiscovery::u32Bandwidth},
    {"\nRSSI  : %d", NSPDiscovery::u32RSSI},
    {"\nCINR  : %d", NSPDiscovery::u32CINR},
};

constexpr ReportRow astLowPowerScanRows[] = {
    {"\n Low power scan mode set for mode %d", LowPowerScanAnswer::u8Mode},
    {"\n u32Rsvd1 %u", LowPowerScanAnswer::u32Rsvd1},
    {"\n u32Rsvd2 %u", LowPowerScanAnswer::u32Rsvd2},
    {"\n u32Rsvd3 %u", LowPowerScanAnswer::u32Rsvd3},
};

constexpr ReportRow astSyncStatusRows[] = {
    {"\n BS ID  :%02X %02X %02X %02X %02X %02X", SyncStatus::aucBSID},
    {"\n PREAMBLE ID  : %d", SyncStatus::u32PreambleID},
    {"\n CINR MEAN : %d dB", SyncStatus::s32CINRMean},
    {"\n CINR DEVIATION: %d dB", SyncStatus::s32CINRDeviation},
    {"\n RSSI MEAN: %d dBm", SyncStatus::s32RSSIMean},
    {"\n RSSI DEVIATION: %d dBm", SyncStatus::s32RSSIDeviation},
    {"\n CENTER FREQUENCY: %d kHz", SyncStatus::u32CenterFrequency},
    {"\n BANDWIDTH : %d kHz", SyncStatus::u32Bandwidth},
    {"\n DCD change count : %d ", SyncStatus::u32DCDChangeCount},
    {"\n NSP Change count : %d ", SyncStatus::u32NSPChangeCount},
};

constexpr ReportRow astBaseInformationRows[] = {
    {"\n BASE ID :%02X %02X %02X %02X %02X %02X", BaseInformation::aucBSID},
    {"\n PREAMBLE INDEX : %d", BaseInformation::u8PreambleIndex},
    {"\n UL CELL ID : %d", BaseInformation::u8ULCellID},
    {"\n CINR DEVIATION : %d dB", BaseInformation::s16CINRDeviation},
    {"\n CINR MEAN : %d dB", BaseInformation::s16CINRMean},
    {"\n DURATION : %d", BaseInformation::u32Duration},
    {"\n MEAN RSSI REPORT : %d", BaseInformation::u32MeanRSSI},
    {"\n STANDARD DEVIATION RSSI REPORT : 0x%X", BaseInformation::u32RSSIDeviation},
    {"\n UL CENTER FREQUENCY : %d MHz", BaseInformation::u32ULCenterFrequency},
    {"\n DL CENTER FREQUENCY : %d MHz", BaseInformation::u32DLCenterFrequency},
};

// Code 18 has no name.
constexpr CodeName astLinkReasons[] = {
    {LinkReason::LinkUpAchieved, "LINKUP_ACHIEVED"},
    {LinkReason::PhySyncError, "PHY_SYNC_ERROR"},
    {LinkReason::MacSyncError, "MAC_SYNC_ERROR"},
    {LinkReason::HostInitiatedSyncDown, "HOST_INITIATED_SYNC_DOWN"},
    {LinkReason::RangingFailure, "RANGING_FAILURE"},
    {LinkReason::SBCFailure, "SBC_FAILURE"},
    {LinkReason::PKMFailure, "PKM_FAILURE"},
    {LinkReason::RegistrationFailure, "REGISTRATION_FAILURE"},
    {LinkReason::DREGReceived, "DREG_RECEIVED"},
    {LinkReason::ResetReceived, "RESET_RECEIVED"},
    {LinkReason::InIdleMode, "IN_IDLE_MODE"},
    {LinkReason::InSleepMode, "IN_SLEEP_MODE"},
    {LinkReason::NetworkEntryInProgress, "NETWORK_ENTRY_IN_PROGRESS"},
    {LinkReason::WaitForNetworkEntryCommand, "WAIT_FOR_NETWORK_ENTRY_CMD"},
    {LinkReason::WaitForPhySyncCommand, "WAIT_FOR_PHY_SYNC_CMD"},
    {LinkReason::ShutdownReceivedCommand, "SHUTDOWN_RECEIVED_CMD"},
    {LinkReason::SATEKFailure, "SATEK_FAILURE"},
    {LinkReason::LinkStatusNormal, "LINK_STATUS_NORMAL"},
    {LinkReason::LinkDownHostInitiated, "LINK_DOWN_HOST_INITIATED"},
    {LinkReason::MacVersionSwitch, "MAC_VERSION_SWITCH"},
    {LinkReason::ShutdownResyncReceived, "SHUTDOWN_RESYNC_RECEIVED"},
    {LinkReason::IdleModeFailureCodeReceived, "IDLE_MODE_FAILURE_CODE_RECEIVED"},
    {LinkReason::LocationUpdateWithPowerDownSuccess,
     "LOCATION_UPDATE_WITH_POWER_DOWN_SUCCESS_RECEIVED"},
    {LinkReason::BSOutOfReach, "BS_OUT_OF_REACH"},
    {LinkReason::IPRetentionTimerExpired, "IP_RETENTION_TIMER_EXPIRED"},
    {LinkReason::InvalidReasonCode, "INVALID_REASON_CODE_RECEIVED"},
};

void PutMapKind(ByteView stView, Field stCompressedMap) {
    PutText(Get(stView, stCompressedMap) != 0 ? " - COMPRESSED MAP" : " - NORMAL MAP");
}

// The upper 24 bits of the BS ID, which is sent first byte first.
uint32_t NAPIDOf(ByteView stStation) {
    const uint32_t u32First = BaseStation::aucBSID.u16Offset;
    return static_cast<uint32_t>(stStation.At(u32First)) << 16 |
           static_cast<uint32_t>(stStation.At(u32First + 1)) << 8 | stStation.At(u32First + 2);
}

// One record of the list of stations that a search or a wake-up reports.
ByteView StationAt(ByteView stPayload, uint32_t u32Index) {
    return stPayload.From(StationList::astStations + u32Index * BaseStation::Size,
                          BaseStation::Size);
}

uint32_t StationsPresent(ByteView stPayload) {
    return RecordsPresent(stPayload, StationList::astStations, BaseStation::Size,
                          Get(stPayload, StationList::u32NumStations));
}

void PutSearchResponse(ByteView stPayload) {
    constexpr const char *pcBanner = "\n~~~~~~~~~~ NETWORK SEARCH RESPONSE RECEIVED ~~~~~~~~~~";
    PutLine(pcBanner);
    PutRow(stPayload, stStationsFound);
    PutText(NameOf(astSearchStatus, Get(stPayload, StationList::u32SearchStatus),
                   "SEARCH TIMED OUT!!"));
    // Twenty stations have room in the table, and those are shown.
    const uint32_t u32Stations = std::min(StationsPresent(stPayload), u32MaxBaseStations);
    for (uint32_t i = 0; i < u32Stations; ++i) {
        const ByteView stStation = StationAt(stPayload, i);
        PutNumber(stStationHeading, i + 1);
        PutRow(stStation, stStationBSID);
        PutMapKind(stStation, BaseStation::u8CompressedMap);
        PutNumber(stStationNAPID, NAPIDOf(stStation));
        PutRows(stStation, astStationRows);
    }
    if (u32Stations != 0) {
        g_u32NAPID = NAPIDOf(StationAt(stPayload, u32Stations - 1));
    }
    g_BSINFO.Store(stPayload.From(StationList::astStations, u32Stations * BaseStation::Size));
    g_u32NumberOfBaseStations = u32Stations;
    PutClosingLine(pcBanner);
}

void PutNSPEntry(ByteView stEntry) {
    using namespace NSPDiscovery;
    static constexpr ReportRow stID = {"\nNSP ID is : %d", NSPEntry::u32ID};
    // Whatever its length says, a name ends with its entry.
    const ByteView stName = stEntry.From(NSPEntry::aucName, Get(stEntry, NSPEntry::u32NameLength));
    PutText("\nNSP Name is : ");
    PutString(stName);
    PutRow(stEntry, stID);
}

void PutDiscoveryResponse(ByteView stPayload) {
    using namespace NSPDiscovery;
    PutText("\n--------received SUBTYPE_NETWORK_DISCOVERY_RESP-----------");
    PutRow(stPayload, {"\nNSP discovery complete : %d", u32Complete});
    PutText("\nBSINFO Response status is :");
    PutText(NameOf(astDiscoveryStatus, Get(stPayload, u8Status), ""));
    if (Get(stPayload, u8Status) != Success) {
        return;
    }
    PutRows(stPayload, astDiscoveryRows);
    const uint32_t u32Entries = std::min(
        RecordsPresent(stPayload, astNSPs, NSPEntry::Size, GetSigned(stPayload, s32NumNSPs)),
        MaxNSPs);
    for (uint32_t i = 0; i < u32Entries; ++i) {
        const uint32_t au32Entry[] = {i + 1, Get(stPayload, s32NumNSPs)};
        PutNumbers("\nNSPLIST Entry %u of total %d", au32Entry);
        PutNSPEntry(stPayload.From(astNSPs + i * NSPEntry::Size, NSPEntry::Size));
    }
    g_BSNSPLIST.Store(stPayload.From(0, Size));
}

void PutLowPowerScanResponse(ByteView stPayload) {
    constexpr const char *pcBanner = "\n~~~~~~~~~~ LOW POWER SCANMODE RESPONSE RECEIVED ~~~~~~";
    PutLine(pcBanner);
    if (Get(stPayload, LowPowerScanAnswer::u32Result) == 1) {
        PutRows(stPayload, astLowPowerScanRows);
    } else {
        PutLine("\n Setting low power scan mode failed");
    }
    PutClosingLine(pcBanner);
}

void PutSyncStatus(ByteView stPayload) {
    constexpr const char *pcBanner = "\n~~~~~~~~~~ SYNC STATUS RESPONSE RECEIVED ~~~~~~~~~~";
    PutLine(pcBanner);
    PutText("\n SYNC STATUS  : ");
    const uint32_t u32Status = Get(stPayload, SyncStatus::u32Status);
    if (u32Status == 0) {
        PutText("PHY_SYNC ACHIEVED");
    } else {
        DisplayLinkStatus(u32Status);
    }
    if (u32Status == 0 || u32Status == LinkReason::WaitForNetworkEntryCommand) {
        PutMapKind(stPayload, SyncStatus::u8CompressedMap);
        PutRows(stPayload, astSyncStatusRows);
    }
    PutClosingLine(pcBanner);
}

void PutNetworkEntryStatus(ByteView stPayload) {
    using namespace NetworkEntryStatus;
    constexpr const char *pcBanner =
        "\n~~~~~~~~~~~ NETWORK ENTRY STATUS RESPONSE RECEIVED ~~~~~~~~~~";
    PutLine(pcBanner);
    PutText("\n NETENTRY STATUS  : ");
    DisplayLinkStatus(Get(stPayload, u8Status));
    if (Get(stPayload, u8Status) == LinkReason::DREGReceived) {
        PutRow(stPayload, {"DREG-RECEIVED Action Code is: %d\n", u32DREGActionCode});
    }
    if (Get(stPayload, u32BaseInformationPresent) != 0) {
        DisplayBaseInfo(stPayload.From(stBaseInformation, BaseInformation::Size));
    }
    PutVendorData("\nVENDOR SPECIFIC DATA ", stPayload, s32VendorDataLength, aucVendorData);
    PutClosingLine(pcBanner);
}

// A report whose one word says yes (zero) or no.
void PutShutdownState(const Banner &stBanner, ByteView stPayload, std::string_view strShutDown,
                      std::string_view strNotShutDown) {
    PutLine(stBanner.strText);
    PutText(Get(stPayload, StatusWord::u32Value) == 0 ? strShutDown : strNotShutDown);
    PutClosingLine(stBanner);
}

void PutPeriodicWakeUp(ByteView stPayload) {
    PutLine("\n\n~~~~~~~~~~ PERIODIC WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~");
    PutRow(stPayload, stStationsFound);
    for (uint32_t i = 0; i < StationsPresent(stPayload); ++i) {
        const ByteView stStation = StationAt(stPayload, i);
        PutNumber(stStationHeading, i + 1);
        PutRow(stStation, stWakeUpBSID);
        PutMapKind(stStation, BaseStation::u8CompressedMap);
        PutRows(stStation, astWakeUpRows);
    }
}

void PutHalfMiniCardResponse() {
    constexpr const char *pcBanner = "\n~~~~~~~~~~ HALF MINI CARD RESPONSE RECEIVED~~~~~~~~~~";
    PutLine(pcBanner);
    PutText("\nApplication will send HMC Status message after interval of 1 second");
    FlushOutput(); // seen while the pause lasts
    PauseMicroseconds(u32HalfMiniCardPause);
    if (!IsEnding()) {
        SendRequest(TYPE_HALF_MINI_CARD, SUBTYPE_HALF_MINI_CARD_STATUS);
    }
    PutClosingLine(pcBanner);
}

} // namespace

void DisplayLinkStatus(uint32_t u32Reason) {
    const std::string_view strName = NameOf(astLinkReasons, u32Reason, "");
    if (!strName.empty()) {
        PutText(strName);
    } else {
        PutNumber("UNKNOWN ERROR, (0x%X)", u32Reason);
    }
}

void DisplayBaseInfo(ByteView stBaseInformation) {
    if (stBaseInformation.pucData != nullptr) {
        PutRows(stBaseInformation, astBaseInformationRows);
    }
}

uint32_t NetEntrySearchResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_NETWORK_SEARCH:
        PutSearchResponse(stReceived.stPayload);
        break;
    case SUBTYPE_NETWORK_DISCOVERY_RESP:
        PutDiscoveryResponse(stReceived.stPayload);
        break;
    case SUBTYPE_LOW_POWER_SCAN:
        PutLowPowerScanResponse(stReceived.stPayload);
        break;
    default:
        break;
    }
    return 0;
}

uint32_t NetEntryExitResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_SYNC_STATUS_RESP:
        PutSyncStatus(stReceived.stPayload);
        break;
    case SUBTYPE_NETWORK_ENTRY_STATUS_RESP:
        PutNetworkEntryStatus(stReceived.stPayload);
        break;
    default:
        break;
    }
    return 0;
}

uint32_t ShutDownResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    switch (stReceived.u32SubType) {
    case SUBTYPE_SHUTDOWN:
        PutShutdownState("\n\n~~~~~~~~~~ SHUTDOWN RESPONSE RECEIVED ~~~~~~~~~~",
                         stReceived.stPayload, "\n\tBASEBAND IS IN SHUTDOWN STATE",
                         "\n\tBASEBAND IS NOT IN SHUTDOWN STATE");
        break;
    case SUBTYPE_SHUTDOWN_FROM_FIRMWARE_IND:
        PutLine("\n\n~~~~~~~~~~ SHUTDOWN REQUEST FROM FIRMWARE RECEIVED ~~~~~~~~~~");
        break;
    case SUBTYPE_SHUTDOWN_PERIODIC_WAKE_UP_IND:
        PutPeriodicWakeUp(stReceived.stPayload);
        break;
    case SUBTYPE_SHUTDOWN_COMPLETE_WAKE_UP_IND:
        PutLine("\n\n~~~~~~~~~~ COMPLETE WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~");
        break;
    case SUBTYPE_SHUTDOWN_MODE_STATUS:
        PutShutdownState("\n~~~~~~~~~~ SHUTDOWN MODE STATUS RESPONSE RECEIVED ~~~~~~~~~~",
                         stReceived.stPayload, "\nBASEBAND IS IN SHUTDOWN MODE",
                         "\nBASEBAND IS NOT IN SHUTDOWN MODE");
        break;
    default:
        break;
    }
    return 0;
}

uint32_t ProcessHalfMiniCardResponse(const WiMAXMessage *pstMessage) {
    const Received stReceived = View(pstMessage);
    if (stReceived.u32SubType == SUBTYPE_HALF_MINI_CARD_RESP) {
        PutHalfMiniCardResponse();
    } else if (stReceived.u32SubType == SUBTYPE_HALF_MINI_CARD_WAKE_UP_IND) {
        constexpr const char *pcBanner = "\n~~~~~~~~~~~ HALF MINI CARD WAKEUP RECEIVED~~~~~~~~~~~~";
        PutLine(pcBanner);
        PutText("\nModem came out of HMC Shutdown");
        PutClosingLine(pcBanner);
    }
    return 0;
}
