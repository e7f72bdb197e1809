#include "Layouts.h"
#include "LinkRecords.h"

namespace {

constexpr CodeRow astLinkReasons[] = {
    CODE(LinkReason, LinkUpAchieved),
    CODE(LinkReason, PhySyncError),
    CODE(LinkReason, MacSyncError),
    CODE(LinkReason, HostInitiatedSyncDown),
    CODE(LinkReason, RangingFailure),
    CODE(LinkReason, SBCFailure),
    CODE(LinkReason, PKMFailure),
    CODE(LinkReason, RegistrationFailure),
    CODE(LinkReason, DREGReceived),
    CODE(LinkReason, ResetReceived),
    CODE(LinkReason, InIdleMode),
    CODE(LinkReason, InSleepMode),
    CODE(LinkReason, NetworkEntryInProgress),
    CODE(LinkReason, WaitForNetworkEntryCommand),
    CODE(LinkReason, WaitForPhySyncCommand),
    CODE(LinkReason, ShutdownReceivedCommand),
    CODE(LinkReason, SATEKFailure),
    CODE(LinkReason, LinkStatusNormal),
    CODE(LinkReason, LinkDownHostInitiated),
    CODE(LinkReason, MacVersionSwitch),
    CODE(LinkReason, ShutdownResyncReceived),
    CODE(LinkReason, IdleModeFailureCodeReceived),
    CODE(LinkReason, LocationUpdateWithPowerDownSuccess),
    CODE(LinkReason, BSOutOfReach),
    CODE(LinkReason, IPRetentionTimerExpired),
    CODE(LinkReason, InvalidReasonCode),
};

constexpr CodeRow astReportTypes[] = {
    CODE(SearchRequest, ReportByList),
    CODE(SearchRequest, ReportConsolidated),
};

constexpr FieldRow astSearchRequest[] = {
    FIELD(SearchRequest, u32Duration, "duration, 0 and more", .pcUnit = "s"),
    FIELD(SearchRequest, u32ReportType,
          "report type: 1 station by station, 2 consolidated; sent as typed",
          .astCodes = astReportTypes),
    FIELD(SearchRequest, u32NumBandwidths, "number of bandwidths, 0 to 4"),
    FIELD(SearchRequest, au32Bandwidths, "bandwidths", .u16Count = SearchRequest::MaxBandwidths,
          .stCounter = SearchRequest::u32NumBandwidths, .pcUnit = "kHz"),
    FIELD(SearchRequest, u32FrequencyStart, "start of a frequency range", .pcUnit = "kHz"),
    FIELD(SearchRequest, u32FrequencyStep, "its step", .pcUnit = "kHz"),
    FIELD(SearchRequest, u32FrequencyEnd, "its end", .pcUnit = "kHz"),
    FIELD(SearchRequest, u32NumFrequencies, "number of discrete frequencies, 0 to 25"),
    FIELD(SearchRequest, au32Frequencies, "discrete frequencies",
          .u16Count = SearchRequest::MaxFrequencies, .stCounter = SearchRequest::u32NumFrequencies,
          .pcUnit = "kHz"),
};

constexpr FieldRow astBaseStation[] = {
    FIELD(BaseStation, u8CompressedMap, "0 normal map, else compressed map"),
    FIELD(BaseStation, aucWakeUpBSID,
          "reserved; the report of a wake-up shows it in front of the BS ID",
          .eShown = Shown::Hexadecimal),
    FIELD(BaseStation, aucBSID, "BS ID; its first three bytes, the highest first, are the NAP ID",
          .u16Count = u32BSIDSize, .eShown = Shown::Address),
    FIELD(BaseStation, u32PreambleIndex, "preamble index"),
    FIELD(BaseStation, u32CenterFrequency, "centre frequency", .pcUnit = "kHz"),
    FIELD(BaseStation, u32Bandwidth, "bandwidth", .pcUnit = "kHz"),
    FIELD(BaseStation, s32SignalStrength, "signal strength", .pcUnit = "dBm"),
    FIELD(BaseStation, s32CINR, "CINR", .pcUnit = "dB"),
    FIELD(BaseStation, u32DCDChangeCount, "DCD change count"),
    FIELD(BaseStation, u32NSPChangeCount, "NSP change count"),
};
constexpr Layout stBaseStation = LAYOUT(BaseStation, astBaseStation);

constexpr CodeRow astSearchStates[] = {
    CODE(StationList, SearchInProgress),
    CODE(StationList, SearchComplete),
    CODE(StationList, SearchTimedOut),
};

constexpr FieldRow astStationList[] = {
    FIELD(StationList, u32NumStations, "number of stations"),
    FIELD(StationList, u32SearchStatus, "0 in progress, 1 complete, anything else timed out",
          .astCodes = astSearchStates),
    FIELD(StationList, astStations, "station records", .u16Count = 0,
          .stCounter = StationList::u32NumStations, .pstRecord = &stBaseStation),
};

constexpr FieldRow astWakeUpStations[] = {
    FIELD(StationList, u32NumStations, "number of stations"),
    RESERVED(StationList::u32SearchStatus, 4),
    FIELD(StationList, astStations, "station records", .u16Count = 0,
          .stCounter = StationList::u32NumStations, .pstRecord = &stBaseStation),
};

constexpr FieldRow astStationEntry[] = {
    FIELD(NSPSearchRequest::StationEntry, u32CF, "centre frequency", .pcUnit = "kHz"),
    FIELD(NSPSearchRequest::StationEntry, u32BW, "bandwidth", .pcUnit = "kHz"),
    FIELD(NSPSearchRequest::StationEntry, u32Pid, "preamble index"),
    FIELD(NSPSearchRequest::StationEntry, u32DCDChangeCount, "DCD change count"),
};
constexpr Layout stStationEntry = {"StationEntry", astStationEntry,
                                   NSPSearchRequest::StationEntry::Size};

constexpr FieldRow astNSPSearchRequest[] = {
    FIELD(NSPSearchRequest, u32Duration, "duration, 0 without end", .pcUnit = "s"),
    FIELD(NSPSearchRequest, u32NAPID, "NAP ID", .eShown = Shown::Hexadecimal),
    FIELD(NSPSearchRequest, u32NumStations, "number of stations, 0 to 20"),
    FIELD(NSPSearchRequest, u32NSPChangeCount, "NSP change count"),
    RESERVED(16, 4),
    FIELD(NSPSearchRequest, stPhyInfo, "stations", .u16Count = u32MaxBaseStations,
          .stCounter = NSPSearchRequest::u32NumStations, .pstRecord = &stStationEntry),
};

constexpr CodeRow astDiscoveryStates[] = {
    CODE(NSPDiscovery, Success),      CODE(NSPDiscovery, NotNeeded),
    CODE(NSPDiscovery, NotSupported), CODE(NSPDiscovery, SearchFailure),
    CODE(NSPDiscovery, Aborted),      CODE(NSPDiscovery, ScanDurationTimeout),
};

constexpr FieldRow astNSPEntry[] = {
    FIELD(NSPDiscovery::NSPEntry, u32ID, "ID"),
    FIELD(NSPDiscovery::NSPEntry, u32NameLength, "length of its name"),
    FIELD(NSPDiscovery::NSPEntry, aucName, "name, not terminated",
          .u16Count = NSPDiscovery::NSPEntry::NameSize,
          .stCounter = NSPDiscovery::NSPEntry::u32NameLength, .eShown = Shown::Text),
};
constexpr Layout stNSPEntry = {"NSPEntry", astNSPEntry, NSPDiscovery::NSPEntry::Size};

constexpr FieldRow astNSPDiscovery[] = {
    FIELD(NSPDiscovery, u8Status,
          "0 success, 1 not needed, 2 not supported, 3 failed, 4 aborted, 5 timed out",
          .astCodes = astDiscoveryStates),
    FIELD(NSPDiscovery, u32Complete, "discovery complete"),
    RESERVED(5, 2),
    FIELD(NSPDiscovery, aucBSID, "BS ID", .u16Count = u32BSIDSize, .eShown = Shown::Address),
    FIELD(NSPDiscovery, u32DCDChangeCount, "DCD change count"),
    FIELD(NSPDiscovery, u32NSPChangeCount, "NSP change count"),
    FIELD(NSPDiscovery, s32NumNSPs, "number of NSPs, up to 10"),
    FIELD(NSPDiscovery, astNSPs, "NSPs", .u16Count = NSPDiscovery::MaxNSPs,
          .stCounter = NSPDiscovery::s32NumNSPs, .pstRecord = &stNSPEntry),
    FIELD(NSPDiscovery, u32PID, "preamble index"),
    FIELD(NSPDiscovery, u32CF, "centre frequency", .pcUnit = "kHz"),
    FIELD(NSPDiscovery, u32Bandwidth, "bandwidth", .pcUnit = "kHz"),
    SIGNED_FIELD(NSPDiscovery, u32RSSI, "RSSI"),
    SIGNED_FIELD(NSPDiscovery, u32CINR, "CINR"),
};

constexpr FieldRow astLowPowerScanRequest[] = {
    FIELD(LowPowerScanRequest, u8Mode,
          "100, 101 without MIMO on antenna 1, 2; 102, 103 with MIMO; 104 the default"),
    RESERVED(1, 12),
};

constexpr FieldRow astLowPowerScanAnswer[] = {
    FIELD(LowPowerScanAnswer, u32Result, "1 the mode was set"),
    FIELD(LowPowerScanAnswer, u8Mode, "mode"),
    FIELD(LowPowerScanAnswer, u32Rsvd1, "reserved", .eShown = Shown::Hexadecimal),
    FIELD(LowPowerScanAnswer, u32Rsvd2, "reserved", .eShown = Shown::Hexadecimal),
    FIELD(LowPowerScanAnswer, u32Rsvd3, "reserved", .eShown = Shown::Hexadecimal),
};

constexpr FieldRow astSyncUpRequest[] = {
    FIELD(SyncUpRequest, u32CenterFrequency, "centre frequency", .pcUnit = "kHz"),
    FIELD(SyncUpRequest, u32Bandwidth, "bandwidth", .pcUnit = "kHz"),
    FIELD(SyncUpRequest, u32PreambleID, "preamble, 255 any"),
    RESERVED(12, 52),
};

constexpr FieldRow astSyncStatus[] = {
    FIELD(SyncStatus, u32Status, "link reason; 0 means synchronised here",
          .astCodes = astLinkReasons),
    FIELD(SyncStatus, u8CompressedMap, "0 normal map, else compressed map"),
    RESERVED(5, 1),
    FIELD(SyncStatus, aucBSID, "BS ID", .u16Count = u32BSIDSize, .eShown = Shown::Address),
    FIELD(SyncStatus, u32PreambleID, "preamble"),
    FIELD(SyncStatus, s32CINRMean, "CINR mean", .pcUnit = "dB"),
    FIELD(SyncStatus, s32CINRDeviation, "CINR deviation", .pcUnit = "dB"),
    FIELD(SyncStatus, s32RSSIMean, "RSSI mean", .pcUnit = "dBm"),
    FIELD(SyncStatus, s32RSSIDeviation, "RSSI deviation", .pcUnit = "dBm"),
    FIELD(SyncStatus, u32CenterFrequency, "centre frequency", .pcUnit = "kHz"),
    FIELD(SyncStatus, u32Bandwidth, "bandwidth", .pcUnit = "kHz"),
    FIELD(SyncStatus, u32DCDChangeCount, "DCD change count"),
    FIELD(SyncStatus, u32NSPChangeCount, "NSP change count"),
};

constexpr FieldRow astNetworkEntryRequest[] = {RESERVED(0, NetworkEntryRequest::Size)};

constexpr FieldRow astNSPNetworkEntryRequest[] = {
    FIELD(NSPNetworkEntryRequest, u32NSPIDPresent, "1 an NSP ID is given"),
    FIELD(NSPNetworkEntryRequest, u32NSPID, "NSP ID"),
    RESERVED(8, 260),
};

constexpr FieldRow astBaseInformation[] = {
    FIELD(BaseInformation, aucBSID, "BS ID", .u16Count = u32BSIDSize, .eShown = Shown::Address),
    FIELD(BaseInformation, u8ULCellID, "uplink cell ID"),
    FIELD(BaseInformation, u8PreambleIndex, "preamble index"),
    FIELD(BaseInformation, s16CINRMean, "CINR mean", .pcUnit = "dB"),
    FIELD(BaseInformation, s16CINRDeviation, "CINR deviation", .pcUnit = "dB"),
    FIELD(BaseInformation, u32Duration, "duration"),
    SIGNED_FIELD(BaseInformation, u32MeanRSSI, "mean RSSI"),
    FIELD(BaseInformation, u32RSSIDeviation, "RSSI deviation"),
    FIELD(BaseInformation, u32ULCenterFrequency, "uplink centre frequency", .pcUnit = "MHz"),
    FIELD(BaseInformation, u32DLCenterFrequency, "downlink centre frequency", .pcUnit = "MHz"),
};
constexpr Layout stBaseInformation = LAYOUT(BaseInformation, astBaseInformation);

constexpr FieldRow astNetworkEntryStatus[] = {
    FIELD(NetworkEntryStatus, u8Status, "link reason", .astCodes = astLinkReasons),
    FIELD(NetworkEntryStatus, u32BaseInformationPresent, "not 0: base information is present"),
    FIELD(NetworkEntryStatus, stBaseInformation, "base information",
          .pstRecord = &stBaseInformation),
    FIELD(NetworkEntryStatus, u32DREGActionCode, "action code of a deregistration (reason 8)"),
    FIELD(NetworkEntryStatus, s32VendorDataLength,
          "length of the vendor-specific data: shown when 1 to 255"),
    FIELD(NetworkEntryStatus, aucVendorData, "vendor-specific data", .u16Count = 0,
          .stCounter = NetworkEntryStatus::s32VendorDataLength, .eShown = Shown::Bytes),
};

constexpr FieldRow astCinrRssiThreshold[] = {
    FIELD(CinrRssiThreshold, s32RSSI, "RSSI"),
    FIELD(CinrRssiThreshold, s32CINR, "CINR"),
};

constexpr FieldRow astIdleStatus[] = {
    NAMED("u32Status", StatusWord::u32Value, "status"),
};

constexpr FieldRow astIdleTimer[] = {
    NAMED("u32InactivityTimer", StatusWord::u32Value, "inactivity timer", .pcUnit = "s"),
};

constexpr FieldRow astIdleIndication[] = {
    FIELD(IdleIndication, u32State,
          "planned timeout when the modem goes idle; 0 when it came back"),
    FIELD(IdleIndication, aucBSID, "BS ID", .u16Count = u32BSIDSize, .eShown = Shown::Address),
    FIELD(IdleIndication, s32RSSIMean, "RSSI mean; shown divided by 4, towards zero",
          .pcUnit = "dBm", .u32Divisor = 4),
    SIGNED_FIELD(IdleIndication, u32CINRMean, "CINR mean", .pcUnit = "dB"),
    FIELD(IdleIndication, u32PreambleID, "preamble"),
    FIELD(IdleIndication, s32VendorDataLength,
          "length of the vendor-specific data: shown when 1 to 255"),
    FIELD(IdleIndication, aucVendorData, "vendor-specific data", .u16Count = 0,
          .stCounter = IdleIndication::s32VendorDataLength, .eShown = Shown::Bytes),
};

constexpr FieldRow astWiMAXOption[] = {
    FIELD(WiMAXOption, u8Specifier, "specifier: one bit, or 0", .eShown = Shown::Hexadecimal),
    FIELD(WiMAXOption, u32Value, "value; in an answer the result"),
};

constexpr FieldRow astWiMAXOptions[] = {
    FIELD(WiMAXOptions, u32Status,
          "status: 0 in requests; anything else in an answer means failure"),
    FIELD(WiMAXOptions, u8Specifier, "specifier: the options present",
          .eShown = Shown::Hexadecimal),
    RESERVED(5, 3),
    FIELD(WiMAXOptions, au32Values, "value of option b, 0 to 7", .u16Count = WiMAXOptions::Count),
};

constexpr FieldRow astShutdownStatus[] = {
    NAMED("u32Status", StatusWord::u32Value, "0 the modem is shut down"),
};

constexpr uint32_t u32StationListHead = StationList::astStations;

} // namespace

