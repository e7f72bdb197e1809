#include "ConnectionManagement.h"

#include "TestConsole.h"

namespace {

class ConnectionManagementTest : public ConsoleTest {
  protected:
    // What the menu returns and sends when these words are typed.
    static uint32_t Result(std::string_view strTyped) {
        Type(strTyped);
        return ConnectionManagement();
    }
    static std::vector<std::string> SentFor(std::string_view strTyped) {
        FakeDevice::Reset();
        Result(strTyped);
        return FakeDevice::Sent();
    }
    static std::vector<std::string> Sends(std::string_view strMessage) {
        return {Recorded(strMessage)};
    }
};

TEST_F(ConnectionManagementTest, SyncUpCarriesFrequencyBandwidthAndPreamble) {
    EXPECT_EQ(SentFor("2  3576.5  1 114  10000\n"),
              Sends("2/1 | b4 92 36 00 10 27 00 00 72 00 00 00 00*52"));
    EXPECT_EQ(SentFor("2  2670  1 5  7000\n"), Sends("2/1 | 2670000:4 7000:4 5:4 00*52"));
}

TEST_F(ConnectionManagementTest, WithoutAPreambleTheModemTakesAny) {
    EXPECT_EQ(SentFor("2  3576.5  0  10000\n"),
              Sends("2/1 | b4 92 36 00 10 27 00 00 ff 00 00 00 00*52"));
    EXPECT_EQ(SentFor("2  3576.5  2  10000\n"),
              Sends("2/1 | b4 92 36 00 10 27 00 00 ff 00 00 00 00*52"));
}

TEST_F(ConnectionManagementTest, FrequenciesAreSinglePrecisionNumbersOfKHz) {
    const auto SentFrequency = [](const std::string &strTyped) {
        return SentFor("2 " + strTyped + " 0 0\n");
    };
    const std::string strRest = " 0:4 255:4 00*52";
    EXPECT_EQ(SentFrequency("2587.45"), Sends("2/1 | 2587450:4" + strRest));
    EXPECT_EQ(SentFrequency("3413.5"), Sends("2/1 | 3413500:4" + strRest));
    EXPECT_EQ(SentFrequency("0.0009"), Sends("2/1 | 0:4" + strRest));
    EXPECT_EQ(SentFrequency("4294967"), Sends("2/1 | 4294967040:4" + strRest));
    EXPECT_EQ(SentFrequency("4294967.5"), Sends("2/1 | 0:4" + strRest));
    EXPECT_EQ(SentFrequency("-2600"), Sends("2/1 | 0:4" + strRest));
    EXPECT_EQ(SentFrequency("1e39"), Sends("2/1 | 0:4" + strRest));
    EXPECT_EQ(SentFrequency("nan"), Sends("2/1 | 0:4" + strRest));
}

TEST_F(ConnectionManagementTest, AWordThatIsNoNumberStaysForTheNextQuestion) {
    // "abc" is no frequency; the question about the preamble takes it.
    EXPECT_EQ(SentFor("2  abc  10000\n"), Sends("2/1 | 0:4 10000:4 255:4 00*52"));
    EXPECT_EQ(SentFor("2  2600MHz 7000\n"), Sends("2/1 | 2600000:4 7000:4 255:4 00*52"));
    EXPECT_EQ(SentFor("2  2600 1 x\n"), Sends("2/1 | 2600000:4 0:4 0:4 00*52"));
    EXPECT_EQ(Unread(), "x\n");
}

TEST_F(ConnectionManagementTest, NetworkEntryByNSPCarriesTheIDThatWasGiven) {
    EXPECT_EQ(SentFor("13  1 700\n"), Sends("2/4 | 1:4 700:4 00*260"));
    EXPECT_EQ(SentFor("13  0\n"), Sends("2/4 | 00*268"));
    EXPECT_EQ(SentFor("13  3\n"), Sends("2/4 | 00*268"));
    EXPECT_EQ(SentFor("13  1 0x10\n"), Sends("2/4 | 1:4 0:4 00*260"));
    EXPECT_EQ(SentFor("13  1 -1\n"), Sends("2/4 | 1:4 -1:4 00*260"));
}

TEST_F(ConnectionManagementTest, LowPowerScanModesAreCodedFromOneHundred) {
    EXPECT_EQ(SentFor("14 1\n"), Sends("1/6 | 64 00*12"));
    EXPECT_EQ(SentFor("14 2\n"), Sends("1/6 | 65 00*12"));
    EXPECT_EQ(SentFor("14 3\n"), Sends("1/6 | 66 00*12"));
    EXPECT_EQ(SentFor("14 4\n"), Sends("1/6 | 67 00*12"));
    EXPECT_EQ(SentFor("14 5\n"), Sends("1/6 | 68 00*12"));
    for (const char *pcTyped : {"14 6\n", "14 0\n", "14 -1\n", "14 x\n"}) {
        EXPECT_TRUE(SentFor(pcTyped).empty());
    }
}

TEST_F(ConnectionManagementTest, SyncDownAndTheModemsOwnShutdownAreTheSameMessage) {
    EXPECT_EQ(SentFor("5\n"), Sends("3/1"));
    EXPECT_EQ(SentFor("11\n"), Sends("3/1"));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 4}}));
}

