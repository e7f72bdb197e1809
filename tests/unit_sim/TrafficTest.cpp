// User traffic: which flow a packet takes, when it comes, when it goes, and that everything that
// counts packets counts the same ones.
#include <gtest/gtest.h>

#include <fstream>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// A flow that the network sets up, without keys of its own but these.
std::string Flow(const std::string &strDirection, const std::string &strType,
                 const std::string &strKeys = "") {
    return "[[service-flow]]\ndirection = \"" + strDirection + "\"\ntype = \"" + strType + "\"\n" +
           strKeys;
}

// A source of packets; rate in bytes a second.
std::string Generator(const std::string &strDirection, uint32_t u32Rate, uint32_t u32Size,
                      const std::string &strKeys = "") {
    return "[[generator]]\ndirection = \"" + strDirection +
           "\"\nrate = " + std::to_string(u32Rate) + "\npacket-size = " + std::to_string(u32Size) +
           "\n" + strKeys;
}

FlowReport ReportOf(ModemBench &stBench, uint32_t u32SFID) {
    return stBench.TheModem().UserTraffic().ReportOf(u32SFID);
}

TrafficTotals TotalsOf(ModemBench &stBench) { return stBench.TheModem().UserTraffic().Totals(); }

// Which frames had bursts of a direction.
std::vector<uint32_t> FramesOf(ModemBench &stBench, bool bUplink, double fUntil) {
    auto pau32Frames = std::make_shared<std::vector<uint32_t>>();
    stBench.TheModem().UserTraffic().OnBurst([=](const UserBurst &stBurst) {
        if (stBurst.bUplink == bUplink) {
            pau32Frames->push_back(stBurst.u32Frame);
        }
    });
    stBench.RunUntil(fUntil);
    return *pau32Frames;
}

using Frames = std::vector<uint32_t>;

TEST(Traffic, WithoutAFlowNoPacketMoves) {
    ModemBench stBench(strLinkUp + Generator("uplink", 6000, 600));
    EXPECT_EQ(FramesOf(stBench, true, 10), Frames{});
    EXPECT_EQ(TotalsOf(stBench).stUplink.u64Packets, 0U);
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64Packets, 0U);
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 0U);
}

TEST(Traffic, OnlyActiveFlowsCarryIt) {
    ModemBench stBench(strLinkUp + Flow("downlink", "BE", "sets = 3\n"));
    stBench.RunUntil(10);
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64Packets, 0U);
}

TEST(Traffic, FlowsWithoutAGeneratorShareTheRatesOfTheSection) {
    ModemBench stBench(strLinkUp + "[traffic]\ndownlink-rate = 12000\nuplink-rate = 0\n" +
                       Flow("downlink", "BE") + Flow("downlink", "BE") + Flow("downlink", "BE") +
                       Generator("downlink", 500, 100, "sfid = 2\n"));
    stBench.RunUntil(10);
    // 6000 bytes a second each, packets of 600, and five packets of 100 bytes a second.
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets, 100U);
    EXPECT_EQ(ReportOf(stBench, 2).u64Packets, 50U);
    EXPECT_EQ(ReportOf(stBench, 3).u64Packets, 100U);
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64Packets, 250U);
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64Bytes, 125000U);
}

// When packets come.

TEST(Traffic, ConstantPacketsComeAtEqualTimes) {
    ModemBench stBench(strLinkUp + Flow("downlink", "BE") + Generator("downlink", 4000, 100));
    // One every 25 ms: five frames.
    EXPECT_EQ(FramesOf(stBench, false, 0.13), (Frames{5, 10, 15, 20, 25}));
}

TEST(Traffic, PacketsWaitForTheNextFrame) {
    ModemBench stBench(strLinkUp + Flow("downlink", "BE") + Generator("downlink", 8000, 100));
    // At 12.5, 25, 37.5 and 50 ms.
    EXPECT_EQ(FramesOf(stBench, false, 0.054), (Frames{3, 5, 8, 10}));
    EXPECT_EQ(ReportOf(stBench, 1).iLongest, 2500);
    EXPECT_EQ(ReportOf(stBench, 1).iShortest, 0);
}

TEST(Traffic, OnOffPacketsComeOnlyWhileOn) {
    ModemBench stBench(
        strLinkUp + Flow("downlink", "BE") +
        Generator("downlink", 4000, 100, "pattern = \"on-off\"\non = 0.05\noff = 0.1\n"));
    // Two packets, then nothing for 100 ms: 25, 50, 175, 200, 325, 350 ms.
    EXPECT_EQ(FramesOf(stBench, false, 0.4), (Frames{5, 10, 35, 40, 65, 70}));
}

