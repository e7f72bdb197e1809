#include "Player.h"

#include <algorithm>
#include <csignal>
#include <memory>
#include <utility>

#include <unistd.h>

#include "Difference.h"

namespace {

// How many recorded calls a client may leave out: one that is further away is another one of the
// same kind, not the one that is meant.
constexpr int iMostLeftOut = 8;
// A call that was made while another one lasted is waited for so long beyond its time, and one that
// a running callback may still make, which may rest for a second before it does.
constexpr std::chrono::seconds stPatience(2);
// A callback that runs longer than this is left behind when the device is closed.
constexpr std::chrono::seconds stLongestWait(3);

constexpr int iStrictExitStatus = 3;

// Whether the call was made inside a callback.
bool IsCallbacks(const Step &stCall) {
    return (stCall.stEvent.u16Flags & EventFlag::InCallback) != 0;
}

void WriteToStandardError(const std::string &strText) {
    (void)(write(STDERR_FILENO, strText.data(), strText.size()) < 0);
}

} // namespace

Player::Player(Recording stRecording, PlayerOptions stOptions)
    : m_stRecording(std::move(stRecording)), m_stOptions(stOptions),
      m_abPassed(m_stRecording.astSteps.size()) {}

Player *Player::Start(Recording stRecording, PlayerOptions stOptions) {
    auto *pstPlayer = new Player(std::move(stRecording), stOptions);
    // Signals are the business of the program's own threads.
    sigset_t stAll;
    sigset_t stBefore;
    sigfillset(&stAll);
    pthread_sigmask(SIG_SETMASK, &stAll, &stBefore);
    std::thread([pstPlayer] { pstPlayer->RunCursor(); }).detach();
    std::thread([pstPlayer] { pstPlayer->RunDelivery(); }).detach();
    pthread_sigmask(SIG_SETMASK, &stBefore, nullptr);
    return pstPlayer;
}

// At the recording's end, too.
bool Player::AtCall() const {
    const auto &astSteps = m_stRecording.astSteps;
    return m_uNext == astSteps.size() ||
           (IsCall(astSteps[m_uNext].stEvent.eKind) && !m_abPassed[m_uNext]);
}

// Whether the cursor is at a call that a callback made, and one runs that may make it now.
bool Player::AtCallbacksCall() const {
    return m_bDelivering && m_uNext < m_stRecording.astSteps.size() &&
           IsCallbacks(m_stRecording.astSteps[m_uNext]);
}

bool Player::OnDeliveryThread() const { return std::this_thread::get_id() == m_stDeliveryThread; }

Player::Clock::time_point Player::DueTime(const Step &stStep) const {
    if (m_uLastCall == uNoStep || m_stOptions.fSpeed == 0) {
        return Clock::now();
    }
    // Further away than anybody waits, a time is no time any more.
    constexpr double fLongest = 1e17;
    const auto fRecorded = static_cast<double>(stStep.stEvent.i64Time -
                                               m_stRecording.astSteps[m_uLastCall].stEvent.i64Time);
    const std::chrono::duration<double, std::nano> stDistance(
        std::clamp(fRecorded / m_stOptions.fSpeed, -fLongest, fLongest));
    return m_stLastCallTime + std::chrono::duration_cast<Clock::duration>(stDistance);
}

// The cursor's thread.
void Player::RunCursor() {
    Lock stLock(m_stMutex);
    for (;;) {
        if (TakeStep(stLock)) {
            ++m_uNext;
            m_stChanged.notify_all();
        }
    }
}

// True when the cursor leaves its step; false when something has changed while it waited.
bool Player::TakeStep(Lock &stLock) {
    if (m_uNext == m_stRecording.astSteps.size()) {
        m_stChanged.wait(stLock);
        return false;
    }
    if (m_abPassed[m_uNext]) {
        return true;
    }
    const Step &stStep = m_stRecording.astSteps[m_uNext];
    const EventKind eKind = stStep.stEvent.eKind;
    if (IsCall(eKind)) {
        if (m_uUnderWay == 0 || AtCallbacksCall()) {
            m_stChanged.wait(stLock);
            return false;
        }
        // A call that lasts must not last for ever because of one that does not come.
        const Clock::time_point stLatest = DueTime(stStep) + stPatience;
        const size_t uHere = m_uNext;
        if (m_stChanged.wait_until(stLock, stLatest) != std::cv_status::timeout ||
            m_uNext != uHere || m_uUnderWay == 0) {
            return false;
        }
        ReportLeftOut(m_uNext);
        return true;
    }
    if (eKind == EventKind::MessageDone) {
        if (m_abPassed[stStep.uPartner] || m_bCallbackWaits) {
            return true;
        }
        m_stChanged.wait(stLock);
        return false;
    }
    const Clock::time_point stDue = DueTime(stStep);
    if (!Hurries() && Clock::now() < stDue) {
        m_stChanged.wait_until(stLock, stDue);
        return false;
    }
    if (eKind == EventKind::Message && m_pfnCallback != nullptr) {
        m_stMessages.push_back(m_uNext);
    } else {
        m_abPassed[m_uNext] = true;
    }
    return true;
}

