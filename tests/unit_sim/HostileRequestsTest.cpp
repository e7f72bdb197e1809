// Requests of random bytes: whatever a client sends, the modem stays sane.
#include <gtest/gtest.h>

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
            for (uint32_t k = 0; k < u32Length; ++k) {
                if (stRandom.Below(u32Sparse) == 0) {
                    stBytes.Set(MessageHeader::Size + k,
                                static_cast<uint8_t>(stRandom.Below(u32Most)));
                }
            }
            Put(stBytes, MessageHeader::Type, stKind.u32Type);
            Put(stBytes, MessageHeader::SubType, stKind.u32SubType);
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

} // namespace
