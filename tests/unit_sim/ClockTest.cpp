// The device's clocks: the stepped one, which moves with calls and commands alone, and the
// real one when it runs faster than the modem can live.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"
#include "library/Device.h"

namespace {

using namespace std::chrono_literals;
using End = Device::AdvanceEnd;

std::mutex g_stMutex;
std::vector<std::vector<uint8_t>> g_aaucMessages;
void (*g_pfnInCallback)(const WiMAXMessage *pstMessage);
Device *g_pstDevice;

uint32_t Receive(uint32_t /*u32Context*/, const WiMAXMessage *pstMessage, uint32_t u32Length) {
    const auto *pucBytes = reinterpret_cast<const uint8_t *>(pstMessage);
    {
        const std::lock_guard stLock(g_stMutex);
        g_aaucMessages.emplace_back(pucBytes, pucBytes + u32Length);
    }
    if (g_pfnInCallback != nullptr) {
        g_pfnInCallback(pstMessage);
    }
    return 0;
}

// The first eight bytes of each message since the last look.
std::vector<std::string> Heard() {
    const std::lock_guard stLock(g_stMutex);
    std::vector<std::string> astrHeard;
    for (std::vector<uint8_t> &aucMessage : g_aaucMessages) {
        aucMessage.resize(std::min<size_t>(aucMessage.size(), 8));
        astrHeard.push_back(HexOf(aucMessage));
    }
    g_aaucMessages.clear();
    return astrHeard;
}

class Clock : public testing::Test {
  protected:
    ~Clock() override {
        if (m_pstDevice != nullptr) {
            m_pstDevice->Stop();
        }
    }
    void Open(const std::string &strScenario) {
        Heard();
        g_pfnInCallback = nullptr;
        m_pstDevice = Device::Start(JournaledModem(
            std::make_unique<WholeModem>(Scenario::FromText(strScenario, "clock.toml"))));
        g_pstDevice = m_pstDevice.get();
    }
    void OpenAndRegister(const std::string &strScenario) {
        Open(strScenario);
        m_pstDevice->SetCallback(Receive, 0);
    }
    static int32_t Send(const std::string &strMessage) {
        std::vector<uint8_t> aucMessage = BytesOfHex(strMessage);
        aucMessage.resize(WIMAX_MESSAGE_SIZE);
        return g_pstDevice->Send(aucMessage.data(),
                                 static_cast<uint32_t>(BytesOfHex(strMessage).size()));
    }
    uint32_t Frame() {
        uint8_t aucWord[4];
        EXPECT_EQ(m_pstDevice->ReadMemory(0x0F000010, {aucWord, 4}), 0);
        return aucWord[0] + 256U * aucWord[1];
    }

    std::shared_ptr<Device> m_pstDevice;
};

// Sync up to the first of the four stations, and the entry there.
const char *const pcSyncUp = "02 00 01 00 6C 7B 27 00 10 27 00 00 FF 00 00 00 00*52";
const char *const pcEntry = "02 00 02 00 00*4";
const char *const pcEntryStatus = "02 00 03 00";

TEST_F(Clock, EachCallTakesItsTimeAndNothingElseDoes) {
    Open("[clock]\nkind = \"stepped\"\ncall-time = 0.25\n");
    EXPECT_EQ(m_pstDevice->Now(), 0);
    EXPECT_EQ(Frame(), 50U);
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(Frame(), 100U);
    EXPECT_EQ(Send(pcEntryStatus), 0);
    EXPECT_EQ(m_pstDevice->Now(), 750000);
    m_pstDevice->SetCallback(Receive, 0);
    EXPECT_EQ(m_pstDevice->Now(), 1000000);
    uint8_t u8Byte = 0;
    EXPECT_EQ(m_pstDevice->WriteMemory(0x0F010000, {&u8Byte, 1}), 0);
    EXPECT_EQ(m_pstDevice->Now(), 1250000);
}

TEST_F(Clock, ACallTakesAMillisecondUnlessTheScenarioSaysOtherwise) {
    Open("[clock]\nkind = \"stepped\"\n");
    m_pstDevice->SetCallback(Receive, 0);
    EXPECT_EQ(m_pstDevice->Now(), 1000);
}

TEST_F(Clock, AnswersComeWithTheCallsThatReachTheirTime) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\ncall-time = 0.01\n"
                    "[device]\nanswer-delay = 0.025\n");
    EXPECT_EQ(Send("24 00 01 00"), 0);
    (void)Frame();
    (void)Frame();
    EXPECT_EQ(Heard(), std::vector<std::string>{});
    (void)Frame();
    EXPECT_EQ(Heard(), std::vector<std::string>{"24 00 02 00"});
}

