#include <gtest/gtest.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

// The records of the four stations.
const std::string strFirst = " 01 00 00 12 0A 01 02 03 03 00 00 00 6C 7B 27 00 10 27 00 00 "
                             "C6 FF FF FF 1C 00 00 00 05 00 00 00 02 00 00 00";
const std::string strSecond = " 00 00 00 12 0A 01 02 04 23 00 00 00 6C 7B 27 00 10 27 00 00 "
                              "B9 FF FF FF 10 00 00 00 01 00 00 00 01 00 00 00";
const std::string strThird = " 00 00 00 2B 37 00 00 01 40 00 00 00 40 AC 27 00 88 13 00 00 "
                             "BE FF FF FF 16 00 00 00 0C 00 00 00 03 00 00 00";
const std::string strWeak = " 00 00 00 2B 37 00 00 02 11 00 00 00 90 6F 28 00 10 27 00 00 "
                            "A3 FF FF FF FF FF FF FF 01 00 00 00 01 00 00 00";

const std::string strNoRange = " 00*12";
const std::string strNoBandwidths = " 00*20";

// Duration and report type.
const std::string strByStation = "00*4 01 00 00 00";
const std::string strConsolidated = "00*4 02 00 00 00";

// Three frequencies, 2587.5, 2600 and 2650 MHz, the first one twice.
const std::string strList = " 04 00 00 00 6C 7B 27 00 40 AC 27 00 6C 7B 27 00 90 6F 28 00 00*84";
const std::string strBandwidths10And5 = " 02 00 00 00 10 27 00 00 88 13 00 00 00*8";

TEST(Search, ReportsStationByStationThenComplete) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1, strByStation + strBandwidths10And5 + strNoRange + strList), 0);
    stBench.RunUntil(10);
    // Six pairs of 50 ms each: 2587.5/10, 2587.5/5, 2600/10, 2600/5, 2650/10, 2650/5.
    EXPECT_EQ(
        stBench.TimedMessages(),
        Told({"0.05 1/1: 02 00 00 00 00 00 00 00" + strFirst + strSecond,
              "0.20 1/1: 03 00 00 00 00 00 00 00" + strFirst + strSecond + strThird,
              "0.25 1/1: 04 00 00 00 00 00 00 00" + strFirst + strSecond + strThird + strWeak,
              "0.30 1/1: 04 00 00 00 01 00 00 00" + strFirst + strSecond + strThird + strWeak}));
}

TEST(Search, ReportsAConsolidatedListOnce) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1, strConsolidated + strBandwidths10And5 + strNoRange + strList), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.30 1/1: 04 00 00 00 01 00 00 00" + strFirst +
                                             strSecond + strThird + strWeak}));
}

TEST(Search, LooksOnlyAtTheBandwidthsAskedFor) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(
                  1, 1, strConsolidated + " 01 00 00 00 88 13 00 00 00*12" + strNoRange + strList),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.15 1/1: 01 00 00 00 01 00 00 00" + strThird}));
}

TEST(Search, LooksAtAllStandardBandwidthsWhenNoneIsAskedFor) {
    ModemBench stBench(strStations + "[search]\ntime-per-channel = 1\n");
    EXPECT_EQ(stBench.Send(1, 1,
                           strConsolidated + strNoBandwidths + strNoRange +
                               " 01 00 00 00 40 AC 27 00 00*96"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"4.00 1/1: 01 00 00 00 01 00 00 00" + strThird}));
}

TEST(Search, WalksARangeInItsSteps) {
    // 2587 to 2600 MHz in steps of 500 kHz: 27 frequencies, the second is the first
    // station's, the last one the third station's.
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1,
                           strByStation + strBandwidths10And5 +
                               " 78 79 27 00 F4 01 00 00 40 AC 27 00 00*104"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.15 1/1: 02 00 00 00 00 00 00 00" + strFirst + strSecond,
                    "2.70 1/1: 03 00 00 00 00 00 00 00" + strFirst + strSecond + strThird,
                    "2.70 1/1: 03 00 00 00 01 00 00 00" + strFirst + strSecond + strThird}));
}

TEST(Search, ARangeThatStepsOverAStationMissesIt) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1,
                           strConsolidated + strBandwidths10And5 +
                               " 78 79 27 00 E8 03 00 00 40 AC 27 00 00*104"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({"1/1: 01 00 00 00 01 00 00 00" + strThird}));
}

TEST(Search, LooksAtRangeAndListOfOneRequest) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1,
                           strConsolidated + strBandwidths10And5 +
                               " 6C 7B 27 00 64 00 00 00 6C 7B 27 00"
                               " 02 00 00 00 6C 7B 27 00 90 6F 28 00 00*92"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.20 1/1: 03 00 00 00 01 00 00 00" + strFirst + strSecond + strWeak}));
}