void Player::RunDelivery() {
    Lock stLock(m_stMutex);
    m_stDeliveryThread = std::this_thread::get_id();
    for (;;) {
        m_stChanged.wait(stLock, [this] { return !m_stMessages.empty(); });
        const size_t uMessage = m_stMessages.front();
        m_stMessages.pop_front();
        Deliver(stLock, uMessage);
        m_abPassed[uMessage] = true;
        m_stChanged.notify_all();
    }
}

void Player::Deliver(Lock &stLock, size_t uMessage) {
    const Step &stStep = m_stRecording.astSteps[uMessage];
    const WiMAXCallback pfnCallback = m_pfnCallback;
    const uint32_t u32Context = m_u32Context;
    m_bDelivering = true;
    stLock.unlock();
    if ((stStep.stEvent.u16Flags & EventFlag::Null) != 0) {
        pfnCallback(u32Context, nullptr, stStep.stEvent.u32Length);
    } else {
        // A block of its own, of exactly a record's size: memory checkers then see every access
        // behind its end.
        const auto pstRecord = std::make_unique<WiMAXMessage>();
        PutBytes(BytesOf(*pstRecord), 0, stStep.Bytes());
        pfnCallback(u32Context, pstRecord.get(), stStep.stEvent.u32Length);
    }
    stLock.lock();
    m_bDelivering = false;
}

// Whether a recorded call may be the one that the client makes: of the same kind, made inside a
// callback or not, a request also of the same type and subtype.
bool Player::IsMeant(size_t uStep, const Event &stCall, ByteView stBytes) const {
    const Step &stStep = m_stRecording.astSteps[uStep];
    return stStep.stEvent.eKind == stCall.eKind && IsCallbacks(stStep) == OnDeliveryThread() &&
           (stCall.eKind != EventKind::Send ||
            SameBytes(stStep.Bytes().From(0, MessageHeader::Size),
                      stBytes.From(0, MessageHeader::Size)));
}

// The recorded call that this one is: the one that the cursor is at, or one behind it when the
// client left some out.
size_t Player::FindCall(const Event &stCall, ByteView stBytes) const {
    const auto &astSteps = m_stRecording.astSteps;
    if (m_uNext < astSteps.size() && IsMeant(m_uNext, stCall, stBytes)) {
        return m_uNext;
    }
    const bool bAgain = m_uLastCall != uNoStep && IsMeant(m_uLastCall, stCall, stBytes) &&
                        FirstDifference(astSteps[m_uLastCall].stEvent,
                                        astSteps[m_uLastCall].Bytes(), stCall, stBytes)
                            .empty();
    int iLeftOut = 0;
    for (size_t i = m_uNext; i < astSteps.size() && !bAgain && iLeftOut <= iMostLeftOut; ++i) {
        if (IsCall(astSteps[i].stEvent.eKind) && !m_abPassed[i]) {
            if (IsMeant(i, stCall, stBytes)) {
                return i;
            }
            ++iLeftOut;
        }
    }
    return uNoStep;
}

// A recorded call to answer one from that was never made: the last such one before the cursor, or
// else the first behind it. Of memory it must be the same.
size_t Player::FindSimilar(const Event &stCall, ByteView stBytes) const {
    const auto IsSimilar = [&](size_t uStep) {
        return IsMeant(uStep, stCall, stBytes) &&
               m_stRecording.astSteps[uStep].stEvent.u32Word == stCall.u32Word;
    };
    for (size_t i = m_uNext; i > 0; --i) {
        if (IsSimilar(i - 1)) {
            return i - 1;
        }
    }
    for (size_t i = m_uNext; i < m_stRecording.astSteps.size(); ++i) {
        if (IsSimilar(i)) {
            return i;
        }
    }
    return uNoStep;
}

// Moves the cursor on; what it jumps over does not come any more.
void Player::MoveTo(size_t uStep) {
    while (m_uNext < uStep) {
        m_abPassed[m_uNext] = true;
        ++m_uNext;
    }
    m_stChanged.notify_all();
}

