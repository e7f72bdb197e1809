#include "Console.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <iterator>

#include <poll.h>
#include <unistd.h>

#include "Descriptors.h"

namespace {

constexpr int iEndOfInput = -1;

std::atomic<bool> gbInputEnded{false};
std::atomic<int> giPushedBack{iNoInputChar};
std::atomic<uint32_t> gu32KeyWaiters{0};
std::atomic_flag gInputTaken;

// Tells the menus that a decoder has got its character.
int giTurnEvent = -1;
// Tells a waiting decoder that a character was pushed back.
int giPushBackEvent = -1;

// A taker of the input holds it for one look that never blocks, so that waiting
// for it never lasts.
struct InputHold {
    InputHold() {
        while (gInputTaken.test_and_set(std::memory_order_acquire)) {
            poll(nullptr, 0, 1);
        }
    }
    ~InputHold() { gInputTaken.clear(std::memory_order_release); }
    InputHold(const InputHold &) = delete;
    InputHold &operator=(const InputHold &) = delete;
};

// The next character if there is one. Call it holding the input: it is the only
// place that reads it, one byte at a time, so that nothing is kept from the
// other reader or from a look at the descriptor.
int TakeChar() {
    const int iPushedBack = giPushedBack.exchange(iNoInputChar);
    if (iPushedBack != iNoInputChar) {
        return iPushedBack;
    }
    if (gbInputEnded) {
        return iEndOfInput;
    }
    unsigned char ucChar = 0;
    const ssize_t iCount = ReadInput(&ucChar, 1);
    if (iCount == 1) {
        return ucChar;
    }
    // What was there may be gone by now: a terminal drops its line on a signal.
    if (iCount < 0 && (errno == EINTR || errno == EAGAIN)) {
        return iNoInputChar;
    }
    gbInputEnded = true;
    return iEndOfInput;
}

// Waits for a descriptor, for an event, for the client's end and for the output
// to be gone, which is such an end.
void WaitFor(int iDescriptor, int iEvent) {
    pollfd astPoll[] = {{iDescriptor, POLLIN, 0},
                        {iEvent, POLLIN, 0},
                        {EndEvent(), POLLIN, 0},
                        {STDOUT_FILENO, 0, 0}};
    const bool bEvents = giTurnEvent >= 0 && giPushBackEvent >= 0;
    poll(astPoll, std::size(astPoll), bEvents ? IdleLimit() : iLookAgain);
    HeedOutput(astPoll[3].revents);
}

void WaitForTurn() {
    if (gu32KeyWaiters != 0) {
        WaitFor(-1, giTurnEvent);
    }
    ClearEvent(giTurnEvent);
}

} // namespace

void OpenConsole() {
    OpenDescriptors();
    PrepareEnding();
    OpenOutput();
    ReplaceEvent(&giTurnEvent);
    ReplaceEvent(&giPushBackEvent);
    gbInputEnded = false;
    giPushedBack = iNoInputChar;
}

void CloseConsole() {
    CloseOutput();
    RestoreDescriptors();
}

int NextInputChar() {
    for (;;) {
        EndIfTold();
        if (gu32KeyWaiters != 0) {
            WaitForTurn();
            continue;
        }
        {
            const InputHold stHold;
            if (gu32KeyWaiters == 0) {
                const int iChar = TakeChar();
                if (iChar != iNoInputChar) {
                    return iChar;
                }
            }
        }
        if (gu32KeyWaiters == 0) {
            WaitFor(STDIN_FILENO, -1);
        }
    }
}

int TakeInputChar() {
    const InputHold stHold;
    return TakeChar();
}

void PushBackInputChar(int iChar) {
    if (iChar == iEndOfInput) {
        return; // the end of the input stays where it is
    }
    giPushedBack = iChar;
    RaiseEvent(giPushBackEvent);
}

int PushedBackInputChar() { return giPushedBack; }

KeyTurn::KeyTurn() { ++gu32KeyWaiters; }

KeyTurn::~KeyTurn() {
    --gu32KeyWaiters;
    RaiseEvent(giTurnEvent);
}

int WaitForKey() {
    // Before the text is seen: a key typed at the sight of it is the decoder's.
    const KeyTurn stTurn;
    FlushOutput();
    for (;;) {
        if (IsEnding()) {
            return iEndOfInput;
        }
        const int iChar = TakeInputChar();
        if (iChar != iNoInputChar) {
            return iChar;
        }
        WaitFor(STDIN_FILENO, giPushBackEvent);
        ClearEvent(giPushBackEvent);
    }
}

void PauseMicroseconds(uint32_t u32Microseconds) {
    constexpr int64_t i64Second = 1000000000; // nanoseconds
    const auto Now = [] {
        timespec stNow{};
        clock_gettime(CLOCK_MONOTONIC, &stNow);
        return int64_t{stNow.tv_sec} * i64Second + stNow.tv_nsec;
    };
    const int64_t i64End = Now() + int64_t{u32Microseconds} * 1000;
    for (int64_t i64Left = i64End - Now(); i64Left > 0 && !IsEnding(); i64Left = i64End - Now()) {
        pollfd astPoll[] = {{EndEvent(), POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
        const timespec stTime{static_cast<time_t>(i64Left / i64Second),
                              static_cast<long>(i64Left % i64Second)};
        ppoll(astPoll, std::size(astPoll), &stTime, nullptr);
        HeedOutput(astPoll[1].revents);
    }
}
