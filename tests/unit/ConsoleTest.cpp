#include "Console.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Client.h"
#include "Input.h"
#include "TestConsole.h"

namespace {

class KeyTest : public ConsoleTest {
  protected:
    // Waits until every other thread has gone to sleep in its wait.
    static void LetOthersRun() {
        for (int iQuiet = 0; iQuiet < 3; iQuiet = OthersSleep() ? iQuiet + 1 : 0) {
            poll(nullptr, 0, 5);
        }
    }

  private:
    static bool OthersSleep() {
        for (const auto &Task : std::filesystem::directory_iterator("/proc/self/task")) {
            if (Task.path().filename() == std::to_string(gettid())) {
                continue;
            }
            std::string strState;
            std::getline(std::ifstream(Task.path() / "stat"), strState);
            if (strState.find(") S ") == std::string::npos) {
                return false;
            }
        }
        return true;
    }
};

TEST_F(KeyTest, ADecoderGetsTheNextCharacterWhileThePromptWaits) {
    int32_t iOption = 0;
    std::thread Menu([&] { iOption = ReadOption(); });
    LetOthersRun();
    int iKey = 0;
    std::thread Decoder([&] { iKey = WaitForKey(); });
    LetOthersRun();
    Type("x12\n");
    Decoder.join();
    Menu.join();
    EXPECT_EQ(iKey, 'x');
    EXPECT_EQ(iOption, 12);
    EXPECT_EQ(Unread(), "\n");
}

TEST_F(KeyTest, ALineEndIsACharacterToo) {
    Type("\n5\n");
    EXPECT_EQ(WaitForKey(), '\n');
    EXPECT_EQ(ReadOption(), 5);
}

TEST_F(KeyTest, TheCharacterThatEndedAWordIsTheNextOne) {
    Type("7\n8\n");
    EXPECT_EQ(ReadOption(), 7);
    EXPECT_EQ(WaitForKey(), '\n');
    EXPECT_EQ(WaitForKey(), '8');
    EXPECT_EQ(WaitForKey(), '\n');
}

TEST_F(KeyTest, APushedBackCharacterReachesADecoderThatWaits) {
    std::atomic<int> iKey{0};
    std::thread Decoder([&] { iKey = WaitForKey(); });
    LetOthersRun();
    PushBackInputChar('q');
    Decoder.join();
    EXPECT_EQ(iKey, 'q');
}

// While it lives, only so many more descriptors can be opened.
class FewDescriptors {
  public:
    explicit FewDescriptors(size_t uFree) {
        getrlimit(RLIMIT_NOFILE, &stBefore);
        Limit(256);
        for (int iTaken = dup(STDIN_FILENO); iTaken >= 0; iTaken = dup(STDIN_FILENO)) {
            Taken.push_back(iTaken);
        }
        for (; uFree > 0 && !Taken.empty(); --uFree) {
            close(Taken.back());
            Taken.pop_back();
        }
    }
    ~FewDescriptors() {
        for (const int iTaken : Taken) {
            close(iTaken);
        }
        setrlimit(RLIMIT_NOFILE, &stBefore);
    }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

    void Limit(rlim_t uMost) const {
        const rlimit stFew{uMost, stBefore.rlim_max};
        setrlimit(RLIMIT_NOFILE, &stFew);
    }

