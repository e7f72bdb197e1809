#include "library/Device.h"

#include <csignal>

namespace {

using RealClock = std::chrono::steady_clock;

// A callback that runs longer than this is left behind when the device closes.
constexpr std::chrono::seconds stLongestWait(3);
// A sender that waits for its answer waits no longer than this.
constexpr std::chrono::seconds stLongestHold(1);
// The modem lives at most so long at a time. A scenario whose time runs faster than it can
// be lived slips behind, instead of keeping everybody waiting.
constexpr std::chrono::milliseconds stLongestCatchUp(20);
// The longest sleep at a time, far within what the clock can count.
constexpr std::chrono::hours stLongestSleep(1);

} // namespace

Device::Device(std::unique_ptr<Modem> pstModem) : m_pstModem(std::move(pstModem)) {}

std::shared_ptr<Device> Device::Start(std::unique_ptr<Modem> pstModem) {
    std::shared_ptr<Device> pstDevice(new Device(std::move(pstModem)));
    // Signals are the business of the program's own threads.
    sigset_t stAll;
    sigset_t stBefore;
    sigfillset(&stAll);
    pthread_sigmask(SIG_SETMASK, &stAll, &stBefore);
    pstDevice->m_stThread = std::thread([pstDevice] { pstDevice->Run(); });
    pthread_sigmask(SIG_SETMASK, &stBefore, nullptr);
    return pstDevice;
}

void Device::SetCallback(WiMAXCallback pfnCallback, uint32_t u32Context) {
    const std::lock_guard stLock(m_stMutex);
    m_pfnCallback = pfnCallback;
    m_u32Context = u32Context;
    m_stWork.notify_one();
}

int32_t Device::Send(uint8_t *pucMessage, uint32_t u32Length) {
    std::unique_lock stLock(m_stMutex);
    CatchUp();
    const int32_t iResult = m_pstModem->Send(pucMessage, u32Length);
    m_stWork.notify_one();
    if (m_pstModem->HoldsSender()) {
        WaitForAnswer(stLock);
    }
    return iResult;
}

// Until the callback has returned from all messages.
void Device::WaitForAnswer(std::unique_lock<std::mutex> &stLock) {
    if (!m_bStopping && m_stThread.get_id() != std::this_thread::get_id()) {
        m_stDelivered.wait_for(stLock, stLongestHold, [this] {
            return m_bStopping || m_pfnCallback == nullptr ||
                   (!m_bDelivering && m_pstModem->AllTold());
        });
    }
}

int32_t Device::ReadMemory(uint32_t u32Address, ByteSpan stTo) {
    const std::lock_guard stLock(m_stMutex);
    CatchUp();
    return m_pstModem->ReadMemory(u32Address, stTo);
}

int32_t Device::WriteMemory(uint32_t u32Address, ByteView stFrom) {
    const std::lock_guard stLock(m_stMutex);
    CatchUp();
    return m_pstModem->WriteMemory(u32Address, stFrom);
}

bool Device::Unloaded() {
    const std::lock_guard stLock(m_stMutex);
    return m_pstModem->Unloaded();
}

void Device::Stop() {
    std::unique_lock stLock(m_stMutex);
    if (m_bStopping) {
        return;
    }
    m_bStopping = true;
    m_stWork.notify_one();
    m_stDelivered.notify_all();
    const bool bInCallback = m_stThread.get_id() == std::this_thread::get_id();
    const bool bEnded =
        !bInCallback && m_stEnded.wait_for(stLock, stLongestWait, [this] { return m_bEnded; });
    stLock.unlock();
    // A thread that is left behind keeps the device alive until it ends.
    if (bEnded) {
        m_stThread.join();
    } else {
        m_stThread.detach();
    }
}

void Device::CatchUp() {
    const RealClock::time_point stNow = RealClock::now();
    const auto fReal = std::chrono::duration<double, std::micro>(stNow - m_stOpened).count();
    const auto iUntil = static_cast<ModemTime>(fReal * m_pstModem->TimeScale());
    for (auto iDue = m_pstModem->NextDue(); iDue && *iDue <= iUntil; iDue = m_pstModem->NextDue()) {
        m_pstModem->AdvanceTo(*iDue);
        const RealClock::time_point stThen = RealClock::now();
        if (stThen - stNow > stLongestCatchUp) {
            const std::chrono::duration<double, std::micro> stLived(static_cast<double>(*iDue) /
                                                                    m_pstModem->TimeScale());
            m_stOpened = stThen - std::chrono::duration_cast<RealClock::duration>(stLived);
            return;
        }
    }
    m_pstModem->AdvanceTo(iUntil);
}

RealClock::time_point Device::RealTimeOf(ModemTime iTime) const {
    // Rounded up, so that the modem's clock has reached it then.
    const std::chrono::duration<double, std::micro> stSince((static_cast<double>(iTime) + 1) /
                                                            m_pstModem->TimeScale());
    const RealClock::time_point stLimit = RealClock::now() + stLongestSleep;
    if (stSince > stLimit - m_stOpened) {
        return stLimit;
    }
    return m_stOpened + std::chrono::ceil<RealClock::duration>(stSince);
}

void Device::Run() {
    std::unique_lock stLock(m_stMutex);
    while (!m_bStopping) {
        CatchUp();
        MessageBytes aucMessage;
        if (m_pfnCallback != nullptr && m_pstModem->TakeMessage(&aucMessage)) {
            Deliver(stLock, aucMessage);
        } else if (const std::optional<ModemTime> iDue = m_pstModem->NextDue()) {
            m_stWork.wait_until(stLock, RealTimeOf(*iDue));
        } else {
            m_stWork.wait(stLock);
        }
    }
    m_bEnded = true;
    m_stEnded.notify_all();
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
    stLock.lock();
    m_bDelivering = false;
    m_stDelivered.notify_all();
}
