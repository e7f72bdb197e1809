// The calls of the operating system that the linker leads here, on the stage;
// elsewhere they are real.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include "Run.h"

namespace {

using namespace Stage;

// Descriptors of the client's own, far from all real ones.
constexpr int iFirstDescriptor = 1000;
Descriptor *Find(int iDescriptor) {
    if (iDescriptor >= 0 && iDescriptor <= STDERR_FILENO) {
        return &gstRun.astStandard[iDescriptor];
    }
    const auto uIndex = static_cast<size_t>(iDescriptor - iFirstDescriptor);
    return iDescriptor >= iFirstDescriptor && uIndex < gstRun.astDescriptors.size()
               ? &gstRun.astDescriptors[uIndex]
               : nullptr;
}

int NewDescriptor(Thing eThing, bool bNonBlocking) {
    if (Fails(SystemCall::Descriptor)) {
        return -1;
    }
    for (int i = 0; i < static_cast<int>(gstRun.astDescriptors.size()); ++i) {
        Descriptor &stDescriptor = gstRun.astDescriptors[static_cast<size_t>(i)];
        if (stDescriptor.eThing == Thing::None) {
            stDescriptor = {eThing, 0, bNonBlocking};
            return iFirstDescriptor + i;
        }
    }
    Stage::Complain("the client opens and opens");
}

StreamKind KindOf(int iDescriptor) {
    return iDescriptor == STDIN_FILENO || iDescriptor == STDOUT_FILENO
               ? gstRun.aeStreams[iDescriptor]
               : StreamKind::Pipe;
}

short Readiness(const Descriptor &stDescriptor, short sEvents) {
    bool bReady = false;
    switch (stDescriptor.eThing) {
    case Thing::Input:
        return (sEvents & POLLIN) != 0 && InputIsReady() ? POLLIN : 0;
    case Thing::Output:
        bReady = (sEvents & POLLOUT) != 0 && OutputIsReady();
        return static_cast<short>((bReady ? POLLOUT : 0) | (gstRun.bGone ? POLLERR : 0));
    case Thing::Event:
        return static_cast<short>(stDescriptor.u64Count != 0 ? sEvents & POLLIN : 0);
    default:
        return static_cast<short>(sEvents & POLLOUT);
    }
}

int PollFor(pollfd *astPoll, nfds_t uCount, int64_t i64Time) {
    CountCall();
    if (Fails(SystemCall::Poll)) {
        return -1;
    }
    return Wait(i64Time, [&] {
        int iReady = 0;
        for (nfds_t i = 0; i < uCount; ++i) {
            const Descriptor *pstDescriptor = Find(astPoll[i].fd);
            astPoll[i].revents =
                pstDescriptor != nullptr ? Readiness(*pstDescriptor, astPoll[i].events) : short{0};
            iReady += astPoll[i].revents != 0 ? 1 : 0;
        }
        return iReady;
    });
}

// Waits for a stream that cannot be read or written now, unless it never waits.
template <typename Look> bool WaitForStream(bool bNonBlocking, Look pfnLook) {
    const int iReady = Wait(bNonBlocking ? 0 : i64Forever, pfnLook);
    if (iReady == 0) {
        errno = EAGAIN;
    }
    return iReady > 0;
}

ssize_t ReadTyped(void *pvBytes, size_t uCount, bool bNonBlocking) {
    if (Fails(SystemCall::Read)) {
        return -1;
    }
    if (!WaitForStream(bNonBlocking, [] { return InputIsReady() ? 1 : 0; })) {
        return -1;
    }
    const Step *pstTyped = NextTyped();
    if (pstTyped == nullptr) {
        return 0;
    }
    const ByteView stTyped = pstTyped->stData.From(gstRun.u32Typed, static_cast<uint32_t>(uCount));
    std::copy_n(stTyped.pucData, stTyped.u32Length, static_cast<uint8_t *>(pvBytes));
    gstRun.u32Typed += stTyped.u32Length;
    ++gstRun.u32Changes;
    return stTyped.u32Length;
}

ssize_t WriteScreen(const void *pvBytes, size_t uCount, bool bNonBlocking) {
    Stage::CheckBytes(pvBytes, uCount);
    if (Fails(SystemCall::Write)) {
        gstRun.bWriteFailed = true;
        return -1;
    }
    if (!WaitForStream(bNonBlocking, [] { return gstRun.bGone || OutputIsReady() ? 1 : 0; })) {
        return -1;
    }
    if (gstRun.bGone) {
        errno = EPIPE;
        return -1;
    }
    if (gstRun.u32Short != 0 && uCount > 1) {
        --gstRun.u32Short;
        return 1;
    }
    return static_cast<ssize_t>(uCount);
}

ssize_t ReadFrom(Descriptor *pstDescriptor, void *pvBytes, size_t uCount, bool bNonBlocking) {
    CountCall();
    if (pstDescriptor->eThing == Thing::Input) {
        return ReadTyped(pvBytes, uCount, bNonBlocking);
    }
    if (pstDescriptor->u64Count == 0) {
        errno = EAGAIN;
        return -1;
    }
    std::memcpy(pvBytes, &pstDescriptor->u64Count, sizeof pstDescriptor->u64Count);
    pstDescriptor->u64Count = 0;
    ++gstRun.u32Changes;
    return sizeof pstDescriptor->u64Count;
}

ssize_t WriteTo(Descriptor *pstDescriptor, const void *pvBytes, size_t uCount, bool bNonBlocking) {
    CountCall();
    if (pstDescriptor->eThing == Thing::Output) {
        return WriteScreen(pvBytes, uCount, bNonBlocking);
    }
    if (pstDescriptor->eThing == Thing::Event) {
        ++pstDescriptor->u64Count;
        ++gstRun.u32Changes;
    }
    return static_cast<ssize_t>(uCount);
}

} // namespace

