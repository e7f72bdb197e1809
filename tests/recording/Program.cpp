// A program that uses the device library in ways that the client does not. Its first argument says
// which.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "WiMAXDevice.h"

namespace {

void Send(uint8_t u8Type) {
    WiMAXMessage stMessage{};
    std::memcpy(&stMessage, &u8Type, sizeof u8Type);
    SendWiMAXMessage(1, &stMessage, WIMAX_HEADER_SIZE);
}

void Run(const char *pcProgram, const std::vector<const char *> &apcArguments) {
    std::vector<char *> apcAll{const_cast<char *>(pcProgram)};
    for (const char *pcArgument : apcArguments) {
        apcAll.push_back(const_cast<char *>(pcArgument));
    }
    apcAll.push_back(nullptr);
    pid_t iChild = 0;
    if (posix_spawn(&iChild, pcProgram, nullptr, nullptr, apcAll.data(), environ) != 0) {
        std::perror(pcProgram);
        std::exit(1);
    }
    waitpid(iChild, nullptr, 0);
}

// A child that goes on by itself, a program that uses a device, too, and this one goes on.
void Children() {
    OpenWiMAXDevice();
    const pid_t iChild = fork();
    if (iChild == 0) {
        Send(101);
        _exit(0);
    }
    waitpid(iChild, nullptr, 0);
    Run("/proc/self/exe", {"one-send"});
    Send(103);
    CloseWiMAXDevice();
}

void OneSend() {
    OpenWiMAXDevice();
    Send(102);
    CloseWiMAXDevice();
}

// The program in its own place uses the device as well.
void Replaced() {
    OneSend();
    execl("/proc/self/exe", "replaced", "one-send", nullptr);
}

void Descriptors() {
    OpenWiMAXDevice();
    std::fflush(stdout);
    Run("/bin/ls", {"-l", "/proc/self/fd"});
}

void LongRead() {
    std::vector<uint8_t> aucBytes(300000);
    OpenWiMAXDevice();
    const int32_t iResult = rdm(0x1000, aucBytes.data(), static_cast<uint32_t>(aucBytes.size()));
    std::printf("%d %u %u\n", iResult, aucBytes.front(), aucBytes.back());
    CloseWiMAXDevice();
}

void KeepsErrno() {
    constexpr int iAnyError = 77;
    const uint32_t u32Word = 0x12345678;
    OpenWiMAXDevice();
    errno = iAnyError;
    wrm(0, &u32Word, sizeof u32Word);
    std::printf("%d\n", errno);
    CloseWiMAXDevice();
}

template <int iCallback>
uint32_t Callback(uint32_t u32Context, const WiMAXMessage * /*pstMessage*/, uint32_t u32Length) {
    std::printf("callback %d, context %u, length %u\n", iCallback, u32Context, u32Length);
    return iCallback;
}

template <int... aiCallback> void RegisterEach(std::integer_sequence<int, aiCallback...>) {
    for (const WiMAXCallback pfnCallback : {Callback<aiCallback>...}) {
        static uint32_t u32Context = 40;
        RegisterCallback(1, pfnCallback, u32Context++);
        Send(104);
    }
}

// More functions than the recorder has places for.
void ManyCallbacks() {
    OpenWiMAXDevice();
    RegisterEach(std::make_integer_sequence<int, 10>());
    RegisterCallback(1, nullptr, 0);
    CloseWiMAXDevice();
}

// The library writes into the record behind what was sent.
void WriteBack() {
    WiMAXMessage stMessage{};
    OpenWiMAXDevice();
    SendWiMAXMessage(1, &stMessage, WIMAX_HEADER_SIZE);
    SendWiMAXMessage(1, nullptr, 8);
    CloseWiMAXDevice();
}

} // namespace

int main(int iArguments, char **ppcArguments) {
    const std::pair<const char *, void (*)()> astWays[] = {
        {"children", Children},       {"one-send", OneSend},     {"replaced", Replaced},
        {"descriptors", Descriptors}, {"long-read", LongRead},   {"errno", KeepsErrno},
        {"callbacks", ManyCallbacks}, {"write-back", WriteBack},
    };
    for (const auto &[pcName, pfnWay] : astWays) {
        if (iArguments > 1 && std::strcmp(ppcArguments[1], pcName) == 0) {
            pfnWay();
            return 0;
        }
    }
    return 2;
}
