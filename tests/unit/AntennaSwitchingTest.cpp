#include "AntennaSwitching.h"

#include "TestConsole.h"

namespace {

class AntennaSwitchingTest : public ConsoleTest {
  protected:
    static std::string ReportOf(std::string_view strMessage) {
        return Report(AntennaSwitchingAndSelectionResponse, strMessage);
    }
    static std::vector<std::string> SentOf(std::string_view strMessage) {
        return {Recorded(strMessage)};
    }
};

constexpr const char *pcAntennaSwitchingMenu =
    "\n\n*********** Antenna Switching Selection Menu ***********\n"
    "\n 1. Antenna Config Request"
    "\n 2. Antenna Scanning Request"
    "\n 3. Antenna Selection Request"
    "\n\n************************************\n"
    "\nENTER OPTION : ";
constexpr const char *pcConfigMenu = "\n 1. Get GPIO Configuration from Firmware"
                                     "\n 2. Set GPIO Configuration to Firmware"
                                     "\n\n************************************\n"
                                     "\nENTER OPTION : ";
constexpr const char *pcInvalidOption = "\nSORRY! INVALID OPTION SELECTED!\n";
constexpr const char *pcAgain = "\n Invalid Input .. Pls re-enter: ";
constexpr const char *pcRxCount = "\nEnter the Number of Rx GPIOs [Max: 4]: ";
constexpr const char *pcTxCount = "\nEnter the Number of Tx GPIOs [Max: 1]: ";
constexpr const char *pcScanChoice = "\nEnter the Scan Choice : Values [0 - Abort Ongoing Scan or "
                                     "1 - Send Scan 2-Infinite Scanning]: ";
constexpr const char *pcScanQuestions = "\nEnter the Iterations for scanning : "
                                        "\nEnter the number of GPIO patterns : "
                                        "\nEnter the GPIO Pattern Info : \n"
                                        "\n\tEntering GPIO pattern 1 of 4 :: "
                                        "\n\tEntering GPIO pattern 2 of 4 :: "
                                        "\n\tEntering GPIO pattern 3 of 4 :: "
                                        "\nEnter the Scan Duration Interleaving Interval: \n";
constexpr const char *pcRxValid = "\nEnter the Rx Antenna Selction Choice : "
                                  "\nValues [0 - Invalid 1 - Valid ] : ";
constexpr const char *pcTxValid = "\nEnter the Tx Antenna Selction Choice : "
                                  "\nValues [0 - Invalid 1 - Valid ] : ";
constexpr const char *pcRxSettings = "\nEnter the Rx Antenna Setting Info : \n"
                                     "\n\tEntering 1 of 3 :: "
                                     "\n\tEntering 2 of 3 :: "
                                     "\n\tEntering 3 of 3 :: ";
constexpr const char *pcTxAuto = "\nEnter the Tx Auto Selction Choice :"
                                 "\nValues [0 - Disable Auto Tx Selection"
                                 "\n        1 - Auto Tx Selection ] : ";

constexpr const char *pcAntennaSwitchingBanner =
    "\n~~~~~~~~~~~~~~~ ANTENNA_SWITCHING_SELECTION MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n";
constexpr const char *pcAntennaSwitchingClosing =
    "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

TEST_F(AntennaSwitchingTest, TheMenuLeadsToTheThreeRequests) {
    EXPECT_EQ(PrintedBy([] { AntennaSwitchingSelectionMenu(); }, "1\n1\n"),
              std::string(pcAntennaSwitchingMenu) + pcConfigMenu);
    EXPECT_EQ(PrintedBy([] { AntennaSwitchingSelectionMenu(); }, "2\n0\n"),
              std::string(pcAntennaSwitchingMenu) + pcScanChoice);
    FakeDevice::SetSendResult(-9);
    Type("3\n0 0 0 0 0 0 0\n");
    EXPECT_EQ(AntennaSwitchingSelectionMenu(), -9);
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{Recorded("28/1 | 00*36"), Recorded("28/2 | 00*44"),
                                        Recorded("28/5 | 00*48")}));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 40}, {1, 48}, {1, 52}}));
}

TEST_F(AntennaSwitchingTest, OtherChoicesAreRefused) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(AntennaSwitchingSelectionMenu(), 0); }, "4\n"),
              std::string(pcAntennaSwitchingMenu) + pcInvalidOption);
    for (const char *pcTyped : {"0\n", "3\n", "-1\n"}) {
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(SendAntennaConfigRequest(), 0); }, pcTyped),
                  std::string(pcConfigMenu) + pcInvalidOption);
    }
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{});
}

