// Recordings of any content: what the monitor makes of their events in each of its forms, and that
// a copy which is given away has as many of them, with the same lengths.
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "Filter.h"
#include "JSON.h"
#include "Reader.h"
#include "Scrub.h"
#include "Summary.h"
#include "Text.h"

namespace {

// A file in memory.
struct MemoryFile {
    MemoryFile() : iFile(memfd_create("recording", 0)) {
        if (iFile < 0) {
            std::abort();
        }
    }
    ~MemoryFile() { close(iFile); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(iFile); }

    int iFile;
};

struct Length {
    EventKind eKind;
    uint32_t u32Bytes;

    friend bool operator==(const Length &, const Length &) = default;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    const MemoryFile stInput;
    const MemoryFile stCopy;
    if (write(stInput.iFile, pucBytes, uCount) != static_cast<ssize_t>(uCount)) {
        std::abort();
    }
    static const int iNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
    static Writer stWriter(iNull);
    Writer stCopyWriter(stCopy.iFile);
    ScrubbedFile stScrubbedFile(&stCopyWriter);
    Scrubber stScrubber{Pseudonyms({1, 2})};
    Session stSession;
    Summary stSummary;
    Filter stFilter({});
    std::vector<Length> astLengths;
    RecordingReader stReader(stInput.Path());
    Event stEvent;
    while (stReader.Next(&stEvent)) {
        const Entry stEntry = stSession.Follow(stEvent);
        if (stFilter.Shows(stEntry)) {
            PutEntry(stWriter, {true, true, true}, stEntry);
            PutJSONEntry(stWriter, true, stEntry);
            stSummary.Add(stEntry);
        }
        stScrubbedFile.Add(stScrubber.Scrubbed(stEvent));
        astLengths.push_back({stEvent.eKind, stEvent.stBytes.u32Length});
    }
    stSummary.Put(stWriter, stSession);
    stWriter.Flush();
    stCopyWriter.Flush();
    if (astLengths.empty()) {
        return 0;
    }
    RecordingReader stCopyReader(stCopy.Path());
    for (const Length &stLength : astLengths) {
        if (!stCopyReader.Next(&stEvent) ||
            stLength != Length{stEvent.eKind, stEvent.stBytes.u32Length}) {
            std::abort();
        }
    }
    if (stCopyReader.Next(&stEvent) || !stCopyReader.Problem().empty()) {
        std::abort();
    }
    return 0;
}
