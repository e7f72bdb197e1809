// What goes over the air, byte for byte. The expected bytes are put together by hand from the
// tables of IEEE Std 802.16; a comment names the clause.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "ServiceFlowRecord.h"
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
    stStation.iPower = 43;
    stStation.u32PagingGroup = 1;
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
// 11.18.2 (mobility); 11.1.7 (whole dB, milliseconds; triggers: CINR of the station below so many
// half dB, scan; RSSI of a neighbour above the station's by so many quarters, handover).
TEST(AirInterface, ADCDDescribesTheChannelAndEveryProfile) {
    const Station stStation = StationAt(2587500, 10000);
    const std::string strProfiles = "01 04 00 96 01 0D 01 04 01 96 01 0F 01 04 02 96 01 10 "
                                    "01 04 03 96 01 11 01 04 04 96 01 12 01 04 05 96 01 13 "
                                    "01 04 06 96 01 14 01 04 07 96 01 15";
    const std::string strChannel = "00 05 02 02 00 2B 07 02 01 28 08 01 A8 09 02 FF A6 "
                                   "0C 04 00 27 7B 6C 0D 06 00 12 0A 01 02 03 "
                                   "1F 01 06 20 01 0A 32 01 80 ";
    EXPECT_EQ(HexOf(DCDBody(stStation, {6, 200 * i64Millisecond, 8})),
              strChannel +
                  "33 01 06 34 01 C8 36 06 01 01 33 02 01 10 36 06 01 01 5A 02 01 18 "
                  "23 02 00 01 94 01 05 " +
                  strProfiles);
    // A second does not go into a byte of milliseconds.
    EXPECT_EQ(HexOf(DCDBody(stStation, {4, i64Second, -3})),
              strChannel +
                  "33 01 04 36 06 01 01 33 02 01 FA 36 06 01 01 5A 02 01 10 "
                  "23 02 00 01 94 01 05 " +
                  strProfiles);
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

// 8.4.5.4: the grant (20 slots at UIUC 8), the two regions for ranging; 8.4.5.4.3: an allocation
// for each code that is answered: six slots for a RNG-REQ, one that is there for a bandwidth
// request (the last bit), both at UIUC 1, with the frame's last four bits, code, symbol and
// subchannel.
TEST(AirInterface, AnULMAPAnswersCodesWithAllocations) {
    const Station stStation = StationAt(2587500, 10000);
    const Grants stGrants{{{5, 60, 3, 1}, {0x35, 100, 4, 2}}, {{0x11, ProfileAt(28), 20}}};
    EXPECT_EQ(HexOf(ULMAPBody(stStation, stGrants)),
              "00 05 00 00 21 C8 12 00 11 80 50 FF FF C0 00 00 83 0F FF FC 02 00 04 34 "
              "00 00 E1 84 53 C0 10 60 00 0E 04 45 64 02 09");
    const Grants stNone;
    EXPECT_EQ(HexOf(ULMAPBody(stStation, stNone)),
              "00 05 00 00 21 C8 12 FF FF C0 00 00 83 0F FF FC 02 00 04 34");
}

// 8.4.5.6.1: bits 110, an UL-MAP appended, the length of all; frame duration and number, DCD count,
// the last bytes of both halves of the station's ID, 29 symbols, two bursts; 8.4.5.6.2: UCD count,
// start of the uplink, 18 symbols, grants and regions as in an UL-MAP; 6.3.3.5.2.2: the checksum,
// which stock tshark finds right, too.
TEST(AirInterface, CompressedMapsAreBothMapsInOne) {
    const Station stStation = StationAt(2587500, 10000);
    const std::string strDownlink =
        "04 00 04 D2 05 0A 03 1D 02 00 10 00 42 97 05 00 18 78 05 00 00 21 C8 12 ";
    EXPECT_EQ(HexOf(CompressedMaps(stStation, 1234, ProfileAt(28), {})),
              "D0 2B " + strDownlink + "FF FF C0 00 00 83 0F FF FC 02 00 04 34 BE A5 03 CE");
    const Grants stGrants{{{5, 60, 3, 1}, {0x35, 100, 4, 2}}, {{0x11, ProfileAt(28), 20}}};
    EXPECT_EQ(HexOf(CompressedMaps(stStation, 1234, ProfileAt(28), stGrants)),
              "D0 3E " + strDownlink +
                  "00 11 80 50 FF FF C0 00 00 83 0F FF FC 02 00 04 34 "
                  "00 00 E1 84 53 C0 10 60 00 0E 04 45 64 02 09 B2 F2 05 17");
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

// 11.12: TLVs 5 and 6 of the report. 8.4.11.2, 8.4.11.3: from -123 dBm and -10 dB on; the
// deviation is a level of the same scale, for 1 dB it lies 5.9 dB below the mean.
TEST(AirInterface, AREPRSPHasMeanAndDeviationOfOneScale) {
    EXPECT_EQ(HexOf(REPRSPBody({-65, 23}, {1, 1})), "01 08 05 02 21 1B 06 02 3A 34");
    EXPECT_EQ(HexOf(REPRSPBody({-65, 23}, {3, 2})), "01 08 05 02 21 1F 06 02 3A 3A");
    // Nothing moves; and beyond both ends.
    EXPECT_EQ(HexOf(REPRSPBody({-65, 23}, {0, 0})), "01 08 05 02 21 00 06 02 3A 00");
    EXPECT_EQ(HexOf(REPRSPBody({-30, 60}, {0, 0})), "01 08 05 02 3F 00 06 02 53 00");
    EXPECT_EQ(HexOf(REPRSPBody({-140, -20}, {0, 0})), "01 08 05 02 00 00 06 02 00 00");
}

// 11.5: burst profile (change count 5, DIUC 7), address, then for whom: a handover names the former
// station (5) and its purpose, idle mode the paging controller (9); 6.3.24: location update bit 1,
// power down (8). 11.6: updated (23), paging cycle of 1000 frames, offset, group (24), controller
// (25).
TEST(AirInterface, ARNGREQSaysWhatItIsFor) {
    const MACAddressBytes aucMAC{0x02, 0x00, 0x00, 0x20, 0x00, 0x01};
    const Station stStation = StationAt(2587500, 10000);
    const auto RNGREQ = [&](RangingPurpose ePurpose) {
        return HexOf(RNGREQBody(ePurpose, aucMAC, stStation, ProfileAt(28), &stStation));
    };
    const std::string strHead = "00 01 01 57 02 06 02 00 00 20 00 01 ";
    EXPECT_EQ(RNGREQ(RangingPurpose::Entry), strHead + "94 01 05");
    EXPECT_EQ(RNGREQ(RangingPurpose::Handover),
              strHead + "05 06 00 12 0A 01 02 03 06 01 01 94 01 05");
    EXPECT_EQ(RNGREQ(RangingPurpose::IdleReentry),
              strHead + "06 01 00 09 06 00 12 0A 01 02 03 94 01 05");
    EXPECT_EQ(RNGREQ(RangingPurpose::LocationUpdate),
              strHead + "06 01 02 09 06 00 12 0A 01 02 03 94 01 05");
    EXPECT_EQ(RNGREQ(RangingPurpose::PowerDown),
              strHead + "06 01 02 08 01 01 09 06 00 12 0A 01 02 03 94 01 05");
    EXPECT_EQ(HexOf(RNGRSPBody(aucMAC, stStation, 5)),
              "00 04 01 03 08 06 02 00 00 20 00 01 17 01 00 18 05 03 E8 00 00 01 "
              "19 06 00 12 0A 01 02 03");
}

// 6.3.2.3.48: CINR and RSSI; no index; one station by its ID, with preamble, half dB and quarters
// from -103.75 dBm on; no arrival difference, one active station: bits 0 0001 0000, then 28 dB
// (0x38) and -58 dBm (0xB7) behind nine bits, seven bits of padding.
TEST(AirInterface, AMSHOREQReportsBothStationsInItsOwnScales) {
    EXPECT_EQ(HexOf(MSHOREQBody(StationAt(2600000, 10000), {-65, 23}, {-58, 28})),
              "03 00 01 00 12 0A 01 02 03 03 2E 9B 08 1C 5B 80");
    // Below and above what the scales have.
    EXPECT_EQ(HexOf(MSHOREQBody(StationAt(2600000, 10000), {-110, -3.5}, {-30, 70})),
              "03 00 01 00 12 0A 01 02 03 03 F9 00 08 3F FF 80");
}

// 6.3.2.3.50: four frames, nothing in between, once; no index, one station by its ID, no
// association. A search: 190 frames, four times, no station in particular.
TEST(AirInterface, ASCNREQSaysForHowLongAndAtWhom) {
    const Station stNeighbour = StationAt(2600000, 10000);
    EXPECT_EQ(HexOf(SCNREQBody({4, 1}, &stNeighbour)), "04 00 01 00 01 00 12 0A 01 02 03 00");
    EXPECT_EQ(HexOf(SCNREQBody({190, 4}, nullptr)), "BE 00 04 00 00");
}

// Both fields have eight bits.
TEST(AirInterface, AScanIsAskedForInWholeFramesAndRepeated) {
    struct Case {
        ModemTime iTime;
        ScanTimes stTimes;
    };
    constexpr std::array astCases{
        Case{0, {1, 1}},
        Case{20 * i64Millisecond, {4, 1}},
        Case{1275 * i64Millisecond, {255, 1}},
        Case{1276 * i64Millisecond, {128, 2}},
        Case{3800 * i64Millisecond, {254, 3}},
        Case{325125 * i64Millisecond, {255, 255}},
        Case{INT64_C(1000000) * i64Second, {255, 255}},
    };
    for (const auto &[iTime, stExpected] : astCases) {
        const ScanTimes stTimes = ScanTimesOf(iTime);
        EXPECT_EQ(stTimes.u32Frames, stExpected.u32Frames) << iTime;
        EXPECT_EQ(stTimes.u32Iterations, stExpected.u32Iterations) << iTime;
    }
}

// 6.3.2.3.51: four frames, one report (bits 11), CINR and RSSI; from the second frame on: bits 0010
// 0, interleaving and iterations behind five bits, three bits of padding.
TEST(AirInterface, ASCNRSPSaysWhenToLook) {
    const Station stNeighbour = StationAt(2600000, 10000);
    EXPECT_EQ(HexOf(SCNRSPBody({4, 1}, &stNeighbour)),
              "04 C0 00 03 20 00 08 00 01 00 12 0A 01 02 03 00");
    EXPECT_EQ(HexOf(SCNRSPBody({190, 4}, nullptr)), "BE C0 00 03 20 00 20 00 00");
}

// 6.3.2.3.53: by event, one active station (bits 001), then it and those that were seen in half dB
// and quarters from -103.75 dBm on.
TEST(AirInterface, ASCNREPHasAllStations) {
    const Station stOne = StationAt(2600000, 10000);
    Station stOther = stOne;
    stOther.aucBSID[5] = 4;
    const std::vector<Seen> astSeen{{&stOne, {-65, 23}}, {&stOther, {-80, -2.5}}};
    EXPECT_EQ(HexOf(SCNREPBody(astSeen, {-58, 28})),
              "08 03 00 38 B7 00 02 00 12 0A 01 02 03 2E 9B 00 12 0A 01 02 04 FB 5F");
    EXPECT_EQ(HexOf(SCNREPBody({}, {-58, 28})), "08 03 00 38 B7 00 00");
}

// 6.3.2.3.47: as the answer to MOB_MSHO-REQ, behind a first byte that says handover.
TEST(AirInterface, ABSHOREQOrdersAHandover) {
    EXPECT_EQ(HexOf(BSHOREQBody(StationAt(2587500, 10000), StationAt(2600000, 10000))),
              "00 40 01 00 12 0A 01 02 03 03 02 FF 00 02");
}

// 6.3.2.3.49: handover, recommended, resources kept; one station: ID, preamble, all services,
// optimisation bits 0 to 7 of 11.6; two frames until the ranging.
TEST(AirInterface, ABSHORSPSaysWhatTheTargetLeavesOut) {
    const Station stServing = StationAt(2587500, 10000);
    Station stTarget = StationAt(2600000, 10000);
    stTarget.u32Preamble = 35;
    EXPECT_EQ(HexOf(BSHORSPBody(stServing, stTarget)), "00 40 01 00 12 0A 01 02 03 23 02 FF 00 02");
    stTarget.u32IPSubnet = 7;
    EXPECT_EQ(HexOf(BSHORSPBody(stServing, stTarget)), "00 40 01 00 12 0A 01 02 03 23 02 F7 00 02");
}

// 6.3.2.3.42: nothing skipped, operator, change count, one fragment, one neighbour: its length,
// profile, low half of the ID, preamble, optimisation, services, counts. 11.18.1: only what
// differs: frequency, gaps, and the mode of the physical layer, which has the bandwidth in
// 125 kHz (7 bits), the transform (3), the guard interval (2) and the frame (4).
TEST(AirInterface, ANeighbourIsToldOfByWhatDiffers) {
    const Station stServing = StationAt(2587500, 10000);
    const std::string strHead = "00 00 12 0A 05 01 01 ";
    const std::string strSame = "00 01 02 04 23 FF 1F 11";
    Station stNeighbour = StationAt(2587500, 10000);
    stNeighbour.aucBSID[5] = 4;
    stNeighbour.u32Preamble = 35;
    stNeighbour.u32DCDChangeCount = 1;
    const std::vector<const Station *> apstNeighbours{&stNeighbour};
    EXPECT_EQ(HexOf(NBRADVBody(stServing, apstNeighbours)), strHead + "08 " + strSame);
    stNeighbour.u32Frequency = 2600000;
    EXPECT_EQ(HexOf(NBRADVBody(stServing, apstNeighbours)),
              strHead + "1C " + strSame +
                  " 01 06 0C 04 00 27 AC 40 02 06 05 04 00 27 AC 40 03 02 A0 54");
    stNeighbour.u32Bandwidth = 5000;
    EXPECT_EQ(HexOf(NBRADVBody(stServing, apstNeighbours)),
              strHead + "23 " + strSame +
                  " 01 0D 07 02 00 94 08 01 54 0C 04 00 27 AC 40 02 06 05 04 00 27 AC 40 "
                  "03 02 50 94");
}

// 11.5: the DIUC wanted in the lower half, the DCD's count in the upper one; the MAC address; at
// a handover the station that the modem comes from.
TEST(AirInterface, ARNGREQNamesTheDescriptorItCountsOn) {
    const Station stStation = StationAt(2587500, 10000);
    const MACAddressBytes aucMAC{0x02, 0x00, 0x00, 0x20, 0x00, 0x01};
    EXPECT_EQ(HexOf(RNGREQBody(RangingPurpose::Entry, aucMAC, stStation, ProfileAt(28), nullptr)),
              "00 01 01 57 02 06 02 00 00 20 00 01 94 01 05");
    Station stTarget = StationAt(2600000, 10000);
    stTarget.u32DCDChangeCount = 31;
    EXPECT_EQ(
        HexOf(RNGREQBody(RangingPurpose::Handover, aucMAC, stTarget, ProfileAt(6), &stStation)),
        "00 01 01 F0 02 06 02 00 00 20 00 01 05 06 00 12 0A 01 02 03 06 01 01 94 01 05");
}

// 11.6: status, MAC address, CIDs; after a handover the optimisation: bit 13 instead of bit 3
// where the address is new.
TEST(AirInterface, ARNGRSPSaysWhatAHandoverLeavesOut) {
    const MACAddressBytes aucMAC{0x02, 0x00, 0x00, 0x20, 0x00, 0x01};
    const std::string strEntry = "00 04 01 03 08 06 02 00 00 20 00 01 09 02 00 11 0A 02 02 10";
    Admission stAdmission{0x11, 0x210, {}};
    EXPECT_EQ(HexOf(RNGRSPBody(RangingStatus::Success, aucMAC, &stAdmission)), strEntry);
    const Station stServing = StationAt(2587500, 10000);
    Station stTarget = StationAt(2600000, 10000);
    stAdmission.u32Optimisation = Optimisation(stServing, stTarget);
    EXPECT_EQ(HexOf(RNGRSPBody(RangingStatus::Success, aucMAC, &stAdmission)),
              strEntry + " 15 02 00 FF");
    stTarget.u32IPSubnet = 7;
    stAdmission.u32Optimisation = Optimisation(stServing, stTarget);
    EXPECT_EQ(HexOf(RNGRSPBody(RangingStatus::Success, aucMAC, &stAdmission)),
              strEntry + " 15 02 20 F7");
    EXPECT_EQ(HexOf(RNGRSPBody(RangingStatus::Abort, aucMAC, nullptr)),
              "00 04 01 02 08 06 02 00 00 20 00 01");
}

// 11.7.9: each flow's new connection.
TEST(AirInterface, AREGRSPUpdatesTheConnections) {
    const std::vector<FlowCID> astFlows{{1, 0x2001}, {2, 0x1001}};
    EXPECT_EQ(HexOf(CIDUpdateBody(astFlows)),
              "00 18 0A 01 02 20 01 02 04 00 00 00 01 18 0A 01 02 10 01 02 04 00 00 00 02");
}

// The set of a flow with one rule, as the host interface has it.
class FlowSet {
  public:
    explicit FlowSet(uint32_t u32Type) {
        using namespace SFParamSet;
        Put(Span(), u8QoSParamSetType, 7);
        Put(Span(), u32MaxSustainedTrafficRate, 1000000);
        Put(Span(), u32ToleratedJitter, 10);
        Put(Span(), u32MaximumLatency, 50);
        Put(Span(), u8SchedulingType, u32Type);
        Put(Span(), u8CSSpecification, 1);
        const ByteSpan stRule = Span().From(astClassifierRule, ClassifierRule::Size);
        const std::vector<uint8_t> aucSource = BytesOfHex("0A 00 00 01 FF FF FF FF");
        const std::vector<uint8_t> aucPorts = BytesOfHex("13 88 13 8B");
        Put(stRule, ClassifierRule::u8Priority, 3);
        Put(stRule, ClassifierRule::u8Protocol, 17);
        Put(stRule, ClassifierRule::u8IPMaskedSrcAddrLength, 8);
        PutBytes(stRule, ClassifierRule::au8IPMaskedSrcAddr.u16Offset, {aucSource.data(), 8});
        Put(stRule, ClassifierRule::u8DestPortRangeLength, 4);
        PutBytes(stRule, ClassifierRule::au8DestPortRange.u16Offset, {aucPorts.data(), 4});
    }
    ByteView View() const { return m_stSet.View(); }
    ByteView Rule() const {
        return View().From(SFParamSet::astClassifierRule, ClassifierRule::Size);
    }

  private:
    ByteSpan Span() { return m_stSet.Span(); }
    Record<SFParamSet::Size> m_stSet;
};

// 11.13: sets, priority, rates, 11.13.11 (UGS), 11.13.19 (a grant every 20 ms), policy, jitter,
// latency, SAID, no ARQ, IPv4; 11.13.19.3.4 (what the rule matches: priority, UDP, source,
// destination ports).
TEST(AirInterface, ADSAREQCarriesGrantIntervalAndRules) {
    const FlowSet stSet(SFParamSet::UGS);
    const std::string strRates = "05 01 07 06 01 00 07 04 00 0F 42 40 09 04 00 00 00 00 ";
    const std::string strRest = "0C 04 00 00 00 00 0D 04 00 00 00 0A 0E 04 00 00 00 32 "
                                "11 02 01 00 12 01 00 1C 01 01";
    EXPECT_EQ(HexOf(DSxREQBody(1234, {true, 0, 0, stSet.View(), {{0, 0, stSet.Rule()}}})),
              "04 D2 91 52 " + strRates + "0B 01 06 28 02 00 14 " + strRest +
                  " 64 1B 01 01 00 03 16 01 01 03 03 01 11 04 08 0A 00 00 01 FF FF FF FF "
                  "07 04 13 88 13 8B");
    // The other types: granted, polled, neither.
    EXPECT_EQ(HexOf(DSxREQBody(1, {true, 0, 0, FlowSet(SFParamSet::ERTPS).View(), {}})),
              "00 01 91 35 " + strRates + "0B 01 05 28 02 00 14 " + strRest);
    EXPECT_EQ(HexOf(DSxREQBody(1, {true, 0, 0, FlowSet(SFParamSet::RTPS).View(), {}})),
              "00 01 91 35 " + strRates + "0B 01 04 29 02 00 14 " + strRest);
    EXPECT_EQ(HexOf(DSxREQBody(1, {true, 0, 0, FlowSet(SFParamSet::BE).View(), {}})),
              "00 01 91 31 " + strRates + "0B 01 02 " + strRest);
    // 11.13.24: downlink services have numbers of their own.
    for (const auto &[u32Type, strService] :
         {std::pair<uint32_t, std::string>{SFParamSet::UGS, "00"},
          {SFParamSet::RTPS, "01"},
          {SFParamSet::NRTPS, "02"},
          {SFParamSet::BE, "03"},
          {SFParamSet::ERTPS, "04"}}) {
        EXPECT_EQ(HexOf(DSxREQBody(0x8000, {false, 7, 0x2001, FlowSet(u32Type).View(), {}})),
                  "80 00 92 3B 01 04 00 00 00 07 02 02 20 01 " + strRates + "1D 01 " + strService +
                      " " + strRest);
    }
}

// 11.13.19.3.4.14: the station numbers the rules, and is asked by these numbers.
TEST(AirInterface, RulesAreAnsweredAndDeletedByTheirNumbers) {
    const FlowSet stSet(SFParamSet::BE);
    EXPECT_EQ(HexOf(DSxRSPBody(1234, 0, {true, 7, 0x1064, stSet.View(), {{0, 1, {}}}})),
              "04 D2 00 91 15 01 04 00 00 00 07 02 02 10 64 64 09 01 01 00 03 04 0E 02 00 01");
    const std::string strRequest =
        HexOf(DSxREQBody(3, {true, 7, 0x1064, stSet.View(), {{2, 2, {}}}}));
    EXPECT_EQ(strRequest.substr(strRequest.size() - 32), "64 09 01 01 02 03 04 0E 02 00 02");
    EXPECT_EQ(HexOf(DSxRSPBody(1234, 3, {true, 0, 0, stSet.View(), {}})), "04 D2 03");
    // 11.13.19: convergence sublayers have their rules in TLVs of their own; there are eight.
    Record<SFParamSet::Size> stOther;
    Put(stOther.Span(), SFParamSet::u8CSSpecification, 8);
    EXPECT_EQ(HexOf(DSxRSPBody(1, 0, {true, 7, 0, stOther.View(), {{0, 1, {}}}})),
              "00 01 00 91 11 01 04 00 00 00 07 6B 09 01 01 00 03 04 0E 02 00 01");
    Put(stOther.Span(), SFParamSet::u8CSSpecification, 9);
    EXPECT_EQ(HexOf(DSxRSPBody(1, 0, {true, 7, 0, stOther.View(), {{0, 1, {}}}})),
              "00 01 00 91 06 01 04 00 00 00 07");
}

} // namespace
