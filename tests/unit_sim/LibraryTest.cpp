// The device library's functions, with their thread and in real time.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include <unistd.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

using namespace std::chrono_literals;

// What the callback was given, and what it is to do.
struct Client {
    std::mutex stMutex;
    std::condition_variable stChanged;
    std::vector<std::string> astrMessages;
    std::vector<uint32_t> au32Contexts;
    std::thread::id stThread;
    void (*pfnInCallback)(const WiMAXMessage *pstMessage, uint32_t u32Length) = nullptr;
};
Client g_stClient;
std::atomic<bool> g_bRelease{false};
std::atomic<bool> g_bZeroBehind{false};
std::atomic<int> g_iInside{0};
std::atomic<int> g_iMostInside{0};

uint32_t Receive(uint32_t u32Context, const WiMAXMessage *pstMessage, uint32_t u32Length) {
    const int iInside = ++g_iInside;
    g_iMostInside = std::max(g_iMostInside.load(), iInside);
    const auto *pucBytes = reinterpret_cast<const uint8_t *>(pstMessage);
    {
        const std::lock_guard stLock(g_stClient.stMutex);
        g_stClient.astrMessages.push_back(HexOf({pucBytes, pucBytes + u32Length}));
        g_stClient.au32Contexts.push_back(u32Context);
        g_stClient.stThread = std::this_thread::get_id();
        g_stClient.stChanged.notify_all();
    }
    if (g_stClient.pfnInCallback != nullptr) {
        g_stClient.pfnInCallback(pstMessage, u32Length);
    }
    --g_iInside;
    return 0;
}

// The messages, once there are so many, or after a minute.
std::vector<std::string> WaitForMessages(size_t uCount) {
    std::unique_lock stLock(g_stClient.stMutex);
    g_stClient.stChanged.wait_for(stLock, 60s,
                                  [&] { return g_stClient.astrMessages.size() >= uCount; });
    return g_stClient.astrMessages;
}

int32_t Send(uint32_t hDevice, uint8_t u8Type, uint8_t u8SubType) {
    uint8_t aucMessage[4] = {u8Type, 0, u8SubType, 0};
    return SendWiMAXMessage(hDevice, aucMessage, sizeof aucMessage);
}

class Library : public testing::Test {
  protected:
    void SetUp() override {
        g_stClient.astrMessages.clear();
        g_stClient.au32Contexts.clear();
        g_stClient.pfnInCallback = nullptr;
        g_bRelease = false;
        g_iMostInside = 0;
        m_strPath = std::filesystem::temp_directory_path() /
                    ("scenario-" + std::to_string(getpid()) + ".toml");
        UseScenario("[device]\nanswer-delay = 0\n");
    }
    void TearDown() override {
        CloseWiMAXDevice();
        unsetenv("QOR020_SCENARIO");
        std::filesystem::remove(m_strPath);
    }
    void UseScenario(const std::string &strText) {
        std::ofstream(m_strPath) << strText;
        setenv("QOR020_SCENARIO", m_strPath.c_str(), 1);
    }
    static uint32_t OpenAndRegister() {
        const uint32_t hDevice = OpenWiMAXDevice();
        EXPECT_NE(hDevice, 0xFFFFFFFF);
        EXPECT_EQ(RegisterCallback(hDevice, Receive, 77), 0);
        return hDevice;
    }

    std::string m_strPath;
};

TEST_F(Library, AnswersComeFromAnotherThreadWithTheContext) {
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"24 00 02 00"});
    EXPECT_EQ(g_stClient.au32Contexts, std::vector<uint32_t>{77});
    EXPECT_NE(g_stClient.stThread, std::this_thread::get_id());
    EXPECT_EQ(CloseWiMAXDevice(), 0);
}

TEST_F(Library, BuiltInScenarioRunsWithoutAFile) {
    unsetenv("QOR020_SCENARIO");
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 30, 5), 0);
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"1E 00 05 00 01 00 00 00"});
}

TEST_F(Library, NothingWorksWithoutAnOpenDevice) {
    EXPECT_EQ(CloseWiMAXDevice(), -1);
    EXPECT_EQ(Send(1, 36, 1), -1);
    EXPECT_EQ(RegisterCallback(1, Receive, 0), -1);
    uint32_t u32Word = 0;
    EXPECT_EQ(rdm(0, &u32Word, 4), -1);
    EXPECT_EQ(wrm(0, &u32Word, 4), -1);
}

