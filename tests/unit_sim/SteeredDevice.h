// A device with somebody who steers it, and a callback that keeps what it hears.
#ifndef STEERED_DEVICE_H
#define STEERED_DEVICE_H

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ModemBench.h"
#include "library/ControlCommands.h"
#include "library/Device.h"

class SteeredDevice {
  public:
    // strName stands for the scenario's file.
    explicit SteeredDevice(const std::string &strScenario,
                           const std::string &strName = "steering.toml")
        : m_u32Context(NextContext()), m_pstDevice(Start(strScenario, strName)) {
        OfContext(m_u32Context) = this;
    }
    SteeredDevice(const SteeredDevice &) = delete;
    SteeredDevice &operator=(const SteeredDevice &) = delete;
    ~SteeredDevice() { m_pstDevice->Stop(); }

    const std::shared_ptr<Device> &TheDevice() { return m_pstDevice; }
    std::string Say(const std::string &strCommand) { return AnswerTo(*m_pstDevice, strCommand); }
    int32_t Send(const std::string &strMessage) {
        std::vector<uint8_t> aucMessage = BytesOfHex(strMessage);
        const auto u32Length = static_cast<uint32_t>(aucMessage.size());
        aucMessage.resize(WIMAX_MESSAGE_SIZE); // for an answer
        return m_pstDevice->Send(aucMessage.data(), u32Length);
    }
    // Registers, or takes away, the callback.
    void Listen(bool bListens = true) {
        m_pstDevice->SetCallback(bListens ? Receive : nullptr, m_u32Context);
    }
    // Each message since the last look.
    std::vector<std::string> Heard() {
        const std::lock_guard stLock(m_stMutex);
        return std::exchange(m_astrHeard, {});
    }
    // Sends this from inside the callback, once for every so many messages; 0: never.
    void SendFromCallback(uint32_t u32Every, const std::string &strMessage) {
        m_u32Every = u32Every;
        m_strFromCallback = strMessage;
    }
    // Counts messages for that as another one did, uLater messages ago.
    void CountOn(const SteeredDevice &stOther, size_t uLater) {
        m_uHeard = stOther.m_uHeard - uLater;
    }

  private:
    static std::shared_ptr<Device> Start(const std::string &strScenario,
                                         const std::string &strName) {
        const auto pstFiles = std::make_shared<JournaledFiles>();
        return Device::Start(JournaledModem(
            std::make_unique<WholeModem>(Scenario::FromText(strScenario, strName, pstFiles)),
            std::make_unique<Journal>(pstFiles)));
    }
    static uint32_t NextContext() {
        static std::atomic<uint32_t> u32Next = 0;
        return u32Next++;
    }
    // The one that listens with it; few live at a time.
    static std::atomic<SteeredDevice *> &OfContext(uint32_t u32Context) {
        static std::array<std::atomic<SteeredDevice *>, 16> apstDevices{};
        return apstDevices[u32Context % apstDevices.size()];
    }
    static uint32_t Receive(uint32_t u32Context, const WiMAXMessage *pstMessage,
                            uint32_t u32Length) {
        const auto *pucBytes = reinterpret_cast<const uint8_t *>(pstMessage);
        SteeredDevice &stOne = *OfContext(u32Context);
        size_t uHeard = 0;
        {
            const std::lock_guard stLock(stOne.m_stMutex);
            stOne.m_astrHeard.push_back(HexOf({pucBytes, pucBytes + u32Length}));
            uHeard = ++stOne.m_uHeard;
        }
        if (stOne.m_u32Every != 0 && uHeard % stOne.m_u32Every == 0) {
            stOne.Send(stOne.m_strFromCallback);
        }
        return 0;
    }

    uint32_t m_u32Context;
    std::mutex m_stMutex;
    std::vector<std::string> m_astrHeard;
    size_t m_uHeard = 0;
    uint32_t m_u32Every = 0;
    std::string m_strFromCallback;
    std::shared_ptr<Device> m_pstDevice;
};

#endif
