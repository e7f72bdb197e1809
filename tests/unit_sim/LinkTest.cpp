#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// Sync up requests: centre frequency, bandwidth, preamble (FF: any).
const std::string strSyncAny = "6C 7B 27 00 10 27 00 00 FF 00 00 00 00*52";
const std::string strSync3 = "6C 7B 27 00 10 27 00 00 03 00 00 00 00*52";
const std::string strSync35 = "6C 7B 27 00 10 27 00 00 23 00 00 00 00*52";
const std::string strSyncWeak = "90 6F 28 00 10 27 00 00 FF 00 00 00 00*52";

// Sync status of the first and the second station, but for the status word.
const std::string strFirstSynced = "01 00 00 12 0A 01 02 03 03 00 00 00 1C 00 00 00 00 00 00 00 "
                                   "C6 FF FF FF 00 00 00 00 6C 7B 27 00 10 27 00 00 "
                                   "05 00 00 00 02 00 00 00";
const std::string strSecondSynced = "00 00 00 12 0A 01 02 04 23 00 00 00 10 00 00 00 00 00 00 00 "
                                    "B9 FF FF FF 00 00 00 00 6C 7B 27 00 10 27 00 00 "
                                    "01 00 00 00 01 00 00 00";
// Base information of the first station up to the duration, and behind it.
const std::string strFirstBase = "01 00 00 00 00 12 0A 01 02 03 09 03 1C 00 00 00 ";
const std::string strFirstBaseEnd = " C6 FF FF FF 00 00 00 00 1B 0A 00 00 1B 0A 00 00 "
                                    "00 00 00 00 03 00 00 00 A1 B2 C3";
const std::string strNoBase = " 00*44";

std::string WithReason(const std::string &strReason) { return "2/2: " + strReason + strNoBase; }

void SyncUp(ModemBench &stBench) {
    ASSERT_EQ(stBench.Send(2, 1, strSync3), 0);
    stBench.RunUntil(1);
    ASSERT_EQ(stBench.Messages(), Told({"2/1: 00*4 " + strFirstSynced}));
}

TEST(Link, SyncUpFindsTheStationWithItsPreamble) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(2, 1, strSync35), 0);
    stBench.RunUntil(0.29);
    EXPECT_EQ(stBench.Messages(), Told({}));
    stBench.RunUntil(0.32);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 00 00 00 00 " + strSecondSynced}));
}

TEST(Link, SyncUpWithPreamble255FindsTheStrongest) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(2, 1, strSyncAny), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 00 00 00 00 " + strFirstSynced}));
}

TEST(Link, SyncUpOffTheStationsChannelIsAPhySyncError) {
    for (const char *pcRequest : {
             "6D 7B 27 00 10 27 00 00 FF 00 00 00 00*52", // another frequency
             "6C 7B 27 00 88 13 00 00 FF 00 00 00 00*52", // another bandwidth
             "6C 7B 27 00 10 27 00 00 04 00 00 00 00*52", // another preamble
         }) {
        ModemBench stBench(strStations);
        EXPECT_EQ(stBench.Send(2, 1, pcRequest), 0);
        stBench.RunUntil(1);
        EXPECT_EQ(stBench.Messages(), Told({"2/1: 01 00*47"})) << pcRequest;
        EXPECT_EQ(stBench.Send(2, 3), 0);
        EXPECT_EQ(stBench.Messages(), Told({WithReason("0E")})) << pcRequest;
    }
}

TEST(Link, SyncUpOnTheSameStationAgainReportsThatItWaitsForNetworkEntry) {
    ModemBench stBench(strStations);
    SyncUp(stBench);
    EXPECT_EQ(stBench.Send(2, 1, strSyncAny), 0);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 0D 00 00 00 " + strFirstSynced}));
}

TEST(Link, SyncUpElsewhereMovesTheModem) {
    ModemBench stBench(strStations);
    SyncUp(stBench);
    EXPECT_EQ(stBench.Send(2, 1, strSync35), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 00 00 00 00 " + strSecondSynced}));
}

TEST(Link, ASecondSyncUpEndsTheFirstWithAnAnswer) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(2, 1, strSyncAny), 0);
    EXPECT_EQ(stBench.Send(2, 1, strSync35), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 03 00*47", "2/1: 00 00 00 00 " + strSecondSynced}));
}

TEST(Link, NetworkEntryGoesThroughInProgressToLinkUp) {
    ModemBench stBench(strStations);
    SyncUp(stBench);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(1.5);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    stBench.RunUntil(3);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"1.00 " + WithReason("0C"), "1.50 " + WithReason("0C"),
                    "2.05 2/2: 00 " + strFirstBase + "00 00 00 00" + strFirstBaseEnd}));
    stBench.RunUntil(62.5);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"2/2: 11 " + strFirstBase + "3C 00 00 00" + strFirstBaseEnd}));
}

