// The record of MIB requests and answers (type 24), the multiple forms, and the
// values of the attributes that are reports of their own. Offsets in bytes from
// the start of the record, of the value, or of the entry or zone within it.
#ifndef MIB_RECORD_H
#define MIB_RECORD_H

#include "Wire.h"

namespace MIBRecord {
inline constexpr Field AttributeID{0, FieldType::U32};
inline constexpr Field KeyCount{4, FieldType::U8};
inline constexpr Field Key1{5, FieldType::U32};
inline constexpr Field Key2{9, FieldType::U32};
// Eight reserved bytes, two more keys that nobody uses.
inline constexpr Field DataLength{21, FieldType::U32};
inline constexpr Field Status{25, FieldType::I8};
inline constexpr uint32_t Value = 26;
inline constexpr Field ShortValue{Value, FieldType::U16};
inline constexpr Field LongValue{Value, FieldType::U32};
// The fixed size counts one value byte: n value bytes make n + 26 bytes, none 27.
inline constexpr uint32_t Size = 27;
static_assert(EndOf(Key2) + 8 == DataLength.u16Offset);
static_assert(EndOf(Status) == Value);
} // namespace MIBRecord

// Several records back to back.
namespace MIBRecordList {
inline constexpr Field Count{0, FieldType::U16};
inline constexpr uint32_t Records = 2;
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
inline constexpr Field CenterFrequency{0, FieldType::U32};
inline constexpr Field Bandwidth{4, FieldType::U32};
inline constexpr uint32_t Size = 16;
} // namespace MIBCenterFrequency

// Attribute 1503.
namespace MIBActiveSFIDs {
inline constexpr Field Count{0, FieldType::U32};
inline constexpr uint32_t Entries = 4;
inline constexpr Field SFID{0, FieldType::U32};
inline constexpr uint32_t EntrySize = 136; // the rest is shown nowhere
} // namespace MIBActiveSFIDs

// Attribute 1619.
namespace MIBNetworkEntryTiming {
inline constexpr Field NwSearch{0, FieldType::U32};
inline constexpr Field PhySync{4, FieldType::U32};
inline constexpr Field MacSync{8, FieldType::U32};
inline constexpr Field Ranging{12, FieldType::U32};
inline constexpr Field Sbc{16, FieldType::U32};
inline constexpr Field AuthPhase{20, FieldType::U32};
inline constexpr Field RegNeg{24, FieldType::U32};
inline constexpr Field ProvSf{28, FieldType::U32};
inline constexpr Field NwEntry{32, FieldType::U32};
inline constexpr uint32_t Size = 36;
static_assert(EndOf(NwEntry) == Size);
} // namespace MIBNetworkEntryTiming

// Attribute 1612: entries to the end of the value.
namespace MIBMRUEntry {
inline constexpr Field Index{0, FieldType::U32};
inline constexpr uint32_t NumFrequencies = 3;
inline constexpr Field Frequencies{4, FieldType::U32};
inline constexpr Field Bandwidth{16, FieldType::U32}; // MHz
inline constexpr uint32_t Size = 20;
static_assert(EndOf(Frequencies) + (NumFrequencies - 1) * 4 == Bandwidth.u16Offset);
static_assert(EndOf(Bandwidth) == Size);
} // namespace MIBMRUEntry

// Attributes 1494 and 1575: a count, then entries.
namespace MIBNeighbourList {
inline constexpr Field Count{0, FieldType::U32};
inline constexpr uint32_t Entries = 4;
} // namespace MIBNeighbourList

// An entry of attribute 1494.
namespace MIBNeighbour {
inline constexpr Field Preamble{0, FieldType::U32};
inline constexpr Field ChannelBandwidth{4, FieldType::U32}; // Hz
inline constexpr Field CenterFrequency{8, FieldType::U32};  // eighths of a MHz
inline constexpr Field BSID{12, FieldType::U8};             // six bytes, the last one first
inline constexpr uint32_t BSIDSize = 6;
inline constexpr Field RSSI{20, FieldType::I32}; // quarter dBm
inline constexpr Field CINR{24, FieldType::U32}; // dB
inline constexpr uint32_t Size = 28;
static_assert(EndOf(CINR) == Size);
} // namespace MIBNeighbour

// An entry of attribute 1575.
namespace MIBMeasuredNeighbour {
inline constexpr Field PreambleID{4, FieldType::U32};
inline constexpr Field Frequency{8, FieldType::U32};  // eighths of a MHz
inline constexpr Field Bandwidth{12, FieldType::U32}; // Hz
inline constexpr Field BSID{16, FieldType::U8};       // six bytes
inline constexpr Field R1CINR{24, FieldType::U32};    // 1/65536
inline constexpr Field R3CINR{28, FieldType::U32};    // 1/65536
inline constexpr Field RSSI{32, FieldType::U32};      // 1/65536 dBm
inline constexpr Field ToF{36, FieldType::U32};       // 1/16
inline constexpr Field RTD{40, FieldType::U32};
inline constexpr Field MeasDur{44, FieldType::U32};
inline constexpr Field Flags{48, FieldType::U32};
inline constexpr uint32_t Size = 52;
static_assert(EndOf(Flags) == Size);
} // namespace MIBMeasuredNeighbour