TEST(Search, TheWidestRangeIsAnsweredWithinItsDuration) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1,
                           "05 00 00 00 01 00 00 00" + strNoBandwidths +
                               " 01 00 00 00 01 00 00 00 FF FF FF FF 00*104"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"5.00 1/1: 00*4 02 00 00 00"}));
}

TEST(Search, TimesOutWithWhatWasFound) {
    ModemBench stBench(strStations + "[search]\ntime-per-channel = 0.4\n");
    EXPECT_EQ(
        stBench.Send(1, 1, "01 00 00 00 02 00 00 00" + strBandwidths10And5 + strNoRange + strList),
        0);
    stBench.RunUntil(0.6);
    EXPECT_EQ(stBench.Send(1, 3), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Send(1, 3), 0);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.60 1/1: 02 00 00 00 00 00 00 00" + strFirst + strSecond,
                    "1.00 1/1: 02 00 00 00 02 00 00 00" + strFirst + strSecond,
                    "10.00 1/1: 02 00 00 00 02 00 00 00" + strFirst + strSecond}));
}

TEST(Search, AnAbortEndsItWithWhatWasFound) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1, strConsolidated + strBandwidths10And5 + strNoRange + strList), 0);
    stBench.RunUntil(0.1);
    EXPECT_EQ(stBench.Send(1, 2), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.10 1/1: 02 00 00 00 02 00 00 00" + strFirst + strSecond}));
}

TEST(Search, AnAbortWithoutASearchRepeatsTheLastResults) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 2), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/1: 00*4 01 00 00 00"}));
}

TEST(Search, AQueryBeforeAnySearchHasNoStations) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 3), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/1: 00*4 01 00 00 00"}));
}

TEST(Search, ANewSearchEndsTheOneBefore) {
    ModemBench stBench(strStations);
    const std::string strRequest = strConsolidated + strBandwidths10And5 + strNoRange + strList;
    EXPECT_EQ(stBench.Send(1, 1, strRequest), 0);
    EXPECT_EQ(stBench.Send(1, 1, strRequest), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.00 1/1: 00*4 02 00 00 00", "0.30 1/1: 04 00 00 00 01 00 00 00" + strFirst +
                                                      strSecond + strThird + strWeak}));
}

TEST(Search, AskingForNothingIsCompleteAtOnce) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1, strByStation + strNoBandwidths + strNoRange + " 00*104"), 0);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.00 1/1: 00*4 01 00 00 00"}));
}

TEST(Search, CountsThatTheRequestCannotHoldAreRefused) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1, strByStation + " 05 00 00 00 00*28 00*104"), -6);
    EXPECT_EQ(stBench.Send(1, 1, strByStation + " 00*32 1A 00 00 00 00*100"), -6);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(Search, RespectsTheThresholdsThatWereSet) {
    ModemBench stBench(strStations);
    // RSSI at least -70 dBm, CINR at least 23 dB.
    EXPECT_EQ(stBench.Send(13, 5, "BA FF FF FF 17 00 00 00"), 0);
    EXPECT_EQ(stBench.Send(1, 1, strConsolidated + strBandwidths10And5 + strNoRange + strList), 0);
    stBench.RunUntil(1);
    EXPECT_EQ(stBench.Messages(),
              Told({"13/5: BA FF FF FF 17 00 00 00", "1/1: 01 00 00 00 01 00 00 00" + strFirst}));
}

