#include "FakeDevice.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "Dispatcher.h"

namespace {

struct State {
    std::vector<std::string> strSent;
    std::vector<FakeDevice::SendArguments> stArguments;
    std::vector<std::string> strCalls;
    std::vector<std::string> strMemoryCalls;
    Bytes aucLastWritten;
    uint32_t u32OpenResult = 1;
    int32_t iSendResult = 0;
    std::deque<int32_t> iSendResults;
    int32_t iMemoryResult = 0;
    std::deque<int32_t> iMemoryResults;
    Bytes aucMemory{0};
    std::optional<Bytes> aucReply;
    std::deque<Bytes> aucAnswers;
    FakeDevice::SendHook Hook;
    WiMAXCallback pfnCallback = nullptr;
    uint32_t u32Context = 0;
};

std::mutex gLock;
State gstState;

template <typename Value> Value Locked(Value State::*pMember) {
    const std::lock_guard Held(gLock);
    return gstState.*pMember;
}

template <typename Value> void Set(Value State::*pMember, Value NewValue) {
    const std::lock_guard Held(gLock);
    gstState.*pMember = std::move(NewValue);
}

uint32_t CallBack(const WiMAXMessage *pstMessage, uint32_t u32Length) {
    WiMAXCallback pfnCallback = Locked(&State::pfnCallback);
    const uint32_t u32Context = Locked(&State::u32Context);
    if (pfnCallback == nullptr) {
        pfnCallback = TVLCallback;
    }
    uint32_t u32Result = 0;
    std::thread([&] { u32Result = pfnCallback(u32Context, pstMessage, u32Length); }).join();
    return u32Result;
}

void RecordMemoryCall(const char *pcName, uint32_t u32Address, uint32_t u32Count) {
    char acText[64];
    snprintf(acText, sizeof acText, "%s 0x%08x %u", pcName, u32Address, u32Count);
    gstState.strMemoryCalls.emplace_back(acText);
    gstState.strCalls.emplace_back(pcName);
}

int32_t TakeMemoryResult() {
    int32_t iResult = gstState.iMemoryResult;
    if (!gstState.iMemoryResults.empty()) {
        iResult = gstState.iMemoryResults.front();
        gstState.iMemoryResults.pop_front();
    }
    return iResult;
}

} // namespace

void FakeDevice::Reset() {
    const std::lock_guard Held(gLock);
    gstState = {};
}

std::vector<std::string> FakeDevice::Sent() { return Locked(&State::strSent); }
std::vector<FakeDevice::SendArguments> FakeDevice::SendArgumentsOfAll() {
    return Locked(&State::stArguments);
}
std::vector<std::string> FakeDevice::Calls() { return Locked(&State::strCalls); }
std::vector<std::string> FakeDevice::MemoryCalls() { return Locked(&State::strMemoryCalls); }
Bytes FakeDevice::LastWritten() { return Locked(&State::aucLastWritten); }

void FakeDevice::SetOpenResult(uint32_t u32Handle) { Set(&State::u32OpenResult, u32Handle); }
void FakeDevice::SetSendResult(int32_t iResult) { Set(&State::iSendResult, iResult); }
void FakeDevice::SetMemoryResult(int32_t iResult) { Set(&State::iMemoryResult, iResult); }
void FakeDevice::SetMemory(const Bytes &aucMemory) { Set(&State::aucMemory, aucMemory); }
void FakeDevice::QueueReply(const Bytes &aucMessage) {
    Set(&State::aucReply, std::optional<Bytes>(aucMessage));
}

void FakeDevice::OnSend(SendHook Hook) { Set(&State::Hook, std::move(Hook)); }

void FakeDevice::QueueSendResult(int32_t iResult) {
    const std::lock_guard Held(gLock);
    gstState.iSendResults.push_back(iResult);
}

void FakeDevice::QueueMemoryResult(int32_t iResult) {
    const std::lock_guard Held(gLock);
    gstState.iMemoryResults.push_back(iResult);
}

void FakeDevice::QueueAnswer(const Bytes &aucMessage) {
    const std::lock_guard Held(gLock);
    gstState.aucAnswers.push_back(aucMessage);
}

uint32_t FakeDevice::Deliver(const Bytes &aucMessage) {
    return Deliver(aucMessage, static_cast<uint32_t>(aucMessage.size()));
}