  private:
    rlimit stBefore{};
    std::vector<int> Taken;
};

// The input's own descriptor, the end's event and the menus' can be had, but not
// the one for characters that are pushed back.
TEST_F(KeyTest, APushedBackCharacterReachesADecoderThatHasNoEventToWaitFor) {
    {
        const FewDescriptors stFew(3);
        stFew.Limit(0);
        OpenConsole(); // gives back those that it had
    }
    {
        const FewDescriptors stFew(3);
        OpenConsole();
        EXPECT_EQ(dup(STDIN_FILENO), -1);
    }
    EXPECT_EQ(IdleLimit(), -1);
    std::atomic<int> iKey{0};
    std::thread Decoder([&] { iKey = WaitForKey(); });
    LetOthersRun();
    PushBackInputChar('q');
    Decoder.join();
    EXPECT_EQ(iKey, 'q');
}

TEST_F(KeyTest, NothingTypedIsLostOrTwiceThere) {
    constexpr int iKeys = 500;
    constexpr int iOptions = 2000;
    std::string strTyped;
    for (int i = 0; i < iKeys + 8 * iOptions; ++i) {
        strTyped += i % 8 == 7 ? '\n' : '1';
    }
    std::string strKeys;
    size_t uRead = 0;
    std::thread Decoder([&] {
        for (int i = 0; i < iKeys; ++i) {
            strKeys += static_cast<char>(WaitForKey());
        }
    });
    std::thread Menu([&] {
        for (int i = 0; i < iOptions / 2; ++i) {
            if (NextInputChar() >= 0) {
                ++uRead;
            }
        }
    });
    Type(strTyped);
    Decoder.join();
    Menu.join();
    EXPECT_EQ(strKeys.find_first_not_of("1\n"), std::string::npos);
    EXPECT_EQ(uRead, 1000U);
    EXPECT_EQ(Unread().size(), strTyped.size() - iKeys - 1000);
}

TEST_F(KeyTest, TheEndOfTheInputReleasesADecoder) {
    std::atomic<int> iKey{0};
    std::thread Decoder([&] { iKey = WaitForKey(); });
    LetOthersRun();
    EndInput();
    Decoder.join();
    EXPECT_EQ(iKey, -1);
    EXPECT_EQ(WaitForKey(), -1);
    EXPECT_EQ(NextInputChar(), -1);
}

TEST_F(KeyTest, LeavingReleasesADecoder) {
    std::atomic<int> iKey{0};
    std::thread Decoder([&] { iKey = WaitForKey(); });
    LetOthersRun();
    BeginLeaving();
    Decoder.join();
    EXPECT_EQ(iKey, -1);
    EXPECT_TRUE(IsEnding());
}

TEST_F(KeyTest, ASignalReleasesADecoderAndThePrompt) {
    std::atomic<int> iKey{0};
    std::atomic<int> iStatus{0};
    std::thread Decoder([&] { iKey = WaitForKey(); });
    LetOthersRun();
    std::thread Menu([&] {
        try {
            ReadOption();
        } catch (const ClientEnd &stEnd) {
            iStatus = stEnd.iExitStatus;
        }
    });
    LetOthersRun();
    raise(SIGTERM);
    Decoder.join();
    Menu.join();
    EXPECT_EQ(iKey, -1);
    EXPECT_EQ(iStatus, 143);
    EXPECT_EQ(EndStatus(), 143);
}

TEST_F(KeyTest, WhatWasPrintedIsShownBeforeTheWait) {
    PutText("\nPress a key");
    Type("k");
    EXPECT_EQ(WaitForKey(), 'k');
    EXPECT_EQ(PendingOutput(), "");
    EXPECT_EQ(Printed(), "\nPress a key");
}

class PauseTest : public ConsoleTest {
  protected:
    static double SecondsOf(uint32_t u32Microseconds) {
        timespec stBegin{};
        timespec stEnd{};
        clock_gettime(CLOCK_MONOTONIC, &stBegin);
        PauseMicroseconds(u32Microseconds);
        clock_gettime(CLOCK_MONOTONIC, &stEnd);
        return static_cast<double>(stEnd.tv_sec - stBegin.tv_sec) +
               static_cast<double>(stEnd.tv_nsec - stBegin.tv_nsec) / 1e9;
    }
};

TEST_F(PauseTest, APauseLasts) { EXPECT_GE(SecondsOf(50000), 0.05); }

TEST_F(PauseTest, APauseGoesOnAfterASignalThatSomebodyElseHandles) {
    struct sigaction stHandled {};
    stHandled.sa_handler = [](int) {};
    sigaction(SIGUSR1, &stHandled, nullptr);
    const pthread_t Sleeper = pthread_self();
    std::thread Other([Sleeper] {
        for (int i = 0; i < 5; ++i) {
            poll(nullptr, 0, 10);
            pthread_kill(Sleeper, SIGUSR1);
        }
    });
    EXPECT_GE(SecondsOf(200000), 0.2);
    Other.join();
}

TEST_F(PauseTest, APauseEndsWithTheClient) {
    std::thread Leaving([] {
        poll(nullptr, 0, 20);
        BeginLeaving();
    });
    EXPECT_LT(SecondsOf(30000000), 15.0);
    Leaving.join();
    EXPECT_LT(SecondsOf(30000000), 15.0);
}

class OutputTest : public ConsoleTest {};

TEST_F(OutputTest, TextsAndLinesAreCollectedUntilTheyAreFlushed) {
    PutText("\nA");
    PutLine("B");
    PutFormat(" %d %s %p", -5, "c", reinterpret_cast<void *>(0x1234));
    EXPECT_EQ(PendingOutput(), "\nAB\n -5 c 0x1234");
    FlushOutput();
    EXPECT_EQ(PendingOutput(), "");
    EXPECT_EQ(Printed(), "\nAB\n -5 c 0x1234");
}

TEST_F(OutputTest, LongFormattedTextsAreCutNotOverrun) {
    const std::string strLong(2000, 'x');
    PutFormat("%s", strLong.c_str());
    EXPECT_EQ(Printed(), std::string(511, 'x'));
}

// Both threads write pieces much longer than a pipe takes at once.
TEST_F(OutputTest, NoPieceIsTornByTheOtherThread) {
    constexpr size_t uPiece = 20000;
    constexpr int iPieces = 40;
    int aiPipe[2];
    ASSERT_EQ(pipe2(aiPipe, O_CLOEXEC), 0);
    ASSERT_EQ(dup2(aiPipe[1], STDOUT_FILENO), STDOUT_FILENO);
    close(aiPipe[1]);
    OpenConsole();
    const auto WriteMany = [](char cFill) {
        for (int i = 0; i < iPieces; ++i) {
            PutText(std::string(uPiece, cFill));
            FlushOutput();
        }
    };
    std::thread One(WriteMany, 'a');
    std::thread Other(WriteMany, 'b');
    std::string strRead;
    char acChunk[8192];
    while (strRead.size() < size_t{2} * iPieces * uPiece) {
        const ssize_t iCount = read(aiPipe[0], acChunk, sizeof acChunk);
        ASSERT_GT(iCount, 0);
        strRead.append(acChunk, static_cast<size_t>(iCount));
    }
    One.join();
    Other.join();
    close(aiPipe[0]);
    for (size_t i = 0; i < strRead.size(); i += uPiece) {
        EXPECT_EQ(strRead.substr(i, uPiece), std::string(uPiece, strRead[i])) << "piece at " << i;
    }
}

// The first one holds the output in the middle of its report when time is up.
TEST_F(OutputTest, NothingComesBetweenThePartsOfAReportWhenTheTimeIsUp) {
    PutText(std::string(OutputBuffer::Size, 'a'));
    PutText("a");
    std::thread Other([] {
        PutText("b");
        FlushOutput();
    });
    poll(nullptr, 0, 20);
    EndLastReport();
    Other.join();
    EXPECT_EQ(Printed(), std::string(OutputBuffer::Size, 'a'));
}

TEST_F(OutputTest, WhoeverPrintsWithoutEndIsEndedWhenNothingCanBeWritten) {
    EXPECT_NO_THROW(EndIfOutputClosed());
    EndClient(143);
    EndLastReport();
    EXPECT_THROW(EndIfOutputClosed(), ClientEnd);
    PrepareEnding();
    EndClient(141);
    EXPECT_THROW(EndIfOutputClosed(), ClientEnd);
}

TEST_F(OutputTest, ReportsThatComeTooLateDoNotHoldUpTheClose) {
    constexpr auto HalfTheWait = std::chrono::milliseconds(iLastReportTime / 2);
    CloseOutput();
    std::chrono::steady_clock::duration Shortest = std::chrono::hours(1);
    // A close that waits for them always takes all the time, a busy machine not.
    for (int i = 0; i < 20 && Shortest >= HalfTheWait; ++i) {
        EXPECT_FALSE(BeginReport());
        PrepareEnding();
        const auto Began = std::chrono::steady_clock::now();
        CloseOutput();
        Shortest = std::min(Shortest, std::chrono::steady_clock::now() - Began);
    }
    EXPECT_LT(Shortest, HalfTheWait);
}

TEST_F(OutputTest, AReaderThatGoesAwayEndsTheClientWithStatus141) {
    int aiPipe[2];
    ASSERT_EQ(pipe2(aiPipe, O_CLOEXEC), 0);
    ASSERT_EQ(dup2(aiPipe[1], STDOUT_FILENO), STDOUT_FILENO);
    close(aiPipe[1]);
    OpenConsole();
    close(aiPipe[0]);
    PutText("nobody reads this");
    FlushOutput();
    EXPECT_EQ(EndStatus(), 141);
    EXPECT_EQ(RunClient(RunMainMenu), 141);
    EXPECT_EQ(FakeDevice::Calls().back(), "CloseWiMAXDevice");
}

TEST_F(OutputTest, ASignalFreesAWriterToASocketThatNobodyReads) {
    int aiEnds[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, aiEnds), 0);
    ASSERT_EQ(dup2(aiEnds[1], STDOUT_FILENO), STDOUT_FILENO);
    close(aiEnds[1]);
    OpenConsole();
    EXPECT_EQ(fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK, 0);
    std::thread Writer([] {
        PutText(std::string(5000000, 'a'));
        FlushOutput();
    });
    char cFirst = 0;
    EXPECT_EQ(read(aiEnds[0], &cFirst, 1), 1);
    raise(SIGTERM);
    Writer.join();
    EXPECT_EQ(EndStatus(), 143);
    close(aiEnds[0]);
}

