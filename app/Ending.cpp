#include "Ending.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>

#include <sys/time.h>
#include <unistd.h>

#include "Descriptors.h"

namespace {

// Two signals closer together than this are one event: a terminal that hangs up
// sends its signal, and so does the shell on it.
constexpr uint32_t u32SameEvent = 100; // milliseconds

std::atomic<int> giEndStatus{0};
std::atomic<bool> gbLeaving{false};
// Milliseconds of the monotonic clock, never 0; 0 is none.
std::atomic<uint32_t> gu32FirstSignal{0};
std::atomic<uint32_t> gu32Deadline{0};
// Readable from the moment the client is ending; never emptied.
int giEndEvent = -1;

uint32_t Now() {
    timespec stNow{};
    clock_gettime(CLOCK_MONOTONIC, &stNow);
    const uint32_t u32Now =
        static_cast<uint32_t>(stNow.tv_sec) * 1000 + static_cast<uint32_t>(stNow.tv_nsec / 1000000);
    return u32Now != 0 ? u32Now : 1;
}

[[noreturn]] void EndAtOnce() {
    RestoreDescriptors();
    _exit(giEndStatus);
}

void OnAlarm(int /*iSignal*/) { EndAtOnce(); }

void EndAfter(uint32_t u32Milliseconds) {
    struct sigaction stAlarm {};
    stAlarm.sa_handler = OnAlarm;
    sigemptyset(&stAlarm.sa_mask);
    sigaction(SIGALRM, &stAlarm, nullptr);
    itimerval stTimer{};
    stTimer.it_value.tv_usec = static_cast<suseconds_t>(u32Milliseconds) * 1000;
    setitimer(ITIMER_REAL, &stTimer, nullptr);
}

// The first signal ends the client in good order; one more ends it at once,
// whatever hangs.
void OnSignal(int iSignal) {
    const int iSavedErrno = errno;
    const uint32_t u32Now = Now();
    uint32_t u32First = 0;
    if (gu32FirstSignal.compare_exchange_strong(u32First, u32Now)) {
        EndClient(128 + iSignal);
    } else if (u32Now - u32First >= u32SameEvent) {
        EndAtOnce();
    } else {
        EndAfter(u32SameEvent - (u32Now - u32First));
    }
    errno = iSavedErrno;
}

void Catch(int iSignal) {
    struct sigaction stBefore {};
    if (sigaction(iSignal, nullptr, &stBefore) == 0 && stBefore.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction stAction {};
    stAction.sa_handler = OnSignal;
    sigemptyset(&stAction.sa_mask);
    sigaction(iSignal, &stAction, nullptr); // no SA_RESTART: every wait looks up
}

} // namespace

void PrepareEnding() {
    ReplaceEvent(&giEndEvent);
    giEndStatus = 0;
    gbLeaving = false;
    gu32FirstSignal = 0;
    gu32Deadline = 0;
    Catch(SIGINT);
    Catch(SIGTERM);
    Catch(SIGHUP);
    struct sigaction stIgnore {};
    stIgnore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &stIgnore, nullptr);
}

bool EndClient(int iExitStatus) {
    int iNone = 0;
    const bool bFirst = giEndStatus.compare_exchange_strong(iNone, iExitStatus);
    LimitLastReport();
    RaiseEvent(giEndEvent);
    return bFirst;
}

void EndWithoutMemory() {
    if (EndClient(1)) {
        Complain("out of memory");
    }
}

int EndStatus() { return giEndStatus; }

void EndIfTold() {
    if (giEndStatus != 0) {
        throw ClientEnd{giEndStatus};
    }
}

void BeginLeaving() {
    gbLeaving = true;
    RaiseEvent(giEndEvent);
}

bool IsEnding() { return gbLeaving || giEndStatus != 0; }

int EndEvent() { return giEndEvent; }

int IdleLimit() { return giEndEvent >= 0 ? -1 : iLookAgain; }

void LimitLastReport() {
    uint32_t u32None = 0;
    const uint32_t u32Deadline = Now() + static_cast<uint32_t>(iLastReportTime);
    gu32Deadline.compare_exchange_strong(u32None, u32Deadline != 0 ? u32Deadline : 1);
}

void EndLastReport() { gu32Deadline = Now(); }

int TimeLeft() {
    const uint32_t u32Deadline = gu32Deadline;
    if (u32Deadline == 0) {
        return -1;
    }
    const auto iLeft = static_cast<int32_t>(u32Deadline - Now());
    return iLeft > 0 ? iLeft : 0;
}