TEST_F(Library, AWrongHandleIsRefused) {
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice + 1, 36, 1), -2);
    EXPECT_EQ(Send(0xFFFFFFFF, 36, 1), -2);
    EXPECT_EQ(RegisterCallback(hDevice + 1, Receive, 0), -2);
    EXPECT_EQ(SendWiMAXMessage(hDevice, nullptr, 4), -3);
    EXPECT_EQ(rdm(0, nullptr, 4), -3);
    EXPECT_EQ(wrm(0, nullptr, 4), -3);
}

TEST_F(Library, ASecondOpenGivesTheSameHandleAndKeepsTheModem) {
    const uint32_t hDevice = OpenAndRegister();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(OpenWiMAXDevice(), hDevice);
        EXPECT_EQ(Send(hDevice, 36, 1), 0);
    }
    // The fourth one: the modem has counted on.
    EXPECT_EQ(WaitForMessages(4).back(), "24 00 03 00");
}

TEST_F(Library, CanBeClosedAndOpenedAgain) {
    for (int i = 0; i < 20; ++i) {
        const uint32_t hDevice = OpenAndRegister();
        EXPECT_EQ(Send(hDevice, 36, 1), 0);
        EXPECT_EQ(WaitForMessages(i + 1).size(), i + 1U);
        EXPECT_EQ(g_stClient.astrMessages.back(), "24 00 02 00");
        EXPECT_EQ(CloseWiMAXDevice(), 0);
        EXPECT_EQ(Send(hDevice, 36, 1), -1);
    }
    EXPECT_EQ(CloseWiMAXDevice(), -1);
}

TEST_F(Library, MessagesWaitForACallback) {
    const uint32_t hDevice = OpenWiMAXDevice();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(WaitForMessages(0).size(), 0U);
    EXPECT_EQ(RegisterCallback(hDevice, Receive, 5), 0);
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"24 00 02 00"});
}

TEST_F(Library, ModemTimeIsScaled) {
    UseScenario("time-scale = 1000\n[device]\nanswer-delay = 0\n[[event]]\nat = 60\n"
                "kind = \"message\"\nbytes = \"03000200\"\n");
    const auto stBefore = std::chrono::steady_clock::now();
    OpenAndRegister();
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"03 00 02 00"});
    const auto stTook = std::chrono::steady_clock::now() - stBefore;
    EXPECT_GE(stTook, 59ms);
    EXPECT_LT(stTook, 50s);
}

TEST_F(Library, AMessageComesInAWholeRecordZeroBehindIt) {
    UseScenario("[device]\nanswer-delay = 0\n[[event]]\nat = 0\n"
                "kind = \"message\"\nbytes = \"03000200aabb\"\n");
    g_stClient.pfnInCallback = [](const WiMAXMessage *pstMessage, uint32_t u32Length) {
        const auto *pucBytes = reinterpret_cast<const uint8_t *>(pstMessage);
        g_bZeroBehind = u32Length == 6 && std::all_of(pucBytes + u32Length, pucBytes + 10244,
                                                      [](uint8_t u8Byte) { return u8Byte == 0; });
    };
    OpenAndRegister();
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"03 00 02 00 AA BB"});
    CloseWiMAXDevice(); // waits for the callback
    EXPECT_TRUE(g_bZeroBehind);
}

TEST_F(Library, ARequestCanBeSentFromTheCallback) {
    UseScenario("[device]\nanswer-delay = 0\n[half-mini-card]\nexchanges = 50\n");
    g_stClient.pfnInCallback = [](const WiMAXMessage *pstMessage, uint32_t) {
        const auto *pucBytes = reinterpret_cast<const uint8_t *>(pstMessage);
        if (Get({pucBytes, WIMAX_HEADER_SIZE}, MessageHeader::usSubType) != 3) {
            Send(1, 36, 1);
        }
    };
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    const std::vector<std::string> astrMessages = WaitForMessages(51);
    ASSERT_EQ(astrMessages.size(), 51U);
    EXPECT_EQ(astrMessages[49], "24 00 02 00");
    EXPECT_EQ(astrMessages[50], "24 00 03 00");
}

