#include "WiMAXOptions.h"

#include "Console.h"
#include "Message.h"
#include "TestConsole.h"

namespace {

class WiMAXOptionsTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        g_SetWimaxOptionsFlag = 0;
    }
    // What a choice of the options menu sends when these words are typed.
    static std::vector<std::string> SentFor(std::string_view strTyped) {
        FakeDevice::Reset();
        Type(strTyped);
        FillSetWiMAXOptions();
        return FakeDevice::Sent();
    }
    static std::vector<std::string> Sends(std::string_view strMessage) {
        return {Recorded(strMessage)};
    }
    static uint32_t Result(std::string_view strMessage) {
        return ProcessWiMAXOptionsResp(RecordOf(Message(strMessage)).get());
    }
};

// Answers.

TEST_F(WiMAXOptionsTest, TheAnswerToSetAllListsEveryOption) {
    EXPECT_EQ(
        Report(ProcessWiMAXOptionsResp, "29/2 | 0:4 21 00*3 9:4 1:4 2:4 3:4 4:4 15:4 -6:4 7:4"),
        "\n~~~~~~ SETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"
        "\n Received for wimax option specifier : [33(21)]"
        "\n Wimax options payload per option \n"
        "\n bit[0] Bit Mapped payload        Status: SET  Payload: 9"
        "\n bit[1] MIB EEPROM Writes on/off  Status: RESET  Payload: 1"
        "\n bit[2] Not used                  Status: RESET  Payload: 2"
        "\n bit[3] MCS/HARQ MIB Writes on/off Status: RESET  Payload: 3"
        "\n bit[4] EAP Security level        Status: RESET  Payload: 4"
        "\n bit[5] Idle mode paging value    Status: SET  Payload: 15"
        "\n bit[6] Not used                  Status: RESET  Payload: -6"
        "\n bit[7] Not used                  Status: RESET  Payload: 7"
        "\n");
}

TEST_F(WiMAXOptionsTest, TheAnswerToGetAllListsEveryOption) {
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/3 | 0:4 de ff*3 -1:4 00*28"),
              "\n~~~~~~ GETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"
              "\n Received for wimax option specifier : [222(de)]"
              "\n Wimax options payload per option\n"
              "\n bit[0] Bit Mapped payload        Status: RESET  Payload: -1"
              "\n bit[1] MIB EEPROM Writes on/off  Status: SET  Payload: 0"
              "\n bit[2] Not used                  Status: SET  Payload: 0"
              "\n bit[3] MCS/HARQ MIB Writes on/off Status: SET  Payload: 0"
              "\n bit[4] EAP Security level        Status: SET  Payload: 0"
              "\n bit[5] Idle mode paging value    Status: RESET  Payload: 0"
              "\n bit[6] Not used                  Status: SET  Payload: 0"
              "\n bit[7] Not used                  Status: SET  Payload: 0"
              "\n");
}

TEST_F(WiMAXOptionsTest, AStatusOtherThanZeroIsAllThatIsReported) {
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/2 | 5:4 21 00*35"),
              "\n~~~~~~ SETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"
              "\n Response status as 5, Status not equal to zero");
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/3 | -1:4 21 00*35"),
              "\n~~~~~~ GETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"
              "\n Response status as -1, Status not equal to zero");
}

TEST_F(WiMAXOptionsTest, OptionsThatDidNotArriveAreZero) {
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/3 | 0:4 01 00*3 09 01"),
              "\n~~~~~~ GETALL WIMAX RESPONSE RECEIVED ~~~~~~\n"
              "\n Received for wimax option specifier : [1(1)]"
              "\n Wimax options payload per option\n"
              "\n bit[0] Bit Mapped payload        Status: SET  Payload: 265"
              "\n bit[1] MIB EEPROM Writes on/off  Status: RESET  Payload: 0"
              "\n bit[2] Not used                  Status: RESET  Payload: 0"
              "\n bit[3] MCS/HARQ MIB Writes on/off Status: RESET  Payload: 0"
              "\n bit[4] EAP Security level        Status: RESET  Payload: 0"
              "\n bit[5] Idle mode paging value    Status: RESET  Payload: 0"
              "\n bit[6] Not used                  Status: RESET  Payload: 0"
              "\n bit[7] Not used                  Status: RESET  Payload: 0"
              "\n");
}

