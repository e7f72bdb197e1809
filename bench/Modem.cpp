// What the simulated modem takes: how much faster than real time it lives on one processor, how
// many messages come out, what a send takes and what it holds in memory.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>

#include "MapsInEveryFrame.h"
#include "library/WholeModem.h"

namespace {

// Four flows of four types, each with as much as it may carry.
constexpr const char *pcFlows = R"(
[[service-flow]]
direction = "downlink"
type = "BE"
max-rate = 10000000
[[service-flow]]
direction = "uplink"
type = "BE"
max-rate = 2000000
[[service-flow]]
direction = "uplink"
type = "RTPS"
min-rate = 500000
[[service-flow]]
direction = "uplink"
type = "UGS"
max-rate = 64000
[[generator]]
direction = "downlink"
sfid = 1
rate = 1500000
packet-size = 1400
[[generator]]
direction = "uplink"
sfid = 2
rate = 300000
packet-size = 1400
[[generator]]
direction = "uplink"
sfid = 3
pattern = "poisson"
rate = 60000
packet-size = 600
[[generator]]
direction = "uplink"
sfid = 4
rate = 8000
packet-size = 160
)";

double Used() {
    timespec stTime{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stTime);
    return static_cast<double>(stTime.tv_sec) + static_cast<double>(stTime.tv_nsec) * 1e-9;
}

// In KB.
long Resident() {
    long iPages = 0;
    long iResident = 0;
    std::ifstream("/proc/self/statm") >> iPages >> iResident;
    return iResident * 4;
}

void Send(WholeModem *pstModem, uint32_t u32Type, uint32_t u32SubType, const uint8_t *pucPayload,
          uint32_t u32Length) {
    uint8_t aucMessage[64] = {static_cast<uint8_t>(u32Type), 0, static_cast<uint8_t>(u32SubType)};
    std::memcpy(aucMessage + MessageHeader::Size, pucPayload, u32Length);
    (void)pstModem->Send(aucMessage, MessageHeader::Size + u32Length);
}

uint64_t Take(WholeModem *pstModem) {
    uint64_t u64Messages = 0;
    for (MessageBytes aucMessage; pstModem->TakeMessage(&aucMessage);) {
        ++u64Messages;
    }
    return u64Messages;
}

void Live(const char *pcName, const std::string &strScenario, bool bAll) {
    constexpr int iSeconds = 600;
    WholeModem stModem(Scenario::FromText(strScenario, "bench"));
    if (bAll) {
        const uint8_t aucInterval[] = {100, 0, 0, 0};
        for (uint32_t u32Kind = 1; u32Kind <= 8; ++u32Kind) {
            Send(&stModem, 8, u32Kind, aucInterval, 0);
        }
        Send(&stModem, 17, 1, aucInterval, sizeof aucInterval);
        Send(&stModem, 27, 2, aucInterval, 0);
        Send(&stModem, 31, 2, aucInterval, 0);
    }
    uint64_t u64Messages = 0;
    long iAfterOne = 0;
    const double fBegan = Used();
    for (int i = 1; i <= iSeconds * 10; ++i) {
        stModem.AdvanceTo(i * (i64Second / 10));
        u64Messages += Take(&stModem);
        if (i == 600) {
            iAfterOne = Resident();
        }
    }
    const double fTook = Used() - fBegan;
    const TrafficTotals stTotals = stModem.UserTraffic().Totals();
    const unsigned long long u64PDUs = stTotals.stDownlink.u64PDUs + stTotals.stUplink.u64PDUs;
    std::printf("%-28s %6.0f times real time, %8.0f messages/s, %llu PDUs, resident %ld KB after "
                "one minute, %ld KB after ten\n",
                pcName, iSeconds / fTook, static_cast<double>(u64Messages) / fTook, u64PDUs,
                iAfterOne, Resident());
}

void Sends(const std::string &strScenario) {
    constexpr int iSends = 1000000;
    WholeModem stModem(Scenario::FromText(strScenario, "bench"));
    const double fBegan = Used();
    for (int i = 0; i < iSends; ++i) {
        uint8_t aucStatus[] = {2, 0, 3, 0};
        (void)stModem.Send(aucStatus, sizeof aucStatus);
        stModem.AdvanceTo(stModem.Now());
        (void)Take(&stModem);
    }
    std::printf("%-28s %.2f us a send with its answer\n", "status requests",
                (Used() - fBegan) * 1e6 / iSends);
}

} // namespace

int main() {
    const std::string strVarying = pcMapsInEveryFrame + std::string("variation = 2\n");
    Live("maps in every frame", strVarying, false);
    Live("four loaded flows, all on", strVarying + pcFlows, true);
    Sends(strVarying);
}
