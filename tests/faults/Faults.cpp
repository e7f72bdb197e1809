// Loaded in front of the C library (LD_PRELOAD): counts the calls that the client makes around its
// console and the allocations it makes, and fails the one that the plan names. README.md in tests/
// describes the plan and the report. What the scripted library does is not the client's: it says
// so with FaultsOwnCalls.
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <termios.h>
#include <unistd.h>

namespace {

// What a call is made on. Calls without a descriptor count as Other.
enum class Target : uint8_t { Input, Output, Error, File, Other };
constexpr size_t uTargets = 5;
constexpr std::string_view astrTargets[uTargets] = {"0", "1", "2", "file", "other"};

constexpr std::string_view astrCalls[] = {
    "read",          "readv",     "write",      "writev", "recv",   "send",      "poll",
    "ppoll",         "select",    "pselect",    "open",   "fcntl",  "fstat",     "eventfd",
    "epoll_create1", "epoll_ctl", "epoll_wait", "close",  "ioctl",  "nanosleep", "clock_nanosleep",
    "tcgetattr",     "isatty",    "fopen",      "fwrite", "fflush", "fclose",    "dup",
    "dup2",          "pipe2",     "malloc"};
constexpr size_t uCalls = sizeof astrCalls / sizeof astrCalls[0];
constexpr size_t uNameSize = 16;

// A write that takes one byte only, where the plan says so in place of an error.
constexpr int iShort = -1;

// What the sweep reads: a row a call, in the file that FAULTS_REPORT names.
struct ReportRow {
    char acName[uNameSize];
    std::atomic<uint32_t> au32Counts[uTargets];
};

struct Report {
    std::atomic<uint32_t> u32Fired;
    ReportRow astRows[uCalls];
};

// The call to fail: "NAME TARGET NUMBER ERROR" in FAULTS_PLAN.
struct Plan {
    std::string_view strCall;
    size_t uTarget = 0;
    uint32_t u32Number = 0; // 0: none
    int iError = 0;
};

Report *gpstReport = nullptr;
Plan gstPlan;
int giRecord = -1;
std::atomic<bool> gbCounting{false};
thread_local bool gbOwnCalls = false; // the scripted library's or this one's

template <typename Function> Function *Next(Function * /*pfnLike*/, const char *pcName) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, pcName));
}

// Calls the next function of that name.
#define NEXT(name) static auto *pfnNext = Next(::name, #name)

// The standard descriptors as they were when the client began.
struct stat gastStandard[3];

struct stat StatusOf(int iDescriptor) {
    NEXT(fstat);
    struct stat stStatus {};
    pfnNext(iDescriptor, &stStatus);
    return stStatus;
}

// A pipe or a terminal that was opened once more counts as what it is; on a terminal, which is
// both, as what the call is for.
Target TargetOf(int iDescriptor, Target eFor = Target::Input) {
    if (iDescriptor >= STDIN_FILENO && iDescriptor <= STDERR_FILENO) {
        return static_cast<Target>(iDescriptor);
    }
    const struct stat stStatus = StatusOf(iDescriptor);
    if (S_ISREG(stStatus.st_mode)) {
        return Target::File;
    }
    const auto Is = [&stStatus](Target eTarget) {
        const struct stat &stStandard = gastStandard[static_cast<size_t>(eTarget)];
        return stStandard.st_dev == stStatus.st_dev && stStandard.st_ino == stStatus.st_ino;
    };
    const Target eOther = eFor == Target::Input ? Target::Output : Target::Input;
    return Is(eFor) ? eFor : Is(eOther) ? eOther : Target::Other;
}

// A read that would find nothing is not counted: how many there are is a matter of time.
bool IsReady(int iDescriptor) {
    NEXT(poll);
    pollfd stPoll{iDescriptor, POLLIN, 0};
    return pfnNext(&stPoll, 1, 0) != 0;
}

Target TargetOfPath(std::string_view strPath) {
    return strPath == "/proc/self/fd/0"   ? Target::Input
           : strPath == "/proc/self/fd/1" ? Target::Output
           : strPath.starts_with("/")     ? Target::Other
                                          : Target::File;
}

constexpr size_t RowOf(std::string_view strCall) {
    size_t i = 0;
    while (astrCalls[i] != strCall) {
        ++i;
    }
    return i;
}

void SayFired() {
    gpstReport->u32Fired = 1;
    constexpr std::string_view strLine = "failed a call\n";
    static auto *pfnWrite = Next(::write, "write");
    (void)(pfnWrite(giRecord, strLine.data(), strLine.size()) < 0);
}

