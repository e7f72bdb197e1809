#include "Layouts.h"
#include "LinkRecords.h"
#include "StationRecords.h"

namespace {

constexpr CodeRow astCalibrations[] = {
    CODE(SSInformation, NotCalibrated),
    CODE(SSInformation, CalibrationNotKnown),
};

constexpr FieldRow astSSInformation[] = {
    FIELD(SSInformation, au32FirmwareVersion, "firmware version: major, minor, build",
          .u16Count = 3),
    FIELD(SSInformation, acDriverVersion,
          "driver version, text that ends at its first zero byte, or with its place",
          .u16Count = SSInformation::DriverVersionSize, .eShown = Shown::Text),
    FIELD(SSInformation, au32LibraryVersion, "library version: major, minor, build", .u16Count = 3),
    FIELD(SSInformation, u32BasebandChipVersion, "baseband chip version",
          .eShown = Shown::Hexadecimal),
    FIELD(SSInformation, u32RFChipVersion, "RF chip version", .eShown = Shown::Hexadecimal),
    FIELD(SSInformation, au32EEPROMVersion, "EEPROM version: major, minor", .u16Count = 2),
    FIELD(SSInformation, aucMACAddress, "MAC address", .u16Count = 6, .eShown = Shown::Address,
          .eGuard = Guard::Identity),
    RESERVED(174, 2),
    FIELD(SSInformation, u8Calibration, "calibration", .astCodes = astCalibrations),
};

constexpr FieldRow astEEPROMSummary[] = {
    FIELD(EEPROMSummary, u16ValidMask, "mask of the valid sections", .eShown = Shown::Hexadecimal),
    RESERVED(2, 1),
    FIELD(EEPROMSummary, u8SizeInKB, "size", .pcUnit = "kB"),
};

constexpr FieldRow astEEPROMVersions[] = {
    FIELD(EEPROMVersions, u32RF, "RF"),
    FIELD(EEPROMVersions, u32PHY, "PHY"),
    FIELD(EEPROMVersions, u32MAC, "MAC"),
    FIELD(EEPROMVersions, u32CAL, "calibration"),
    FIELD(EEPROMVersions, u32HW, "hardware"),
    FIELD(EEPROMVersions, u32MIB, "MIB"),
    FIELD(EEPROMVersions, u32Security, "security"),
    FIELD(EEPROMVersions, u32OMADM, "OMA-DM"),
    FIELD(EEPROMVersions, u32MRU, "MRU"),
    RESERVED(36, 16),
    FIELD(EEPROMVersions, u32VSA, "VSA"),
};

constexpr FieldRow astStatisticsInterval[] = {
    NAMED("u32Interval", StatusWord::u32Value, "interval of the reports; 0 stops them and gets one",
          .pcUnit = "ms"),
};

constexpr FieldRow astStatistics[] = {
    FIELD(Statistics, u32RecordSize, "size of the record"),
    FIELD(Statistics, u32FramesReceived, "frames received"),
    FIELD(Statistics, u32FramesInError, "frames in error"),
    FIELD(Statistics, u32CRCErrors, "CRC errors"),
    FIELD(Statistics, u32HCSErrors, "header check sequence errors"),
    FIELD(Statistics, u32CQICHTransmitted, "CQICH reports sent"),
    SIGNED_FIELD(Statistics, u32RSSI, "RSSI"),
    SIGNED_FIELD(Statistics, u32CINR, "CINR"),
    RESERVED(32, 24),
    FIELD(Statistics, u32BandwidthRequests, "bandwidth request headers"),
    FIELD(Statistics, s32NumConnections, "number of transport connections"),
    FIELD(Statistics, au32TransportCIDs, "their connection IDs",
          .u16Count = Statistics::MaxConnections, .stCounter = Statistics::s32NumConnections,
          .eShown = Shown::Hexadecimal),
    RESERVED(232, 2),
    FIELD(Statistics, s8TxPower, "transmit power", .pcUnit = "dBm"),
    RESERVED(235, 9),
    FIELD(Statistics, aucBSID, "BS ID", .u16Count = u32BSIDSize, .eShown = Shown::Address),
    RESERVED(250, 279),
    FIELD(Statistics, u8BurstFEC, "FEC code of the downlink bursts"),
    RESERVED(530, 418),
    FIELD(Statistics, u32CenterFrequency, "centre frequency", .pcUnit = "kHz"),
};

constexpr CodeRow astResetPolicies[] = {
    CODE(StatisticsReset, Disable),
    CODE(StatisticsReset, Enable),
};

constexpr FieldRow astStatisticsReset[] = {
    NAMED("u32Policy", StatusWord::u32Value,
          "1 clear the statistics when the modem synchronises again, 0 keep them",
          .astCodes = astResetPolicies),
};

constexpr CodeRow astResetResults[] = {
    CODE(StatisticsReset, Failed),
    CODE(StatisticsReset, Applied),
};

constexpr FieldRow astStatisticsResetStatus[] = {
    NAMED("u32Status", StatusWord::u32Value, "1 applied, 0 failed", .astCodes = astResetResults),
};

constexpr CodeRow astFileTypes[] = {
    CODE(DownloadFile, Configuration),
    CODE(DownloadFile, Firmware),
};

constexpr FieldRow astDownloadRequest[] = {
    FIELD(DownloadRequest, u32FileType, "file type: 0 configuration, 1 firmware",
          .astCodes = astFileTypes),
    FIELD(DownloadRequest, acPath, "path on the host, ends at a zero byte",
          .u16Count = DownloadRequest::PathSize, .eShown = Shown::Text),
};

constexpr FieldRow astDownloadStatus[] = {
    FIELD(DownloadStatus, u32Status, "0 = downloaded, else a code"),
    FIELD(DownloadStatus, u32FileType, "file type", .astCodes = astFileTypes),
    FIELD(DownloadStatus, acPath, "path, to a zero byte or the end of the payload", .u16Count = 0,
          .eShown = Shown::Text),
};

constexpr CodeRow astModemStates[] = {
    CODE(ModemStatus, Active),
    CODE(ModemStatus, Crashed),
    CODE(ModemStatus, InShutdownMode),
    CODE(ModemStatus, InIdleMode),
    CODE(ModemStatus, DownloadInProgress),
};

constexpr FieldRow astModemStatus[] = {
    FIELD(ModemStatus, u8State,
          "0 active, 1 crashed or hanging, 2 in shutdown mode, 3 in idle mode, 4 firmware download "
          "in progress",
          .astCodes = astModemStates),
};

// The byte is there for the answer.
constexpr FieldRow astModemStatusRequest[] = {RESERVED(0, ModemStatus::Size)};

constexpr FieldRow astMACAddress[] = {
    FIELD(MACAddressRecord, aucOctets, "MAC address", .u16Count = MACAddressRecord::Size,
          .eShown = Shown::Address, .eGuard = Guard::Identity),
};

constexpr FieldRow astMACAddressStatus[] = {
    NAMED("u32Status", StatusWord::u32Value, "0 = set, else an error code"),
};

} // namespace