#define WRAPPED(Result, Name, ...)                                                                 \
    extern "C" Result __real_##Name(__VA_ARGS__);                                                  \
    extern "C" Result __wrap_##Name(__VA_ARGS__);                                                  \
    Result __wrap_##Name(__VA_ARGS__)

WRAPPED(ssize_t, read, int iDescriptor, void *pvBytes, size_t uCount) {
    Descriptor *pstDescriptor = gbOnStage ? Find(iDescriptor) : nullptr;
    if (pstDescriptor == nullptr) {
        return __real_read(iDescriptor, pvBytes, uCount);
    }
    return ReadFrom(pstDescriptor, pvBytes, uCount, pstDescriptor->bNonBlocking);
}

WRAPPED(ssize_t, write, int iDescriptor, const void *pvBytes, size_t uCount) {
    Descriptor *pstDescriptor = gbOnStage ? Find(iDescriptor) : nullptr;
    if (pstDescriptor == nullptr) {
        return __real_write(iDescriptor, pvBytes, uCount);
    }
    return WriteTo(pstDescriptor, pvBytes, uCount, pstDescriptor->bNonBlocking);
}

WRAPPED(ssize_t, recv, int iDescriptor, void *pvBytes, size_t uCount, int iFlags) {
    if (!gbOnStage) {
        return __real_recv(iDescriptor, pvBytes, uCount, iFlags);
    }
    return ReadFrom(Find(iDescriptor), pvBytes, uCount, (iFlags & MSG_DONTWAIT) != 0);
}

WRAPPED(ssize_t, send, int iDescriptor, const void *pvBytes, size_t uCount, int iFlags) {
    if (!gbOnStage) {
        return __real_send(iDescriptor, pvBytes, uCount, iFlags);
    }
    return WriteTo(Find(iDescriptor), pvBytes, uCount, (iFlags & MSG_DONTWAIT) != 0);
}

WRAPPED(int, poll, pollfd *astPoll, nfds_t uCount, int iMilliseconds) {
    if (!gbOnStage) {
        return __real_poll(astPoll, uCount, iMilliseconds);
    }
    return PollFor(astPoll, uCount,
                   iMilliseconds < 0 ? i64Forever : iMilliseconds * (i64Second / 1000));
}

