#include "NetworkSearch.h"

#include "Console.h"
#include "LinkStatus.h"
#include "Message.h"
#include "TestConsole.h"

namespace {

const std::string strPlan2500 =
    "20:4 2520000:4 2530000:4 2540000:4 2627000:4 2575000:4 2587500:4 2600000:4 2580000:4 "
    "2585000:4 2590000:4 2650000:4 2662500:4 2660000:4 2670000:4 2562500:4 2553000:4 2587500:4 "
    "2563000:4 2573000:4 2583000:4 0:4*5";
const std::string strPlan3500 =
    "22:4 3413500:4 3420500:4 3427500:4 3441500:4 3448500:4 3455500:4 3462500:4 3469500:4 "
    "3476500:4 3490500:4 3500000:4 3513500:4 3520500:4 3527500:4 3541500:4 3548500:4 3555500:4 "
    "3562500:4 3569500:4 3576500:4 3586500:4 3590500:4 0:4*3";
const std::string strAllBandwidths = "4:4 10000:4 8750:4 7000:4 5000:4 ";

class NetworkSearchTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        Deliver("1/4 | 00*1405");
        Deliver("1/1 | 20:4 1:4 00*720");
        Deliver("1/1 | 0:4 1:4");
    }
    static void Deliver(const std::string &strMessage) {
        Report(NetEntrySearchResponse, strMessage);
    }
    // What a choice of the search menu sends when these words are typed.
    static std::vector<std::string> SentFor(std::string_view strTyped) {
        FakeDevice::Reset();
        Type(strTyped);
        NetworkSearchOptions();
        return FakeDevice::Sent();
    }
    static std::vector<std::string> Sends(std::string_view strMessage) {
        return {Recorded(strMessage)};
    }
};

TEST_F(NetworkSearchTest, TheLowerBandIsSearchedAtItsTwentyFrequencies) {
    EXPECT_EQ(SentFor("1  30 2 0\n"),
              Sends("1/1 | 30:4 2:4 " + strAllBandwidths + "00*12 " + strPlan2500));
    EXPECT_EQ(Recorded("1/1 | 30:4 2:4 " + strAllBandwidths + "00*12 " + strPlan2500),
              Recorded("01 00 01 00 1e 00*3 02 00*3 04 00*3 10 27 00 00 2e 22 00 00 58 1b 00 00 "
                       "88 13 00 00 00*12 14 00*3 c0 73 26 00 d0 9a 26 00 e0 c1 26 00 b8 15 28 00 "
                       "98 4a 27 00 6c 7b 27 00 40 ac 27 00 20 5e 27 00 a8 71 27 00 30 85 27 00 "
                       "90 6f 28 00 64 a0 28 00 a0 96 28 00 b0 bd 28 00 c4 19 27 00 a8 f4 26 00 "
                       "6c 7b 27 00 b8 1b 27 00 c8 42 27 00 d8 69 27 00 00*20"));
}

TEST_F(NetworkSearchTest, TheUpperBandIsSearchedAtItsTwentyTwoFrequencies) {
    EXPECT_EQ(SentFor("2  0 1 no\n"),
              Sends("1/1 | 0:4 1:4 " + strAllBandwidths + "00*12 " + strPlan3500));
}

TEST_F(NetworkSearchTest, BandwidthsAreTypedInMHz) {
    EXPECT_EQ(SentFor("1  5 1 1  2 10 7\n"),
              Sends("1/1 | 5:4 1:4 2:4 10000:4 7000:4 0:4*2 00*12 " + strPlan2500));
    EXPECT_EQ(SentFor("2  5 1 1  1 -3\n"),
              Sends("1/1 | 5:4 1:4 1:4 -3000:4 0:4*3 00*12 " + strPlan3500));
}

TEST_F(NetworkSearchTest, NoMoreThanFourBandwidthsAreAskedFor) {
    EXPECT_EQ(SentFor("1  5 1 1  9 10 7 5 3\n"),
              Sends("1/1 | 5:4 1:4 4:4 10000:4 7000:4 5000:4 3000:4 00*12 " + strPlan2500));
    EXPECT_EQ(SentFor("2  5 1 1  2147483647 10 7 5 3\n"),
              Sends("1/1 | 5:4 1:4 4:4 10000:4 7000:4 5000:4 3000:4 00*12 " + strPlan3500));
    EXPECT_EQ(SentFor("2  5 1 1  -1\n"), Sends("1/1 | 5:4 1:4 0:4 0:4*4 00*12 " + strPlan3500));
    EXPECT_EQ(SentFor("2  5 1 1  none\n"), Sends("1/1 | 5:4 1:4 0:4 0:4*4 00*12 " + strPlan3500));
}

