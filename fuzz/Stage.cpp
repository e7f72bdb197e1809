#include "Stage.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Client.h"
#include "Console.h"
#include "Dispatcher.h"
#include "Run.h"

// Where the linker has put what the client can change.
extern "C" uint8_t client_data_begin[];
extern "C" uint8_t client_data_end[];

// Not there without the sanitizer.
extern "C" __attribute__((weak)) void *__asan_region_is_poisoned(void *pvBegin, size_t uCount);

Stage::Run Stage::gstRun;
thread_local bool Stage::gbOnStage = false;
thread_local Stage::Actor Stage::geActor = Stage::Menus;

namespace {

using namespace Stage;

constexpr int aiSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int aiErrors[] = {EINTR, EAGAIN, EIO, ENOSPC, ENOMEM, EPIPE, EMFILE};

// The EEPROM test makes a round for each look at the input.
constexpr uint32_t u32MostLooks = 4;

// A client that waits in vain this often, or does this much, gets a signal.
constexpr uint32_t u32MostWaits = 600;
constexpr uint32_t u32MostCalls = 60000;
// And after that it has to end, in half a second and a little.
constexpr int64_t i64MostAfterSignal = i64Second / 2 + i64Second / 50;

// ---- The threads ----

std::atomic<uint32_t> gu32Turn{Menus};
static_assert(sizeof gu32Turn == sizeof(uint32_t));

void WaitForTurn(Actor eMe) {
    for (uint32_t u32Turn = gu32Turn; u32Turn != eMe; u32Turn = gu32Turn) {
        syscall(SYS_futex, &gu32Turn, FUTEX_WAIT_PRIVATE, u32Turn, nullptr, nullptr, 0);
    }
}

void HandOver() {
    gu32Turn = geActor == Menus ? Library : Menus;
    syscall(SYS_futex, &gu32Turn, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    WaitForTurn(geActor);
    if (geActor == Menus && gstRun.bLeft && !gstRun.bUnwound) {
        gstRun.bUnwound = true;
        throw LeftAtOnce{gstRun.iLeftStatus};
    }
}

// Whether the other thread could get further than it has come.
bool OtherCanGoOn() {
    const Actor eOther = geActor == Menus ? Library : Menus;
    const bool bBusy = eOther == Library ? gstRun.bCallbackRuns : !gstRun.bMenusWaitForCallback;
    return bBusy &&
           !(gstRun.abWaiting[eOther] && gstRun.au32WaitsSince[eOther] == gstRun.u32Changes);
}

// The record that messages are in: in a block of its own, so that every byte
// read beside it is found.
uint8_t *const gpucRecord = new uint8_t[WIMAX_MESSAGE_SIZE]();
uint32_t gu32RecordUsed = 0;

void Call(WiMAXCallback pfnCallback, uint32_t u32Context, ByteView stStep) {
    const uint32_t u32Stated = Get(stStep, MessageStep::u32StatedLength);
    const ByteView stMessage = stStep.From(MessageStep::Message, WIMAX_MESSAGE_SIZE);
    if (stMessage.u32Length < MessageHeader::Size) {
        pfnCallback(u32Context, nullptr, u32Stated);
        return;
    }
    std::memcpy(gpucRecord, stMessage.pucData, stMessage.u32Length);
    if (gu32RecordUsed > stMessage.u32Length) {
        std::memset(gpucRecord + stMessage.u32Length, 0, gu32RecordUsed - stMessage.u32Length);
    }
    gu32RecordUsed = stMessage.u32Length;
    pfnCallback(u32Context, reinterpret_cast<const WiMAXMessage *>(gpucRecord), u32Stated);
}

void RunLibrary() {
    geActor = Library;
    gbOnStage = true;
    WaitForTurn(Library);
    for (;;) {
        while (!gstRun.astMessages.empty()) {
            const ByteView stStep = gstRun.astMessages.front();
            gstRun.astMessages.pop_front();
            try {
                Call(gstRun.pfnCallback, gstRun.u32Context, stStep);
            } catch (const LeftAtOnce &) {
                DropPendingOutput();
            }
            ++gstRun.u32Changes;
        }
        gstRun.bCallbackRuns = false;
        HandOver();
    }
}

// Hands a message to the library's thread, which moves at once when it can.
void Deliver(ByteView stStep) {
    if (gstRun.pfnCallback == nullptr) {
        return;
    }
    gstRun.astMessages.push_back(stStep);
    ++gstRun.u32Changes;
    if (geActor == Menus && !gstRun.bInHandler) {
        gstRun.bCallbackRuns = true;
        HandOver();
    }
}

void FinishCallback() {
    gstRun.bMenusWaitForCallback = true;
    while (gstRun.bCallbackRuns) {
        const uint32_t u32Changes = gstRun.u32Changes;
        HandOver();
        if (gstRun.bCallbackRuns && gstRun.abWaiting[Library] && u32Changes == gstRun.u32Changes) {
            Stage::Complain("the callback does not return");
        }
    }
    gstRun.bMenusWaitForCallback = false;
}

// ---- What happens beside the client ----

struct HandlerRuns {
    HandlerRuns() { gstRun.bInHandler = true; }
    ~HandlerRuns() { gstRun.bInHandler = false; }
    HandlerRuns(const HandlerRuns &) = delete;
    HandlerRuns &operator=(const HandlerRuns &) = delete;
};

void RaiseSignal(int iSignal) {
    gstRun.abRaised[iSignal] = true;
    ++gstRun.u32Changes;
    const auto pfnHandler = gstRun.astActions[static_cast<size_t>(iSignal)].sa_handler;
    if (pfnHandler != SIG_DFL && pfnHandler != SIG_IGN) {
        gstRun.abInterrupted[geActor] = true;
        if (!gstRun.bTold) {
            gstRun.bTold = true;
            gstRun.i64ToldAt = gstRun.i64Now;
            gstRun.u32Calls = 0;
        }
        const HandlerRuns stHandlerRuns;
        pfnHandler(iSignal);
    }
}

// Enough is enough: the person ends the client, which it has to heed.
void GiveUp() {
    if (gstRun.bTold) {
        Stage::Complain("the client has been told to end and does not");
    }
    RaiseSignal(SIGTERM);
}

void SetOutput(ByteView stData) {
    if (gstRun.aeStreams[STDOUT_FILENO] == StreamKind::File) {
        return; // takes everything at once
    }
    constexpr auto u8States = static_cast<uint8_t>(OutputState::Count);
    const auto eState = static_cast<OutputState>(stData.At(0) % u8States);
    gstRun.bGone = gstRun.bGone || eState == OutputState::Gone;
    gstRun.u32Blocked = eState == OutputState::Blocked ? stData.At(1) : 0U;
    gstRun.u32Short = eState == OutputState::Short ? stData.At(1) : 0U;
    ++gstRun.u32Changes;
}

uint32_t DelayOf(const Step &stStep) {
    return stStep.eKind == StepKind::Message ? Get(stStep.stData, MessageStep::u8Delay)
                                             : stStep.stData.At(1);
}

void Arrive(const Step &stStep) {
    if (stStep.eKind == StepKind::Message) {
        Deliver(stStep.stData);
    } else {
        RaiseSignal(aiSignals[stStep.stData.At(0) % std::size(aiSignals)]);
    }
}

// Lets the step happen; false when it is one that has to wait for its turn.
bool Happens(const Step &stStep) {
    switch (stStep.eKind) {
    case StepKind::Type:
        return false;
    case StepKind::Message:
    case StepKind::Signal:
        if (const uint32_t u32Delay = DelayOf(stStep); u32Delay != 0) {
            gstRun.astDelayed.push_back({stStep, u32Delay});
        } else {
            Arrive(stStep);
        }
        break;
    case StepKind::Pause:
        if (gstRun.aeStreams[STDIN_FILENO] != StreamKind::File) {
            gstRun.u32Pause = stStep.stData.At(0) % u32MostLooks;
        }
        break;
    case StepKind::Output:
        SetOutput(stStep.stData);
        break;
    case StepKind::Error:
        gstRun.aiError[stStep.stData.At(0) % gstRun.aiError.size()] =
            aiErrors[stStep.stData.At(1) % std::size(aiErrors)];
        break;
    case StepKind::Turns:
        gstRun.stTurns = stStep.stData;
        gstRun.u32Turn = 0;
        break;
    default:
        break;
    }
    return true;
}

// Nobody can do anything until time has passed. False when the wait is over.
bool LetTimePass(int64_t i64Time) {
    if (gstRun.u32Pause != 0) {
        gstRun.u32Pause = 0;
        ++gstRun.u32Changes;
        return true;
    }
    if (i64Time != i64Forever) {
        gstRun.i64Now += i64Time;
        if (gstRun.i64Alarm != 0 && gstRun.i64Now >= gstRun.i64Alarm) {
            gstRun.i64Alarm = 0;
            RaiseSignal(SIGALRM);
        }
        if (++gstRun.u32Waits > u32MostWaits && !gstRun.bTold) {
            GiveUp();
        }
        return false;
    }
    if (gstRun.u32Blocked != 0 && gstRun.u32Blocked != UINT8_MAX) {
        gstRun.u32Blocked = 0;
        ++gstRun.u32Changes;
        return true;
    }
    GiveUp();
    return true;
}

// ---- The run ----

// Not by the library's memcpy, for which the gaps between the data are taboo.
constexpr size_t uBlock = 64;
__attribute__((no_sanitize("address"), no_builtin("memcpy"))) void
Copy(const uint8_t *pucFrom, uint8_t *pucTo, size_t uCount) {
    for (size_t i = 0; i < uCount; i += uBlock) {
        __builtin_memcpy_inline(pucTo + i, pucFrom + i, uBlock);
    }
}

void RestoreClientData() {
    static const auto uCount = static_cast<size_t>(client_data_end - client_data_begin);
    static uint8_t *const pucSaved = [] {
        auto *pucNew = new uint8_t[uCount];
        Copy(client_data_begin, pucNew, uCount);
        return pucNew;
    }();
    Copy(pucSaved, client_data_begin, uCount);
}

// The client's reasons to end: its choice, the end of its input, a signal, its
// output, a device that is not there.
void CheckEnd(int iStatus) {
    if (gstRun.bTold && gstRun.i64Now - gstRun.i64ToldAt > i64MostAfterSignal) {
        Stage::Complain("the client takes long to end after a signal");
    }
    const int iSignal = iStatus - 128;
    if (iStatus == 0 || iStatus == -1) {
        return;
    }
    const bool bRaised = iSignal > 0 && iSignal < NSIG && gstRun.abRaised[iSignal];
    const bool bOutputGone = iSignal == SIGPIPE && (gstRun.bGone || gstRun.bWriteFailed);
    if (!bRaised && !bOutputGone) {
        Stage::Complain("the client ends for no reason");
    }
}

} // namespace

void Stage::CountCall() {
    if (++gstRun.u32Calls > u32MostCalls) {
        GiveUp();
    }
}

const Step *Stage::NextTyped() {
    while (gstRun.uStep < gstRun.astSteps.size() && gstRun.u32Pause == 0) {
        const Step &stStep = gstRun.astSteps[gstRun.uStep];
        if (stStep.eKind == StepKind::Type && gstRun.u32Typed < stStep.stData.u32Length) {
            return &stStep;
        }
        ++gstRun.uStep;
        gstRun.u32Typed = 0;
        Happens(stStep);
    }
    return nullptr;
}

bool Stage::InputIsReady() {
    NextTyped();
    if (gstRun.u32Pause != 0) {
        --gstRun.u32Pause;
        return false;
    }
    return true;
}

bool Stage::OutputIsReady() {
    if (gstRun.u32Blocked == 0) {
        return true;
    }
    gstRun.u32Blocked -= gstRun.u32Blocked != UINT8_MAX ? 1 : 0; // the most: for ever
    return gstRun.u32Blocked == 0;
}

bool Stage::Fails(SystemCall eCall) {
    const int iError = std::exchange(gstRun.aiError[static_cast<size_t>(eCall)], 0);
    if (iError == 0) {
        return false;
    }
    errno = iError;
    return true;
}

bool Stage::LetGoOn(int64_t i64Time, bool bFirst) {
    const bool bForever = i64Time == i64Forever;
    if (!OtherCanGoOn() || (!bFirst && !bForever)) {
        return LetTimePass(i64Time);
    }
    gstRun.abWaiting[geActor] = bForever;
    gstRun.au32WaitsSince[geActor] = gstRun.u32Changes;
    HandOver();
    gstRun.abWaiting[geActor] = false;
    return true;
}

bool Stage::TakeInterruption() { return std::exchange(gstRun.abInterrupted[geActor], false); }

void Stage::Begin(ByteView stSteps) {
    static const bool bLibraryRuns = [] {
        std::thread(RunLibrary).detach();
        return true;
    }();
    (void)bLibraryRuns;
    RestoreClientData();
    gstRun.Clear();
    Step stStep;
    while (TakeStep(&stSteps, &stStep)) {
        gstRun.astSteps.push_back(stStep);
    }
    if (const Step *pstStreams = Next(StepKind::Streams)) {
        for (uint32_t i = 0; i < std::size(gstRun.aeStreams); ++i) {
            gstRun.aeStreams[i] = static_cast<StreamKind>(pstStreams->stData.At(i) %
                                                          static_cast<uint32_t>(StreamKind::Count));
        }
    }
    // What happens before anything is typed or received is so from the start.
    while (gstRun.uStep < gstRun.astSteps.size()) {
        const StepKind eKind = gstRun.astSteps[gstRun.uStep].eKind;
        if (eKind != StepKind::Output && eKind != StepKind::Error && eKind != StepKind::Turns) {
            break;
        }
        Happens(gstRun.astSteps[gstRun.uStep++]);
    }
}

void Stage::RunClientWith(void (*pfnMenus)()) {
    gbOnStage = true;
    int iStatus = 0;
    try {
        iStatus = RunClient(pfnMenus);
    } catch (const LeftAtOnce &stLeft) {
        iStatus = stLeft.iStatus;
        DropPendingOutput();
    }
    CheckEnd(iStatus);
    // The library's thread would be gone by now, but it has to come back here.
    gstRun.bUnwound = true;
    FinishCallback();
    gbOnStage = false;
}

void Stage::Play(void (*pfnScene)()) {
    gbOnStage = true;
    try {
        OpenConsole();
        pfnScene();
    } catch (const LeftAtOnce &) {
        DropPendingOutput();
    }
    gbOnStage = false;
}

void Stage::CallBack(ByteView stMessageStep) { Call(TVLCallback, 0, stMessageStep); }

const std::vector<Step> &Stage::Steps() { return gstRun.astSteps; }

const Step *Stage::Next(StepKind eKind) {
    size_t &uNext = gstRun.auNext[static_cast<size_t>(eKind)];
    while (uNext < gstRun.astSteps.size()) {
        const Step &stStep = gstRun.astSteps[uNext++];
        if (stStep.eKind == eKind) {
            return &stStep;
        }
    }
    return nullptr;
}

void Stage::SwitchPoint() {
    CountCall();
    if (gstRun.bInHandler) {
        return;
    }
    for (size_t i = 0; i < gstRun.astDelayed.size();) {
        if (--gstRun.astDelayed[i].u32Delay != 0) {
            ++i;
            continue;
        }
        const Step stStep = gstRun.astDelayed[i].stStep;
        gstRun.astDelayed.erase(gstRun.astDelayed.begin() + static_cast<ptrdiff_t>(i));
        Arrive(stStep);
    }
    if (gstRun.u32Turn / 8 < gstRun.stTurns.u32Length) {
        const uint32_t u32Bit = gstRun.u32Turn++;
        if ((gstRun.stTurns.At(u32Bit / 8) >> u32Bit % 8 & 1) != 0 && OtherCanGoOn()) {
            HandOver();
        }
    }
}

void Stage::SetCallback(WiMAXCallback pfnCallback, uint32_t u32Context) {
    gstRun.pfnCallback = pfnCallback;
    gstRun.u32Context = u32Context;
}

void Stage::DeliverAnswers(const Step *pstSend) {
    const Step *pstEnd = gstRun.astSteps.data() + gstRun.astSteps.size();
    for (const Step *pstStep = pstSend + 1; pstStep < pstEnd && pstStep->eKind == StepKind::Answer;
         ++pstStep) {
        Deliver(pstStep->stData);
    }
}

void Stage::WaitForCallback() {
    if (geActor == Menus) {
        FinishCallback();
    }
}

void Stage::CheckBytes(const void *pvBytes, size_t uCount) {
    if (__asan_region_is_poisoned != nullptr &&
        __asan_region_is_poisoned(const_cast<void *>(pvBytes), uCount) != nullptr) {
        Complain("the client hands over bytes that are not its own");
    }
}

void Stage::Complain(const char *pcText) {
    gbOnStage = false;
    (void)std::fprintf(stderr, "FOUND: %s\n", pcText);
    std::abort();
}

// Large blocks are refused, as without a sanitizer. The rest is speed: freed
// blocks come back soon, and where blocks come from is told when it is asked
// for, by ASAN_OPTIONS=malloc_context_size=30.
extern "C" const char *__asan_default_options();
const char *__asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=256:malloc_context_size=1:"
           "quarantine_size_mb=4:thread_local_quarantine_size_kb=64";
}