TEST_F(OutputTest, OpeningTheConsoleAgainTakesNoMoreDescriptors) {
    const auto OpenDescriptorsNow = [] {
        const std::filesystem::directory_iterator stAll("/proc/self/fd");
        return std::distance(begin(stAll), end(stAll));
    };
    const auto Before = OpenDescriptorsNow();
    OpenConsole();
    EXPECT_EQ(OpenDescriptorsNow(), Before);
}

TEST_F(OutputTest, AnOutputThatCannotBeOpenedOnceMoreGetsItsFlagsBack) {
    ASSERT_EQ(dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO), STDOUT_FILENO);
    OpenConsole();
    EXPECT_EQ(fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK, O_NONBLOCK);
    CloseConsole();
    EXPECT_EQ(fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK, 0);
}

// A pipe in the place of the output; the test is its reader.
class PipeTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        int aiPipe[2];
        ASSERT_EQ(pipe2(aiPipe, O_CLOEXEC), 0);
        ASSERT_EQ(dup2(aiPipe[1], STDOUT_FILENO), STDOUT_FILENO);
        close(aiPipe[1]);
        iReader = aiPipe[0];
        OpenConsole();
    }
    void TearDown() override {
        close(iReader);
        ConsoleTest::TearDown();
    }
    std::string Read(size_t uCount) const {
        std::string strRead(uCount, '\0');
        size_t uRead = 0;
        while (uRead < uCount) {
            const ssize_t iCount = read(iReader, strRead.data() + uRead, uCount - uRead);
            if (iCount <= 0) {
                break;
            }
            uRead += static_cast<size_t>(iCount);
        }
        strRead.resize(uRead);
        return strRead;
    }
    static void PutMany(char cFill, size_t uCount) {
        for (size_t i = 0; i < uCount; i += 1000) {
            PutText(std::string(1000, cFill));
        }
    }

    int iReader = -1;
};