TEST_F(AntennaSwitchingTest, AConfigurationIsEnteredPinByPin) {
    EXPECT_EQ(PrintedBy([] { SendAntennaConfigRequest(); }, "2\n3 1 0 15\n1 7\n"),
              std::string(pcConfigMenu) + pcRxCount +
                  "\nEnter the Rx GPIO Number 1 out of 3: "
                  "\nEnter the Rx GPIO Number 2 out of 3: "
                  "\nEnter the Rx GPIO Number 3 out of 3: " +
                  pcTxCount + "\nEnter the Tx GPIO Number 1 out of 1: ");
    EXPECT_EQ(FakeDevice::Sent(), SentOf("28/1 | 3:4 1:4 | 1:4 0:4 15:4 -1:4 | 7:4 | 1:4 0:4"));
}

TEST_F(AntennaSwitchingTest, PinsThatMayNotBeUsedAreAskedForAgain) {
    const std::string strValid = "\n Enter a Valid GPIO Pin value b/w 0 - 15\n";
    const std::string strUnused = "\n Enter a unUsed/unDefined GPIO Pin Value\n";
    const std::string strFirst = "\nEnter the Rx GPIO Number 1 out of 2: ";
    const std::string strSecond = "\nEnter the Rx GPIO Number 2 out of 2: ";
    const std::string strTx = "\nEnter the Tx GPIO Number 1 out of 1: ";
    EXPECT_EQ(PrintedBy([] { SendAntennaConfigRequest(); }, "2\n2 16 -1 3 3 4\n1 4 16 3 5\n"),
              std::string(pcConfigMenu) + pcRxCount + strFirst + strValid + strFirst + strValid +
                  strFirst + strSecond + strUnused + strSecond + pcTxCount + strTx + strUnused +
                  strTx + strValid + strTx + strUnused + strTx);
    EXPECT_EQ(FakeDevice::Sent(), SentOf("28/1 | 2:4 1:4 | 3:4 4:4 -1:4 -1:4 | 5:4 | 1:4 0:4"));
}

TEST_F(AntennaSwitchingTest, CountsAboveTheMostAreAskedForAgain) {
    EXPECT_EQ(PrintedBy([] { SendAntennaConfigRequest(); }, "2\n5 100 0\n2 0\n"),
              std::string(pcConfigMenu) + pcRxCount + pcAgain + pcAgain + pcTxCount + pcAgain);
    EXPECT_EQ(FakeDevice::Sent(), SentOf("28/1 | 0:4 0:4 | -1:4 -1:4 -1:4 -1:4 | -1:4 | 1:4 0:4"));
}

TEST_F(AntennaSwitchingTest, NegativeCountsAreSentAndAskForNoPin) {
    EXPECT_EQ(PrintedBy([] { SendAntennaConfigRequest(); }, "2\n-1\n-2147483648\n"),
              std::string(pcConfigMenu) + pcRxCount + pcTxCount);
    // The count of receive pins does not let the check look past their places.
    Type("2\n-1\n1 0\n");
    SendAntennaConfigRequest();
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{
                  Recorded("28/1 | -1:4 -2147483648:4 | -1:4 -1:4 -1:4 -1:4 | -1:4 | 1:4 0:4"),
                  Recorded("28/1 | -1:4 1:4 | -1:4 -1:4 -1:4 -1:4 | 0:4 | 1:4 0:4")}));
}

TEST_F(AntennaSwitchingTest, AScanIsEntered) {
    EXPECT_EQ(PrintedBy([] { SendAntennaScanningRequest(); }, "1\n10 3 5 6 7 100\n"),
              std::string(pcScanChoice) + pcScanQuestions);
    EXPECT_EQ(FakeDevice::Sent(), SentOf("28/2 | 1:4 10:4 3:4 | 5:4 6:4 7:4 0:4 | 100:4 | 00*12"));
}

TEST_F(AntennaSwitchingTest, AScanWithoutEndHasTheHighestBit) {
    Type("2\n1 2 3 4 5 6\n");
    SendAntennaScanningRequest();
    EXPECT_EQ(FakeDevice::Sent(),
              SentOf("28/2 | 01 00 00 80 1:4 2:4 | 3:4 4:4 5:4 0:4 | 6:4 | 00*12"));
}

TEST_F(AntennaSwitchingTest, AnAbortAsksNothingElse) {
    EXPECT_EQ(PrintedBy([] { SendAntennaScanningRequest(); }, "3 -1 0\n"),
              std::string(pcScanChoice) + pcAgain + pcAgain);
    EXPECT_EQ(FakeDevice::Sent(), SentOf("28/2 | 00*44"));
}

