// The record of MIB requests and answers (type 24), the multiple forms, and the
// values of the attributes that are reports of their own. Offsets in bytes from
// the start of the record, of the value, or of the entry or zone within it.
#ifndef MIB_RECORD_H
#define MIB_RECORD_H

#include "Wire.h"

namespace MIBRecord {
inline constexpr Field u32AttributeID{0, FieldType::U32};
inline constexpr Field u8KeyCount{4, FieldType::U8};
inline constexpr Field u32Key1{5, FieldType::U32};
inline constexpr Field u32Key2{9, FieldType::U32};
// Eight reserved bytes, two more keys that nobody uses.
inline constexpr Field u32DataLength{21, FieldType::U32};
inline constexpr Field s8Status{25, FieldType::I8};
inline constexpr uint32_t aucValue = 26;
inline constexpr Field u16ShortValue{aucValue, FieldType::U16};
inline constexpr Field u32LongValue{aucValue, FieldType::U32};
// The fixed size counts one value byte: n value bytes make n + 26 bytes, none 27.
inline constexpr uint32_t Size = 27;
static_assert(EndOf(u32Key2) + 8 == u32DataLength.u16Offset);
static_assert(EndOf(s8Status) == aucValue);
} // namespace MIBRecord

// Several records back to back.
namespace MIBRecordList {
inline constexpr Field u16Count{0, FieldType::U16};
inline constexpr uint32_t astRecords = 2;
} // namespace MIBRecordList

// Attributes that somebody asks for by number.
namespace MIBAttribute {
inline constexpr uint32_t FirstConfig = 500;
inline constexpr uint32_t LastConfig = 799;
inline constexpr uint32_t MRUReset = 507;
inline constexpr uint32_t CenterFrequencyAndBandwidth = 509;
inline constexpr uint32_t WritableStatistic = 804; // the only one above LastConfig
inline constexpr uint32_t PerAttemptReceived = 1448;
inline constexpr uint32_t Negated1467 = 1467;
inline constexpr uint32_t Negated1468 = 1468;
inline constexpr uint32_t PerAttemptCompleted = 1479;
inline constexpr uint32_t SubmapErrors = 1482;
inline constexpr uint32_t Neighbours = 1494;
inline constexpr uint32_t ActiveSFIDs = 1503;
inline constexpr uint32_t MeasuredNeighbours = 1575;
inline constexpr uint32_t ZoneBursts = 1608;
inline constexpr uint32_t MRUTable = 1612;
inline constexpr uint32_t NetworkEntryTiming = 1619;
inline constexpr uint32_t ZoneStatistics = 1625;
inline constexpr uint32_t AntennaSwitch = 1631;
inline constexpr uint32_t TriggerStatus = 1633;
inline constexpr uint32_t BurstErrorRate = 1634;
inline constexpr uint32_t SoundingType = 1649;
inline constexpr uint32_t ControlMessagesDropped = 1654;
} // namespace MIBAttribute

// Attribute 509, written: a centre frequency and a bandwidth.
namespace MIBCenterFrequency {
inline constexpr Field u32CenterFrequency{0, FieldType::U32};
inline constexpr Field u32Bandwidth{4, FieldType::U32};
inline constexpr uint32_t Size = 16;
} // namespace MIBCenterFrequency

// Attribute 1503.
namespace MIBActiveSFIDs {
inline constexpr Field u32Count{0, FieldType::U32};
inline constexpr uint32_t astEntries = 4;
inline constexpr Field u32SFID{0, FieldType::U32};
inline constexpr uint32_t EntrySize = 136; // the rest is shown nowhere
} // namespace MIBActiveSFIDs

// Attribute 1619.
namespace MIBNetworkEntryTiming {
inline constexpr Field u32NwSearchTime{0, FieldType::U32};
inline constexpr Field u32PhySyncTime{4, FieldType::U32};
inline constexpr Field u32MacSyncTime{8, FieldType::U32};
inline constexpr Field u32RangingTime{12, FieldType::U32};
inline constexpr Field u32SbcTime{16, FieldType::U32};
inline constexpr Field u32AuthPhaseTime{20, FieldType::U32};
inline constexpr Field u32RegNegTime{24, FieldType::U32};
inline constexpr Field u32ProvSfTime{28, FieldType::U32};
inline constexpr Field u32NwEntryTime{32, FieldType::U32};
inline constexpr uint32_t Size = 36;
static_assert(EndOf(u32NwEntryTime) == Size);
} // namespace MIBNetworkEntryTiming

