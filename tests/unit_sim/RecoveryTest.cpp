// What the modem does for itself when nobody asks: it follows the best station in idle mode, and
// finds its way back into a network that it has lost.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// Type, subtype and the first byte of each message, with its second.
std::vector<std::string> BriefMessages(ModemBench &stBench) {
    std::vector<std::string> astrTexts;
    for (const std::string &strTimed : stBench.TimedMessages()) {
        astrTexts.push_back(strTimed.substr(0, strTimed.find(':') + 4));
    }
    return astrTexts;
}

using Texts = std::vector<std::string>;

// What of the air a test looks at: up or down, and the code.
class AirListener {
  public:
    explicit AirListener(ModemBench &stBench) {
        stBench.TheModem().TheSignalling().OnMessage([this](const ManagementMessage &stMessage) {
            m_astrCodes.push_back((stMessage.bUplink ? "up " : "down ") +
                                  std::to_string(stMessage.u32Code));
        });
    }
    Texts Heard() { return std::exchange(m_astrCodes, {}); }

  private:
    Texts m_astrCodes;
};

const std::string strIdleAtFirst = strStations + "[start]\nstate = \"idle\"\n"
                                                 "station = \"00 12 0A 01 02 03\"\n";
const std::string strFirstFades = "[[event]]\nkind = \"fade\"\nat = 5\n"
                                  "station = \"00 12 0A 01 02 03\"\nby = 30\n";

std::string ServingIn(ModemBench &stBench) {
    const Station *pstServing = stBench.TheModem().TheLink().Serving();
    return pstServing == nullptr ? ""
                                 : HexOf({pstServing->aucBSID.begin(), pstServing->aucBSID.end()});
}

TEST(Reselection, FollowsTheBestStationOfTheNetwork) {
    ModemBench stBench(strIdleAtFirst + strFirstFades);
    AirListener stAir(stBench);
    stBench.RunUntil(4.5);
    EXPECT_EQ(ServingIn(stBench), "00 12 0A 01 02 03");
    stBench.RunUntil(20);
    EXPECT_EQ(ServingIn(stBench), "00 12 0A 01 02 04");
    // Within the paging group nobody has to know, and the host does not hear of it.
    EXPECT_EQ(stAir.Heard(), Texts{});
    EXPECT_EQ(stBench.Messages(), Texts{});
    // It comes out of idle mode there.
    EXPECT_EQ(stBench.Send(19, 4), 0);
    stBench.RunUntil(21);
    EXPECT_EQ(stBench.Messages().back().substr(0, 36), "19/1: 00*5 12 0A 01 02 04 E3 FE FF F");
}

TEST(Reselection, StaysWithinTheHysteresis) {
    ModemBench stBench(strIdleAtFirst + "[[event]]\nkind = \"fade\"\nat = 5\n"
                                        "station = \"00 12 0A 01 02 03\"\nby = 19\n");
    stBench.RunUntil(20);
    EXPECT_EQ(ServingIn(stBench), "00 12 0A 01 02 03");
}

TEST(Reselection, AnotherPagingGroupHearsOfIt) {
    std::string strScenario = strIdleAtFirst + strFirstFades;
    strScenario.insert(strScenario.find("rssi = -71.25"), "paging-group = 2\n");
    ModemBench stBench(strScenario);
    AirListener stAir(stBench);
    stBench.RunUntil(20);
    // The answer to the code, the allocation, RNG-REQ and RNG-RSP.
    EXPECT_EQ(stAir.Heard(), (Texts{"down 5", "down 3", "up 4", "down 5"}));
    EXPECT_EQ(stBench.Messages(), Texts{});
}

TEST(Reselection, AnUpdateThatNobodyHearsIsSaidAgain) {
    std::string strScenario = strIdleAtFirst + "[[event]]\nkind = \"vanish\"\nat = 5\n"
                                               "station = \"00 12 0A 01 02 03\"\n"
                                               "[[event]]\nkind = \"fade\"\nat = 5\nby = 20\n"
                                               "station = \"00 12 0A 01 02 04\"\n"
                                               "[[event]]\nkind = \"fade\"\nat = 12\nby = -20\n"
                                               "station = \"00 12 0A 01 02 04\"\n";
    strScenario.insert(strScenario.find("rssi = -71.25"), "paging-group = 2\n");
    ModemBench stBench(strScenario);
    AirListener stAir(stBench);
    uint32_t u32Codes = 0;
    stBench.TheModem().TheSignalling().OnRanging(
        [&u32Codes](RangingKind, const RangingSignal &) { ++u32Codes; });
    stBench.RunUntil(12);
    EXPECT_EQ(stAir.Heard(), Texts{});
    EXPECT_EQ(u32Codes, 4U);
    stBench.RunUntil(30);
    EXPECT_EQ(stAir.Heard(), (Texts{"down 5", "down 3", "up 4", "down 5"}));
}