TEST_F(AntennaSwitchingTest, AnAutomaticSelectionIsEntered) {
    EXPECT_EQ(
        PrintedBy([] { SendAntennaSelectionRequest(); },
                  "2 1\n-1 0\n11 12 13\n2 1\n4\n70021 -70003 70022 70005\n"),
        std::string(pcRxValid) + pcAgain + pcTxValid + pcAgain + pcRxSettings + pcTxAuto + pcAgain +
            "\nEnter the Tx Antenna Setting Info:"
            "\n 0: Initial selection is based on the better of the two antennas based on RSSI "
            "metric.\n "
            "\n 1: Initial selection is RX1 \n "
            "\n 2: Initial selection is RX2 \n "
            "\n 3: Initial selection is RX1 if RX1 RSSI is better than RX2 RSSI by the "
            "s32HysThreshAnt1 amount, else RX2 \n "
            "\n 4: Initial selection is RX2 if RX2 RSSI is better than RX1 RSSI by the "
            "s32HysThreshAnt2 amount, else RX1 \n "
            "\nEnter the IIR Averaging Parameter for Antenna 1 : "
            "\nEnter the Switching Threshold Parameter for Antenna 1 (dB) : "
            "\nEnter the IIR Averaging Parameter for Antenna 2 : "
            "\nEnter the Switching Threshold Parameter for Antenna 2 (dB) : ");
    EXPECT_EQ(
        FakeDevice::Sent(),
        SentOf(
            "28/5 | 1:4 0:4 | 11:4 12:4 13:4 | 0:4 | 1:4 4:4 | 70021:4 70022:4 -70003:4 70005:4"));
}

TEST_F(AntennaSwitchingTest, AFixedSelectionIsEntered) {
    EXPECT_EQ(PrintedBy([] { SendAntennaSelectionRequest(); }, "0\n1\n1 2 3\n0\n99\n"),
              std::string(pcRxValid) + pcTxValid + pcRxSettings + pcTxAuto +
                  "\nEnter the Tx Antenna Setting Info:"
                  "\n 1: select antenna returning RX1 \n "
                  "\n 2: select antenna returning RX2 \n ");
    EXPECT_EQ(FakeDevice::Sent(), SentOf("28/5 | 0:4 1:4 | 1:4 2:4 3:4 | 0:4 | 0:4 99:4 | 00*16"));
}

