#include "Console.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr int iNoChar = -2;
constexpr int iEndOfInput = -1;
// A pipe that polls writable takes this much without blocking.
constexpr size_t uPipeChunk = 4096;

std::atomic<int> giEndSignal{0};
std::atomic<bool> gbLeaving{false};
std::atomic<bool> gbInputEnded{false};
std::atomic<int> giPushedBack{iNoChar};
std::atomic<uint32_t> gu32KeyWaiters{0};
std::atomic_flag gOutputTaken;
std::atomic_flag gInputTaken;
bool gbOutputNeverBlocks = false;

// Readable from the moment the client is ending; never emptied.
int giEndEvent = -1;
// Tells the menus that a decoder has got its character.
int giTurnEvent = -1;
// Tells a waiting decoder that a character was pushed back.
int giPushBackEvent = -1;

void Raise(int iEvent) {
    const uint64_t u64One = 1;
    if (iEvent >= 0) {
        // A full counter is as good as one more.
        [[maybe_unused]] const ssize_t iWritten = write(iEvent, &u64One, sizeof u64One);
    }
}

void Clear(int iEvent) {
    uint64_t u64Count = 0;
    [[maybe_unused]] const ssize_t iRead = read(iEvent, &u64Count, sizeof u64Count);
}

void EndBySignal(int iSignal) {
    int iNone = 0;
    giEndSignal.compare_exchange_strong(iNone, iSignal);
    Raise(giEndEvent);
}

void OnSignal(int iSignal) {
    const int iSavedErrno = errno;
    EndBySignal(iSignal);
    errno = iSavedErrno;
}

void Catch(int iSignal) {
    struct sigaction stAction {};
    stAction.sa_handler = OnSignal;
    sigemptyset(&stAction.sa_mask);
    sigaction(iSignal, &stAction, nullptr); // no SA_RESTART: every wait looks up
}

// A taker of the flag holds it for one system call on a ready descriptor, so
// that waiting for it never lasts.
struct Hold {
    explicit Hold(std::atomic_flag &flag) : Flag(flag) {
        while (Flag.test_and_set(std::memory_order_acquire)) {
            poll(nullptr, 0, 1);
        }
    }
    ~Hold() { Flag.clear(std::memory_order_release); }
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;
    std::atomic_flag &Flag;
};

bool InputIsReady() {
    pollfd stPoll{STDIN_FILENO, POLLIN, 0};
    return poll(&stPoll, 1, 0) > 0;
}

// The next character if there is one. Call it holding gInputTaken: it is the
// only place that reads the descriptor, one byte at a time, so that nothing is
// kept from the other reader or from a look at the descriptor.
int TakeChar() {
    const int iPushedBack = giPushedBack.exchange(iNoChar);
    if (iPushedBack != iNoChar) {
        return iPushedBack;
    }
    if (gbInputEnded) {
        return iEndOfInput;
    }
    if (!InputIsReady()) {
        return iNoChar;
    }
    unsigned char ucChar = 0;
    const ssize_t iCount = read(STDIN_FILENO, &ucChar, 1);
    if (iCount == 1) {
        return ucChar;
    }
    if (iCount < 0 && (errno == EINTR || errno == EAGAIN)) {
        return iNoChar;
    }
    gbInputEnded = true;
    return iEndOfInput;
}

bool CharIsAtHand() { return giPushedBack != iNoChar || gbInputEnded; }

void EndIfOutputIsGone(const pollfd &stOutput) {
    if ((stOutput.revents & (POLLERR | POLLHUP)) != 0) {
        EndBySignal(SIGPIPE);
    }
}