// Counts a call; the error it is to fail with, or 0. Sets errno for a failure.
int Fault(size_t uRow, Target eTarget) {
    if (!gbCounting || gbOwnCalls) {
        return 0;
    }
    const auto uTarget = static_cast<size_t>(eTarget);
    const uint32_t u32Number = ++gpstReport->astRows[uRow].au32Counts[uTarget];
    if (u32Number != gstPlan.u32Number || uTarget != gstPlan.uTarget ||
        astrCalls[uRow] != gstPlan.strCall) {
        return 0;
    }
    gbOwnCalls = true;
    SayFired();
    gbOwnCalls = false;
    if (gstPlan.iError > 0) {
        errno = gstPlan.iError;
    }
    return gstPlan.iError;
}

void ReadPlan(char *pcPlan) {
    char *pcRest = nullptr;
    gstPlan.strCall = strtok_r(pcPlan, " ", &pcRest);
    const std::string_view strTarget = strtok_r(nullptr, " ", &pcRest);
    while (astrTargets[gstPlan.uTarget] != strTarget) {
        ++gstPlan.uTarget;
    }
    gstPlan.u32Number =
        static_cast<uint32_t>(strtoul(strtok_r(nullptr, " ", &pcRest), nullptr, 10));
    gstPlan.iError = static_cast<int>(strtol(strtok_r(nullptr, " ", &pcRest), nullptr, 10));
}

// Before the client's main function: what the loader does is not counted.
void Begin() {
    const char *pcReport = std::getenv("FAULTS_REPORT");
    const char *pcRecord = std::getenv("QOR020_RECORD");
    const int iReport = pcReport != nullptr ? open(pcReport, O_RDWR | O_CLOEXEC) : -1;
    if (iReport < 0 || pcRecord == nullptr) {
        return;
    }
    void *pvReport = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED, iReport, 0);
    close(iReport);
    if (pvReport == MAP_FAILED) {
        return;
    }
    gpstReport = static_cast<Report *>(pvReport);
    for (int i = STDIN_FILENO; i <= STDERR_FILENO; ++i) {
        gastStandard[i] = StatusOf(i);
    }
    for (size_t i = 0; i < uCalls; ++i) {
        astrCalls[i].copy(gpstReport->astRows[i].acName, uNameSize - 1);
    }
    giRecord = open(pcRecord, O_WRONLY | O_APPEND | O_CLOEXEC);
    if (char *pcPlan = std::getenv("FAULTS_PLAN")) {
        ReadPlan(pcPlan);
    }
    gbCounting = true;
}

using Main = int(int iArguments, char **ppcArguments, char **ppcEnvironment);
Main *gpfnMain = nullptr;

int CountedMain(int iArguments, char **ppcArguments, char **ppcEnvironment) {
    Begin();
    return gpfnMain(iArguments, ppcArguments, ppcEnvironment);
}

} // namespace

