#include "VendorSpecificParameters.h"

#include "Console.h"
#include "TestConsole.h"

namespace {

constexpr const char *pcVendorSpecificParametersMenu =
    "\n*********** VENDOR SPECIFIC PARAM ***********\n"
    "\n 1. VSA READ REQUEST"
    "\n 2. VSA WRITE REQUEST"
    "\n 3. VSA Size REQUEST"
    "\n\n*********************************************\n"
    "\nENTER OPTION : ";

constexpr const char *pcRule = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";
constexpr const char *pcReadHeading =
    "\n~~~~~~~~~~~~~~ VSRO READ INDICATION RECEIVED ~~~~~~~~~~~~~~\n";

class VendorSpecificTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        constexpr uint8_t aucUnknown[] = {0xEE, 0xEE};
        gaucRespATRLock.Store({aucUnknown, 2});
    }

    static std::vector<int> ATRLock() {
        const Record<2> stLock = gaucRespATRLock.Load();
        return {stLock.aucBytes[0], stLock.aucBytes[1]};
    }

    static std::string ReportOf(std::string_view strMessage) {
        return Report(DisplayVendorSpecificParamInfo, strMessage);
    }
};

std::vector<std::string> OneSent(const char *pcMessage) { return {Recorded(pcMessage)}; }

TEST_F(VendorSpecificTest, AReadAsksOffsetAndSize) {
    EXPECT_EQ(PrintedBy(VendorSpecificParamRequest, "1 217 8\n"),
              std::string(pcVendorSpecificParametersMenu) +
                  "Enter the VSA offset : Enter the Size of VSA Data to be Read : ");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/1 | d9 00 08 00 00*9"));
}

TEST_F(VendorSpecificTest, AWriteAsksEachByteWithoutAPrompt) {
    EXPECT_EQ(PrintedBy(VendorSpecificParamRequest, "2 225 3 1 255 -1\n"),
              std::string(pcVendorSpecificParametersMenu) +
                  "Enter the VSA offset : Enter the Size of VSA Data to Write : ");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/3 | e1 00 03 00 01 ff ff 00"));
}

TEST_F(VendorSpecificTest, AWrittenByteIsTheLowEightBits) {
    PrintedBy(SendVSAWriteRequest, "0 2 256 511\n");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/3 | 00 00 02 00 00 ff 00"));
}

TEST_F(VendorSpecificTest, AWriteOfNothingAsksNoByteAndSendsFive) {
    PrintedBy(SendVSAWriteRequest, "225 0 77\n");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/3 | e1 00 00 00 00"));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 9}}));
    EXPECT_EQ(Unread(), " 77\n");
}

TEST_F(VendorSpecificTest, ASizeRequestHasNoPayload) {
    EXPECT_EQ(PrintedBy(VendorSpecificParamRequest, "3\n"), pcVendorSpecificParametersMenu);
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/4"));
}

TEST_F(VendorSpecificTest, OffsetAndSizeAreCutToSixteenBits) {
    PrintedBy(SendVSAReadRequest, "65539 65537\n");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/1 | 03 00 01 00 00 00"));
}

TEST_F(VendorSpecificTest, AWriteLargerThanAMessageIsCutAndAllThatWasTypedIsRead) {
    std::string strTyped = "7 10236";
    for (int i = 0; i < 10236; ++i) {
        strTyped += i < 10235 ? " 170" : " 187";
    }
    PrintedBy(SendVSAWriteRequest, strTyped + "\nrest");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/3 | 07 00 fb 27 aa*10235 00"));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 10244}}));
    EXPECT_EQ(Unread(), "\nrest");
}

TEST_F(VendorSpecificTest, AWriteLargerThanTheRecordIsCut) {
    Record<7> stRecord;
    Type("225 5 1 2 3 4 5\nrest");
    EXPECT_EQ(SendVendorSpecificParamRequest(stRecord.Span(), 3), 0);
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/3 | e1 00 02 00 01 02 00"));
    EXPECT_EQ(Unread(), "\nrest");
}