constexpr Layout stSSInformation = LAYOUT(SSInformation, astSSInformation);
constexpr Layout stEEPROMSummary = LAYOUT(EEPROMSummary, astEEPROMSummary);
constexpr Layout stEEPROMVersions = LAYOUT(EEPROMVersions, astEEPROMVersions);
constexpr Layout stStatisticsInterval = {"StatisticsInterval", astStatisticsInterval,
                                         StatusWord::Size};
constexpr Layout stStatistics = LAYOUT(Statistics, astStatistics);
constexpr Layout stStatisticsReset = {"StatisticsReset", astStatisticsReset, StatusWord::Size};
constexpr Layout stStatisticsResetStatus = {"StatisticsResetStatus", astStatisticsResetStatus,
                                            StatusWord::Size};
constexpr Layout stDownloadRequest = LAYOUT(DownloadRequest, astDownloadRequest);
constexpr Layout stDownloadStatus = {"DownloadStatus", astDownloadStatus, DownloadStatus::acPath};
constexpr Layout stModemStatusRequest = {"ModemStatusRequest", astModemStatusRequest,
                                         ModemStatus::Size};
constexpr Layout stModemStatus = LAYOUT(ModemStatus, astModemStatus);
constexpr Layout stMACAddress = LAYOUT(MACAddressRecord, astMACAddress);
constexpr Layout stMACAddressStatus = {"MACAddressStatus", astMACAddressStatus, StatusWord::Size};
