// TarvelWiMAXMonitor: shows a recorded session.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Filter.h"
#include "JSON.h"
#include "Page.h"
#include "Progress.h"
#include "Reader.h"
#include "Scrub.h"
#include "Summary.h"
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

bool WantsProgress(const Options &stOptions, uint64_t u64Size) {
    // On one terminal it would stand in the middle of the text.
    const bool bApart = stOptions.eForm == OutputForm::Summary || !stOptions.strOutput.empty() ||
                        isatty(STDOUT_FILENO) == 0;
    return bApart && isatty(STDERR_FILENO) != 0 && !stOptions.bFollow && u64Size >= u64LongFile;
}

// Hands every event to fnTake, and flushes the output whenever there is nothing to do. Returns the
// exit status, after a line on what was wrong.
template <typename Function>
int TakeEvents(const Options &stOptions, Writer *pstWriter, Function fnTake) {
    const auto MayGoOn = [=] { return giSignal == 0 && pstWriter->iError == 0; };
    RecordingReader stReader(stOptions.strFile, {stOptions.bFollow, [=] {
                                                     pstWriter->Flush();
                                                     return MayGoOn();
                                                 }});
    Progress stProgress(WantsProgress(stOptions, stReader.Size()));
    Event stEvent;
    while (MayGoOn() && stReader.Next(&stEvent)) {
        fnTake(stEvent);
        stProgress.Show(stReader.Position(), stReader.Size());
    }
    stProgress.Clear();
    if (!stReader.Problem().empty()) {
        Complain((stOptions.strFile == "-" ? "standard input" : stOptions.strFile) + ": " +
                 stReader.Problem());
        return iDamaged;
    }
    return giSignal != 0 ? 128 + giSignal : 0;
}

// Writes what is left; the exit status.
int Finish(Writer *pstWriter, const std::string &strName, int iStatus) {
    pstWriter->Flush();
    if (pstWriter->iError != 0) {
        Complain(strName + ": " + std::strerror(pstWriter->iError));
        return iDamaged;
    }
    return iStatus;
}

int Show(const Options &stOptions) {
    Writer stWriter(STDOUT_FILENO);
    const TextStyle stStyle{stOptions.bFields, stOptions.bRaw, WantsColours()};
    Session stSession;
    Summary stSummary;
    Filter stFilter(stOptions.stFilter);
    const int iStatus = TakeEvents(stOptions, &stWriter, [&](const Event &stEvent) {
        const Entry stEntry = stSession.Follow(stEvent);
        if (!stFilter.Shows(stEntry)) {
            return;
        }
        if (stOptions.eForm == OutputForm::JSON) {
            PutJSONEntry(stWriter, stOptions.bRaw, stEntry);
        } else if (stOptions.eForm == OutputForm::Summary) {
            stSummary.Add(stEntry);
        } else {
            PutEntry(stWriter, stStyle, stEntry);
        }
    });
    if (stOptions.eForm == OutputForm::Summary) {
        stSummary.Put(stWriter, stSession);
    }
    return Finish(&stWriter, "standard output", iStatus);
}

bool IsSameFile(const std::string &strFirst, const std::string &strSecond) {
    struct stat stFirst {};
    struct stat stSecond {};
    return stat(strFirst.c_str(), &stFirst) == 0 && stat(strSecond.c_str(), &stSecond) == 0 &&
           stFirst.st_dev == stSecond.st_dev && stFirst.st_ino == stSecond.st_ino;
}

// A file that only its owner can read, in the place of the standard output.
template <typename Function> int WriteFile(const Options &stOptions, Function fnWrite) {
    constexpr mode_t uOwnerOnly = 0600;
    if (IsSameFile(stOptions.strFile, stOptions.strOutput)) {
        Complain(stOptions.strOutput + ": the recording itself");
        return iWrongArguments;
    }
    const int iFile =
        open(stOptions.strOutput.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, uOwnerOnly);
    if (iFile < 0) {
        Complain(stOptions.strOutput + ": " + std::strerror(errno));
        return iDamaged;
    }
    Writer stWriter(iFile);
    const int iStatus = fnWrite(&stWriter);
    const int iFinished = Finish(&stWriter, stOptions.strOutput, iStatus);
    (void)close(iFile);
    return iFinished;
}

int Scrub(const Options &stOptions, Writer *pstWriter) {
    ScrubbedFile stFile(pstWriter);
    Scrubber stScrubber{Pseudonyms()};
    return TakeEvents(stOptions, pstWriter,
                      [&](const Event &stEvent) { stFile.Add(stScrubber.Scrubbed(stEvent)); });
}

int Draw(const Options &stOptions, Writer *pstWriter) {
    Session stSession;
    Filter stFilter(stOptions.stFilter);
    Page stPage;
    const int iStatus = TakeEvents(stOptions, pstWriter, [&](const Event &stEvent) {
        const Entry stEntry = stSession.Follow(stEvent);
        if (stFilter.Shows(stEntry)) {
            stPage.Add(stEntry);
        }
    });
    const size_t uName = stOptions.strFile.rfind('/') + 1; // the path is nobody's business
    stPage.Put(*pstWriter, stOptions.strFile.substr(uName));
    return iStatus;
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
    if (stOptions.eForm == OutputForm::Scrub || stOptions.eForm == OutputForm::Page) {
        return WriteFile(stOptions, [&](Writer *pstWriter) {
            return stOptions.eForm == OutputForm::Scrub ? Scrub(stOptions, pstWriter)
                                                        : Draw(stOptions, pstWriter);
        });
    }
    return Show(stOptions);
}