TEST_F(ConnectionManagementTest, TheResultIsTheLowByteOfTheSendResult) {
    const char *const apcRequests[] = {"2 1 0 1\n", "3\n",  "4\n",  "5\n",    "6\n",   "8\n",
                                       "9\n",       "10\n", "11\n", "13 0\n", "14 1\n"};
    for (const char *pcTyped : apcRequests) {
        FakeDevice::SetSendResult(-2);
        EXPECT_EQ(Result(pcTyped), 254U) << pcTyped;
        FakeDevice::SetSendResult(0x305);
        EXPECT_EQ(Result(pcTyped), 5U) << pcTyped;
        FakeDevice::SetSendResult(0);
        EXPECT_EQ(Result(pcTyped), 0U) << pcTyped;
    }
}

TEST_F(ConnectionManagementTest, TheResultIsOneWhereThereIsNone) {
    FakeDevice::SetSendResult(-2);
    for (const char *pcTyped :
         {"1 2 0 1 0\n", "1 -1\n", "12 3\n", "12 -1\n", "0\n", "15\n", "-1\n", "abc\n", "14 6\n"}) {
        EXPECT_EQ(Result(pcTyped), 1U) << pcTyped;
    }
}

TEST_F(ConnectionManagementTest, AShutdownThatWasAcceptedIsFollowedByAStatusRequest) {
    EXPECT_EQ(SentFor("7\n"), (std::vector<std::string>{"30/1", "30/5"}));
    FakeDevice::QueueSendResult(0);
    FakeDevice::QueueSendResult(-3);
    EXPECT_EQ(Result("7\n"), 253U);
    FakeDevice::QueueSendResult(4);
    EXPECT_EQ(Result("7\n"), 0U);
    EXPECT_EQ(FakeDevice::Sent().size(), 6U);
}

TEST_F(ConnectionManagementTest, AShutdownThatWasRefusedIsNotFollowedByAnything) {
    FakeDevice::SetSendResult(-9);
    EXPECT_EQ(Result("7\n"), 0U);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"30/1"});
}

TEST_F(ConnectionManagementTest, TheHalfMiniCardRequestReportsAnyFailure) {
    EXPECT_EQ(PrintedBy(SendHalfMiniCardStatusRequest), "");
    FakeDevice::SetSendResult(-5);
    EXPECT_EQ(PrintedBy(SendHalfMiniCardStatusRequest),
              "\nHALF MINI Card status request returned # -5\n");
    FakeDevice::SetSendResult(7);
    uint32_t u32Result = 0;
    EXPECT_EQ(PrintedBy([&] { u32Result = SendHalfMiniCardStatusRequest(); }),
              "\nHALF MINI Card status request returned # 7\n");
    EXPECT_EQ(u32Result, 1U);
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{"36/1", "36/1", "36/1"}));
}

// A list that was filled with something before.
struct FrequencyList : ConnectionManagementTest {
    Bytes aucList = Bytes(104, 0xEE);
    uint32_t u32Result = 2;

    std::string Fill(std::string_view strTyped) {
        return PrintedBy(
            [&] {
                u32Result = FillDiscreteFrequencyInfo({aucList.data(), 104});
            },
            strTyped);
    }
};

TEST_F(FrequencyList, IsFilledWithWhatWasTyped) {
    EXPECT_EQ(Fill("2\n2600000\n3576500\n"), "\n******** ENTER NUMBER OF DISCRETE FREQS ********\n"
                                             "\n*******ENTER THE 2 NUMBER OF CENTER FREQS******"
                                             "\n*******ENTER THE 1 CENTER FREQs (KHZ)******\n"
                                             "\n*******ENTER THE 2 CENTER FREQs (KHZ)******\n");
    EXPECT_EQ(u32Result, 1U);
    EXPECT_EQ(aucList, Message("2:4 2600000:4 3576500:4 ee*92"));
}

TEST_F(FrequencyList, MayBeEmpty) {
    EXPECT_EQ(Fill("0\n"), "\n******** ENTER NUMBER OF DISCRETE FREQS ********\n"
                           "\n*******ENTER THE 0 NUMBER OF CENTER FREQS******");
    EXPECT_EQ(u32Result, 1U);
    EXPECT_EQ(aucList, Message("0:4 ee*100"));
}

TEST_F(FrequencyList, HoldsTwentyFive) {
    std::string strTyped = "25";
    std::string strExpected = "25:4";
    for (int i = 1; i <= 25; ++i) {
        strTyped += " " + std::to_string(i);
        strExpected += " " + std::to_string(i) + ":4";
    }
    Fill(strTyped + "\n");
    EXPECT_EQ(u32Result, 1U);
    EXPECT_EQ(aucList, Message(strExpected));
}

TEST_F(FrequencyList, StaysAsItIsWhenTheNumberIsWrong) {
    const std::string strRefused = "\n******** ENTER NUMBER OF DISCRETE FREQS ********\n"
                                   "\n******** WRONG VALUE ENTERED ********\n";
    for (const char *pcTyped : {"26\n", "-1\n", "2147483647\n"}) {
        u32Result = 2;
        EXPECT_EQ(Fill(pcTyped), strRefused);
        EXPECT_EQ(u32Result, 0U);
    }
    EXPECT_EQ(aucList, Bytes(104, 0xEE));
}

TEST_F(FrequencyList, IsClearedWhenAFrequencyIsNegative) {
    EXPECT_EQ(Fill("3\n2600000\n-1\n"), "\n******** ENTER NUMBER OF DISCRETE FREQS ********\n"
                                        "\n*******ENTER THE 3 NUMBER OF CENTER FREQS******"
                                        "\n*******ENTER THE 1 CENTER FREQs (KHZ)******\n"
                                        "\n*******ENTER THE 2 CENTER FREQs (KHZ)******\n"
                                        "\n******** WRONG VALUE ENTERED ********\n");
    EXPECT_EQ(u32Result, 0U);
    EXPECT_EQ(aucList, Bytes(104, 0));
}

} // namespace