TEST_F(Library, SendsAreAcceptedAndMessagesWaitWhileACallbackBlocks) {
    g_stClient.pfnInCallback = [](const WiMAXMessage *, uint32_t) {
        while (!g_bRelease) {
            std::this_thread::sleep_for(1ms);
        }
    };
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    WaitForMessages(1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Send(hDevice, 36, 1), 0);
    }
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(WaitForMessages(1).size(), 1U);
    g_bRelease = true;
    EXPECT_EQ(WaitForMessages(4).back(), "24 00 03 00");
    EXPECT_EQ(g_iMostInside, 1);
}

TEST_F(Library, CloseWaitsForARunningCallback) {
    g_stClient.pfnInCallback = [](const WiMAXMessage *, uint32_t) {
        std::this_thread::sleep_for(100ms);
    };
    // The second message has not been delivered, and never will be; on a busy machine the close may
    // come after both.
    bool bInTime = false;
    for (int i = 0; i < 20 && !bInTime; ++i) {
        g_stClient.astrMessages.clear();
        const uint32_t hDevice = OpenAndRegister();
        EXPECT_EQ(Send(hDevice, 36, 1), 0);
        EXPECT_EQ(Send(hDevice, 36, 1), 0);
        WaitForMessages(1);
        EXPECT_EQ(CloseWiMAXDevice(), 0);
        EXPECT_EQ(g_iInside, 0);
        bInTime = g_stClient.astrMessages.size() == 1;
    }
    EXPECT_TRUE(bInTime);
}

TEST_F(Library, CloseDoesNotWaitForEver) {
    g_stClient.pfnInCallback = [](const WiMAXMessage *, uint32_t) {
        while (!g_bRelease) {
            std::this_thread::sleep_for(1ms);
        }
    };
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    WaitForMessages(1);
    const auto stBefore = std::chrono::steady_clock::now();
    EXPECT_EQ(CloseWiMAXDevice(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - stBefore, 60s);
    EXPECT_EQ(g_iInside, 1);
    g_bRelease = true;
    while (g_iInside != 0) {
        std::this_thread::sleep_for(1ms);
    }
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(g_stClient.astrMessages.size(), 1U);
}

TEST_F(Library, CanBeClosedFromTheCallback) {
    g_stClient.pfnInCallback = [](const WiMAXMessage *, uint32_t) {
        EXPECT_EQ(CloseWiMAXDevice(), 0);
        g_bRelease = true;
    };
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    while (!g_bRelease) {
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_EQ(Send(hDevice, 36, 1), -1);
    g_stClient.pfnInCallback = nullptr;
    while (g_iInside != 0) {
        std::this_thread::sleep_for(1ms);
    }
}

TEST_F(Library, ADeviceThatIsNotThereDoesNotOpen) {
    UseScenario("[device]\npresent = false\n");
    for (int i = 0; i < 21; ++i) {
        EXPECT_EQ(OpenWiMAXDevice(), 0xFFFFFFFF);
    }
}

TEST_F(Library, TheFirstOpensCanFail) {
    UseScenario("[device]\nfailed-opens = 2\n");
    // Attempts are counted for one scenario.
    setenv("QOR020_SCENARIO", (m_strPath + "x").c_str(), 1);
    std::filesystem::copy(m_strPath, m_strPath + "x");
    testing::internal::CaptureStderr();
    EXPECT_EQ(OpenWiMAXDevice(), 0xFFFFFFFF);
    EXPECT_EQ(OpenWiMAXDevice(), 0xFFFFFFFF);
    EXPECT_NE(OpenWiMAXDevice(), 0xFFFFFFFF);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    std::filesystem::remove(m_strPath + "x");
}

TEST_F(Library, AScenarioThatHasGoneBadIsReportedOnceAndDoesNotOpen) {
    ASSERT_NE(OpenWiMAXDevice(), 0xFFFFFFFF);
    ASSERT_EQ(CloseWiMAXDevice(), 0);
    UseScenario("[device]\n\npresence = true\n");
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(OpenWiMAXDevice(), 0xFFFFFFFF);
    EXPECT_EQ(OpenWiMAXDevice(), 0xFFFFFFFF);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "libqor020: " + m_strPath + ":3: \"presence\" is not known here\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(Library, AnUnloadedDeviceCanBeOpenedAgain) {
    UseScenario("[device]\nanswer-delay = 0\n[[event]]\nat = 0.01\nkind = \"device-unload\"\n");
    const uint32_t hDevice = OpenAndRegister();
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"0C 00 02 00"});
    EXPECT_EQ(Send(hDevice, 36, 1), -1);
    UseScenario("");
    const uint32_t hAgain = OpenAndRegister();
    EXPECT_EQ(Send(hAgain, 36, 1), 0);
    EXPECT_EQ(WaitForMessages(2).back(), "24 00 02 00");
}

