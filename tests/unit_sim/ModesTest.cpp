// Idle mode, shutdown mode, the half mini card and the WiMAX options.
#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

const std::string strIdle =
    std::string(pcFourStations) + "[start]\nstate = \"idle\"\nstation = \"00120A010203\"\n";
const std::string strShutdown = std::string(pcFourStations) + "[start]\nstate = \"shutdown\"\n";
// An idle mode indication of the first station, behind the state word.
const std::string strFirstStation =
    " 00 12 0A 01 02 03 18 FF FF FF 1C 00 00 00 03 00 00 00 03 00 00 00 A1 B2 C3";

TEST(IdleMode, IsEnteredOnRequestAndLeftOnWakeUp) {
    ModemBench stBench(strLinkUp + "[idle]\nplanned-timeout = 300\n");
    EXPECT_EQ(stBench.Send(19, 2), 0);
    EXPECT_EQ(stBench.Send(19, 1), 0);
    EXPECT_EQ(stBench.Send(19, 2), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Send(19, 2), 0);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.Send(19, 4), 0);
    EXPECT_EQ(stBench.Send(19, 2), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Send(19, 2), 0);
    std::vector<std::string> astrTexts = stBench.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 9U);
    EXPECT_EQ(astrTexts[4].substr(0, 12), "1.00 2/2: 0A");
    astrTexts.erase(astrTexts.begin() + 4);
    EXPECT_EQ(astrTexts,
              Told({"0.00 19/2: 00 00 00 00", "0.00 19/2: 01 00 00 00",
                    "0.30 19/1: 2C 01 00 00" + strFirstStation, "1.00 19/2: 02 00 00 00",
                    "1.00 19/4: 01 00 00 00", "1.00 19/2: 03 00 00 00",
                    "1.30 19/1: 00 00 00 00" + strFirstStation, "2.00 19/2: 00 00 00 00"}));
}

TEST(IdleMode, ARequestWithoutALinkReportsTheStatus) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(19, 1), 0);
    EXPECT_EQ(stBench.Send(19, 4), 0);
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.Messages(), Told({"19/2: 00*4", "19/4: 00*4"}));
}

TEST(IdleMode, ARequestInIdleModeRepeatsTheIndication) {
    ModemBench stBench(strIdle);
    EXPECT_EQ(stBench.Send(19, 1), 0);
    EXPECT_EQ(stBench.Messages(), Told({"19/1: 00 10 00 00" + strFirstStation}));
}

TEST(IdleMode, TheInactivityTimerTakesTheModemThere) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(19, 3, "0A 00 00 00"), 0);
    stBench.RunUntil(8);
    // Any request is activity.
    EXPECT_EQ(stBench.Send(29, 3, "00*40"), 0);
    stBench.RunUntil(17.9);
    EXPECT_EQ(stBench.Messages().size(), 2U);
    stBench.RunUntil(30);
    EXPECT_EQ(stBench.TimedMessages(), Told({"18.30 19/1: 00 10 00 00" + strFirstStation}));
}

TEST(IdleMode, TheInactivityTimerCanBeSwitchedOffAndRefusesNonsense) {
    ModemBench stBench(strLinkUp + "[idle]\ninactivity-timer = 5\n");
    EXPECT_EQ(stBench.Send(19, 3, "FF FF FF FF"), 0);
    EXPECT_EQ(stBench.Send(19, 3, "00*4"), 0);
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.Messages(), Told({"19/3: 01 00 00 00", "19/3: 00 00 00 00"}));
}

TEST(IdleMode, UserTrafficCanKeepTheModemAwake) {
    ModemBench stBench(strLinkUp + "[idle]\ninactivity-timer = 5\n[traffic]\nkeeps-awake = true\n");
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(IdleMode, PagingEndsItAtTheNextPagingCycle) {
    ModemBench stBench(strIdle + "[options]\npaging-cycle = 4\n"
                                 "[[event]]\nat = 5\nkind = \"paging\"\n");
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(), Told({"8.30 19/1: 00 00 00 00" + strFirstStation}));
}

TEST(IdleMode, GoesOnAfterItsPlannedTimeoutWithALocationUpdate) {
    ModemBench stBench(strIdle + "[idle]\nplanned-timeout = 60\n");
    stBench.RunUntil(100);
    EXPECT_EQ(stBench.TimedMessages(), Told({"60.02 19/1: 3C 00 00 00" + strFirstStation}));
    EXPECT_EQ(stBench.TheModem().TheLink().State(), LinkState::Idle);
}

