// Payloads of network search, synchronisation, network entry, idle mode,
// shutdown and the WiMAX options. Offsets in bytes from the start of the
// payload (or of the record); frequencies and bandwidths in kHz.
#ifndef LINK_RECORDS_H
#define LINK_RECORDS_H

#include "Wire.h"

inline constexpr uint32_t u32BSIDSize = 6;
// Entries of the client's base station table and of an NSP search request.
inline constexpr uint32_t u32MaxBaseStations = 20;

// Type 1, subtype 1, request.
namespace SearchRequest {
inline constexpr uint32_t MaxBandwidths = 4;
inline constexpr uint32_t MaxFrequencies = 25;
inline constexpr Field u32Duration{0, FieldType::U32}; // seconds
inline constexpr Field u32ReportType{4, FieldType::U32};
inline constexpr Field u32NumBandwidths{8, FieldType::U32};
inline constexpr Field au32Bandwidths{12, FieldType::U32};
inline constexpr Field u32FrequencyStart{28, FieldType::U32};
inline constexpr Field u32FrequencyStep{32, FieldType::U32};
inline constexpr Field u32FrequencyEnd{36, FieldType::U32};
inline constexpr Field u32NumFrequencies{40, FieldType::U32};
inline constexpr Field au32Frequencies{44, FieldType::U32};
inline constexpr uint32_t Size = 144;
static_assert(EndOf(au32Bandwidths) + 3 * 4 == u32FrequencyStart.u16Offset);
static_assert(EndOf(au32Frequencies) + 24 * 4 == Size);

inline constexpr uint32_t ReportByList = 1;
inline constexpr uint32_t ReportConsolidated = 2;
} // namespace SearchRequest

// A base station as a search or a wake-up in shutdown mode reports it.
namespace BaseStation {
inline constexpr Field u8CompressedMap{0, FieldType::U8};
inline constexpr Field aucWakeUpBSID{1, FieldType::U8}; // seven bytes in the wake-up report
inline constexpr Field aucBSID{2, FieldType::U8};       // six bytes
inline constexpr Field u32PreambleIndex{8, FieldType::U32};
inline constexpr Field u32CenterFrequency{12, FieldType::U32};
inline constexpr Field u32Bandwidth{16, FieldType::U32};
inline constexpr Field s32SignalStrength{20, FieldType::I32}; // dBm
inline constexpr Field s32CINR{24, FieldType::I32};           // dB
inline constexpr Field u32DCDChangeCount{28, FieldType::U32};
inline constexpr Field u32NSPChangeCount{32, FieldType::U32};
inline constexpr uint32_t Size = 36;
static_assert(EndOf(u32NSPChangeCount) == Size);
} // namespace BaseStation

// Type 1, subtype 1, answer; and type 30, subtype 3.
namespace StationList {
inline constexpr Field u32NumStations{0, FieldType::U32};
inline constexpr Field u32SearchStatus{4, FieldType::U32};
inline constexpr uint32_t astStations = 8; // BaseStation records

inline constexpr uint32_t SearchInProgress = 0;
inline constexpr uint32_t SearchComplete = 1;
inline constexpr uint32_t SearchTimedOut = 2;
} // namespace StationList

