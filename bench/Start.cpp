// From the start of the client to its first prompt, on the simulated modem's
// default scenario: time, and the peak of the resident size. Run it where the
// client and libqor020.so lie.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr const char *pcClient = "./TarvelWiMAXApp";
constexpr const char *pcPrompt = "ENTER OPTION : ";
constexpr int iStarts = 30;

struct Start {
    double dMilliseconds;
    double dMegabytes;
};

[[noreturn]] void Fail(const char *pcWhat) {
    perror(pcWhat);
    std::exit(1);
}

// The peak of the resident size so far, in MB of 2^20 bytes.
double PeakOf(pid_t iChild) {
    std::ifstream stStatus("/proc/" + std::to_string(iChild) + "/status");
    for (std::string strWord; stStatus >> strWord;) {
        if (strWord == "VmHWM:") {
            double dKilobytes = 0;
            stStatus >> dKilobytes;
            return dKilobytes / 1024;
        }
    }
    return 0;
}

void ReadToPrompt(int iOutput) {
    std::string strText;
    while (!strText.ends_with(pcPrompt)) {
        char acText[4096];
        const ssize_t iCount = read(iOutput, acText, sizeof acText);
        if (iCount <= 0) {
            Fail("no prompt");
        }
        strText.append(acText, static_cast<size_t>(iCount));
    }
}

Start MeasureStart() {
    int aiInput[2];
    int aiOutput[2];
    if (pipe(aiInput) != 0 || pipe(aiOutput) != 0) {
        Fail("pipe");
    }
    posix_spawn_file_actions_t stActions;
    posix_spawn_file_actions_init(&stActions);
    posix_spawn_file_actions_adddup2(&stActions, aiInput[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&stActions, aiOutput[1], STDOUT_FILENO);
    for (const int iEnd : {aiInput[0], aiInput[1], aiOutput[0], aiOutput[1]}) {
        posix_spawn_file_actions_addclose(&stActions, iEnd);
    }
    std::string strName = pcClient;
    char *apcArguments[] = {strName.data(), nullptr};
    pid_t iChild = 0;
    const auto stBegin = std::chrono::steady_clock::now();
    if (posix_spawn(&iChild, pcClient, &stActions, nullptr, apcArguments, environ) != 0) {
        Fail(pcClient);
    }
    close(aiInput[0]);
    close(aiOutput[1]);
    ReadToPrompt(aiOutput[0]);
    const std::chrono::duration<double, std::milli> stTime =
        std::chrono::steady_clock::now() - stBegin;
    const double dMegabytes = PeakOf(iChild);
    posix_spawn_file_actions_destroy(&stActions);
    close(aiInput[1]); // the end of the input ends the client
    waitpid(iChild, nullptr, 0);
    close(aiOutput[0]);
    return {stTime.count(), dMegabytes};
}

} // namespace

int main() {
    unsetenv("QOR020_SCENARIO");
    std::vector<double> adMilliseconds;
    double dMegabytes = 0;
    for (int i = 0; i < iStarts; ++i) {
        const Start stStart = MeasureStart();
        adMilliseconds.push_back(stStart.dMilliseconds);
        dMegabytes = std::max(dMegabytes, stStart.dMegabytes);
    }
    std::sort(adMilliseconds.begin(), adMilliseconds.end());
    printf("start to first prompt, %d starts: %.1f ms at best, %.1f ms median (goal: under 10)\n",
           iStarts, adMilliseconds.front(), adMilliseconds[iStarts / 2]);
    printf("peak resident size at the prompt: %.1f MB at most (goal: under 8)\n", dMegabytes);
    return 0;
}
