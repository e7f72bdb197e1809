#include "SleepMode.h"

#include "Message.h"
#include "TestConsole.h"

namespace {

class SleepModeTest : public ConsoleTest {
  protected:
    static std::string Typed(std::string_view strTyped) {
        return PrintedBy([] { SendSleepPSCDefinitionMsg(); }, strTyped);
    }
    static std::vector<std::string> SentOf(std::string_view strMessage) {
        return {Recorded(strMessage)};
    }
};

constexpr const char *pcQuestion = "\nDO YOU WANT TO ENTER THE SLEEP MODE VALUES MANUALLY\n"
                                   "1-Yes- Fields needs to be filled for sleep mode request\n"
                                   "0-No - Default values are sent sleep mode request\n";
constexpr const char *pcCount =
    "\n NUMBER OF DEFINITIONS TO BE DEFINED: [Max: 3, if DEF PSC is disable else Max: 2] ";
constexpr const char *pcBeforeCIDs =
    "\nENTER THE ACTIVITY: 0 - Defn, 1- Activation, 2- DeActivation, 3 - DefnAndActivation:  "
    "\nENTER THE PSCID: [If it is new definition, PSCID should be 0xFF ]"
    "\nENTER THE PSCTYPE: "
    "\nENTER THE DIRECTION: 0 - Not Specified, 1 - DL, 2 - UL: "
    "\nENTER THE NUMBER OF CIDs (Max 16): ";
constexpr const char *pcCID = "\nENTER THE VALUE OF CID: [2 Byte Value] ";
constexpr const char *pcAfterCIDs = "\nENTER THE ListenWindow: [1 Byte Value] "
                                    "\nENTER THE InitialSleepWindow: [1 Byte Value] "
                                    "\nENTER THE FinalSleepWindowBase: [10 Bit Value] "
                                    "\nENTER THE FinalSleepWindowExp: [3 Bit Value] "
                                    "\nENTER THE TTWF: [Valid values : 0/1] "
                                    "\nENTER THE TIR: [Valid values : 0/1] ";

TEST_F(SleepModeTest, TheDefaultDefinitionIsSentWhenNothingIsEntered) {
    EXPECT_EQ(Typed("0\n"), pcQuestion);
    EXPECT_EQ(FakeDevice::Sent(),
              SentOf("26/1 | 01 00 00 00  ff 01 00 08 05 20 04 00 01 01 00*186"));
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector<FakeDevice::SendArguments>{{1, 204}}));
}

TEST_F(SleepModeTest, ADefinitionIsEnteredFieldByField) {
    EXPECT_EQ(Typed("1 1  3 255 2 1  2 4660 65535  10 11 1023 7 1 0\n"),
              pcQuestion + std::string(pcCount) + pcBeforeCIDs + pcCID + pcCID + pcAfterCIDs);
    EXPECT_EQ(FakeDevice::Sent(),
              SentOf("26/1 | 01 00 00 00  ff 02 01 0b 07 0a ff 03 01 00 00 00  34 12 ff ff 00*28"
                     "  03 02 00 00 00 | 00*147"));
}

TEST_F(SleepModeTest, ThreeDefinitionsLieBackToBack) {
    Typed("1 3"
          " 0 1 1 0 0 1 2 3 4 0 0"
          " 1 2 1 0 1 77 5 6 7 8 0 0"
          " 2 3 1 0 0 9 10 11 12 0 0\n");
    EXPECT_EQ(FakeDevice::Sent(),
              SentOf("26/1 | 03 00 00 00 |"
                     " 01 01 00 02 04 01 03 00 00 00 00 00 00*32 00 00 00 00 00 |"
                     " 02 01 00 06 08 05 07 00 00 00 00 00 4d 00 00*30 01 01 00 00 00 |"
                     " 03 01 00 0a 0c 09 0b 00 00 00 00 00 00*32 02 00 00 00 00 | 00*49"));
}

TEST_F(SleepModeTest, FiveDefinitionsBecomeThree) {
    const std::string strPrinted =
        Typed("1 5 0 1 1 0 0 1 2 3 4 0 0 0 1 1 0 0 1 2 3 4 0 0 0 1 1 0 0 1 2 3 4 0 0 99\n");
    EXPECT_EQ(strPrinted, pcQuestion + std::string(pcCount) +
                              Times(pcBeforeCIDs + std::string(pcAfterCIDs), 3));
    EXPECT_EQ(FakeDevice::Sent().at(0).substr(0, 19), "26/1 | 03 00 00 00 ");
    EXPECT_EQ(Unread(), " 99\n");
}