// Attribute 1612: entries to the end of the value.
namespace MIBMRUEntry {
inline constexpr Field u32Index{0, FieldType::U32};
inline constexpr uint32_t NumFrequencies = 3;
inline constexpr Field au32Frequencies{4, FieldType::U32};
inline constexpr Field u32Bandwidth{16, FieldType::U32}; // MHz
inline constexpr uint32_t Size = 20;
static_assert(EndOf(au32Frequencies) + (NumFrequencies - 1) * 4 == u32Bandwidth.u16Offset);
static_assert(EndOf(u32Bandwidth) == Size);
} // namespace MIBMRUEntry

// Attributes 1494 and 1575: a count, then entries.
namespace MIBNeighbourList {
inline constexpr Field u32Count{0, FieldType::U32};
inline constexpr uint32_t astEntries = 4;
} // namespace MIBNeighbourList

// An entry of attribute 1494.
namespace MIBNeighbour {
inline constexpr Field u32Preamble{0, FieldType::U32};
inline constexpr Field u32ChannelBandwidth{4, FieldType::U32}; // Hz
inline constexpr Field u32CenterFrequency{8, FieldType::U32};  // eighths of a MHz
inline constexpr Field aucBSID{12, FieldType::U8};             // six bytes, the last one first
inline constexpr uint32_t BSIDSize = 6;
inline constexpr Field s32RSSI{20, FieldType::I32}; // quarter dBm
inline constexpr Field u32CINR{24, FieldType::U32}; // dB
inline constexpr uint32_t Size = 28;
static_assert(EndOf(u32CINR) == Size);
} // namespace MIBNeighbour

// An entry of attribute 1575.
namespace MIBMeasuredNeighbour {
inline constexpr Field u32PreambleID{4, FieldType::U32};
inline constexpr Field u32Frequency{8, FieldType::U32};  // eighths of a MHz
inline constexpr Field u32Bandwidth{12, FieldType::U32}; // Hz
inline constexpr Field aucBSID{16, FieldType::U8};       // six bytes
inline constexpr Field u32R1CINR{24, FieldType::U32};    // 1/65536
inline constexpr Field u32R3CINR{28, FieldType::U32};    // 1/65536
inline constexpr Field u32RSSI{32, FieldType::U32};      // 1/65536 dBm
inline constexpr Field u32ToF{36, FieldType::U32};       // 1/16
inline constexpr Field u32RTD{40, FieldType::U32};
inline constexpr Field u32MeasDur{44, FieldType::U32};
inline constexpr Field u32Flags{48, FieldType::U32};
inline constexpr uint32_t Size = 52;
static_assert(EndOf(u32Flags) == Size);
} // namespace MIBMeasuredNeighbour

// Attribute 1631.
namespace MIBAntennaSwitch {
inline constexpr Field u32Filtering1{0, FieldType::U32}; // 1/512
inline constexpr Field u32Filtering2{4, FieldType::U32};
inline constexpr Field u32Margin1{8, FieldType::U32};
inline constexpr Field u32Margin2{12, FieldType::U32};
inline constexpr Field s32SmoothRSSI1{16, FieldType::I32}; // 1/16
inline constexpr Field s32SmoothRSSI2{20, FieldType::I32};
inline constexpr Field u32SelectionMode{24, FieldType::U32};
inline constexpr Field u32CurrentAntenna{28, FieldType::U32};
inline constexpr uint32_t Size = 32;
static_assert(EndOf(u32CurrentAntenna) == Size);
} // namespace MIBAntennaSwitch

// Attribute 1633.
namespace MIBTriggerStatus {
inline constexpr Field u8ServingBS{0, FieldType::U8};
inline constexpr Field u8IntraFA{1, FieldType::U8};
inline constexpr Field u8InterFA{2, FieldType::U8};
inline constexpr uint32_t Failed = 0;
inline constexpr uint32_t Passed = 1;
inline constexpr uint32_t NoMeasurements = 2;
inline constexpr uint32_t NotDefined = 3;
} // namespace MIBTriggerStatus

// Attributes 1448, 1479, 1482, 1634 and 1649: four counters.
namespace MIBFourCounters {
inline constexpr Field s32First{0, FieldType::I32};
inline constexpr uint32_t Count = 4;
} // namespace MIBFourCounters

