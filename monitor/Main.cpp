// TarvelWiMAXMonitor: shows a recorded session.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "Filter.h"
#include "JSON.h"
#include "Progress.h"
#include "Reader.h"
#include "Text.h"

namespace {

constexpr int iDamaged = 1;
constexpr int iWrongArguments = 2;

volatile sig_atomic_t giSignal = 0;

void NoteSignal(int iSignal) { giSignal = iSignal; }

// A session that is followed ends with a signal, and what belongs to its end is still shown.
void CatchSignals() {
    struct sigaction stAction {};
    stAction.sa_handler = NoteSignal;
    stAction.sa_flags = static_cast<int>(SA_RESETHAND); // the second one ends it at once
    for (const int iSignal : {SIGINT, SIGTERM}) {
        (void)sigaction(iSignal, &stAction, nullptr);
    }
}

void Complain(const std::string &strText) {
    (void)std::fprintf(stderr, "TarvelWiMAXMonitor: %s\n", strText.c_str());
}

bool WantsColours() {
    const char *pcTerminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr &&
           pcTerminal != nullptr && std::strcmp(pcTerminal, "dumb") != 0;
}

int Show(const Options &stOptions) {
    Writer stWriter(STDOUT_FILENO);
    const auto MayGoOn = [&] {
        stWriter.Flush();
        return giSignal == 0 && stWriter.iError == 0;
    };
    RecordingReader stReader(stOptions.strFile, {stOptions.bFollow, MayGoOn});
    Progress stProgress(isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0 &&
                        !stOptions.bFollow && stReader.Size() >= u64LongFile);
    const TextStyle stStyle{stOptions.bFields, stOptions.bRaw, WantsColours()};
    Session stSession;
    Filter stFilter(stOptions.stFilter);
    Event stEvent;
    while (giSignal == 0 && stWriter.iError == 0 && stReader.Next(&stEvent)) {
        const Entry stEntry = stSession.Follow(stEvent);
        if (stFilter.Shows(stEntry)) {
            if (stOptions.eForm == OutputForm::JSON) {
                PutJSONEntry(stWriter, stOptions.bRaw, stEntry);
            } else {
                PutEntry(stWriter, stStyle, stEntry);
            }
        }
        stProgress.Show(stReader.Position(), stReader.Size());
    }
    stWriter.Flush();
    stProgress.Clear();
    if (stWriter.iError != 0) {
        Complain(std::string("standard output: ") + std::strerror(stWriter.iError));
        return iDamaged;
    }
    if (!stReader.Problem().empty()) {
        Complain(stOptions.strFile + ": " + stReader.Problem());
        return iDamaged;
    }
    return giSignal != 0 ? 128 + giSignal : 0;
}

} // namespace

int main(int argc, char **argv) {
    Options stOptions;
    const std::string strWrong =
        ReadOptions(std::vector<std::string>(argv + 1, argv + argc), &stOptions);
    if (!strWrong.empty()) {
        Complain(strWrong + " (--help explains)");
        return iWrongArguments;
    }
    if (stOptions.bHelp) {
        (void)std::fputs(pcUsage, stdout);
        return 0;
    }
    CatchSignals();
    return Show(stOptions);
}
