// What recording costs for each message of the modem: the processor time until the callback, which
// does nothing here, has returned to the library. Beside it, as a measure, one bare write of as
// many bytes. Both files are in the working directory. Run it where libqor020record.so lies.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "DiagnosticRecords.h"
#include "Wire.h"

namespace {

constexpr const char *pcRecorder = "./libqor020record.so";
constexpr const char *pcRecording = "bench_recording.pcapng";
constexpr const char *pcBareFile = "bench_bare_write";
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

// Prints what each message took.
template <typename Run> void Measure(const char *pcWhat, Run fnRun) {
    std::vector<double> adNanoseconds;
    for (int i = 0; i < iRounds; ++i) {
        const double dBegin = ProcessorTime();
        fnRun();
        adNanoseconds.push_back((ProcessorTime() - dBegin) / u32Messages);
    }
    std::sort(adNanoseconds.begin(), adNanoseconds.end());
    std::printf("%s %.0f ns at best, %.0f ns median", pcWhat, adNanoseconds.front(),
                adNanoseconds[iRounds / 2]);
    std::fflush(stdout);
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
    Measure("recorded", [] { rdm(0, nullptr, u32Messages); });
    CloseWiMAXDevice();
}

void MeasureBareWrites() {
    const uintmax_t uBytes =
        std::filesystem::file_size(pcRecording) / (uintmax_t{iRounds} * u32Messages);
    const std::vector<char> acBytes(uBytes);
    const int iFile = open(pcBareFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    Measure("bare write", [&] {
        for (uint32_t i = 0; i < u32Messages; ++i) {
            if (write(iFile, acBytes.data(), acBytes.size()) < 0) {
                std::perror(pcBareFile);
                std::exit(1);
            }
        }
    });
    std::printf(" of %ju bytes", uBytes);
    close(iFile);
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
        std::printf("traced message of %5u bytes: ", u32Body);
        std::fflush(stdout);
        setenv("LD_PRELOAD", pcRecorder, 1);
        setenv("QOR020_RECORDING", pcRecording, 1);
        RunItself(ppcArguments[0], u32Body);
        unsetenv("LD_PRELOAD");
        unsetenv("QOR020_RECORDING");
        std::printf("; ");
        MeasureBareWrites();
        std::printf("\n");
        std::filesystem::remove(pcRecording);
        std::filesystem::remove(pcBareFile);
    }
    return 0;
}