TEST(IdleMode, FailsWhenAllStationsAreGone) {
    ModemBench stBench(strIdle + "[[event]]\nat = 5.5\nkind = \"vanish\"\n"
                                 "station = \"00120A010203\"\n"
                                 "[[event]]\nat = 5.5\nkind = \"vanish\"\n"
                                 "station = \"00120A010204\"\n");
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(), Told({"6.00 2/2: 16 00*44"}));
}

TEST(IdleMode, IsEnteredOnTheStationsOrder) {
    ModemBench stBench(strLinkUp + "[[event]]\nat = 1\nkind = \"dreg\"\naction = 5\n");
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"1.00 2/2: 08 00*36 05 00*7", "1.30 19/1: 00 10 00 00" + strFirstStation}));
}

TEST(Shutdown, ReportsItselfAndAnswersTheStatusWhenItIsThere) {
    ModemBench stBench(strLinkUp);
    EXPECT_EQ(stBench.Send(30, 5), 0);
    EXPECT_EQ(stBench.Send(30, 1), 0);
    EXPECT_EQ(stBench.Send(30, 5), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.Send(30, 1), 0);
    EXPECT_EQ(stBench.Send(30, 5), 0);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.00 30/5: 01 00 00 00", "0.00 2/2: 0F 00*44", "0.50 30/1: 00 00 00 00",
                    "0.50 30/5: 00 00 00 00", "2.00 30/1: 00 00 00 00", "2.00 30/5: 00 00 00 00",
                    "2.00 2/2: 0F 00*44"}));
}

TEST(Shutdown, FromIdleModeUpdatesTheLocation) {
    ModemBench stBench(strIdle);
    EXPECT_EQ(stBench.Send(30, 1), 0);
    stBench.RunUntil(2);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.00 2/2: 17 00*44", "0.50 30/1: 00 00 00 00"}));
}

TEST(Shutdown, AnswersTheSynchronisationThatItEnds) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    EXPECT_EQ(stBench.Send(30, 1), 0);
    stBench.RunUntil(5);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.00 2/1: 0F 00*47", "0.50 30/1: 00 00 00 00"}));
}

TEST(Shutdown, IsRefusedDuringNetworkEntry) {
    ModemBench stBench(std::string(pcFourStations) +
                       "[start]\nstate = \"synchronised\"\nstation = \"00120A010203\"\n");
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    EXPECT_EQ(stBench.Send(30, 1), 0);
    EXPECT_EQ(stBench.Messages(), Told({"2/2: 0C 00*44", "30/1: 01 00 00 00"}));
}

TEST(Shutdown, LooksAroundPeriodically) {
    ModemBench stBench(strShutdown + "[shutdown]\nwake-period = 30\n"
                                     "[radio]\nsensitivity = -67\n");
    stBench.RunUntil(70);
    const std::string strIndication = "30/3: 02 00 00 00 01 00 00 00"
                                      " 01 00 00 12 0A 01 02 03 03 00 00 00 6C 7B 27 00 10 27 00 00"
                                      " C6 FF FF FF 1C 00 00 00 05 00 00 00 02 00 00 00"
                                      " 00 00 00 2B 37 00 00 01 40 00 00 00 40 AC 27 00 88 13 00 00"
                                      " BE FF FF FF 16 00 00 00 0C 00 00 00 03 00 00 00";
    EXPECT_EQ(stBench.TimedMessages(), Told({"30.00 " + strIndication, "60.00 " + strIndication}));
}

TEST(Shutdown, EndsCompletelyByEvent) {
    ModemBench stBench(strShutdown + "[[event]]\nat = 3\nkind = \"complete-wake-up\"\n");
    stBench.RunUntil(4);
    EXPECT_EQ(stBench.Send(2, 3), 0);
    EXPECT_EQ(stBench.TimedMessages(), Told({"3.00 30/4:", "4.00 2/2: 0E 00*44"}));
}

