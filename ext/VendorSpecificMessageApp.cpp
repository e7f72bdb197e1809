#include "VendorSpecificMessageApp.h"

#include <iterator>

#include <sys/select.h>
#include <unistd.h>

#include "Authentication.h"
#include "Console.h"
#include "EEPROMTest.h"
#include "Input.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

struct ExtendedEntry {
    TextWith<1> stText;
    void (*pfnHandle)();
};

constexpr ExtendedEntry astEntries[] = {
    {"\n%d. AUTH REQUESTS", [] { AuthRequest(); }},
    {"\n%d. TEST EEPROM", [] { EEPROMTest(); }},
};

constexpr int32_t iFirstEntryBase = 0;

} // namespace

void DisplayExMenu(int32_t iLastEntry) {
    for (const ExtendedEntry &stEntry : astEntries) {
        PutNumber(stEntry.stText, static_cast<uint32_t>(++iLastEntry));
    }
}

uint32_t ProcessExChoice(int32_t iBase, int32_t iChoice) {
    const int64_t iIndex = int64_t{iChoice} - iBase - 1;
    if (iIndex < 0 || iIndex >= std::ssize(astEntries)) {
        return 0;
    }
    astEntries[iIndex].pfnHandle();
    return 1;
}

uint32_t MyKbHit() {
    fd_set stDescriptors;
    FD_ZERO(&stDescriptors);
    FD_SET(STDIN_FILENO, &stDescriptors);
    timeval stNoWait{0, 0};
    const int iReady = select(STDIN_FILENO + 1, &stDescriptors, nullptr, nullptr, &stNoWait);
    return iReady >= 0 && FD_ISSET(STDIN_FILENO, &stDescriptors) ? 1 : 0;
}

void RunExtendedMenu() {
    for (;;) {
        PutLine("\n******** EXTENDED MENU ********");
        DisplayExMenu(iFirstEntryBase);
        PutText("\n-1. EXIT FROM APPLICATION");
        PutLine("\n\n*******************************");
        const int32_t iChoice = AskOption(pcMenuPrompt);
        if (iChoice == iLeaveMenu) {
            return;
        }
        gbInsideSubMenu = 1;
        if (ProcessExChoice(iFirstEntryBase, iChoice) == 0) {
            PutText("\nSORRY!! INVALID OPTION!!");
        }
        gbInsideSubMenu = 0;
    }
}