TEST(Link, NetworkEntryWithoutSynchronisationWaitsForPhySync) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    EXPECT_EQ(stBench.Send(2, 4, "00*268"), 0);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("0E"), WithReason("0E")}));
}

TEST(Link, NetworkEntryAtAWeakStationFailsInRangingAndKeepsTheSynchronisation) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(2, 1, strSyncWeak), 0);
    stBench.RunUntil(1);
    stBench.Messages();
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(3);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"1.00 " + WithReason("0C"), "1.25 " + WithReason("04")}));
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Messages(), Told({"2/2: 0D 01 00 00 00 00 2B 37 00 00 02 00 11 FF FF 00*6 "
                                        "A3 FF FF FF 00 00 00 00 5A 0A 00 00 5A 0A 00*10"}));
}

TEST(Link, NetworkEntryFailsAsTheStationHasIt) {
    const struct {
        const char *pcEntry;
        const char *pcReason;
    } astCases[] = {{"ranging-failure", "04"},
                    {"sbc-failure", "05"},
                    {"pkm-failure", "06"},
                    {"registration-failure", "07"},
                    {"satek-failure", "10"}};
    for (const auto &stCase : astCases) {
        ModemBench stBench(strStations + "entry = \"" + stCase.pcEntry +
                           "\"\n[link]\nsync-time = 0\n[radio]\nentry-rssi = -100\n"
                           "entry-cinr = -10\n");
        stBench.Send(2, 1, strSyncWeak);
        stBench.Pass();
        stBench.Messages();
        stBench.Send(2, 2, "00*4");
        stBench.RunUntil(3);
        EXPECT_EQ(stBench.Messages(), Told({WithReason("0C"), WithReason(stCase.pcReason)}));
    }
}

TEST(Link, NSPBasedEntryNeedsAProviderThatTheStationServes) {
    ModemBench stBench(strStations);
    SyncUp(stBench);
    EXPECT_EQ(stBench.Send(2, 4, "01 00 00 00 08 00 00 00 00*260"), 0);
    stBench.RunUntil(3);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("0C"), WithReason("06")}));
    EXPECT_EQ(stBench.Send(2, 4, "01 00 00 00 2C 01 00 00 00*260"), 0);
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("0C"), "2/2: 00 " + strFirstBase +
                                                              "00 00 00 00" + strFirstBaseEnd}));
}

TEST(Link, SyncDownEndsTheSynchronisation) {
    ModemBench stBench(strStations);
    SyncUp(stBench);
    EXPECT_EQ(stBench.Send(3, 1), 0);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Send(3, 1), 0);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 03 00*47", WithReason("0E"), "2/1: 0E 00*47"}));
}

TEST(Link, SyncDownTakesTheLinkDownFirst) {
    ModemBench stBench(strStations + pcLinkUp);
    EXPECT_EQ(stBench.Send(3, 1), 0);
    stBench.Pass();
    EXPECT_EQ(stBench.Messages(), Told({WithReason("13"), "2/1: 03 00*47"}));
}

TEST(Link, DeregistrationKeepsTheSynchronisation) {
    ModemBench stBench(strStations + pcLinkUp);
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.Pass();
    EXPECT_EQ(stBench.Messages(), Told({WithReason("13")}));
    EXPECT_EQ(stBench.Send(3, 2), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"2/2: 0D " + strFirstBase + "00 00 00 00" + strFirstBaseEnd}));
    EXPECT_EQ(stBench.Send(3, 1), 0);
    stBench.Messages();
    EXPECT_EQ(stBench.Send(3, 2), 0);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("0E")}));
}

TEST(Link, ADeregistrationDuringEntryStopsIt) {
    ModemBench stBench(strStations);
    SyncUp(stBench);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(1.3);
    EXPECT_EQ(stBench.Send(3, 2), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("0C"), WithReason("13")}));
}

TEST(Link, SyncUpWithTheLinkUpReportsTheLink) {
    ModemBench stBench(strStations + pcLinkUp);
    EXPECT_EQ(stBench.Send(2, 1, strSyncAny), 0);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(),
              Told({"2/1: 11 00 00 00 " + strFirstSynced,
                    "2/2: 11 " + strFirstBase + "00 00 00 00" + strFirstBaseEnd}));
}

TEST(Link, AStationThatVanishesTakesTheLinkWithIt) {
    ModemBench stBench(strStations + pcLinkUp +
                       "[recovery]\non = false\n"
                       "[[event]]\nat = 2.5\nkind = \"vanish\"\nstation = \"00120A010203\"\n");
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(), Told({"3.00 " + WithReason("18")}));
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("0E")}));
}

TEST(Link, AStationThatFadesAwayEndsTheSynchronisation) {
    ModemBench stBench(strStations + "[[event]]\nat = 2\nkind = \"fade\"\n"
                                     "station = \"00:12:0A:01:02:03\"\nby = 60\nover = 10\n");
    SyncUp(stBench);
    // 39 dB down, at the limit of -97 dBm, after 6.5 of the 10 seconds.
    stBench.RunUntil(8.25);
    EXPECT_EQ(stBench.Messages(), Told({}));
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(), Told({"9.30 2/1: 01 00*47"}));
}

