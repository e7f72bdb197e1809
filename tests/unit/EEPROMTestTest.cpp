#include "EEPROMTest.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Authentication.h"
#include "Console.h"
#include "Input.h"
#include "TestConsole.h"
#include "VendorSpecificMessageApp.h"
#include "VendorSpecificParameters.h"

namespace {

// The next number that the C library's generator gives, how often it was
// seeded, and with what.
int giNextRandom = 0;
int giSeeded = 0;
unsigned guSeed = 0;

} // namespace

// In place of the C library's generator: counts.
extern "C" int rand() noexcept { return giNextRandom++; }
extern "C" void srand(unsigned uSeed) noexcept {
    ++giSeeded;
    guSeed = uSeed;
}

namespace {

constexpr const char *pcLog = "EEPROMTestLog.txt";

constexpr const char *pcRoundRule = "\r\n========================================"
                                    "==========================================";

// A directory of its own for the log; the answers kept from earlier are zero.
class EEPROMTestTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        giNextRandom = 0;
        giSeeded = 0;
        gaucRespSEC_SNYMID_ID.Store(Record<23>{}.View());
        gaucRespSEC_SQNMS_ID.Store(Record<192>{}.View());
        gaucRespATRLock.Store(Record<2>{}.View());
        ASSERT_NE(getcwd(acBefore.data(), acBefore.size()), nullptr);
        ASSERT_NE(mkdtemp(acDirectory), nullptr);
        ASSERT_EQ(chdir(acDirectory), 0);
    }
    void TearDown() override {
        Close_EEPROMTestLog();
        unlink(pcLog);
        rmdir(pcLog);
        ASSERT_EQ(chdir(acBefore.data()), 0);
        rmdir(acDirectory);
        ConsoleTest::TearDown();
    }

    static std::string Log() {
        std::ifstream File(pcLog, std::ios::binary);
        return {std::istreambuf_iterator<char>(File), {}};
    }

    // The next word of the input.
    static std::string ReadWordBehind() {
        Type("\n");
        char acWord[16];
        ReadWord(acWord, sizeof acWord);
        return acWord;
    }

    // Presses a key during the last send of a round, the fourth one.
    static void StopAfterRounds(size_t uRounds) {
        FakeDevice::OnSend([uRounds](size_t uSend, auto) {
            if (uSend == 4 * uRounds) {
                Type("\n");
            }
        });
    }

    std::array<char, 4096> acBefore{};
    char acDirectory[32] = "/tmp/EEPROMTest.XXXXXX";
};

TEST_F(EEPROMTestTest, AKeyBeforeTheFirstRoundLeavesAnEmptyLogAndSendsNothing) {
    EXPECT_EQ(PrintedBy(EEPROMTest, "x"), "");
    EXPECT_EQ(access(pcLog, F_OK), 0);
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
    EXPECT_EQ(gpEEPROMLogFile, nullptr);
    EXPECT_EQ(Unread(), "x");
}

// What is typed behind the choice, as the menu leaves it.
TEST_F(EEPROMTestTest, BlanksAndTheLineEndBehindTheChoiceAreNoKey) {
    for (const char *pcChoice : {"2 \t\n", "2\r\n", "2 \r\n", "2\n", "2"}) {
        FakeDevice::Reset();
        Type(pcChoice);
        if (pcChoice[1] == '\0') {
            Type(" "); // ends the word; its line end comes during the first round
        }
        EXPECT_EQ(ReadOption(), 2);
        FakeDevice::OnSend([pcChoice](size_t uSend, auto) {
            if (uSend == 1 && pcChoice[1] == '\0') {
                Type(" \n");
            }
            if (uSend == 8) {
                Type("x");
            }
        });
        PrintedBy(EEPROMTest);
        EXPECT_EQ(FakeDevice::Sent().size(), 8U) << pcChoice;
        EXPECT_EQ(ReadWordBehind(), "x") << pcChoice;
    }
}

TEST_F(EEPROMTestTest, ACharacterBehindTheChoiceIsAKey) {
    Type("2 x");
    EXPECT_EQ(ReadOption(), 2);
    PrintedBy(EEPROMTest);
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
    EXPECT_EQ(Unread(), "x");
}