// Attribute 1631.
namespace MIBAntennaSwitch {
inline constexpr Field Filtering1{0, FieldType::U32}; // 1/512
inline constexpr Field Filtering2{4, FieldType::U32};
inline constexpr Field Margin1{8, FieldType::U32};
inline constexpr Field Margin2{12, FieldType::U32};
inline constexpr Field SmoothRSSI1{16, FieldType::I32}; // 1/16
inline constexpr Field SmoothRSSI2{20, FieldType::I32};
inline constexpr Field SelectionMode{24, FieldType::U32};
inline constexpr Field CurrentAntenna{28, FieldType::U32};
inline constexpr uint32_t Size = 32;
static_assert(EndOf(CurrentAntenna) == Size);
} // namespace MIBAntennaSwitch

// Attribute 1633.
namespace MIBTriggerStatus {
inline constexpr Field ServingBS{0, FieldType::U8};
inline constexpr Field IntraFA{1, FieldType::U8};
inline constexpr Field InterFA{2, FieldType::U8};
inline constexpr uint32_t Failed = 0;
inline constexpr uint32_t Passed = 1;
inline constexpr uint32_t NoMeasurements = 2;
inline constexpr uint32_t NotDefined = 3;
} // namespace MIBTriggerStatus

// Attributes 1448, 1479, 1482, 1634 and 1649: four counters.
namespace MIBFourCounters {
inline constexpr Field First{0, FieldType::I32};
inline constexpr uint32_t Count = 4;
} // namespace MIBFourCounters

// Attribute 1654: eight counters.
namespace MIBControlMessagesDropped {
inline constexpr Field First{0, FieldType::I32};
inline constexpr uint32_t Count = 8;
} // namespace MIBControlMessagesDropped

// One counter for each modulation and coding scheme.
namespace MIBCounterGroup {
inline constexpr Field First{0, FieldType::I32};
inline constexpr uint32_t Count = 21;
inline constexpr uint32_t Size = Count * 4;
} // namespace MIBCounterGroup

// Attribute 1608: ten zones, each a tenth of the value long.
namespace MIBBurstZone {
inline constexpr uint32_t Count = 10;
inline constexpr uint32_t MatrixA = 0; // counter groups
inline constexpr uint32_t MatrixB = 84;
inline constexpr uint32_t NonMIMO = 168;
inline constexpr uint32_t Size = 252;
static_assert(MatrixB == MatrixA + MIBCounterGroup::Size);
static_assert(NonMIMO == MatrixB + MIBCounterGroup::Size);
static_assert(NonMIMO + MIBCounterGroup::Size == Size);
} // namespace MIBBurstZone

// A downlink zone of attribute 1625.
namespace MIBDLZone {
inline constexpr Field FrameNumber{0, FieldType::U32};
inline constexpr Field PCINRRate1{4, FieldType::I8};
inline constexpr Field PCINRRate2{5, FieldType::I8};
inline constexpr Field ECINRRate{6, FieldType::I8};
inline constexpr Field PCINRFrame{8, FieldType::I32};
inline constexpr Field ECINRFrame{12, FieldType::I32};
inline constexpr uint32_t BurstsMatrixA = 24; // counter groups
inline constexpr uint32_t BurstsMatrixB = 108;
inline constexpr uint32_t BurstsNonMIMO = 192;
inline constexpr uint32_t PdusMatrixA = 276;
inline constexpr uint32_t PdusMatrixB = 360;
inline constexpr uint32_t PdusNonMIMO = 444;
inline constexpr uint32_t Size = 528;
static_assert(BurstsMatrixB == BurstsMatrixA + MIBCounterGroup::Size);
static_assert(BurstsNonMIMO == BurstsMatrixB + MIBCounterGroup::Size);
static_assert(PdusMatrixA == BurstsNonMIMO + MIBCounterGroup::Size);
static_assert(PdusMatrixB == PdusMatrixA + MIBCounterGroup::Size);
static_assert(PdusNonMIMO == PdusMatrixB + MIBCounterGroup::Size);
static_assert(PdusNonMIMO + MIBCounterGroup::Size == Size);
} // namespace MIBDLZone

// An uplink zone of attribute 1625.
namespace MIBULZone {
inline constexpr Field FrameNumber{0, FieldType::U32};
inline constexpr uint32_t BurstsPilotA = 20; // counter groups
inline constexpr uint32_t BurstsPilotB = 104;
inline constexpr uint32_t BurstsNonCSM = 188;
inline constexpr uint32_t PdusPilotA = 272;
inline constexpr uint32_t PdusPilotB = 356;
inline constexpr uint32_t PdusNonCSM = 440;
inline constexpr uint32_t Size = 524;
static_assert(BurstsPilotB == BurstsPilotA + MIBCounterGroup::Size);
static_assert(BurstsNonCSM == BurstsPilotB + MIBCounterGroup::Size);
static_assert(PdusPilotA == BurstsNonCSM + MIBCounterGroup::Size);
static_assert(PdusPilotB == PdusPilotA + MIBCounterGroup::Size);
static_assert(PdusNonCSM == PdusPilotB + MIBCounterGroup::Size);
static_assert(PdusNonCSM + MIBCounterGroup::Size == Size);
} // namespace MIBULZone

// Attribute 1625: a head, the downlink zones, the uplink zones.
namespace MIBZoneStatistics {
inline constexpr Field MajorGroup{0, FieldType::U32};
inline constexpr uint32_t NumDLZones = 10;
inline constexpr uint32_t DLZones = 16;
inline constexpr uint32_t NumULZones = 3;
inline constexpr uint32_t ULZones = 5296;
inline constexpr uint32_t Size = 6868;
static_assert(DLZones + NumDLZones * MIBDLZone::Size == ULZones);
static_assert(ULZones + NumULZones * MIBULZone::Size == Size);
} // namespace MIBZoneStatistics

#endif
