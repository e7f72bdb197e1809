#include "IdleMode.h"

#include "TestConsole.h"

namespace {

const std::string strIdleModeMenu = "\n\n*********** Idle Mode SubMenu ***********\n"
                                    "\n 1. IDLE MODE REQUEST"
                                    "\n 2. IDLE MODE STATUS REQUEST"
                                    "\n 3. IDLE MODE INACTIVITY TIMER CHANGE REQUEST"
                                    "\n 4. IDLE MODE WAKE UP REQUEST"
                                    "\n\n************************************\n"
                                    "\nENTER OPTION : ";

class IdleModeTest : public ConsoleTest {
  protected:
    static std::string Indication(const std::string &strPayload) {
        return Report(IdleModeIndication, "19/1 | " + strPayload);
    }
};

TEST_F(IdleModeTest, GoingIntoIdleModeHasItsPlannedTimeout) {
    EXPECT_EQ(Indication("300:4 00 12 c1 a0 0b 0c -301:4 21:4 114:4 3:4 0a b0 ff"),
              "\n~~~~~~~~~~ IDLE MODE INDICATION ~~~~~~~~~~\n"
              "\n MODEM IS GOING INTO IDLE MODE.\n"
              "\n PLANNED IDLE MODE TIMEOUT : 300"
              "\n PREAMBLE ID  : 114"
              "\n CINR MEAN : 21 dB"
              "\n RSSI MEAN: -75 dB"
              "\n BS ID  :  00 12 C1 A0 0B 0C"
              "\n Vendor specific data \n"
              "0x0a 0xb0 0xff \n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(IdleModeTest, ComingOutOfIdleModeHasNoTimeout) {
    EXPECT_EQ(Indication("0:4 fa eb c1 a0 0b 0c -268:4 -2:4 0:4 0:4"),
              "\n~~~~~~~~~~ IDLE MODE INDICATION ~~~~~~~~~~\n"
              "\n MODEM HAS COME OUT FROM IDLE MODE.\n"
              "\n PREAMBLE ID  : 0"
              "\n CINR MEAN : -2 dB"
              "\n RSSI MEAN: -67 dB"
              "\n BS ID  :  FA EB C1 A0 0B 0C"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(IdleModeTest, AnyByteOfTheStateWordMeansGoingIdle) {
    const std::string strReport = Indication("-1:4 00*18 0:4");
    EXPECT_NE(strReport.find("\n MODEM IS GOING INTO IDLE MODE.\n"
                             "\n PLANNED IDLE MODE TIMEOUT : -1\n"),
              std::string::npos);
}

TEST_F(IdleModeTest, TheSignalStrengthIsDividedTowardsZero) {
    const auto PrintedMean = [](const std::string &strQuarters) {
        const std::string strReport = Indication("0:4 00*6 " + strQuarters + " 0:4 0:4 0:4");
        const size_t uBegin = strReport.find("\n RSSI MEAN: ") + 13;
        return strReport.substr(uBegin, strReport.find("\n BS ID") - uBegin);
    };
    EXPECT_EQ(PrintedMean("-301:4"), "-75 dB");
    EXPECT_EQ(PrintedMean("-300:4"), "-75 dB");
    EXPECT_EQ(PrintedMean("-3:4"), "0 dB");
    EXPECT_EQ(PrintedMean("303:4"), "75 dB");
    EXPECT_EQ(PrintedMean("00 00 00 80"), "-536870912 dB");
}

TEST_F(IdleModeTest, OnlyOneToTwoHundredAndFiftyFiveBytesAreVendorData) {
    const std::string strHead = "0:4 00*6 0:4 0:4 0:4 ";
    const std::string strNone = Indication(strHead + "0:4");
    EXPECT_EQ(strNone.find("endor"), std::string::npos);
    EXPECT_EQ(Indication(strHead + "256:4 11*300"), strNone);
    EXPECT_EQ(Indication(strHead + "-1:4 11*300"), strNone);
    std::string strBytes;
    for (int i = 0; i < 255; ++i) {
        strBytes += "0x11 ";
    }
    const std::string strClosing = "\n\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_NE(Indication(strHead + "255:4 11*300")
                  .find("\n Vendor specific data \n" + strBytes + strClosing),
              std::string::npos);
}

TEST_F(IdleModeTest, TheStatusIsANumber) {
    EXPECT_EQ(Report(IdleModeStatusResponse, "19/2 | 7:4"),
              "\n~~~~~~~~~~ IDLE MODE STATUS RESPONSE ~~~~~~~~~~\n\n"
              "IDLE MODE STATUS : 7 \n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_EQ(Report(IdleModeStatusResponse, "19/2 | -1:4"),
              "\n~~~~~~~~~~ IDLE MODE STATUS RESPONSE ~~~~~~~~~~\n\n"
              "IDLE MODE STATUS : -1 \n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(IdleModeTest, TheInactivityTimerIsAnsweredWithANumber) {
    EXPECT_EQ(Report(IdleModeInactivityTImerResponse, "19/3 | 258:4"),
              "\n~~~~~~~~~~ IDLE MODE INACTIVITY TIMER RESPONSE ~~~~~~~~~~\n\n"
              "IDLE MODE INACTIVITY TIMER RETURN STATUS : 258 \n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(IdleModeTest, NumbersOfTheReportsAreSigned) {
    EXPECT_EQ(Report(IdleModeInactivityTImerResponse, "19/3 | -258:4"),
              "\n~~~~~~~~~~ IDLE MODE INACTIVITY TIMER RESPONSE ~~~~~~~~~~\n\n"
              "IDLE MODE INACTIVITY TIMER RETURN STATUS : -258 \n"
              "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    EXPECT_NE(Indication("0:4 00*6 -301:4 -21:4 -114:4 0:4").find("\n PREAMBLE ID  : -114\n"),
              std::string::npos);
}

TEST_F(IdleModeTest, AWakeUpSucceedsWithAnythingButZero) {
    const std::string strSuccess = "\n~~~~~~~~~~ IDLE MODE WAKEUP RESPONSE ~~~~~~~~~~\n\n"
                                   "IDLE MODE WAKEUP RESPONSE RECEIVED AS SUCCESS\n"
                                   "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    const std::string strFailure = "\n~~~~~~~~~~ IDLE MODE WAKEUP RESPONSE ~~~~~~~~~~\n\n"
                                   "IDLE MODE WAKEUP RESPONSE RECEIVED AS FAILURE\n"
                                   "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    EXPECT_EQ(Report(IdleModeWakeupResponse, "19/4 | 0:4"), strFailure);
    EXPECT_EQ(Report(IdleModeWakeupResponse, "19/4 | 1:4"), strSuccess);
    EXPECT_EQ(Report(IdleModeWakeupResponse, "19/4 | 00 00 00 80"), strSuccess);
    EXPECT_EQ(Report(IdleModeWakeupResponse, "19/4"), strFailure);
}

TEST_F(IdleModeTest, NullMessagesPrintNothing) {
    EXPECT_EQ(PrintedBy([] {
                  IdleModeIndication(nullptr);
                  IdleModeStatusResponse(nullptr);
                  IdleModeInactivityTImerResponse(nullptr);
                  IdleModeWakeupResponse(nullptr);
              }),
              "");
}

TEST_F(IdleModeTest, TheMenuSendsOneRequestAndReturnsZero) {
    int32_t iResult = -1;
    const auto Run = [&] { iResult = SendIdleModeMsg(); };
    EXPECT_EQ(PrintedBy(Run, "1\n"), strIdleModeMenu);
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(PrintedBy(Run, "2\n"), strIdleModeMenu);
    EXPECT_EQ(PrintedBy(Run, "3\n30\n"),
              strIdleModeMenu + "\nEnter the Idle Mode Inactivity Timer value (in secs) : ");
    EXPECT_EQ(PrintedBy(Run, "4\n"), strIdleModeMenu);
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{"19/1", "19/2", "19/3 | 1e 00 00 00", "19/4"}));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 4}, {1, 4}, {1, 8}, {1, 4}}));
}

