#include "Statistics.h"

#include "TestConsole.h"

namespace {

class StatisticsTest : public ConsoleTest {
  protected:
    static std::string ReportOf(std::string_view strMessage) {
        return Report(GetStatisticsResponse, strMessage);
    }
    // The line of the frame error rate, or "".
    static std::string RateLine(const std::string &strInError, const std::string &strReceived) {
        const std::string strReport =
            ReportOf("17/1 | 952:4 " + strReceived + ":4 " + strInError + ":4 00*940");
        const size_t uStart = strReport.find("\n\nFrame Error Rate");
        return uStart == std::string::npos
                   ? ""
                   : strReport.substr(uStart, strReport.find('\n', uStart + 2) - uStart);
    }
};

constexpr const char *pcStatisticsMenu = "\n******** STATISTICS MENU ********\n"
                                         "\n 1. BASEBAND STATISTICS REQUEST"
                                         "\n\n*********************************\n"
                                         "\nENTER OPTION : ";
constexpr const char *pcInterval = "\nENTER THE INTERVAL FOR PERIODIC REQUEST (IN MILLI SECONDS)."
                                   "\nENTER ZERO TO STOP CURRENT PERIODIC REQUEST "
                                   "\nOR TO REQUEST BASEBAND STATISTICS ONLY ONCE. "
                                   "\nPRIOD VALUE : ";
constexpr const char *pcResetMenu = "\n*********** STATISTICS RESET CONTROL REQUEST ***********\n"
                                    "\n 1. DISABLE STATISTICS RESET ON RE-SYNCH"
                                    "\n 2. ENABLE STATISTICS RESET ON RE-SYCH"
                                    "\n\n******************************************************\n"
                                    "\nENTER OPTION : ";
constexpr const char *pcStatisticsClosing =
    "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

TEST_F(StatisticsTest, TheIntervalIsSent) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetStatisticsRequest(), 0U); }, "1\n1000\n"),
              std::string(pcStatisticsMenu) + pcInterval);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"17/1 | e8 03 00 00"});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 8}}));
}

TEST_F(StatisticsTest, AnIntervalOfZeroIsSentToo) {
    Type("1\n0\n");
    EXPECT_EQ(GetStatisticsRequest(), 0U);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{Recorded("17/1 | 0:4")});
}

TEST_F(StatisticsTest, AFailedSendDoesNotMatter) {
    FakeDevice::SetSendResult(-1);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetStatisticsRequest(), 0U); }, "1\n5\n"),
              std::string(pcStatisticsMenu) + pcInterval);
}

TEST_F(StatisticsTest, OtherChoicesSendNothing) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetStatisticsRequest(), 1U); }, "2\n"), pcStatisticsMenu);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetStatisticsRequest(), 1U); }, "0\n"), pcStatisticsMenu);
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{});
}

TEST_F(StatisticsTest, TheResetPolicyIsSent) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(StatisticsResetControlRequest(), 0); }, "1\n"), pcResetMenu);
    FakeDevice::SetSendResult(-300);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(StatisticsResetControlRequest(), -300); }, "2\n"),
              pcResetMenu);
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{Recorded("17/2 | 0:4"), "17/2 | 01 00 00 00"}));
}

TEST_F(StatisticsTest, OtherPoliciesAreRefused) {
    for (const char *pcTyped : {"0\n", "3\n", "-1\n"}) {
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(StatisticsResetControlRequest(), -1); }, pcTyped),
                  std::string(pcResetMenu) + "\nSORRY!! INVALID OPTION SELECTED!!");
    }
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{});
}