TEST_F(EEPROMTestTest, ALogThatCannotBeOpenedIsSaidAndTheTestRuns) {
    ASSERT_EQ(mkdir(pcLog, 0700), 0);
    StopAfterRounds(2);
    testing::internal::CaptureStderr();
    EXPECT_EQ(PrintedBy(EEPROMTest), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "unit_tests: EEPROMTestLog.txt: Is a directory: nothing is logged\n");
    EXPECT_EQ(FakeDevice::Sent().size(), 8U);
}

TEST_F(EEPROMTestTest, WhatTheLogCouldNotTakeIsSaidOnceAndTheLogGoesOnWithANewLine) {
    Init_EEPROMTestLog(pcLog);
    rlimit stBefore{};
    getrlimit(RLIMIT_FSIZE, &stBefore);
    std::signal(SIGXFSZ, SIG_IGN);
    const std::string strTaken(1000, 't');
    EEPROMTestLog("%s", strTaken.c_str());
    const rlimit stFull{1002, stBefore.rlim_max};
    setrlimit(RLIMIT_FSIZE, &stFull);
    testing::internal::CaptureStderr();
    EEPROMTestLog("%s", "torn off");
    EEPROMTestLog("%s", "lost");
    const std::string strSaid = testing::internal::GetCapturedStderr();
    setrlimit(RLIMIT_FSIZE, &stBefore);
    EEPROMTestLog("%s", "taken again");
    EEPROMTestLog("%s", ", and more");
    Close_EEPROMTestLog();
    EXPECT_EQ(strSaid,
              "unit_tests: EEPROMTestLog.txt: File too large: a part of the log is lost\n");
    EXPECT_EQ(Log(), strTaken + "to\r\ntaken again, and more");
    EXPECT_EQ(Printed(), strTaken + "torn offlosttaken again, and more");
}

TEST_F(EEPROMTestTest, AReaderThatHasGoneEndsItAlsoWithoutALog) {
    ASSERT_EQ(mkdir(pcLog, 0700), 0);
    int aiPipe[2];
    ASSERT_EQ(pipe2(aiPipe, O_CLOEXEC), 0);
    ASSERT_EQ(dup2(aiPipe[1], STDOUT_FILENO), STDOUT_FILENO);
    close(aiPipe[1]);
    OpenConsole();
    FakeDevice::OnSend([&](size_t uSend, auto) {
        if (uSend == 8) {
            close(aiPipe[0]);
        }
    });
    testing::internal::CaptureStderr();
    EXPECT_THROW(EEPROMTest(), ClientEnd);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(EndStatus(), 141);
    EXPECT_EQ(FakeDevice::Sent().size(), 8U);
}

