// Payloads of station information, statistics, chipset control and the MAC
// address. Offsets in bytes from the start of the payload.
#ifndef STATION_RECORDS_H
#define STATION_RECORDS_H

#include "Wire.h"

// Type 7, subtype 1, answer.
namespace SSInformation {
inline constexpr Field au32FirmwareVersion{0, FieldType::U32}; // major, minor, build
inline constexpr uint32_t acDriverVersion = 12;
inline constexpr uint32_t DriverVersionSize = 128;              // text, ends at a zero byte
inline constexpr Field au32LibraryVersion{140, FieldType::U32}; // major, minor, build
inline constexpr Field u32BasebandChipVersion{152, FieldType::U32};
inline constexpr Field u32RFChipVersion{156, FieldType::U32};
inline constexpr Field au32EEPROMVersion{160, FieldType::U32}; // major, minor
inline constexpr Field aucMACAddress{168, FieldType::U8};      // six bytes, two reserved behind
inline constexpr Field u8Calibration{176, FieldType::U8};
inline constexpr uint32_t Size = 177;
static_assert(acDriverVersion + DriverVersionSize == au32LibraryVersion.u16Offset);
static_assert(EndOf(u8Calibration) == Size);

inline constexpr uint32_t NotCalibrated = 0;
inline constexpr uint32_t CalibrationNotKnown = 254;
// Any other value is a mask of the calibrated bands.
inline constexpr uint32_t Band0 = 1U << 1;
inline constexpr uint32_t Band1 = 1U << 2;
inline constexpr uint32_t Band2 = 1U << 3;
} // namespace SSInformation

// Type 7, subtype 2, answer: a size, a byte that is not used, a bit a section.
namespace EEPROMSummary {
inline constexpr Field u16ValidMask{0, FieldType::U16};
inline constexpr Field u8SizeInKB{3, FieldType::U8};
inline constexpr uint32_t Size = 4;
inline constexpr uint32_t Sections = 11;
} // namespace EEPROMSummary

// Type 7, subtype 3, answer.
namespace EEPROMVersions {
inline constexpr Field u32RF{0, FieldType::U32};
inline constexpr Field u32PHY{4, FieldType::U32};
inline constexpr Field u32MAC{8, FieldType::U32};
inline constexpr Field u32CAL{12, FieldType::U32};
inline constexpr Field u32HW{16, FieldType::U32};
inline constexpr Field u32MIB{20, FieldType::U32};
inline constexpr Field u32Security{24, FieldType::U32};
inline constexpr Field u32OMADM{28, FieldType::U32};
inline constexpr Field u32MRU{32, FieldType::U32};
inline constexpr Field u32VSA{52, FieldType::U32}; // behind four words of other use
inline constexpr uint32_t Size = 56;
static_assert(EndOf(u32MRU) + 4 * 4 == u32VSA.u16Offset);
static_assert(EndOf(u32VSA) == Size);
} // namespace EEPROMVersions

// Type 17, subtype 1, answer: what is known of the record.
namespace Statistics {
inline constexpr Field u32RecordSize{0, FieldType::U32};
inline constexpr Field u32FramesReceived{4, FieldType::U32};
inline constexpr Field u32FramesInError{8, FieldType::U32};
inline constexpr Field u32CRCErrors{12, FieldType::U32};
inline constexpr Field u32HCSErrors{16, FieldType::U32};
inline constexpr Field u32CQICHTransmitted{20, FieldType::U32};
inline constexpr Field u32RSSI{24, FieldType::U32};
inline constexpr Field u32CINR{28, FieldType::U32};
inline constexpr Field u32BandwidthRequests{56, FieldType::U32};
inline constexpr Field s32NumConnections{60, FieldType::I32};
inline constexpr Field au32TransportCIDs{64, FieldType::U32}; // one word a connection
inline constexpr Field s8TxPower{234, FieldType::I8};
inline constexpr Field aucBSID{244, FieldType::U8}; // six bytes
inline constexpr Field u8BurstFEC{529, FieldType::U8};
inline constexpr Field u32CenterFrequency{948, FieldType::U32}; // kHz
inline constexpr uint32_t Size = 952;
// Whole words between the first identifier and the transmit power.
inline constexpr uint32_t MaxConnections = 42;
static_assert(EndOf(s32NumConnections) == au32TransportCIDs.u16Offset);
static_assert(au32TransportCIDs.u16Offset + MaxConnections * 4 <= s8TxPower.u16Offset);
static_assert(EndOf(u32CenterFrequency) == Size);
} // namespace Statistics

// Type 17, subtype 2: policy of the request, status of the answer.
namespace StatisticsReset {
inline constexpr uint32_t Disable = 0;
inline constexpr uint32_t Enable = 1;
inline constexpr uint32_t Failed = 0;
inline constexpr uint32_t Applied = 1;
} // namespace StatisticsReset

// Type 16, subtype 2, request.
namespace DownloadRequest {
inline constexpr Field u32FileType{0, FieldType::U32};
inline constexpr uint32_t acPath = 4; // text, ends at a zero byte
inline constexpr uint32_t PathSize = 128;
inline constexpr uint32_t Size = 132;
static_assert(acPath + PathSize == Size);
} // namespace DownloadRequest

// Type 16, subtype 2, answer: the path stands 4 bytes later than in the request.
namespace DownloadStatus {
inline constexpr Field u32Status{0, FieldType::U32}; // 0 = downloaded
inline constexpr Field u32FileType{4, FieldType::U32};
inline constexpr uint32_t acPath = 8;
} // namespace DownloadStatus

namespace DownloadFile {
inline constexpr uint32_t Configuration = 0;
inline constexpr uint32_t Firmware = 1;
} // namespace DownloadFile

// Type 16, subtype 3: answered in the request's own buffer.
namespace ModemStatus {
inline constexpr Field u8State{0, FieldType::U8};
inline constexpr uint32_t Size = 1;

inline constexpr uint32_t Active = 0;
inline constexpr uint32_t Crashed = 1;
inline constexpr uint32_t InShutdownMode = 2;
inline constexpr uint32_t InIdleMode = 3;
inline constexpr uint32_t DownloadInProgress = 4;
} // namespace ModemStatus

// Type 11, subtype 1, request; the answer is one status word.
namespace MACAddressRecord {
inline constexpr Field aucOctets{0, FieldType::U8};
inline constexpr uint32_t Size = 6;
} // namespace MACAddressRecord

#endif
