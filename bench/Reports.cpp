// Decoding and printing every type of message, beside two references: writing
// the same bytes with one write, and printing them the plain way (Plain.h). To
// the null device and to a file.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "Console.h"
#include "Dispatcher.h"
#include "Messages.h"

namespace {

// Few iterations, many repetitions in random order: the best of them is what a
// busy machine hides the least.
constexpr int iIterations = 100;
constexpr const char *apcDefaults[] = {
    "--benchmark_repetitions=15",
    "--benchmark_enable_random_interleaving=true",
};

[[noreturn]] void Fail(const char *pcWhat) {
    perror(pcWhat);
    std::exit(1);
}

// Where the reports go.
struct Target {
    const char *pcName;
    int iDescriptor;
    FILE *pstPlain; // the same, for the plain way
};

Target OpenTarget(const char *pcName, int iDescriptor) {
    FILE *pstPlain = iDescriptor < 0 ? nullptr : fdopen(dup(iDescriptor), "a");
    if (pstPlain == nullptr) {
        Fail(pcName);
    }
    return {pcName, iDescriptor, pstPlain};
}

Target OpenNullDevice() { return OpenTarget("null", open("/dev/null", O_WRONLY)); }

// A file that is gone when this ends.
Target OpenFile() {
    const char *pcDirectory = getenv("TMPDIR");
    std::string strPath =
        std::string(pcDirectory != nullptr ? pcDirectory : "/tmp") + "/bench_reports.XXXXXX";
    const int iFile = mkostemp(strPath.data(), O_APPEND);
    unlink(strPath.c_str());
    return OpenTarget("file", iFile);
}

// The console's output from now on.
void Redirect(int iDescriptor) {
    if (dup2(iDescriptor, STDOUT_FILENO) < 0) {
        Fail("dup2");
    }
    OpenConsole();
}

void PutReport(const BenchMessage &stMessage) {
    TVLCallback(0, &stMessage.stMessage, stMessage.u32Length);
}

// What the client prints for the message.
std::string ReportOf(const BenchMessage &stMessage) {
    const int iMemory = memfd_create("report", 0);
    Redirect(iMemory);
    PutReport(stMessage);
    std::string strText(static_cast<size_t>(lseek(iMemory, 0, SEEK_END)), '\0');
    if (pread(iMemory, strText.data(), strText.size(), 0) != std::ssize(strText)) {
        Fail("reading a report back");
    }
    close(iMemory);
    return strText;
}

std::string PlainReportOf(const BenchMessage &stMessage) {
    char *pcText = nullptr;
    size_t uSize = 0;
    FILE *pstFile = open_memstream(&pcText, &uSize);
    if (pstFile == nullptr) {
        Fail("open_memstream");
    }
    PutPlain(pstFile, stMessage.Payload(), stMessage.astPlain);
    fclose(pstFile);
    std::string strText(pcText, uSize);
    free(pcText);
    return strText;
}

// The three ways to get one report out.
void MeasureReport(benchmark::State &stState, const BenchMessage *pstMessage, const Target *pst) {
    Redirect(pst->iDescriptor);
    for ([[maybe_unused]] auto iteration : stState) {
        PutReport(*pstMessage);
    }
}

void MeasurePlain(benchmark::State &stState, const BenchMessage *pstMessage, const Target *pst) {
    for ([[maybe_unused]] auto iteration : stState) {
        PutPlain(pst->pstPlain, pstMessage->Payload(), pstMessage->astPlain);
        fflush(pst->pstPlain);
    }
}

void MeasureWrite(benchmark::State &stState, const std::string *pstrText, const Target *pst) {
    for ([[maybe_unused]] auto iteration : stState) {
        if (write(pst->iDescriptor, pstrText->data(), pstrText->size()) < 0) {
            stState.SkipWithError("write");
            break;
        }
    }
}

// Begins every repetition with an empty file.
template <typename Measure>
void Register(const std::string &strName, const Target &stTarget, Measure Run) {
    benchmark::RegisterBenchmark(strName.c_str(), [&stTarget, Run](benchmark::State &stState) {
        // The null device has no length to set.
        [[maybe_unused]] const int iResult = ftruncate(stTarget.iDescriptor, 0);
        Run(stState);
    })->Iterations(iIterations);
}

// Keeps the best repetition of each benchmark, for a table of ratios.
struct BestReporter : benchmark::BenchmarkReporter {
    std::map<std::string, double> Best; // nanoseconds of processor time a report