TEST_F(WiMAXOptionsTest, OneOptionIsAnsweredOnceForEachRequest) {
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/1 | 20 -2:4"), "");
    g_SetWimaxOptionsFlag = 1;
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/1 | 20 -2:4"),
              "\n~~~~~~ SET WIMAX RESPONSE RECEIVED ~~~~~~\n"
              "\n Response received as : [-2]\n");
    EXPECT_EQ(g_SetWimaxOptionsFlag, 0U);
    EXPECT_EQ(Report(ProcessWiMAXOptionsResp, "29/1 | 20 -2:4"), "");
}

TEST_F(WiMAXOptionsTest, ANullMessageIsReported) {
    uint32_t u32Result = 1;
    EXPECT_EQ(PrintedBy([&] { u32Result = ProcessWiMAXOptionsResp(nullptr); }),
              "\nINVALID WIMAX MESSAGE!!\n");
    EXPECT_EQ(u32Result, 0U);
}

TEST_F(WiMAXOptionsTest, UnknownSubtypesPrintNothingAndAreHandled) {
    g_SetWimaxOptionsFlag = 1;
    for (const char *pcMessage : {"29/0 | 00*40", "29/4 | 00*40", "29/257 | 00*40"}) {
        EXPECT_EQ(Report(ProcessWiMAXOptionsResp, pcMessage), "");
        EXPECT_EQ(Result(pcMessage), 1U);
    }
    EXPECT_EQ(g_SetWimaxOptionsFlag, 1U);
}

TEST_F(WiMAXOptionsTest, AnAnswerIsHandledUnlessItsStatusIsNotZero) {
    EXPECT_EQ(Result("29/1 | 00*5"), 1U);
    EXPECT_EQ(Result("29/2 | 0:4 00*36"), 1U);
    EXPECT_EQ(Result("29/3 | 0:4 00*36"), 1U);
    EXPECT_EQ(Result("29/2 | 1:4 00*36"), 0U);
    EXPECT_EQ(Result("29/3 | 1:4 00*36"), 0U);
}

// Requests.

TEST_F(WiMAXOptionsTest, TheMenuReturnsTheSendResult) {
    FakeDevice::SetSendResult(-300);
    int32_t iResult = 0;
    PrintedBy([&] { iResult = FillSetWiMAXOptions(); }, "3\n");
    EXPECT_EQ(iResult, -300);
    PrintedBy([&] { iResult = FillSetWiMAXOptions(); }, "1 7\n");
    EXPECT_EQ(iResult, -300);
    PrintedBy([&] { iResult = FillSetWiMAXOptions(); }, "2 6\n");
    EXPECT_EQ(iResult, -300);
    for (const char *pcTyped : {"-1\n", "0\n", "4\n", "abc\n"}) {
        PrintedBy([&] { iResult = FillSetWiMAXOptions(); }, pcTyped);
        EXPECT_EQ(iResult, 0);
    }
    EXPECT_EQ(FakeDevice::Sent().size(), 3U);
}

TEST_F(WiMAXOptionsTest, GetAllIsAllZero) { EXPECT_EQ(SentFor("3\n"), Sends("29/3 | 00*40")); }

TEST_F(WiMAXOptionsTest, OneOptionIsSentWithItsBit) {
    EXPECT_EQ(SentFor("1 1  1 1  4 1  5\n"), Sends("29/1 | 01 9:4"));
    EXPECT_EQ(SentFor("1 2  15\n"), Sends("29/1 | 20 15:4"));
    EXPECT_EQ(SentFor("1 3  1\n"), Sends("29/1 | 02 1:4"));
    EXPECT_EQ(SentFor("1 4  1 1\n"), Sends("29/1 | 08 3:4"));
    EXPECT_EQ(SentFor("1 4  0 1\n"), Sends("29/1 | 08 2:4"));
    EXPECT_EQ(SentFor("1 4  1 0\n"), Sends("29/1 | 08 1:4"));
    EXPECT_EQ(SentFor("1 5  1 2\n"), Sends("29/1 | 10 2:4"));
}