Player::Answer Player::AnswerOf(size_t uCall, int32_t s32Otherwise) const {
    const auto &astSteps = m_stRecording.astSteps;
    if (uCall == uNoStep || astSteps[uCall].uPartner == uNoStep) {
        return {s32Otherwise, {}};
    }
    const Step &stResult = astSteps[astSteps[uCall].uPartner];
    return {stResult.stEvent.s32Result, stResult.Bytes()};
}

// Where the recording says something else (the step, or its end), what differs, and the call as it
// is made now, if one is.
void Player::ReportDifference(size_t uStep, const std::string &strWhat,
                              const std::string &strNow) const {
    std::string strReport = "libqor020: differs from the recording: ";
    if (uStep < m_stRecording.astSteps.size()) {
        const Step &stStep = m_stRecording.astSteps[uStep];
        strReport += "event " + std::to_string(stStep.stEvent.u32Number) + ", " + strWhat +
                     "\n  recorded: " + CallText(stStep.stEvent, stStep.Bytes()) + "\n";
    } else {
        strReport += strWhat + "\n";
    }
    if (!strNow.empty()) {
        strReport += "  now:      " + strNow + "\n";
    }
    WriteToStandardError(strReport);
    if (m_stOptions.bStrict) {
        _exit(iStrictExitStatus);
    }
}

void Player::ReportLeftOut(size_t uCall) const {
    ReportDifference(uCall, "a call was left out", "");
}

// Answers a call that the recording does not have where the cursor is.
Player::Answer Player::AnswerUnexpected(const Event &stCall, ByteView stBytes,
                                        int32_t s32Otherwise) const {
    const bool bAtEnd = m_uNext == m_stRecording.astSteps.size();
    ReportDifference(m_uNext, bAtEnd ? "a call behind its end" : "another call",
                     CallText(stCall, stBytes));
    return AnswerOf(FindSimilar(stCall, stBytes), s32Otherwise);
}

// Until the cursor is at a call. What was recorded before it comes at once then: the order is kept
// whatever the client does.
void Player::WaitForTurn(Lock &stLock) {
    const bool bInCallback = OnDeliveryThread();
    ++m_uWaiting;
    m_bCallbackWaits = m_bCallbackWaits || bInCallback;
    m_stChanged.notify_all();
    m_stChanged.wait(stLock, [this] { return AtCall(); });
    // A callback that runs may still make the call that the cursor is at.
    if (!bInCallback) {
        m_stChanged.wait_for(stLock, stPatience, [this] { return AtCall() && !AtCallbacksCall(); });
        m_stChanged.wait(stLock, [this] { return AtCall(); });
    }
    --m_uWaiting;
    m_bCallbackWaits = m_bCallbackWaits && !bInCallback;
}

// Finds the call in the recording, waits until it is answered there and answers it.
Player::Answer Player::Make(Lock &stLock, const Event &stCall, ByteView stBytes,
                            int32_t s32Otherwise) {
    WaitForTurn(stLock);
    const size_t uCall = FindCall(stCall, stBytes);
    if (uCall == uNoStep) {
        return AnswerUnexpected(stCall, stBytes, s32Otherwise);
    }
    const auto &astSteps = m_stRecording.astSteps;
    const std::string strPlace =
        FirstDifference(astSteps[uCall].stEvent, astSteps[uCall].Bytes(), stCall, stBytes);
    if (!strPlace.empty()) {
        ReportDifference(uCall, strPlace, CallText(stCall, stBytes));
    }
    if (uCall != m_uNext && OnDeliveryThread()) {
        // The program's own thread will make the calls before it.
        m_abPassed[uCall] = true;
        return AnswerOf(uCall, s32Otherwise);
    }
    for (size_t i = m_uNext; i < uCall; ++i) {
        if (IsCall(astSteps[i].stEvent.eKind) && !m_abPassed[i]) {
            ReportLeftOut(i);
        }
    }
    m_uLastCall = uCall;
    m_stLastCallTime = Clock::now();
    MoveTo(uCall + 1);
    const size_t uResult = astSteps[uCall].uPartner;
    if (uResult == uNoStep) {
        WriteToStandardError("libqor020: the recording ends inside a call\n");
        return {s32Otherwise, {}};
    }
    ++m_uUnderWay;
    m_stChanged.wait(stLock, [&] { return m_abPassed[uResult]; });
    --m_uUnderWay;
    if (m_stOptions.fSpeed == 0 && !OnDeliveryThread()) {
        m_stChanged.wait(stLock,
                         [this] { return AtCall() && !AtCallbacksCall() && m_stMessages.empty(); });
    }
    return AnswerOf(uCall, s32Otherwise);
}

