// A long session through the device library's functions, always the same: a checksum of every
// message in the order of calls and messages, and of the results of all calls.
//
//     long_session CALLS SEED [MESSAGE]
//
// With the number of a message the process stops in its callback, and takes its time when it is
// continued.
#include <array>
#include <chrono>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include "WiMAXDevice.h"

namespace {

constexpr uint32_t u32FrameRegister = 0x0F000010;

// FNV-1a, 64 bits.
class Checksum {
  public:
    void Add(const void *pvBytes, size_t uCount) {
        const auto *pucBytes = static_cast<const uint8_t *>(pvBytes);
        for (size_t i = 0; i < uCount; ++i) {
            m_u64Sum = (m_u64Sum ^ pucBytes[i]) * 0x100000001B3;
        }
    }
    // The same on every machine.
    void Add(uint32_t u32Number) {
        const uint8_t aucBytes[]{
            static_cast<uint8_t>(u32Number), static_cast<uint8_t>(u32Number >> 8),
            static_cast<uint8_t>(u32Number >> 16), static_cast<uint8_t>(u32Number >> 24)};
        Add(aucBytes, sizeof aucBytes);
    }
    uint64_t Sum() const { return m_u64Sum; }

  private:
    uint64_t m_u64Sum = 0xCBF29CE484222325;
};

class Dice {
  public:
    explicit Dice(uint64_t u64Seed) : m_u64State(u64Seed) {}
    uint32_t Below(uint32_t u32Limit) {
        m_u64State = m_u64State * 6364136223846793005 + 1442695040888963407;
        return static_cast<uint32_t>(m_u64State >> 33) % u32Limit;
    }

  private:
    uint64_t m_u64State;
};

// Requests with the length of their payload; bBytes: any bytes will do, else zeroes.
struct Request {
    uint8_t u8Type;
    uint8_t u8SubType;
    uint16_t u16Length;
    bool bBytes;
    std::array<uint8_t, 12> aucPayload;
};

// 2587500 kHz, 10000 kHz, any preamble.
constexpr std::array<uint8_t, 12> aucStation{0x6C, 0x7B, 0x27, 0, 0x10, 0x27, 0, 0, 0xFF};

constexpr Request astRequests[]{
    {2, 1, 64, false, aucStation}, // synchronisation
    {2, 1, 64, false, aucStation},
    {2, 2, 4, false, {}}, // network entry
    {2, 2, 4, false, {}},
    {2, 2, 4, false, {}},
    {2, 3, 0, false, {}}, // its status
    {3, 1, 0, false, {}}, // synchronisation down
    {3, 2, 0, false, {}}, // deregistration
    {4, 1, 4, false, {}},
    {8, 1, 0, false, {}}, // loggers on
    {8, 3, 0, false, {}},
    {8, 4, 0, false, {}},
    {8, 7, 0, false, {}},
    {8, 8, 0, false, {}},
    {9, 3, 0, false, {}}, // and off
    {9, 4, 0, false, {}},
    {17, 1, 4, false, {}}, // statistics, once
    {17, 1, 4, false, {0xE8, 0x03}},
    {19, 1, 0, false, {}}, // idle mode
    {19, 2, 0, false, {}},
    {19, 4, 0, false, {}},
    {21, 1, 0, false, {}}, // trace
    {21, 1, 0, false, {}},
    {21, 2, 0, false, {}},
    {21, 3, 0, false, {}},
    {24, 2, 29, false, {0xDF, 0x05}}, // the list of service flows
    {24, 2, 29, false, {0x59, 0x06}}, // 1625
    {24, 2, 29, false, {0x48, 0x06}}, // 1608
    {24, 2, 29, true, {}},
    {27, 2, 0, false, {}}, // log data
    {27, 3, 0, false, {}},
    {28, 2, 44, false, {1, 0, 0, 0, 3, 0, 0, 0, 2}}, // antenna scan
    {30, 1, 0, false, {}},                           // shutdown
    {30, 5, 0, false, {}},
    {31, 2, 0, false, {}},
    {36, 1, 0, false, {}},
};

std::mutex g_stMutex;
Checksum g_stChecksum;
uint32_t g_u32Messages = 0;
unsigned long g_ulStopsIn = 0;

uint32_t Receive(uint32_t u32Handle, const WiMAXMessage *pstMessage, uint32_t u32Length) {
    uint32_t u32Count = 0;
    {
        const std::lock_guard stLock(g_stMutex);
        g_stChecksum.Add(pstMessage, u32Length);
        u32Count = ++g_u32Messages;
    }
    if (u32Count == g_ulStopsIn) {
        (void)std::raise(SIGSTOP);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    // Now and then a client asks for something from there.
    if (u32Count % 50 == 0) {
        uint8_t aucStatus[]{2, 0, 3, 0};
        const int32_t iResult = SendWiMAXMessage(u32Handle, aucStatus, sizeof aucStatus);
        const std::lock_guard stLock(g_stMutex);
        g_stChecksum.Add(static_cast<uint32_t>(iResult));
    }
    return 0;
}

void Send(uint32_t u32Handle, const Request &stRequest, Dice &stDice) {
    std::vector<uint8_t> aucMessage(WIMAX_MESSAGE_SIZE);
    aucMessage[0] = stRequest.u8Type;
    aucMessage[2] = stRequest.u8SubType;
    for (size_t i = 0; i < stRequest.u16Length; ++i) {
        const uint8_t u8Given = i < stRequest.aucPayload.size() ? stRequest.aucPayload[i] : 0;
        aucMessage[WIMAX_HEADER_SIZE + i] =
            stRequest.bBytes ? static_cast<uint8_t>(stDice.Below(256)) : u8Given;
    }
    const int32_t iResult =
        SendWiMAXMessage(u32Handle, aucMessage.data(), WIMAX_HEADER_SIZE + stRequest.u16Length);
    const std::lock_guard stLock(g_stMutex);
    g_stChecksum.Add(static_cast<uint32_t>(iResult));
}

void ReadFrame() {
    uint8_t aucFrame[4]{};
    const int32_t iResult = rdm(u32FrameRegister, aucFrame, sizeof aucFrame);
    const std::lock_guard stLock(g_stMutex);
    g_stChecksum.Add(static_cast<uint32_t>(iResult));
    g_stChecksum.Add(aucFrame, sizeof aucFrame);
}

} // namespace

int main(int iArguments, char **apcArguments) {
    if (iArguments != 3 && iArguments != 4) {
        return 2;
    }
    g_ulStopsIn = iArguments == 4 ? std::strtoul(apcArguments[3], nullptr, 10) : 0;
    const unsigned long ulCalls = std::strtoul(apcArguments[1], nullptr, 10);
    Dice stDice(std::strtoul(apcArguments[2], nullptr, 10));
    const uint32_t u32Handle = OpenWiMAXDevice();
    if (u32Handle == WIMAX_NO_DEVICE || RegisterCallback(u32Handle, Receive, u32Handle) != 0) {
        return 1;
    }
    for (unsigned long i = 0; i < ulCalls; ++i) {
        if (i % 4 == 0) {
            ReadFrame();
        } else {
            Send(u32Handle, astRequests[stDice.Below(std::size(astRequests))], stDice);
        }
    }
    CloseWiMAXDevice();
    std::printf("%" PRIu32 " messages, checksum %016" PRIx64 "\n", g_u32Messages,
                g_stChecksum.Sum());
    return 0;
}