TEST(Traffic, PoissonPacketsAreAsManyInTheMeanAndTheSameForASeed) {
    const std::string strScenario = strLinkUp + Flow("downlink", "BE") +
                                    Generator("downlink", 10000, 100, "pattern = \"poisson\"\n");
    ModemBench stOne("seed = 3\n" + strScenario);
    ModemBench stSame("seed = 3\n" + strScenario);
    ModemBench stOther("seed = 4\n" + strScenario);
    const Frames au32One = FramesOf(stOne, false, 100);
    EXPECT_EQ(au32One, FramesOf(stSame, false, 100));
    EXPECT_NE(au32One, FramesOf(stOther, false, 100));
    // 10000 in the mean, 100 to either side in the mean: four times that.
    EXPECT_NEAR(static_cast<double>(ReportOf(stOne, 1).u64Packets), 10000, 400);
    // Half of the frames have one, 1 - e^-0.5 of 20000: 7869.
    EXPECT_NEAR(static_cast<double>(au32One.size()), 7869, 300);
}

TEST(Traffic, AFileSaysWhenPacketsComeAndHowLargeTheyAre) {
    const std::string strFile = testing::TempDir() + "packets.txt";
    std::ofstream(strFile) << "# seconds bytes\n0.010 40\n0.011 50 # the same frame\n\n0.1 1500\n";
    ModemBench stBench(strLinkUp + Flow("downlink", "BE") +
                       "[[generator]]\ndirection = \"downlink\"\npattern = \"file\"\nfile = \"" +
                       strFile + "\"\n");
    EXPECT_EQ(FramesOf(stBench, false, 10), (Frames{2, 3, 20}));
    EXPECT_EQ(ReportOf(stBench, 1).u64Bytes, 1590U);
}

TEST(Traffic, AFileThatIsWrongIsRefusedWithItsLine) {
    const std::string strFile = testing::TempDir() + "wrong.txt";
    const auto Refusal = [&](const std::string &strText) {
        std::ofstream(strFile) << strText;
        try {
            ModemBench stBench(
                "[[generator]]\ndirection = \"uplink\"\npattern = \"file\"\nfile = \"" + strFile +
                "\"\n");
        } catch (const ScenarioError &stError) {
            const std::string strWhat = stError.what();
            return strWhat.substr(strWhat.rfind('/') + 1);
        }
        return std::string("accepted");
    };
    const std::string strRule =
        ": must be a second, none before the last one, and bytes, 1 to 65535";
    EXPECT_EQ(Refusal("0.2 100\n0.1 100\n"), "wrong.txt:2" + strRule);
    EXPECT_EQ(Refusal("0.2\n"), "wrong.txt:1" + strRule);
    EXPECT_EQ(Refusal("-1 100\n"), "wrong.txt:1" + strRule);
    EXPECT_EQ(Refusal("0.2 0\n"), "wrong.txt:1" + strRule);
    EXPECT_EQ(Refusal("0.2 65536\n"), "wrong.txt:1" + strRule);
    EXPECT_EQ(Refusal("0.2 100 1\n"), "wrong.txt:1" + strRule);
    EXPECT_EQ(Refusal("nan 100\n"), "wrong.txt:1" + strRule);
    EXPECT_EQ(Refusal(""), "accepted");
    EXPECT_THROW(ModemBench("[[generator]]\ndirection = \"uplink\"\npattern = \"file\"\n"
                            "file = \"there is none\"\n"),
                 ScenarioError);
    EXPECT_THROW(
        ModemBench("[[generator]]\ndirection = \"uplink\"\nrate = 1\nsource = \"10.0.0\"\n"),
        ScenarioError);
    EXPECT_THROW(
        ModemBench("[[generator]]\ndirection = \"uplink\"\nrate = 1\nsource = \"10.0.0.1.\"\n"),
        ScenarioError);
    EXPECT_THROW(
        ModemBench("[[generator]]\ndirection = \"uplink\"\nrate = 1\nsource = \"10.0.0.256\"\n"),
        ScenarioError);
}

// Which flow they take.

// An add request of an uplink best effort flow with one rule, which has these bytes from its
// priority on (11 to 16: protocol at 5), as far as they go.
std::string AddWithRule(const std::string &strPriority, const std::string &strProtocol,
                        const std::string &strSource, const std::string &strPorts) {
    // The rule: action, 9 bytes, priority, 4 bytes, protocol, source, destination, ports.
    return "0B 01 05 00 00*4 00*4 00*20 00 00 FF FF 00*79 07 00 02 10 00 31 00 00 00 01 FF 00 00*10"
           " 01 00*43 01 01 00 00 FF 00*8 " +
           strPriority + " 00*4 " + strProtocol + " " + strSource + " 00*33 00*5 " + strPorts +
           " 00*13 00*13 00*542 00*1980 00*4";
}
constexpr const char *pcAnyAddress = "00*33";
constexpr const char *pcAnyPort = "00*5";

