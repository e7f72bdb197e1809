// The client's console and device, as its decoders find them here: nothing is read, sent or waited
// for, and what is printed is kept.
#ifndef CLIENT_CONSOLE_H
#define CLIENT_CONSOLE_H

#include <string_view>

// What was printed since the last drop; good until something is printed again.
std::string_view ConsoleText();
void DropConsoleText();

#endif