TEST(Reselection, GoingAwayIsTheLastUpdate) {
    ModemBench stBench(strIdleAtFirst);
    AirListener stAir(stBench);
    EXPECT_EQ(stBench.Send(30, 1), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stAir.Heard(), (Texts{"down 5", "down 2", "up 4", "down 5"}));
}

TEST(IdleMode, IsNotLeftAtAStationThatDoesNotHearTheModem) {
    ModemBench stBench(strIdleAtFirst +
                       "[recovery]\non = false\n[[event]]\nkind = \"fade\"\nat = 5\nby = 35\n"
                       "station = \"00 12 0A 01 02 03\"\n"
                       "[[event]]\nkind = \"vanish\"\nat = 4\n"
                       "station = \"00 12 0A 01 02 04\"\n"
                       "[[event]]\nkind = \"paging\"\nat = 6.5\n");
    stBench.RunUntil(20);
    EXPECT_EQ(BriefMessages(stBench), (Texts{"7.30 2/2: 16"}));
}

TEST(Recovery, ALostLinkIsLookedForAndEntered) {
    ModemBench stBench(strLinkUp + "[[event]]\nkind = \"link-loss\"\nat = 10\n");
    stBench.RunUntil(30);
    // Lost; two seconds later synchronised in 0.3 s, entered in 1.05 s.
    EXPECT_EQ(BriefMessages(stBench),
              (Texts{"10.00 2/2: 18", "12.31 2/1: 00", "12.31 2/2: 0C", "13.35 2/2: 00"}));
    EXPECT_EQ(ServingIn(stBench), "00 12 0A 01 02 03");
}

TEST(Recovery, GoesToTheBestOfTheNetworkWhenTheStationIsGone) {
    ModemBench stBench(strLinkUp + "[handover]\nlook-period = 0\n[[event]]\nkind = \"vanish\"\n"
                                   "at = 10\nstation = \"00 12 0A 01 02 03\"\n");
    stBench.RunUntil(30);
    EXPECT_EQ(ServingIn(stBench), "00 12 0A 01 02 04");
    EXPECT_EQ(stBench.TheModem().TheLink().State(), LinkState::LinkUp);
}

TEST(Recovery, LooksAgainUntilThereIsAStation) {
    ModemBench stBench(strLinkUp + "[recovery]\nafter = 1\nretry = 3\n[handover]\nlook-period = 0\n"
                                   "[[event]]\nkind = \"vanish\"\nat = 9.5\n"
                                   "station = \"00 12 0A 01 02 03\"\n"
                                   "[[event]]\nkind = \"vanish\"\nat = 9.5\n"
                                   "station = \"00 12 0A 01 02 04\"\n"
                                   "[[event]]\nkind = \"appear\"\nat = 19.5\n"
                                   "station = \"00 12 0A 01 02 03\"\n");
    stBench.RunUntil(40);
    // Looked at 11, 14, 17 and 20 s.
    EXPECT_EQ(BriefMessages(stBench),
              (Texts{"10.00 2/2: 18", "20.32 2/1: 00", "20.32 2/2: 0C", "21.35 2/2: 00"}));
}

TEST(Recovery, AnEntryThatFailsIsTriedAgain) {
    std::string strScenario = strLinkUp + "[[event]]\nkind = \"link-loss\"\nat = 10\n";
    strScenario.insert(strScenario.find("rssi = -58"), "entry = \"registration-failure\"\n");
    ModemBench stBench(strScenario);
    stBench.RunUntil(20);
    EXPECT_EQ(BriefMessages(stBench), (Texts{"10.00 2/2: 18", "12.31 2/1: 00", "12.31 2/2: 0C",
                                             "13.25 2/2: 07", "18.25 2/2: 0C", "19.20 2/2: 07"}));
}

TEST(Recovery, IsTheHostsWhenTheHostMovesTheLink) {
    ModemBench stBench(strLinkUp + "[[event]]\nkind = \"link-loss\"\nat = 10\n");
    stBench.RunUntil(11);
    stBench.Messages();
    EXPECT_EQ(stBench.Send(3, 1), 0);
    stBench.RunUntil(30);
    EXPECT_EQ(BriefMessages(stBench), (Texts{"11.00 2/1: 0E"}));
}

