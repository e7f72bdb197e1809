// The extended menu.
#ifndef VENDOR_SPECIFIC_MESSAGE_APP_H
#define VENDOR_SPECIFIC_MESSAGE_APP_H

#include <cstdint>

// Prints the extended entries, numbered from iLastEntry + 1.
void DisplayExMenu(int32_t iLastEntry);

// Carries the choice out when it is an extended entry, counted from iBase + 1.
// Returns 1 when it was, else 0.
uint32_t ProcessExChoice(int32_t iBase, int32_t iChoice);

// The extended menu alone, entries 1 and up, until choice -1.
void RunExtendedMenu();

// 1 when something is waiting on the standard input, else 0. Never waits.
uint32_t MyKbHit();

#endif
