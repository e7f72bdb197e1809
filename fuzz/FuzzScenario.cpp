// A scenario file of any bytes: it is refused with its reason, or a modem lives
// in it for some seconds.
#include "OneFile.h"
#include "library/WholeModem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    try {
        const std::string strText(pucBytes, pucBytes + uCount);
        WholeModem stModem(Scenario::FromText(strText, "scenario", std::make_shared<OneFile>()));
        stModem.AdvanceTo(3 * i64Second);
        for (MessageBytes aucMessage; stModem.TakeMessage(&aucMessage);) {
        }
    } catch (const ScenarioError &) {
        return 0;
    }
    return 0;
}
