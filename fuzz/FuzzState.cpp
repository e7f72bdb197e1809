// A state file of any bytes: it is refused with its reason, or the modem starts
// with it.
#include "OneFile.h"
#include "library/WholeModem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    const auto pstState = std::make_shared<OneFile>(std::string(pucBytes, pucBytes + uCount));
    try {
        const WholeModem stModem(
            Scenario::FromText("[state]\nfile = \"state\"\n", "scenario", pstState));
    } catch (const ScenarioError &) {
        return 0;
    }
    return 0;
}
