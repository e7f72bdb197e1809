#include "Loggers.h"

#include "TestConsole.h"

namespace {

const std::string strLoggersMenu = "\n*********** LOGGER REQUEST MENU ***********\n"
                                   "\n 1. START LOGGER REQUEST"
                                   "\n 2. STOP LOGGER REQUEST"
                                   "\n\n*******************************************\n"
                                   "\nENTER OPTION : ";
const std::string strList = "\n 1. IR LOGGER"
                            "\n 2. BR LOGGER"
                            "\n 3. PR LOGGER"
                            "\n 4. BWL LOGGER"
                            "\n 5. CL LOGGER"
                            "\n 6. OL LOGGER"
                            "\n 7. CID LOGGER"
                            "\n 8. CQICH LOGGER";
const std::string strStart = "\nENABLING LOGGER...\n"
                             "\nPLEASE SELECT ONE OF THE LOGS TO BE ENABLED\n" +
                             strList + "\n\nENTER YOUR CHOICE : ";
const std::string strStop = "\nDISABLING LOGGER...\n"
                            "\nPLEASE SELECT ONE OF THE LOGS TO BE DISABLED\n" +
                            strList + "\n\nENTER YOUR CHOICE : ";

using Strings = std::vector<std::string>;

class LoggersTest : public ConsoleTest {};

TEST_F(LoggersTest, ALoggerIsStartedAndStopped) {
    EXPECT_EQ(PrintedBy(LoggerRequests, "1\n1\n"), strLoggersMenu + strStart);
    EXPECT_EQ(PrintedBy(LoggerRequests, "2\n8\n"), strLoggersMenu + strStop);
    EXPECT_EQ(FakeDevice::Sent(), (Strings{"8/1", "9/8"}));
    const FakeDevice::SendArguments stArguments{1, 4};
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(), std::vector(2, stArguments));
}

TEST_F(LoggersTest, EveryLoggerIsItsNumber) {
    for (const char *pcTyped : {"1\n", "2\n", "3\n", "4\n", "5\n", "6\n", "7\n", "8\n"}) {
        PrintedBy(StartLoggerRequest, pcTyped);
        PrintedBy(StopLoggerRequest, pcTyped);
    }
    EXPECT_EQ(FakeDevice::Sent(),
              (Strings{"8/1", "9/1", "8/2", "9/2", "8/3", "9/3", "8/4", "9/4", "8/5", "9/5", "8/6",
                       "9/6", "8/7", "9/7", "8/8", "9/8"}));
}

TEST_F(LoggersTest, LoggersThatAreNoneAreRefused) {
    for (const char *pcTyped : {"0\n", "9\n", "-1\n", "x\n"}) {
        uint32_t u32Result = 7;
        EXPECT_EQ(PrintedBy([&] { u32Result = StartLoggerRequest(); }, pcTyped),
                  strStart + "\nINVALID SELECTION!!!\n");
        EXPECT_EQ(u32Result, 0U);
        EXPECT_EQ(PrintedBy([&] { u32Result = StopLoggerRequest(); }, pcTyped),
                  strStop + "\nINVALID SELECTION!!!\n");
        EXPECT_EQ(u32Result, 0U);
    }
    EXPECT_EQ(FakeDevice::Sent(), Strings{});
}

TEST_F(LoggersTest, OtherChoicesDoNothing) {
    for (const char *pcTyped : {"3\n", "0\n", "-1\n"}) {
        uint32_t u32Result = 7;
        EXPECT_EQ(PrintedBy([&] { u32Result = LoggerRequests(); }, pcTyped), strLoggersMenu);
        EXPECT_EQ(u32Result, 1U);
    }
    EXPECT_EQ(FakeDevice::Sent(), Strings{});
}

TEST_F(LoggersTest, TheLowByteOfTheSendResultComesBackAndIsNotReported) {
    FakeDevice::SetSendResult(-2);
    uint32_t u32Result = 0;
    EXPECT_EQ(PrintedBy([&] { u32Result = LoggerRequests(); }, "1\n3\n"),
              strLoggersMenu + strStart);
    EXPECT_EQ(u32Result, 254U);
}

TEST_F(LoggersTest, TheListReturnsTheLengthOfItsLastLine) {
    int32_t iResult = 0;
    EXPECT_EQ(PrintedBy([&] { iResult = ListLoggerTypes(); }), strList);
    EXPECT_EQ(iResult, 17);
}

} // namespace