TEST_F(EEPROMTestTest, TheEndOfTheInputStopsItToo) {
    EndInput();
    EXPECT_EQ(PrintedBy(EEPROMTest), "");
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

// Random bytes 0 to 254 for the authentication data: the pseudonym is 00 to 16,
// the SQN-MS block 17 to d6, the lock d7 d8; the next round goes on with d9.
TEST_F(EEPROMTestTest, ARoundWritesAndReadsBack) {
    StopAfterRounds(1);
    PrintedBy(EEPROMTest);
    EXPECT_EQ(giSeeded, 1);
    EXPECT_EQ(FakeDevice::Sent(),
              (std::vector<std::string>{
                  Recorded("4/4 | 00 d7 00"
                           " 000102030405060708090a0b0c0d0e0f 10111213141516"
                           " 1718191a1b1c1d1e1f 202122232425262728292a2b2c2d2e2f"
                           " 303132333435363738393a3b3c3d3e3f 404142434445464748494a4b4c4d4e4f"
                           " 505152535455565758595a5b5c5d5e5f 606162636465666768696a6b6c6d6e6f"
                           " 707172737475767778797a7b7c7d7e7f 808182838485868788898a8b8c8d8e8f"
                           " 909192939495969798999a9b9c9d9e9f a0a1a2a3a4a5a6a7a8a9aaabacadaeaf"
                           " b0b1b2b3b4b5b6b7b8b9babbbcbdbebf c0c1c2c3c4c5c6c7c8c9cacbcccdcecf"
                           " d0d1d2d3d4d5d6 00 00"),
                  "10/3 | e1 00 02 00 d7",
                  "4/3 | 00",
                  "10/1 | e1 00 02 00 00",
              }));
}

TEST_F(EEPROMTestTest, TheSeedIsTheTime) {
    const time_t iBefore = std::time(nullptr);
    PrintedBy(EEPROMTest, "x");
    EXPECT_EQ(giSeeded, 1);
    EXPECT_GE(guSeed, static_cast<unsigned>(iBefore));
    EXPECT_LE(guSeed, static_cast<unsigned>(std::time(nullptr)));
}

TEST_F(EEPROMTestTest, ARandomByteIsNever255) {
    giNextRandom = 254;
    StopAfterRounds(1);
    PrintedBy(EEPROMTest);
    EXPECT_EQ(FakeDevice::Sent()[0].substr(0, 27), "4/4 | 00 d7 00 fe 00 01 02 ");
}

TEST_F(EEPROMTestTest, WithoutAnswersEverythingIsAMismatch) {
    StopAfterRounds(1);
    EXPECT_EQ(PrintedBy(EEPROMTest), std::string("\r\n\r\n\r\n\t\t Test - 1") + pcRoundRule +
                                         "\r\n\r\n PSEUDONYM ID : MISMATCH !!!"
                                         "\r\n\r\n SQNMS ID : MISMATCH !!!\r\n"
                                         "\r\n\r\n ATR LOCK : MISMATCH !!!\r\n");
    std::string strZeroLines;
    for (const char *pcAddress :
         {"00000000", "00000008", "00000010", "00000018", "00000020", "00000028",
          "00000030", "00000038", "00000040", "00000048", "00000050", "00000058",
          "00000060", "00000068", "00000070", "00000078", "00000080", "00000088",
          "00000090", "00000098", "000000a0", "000000a8", "000000b0", "000000b8"}) {
        strZeroLines += std::string("\r\n  ") + pcAddress + " : 00 00 00 00 00 00 00 00 ";
    }
    EXPECT_EQ(Log(), std::string("\r\n\r\n\r\n\t\t Test - 1") + pcRoundRule +
                         "\r\n\r\n PSEUDONYM ID : MISMATCH !!!"
                         "\r\n================= PSEUDONYM ID - Written =================\r\n"
                         "\r\n  00000000 : 00 01 02 03 04 05 06 07 "
                         "\r\n  00000008 : 08 09 0a 0b 0c 0d 0e 0f "
                         "\r\n  00000010 : 10 11 12 13 14 15 16 "
                         "\r\n================================================\r\n"
                         "\r\n================= PSEUDONYM ID - Read =================\r\n"
                         "\r\n  00000000 : 00 00 00 00 00 00 00 00 "
                         "\r\n  00000008 : 00 00 00 00 00 00 00 00 "
                         "\r\n  00000010 : 00 00 00 00 00 00 00 "
                         "\r\n================================================\r\n"
                         "\r\n\r\n SQNMS ID : MISMATCH !!!\r\n"
                         "\r\n================= SQNMS ID - Written =================\r\n"
                         "\r\n  00000000 : 17 18 19 1a 1b 1c 1d 1e "
                         "\r\n  00000008 : 1f 20 21 22 23 24 25 26 "
                         "\r\n  00000010 : 27 28 29 2a 2b 2c 2d 2e "
                         "\r\n  00000018 : 2f 30 31 32 33 34 35 36 "
                         "\r\n  00000020 : 37 38 39 3a 3b 3c 3d 3e "
                         "\r\n  00000028 : 3f 40 41 42 43 44 45 46 "
                         "\r\n  00000030 : 47 48 49 4a 4b 4c 4d 4e "
                         "\r\n  00000038 : 4f 50 51 52 53 54 55 56 "
                         "\r\n  00000040 : 57 58 59 5a 5b 5c 5d 5e "
                         "\r\n  00000048 : 5f 60 61 62 63 64 65 66 "
                         "\r\n  00000050 : 67 68 69 6a 6b 6c 6d 6e "
                         "\r\n  00000058 : 6f 70 71 72 73 74 75 76 "
                         "\r\n  00000060 : 77 78 79 7a 7b 7c 7d 7e "
                         "\r\n  00000068 : 7f 80 81 82 83 84 85 86 "
                         "\r\n  00000070 : 87 88 89 8a 8b 8c 8d 8e "
                         "\r\n  00000078 : 8f 90 91 92 93 94 95 96 "
                         "\r\n  00000080 : 97 98 99 9a 9b 9c 9d 9e "
                         "\r\n  00000088 : 9f a0 a1 a2 a3 a4 a5 a6 "
                         "\r\n  00000090 : a7 a8 a9 aa ab ac ad ae "
                         "\r\n  00000098 : af b0 b1 b2 b3 b4 b5 b6 "
                         "\r\n  000000a0 : b7 b8 b9 ba bb bc bd be "
                         "\r\n  000000a8 : bf c0 c1 c2 c3 c4 c5 c6 "
                         "\r\n  000000b0 : c7 c8 c9 ca cb cc cd ce "
                         "\r\n  000000b8 : cf d0 d1 d2 d3 d4 d5 d6 "
                         "\r\n================================================\r\n"
                         "\r\n================= SQNMS ID - Read =================\r\n" +
                         strZeroLines +
                         "\r\n================================================\r\n"
                         "\r\n\r\n ATR LOCK : MISMATCH !!!\r\n"
                         "\r\n================= ATR LOCK - Written =================\r\n"
                         "\r\n  00000000 : 00 00 "
                         "\r\n================================================\r\n"
                         "\r\n================= ATR LOCK - Read =================\r\n"
                         "\r\n  00000000 : 00 00 "
                         "\r\n================================================\r\n");
}

// A modem that keeps what it is sent and answers inside the send; the second
// byte of the lock, which is never sent, is made to fit in the first round.
TEST_F(EEPROMTestTest, AnswersInsideTheSendMatch) {
    Bytes aucKept;
    uint8_t u8Lock = 0;
    FakeDevice::OnSend([&](size_t uSend, auto aucRecord) {
        switch (uSend % 4) {
        case 1:
            aucKept.assign(aucRecord.begin() + 7, aucRecord.begin() + 7 + 215);
            break;
        case 2:
            u8Lock = aucRecord[8];
            break;
        case 3: {
            Bytes aucAnswer = Message("4/5 | 00*185");
            aucAnswer.insert(aucAnswer.end(), aucKept.begin(), aucKept.end());
            FakeDevice::QueueAnswer(aucAnswer);
            break;
        }
        default: {
            Bytes aucAnswer = Message("10/1 | e1 00 02 00 00 d8");
            aucAnswer[8] = u8Lock;
            FakeDevice::QueueAnswer(aucAnswer);
            break;
        }
        }
        if (uSend == 8) {
            Type("\n");
        }
    });
    PrintedBy(EEPROMTest);
    EXPECT_EQ(Log(), std::string("\r\n\r\n\r\n\t\t Test - 1") + pcRoundRule +
                         "\r\n\r\n PSEUDONYM ID : MATCH"
                         "\r\n\r\n SQNMS ID : MATCH"
                         "\r\n\r\n ATR LOCK : MATCH"
                         "\r\n\r\n\r\n\t\t Test - 2" +
                         pcRoundRule +
                         "\r\n\r\n PSEUDONYM ID : MATCH"
                         "\r\n\r\n SQNMS ID : MATCH"
                         "\r\n\r\n ATR LOCK : MISMATCH !!!\r\n"
                         "\r\n================= ATR LOCK - Written =================\r\n"
                         "\r\n  00000000 : 00 00 "
                         "\r\n================================================\r\n"
                         "\r\n================= ATR LOCK - Read =================\r\n"
                         "\r\n  00000000 : b1 d8 "
                         "\r\n================================================\r\n");
}

TEST_F(EEPROMTestTest, OneByteThatDiffersIsAMismatch) {
    for (const size_t uByte : {0U, 22U, 23U, 214U}) {
        giNextRandom = 0;
        FakeDevice::Reset();
        FakeDevice::OnSend([uByte](size_t uSend, auto) {
            if (uSend == 3) {
                Bytes aucAnswer = Message("4/5 | 00*185");
                for (size_t i = 0; i < 215; ++i) {
                    aucAnswer.push_back(static_cast<uint8_t>(i == uByte ? 0xFF : i));
                }
                FakeDevice::QueueAnswer(aucAnswer);
            } else if (uSend == 4) {
                Type("x\n");
            }
        });
        const std::string strPrinted = PrintedBy(EEPROMTest);
        const bool bInPseudonym = uByte < 23;
        EXPECT_EQ(strPrinted.find("PSEUDONYM ID : MISMATCH") != std::string::npos, bInPseudonym);
        EXPECT_EQ(strPrinted.find("SQNMS ID : MISMATCH") != std::string::npos, !bInPseudonym);
        EXPECT_EQ(ReadOption(), 0); // takes the key
    }
}

TEST_F(EEPROMTestTest, TheLogIsContinued) {
    std::ofstream(pcLog) << "earlier";
    StopAfterRounds(1);
    PrintedBy(EEPROMTest);
    const std::string strFirst = Log();
    EXPECT_EQ(strFirst.substr(0, 26), "earlier\r\n\r\n\r\n\t\t Test - 1\r\n");
    Type("x\n");
    EXPECT_EQ(ReadOption(), 0); // takes both keys
    FakeDevice::Reset();
    StopAfterRounds(2);
    PrintedBy(EEPROMTest);
    const std::string strBoth = Log();
    EXPECT_EQ(strBoth.substr(0, strFirst.size()), strFirst);
    EXPECT_EQ(strBoth.substr(strFirst.size(), 19), "\r\n\r\n\r\n\t\t Test - 1\r\n");
    EXPECT_NE(strBoth.find("\t\t Test - 2\r\n", strFirst.size()), std::string::npos);
    EXPECT_EQ(strBoth.find("\t\t Test - 3\r\n"), std::string::npos);
}

// What was logged is in the file before anything else happens, so that a kill
// loses nothing.
TEST_F(EEPROMTestTest, WhatWasLoggedIsInTheFileAtOnce) {
    std::string strAtTheLockRead;
    FakeDevice::OnSend([&](size_t uSend, auto) {
        if (uSend == 4) {
            strAtTheLockRead = Log();
            Type("\n");
        }
    });
    PrintedBy(EEPROMTest);
    const std::string strLog = Log();
    const size_t uLock = strLog.find("\r\n\r\n ATR LOCK : ");
    ASSERT_NE(uLock, std::string::npos);
    EXPECT_EQ(strAtTheLockRead, strLog.substr(0, uLock));

    Init_EEPROMTestLog("EEPROMTestLog.txt");
    EEPROMTestLog("%s", "one");
    EXPECT_EQ(Log(), strLog + "one");
    constexpr uint8_t aucByte[] = {0x0a};
    EEPROMTestLog_Dump("T", aucByte, 1);
    EXPECT_EQ(Log(), strLog + "one"
                              "\r\n================= T =================\r\n"
                              "\r\n  00000000 : 0a "
                              "\r\n================================================\r\n");
}

TEST_F(EEPROMTestTest, WithoutALogTheTestRunsAndSaysNothing) {
    ASSERT_EQ(mkdir(pcLog, 0700), 0);
    StopAfterRounds(2);
    EXPECT_EQ(PrintedBy(EEPROMTest), "");
    EXPECT_EQ(FakeDevice::Sent().size(), 8U);
    EXPECT_EQ(gpEEPROMLogFile, nullptr);
}

TEST_F(EEPROMTestTest, ALogThatFillsUpDoesNotStopTheTest) {
    ASSERT_EQ(symlink("/dev/full", pcLog), 0);
    StopAfterRounds(2);
    EXPECT_NE(PrintedBy(EEPROMTest).find("Test - 2"), std::string::npos);
    EXPECT_EQ(FakeDevice::Sent().size(), 8U);
}

TEST_F(EEPROMTestTest, FailedSendsDoNotStopTheTest) {
    FakeDevice::SetSendResult(-5);
    StopAfterRounds(2);
    EXPECT_NE(PrintedBy(EEPROMTest).find("Test - 2"), std::string::npos);
    EXPECT_EQ(FakeDevice::Sent().size(), 8U);
}

TEST_F(EEPROMTestTest, ASignalStopsItAndClosesTheLog) {
    FakeDevice::OnSend([](size_t uSend, auto) {
        if (uSend == 4) {
            raise(SIGTERM);
        }
    });
    EXPECT_THROW(EEPROMTest(), ClientEnd);
    EXPECT_EQ(gpEEPROMLogFile, nullptr);
    EXPECT_EQ(FakeDevice::Sent().size(), 4U);
}

TEST_F(EEPROMTestTest, LoggingAndDumpingNeedAnOpenLog) {
    constexpr uint8_t aucBytes[] = {1, 2};
    EXPECT_EQ(PrintedBy([&] {
                  Init_EEPROMTestLog(nullptr);
                  EEPROMTestLog("%d", 1);
                  EXPECT_EQ(EEPROMTestLog_Dump("T", aucBytes, 2), 0);
                  Close_EEPROMTestLog();
                  Close_EEPROMTestLog();
              }),
              "");
    EXPECT_NE(access(pcLog, F_OK), 0);
}

TEST_F(EEPROMTestTest, ADumpOfNothingWritesNothing) {
    constexpr uint8_t aucBytes[] = {1, 2};
    Init_EEPROMTestLog(pcLog);
    EXPECT_EQ(EEPROMTestLog_Dump("T", nullptr, 2), 0);
    EXPECT_EQ(EEPROMTestLog_Dump("T", aucBytes, 0), 0);
    EXPECT_EQ(EEPROMTestLog_Dump("T", aucBytes, -1), 0);
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(Printed(), "");
}

TEST_F(EEPROMTestTest, ALogTextIsCutAt2047Characters) {
    Init_EEPROMTestLog(pcLog);
    const std::string strLong(3000, 'a');
    EXPECT_EQ(PrintedBy([&] { EEPROMTestLog("%s!", strLong.c_str()); }), std::string(2047, 'a'));
    EXPECT_EQ(Log(), std::string(2047, 'a'));
}

constexpr const char *pcExtendedMenu = "\n******** EXTENDED MENU ********\n"
                                       "\n1. AUTH REQUESTS"
                                       "\n2. TEST EEPROM"
                                       "\n-1. EXIT FROM APPLICATION"
                                       "\n\n*******************************\n"
                                       "\nENTER OPTION : ";

TEST_F(EEPROMTestTest, TheExtendedMenuAloneBeginsAtOne) {
    const std::string strMenu = pcExtendedMenu;
    const std::string strRefused = "\nSORRY!! INVALID OPTION!!";
    EXPECT_EQ(PrintedBy(RunExtendedMenu, "0 3 x 14 21 2 -1\n"),
              strMenu + strRefused + strMenu + strRefused + strMenu + strRefused + strMenu +
                  strRefused + strMenu + strRefused + strMenu + strMenu);
    EXPECT_EQ(access(pcLog, F_OK), 0);
    EXPECT_EQ(FakeDevice::Sent().size(), 0U);
}

TEST_F(EEPROMTestTest, TheExtendedMenuSendsAuthenticationRequests) {
    PrintedBy(RunExtendedMenu, "1 1 1 5 -1\n");
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{"4/1"});
    // A request that was not sent leaves no silence behind.
    FakeDevice::Deliver(Message("4/2"));
    EXPECT_EQ(Printed(), "\n~~~~~~ EAP RESPONSE MESSAGE ~~~~~~\n"
                         "\n~~~~~~ AUTHENTICATION RESPONSE MESSAGE ~~~~~~\n"
                         "\nAUTH STATUS RESPONSE MESSAGE RECEIVED."
                         "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"
                         "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

} // namespace
