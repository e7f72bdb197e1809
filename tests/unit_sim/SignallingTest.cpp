// Management messages and their trace.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "DiagnosticRecords.h"
#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

const std::string strSync = "6C 7B 27 00 10 27 00 00 03 00 00 00 00*52";
// Nothing periodic comes between.
const std::string strQuiet = "[signalling]\nmap-period = 1000\ndescriptor-period = 1000\n"
                             "neighbour-period = 1000\nranging-period = 1000\n"
                             "report-period = 1000\n";

struct Traced {
    uint32_t u32Frame;
    bool bUplink;
    uint32_t u32Code;
    uint32_t u32CID;
    uint32_t u32CMAC;
    std::vector<uint8_t> aucBody;
};

// The traced messages among those that have come.
std::vector<Traced> TracedBy(ModemBench &stBench) {
    std::vector<Traced> astTraced;
    for (const std::string &strMessage : stBench.Messages()) {
        if (strMessage.rfind("21/1:", 0) == 0) {
            const std::vector<uint8_t> aucBytes = BytesOfHex(strMessage.substr(5));
            const ByteView stRecord{aucBytes.data(), static_cast<uint32_t>(aucBytes.size())};
            EXPECT_EQ(Get(stRecord, TraceRecord::s32BodyLength), aucBytes.size() - 18);
            astTraced.push_back({Get(stRecord, TraceRecord::u32FrameNumber),
                                 Get(stRecord, TraceRecord::u8Direction) == 1,
                                 Get(stRecord, TraceRecord::u32Code),
                                 Get(stRecord, TraceRecord::u32CID),
                                 Get(stRecord, TraceRecord::u8CMACResult),
                                 {aucBytes.begin() + 18, aucBytes.end()}});
        }
    }
    return astTraced;
}

// "5v 4^": codes with their direction; '!' behind those whose digest checked.
std::string Talk(const std::vector<Traced> &astTraced) {
    std::string strTalk;
    for (const Traced &stOne : astTraced) {
        strTalk += (strTalk.empty() ? "" : " ") + std::to_string(stOne.u32Code) +
                   (stOne.bUplink ? "^" : "v") + (stOne.u32CMAC == 1 ? "!" : "");
    }
    return strTalk;
}

const Traced &First(const std::vector<Traced> &astTraced, uint32_t u32Code) {
    return *std::find_if(astTraced.begin(), astTraced.end(),
                         [&](const Traced &stOne) { return stOne.u32Code == u32Code; });
}

void SwitchOn(ModemBench &stBench) { EXPECT_EQ(stBench.Send(21, 1), 0); }

TEST(Trace, IsOffUntilItIsSwitchedOn) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(21, 3), 0);
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.Messages(), Told({"21/3: 00*4"}));
    SwitchOn(stBench);
    EXPECT_EQ(stBench.Send(21, 3), 0);
    EXPECT_EQ(stBench.Messages(), Told({"21/3: 01 00 00 00"}));
    stBench.RunUntil(40);
    EXPECT_GT(TracedBy(stBench).size(), 40U);
    EXPECT_EQ(stBench.Send(21, 2), 0);
    EXPECT_EQ(stBench.Send(21, 3), 0);
    stBench.RunUntil(60);
    EXPECT_EQ(stBench.Messages(), Told({"21/3: 00*4"}));
}

TEST(Trace, RequestsHaveNoPayload) {
    ModemBench stBench(strLinkUp);
    for (const uint32_t u32SubType : {1U, 2U, 3U}) {
        EXPECT_EQ(stBench.Send(21, u32SubType, "00"), -4);
    }
    EXPECT_EQ(stBench.Send(21, 4), -5);
}