TEST(Recovery, CanBeLeftToTheHost) {
    ModemBench stBench(strLinkUp + "[recovery]\non = false\n"
                                   "[[event]]\nkind = \"link-loss\"\nat = 10\n");
    stBench.RunUntil(30);
    EXPECT_EQ(BriefMessages(stBench), (Texts{"10.00 2/2: 18"}));
}

TEST(Recovery, AResetGoesTheWayFromTheBeginning) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(16, 1), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.TheModem().TheLink().State(), LinkState::Unsynchronised);
    stBench.RunUntil(10);
    EXPECT_EQ(BriefMessages(stBench),
              (Texts{"0.50 16/1:", "2.81 2/1: 00", "2.81 2/2: 0C", "3.85 2/2: 00"}));
}

TEST(Recovery, AResetEndsInTheStateThatTheScenarioStartsWith) {
    ModemBench stIdle(strIdleAtFirst);
    EXPECT_EQ(stIdle.Send(16, 1), 0);
    stIdle.RunUntil(10);
    EXPECT_EQ(stIdle.TheModem().TheLink().State(), LinkState::Idle);
    ModemBench stSynchronised(strStations + "[start]\nstate = \"synchronised\"\n"
                                            "station = \"00 12 0A 01 02 04\"\n");
    EXPECT_EQ(stSynchronised.Send(16, 1), 0);
    stSynchronised.RunUntil(10);
    EXPECT_EQ(BriefMessages(stSynchronised), (Texts{"0.50 16/1:", "2.81 2/1: 00"}));
    EXPECT_EQ(ServingIn(stSynchronised), "00 12 0A 01 02 04");
}

TEST(Crash, TheWatchdogResetsTheModem) {
    ModemBench stBench(strStations +
                       "[chipset]\nwatchdog = 4\n[[event]]\nkind = \"crash\"\nat = 1\n");
    stBench.RunUntil(5.4);
    EXPECT_EQ(stBench.Messages(), Texts{});
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(), Told({"5.50 16/1:"}));
}

TEST(Events, ARequestCanComeFromElsewhere) {
    ModemBench stBench(strLinkUp +
                       "[[event]]\nkind = \"request\"\nat = 1\nbytes = \"13 00 02 00\"\n"
                       "[[event]]\nkind = \"request\"\nat = 2\nbytes = \"63 00 02 00\"\n");
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.TimedMessages(), Told({"1.00 19/2: 00 00 00 00"}));
}

// A flow of the network's own: added with a SFID of its own (3 behind no other: 1), changed,
// deleted.
TEST(ServiceFlows, TheNetworkAddsAndChangesThem) {
    ModemBench stBench(strLinkUp + "[[event]]\nkind = \"flow-added\"\nat = 1\n"
                                   "direction = \"uplink\"\ntype = \"RTPS\"\nmax-rate = 256000\n"
                                   "min-rate = 64000\n"
                                   "[[event]]\nkind = \"flow-changed\"\nat = 2\nsfid = 1\n"
                                   "max-rate = 512000\n"
                                   "[[event]]\nkind = \"flow-changed\"\nat = 3\nsfid = 9\n"
                                   "[[event]]\nkind = \"flow-deleted\"\nat = 4\nsfid = 1\n");
    AirListener stAir(stBench);
    stBench.RunUntil(1.5);
    // DSA-REQ, RSP and ACK.
    EXPECT_EQ(stAir.Heard(), (Texts{"down 11", "up 12", "down 13"}));
    stBench.RunUntil(1.9);
    const std::vector<std::string> astrAdded = stBench.Messages();
    ASSERT_EQ(astrAdded.size(), 1U);
    EXPECT_TRUE(astrAdded[0].starts_with("6/1: ")) << astrAdded[0];
    EXPECT_NE(astrAdded[0].find(" E8 03 00*6 FA "), std::string::npos)
        << astrAdded[0]; // 256000 and 64000
    stAir.Heard();
    stBench.RunUntil(3.5);
    const std::vector<std::string> astrChanged = stBench.Messages();
    ASSERT_EQ(astrChanged.size(), 1U);
    EXPECT_TRUE(astrChanged[0].starts_with("6/3: ")) << astrChanged[0];
    EXPECT_NE(astrChanged[0].find(" D0 07 00*6 FA "), std::string::npos)
        << astrChanged[0]; // 512000, and the same
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.Messages().size(), 1U);
}

} // namespace