// Type 1, subtype 4, request.
namespace NSPSearchRequest {
inline constexpr Field u32Duration{0, FieldType::U32}; // seconds, 0 = without end
inline constexpr Field u32NAPID{4, FieldType::U32};
inline constexpr Field u32NumStations{8, FieldType::U32};
inline constexpr Field u32NSPChangeCount{12, FieldType::U32};
inline constexpr uint32_t stPhyInfo = 20; // StationEntry records
inline constexpr uint32_t Size = 340;

namespace StationEntry {
inline constexpr Field u32CF{0, FieldType::U32};
inline constexpr Field u32BW{4, FieldType::U32};
inline constexpr Field u32Pid{8, FieldType::U32};
inline constexpr Field u32DCDChangeCount{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
} // namespace StationEntry
static_assert(stPhyInfo + u32MaxBaseStations * StationEntry::Size == Size);
} // namespace NSPSearchRequest

// Type 1, subtype 4, answer.
namespace NSPDiscovery {
inline constexpr Field u8Status{0, FieldType::U8};
inline constexpr Field u32Complete{1, FieldType::U32};
inline constexpr Field aucBSID{7, FieldType::U8}; // six bytes
inline constexpr Field u32DCDChangeCount{13, FieldType::U32};
inline constexpr Field u32NSPChangeCount{17, FieldType::U32};
inline constexpr Field s32NumNSPs{21, FieldType::I32};
inline constexpr uint32_t astNSPs = 25; // NSPEntry records
inline constexpr uint32_t MaxNSPs = 10;
inline constexpr Field u32PID{1385, FieldType::U32};
inline constexpr Field u32CF{1389, FieldType::U32};
inline constexpr Field u32Bandwidth{1393, FieldType::U32};
inline constexpr Field u32RSSI{1397, FieldType::U32};
inline constexpr Field u32CINR{1401, FieldType::U32};
inline constexpr uint32_t Size = 1405;

namespace NSPEntry {
inline constexpr Field u32ID{0, FieldType::U32};
inline constexpr Field u32NameLength{4, FieldType::U32};
inline constexpr uint32_t aucName = 8;
inline constexpr uint32_t NameSize = 128; // not terminated
inline constexpr uint32_t Size = 136;
static_assert(aucName + NameSize == Size);
} // namespace NSPEntry
static_assert(astNSPs + MaxNSPs * NSPEntry::Size == u32PID.u16Offset);
static_assert(EndOf(u32CINR) == Size);

inline constexpr uint32_t Success = 0;
inline constexpr uint32_t NotNeeded = 1;
inline constexpr uint32_t NotSupported = 2;
inline constexpr uint32_t SearchFailure = 3;
inline constexpr uint32_t Aborted = 4;
inline constexpr uint32_t ScanDurationTimeout = 5;
} // namespace NSPDiscovery

// Type 1, subtype 6.
namespace LowPowerScanRequest {
inline constexpr Field u8Mode{0, FieldType::U8};
inline constexpr uint32_t Size = 13;
inline constexpr uint32_t FirstMode = 100;
inline constexpr uint32_t LastMode = 104;
} // namespace LowPowerScanRequest

namespace LowPowerScanAnswer {
inline constexpr Field u32Result{0, FieldType::U32}; // 1 = set
inline constexpr Field u8Mode{4, FieldType::U8};
inline constexpr Field u32Rsvd1{5, FieldType::U32};
inline constexpr Field u32Rsvd2{9, FieldType::U32};
inline constexpr Field u32Rsvd3{13, FieldType::U32};
inline constexpr uint32_t Size = 17;
} // namespace LowPowerScanAnswer

// Type 2, subtype 1, request.
namespace SyncUpRequest {
inline constexpr Field u32CenterFrequency{0, FieldType::U32};
inline constexpr Field u32Bandwidth{4, FieldType::U32};
inline constexpr Field u32PreambleID{8, FieldType::U32};
inline constexpr uint32_t Size = 64;
inline constexpr uint32_t AnyPreamble = 255;
} // namespace SyncUpRequest

// Type 2, subtype 1, answer.
namespace SyncStatus {
inline constexpr Field u32Status{0, FieldType::U32};
inline constexpr Field u8CompressedMap{4, FieldType::U8};
inline constexpr Field aucBSID{6, FieldType::U8}; // six bytes
inline constexpr Field u32PreambleID{12, FieldType::U32};
inline constexpr Field s32CINRMean{16, FieldType::I32};      // dB
inline constexpr Field s32CINRDeviation{20, FieldType::I32}; // dB
inline constexpr Field s32RSSIMean{24, FieldType::I32};      // dBm
inline constexpr Field s32RSSIDeviation{28, FieldType::I32}; // dBm
inline constexpr Field u32CenterFrequency{32, FieldType::U32};
inline constexpr Field u32Bandwidth{36, FieldType::U32};
inline constexpr Field u32DCDChangeCount{40, FieldType::U32};
inline constexpr Field u32NSPChangeCount{44, FieldType::U32};
inline constexpr uint32_t Size = 48;
static_assert(EndOf(u32NSPChangeCount) == Size);
} // namespace SyncStatus

// Type 2, subtype 2, request: one zero word.
namespace NetworkEntryRequest {
inline constexpr uint32_t Size = 4;
}

// Type 2, subtype 4.
namespace NSPNetworkEntryRequest {
inline constexpr Field u32NSPIDPresent{0, FieldType::U32};
inline constexpr Field u32NSPID{4, FieldType::U32};
inline constexpr uint32_t Size = 268;
} // namespace NSPNetworkEntryRequest

// Part of the network entry status.
namespace BaseInformation {
inline constexpr Field aucBSID{0, FieldType::U8}; // six bytes
inline constexpr Field u8ULCellID{6, FieldType::U8};
inline constexpr Field u8PreambleIndex{7, FieldType::U8};
inline constexpr Field s16CINRMean{8, FieldType::I16};       // dB
inline constexpr Field s16CINRDeviation{10, FieldType::I16}; // dB
inline constexpr Field u32Duration{12, FieldType::U32};
inline constexpr Field u32MeanRSSI{16, FieldType::U32};
inline constexpr Field u32RSSIDeviation{20, FieldType::U32};
inline constexpr Field u32ULCenterFrequency{24, FieldType::U32}; // MHz
inline constexpr Field u32DLCenterFrequency{28, FieldType::U32}; // MHz
inline constexpr uint32_t Size = 32;
static_assert(EndOf(u32DLCenterFrequency) == Size);
} // namespace BaseInformation

// Type 2, subtype 2, answer.
namespace NetworkEntryStatus {
inline constexpr Field u8Status{0, FieldType::U8};
inline constexpr Field u32BaseInformationPresent{1, FieldType::U32};
inline constexpr uint32_t stBaseInformation = 5;
inline constexpr Field u32DREGActionCode{37, FieldType::U32};
inline constexpr Field s32VendorDataLength{41, FieldType::I32};
inline constexpr uint32_t aucVendorData = 45;
static_assert(stBaseInformation + BaseInformation::Size == u32DREGActionCode.u16Offset);
} // namespace NetworkEntryStatus

// Reasons and states of the link: sync status and network entry status.
namespace LinkReason {
inline constexpr uint32_t LinkUpAchieved = 0;
inline constexpr uint32_t PhySyncError = 1;
inline constexpr uint32_t MacSyncError = 2;
inline constexpr uint32_t HostInitiatedSyncDown = 3;
inline constexpr uint32_t RangingFailure = 4;
inline constexpr uint32_t SBCFailure = 5;
inline constexpr uint32_t PKMFailure = 6;
inline constexpr uint32_t RegistrationFailure = 7;
inline constexpr uint32_t DREGReceived = 8;
inline constexpr uint32_t ResetReceived = 9;
inline constexpr uint32_t InIdleMode = 10;
inline constexpr uint32_t InSleepMode = 11;
inline constexpr uint32_t NetworkEntryInProgress = 12;
inline constexpr uint32_t WaitForNetworkEntryCommand = 13;
inline constexpr uint32_t WaitForPhySyncCommand = 14;
inline constexpr uint32_t ShutdownReceivedCommand = 15;
inline constexpr uint32_t SATEKFailure = 16;
inline constexpr uint32_t LinkStatusNormal = 17;
inline constexpr uint32_t LinkDownHostInitiated = 19;
inline constexpr uint32_t MacVersionSwitch = 20;
inline constexpr uint32_t ShutdownResyncReceived = 21;
inline constexpr uint32_t IdleModeFailureCodeReceived = 22;
inline constexpr uint32_t LocationUpdateWithPowerDownSuccess = 23;
inline constexpr uint32_t BSOutOfReach = 24;
inline constexpr uint32_t IPRetentionTimerExpired = 25;
inline constexpr uint32_t InvalidReasonCode = 255;
} // namespace LinkReason

// Type 13, subtype 5, request and answer.
namespace CinrRssiThreshold {
inline constexpr Field s32RSSI{0, FieldType::I32};
inline constexpr Field s32CINR{4, FieldType::I32};
inline constexpr uint32_t Size = 8;
} // namespace CinrRssiThreshold

// Type 19, subtype 1, indication.
namespace IdleIndication {
inline constexpr Field u32State{0, FieldType::U32};     // the planned timeout, 0 = out of idle mode
inline constexpr Field aucBSID{4, FieldType::U8};       // six bytes
inline constexpr Field s32RSSIMean{10, FieldType::I32}; // quarter dB
inline constexpr Field u32CINRMean{14, FieldType::U32}; // dB
inline constexpr Field u32PreambleID{18, FieldType::U32};
inline constexpr Field s32VendorDataLength{22, FieldType::I32};
inline constexpr uint32_t aucVendorData = 26;
} // namespace IdleIndication

// A payload of one word: a status, a timer (seconds), an interval (milliseconds).
namespace StatusWord {
inline constexpr Field u32Value{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
} // namespace StatusWord

// Type 29, subtype 1, request and answer.
namespace WiMAXOption {
inline constexpr Field u8Specifier{0, FieldType::U8};
inline constexpr Field u32Value{1, FieldType::U32};
inline constexpr uint32_t Size = 5;
} // namespace WiMAXOption

// Type 29, subtypes 2 and 3, request and answer.
namespace WiMAXOptions {
inline constexpr uint32_t Count = 8;
inline constexpr Field u32Status{0, FieldType::U32};
inline constexpr Field u8Specifier{4, FieldType::U8}; // bit b: option b is present
inline constexpr Field au32Values{8, FieldType::U32}; // one word an option
inline constexpr uint32_t Size = 40;
static_assert(EndOf(au32Values) + (Count - 1) * 4 == Size);
} // namespace WiMAXOptions

#endif
