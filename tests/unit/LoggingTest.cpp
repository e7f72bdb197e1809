#include "Logging.h"

#include "TestConsole.h"

namespace {

const std::string strLoggingBanner = "\n~~~~~~ LOGGER INDICATION RECEIVED ~~~~~~\n";
const std::string strLoggingClosing = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

const std::string strMACMenu = "\n\n*********** MAC LOGGING CONTROL ***********\n"
                               "\n 1. ENABLE MAC LOGGING "
                               "\n 2. DISABLE MAC LOGGING "
                               "\n\n********************************************\n"
                               "\nENTER OPTION : ";
const std::string strPHYMenu = "\n\n*********** PHY LOGGING CONTROL ***********\n"
                               "\n 1. ENABLE PHY LOGGING "
                               "\n 2. DISABLE PHY LOGGING "
                               "\n\n********************************************\n"
                               "\nENTER OPTION : ";

using Strings = std::vector<std::string>;

class LoggingTest : public ConsoleTest {
  protected:
    static std::string Log(const std::string &strKindAndPayload) {
        const std::string strReport = Report(LogIndication, "8/" + strKindAndPayload);
        EXPECT_TRUE(strReport.starts_with(strLoggingBanner)) << strReport;
        EXPECT_TRUE(strReport.ends_with(strLoggingClosing)) << strReport;
        return strReport.substr(strLoggingBanner.size(), strReport.size() -
                                                             strLoggingBanner.size() -
                                                             strLoggingClosing.size());
    }
};

TEST_F(LoggingTest, MACLoggingIsSwitched) {
    uint32_t u32Result = 0;
    EXPECT_EQ(PrintedBy([&] { u32Result = ControlMACLogging(); }, "1\n"), strMACMenu);
    EXPECT_EQ(u32Result, 1U);
    EXPECT_EQ(PrintedBy(ControlMACLogging, "2\n"), strMACMenu);
    EXPECT_EQ(FakeDevice::Sent(), (Strings{"27/2", "27/3"}));
    const FakeDevice::SendArguments stArguments{1, 4};
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), std::vector(2, stArguments));
}

TEST_F(LoggingTest, PHYLoggingIsSwitched) {
    uint32_t u32Result = 0;
    EXPECT_EQ(PrintedBy([&] { u32Result = ControlPHYLogging(); }, "1\n"), strPHYMenu);
    EXPECT_EQ(u32Result, 1U);
    EXPECT_EQ(PrintedBy(ControlPHYLogging, "2\n"), strPHYMenu);
    EXPECT_EQ(FakeDevice::Sent(), (Strings{"31/2", "31/3"}));
}

TEST_F(LoggingTest, OtherChoicesSendNothing) {
    for (const char *pcTyped : {"0\n", "3\n", "-1\n", "x\n"}) {
        uint32_t u32Result = 7;
        EXPECT_EQ(PrintedBy([&] { u32Result = ControlMACLogging(); }, pcTyped),
                  strMACMenu + "\nSORRY! INVALID OPTION SELECTED!\n");
        EXPECT_EQ(u32Result, 0U);
        EXPECT_EQ(PrintedBy([&] { u32Result = ControlPHYLogging(); }, pcTyped),
                  strPHYMenu + "\nSORRY! INVALID OPTION SELECTED!\n");
        EXPECT_EQ(u32Result, 0U);
    }
    EXPECT_EQ(FakeDevice::Sent(), Strings{});
}

TEST_F(LoggingTest, FailedSendsAreReported) {
    FakeDevice::SetSendResult(-1);
    uint32_t u32Result = 7;
    EXPECT_EQ(PrintedBy([&] { u32Result = ControlMACLogging(); }, "1\n"),
              strMACMenu + "\nFailed to send the IDLE MODE REQUEST Message to device!!");
    EXPECT_EQ(u32Result, 0U);
    FakeDevice::SetSendResult(1);
    u32Result = 7;
    EXPECT_EQ(PrintedBy([&] { u32Result = ControlPHYLogging(); }, "2\n"),
              strPHYMenu + "\nFailed to send the PHY LOG REQUEST Message to device!!");
    EXPECT_EQ(u32Result, 0U);
}

TEST_F(LoggingTest, PHYLogDataIsTwoHundredBytesOnALine) {
    EXPECT_EQ(Report(ProcessPHYLOggingInfo, "31/1 | 0a ff 5a*198 77*20"),
              " 0x0a 0xff" + Times(" 0x5a", 198) + "\n");
}

TEST_F(LoggingTest, MACLogDataIsFifteenHundredBytesOnALine) {
    EXPECT_EQ(Report(ProcessMACLOggingInfo, "27/1 | 0a ff 5a*1498 77*20"),
              " 0x0a 0xff" + Times(" 0x5a", 1498) + "\n");
}

