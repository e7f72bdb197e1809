#include "GPIO.h"

#include "TestConsole.h"

namespace {

const std::string strGPIOMenu = "\n*********** GPIO MENU ***********\n"
                                "\n 1. GPIO SET REQUEST"
                                "\n 2. GPIO UN-SET REQUEST"
                                "\n 3. GPIO STATUS REQUEST"
                                "\n 4. GPIO SET LED BEHAVIOR SETTINGS"
                                "\n 5. GPIO GET LED BEHAVIOR SETTINGS"
                                "\n\n************************************\n"
                                "\nENTER OPTION : ";
const std::string strBitPrompt = "\nPlease enter the bit place value (0-16) : ";
const std::string strPolarity = "\n***************LED information***************"
                                "\nPlease select polarity of GPIO"
                                "\n1. Normal polarity (1 ON, 0 OFF)"
                                "\n2. Reverse polarity(0 ON, 1 OFF)"
                                "\nEnter the option : ";
const std::string strLEDMenu = "\n********* LED State information ***********\n"
                               "\n 1. RED_LED"
                               "\n 2. BLUE_LED"
                               "\n 3. YELLOW_LED"
                               "\n 4. GREEN_LED"
                               "\n -1. Return from menu"
                               "\n*******************************************"
                               "\n Enter option : ";
const std::string strSaveMenu = "\n********* Save LED State information ***********\n"
                                "\n 1. Save LED state information to CFG file"
                                "\n 2. Continue without saving LED state information to CFG file"
                                "\n************************************************"
                                "\n Enter option : ";
const std::string strGPIOSetPrompt = "\nEnter 1 to set and 0 to unset ";

const std::string strGPIOBanner = "\n~~~~~~ GPIO INDICATION ~~~~~~\n";
const std::string strGPIOClosing = "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

std::string StateMenu(const std::string &strLED) {
    return "\nEnter drives state for " + strLED +
           " type"
           "\n********************************************"
           "\n1. Driver Initialization"
           "\n2. Firmware Download"
           "\n3. Firmware Download Done"
           "\n4. On No-NetworkEntry"
           "\n5. Transmit/Receive"
           "\n6. On Idlemode Enter"
           "\n7. On Idlemode Continue"
           "\n8. On Idlemode Exit"
           "\n-1. Return to LED settings menu"
           "\n********************************************"
           "\n Enter option : ";
}

using Strings = std::vector<std::string>;

class GPIOTest : public ConsoleTest {
  protected:
    // What the LED dialogue sends for these answers.
    static std::string SentFor(const std::string &strTyped) {
        FakeDevice::Reset();
        PrintedBy(SetLEDStateInformaton, strTyped);
        const Strings strSent = FakeDevice::Sent();
        return strSent.size() == 1 ? strSent[0] : "not one message";
    }
};

TEST_F(GPIOTest, BitsAreSetClearedAndAskedFor) {
    EXPECT_EQ(PrintedBy(GPIOMsgs, "1\n0\n"), strGPIOMenu + strBitPrompt);
    EXPECT_EQ(PrintedBy(GPIOMsgs, "2\n16\n"), strGPIOMenu + strBitPrompt);
    EXPECT_EQ(PrintedBy(GPIOMsgs, "3\n5\n"), strGPIOMenu + strBitPrompt);
    EXPECT_EQ(FakeDevice::Sent(), (Strings{Recorded("22/1 | 00 00 00 00 01 00 00 00"),
                                           Recorded("22/1 | 10 00 00 00 00 00 00 00"),
                                           Recorded("22/2 | 05 00 00 00 ff 00 00 00")}));
    const FakeDevice::SendArguments stArguments{1, 12};
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), std::vector(3, stArguments));
}

TEST_F(GPIOTest, BitsOutOfRangeAreRefused) {
    for (const char *pcTyped : {"17\n", "-1\n", "2147483647\n"}) {
        uint32_t u32Result = 7;
        EXPECT_EQ(PrintedBy([&] { u32Result = SendGPIOMsg(1); }, pcTyped),
                  strBitPrompt + "\nInvalid bit place value. Valid range is 0-16.");
        EXPECT_EQ(u32Result, 0U);
    }
    EXPECT_EQ(FakeDevice::Sent(), Strings{});
}

TEST_F(GPIOTest, OtherChoicesAreRefused) {
    for (const char *pcTyped : {"0\n", "6\n", "-1\n"}) {
        uint32_t u32Result = 7;
        EXPECT_EQ(PrintedBy([&] { u32Result = GPIOMsgs(); }, pcTyped),
                  strGPIOMenu + "SORRY!! INVALID GPIO OPTION SELECTED!!\n");
        EXPECT_EQ(u32Result, 1U);
    }
    EXPECT_EQ(FakeDevice::Sent(), Strings{});
}

