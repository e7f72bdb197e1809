// The console: standard output written in whole reports, one input stream that
// two threads read, and the ways in which the client ends.
#ifndef CONSOLE_H
#define CONSOLE_H

#include <cstdint>
#include <string>
#include <string_view>

// Thrown on the main thread when the client has to end: the input has ended, a
// signal came, or nobody reads the output any more.
struct ClientEnd {
    int iExitStatus;
};

// What this thread has put and not yet flushed. Printers may append to it.
inline std::string &PendingOutput() {
    thread_local std::string strPending;
    return strPending;
}

// Text is collected per thread and reaches the output as one piece with
// FlushOutput; a piece is never interrupted by the other thread's.
inline void PutText(std::string_view strText) { PendingOutput() += strText; }
// The text and a line end, as puts does.
void PutLine(std::string_view strText);
[[gnu::format(printf, 1, 2)]] void PutFormat(const char *pcFormat, ...);
void FlushOutput();

// Makes the console ready: standard descriptors open, signals caught. Call it
// first, before the device library can start threads. Called again when no
// other thread uses the console, it begins anew.
void OpenConsole();

// The next character of the input, for the menus: waits for it, gives way to a
// decoder that waits for a key, and returns -1 at the end of the input, then
// and ever after. Throws ClientEnd on a signal or when the output is gone.
int NextInputChar();
// Gives one character back: it is the next one of the stream, for whoever
// reads next. Only the character returned last can be given back.
void PushBackInputChar(int iChar);

// For decoders, on the library's thread: flushes the output and waits for the
// next character of the stream, whatever it is. Returns it, or -1 when the
// input has ended or the client is ending.
int WaitForKey();
// For decoders that wait for several keys: as long as one of these lives, the
// menus leave the input alone, between the keys too.
struct KeyTurn {
    KeyTurn();
    ~KeyTurn();
    KeyTurn(const KeyTurn &) = delete;
    KeyTurn &operator=(const KeyTurn &) = delete;
};

// Sleeps, on either thread. A sleep ends early when the client is ending or
// nobody reads the output any more.
void PauseMicroseconds(uint32_t u32Microseconds);

// Releases decoders that wait for a key. Call it before the device is closed
// for good.
void BeginLeaving();

// The signal that ends the client (SIGPIPE when the output is gone), or 0.
int EndingSignal();
// True once a signal has come or the client is leaving.
bool IsEnding();
// Throws ClientEnd with 128 + the signal's number when one has come.
void EndIfSignalled();

#endif
