// A device library that does what a script says and records what it is asked.
// README.md in tests/ describes the commands and the record.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <mutex>
#include <sstream>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

// The device library's functions are all that this one exports.
#pragma GCC visibility push(default)
#include "WiMAXDevice.h"
#pragma GCC visibility pop
#include "Bytes.h"

// Defined when the library of faults is loaded, too: what runs while it is set is not the
// client's. Returns what was set before.
extern "C" [[gnu::weak, gnu::visibility("default")]] bool FaultsOwnCalls(bool bOwn);

namespace {

constexpr uint32_t u32DefaultHandle = 1;
// How long a close waits for a callback that does not return.
constexpr std::chrono::seconds CloseWait{5};

// From here to the end of the block it is the library that calls and allocates, or the client
// again.
struct Calls {
    explicit Calls(bool bOwn) : bBefore(FaultsOwnCalls != nullptr && FaultsOwnCalls(bOwn)) {}
    ~Calls() {
        if (FaultsOwnCalls != nullptr) {
            FaultsOwnCalls(bBefore);
        }
    }
    Calls(const Calls &) = delete;
    Calls &operator=(const Calls &) = delete;
    bool bBefore;
};

// A message on its way to the callback. An empty buffer stands for a null
// pointer when bNull is set.
struct Delivery {
    Bytes aucMessage;
    bool bNull = false;
    std::optional<uint32_t> u32StatedLength;
    std::string strAcknowledge; // recorded once the callback has returned
};

// What one send, yet to come, does.
struct PlannedSend {
    int32_t iResult = 0;
    std::optional<Bytes> aucReply;
    std::deque<Delivery> stAnswers;
};

struct PlannedRead {
    int32_t iResult = 0;
    Bytes aucBytes;
};

// The call that fails whatever the script says, and how.
struct PlannedFailure {
    uint64_t u64Call = 0; // counted from 1; 0: none
    int32_t iResult = 0;
};

struct Library {
    std::mutex Lock;
    std::condition_variable Changed;

    std::deque<uint32_t> u32OpenResults;
    std::deque<int32_t> iRegisterResults;
    std::deque<int32_t> iCloseResults;
    std::deque<PlannedSend> stSends;
    std::deque<PlannedRead> stReads;
    std::deque<int32_t> iWriteResults;
    PlannedFailure stFailure;
    uint64_t u64Calls = 0;
    std::optional<uint32_t> u32NextLength;

    WiMAXCallback pfnCallback = nullptr;
    uint32_t u32Context = 0;
    bool bClosed = false;
    std::deque<Delivery> stDeliveries; // waiting for a callback, and for its turn
    uint64_t u64Queued = 0;
    uint64_t u64Finished = 0;
    bool bInCallback = false;
    std::thread::id DeliveryThread;