TEST_F(VendorSpecificTest, AReadLargerThanAMessageIsCut) {
    PrintedBy(SendVSAReadRequest, "7 -1\n");
    EXPECT_EQ(FakeDevice::Sent(), OneSent("10/1 | 07 00 fb 27 00*10236"));
}

TEST_F(VendorSpecificTest, ANegativeResultIsPrinted) {
    FakeDevice::SetSendResult(-5);
    EXPECT_EQ(PrintedBy(VendorSpecificParamRequest, "3\n"),
              std::string(pcVendorSpecificParametersMenu) + "\nRECEIVED ERROR : -5\n");
    FakeDevice::SetSendResult(5);
    EXPECT_EQ(PrintedBy(VendorSpecificParamRequest, "3\n"), pcVendorSpecificParametersMenu);
    EXPECT_EQ(FakeDevice::Sent().size(), 2U);
}

TEST_F(VendorSpecificTest, AnyOtherChoiceIsRefused) {
    for (const char *pcChoice : {"0\n", "4\n", "-1\n", "x\n"}) {
        EXPECT_EQ(PrintedBy(VendorSpecificParamRequest, pcChoice),
                  std::string(pcVendorSpecificParametersMenu) +
                      "\nSORRY! INVALID OPTION SELECTED!");
    }
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(VendorSpecificTest, TheReadOnlyRegionHasTheIMEI) {
    Record<4> stHead;
    const auto Ask = [&] { EXPECT_EQ(GetVSROParam(stHead.Span()), 0); };
    EXPECT_EQ(PrintedBy(Ask, "1\n"), "\n************* VSRO PARAM *************\n"
                                     "\n 1. IMEI"
                                     "\n\n**************************************\n"
                                     "\nENTER OPTION : ");
    EXPECT_EQ(FormatBytes(stHead.aucBytes, 4), "d9 00 08 00");
}

TEST_F(VendorSpecificTest, TheWritableRegionHasTheATRLock) {
    Record<4> stHead;
    const auto Ask = [&] { EXPECT_EQ(GetVSRWParam(stHead.Span()), 0); };
    EXPECT_EQ(PrintedBy(Ask, "1\n"), "\n*********** VSRW PARAM ***********\n"
                                     "\n 1. ATR-LOCK"
                                     "\n\n**********************************\n"
                                     "\nENTER OPTION : ");
    EXPECT_EQ(FormatBytes(stHead.aucBytes, 4), "e1 00 02 00");
}

TEST_F(VendorSpecificTest, AnEntryThatIsNoneLeavesTheHeadAlone) {
    Record<4> stHead;
    const auto Ask = [&] { EXPECT_EQ(GetVSRWParam(stHead.Span()), -1); };
    EXPECT_EQ(PrintedBy(Ask, "2\n"), "\n*********** VSRW PARAM ***********\n"
                                     "\n 1. ATR-LOCK"
                                     "\n\n**********************************\n"
                                     "\nENTER OPTION : SORRY!! INVALID OPTION SELECTED!!");
    EXPECT_EQ(FormatBytes(stHead.aucBytes, 4), "00*4");
}

TEST_F(VendorSpecificTest, WithoutAHeadNothingIsAsked) {
    EXPECT_EQ(PrintedBy([] {
                  EXPECT_EQ(GetVSROParam({}), 0);
                  EXPECT_EQ(GetVSRWParam({}), 0);
              }),
              "");
}

TEST_F(VendorSpecificTest, AReadIndicationShowsItsData) {
    EXPECT_EQ(ReportOf("10/1 | d9 00 08 00 49 01 54 20 32 3a 51 f8"),
              std::string(pcReadHeading) +
                  "\n Data (8 bytes) :\n 0x49 0x01 0x54 0x20 0x32 0x3A 0x51 0xF8\n" + pcRule);
}

TEST_F(VendorSpecificTest, AReadIndicationOfNothingShowsHeadingAndRule) {
    EXPECT_EQ(ReportOf("10/1 | e1 00 00 00 12 34"), std::string(pcReadHeading) + pcRule);
}

TEST_F(VendorSpecificTest, AWriteIndicationShowsItsData) {
    EXPECT_EQ(ReportOf("10/3 | e1 00 02 00 0a 0b"),
              std::string("\n~~~~~~ VSRW WRITE INDICATION RECEIVED ~~~~~~\n"
                          "\n Data (2 bytes) :\n 0x0A 0x0B\n") +
                  pcRule);
}

TEST_F(VendorSpecificTest, ASizeIndicationShowsTheSize) {
    EXPECT_EQ(ReportOf("10/4 | 4096:4"),
              std::string("\n~~~~~~ VSRegion SIZE INDICATION RECEIVED ~~~~~~\n"
                          "\nVendor Specific Region Size : 4096\n") +
                  pcRule);
    EXPECT_NE(ReportOf("10/4 | -1:4").find("\nVendor Specific Region Size : -1\n"),
              std::string::npos);
}

TEST_F(VendorSpecificTest, OtherSubtypesPrintNothing) {
    for (const char *pcMessage : {"10/0 | 00*8", "10/2 | 00*8", "10/5 | 00*8"}) {
        EXPECT_EQ(ReportOf(pcMessage), "");
    }
    const Bytes aucMessage = Message("10/2 | 00*8");
    EXPECT_EQ(FakeDevice::Deliver(aucMessage), 1U);
}

TEST_F(VendorSpecificTest, AnotherTypeIsRefused) {
    EXPECT_EQ(ReportOf("11/1 | e1 00 02 00 0a 0b"), "\nINVALID MESSAGE TYPE!");
    EXPECT_EQ(ATRLock(), (std::vector<int>{0xEE, 0xEE}));
}

TEST_F(VendorSpecificTest, NullPrintsNothing) {
    EXPECT_EQ(PrintedBy([] {
                  EXPECT_EQ(DisplayVendorSpecificParamInfo(nullptr), 0U);
                  DisplayVendorSpecificParamData({});
              }),
              "");
}

TEST_F(VendorSpecificTest, DataStopsWhereTheDataAreaStops) {
    EXPECT_EQ(ReportOf("10/1 | 00 00 ff ff 01 02 00*10233 03"),
              std::string(pcReadHeading) + "\n Data (65535 bytes) :\n 0x01 0x02" +
                  Times(" 0x00", 10233) + " 0x03\n" + pcRule);
    EXPECT_EQ(ReportOf("10/1"), std::string(pcReadHeading) + pcRule);
}

TEST_F(VendorSpecificTest, AnAnswerThatCoversTheATRLockKeepsIt) {
    FakeDevice::Deliver(Message("10/1 | e1 00 02 00 12 34"));
    EXPECT_EQ(ATRLock(), (std::vector<int>{0x12, 0x34}));
    FakeDevice::Deliver(Message("10/1 | d9 00 0c 00 00*8 56 78 9a bc"));
    EXPECT_EQ(ATRLock(), (std::vector<int>{0x56, 0x78}));
}

TEST_F(VendorSpecificTest, AnAnswerThatDoesNotCoverTheATRLockChangesNothing) {
    FakeDevice::Deliver(Message("10/1 | d9 00 08 00 01 02 03 04 05 06 07 08 09 0a"));
    FakeDevice::Deliver(Message("10/1 | e2 00 02 00 12 34"));
    FakeDevice::Deliver(Message("10/1 | e1 00 00 00 12 34"));
    FakeDevice::Deliver(Message("10/3 | e1 00 02 00 12 34"));
    EXPECT_EQ(ATRLock(), (std::vector<int>{0xEE, 0xEE}));
}

TEST_F(VendorSpecificTest, OneByteOfTheATRLockLeavesTheOther) {
    FakeDevice::Deliver(Message("10/1 | e1 00 01 00 12 34"));
    EXPECT_EQ(ATRLock(), (std::vector<int>{0x12, 0xEE}));
}

TEST_F(VendorSpecificTest, TheEndOfTheInputInsideAWriteSendsNothing) {
    Type("2 225 2 1\n");
    EndInput();
    EXPECT_THROW(VendorSpecificParamRequest(), ClientEnd);
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

} // namespace