// Much more than the buffer holds.
constexpr size_t uLongReport = 500000;

TEST_F(PipeTest, AReportLongerThanTheBufferStaysInOnePiece) {
    std::thread Long([] {
        PutMany('a', uLongReport);
        FlushOutput();
    });
    std::string strRead = Read(1000); // the long one has the output
    std::thread Short([] {
        PutText("b");
        FlushOutput();
    });
    strRead += Read(uLongReport - 1000);
    EXPECT_EQ(strRead, std::string(uLongReport, 'a'));
    EXPECT_EQ(Read(1), "b");
    Long.join();
    Short.join();
}

// One thread always has the next report ready; the other one asks once.
TEST_F(PipeTest, WhoeverAsksWaitsForOneReportAtMost) {
    constexpr size_t uReport = 100000;
    std::atomic<bool> bStop{false};
    std::atomic<bool> bAsked{false};
    std::thread Flood([&] {
        while (!bStop) {
            PutMany('a', uReport);
            FlushOutput();
        }
    });
    Read(uReport / 2);
    std::thread Menu([&] {
        PutText("b");
        bAsked = true;
        FlushOutput();
    });
    while (!bAsked) {
        poll(nullptr, 0, 1);
    }
    poll(nullptr, 0, 20);
    const std::string strRead = Read(2 * uReport);
    EXPECT_NE(strRead.find('b'), std::string::npos);
    bStop = true;
    std::thread Rest([&] {
        while (Read(1000).size() == 1000) {
        }
    });
    Menu.join();
    Flood.join();
    ASSERT_EQ(dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO), STDOUT_FILENO);
    OpenConsole(); // closes the writing end
    Rest.join();
}