uint32_t FakeDevice::Deliver(const Bytes &aucMessage, uint32_t u32StatedLength) {
    return CallBack(RecordOf(aucMessage).get(), u32StatedLength);
}

uint32_t FakeDevice::DeliverNull() { return CallBack(nullptr, 0); }

Bytes Message(std::string_view strText) {
    std::string strWrong;
    const std::optional<Bytes> Parsed = ParseBytes(strText, &strWrong);
    if (!Parsed) {
        fprintf(stderr, "no bytes: %s\n", strWrong.c_str());
        std::abort();
    }
    return *Parsed;
}

std::string Recorded(std::string_view strText) {
    const Bytes aucMessage = Message(strText);
    return FormatMessage(aucMessage.data(), aucMessage.size());
}

uint32_t OpenWiMAXDevice() {
    const std::lock_guard Held(gLock);
    gstState.strCalls.emplace_back("OpenWiMAXDevice");
    return gstState.u32OpenResult;
}

int32_t RegisterCallback(uint32_t /*hDevice*/, WiMAXCallback pfnCallback, uint32_t u32Context) {
    const std::lock_guard Held(gLock);
    gstState.strCalls.emplace_back("RegisterCallback");
    gstState.pfnCallback = pfnCallback;
    gstState.u32Context = u32Context;
    return 0;
}

int32_t SendWiMAXMessage(uint32_t hDevice, void *pvMessage, uint32_t u32Length) {
    std::deque<Bytes> aucAnswers;
    int32_t iResult = 0;
    auto *pucMessage = static_cast<uint8_t *>(pvMessage);
    size_t uSend = 0;
    {
        const std::lock_guard Held(gLock);
        gstState.strCalls.emplace_back("SendWiMAXMessage");
        gstState.stArguments.push_back({hDevice, u32Length});
        gstState.strSent.push_back(
            pucMessage == nullptr
                ? "null"
                : FormatMessage(pucMessage, std::min<uint32_t>(u32Length, WIMAX_MESSAGE_SIZE)));
        uSend = gstState.strSent.size();
    }
    const FakeDevice::SendHook Hook = Locked(&State::Hook);
    if (Hook && pucMessage != nullptr) {
        Hook(uSend, std::span<uint8_t, WIMAX_MESSAGE_SIZE>(pucMessage, WIMAX_MESSAGE_SIZE));
    }
    {
        const std::lock_guard Held(gLock);
        if (gstState.aucReply && pucMessage != nullptr) {
            std::copy(gstState.aucReply->begin(), gstState.aucReply->end(), pucMessage);
            gstState.aucReply.reset();
        }
        iResult = gstState.iSendResult;
        if (!gstState.iSendResults.empty()) {
            iResult = gstState.iSendResults.front();
            gstState.iSendResults.pop_front();
        }
        aucAnswers.swap(gstState.aucAnswers);
    }
    for (const Bytes &aucAnswer : aucAnswers) {
        FakeDevice::Deliver(aucAnswer);
    }
    return iResult;
}

int32_t CloseWiMAXDevice() {
    const std::lock_guard Held(gLock);
    gstState.strCalls.emplace_back("CloseWiMAXDevice");
    return 0;
}

int32_t rdm(uint32_t u32Address, void *pvBuffer, uint32_t u32Count) {
    const std::lock_guard Held(gLock);
    RecordMemoryCall("rdm", u32Address, u32Count);
    auto *pucBuffer = static_cast<uint8_t *>(pvBuffer);
    const uint32_t u32Whole = (u32Count + 3) / 4 * 4; // a device reads whole words
    for (uint32_t i = 0; i < u32Whole; ++i) {
        pucBuffer[i] = gstState.aucMemory[i % gstState.aucMemory.size()];
    }
    return TakeMemoryResult();
}

int32_t wrm(uint32_t u32Address, const void *pvBuffer, uint32_t u32Count) {
    const std::lock_guard Held(gLock);
    RecordMemoryCall("wrm", u32Address, u32Count);
    const auto *pucBuffer = static_cast<const uint8_t *>(pvBuffer);
    gstState.aucLastWritten.assign(pucBuffer, pucBuffer + u32Count);
    return TakeMemoryResult();
}