TEST(Search, SynchronisingEndsIt) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 1, strByStation + strBandwidths10And5 + strNoRange + strList), 0);
    EXPECT_EQ(stBench.Send(2, 1, "40 AC 27 00 88 13 00 00 FF 00*55"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/1: 00*4 02 00 00 00"}));
    EXPECT_EQ(stBench.Send(1, 1, strByStation + strBandwidths10And5 + strNoRange + strList), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/1: 00*4 02 00 00 00"}));
}

TEST(Search, LowPowerScanModesAreConfirmed) {
    ModemBench stBench(strStations);
    for (const char *pcMode : {"64", "65", "66", "67", "68"}) {
        EXPECT_EQ(stBench.Send(1, 6, std::string(pcMode) + " 00*12"), 0);
        EXPECT_EQ(stBench.Messages(), Told({std::string("1/6: 01 00 00 00 ") + pcMode + " 00*12"}));
    }
    EXPECT_EQ(stBench.Send(1, 6, "69 00*12"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/6: 00*4 69 00*12"}));
}

// NSP search.

// Of a station that announces two providers.
const std::string strFirstNSPs = " 00*2 00 12 0A 01 02 03 05 00 00 00 02 00 00 00 02 00 00 00 "
                                 "07 00 00 00 05 00 00 00 53 65 76 65 6E 00*123 "
                                 "2C 01 00 00 0D 00 00 00 "
                                 "54 68 72 65 65 20 48 75 6E 64 72 65 64 00*115 00*1088 "
                                 "03 00 00 00 6C 7B 27 00 10 27 00 00 C6 FF FF FF 1C 00 00 00";
const std::string strThirdEmpty = " 00*2 00 2B 37 00 00 01 0C 00 00 00 03 00 00 00 00*4 00*1360 "
                                  "40 00 00 00 40 AC 27 00 88 13 00 00 BE FF FF FF 16 00 00 00";

const std::string strNoEntries = " 00*320";
const std::string strEntryFirst = " 6C 7B 27 00 10 27 00 00 03 00 00 00";
const std::string strEntryThird = " 40 AC 27 00 88 13 00 00 40 00 00 00";

TEST(NSPSearch, AsksEveryStationOfTheList) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4,
                           "00*4 00*4 02 00 00 00 00*4 00*4" + strEntryFirst + " 00*4" +
                               strEntryThird + " 00*4 00*288"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(), Told({"0.50 1/4: 00 00*4" + strFirstNSPs,
                                             "1.00 1/4: 02 01 00 00 00" + strThirdEmpty}));
}

TEST(NSPSearch, WithoutAListAsksTheStationsOfTheProvider) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4, "00*4 37 2B 00 00 00*12" + strNoEntries), 0);
    stBench.RunUntil(10);
    const std::vector<std::string> astrTexts = stBench.Messages();
    ASSERT_EQ(astrTexts.size(), 2U);
    EXPECT_EQ(astrTexts[0], Told({"1/4: 02 00*4" + strThirdEmpty})[0]);
    // The weak station, last.
    EXPECT_EQ(astrTexts[1],
              Told({"1/4: 00 01 00 00 00 00*2 00 2B 37 00 00 02 01 00 00 00 01 00 00 00 00*4 "
                    "00*1360 11 00 00 00 90 6F 28 00 10 27 00 00 A3 FF FF FF FF FF FF FF"})[0]);
}

TEST(NSPSearch, IsNotNeededWhileTheChangeCountsStandStill) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4,
                           "00*4 00*4 01 00 00 00 02 00 00 00 00*4" + strEntryFirst +
                               " 05 00 00 00 00*304"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(),
              Told({"1/4: 01 01 00 00 00 00*2 00 12 0A 01 02 03 05 00 00 00 02 00 00 00 00*4 "
                    "00*1360 03 00 00 00 6C 7B 27 00 10 27 00 00 C6 FF FF FF 1C 00 00 00"}));
    // Another DCD change count: something may have changed.
    EXPECT_EQ(stBench.Send(1, 4,
                           "00*4 00*4 01 00 00 00 02 00 00 00 00*4" + strEntryFirst +
                               " 04 00 00 00 00*304"),
              0);
    stBench.RunUntil(20);
    EXPECT_EQ(stBench.Messages(), Told({"1/4: 00 01 00 00 00" + strFirstNSPs}));
}

TEST(NSPSearch, FailsWhenNothingIsFound) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4, "00*4 37 2B 00 00 01 00 00 00 00*8" + strEntryFirst + " 00*308"),
              0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({"1/4: 03 01 00 00 00 00*1400"}));
}

TEST(NSPSearch, CanBeAborted) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4, "00*20" + strNoEntries), 0);
    EXPECT_EQ(stBench.Send(1, 2), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({"1/4: 04 01 00 00 00 00*1400"}));
}

TEST(NSPSearch, EndsWhenItsDurationIsOver) {
    ModemBench stBench(strStations + "[search]\ntime-per-nsp-discovery = 0.7\n");
    EXPECT_EQ(stBench.Send(1, 4, "01 00 00 00 00*16" + strNoEntries), 0);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.TimedMessages(),
              Told({"0.70 1/4: 00 00*4" + strFirstNSPs, "1.00 1/4: 05 01 00 00 00 00*1400"}));
}

TEST(NSPSearch, MoreThanTwentyStationsAreRefused) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4, "00*8 15 00 00 00 00*8" + strNoEntries), -6);
    stBench.RunUntil(10);
    EXPECT_EQ(stBench.Messages(), Told({}));
}

TEST(NSPSearch, EndsANetworkSearchAndIsEndedByOne) {
    ModemBench stBench(strStations);
    EXPECT_EQ(stBench.Send(1, 4, "00*20" + strNoEntries), 0);
    EXPECT_EQ(stBench.Send(1, 1, strConsolidated + strBandwidths10And5 + strNoRange + strList), 0);
    EXPECT_EQ(stBench.Send(1, 4, "00*20" + strNoEntries), 0);
    EXPECT_EQ(stBench.Messages(), Told({"1/4: 04 01 00 00 00 00*1400", "1/1: 00*4 02 00 00 00"}));
}

} // namespace
