// Payloads of sleep mode and handover. Offsets in bytes from the start of the
// payload or of the record.
#ifndef MOBILITY_RECORDS_H
#define MOBILITY_RECORDS_H

#include "Wire.h"

// A power saving class (PSC): defined, activated or deactivated. Packed: the
// number of CIDs is not aligned.
namespace PSCDefinition {
inline constexpr uint32_t MaxCIDs = 16;
inline constexpr Field u8PSCID{0, FieldType::U8};
inline constexpr Field u8PSCType{1, FieldType::U8};
inline constexpr Field u8Direction{2, FieldType::U8}; // 0 not specified, 1 downlink, 2 uplink
inline constexpr Field u8InitialSleepWindow{3, FieldType::U8};
inline constexpr Field u8FinalSleepWindowExp{4, FieldType::U8}; // 3 bits
inline constexpr Field u8ListenWindow{5, FieldType::U8};
inline constexpr Field u16FinalSleepWindowBase{6, FieldType::U16}; // 10 bits
inline constexpr Field u8TTWF{8, FieldType::U8}; // traffic triggered wakening flag
inline constexpr Field u8TIR{9, FieldType::U8};
inline constexpr Field au16CID{12, FieldType::U16};
inline constexpr Field u8Activity{44, FieldType::U8};
inline constexpr Field u32NumOfCIDs{45, FieldType::U32};
inline constexpr uint32_t Size = 49;
static_assert(EndOf(au16CID) + (MaxCIDs - 1) * 2 == u8Activity.u16Offset);
static_assert(EndOf(u32NumOfCIDs) == Size);

inline constexpr uint32_t NewPSCID = 0xFF;

inline constexpr uint32_t ActivityDefinition = 0;
inline constexpr uint32_t ActivityActivation = 1;
inline constexpr uint32_t ActivityDeactivation = 2;
inline constexpr uint32_t ActivityDefinitionAndActivation = 3;
} // namespace PSCDefinition

// Type 26: request (subtype 1) and indication (subtype 2).
namespace SleepMode {
inline constexpr uint32_t MaxDefinitions = 3;
inline constexpr Field numOfDefinitions{0, FieldType::U32};
inline constexpr uint32_t astPSCDefinition = 4; // PSCDefinition records
inline constexpr uint32_t Size = 200;           // 49 reserved bytes at the end
static_assert(astPSCDefinition + MaxDefinitions * PSCDefinition::Size + 49 == Size);
} // namespace SleepMode

// Type 23, subtype 1, indication.
namespace Handover {
inline constexpr Field u8HOSuccess{0, FieldType::U8};
inline constexpr Field u8IPRefreshNeeded{1, FieldType::U8};
inline constexpr Field au8CurrentBSID{2, FieldType::U8}; // six bytes
inline constexpr Field au8LastBSID{8, FieldType::U8};    // six bytes
inline constexpr Field u32NumRangingFailures{14, FieldType::U32};
inline constexpr Field u32HOLatency{18, FieldType::U32};
inline constexpr Field u32CurrentPreambleID{22, FieldType::U32};
inline constexpr Field u32LastPreambleID{26, FieldType::U32};
inline constexpr Field u32VendorSpecificDataLength{30, FieldType::U32}; // 1 to 255
inline constexpr uint32_t au8VendorSpecificData = 34;
static_assert(au8CurrentBSID.u16Offset + 6 == au8LastBSID.u16Offset);
static_assert(au8LastBSID.u16Offset + 6 == u32NumRangingFailures.u16Offset);
static_assert(EndOf(u32VendorSpecificDataLength) == au8VendorSpecificData);
} // namespace Handover

// The subtype of a network layer control message that asks for a new DHCP lease.
namespace NetworkLayerControl {
inline constexpr uint32_t DHCPRefresh = 1;
}

#endif