// Returns from the function when the plan has the call fail.
#define FAIL_WITH(name, target, result)                                                            \
    do {                                                                                           \
        constexpr size_t uRow = RowOf(#name);                                                      \
        if (Fault(uRow, target) > 0) {                                                             \
            return result;                                                                         \
        }                                                                                          \
    } while (false)

#pragma GCC visibility push(default)
extern "C" {

bool FaultsOwnCalls(bool bOwn) {
    const bool bBefore = gbOwnCalls;
    gbOwnCalls = bOwn;
    return bBefore;
}

int __libc_start_main(Main *pfnMain, int iArguments, char **ppcArguments, void (*pfnBegin)(),
                      void (*pfnEnd)(), void (*pfnLoaderEnd)(), void *pvStack);
int __libc_start_main(Main *pfnMain, int iArguments, char **ppcArguments, void (*pfnBegin)(),
                      void (*pfnEnd)(), void (*pfnLoaderEnd)(), void *pvStack) {
    gpfnMain = pfnMain;
    NEXT(__libc_start_main);
    return pfnNext(CountedMain, iArguments, ppcArguments, pfnBegin, pfnEnd, pfnLoaderEnd, pvStack);
}

ssize_t read(int iDescriptor, void *pvBytes, size_t uSize) {
    if (IsReady(iDescriptor)) {
        FAIL_WITH(read, TargetOf(iDescriptor), -1);
    }
    NEXT(read);
    return pfnNext(iDescriptor, pvBytes, uSize);
}

ssize_t readv(int iDescriptor, const iovec *pstParts, int iParts) {
    FAIL_WITH(readv, TargetOf(iDescriptor), -1);
    NEXT(readv);
    return pfnNext(iDescriptor, pstParts, iParts);
}

ssize_t write(int iDescriptor, const void *pvBytes, size_t uSize) {
    NEXT(write);
    const int iFault = Fault(RowOf("write"), TargetOf(iDescriptor, Target::Output));
    if (iFault > 0) {
        return -1;
    }
    return pfnNext(iDescriptor, pvBytes, iFault == iShort && uSize > 1 ? 1 : uSize);
}

ssize_t writev(int iDescriptor, const iovec *pstParts, int iParts) {
    NEXT(writev);
    const int iFault = Fault(RowOf("writev"), TargetOf(iDescriptor, Target::Output));
    if (iFault > 0) {
        return -1;
    }
    if (iFault == iShort && iParts > 0 && pstParts->iov_len > 1) {
        const iovec stFirst{pstParts->iov_base, 1};
        return pfnNext(iDescriptor, &stFirst, 1);
    }
    return pfnNext(iDescriptor, pstParts, iParts);
}

ssize_t recv(int iDescriptor, void *pvBytes, size_t uSize, int iFlags) {
    if (IsReady(iDescriptor)) {
        FAIL_WITH(recv, TargetOf(iDescriptor), -1);
    }
    NEXT(recv);
    return pfnNext(iDescriptor, pvBytes, uSize, iFlags);
}

ssize_t send(int iDescriptor, const void *pvBytes, size_t uSize, int iFlags) {
    NEXT(send);
    const int iFault = Fault(RowOf("send"), TargetOf(iDescriptor, Target::Output));
    if (iFault > 0) {
        return -1;
    }
    return pfnNext(iDescriptor, pvBytes, iFault == iShort && uSize > 1 ? 1 : uSize, iFlags);
}

int fstat(int iDescriptor, struct stat *pstStatus) {
    FAIL_WITH(fstat, TargetOf(iDescriptor), -1);
    NEXT(fstat);
    return pfnNext(iDescriptor, pstStatus);
}

// One that waits for nothing is a pause between two looks, and there are as many as it takes.
int poll(pollfd *pstPolls, nfds_t uPolls, int iTimeout) {
    if (uPolls != 0) {
        FAIL_WITH(poll, Target::Other, -1);
    }
    NEXT(poll);
    return pfnNext(pstPolls, uPolls, iTimeout);
}

int ppoll(pollfd *pstPolls, nfds_t uPolls, const timespec *pstTimeout, const sigset_t *pstMask) {
    FAIL_WITH(ppoll, Target::Other, -1);
    NEXT(ppoll);
    return pfnNext(pstPolls, uPolls, pstTimeout, pstMask);
}

int select(int iCount, fd_set *pstReads, fd_set *pstWrites, fd_set *pstExceptions,
           timeval *pstTimeout) {
    FAIL_WITH(select, Target::Other, -1);
    NEXT(select);
    return pfnNext(iCount, pstReads, pstWrites, pstExceptions, pstTimeout);
}

int pselect(int iCount, fd_set *pstReads, fd_set *pstWrites, fd_set *pstExceptions,
            const timespec *pstTimeout, const sigset_t *pstMask) {
    FAIL_WITH(pselect, Target::Other, -1);
    NEXT(pselect);
    return pfnNext(iCount, pstReads, pstWrites, pstExceptions, pstTimeout, pstMask);
}

int open(const char *pcPath, int iFlags, ...) {
    va_list stArguments;
    va_start(stArguments, iFlags);
    const mode_t uMode = (iFlags & O_CREAT) != 0 ? va_arg(stArguments, mode_t) : 0;
    va_end(stArguments);
    FAIL_WITH(open, TargetOfPath(pcPath), -1);
    NEXT(open);
    return pfnNext(pcPath, iFlags, uMode);
}

int fcntl(int iDescriptor, int iCommand, ...) {
    va_list stArguments;
    va_start(stArguments, iCommand);
    void *pvArgument = va_arg(stArguments, void *);
    va_end(stArguments);
    FAIL_WITH(fcntl, TargetOf(iDescriptor), -1);
    NEXT(fcntl);
    return pfnNext(iDescriptor, iCommand, pvArgument);
}

int ioctl(int iDescriptor, unsigned long uRequest, ...) {
    va_list stArguments;
    va_start(stArguments, uRequest);
    void *pvArgument = va_arg(stArguments, void *);
    va_end(stArguments);
    FAIL_WITH(ioctl, TargetOf(iDescriptor), -1);
    NEXT(ioctl);
    return pfnNext(iDescriptor, uRequest, pvArgument);
}

int eventfd(unsigned int uValue, int iFlags) {
    FAIL_WITH(eventfd, Target::Other, -1);
    NEXT(eventfd);
    return pfnNext(uValue, iFlags);
}

int epoll_create1(int iFlags) {
    FAIL_WITH(epoll_create1, Target::Other, -1);
    NEXT(epoll_create1);
    return pfnNext(iFlags);
}

int epoll_ctl(int iPoll, int iOperation, int iDescriptor, epoll_event *pstEvent) {
    FAIL_WITH(epoll_ctl, TargetOf(iDescriptor), -1);
    NEXT(epoll_ctl);
    return pfnNext(iPoll, iOperation, iDescriptor, pstEvent);
}

int epoll_wait(int iPoll, epoll_event *pstEvents, int iEvents, int iTimeout) {
    FAIL_WITH(epoll_wait, Target::Other, -1);
    NEXT(epoll_wait);
    return pfnNext(iPoll, pstEvents, iEvents, iTimeout);
}

// A close that fails has closed all the same.
int close(int iDescriptor) {
    const Target eTarget = TargetOf(iDescriptor);
    NEXT(close);
    const int iResult = pfnNext(iDescriptor);
    FAIL_WITH(close, eTarget, -1);
    return iResult;
}

int nanosleep(const timespec *pstTime, timespec *pstLeft) {
    FAIL_WITH(nanosleep, Target::Other, -1);
    NEXT(nanosleep);
    return pfnNext(pstTime, pstLeft);
}

// Returns the error; errno stays.
int clock_nanosleep(clockid_t iClock, int iFlags, const timespec *pstTime, timespec *pstLeft) {
    constexpr size_t uRow = RowOf("clock_nanosleep");
    const int iSavedErrno = errno;
    const int iFault = Fault(uRow, Target::Other);
    errno = iSavedErrno;
    NEXT(clock_nanosleep);
    return iFault > 0 ? iFault : pfnNext(iClock, iFlags, pstTime, pstLeft);
}

int tcgetattr(int iDescriptor, termios *pstTerminal) {
    FAIL_WITH(tcgetattr, TargetOf(iDescriptor), -1);
    NEXT(tcgetattr);
    return pfnNext(iDescriptor, pstTerminal);
}

int isatty(int iDescriptor) {
    FAIL_WITH(isatty, TargetOf(iDescriptor), 0);
    NEXT(isatty);
    return pfnNext(iDescriptor);
}

int dup(int iDescriptor) {
    FAIL_WITH(dup, TargetOf(iDescriptor), -1);
    NEXT(dup);
    return pfnNext(iDescriptor);
}

int dup2(int iDescriptor, int iNew) {
    FAIL_WITH(dup2, TargetOf(iDescriptor), -1);
    NEXT(dup2);
    return pfnNext(iDescriptor, iNew);
}

int pipe2(int *piEnds, int iFlags) {
    FAIL_WITH(pipe2, Target::Other, -1);
    NEXT(pipe2);
    return pfnNext(piEnds, iFlags);
}

FILE *fopen(const char *pcPath, const char *pcMode) {
    FAIL_WITH(fopen, Target::File, nullptr);
    NEXT(fopen);
    return pfnNext(pcPath, pcMode);
}

size_t fwrite(const void *pvBytes, size_t uSize, size_t uCount, FILE *pstFile) {
    FAIL_WITH(fwrite, TargetOf(fileno(pstFile)), 0);
    NEXT(fwrite);
    return pfnNext(pvBytes, uSize, uCount, pstFile);
}

int fflush(FILE *pstFile) {
    FAIL_WITH(fflush, pstFile == nullptr ? Target::Other : TargetOf(fileno(pstFile)), EOF);
    NEXT(fflush);
    return pfnNext(pstFile);
}

int fclose(FILE *pstFile) {
    const Target eTarget = TargetOf(fileno(pstFile));
    NEXT(fclose);
    const int iResult = pfnNext(pstFile);
    FAIL_WITH(fclose, eTarget, EOF);
    return iResult;
}

void *malloc(size_t uSize) {
    FAIL_WITH(malloc, Target::Other, nullptr);
    NEXT(malloc);
    return pfnNext(uSize);
}

void *calloc(size_t uCount, size_t uSize) {
    FAIL_WITH(malloc, Target::Other, nullptr);
    NEXT(calloc);
    return pfnNext(uCount, uSize);
}

void *realloc(void *pvBlock, size_t uSize) {
    FAIL_WITH(malloc, Target::Other, nullptr);
    NEXT(realloc);
    return pfnNext(pvBlock, uSize);
}

int posix_memalign(void **ppvBlock, size_t uAlignment, size_t uSize) {
    const int iSavedErrno = errno;
    const int iFault = Fault(RowOf("malloc"), Target::Other);
    errno = iSavedErrno;
    NEXT(posix_memalign);
    return iFault > 0 ? iFault : pfnNext(ppvBlock, uAlignment, uSize);
}

void *aligned_alloc(size_t uAlignment, size_t uSize) {
    FAIL_WITH(malloc, Target::Other, nullptr);
    NEXT(aligned_alloc);
    return pfnNext(uAlignment, uSize);
}

} // extern "C"
#pragma GCC visibility pop
