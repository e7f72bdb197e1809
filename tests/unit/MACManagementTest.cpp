#include "MACManagement.h"

#include <cstring>

#include "TestConsole.h"

namespace {

const std::string strMACManagementMenu = "\n******** MAC MANAGEMENT MESSAGE MENU********\n"
                                         "\n 1. ENABLE MAC MANAGEMENT MSGS"
                                         "\n 2. DISABLE MAC MANAGEMENT MSGS"
                                         "\n 3. GET MAC MESSAGES STATUS LOGGING "
                                         "\n\n********************************************\n"
                                         "\nENTER OPTION : ";

const std::string strMACManagementBanner = "\n~~~~~~~~~~MAC MGMT INDICATION ~~~~~~~~~~\n";
const std::string strMACManagementClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

struct Name {
    uint32_t u32Code;
    const char *pcName;
};

constexpr Name astNames[] = {
    {0, "Uplink Channel Descriptor"},
    {1, "Downlink Channel Descriptor"},
    {2, "Downlink Access Definition"},
    {3, "Uplink Access Definition"},
    {4, "Ranging Request"},
    {5, "Ranging Response"},
    {6, "Registration Request"},
    {7, "Registration Response"},
    {9, "Privacy Key Management Request"},
    {10, "Privacy Key Management Response"},
    {11, "Dynamic Service Addition Request"},
    {12, "Dynamic Service Addition Response"},
    {13, "Dynamic Service Addition Acknowledge"},
    {14, "Dynamic Service Change Request"},
    {15, "Dynamic Service Change Response"},
    {16, "Dynamic Service Change Acknowledge"},
    {17, "Dynamic Service Deletion Request"},
    {18, "Dynamic Service Deletion Response"},
    {21, "Multicast Assignment Request"},
    {22, "Multicast Assignment Response"},
    {23, "Downlink Burst Profile Change Request"},
    {24, "Downlink Burst Profile Change Response"},
    {25, "Reset Command"},
    {26, "SS Basic Capability Request"},
    {27, "SS Basic Capability Response"},
    {28, "SS network clock comparision"},
    {29, "De/Re-register Command"},
    {30, "DSx Received Message"},
    {31, "Config File TFTP Complete Message"},
    {32, "Config File TFTP Complete Response"},
    {33, "Standalone ARQ Feedback"},
    {34, "ARQ Discard message"},
    {35, "ARQ Reset message"},
    {36, "Channel measurement Report Request"},
    {37, "Channel measurement Report Response"},
    {38, "Fast Power Control"},
    {39, "Mesh Network Configuration"},
    {40, "Mesh Network Entry"},
    {41, "Mesh Distributed Schedule"},
    {42, "Mesh Centralized Schedule"},
    {43, "Mesh Centralized Schedule Configuration"},
    {44, "AAS Feedback Request"},
    {45, "AAS Feedback Response"},
    {46, "AAS Beam Select message"},
    {47, "AAS Beam Request message"},
    {48, "AAS Beam Response message"},
    {49, "SS De-Registration message"},
    {50, "sleep request message"},
    {51, "sleep response message"},
    {52, "traffic indication message"},
    {53, "neighbour advertisement message"},
    {54, "scanning interval allocation request"},
    {55, "scanning interval allocation response"},
    {56, "BS HO request message"},
    {57, "MS HO request message"},
    {58, "BS HO response message"},
    {59, "HO indication message"},
    {60, "Scanning result report message"},
    {61, "BS broadcast paging message"},
    {62, "MBAS MAP message"},
    {63, "Power control mode change request message"},
    {64, "Power control mode change response message"},
    {65, "Setup/Tear-down of long term MIMO precoding"},
    {66, "Association result report message"},
};
constexpr const char *pcUnknown = "UNKNOWN MAC Management message.";

class MACManagementTest : public ConsoleTest {
  protected:
    static std::string Trace(const std::string &strPayload) {
        return Report(MACMgmtMessage, "21/1 | " + strPayload);
    }
    static std::string NameOfCode(uint32_t u32Code) {
        char acName[60];
        std::memset(acName, '?', sizeof acName);
        GetMACMessageName(u32Code, acName, sizeof acName);
        return acName;
    }
};

TEST_F(MACManagementTest, ATraceRecordIsPrintedFieldByField) {
    EXPECT_EQ(Trace("01 cd 34 ab 12 4:4 5:4 01 fa 00 00 02 | 04 00 a5 ff 10"),
              strMACManagementBanner +
                  "\nFRAME NUMBER : 0x12AB34CD"
                  "\nMESSAGE DIRECTION : MS to BS"
                  "\nMESSAGE : (CODE : 4) Ranging Request "
                  "\nData (5) bytes :\n 0x04 0x00 0xa5 0xff 0x10\n"
                  "\nCID  :  0xFA01"
                  "\nCMAC OK  :  2" +
                  strMACManagementClosing);
}

TEST_F(MACManagementTest, DirectionsHaveTheirLinesAndOthersNone) {
    const auto ReportFor = [](const std::string &strDirection) {
        return Trace(strDirection + " 7:4 1:4 0:4 65535:4 00");
    };
    const auto Expected = [](const std::string &strLine) {
        return strMACManagementBanner + "\nFRAME NUMBER : 0x7" + strLine +
               "\nMESSAGE : (CODE : 1) Downlink Channel Descriptor "
               "\nCID  :  0xFFFF"
               "\nCMAC OK  :  0" +
               strMACManagementClosing;
    };
    EXPECT_EQ(ReportFor("00"), Expected("\nMESSAGE DIRECTION : BS to MS"));
    EXPECT_EQ(ReportFor("01"), Expected("\nMESSAGE DIRECTION : MS to BS"));
    EXPECT_EQ(ReportFor("02"), Expected(""));
    EXPECT_EQ(ReportFor("ff"), Expected(""));
}

TEST_F(MACManagementTest, EveryCodeHasItsName) {
    for (const Name &stName : astNames) {
        EXPECT_EQ(NameOfCode(stName.u32Code), stName.pcName) << stName.u32Code;
    }
    EXPECT_EQ(std::size(astNames), 64U);
}

TEST_F(MACManagementTest, TheTableHasTheCodesInOrder) {
    EXPECT_EQ(sizeof MACMgmtMsgs, 64U * 62U);
    for (size_t i = 0; i < std::size(astNames); ++i) {
        EXPECT_EQ(MACMgmtMsgs[i].u8Code, astNames[i].u32Code);
        EXPECT_STREQ(MACMgmtMsgs[i].acName, astNames[i].pcName);
    }
}

TEST_F(MACManagementTest, OtherCodesAreUnknown) {
    for (const uint32_t u32Code : {8U, 19U, 20U, 67U, 255U, 256U, 261U, 322U, 0xFFFFFF05U}) {
        EXPECT_EQ(NameOfCode(u32Code), pcUnknown) << u32Code;
    }
}

TEST_F(MACManagementTest, NamesStandInTheReport) {
    const auto MessageLine = [](const std::string &strCode) {
        const std::string strReport = Trace("00 0:4 " + strCode + ":4 0:4 0:4 00");
        const size_t uBegin = strReport.find("\nMESSAGE : ");
        return strReport.substr(uBegin, strReport.find("\nCID") - uBegin);
    };
    EXPECT_EQ(MessageLine("0"), "\nMESSAGE : (CODE : 0) Uplink Channel Descriptor ");
    EXPECT_EQ(MessageLine("66"), "\nMESSAGE : (CODE : 66) Association result report message ");
    EXPECT_EQ(MessageLine("8"), "\nMESSAGE : (CODE : 8) UNKNOWN MAC Management message. ");
    EXPECT_EQ(MessageLine("19"), "\nMESSAGE : (CODE : 19) UNKNOWN MAC Management message. ");
    EXPECT_EQ(MessageLine("20"), "\nMESSAGE : (CODE : 20) UNKNOWN MAC Management message. ");
    EXPECT_EQ(MessageLine("261"), "\nMESSAGE : (CODE : 261) UNKNOWN MAC Management message. ");
    EXPECT_EQ(MessageLine("-1"), "\nMESSAGE : (CODE : -1) UNKNOWN MAC Management message. ");
}

TEST_F(MACManagementTest, ABufferThatIsTooSmallStaysAsItIs) {
    char acName[61];
    std::memset(acName, '?', sizeof acName);
    GetMACMessageName(4, acName, 59);
    GetMACMessageName(4, acName, 0);
    GetMACMessageName(4, acName, -1);
    EXPECT_EQ(std::string(acName, sizeof acName), std::string(61, '?'));
    GetMACMessageName(4, nullptr, 60);
}

TEST_F(MACManagementTest, TheWholeBufferIsClearedBeforeTheNameIsCopied) {
    char acName[80];
    std::memset(acName, '?', sizeof acName);
    GetMACMessageName(4, acName, 79);
    EXPECT_EQ(std::string(acName, sizeof acName), "Ranging Request" + std::string(64, '\0') + "?");
    std::memset(acName, '?', sizeof acName);
    GetMACMessageName(20, acName, 60);
    EXPECT_EQ(std::string(acName, 61),
              "UNKNOWN MAC Management message." + std::string(29, '\0') + "?");
}

TEST_F(MACManagementTest, NoBodyHasNoDataHeading) {
    EXPECT_EQ(Trace("00 ff ff ff ff 53:4 0:4 ff ff ff ff ff | 01 02 03"),
              strMACManagementBanner +
                  "\nFRAME NUMBER : 0xFFFFFFFF"
                  "\nMESSAGE DIRECTION : BS to MS"
                  "\nMESSAGE : (CODE : 53) neighbour advertisement message "
                  "\nCID  :  0xFFFFFFFF"
                  "\nCMAC OK  :  255" +
                  strMACManagementClosing);
}

TEST_F(MACManagementTest, ANegativeLengthHasAHeadingAndNoBytes) {
    EXPECT_EQ(Trace("00 0:4 2:4 -5:4 0:4 01 | 01 02 03"),
              strMACManagementBanner +
                  "\nFRAME NUMBER : 0x0"
                  "\nMESSAGE DIRECTION : BS to MS"
                  "\nMESSAGE : (CODE : 2) Downlink Access Definition "
                  "\nData (-5) bytes :\n\n"
                  "\nCID  :  0x0"
                  "\nCMAC OK  :  1" +
                  strMACManagementClosing);
}

TEST_F(MACManagementTest, TheBodyEndsWhereTheDataAreaDoes) {
    EXPECT_EQ(Trace("00 0:4 2:4 ff ff ff 7f 0:4 01 | 01 02 00*10219 03"),
              strMACManagementBanner +
                  "\nFRAME NUMBER : 0x0"
                  "\nMESSAGE DIRECTION : BS to MS"
                  "\nMESSAGE : (CODE : 2) Downlink Access Definition "
                  "\nData (2147483647) bytes :\n 0x01 0x02" +
                  Times(" 0x00", 10219) +
                  " 0x03\n"
                  "\nCID  :  0x0"
                  "\nCMAC OK  :  1" +
                  strMACManagementClosing);
}

TEST_F(MACManagementTest, BytesBehindTheBodyAreNotPrinted) {
    EXPECT_NE(Trace("00 0:4 2:4 2:4 0:4 01 | 01 02 03").find("bytes :\n 0x01 0x02\n\nCID"),
              std::string::npos);
}

TEST_F(MACManagementTest, ALongBodyStandsOnOneLine) {
    std::string strBytes;
    for (int i = 0; i < 100; ++i) {
        strBytes += " 0x5a";
    }
    EXPECT_NE(Trace("00 0:4 2:4 100:4 0:4 01 | 5a*100")
                  .find("\nData (100) bytes :\n" + strBytes + "\n\nCID  :  0x0"),
              std::string::npos);
}

TEST_F(MACManagementTest, TheStateIsEnabledForOneOnly) {
    const auto Expected = [](const std::string &strLine) {
        return "\n~~~~~~~~~~MAC MGMT MESSAGE STATUS TO HOST~~~~~~~~~~\n" + strLine +
               "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
    };
    const auto State = [](const std::string &strWord) {
        return Report(MACMgmtMessage, "21/3 | " + strWord);
    };
    EXPECT_EQ(State("1:4"), Expected("\nMAC MGMT MESSAGES TO HOST IS ENABLED"));
    for (const char *pcWord : {"0:4", "2:4", "-1:4", "01 01 00 00", "01 00 00 01"}) {
        EXPECT_EQ(State(pcWord), Expected("\nMAC MGMT MESSAGES TO HOST IS DISABLED")) << pcWord;
    }
}

TEST_F(MACManagementTest, OtherSubtypesAndNullPrintNothing) {
    EXPECT_EQ(Report(MACMgmtMessage, "21/0 | 00*30"), "");
    EXPECT_EQ(Report(MACMgmtMessage, "21/2 | 00*30"), "");
    EXPECT_EQ(Report(MACMgmtMessage, "21/4 | 00*30"), "");
    EXPECT_EQ(PrintedBy([] { MACMgmtMessage(nullptr); }), "");
}

TEST_F(MACManagementTest, TheTypeIsNotLookedAt) {
    EXPECT_EQ(Report(MACMgmtMessage, "99/3 | 1:4"),
              "\n~~~~~~~~~~MAC MGMT MESSAGE STATUS TO HOST~~~~~~~~~~\n"
              "\nMAC MGMT MESSAGES TO HOST IS ENABLED\n"
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

TEST_F(MACManagementTest, ChoicesAreSubtypes) {
    EXPECT_EQ(PrintedBy(MACMgmtMessageRequest, "1\n"), strMACManagementMenu);
    EXPECT_EQ(PrintedBy(MACMgmtMessageRequest, "2\n"), strMACManagementMenu);
    EXPECT_EQ(PrintedBy(MACMgmtMessageRequest, "3\n"), strMACManagementMenu);
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{"21/1", "21/2", "21/3"}));
    const FakeDevice::SendArguments stArguments{1, 4};
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), std::vector(3, stArguments));
}

TEST_F(MACManagementTest, OtherChoicesAskForTheState) {
    for (const char *pcTyped : {"0\n", "4\n", "-1\n", "abc\n"}) {
        EXPECT_EQ(PrintedBy(MACMgmtMessageRequest, pcTyped), strMACManagementMenu);
    }
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>(4, "21/3"));
}

TEST_F(MACManagementTest, TheLowByteOfTheSendResultComesBackAndIsNotReported) {
    FakeDevice::SetSendResult(-5);
    uint32_t u32Result = 0;
    EXPECT_EQ(PrintedBy([&] { u32Result = MACMgmtMessageRequest(); }, "1\n"), strMACManagementMenu);
    EXPECT_EQ(u32Result, 251U);
}

} // namespace