TEST_F(LoggingTest, NullMessagesPrintNothing) {
    EXPECT_EQ(PrintedBy([] { ProcessPHYLOggingInfo(nullptr); }), "");
    EXPECT_EQ(PrintedBy([] { ProcessMACLOggingInfo(nullptr); }), "");
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(LogIndication(nullptr), 0U); }), "");
}

TEST_F(LoggingTest, OtherTypesAreInvalid) {
    EXPECT_EQ(Report(LogIndication, "9/1 | 16:2 00*16"), "\nINVALID MESSAGE TYPE!\n");
    EXPECT_EQ(LogIndication(RecordOf(Message("9/1 | 16:2 00*16")).get()), 0U);
}

TEST_F(LoggingTest, UnknownKindsPrintTheBannersOnly) {
    for (const char *pcMessage : {"8/0 | 4:2 00*4", "8/9 | 4:2 00*4", "8/257 | 4:2 00*4"}) {
        EXPECT_EQ(Report(LogIndication, pcMessage), strLoggingBanner + strLoggingClosing);
    }
    EXPECT_EQ(FakeDevice::Deliver(Message("8/0 | 4:2 00*4")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("8/9 | 4:2 00*4")), 1U);
}

TEST_F(LoggingTest, RangingEntries) {
    const std::string strEntries = "\nCODE : 0x1F"
                                   "\nFRAME NUMBER : 0xABCDEF"
                                   "\nSUB-CHANNEL : 0x2"
                                   "\nSYMBOL : 0x11\n"
                                   "\nCODE : 0xFFFFFFFF"
                                   "\nFRAME NUMBER : 0xABCDF0"
                                   "\nSUB-CHANNEL : 0xAB0"
                                   "\nSYMBOL : 0xFFFFFFFE\n";
    const std::string strData =
        "32:2 | ef cd ab 00 31:4 2:4 17:4 | f0 cd ab 00 ff ff ff ff 2736:4 -2:4";
    EXPECT_EQ(Log("1 | " + strData), "\nINITIAL RANGING LOG\n*******************\n" + strEntries);
    EXPECT_EQ(Log("2 | " + strData), "\nBW RANGING LOG\n*******************\n" + strEntries);
    EXPECT_EQ(Log("3 | " + strData), "\nPERIODIC RANGING LOG\n*******************\n" + strEntries);
}

TEST_F(LoggingTest, BandwidthEntries) {
    EXPECT_EQ(Log("4 | 35:2 | 1500:2 1480:2 7:2 01 20 65535:2 01 03 100000:4"
                  " | 0:2 0:2 dd cc bb aa 0:2 00 ff -1:4 | 01 02 03"),
              "\nBW LOG\n************\n"
              "\nALLOCATION RECEIVED : 1480"
              "\nPDU LENGTH : 1500"
              "\nCID : 8193"
              "\nVCID : 7"
              "\nSCH TYPE : 3"
              "\nBW REQ : 1"
              "\nQUEUE DEPTH : 65535"
              "\nFRAME NUMBER : 100000\n"
              "\nPadding packet\n-----------------"
              "\nALLOCATION RECEIVED : 0"
              "\nPDU LENGTH : 0"
              "\nCID : 43707"
              "\nVCID : 52445"
              "\nSCH TYPE : 255"
              "\nBW REQ : 0"
              "\nQUEUE DEPTH : 0"
              "\nFRAME NUMBER : -1\n");
}

TEST_F(LoggingTest, OnlyBothIdentifiersTogetherMeanPadding) {
    EXPECT_EQ(Log("4 | 64:2 | 00*4 bb aa dd cc 00*8 | 00*4 dd cc bc aa 00*8"
                  " | 00*4 dc cc bb aa 00*8 | 00*4 00 00 bb aa dd cc 00*6")
                  .find("Padding"),
              std::string::npos);
}

TEST_F(LoggingTest, PowerAdjustmentsAreQuarterSteps) {
    const std::string strEntries = "\nPOWER ADJUSTMENT : -1.500000 dBm"
                                   "\nFRAME OFFSET : 3"
                                   "\nFRAME NUMBER : 1000"
                                   "\nPOWER : 23\n"
                                   "\nPOWER ADJUSTMENT : 0.250000 dBm"
                                   "\nFRAME OFFSET : -2"
                                   "\nFRAME NUMBER : 70001"
                                   "\nPOWER : -10\n";
    const std::string strData = "32:2 | -6:4 3:4 1000:4 23:4 | 1:4 -2:4 70001:4 -10:4";
    EXPECT_EQ(Log("5 | " + strData), "\nCLOSED LOOP POWER ADJDUSTMENT LOG"
                                     "\n*********************************\n" +
                                         strEntries);
    EXPECT_EQ(Log("6 | " + strData), "\nOPEN LOOP POWER ADJDUSTMENT LOG"
                                     "\n*********************************\n" +
                                         strEntries);
}

