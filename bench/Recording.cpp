// What recording costs for each message of the modem: the processor time until the callback, which
// does nothing here, has returned to the library, with the recorder and without it. The recording
// goes to the working directory. Run it where libqor020record.so lies.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "DiagnosticRecords.h"
#include "Wire.h"

namespace {

constexpr const char *pcRecorder = "./libqor020record.so";
constexpr const char *pcRecording = "bench_recording.pcapng";
constexpr uint32_t u32Messages = 20000;
constexpr int iRounds = 15;
// A traced message of 60 bytes, one of 1000, and a record filled to its end.
constexpr uint32_t au32Bodies[] = {60, 1000, 10000};

uint32_t Callback(uint32_t /*u32Context*/, const WiMAXMessage * /*pstMessage*/,
                  uint32_t /*u32Length*/) {
    return 0;
}

// Of this process, in nanoseconds.
double ProcessorTime() {
    timespec stTime{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stTime);
    return static_cast<double>(stTime.tv_sec) * 1e9 + static_cast<double>(stTime.tv_nsec);
}

void MeasureMessages(uint32_t u32Body) {
    WiMAXMessage stMessage{};
    Put(BytesOf(stMessage), MessageHeader::usType, TYPE_MAC_MGMT);
    Put(BytesOf(stMessage), MessageHeader::usSubType, SUBTYPE_MAC_MGMT_TRACE_IND);
    Put(PayloadOf(stMessage), TraceRecord::s32BodyLength, u32Body);
    std::memset(stMessage.aucData + TraceRecord::aucBody, 0x5A, u32Body);
    const uint32_t hDevice = OpenWiMAXDevice();
    RegisterCallback(hDevice, Callback, 0);
    SendWiMAXMessage(hDevice, &stMessage, MessageHeader::Size + TraceRecord::aucBody + u32Body);
    std::vector<double> adNanoseconds;
    for (int i = 0; i < iRounds; ++i) {
        const double dBegin = ProcessorTime();
        rdm(0, nullptr, u32Messages);
        adNanoseconds.push_back((ProcessorTime() - dBegin) / u32Messages);
    }
    std::sort(adNanoseconds.begin(), adNanoseconds.end());
    std::printf("%8.0f ns at best, %8.0f ns median", adNanoseconds.front(),
                adNanoseconds[iRounds / 2]);
}

void RunItself(const char *pcProgram, uint32_t u32Body) {
    std::string strProgram = pcProgram;
    std::string strBody = std::to_string(u32Body);
    char *apcArguments[] = {strProgram.data(), strBody.data(), nullptr};
    pid_t iChild = 0;
    if (posix_spawn(&iChild, "/proc/self/exe", nullptr, nullptr, apcArguments, environ) != 0) {
        std::perror(pcProgram);
        std::exit(1);
    }
    waitpid(iChild, nullptr, 0);
}

} // namespace

int main(int iArguments, char **ppcArguments) {
    if (iArguments > 1) {
        MeasureMessages(static_cast<uint32_t>(std::strtoul(ppcArguments[1], nullptr, 10)));
        return 0;
    }
    std::printf("a message through the callback, %u messages, %d times (goal: under 2000 ns)\n",
                u32Messages, iRounds);
    for (const uint32_t u32Body : au32Bodies) {
        for (const bool bRecorded : {false, true}) {
            if (bRecorded) {
                setenv("LD_PRELOAD", pcRecorder, 1);
                setenv("QOR020_RECORDING", pcRecording, 1);
            }
            std::printf("traced message of %5u bytes, %-12s", u32Body,
                        bRecorded ? "recorded:" : "not recorded:");
            std::fflush(stdout);
            RunItself(ppcArguments[0], u32Body);
            std::printf("\n");
            unsetenv("LD_PRELOAD");
            unsetenv("QOR020_RECORDING");
            unlink(pcRecording);
        }
    }
    return 0;
}
