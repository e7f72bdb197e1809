#include "library/Device.h"

#include "library/QuietThread.h"
#include "library/Refusal.h"

namespace {

// A callback that runs longer than this is left behind when the device closes.
constexpr std::chrono::seconds stLongestWait(3);
// A sender that waits for its answer waits no longer than this.
constexpr std::chrono::seconds stLongestHold(1);
// A call with the stepped clock waits no longer for callbacks that its messages are in: so many
// looks at whether they have returned. Not a time: a process that stands still for a while, because
// it was stopped or the machine was, has not looked, and its callbacks could not return.
constexpr std::chrono::milliseconds stLook(100);
constexpr uint32_t u32MostLooks = 100;
// The modem lives at most so long at a time, and until so many messages wait: then those are
// delivered, and whoever wants to send something has a turn.
constexpr std::chrono::microseconds stLongestSlice(200);
constexpr size_t uSliceMessages = 64;
// A modem that has been behind the clock so long cannot keep up: its time is slower.
constexpr std::chrono::milliseconds stLongestBehind(250);

} // namespace

Device::Device(JournaledModem stModem)
    : m_stModem(std::move(stModem)), m_stClock(m_stModem->HowTimePasses().fTimeScale) {}

std::shared_ptr<Device> Device::Start(JournaledModem stModem) {
    std::shared_ptr<Device> pstDevice(new Device(std::move(stModem)));
    pstDevice->m_stThread = StartQuietThread([pstDevice] { pstDevice->Run(); });
    return pstDevice;
}

// Whoever waits has the lock before the thread has it again, however busy that is.
std::unique_lock<std::mutex> Device::Lock() {
    const std::lock_guard stNext(m_stNext);
    return std::unique_lock(m_stMutex);
}

void Device::GiveWay(std::unique_lock<std::mutex> &stLock) {
    stLock.unlock();
    const std::lock_guard stNext(m_stNext);
    stLock.lock();
}

std::unique_lock<std::mutex> Device::Enter(Turn eTurn) {
    std::unique_lock stLock = Lock();
    if (Stepped()) {
        if (eTurn == Turn::Call) {
            m_stModem.PassCallTime();
        } else if (eTurn == Turn::Steering) {
            m_stModem.LiveTo(m_stModem->Now());
        }
    } else if (!m_stBehindSince || RealClock::Now() - *m_stBehindSince > stLongestBehind) {
        // A thread that is behind is at it itself, unless a callback keeps it.
        CatchUp(SIZE_MAX);
    }
    return stLock;
}

void Device::Leave(std::unique_lock<std::mutex> &stLock) {
    m_bThreadRests = false;
    m_stWork.notify_one();
    if (Stepped() && !InOwnThread()) {
        const auto Done = [this] { return m_bStopping || m_bThreadRests; };
        uint32_t u32Looks = 0;
        while (!m_stDelivered.wait_for(stLock, stLook, Done) && ++u32Looks < u32MostLooks) {
        }
    }
}

void Device::SetCallback(WiMAXCallback pfnCallback, uint32_t u32Context) {
    std::unique_lock stLock = Enter(Turn::Call);
    m_pfnCallback = pfnCallback;
    m_u32Context = u32Context;
    m_stModem.SetListening(pfnCallback != nullptr);
    Leave(stLock);
}

int32_t Device::Send(uint8_t *pucMessage, uint32_t u32Length) {
    std::unique_lock stLock = Enter(Turn::Call);
    const int32_t iResult = m_stModem.Send(pucMessage, u32Length);
    const bool bHolds = m_stModem->HoldsSender();
    m_bSenderHeld = m_bSenderHeld || bHolds;
    Leave(stLock);
    if (bHolds && !Stepped()) {
        WaitForAnswer(stLock);
    }
    return iResult;
}

// Until the callback has returned from all messages.
void Device::WaitForAnswer(std::unique_lock<std::mutex> &stLock) {
    if (!m_bStopping && !InOwnThread()) {
        m_stDelivered.wait_for(stLock, stLongestHold, [this] {
            return m_bStopping || m_pfnCallback == nullptr ||
                   (!m_bDelivering && m_stModem->AllTold());
        });
    }
}

int32_t Device::ReadMemory(uint32_t u32Address, ByteSpan stTo) {
    std::unique_lock stLock = Enter(Turn::Call);
    const int32_t iResult = m_stModem.ReadMemory(u32Address, stTo);
    Leave(stLock);
    return iResult;
}

int32_t Device::WriteMemory(uint32_t u32Address, ByteView stFrom) {
    std::unique_lock stLock = Enter(Turn::Call);
    const int32_t iResult = m_stModem.WriteMemory(u32Address, stFrom);
    Leave(stLock);
    return iResult;
}

