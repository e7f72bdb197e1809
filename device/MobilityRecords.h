// Payloads of sleep mode and handover. Offsets in bytes from the start of the
// payload or of the record.
#ifndef MOBILITY_RECORDS_H
#define MOBILITY_RECORDS_H

#include "Wire.h"

// A power saving class (PSC): defined, activated or deactivated. Packed: the
// number of CIDs is not aligned.
namespace PSCDefinition {
inline constexpr uint32_t MaxCIDs = 16;
inline constexpr Field PSCID{0, FieldType::U8};
inline constexpr Field PSCType{1, FieldType::U8};
inline constexpr Field Direction{2, FieldType::U8}; // 0 not specified, 1 downlink, 2 uplink
inline constexpr Field InitialSleepWindow{3, FieldType::U8};
inline constexpr Field FinalSleepWindowExp{4, FieldType::U8}; // 3 bits
inline constexpr Field ListenWindow{5, FieldType::U8};
inline constexpr Field FinalSleepWindowBase{6, FieldType::U16}; // 10 bits
inline constexpr Field TTWF{8, FieldType::U8};                  // traffic triggered wakening flag
inline constexpr Field TIR{9, FieldType::U8};
inline constexpr Field CIDs{12, FieldType::U16};
inline constexpr Field Activity{44, FieldType::U8};
inline constexpr Field NumCIDs{45, FieldType::U32};
inline constexpr uint32_t Size = 49;
static_assert(EndOf(CIDs) + (MaxCIDs - 1) * 2 == Activity.u16Offset);
static_assert(EndOf(NumCIDs) == Size);

inline constexpr uint32_t NewPSCID = 0xFF;

inline constexpr uint32_t ActivityDefinition = 0;
inline constexpr uint32_t ActivityActivation = 1;
inline constexpr uint32_t ActivityDeactivation = 2;
inline constexpr uint32_t ActivityDefinitionAndActivation = 3;
} // namespace PSCDefinition

// Type 26: request (subtype 1) and indication (subtype 2).
namespace SleepMode {
inline constexpr uint32_t MaxDefinitions = 3;
inline constexpr Field NumDefinitions{0, FieldType::U32};
inline constexpr uint32_t Definitions = 4; // PSCDefinition records
inline constexpr uint32_t Size = 200;      // 49 reserved bytes at the end
static_assert(Definitions + MaxDefinitions * PSCDefinition::Size + 49 == Size);
} // namespace SleepMode

// Type 23, subtype 1, indication.
namespace Handover {
inline constexpr Field Success{0, FieldType::U8};
inline constexpr Field IPRefreshNeeded{1, FieldType::U8};
inline constexpr Field CurrentBSID{2, FieldType::U8}; // six bytes
inline constexpr Field LastBSID{8, FieldType::U8};    // six bytes
inline constexpr Field NumRangingFailures{14, FieldType::U32};
inline constexpr Field Latency{18, FieldType::U32};
inline constexpr Field CurrentPreambleID{22, FieldType::U32};
inline constexpr Field LastPreambleID{26, FieldType::U32};
inline constexpr Field VendorDataLength{30, FieldType::U32}; // 1 to 255
inline constexpr uint32_t VendorData = 34;
static_assert(CurrentBSID.u16Offset + 6 == LastBSID.u16Offset);
static_assert(LastBSID.u16Offset + 6 == NumRangingFailures.u16Offset);
static_assert(EndOf(VendorDataLength) == VendorData);
} // namespace Handover

// The subtype of a network layer control message that asks for a new DHCP lease.
namespace NetworkLayerControl {
inline constexpr uint32_t DHCPRefresh = 1;
}

#endif