    int iRecord = -1;
};

void Deliver(Library &stLibrary);
void PlanFailure(Library &stLibrary, const char *pcFailure);
void ReadControl(Library &stLibrary, const char *pcPath);
void RunScript(Library &stLibrary, const char *pcPath);

// Never destroyed: its threads may outlive the main function.
Library &TheLibrary() {
    static Library &stLibrary = *[] {
        auto *pstLibrary = new Library;
        if (const char *pcRecord = std::getenv("QOR020_RECORD")) {
            pstLibrary->iRecord = open(pcRecord, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        }
        if (const char *pcFailure = std::getenv("QOR020_FAIL")) {
            PlanFailure(*pstLibrary, pcFailure);
        }
        if (const char *pcScript = std::getenv("QOR020_SCRIPT")) {
            RunScript(*pstLibrary, pcScript);
        }
        std::thread([pstLibrary] {
            const Calls stOwn(true);
            Deliver(*pstLibrary);
        }).detach();
        if (const char *pcControl = std::getenv("QOR020_CONTROL")) {
            std::thread([pstLibrary, pcControl] {
                const Calls stOwn(true);
                ReadControl(*pstLibrary, pcControl);
            }).detach();
        }
        return pstLibrary;
    }();
    return stLibrary;
}

// Called with the lock held, so that the lines stand in the order of events.
void RecordLine(const Library &stLibrary, const std::string &strLine) {
    if (stLibrary.iRecord >= 0) {
        const std::string strWhole = strLine + "\n";
        (void)(write(stLibrary.iRecord, strWhole.data(), strWhole.size()) < 0);
    }
}

void Complain(const Library &stLibrary, const std::string &strText) {
    RecordLine(stLibrary, "error " + strText);
    (void)fprintf(stderr, "libqor020: %s\n", strText.c_str());
}

// "CALL:RESULT".
void PlanFailure(Library &stLibrary, const char *pcFailure) {
    char *pcColon = nullptr;
    stLibrary.stFailure.u64Call = std::strtoull(pcFailure, &pcColon, 10);
    if (*pcColon != ':') {
        Complain(stLibrary, std::string("not CALL:RESULT: ") + pcFailure);
        return;
    }
    stLibrary.stFailure.iResult = static_cast<int32_t>(std::strtoll(pcColon + 1, nullptr, 10));
}

// Counts a call of the client, with the lock held. True when it is the one to fail; the result is
// that of the plan then.
template <typename Result> bool Fails(Library &stLibrary, Result *pResult) {
    if (++stLibrary.u64Calls != stLibrary.stFailure.u64Call) {
        return false;
    }
    *pResult = static_cast<Result>(stLibrary.stFailure.iResult);
    RecordLine(stLibrary, "failed a call");
    return true;
}

template <typename Value> Value TakeOr(std::deque<Value> *pQueue, Value Default) {
    if (pQueue->empty()) {
        return Default;
    }
    Value First = std::move(pQueue->front());
    pQueue->pop_front();
    return First;
}

void Acknowledge(const Library &stLibrary, const Delivery &stDelivery) {
    if (!stDelivery.strAcknowledge.empty()) {
        RecordLine(stLibrary, stDelivery.strAcknowledge);
    }
}

std::string FormatDelivery(const Delivery &stDelivery) {
    return stDelivery.bNull
               ? "null"
               : FormatMessage(stDelivery.aucMessage.data(), stDelivery.aucMessage.size());
}

void Drop(const Library &stLibrary, const Delivery &stDelivery) {
    RecordLine(stLibrary, "dropped " + FormatDelivery(stDelivery));
    Acknowledge(stLibrary, stDelivery);
}

void Queue(Library &stLibrary, Delivery stDelivery) {
    if (stLibrary.bClosed) {
        Drop(stLibrary, stDelivery);
        return;
    }
    stLibrary.stDeliveries.push_back(std::move(stDelivery));
    ++stLibrary.u64Queued;
    stLibrary.Changed.notify_all();
}

// Calls the callback with the message in a record of its own.
uint32_t CallBack(WiMAXCallback pfnCallback, uint32_t u32Context, const Delivery &stDelivery) {
    const uint32_t u32Length =
        stDelivery.u32StatedLength.value_or(static_cast<uint32_t>(stDelivery.aucMessage.size()));
    if (stDelivery.bNull) {
        const Calls stClient(false);
        return pfnCallback(u32Context, nullptr, u32Length);
    }
    const auto pstRecord = RecordOf(stDelivery.aucMessage);
    const Calls stClient(false);
    return pfnCallback(u32Context, pstRecord.get(), u32Length);
}

// The library's own thread: one message after the other.
void Deliver(Library &stLibrary) {
    std::unique_lock Held(stLibrary.Lock);
    stLibrary.DeliveryThread = std::this_thread::get_id();
    for (;;) {
        stLibrary.Changed.wait(Held, [&] {
            return !stLibrary.stDeliveries.empty() && stLibrary.pfnCallback != nullptr;
        });
        const Delivery stDelivery = std::move(stLibrary.stDeliveries.front());
        stLibrary.stDeliveries.pop_front();
        const WiMAXCallback pfnCallback = stLibrary.pfnCallback;
        const uint32_t u32Context = stLibrary.u32Context;
        stLibrary.bInCallback = true;
        Held.unlock();
        CallBack(pfnCallback, u32Context, stDelivery);
        Held.lock();
        stLibrary.bInCallback = false;
        ++stLibrary.u64Finished;
        RecordLine(stLibrary, "delivered " + FormatDelivery(stDelivery));
        Acknowledge(stLibrary, stDelivery);
        stLibrary.Changed.notify_all();
    }
}

// One command, split: its name and what stands behind it.
struct Command {
    std::string strName;
    std::string strRest;
    std::string strAcknowledge; // recorded when the command is done
};

Command Split(const std::string &strLine) {
    std::istringstream Stream(strLine);
    Command stCommand;
    Stream >> stCommand.strName >> std::ws;
    std::getline(Stream, stCommand.strRest);
    return stCommand;
}

// Reads "NUMBER" or "NUMBER*TIMES" ("fail" counts as -1) and queues it.
template <typename Value> bool QueueNumbers(const std::string &strText, std::deque<Value> *pQueue) {
    const size_t uStar = std::min(strText.find('*'), strText.size());
    const std::string strNumber = strText.substr(0, uStar);
    char *pcEnd = nullptr;
    const bool bFail = strNumber == "fail";
    const long long llValue = bFail ? -1 : std::strtoll(strNumber.c_str(), &pcEnd, 0);
    const long lTimes =
        uStar < strText.size() ? std::strtol(strText.c_str() + uStar + 1, nullptr, 10) : 1;
    if (strNumber.empty() || (!bFail && *pcEnd != '\0') || lTimes < 1) {
        return false;
    }
    for (long i = 0; i < lTimes; ++i) {
        pQueue->push_back(static_cast<Value>(llValue));
    }
    return true;
}

bool ReadBytes(const Library &stLibrary, const std::string &strText, Bytes *pBytes) {
    std::string strWrong;
    const std::optional<Bytes> Read = ParseBytes(strText, &strWrong);
    if (!Read) {
        Complain(stLibrary, "these are no bytes: " + strWrong);
        return false;
    }
    *pBytes = *Read;
    return true;
}

std::optional<Delivery> MakeDelivery(Library &stLibrary, const std::string &strText) {
    Delivery stDelivery;
    if (!ReadBytes(stLibrary, strText, &stDelivery.aucMessage) ||
        stDelivery.aucMessage.size() > WIMAX_MESSAGE_SIZE) {
        return std::nullopt;
    }
    stDelivery.u32StatedLength = std::exchange(stLibrary.u32NextLength, std::nullopt);
    return stDelivery;
}

// The send that answers and replies are attached to: the last one planned.
PlannedSend &LastPlannedSend(Library &stLibrary) {
    if (stLibrary.stSends.empty()) {
        stLibrary.stSends.emplace_back();
    }
    return stLibrary.stSends.back();
}

enum class Done : uint8_t { Yes, Later, Wrong };

Done DoOpen(Library &stLibrary, const Command &stCommand) {
    return QueueNumbers(stCommand.strRest, &stLibrary.u32OpenResults) ? Done::Yes : Done::Wrong;
}

Done DoRegister(Library &stLibrary, const Command &stCommand) {
    return QueueNumbers(stCommand.strRest, &stLibrary.iRegisterResults) ? Done::Yes : Done::Wrong;
}

Done DoClose(Library &stLibrary, const Command &stCommand) {
    return QueueNumbers(stCommand.strRest, &stLibrary.iCloseResults) ? Done::Yes : Done::Wrong;
}

Done DoWrite(Library &stLibrary, const Command &stCommand) {
    return QueueNumbers(stCommand.strRest, &stLibrary.iWriteResults) ? Done::Yes : Done::Wrong;
}

Done DoSend(Library &stLibrary, const Command &stCommand) {
    std::deque<int32_t> iResults;
    if (!QueueNumbers(stCommand.strRest.empty() ? "0" : stCommand.strRest, &iResults)) {
        return Done::Wrong;
    }
    for (const int32_t iResult : iResults) {
        stLibrary.stSends.push_back({iResult, {}, {}});
    }
    return Done::Yes;
}

Done DoRead(Library &stLibrary, const Command &stCommand) {
    const Command stParts = Split(stCommand.strRest);
    std::deque<int32_t> iResults;
    PlannedRead stRead;
    if (!QueueNumbers(stParts.strName, &iResults) ||
        !ReadBytes(stLibrary, stParts.strRest, &stRead.aucBytes)) {
        return Done::Wrong;
    }
    for (const int32_t iResult : iResults) {
        stRead.iResult = iResult;
        stLibrary.stReads.push_back(stRead);
    }
    return Done::Yes;
}

Done DoAnswer(Library &stLibrary, const Command &stCommand) {
    std::optional<Delivery> stDelivery = MakeDelivery(stLibrary, stCommand.strRest);
    if (!stDelivery) {
        return Done::Wrong;
    }
    LastPlannedSend(stLibrary).stAnswers.push_back(std::move(*stDelivery));
    return Done::Yes;
}

Done DoReply(Library &stLibrary, const Command &stCommand) {
    Bytes aucReply;
    if (!ReadBytes(stLibrary, stCommand.strRest, &aucReply) ||
        aucReply.size() > WIMAX_MESSAGE_SIZE) {
        return Done::Wrong;
    }
    LastPlannedSend(stLibrary).aucReply = std::move(aucReply);
    return Done::Yes;
}

Done DoPost(Library &stLibrary, const Command &stCommand) {
    std::optional<Delivery> stDelivery = MakeDelivery(stLibrary, stCommand.strRest);
    if (!stDelivery) {
        return Done::Wrong;
    }
    Queue(stLibrary, std::move(*stDelivery));
    return Done::Yes;
}

Done DoMessage(Library &stLibrary, const Command &stCommand) {
    std::optional<Delivery> stDelivery = MakeDelivery(stLibrary, stCommand.strRest);
    if (!stDelivery) {
        return Done::Wrong;
    }
    stDelivery->strAcknowledge = stCommand.strAcknowledge;
    Queue(stLibrary, std::move(*stDelivery));
    return Done::Later;
}

Done DoNull(Library &stLibrary, const Command &stCommand) {
    Delivery stDelivery;
    stDelivery.bNull = true;
    stDelivery.strAcknowledge = stCommand.strAcknowledge;
    Queue(stLibrary, std::move(stDelivery));
    return Done::Later;
}

Done DoLength(Library &stLibrary, const Command &stCommand) {
    std::deque<uint32_t> u32Lengths;
    if (!QueueNumbers(stCommand.strRest, &u32Lengths)) {
        return Done::Wrong;
    }
    stLibrary.u32NextLength = u32Lengths.front();
    return Done::Yes;
}

struct CommandRow {
    const char *pcName;
    Done (*pfnDo)(Library &stLibrary, const Command &stCommand);
};

constexpr CommandRow astCommands[] = {
    {"open", DoOpen},     {"register", DoRegister}, {"close", DoClose},     {"send", DoSend},
    {"answer", DoAnswer}, {"reply", DoReply},       {"message", DoMessage}, {"post", DoPost},
    {"null", DoNull},     {"rdm", DoRead},          {"wrm", DoWrite},       {"length", DoLength},
};

void RunCommand(Library &stLibrary, const std::string &strLine) {
    Command stCommand = Split(strLine);
    if (stCommand.strName.empty() || stCommand.strName[0] == '#') {
        return;
    }
    stCommand.strAcknowledge = "done " + strLine;
    const std::lock_guard Held(stLibrary.Lock);
    for (const CommandRow &stRow : astCommands) {
        if (stCommand.strName == stRow.pcName) {
            const Done eDone = stRow.pfnDo(stLibrary, stCommand);
            if (eDone == Done::Yes) {
                RecordLine(stLibrary, stCommand.strAcknowledge);
            } else if (eDone == Done::Wrong) {
                Complain(stLibrary, "command not understood: " + strLine);
            }
            return;
        }
    }
    Complain(stLibrary, "unknown command: " + strLine);
}

void RunScript(Library &stLibrary, const char *pcPath) {
    std::ifstream Script(pcPath);
    if (!Script) {
        Complain(stLibrary, std::string("no such script: ") + pcPath);
    }
    for (std::string strLine; std::getline(Script, strLine);) {
        RunCommand(stLibrary, strLine);
    }
}

// Opened for both directions, the pipe has no end when a writer goes away.
void ReadControl(Library &stLibrary, const char *pcPath) {
    const int iControl = open(pcPath, O_RDWR | O_CLOEXEC);
    std::string strPending;
    char acChunk[4096];
    for (;;) {
        const ssize_t iCount = iControl >= 0 ? read(iControl, acChunk, sizeof acChunk) : 0;
        if (iCount <= 0) {
            return;
        }
        strPending.append(acChunk, static_cast<size_t>(iCount));
        for (size_t uEnd = strPending.find('\n'); uEnd != std::string::npos;
             uEnd = strPending.find('\n')) {
            RunCommand(stLibrary, strPending.substr(0, uEnd));
            strPending.erase(0, uEnd + 1);
        }
    }
}

std::string Arrow(int64_t i64Result) { return " -> " + std::to_string(i64Result); }

std::string FormatAddress(uint32_t u32Address) {
    char acText[16];
    (void)snprintf(acText, sizeof acText, "0x%08x", u32Address);
    return acText;
}

} // namespace

uint32_t OpenWiMAXDevice() {
    const Calls stOwn(true);
    Library &stLibrary = TheLibrary();
    const std::lock_guard Held(stLibrary.Lock);
    uint32_t u32Handle = TakeOr(&stLibrary.u32OpenResults, u32DefaultHandle);
    Fails(stLibrary, &u32Handle);
    stLibrary.bClosed = stLibrary.bClosed && u32Handle == WIMAX_NO_DEVICE;
    RecordLine(stLibrary,
               "OpenWiMAXDevice" +
                   (u32Handle == WIMAX_NO_DEVICE ? std::string(" -> fail") : Arrow(u32Handle)));
    return u32Handle;
}

int32_t RegisterCallback(uint32_t hDevice, WiMAXCallback pfnCallback, uint32_t u32Context) {
    const Calls stOwn(true);
    Library &stLibrary = TheLibrary();
    const std::lock_guard Held(stLibrary.Lock);
    int32_t iResult = TakeOr(&stLibrary.iRegisterResults, 0);
    Fails(stLibrary, &iResult);
    RecordLine(stLibrary, "RegisterCallback " + std::to_string(hDevice) + " " +
                              (pfnCallback == nullptr ? "null " : "") + std::to_string(u32Context) +
                              Arrow(iResult));
    if (iResult == 0) {
        stLibrary.pfnCallback = pfnCallback;
        stLibrary.u32Context = u32Context;
        stLibrary.Changed.notify_all();
    }
    return iResult;
}

int32_t SendWiMAXMessage(uint32_t hDevice, void *pvMessage, uint32_t u32Length) {
    const Calls stOwn(true);
    Library &stLibrary = TheLibrary();
    std::unique_lock Held(stLibrary.Lock);
    PlannedSend stSend = TakeOr(&stLibrary.stSends, PlannedSend{});
    if (Fails(stLibrary, &stSend.iResult)) {
        stSend.aucReply.reset();
        stSend.stAnswers.clear();
    }
    std::string strLine =
        "SendWiMAXMessage " + std::to_string(hDevice) + " " + std::to_string(u32Length);
    if (pvMessage == nullptr) {
        strLine += " null";
    } else {
        auto *pucMessage = static_cast<uint8_t *>(pvMessage);
        strLine +=
            " " + FormatMessage(pucMessage, std::min<uint32_t>(u32Length, WIMAX_MESSAGE_SIZE));
        if (stSend.aucReply) {
            std::copy(stSend.aucReply->begin(), stSend.aucReply->end(), pucMessage);
        }
    }
    RecordLine(stLibrary, strLine + Arrow(stSend.iResult));
    if (stLibrary.pfnCallback == nullptr || stSend.stAnswers.empty()) {
        return stSend.iResult;
    }
    for (Delivery &stAnswer : stSend.stAnswers) {
        Queue(stLibrary, std::move(stAnswer));
    }
    // A decoder that sends gets its answers when it has returned.
    const uint64_t u64Last = stLibrary.u64Queued;
    if (std::this_thread::get_id() != stLibrary.DeliveryThread) {
        stLibrary.Changed.wait(Held, [&] {
            return stLibrary.u64Finished >= u64Last || stLibrary.pfnCallback == nullptr;
        });
    }
    return stSend.iResult;
}

int32_t CloseWiMAXDevice() {
    const Calls stOwn(true);
    Library &stLibrary = TheLibrary();
    std::unique_lock Held(stLibrary.Lock);
    stLibrary.pfnCallback = nullptr;
    stLibrary.bClosed = true;
    for (const Delivery &stDelivery : stLibrary.stDeliveries) {
        Drop(stLibrary, stDelivery);
    }
    stLibrary.u64Finished += stLibrary.stDeliveries.size();
    stLibrary.stDeliveries.clear();
    stLibrary.Changed.notify_all();
    if (std::this_thread::get_id() != stLibrary.DeliveryThread) {
        stLibrary.Changed.wait_for(Held, CloseWait, [&] { return !stLibrary.bInCallback; });
    }
    int32_t iResult = TakeOr(&stLibrary.iCloseResults, 0);
    Fails(stLibrary, &iResult);
    RecordLine(stLibrary, "CloseWiMAXDevice" + Arrow(iResult));
    return iResult;
}

int32_t rdm(uint32_t u32Address, void *pvBuffer, uint32_t u32Count) {
    const Calls stOwn(true);
    Library &stLibrary = TheLibrary();
    const std::lock_guard Held(stLibrary.Lock);
    PlannedRead stRead = TakeOr(&stLibrary.stReads, PlannedRead{});
    if (Fails(stLibrary, &stRead.iResult)) {
        stRead.aucBytes.clear();
    }
    RecordLine(stLibrary, "rdm " + FormatAddress(u32Address) + " " + std::to_string(u32Count) +
                              (pvBuffer == nullptr ? " null" : "") + Arrow(stRead.iResult));
    // A read that fails leaves the buffer alone, unless the script has bytes for it.
    if (pvBuffer != nullptr && (stRead.iResult == 0 || !stRead.aucBytes.empty())) {
        std::memset(pvBuffer, 0, u32Count);
        std::copy_n(stRead.aucBytes.begin(), std::min<size_t>(stRead.aucBytes.size(), u32Count),
                    static_cast<uint8_t *>(pvBuffer));
    }
    return stRead.iResult;
}

int32_t wrm(uint32_t u32Address, const void *pvBuffer, uint32_t u32Count) {
    const Calls stOwn(true);
    Library &stLibrary = TheLibrary();
    const std::lock_guard Held(stLibrary.Lock);
    int32_t iResult = TakeOr(&stLibrary.iWriteResults, 0);
    Fails(stLibrary, &iResult);
    RecordLine(stLibrary,
               "wrm " + FormatAddress(u32Address) + " " + std::to_string(u32Count) +
                   (pvBuffer == nullptr
                        ? " null"
                        : " | " + FormatBytes(static_cast<const uint8_t *>(pvBuffer), u32Count)) +
                   Arrow(iResult));
    return iResult;
}