TEST(Trace, MapsSayTheFrameAndTheStation) {
    ModemBench stBench(WithOrdinaryMaps(strStations) +
                       "[start]\nstate = \"synchronised\"\nstation = \"00120A010203\"\n"
                       "[trace]\non = true\n[signalling]\nmap-period = 0.1\n");
    stBench.RunUntil(0.15);
    // Frame 20 of 5 ms; the DL-MAP on the broadcast CID with the frame's duration and number,
    // the DCD's count, the BS ID, 29 symbols and two bursts, the second one in the profile of 28
    // dB; the UL-MAP from slot 8648 on, 18 symbols, with the two regions for ranging.
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.10 21/1: 00 14 00 00 00 02 00 00 00 15 00 00 00 FF FF 00 00 00 "
                    "04 00 00 14 05 00 12 0A 01 02 03 1D 00 10 00 42 97 05 00 18 78",
                    "0.10 21/1: 00 14 00 00 00 03 00 00 00 14 00 00 00 FF FF 00 00 00 "
                    "00 05 00 00 21 C8 12 FF FF C0 00 00 83 0F FF FC 02 00 04 34"}));
}

TEST(Trace, CompressedMapsAreOneRecordWithoutAType) {
    ModemBench stBench(strStations +
                       "[start]\nstate = \"synchronised\"\nstation = \"00120A010203\"\n"
                       "[trace]\non = true\n[signalling]\nmap-period = 0.1\n");
    stBench.RunUntil(0.15);
    // As above: the code of a DL-MAP, 43 bytes with the uplink's part and the checksum.
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.10 21/1: 00 14 00 00 00 02 00 00 00 2B 00 00 00 FF FF 00 00 00 "
                    "D0 2B 04 00 00 14 05 0A 03 1D 02 00 10 00 42 97 05 00 18 78 "
                    "05 00 00 21 C8 12 FF FF C0 00 00 83 0F FF FC 02 00 04 34 DE D1 60 3A"}));
}

