// A device library whose threads call the callback all the time. README.md in
// tests/ lists the environment variables that steer it.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// The device library's functions are all that this one exports, but for the
// system calls that it slows down.
#pragma GCC visibility push(default)
#include "WiMAXDevice.h"
#pragma GCC visibility pop
#include "Messages.h"

namespace {

std::string Setting(const char *pcName, const char *pcOther) {
    const char *pcValue = std::getenv(pcName);
    return pcValue != nullptr ? pcValue : pcOther;
}

uint32_t Number(const char *pcName, uint32_t u32Other) {
    const char *pcValue = std::getenv(pcName);
    return pcValue != nullptr ? static_cast<uint32_t>(std::strtoul(pcValue, nullptr, 10))
                              : u32Other;
}

void Pause(uint32_t u32Microseconds) {
    timespec stTime{static_cast<time_t>(u32Microseconds / 1000000),
                    static_cast<long>(u32Microseconds % 1000000) * 1000};
    while (nanosleep(&stTime, &stTime) != 0 && errno == EINTR) {
    }
}

struct Storm;

struct StormThread {
    Storm *pstStorm = nullptr;
    uint32_t u32Thread = 0;
    pthread_t Thread{};
    std::atomic<uint64_t> u64Returned{0}; // callbacks
};

struct Storm {
    const uint32_t u32Threads = Number("STORM_THREADS", 1);
    const std::string strMessages = Setting("STORM_MESSAGES", "trace");
    const uint32_t u32Body = Number("STORM_BODY", 40);
    const uint32_t u32Seed = Number("STORM_SEED", 1);
    const uint32_t u32Different = Number("STORM_DIFFERENT", UINT32_MAX);
    const uint32_t u32Count = Number("STORM_COUNT", UINT32_MAX);
    const uint32_t u32Pause = Number("STORM_PAUSE", 0);
    const uint32_t u32Delay = Number("STORM_DELAY", 0);
    const uint32_t u32Stack = Number("STORM_STACK", 0);
    const bool bBlocksSignals = Number("STORM_BLOCKS_SIGNALS", 0) != 0;
    const bool bCancelsAtOnce = Number("STORM_CANCELS_AT_ONCE", 0) != 0;
    const std::string strClose = Setting("STORM_CLOSE", "waits");
    const uint32_t u32CloseTakes = Number("STORM_CLOSE_TAKES", 0);
    const uint32_t u32OpensFail = Number("STORM_OPENS_FAIL", 0);
    const std::string strHangs = Setting("STORM_HANGS", "");
    const std::string strSend = Setting("STORM_SEND", "");
    const uint32_t u32Tick = Number("STORM_TICK", 0);
    int iRecord = -1;

