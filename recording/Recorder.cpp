// Records a session: preloaded in front of any device library, it hands every call and every
// message on unchanged and writes down what passed. Only the file and one line on standard error
// when it cannot be written tell that it is there.
#include <atomic>
#include <bit>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "Format.h"

#define EXPORTED __attribute__((visibility("default")))

namespace {

constexpr const char *pcVariable = "QOR020_RECORDING";
constexpr int32_t s32NoLibrary = -1;
constexpr int64_t i64SecondInNanoseconds = 1'000'000'000;

// The library that is recorded.
struct Functions {
    decltype(&OpenWiMAXDevice) pfnOpen;
    decltype(&RegisterCallback) pfnRegister;
    decltype(&SendWiMAXMessage) pfnSend;
    decltype(&CloseWiMAXDevice) pfnClose;
    decltype(&rdm) pfnRead;
    decltype(&wrm) pfnWrite;
};

template <typename Function> void Resolve(const char *pcName, Function *ppfnFunction) {
    *ppfnFunction = reinterpret_cast<Function>(dlsym(RTLD_NEXT, pcName));
}

const Functions &Real() {
    static const Functions stFunctions = [] {
        Functions stFound{};
        Resolve("OpenWiMAXDevice", &stFound.pfnOpen);
        Resolve("RegisterCallback", &stFound.pfnRegister);
        Resolve("SendWiMAXMessage", &stFound.pfnSend);
        Resolve("CloseWiMAXDevice", &stFound.pfnClose);
        Resolve("rdm", &stFound.pfnRead);
        Resolve("wrm", &stFound.pfnWrite);
        return stFound;
    }();
    return stFunctions;
}

// Nothing of it is ever destroyed: the library's threads may outlive the main function.
struct Recorder {
    std::atomic<bool> bOn{false};
    std::mutex stMutex;
    bool bStarted = false;
    char acPath[PATH_MAX] = "";
    int iFile = -1;
    uint64_t u64Size = 0;  // of what is written, whole packets all
    uint64_t u64Limit = 0; // larger files are a signal that ends the process
    int64_t i64Epoch = 0;  // what the steady clock's zero is in nanoseconds since 1970
    uint32_t u32Events = 0;
    // The end of a callback, to be written with the next packet: it costs no write of its own then.
    Packet stHeldBack{};
    bool bHoldsBack = false;
};

constinit Recorder gstRecorder;

int64_t ReadClock(clockid_t iClock) {
    timespec stTime{};
    clock_gettime(iClock, &stTime);
    return static_cast<int64_t>(stTime.tv_sec) * i64SecondInNanoseconds + stTime.tv_nsec;
}

// Times are those of one steady clock, so that a clock that is set turns no order round.
int64_t SteadyNow() { return ReadClock(CLOCK_MONOTONIC); }

void Complain(const char *pcPath, const char *pcWhy, const char *pcConsequence) {
    char acLine[PATH_MAX + 256];
    const int iLength = snprintf(acLine, sizeof acLine, "libqor020record: %s: %s; %s\n", pcPath,
                                 pcWhy, pcConsequence);
    const auto uLength = std::min(static_cast<size_t>(iLength), sizeof acLine - 1);
    (void)(write(STDERR_FILENO, acLine, uLength) < 0);
}

// An existing file makes room only when it is a regular one that nobody records into. Its name is
// freed, not its content changed: other names of it and whoever reads it keep what they have.
// Returns nothing, or why not.
const char *RemoveOld(const char *pcPath) {
    const int iOld = open(pcPath, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (iOld < 0) {
        return errno == ELOOP ? "is no regular file" : std::strerror(errno);
    }
    const char *pcWhy = nullptr;
    struct stat stStatus {};
    if (fstat(iOld, &stStatus) != 0 || !S_ISREG(stStatus.st_mode)) {
        pcWhy = "is no regular file";
    } else if (flock(iOld, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        pcWhy = "another session is being recorded into it";
    } else if (unlink(pcPath) != 0) {
        pcWhy = std::strerror(errno);
    }
    close(iOld);
    return pcWhy;
}

// Returns nothing, or why not.
const char *CreateFile(Recorder &stRecorder) {
    constexpr int iFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    constexpr mode_t uOwnerOnly = 0600;
    stRecorder.iFile = open(stRecorder.acPath, iFlags, uOwnerOnly);
    if (stRecorder.iFile < 0 && errno == EEXIST) {
        if (const char *pcWhy = RemoveOld(stRecorder.acPath)) {
            return pcWhy;
        }
        stRecorder.iFile = open(stRecorder.acPath, iFlags, uOwnerOnly);
    }
    if (stRecorder.iFile < 0) {
        return std::strerror(errno);
    }
    if (stRecorder.iFile <= STDERR_FILENO) {
        // The program was started without all of its streams; what it prints is not for the file.
        const int iHigher = fcntl(stRecorder.iFile, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        close(stRecorder.iFile);
        stRecorder.iFile = iHigher;
        if (iHigher < 0) {
            return std::strerror(errno);
        }
    }
    (void)fchmod(stRecorder.iFile, uOwnerOnly); // whatever the umask says
    (void)flock(stRecorder.iFile, LOCK_EX | LOCK_NB);
    rlimit stLimit{};
    stRecorder.u64Limit =
        getrlimit(RLIMIT_FSIZE, &stLimit) == 0 && stLimit.rlim_cur != RLIM_INFINITY
            ? stLimit.rlim_cur
            : UINT64_MAX;
    return nullptr;
}

// Writes all of it or cuts the file back and ends the recording.
void WriteWhole(Recorder &stRecorder, iovec *pstParts, int iParts) {
    uint64_t u64Left = 0;
    for (int i = 0; i < iParts; ++i) {
        u64Left += pstParts[i].iov_len;
    }
    // One piece takes the system less time than several, and copying a small one next to none.
    uint8_t aucTogether[4096];
    iovec stTogether{aucTogether, 0};
    if (u64Left <= sizeof aucTogether) {
        for (int i = 0; i < iParts; ++i) {
            std::memcpy(aucTogether + stTogether.iov_len, pstParts[i].iov_base,
                        pstParts[i].iov_len);
            stTogether.iov_len += pstParts[i].iov_len;
        }
        pstParts = &stTogether;
        iParts = 1;
    }
    const uint64_t u64Behind = stRecorder.u64Size + u64Left;
    int iError = u64Behind > stRecorder.u64Limit ? EFBIG : 0;
    while (iError == 0 && u64Left > 0) {
        const ssize_t iCount = writev(stRecorder.iFile, pstParts, iParts);
        if (iCount < 0) {
            iError = errno == EINTR ? 0 : errno;
            continue;
        }
        u64Left -= static_cast<uint64_t>(iCount);
        auto uWritten = static_cast<size_t>(iCount);
        while (iParts > 0 && uWritten >= pstParts->iov_len) {
            uWritten -= pstParts->iov_len;
            ++pstParts;
            --iParts;
        }
        if (iParts > 0) {
            pstParts->iov_base = static_cast<char *>(pstParts->iov_base) + uWritten;
            pstParts->iov_len -= uWritten;
        }
    }
    if (iError == 0) {
        stRecorder.u64Size = u64Behind;
        return;
    }
    stRecorder.bOn = false;
    (void)(ftruncate(stRecorder.iFile, static_cast<off_t>(stRecorder.u64Size)) < 0);
    close(stRecorder.iFile);
    stRecorder.iFile = -1;
    Complain(stRecorder.acPath, std::strerror(iError),
             "the recording ends here, the session goes on");
}

// What one write writes: packets, whose heads and tails stand one behind the other where they can.
struct Parts {
    static constexpr int iMost = 2 * 3 + 1;

    iovec astParts[iMost];
    int iParts = 0;
    uint8_t aucSmall[3 * (Packet::u32LargestHead + sizeof Packet::aucTail)];
    uint8_t *pucNext = aucSmall;

    void Add(const Packet &stPacket) {
        AddCopy(stPacket.aucHead, stPacket.u32Head);
        if (stPacket.stBytes.u32Length != 0) {
            astParts[iParts++] = {const_cast<uint8_t *>(stPacket.stBytes.pucData),
                                  stPacket.stBytes.u32Length};
        }
        AddCopy(stPacket.aucTail, stPacket.u32Tail);
    }

  private:
    void AddCopy(const uint8_t *pucFrom, uint32_t u32Length) {
        std::memcpy(pucNext, pucFrom, u32Length);
        iovec *pstLast = iParts > 0 ? &astParts[iParts - 1] : nullptr;
        if (pstLast != nullptr &&
            static_cast<uint8_t *>(pstLast->iov_base) + pstLast->iov_len == pucNext) {
            pstLast->iov_len += u32Length;
        } else {
            astParts[iParts++] = {pucNext, u32Length};
        }
        pucNext += u32Length;
    }
};

// With the lock held.
void Append(Recorder &stRecorder, const Event &stEvent) {
    Parts stParts;
    if (stRecorder.bHoldsBack) {
        stParts.Add(stRecorder.stHeldBack);
    }
    if (stEvent.eKind == EventKind::MessageDone && !stRecorder.bHoldsBack) {
        WriteEvent(stEvent, &stRecorder.stHeldBack);
        stRecorder.bHoldsBack = true;
        return;
    }
    stRecorder.bHoldsBack = false;
    Packet stPacket;
    WriteEvent(stEvent, &stPacket);
    stParts.Add(stPacket);
    ManagementMessage stManagement;
    if (stEvent.eKind == EventKind::Message &&
        ManagementMessageOf(stEvent.stBytes, &stManagement)) {
        WriteManagementMessage(stEvent.i64Time, stManagement, &stPacket);
        stParts.Add(stPacket);
    }
    WriteWhole(stRecorder, stParts.astParts, stParts.iParts);
}

// A file that the session depends on, and what tells one build of it from another: what the command
// cksum prints.
struct Origin {
    std::string strPath;
    uint64_t u64Size = 0;
    uint32_t u32Checksum = 0;
};

struct Checksum {
    static constexpr uint32_t u32Polynomial = 0x04C11DB7;

    uint32_t au32Table[256];
    uint32_t u32Value = 0;

    Checksum() {
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t u32Rest = i << 24;
            for (int iBit = 0; iBit < 8; ++iBit) {
                u32Rest = (u32Rest << 1) ^ ((u32Rest & 0x80000000) != 0 ? u32Polynomial : 0);
            }
            au32Table[i] = u32Rest;
        }
    }
    void Add(uint8_t u8Byte) { u32Value = u32Value << 8 ^ au32Table[u32Value >> 24 ^ u8Byte]; }
};

Origin OriginOf(const char *pcPath) {
    Origin stOrigin;
    char acReal[PATH_MAX];
    stOrigin.strPath = realpath(pcPath, acReal) != nullptr ? acReal : pcPath;
    for (char &cChar : stOrigin.strPath) {
        cChar = static_cast<unsigned char>(cChar) < ' ' ? '?' : cChar;
    }
    const int iFile = open(pcPath, O_RDONLY | O_CLOEXEC);
    if (iFile < 0) {
        return stOrigin;
    }
    Checksum stChecksum;
    static uint8_t aucPart[65536];
    for (ssize_t iCount = read(iFile, aucPart, sizeof aucPart); iCount > 0;
         iCount = read(iFile, aucPart, sizeof aucPart)) {
        stOrigin.u64Size += static_cast<uint64_t>(iCount);
        for (ssize_t i = 0; i < iCount; ++i) {
            stChecksum.Add(aucPart[i]);
        }
    }
    close(iFile);
    for (uint64_t u64Size = stOrigin.u64Size; u64Size != 0; u64Size >>= 8) {
        stChecksum.Add(static_cast<uint8_t>(u64Size));
    }
    stOrigin.u32Checksum = ~stChecksum.u32Value;
    return stOrigin;
}

std::string Line(const char *pcName, const std::string &strValue) {
    return pcName + ("=" + strValue) + "\n";
}

std::string Lines(const std::string &strName, const Origin &stOrigin) {
    return Line(strName.c_str(), stOrigin.strPath) +
           Line((strName + "-size").c_str(), std::to_string(stOrigin.u64Size)) +
           Line((strName + "-cksum").c_str(), std::to_string(stOrigin.u32Checksum));
}

std::string InWords(const Origin &stOrigin) {
    return stOrigin.strPath + ", " + std::to_string(stOrigin.u64Size) + " bytes, cksum " +
           std::to_string(stOrigin.u32Checksum);
}

// Where the session comes from, for the file's head and for its first event.
struct Origins {
    std::string strHead;
    std::string strLines;
};

Origins TheOrigins() {
    utsname stSystem{};
    uname(&stSystem);
    Dl_info stLibrary{};
    (void)dladdr(reinterpret_cast<void *>(Real().pfnOpen), &stLibrary);
    const Origin stClientFile = OriginOf("/proc/self/exe");
    const Origin stLibraryFile =
        OriginOf(stLibrary.dli_fname != nullptr ? stLibrary.dli_fname : "");
    const std::string strOrder =
        std::endian::native == std::endian::little ? "little-endian" : "big-endian";
    const std::string strSystem =
        std::string(stSystem.sysname) + " " + stSystem.release + " " + stSystem.version;
    return {FileHead({std::string(stSystem.machine) + ", " + strOrder,
                      strSystem + ", host " + stSystem.nodename, InWords(stClientFile),
                      "device library " + InWords(stLibraryFile)}),
            Lines("client", stClientFile) + Lines("library", stLibraryFile) +
                Line("host", stSystem.nodename) + Line("system", strSystem) +
                Line("machine", stSystem.machine) + Line("byte-order", strOrder)};
}

// With the lock held.
void Stamp(Recorder &stRecorder, Event *pstEvent) {
    pstEvent->u32Number = ++stRecorder.u32Events;
    pstEvent->i64Time = stRecorder.i64Epoch + SteadyNow();
}

ByteView BytesOf(const std::string &strText) {
    return {reinterpret_cast<const uint8_t *>(strText.data()),
            static_cast<uint32_t>(strText.size())};
}

// The file is made when the device is first asked for something. With the lock held.
void Start(Recorder &stRecorder) {
    stRecorder.bStarted = true;
    const char *pcWhy = nullptr;
    try {
        Origins stOrigins = TheOrigins();
        pcWhy = CreateFile(stRecorder);
        if (pcWhy == nullptr) {
            stRecorder.i64Epoch = ReadClock(CLOCK_REALTIME) - SteadyNow();
            iovec stHead{stOrigins.strHead.data(), stOrigins.strHead.size()};
            WriteWhole(stRecorder, &stHead, 1);
            Event stSession;
            stSession.eKind = EventKind::Session;
            stSession.stBytes = BytesOf(stOrigins.strLines);
            Stamp(stRecorder, &stSession);
            if (stRecorder.bOn) {
                Append(stRecorder, stSession);
            }
        }
    } catch (const std::exception &) {
        pcWhy = "out of memory";
    }
    if (pcWhy != nullptr) {
        stRecorder.bOn = false;
        Complain(stRecorder.acPath, pcWhy, "the session is not recorded");
    }
}

uint32_t Write(Recorder &stRecorder, Event *pstEvent) {
    const std::lock_guard stLock(stRecorder.stMutex);
    if (!stRecorder.bStarted) {
        Start(stRecorder);
    }
    const ByteView stBytes = pstEvent->stBytes;
    uint32_t u32Offset = 0;
    do {
        if (!stRecorder.bOn) {
            return 0;
        }
        pstEvent->stBytes = stBytes.From(u32Offset, u32LargestPiece);
        u32Offset += pstEvent->stBytes.u32Length;
        pstEvent->u16Flags =
            static_cast<uint16_t>((pstEvent->u16Flags & ~EventFlag::More) |
                                  (u32Offset < stBytes.u32Length ? EventFlag::More : 0));
        Stamp(stRecorder, pstEvent);
        Append(stRecorder, *pstEvent);
    } while (u32Offset < stBytes.u32Length);
    return pstEvent->u32Number;
}

// Writes an event down. Returns its number for the event that will belong to it; 0 when nothing is
// recorded. A thread of the library may be cancelled anywhere, at once, which must not happen with
// the lock held; and nothing here or in its callers has a destructor, which could not be run then.
// What the recorder does must not show in errno.
uint32_t Record(Event stEvent) {
    if (!gstRecorder.bOn.load(std::memory_order_relaxed)) {
        return 0;
    }
    const int iError = errno;
    int iBefore = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &iBefore);
    const uint32_t u32Number = Write(gstRecorder, &stEvent);
    errno = iError;
    pthread_setcancelstate(iBefore, nullptr);
    return u32Number;
}

// How many callbacks the thread is in.
thread_local uint32_t gu32Callbacks = 0;

// Records a call, makes it and records its result. fnResult completes the event of the result.
template <typename Call, typename Complete>
auto RecordCall(Event stCall, Call fnCall, Complete fnComplete) {
    const uint32_t u32Number = Record(stCall);
    if (u32Number == 0) {
        return fnCall();
    }
    const int64_t i64Begin = SteadyNow();
    const auto Result = fnCall();
    Event stResult;
    stResult.u64Duration = static_cast<uint64_t>(SteadyNow() - i64Begin);
    stResult.eKind = ResultOf(stCall.eKind);
    stResult.u32BelongsTo = u32Number;
    stResult.s32Result = static_cast<int32_t>(Result);
    stResult.u32Handle = stCall.u32Handle;
    fnComplete(&stResult);
    Record(stResult);
    return Result;
}

constexpr auto fnNothingMore = [](Event *) {};

uint16_t NullFlag(bool bNull) { return bNull ? EventFlag::Null : uint16_t{0}; }

Event CallEvent(EventKind eKind, bool bNull = false) {
    Event stCall;
    stCall.eKind = eKind;
    stCall.u16Flags = static_cast<uint16_t>(
        NullFlag(bNull) | (gu32Callbacks != 0 ? EventFlag::InCallback : uint16_t{0}));
    return stCall;
}

bool AllZero(ByteView stBytes) {
    return stBytes.u32Length == 0 ||
           (stBytes.pucData[0] == 0 &&
            std::memcmp(stBytes.pucData, stBytes.pucData + 1, stBytes.u32Length - 1) == 0);
}

// The length without the zeroes at the end.
uint32_t LengthToLastByte(ByteView stBytes) {
    uint32_t u32Length = stBytes.u32Length;
    while (u32Length > 0 && stBytes.pucData[u32Length - 1] == 0) {
        --u32Length;
    }
    return u32Length;
}

ByteView WholeRecord(const void *pvMessage) {
    return {static_cast<const uint8_t *>(pvMessage), WIMAX_MESSAGE_SIZE};
}

// A decoder may look behind what was received, so what stands there is part of the message.
ByteView BytesToRecord(const WiMAXMessage *pstMessage, uint32_t u32Length) {
    if (pstMessage == nullptr) {
        return {};
    }
    const ByteView stRecord = WholeRecord(pstMessage);
    const bool bNothingBehind = AllZero(stRecord.From(u32Length));
    return stRecord.From(0, bNothingBehind ? u32Length : LengthToLastByte(stRecord));
}

// What the library wrote into a record, from its first byte on; nothing when it wrote nothing.
ByteView WrittenBack(ByteView stBefore, ByteView stNow) {
    if (std::memcmp(stBefore.pucData, stNow.pucData, WIMAX_MESSAGE_SIZE) == 0) {
        return {};
    }
    return stNow.From(0, std::max(LengthToLastByte(stNow), LengthToLastByte(stBefore)));
}

// The library calls back with nothing but a word of the client's, so that each of the client's
// functions has one of these in its place.
constexpr size_t uLargestCallback = 8;
std::atomic<WiMAXCallback> gapfnCallbacks[uLargestCallback];

template <size_t uCallback>
uint32_t RecordMessage(uint32_t u32Context, const WiMAXMessage *pstMessage, uint32_t u32Length) {
    Event stMessage;
    stMessage.eKind = EventKind::Message;
    stMessage.u16Flags = NullFlag(pstMessage == nullptr);
    stMessage.u32Word = u32Context;
    stMessage.u32Length = u32Length;
    if (gstRecorder.bOn.load(std::memory_order_relaxed)) {
        stMessage.stBytes = BytesToRecord(pstMessage, u32Length);
    }
    return RecordCall(
        stMessage,
        [&] {
            ++gu32Callbacks;
            const uint32_t u32Result = gapfnCallbacks[uCallback].load(std::memory_order_relaxed)(
                u32Context, pstMessage, u32Length);
            --gu32Callbacks;
            return u32Result;
        },
        fnNothingMore);
}

template <size_t... auIndex>
WiMAXCallback Substitute(size_t uIndex, std::index_sequence<auIndex...>) {
    constexpr WiMAXCallback apfnSubstitutes[] = {RecordMessage<auIndex>...};
    return apfnSubstitutes[uIndex];
}

// What is registered in the place of the client's function: itself when there are too many.
WiMAXCallback SubstituteFor(WiMAXCallback pfnCallback) {
    if (pfnCallback == nullptr || !gstRecorder.bOn) {
        return pfnCallback;
    }
    for (size_t i = 0; i < uLargestCallback; ++i) {
        WiMAXCallback pfnThere = nullptr;
        if (gapfnCallbacks[i].compare_exchange_strong(pfnThere, pfnCallback) ||
            pfnThere == pfnCallback) {
            return Substitute(i, std::make_index_sequence<uLargestCallback>());
        }
    }
    return pfnCallback;
}

// A child that goes on without a program of its own has its parent's file open.
void LeaveToParent() {
    gstRecorder.bOn = false;
    if (gstRecorder.iFile >= 0) {
        close(gstRecorder.iFile);
    }
}

// Programs that have no device library, such as a shell that starts the client, leave the variable
// to the one that has. That one takes it away, so that what it starts does not record over it.
__attribute__((constructor)) void Prepare() {
    const char *pcPath = std::getenv(pcVariable);
    if (pcPath == nullptr || *pcPath == '\0' || Real().pfnOpen == nullptr) {
        return;
    }
    const size_t uLength = std::strlen(pcPath);
    if (uLength < sizeof gstRecorder.acPath) {
        std::memcpy(gstRecorder.acPath, pcPath, uLength + 1);
        gstRecorder.bOn = true;
    } else {
        Complain("the name of the file", std::strerror(ENAMETOOLONG),
                 "the session is not recorded");
    }
    (void)unsetenv(pcVariable);
    (void)pthread_atfork(nullptr, nullptr, LeaveToParent);
}

} // namespace

EXPORTED uint32_t OpenWiMAXDevice() {
    return RecordCall(
        CallEvent(EventKind::Open),
        [] { return Real().pfnOpen != nullptr ? Real().pfnOpen() : WIMAX_NO_DEVICE; },
        fnNothingMore);
}

EXPORTED int32_t RegisterCallback(uint32_t hDevice, WiMAXCallback pfnCallback,
                                  uint32_t u32Context) {
    Event stCall = CallEvent(EventKind::Register, pfnCallback == nullptr);
    stCall.u32Handle = hDevice;
    stCall.u32Word = u32Context;
    return RecordCall(
        stCall,
        [=] {
            return Real().pfnRegister != nullptr
                       ? Real().pfnRegister(hDevice, SubstituteFor(pfnCallback), u32Context)
                       : s32NoLibrary;
        },
        fnNothingMore);
}

EXPORTED int32_t SendWiMAXMessage(uint32_t hDevice, void *pvMessage, uint32_t u32Length) {
    const auto Send = [=] {
        return Real().pfnSend != nullptr ? Real().pfnSend(hDevice, pvMessage, u32Length)
                                         : s32NoLibrary;
    };
    Event stCall = CallEvent(EventKind::Send, pvMessage == nullptr);
    stCall.u32Handle = hDevice;
    stCall.u32Length = u32Length;
    if (pvMessage == nullptr || !gstRecorder.bOn.load(std::memory_order_relaxed)) {
        return RecordCall(stCall, Send, fnNothingMore);
    }
    WiMAXMessage stBefore;
    std::memcpy(&stBefore, pvMessage, sizeof stBefore);
    stCall.stBytes = WholeRecord(&stBefore).From(0, u32Length);
    return RecordCall(stCall, Send, [&](Event *pstResult) {
        pstResult->stBytes = WrittenBack(WholeRecord(&stBefore), WholeRecord(pvMessage));
        pstResult->u32Length = pstResult->stBytes.u32Length;
    });
}

EXPORTED int32_t CloseWiMAXDevice() {
    return RecordCall(
        CallEvent(EventKind::Close),
        [] { return Real().pfnClose != nullptr ? Real().pfnClose() : s32NoLibrary; },
        fnNothingMore);
}

EXPORTED int32_t rdm(uint32_t u32Address, void *pvBuffer, uint32_t u32Count) {
    Event stCall = CallEvent(EventKind::ReadMemory, pvBuffer == nullptr);
    stCall.u32Word = u32Address;
    stCall.u32Length = u32Count;
    return RecordCall(
        stCall,
        [=] {
            return Real().pfnRead != nullptr ? Real().pfnRead(u32Address, pvBuffer, u32Count)
                                             : s32NoLibrary;
        },
        [&](Event *pstResult) {
            pstResult->u32Word = u32Address;
            pstResult->u32Length = u32Count;
            if (pvBuffer != nullptr) {
                pstResult->stBytes = {static_cast<const uint8_t *>(pvBuffer), u32Count};
            }
        });
}

EXPORTED int32_t wrm(uint32_t u32Address, const void *pvBuffer, uint32_t u32Count) {
    Event stCall = CallEvent(EventKind::WriteMemory, pvBuffer == nullptr);
    stCall.u32Word = u32Address;
    stCall.u32Length = u32Count;
    if (pvBuffer != nullptr) {
        stCall.stBytes = {static_cast<const uint8_t *>(pvBuffer), u32Count};
    }
    return RecordCall(
        stCall,
        [=] {
            return Real().pfnWrite != nullptr ? Real().pfnWrite(u32Address, pvBuffer, u32Count)
                                              : s32NoLibrary;
        },
        fnNothingMore);
}
