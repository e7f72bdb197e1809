// Requests to the simulated modem, of any bytes; pauses let its time pass. What
// is planned to be read is the file that requests name.
#include "OneFile.h"
#include "Steps.h"
#include "library/WholeModem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    const auto pstFile = std::make_shared<OneFile>();
    WholeModem stModem(Scenario::BuiltIn(pstFile));
    // A record of its own, so that every byte beside it is found.
    const auto pstRecord = std::make_unique<WiMAXMessage>();
    ModemTime iNow = 0;
    ByteView stRest{pucBytes, static_cast<uint32_t>(uCount)};
    for (Step stStep; TakeStep(&stRest, &stStep);) {
        if (stStep.eKind == StepKind::Read) {
            const uint8_t *pucData = stStep.stData.pucData;
            pstFile->Put(std::string(pucData, pucData + stStep.stData.u32Length));
        } else if (stStep.eKind == StepKind::Pause) {
            iNow += stStep.stData.At(0) * i64Second / 10;
            stModem.AdvanceTo(iNow);
        } else if (stStep.eKind == StepKind::Message) {
            *pstRecord = {};
            const ByteView stRequest = stStep.stData.From(MessageStep::Message);
            PutBytes(BytesOf(*pstRecord), 0, stRequest);
            stModem.Send(BytesOf(*pstRecord).pucData, stRequest.u32Length);
        }
    }
    for (MessageBytes aucMessage; stModem.TakeMessage(&aucMessage);) {
    }
    return 0;
}
