// Standard output, written in whole reports. What a thread prints is collected
// in a buffer and reaches the output as one piece when it is flushed. Nothing
// here allocates: a report longer than the buffer is written in parts, and the
// other threads wait until its end.
#ifndef OUTPUT_H
#define OUTPUT_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

struct OutputBuffer {
    static constexpr size_t Size = 65536;

    char acText[Size];
    size_t uUsed = 0;
    bool bHasOutput = false; // a part of the report is written already
    // Those of its thread under way: more than one where the library calls back
    // from within a call.
    uint32_t u32Reports = 0;
    std::atomic_flag Taken;
};

// The buffer of this thread while it has put anything and not flushed it, or a
// report is under way.
extern constinit thread_local OutputBuffer *gpstOutput;

// How much room can be asked for at once.
inline constexpr size_t uMostRoom = OutputBuffer::Size / 2;
// Gets a buffer for this thread, or makes room in it.
void MakeOutputRoom();

// Room for uBytes more characters behind what this thread has put.
inline char *OutputRoom(size_t uBytes) {
    if (gpstOutput == nullptr || OutputBuffer::Size - gpstOutput->uUsed < uBytes) {
        MakeOutputRoom();
    }
    return gpstOutput->acText + gpstOutput->uUsed;
}
// What was written there, up to pcEnd, has been put.
inline void EndOutputAt(const char *pcEnd) {
    gpstOutput->uUsed = static_cast<size_t>(pcEnd - gpstOutput->acText);
}

// A text for which one room is enough, or too small.
inline void PutShortText(std::string_view strText) {
    char *pcRoom = OutputRoom(strText.size());
    std::memcpy(pcRoom, strText.data(), strText.size());
    EndOutputAt(pcRoom + strText.size());
}
void PutLongText(std::string_view strText);
// Inline, because the length of most texts is known when the program is
// compiled.
inline void PutText(std::string_view strText) {
    if (strText.size() > uMostRoom) {
        PutLongText(strText);
    } else if (!strText.empty()) {
        PutShortText(strText);
    }
}
// The text and a line end, as puts does.
inline void PutLine(std::string_view strText) {
    if (strText.empty() || strText.size() >= uMostRoom) {
        PutText(strText);
        PutText("\n");
        return;
    }
    char *pcRoom = OutputRoom(strText.size() + 1);
    std::memcpy(pcRoom, strText.data(), strText.size());
    pcRoom[strText.size()] = '\n';
    EndOutputAt(pcRoom + strText.size() + 1);
}
[[gnu::format(printf, 1, 2)]] void PutFormat(const char *pcFormat, ...);
// Writes what this thread has put, in turn with the other threads. Lost when
// the client ends and the output does not take it.
void FlushOutput();

// What this thread has put and is not yet written; forgets it.
std::string_view PendingOutput();
void DropPendingOutput();

// End the client with status 141 when nobody reads the output any more: by what
// a poll says of descriptor 1, or by a look at it.
void HeedOutput(int iEvents);
void LookAtOutput();
// Throws ClientEnd when nothing can be written any more: for whoever prints
// without end.
void EndIfOutputClosed();

// Around a report, on the thread that prints it: false when the client has
// closed its output, and nothing may be printed any more. EndReport flushes.
bool BeginReport();
void EndReport();
// Waits, not long, for the reports under way and lets nothing through any more.
void CloseOutput();

// Makes the output ready. Call it on the menus' thread when no other one prints.
void OpenOutput();

#endif