TEST(Traffic, RulesDecideWhichFlowAPacketTakes) {
    ModemBench stBench(strLinkUp +
                       "[service-flows]\ntransaction-time = 0\n[traffic]\n"
                       "uplink-rate = 0\n" +
                       Flow("uplink", "BE") + Generator("uplink", 1000, 100, "protocol = 6\n") +
                       Generator("uplink", 2000, 100, "destination-port = 5060\n") +
                       Generator("uplink", 3000, 100, "source = \"10.1.2.3\"\n") +
                       Generator("uplink", 4000, 100, "source = \"10.2.0.1\"\n"));
    // Flow 1 takes what no rule names; 2: TCP; 3: ports 5000 to 5100; 4: from 10.1.0.0/16, and
    // ports like 3, which has the higher priority.
    EXPECT_EQ(stBench.Send(6, 1, AddWithRule("01", "06", pcAnyAddress, pcAnyPort)), 0);
    EXPECT_EQ(stBench.Send(6, 1, AddWithRule("05", "11", pcAnyAddress, "04 13 88 13 EC")), 0);
    EXPECT_EQ(
        stBench.Send(6, 1, AddWithRule("02", "00", "08 0A 01 00 00 FF FF 00 00 00*24", pcAnyPort)),
        0);
    stBench.RunUntil(1);
    std::array<uint64_t, 4> au64Before{};
    for (uint32_t i = 0; i < 4; ++i) {
        au64Before[i] = ReportOf(stBench, i + 1).u64Packets;
    }
    stBench.RunUntil(11);
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets - au64Before[0], 400U);
    EXPECT_EQ(ReportOf(stBench, 2).u64Packets - au64Before[1], 100U);
    EXPECT_EQ(ReportOf(stBench, 3).u64Packets - au64Before[2], 200U);
    EXPECT_EQ(ReportOf(stBench, 4).u64Packets - au64Before[3], 300U);
    // TCP loses its flow, and takes the one for all.
    EXPECT_EQ(stBench.Send(6, 2, "11 00 07 00 02 00 00 00"), 0);
    stBench.RunUntil(12);
    const uint64_t u64Then = ReportOf(stBench, 1).u64Packets;
    stBench.RunUntil(22);
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets - u64Then, 500U);
    EXPECT_EQ(ReportOf(stBench, 2).u64Packets, 0U); // there is no such flow any more
}

TEST(Traffic, PacketsThatNoRuleNamesStayWithoutAFlowForAll) {
    ModemBench stBench(strLinkUp + "[service-flows]\ntransaction-time = 0\n" +
                       Generator("uplink", 1000, 100, "protocol = 17\n"));
    EXPECT_EQ(stBench.Send(6, 1, AddWithRule("01", "06", pcAnyAddress, pcAnyPort)), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets, 99U); // its own share of [traffic]: ten a second
    EXPECT_EQ(TotalsOf(stBench).stUplink.u64Packets, 99U);
}

// The scheduler.

TEST(Scheduling, UnsolicitedGrantsComeFiftyTimesASecondWhateverWaits) {
    // 160 bytes every 20 ms are 64000 bits a second.
    ModemBench stBench(strLinkUp + Flow("uplink", "UGS", "max-rate = 64000\n") +
                       Generator("uplink", 8000, 160));
    stBench.RunUntil(1);
    EXPECT_EQ(ReportOf(stBench, 1).u64Grants, 50U);
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets, 50U);
    stBench.RunUntil(10);
    EXPECT_EQ(ReportOf(stBench, 1).u64Grants, 500U);
    EXPECT_EQ(ReportOf(stBench, 1).u64Bytes, 80000U);
    EXPECT_EQ(ReportOf(stBench, 1).iLongest, 0);
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 0U);
    ModemBench stSilent(strLinkUp + "[traffic]\nuplink-rate = 0\n" +
                        Flow("uplink", "UGS", "max-rate = 64000\n"));
    stSilent.RunUntil(10);
    EXPECT_EQ(ReportOf(stSilent, 1).u64Grants, 500U);
    EXPECT_EQ(TotalsOf(stSilent).stUplink.u64Bursts, 0U);
}

TEST(Scheduling, GrantsThatAreNoWholeBytesAddUpToTheRate) {
    // 12.5 bytes an interval.
    ModemBench stBench(strLinkUp + Flow("uplink", "UGS", "max-rate = 5000\n") +
                       Generator("uplink", 100000, 1000));
    stBench.RunUntil(10);
    EXPECT_EQ(ReportOf(stBench, 1).u64Bytes, 6250U);
}

TEST(Scheduling, BestEffortAsksByACodeAndIsGrantedTwoFramesLater) {
    ModemBench stBench(strLinkUp + Flow("uplink", "BE") + Generator("uplink", 1000, 100));
    // Packets at 100, 200, 300 ms: frames 20, 40, 60.
    EXPECT_EQ(FramesOf(stBench, true, 0.35), (Frames{22, 42, 62}));
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 3U);
    EXPECT_EQ(ReportOf(stBench, 1).u64Grants, 3U);
    EXPECT_EQ(ReportOf(stBench, 1).iLongest, 10000);
}