WRAPPED(int, ppoll, pollfd *astPoll, nfds_t uCount, const timespec *pstTime,
        const sigset_t *pstMask) {
    if (!gbOnStage) {
        return __real_ppoll(astPoll, uCount, pstTime, pstMask);
    }
    return PollFor(astPoll, uCount,
                   pstTime == nullptr ? i64Forever
                                      : pstTime->tv_sec * i64Second + pstTime->tv_nsec);
}

WRAPPED(int, select, int iCount, fd_set *pstRead, fd_set *pstWrite, fd_set *pstExcept,
        timeval *pstTime) {
    if (!gbOnStage) {
        return __real_select(iCount, pstRead, pstWrite, pstExcept, pstTime);
    }
    // The client looks at its input with it, and at nothing else.
    pollfd stPoll{STDIN_FILENO, POLLIN, 0};
    const int iReady = PollFor(&stPoll, 1, 0);
    if (iReady == 0) {
        FD_CLR(STDIN_FILENO, pstRead);
    }
    return iReady;
}

WRAPPED(int, eventfd, unsigned uValue, int iFlags) {
    return gbOnStage ? NewDescriptor(Thing::Event, true) : __real_eventfd(uValue, iFlags);
}

WRAPPED(int, open, const char *pcPath, int iFlags, int iMode) {
    if (!gbOnStage) {
        return __real_open(pcPath, iFlags, iMode);
    }
    const Thing eThing = std::strcmp(pcPath, "/proc/self/fd/0") == 0   ? Thing::Input
                         : std::strcmp(pcPath, "/proc/self/fd/1") == 0 ? Thing::Output
                                                                       : Thing::Errors;
    return NewDescriptor(eThing, (iFlags & O_NONBLOCK) != 0);
}

WRAPPED(int, close, int iDescriptor) {
    Descriptor *pstDescriptor = gbOnStage ? Find(iDescriptor) : nullptr;
    if (pstDescriptor == nullptr) {
        return __real_close(iDescriptor);
    }
    pstDescriptor->eThing = Thing::None;
    return 0;
}

WRAPPED(int, fcntl, int iDescriptor, int iCommand, long lArgument) {
    if (!gbOnStage) {
        return __real_fcntl(iDescriptor, iCommand, lArgument);
    }
    Descriptor *pstDescriptor = Find(iDescriptor);
    if (iCommand == F_GETFD && Fails(SystemCall::Descriptor)) {
        return -1;
    }
    if (iCommand == F_SETFL) {
        pstDescriptor->bNonBlocking = (lArgument & O_NONBLOCK) != 0;
    }
    return iCommand == F_GETFL && pstDescriptor->bNonBlocking ? O_NONBLOCK : 0;
}

WRAPPED(int, fstat, int iDescriptor, struct stat *pstStat) {
    if (!gbOnStage) {
        return __real_fstat(iDescriptor, pstStat);
    }
    constexpr mode_t auModes[] = {S_IFIFO, S_IFREG, S_IFCHR, S_IFCHR, S_IFSOCK};
    *pstStat = {};
    pstStat->st_mode = auModes[static_cast<size_t>(KindOf(iDescriptor))];
    return Fails(SystemCall::Descriptor) ? -1 : 0;
}

WRAPPED(int, isatty, int iDescriptor) {
    if (!gbOnStage) {
        return __real_isatty(iDescriptor);
    }
    const StreamKind eKind = KindOf(iDescriptor);
    return eKind == StreamKind::Terminal || eKind == StreamKind::Master ? 1 : 0;
}

// The client asks for a terminal's number, which only its master has.
WRAPPED(int, ioctl, int iDescriptor, unsigned long uRequest, void *pvArgument) {
    if (!gbOnStage) {
        return __real_ioctl(iDescriptor, uRequest, pvArgument);
    }
    return KindOf(iDescriptor) == StreamKind::Master ? 0 : -1;
}

WRAPPED(int, setitimer, __itimer_which_t eWhich, const itimerval *pstNew, itimerval *pstOld) {
    if (!gbOnStage) {
        return __real_setitimer(eWhich, pstNew, pstOld);
    }
    gstRun.i64Alarm = gstRun.i64Now + pstNew->it_value.tv_sec * i64Second +
                      pstNew->it_value.tv_usec * int64_t{1000};
    return 0;
}

