// A recorded session: a capture file (pcapng, link type 252, nanoseconds) that stock tools open.
// docs/recording.md describes it byte by byte. Every packet is a list of tags (big-endian) and
// behind it either one of our events (little-endian on every host) or, for stock decoders, the
// management message that a traced message carries.
#ifndef RECORDING_FORMAT_H
#define RECORDING_FORMAT_H

#include <string>
#include <string_view>

#include "Wire.h"

inline constexpr uint16_t u16UpperPDULinkType = 252;
inline constexpr uint8_t u8RecordingVersion = 1;

// A result follows its call, as the next kind; a finished callback its message.
enum class EventKind : uint8_t {
    None = 0,
    Session = 1, // the bytes: lines NAME=VALUE, see docs/recording.md
    Open = 2,
    OpenResult = 3,
    Register = 4,
    RegisterResult = 5,
    Send = 6,       // the bytes: the request
    SendResult = 7, // the bytes: the record as it was left, when the library wrote into it
    Message = 8,    // the bytes: the record up to its last byte that is not zero, or to its length
    MessageDone = 9,
    ReadMemory = 10,
    ReadMemoryResult = 11, // the bytes: what was read
    WriteMemory = 12,      // the bytes: what is written
    WriteMemoryResult = 13,
    Close = 14,
    CloseResult = 15,
};

inline constexpr EventKind eLastEventKind = EventKind::CloseResult;

constexpr EventKind ResultOf(EventKind eCall) {
    return static_cast<EventKind>(static_cast<uint8_t>(eCall) + 1);
}

namespace EventFlag {
inline constexpr uint16_t Null = 1;       // a null pointer was handed over
inline constexpr uint16_t More = 2;       // the bytes go on in the next event of this kind and call
inline constexpr uint16_t InCallback = 4; // a call that was made inside a callback
} // namespace EventFlag

struct Event {
    EventKind eKind = EventKind::None;
    uint16_t u16Flags = 0;
    uint32_t u32Number = 0;    // of this event, counted from 1
    uint32_t u32BelongsTo = 0; // the number of the call or message that this ends; 0: none
    int32_t s32Result = 0;     // of the call or the callback; of an open, the handle
    uint64_t u64Duration = 0;  // of the call or the callback, in nanoseconds
    uint32_t u32Handle = 0;    // the device's, as it was handed over
    uint32_t u32Word = 0;      // the address of memory, the context word of a callback
    uint32_t u32Length = 0;    // as it was handed over: of the message, or how much memory
    ByteView stBytes;
    int64_t i64Time = 0; // nanoseconds since 1970
};

// Whether the modem's side made it: messages and the results of calls.
bool IsReceived(EventKind eKind);

// What a packet's data is.
enum class PacketKind : uint8_t {
    Event,
    Management, // a management message for stock decoders; stands in the message before it, too
    Foreign,    // somebody else's
    Broken,     // ours, but cut or damaged
    Newer,      // ours, of a version that this program does not know
};

// Takes a packet's data apart. *pstEvent is filled for events (all but the time), its bytes point
// into stData.
PacketKind ReadPacket(ByteView stData, Event *pstEvent);

// What is written for a packet: head, bytes and tail, one behind the other. The bytes are not
// copied.
struct Packet {
    static constexpr uint32_t u32LargestHead = 96;

    uint8_t aucHead[u32LargestHead];
    uint32_t u32Head;
    ByteView stBytes;
    uint8_t aucTail[8];
    uint32_t u32Tail;

    uint32_t Size() const { return u32Head + stBytes.u32Length + u32Tail; }
};

// Most bytes of an event. Longer ones (reads of memory) are written in pieces.
inline constexpr uint32_t u32LargestPiece = 128 * 1024;

void WriteEvent(const Event &stEvent, Packet *pstPacket);

// The management message in a traced message, as it went over the air: its type and the rest of it.
struct ManagementMessage {
    uint8_t u8Code = 0;
    bool bFromStation = false; // sent by the modem, not by the base station
    ByteView stBody;
};

// False when the message carries none.
bool ManagementMessageOf(ByteView stMessage, ManagementMessage *pstManagement);
void WriteManagementMessage(int64_t i64Time, const ManagementMessage &stManagement,
                            Packet *pstPacket);

// What the file says about where it comes from, before the first packet.
struct SectionTexts {
    std::string strHardware;
    std::string strSystem;
    std::string strClient;
    std::string strComment;
};

std::string FileHead(const SectionTexts &stTexts);

#endif