TEST(Scheduling, WhatComesMeanwhileIsAskedForAlongWithTheGrant) {
    // A packet in every frame: the first one waits two frames for its grant, and from then on
    // there is always one that waits.
    ModemBench stBench(strLinkUp + Flow("uplink", "BE") + Generator("uplink", 20000, 100));
    EXPECT_EQ(FramesOf(stBench, true, 0.03), (Frames{3, 4, 5, 6}));
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 1U);
}

TEST(Scheduling, RealTimeFlowsArePolled) {
    // Packets at 50, 100, 150 ms; polls at 60, 100, 160 ms, grants one frame later.
    ModemBench stBench(strLinkUp + Flow("uplink", "RTPS") + Generator("uplink", 2000, 100));
    uint32_t u32Codes = 0;
    stBench.TheModem().UserTraffic().OnRequest([&](const RangingSignal &) { ++u32Codes; });
    EXPECT_EQ(FramesOf(stBench, true, 0.17), (Frames{13, 21, 33}));
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 3U);
    EXPECT_EQ(u32Codes, 0U);
}

TEST(Scheduling, ExtendedRealTimeFlowsHaveGrantsOfWhatWaits) {
    ModemBench stBench(strLinkUp + Flow("uplink", "ERTPS") + Generator("uplink", 2000, 100));
    EXPECT_EQ(FramesOf(stBench, true, 0.17), (Frames{12, 20, 32}));
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 0U);
}

TEST(Scheduling, NonRealTimeFlowsAskByACode) {
    ModemBench stBench(strLinkUp + Flow("uplink", "NRTPS") + Generator("uplink", 2000, 100));
    EXPECT_EQ(FramesOf(stBench, true, 0.17), (Frames{12, 22, 32}));
    EXPECT_EQ(TotalsOf(stBench).u64Requests, 3U);
}

TEST(Scheduling, TheMostRateHolds) {
    for (const char *pcDirection : {"downlink", "uplink"}) {
        // 1000 bits a second are 1250 bytes in ten seconds: twelve packets of 100 bytes.
        ModemBench stBench(strLinkUp + Flow(pcDirection, "BE", "max-rate = 1000\n") +
                           Generator(pcDirection, 6000, 100));
        stBench.RunUntil(10);
        EXPECT_EQ(ReportOf(stBench, 1).u64Bytes, 1200U) << pcDirection;
        EXPECT_EQ(ReportOf(stBench, 1).u64Packets, 12U) << pcDirection;
        stBench.RunUntil(1000);
        EXPECT_EQ(ReportOf(stBench, 1).u64Bytes, 125000U) << pcDirection;
        // What the queue does not hold is lost: it has room for 655 packets of 100 bytes, the first
        // of which has just gone.
        EXPECT_EQ(ReportOf(stBench, 1).u32Queued, 65400U) << pcDirection;
        EXPECT_EQ(ReportOf(stBench, 1).u64Lost, 60000U - 1250 - 654) << pcDirection;
    }
}

TEST(Scheduling, TheLeastRateIsMetBesideFlowsThatTakeAllTheRest) {
    // 800 kbit/s: 500 bytes a frame. Both flows want more than all of it; the first is sure of
    // 200 kbit/s, 25000 bytes a second, and they share the other 75000.
    ModemBench stBench(strLinkUp + "[service-flows]\nuplink-capacity = 800000\n" +
                       Flow("uplink", "NRTPS", "min-rate = 200000\n") + Flow("uplink", "BE") +
                       Generator("uplink", 200000, 500, "sfid = 1\n") +
                       Generator("uplink", 200000, 500, "sfid = 2\n"));
    stBench.RunUntil(1);
    const uint64_t u64First = ReportOf(stBench, 1).u64Bytes;
    const uint64_t u64Second = ReportOf(stBench, 2).u64Bytes;
    stBench.RunUntil(11);
    // All of the capacity is used: a packet a frame.
    EXPECT_EQ(ReportOf(stBench, 1).u64Bytes + ReportOf(stBench, 2).u64Bytes - u64First - u64Second,
              1000000U);
    EXPECT_GE(ReportOf(stBench, 1).u64Bytes - u64First, 250000U);
}

TEST(Scheduling, AHigherPriorityGoesFirstButNotBeforeWhatIsReserved) {
    ModemBench stBench(strLinkUp + "[service-flows]\ndownlink-capacity = 800000\n" +
                       Flow("downlink", "NRTPS", "min-rate = 200000\n") +
                       Flow("downlink", "BE", "priority = 5\n") + Flow("downlink", "BE") +
                       Generator("downlink", 200000, 500, "sfid = 1\n") +
                       Generator("downlink", 200000, 500, "sfid = 2\n") +
                       Generator("downlink", 200000, 500, "sfid = 3\n"));
    stBench.RunUntil(10);
    // 500 bytes a frame from the first frame on; 200 kbit/s are a packet in four frames.
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets, 500U);
    EXPECT_EQ(ReportOf(stBench, 2).u64Packets, 1500U);
    EXPECT_EQ(ReportOf(stBench, 3).u64Packets, 0U);
}

