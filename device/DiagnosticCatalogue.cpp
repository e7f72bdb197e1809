#include "DiagnosticRecords.h"
#include "Layouts.h"

namespace {

constexpr CodeRow astDirections[] = {CODE(TraceRecord, BSToMS), CODE(TraceRecord, MSToBS)};

// Management messages that name a subscriber, by its MAC address or a hash of it
// or by its identity, or that exchange its keys.
constexpr CaseRow astGuardedMessages[] = {
    {4, nullptr, Guard::Identity},  // ranging request
    {5, nullptr, Guard::Identity},  // and response
    {6, nullptr, Guard::Identity},  // registration request
    {7, nullptr, Guard::Identity},  // and response
    {9, nullptr, Guard::Secret},    // key management request
    {10, nullptr, Guard::Secret},   // and response
    {62, nullptr, Guard::Identity}, // paging
};

constexpr FieldRow astTraceRecord[] = {
    FIELD(TraceRecord, u8Direction,
          "0 base station to mobile station, 1 the other way, else not shown",
          .astCodes = astDirections),
    FIELD(TraceRecord, u32FrameNumber, "frame number"),
    FIELD(TraceRecord, u32Code, "the IEEE 802.16 management message type"),
    FIELD(TraceRecord, s32BodyLength, "length of the body"),
    FIELD(TraceRecord, u32CID, "connection identifier", .eShown = Shown::Hexadecimal),
    FIELD(TraceRecord, u8CMACResult, "result of the CMAC check"),
    FIELD(TraceRecord, aucBody, "body", .u16Count = 0, .stCounter = TraceRecord::s32BodyLength,
          .eShown = Shown::Bytes, .astCases = astGuardedMessages,
          .stSelector = TraceRecord::u32Code),
};

constexpr CodeRow astTraceStates[] = {CODE(TraceState, Enabled)};

constexpr FieldRow astTraceState[] = {
    FIELD(TraceState, u32State, "1 on, anything else off", .astCodes = astTraceStates),
};

constexpr FieldRow astRangingLogEntry[] = {
    FIELD(RangingLogEntry, u32FrameNumber, "frame number"),
    FIELD(RangingLogEntry, u32Code, "code", .eShown = Shown::Hexadecimal),
    FIELD(RangingLogEntry, u32SubChannel, "sub-channel", .eShown = Shown::Hexadecimal),
    FIELD(RangingLogEntry, u32Symbol, "OFDMA symbol", .eShown = Shown::Hexadecimal),
};

constexpr FieldRow astBandwidthLogEntry[] = {
    FIELD(BandwidthLogEntry, u16PDULength, "PDU length"),
    FIELD(BandwidthLogEntry, u16AllocationReceived, "allocation received"),
    FIELD(BandwidthLogEntry, u16VCID, "VCID; 0xCCDD with the CID 0xAABB: a padding packet",
          .eShown = Shown::Hexadecimal),
    FIELD(BandwidthLogEntry, u16CID, "CID", .eShown = Shown::Hexadecimal),
    FIELD(BandwidthLogEntry, u16QueueDepth, "queue depth"),
    FIELD(BandwidthLogEntry, u8BandwidthRequest, "bandwidth request"),
    FIELD(BandwidthLogEntry, u8SchedulingType, "scheduling type"),
    FIELD(BandwidthLogEntry, u32FrameNumber, "frame number"),
};

constexpr FieldRow astPowerLogEntry[] = {
    FIELD(PowerLogEntry, s32Adjustment, "adjustment", .pcUnit = "dB", .u32Divisor = 4),
    FIELD(PowerLogEntry, u32FrameOffset, "frame offset"),
    FIELD(PowerLogEntry, u32FrameNumber, "frame number"),
    FIELD(PowerLogEntry, u32Power, "power"),
};

constexpr FieldRow astCIDLogEntry[] = {
    FIELD(CIDLogEntry, u16VCID, "VCID", .eShown = Shown::Hexadecimal),
    FIELD(CIDLogEntry, u16CID, "CID", .eShown = Shown::Hexadecimal),
    FIELD(CIDLogEntry, u16ARQ, "ARQ"),
    FIELD(CIDLogEntry, u16Direction, "direction"),
};

constexpr FieldRow astCQICHLogEntry[] = {
    FIELD(CQICHLogEntry, u32Value, "value"),
};

constexpr Layout stRangingLogEntry = LAYOUT(RangingLogEntry, astRangingLogEntry);
constexpr Layout stBandwidthLogEntry = LAYOUT(BandwidthLogEntry, astBandwidthLogEntry);
constexpr Layout stPowerLogEntry = LAYOUT(PowerLogEntry, astPowerLogEntry);
constexpr Layout stCIDLogEntry = LAYOUT(CIDLogEntry, astCIDLogEntry);
constexpr Layout stCQICHLogEntry = LAYOUT(CQICHLogEntry, astCQICHLogEntry);

// A log whose entries have that layout.
template <const Layout &stEntry>
constexpr FieldRow astLog[] = {
    FIELD(LogRecord, s16Length, "length of the log in bytes; a negative one stands for no entries"),
    {.stName = "astEntries",
     .stField = PlaceOf(LogRecord::aucData),
     .pcMeaning = "entries",
     .u16Count = 0,
     .stCounter = LogRecord::s16Length,
     .bCountsBytes = true,
     .pstRecord = &stEntry},
};

constexpr FieldRow astMACLogData[] = {
    {.stName = "aucLogData",
     .pcMeaning = "log data",
     .u16Count = u32MACLogSize,
     .eShown = Shown::Bytes},
};
constexpr FieldRow astPHYLogData[] = {
    {.stName = "aucLogData",
     .pcMeaning = "log data",
     .u16Count = u32PHYLogSize,
     .eShown = Shown::Bytes},
};

constexpr FieldRow astGPIOBit[] = {
    FIELD(GPIOBit, u32Position, "bit, 0 to 16"),
    FIELD(
        GPIOBit, u32Value,
        "22/1: 1 set, 0 clear. Request 22/2: 0xFF. Answer 22/2: the state, anything but 0 is set"),
};

constexpr FieldRow astLEDEntry[] = {
    FIELD(LEDEntry, ucLedType,
          "LED: 1 red, 2 blue, 3 yellow, 4 green; 0x80 added for reverse polarity (0 is on)",
          .eShown = Shown::Hexadecimal),
    FIELD(LEDEntry, ucLedOnState, "mask of the driver states in which it is on",
          .eShown = Shown::Hexadecimal),
    FIELD(LEDEntry, ucLedBlinkState, "mask of the driver states in which it blinks",
          .eShown = Shown::Hexadecimal),
};
constexpr Layout stLEDEntry = LAYOUT(LEDEntry, astLEDEntry);

constexpr FieldRow astLEDBehaviour[] = {
    FIELD(LEDBehaviour, u32Save, "1 to save to the device's configuration file too, else 0"),
    FIELD(LEDBehaviour, astEntries, "entries of the red, blue, yellow and green LED",
          .u16Count = LEDEntry::Count, .pstRecord = &stLEDEntry),
};

constexpr FieldRow astLEDState[] = {
    FIELD(LEDState, astEntries, "entries of the red, blue, yellow and green LED",
          .u16Count = LEDEntry::Count, .pstRecord = &stLEDEntry),
};

} // namespace

