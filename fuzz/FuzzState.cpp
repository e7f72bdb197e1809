// A state file of any bytes: it is refused with its reason, or the modem starts
// with it.
#include "Files.h"
#include "library/WholeModem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    const ModemFile stState({reinterpret_cast<const char *>(pucBytes), uCount});
    try {
        const WholeModem stModem(Scenario::FromText("[state]\nfile = \"state\"\n", "scenario"));
    } catch (const ScenarioError &) {
        return 0;
    }
    return 0;
}