TEST_F(Clock, WithTheJumpASendComesBackWithItsAnswers) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\njump = true\n[device]\nanswer-delay = 0.5\n" +
                    std::string(pcFourStations));
    EXPECT_EQ(Send(pcSyncUp), 0);
    EXPECT_EQ(Heard(), std::vector<std::string>{"02 00 01 00*5"});
    // Two calls, the synchronisation, three frames until the UL-MAP, and the way of the answer.
    EXPECT_EQ(m_pstDevice->Now(), 2000 + 300000 + 15000 + 500000);
    EXPECT_EQ(Send(pcEntry), 0);
    EXPECT_EQ(Heard(),
              (std::vector<std::string>{"02 00 02 00 0C 00 00 00", "02 00 02 00 00 01 00 00"}));
}

TEST_F(Clock, WhatTheNetworkDoesByItselfWaitsForTime) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\njump = true\n[[event]]\nat = 60\n"
                    "kind = \"message\"\nbytes = \"03000200\"\n" +
                    std::string(pcFourStations));
    EXPECT_EQ(Send(pcSyncUp), 0);
    EXPECT_EQ(Send(pcEntry), 0);
    EXPECT_EQ(Heard().size(), 3U);
    EXPECT_LT(m_pstDevice->Now(), 3000000);
    EXPECT_EQ(m_pstDevice->Advance(56 * i64Second), End::Reached);
    EXPECT_EQ(Heard(), std::vector<std::string>{});
    EXPECT_EQ(m_pstDevice->Advance(4 * i64Second), End::Reached);
    EXPECT_EQ(Heard(), std::vector<std::string>{"03 00 02 00"});
}

TEST_F(Clock, AScanWithoutEndIsNothingToJumpTo) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\njump = true\n" + std::string(pcFourStations) +
                    pcLinkUp);
    EXPECT_EQ(Send("1C 00 02 00 01 00 00 80 02 00 00 00 00*36"), 0);
    EXPECT_LT(m_pstDevice->Now(), 1000000);
}

TEST_F(Clock, ItGoesOnUntilAMessageComes) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\n[device]\nanswer-delay = 0\n"
                    "[[event]]\nat = 7\nkind = \"message\"\nbytes = \"03000200\"\n"
                    "[[event]]\nat = 8\nkind = \"message\"\nbytes = \"03000300\"\n");
    EXPECT_EQ(m_pstDevice->AdvanceUntilMessage(3, 3, 5 * i64Second), End::Limit);
    EXPECT_EQ(m_pstDevice->Now(), 1000 + 5 * i64Second);
    EXPECT_EQ(m_pstDevice->AdvanceUntilMessage(3, 3, 5 * i64Second), End::Reached);
    EXPECT_EQ(m_pstDevice->Now(), 8 * i64Second);
    EXPECT_EQ(Heard(), (std::vector<std::string>{"03 00 02 00", "03 00 03 00"}));
}

TEST_F(Clock, ItGoesOnUntilNoAnswerIsUnderWay) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\n" + std::string(pcFourStations));
    EXPECT_EQ(m_pstDevice->AdvanceUntilIdle(i64Second), End::Reached);
    EXPECT_EQ(m_pstDevice->Now(), 1000);
    EXPECT_EQ(Send(pcSyncUp), 0);
    EXPECT_EQ(m_pstDevice->AdvanceUntilIdle(i64Second / 10), End::Limit);
    EXPECT_EQ(Heard(), std::vector<std::string>{});
    EXPECT_EQ(m_pstDevice->AdvanceUntilIdle(i64Second), End::Reached);
    EXPECT_EQ(Heard(), std::vector<std::string>{"02 00 01 00*5"});
    EXPECT_EQ(m_pstDevice->Now(), 2000 + 300000 + 15000 + 20000);
}

TEST_F(Clock, ARequestFromTheCallbackIsAnsweredInTheSameCall) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\njump = true\n" + std::string(pcFourStations));
    g_pfnInCallback = [](const WiMAXMessage *pstMessage) {
        if (reinterpret_cast<const uint8_t *>(pstMessage)[2] == 1) {
            EXPECT_EQ(Send(pcEntry), 0);
        }
    };
    EXPECT_EQ(Send(pcSyncUp), 0);
    EXPECT_EQ(Heard().size(), 3U);
}

TEST_F(Clock, ASenderThatIsHeldHasItsAnswerWithoutTheJumpToo) {
    OpenAndRegister("[clock]\nkind = \"stepped\"\n[device]\nanswer-delay = 3\n");
    EXPECT_EQ(Send("24 00 01 00"), 0);
    EXPECT_EQ(Heard().size(), 0U);
    EXPECT_EQ(Send("18 00 02 00 DF 05 00*25"), 0);
    EXPECT_EQ(Heard().size(), 2U);
    EXPECT_EQ(m_pstDevice->Now(), 3000 + 3000000);
}

