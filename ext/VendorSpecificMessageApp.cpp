#include "VendorSpecificMessageApp.h"

#include <iterator>

#include <sys/select.h>
#include <unistd.h>

#include "Report.h"

namespace {

struct ExtendedEntry {
    const char *pcText;
    void (*pfnHandle)();
};

constexpr ExtendedEntry astEntries[] = {
    {"\n%d. AUTH REQUESTS", nullptr},
    {"\n%d. TEST EEPROM", nullptr},
};

} // namespace

void DisplayExMenu(int32_t iLastEntry) {
    for (const ExtendedEntry &stEntry : astEntries) {
        PutNumber(stEntry.pcText, static_cast<uint32_t>(++iLastEntry));
    }
}

uint32_t ProcessExChoice(int32_t iBase, int32_t iChoice) {
    const int64_t iIndex = int64_t{iChoice} - iBase - 1;
    if (iIndex < 0 || iIndex >= std::ssize(astEntries)) {
        return 0;
    }
    if (astEntries[iIndex].pfnHandle != nullptr) {
        astEntries[iIndex].pfnHandle();
    }
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