TEST(Scheduling, PacketsThatTakeLongerThanTheFlowsLatencyAreLate) {
    // Granted after 10 ms, always.
    ModemBench stStrict(strLinkUp + Flow("uplink", "NRTPS", "latency = 9\n") +
                        Generator("uplink", 1000, 100));
    ModemBench stEasy(strLinkUp + Flow("uplink", "NRTPS", "latency = 10\n") +
                      Generator("uplink", 1000, 100));
    stStrict.RunUntil(10.05);
    stEasy.RunUntil(10.05);
    EXPECT_EQ(ReportOf(stStrict, 1).u64Late, 100U);
    EXPECT_EQ(ReportOf(stEasy, 1).u64Late, 0U);
}

TEST(Scheduling, LargePacketsGoInSeveralPDUs) {
    ModemBench stBench(strLinkUp + Flow("downlink", "BE") + Generator("downlink", 50000, 5000));
    stBench.RunUntil(1);
    // 2037 bytes of each fit into a PDU.
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64Packets, 10U);
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64PDUs, 30U);
    EXPECT_EQ(TotalsOf(stBench).stDownlink.u64Bursts, 10U);
}

// Everything counts the same packets.

uint32_t Word(const std::vector<uint8_t> &aucBytes, size_t uAt) {
    return aucBytes.at(uAt) | static_cast<uint32_t>(aucBytes.at(uAt + 1)) << 8 |
           static_cast<uint32_t>(aucBytes.at(uAt + 2)) << 16 |
           static_cast<uint32_t>(aucBytes.at(uAt + 3)) << 24;
}

uint64_t WordsOf(const std::vector<uint8_t> &aucBytes, size_t uFrom, size_t uTo) {
    uint64_t u64Sum = 0;
    for (size_t i = uFrom; i < uTo; i += 4) {
        u64Sum += Word(aucBytes, i);
    }
    return u64Sum;
}

std::vector<uint8_t> Payload(const std::string &strText) {
    return BytesOfHex(strText.substr(strText.find(':') + 1));
}

// The value of an attribute, behind the record's head.
std::vector<uint8_t> ValueOf(ModemBench &stBench, const std::string &strID) {
    EXPECT_EQ(stBench.Send(24, 2, strID + " 00*25"), 0);
    const std::vector<uint8_t> aucRecord = Payload(stBench.Messages().back());
    return {aucRecord.begin() + 26, aucRecord.end()};
}

TEST(Uplink, ACodeIsAnsweredWithAnAllocationAndThenAGrant) {
    ModemBench stBench(WithOrdinaryMaps(strLinkUp) +
                       "[signalling]\nmap-period = 0.005\n[trace]\non = true\n" +
                       Flow("uplink", "BE") + Generator("uplink", 1000, 100));
    EXPECT_EQ(stBench.Send(8, 2), 0);
    stBench.RunUntil(1.05);
    std::vector<std::string> astrMaps;
    std::string strLog;
    for (const std::string &strText : stBench.Messages()) {
        const std::vector<uint8_t> aucBytes = Payload(strText);
        if (strText.rfind("8/2:", 0) == 0 && strLog.empty()) {
            strLog = HexOf({aucBytes.begin() + 2, aucBytes.begin() + 18});
        } else if (strText.rfind("21/1:", 0) == 0 && Word(aucBytes, 5) == 3 &&
                   aucBytes.size() != 18 + 20) {
            astrMaps.push_back(HexOf({aucBytes.begin() + 1, aucBytes.begin() + 3}) + ": " +
                               HexOf({aucBytes.begin() + 18 + 7, aucBytes.end()}));
        }
    }
    // Frame 20, code 147 on subchannel 1, symbol 2. In the next frame a slot for the request (CID
    // 0, UIUC 14, one slot at UIUC 1, the frame's last four bits, code, symbol, subchannel, 1); in
    // the one behind it ten slots of 12 bytes for 110, at UIUC 7 for 22 dB.
    EXPECT_EQ(strLog, "14 00 00 00 93 00 00 00 01 00 00 00 02 00 00 00");
    const std::string strRegions = "FF FF C0 00 00 83 0F FF FC 02 00 04 34";
    ASSERT_EQ(astrMaps.size(), 20U);
    EXPECT_EQ(astrMaps[0], "15 00: " + strRegions + " 00 00 E0 44 49 30 20 30");
    EXPECT_EQ(astrMaps[1], "16 00: 01 E0 70 28 " + strRegions);
}