TEST_F(IdleModeTest, AChoiceThatIsNoneSendsNothing) {
    for (const char *pcTyped : {"0\n", "5\n", "-1\n", "abc\n"}) {
        EXPECT_EQ(PrintedBy(SendIdleModeMsg, pcTyped),
                  strIdleModeMenu + "\nSORRY! INVALID OPTION SELECTED!\n");
    }
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

TEST_F(IdleModeTest, RequestsReturnZeroAndReportAFailedSend) {
    FakeDevice::SetSendResult(-27);
    int32_t iResult = -1;
    EXPECT_EQ(PrintedBy([&] { iResult = SendIdleModeRequest(); }),
              "\nFailed to send the IDLE MODE REQUEST Message to device!!");
    EXPECT_EQ(iResult, 0);
    iResult = -1;
    EXPECT_EQ(PrintedBy([&] { iResult = SendIdleModeStatusRequest(); }),
              "\nFailed to send the IDLE MODE REQUEST Message to device!!");
    EXPECT_EQ(iResult, 0);
    iResult = -1;
    EXPECT_EQ(PrintedBy([&] { iResult = SendIdleModeInactivityTimerRequest(); }, "1\n"),
              "\nEnter the Idle Mode Inactivity Timer value (in secs) : "
              "\nFailed to send the IDLE MODE INACITIVITY TIMER REQUEST Message to device!!");
    EXPECT_EQ(iResult, 0);
    iResult = -1;
    EXPECT_EQ(PrintedBy([&] { iResult = SendIdleModeWakeupRequest(); }),
              "\nFailed to send the IDLE MODE WAKEUP REQUEST Message to device!!");
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(PrintedBy(SendIdleModeMsg, "1\n"),
              strIdleModeMenu + "\nFailed to send the IDLE MODE REQUEST Message to device!!");
    FakeDevice::SetSendResult(1);
    EXPECT_EQ(PrintedBy(SendIdleModeWakeupRequest),
              "\nFailed to send the IDLE MODE WAKEUP REQUEST Message to device!!");
}

TEST_F(IdleModeTest, ATimerThatIsNoNumberIsZero) {
    PrintedBy(SendIdleModeInactivityTimerRequest, "abc\n");
    PrintedBy(SendIdleModeInactivityTimerRequest, "-1\n");
    PrintedBy(SendIdleModeInactivityTimerRequest, "12s\n");
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{"19/3 | 00*4", "19/3 | ff*4", "19/3 | 0c 00 00 00"}));
}

} // namespace