    pthread_t MainThread = pthread_self();
    uint32_t u32Opened = 0;
    WiMAXCallback pfnCallback = nullptr;
    std::vector<std::unique_ptr<StormThread>> apstRunning;
    std::atomic<bool> bStop{false};
    std::atomic<uint64_t> u64Entered{0};
    std::atomic<uint64_t> u64Returned{0};
    std::atomic<uint32_t> u32Results{0};
    // Messages of each thread; they go on when the device is opened again.
    std::vector<std::atomic<uint32_t>> au32Numbers = std::vector<std::atomic<uint32_t>>(u32Threads);
};

thread_local bool bOfTheStorm = false;

void RecordLine(const Storm &stStorm, const std::string &strLine) {
    if (stStorm.iRecord >= 0) {
        const std::string strWhole = strLine + "\n";
        (void)(::write(stStorm.iRecord, strWhole.data(), strWhole.size()) < 0);
    }
}

void OnTick(int /*iSignal*/) {}

// Interrupts the main thread all the time, with a signal that is the library's
// own business.
void *Tick(void *pvStorm) {
    auto &stStorm = *static_cast<Storm *>(pvStorm);
    for (;;) {
        Pause(stStorm.u32Tick);
        pthread_kill(stStorm.MainThread, SIGUSR1);
    }
}

// Never destroyed: its threads may outlive the main function.
Storm &TheStorm() {
    static Storm &stStorm = *[] {
        auto *pstStorm = new Storm;
        if (const char *pcRecord = std::getenv("STORM_RECORD")) {
            pstStorm->iRecord = open(pcRecord, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        }
        if (pstStorm->u32Tick != 0) {
            struct sigaction stAction {};
            stAction.sa_handler = OnTick;
            sigaction(SIGUSR1, &stAction, nullptr);
            pthread_t Ticker{};
            pthread_create(&Ticker, nullptr, Tick, pstStorm);
        }
        return pstStorm;
    }();
    return stStorm;
}

void HangIf(const Storm &stStorm, const char *pcCall) {
    if (stStorm.strHangs == pcCall) {
        RecordLine(stStorm, std::string("hangs ") + pcCall);
        for (;;) {
            Pause(1000000);
        }
    }
}

// The thread's message number u32Number; false when there is none.
bool MakeMessage(const StormThread &stThread, uint32_t u32Number, StormRandom *pstRandom,
                 StormMessage *pstMessage) {
    const Storm &stStorm = *stThread.pstStorm;
    const std::string &strKind = stStorm.strMessages;
    if (strKind == "trace") {
        MakeTrace(pstMessage, stThread.u32Thread, u32Number, stStorm.u32Body);
    } else if (strKind == "any" || strKind == "keys") {
        MakeAny(pstMessage, stStorm.u32Seed, pstRandom->Below(stStorm.u32Different),
                strKind == "keys");
    } else if (strKind == "each" && u32Number % 2 == 0) {
        MakeMark(pstMessage, u32Number / 2);
    } else if (strKind == "each") {
        MakeAny(pstMessage, stStorm.u32Seed, u32Number / 2, false);
    } else if (strKind == "stations") {
        MakeStations(pstMessage, stThread.u32Thread, u32Number);
    } else if (strKind == "flows") {
        MakeFlows(pstMessage, stThread.u32Thread);
    } else if (strKind == "zones") {
        MakeZones(pstMessage);
    } else {
        return false;
    }
    return true;
}

void *Blow(void *pvThread) {
    auto &stThread = *static_cast<StormThread *>(pvThread);
    Storm &stStorm = *stThread.pstStorm;
    bOfTheStorm = true;
    Pause(stStorm.u32Delay);
    StormRandom stRandom{stStorm.u32Seed + stThread.u32Thread};
    const std::unique_ptr<StormMessage> pstMessage(new StormMessage);
    std::atomic<uint32_t> &u32Next = stStorm.au32Numbers[stThread.u32Thread];
    while (u32Next < stStorm.u32Count && !stStorm.bStop) {
        if (!MakeMessage(stThread, u32Next++, &stRandom, pstMessage.get())) {
            break;
        }
        ++stStorm.u64Entered;
        // NOLINTNEXTLINE(concurrency-thread-canceltype-asynchronous): just that is the storm
        pthread_setcanceltype(stStorm.bCancelsAtOnce ? PTHREAD_CANCEL_ASYNCHRONOUS
                                                     : PTHREAD_CANCEL_DEFERRED,
                              nullptr);
        stStorm.pfnCallback(0, &pstMessage->stRecord, pstMessage->u32Length);
        pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, nullptr);
        ++stStorm.u64Returned;
        ++stThread.u64Returned;
        if (stStorm.u32Pause != 0) {
            Pause(stStorm.u32Pause);
        } else {
            pthread_testcancel();
        }
    }
    RecordLine(stStorm, "done " + std::to_string(stThread.u32Thread) + " " +
                            std::to_string(stThread.u64Returned));
    return nullptr;
}

void StartThreads(Storm &stStorm) {
    pthread_attr_t stAttributes;
    pthread_attr_init(&stAttributes);
    if (stStorm.u32Stack != 0) {
        pthread_attr_setstacksize(&stAttributes, stStorm.u32Stack);
    }
    sigset_t stAll;
    sigset_t stBefore;
    sigfillset(&stAll);
    pthread_sigmask(SIG_SETMASK, stStorm.bBlocksSignals ? &stAll : nullptr, &stBefore);
    stStorm.bStop = false;
    for (uint32_t i = 0; i < stStorm.u32Threads; ++i) {
        auto pstThread = std::make_unique<StormThread>();
        pstThread->pstStorm = &stStorm;
        pstThread->u32Thread = i;
        if (pthread_create(&pstThread->Thread, &stAttributes, Blow, pstThread.get()) == 0) {
            stStorm.apstRunning.push_back(std::move(pstThread));
        } else {
            RecordLine(stStorm, "error no thread");
        }
    }
    pthread_sigmask(SIG_SETMASK, &stBefore, nullptr);
    pthread_attr_destroy(&stAttributes);
}

void EndThreads(Storm &stStorm) {
    if (stStorm.strClose == "leaves") {
        return; // they go on calling
    }
    stStorm.bStop = true;
    for (const auto &pstThread : stStorm.apstRunning) {
        if (stStorm.strClose == "cancels") {
            pthread_cancel(pstThread->Thread);
        }
    }
    for (const auto &pstThread : stStorm.apstRunning) {
        pthread_join(pstThread->Thread, nullptr);
    }
    stStorm.apstRunning.clear();
}

// A send that is over only when another message has been through the callback.
void WaitForMessage(const Storm &stStorm) {
    const uint64_t u64Before = stStorm.u64Entered;
    for (uint32_t i = 0; i < 200 && stStorm.u64Returned <= u64Before; ++i) {
        Pause(1000);
    }
}

std::string Hexadecimal(const void *pvBytes, uint32_t u32Count) {
    std::string strText;
    for (uint32_t i = 0; i < u32Count; ++i) {
        char acByte[3];
        (void)snprintf(acByte, sizeof acByte, "%02x", static_cast<const uint8_t *>(pvBytes)[i]);
        strText += acByte;
    }
    return strText;
}

// Whether it is one of the client's streams, not an event or a file of ours.
bool IsStream(int iDescriptor) {
    struct stat stStatus {};
    return fstat(iDescriptor, &stStatus) == 0 &&
           (S_ISCHR(stStatus.st_mode) || S_ISFIFO(stStatus.st_mode) || S_ISSOCK(stStatus.st_mode));
}

void Delay(uint32_t u32Microseconds, int iDescriptor) {
    if (u32Microseconds != 0 && IsStream(iDescriptor)) {
        Pause(u32Microseconds);
    }
}

// The functions of these names behind our own: the C library's, or a
// sanitizer's. Signal handlers write, so they are looked up before any can run.
decltype(read) *gpfnRead = nullptr;
decltype(write) *gpfnWrite = nullptr;
uint32_t gu32ReadDelay = 0;
uint32_t gu32WriteDelay = 0;
bool gbRecordsWrites = false;

[[gnu::constructor]] void FindNext() {
    gpfnRead = reinterpret_cast<decltype(read) *>(dlsym(RTLD_NEXT, "read"));
    gpfnWrite = reinterpret_cast<decltype(write) *>(dlsym(RTLD_NEXT, "write"));
    gu32ReadDelay = Number("STORM_READ_DELAY", 0);
    gu32WriteDelay = Number("STORM_WRITE_DELAY", 0);
    gbRecordsWrites = Number("STORM_RECORDS_WRITES", 0) != 0;
}

} // namespace