TEST(Counting, StatisticsAttributesLoggersTraceAndStateAgreeOverAMinute) {
    ModemBench stBench(WithOrdinaryMaps(strLinkUp) + "[signalling]\nmap-period = 0.005\n" +
                       Flow("downlink", "BE") + Flow("uplink", "BE") + Flow("uplink", "RTPS") +
                       Flow("uplink", "UGS", "max-rate = 64000\n") +
                       Generator("downlink", 30000, 700, "sfid = 1\npattern = \"poisson\"\n") +
                       Generator("uplink", 20000, 300, "sfid = 2\npattern = \"poisson\"\n") +
                       Generator("uplink", 10000, 500, "sfid = 3\npattern = \"on-off\"\n") +
                       Generator("uplink", 8000, 160, "sfid = 4\n"));
    for (const uint32_t u32Kind : {2U, 4U, 8U}) {
        EXPECT_EQ(stBench.Send(8, u32Kind), 0);
    }
    EXPECT_EQ(stBench.Send(21, 1), 0);
    uint64_t u64UplinkPDUs = 0;
    uint64_t u64Requested = 0;
    uint64_t u64Codes = 0;
    uint64_t u64CQICH = 0;
    uint64_t u64Maps = 0;
    uint64_t u64MapsWithGrant = 0;
    uint64_t u64Allocations = 0; // in answer to codes
    const auto Note = [&] {
        for (const std::string &strText : stBench.Messages()) {
            const std::vector<uint8_t> aucBytes = Payload(strText);
            if (strText.rfind("8/4:", 0) == 0) {
                for (size_t i = 2; i < aucBytes.size(); i += 16) {
                    const bool bPadding = aucBytes[i + 4] == 0xDD && aucBytes[i + 5] == 0xCC;
                    u64UplinkPDUs += bPadding ? 0 : 1;
                    u64Requested += bPadding ? 0 : aucBytes[i + 10];
                }
            } else if (strText.rfind("8/2:", 0) == 0) {
                u64Codes += (aucBytes.size() - 2) / 16;
            } else if (strText.rfind("8/8:", 0) == 0) {
                u64CQICH += (aucBytes.size() - 2) / 4;
            } else if (strText.rfind("21/1:", 0) == 0 && Word(aucBytes, 5) == 3) {
                ++u64Maps;
                // Without a grant the first information element is the ranging region's.
                const bool bGrant = aucBytes.at(18 + 7) != 0xFF;
                u64MapsWithGrant += bGrant ? 1 : 0;
                // They stand behind the ranging regions, 60 bits each.
                u64Allocations += (aucBytes.size() - (18 + 20) - (bGrant ? 4 : 0)) * 8 / 60;
            }
        }
    };
    for (int i = 1; i <= 60; ++i) {
        stBench.RunUntil(i);
        Note();
    }
    for (const uint32_t u32Kind : {2U, 4U, 8U}) {
        EXPECT_EQ(stBench.Send(9, u32Kind), 0);
    }
    EXPECT_EQ(stBench.Send(21, 2), 0);
    Note();
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    const std::vector<uint8_t> aucStatistics = Payload(stBench.Messages().back());
    const std::vector<uint8_t> aucBursts = ValueOf(stBench, "48 06");
    const std::vector<uint8_t> aucZones = ValueOf(stBench, "59 06");
    const std::vector<uint8_t> aucReceived = ValueOf(stBench, "A8 05");
    const std::vector<uint8_t> aucCompleted = ValueOf(stBench, "C7 05");
    const TrafficTotals stTotals = TotalsOf(stBench);

    EXPECT_EQ(Word(aucStatistics, 4), 12000U); // frames: 60 s of 200
    EXPECT_EQ(Word(aucStatistics, 20), 1500U); // a report in eight
    EXPECT_EQ(u64CQICH, 1500U);
    EXPECT_EQ(u64Maps, 12000U);
    EXPECT_EQ(ReportOf(stBench, 4).u64Grants, 3000U);
    EXPECT_EQ(ReportOf(stBench, 4).u64Packets, 3000U);
    // A request at the end may still wait for its grant.
    EXPECT_EQ(Word(aucStatistics, 56), stTotals.u64Requests);
    EXPECT_LE(stTotals.u64Requests - u64Requested, 2U);
    EXPECT_GT(u64Codes, 1000U);
    // A code of the last frame is answered in the next one.
    EXPECT_LE(u64Codes - u64Allocations, 1U);
    EXPECT_LT(u64Codes, stTotals.u64Requests); // the rest was polled
    uint64_t u64DownlinkBursts = 0;
    uint64_t u64DownlinkPDUs = 0;
    for (size_t i = 0; i < 10; ++i) {
        u64DownlinkBursts += WordsOf(aucZones, 16 + i * 528 + 24, 16 + i * 528 + 276);
        u64DownlinkPDUs += WordsOf(aucZones, 16 + i * 528 + 276, 16 + i * 528 + 528);
    }
    const uint64_t u64UplinkBursts = WordsOf(aucZones, 5296 + 20, 5296 + 272);
    EXPECT_EQ(WordsOf(aucZones, 5296 + 272, 5296 + 524), u64UplinkPDUs);
    EXPECT_EQ(stTotals.stUplink.u64PDUs, u64UplinkPDUs);
    EXPECT_EQ(stTotals.stUplink.u64Bursts, u64UplinkBursts);
    // Every grant of this minute was used: a UGS packet comes at each.
    EXPECT_EQ(u64MapsWithGrant, u64UplinkBursts);
    EXPECT_EQ(WordsOf(aucCompleted, 0, 16), u64UplinkBursts);
    EXPECT_EQ(stTotals.stDownlink.u64PDUs, u64DownlinkPDUs);
    EXPECT_EQ(stTotals.stDownlink.u64Bursts, u64DownlinkBursts);
    EXPECT_EQ(WordsOf(aucBursts, 0, aucBursts.size()), u64DownlinkBursts);
    EXPECT_EQ(WordsOf(aucReceived, 0, 16), u64DownlinkBursts);
    EXPECT_GT(u64DownlinkPDUs, u64DownlinkBursts); // sometimes two in a frame
}

