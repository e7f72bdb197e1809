// What goes over the air, byte for byte. The expected bytes are put together by hand from the
// tables of IEEE Std 802.16; a comment names the clause.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "air/Capabilities.h"
#include "air/ManagementMessages.h"
#include "air/PhysicalLayer.h"

namespace {

std::string HexOf(BitWriter stBody) { return ::HexOf(stBody.Take()); }

Station StationAt(uint32_t u32Frequency, uint32_t u32Bandwidth) {
    Station stStation{};
    stStation.aucBSID = {0x00, 0x12, 0x0A, 0x01, 0x02, 0x03};
    stStation.u32Frequency = u32Frequency;
    stStation.u32Bandwidth = u32Bandwidth;
    stStation.u32Preamble = 3;
    stStation.u32DCDChangeCount = 5;
    stStation.u32CellID = 9;
    return stStation;
}

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

// 11.4.1 (power, gaps, frequency, station), 11.4.2 (a burst profile for each code of the maps),
// 11.18.2 (mobility); 11.1.7 (whole dB, milliseconds).
TEST(AirInterface, ADCDDescribesTheChannelAndEveryProfile) {
    const Station stStation = StationAt(2587500, 10000);
    const std::string strProfiles = "01 04 00 96 01 0D 01 04 01 96 01 0F 01 04 02 96 01 10 "
                                    "01 04 03 96 01 11 01 04 04 96 01 12 01 04 05 96 01 13 "
                                    "01 04 06 96 01 14 01 04 07 96 01 15";
    const std::string strChannel = "00 05 02 02 00 2B 07 02 01 28 08 01 A8 09 02 FF A6 "
                                   "0C 04 00 27 7B 6C 0D 06 00 12 0A 01 02 03 "
                                   "1F 01 06 20 01 0A 32 01 80 ";
    EXPECT_EQ(HexOf(DCDBody(stStation, {6, 200 * i64Millisecond})),
              strChannel + "33 01 06 34 01 C8 23 02 00 01 94 01 05 " + strProfiles);
    // A second does not go into a byte of milliseconds.
    EXPECT_EQ(HexOf(DCDBody(stStation, {4, i64Second})),
              strChannel + "33 01 04 23 02 00 01 94 01 05 " + strProfiles);
}

// 11.3.1 (backoffs, frequency, ranging codes, permutation), 11.3.1.1 (burst profiles).
TEST(AirInterface, AUCDDescribesTheChannelAndEveryProfile) {
    EXPECT_EQ(HexOf(UCDBody(StationAt(2587500, 10000))),
              "05 00 0A 00 0A 02 01 08 99 01 00 9A 01 0A 05 04 00 27 7B 6C "
              "96 01 40 97 01 20 98 01 60 9B 01 00 C2 01 40 9C 01 09 "
              "01 07 01 96 01 0D 97 01 00 01 07 02 96 01 0F 97 01 00 "
              "01 07 03 96 01 10 97 01 00 01 07 04 96 01 11 97 01 00 "
              "01 07 05 96 01 12 97 01 00 01 07 06 96 01 13 97 01 00 "
              "01 07 07 96 01 14 97 01 00 01 07 08 96 01 15 97 01 00");
}

// 11.8: half duplex, piggybacked requests and 3-bit fragment numbers, three instances of all
// types of power saving classes, 64-QAM and turbo codes, gaps of 50 us, 23 dBm (0xAE = 128 + 2 *
// 23) in all modulations, 512 and 1024 carriers, PKM version 2 with EAP and CMAC.
TEST(AirInterface, ASBCREQSaysWhatTheModemHolds) {
    EXPECT_EQ(HexOf(SBCREQBody()), "01 01 00 04 01 03 1A 01 7F 97 01 05 98 01 05 9A 01 01 A0 01 03 "
                                   "02 02 32 32 03 04 AE AE AE AE 96 01 18 "
                                   "19 09 01 01 02 02 01 02 03 01 02");
}

// 11.8: the bits that both have; power and gaps are the modem's alone.
TEST(AirInterface, ASBCRSPIsWhatBothHave) {
    const std::string strFirst = "01 01 00 04 01 01 1A 01 7F 97 01 05 98 01 05 9A 01 00 A0 01 01 ";
    const std::string strSecurity = "19 09 01 01 02 02 01 02 03 01 02";
    EXPECT_EQ(HexOf(SBCRSPBody(StationAt(2587500, 10000))), strFirst + "96 01 10 " + strSecurity);
    EXPECT_EQ(HexOf(SBCRSPBody(StationAt(2600000, 5000))), strFirst + "96 01 08 " + strSecurity);
}

// 11.7: IPv4, no ARQ, no diversity, all mobility; 75 connections each way are cut to the
// station's limit; 11.7.17 (flows that it will set up).
TEST(AirInterface, ARegistrationIsCutToTheStationsLimits) {
    EXPECT_EQ(HexOf(REGREQBody()),
              "02 01 00 04 01 01 0A 01 00 1B 01 01 1F 01 07 06 02 00 4B 0F 02 00 4B");
    EXPECT_EQ(HexOf(REGRSPBody(true, {16, 2})), "00 02 01 00 04 01 01 0A 01 00 1B 01 01 1F 01 07 "
                                                "06 02 00 10 0F 02 00 10 24 01 02");
    EXPECT_EQ(HexOf(REGRSPBody(false, {16, 2})), "01");
}

// 7.2.2, 11.9: the capabilities hold a list, the list one suite, AES in CCM mode.
TEST(AirInterface, ASATEKRequestListsTheSuites) {
    KeyExchange stKeys{};
    stKeys.u64MSRandom = 0x0102030405060708;
    stKeys.u64BSRandom = 0x1112131415161718;
    stKeys.u64AKID = 0x2122232425262728;
    EXPECT_EQ(HexOf(PKMBody(21, 4, stKeys, 0)),
              "15 04 21 08 01 02 03 04 05 06 07 08 22 08 11 12 13 14 15 16 17 18 0A 01 01 "
              "2D 08 21 22 23 24 25 26 27 28 13 07 15 05 14 03 02 01 03 "
              "19 09 01 01 02 02 01 02 03 01 02");
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