TEST_F(GPIOTest, ABitIsAskedForButNotSentForAChoiceThatIsNone) {
    for (const int32_t iChoice : {0, 4}) {
        uint32_t u32Result = 7;
        EXPECT_EQ(PrintedBy([&] { u32Result = SendGPIOMsg(iChoice); }, "16\n"), strBitPrompt);
        EXPECT_EQ(u32Result, 0U);
    }
    EXPECT_EQ(FakeDevice::Sent(), Strings{});
}

TEST_F(GPIOTest, TheLowByteOfTheSendResultComesBack) {
    FakeDevice::SetSendResult(-3);
    uint32_t u32Result = 0;
    PrintedBy([&] { u32Result = SendGPIOMsg(3); }, "1\n");
    EXPECT_EQ(u32Result, 253U);
    PrintedBy([&] { u32Result = GetLEDStateInformation(); });
    EXPECT_EQ(u32Result, 253U);
    PrintedBy([&] { u32Result = SetLEDStateInformaton(); }, "1\n-1\n2\n");
    EXPECT_EQ(u32Result, 253U);
}

TEST_F(GPIOTest, LeavingTheLEDMenuAtOnceConfiguresNone) {
    EXPECT_EQ(PrintedBy(GPIOMsgs, "4\n1\n-1\n2\n"),
              strGPIOMenu + strPolarity + strLEDMenu + strSaveMenu);
    EXPECT_EQ(FakeDevice::Sent(), Strings{Recorded("22/3 | 00 00 00 00 7f*12")});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector{FakeDevice::SendArguments{1, 20}}));
}

TEST_F(GPIOTest, StatesBelongToTheOnMaskOrTheBlinkMask) {
    EXPECT_EQ(PrintedBy(SetLEDStateInformaton, "1\n1\n2\n1\n7\n1\n-1\n-1\n1\n"),
              strPolarity + strLEDMenu + "\nEnter the settings for RED_LED" + StateMenu("RED LED") +
                  strGPIOSetPrompt + StateMenu("RED LED") + strGPIOSetPrompt +
                  StateMenu("RED LED") + strLEDMenu + strSaveMenu);
    EXPECT_EQ(FakeDevice::Sent(), Strings{Recorded("22/3 | 01 00 00 00 01 40 02 7f*9")});
}

TEST_F(GPIOTest, EveryStateHasItsBit) {
    const char *const apcMasks[] = {"01 00", "00 02", "04 00", "08 00",
                                    "00 10", "00 20", "40 00", "00 80"};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(SentFor("1\n3\n" + std::to_string(i + 1) + "\n1\n-1\n-1\n2\n"),
                  Recorded(std::string("22/3 | 00*4 7f*6 03 ") + apcMasks[i] + " 7f*3"));
    }
}

TEST_F(GPIOTest, EveryLEDHasItsNameAndItsEntry) {
    EXPECT_EQ(PrintedBy(SetLEDStateInformaton, "1\n4\n-1\n3\n-1\n2\n-1\n1\n-1\n-1\n2\n"),
              strPolarity + strLEDMenu + "\nEnter the settings for GREEN_LED" +
                  StateMenu("GREEN LED") + strLEDMenu + "\nEnter the settings for YELLOW_LED" +
                  StateMenu("YELLOW LED") + strLEDMenu + "\nEnter the settings for BLUE_LED" +
                  StateMenu("BLUE LED") + strLEDMenu + "\nEnter the settings for RED_LED" +
                  StateMenu("RED LED") + strLEDMenu + strSaveMenu);
    EXPECT_EQ(FakeDevice::Sent(),
              Strings{Recorded("22/3 | 00*4 01 00 00 02 00 00 03 00 00 04 00 00")});
}

TEST_F(GPIOTest, ReversePolarityIsTheTopBitOfTheLED) {
    EXPECT_EQ(SentFor("2\n4\n-1\n-1\n2\n"), Recorded("22/3 | 00*4 7f*9 84 00 00"));
    EXPECT_EQ(SentFor("3\n4\n-1\n-1\n2\n"), Recorded("22/3 | 00*4 7f*9 04 00 00"));
    EXPECT_EQ(SentFor("x\n4\n-1\n-1\n2\n"), Recorded("22/3 | 00*4 7f*9 04 00 00"));
}

TEST_F(GPIOTest, StatesAreTakenBack) {
    EXPECT_EQ(SentFor("1\n2\n1\n1\n3\n5\n1\n0\n5\n1\n-1\n-1\n2\n"),
              Recorded("22/3 | 00*4 7f*3 02 04 10 7f*6"));
    // A word that is no number is 0.
    EXPECT_EQ(SentFor("1\n2\n1\n1\n1\nx\n-1\n-1\n2\n"), Recorded("22/3 | 00*4 7f*3 02 00 00 7f*6"));
}

TEST_F(GPIOTest, ConfiguringAnLEDAgainStartsFromNothing) {
    EXPECT_EQ(SentFor("1\n2\n1\n1\n2\n1\n-1\n2\n3\n1\n-1\n-1\n2\n"),
              Recorded("22/3 | 00*4 7f*3 02 04 00 7f*6"));
}

