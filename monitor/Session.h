// What the events of a recording have to do with each other: which message a result belongs to,
// which request a message answers. Keeps a fixed number of open calls and requests.
#ifndef MONITOR_SESSION_H
#define MONITOR_SESSION_H

#include <array>
#include <optional>
#include <vector>

#include "Catalogue.h"
#include "Format.h"

struct MessageCodes {
    uint16_t u16Type = 0;
    uint16_t u16SubType = 0;

    friend bool operator==(const MessageCodes &, const MessageCodes &) = default;
};

// An event and what the session so far tells about it.
struct Entry {
    const Event *pstEvent = nullptr;
    // Of the message or of the call's or callback's message that this ends.
    std::optional<MessageCodes> stCodes;
    const MessageRow *pstSubject = nullptr; // its description; null: it has none
    const MessageRow *pstMessage = nullptr; // what the payload is; null: nothing described
    ByteView stPayload;
    uint32_t u32Answers = 0; // the number of the request; 0: none
    int64_t i64Latency = 0;  // nanoseconds since then
};

constexpr bool IsResult(EventKind eKind) {
    switch (eKind) {
    case EventKind::OpenResult:
    case EventKind::RegisterResult:
    case EventKind::SendResult:
    case EventKind::ReadMemoryResult:
    case EventKind::WriteMemoryResult:
    case EventKind::CloseResult:
        return true;
    default:
        return false;
    }
}

// Whether it is a result, and not that of a success.
bool HasFailed(const Event &stEvent);
// Whether the client's side made it.
inline bool IsSent(const Event &stEvent) { return !IsReceived(stEvent.eKind); }
// As JSON and --summary call it.
std::string_view NameOf(EventKind eKind);

class Session {
  public:
    Session();

    // The next event, with its bytes as long as they are good.
    Entry Follow(const Event &stEvent);

    // Requests whose answer has not come, by that answer.
    struct Unanswered {
        const MessageRow *pstAnswer;
        uint64_t u64Requests;
    };
    std::vector<Unanswered> UnansweredRequests() const;

  private:
    struct Call {
        uint32_t u32Number = 0;
        MessageCodes stCodes;
        const MessageRow *pstMessage = nullptr;
    };
    struct Request {
        uint32_t u32Number = 0;
        int64_t i64Time = 0;
    };
    // The requests that one kind of message answers. A person who asks again has given up the
    // question before, so that the last one is answered first.
    struct Waiting {
        const MessageRow *pstAnswer = nullptr;
        uint32_t u32Count = 0;
        uint64_t u64GivenUp = 0; // too many, or too long ago
        std::array<Request, 16> astRequests;
    };

    // Null when no request asks for that message, or it is none.
    Waiting *WaitingFor(const MessageRow *pstAnswer);
    void FollowSend(const Event &stEvent, Entry *pstEntry);
    void FollowMessage(const Event &stEvent, Entry *pstEntry);
    void FollowResult(const Event &stEvent, Entry *pstEntry);
    void FollowMemory(const Event &stEvent, Entry *pstEntry);

    // By the lowest bits of the number: a call lasts for no more than a few events.
    std::array<Call, 256> m_astCalls;
    std::vector<Waiting> m_astWaiting;
    std::vector<int32_t> m_aiWaiting; // by the answer's place in the catalogue; -1: none
    std::vector<uint8_t> m_aucMemoryCall;
};

#endif