TEST_F(Clock, AClientWithoutACallbackIsNotWaitedFor) {
    Open("[clock]\nkind = \"stepped\"\njump = true\n" + std::string(pcFourStations));
    EXPECT_EQ(Send(pcSyncUp), 0);
    EXPECT_EQ(Heard().size(), 0U);
    m_pstDevice->SetCallback(Receive, 0);
    EXPECT_EQ(Heard().size(), 1U);
}

TEST_F(Clock, OnlyASteppedOneIsMovedAndNotFromTheCallback) {
    static std::atomic<int> iEnd;
    iEnd = -1;
    OpenAndRegister("[device]\nanswer-delay = 0\n");
    EXPECT_EQ(m_pstDevice->Advance(i64Second), End::NotStepped);
    m_pstDevice->Stop();
    OpenAndRegister("[clock]\nkind = \"stepped\"\njump = true\n");
    g_pfnInCallback = [](const WiMAXMessage *) {
        iEnd = static_cast<int>(g_pstDevice->Advance(i64Second));
    };
    EXPECT_EQ(Send("24 00 01 00"), 0);
    EXPECT_EQ(iEnd, static_cast<int>(End::InCallback));
}

TEST_F(Clock, ClosingEndsAnAdvanceThatWaitsForACallback) {
    static std::atomic<bool> bInside;
    static std::atomic<bool> bRelease;
    bInside = bRelease = false;
    OpenAndRegister("[clock]\nkind = \"stepped\"\n[[event]]\nat = 1\nkind = \"message\"\n"
                    "bytes = \"03000200\"\n");
    g_pfnInCallback = [](const WiMAXMessage *) {
        bInside = true;
        while (!bRelease) {
            std::this_thread::sleep_for(1ms);
        }
    };
    std::atomic<End> eEnd{End::Reached};
    std::thread stAdvancing([&] { eEnd = m_pstDevice->Advance(2 * i64Second); });
    while (!bInside) {
        std::this_thread::sleep_for(1ms);
    }
    std::thread stClosing([&] { m_pstDevice->Stop(); });
    stAdvancing.join();
    EXPECT_EQ(eEnd, End::Closed);
    bRelease = true;
    stClosing.join();
}

TEST_F(Clock, KeysOfTheOtherClockAreRefused) {
    const auto Refused = [](const std::string &strScenario) -> std::string {
        try {
            const WholeModem stModem(Scenario::FromText(strScenario, "clock.toml"));
        } catch (const ScenarioError &stError) {
            return stError.what();
        }
        return "";
    };
    EXPECT_EQ(Refused("time-scale = 2\n[clock]\nkind = \"stepped\"\n"),
              "clock.toml:1: \"time-scale\" is not known here");
    EXPECT_EQ(Refused("[clock]\njump = true\n"), "clock.toml:2: \"jump\" is not known here");
    EXPECT_EQ(Refused("time-scale = 2\n[clock]\nkind = \"real\"\n"), "");
}

// Four million maps a second are wanted. What comes is delivered in order, nothing is left
// out, and the modem is slower.
TEST_F(Clock, OverloadNeitherStarvesDeliveryNorLosesAnything) {
    OpenAndRegister("time-scale = 10000\n[device]\nanswer-delay = 0\n[trace]\non = true\n"
                    "[signalling]\nmap-period = 0.005\ndescriptor-period = 1000\n"
                    "neighbour-period = 1000\nranging-period = 1000\nreport-period = 1000\n" +
                    WithOrdinaryMaps(strLinkUp));
    constexpr size_t uWanted = 5000;
    const auto stEnd = std::chrono::steady_clock::now() + 60s;
    size_t uCount = 0;
    while (uCount < uWanted && std::chrono::steady_clock::now() < stEnd) {
        std::this_thread::sleep_for(1ms);
        const std::lock_guard stLock(g_stMutex);
        uCount = g_aaucMessages.size();
    }
    m_pstDevice->Stop();
    ASSERT_GE(uCount, uWanted);
    // Direction, and the frame in four bytes: a downlink and an uplink map in each.
    for (size_t i = 0; i < uWanted; ++i) {
        const std::vector<uint8_t> &aucMessage = g_aaucMessages[i];
        ASSERT_GE(aucMessage.size(), 8U);
        const uint32_t u32Frame = aucMessage[5] + 256U * aucMessage[6] + 65536U * aucMessage[7];
        ASSERT_EQ(u32Frame, 1 + i / 2);
    }
}

} // namespace