TEST_F(GPIOTest, OtherNumbersShowTheMenusAgain) {
    EXPECT_EQ(PrintedBy(SetLEDStateInformaton, "1\n0\n5\n-2\n1\n0\n9\n-2\n-1\n-1\n2\n"),
              strPolarity + strLEDMenu + strLEDMenu + strLEDMenu + strLEDMenu +
                  "\nEnter the settings for RED_LED" + StateMenu("RED LED") + StateMenu("RED LED") +
                  StateMenu("RED LED") + StateMenu("RED LED") + strLEDMenu + strSaveMenu);
    EXPECT_EQ(FakeDevice::Sent(), Strings{Recorded("22/3 | 00*4 01 00 00 7f*9")});
}

TEST_F(GPIOTest, OnlyOneSaves) {
    EXPECT_EQ(SentFor("1\n-1\n1\n"), Recorded("22/3 | 1:4 7f*12"));
    for (const char *pcAnswer : {"0", "2", "3", "-1", "x"}) {
        EXPECT_EQ(SentFor("1\n-1\n" + std::string(pcAnswer) + "\n"), Recorded("22/3 | 0:4 7f*12"));
    }
}

TEST_F(GPIOTest, DriverStatesOfOneLED) {
    uint8_t aucEntry[3] = {1, 2, 3};
    int32_t iResult = 0;
    EXPECT_EQ(PrintedBy(
                  [&] {
                      iResult = SetDriverStateInformation(4, true, {aucEntry, 3}, "ANY LED");
                  },
                  "8\n9\n-1\n"),
              StateMenu("ANY LED") + strGPIOSetPrompt + StateMenu("ANY LED"));
    EXPECT_EQ(iResult, -1);
    EXPECT_EQ(Bytes(aucEntry, aucEntry + 3), (Bytes{0x84, 0x00, 0x80}));
}

TEST_F(GPIOTest, TheLEDBehaviourIsAskedFor) {
    EXPECT_EQ(PrintedBy(GPIOMsgs, "5\n"), strGPIOMenu);
    EXPECT_EQ(FakeDevice::Sent(), Strings{"22/4"});
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), (std::vector{FakeDevice::SendArguments{1, 4}}));
}

TEST_F(GPIOTest, BitStatesAreReported) {
    EXPECT_EQ(Report(GPIOIndication, "22/2 | 16:4 1:4"),
              strGPIOBanner + "\n Bit 16 : SET" + strGPIOClosing);
    EXPECT_EQ(Report(GPIOIndication, "22/2 | 0:4 0:4"),
              strGPIOBanner + "\n Bit 0 : UNSET" + strGPIOClosing);
    EXPECT_EQ(Report(GPIOIndication, "22/2 | 3:4 00 00 00 01"),
              strGPIOBanner + "\n Bit 3 : SET" + strGPIOClosing);
    EXPECT_EQ(Report(GPIOIndication, "22/2 | 03"),
              strGPIOBanner + "\n Bit 3 : UNSET" + strGPIOClosing);
}

TEST_F(GPIOTest, LEDBehaviourIsReported) {
    EXPECT_EQ(Report(GPIOIndication, "22/3"),
              strGPIOBanner + "SET Information updated" + strGPIOClosing);
    EXPECT_EQ(Report(GPIOIndication, "22/4 | 01 40 02 82 0d b2 7f 7f 7f 04 00"),
              strGPIOBanner +
                  "StateInfo[0].ucLedType = 1\n"
                  "StateInfo[0].ucLedOnState = 40\n"
                  "StateInfo[0].ucLedBlinkState = 2\n"
                  "StateInfo[1].ucLedType = 82\n"
                  "StateInfo[1].ucLedOnState = d\n"
                  "StateInfo[1].ucLedBlinkState = b2\n"
                  "StateInfo[2].ucLedType = 7f\n"
                  "StateInfo[2].ucLedOnState = 7f\n"
                  "StateInfo[2].ucLedBlinkState = 7f\n"
                  "StateInfo[3].ucLedType = 4\n"
                  "StateInfo[3].ucLedOnState = 0\n"
                  "StateInfo[3].ucLedBlinkState = 0\n"
                  "GET Information updated to driver" +
                  strGPIOClosing);
}

TEST_F(GPIOTest, OtherSubtypesPrintTheBannersOnly) {
    EXPECT_EQ(Report(GPIOIndication, "22/1 | 1:4 1:4"), strGPIOBanner + strGPIOClosing);
    EXPECT_EQ(Report(GPIOIndication, "22/5 | 1:4 1:4"), strGPIOBanner + strGPIOClosing);
    EXPECT_EQ(FakeDevice::Deliver(Message("22/5")), 1U);
    EXPECT_EQ(FakeDevice::Deliver(Message("22/2 | 1:4 1:4")), 1U);
}

TEST_F(GPIOTest, ANullMessagePrintsNothing) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(GPIOIndication(nullptr), 1U); }), "");
}

} // namespace