// Attribute 1654: eight counters.
namespace MIBControlMessagesDropped {
inline constexpr Field s32First{0, FieldType::I32};
inline constexpr uint32_t Count = 8;
} // namespace MIBControlMessagesDropped

// One counter for each modulation and coding scheme.
namespace MIBCounterGroup {
inline constexpr Field s32First{0, FieldType::I32};
inline constexpr uint32_t Count = 21;
inline constexpr uint32_t Size = Count * 4;
} // namespace MIBCounterGroup

// Attribute 1608: ten zones, each a tenth of the value long.
namespace MIBBurstZone {
inline constexpr uint32_t Count = 10;
inline constexpr uint32_t stMatrixA = 0; // counter groups
inline constexpr uint32_t stMatrixB = 84;
inline constexpr uint32_t stNonMIMO = 168;
inline constexpr uint32_t Size = 252;
static_assert(stMatrixB == stMatrixA + MIBCounterGroup::Size);
static_assert(stNonMIMO == stMatrixB + MIBCounterGroup::Size);
static_assert(stNonMIMO + MIBCounterGroup::Size == Size);
} // namespace MIBBurstZone

// A downlink zone of attribute 1625.
namespace MIBDLZone {
inline constexpr Field u32FrameNumber{0, FieldType::U32};
inline constexpr Field s8PCINRRate1{4, FieldType::I8};
inline constexpr Field s8PCINRRate2{5, FieldType::I8};
inline constexpr Field s8ECINRRate{6, FieldType::I8};
inline constexpr Field s32PCINRFrame{8, FieldType::I32};
inline constexpr Field s32ECINRFrame{12, FieldType::I32};
inline constexpr uint32_t stBurstsMatrixA = 24; // counter groups
inline constexpr uint32_t stBurstsMatrixB = 108;
inline constexpr uint32_t stBurstsNonMIMO = 192;
inline constexpr uint32_t stPdusMatrixA = 276;
inline constexpr uint32_t stPdusMatrixB = 360;
inline constexpr uint32_t stPdusNonMIMO = 444;
inline constexpr uint32_t Size = 528;
static_assert(stBurstsMatrixB == stBurstsMatrixA + MIBCounterGroup::Size);
static_assert(stBurstsNonMIMO == stBurstsMatrixB + MIBCounterGroup::Size);
static_assert(stPdusMatrixA == stBurstsNonMIMO + MIBCounterGroup::Size);
static_assert(stPdusMatrixB == stPdusMatrixA + MIBCounterGroup::Size);
static_assert(stPdusNonMIMO == stPdusMatrixB + MIBCounterGroup::Size);
static_assert(stPdusNonMIMO + MIBCounterGroup::Size == Size);
} // namespace MIBDLZone

// An uplink zone of attribute 1625.
namespace MIBULZone {
inline constexpr Field u32FrameNumber{0, FieldType::U32};
inline constexpr uint32_t stBurstsPilotA = 20; // counter groups
inline constexpr uint32_t stBurstsPilotB = 104;
inline constexpr uint32_t stBurstsNonCSM = 188;
inline constexpr uint32_t stPdusPilotA = 272;
inline constexpr uint32_t stPdusPilotB = 356;
inline constexpr uint32_t stPdusNonCSM = 440;
inline constexpr uint32_t Size = 524;
static_assert(stBurstsPilotB == stBurstsPilotA + MIBCounterGroup::Size);
static_assert(stBurstsNonCSM == stBurstsPilotB + MIBCounterGroup::Size);
static_assert(stPdusPilotA == stBurstsNonCSM + MIBCounterGroup::Size);
static_assert(stPdusPilotB == stPdusPilotA + MIBCounterGroup::Size);
static_assert(stPdusNonCSM == stPdusPilotB + MIBCounterGroup::Size);
static_assert(stPdusNonCSM + MIBCounterGroup::Size == Size);
} // namespace MIBULZone

// Attribute 1625: a head, the downlink zones, the uplink zones.
namespace MIBZoneStatistics {
inline constexpr Field u32MajorGroup{0, FieldType::U32};
inline constexpr uint32_t NumDLZones = 10;
inline constexpr uint32_t astDLZones = 16;
inline constexpr uint32_t NumULZones = 3;
inline constexpr uint32_t astULZones = 5296;
inline constexpr uint32_t Size = 6868;
static_assert(astDLZones + NumDLZones * MIBDLZone::Size == astULZones);
static_assert(astULZones + NumULZones * MIBULZone::Size == Size);
} // namespace MIBZoneStatistics

#endif
