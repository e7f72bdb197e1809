// What the simulated modem does as a device, with its thread, its clock and a client's callback: at
// each time scale how much faster than real time it really lives, how many messages come, in a
// second and in one of the processor's, whether any is missing, and what a send takes beside them;
// what opening takes.
//
//     bench_device [SECONDS [TIME-SCALE]...]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <vector>

#include "DiagnosticRecords.h"
#include "MapsInEveryFrame.h"
#include "library/Device.h"

namespace {

using Moment = std::chrono::steady_clock::time_point;

// The callback has it to itself while the device is there.
struct Heard {
    uint64_t u64Messages;
    uint64_t u64DLMAPs;
    uint64_t u64Missing; // DL-MAPs of frames in between
    uint32_t u32Frame;   // of the last one
};
Heard g_stHeard;

uint32_t Receive(uint32_t /*u32Context*/, const WiMAXMessage *pstMessage, uint32_t u32Length) {
    constexpr uint32_t u32DLMAP = 2;
    ++g_stHeard.u64Messages;
    const ByteView stMessage{reinterpret_cast<const uint8_t *>(pstMessage), u32Length};
    const ByteView stRecord = stMessage.From(MessageHeader::Size);
    if (Get(stMessage, MessageHeader::usType) == TYPE_MAC_MGMT &&
        Get(stRecord, TraceRecord::u32Code) == u32DLMAP) {
        const uint32_t u32Frame = Get(stRecord, TraceRecord::u32FrameNumber);
        g_stHeard.u64Missing += u32Frame - g_stHeard.u32Frame - 1;
        g_stHeard.u32Frame = u32Frame;
        ++g_stHeard.u64DLMAPs;
    }
    return 0;
}

// By the process, in all its threads.
double Used() {
    timespec stTime{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stTime);
    return static_cast<double>(stTime.tv_sec) + static_cast<double>(stTime.tv_nsec) * 1e-9;
}

double Seconds(std::chrono::steady_clock::duration stTime) {
    return std::chrono::duration<double>(stTime).count();
}

std::shared_ptr<Device> Opened(Scenario stScenario) {
    return Device::Start(JournaledModem(std::make_unique<WholeModem>(std::move(stScenario))));
}

void Live(double fTimeScale, double fSeconds) {
    g_stHeard = {};
    const std::shared_ptr<Device> pstDevice = Opened(Scenario::FromText(
        "time-scale = " + std::to_string(fTimeScale) + "\n" + pcMapsInEveryFrame, "bench"));
    pstDevice->SetCallback(Receive, 0);
    const Moment stBegan = std::chrono::steady_clock::now();
    const double fUsedBefore = Used();
    uint64_t u64Sends = 0;
    double fSum = 0;
    double fWorst = 0;
    while (Seconds(std::chrono::steady_clock::now() - stBegan) < fSeconds) {
        uint8_t aucStatus[] = {2, 0, 3, 0};
        const Moment stBefore = std::chrono::steady_clock::now();
        (void)pstDevice->Send(aucStatus, sizeof aucStatus);
        const double fTook = Seconds(std::chrono::steady_clock::now() - stBefore);
        fSum += fTook;
        fWorst = std::max(fWorst, fTook);
        ++u64Sends;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    const double fLived = static_cast<double>(pstDevice->Now()) / i64Second;
    const double fTook = Seconds(std::chrono::steady_clock::now() - stBegan);
    const double fUsed = Used() - fUsedBefore;
    pstDevice->Stop();
    const auto fMessages = static_cast<double>(g_stHeard.u64Messages);
    std::printf("| %.0f | %.4g | %.0f | %.0f | %.0f %% | %llu | %.0f us, %.2f ms |\n", fTimeScale,
                fLived / fTook, fMessages / fTook, fMessages / fUsed, 100 * fUsed / fTook,
                static_cast<unsigned long long>(g_stHeard.u64Missing),
                fSum / static_cast<double>(u64Sends) * 1e6, fWorst * 1e3);
}

void Open() {
    constexpr int iOpens = 1000;
    const Moment stBegan = std::chrono::steady_clock::now();
    for (int i = 0; i < iOpens; ++i) {
        const std::shared_ptr<Device> pstDevice = Opened(Scenario::BuiltIn());
        pstDevice->Stop();
    }
    const double fTook = Seconds(std::chrono::steady_clock::now() - stBegan);
    std::printf("\nOpening and closing with the built-in scenario: %.2f ms\n",
                fTook * 1e3 / iOpens);
}

} // namespace

int main(int iArguments, char **ppcArguments) {
    const double fSeconds = iArguments > 1 ? std::strtod(ppcArguments[1], nullptr) : 3;
    std::printf("| `time-scale` | Times real time | Messages a second | Of the processor's | "
                "Processor | Missing | A send, mean and worst |\n|---|---|---|---|---|---|---|\n");
    std::vector<double> afTimeScales;
    for (int i = 2; i < iArguments; ++i) {
        afTimeScales.push_back(std::strtod(ppcArguments[i], nullptr));
    }
    if (afTimeScales.empty()) {
        afTimeScales = {1, 10, 100, 1000, 2000, 5000, 10000};
    }
    for (const double fTimeScale : afTimeScales) {
        Live(fTimeScale, fSeconds);
    }
    Open();
}