void WaitForInputOrEnd() {
    pollfd astPoll[] = {{STDIN_FILENO, POLLIN, 0}, {giEndEvent, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    poll(astPoll, 3, -1);
    EndIfOutputIsGone(astPoll[2]);
}

void WaitForTurn() {
    pollfd astPoll[] = {{giTurnEvent, POLLIN, 0}, {giEndEvent, POLLIN, 0}};
    if (gu32KeyWaiters != 0) {
        poll(astPoll, 2, -1);
    }
    Clear(giTurnEvent);
}

// Regular files and the null device: no one can wait for them, and no one needs
// to.
bool NeverBlocks(int iDescriptor) {
    const int iPoll = epoll_create1(EPOLL_CLOEXEC);
    epoll_event stEvent{};
    stEvent.events = EPOLLOUT;
    const bool bRefused =
        epoll_ctl(iPoll, EPOLL_CTL_ADD, iDescriptor, &stEvent) != 0 && errno == EPERM;
    if (iPoll >= 0) {
        close(iPoll);
    }
    return bRefused;
}

// Writes all of it, or gives up when nobody can read it any more.
void WriteWhole(std::string_view strText) {
    while (!strText.empty()) {
        size_t uChunk = strText.size();
        if (!gbOutputNeverBlocks) {
            pollfd stPoll{STDOUT_FILENO, POLLOUT, 0};
            const int iReady = poll(&stPoll, 1, 100);
            if (iReady <= 0) {
                if (giEndSignal != 0) {
                    return;
                }
                continue;
            }
            uChunk = std::min(uChunk, uPipeChunk);
        }
        const ssize_t iWritten = write(STDOUT_FILENO, strText.data(), uChunk);
        if (iWritten >= 0) {
            strText.remove_prefix(static_cast<size_t>(iWritten));
        } else if (errno != EINTR && errno != EAGAIN) {
            EndBySignal(SIGPIPE);
            return;
        }
    }
}

} // namespace

void PutLine(std::string_view strText) {
    std::string &strPending = PendingOutput();
    strPending += strText;
    strPending += '\n';
}

void PutFormat(const char *pcFormat, ...) {
    char acText[512];
    va_list stArguments;
    va_start(stArguments, pcFormat);
    const int iLength = vsnprintf(acText, sizeof acText, pcFormat, stArguments);
    va_end(stArguments);
    if (iLength > 0) {
        PutText({acText, std::min<size_t>(static_cast<size_t>(iLength), sizeof acText - 1)});
    }
}

void FlushOutput() {
    std::string &strPending = PendingOutput();
    if (strPending.empty()) {
        return;
    }
    while (gOutputTaken.test_and_set(std::memory_order_acquire)) {
        if (giEndSignal != 0) {
            strPending.clear();
            return;
        }
        poll(nullptr, 0, 1);
    }
    WriteWhole(strPending);
    gOutputTaken.clear(std::memory_order_release);
    strPending.clear();
}

void OpenConsole() {
    for (int iDescriptor = STDIN_FILENO; iDescriptor <= STDERR_FILENO; ++iDescriptor) {
        if (fcntl(iDescriptor, F_GETFD) < 0) {
            // The lowest free number is this one.
            [[maybe_unused]] const int iOpened = open("/dev/null", O_RDWR);
        }
    }
    for (int *piEvent : {&giEndEvent, &giTurnEvent, &giPushBackEvent}) {
        if (*piEvent >= 0) {
            close(*piEvent);
        }
        *piEvent = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    }
    giEndSignal = 0;
    gbLeaving = false;
    gbInputEnded = false;
    giPushedBack = iNoChar;
    gbOutputNeverBlocks = NeverBlocks(STDOUT_FILENO);
    Catch(SIGINT);
    Catch(SIGTERM);
    Catch(SIGHUP);
    struct sigaction stIgnore {};
    stIgnore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &stIgnore, nullptr);
}

int NextInputChar() {
    for (;;) {
        EndIfSignalled();
        if (gu32KeyWaiters != 0) {
            WaitForTurn();
            continue;
        }
        if (!CharIsAtHand()) {
            WaitForInputOrEnd();
            EndIfSignalled();
        }
        const Hold stHold(gInputTaken);
        if (gu32KeyWaiters != 0) {
            continue;
        }
        const int iChar = TakeChar();
        if (iChar != iNoChar) {
            return iChar;
        }
    }
}

void PushBackInputChar(int iChar) {
    if (iChar == iEndOfInput) {
        return; // the end of the input stays where it is
    }
    giPushedBack = iChar;
    Raise(giPushBackEvent);
}

KeyTurn::KeyTurn() { ++gu32KeyWaiters; }

KeyTurn::~KeyTurn() {
    --gu32KeyWaiters;
    Raise(giTurnEvent);
}

int WaitForKey() {
    // Before the text is seen: a key typed at the sight of it is the decoder's.
    const KeyTurn stTurn;
    FlushOutput();
    int iChar = iNoChar;
    while (iChar == iNoChar) {
        if (IsEnding()) {
            iChar = iEndOfInput;
            break;
        }
        if (!CharIsAtHand()) {
            pollfd astPoll[] = {
                {STDIN_FILENO, POLLIN, 0}, {giEndEvent, POLLIN, 0}, {giPushBackEvent, POLLIN, 0}};
            poll(astPoll, 3, -1);
            Clear(giPushBackEvent);
        }
        const Hold stHold(gInputTaken);
        iChar = TakeChar();
    }
    return iChar;
}

void PauseMicroseconds(uint32_t u32Microseconds) {
    pollfd astPoll[] = {{giEndEvent, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    const timespec stTime{static_cast<time_t>(u32Microseconds / 1000000),
                          static_cast<long>(u32Microseconds % 1000000) * 1000};
    ppoll(astPoll, 2, &stTime, nullptr);
    EndIfOutputIsGone(astPoll[1]);
}

void BeginLeaving() {
    gbLeaving = true;
    Raise(giEndEvent);
}

int EndingSignal() { return giEndSignal; }

bool IsEnding() { return gbLeaving || giEndSignal != 0; }

void EndIfSignalled() {
    if (giEndSignal != 0) {
        throw ClientEnd{128 + giEndSignal};
    }
}
