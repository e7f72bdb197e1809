// A whole run of the client: a person who types anything, on a modem and an
// operating system that do anything.
#include <algorithm>

#include "Client.h"
#include "Stage.h"
#include "VendorSpecificMessageApp.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    Stage::Begin({pucBytes, static_cast<uint32_t>(uCount)});
    Stage::RunClientWith(Stage::Next(StepKind::Extended) != nullptr ? RunExtendedMenu
                                                                    : RunMainMenu);
    return 0;
}
