// Requests of random bytes: whatever a client sends, the modem stays sane.
#include <gtest/gtest.h>

#include <array>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

struct Kind {
    uint32_t u32Type;
    uint32_t u32SubType;
    uint32_t u32Length;  // 0: any
    uint32_t u32MsgCode; // of the first byte, 0: any
};

constexpr Kind astKinds[] = {
    {6, 1, 2828, 11}, {6, 2, 8, 17},  {6, 3, 8472, 14}, {6, 4, 12, 0},
    {24, 1, 0, 0},    {24, 2, 27, 0}, {24, 3, 0, 0},    {24, 4, 0, 0},
    {34, 1, 0, 0},    {34, 2, 10, 0}, {34, 3, 4, 0},
};

// One byte of u32Sparse gets a random value below u32Most.
void PutRandomPayload(ByteSpan stBytes, uint32_t u32Length, uint32_t u32Sparse, uint32_t u32Most,
                      Random *pstRandom) {
    for (uint32_t i = 0; i < u32Length; ++i) {
        if (pstRandom->Below(u32Sparse) == 0) {
            stBytes.Set(MessageHeader::Size + i, static_cast<uint8_t>(pstRandom->Below(u32Most)));
        }
    }
}

TEST(HostileRequests, RandomBytesDoNoHarm) {
    ModemBench stBench(std::string(pcFourStations) + pcLinkUp +
                       "[service-flows]\ntransaction-time = 0\n");
    Random stRandom(3, "hostile requests");
    uint32_t u32Taken = 0;
    for (uint32_t i = 0; i < 1000; ++i) {
        for (const Kind &stKind : astKinds) {
            const uint32_t u32Length =
                stKind.u32Length != 0 ? stKind.u32Length : stRandom.Below(WIMAX_DATA_SIZE);
            // Small numbers reach further than large ones.
            const uint32_t u32Most = stRandom.Below(4) == 0 ? 256 : 8;
            const uint32_t u32Sparse = 1 + stRandom.Below(100);
            WiMAXMessage stMessage{};
            const ByteSpan stBytes = BytesOf(stMessage);
            PutRandomPayload(stBytes, u32Length, u32Sparse, u32Most, &stRandom);
            Put(stBytes, MessageHeader::usType, stKind.u32Type);
            Put(stBytes, MessageHeader::usSubType, stKind.u32SubType);
            if (stKind.u32MsgCode != 0) {
                stBytes.Set(MessageHeader::Size, static_cast<uint8_t>(stKind.u32MsgCode));
            }
            const int32_t iResult =
                stBench.TheModem().Send(stBytes.pucData, MessageHeader::Size + u32Length);
            EXPECT_LE(iResult, 0);
            u32Taken += iResult == 0 ? 1 : 0;
            stBench.RunUntil(static_cast<double>(i) / 1000);
        }
    }
    EXPECT_GT(u32Taken, 5000U);
    // The modem answers as before.
    stBench.Messages();
    EXPECT_EQ(stBench.Send(34, 3, "FF FF FF FF"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"34/3: FF FF FF FF 00*4 FF 00"}));
}

// What each type takes: its subtypes with the lengths that are not refused.
struct Door {
    uint32_t u32Type;
    uint32_t u32SubType;
    std::vector<uint32_t> au32Lengths;
};

int32_t SendZeroes(ModemBench &stBench, uint32_t u32Type, uint32_t u32SubType, uint32_t u32Length) {
    WiMAXMessage stMessage{};
    Put(BytesOf(stMessage), MessageHeader::usType, u32Type);
    Put(BytesOf(stMessage), MessageHeader::usSubType, u32SubType);
    return stBench.TheModem().Send(BytesOf(stMessage).pucData, MessageHeader::Size + u32Length);
}

std::vector<Door> Doors(const std::string &strScenario) {
    constexpr uint32_t u32Types = 64;
    constexpr uint32_t u32SubTypes = 32;
    std::vector<Door> astDoors;
    for (uint32_t u32Type = 0; u32Type < u32Types; ++u32Type) {
        // A fresh one: a reset takes requests without looking at them.
        ModemBench stBench(strScenario);
        for (uint32_t u32SubType = 0; u32SubType < u32SubTypes; ++u32SubType) {
            Door stDoor{u32Type, u32SubType, {}};
            if (SendZeroes(stBench, u32Type, u32SubType, 0) == -5) {
                continue;
            }
            for (uint32_t u32Length = 0; u32Length <= WIMAX_DATA_SIZE; ++u32Length) {
                if (SendZeroes(stBench, u32Type, u32SubType, u32Length) != -4) {
                    stDoor.au32Lengths.push_back(u32Length);
                }
            }
            astDoors.push_back(stDoor);
        }
    }
    return astDoors;
}

// In every state of the link: whatever stands in a request of a length that is taken,
// the modem refuses it or answers it, and lives on.
TEST(HostileRequests, EveryRequestTakesAnythingInEveryState) {
    const std::vector<Door> astDoors = Doors(strStations);
    EXPECT_EQ(astDoors.size(), 88U);
    const std::string strStart = strStations + "[start]\nstation = \"00120A010203\"\nstate = ";
    const std::array astrScenarios{strStations, strStart + "\"synchronised\"\n",
                                   strStart + "\"link-up\"\n", strStart + "\"idle\"\n",
                                   strStations + "[start]\nstate = \"shutdown\"\n"};
    Random stRandom(7, "every request");
    for (const std::string &strScenario : astrScenarios) {
        for (const Door &stDoor : astDoors) {
            ModemBench stBench(strScenario + "[trace]\non = true\n");
            for (uint32_t i = 0; i < 20; ++i) {
                const uint32_t u32Length = stDoor.au32Lengths[stRandom.Below(
                    static_cast<uint32_t>(stDoor.au32Lengths.size()))];
                const uint32_t u32Most = stRandom.Below(3) == 0 ? 256 : 4;
                const uint32_t u32Sparse = 1 + stRandom.Below(20);
                WiMAXMessage stMessage{};
                const ByteSpan stBytes = BytesOf(stMessage);
                PutRandomPayload(stBytes, u32Length, u32Sparse, u32Most, &stRandom);
                Put(stBytes, MessageHeader::usType, stDoor.u32Type);
                Put(stBytes, MessageHeader::usSubType, stDoor.u32SubType);
                const int32_t iResult =
                    stBench.TheModem().Send(stBytes.pucData, MessageHeader::Size + u32Length);
                // A list of attributes also has to be as long as its count says.
                EXPECT_TRUE(iResult <= 0 && iResult != -5 &&
                            (iResult != -4 || stDoor.u32Type == 24))
                    << stDoor.u32Type << "/" << stDoor.u32SubType << ": " << iResult;
                stBench.RunUntil(0.05 * i);
            }
            // The state is told at once, whatever it is.
            stBench.RunUntil(1.5);
            EXPECT_EQ(stBench.Send(16, 3, "00"), 0);
        }
    }
}

} // namespace