TEST_F(PipeTest, MoreThreadsThanBuffersAllGetThrough) {
    std::vector<std::thread> Threads;
    for (int i = 0; i < 20; ++i) {
        Threads.emplace_back([] {
            PutText(std::string(10, 'a'));
            poll(nullptr, 0, 5);
            FlushOutput();
        });
    }
    for (std::thread &Thread : Threads) {
        Thread.join();
    }
    EXPECT_EQ(Read(200), std::string(200, 'a'));
}

TEST_F(PipeTest, TheMenusHaveABufferWhateverReportsAreUnderWay) {
    std::atomic<int> iUnderWay{0};
    std::atomic<bool> bMenuDone{false};
    std::vector<std::thread> Threads;
    for (int i = 0; i < 15; ++i) {
        Threads.emplace_back([&] {
            PutText("a");
            ++iUnderWay;
            while (!bMenuDone) {
                poll(nullptr, 0, 1);
            }
            FlushOutput();
        });
    }
    while (iUnderWay < 15) {
        poll(nullptr, 0, 1);
    }
    PutText("menu");
    FlushOutput();
    bMenuDone = true;
    for (std::thread &Thread : Threads) {
        Thread.join();
    }
    EXPECT_EQ(Read(19), "menu" + std::string(15, 'a'));
}

TEST_F(PipeTest, LeavingFreesAWriterThatNobodyReads) {
    std::thread Writer([] {
        PutMany('a', uLongReport);
        FlushOutput();
    });
    Read(1);
    BeginLeaving();
    Writer.join();
    EXPECT_EQ(TimeLeft(), 0);
    EXPECT_EQ(EndStatus(), 0);
}

TEST_F(PipeTest, ASignalFreesAWriterThatNobodyReads) {
    std::thread Writer([] {
        PutMany('a', uLongReport);
        FlushOutput();
    });
    Read(1);
    raise(SIGTERM);
    Writer.join();
    EXPECT_EQ(EndStatus(), 143);
    PutText("nothing is written any more");
    FlushOutput();
    EXPECT_EQ(PendingOutput(), "");
}

TEST_F(PipeTest, ClosingWaitsForAReportUnderWay) {
    std::atomic<bool> bBegun{false};
    std::atomic<bool> bWritten{false};
    std::thread Library([&] {
        EXPECT_TRUE(BeginReport());
        bBegun = true;
        poll(nullptr, 0, 50);
        PutText("the last ");
        FlushOutput(); // and the report goes on
        poll(nullptr, 0, 50);
        PutText("report");
        bWritten = true;
        EndReport();
    });
    while (!bBegun) {
        poll(nullptr, 0, 1);
    }
    CloseOutput();
    EXPECT_TRUE(bWritten);
    EXPECT_FALSE(BeginReport());
    Library.join();
    EXPECT_EQ(Read(15), "the last report");
    PutText("too late");
    FlushOutput();
    pollfd stPoll{iReader, POLLIN, 0};
    EXPECT_EQ(poll(&stPoll, 1, 0), 0);
}

// As where a library calls back from within a call.
TEST_F(PipeTest, AReportWithinAReportEndsBeforeIt) {
    std::thread Library([] {
        EXPECT_TRUE(BeginReport());
        PutText("the outer one begins, ");
        EXPECT_TRUE(BeginReport());
        PutText("the inner one, ");
        EndReport();
        PutText("the outer one ends");
        EndReport();
    });
    Library.join();
    EXPECT_EQ(Read(55), "the outer one begins, the inner one, the outer one ends");
}