constexpr Layout stTraceRecord = {"TraceRecord", astTraceRecord, TraceRecord::aucBody};
constexpr Layout stTraceState = LAYOUT(TraceState, astTraceState);
constexpr Layout stRangingLog = {"RangingLog", astLog<stRangingLogEntry>, LogRecord::aucData};
constexpr Layout stBandwidthLog = {"BandwidthLog", astLog<stBandwidthLogEntry>, LogRecord::aucData};
constexpr Layout stPowerLog = {"PowerLog", astLog<stPowerLogEntry>, LogRecord::aucData};
constexpr Layout stCIDLog = {"CIDLog", astLog<stCIDLogEntry>, LogRecord::aucData};
constexpr Layout stCQICHLog = {"CQICHLog", astLog<stCQICHLogEntry>, LogRecord::aucData};
constexpr Layout stMACLogData = {"MACLogData", astMACLogData, u32MACLogSize};
constexpr Layout stPHYLogData = {"PHYLogData", astPHYLogData, u32PHYLogSize};
constexpr Layout stGPIOBit = LAYOUT(GPIOBit, astGPIOBit);
constexpr Layout stLEDBehaviour = LAYOUT(LEDBehaviour, astLEDBehaviour);
constexpr Layout stLEDState = LAYOUT(LEDState, astLEDState);