TEST_F(WiMAXOptionsTest, ASecurityLevelWithoutItsBitIsSentAsAValueAlone) {
    EXPECT_EQ(SentFor("1 5  0 2\n"), Sends("29/1 | 00 2:4"));
    EXPECT_EQ(SentFor("1 5  1 -7\n"), Sends("29/1 | 10 -7:4"));
}

TEST_F(WiMAXOptionsTest, AnOptionThatIsNoneIsSentAsZeroes) {
    for (const char *pcTyped : {"1 7\n", "1 0\n", "1 -1\n", "1 6\n", "1 abc\n"}) {
        g_SetWimaxOptionsFlag = 0;
        EXPECT_EQ(SentFor(pcTyped), Sends("29/1 | 00*5"));
        EXPECT_EQ(g_SetWimaxOptionsFlag, 1U);
    }
}

TEST_F(WiMAXOptionsTest, BitsOfThePayloadBitmapAreSetAndCleared) {
    EXPECT_EQ(SentFor("1 1  1 1  2 1  3 1  4 1  5\n"), Sends("29/1 | 01 15:4"));
    EXPECT_EQ(SentFor("1 1  2 1  3 1  2 0  5\n"), Sends("29/1 | 01 4:4"));
    EXPECT_EQ(SentFor("1 1  2 1  2 7  6  0  -1  x  5\n"), Sends("29/1 | 01 2:4"));
    EXPECT_EQ(SentFor("1 1  2 1  2 1  3 0  5\n"), Sends("29/1 | 01 2:4"));
}

TEST_F(WiMAXOptionsTest, SetAllSendsWhatWasSetLastAndAllBits) {
    EXPECT_EQ(SentFor("2 6\n"), Sends("29/2 | 00*40"));
    EXPECT_EQ(SentFor("2 2 11 6\n"), Sends("29/2 | 0:4 20 00*3 00*20 11:4 00*8"));
    EXPECT_EQ(SentFor("2  1 2 1 5  2 3  3 1  4 1 1  5 1 2  6\n"),
              Sends("29/2 | 0:4 3b 00*3 2:4 1:4 0:4 3:4 2:4 3:4 0:4 0:4"));
    EXPECT_EQ(SentFor("2  2 3  2 7  1 2 1 5  1 3 1 5  5 1 2  5 0 1  6\n"),
              Sends("29/2 | 0:4 31 00*3 6:4 0:4 0:4 0:4 1:4 7:4 0:4 0:4"));
    EXPECT_EQ(SentFor("2  5 0 2  6\n"), Sends("29/2 | 0:4 00*4 00*16 2:4 00*12"));
    EXPECT_EQ(SentFor("2  7 0 -1 x  6\n"), Sends("29/2 | 00*40"));
    EXPECT_EQ(g_SetWimaxOptionsFlag, 0U);
}

TEST_F(WiMAXOptionsTest, AnswersAreLetThroughWhileOptionsAreTyped) {
    gbInsideSubMenu = 1;
    Type("2 2 11\n");
    EndInput();
    EXPECT_THROW(FillSetWiMAXOptions(), ClientEnd);
    EXPECT_EQ(gbInsideSubMenu, 0);
    EXPECT_TRUE(FakeDevice::Sent().empty());
}

TEST_F(WiMAXOptionsTest, ValuesOutOfRangeAreAskedForAgain) {
    EXPECT_EQ(SentFor("1 2  16 -1 99999 0\n"), Sends("29/1 | 20 0:4"));
    EXPECT_EQ(SentFor("1 3  2 -1 1\n"), Sends("29/1 | 02 1:4"));
    EXPECT_EQ(SentFor("1 4  2 1 -5 2 0\n"), Sends("29/1 | 08 1:4"));
    EXPECT_EQ(SentFor("1 5  2 -1 1 0\n"), Sends("29/1 | 10 0:4"));
}

} // namespace
