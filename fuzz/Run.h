// What the stage is made of: for its own files only.
#ifndef FUZZ_RUN_H
#define FUZZ_RUN_H

#include <array>
#include <cerrno>
#include <csignal>
#include <deque>

#include "Stage.h"

namespace Stage {

enum Actor : uint32_t { Menus, Library, ActorCount };
inline constexpr int64_t i64Second = 1000000000;
inline constexpr int64_t i64Forever = -1;

// What a descriptor of the client's own stands for.
enum class Thing : uint8_t { None, Input, Output, Errors, Event };

struct Descriptor {
    Thing eThing = Thing::None;
    uint64_t u64Count = 0; // of an event
    bool bNonBlocking = false;
};

// Thrown where the client leaves without returning.
struct LeftAtOnce {
    int iStatus;
};

// A message or a signal that comes at a place further on.
struct DelayedStep {
    Step stStep;
    uint32_t u32Delay;
};

struct Run {
    std::vector<Step> astSteps;
    size_t uStep = 0;      // what happens next
    uint32_t u32Typed = 0; // of a step's bytes
    uint32_t u32Pause = 0; // looks that find nothing
    std::array<size_t, static_cast<size_t>(StepKind::Count)> auNext{};
    std::array<int, static_cast<size_t>(SystemCall::Count)> aiError{};
    std::array<Descriptor, 32> astDescriptors{};
    Descriptor astStandard[3] = {{Thing::Input}, {Thing::Output}, {Thing::Errors}};
    StreamKind aeStreams[2] = {};
    std::array<struct sigaction, NSIG> astActions{};
    bool abRaised[NSIG] = {};
    bool bInHandler = false;
    bool bGone = false;
    bool bWriteFailed = false;
    uint32_t u32Blocked = 0;
    uint32_t u32Short = 0; // writes that take one byte
    ByteView stTurns;
    uint32_t u32Turn = 0;
    int64_t i64Now = 0;
    uint32_t u32Waits = 0;
    uint32_t u32Calls = 0;
    uint32_t u32Changes = 0;
    int64_t i64Alarm = 0;
    bool bHadLargeBlock = false;
    bool bLeft = false; // without returning
    int iLeftStatus = 0;
    bool bUnwound = false; // the menus, then
    bool bTold = false;    // to end, by a signal
    int64_t i64ToldAt = 0;
    WiMAXCallback pfnCallback = nullptr;
    uint32_t u32Context = 0;
    std::vector<DelayedStep> astDelayed;
    std::deque<ByteView> astMessages;
    bool bCallbackRuns = false;
    bool bMenusWaitForCallback = false;
    bool abWaiting[ActorCount] = {};
    uint32_t au32WaitsSince[ActorCount] = {};
    bool abInterrupted[ActorCount] = {};

    void Clear() {
        // Keeps the memory of what grows.
        std::vector<Step> astOldSteps = std::move(astSteps);
        std::vector<DelayedStep> astOldDelayed = std::move(astDelayed);
        std::deque<ByteView> astOldMessages = std::move(astMessages);
        *this = {};
        astOldSteps.clear();
        astOldDelayed.clear();
        astOldMessages.clear();
        astSteps = std::move(astOldSteps);
        astDelayed = std::move(astOldDelayed);
        astMessages = std::move(astOldMessages);
    }
};

extern Run gstRun;
// Whether this thread is the client's now; elsewhere the calls are real.
extern thread_local bool gbOnStage;
extern thread_local Actor geActor;

// A call that the client makes.
void CountCall();
// Whether the next such call is planned to fail; errno then says why.
bool Fails(SystemCall eCall);
// What is typed next; all that happens before has happened. Null at the end.
const Step *NextTyped();
// Ready also at the end.
bool InputIsReady();
bool OutputIsReady();
// Lets the other thread go on, or time pass. False when the time is over.
bool LetGoOn(int64_t i64Time, bool bFirst);
// Whether a signal has come on this thread; forgets it.
bool TakeInterruption();

// Waits until pfnLook() gives more than 0, which it returns, for the time at
// most. Below 0 and errno when a signal comes first.
template <typename Look> int Wait(int64_t i64Time, Look pfnLook) {
    SwitchPoint();
    TakeInterruption();
    for (bool bFirst = true;; bFirst = false) {
        const int iReady = pfnLook();
        const bool bGoesOn = iReady <= 0 && i64Time != 0 && !gstRun.abInterrupted[geActor] &&
                             LetGoOn(i64Time, bFirst);
        if (TakeInterruption()) {
            errno = EINTR;
            return -1;
        }
        if (!bGoesOn) {
            return iReady;
        }
    }
}

} // namespace Stage

#endif