TEST_F(Library, ManyThreadsMaySendAtOnce) {
    UseScenario("[device]\nanswer-delay = 0\n[half-mini-card]\nexchanges = 0\n");
    const uint32_t hDevice = OpenAndRegister();
    std::vector<std::thread> astThreads;
    astThreads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        astThreads.emplace_back([hDevice] {
            for (int j = 0; j < 100; ++j) {
                EXPECT_EQ(Send(hDevice, 36, 1), 0);
            }
        });
    }
    for (std::thread &stThread : astThreads) {
        stThread.join();
    }
    EXPECT_EQ(WaitForMessages(400).size(), 400U);
    EXPECT_EQ(g_iMostInside, 1);
}

// The list of service flows.
int32_t AskForFlows(uint32_t hDevice) {
    std::vector<uint8_t> aucMessage = BytesOfHex("18 00 02 00 DF 05 00*25");
    return SendWiMAXMessage(hDevice, aucMessage.data(), static_cast<uint32_t>(aucMessage.size()));
}

size_t MessagesSoFar() {
    const std::lock_guard stLock(g_stClient.stMutex);
    return g_stClient.astrMessages.size();
}

TEST_F(Library, TheListOfFlowsIsThereWhenItsSendReturns) {
    UseScenario("[device]\nanswer-delay = 0.05\n");
    const uint32_t hDevice = OpenAndRegister();
    for (size_t i = 1; i <= 5; ++i) {
        EXPECT_EQ(AskForFlows(hDevice), 0);
        EXPECT_EQ(MessagesSoFar(), i);
        EXPECT_EQ(g_iInside, 0);
    }
    // Other sends do not wait.
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    EXPECT_EQ(MessagesSoFar(), 5U);
    EXPECT_EQ(WaitForMessages(6).size(), 6U);
}

TEST_F(Library, ASendWaitsForACallbackNoLongerThanASecond) {
    g_bRelease = false;
    g_stClient.pfnInCallback = [](const WiMAXMessage *, uint32_t) {
        while (!g_bRelease) {
            std::this_thread::sleep_for(1ms);
        }
    };
    UseScenario("[device]\nanswer-delay = 0\n");
    const uint32_t hDevice = OpenAndRegister();
    const auto stBegan = std::chrono::steady_clock::now();
    EXPECT_EQ(AskForFlows(hDevice), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - stBegan, 900ms);
    g_bRelease = true;
    EXPECT_EQ(WaitForMessages(1).size(), 1U);
}

TEST_F(Library, ASendFromTheCallbackDoesNotWait) {
    static uint32_t hDevice;
    static std::atomic<int> iAsked;
    static std::chrono::steady_clock::duration stLeast; // others are those of a busy machine
    constexpr int iTimes = 10;
    iAsked = 0;
    stLeast = 1h;
    g_stClient.pfnInCallback = [](const WiMAXMessage *, uint32_t) {
        if (iAsked.fetch_add(1) < iTimes) {
            const auto stBegan = std::chrono::steady_clock::now();
            EXPECT_EQ(AskForFlows(hDevice), 0);
            stLeast = std::min(stLeast, std::chrono::steady_clock::now() - stBegan);
        }
    };
    UseScenario("[device]\nanswer-delay = 0\n");
    hDevice = OpenAndRegister();
    EXPECT_EQ(Send(hDevice, 36, 1), 0);
    EXPECT_EQ(WaitForMessages(1 + iTimes).size(), 1U + iTimes);
    EXPECT_LT(stLeast, 500ms);
}