// What takes the modem away from the frames.

// Link up, a packet in each frame of the downlink, maps in each frame.
const std::string strBusy = strLinkUp +
                            "[traffic]\nuplink-rate = 0\n[handover]\nlook-period = 0\n"
                            "[signalling]\nmap-period = 0.005\n" +
                            Flow("downlink", "BE") + Generator("downlink", 20000, 100);

struct Counts {
    uint64_t u64Frames = 0;
    uint64_t u64CQICH = 0;
    uint64_t u64Bursts = 0;
    uint64_t u64PDUs = 0;
    uint64_t u64Maps = 0; // since the last look

    Counts operator-(const Counts &stBefore) const {
        return {u64Frames - stBefore.u64Frames, u64CQICH - stBefore.u64CQICH,
                u64Bursts - stBefore.u64Bursts, u64PDUs - stBefore.u64PDUs, u64Maps};
    }
    bool operator==(const Counts &) const = default;
};

std::ostream &operator<<(std::ostream &stTo, const Counts &stCounts) {
    return stTo << "frames " << stCounts.u64Frames << " CQICH " << stCounts.u64CQICH << " bursts "
                << stCounts.u64Bursts << " PDUs " << stCounts.u64PDUs << " maps "
                << stCounts.u64Maps;
}

Counts CountsOf(ModemBench &stBench) {
    Counts stCounts;
    EXPECT_EQ(stBench.Send(17, 1, "00*4"), 0);
    for (const std::string &strText : stBench.Messages()) {
        const std::vector<uint8_t> aucBytes = Payload(strText);
        if (strText.rfind("17/1:", 0) == 0) {
            stCounts.u64Frames = Word(aucBytes, 4);
            stCounts.u64CQICH = Word(aucBytes, 20);
        } else if (strText.rfind("21/1:", 0) == 0) {
            stCounts.u64Maps += Word(aucBytes, 5) == 2 ? 1 : 0;
        }
    }
    stCounts.u64Bursts = TotalsOf(stBench).stDownlink.u64Bursts;
    stCounts.u64PDUs = TotalsOf(stBench).stDownlink.u64PDUs;
    return stCounts;
}

// What there is from a moment to another one.
Counts Between(ModemBench &stBench, double fFrom, double fTo) {
    stBench.RunUntil(fFrom);
    const Counts stBefore = CountsOf(stBench);
    stBench.RunUntil(fTo);
    return CountsOf(stBench) - stBefore;
}

// A class of type 2: sleeps for 15 frames, listens for 5; defined and activated.
const std::string strSleep = "01 00 00 00 FF 02 00 0F 00 05 00 00 00 01 00 00 00*32 03 00 00 00 00"
                             " 00*147";

TEST(Presence, AModemThatSleepsHearsItsListeningWindowsAlone) {
    ModemBench stAwake(strBusy + "[trace]\non = true\n");
    EXPECT_EQ(Between(stAwake, 1.1, 5.1), (Counts{800, 100, 800, 800, 800}));
    ModemBench stAsleep(strBusy + "[trace]\non = true\n");
    stAsleep.RunUntil(1);
    EXPECT_EQ(stAsleep.Send(26, 1, strSleep), 0);
    // Forty times five frames. One of the five has a number that 8 divides, every other time. All
    // packets get through, 16 of them in the first frame of a window.
    EXPECT_EQ(Between(stAsleep, 1.1, 5.1), (Counts{200, 20, 200, 800, 200}));
    EXPECT_EQ(ReportOf(stAsleep, 1).u64Lost, 0U);
    EXPECT_EQ(ReportOf(stAsleep, 1).iLongest, 75000);
    // Awake again.
    EXPECT_EQ(stAsleep.Send(26, 1, "01 00 00 00 00 02 00*42 02 00 00 00 00 00*147"), 0);
    EXPECT_EQ(Between(stAsleep, 6, 7), (Counts{200, 25, 200, 200, 200}));
}

