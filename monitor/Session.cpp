#include "Session.h"

#include <algorithm>

namespace {

// An answer that comes later than this is none.
constexpr int64_t i64LongestLatency = int64_t{600} * 1'000'000'000;

constexpr std::string_view astrEventNames[] = {
    "none",         "session",
    "open",         "open_result",
    "register",     "register_result",
    "send",         "send_result",
    "message",      "message_done",
    "read_memory",  "read_memory_result",
    "write_memory", "write_memory_result",
    "close",        "close_result",
};
static_assert(std::size(astrEventNames) == static_cast<size_t>(eLastEventKind) + 1);

std::optional<MessageCodes> CodesOf(ByteView stMessage) {
    if (stMessage.u32Length < MessageHeader::Size) {
        return {};
    }
    return MessageCodes{static_cast<uint16_t>(Get(stMessage, MessageHeader::usType)),
                        static_cast<uint16_t>(Get(stMessage, MessageHeader::usSubType))};
}

// What was received of it, without what the record holds behind that.
ByteView PayloadOf(const Event &stEvent) {
    return stEvent.stBytes.From(0, stEvent.u32Length).From(MessageHeader::Size);
}

// The message that answers a request; null when there is none, or no request.
const MessageRow *AnswerTo(const MessageRow *pstRequest) {
    return pstRequest != nullptr && pstRequest->eDirection == Direction::Request &&
                   pstRequest->u16AnswerSubType != 0
               ? FindReceived(pstRequest->u16Type, pstRequest->u16AnswerSubType)
               : nullptr;
}

} // namespace

bool HasFailed(const Event &stEvent) {
    if (stEvent.eKind == EventKind::OpenResult) {
        return static_cast<uint32_t>(stEvent.s32Result) == WIMAX_NO_DEVICE;
    }
    return IsResult(stEvent.eKind) && stEvent.s32Result != 0;
}

std::string_view NameOf(EventKind eKind) { return astrEventNames[static_cast<size_t>(eKind)]; }

Session::Session() : m_aiWaiting(Messages().size(), -1) {
    for (const MessageRow &stRow : Messages()) {
        const MessageRow *pstAnswer = AnswerTo(&stRow);
        if (pstAnswer != nullptr && WaitingFor(pstAnswer) == nullptr) {
            m_aiWaiting[static_cast<size_t>(pstAnswer - Messages().data())] =
                static_cast<int32_t>(m_astWaiting.size());
            m_astWaiting.push_back({pstAnswer, 0, 0, {}});
        }
    }
}

Session::Waiting *Session::WaitingFor(const MessageRow *pstAnswer) {
    if (pstAnswer == nullptr) {
        return nullptr;
    }
    const int32_t iWaiting = m_aiWaiting[static_cast<size_t>(pstAnswer - Messages().data())];
    return iWaiting >= 0 ? &m_astWaiting[static_cast<size_t>(iWaiting)] : nullptr;
}

std::vector<Session::Unanswered> Session::UnansweredRequests() const {
    std::vector<Unanswered> astUnanswered;
    for (const Waiting &stWaiting : m_astWaiting) {
        const uint64_t u64Requests = stWaiting.u64GivenUp + stWaiting.u32Count;
        if (u64Requests != 0) {
            astUnanswered.push_back({stWaiting.pstAnswer, u64Requests});
        }
    }
    return astUnanswered;
}

void Session::FollowSend(const Event &stEvent, Entry *pstEntry) {
    pstEntry->stCodes = CodesOf(stEvent.stBytes);
    if (!pstEntry->stCodes) {
        return;
    }
    const MessageRow *pstRow = FindSent(pstEntry->stCodes->u16Type, pstEntry->stCodes->u16SubType);
    pstEntry->pstMessage = pstEntry->pstSubject = pstRow;
    pstEntry->stPayload = PayloadOf(stEvent);
    Waiting *pstWaiting = WaitingFor(AnswerTo(pstRow));
    if (pstWaiting == nullptr) {
        return;
    }
    auto &astRequests = pstWaiting->astRequests;
    if (pstWaiting->u32Count == astRequests.size()) {
        std::rotate(astRequests.begin(), astRequests.begin() + 1, astRequests.end());
        --pstWaiting->u32Count;
        ++pstWaiting->u64GivenUp;
    }
    astRequests[pstWaiting->u32Count++] = {stEvent.u32Number, stEvent.i64Time};
}

