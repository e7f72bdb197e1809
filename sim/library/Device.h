// The modem as a device: requests from any thread, messages to one callback from
// a thread of its own.
//
// With the real clock that thread lives what is due and delivers it. With the stepped one
// time stands still between calls: each call takes its time, and comes back when the thread
// has delivered all that came of it.
#ifndef DEVICE_H
#define DEVICE_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "library/JournaledModem.h"
#include "time/RealClock.h"

class Device : public std::enable_shared_from_this<Device> {
  public:
    // Starts the clock and the thread.
    static std::shared_ptr<Device> Start(JournaledModem stModem);

    // Messages wait until there is a callback. Null: they wait again.
    void SetCallback(WiMAXCallback pfnCallback, uint32_t u32Context);
    int32_t Send(uint8_t *pucMessage, uint32_t u32Length);
    int32_t ReadMemory(uint32_t u32Address, ByteSpan stTo);
    int32_t WriteMemory(uint32_t u32Address, ByteView stFrom);
    bool Unloaded();
    // No callback begins after this. Waits for a running one to end, but not for
    // ever, and not at all when called from inside it.
    void Stop();

    // ---- Moving the stepped clock; from any thread but the callback's ----

    enum class AdvanceEnd : uint8_t {
        Reached,
        Limit,      // and what was waited for has not come
        NotStepped, // the clock is the real one
        InCallback, // which would wait for itself
        Closed      // the device was, meanwhile
    };
    // Lets iBy pass. All messages of that time are delivered, and the callback has
    // returned, when it returns; so for the others.
    AdvanceEnd Advance(ModemTime iBy);
    // Until a message of this kind has been delivered, for iLimit at most.
    AdvanceEnd AdvanceUntilMessage(uint32_t u32Type, uint32_t u32SubType, ModemTime iLimit);
    // Until no answer is under way, for iLimit at most.
    AdvanceEnd AdvanceUntilIdle(ModemTime iLimit);
    ModemTime Now();

    // ---- Steering; from any thread but the callback's ----

    // Runs pfnUse with the modem at this moment; what comes of it is delivered as what comes of
    // a call. It takes no modem time. Whoever changes something says by what command.
    void Look(const std::function<void(WholeModem &)> &pfnUse);
    void Steer(const std::string &strCommand, const std::function<void(WholeModem &)> &pfnUse);
    // False, and no change, with the stepped clock.
    bool SetTimeScale(double fTimeScale);

    // ---- Another modem in this one's place; from any thread but the callback's. They wait until
    // the callback has all messages of this one, and throw Refusal ----

    void RefuseUnlessStepped();
    std::string JournalText();
    void Replace(JournaledModem stModem);
    // Who works for the device for long may leave it.
    bool Stopping() const { return m_bStopping; }

  private:
    enum class Until : uint8_t { Time, Message, Idle };
    struct Goal {
        Until eUntil;
        ModemTime iLatest;
    };

    explicit Device(JournaledModem stModem);
    bool Stepped() const { return m_stModem->HowTimePasses().bStepped; }
    bool InOwnThread() const { return m_stThread.get_id() == std::this_thread::get_id(); }
    std::unique_lock<std::mutex> Lock();
    std::unique_lock<std::mutex> LockAtRest();
    void GiveWay(std::unique_lock<std::mutex> &stLock);
    // The beginning and the end of whatever others do. Only a call takes modem time.
    enum class Turn : uint8_t { Call, Steering, Look };
    std::unique_lock<std::mutex> Enter(Turn eTurn);
    void Leave(std::unique_lock<std::mutex> &stLock);
    template <typename Use> void AtOnce(Turn eTurn, Use pfnUse);

    void Run();
    void RunReal(std::unique_lock<std::mutex> &stLock);
    void RunStepped(std::unique_lock<std::mutex> &stLock);
    bool DeliverNext(std::unique_lock<std::mutex> &stLock);
    void Deliver(std::unique_lock<std::mutex> &stLock, const MessageBytes &aucMessage);
    void WaitForAnswer(std::unique_lock<std::mutex> &stLock);

    void CatchUp(size_t uMostWaiting);
    void NoteBehind(bool bBehind);

    bool Step();
    std::optional<AdvanceEnd> StepTowards(const Goal &stGoal);
    AdvanceEnd AdvanceTowards(Until eUntil, ModemTime iBy, uint32_t u32Type = 0,
                              uint32_t u32SubType = 0);

    std::mutex m_stAdvancing; // one at a time; locked before all others
    std::mutex m_stNext;      // who has it is the next to have m_stMutex
    std::mutex m_stMutex;     // guards all below but the thread
    std::condition_variable m_stWork;
    std::condition_variable m_stEnded;
    std::condition_variable m_stDelivered;
    JournaledModem m_stModem;
    RealClock m_stClock;
    std::optional<RealClock::Moment> m_stBehindSince; // the real clock
    WiMAXCallback m_pfnCallback = nullptr;
    uint32_t m_u32Context = 0;
    bool m_bDelivering = false;
    bool m_bThreadRests = false; // nothing is left to do until the next call
    bool m_bSenderHeld = false;
    std::optional<Goal> m_stGoal;
    AdvanceEnd m_eLastEnd = AdvanceEnd::Reached;
    std::atomic<bool> m_bStopping = false;
    bool m_bEnded = false;
    std::thread m_stThread;
};

#endif