TEST(Shutdown, EndsWhenTheClientWantsToSynchroniseOrToEnter) {
    ModemBench stSync(strShutdown);
    EXPECT_EQ(stSync.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    stSync.RunUntil(1);
    const std::vector<std::string> astrTexts = stSync.TimedMessages();
    ASSERT_EQ(astrTexts.size(), 2U);
    EXPECT_EQ(astrTexts[0], "0.00 30/4:");
    EXPECT_EQ(astrTexts[1].substr(0, 21), "0.32 2/1: 00 00 00 00");

    ModemBench stEntry(strShutdown);
    EXPECT_EQ(stEntry.Send(2, 2, "00*4"), 0);
    EXPECT_EQ(stEntry.Messages(), Told({"30/4:", "2/2: 0E 00*44"}));
}

TEST(Shutdown, AnswersWhatItCannotDo) {
    ModemBench stBench(strShutdown);
    EXPECT_EQ(stBench.Send(1, 1, "00*8 00*20 00*12 00*104"), 0);
    EXPECT_EQ(stBench.Send(1, 4, "00*340"), 0);
    EXPECT_EQ(stBench.Send(3, 1), 0);
    EXPECT_EQ(stBench.Send(3, 2), 0);
    EXPECT_EQ(stBench.Send(19, 1), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/1: 00*4 02 00 00 00", "1/4: 03 01 00 00 00 00*1400",
                                        "2/1: 0F 00*47", "2/2: 0F 00*44", "19/2: 00*4"}));
}

TEST(Shutdown, TheFirmwareCanAskForIt) {
    ModemBench stBench(strLinkUp + "[[event]]\nat = 1\nkind = \"firmware-shutdown\"\n");
    stBench.RunUntil(4);
    EXPECT_EQ(stBench.TimedMessages(), Told({"1.00 30/2:"}));
}

TEST(HalfMiniCard, WakesUpAfterThreeExchanges) {
    ModemBench stBench("");
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(stBench.Send(36, 1), 0);
    }
    EXPECT_EQ(stBench.Messages(), Told({"36/2:", "36/2:", "36/2:", "36/3:", "36/3:"}));
}

TEST(HalfMiniCard, WakesUpAfterItsTimeOrByEventAndGoesDownAgain) {
    ModemBench stBench("[half-mini-card]\nexchanges = 0\nwake-after = 2.5\n"
                       "[[event]]\nat = 10\nkind = \"half-mini-card-shutdown\"\n"
                       "[[event]]\nat = 11.5\nkind = \"half-mini-card-wake-up\"\n");
    for (const double fTime : {0.0, 1.0, 2.0, 3.0, 11.0, 12.0}) {
        stBench.RunUntil(fTime);
        EXPECT_EQ(stBench.Send(36, 1), 0);
    }
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.00 36/2:", "1.00 36/2:", "2.00 36/2:", "2.50 36/3:", "3.00 36/3:",
                    "11.00 36/2:", "11.50 36/3:", "12.00 36/3:"}));
}

TEST(Options, AreStoredAndReported) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(29, 3, "00*40"), 0);
    EXPECT_EQ(stBench.Send(29, 1, "20 07 00 00 00"), 0);
    EXPECT_EQ(stBench.Send(29, 3, "00*40"), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"29/3: 00*4 3B 00*3 00*20 01 00 00 00 00*8", "29/1: 20 00 00 00 00",
                    "29/3: 00*4 3B 00*3 00*20 07 00 00 00 00*8"}));
}

TEST(Options, SeveralAreSetAtOnce) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(29, 2, "00*4 21 00*3 09 00 00 00 00*16 05 00 00 00 00*8"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"29/2: 00*4 21 00*3 09 00 00 00 00*16 05 00 00 00 00*8"}));
}

TEST(Options, OneBadValueRefusesAllOfThem) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(29, 2, "00*4 21 00*3 09 00 00 00 00*16 10 00 00 00 00*8"), 0);
    EXPECT_EQ(stBench.Send(29, 2, "00*4 04 00*3 00*32"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"29/2: 02 00 00 00 21 00*3 00*20 01 00 00 00 00*8",
                                        "29/2: 01 00 00 00 04 00*3 00*20 01 00 00 00 00*8"}));
}

TEST(Options, NoOptionAndValuesOutOfRangeAreRefused) {
    ModemBench stBench("");
    for (const char *pcOption : {"00 02 00 00 00", "04 00*4", "03 00*4"}) {
        EXPECT_EQ(stBench.Send(29, 1, pcOption), 0);
        EXPECT_EQ(stBench.Messages(),
                  Told({std::string("29/1: ") + std::string(pcOption, 2) + " 01 00 00 00"}));
    }
    for (const char *pcOption :
         {"01 10 00 00 00", "02 02 00 00 00", "08 04 00 00 00", "10 03 00 00 00", "20 10 00*3"}) {
        EXPECT_EQ(stBench.Send(29, 1, pcOption), 0);
        EXPECT_EQ(stBench.Messages(),
                  Told({std::string("29/1: ") + std::string(pcOption, 2) + " 02 00 00 00"}));
    }
}

} // namespace