TEST_F(PipeTest, ClosingDoesNotWaitForeverForAReportUnderWay) {
    std::atomic<bool> bBegun{false};
    std::atomic<bool> bClosed{false};
    std::thread Library([&] {
        EXPECT_TRUE(BeginReport());
        bBegun = true;
        while (!bClosed) {
            poll(nullptr, 0, 1);
        }
        PutText("too late");
        EndReport();
    });
    while (!bBegun) {
        poll(nullptr, 0, 1);
    }
    CloseOutput();
    EXPECT_EQ(TimeLeft(), 0);
    bClosed = true;
    Library.join();
    pollfd stPoll{iReader, POLLIN, 0};
    EXPECT_EQ(poll(&stPoll, 1, 0), 0);
}

TEST_F(PipeTest, AReaderThatGoesAwayEndsAWaitForAKey) {
    std::atomic<int> iKey{0};
    std::thread Decoder([&] { iKey = WaitForKey(); });
    poll(nullptr, 0, 20);
    ASSERT_EQ(dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), iReader), iReader);
    Decoder.join();
    EXPECT_EQ(iKey, -1);
    EXPECT_EQ(EndStatus(), 141);
}

TEST_F(PipeTest, AReaderThatGoesAwayEndsAPromptBehindAWaitForAKey) {
    const KeyTurn stTurn; // the decoder's, between two keys
    int iStatus = 0;
    std::thread Menu([&] {
        try {
            ReadOption();
        } catch (const ClientEnd &stEnd) {
            iStatus = stEnd.iExitStatus;
        }
    });
    poll(nullptr, 0, 20);
    ASSERT_EQ(dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), iReader), iReader);
    Menu.join();
    EXPECT_EQ(iStatus, 141);
}

class ClientTest : public ConsoleTest {};

TEST_F(ClientTest, TheMenusRunOnAnOpenRegisteredDevice) {
    EXPECT_EQ(RunClient([] {
                  EXPECT_EQ(FakeDevice::Calls(),
                            (std::vector<std::string>{"OpenWiMAXDevice", "RegisterCallback"}));
              }),
              0);
    EXPECT_EQ(FakeDevice::Calls().back(), "CloseWiMAXDevice");
    EXPECT_EQ(FakeDevice::Calls().size(), 3U);
    EXPECT_EQ(Printed(), "");
}

TEST_F(ClientTest, TheEndOfTheInputClosesTheDevice) {
    EndInput();
    EXPECT_EQ(RunClient(RunMainMenu), 0);
    EXPECT_EQ(FakeDevice::Calls().back(), "CloseWiMAXDevice");
}

TEST_F(ClientTest, SignalsThatWereIgnoredStayIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    OpenConsole();
    raise(SIGHUP);
    EXPECT_EQ(EndStatus(), 0);
    std::signal(SIGHUP, SIG_DFL);
}

TEST_F(ClientTest, LackOfMemoryInTheMenusClosesTheDevice) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunClient([] { throw std::bad_alloc(); }), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "unit_tests: out of memory\n");
    EXPECT_EQ(FakeDevice::Calls().back(), "CloseWiMAXDevice");
}

TEST_F(ClientTest, LackOfMemoryAtTheEndIsNotSaid) {
    EndClient(143);
    testing::internal::CaptureStderr();
    EndWithoutMemory();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(EndStatus(), 143);
}

TEST_F(ClientTest, WhoPrintsWithoutEndEndsWhenNobodyReads) {
    EndIfOutputClosed();
    EndClient(141);
    EXPECT_THROW(EndIfOutputClosed(), ClientEnd);
    OpenConsole();
    EndClient(143);
    EndLastReport(); // nothing can be written from here on
    EXPECT_THROW(EndIfOutputClosed(), ClientEnd);
}

// As from a terminal that hangs up and from the shell on it. In a process of its
// own.
TEST_F(ClientTest, TwoSignalsAtOnceEndAClientThatHangs) {
    EXPECT_EXIT(
        {
            std::signal(SIGHUP, SIG_DFL);
            OpenConsole();
            raise(SIGHUP);
            raise(SIGHUP);
            for (;;) {
                pause();
            }
        },
        testing::ExitedWithCode(129), "");
}

TEST_F(ClientTest, ASignalInTheMenusClosesTheDevice) {
    EXPECT_EQ(RunClient([] {
                  raise(SIGHUP);
                  RunMainMenu();
              }),
              129);
    EXPECT_EQ(FakeDevice::Calls().back(), "CloseWiMAXDevice");
}

} // namespace