// Between a look at a descriptor and its use something may always happen; a
// pause here makes sure that it does.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
[[gnu::visibility("default")]] ssize_t read(int iDescriptor, void *pvBuffer, size_t uCount) {
    Delay(gu32ReadDelay, iDescriptor);
    return gpfnRead != nullptr ? gpfnRead(iDescriptor, pvBuffer, uCount)
                               : syscall(SYS_read, iDescriptor, pvBuffer, uCount);
}

[[gnu::visibility("default")]] ssize_t write(int iDescriptor, const void *pvBuffer, size_t uCount) {
    Delay(gu32WriteDelay, iDescriptor);
    const ssize_t iWritten = gpfnWrite != nullptr
                                 ? gpfnWrite(iDescriptor, pvBuffer, uCount)
                                 : syscall(SYS_write, iDescriptor, pvBuffer, uCount);
    if (gbRecordsWrites && iWritten > 0 && IsStream(iDescriptor)) {
        RecordLine(TheStorm(), "wrote " + std::to_string(iWritten));
    }
    return iWritten;
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)

uint32_t OpenWiMAXDevice() {
    Storm &stStorm = TheStorm();
    HangIf(stStorm, "open");
    if (stStorm.u32Opened++ < stStorm.u32OpensFail) {
        timespec stNow{};
        clock_gettime(CLOCK_MONOTONIC, &stNow);
        RecordLine(stStorm,
                   "open fails " + std::to_string(stNow.tv_sec * 1000 + stNow.tv_nsec / 1000000));
        return WIMAX_NO_DEVICE;
    }
    RecordLine(stStorm, "open");
    return 1;
}