uint32_t Player::Open() {
    Event stCall;
    stCall.eKind = EventKind::Open;
    Lock stLock(m_stMutex);
    return static_cast<uint32_t>(
        Make(stLock, stCall, {}, static_cast<int32_t>(WIMAX_NO_DEVICE)).s32Result);
}

int32_t Player::Register(uint32_t hDevice, WiMAXCallback pfnCallback, uint32_t u32Context) {
    Event stCall;
    stCall.eKind = EventKind::Register;
    stCall.u16Flags = pfnCallback == nullptr ? EventFlag::Null : uint16_t{0};
    stCall.u32Handle = hDevice;
    stCall.u32Word = u32Context;
    Lock stLock(m_stMutex);
    const WiMAXCallback pfnBefore = std::exchange(m_pfnCallback, pfnCallback);
    const uint32_t u32Before = std::exchange(m_u32Context, u32Context);
    const int32_t s32Result = Make(stLock, stCall, {}, 0).s32Result;
    if (s32Result != 0) {
        m_pfnCallback = pfnBefore;
        m_u32Context = u32Before;
    }
    return s32Result;
}

int32_t Player::Send(uint32_t hDevice, uint8_t *pucMessage, uint32_t u32Length) {
    Event stCall;
    stCall.eKind = EventKind::Send;
    stCall.u16Flags = pucMessage == nullptr ? EventFlag::Null : uint16_t{0};
    stCall.u32Handle = hDevice;
    stCall.u32Length = u32Length;
    const uint32_t u32Record = pucMessage == nullptr ? 0 : WIMAX_MESSAGE_SIZE;
    Lock stLock(m_stMutex);
    const Answer stAnswer = Make(stLock, stCall, {pucMessage, std::min(u32Length, u32Record)}, 0);
    PutBytes({pucMessage, u32Record}, 0, stAnswer.stBytes);
    return stAnswer.s32Result;
}

// Closes whenever the client wants to: it does not wait for what would have come before.
int32_t Player::Close() {
    const auto &astSteps = m_stRecording.astSteps;
    Lock stLock(m_stMutex);
    size_t uClose = m_uNext;
    size_t uFirst = astSteps.size();
    size_t uLeftOut = 0;
    while (uClose < astSteps.size() && astSteps[uClose].stEvent.eKind != EventKind::Close) {
        if (IsCall(astSteps[uClose].stEvent.eKind) && !m_abPassed[uClose]) {
            uFirst = std::min(uFirst, uClose);
            ++uLeftOut;
        }
        ++uClose;
    }
    if (uLeftOut != 0) {
        ReportDifference(uFirst, "closed with " + std::to_string(uLeftOut) + " calls not made",
                         "CloseWiMAXDevice");
    }
    m_pfnCallback = nullptr;
    for (const size_t uMessage : m_stMessages) {
        m_abPassed[uMessage] = true;
    }
    m_stMessages.clear();
    const size_t uCall = uClose < astSteps.size() ? uClose : uNoStep;
    m_uLastCall = uCall;
    m_stLastCallTime = Clock::now();
    MoveTo(uCall != uNoStep ? uCall + 1 : astSteps.size());
    if (!OnDeliveryThread()) {
        m_stChanged.wait_for(stLock, stLongestWait, [this] { return !m_bDelivering; });
    }
    return AnswerOf(uCall, 0).s32Result;
}

int32_t Player::Read(uint32_t u32Address, uint8_t *pucBuffer, uint32_t u32Count) {
    Event stCall;
    stCall.eKind = EventKind::ReadMemory;
    stCall.u16Flags = pucBuffer == nullptr ? EventFlag::Null : uint16_t{0};
    stCall.u32Word = u32Address;
    stCall.u32Length = u32Count;
    Lock stLock(m_stMutex);
    const Answer stAnswer = Make(stLock, stCall, {}, -1);
    if (pucBuffer != nullptr) {
        PutBytes({pucBuffer, u32Count}, 0, stAnswer.stBytes);
    }
    return stAnswer.s32Result;
}

int32_t Player::Write(uint32_t u32Address, const uint8_t *pucBuffer, uint32_t u32Count) {
    Event stCall;
    stCall.eKind = EventKind::WriteMemory;
    stCall.u16Flags = pucBuffer == nullptr ? EventFlag::Null : uint16_t{0};
    stCall.u32Word = u32Address;
    stCall.u32Length = u32Count;
    Lock stLock(m_stMutex);
    return Make(stLock, stCall, {pucBuffer, pucBuffer == nullptr ? 0 : u32Count}, 0).s32Result;
}