TEST_F(NetworkSearchTest, WhatABandwidthLeavesUnreadIsForTheNext) {
    // Reading "8.75" stops at the point, and ".75" is no number for anybody.
    EXPECT_EQ(SentFor("2  5 1 1  2 8.75 7\n"),
              Sends("1/1 | 5:4 1:4 2:4 8000:4 0:4*3 00*12 " + strPlan3500));
    EXPECT_EQ(Unread(), ".75 7\n");
}

TEST_F(NetworkSearchTest, ANegativeDurationIsAskedForAgain) {
    EXPECT_EQ(SentFor("2  -5 abc -2147483648 0 1 0\n"),
              Sends("1/1 | 0:4 1:4 " + strAllBandwidths + "00*12 " + strPlan3500));
}

TEST_F(NetworkSearchTest, WhatFollowsTheDurationIsForTheReportType) {
    EXPECT_EQ(SentFor("2  12s 0\n"),
              Sends("1/1 | 12:4 0:4 " + strAllBandwidths + "00*12 " + strPlan3500));
}

TEST_F(NetworkSearchTest, TheReportTypeIsSentAsTyped) {
    EXPECT_EQ(SentFor("2  0 -9 0\n"),
              Sends("1/1 | 0:4 -9:4 " + strAllBandwidths + "00*12 " + strPlan3500));
}

TEST_F(NetworkSearchTest, AFrequencyBandHasStartStepAndEnd) {
    EXPECT_EQ(SentFor("3  10 1  2530.0 2540.0 500  0 0\n"),
              Sends("1/1 | 10:4 1:4 00*20 2530000:4 500:4 2540000:4 00*104"));
}

TEST_F(NetworkSearchTest, AFrequencyBandMayHaveBandwidthsAndDiscreteFrequencies) {
    EXPECT_EQ(SentFor("3  10 1  2530.0 2540.0 500  1 3 5 10 7  1 2 2587.45 3576.5\n"),
              Sends("1/1 | 10:4 1:4 3:4 5000:4 10000:4 7000:4 0:4 2530000:4 500:4 2540000:4 "
                    "2:4 2587450:4 3576500:4 0:4*23"));
}

TEST_F(NetworkSearchTest, NoMoreThanTwentyFiveFrequenciesAreAskedFor) {
    std::string strTyped = "3  10 1  0 0 0  0  1 30";
    std::string strFrequencies;
    for (int i = 1; i <= 25; ++i) {
        strTyped += " " + std::to_string(2500 + i) + ".5";
        strFrequencies += " " + std::to_string(2500 + i) + "500:4";
    }
    EXPECT_EQ(SentFor(strTyped + "\n"), Sends("1/1 | 10:4 1:4 00*32 25:4" + strFrequencies));
    EXPECT_EQ(SentFor("3  10 1  0 0 0  0  1 -1\n"), Sends("1/1 | 10:4 1:4 00*136"));
    EXPECT_EQ(Unread(), "\n");
}

TEST_F(NetworkSearchTest, FrequenciesAreSinglePrecisionNumbersOfKHz) {
    EXPECT_EQ(SentFor("3  0 1  2587.45 3590.05 0 0  1 8"
                      " 2670 2652.5 2500.001 4294967.0 4294968 -1 nan 1e30\n"),
              Sends("1/1 | 0:4 1:4 00*20 2587450:4 0:4 3590050:4 "
                    "8:4 2670000:4 2652500:4 2500001:4 4294967040:4 0:4 0:4 0:4 0:4 0:4*17"));
}

TEST_F(NetworkSearchTest, AFrequencyThatIsNoNumberIsZero) {
    EXPECT_EQ(SentFor("3  0 1  abc  0\n"), Sends("1/1 | 0:4 1:4 00*136"));
}