TEST_F(SleepModeTest, TwentyCIDsBecomeSixteen) {
    const std::string strPrinted =
        Typed("1 1 0 255 1 0 20 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 32 8 4 5 1 1 99\n");
    EXPECT_EQ(strPrinted,
              pcQuestion + std::string(pcCount) + pcBeforeCIDs + Times(pcCID, 16) + pcAfterCIDs);
    EXPECT_EQ(FakeDevice::Sent(),
              SentOf("26/1 | 01 00 00 00  ff 01 00 08 05 20 04 00 01 01 00 00"
                     "  1:2 2:2 3:2 4:2 5:2 6:2 7:2 8:2 9:2 10:2 11:2 12:2 13:2 14:2 15:2 16:2"
                     "  00 10 00 00 00 | 00*147"));
    EXPECT_EQ(Unread(), " 99\n");
}

TEST_F(SleepModeTest, NegativeCountsAreSentAndAskForNothing) {
    EXPECT_EQ(Typed("1 -1\n"), pcQuestion + std::string(pcCount));
    EXPECT_EQ(Typed("1 1 0 255 1 0 -2 32 8 4 5 1 1\n"),
              pcQuestion + std::string(pcCount) + pcBeforeCIDs + pcAfterCIDs);
    EXPECT_EQ(
        FakeDevice::Sent(),
        (std::vector<std::string>{Recorded("26/1 | ff ff ff ff 00*196"),
                                  Recorded("26/1 | 01 00 00 00  ff 01 00 08 05 20 04 00 01 01 00*34"
                                           "  00 fe ff ff ff | 00*147")}));
}

TEST_F(SleepModeTest, ValuesAreNotCheckedAndTheirLowBitsAreSent) {
    Typed("7 1 256 511 257 258 0 300 301 70000 302 303 -1\n");
    EXPECT_EQ(FakeDevice::Sent(),
              SentOf("26/1 | 01 00 00 00  ff 01 02 2d 2e 2c 70 11 2f ff 00*34  00 00 00 00 00 |"
                     " 00*147"));
}

TEST_F(SleepModeTest, TheSendResultIsReturned) {
    FakeDevice::SetSendResult(-5);
    Type("0\n");
    EXPECT_EQ(SendSleepPSCDefinitionMsg(), -5);
}

TEST_F(SleepModeTest, TheIndicationShowsTheFirstDefinition) {
    EXPECT_EQ(Report(SleepModeIndication, "26/2 | 02 00 00 00  01 02 03 04 05 06 ff 03 00*188"),
              "\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"
              "\n APP: numOfDefinitions 2"
              "\n APP: u16FinalSleepWindowBase 1023 \n");
    EXPECT_EQ(FakeDevice::Deliver(Message("26/2 | 00*200")), 1U);
}

TEST_F(SleepModeTest, TheNumberOfDefinitionsIsSignedTheSleepWindowIsNot) {
    EXPECT_EQ(Report(SleepModeIndication, "26/2 | -2:4 00*6 ff ff 00*188"),
              "\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"
              "\n APP: numOfDefinitions -2"
              "\n APP: u16FinalSleepWindowBase 65535 \n");
}

TEST_F(SleepModeTest, OtherSubtypesAreUnknown) {
    EXPECT_EQ(Report(SleepModeIndication, "26/1 | 00*200"),
              "\nUNKNOWN SLEEP MODE INDICATION TYPE!!\n");
    EXPECT_EQ(FakeDevice::Deliver(Message("26/3")), 0U);
}

TEST_F(SleepModeTest, ANullMessageIsInvalid) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(SleepModeIndication(nullptr), 0U); }),
              "\nINVALID WIMAX MESSAGE!!");
}

TEST_F(SleepModeTest, WhatWasNotReceivedIsZero) {
    EXPECT_EQ(Report(SleepModeIndication, "26/2 | 03 00 00 00 ff*6 07"),
              "\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"
              "\n APP: numOfDefinitions 3"
              "\n APP: u16FinalSleepWindowBase 7 \n");
    EXPECT_EQ(Report(SleepModeIndication, "26/2"), "\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"
                                                   "\n APP: numOfDefinitions 0"
                                                   "\n APP: u16FinalSleepWindowBase 0 \n");
}

} // namespace
