// What goes over the air, byte for byte. The expected bytes are put together by hand from the
// tables of IEEE Std 802.16; a comment names the clause.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "air/PhysicalLayer.h"

namespace {

struct LayoutCase {
    uint32_t u32Bandwidth;
    FrameLayout stLayout;
};

// 8.4.2.3, 8.4.2.4 (sampling factor, transform, guard of an eighth), 8.4.6 (subchannels), 5 ms.
TEST(PhysicalLayer, AFrameIsLaidOutByTheBandwidth) {
    constexpr std::array astCases{
        LayoutCase{3500, {512, 144, 5000, 21, 12, 15, 17, 188, 60}},
        LayoutCase{5000, {512, 144, 7000, 29, 18, 15, 17, 148, 84}},
        LayoutCase{7000, {1024, 288, 10000, 21, 12, 30, 35, 376, 120}},
        LayoutCase{8750, {1024, 288, 12500, 27, 15, 30, 35, 218, 186}},
        LayoutCase{10000, {1024, 288, 14000, 29, 18, 30, 35, 296, 168}},
    };
    for (const auto &[u32Bandwidth, stExpected] : astCases) {
        const FrameLayout stLayout = LayoutOf(u32Bandwidth);
        EXPECT_EQ(stLayout.u32Carriers, stExpected.u32Carriers) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32SlotsPerSymbol, stExpected.u32SlotsPerSymbol) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32SlotsPerFrame, stExpected.u32SlotsPerFrame) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32DownlinkSymbols, stExpected.u32DownlinkSymbols) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32UplinkSymbols, stExpected.u32UplinkSymbols) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32DownlinkSubChannels, stExpected.u32DownlinkSubChannels)
            << u32Bandwidth;
        EXPECT_EQ(stLayout.u32UplinkSubChannels, stExpected.u32UplinkSubChannels) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32TransmitGap, stExpected.u32TransmitGap) << u32Bandwidth;
        EXPECT_EQ(stLayout.u32ReceiveGap, stExpected.u32ReceiveGap) << u32Bandwidth;
    }
    EXPECT_EQ(LayoutOf(10000).UplinkStart(), 8648U);
}

TEST(PhysicalLayer, AFrameIsFilledToItsEndAtAnyBandwidth) {
    for (const uint32_t u32Bandwidth :
         {0U, 3U, 1250U, 1750U, 2000U, 2750U, 6000U, 9000U, 20000U, 4294967295U}) {
        const FrameLayout stLayout = LayoutOf(u32Bandwidth);
        EXPECT_EQ(stLayout.UplinkStart() + stLayout.u32UplinkSymbols * stLayout.u32SlotsPerSymbol +
                      stLayout.u32ReceiveGap,
                  stLayout.u32SlotsPerFrame)
            << u32Bandwidth;
        EXPECT_EQ(stLayout.u32UplinkSymbols % 3, 0U) << u32Bandwidth;
        EXPECT_GT(stLayout.u32DownlinkSymbols, stLayout.u32UplinkSymbols) << u32Bandwidth;
    }
}

} // namespace