TEST(Presence, AModemListensWhileAnyOfItsClassesDoes) {
    ModemBench stBench(strBusy);
    stBench.RunUntil(1);
    // The same cycle, with a listening window of ten frames.
    EXPECT_EQ(stBench.Send(26, 1,
                           "02 00 00 00 FF 02 00 0F 00 05 00 00 00 01 00 00 00*32 03 00 00 00 00"
                           " FF 02 00 0A 00 0A 00 00 00 01 00 00 00*32 03 00 00 00 00 00*98"),
              0);
    EXPECT_EQ(Between(stBench, 1.1, 5.1).u64Frames, 400U);
}

TEST(Presence, SleepWindowsGrow) {
    ModemBench stBench(strBusy);
    stBench.RunUntil(1);
    // Type 1: 2, 4, 8, 16, 16... frames of sleep, 4 of listening.
    EXPECT_EQ(stBench.Send(26, 1,
                           "01 00 00 00 FF 01 00 02 04 04 01 00 00 01 00 00 00*32 03 00 00 00 00"
                           " 00*147"),
              0);
    // Asleep from frames 200, 206, 214, 226, 246, 266 and 286 on: of the frames from 202 to 300 it
    // listens in six times four, from 202, 210, 222, 242, 262 and 282 on.
    EXPECT_EQ(Between(stBench, 1.005, 1.5).u64Frames, 24U);
}

TEST(Presence, GrantsAreNotGivenToAModemThatSleeps) {
    ModemBench stBench(strLinkUp + Flow("uplink", "UGS", "max-rate = 64000\n"));
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(26, 1, strSleep), 0);
    stBench.RunUntil(1.1);
    const uint64_t u64Before = ReportOf(stBench, 1).u64Grants;
    stBench.RunUntil(5.1);
    // A grant in every fourth frame is one in each window of five, of the 20 frames' five.
    EXPECT_EQ(ReportOf(stBench, 1).u64Grants - u64Before, 40U);
}

TEST(Presence, ASearchTakesTheFramesThatItLasts) {
    ModemBench stBench(strBusy);
    stBench.RunUntil(1);
    // Six pairs of 50 ms: 60 frames, less two until the station has it begin.
    EXPECT_EQ(stBench.Send(1, 1,
                           "00*4 02 00 00 00 02 00 00 00 10 27 00 00 88 13 00 00 00*8 00*12"
                           " 03 00 00 00 6C 7B 27 00 40 AC 27 00 90 6F 28 00 00*88"),
              0);
    const Counts stCounts = Between(stBench, 1, 2);
    EXPECT_EQ(stCounts.u64Frames, 142U);
    EXPECT_EQ(stCounts.u64Bursts, 142U);
    EXPECT_EQ(stCounts.u64PDUs, 200U);
    EXPECT_EQ(stCounts.u64CQICH, 18U); // 7 of 25 fall into frames 203 to 260
}

TEST(Presence, WhatTheQueueDoesNotHoldMeanwhileIsLost) {
    ModemBench stBench(strLinkUp + Flow("downlink", "BE") + Generator("downlink", 400000, 2000));
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(1, 1,
                           "00*4 02 00 00 00 02 00 00 00 10 27 00 00 88 13 00 00 00*8 00*12"
                           " 03 00 00 00 6C 7B 27 00 40 AC 27 00 90 6F 28 00 00*88"),
              0);
    stBench.RunUntil(2);
    // 32 packets of 2000 bytes wait; from frame 235 on they are lost, up to 261, in which the
    // queue begins to go.
    EXPECT_EQ(ReportOf(stBench, 1).u64Lost, 27U);
    EXPECT_EQ(ReportOf(stBench, 1).u64Packets, 373U);
}

TEST(Presence, AnAntennaScanTakesItsFrames) {
    // Without end; no pattern, and so many frames of traffic in between.
    const auto Bursts = [](const std::string &strInterleave) {
        ModemBench stBench(strBusy);
        stBench.RunUntil(1);
        EXPECT_EQ(stBench.Send(28, 2, "01 00 00 80 00*4 00*4 00*16 " + strInterleave + " 00*12"),
                  0);
        return Between(stBench, 2, 5);
    };
    EXPECT_EQ(Bursts("00 00 00 00").u64Bursts, 0U);
    EXPECT_EQ(Bursts("00 00 00 00").u64Frames, 0U);
    EXPECT_EQ(Bursts("01 00 00 00").u64Bursts, 300U);
    EXPECT_EQ(Bursts("03 00 00 00").u64Frames, 450U);
}

TEST(Presence, AHandoverTakesTheFramesOfItsInterruption) {
    ModemBench stBench(strBusy + "[[event]]\nat = 1\nkind = \"handover\"\n"
                                 "station = \"00120A010204\"\n");
    // 50 ms; what waits goes on at the target.
    const Counts stCounts = Between(stBench, 0.999, 2);
    EXPECT_EQ(stCounts.u64Frames, 191U);
    EXPECT_EQ(stCounts.u64Bursts, 191U);
    EXPECT_EQ(stCounts.u64PDUs, 201U);
    EXPECT_EQ(ReportOf(stBench, 1).u64Lost, 0U);
}

} // namespace
