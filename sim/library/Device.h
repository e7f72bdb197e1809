// The modem as a device: requests from any thread, messages to one callback from
// a thread of its own, modem time from the real clock.
#ifndef DEVICE_H
#define DEVICE_H

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "library/WholeModem.h"

class Device : public std::enable_shared_from_this<Device> {
  public:
    // Starts the clock and the thread.
    static std::shared_ptr<Device> Start(std::unique_ptr<Modem> pstModem);

    // Messages wait until there is a callback. Null: they wait again.
    void SetCallback(WiMAXCallback pfnCallback, uint32_t u32Context);
    int32_t Send(uint8_t *pucMessage, uint32_t u32Length);
    int32_t ReadMemory(uint32_t u32Address, ByteSpan stTo);
    int32_t WriteMemory(uint32_t u32Address, ByteView stFrom);
    bool Unloaded();
    // No callback begins after this. Waits for a running one to end, but not for
    // ever, and not at all when called from inside it.
    void Stop();

  private:
    explicit Device(std::unique_ptr<Modem> pstModem);
    void Run();
    void Deliver(std::unique_lock<std::mutex> &stLock, const MessageBytes &aucMessage);
    void WaitForAnswer(std::unique_lock<std::mutex> &stLock);
    void CatchUp();
    std::chrono::steady_clock::time_point RealTimeOf(ModemTime iTime) const;

    // When modem time 0 was; later when the modem could not keep up.
    std::chrono::steady_clock::time_point m_stOpened = std::chrono::steady_clock::now();
    std::mutex m_stMutex; // guards all below but the thread
    std::condition_variable m_stWork;
    std::condition_variable m_stEnded;
    std::condition_variable m_stDelivered;
    std::unique_ptr<Modem> m_pstModem;
    WiMAXCallback m_pfnCallback = nullptr;
    uint32_t m_u32Context = 0;
    bool m_bDelivering = false;
    bool m_bStopping = false;
    bool m_bEnded = false;
    std::thread m_stThread;
};

#endif