TEST(Trace, AStationWithCompressedMapsIsEnteredByThem) {
    ModemBench stBench(strStations + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(2, 1, strSync), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(4);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    EXPECT_EQ(Talk(astTraced).substr(0, 36), "2v 1v 0v 2v 5v 5v 2v 4^ 5v 26^ 27v 9");
    // The third one, of frame 204, ends with the allocation for the RNG-REQ (CID 0, UIUC 14, six
    // slots at UIUC 1, the frame of the code, 10, the code, 58, on symbol 0 and subchannel 1) and
    // the checksum.
    EXPECT_EQ(HexOf(astTraced[6].aucBody),
              "D0 33 04 00 00 CC 05 0A 03 1D 02 00 10 00 42 97 05 00 18 78 05 00 00 21 C8 12 "
              "FF FF C0 00 00 83 0F FF FC 02 00 04 34 00 00 E1 84 A3 A0 00 20 67 8D EF 8E");
}

TEST(Trace, AFrameHasEachMapOnce) {
    // With maps in every frame: a search for the station, an entry and a way through idle mode.
    for (const std::string &strScenario : {WithOrdinaryMaps(strStations), strStations}) {
        ModemBench stBench(strScenario + "[trace]\non = true\n[signalling]\nmap-period = 0.005\n" +
                           "[[event]]\nat = 5.0023\nkind = \"paging\"\n");
        EXPECT_EQ(stBench.Send(2, 1, strSync), 0);
        stBench.RunUntil(1.0017);
        EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
        stBench.RunUntil(4);
        EXPECT_EQ(stBench.Send(19, 1), 0);
        stBench.RunUntil(7);
        std::map<std::pair<uint32_t, uint32_t>, uint32_t> au32Maps;
        uint32_t u32Allocations = 0;
        for (const Traced &stOne : TracedBy(stBench)) {
            if (stOne.u32Code == 2 || stOne.u32Code == 3) {
                EXPECT_EQ(++au32Maps[std::pair(stOne.u32Frame, stOne.u32Code)], 1U)
                    << stOne.u32Code << " in frame " << stOne.u32Frame;
                const size_t uAlone = stOne.u32Code == 3 ? 20 : 43;
                u32Allocations += stOne.aucBody.size() > uAlone ? 1 : 0;
            }
        }
        EXPECT_GT(au32Maps.size(), 600U);
        // The entry's, and that of the way out of idle mode.
        EXPECT_EQ(u32Allocations, 2U);
    }
}

TEST(Trace, AScenarioSetsTheRate) {
    for (const auto &[strPeriod, uMaps] :
         {std::pair<std::string, size_t>{"0.005", 200}, {"0.5", 2}}) {
        std::string strScenario = strLinkUp;
        strScenario.append("[trace]\non = true\n[signalling]\nmap-period = ").append(strPeriod);
        ModemBench stBench(strScenario);
        stBench.RunUntil(1.002);
        const std::vector<Traced> astTraced = TracedBy(stBench);
        EXPECT_EQ(std::count_if(astTraced.begin(), astTraced.end(),
                                [](const Traced &stOne) { return stOne.u32Code == 2; }),
                  uMaps)
            << strPeriod;
    }
}

TEST(Trace, NetworkEntryIsSaidFromTheFirstMapToTheTrafficKeys) {
    ModemBench stBench(WithOrdinaryMaps(strStations) + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(2, 1, strSync), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(4);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    EXPECT_EQ(Talk(astTraced), "2v 1v 0v 3v "          // found
                               "5v 5v 3v 4^ 5v "       // ranging
                               "26^ 27v "              // basic capabilities
                               "9^ 10v 9^ 10v 9^ 10v " // EAP
                               "10v! 9^! 10v! "        // authorisation key
                               "6^! 7v! "              // registration
                               "9^! 10v!");            // traffic keys
    for (size_t i = 1; i < astTraced.size(); ++i) {
        EXPECT_LT(astTraced[i - 1].u32Frame, astTraced[i].u32Frame) << i;
    }
    // The CIDs of the last ranging response, 9 and 10, are those that are used.
    const std::vector<uint8_t> &aucBody = astTraced[8].aucBody;
    ASSERT_EQ(aucBody.size(), 1U + 3 + 8 + 4 + 4);
    EXPECT_EQ(HexOf({aucBody.begin(), aucBody.begin() + 14}),
              "00 04 01 03 08 06 02 00 00 20 00 01 09 02");
    const uint32_t u32Basic = aucBody[14] << 8 | aucBody[15];
    const uint32_t u32Primary = aucBody[18] << 8 | aucBody[19];
    EXPECT_EQ(First(astTraced, 4).u32CID, 0U);
    EXPECT_EQ(First(astTraced, 26).u32CID, u32Basic);
    EXPECT_EQ(First(astTraced, 9).u32CID, u32Primary);
    EXPECT_EQ(First(astTraced, 7).u32CID, u32Primary);
    EXPECT_EQ(First(astTraced, 1).u32CID, 0xFFFDU);
}

TEST(Trace, FailingEntriesEndWithTheStationsRefusal) {
    const std::vector<std::pair<std::string, std::string>> astCases = {
        {"ranging-failure", "3v 4^ 5v"},         {"sbc-failure", "5v 26^"},
        {"pkm-failure", "9^ 10v 9^ 10v 9^ 10v"}, {"registration-failure", "6^! 7v!"},
        {"satek-failure", "6^! 7v! 9^! 10v!"},
    };
    for (const auto &[strEntry, strEnd] : astCases) {
        std::string strScenario = WithOrdinaryMaps(strStations) + strQuiet + "[trace]\non = true\n";
        strScenario.insert(strScenario.find("rssi"), "entry = \"" + strEntry + "\"\n");
        ModemBench stBench(strScenario);
        EXPECT_EQ(stBench.Send(2, 1, strSync), 0);
        stBench.RunUntil(1);
        EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
        stBench.RunUntil(4);
        const std::string strTalk = Talk(TracedBy(stBench));
        ASSERT_GE(strTalk.size(), strEnd.size());
        EXPECT_EQ(strTalk.substr(strTalk.size() - strEnd.size()), strEnd) << strEntry;
    }
}

TEST(Trace, IdleModeIsAskedForPagedAndLeft) {
    ModemBench stBench(WithOrdinaryMaps(strLinkUp) + strQuiet +
                       "[trace]\non = true\n[[event]]\nat = 4.5\nkind = \"paging\"\n");
    EXPECT_EQ(stBench.Send(19, 1), 0);
    stBench.RunUntil(7);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    EXPECT_EQ(Talk(astTraced), "49^! 29v! 61v 61v 61v 61v 61v 5v 3v 4^! 5v!");
    // Goes idle by itself: 1, with the paging cycle of 200 frames; answered with 5.
    EXPECT_EQ(HexOf({astTraced[0].aucBody.begin(), astTraced[0].aucBody.begin() + 5}),
              "01 34 02 00 C8");
    EXPECT_EQ(astTraced[1].aucBody[0], 5);
    // Nobody is paged in group 1; then one modem, which is to enter the network.
    EXPECT_EQ(HexOf(astTraced[2].aucBody), "00 01 00 01 00");
    const std::vector<uint8_t> &aucPaged = astTraced[6].aucBody;
    ASSERT_EQ(aucPaged.size(), 9U);
    EXPECT_EQ(aucPaged[4], 1);
    EXPECT_EQ(aucPaged[8], 0x80);
    EXPECT_EQ(astTraced[6].u32Frame, 1000U);
}

TEST(Trace, AStationSendsTheModemToIdleMode) {
    ModemBench stBench(strLinkUp + strQuiet +
                       "[trace]\non = true\n"
                       "[[event]]\nat = 1\nkind = \"dreg\"\naction = 5\n");
    stBench.RunUntil(1.8);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    ASSERT_EQ(Talk(astTraced), "29v! 49^!");
    EXPECT_EQ(astTraced[0].aucBody[0], 5);
    EXPECT_EQ(astTraced[1].aucBody[0], 2);
}

TEST(Trace, AnEndOfTheLinkIsSaid) {
    ModemBench stBench(strLinkUp + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(Talk(TracedBy(stBench)), "49^! 29v!");
    for (const auto &[strEvent, strTalk] :
         {std::pair<std::string, std::string>{"\"reset\"", "25v!"},
          {"\"dreg\"\naction = 0", "29v!"},
          {"\"dreg\"\naction = 3", "29v!"},
          {"\"link-loss\"", ""}}) {
        std::string strScenario = strLinkUp + strQuiet;
        strScenario.append("[trace]\non = true\n[[event]]\nat = 1\nkind = ").append(strEvent);
        ModemBench stOther(strScenario);
        stOther.RunUntil(3);
        EXPECT_EQ(Talk(TracedBy(stOther)), strTalk) << strEvent;
    }
}

TEST(Trace, AHandoverIsSaidToBothStations) {
    const std::string strNeighbour = "[[event]]\nat = 1\nkind = \"handover\"\n"
                                     "station = \"00 12 0A 01 02 04\"\n";
    ModemBench stBench(strLinkUp + strQuiet + "[trace]\non = true\n" + strNeighbour);
    // Before it looks back: the station that it came from is still the better one.
    stBench.RunUntil(1.4);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    ASSERT_EQ(Talk(astTraced), "57^! 58v! 59^! 5v 3v 4^! 5v!");
    // Released, to the station.
    EXPECT_EQ(HexOf({astTraced[2].aucBody.begin(), astTraced[2].aucBody.begin() + 8}),
              "00 00 00 12 0A 01 02 04");
    ModemBench stOther(strLinkUp + strQuiet + "[trace]\non = true\n" + strNeighbour +
                       "fails = true\n");
    stOther.RunUntil(2);
    EXPECT_EQ(Talk(TracedBy(stOther)), "57^! 58v! 59^! 5v 3v 4^! 59^!");
}

TEST(Trace, SleepIsAgreedOnAndEndsWithTraffic) {
    ModemBench stBench(strLinkUp + strQuiet +
                       "[trace]\non = true\n[[event]]\nat = 1\nkind = \"traffic-waits\"\n");
    // One class of type 1, defined and activated: windows 2 to 64 frames, listening 2, ended by
    // traffic.
    EXPECT_EQ(
        stBench.Send(26, 1, "01 00 00 00 FF 01 00 02 01 02 20 00 01 00 00 00 00*32 03 00*4 00*147"),
        0);
    stBench.RunUntil(3);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    ASSERT_EQ(Talk(astTraced), "50^! 51v! 52v");
    // One class; definition and activation of class 0; the start frame; type 1, traffic wakes;
    // windows 2 and 2, 32 times 2.
    const std::vector<uint8_t> &aucBody = astTraced[0].aucBody;
    EXPECT_EQ(aucBody[0], 1);
    EXPECT_EQ(aucBody[1], 0xC0);
    EXPECT_EQ(HexOf({aucBody.begin() + 3, aucBody.begin() + 8}), "48 02 02 08 08");
    EXPECT_EQ(HexOf(astTraced[2].aucBody), "81 00 00");
}

TEST(Trace, AWrongDigestIsReportedAndTheMessageRepeated) {
    ModemBench stBench(strLinkUp + strQuiet + "cmac-failures = 0.9\n[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.RunUntil(10);
    const std::string strTalk = Talk(TracedBy(stBench));
    EXPECT_EQ(strTalk.substr(0, 9), "49^! 29v ");
    EXPECT_EQ(strTalk.substr(strTalk.size() - 5), " 29v!");
}

TEST(Trace, NeighboursOfTheSameNetworkAreAdvertised) {
    ModemBench stBench(strLinkUp + "[trace]\non = true\n[signalling]\nneighbour-period = 0.1\n");
    stBench.RunUntil(0.12);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    // Operator, the station's count, one fragment, one neighbour on the same channel: its length,
    // ID, preamble and counts.
    ASSERT_EQ(Talk(astTraced), "53v");
    EXPECT_EQ(HexOf(astTraced[0].aucBody), "00 00 12 0A 05 01 01 08 00 01 02 04 23 FF 1F 11");
}

// What was traced, by code, and what the host was told, in their order.
std::string Order(ModemBench &stBench) {
    std::string strOrder;
    for (const std::string &strMessage : stBench.Messages()) {
        const std::string strKind = strMessage.substr(0, strMessage.find(':'));
        const bool bTraced = strKind == "21/1";
        strOrder += strOrder.empty() ? "" : " ";
        strOrder +=
            bTraced ? std::to_string(BytesOfHex(strMessage.substr(5)).at(5)) : "(" + strKind + ")";
    }
    return strOrder;
}

TEST(Trace, TheHostHearsOfThingsAfterTheyHappenedOnTheAir) {
    ModemBench stEntry(WithOrdinaryMaps(strStations) + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stEntry.Send(2, 1, strSync), 0);
    stEntry.RunUntil(1);
    EXPECT_EQ(Order(stEntry), "2 1 0 3 (2/1)");
    EXPECT_EQ(stEntry.Send(2, 2, "00*4"), 0);
    stEntry.RunUntil(4);
    EXPECT_EQ(Order(stEntry), "(2/2) 5 5 3 4 5 26 27 9 10 9 10 9 10 10 9 10 6 7 9 10 (2/2)");

    struct Case {
        uint32_t u32Type;
        uint32_t u32SubType;
        std::string strRequest;
        std::string strOrder;
    };
    const std::string strAdd = "0B 01 D2 04 00*4 00*4 E8 03 00*18 00*4 00*79 07 00 02 10 00*5 01 "
                               "00*57 01 00 00*2640 00*4";
    const std::vector<Case> astCases = {
        {6, 1, strAdd, "11 30 12 13 (6/1)"},
        {6, 2, "11 00 D2 04 01 00 00 00", "17 18 (6/2)"},
        {26, 1, "01 00 00 00 FF 01 00 02 01 02 20 00 01 00 00 00 00*32 03 00*4 00*147",
         "50 51 (26/2)"},
        {3, 2, "", "49 29 (2/2)"},
    };
    ModemBench stBench(strLinkUp + strQuiet + "[trace]\non = true\n");
    double fNow = 0;
    for (const Case &stCase : astCases) {
        EXPECT_EQ(stBench.Send(stCase.u32Type, stCase.u32SubType, stCase.strRequest), 0);
        stBench.RunUntil(fNow += 0.5);
        EXPECT_EQ(Order(stBench), stCase.strOrder);
    }
    // The sync status stays behind the end of the link, however fast the requests come.
    ModemBench stOther(strLinkUp + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stOther.Send(19, 1), 0);
    stOther.RunUntil(0.5);
    EXPECT_EQ(Order(stOther), "49 29 (19/1)");
    ModemBench stDown(strLinkUp + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stDown.Send(3, 1), 0);
    EXPECT_EQ(stDown.Send(2, 3), 0);
    stDown.RunUntil(0.5);
    EXPECT_EQ(Order(stDown), "49 29 (2/2) (2/1) (2/2)");
}

TEST(Trace, ARequestGoesOutAtOnceInTheHostsTransaction) {
    ModemBench stBench(strLinkUp + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(6, 1,
                           "0B 01 D2 84 00*4 00*4 E8 03 00*18 00*4 00*79 07 00 02 10 00*5 01 "
                           "00*57 01 00 00*2640 00*4"),
              0);
    stBench.RunUntil(0.05);
    const std::vector<Traced> astAsked = TracedBy(stBench);
    EXPECT_EQ(Talk(astAsked), "11^! 30v");
    // 0x84D2: the upper half of the numbers is the station's.
    EXPECT_EQ(HexOf({astAsked[0].aucBody.begin(), astAsked[0].aucBody.begin() + 2}), "04 D2");
    EXPECT_EQ(HexOf(astAsked[1].aucBody), "04 D2 00");
    stBench.RunUntil(0.2);
    const std::vector<Traced> astAnswered = TracedBy(stBench);
    EXPECT_EQ(Talk(astAnswered), "12v! 13^!");
    EXPECT_EQ(HexOf({astAnswered[0].aucBody.begin(), astAnswered[0].aucBody.begin() + 2}), "04 D2");
}

TEST(Trace, ShortPeriodsHoldNoDialogueUp) {
    ModemBench stBench(strStations + "[trace]\non = true\n[signalling]\nmap-period = 0.005\n"
                                     "descriptor-period = 0.005\nneighbour-period = 0.005\n"
                                     "ranging-period = 0.005\nreport-period = 0.005\n");
    EXPECT_EQ(stBench.Send(2, 1, strSync), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(4);
    (void)stBench.Messages();
    // With the link up and everything periodic in every frame.
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.RunUntil(4.1);
    const std::string strOrder = " " + Order(stBench);
    EXPECT_NE(strOrder.find(" 49 "), std::string::npos);
    EXPECT_LT(strOrder.find(" 49 "), strOrder.find(" 29 "));
    EXPECT_LT(strOrder.find(" 29 "), strOrder.find("(2/2)"));
    EXPECT_NE(strOrder.find("(2/2)"), std::string::npos);
}

// Of a message with a digest, which takes 15 bytes, what stands before it, and the frame.
std::string Unprotected(const Traced &stOne) {
    return std::to_string(stOne.u32Frame) + ": " +
           HexOf({stOne.aucBody.begin(), stOne.aucBody.end() - 15});
}

TEST(Trace, ASearchWithTheLinkUpIsAskedForAndReported) {
    ModemBench stBench(strLinkUp + strQuiet + "[trace]\non = true\n");
    // 2587500 and 2600000 kHz, 10 MHz: 0.1 s.
    EXPECT_EQ(stBench.Send(1, 1,
                           "00*4 02 00*3 01 00*3 10 27 00*14 00*12 02 00*3 6C 7B 27 00 "
                           "40 AC 27 00 00*92"),
              0);
    stBench.RunUntil(1);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    ASSERT_EQ(Talk(astTraced), "54^! 55v! 60^!");
    // 20 frames once, from the second frame behind the answer on; then the neighbour at -71.25 dBm
    // and 16 dB beside the station at -58 dBm and 28 dB.
    EXPECT_EQ(Unprotected(astTraced[0]), "0: 14 00 01 00 00");
    EXPECT_EQ(Unprotected(astTraced[1]), "1: 14 C0 00 03 20 00 08 00 00");
    EXPECT_EQ(Unprotected(astTraced[2]), "20: 08 03 00 38 B7 00 01 00 12 0A 01 02 04 20 82");
}

TEST(Trace, ASearchOfProvidersIsAskedForAndReported) {
    ModemBench stBench(strLinkUp + strQuiet + "[trace]\non = true\n");
    EXPECT_EQ(stBench.Send(1, 4, "00*340"), 0);
    stBench.RunUntil(5);
    const std::vector<Traced> astTraced = TracedBy(stBench);
    ASSERT_EQ(Talk(astTraced), "54^! 55v! 60^!");
    // Four stations, half a second each: 400 frames.
    EXPECT_EQ(Unprotected(astTraced[0]), "0: C8 00 02 00 00");
    EXPECT_EQ(Unprotected(astTraced[2]), "400: 08 03 00 38 B7 00 01 00 12 0A 01 02 04 20 82");
}

TEST(Trace, ASearchWithoutALinkIsNobodysBusiness) {
    for (const char *pcState : {"unsynchronised", "synchronised", "idle"}) {
        ModemBench stBench(
            strStations + strQuiet + "[trace]\non = true\n[start]\nstate = \"" + pcState + "\"\n" +
            (pcState == std::string("unsynchronised") ? "" : "station = \"00120A010203\"\n"));
        EXPECT_EQ(stBench.Send(1, 1,
                               "00*4 02 00*3 01 00*3 10 27 00*14 00*12 01 00*3 6C 7B 27 00 "
                               "00*96"),
                  0);
        stBench.RunUntil(0.5);
        EXPECT_EQ(Talk(TracedBy(stBench)), "") << pcState;
    }
}

TEST(Trace, ASearchThatEndsWithTheLinkIsNotReported) {
    ModemBench stBench(strLinkUp + strQuiet +
                       "[recovery]\non = false\n[trace]\non = true\n[[event]]\nat = 0.05\n"
                       "kind = \"link-loss\"\n");
    EXPECT_EQ(stBench.Send(1, 1,
                           "00*4 02 00*3 01 00*3 10 27 00*14 00*12 02 00*3 6C 7B 27 00 "
                           "40 AC 27 00 00*92"),
              0);
    stBench.RunUntil(1);
    EXPECT_EQ(Talk(TracedBy(stBench)), "54^! 55v!");
}

TEST(Trace, ABetterNeighbourIsScannedFirst) {
    ModemBench stBench(strLinkUp + strQuiet +
                       "[trace]\non = true\n[[event]]\nat = 1.2\nkind = \"fade\"\n"
                       "station = \"00 12 0A 01 02 03\"\nby = 25\n");
    // Looked at 1.5 s, and gone to a second later.
    stBench.RunUntil(2.4);
    EXPECT_EQ(Talk(TracedBy(stBench)), "54^! 55v! 60^!");
    stBench.RunUntil(2.9);
    EXPECT_EQ(Talk(TracedBy(stBench)), "57^! 58v! 59^! 5v 3v 4^! 5v!");
}

TEST(Trace, AStationOrdersAHandoverByItself) {
    ModemBench stBench(strLinkUp + strQuiet +
                       "[trace]\non = true\n[[event]]\nat = 1\nkind = \"handover\"\n"
                       "station = \"00 12 0A 01 02 04\"\nordered = true\n");
    stBench.RunUntil(1.4);
    EXPECT_EQ(Talk(TracedBy(stBench)), "56v! 59^! 5v 3v 4^! 5v!");
}

TEST(Trace, FlowsHaveNewConnectionsAfterAHandoverAndAfterIdleMode) {
    ModemBench stBench(strLinkUp + strQuiet +
                       "[trace]\non = true\n[[service-flow]]\ndirection = \"uplink\"\n"
                       "type = \"BE\"\n[[event]]\nat = 1\nkind = \"handover\"\n"
                       "station = \"00 12 0A 01 02 04\"\n");
    stBench.RunUntil(1.4);
    std::vector<Traced> astTraced = TracedBy(stBench);
    EXPECT_EQ(Talk(astTraced), "57^! 58v! 59^! 5v 3v 4^! 5v! 7v!");
    // A REG-RSP comes (bit 10), with the second connection instead of the first, 0x1000.
    const std::vector<uint8_t> &aucRanging = astTraced[6].aucBody;
    EXPECT_EQ(HexOf({aucRanging.begin() + 20, aucRanging.begin() + 24}), "15 02 04 FF");
    EXPECT_EQ(HexOf({astTraced[7].aucBody.begin(), astTraced[7].aucBody.begin() + 13}),
              "00 18 0A 01 02 10 01 02 04 00 00 00 01");
    EXPECT_EQ(stBench.Send(19, 1), 0);
    stBench.RunUntil(3);
    EXPECT_EQ(stBench.Send(19, 4), 0);
    stBench.RunUntil(4);
    astTraced = TracedBy(stBench);
    ASSERT_FALSE(astTraced.empty());
    EXPECT_EQ(astTraced.back().u32Code, 7U);
    EXPECT_EQ(HexOf({astTraced.back().aucBody.begin(), astTraced.back().aucBody.begin() + 13}),
              "00 18 0A 01 02 10 02 02 04 00 00 00 01");
}

} // namespace