    bool ReportContext(const Context & /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const std::string strName = run.run_name.function_name;
                const double dTime = run.GetAdjustedCPUTime();
                const auto [it, bNew] = Best.try_emplace(strName, dTime);
                it->second = std::min(it->second, dTime);
            }
        }
    }
};

std::string NameOf(const BenchMessage &stMessage, const Target &stTarget, const char *pcWay) {
    return std::string(stMessage.pcName) + "/" + stTarget.pcName + "/" + pcWay;
}

} // namespace

int main(int argc, char **argv) {
    FILE *pstResults = fdopen(dup(STDOUT_FILENO), "w");
    const Target astTargets[] = {OpenNullDevice(), OpenFile()};
    const std::vector<BenchMessage> astMessages = BenchMessages();
    std::vector<std::string> astrTexts;
    for (const BenchMessage &stMessage : astMessages) {
        astrTexts.push_back(ReportOf(stMessage));
        if (const std::string strPlain = PlainReportOf(stMessage); strPlain != astrTexts.back()) {
            fprintf(stderr, "%s: the plain report differs\n--- report\n%s\n--- plain\n%s\n",
                    stMessage.pcName, astrTexts.back().c_str(), strPlain.c_str());
            return 1;
        }
    }
    for (size_t i = 0; i < astMessages.size(); ++i) {
        const BenchMessage *pstMessage = &astMessages[i];
        const std::string *pstrText = &astrTexts[i];
        for (const Target &stTarget : astTargets) {
            const Target *pst = &stTarget;
            Register(NameOf(*pstMessage, stTarget, "report"), stTarget,
                     [=](benchmark::State &stState) { MeasureReport(stState, pstMessage, pst); });
            Register(NameOf(*pstMessage, stTarget, "plain"), stTarget,
                     [=](benchmark::State &stState) { MeasurePlain(stState, pstMessage, pst); });
            Register(NameOf(*pstMessage, stTarget, "write"), stTarget,
                     [=](benchmark::State &stState) { MeasureWrite(stState, pstrText, pst); });
        }
    }
    // What the user gives comes last and wins.
    std::vector<char *> apcArguments{argv[0]};
    for (const char *pcDefault : apcDefaults) {
        apcArguments.push_back(const_cast<char *>(pcDefault));
    }
    apcArguments.insert(apcArguments.end(), argv + 1, argv + argc);
    int iArguments = static_cast<int>(apcArguments.size());
    benchmark::Initialize(&iArguments, apcArguments.data());
    BestReporter stReporter;
    benchmark::RunSpecifiedBenchmarks(&stReporter);

    // The table of docs/benchmarks.md.
    fprintf(pstResults, "| Message (type.subtype) | Bytes | Plain / report, null device "
                        "| Report / bare write, null device | Plain / report, file "
                        "| Report / bare write, file | Report, file (ns) |\n"
                        "|---|---|---|---|---|---|---|\n");
    for (size_t i = 0; i < astMessages.size(); ++i) {
        const auto Best = [&](size_t uTarget, const char *pcWay) {
            return stReporter.Best[NameOf(astMessages[i], astTargets[uTarget], pcWay)];
        };
        if (Best(0, "report") == 0 && Best(1, "report") == 0) {
            continue; // filtered out
        }
        fprintf(pstResults, "| %s | %zu | %.2f | %.2f | %.2f | %.2f | %.0f |\n",
                astMessages[i].pcName, astrTexts[i].size(), Best(0, "plain") / Best(0, "report"),
                Best(0, "report") / Best(0, "write"), Best(1, "plain") / Best(1, "report"),
                Best(1, "report") / Best(1, "write"), Best(1, "report"));
    }
    fclose(pstResults);
    return 0;
}