constexpr Layout stSearchRequest = LAYOUT(SearchRequest, astSearchRequest);
constexpr Layout stStationList = {"StationList", astStationList, u32StationListHead};
constexpr Layout stNSPSearchRequest = LAYOUT(NSPSearchRequest, astNSPSearchRequest);
constexpr Layout stNSPDiscovery = LAYOUT(NSPDiscovery, astNSPDiscovery);
constexpr Layout stLowPowerScanRequest = LAYOUT(LowPowerScanRequest, astLowPowerScanRequest);
constexpr Layout stLowPowerScanAnswer = LAYOUT(LowPowerScanAnswer, astLowPowerScanAnswer);
constexpr Layout stSyncUpRequest = LAYOUT(SyncUpRequest, astSyncUpRequest);
constexpr Layout stSyncStatus = LAYOUT(SyncStatus, astSyncStatus);
constexpr Layout stNetworkEntryRequest = LAYOUT(NetworkEntryRequest, astNetworkEntryRequest);
constexpr Layout stNSPNetworkEntryRequest =
    LAYOUT(NSPNetworkEntryRequest, astNSPNetworkEntryRequest);
constexpr Layout stNetworkEntryStatus = {"NetworkEntryStatus", astNetworkEntryStatus,
                                         NetworkEntryStatus::aucVendorData};
constexpr Layout stCinrRssiThreshold = LAYOUT(CinrRssiThreshold, astCinrRssiThreshold);
constexpr Layout stIdleStatus = {"IdleStatus", astIdleStatus, StatusWord::Size};
constexpr Layout stIdleTimer = {"IdleTimer", astIdleTimer, StatusWord::Size};
constexpr Layout stIdleIndication = {"IdleIndication", astIdleIndication,
                                     IdleIndication::aucVendorData};
constexpr Layout stWiMAXOption = LAYOUT(WiMAXOption, astWiMAXOption);
constexpr Layout stWiMAXOptions = LAYOUT(WiMAXOptions, astWiMAXOptions);
constexpr Layout stShutdownStatus = {"ShutdownStatus", astShutdownStatus, StatusWord::Size};
constexpr Layout stWakeUpStations = {"WakeUpStations", astWakeUpStations, u32StationListHead};