bool Device::Unloaded() {
    const std::unique_lock stLock = Lock();
    return m_stModem->Unloaded();
}

void Device::Stop() {
    std::unique_lock stLock = Lock();
    if (m_bStopping) {
        return;
    }
    m_bStopping = true;
    m_stWork.notify_one();
    m_stDelivered.notify_all();
    const bool bEnded =
        !InOwnThread() && m_stEnded.wait_for(stLock, stLongestWait, [this] { return m_bEnded; });
    stLock.unlock();
    // A thread that is left behind keeps the device alive until it ends.
    if (bEnded) {
        m_stThread.join();
    } else {
        m_stThread.detach();
    }
}

void Device::Run() {
    std::unique_lock stLock = Lock();
    if (Stepped()) {
        RunStepped(stLock);
    } else {
        RunReal(stLock);
    }
    m_bEnded = true;
    m_stEnded.notify_all();
}

bool Device::DeliverNext(std::unique_lock<std::mutex> &stLock) {
    MessageBytes aucMessage;
    if (m_pfnCallback == nullptr || !m_stModem.Take(&aucMessage)) {
        return false;
    }
    Deliver(stLock, aucMessage);
    return true;
}

void Device::Deliver(std::unique_lock<std::mutex> &stLock, const MessageBytes &aucMessage) {
    m_bDelivering = true;
    const WiMAXCallback pfnCallback = m_pfnCallback;
    const uint32_t u32Context = m_u32Context;
    stLock.unlock();
    {
        // A block of its own, of exactly a record's size: memory checkers then see every
        // access behind its end.
        const auto pstRecord = std::make_unique<WiMAXMessage>();
        const auto u32Length = static_cast<uint32_t>(aucMessage.size());
        PutBytes(BytesOf(*pstRecord), 0, {aucMessage.data(), u32Length});
        pfnCallback(u32Context, pstRecord.get(), u32Length);
    }
    const std::lock_guard stNext(m_stNext);
    stLock.lock();
    m_bDelivering = false;
    m_stDelivered.notify_all();
}

// The real clock.

void Device::RunReal(std::unique_lock<std::mutex> &stLock) {
    while (!m_bStopping) {
        if (DeliverNext(stLock)) {
            continue;
        }
        CatchUp(m_pfnCallback != nullptr ? uSliceMessages : SIZE_MAX);
        if (m_pfnCallback != nullptr && m_stModem->Waiting() != 0) {
            continue;
        }
        if (m_stBehindSince) {
            GiveWay(stLock);
        } else if (const std::optional<ModemTime> iDue = m_stModem->NextDue()) {
            m_stWork.wait_until(stLock, m_stClock.MomentOf(*iDue));
        } else {
            m_stWork.wait(stLock);
        }
    }
}

// Lives until now, or for a slice.
void Device::CatchUp(size_t uMostWaiting) {
    const RealClock::Moment stNow = RealClock::Now();
    const ModemTime iUntil = m_stClock.TimeAt(stNow);
    for (auto iDue = m_stModem->NextDue(); iDue && *iDue <= iUntil; iDue = m_stModem->NextDue()) {
        m_stModem.LiveTo(*iDue);
        if (m_stModem->Waiting() >= uMostWaiting || RealClock::Now() - stNow > stLongestSlice) {
            NoteBehind(true);
            return;
        }
    }
    m_stModem.LiveTo(iUntil);
    NoteBehind(false);
}

void Device::NoteBehind(bool bBehind) {
    const RealClock::Moment stNow = RealClock::Now();
    if (!bBehind) {
        m_stBehindSince.reset();
    } else if (!m_stBehindSince) {
        m_stBehindSince = stNow;
    } else if (stNow - *m_stBehindSince > stLongestBehind) {
        m_stClock.SlipTo(m_stModem->Now(), stNow);
        m_stBehindSince = stNow;
    }
}

// The stepped clock.

void Device::RunStepped(std::unique_lock<std::mutex> &stLock) {
    while (!m_bStopping) {
        if (DeliverNext(stLock)) {
            continue;
        }
        if (Step()) {
            GiveWay(stLock);
            continue;
        }
        m_bSenderHeld = false;
        m_bThreadRests = true;
        m_stDelivered.notify_all();
        m_stWork.wait(stLock, [this] { return m_bStopping || !m_bThreadRests; });
    }
}

// Goes to the next thing due, if somebody waits for what comes then or later.
bool Device::Step() {
    const Modem &stModem = *m_stModem.operator->();
    const bool bForAnswer = stModem.HowTimePasses().bJumps || (m_bSenderHeld && !stModem.AllTold());
    if (bForAnswer && stModem.NextAwaited()) {
        m_stModem.LiveTo(*stModem.NextDue());
        return true;
    }
    if (!m_stGoal) {
        return false;
    }
    if (const std::optional<AdvanceEnd> eEnd = StepTowards(*m_stGoal)) {
        m_eLastEnd = *eEnd;
        m_stGoal.reset();
    }
    return true;
}