extern "C" [[noreturn]] void __real__exit(int iStatus);
extern "C" [[noreturn]] void __wrap__exit(int iStatus);
void __wrap__exit(int iStatus) {
    if (!gbOnStage) {
        __real__exit(iStatus);
    }
    gstRun.bLeft = true;
    gstRun.iLeftStatus = iStatus;
    gstRun.bUnwound = gstRun.bUnwound || geActor == Menus;
    throw LeftAtOnce{iStatus};
}

WRAPPED(int, sigaction, int iSignal, const struct sigaction *pstNew, struct sigaction *pstOld) {
    if (!gbOnStage) {
        return __real_sigaction(iSignal, pstNew, pstOld);
    }
    struct sigaction &stAction = gstRun.astActions[static_cast<size_t>(iSignal)];
    if (pstOld != nullptr) {
        *pstOld = stAction;
    }
    if (pstNew != nullptr) {
        stAction = *pstNew;
    }
    return 0;
}

WRAPPED(int, clock_gettime, clockid_t iClock, timespec *pstTime) {
    if (!gbOnStage) {
        return __real_clock_gettime(iClock, pstTime);
    }
    *pstTime = {gstRun.i64Now / i64Second, gstRun.i64Now % i64Second};
    return 0;
}

WRAPPED(time_t, time, time_t *piTime) { return gbOnStage ? 0 : __real_time(piTime); }

// Large blocks are what the register test asks for, and fills with text; it gets
// small ones, and once in a run such as take more than one piece of a report.
WRAPPED(void *, calloc, size_t uCount, size_t uSize) {
    constexpr size_t uMost = 2048;
    constexpr size_t uPiece = 1U << 16;
    const size_t uBytes = uCount * uSize;
    if (gbOnStage && uBytes > uMost) {
        const bool bPieces = uBytes > uPiece && uBytes <= uPiece + 16;
        if (!bPieces || std::exchange(gstRun.bHadLargeBlock, true)) {
            errno = ENOMEM;
            return nullptr;
        }
    }
    return __real_calloc(uCount, uSize);
}

// The client's two files; the fuzzer writes its own under other names.
namespace {

char gcFile;
FILE *const gpstFile = reinterpret_cast<FILE *>(&gcFile);

bool IsClientFile(const char *pcPath) {
    const char *pcEnd = std::strrchr(pcPath, '.');
    return gbOnStage && pcEnd != nullptr &&
           (std::strcmp(pcEnd, ".bin") == 0 || std::strcmp(pcEnd, ".txt") == 0);
}

} // namespace

WRAPPED(FILE *, fopen, const char *pcPath, const char *pcMode) {
    if (!IsClientFile(pcPath)) {
        return __real_fopen(pcPath, pcMode);
    }
    return Fails(SystemCall::OpenFile) ? nullptr : gpstFile;
}

WRAPPED(size_t, fwrite, const void *pvBytes, size_t uSize, size_t uCount, FILE *pstFile) {
    if (pstFile != gpstFile) {
        return __real_fwrite(pvBytes, uSize, uCount, pstFile);
    }
    Stage::CheckBytes(pvBytes, uSize * uCount);
    return Fails(SystemCall::WriteFile) ? 0 : uCount;
}

WRAPPED(int, fflush, FILE *pstFile) {
    if (pstFile != gpstFile) {
        return __real_fflush(pstFile);
    }
    return Fails(SystemCall::WriteFile) ? EOF : 0;
}

WRAPPED(int, setvbuf, FILE *pstFile, char *pcBuffer, int iMode, size_t uSize) {
    return pstFile != gpstFile ? __real_setvbuf(pstFile, pcBuffer, iMode, uSize) : 0;
}

WRAPPED(void, clearerr, FILE *pstFile) {
    if (pstFile != gpstFile) {
        __real_clearerr(pstFile);
    }
}

WRAPPED(int, fclose, FILE *pstFile) { return pstFile != gpstFile ? __real_fclose(pstFile) : 0; }