TEST_F(LoggingTest, PowerAdjustmentsHaveSinglePrecision) {
    const std::string strReport = Log("5 | 16:2 | 16777217:4 0:4 0:4 0:4");
    EXPECT_NE(strReport.find("\nPOWER ADJUSTMENT : 4194304.000000 dBm\n"), std::string::npos);
}

TEST_F(LoggingTest, ConnectionEntriesEndBeforeTheBytesLeftOver) {
    EXPECT_EQ(Log("7 | 20:2 | 1:2 01 20 0:2 1:2 | 2:2 65535:2 1:2 0:2 | 09*4"),
              "\nCID LOG\n************\n"
              "\nCID : 8193\nVCID : 1\nDIR : 1\nARQ : 0\n"
              "\nCID : 65535\nVCID : 2\nDIR : 0\nARQ : 1\n");
}

TEST_F(LoggingTest, CQICHEntries) {
    EXPECT_EQ(Log("8 | 15:2 | 63:4 -1:4 0:4 01 02 03"), "\nCQICH LOG\n************\n"
                                                        "\nCQICH : 63\n"
                                                        "\nCQICH : -1\n"
                                                        "\nCQICH : 0\n");
}

TEST_F(LoggingTest, EmptyLogsSaySo) {
    for (const char *pcKind : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        EXPECT_EQ(Log(std::string(pcKind) + " | 0:2 00*16"), "\nEMPTY LOG DATA\n");
        EXPECT_EQ(Log(pcKind), "\nEMPTY LOG DATA\n");
    }
}

TEST_F(LoggingTest, ALogShorterThanAnEntryHasNone) {
    EXPECT_EQ(Log("8 | 3:2 00*16"), "\nCQICH LOG\n************\n");
    EXPECT_EQ(Log("7 | 7:2 00*16"), "\nCID LOG\n************\n");
    EXPECT_EQ(Log("1 | 15:2 00*16"), "\nINITIAL RANGING LOG\n*******************\n");
}

TEST_F(LoggingTest, ALengthAboveHalfTheRangeIsNegative) {
    EXPECT_EQ(Log("8 | 00 80 00*16"), "\nCQICH LOG\n************\n");
    EXPECT_EQ(Log("4 | ff ff 00*16"), "\nBW LOG\n************\n");
}

TEST_F(LoggingTest, EntriesEndWhereTheDataAreaDoes) {
    EXPECT_EQ(Log("8 | ff 7f 00*10232 7:4 01 02"),
              "\nCQICH LOG\n************\n" + Times("\nCQICH : 0\n", 2558) + "\nCQICH : 7\n");
}

TEST_F(LoggingTest, PrintersRefuseKindsThatAreNotTheirs) {
    const uint8_t aucData[16] = {};
    const ByteView stData{aucData, 16};
    EXPECT_EQ(PrintedBy([&] { DisplayRangeLog(4, stData, 16); }), "\nUNKNOWN RANGING LOG TYPE!!\n");
    EXPECT_EQ(PrintedBy([&] { DisplayRangeLog(0, stData, 16); }), "\nUNKNOWN RANGING LOG TYPE!!\n");
    EXPECT_EQ(PrintedBy([&] { DisplayPowerAdjLog(4, stData, 16); }),
              "\nUNKNOWN POWER ADJ LOG TYPE!!\n");
    EXPECT_EQ(PrintedBy([&] { DisplayPowerAdjLog(7, stData, 16); }),
              "\nUNKNOWN POWER ADJ LOG TYPE!!\n");
    EXPECT_EQ(PrintedBy([&] { DisplayRangeLog(4, stData, 0); }), "\nEMPTY LOG DATA\n");
    EXPECT_EQ(PrintedBy([&] { DisplayPowerAdjLog(5, {}, 16); }), "\nEMPTY LOG DATA\n");
}

TEST_F(LoggingTest, ADumpHasEightBytesALine) {
    const uint8_t aucData[] = {0, 1, 2, 3, 4, 5, 6, 7, 0xFF};
    uint32_t u32Result = 7;
    EXPECT_EQ(PrintedBy([&] {
                  u32Result = DebugDump("SOME BYTES", {aucData, 9});
              }),
              "\n================= SOME BYTES =================\n"
              "\n 00000000 : 00 01 02 03 04 05 06 07 "
              "\n 00000008 : ff "
              "\n================================================\n");
    EXPECT_EQ(u32Result, 0U);
}

TEST_F(LoggingTest, ADumpOfNothingPrintsNothing) {
    const uint8_t aucData[] = {1};
    uint32_t u32Result = 7;
    EXPECT_EQ(PrintedBy([&] { u32Result = DebugDump("NONE", {aucData, 0}); }), "");
    EXPECT_EQ(u32Result, 0U);
    EXPECT_EQ(PrintedBy([&] { DebugDump("NONE", {}); }), "");
}

} // namespace