std::optional<Device::AdvanceEnd> Device::StepTowards(const Goal &stGoal) {
    const bool bReached = (stGoal.eUntil == Until::Message && m_stModem->Heard()) ||
                          (stGoal.eUntil == Until::Idle && !m_stModem->NextAwaited());
    if (bReached) {
        return AdvanceEnd::Reached;
    }
    const std::optional<ModemTime> iDue = m_stModem->NextDue();
    if (iDue && *iDue <= stGoal.iLatest) {
        m_stModem.LiveTo(*iDue);
        return std::nullopt;
    }
    m_stModem.LiveTo(stGoal.iLatest);
    return stGoal.eUntil == Until::Time ? AdvanceEnd::Reached : AdvanceEnd::Limit;
}

Device::AdvanceEnd Device::Advance(ModemTime iBy) { return AdvanceTowards(Until::Time, iBy); }

Device::AdvanceEnd Device::AdvanceUntilMessage(uint32_t u32Type, uint32_t u32SubType,
                                               ModemTime iLimit) {
    return AdvanceTowards(Until::Message, iLimit, u32Type, u32SubType);
}

Device::AdvanceEnd Device::AdvanceUntilIdle(ModemTime iLimit) {
    return AdvanceTowards(Until::Idle, iLimit);
}

Device::AdvanceEnd Device::AdvanceTowards(Until eUntil, ModemTime iBy, uint32_t u32Type,
                                          uint32_t u32SubType) {
    if (InOwnThread()) {
        return AdvanceEnd::InCallback;
    }
    const std::lock_guard stAdvancing(m_stAdvancing);
    std::unique_lock stLock = Lock();
    if (!Stepped()) {
        return AdvanceEnd::NotStepped;
    }
    m_stModem.Itself().ListenFor(u32Type, u32SubType);
    m_stGoal = Goal{eUntil, m_stModem->Now() + iBy};
    m_bThreadRests = false;
    m_stWork.notify_one();
    m_stDelivered.wait(stLock, [this] { return m_bStopping || m_bThreadRests; });
    return m_bStopping ? AdvanceEnd::Closed : m_eLastEnd;
}

ModemTime Device::Now() {
    const std::unique_lock stLock = Lock();
    return m_stModem->Now();
}

template <typename Use> void Device::AtOnce(Turn eTurn, Use pfnUse) {
    std::unique_lock stLock = Enter(eTurn);
    try {
        pfnUse();
    } catch (...) {
        Leave(stLock);
        throw;
    }
    Leave(stLock);
}

void Device::Look(const std::function<void(WholeModem &)> &pfnUse) {
    AtOnce(Turn::Look, [&] { pfnUse(m_stModem.Itself()); });
}

void Device::Steer(const std::string &strCommand, const std::function<void(WholeModem &)> &pfnUse) {
    AtOnce(Turn::Steering, [&] { m_stModem.CarryOut(strCommand, pfnUse); });
}

bool Device::SetTimeScale(double fTimeScale) {
    std::unique_lock stLock = Enter(Turn::Look);
    if (Stepped()) {
        return false;
    }
    m_stClock.SetScale(fTimeScale, RealClock::Now());
    m_stModem.Itself().SetTimeScale(fTimeScale);
    Leave(stLock);
    return true;
}

// Another modem in this one's place.

void Device::RefuseUnlessStepped() {
    const std::unique_lock stLock = Lock();
    if (!Stepped()) {
        throw Refusal("the clock is the real one: only a modem with the stepped one can be saved");
    }
}

std::unique_lock<std::mutex> Device::LockAtRest() {
    RefuseUnlessStepped();
    std::unique_lock stLock = Lock();
    Leave(stLock);
    if (m_bStopping || !m_bThreadRests) {
        throw Refusal(m_bStopping ? "the device was closed meanwhile"
                                  : "a callback does not return");
    }
    return stLock;
}

std::string Device::JournalText() {
    const std::unique_lock stLock = LockAtRest();
    std::optional<std::string> strText = m_stModem.JournalText();
    if (!strText) {
        throw Refusal("the modem has been asked too much to be saved: more than " +
                      std::to_string(uMostJournal) + " bytes");
    }
    return std::move(*strText);
}

void Device::Replace(JournaledModem stModem) {
    const std::lock_guard stAdvancing(m_stAdvancing);
    std::unique_lock stLock = LockAtRest();
    std::swap(m_stModem, stModem);
    m_stModem.ChangeListener(m_pfnCallback != nullptr);
    Leave(stLock);
}