TEST_F(NetworkSearchTest, TheMenuReturnsTheSendResultOrMinusOne) {
    FakeDevice::SetSendResult(-300);
    int32_t iResult = 0;
    PrintedBy([&] { iResult = NetworkSearchOptions(); }, "2 0 1 0\n");
    EXPECT_EQ(iResult, -300);
    PrintedBy([&] { iResult = NetworkSearchOptions(); }, "4 0 0 0 0\n");
    EXPECT_EQ(iResult, -300);
    FakeDevice::Reset();
    for (const char *pcTyped : {"-1\n", "0\n", "5\n", "abc\n"}) {
        iResult = 0;
        PrintedBy([&] { iResult = NetworkSearchOptions(); }, pcTyped);
        EXPECT_EQ(iResult, -1);
    }
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

TEST_F(NetworkSearchTest, AnswersAreDroppedUntilASearchIsBuilt) {
    gbInsideSubMenu = 1;
    Type("3  10 1  2530.0 2540.0 500  0\n");
    EndInput();
    EXPECT_THROW(NetworkSearchOptions(), ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 1);
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

// Search by network service provider.

const std::string strTwoStations =
    "00 00 00 12 c1 00 00 01 12:4 2587500:4 10000:4 -67:4 21:4 3:4 4:4 "
    "00 00 00 12 c2 00 00 02 13:4 3590500:4 7000:4 -70:4 20:4 5:4 6:4";
const std::string strDiscovery = "00 1:4 00*2 00 12 c1 00 00 01 77:4 88:4 00*1384";

TEST_F(NetworkSearchTest, NothingIsKnownBeforeTheFirstSearch) {
    g_u32NAPID = 0;
    EXPECT_EQ(SentFor("4  0 0 0 0\n"), Sends("1/4 | 00*340"));
}

TEST_F(NetworkSearchTest, ASearchForNSPsBeginsWhereTheLastSearchEnded) {
    Deliver("1/1 | 2:4 1:4 " + strTwoStations);
    EXPECT_EQ(SentFor("4  0 0 0 0  0 0 0 0  0 0 0 0\n"),
              Sends("1/4 | 0:4 4802:4 2:4 0:4 00*4 2587500:4 10000:4 12:4 0:4 "
                    "3590500:4 7000:4 13:4 0:4 00*288"));
}

TEST_F(NetworkSearchTest, ChangeCountsComeFromTheLastDiscovery) {
    Deliver("1/1 | 2:4 1:4 " + strTwoStations);
    Deliver("1/4 | " + strDiscovery);
    EXPECT_EQ(SentFor("4  0 0 0 0  0 0 0 0  0 0 0 0\n"),
              Sends("1/4 | 0:4 4802:4 2:4 88:4 00*4 2587500:4 10000:4 12:4 77:4 "
                    "3590500:4 7000:4 13:4 77:4 00*288"));
}

TEST_F(NetworkSearchTest, EveryDefaultCanBeReplaced) {
    Deliver("1/1 | 2:4 1:4 " + strTwoStations);
    Deliver("1/4 | " + strDiscovery);
    EXPECT_EQ(SentFor("4  1 60  1 5000  1 9  1 1   1 8750  1 2600000  1 10  1 255\n"),
              Sends("1/4 | 60:4 5000:4 1:4 9:4 00*4 2600000:4 8750:4 255:4 10:4 00*304"));
    EXPECT_EQ(SentFor("4  1 -60  1 -5000  1 -9  1 1   1 -8750  1 -2600000  1 -10  1 -255\n"),
              Sends("1/4 | -60:4 -5000:4 1:4 -9:4 00*4 -2600000:4 -8750:4 -255:4 -10:4 00*304"));
}

TEST_F(NetworkSearchTest, DefaultsAreSignedAsTheyAreShown) {
    Deliver("1/1 | 1:4 1:4 00 ff*7 -12:4 -2587500:4 -10000:4 00*16");
    Deliver("1/4 | 00 1:4 00*2 00*6 -77:4 -88:4 00*1384");
    const std::string strShown = PrintedBy([] { NetworkSearchOptions(); }, "4  0 0 0 0  0 0 0 0\n");
    for (const char *pcLine :
         {"\nNSP change count is -88 : \n", "stPhyInfo[0].u32BW = -10000 (in KHz)",
          "stPhyInfo[0].u32CF = -2587500 KHz", "stPhyInfo[0].u32DCDChangeCount = -77",
          "stPhyInfo[0].u32Pid = -12 "}) {
        EXPECT_NE(strShown.find(pcLine), std::string::npos) << pcLine;
    }
}

TEST_F(NetworkSearchTest, ADefaultStandsWhenWhatReplacesItIsNoNumber) {
    Deliver("1/1 | 1:4 1:4 " + strTwoStations);
    // The word is no number for the NAP ID, nor an answer to the next question.
    EXPECT_EQ(SentFor("4  0  1 x  0 0  0 0 0 0\n"),
              Sends("1/4 | 0:4 4801:4 1:4 0:4 00*4 2587500:4 10000:4 12:4 0:4 00*304"));
    EXPECT_EQ(Unread(), " 0\n");
}

TEST_F(NetworkSearchTest, AStationsDefaultStandsWhenWhatReplacesItIsNoNumber) {
    Deliver("1/1 | 1:4 1:4 " + strTwoStations);
    EXPECT_EQ(SentFor("4  0 0 0 0  1 x  1 y  1 z  1 w\n"),
              Sends("1/4 | 0:4 4801:4 1:4 0:4 00*4 2587500:4 10000:4 12:4 0:4 00*304"));
}

TEST_F(NetworkSearchTest, AChangeCountOrNumberThatIsNoNumberIsZero) {
    Deliver("1/1 | 1:4 1:4 " + strTwoStations);
    Deliver("1/4 | " + strDiscovery);
    EXPECT_EQ(SentFor("4  0 0  1 x  1 y\n"), Sends("1/4 | 0:4 4801:4 00*332"));
}

TEST_F(NetworkSearchTest, NoMoreThanTwentyStationsAreAskedFor) {
    Deliver("1/1 | 25:4 1:4 " + strTwoStations + " 00*792 00 00 00 12 c1 00 00 14 00*28");
    std::string strTyped = "4  0 0 0  1 21 ";
    for (int i = 0; i < 20 * 4; ++i) {
        strTyped += " 0";
    }
    EXPECT_EQ(SentFor(strTyped + "\n"),
              Sends("1/4 | 0:4 0:4 20:4 0:4 00*4 2587500:4 10000:4 12:4 0:4 "
                    "3590500:4 7000:4 13:4 0:4 00*288"));
    EXPECT_EQ(SentFor("4  0 0 0  1 -1\n"), Sends("1/4 | 00*340"));
    EXPECT_EQ(Unread(), "\n");
}

TEST_F(NetworkSearchTest, TheLastOfTwentyStationsIsSent) {
    std::string strTyped = "4  0 0 0  1 20 ";
    for (int i = 0; i < 19 * 4; ++i) {
        strTyped += " 0";
    }
    EXPECT_EQ(SentFor(strTyped + " 1 1  1 2  1 3  1 4\n"),
              Sends("1/4 | 0:4 0:4 20:4 0:4 00*4 00*304 2:4 1:4 4:4 3:4"));
}

// Thresholds.

TEST_F(NetworkSearchTest, ThresholdsAreAskedForAndSent) {
    int32_t iResult = -1;
    EXPECT_EQ(PrintedBy([&] { iResult = SetCinrRssiForNetworkSearchRequest(); }, "-3\n-95\n"),
              "\n Enter CINR value you want to set for network search : "
              "\n Enter RSSI value you want to set for network search : ");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(FakeDevice::Sent(), Sends("13/5 | -95:4 -3:4"));
    FakeDevice::SetSendResult(-300);
    PrintedBy([&] { iResult = SetCinrRssiForNetworkSearchRequest(); }, "x y\n");
    EXPECT_EQ(iResult, -300);
    EXPECT_EQ(FakeDevice::Sent()[1], Recorded("13/5 | 00*8"));
}

TEST_F(NetworkSearchTest, AnswersAreLetThroughWhileThresholdsAreAskedFor) {
    gbInsideSubMenu = 1;
    Type("5\n");
    EndInput();
    EXPECT_THROW(SetCinrRssiForNetworkSearchRequest(), ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

TEST_F(NetworkSearchTest, ThresholdsThatWereSetArePrinted) {
    EXPECT_EQ(Report(SetCinrRssiForNetworkSearchResponse, "13/5 | -95:4 -3:4"),
              "\n~~~~~~ SET CINR RSSI RESPONSE RECEIVED ~~~~~~\n"
              "CINR Value Set : -3\n"
              "RSSI Value Set : -95\n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(SetCinrRssiForNetworkSearchResponse, "13/5 | a1 ff"),
              "\n~~~~~~ SET CINR RSSI RESPONSE RECEIVED ~~~~~~\n"
              "CINR Value Set : 0\n"
              "RSSI Value Set : 65441\n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(PrintedBy([] { SetCinrRssiForNetworkSearchResponse(nullptr); }), "");
}

} // namespace