TEST(Link, AStationThatAppearsCanBeSynchronisedTo) {
    ModemBench stBench(strStations + "on-air = false\n[link]\nsync-time = 0\n"
                                     "[[event]]\nat = 2\nkind = \"appear\"\n"
                                     "station = \"00 2B 37 00 00 02\"\n");
    stBench.Send(2, 1, strSyncWeak);
    EXPECT_EQ(stBench.Messages(), Told({"2/1: 01 00*47"}));
    stBench.RunUntil(2);
    stBench.Send(2, 1, strSyncWeak);
    stBench.Pass();
    EXPECT_EQ(stBench.Messages(),
              Told({"2/1: 00 00 00 00 00 00 00 2B 37 00 00 02 11 00 00 00 FF FF FF FF "
                    "00 00 00 00 A3 FF FF FF 00 00 00 00 90 6F 28 00 10 27 00 00 "
                    "01 00 00 00 01 00 00 00"}));
}

TEST(Link, LinkLossComesWithItsReason) {
    ModemBench stBench(strStations + pcLinkUp +
                       "[[event]]\nat = 1\nkind = \"link-loss\"\n"
                       "reason = \"ip-retention-timer-expired\"\n"
                       "[[event]]\nat = 2\nkind = \"link-loss\"\n");
    stBench.RunUntil(3);
    EXPECT_EQ(stBench.TimedMessages(), Told({"1.00 " + WithReason("19")}));
}

TEST(Link, ADeregistrationCommandCarriesItsActionCode) {
    ModemBench stBench(strStations + pcLinkUp +
                       "[[event]]\nat = 1\nkind = \"dreg\"\naction = 3\n"
                       "[[event]]\nat = 2\nkind = \"dreg\"\naction = 4\n");
    stBench.RunUntil(1.5);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    stBench.RunUntil(3);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(
        stBench.Messages(),
        Told({"2/2: 08 00*36 03 00*7", "2/2: 11 " + strFirstBase + "01 00 00 00" + strFirstBaseEnd,
              "2/2: 08 00*36 04 00*7",
              "2/2: 0D " + strFirstBase + "00 00 00 00" + strFirstBaseEnd}));
}

TEST(Link, ADeregistrationCommandToLeaveTheChannelEndsTheSynchronisation) {
    ModemBench stBench(strStations + pcLinkUp + "[[event]]\nat = 1\nkind = \"dreg\"\n");
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Messages(), Told({"2/2: 08 00*44", WithReason("0E")}));
}

TEST(Link, AResetCommandTakesTheModemOffTheChannel) {
    ModemBench stBench(strStations + pcLinkUp + "[[event]]\nat = 1\nkind = \"reset\"\n");
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Messages(), Told({WithReason("09"), WithReason("0E")}));
}

TEST(Link, StartsInTheStateOfTheScenario) {
    const struct {
        const char *pcStart;
        const char *pcReason;
    } astCases[] = {{"", "0E"},
                    {"[start]\nstate = \"synchronised\"\nstation = \"00120A010203\"\n", "0D"},
                    {pcLinkUp, "11"},
                    {"[start]\nstate = \"idle\"\nstation = \"00120A010203\"\n", "0A"},
                    {"[start]\nstate = \"shutdown\"\n", "0F"}};
    for (const auto &stCase : astCases) {
        ModemBench stBench(strStations + stCase.pcStart);
        stBench.RunUntil(0.5);
        EXPECT_EQ(stBench.Messages(), Told({}));
        EXPECT_EQ(stBench.Send(2, 3), 0);
        EXPECT_EQ(stBench.Messages().at(0).substr(0, 7), std::string("2/2: ") + stCase.pcReason);
    }
}

TEST(Link, TrafficFlowsOnlyWhileTheLinkIsUp) {
    ModemBench stBench(strStations + pcLinkUp + pcTwoFlows +
                       "[traffic]\ndownlink-rate = 1200\nuplink-rate = 600\npacket-size = 100\n"
                       "[recovery]\non = false\n[[event]]\nat = 10\nkind = \"link-loss\"\n");
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.TheModem().UserTraffic().Totals().stDownlink.u64Bytes, 6000U);
    stBench.RunUntil(100);
    // Packet 120 is there at the moment of the loss: the frame that begins then still has it. Two
    // frames after it came the uplink's last one would have gone.
    EXPECT_EQ(stBench.TheModem().UserTraffic().Totals().stDownlink.u64Bytes, 12000U);
    EXPECT_EQ(stBench.TheModem().UserTraffic().Totals().stUplink.u64Bytes, 5900U);
    EXPECT_EQ(stBench.TheModem().UserTraffic().Totals().stUplink.u64Packets, 59U);
    EXPECT_EQ(stBench.TheModem().UserTraffic().Totals().stUplink.u64Lost, 1U);
}

} // namespace