TEST_F(Library, CloseLetsGoOfASenderThatWaits) {
    UseScenario("[device]\nanswer-delay = 60\n");
    bool bLetGo = false;
    // On a busy machine the sender may come too late, or wait its whole second.
    for (int i = 0; i < 20 && !bLetGo; ++i) {
        const uint32_t hDevice = OpenAndRegister();
        std::thread stSender([&] {
            const auto stBegan = std::chrono::steady_clock::now();
            const bool bSent = AskForFlows(hDevice) == 0;
            bLetGo = bSent && std::chrono::steady_clock::now() - stBegan < 900ms;
        });
        std::this_thread::sleep_for(100ms);
        EXPECT_EQ(CloseWiMAXDevice(), 0);
        stSender.join();
        EXPECT_EQ(MessagesSoFar(), 0U);
    }
    EXPECT_TRUE(bLetGo);
}

TEST_F(Library, AnswersThatAreStillComingAreGoneWithTheDevice) {
    UseScenario("[device]\nanswer-delay = 0.05\n");
    for (int i = 0; i < 10; ++i) {
        const uint32_t hDevice = OpenAndRegister();
        EXPECT_EQ(Send(hDevice, 36, 1), 0);
        EXPECT_EQ(Send(hDevice, 30, 5), 0);
        EXPECT_EQ(CloseWiMAXDevice(), 0);
    }
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(MessagesSoFar(), 0U);
    // Not those of the device that was there before.
    EXPECT_EQ(Send(OpenAndRegister(), 36, 1), 0);
    EXPECT_EQ(WaitForMessages(1), std::vector<std::string>{"24 00 02 00"});
}

// Senders, readers of memory and callbacks' changes of several threads, while the device
// is opened and closed under them.
TEST_F(Library, ThreadsMayDoAnythingAtAnyTime) {
    UseScenario("time-scale = 100\n[device]\nanswer-delay = 0\n[trace]\non = true\n");
    std::atomic<bool> bEnd{false};
    std::atomic<uint32_t> u32Accepted{0};
    std::vector<std::thread> astThreads;
    astThreads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        astThreads.emplace_back([&, i] {
            while (!bEnd) {
                uint32_t u32Register = 0;
                (void)rdm(0x0F000000, &u32Register, 4);
                (void)RegisterCallback(1, i == 0 ? nullptr : Receive, 0);
                (void)SendWiMAXMessage(1, nullptr, 4);
                u32Accepted += Send(1, 36, 1) == 0 ? 1 : 0;
                u32Accepted += Send(1, 16, 1) == 0 ? 1 : 0;
                (void)AskForFlows(1);
            }
        });
    }
    const auto stEnd = std::chrono::steady_clock::now() + 500ms;
    while (std::chrono::steady_clock::now() < stEnd ||
           (u32Accepted == 0 && std::chrono::steady_clock::now() < stEnd + 60s)) {
        EXPECT_EQ(OpenWiMAXDevice(), 1U);
        std::this_thread::sleep_for(5ms);
        EXPECT_EQ(CloseWiMAXDevice(), 0);
    }
    bEnd = true;
    for (std::thread &stThread : astThreads) {
        stThread.join();
    }
    EXPECT_GT(u32Accepted, 0U);
    EXPECT_LE(g_iMostInside, 1);
    EXPECT_EQ(Send(1, 36, 1), -1);
}

TEST_F(Library, TimeThatRunsTooFastSlipsBehind) {
    // Two hundred million maps a second are wanted.
    UseScenario("time-scale = 1000000\n[device]\nanswer-delay = 0\n[trace]\non = true\n"
                "[signalling]\nmap-period = 0.005\n" +
                std::string(pcFourStations) + pcLinkUp);
    const auto stBegan = std::chrono::steady_clock::now();
    const uint32_t hDevice = OpenWiMAXDevice();
    for (int i = 0; i < 5; ++i) {
        std::this_thread::sleep_for(50ms);
        EXPECT_EQ(Send(hDevice, 2, 3), 0);
    }
    EXPECT_EQ(CloseWiMAXDevice(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - stBegan, 60s);
}

} // namespace