TEST_F(StatisticsTest, TheReportInFull) {
    EXPECT_EQ(ReportOf("17/1 | 952:4 1000:4 3:4 7:4 8:4 9:4 -70:4 25:4 00*24 4660:4 2:4"
                       " 257:4 43981:4 00*162 fd ee 00*8 00 1a 2b 3c 4d 5e ee 00*278 15 ee 00*417"
                       " 2600000:4"),
              "\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~\n"
              "\nNum frames recvd\t: 1000"
              "\nSize of Stats Struct\t: 952"
              "\nCenterFrequency in KHz \t: 2600000"
              "\nCUR CINR\t\t: 25 (0x19)"
              "\nCUR RSSI\t\t: -70 (0xffffffba)"
              "\nNum Of CqichTxmtd\t: 9 (0x9)"
              "\nNum Of CRC Errors\t: 7 (0x7)"
              "\nFrames in Error\t\t: 3 (0x3)"
              "\nNum Of Hcs Errors\t: 8 (0x8)"
              "\n\nFrame Error Rate\t: 0.003000"
              "\nDownlink burst data FEC\t: 21 (0x15)"
              "\nTx Power\t\t: -3 (0xfffffffd)"
              "\nBaseID\t\t\t: 00 1a 2b 3c 4d 5e"
              "\nNumber of BRTH \t:0x1234"
              "\nNumber of Connections \t:2"
              "\nTransport CID \t:0x101"
              "\nTransport CID \t:0xabcd"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(StatisticsTest, NumbersAreSignedInDecimalAndWholeInHexadecimal) {
    EXPECT_EQ(ReportOf("17/1 | -952:4 -1000:4 -3:4 -7:4 -8:4 -9:4 -70:4 -25:4 00*24 -2:4 -4:4"
                       " 00*170 80 00*9 ff fe fd fc fb fa 00*279 ff 00*418 -2600000:4"),
              "\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~\n"
              "\nNum frames recvd\t: -1000"
              "\nSize of Stats Struct\t: -952"
              "\nCenterFrequency in KHz \t: -2600000"
              "\nCUR CINR\t\t: -25 (0xffffffe7)"
              "\nCUR RSSI\t\t: -70 (0xffffffba)"
              "\nNum Of CqichTxmtd\t: -9 (0xfffffff7)"
              "\nNum Of CRC Errors\t: -7 (0xfffffff9)"
              "\nFrames in Error\t\t: -3 (0xfffffffd)"
              "\nNum Of Hcs Errors\t: -8 (0xfffffff8)"
              "\n\nFrame Error Rate\t: 1.000000"
              "\nDownlink burst data FEC\t: 255 (0xff)"
              "\nTx Power\t\t: -128 (0xffffff80)"
              "\nBaseID\t\t\t: ff fe fd fc fb fa"
              "\nNumber of BRTH \t:0xfffffffe"
              "\nNumber of Connections \t:-4"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(StatisticsTest, WithoutFramesThereIsNoErrorRate) {
    EXPECT_EQ(ReportOf("17/1 | 952:4 0:4 3:4 00*940"),
              "\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~\n"
              "\nNum frames recvd\t: 0"
              "\nSize of Stats Struct\t: 952"
              "\nCenterFrequency in KHz \t: 0"
              "\nCUR CINR\t\t: 0 (0x0)"
              "\nCUR RSSI\t\t: 0 (0x0)"
              "\nNum Of CqichTxmtd\t: 0 (0x0)"
              "\nNum Of CRC Errors\t: 0 (0x0)"
              "\nFrames in Error\t\t: 3 (0x3)"
              "\nNum Of Hcs Errors\t: 0 (0x0)"
              "\nDownlink burst data FEC\t: 0 (0x0)"
              "\nTx Power\t\t: 0 (0x0)"
              "\nBaseID\t\t\t: 00 00 00 00 00 00"
              "\nNumber of BRTH \t:0x0"
              "\nNumber of Connections \t:0"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(StatisticsTest, TheErrorRateIsOfUnsignedCountsInSinglePrecision) {
    EXPECT_EQ(RateLine("3", "1000"), "\n\nFrame Error Rate\t: 0.003000");
    EXPECT_EQ(RateLine("4294967295", "4294967295"), "\n\nFrame Error Rate\t: 1.000000");
    EXPECT_EQ(RateLine("2147483648", "4294967295"), "\n\nFrame Error Rate\t: 0.500000");
    EXPECT_EQ(RateLine("4294967295", "1"), "\n\nFrame Error Rate\t: 4294967296.000000");
    // 16777217 has no single-precision number of its own.
    EXPECT_EQ(RateLine("16777217", "1"), "\n\nFrame Error Rate\t: 16777216.000000");
    EXPECT_EQ(RateLine("1", "3"), "\n\nFrame Error Rate\t: 0.333333");
    // In double precision this would be 33333.333333.
    EXPECT_EQ(RateLine("100000", "3"), "\n\nFrame Error Rate\t: 33333.332031");
    // The counts are rounded before they are divided, not the quotient alone.
    EXPECT_EQ(RateLine("16777217", "5"), "\n\nFrame Error Rate\t: 3355443.250000");
    EXPECT_EQ(RateLine("0", "5"), "\n\nFrame Error Rate\t: 0.000000");
    EXPECT_EQ(RateLine("5", "0"), "");
}

TEST_F(StatisticsTest, NoConnectionsAreListedForACountOfZeroOrLess) {
    for (const char *pcCount : {"0", "-1", "-2147483648"}) {
        const std::string strReport =
            ReportOf(std::string("17/1 | 00*60 ") + pcCount + ":4 ff*888");
        const std::string strEnd =
            std::string("\nNumber of Connections \t:") + pcCount + pcStatisticsClosing;
        ASSERT_GE(strReport.size(), strEnd.size());
        EXPECT_EQ(strReport.substr(strReport.size() - strEnd.size()), strEnd);
    }
}

TEST_F(StatisticsTest, TheConnectionListEndsWithTheDataArea) {
    const std::string strReport = ReportOf("17/1 | 00*60 2147483647:4 1:4 00*10168 2:4");
    const std::string strEnd = std::string("\nNumber of Connections \t:2147483647"
                                           "\nTransport CID \t:0x1") +
                               Times("\nTransport CID \t:0x0", 2542) + "\nTransport CID \t:0x2" +
                               pcStatisticsClosing;
    ASSERT_GE(strReport.size(), strEnd.size());
    EXPECT_EQ(strReport.substr(strReport.size() - strEnd.size()), strEnd);
}

TEST_F(StatisticsTest, TheStatusOfAResetPolicyIsReported) {
    const std::string strBanner = "\n~~~~~~ STATISTICS RESET CONTROL RESPONSE ~~~~~~\n";
    const std::string strEnd = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_EQ(ReportOf("17/2 | 0:4"),
              strBanner + "\nFAILED TO APPLY RESET CONTROL POLICY!" + strEnd);
    EXPECT_EQ(ReportOf("17/2 | 1:4"),
              strBanner + "\nSUCCESSFULLY APPLIED RESET CONTROL POLICY!" + strEnd);
    EXPECT_EQ(ReportOf("17/2 | 2:4"),
              strBanner + "\nUKNOWN STATUS RETURNED FROM THE LIBRARY!!" + strEnd);
    EXPECT_EQ(FakeDevice::Deliver(Message("17/2 | 2:4")), 1U);
}

TEST_F(StatisticsTest, UnknownSubtypesAreReported) {
    EXPECT_EQ(ReportOf("17/3 | 00*952"), "\nINVALID STATISTICS RESPONSE MESSAGE SUB-TYPE");
    EXPECT_EQ(FakeDevice::Deliver(Message("17/3")), 0U);
    EXPECT_EQ(FakeDevice::Deliver(Message("17/1")), 1U);
}

TEST_F(StatisticsTest, ANullMessagePrintsNothing) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GetStatisticsResponse(nullptr), 0U); }), "");
}

} // namespace