void Session::FollowMessage(const Event &stEvent, Entry *pstEntry) {
    pstEntry->stCodes = CodesOf(stEvent.stBytes);
    if (!pstEntry->stCodes) {
        return;
    }
    pstEntry->pstMessage = pstEntry->pstSubject =
        FindReceived(pstEntry->stCodes->u16Type, pstEntry->stCodes->u16SubType);
    pstEntry->stPayload = PayloadOf(stEvent);
    Waiting *pstWaiting = WaitingFor(pstEntry->pstMessage);
    if (pstWaiting == nullptr || pstWaiting->u32Count == 0) {
        return;
    }
    const Request &stRequest = pstWaiting->astRequests[pstWaiting->u32Count - 1];
    // Times of a damaged file may be any.
    const auto i64Latency = static_cast<int64_t>(static_cast<uint64_t>(stEvent.i64Time) -
                                                 static_cast<uint64_t>(stRequest.i64Time));
    if (i64Latency < 0 || i64Latency > i64LongestLatency) {
        pstWaiting->u64GivenUp += pstWaiting->u32Count;
        pstWaiting->u32Count = 0;
        return;
    }
    pstEntry->u32Answers = stRequest.u32Number;
    pstEntry->i64Latency = i64Latency;
    --pstWaiting->u32Count;
}

void Session::FollowResult(const Event &stEvent, Entry *pstEntry) {
    const Call &stCall = m_astCalls[stEvent.u32BelongsTo % m_astCalls.size()];
    if (stEvent.u32BelongsTo == 0 || stCall.u32Number != stEvent.u32BelongsTo) {
        return;
    }
    pstEntry->stCodes = stCall.stCodes;
    pstEntry->pstSubject = stCall.pstMessage;
    if (stEvent.eKind != EventKind::SendResult) {
        return;
    }
    if (const auto stLeft = CodesOf(stEvent.stBytes)) {
        pstEntry->pstMessage = FindWrittenBack(stLeft->u16Type, stLeft->u16SubType);
        pstEntry->stPayload = stEvent.stBytes.From(MessageHeader::Size);
    }
    // What was not accepted will not be answered.
    Waiting *pstWaiting = WaitingFor(AnswerTo(stCall.pstMessage));
    if (stEvent.s32Result != 0 && pstWaiting != nullptr && pstWaiting->u32Count != 0 &&
        pstWaiting->astRequests[pstWaiting->u32Count - 1].u32Number == stCall.u32Number) {
        --pstWaiting->u32Count;
    }
}

// A call of rdm or wrm, or its result, as the catalogue describes it.
void Session::FollowMemory(const Event &stEvent, Entry *pstEntry) {
    const bool bRead =
        stEvent.eKind == EventKind::ReadMemory || stEvent.eKind == EventKind::ReadMemoryResult;
    pstEntry->pstSubject = bRead ? &RegisterRead() : &RegisterWrite();
    if (stEvent.eKind == EventKind::WriteMemoryResult) {
        return;
    }
    pstEntry->pstMessage = pstEntry->pstSubject;
    m_aucMemoryCall.assign(RegisterCall::aucValue, 0);
    const ByteSpan stHead{m_aucMemoryCall.data(), RegisterCall::aucValue};
    Put(stHead, RegisterCall::u32Address, stEvent.u32Word);
    Put(stHead, RegisterCall::u32Count, stEvent.u32Length);
    m_aucMemoryCall.insert(m_aucMemoryCall.end(), stEvent.stBytes.pucData,
                           stEvent.stBytes.pucData + stEvent.stBytes.u32Length);
    pstEntry->stPayload = {m_aucMemoryCall.data(), static_cast<uint32_t>(m_aucMemoryCall.size())};
}

Entry Session::Follow(const Event &stEvent) {
    Entry stEntry;
    stEntry.pstEvent = &stEvent;
    switch (stEvent.eKind) {
    case EventKind::Send:
        FollowSend(stEvent, &stEntry);
        break;
    case EventKind::Message:
        FollowMessage(stEvent, &stEntry);
        break;
    case EventKind::SendResult:
    case EventKind::MessageDone:
        FollowResult(stEvent, &stEntry);
        break;
    case EventKind::ReadMemory:
    case EventKind::ReadMemoryResult:
    case EventKind::WriteMemory:
    case EventKind::WriteMemoryResult:
        FollowMemory(stEvent, &stEntry);
        break;
    default:
        break;
    }
    if (stEntry.stCodes && stEvent.u32Number != 0 && stEvent.u32BelongsTo == 0) {
        m_astCalls[stEvent.u32Number % m_astCalls.size()] = {stEvent.u32Number, *stEntry.stCodes,
                                                             stEntry.pstSubject};
    }
    return stEntry;
}
