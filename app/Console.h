// The console: the output (Output.h), one input stream that two threads read,
// and pauses. Everything that waits here ends when the client does (Ending.h).
#ifndef CONSOLE_H
#define CONSOLE_H

#include <cstdint>

#include "Ending.h"
#include "Output.h"

// Makes the console ready: standard descriptors open, signals caught. Call it
// first, before the device library can start threads. Called again when no
// other thread uses the console, it begins anew.
void OpenConsole();
// Leaves it: reports under way end, the descriptors are as they were.
void CloseConsole();

// The next character of the input, for the menus: waits for it, gives way to a
// decoder that waits for a key, and returns -1 at the end of the input, then
// and ever after. Throws ClientEnd when the client has been told to end.
int NextInputChar();
// The next character if there is one at hand, iNoInputChar if not.
inline constexpr int iNoInputChar = -2;
int TakeInputChar();
// Gives one character back: it is the next one of the stream, for whoever
// reads next. Only the character returned last can be given back.
void PushBackInputChar(int iChar);
// The character that was given back and not read again, iNoInputChar if none.
int PushedBackInputChar();

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

#endif
