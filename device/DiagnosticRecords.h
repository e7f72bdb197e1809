// Payloads of the management message trace, the logs, GPIO and the LEDs.
// Offsets in bytes from the start of the payload (or of the record).
#ifndef DIAGNOSTIC_RECORDS_H
#define DIAGNOSTIC_RECORDS_H

#include "Wire.h"

// Type 21, subtype 1, indication: one management message.
namespace TraceRecord {
inline constexpr Field u8Direction{0, FieldType::U8};
inline constexpr Field u32FrameNumber{1, FieldType::U32};
inline constexpr Field u32Code{5, FieldType::U32};
inline constexpr Field s32BodyLength{9, FieldType::I32};
inline constexpr Field u32CID{13, FieldType::U32};
inline constexpr Field u8CMACResult{17, FieldType::U8};
inline constexpr uint32_t aucBody = 18;
static_assert(EndOf(u8CMACResult) == aucBody);

inline constexpr uint32_t BSToMS = 0;
inline constexpr uint32_t MSToBS = 1;
} // namespace TraceRecord

// Type 21, subtype 3, answer.
namespace TraceState {
inline constexpr Field u32State{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
inline constexpr uint32_t Enabled = 1;
} // namespace TraceState

// Log data of types 27 and 31.
inline constexpr uint32_t u32MACLogSize = 1500;
inline constexpr uint32_t u32PHYLogSize = 200;

// Type 8, indication. The length counts the bytes of the log; a negative one
// stands for no entries.
namespace LogRecord {
inline constexpr Field s16Length{0, FieldType::I16};
inline constexpr uint32_t aucData = 2;
static_assert(EndOf(s16Length) == aucData);
} // namespace LogRecord

namespace RangingLogEntry {
inline constexpr Field u32FrameNumber{0, FieldType::U32};
inline constexpr Field u32Code{4, FieldType::U32};
inline constexpr Field u32SubChannel{8, FieldType::U32};
inline constexpr Field u32Symbol{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
static_assert(EndOf(u32Symbol) == Size);
} // namespace RangingLogEntry

namespace BandwidthLogEntry {
inline constexpr Field u16PDULength{0, FieldType::U16};
inline constexpr Field u16AllocationReceived{2, FieldType::U16};
inline constexpr Field u16VCID{4, FieldType::U16};
inline constexpr Field u16CID{6, FieldType::U16};
inline constexpr Field u16QueueDepth{8, FieldType::U16};
inline constexpr Field u8BandwidthRequest{10, FieldType::U8};
inline constexpr Field u8SchedulingType{11, FieldType::U8};
inline constexpr Field u32FrameNumber{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
static_assert(EndOf(u32FrameNumber) == Size);

// Both together mark a padding packet.
inline constexpr uint32_t PaddingCID = 0xAABB;
inline constexpr uint32_t PaddingVCID = 0xCCDD;
} // namespace BandwidthLogEntry

namespace PowerLogEntry {
inline constexpr Field s32Adjustment{0, FieldType::I32}; // quarter dB
inline constexpr Field u32FrameOffset{4, FieldType::U32};
inline constexpr Field u32FrameNumber{8, FieldType::U32};
inline constexpr Field u32Power{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
static_assert(EndOf(u32Power) == Size);
} // namespace PowerLogEntry

namespace CIDLogEntry {
inline constexpr Field u16VCID{0, FieldType::U16};
inline constexpr Field u16CID{2, FieldType::U16};
inline constexpr Field u16ARQ{4, FieldType::U16};
inline constexpr Field u16Direction{6, FieldType::U16};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(u16Direction) == Size);
} // namespace CIDLogEntry

namespace CQICHLogEntry {
inline constexpr Field u32Value{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
static_assert(EndOf(u32Value) == Size);
} // namespace CQICHLogEntry

// Type 22, subtypes 1 and 2, request; subtype 2, answer.
namespace GPIOBit {
inline constexpr Field u32Position{0, FieldType::U32};
inline constexpr Field u32Value{4, FieldType::U32};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(u32Value) == Size);

inline constexpr uint32_t LastPosition = 16;
inline constexpr uint32_t Cleared = 0;
inline constexpr uint32_t Set = 1;
inline constexpr uint32_t Asked = 0xFF; // the value of a status request
} // namespace GPIOBit

namespace LEDEntry {
inline constexpr Field ucLedType{0, FieldType::U8};
inline constexpr Field ucLedOnState{1, FieldType::U8};    // driver states in which it is on
inline constexpr Field ucLedBlinkState{2, FieldType::U8}; // driver states in which it blinks
inline constexpr uint32_t Size = 3;
static_assert(EndOf(ucLedBlinkState) == Size);

inline constexpr uint32_t Count = 4; // red, blue, yellow, green: LEDs 1 to 4
inline constexpr uint32_t ReversePolarity = 0x80;
inline constexpr uint8_t Untouched = 0x7F; // every byte of an entry that was not configured
} // namespace LEDEntry

// Type 22, subtype 3, request.
namespace LEDBehaviour {
inline constexpr Field u32Save{0, FieldType::U32}; // 1 = to the configuration file, too
inline constexpr uint32_t astEntries = 4;          // LEDEntry records
inline constexpr uint32_t Size = 16;
static_assert(astEntries + LEDEntry::Count * LEDEntry::Size == Size);
} // namespace LEDBehaviour

// Type 22, subtype 4, answer.
namespace LEDState {
inline constexpr uint32_t astEntries = 0; // LEDEntry records
inline constexpr uint32_t Size = LEDEntry::Count * LEDEntry::Size;
} // namespace LEDState

#endif
