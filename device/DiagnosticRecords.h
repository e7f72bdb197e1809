// Payloads of the management message trace, the logs, GPIO and the LEDs.
// Offsets in bytes from the start of the payload (or of the record).
#ifndef DIAGNOSTIC_RECORDS_H
#define DIAGNOSTIC_RECORDS_H

#include "Wire.h"

// Type 21, subtype 1, indication: one management message.
namespace TraceRecord {
inline constexpr Field Direction{0, FieldType::U8};
inline constexpr Field FrameNumber{1, FieldType::U32};
inline constexpr Field Code{5, FieldType::U32};
inline constexpr Field BodyLength{9, FieldType::I32};
inline constexpr Field CID{13, FieldType::U32};
inline constexpr Field CMACResult{17, FieldType::U8};
inline constexpr uint32_t Body = 18;
static_assert(EndOf(CMACResult) == Body);

inline constexpr uint32_t BSToMS = 0;
inline constexpr uint32_t MSToBS = 1;
} // namespace TraceRecord

// Type 21, subtype 3, answer.
namespace TraceState {
inline constexpr Field State{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
inline constexpr uint32_t Enabled = 1;
} // namespace TraceState

// Log data of types 27 and 31.
inline constexpr uint32_t u32MACLogSize = 1500;
inline constexpr uint32_t u32PHYLogSize = 200;

// Type 8, indication. The length counts the bytes of the log; from 0x8000 on it
// is negative and stands for no entries.
namespace LogRecord {
inline constexpr Field Length{0, FieldType::U16};
inline constexpr uint32_t Data = 2;
static_assert(EndOf(Length) == Data);
} // namespace LogRecord

namespace RangingLogEntry {
inline constexpr Field FrameNumber{0, FieldType::U32};
inline constexpr Field Code{4, FieldType::U32};
inline constexpr Field SubChannel{8, FieldType::U32};
inline constexpr Field Symbol{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
static_assert(EndOf(Symbol) == Size);
} // namespace RangingLogEntry

namespace BandwidthLogEntry {
inline constexpr Field PDULength{0, FieldType::U16};
inline constexpr Field AllocationReceived{2, FieldType::U16};
inline constexpr Field VCID{4, FieldType::U16};
inline constexpr Field CID{6, FieldType::U16};
inline constexpr Field QueueDepth{8, FieldType::U16};
inline constexpr Field BandwidthRequest{10, FieldType::U8};
inline constexpr Field SchedulingType{11, FieldType::U8};
inline constexpr Field FrameNumber{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
static_assert(EndOf(FrameNumber) == Size);

// Both together mark a padding packet.
inline constexpr uint32_t PaddingCID = 0xAABB;
inline constexpr uint32_t PaddingVCID = 0xCCDD;
} // namespace BandwidthLogEntry

namespace PowerLogEntry {
inline constexpr Field Adjustment{0, FieldType::I32}; // quarter dB
inline constexpr Field FrameOffset{4, FieldType::U32};
inline constexpr Field FrameNumber{8, FieldType::U32};
inline constexpr Field Power{12, FieldType::U32};
inline constexpr uint32_t Size = 16;
static_assert(EndOf(Power) == Size);
} // namespace PowerLogEntry

namespace CIDLogEntry {
inline constexpr Field VCID{0, FieldType::U16};
inline constexpr Field CID{2, FieldType::U16};
inline constexpr Field ARQ{4, FieldType::U16};
inline constexpr Field Direction{6, FieldType::U16};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(Direction) == Size);
} // namespace CIDLogEntry

namespace CQICHLogEntry {
inline constexpr Field Value{0, FieldType::U32};
inline constexpr uint32_t Size = 4;
static_assert(EndOf(Value) == Size);
} // namespace CQICHLogEntry

// Type 22, subtypes 1 and 2, request; subtype 2, answer.
namespace GPIOBit {
inline constexpr Field Position{0, FieldType::U32};
inline constexpr Field Value{4, FieldType::U32};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(Value) == Size);

inline constexpr uint32_t LastPosition = 16;
inline constexpr uint32_t Cleared = 0;
inline constexpr uint32_t Set = 1;
inline constexpr uint32_t Asked = 0xFF; // the value of a status request
} // namespace GPIOBit

namespace LEDEntry {
inline constexpr Field Type{0, FieldType::U8};
inline constexpr Field OnState{1, FieldType::U8};    // driver states in which it is on
inline constexpr Field BlinkState{2, FieldType::U8}; // driver states in which it blinks
inline constexpr uint32_t Size = 3;
static_assert(EndOf(BlinkState) == Size);

inline constexpr uint32_t Count = 4; // red, blue, yellow, green: LEDs 1 to 4
inline constexpr uint32_t ReversePolarity = 0x80;
inline constexpr uint8_t Untouched = 0x7F; // every byte of an entry that was not configured
} // namespace LEDEntry

// Type 22, subtype 3, request.
namespace LEDBehaviour {
inline constexpr Field Save{0, FieldType::U32}; // 1 = to the configuration file, too
inline constexpr uint32_t Entries = 4;          // LEDEntry records
inline constexpr uint32_t Size = 16;
static_assert(Entries + LEDEntry::Count * LEDEntry::Size == Size);
} // namespace LEDBehaviour

// Type 22, subtype 4, answer.
namespace LEDState {
inline constexpr uint32_t Entries = 0; // LEDEntry records
inline constexpr uint32_t Size = LEDEntry::Count * LEDEntry::Size;
} // namespace LEDState

#endif