int32_t RegisterCallback(uint32_t /*hDevice*/, WiMAXCallback pfnCallback, uint32_t /*u32Context*/) {
    Storm &stStorm = TheStorm();
    HangIf(stStorm, "register");
    if (stStorm.apstRunning.empty()) {
        stStorm.pfnCallback = pfnCallback;
        StartThreads(stStorm);
    }
    RecordLine(stStorm, "register");
    return 0;
}

int32_t SendWiMAXMessage(uint32_t /*hDevice*/, void *pvMessage, uint32_t u32Length) {
    Storm &stStorm = TheStorm();
    if (pvMessage == nullptr || u32Length < WIMAX_HEADER_SIZE) {
        RecordLine(stStorm, "send nothing");
    } else {
        const auto *pucMessage = static_cast<const uint8_t *>(pvMessage);
        RecordLine(stStorm,
                   "send " + std::to_string(pucMessage[0]) + "/" + std::to_string(pucMessage[2]) +
                       " " +
                       Hexadecimal(pucMessage + WIMAX_HEADER_SIZE, u32Length - WIMAX_HEADER_SIZE));
    }
    HangIf(stStorm, "send");
    if (stStorm.strSend == "answers" && !bOfTheStorm && !stStorm.apstRunning.empty()) {
        WaitForMessage(stStorm);
    }
    if (stStorm.strSend == "fails") {
        constexpr int32_t aiResults[] = {0, -1, -27, -76, 1, INT_MIN};
        return aiResults[stStorm.u32Results++ % std::size(aiResults)];
    }
    return 0;
}

int32_t CloseWiMAXDevice() {
    Storm &stStorm = TheStorm();
    RecordLine(stStorm, "close");
    HangIf(stStorm, "close");
    EndThreads(stStorm);
    Pause(stStorm.u32CloseTakes);
    RecordLine(stStorm, "closed");
    return 0;
}

int32_t rdm(uint32_t /*u32Address*/, void *pvBuffer, uint32_t u32Count) {
    HangIf(TheStorm(), "rdm");
    // A read of gigabytes would take the sanitizers longer than any test waits.
    constexpr uint32_t u32Most = 1U << 24;
    std::memset(pvBuffer, 0xA5, std::min(u32Count, u32Most));
    return 0;
}

int32_t wrm(uint32_t /*u32Address*/, const void * /*pvBuffer*/, uint32_t /*u32Count*/) {
    HangIf(TheStorm(), "wrm");
    return 0;
}