TEST_F(AntennaSwitchingTest, AConfigurationThatWasReadIsShown) {
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 1:4 2:4 15:4 9:4 | 7:4 | 0:4 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\nTotal Number of Rx GPIO's to be used: 3"
                  "\nList of Rx GPIO's are :  1 2 15"
                  "\nTotal Number of Tx GPIO's to be used: 1"
                  "\nList of Tx GPIO's are :  7" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/1 | 0:4 0:4 | ff*20 | 0:4 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\nTotal Number of Rx GPIO's to be used: 0"
                  "\nList of Rx GPIO's are : "
                  "\nTotal Number of Tx GPIO's to be used: 0"
                  "\nList of Tx GPIO's are : " +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, NoMorePinsAreShownThanTheRecordHas) {
    EXPECT_EQ(ReportOf("28/1 | -1:4 2:4 | 1:4 2:4 3:4 -1:4 | 7:4 | 0:4 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\nTotal Number of Rx GPIO's to be used: -1"
                  "\nList of Rx GPIO's are :  1 2 3 -1"
                  "\nTotal Number of Tx GPIO's to be used: 2"
                  "\nList of Tx GPIO's are :  7" +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, AConfigurationThatCouldNotBeReadIsReported) {
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 00*20 | 0:4 -5:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\n\tFailed in Getting the configuration from Firmware !!! "
                  "\n\tError Status Received :: -5" +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, AConfigurationThatWasWrittenIsReported) {
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 00*20 | 1:4 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\n\nSetting the GPIO configuration from Host is Successfull !!" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 00*20 | 256:4 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\n\nSetting the GPIO configuration from Host is Successfull !!" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 00*20 | 1:4 12:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!Error code returned: 12" +
                  pcAntennaSwitchingClosing);
    // Whatever is not a read is a write.
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 00*20 | -1:4 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!"
                  "\n\nSetting the GPIO configuration from Host is Successfull !!" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/1 | 3:4 1:4 | 00*20 | 2:4 -7:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_CONFIG_RESPONSE !!Error code returned: -7" +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, AScanInFull) {
    EXPECT_EQ(ReportOf("28/2 | 1:4 2:4 | 5:4 -1:4 7:4 8:4 | -60:4 -61:4 00*120 | 20:4 21:4 00*120 |"
                       " -70:4 -71:4 00*120 | 10:4 -1:4 00*120 | 100:4 -1:4 00*120 |"
                       " -1:4 -2:4 -3:4 -4:4 | -70062:4 -70022:4 -70072:4 -70012:4 | 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"
                  "\nScanning Status : 1"
                  "\nAcual Frames Scanned : 2"
                  "\nRx GPIO Pattern Infomation:  5 4294967295 7"
                  "\nRSSI Measurement of Antenna 1:  -60 -61"
                  "\nCINR Measurement of Antenna 1:  20 21"
                  "\nRSSI Measurement of Antenna 2:  -70 -71"
                  "\nCINR Measurement of Antenna 2:  10 -1"
                  "\nActual Framer Numbers Scanned:  100 4294967295"
                  "\nCurrent GPIO Pattern:  -1 -2 -3 -4"
                  "\nCurrent RSSI of Antenna 1: -70062"
                  "\nCurrent CINR of Antenna 1: -70022"
                  "\nCurrent RSSI of Antenna 2: -70072"
                  "\nCurrent CINR of Antenna 2: -70012" +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, AScanWithoutFramesHasItsTitles) {
    EXPECT_EQ(ReportOf("28/2 | -7:4 0:4 00*692"), std::string(pcAntennaSwitchingBanner) +
                                                      "\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"
                                                      "\nScanning Status : -7"
                                                      "\nAcual Frames Scanned : 0"
                                                      "\nRx GPIO Pattern Infomation:  0 0 0"
                                                      "\nRSSI Measurement of Antenna 1: "
                                                      "\nCINR Measurement of Antenna 1: "
                                                      "\nRSSI Measurement of Antenna 2: "
                                                      "\nCINR Measurement of Antenna 2: "
                                                      "\nActual Framer Numbers Scanned: "
                                                      "\nCurrent GPIO Pattern:  0 0 0 0"
                                                      "\nCurrent RSSI of Antenna 1: 0"
                                                      "\nCurrent CINR of Antenna 1: 0"
                                                      "\nCurrent RSSI of Antenna 2: 0"
                                                      "\nCurrent CINR of Antenna 2: 0" +
                                                      pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, AnAbortedScanSaysNothingElse) {
    EXPECT_EQ(ReportOf("28/2 | 0:4 2:4 ff*688 0:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"
                  "\nScanning Status : 0"
                  "\n **************** Scan Aborted*****************\n" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/2"), ReportOf("28/2 | 00*700"));
}

TEST_F(AntennaSwitchingTest, AScanWithAnErrorSaysNothingElse) {
    EXPECT_EQ(ReportOf("28/2 | 1:4 2:4 00*688 3:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"
                  "\n\tError in Antenna Scanning Response :: 3" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/2 | 0:4 2:4 00*688 -3:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_SCANNING_RESPONSE !!"
                  "\n\tError in Antenna Scanning Response :: -3" +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, NoMoreThanThirtyTwoFramesAreShown) {
    const std::string strReport =
        ReportOf("28/2 | 1:4 -1:4 00*16 | 01 00 00 00*125 | 00*128 | 00*128 | 00*128 | 00*128 |"
                 " 00*36");
    std::string strZeroes;
    for (int i = 0; i < 31; ++i) {
        strZeroes += " 0";
    }
    EXPECT_NE(strReport.find("\nAcual Frames Scanned : -1\n"), std::string::npos);
    EXPECT_NE(strReport.find("\nRSSI Measurement of Antenna 1:  1" + strZeroes +
                             "\nCINR Measurement of Antenna 1:  0" + strZeroes + "\nRSSI"),
              std::string::npos);
    EXPECT_NE(strReport.find("\nActual Framer Numbers Scanned:  0" + strZeroes +
                             "\nCurrent GPIO Pattern:  0 0 0 0"),
              std::string::npos);
}

TEST_F(AntennaSwitchingTest, TheStatusOfASelectionIsReported) {
    EXPECT_EQ(ReportOf("28/5 | 0:4"), std::string(pcAntennaSwitchingBanner) +
                                          "\n\tRECEIVED ANTENNA_SELECTION_RESPONSE !!"
                                          "\n\tSuccesfully set the Rx/Tx Antennas !!" +
                                          pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/5 | 2:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_SELECTION_RESPONSE !!"
                  "\n\tFailed in Setting Rx/Tx Antennas: Error Received : 2" +
                  pcAntennaSwitchingClosing);
    EXPECT_EQ(ReportOf("28/5 | -2:4"),
              std::string(pcAntennaSwitchingBanner) +
                  "\n\tRECEIVED ANTENNA_SELECTION_RESPONSE !!"
                  "\n\tFailed in Setting Rx/Tx Antennas: Error Received : -2" +
                  pcAntennaSwitchingClosing);
}

TEST_F(AntennaSwitchingTest, OtherSubtypesAreFramedAndEmpty) {
    EXPECT_EQ(ReportOf("28/3 | 00*700"),
              std::string(pcAntennaSwitchingBanner) + pcAntennaSwitchingClosing);
    EXPECT_EQ(FakeDevice::Deliver(Message("28/3")), 1U);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(AntennaSwitchingAndSelectionResponse(nullptr), 1U); }), "");
}

} // namespace
