// The device library on the stage: it does what the steps say, and looks at what
// it is handed.
#include <cstring>

#include "Stage.h"

namespace {

constexpr Field stResult{0, FieldType::I32};
constexpr Field stWaits{4, FieldType::U8};
constexpr uint32_t u32Behind = 4;

int32_t ResultOf(const Step *pstStep) {
    return pstStep != nullptr ? GetSigned(pstStep->stData, stResult) : 0;
}

int32_t NextResult(StepKind eKind) {
    Stage::SwitchPoint();
    return ResultOf(Stage::Next(eKind));
}

} // namespace

uint32_t OpenWiMAXDevice() {
    Stage::SwitchPoint();
    const Step *pstStep = Stage::Next(StepKind::Open);
    return pstStep != nullptr ? Get(pstStep->stData, {0, FieldType::U32}) : 1;
}

int32_t RegisterCallback(uint32_t /*hDevice*/, WiMAXCallback pfnCallback, uint32_t u32Context) {
    const int32_t iResult = NextResult(StepKind::Register);
    if (iResult == 0) {
        Stage::SetCallback(pfnCallback, u32Context);
    }
    return iResult;
}

int32_t SendWiMAXMessage(uint32_t /*hDevice*/, void *pvMessage, uint32_t u32Length) {
    Stage::SwitchPoint();
    if (u32Length < WIMAX_HEADER_SIZE || u32Length > WIMAX_MESSAGE_SIZE) {
        Stage::Complain("a length that no record has is sent");
    }
    if (pvMessage != nullptr) {
        Stage::CheckBytes(pvMessage, WIMAX_MESSAGE_SIZE);
    }
    const Step *pstSend = Stage::Next(StepKind::Send);
    if (pstSend == nullptr) {
        return 0;
    }
    if (pvMessage != nullptr) {
        PutBytes({static_cast<uint8_t *>(pvMessage), WIMAX_MESSAGE_SIZE}, 0,
                 pstSend->stData.From(u32Behind));
    }
    Stage::DeliverAnswers(pstSend);
    return ResultOf(pstSend);
}

int32_t CloseWiMAXDevice() {
    Stage::SwitchPoint();
    const Step *pstStep = Stage::Next(StepKind::Close);
    if (pstStep == nullptr || Get(pstStep->stData, stWaits) != 1) {
        Stage::WaitForCallback();
    }
    return ResultOf(pstStep);
}

int32_t rdm(uint32_t /*u32Address*/, void *pvBuffer, uint32_t u32Count) {
    Stage::SwitchPoint();
    Stage::CheckBytes(pvBuffer, u32Count);
    const Step *pstStep = Stage::Next(StepKind::Read);
    const ByteView stBytes = pstStep != nullptr ? pstStep->stData.From(u32Behind) : ByteView{};
    if (stBytes.u32Length != 0) {
        auto *pucBuffer = static_cast<uint8_t *>(pvBuffer);
        for (uint32_t i = 0; i < u32Count; ++i) {
            pucBuffer[i] = stBytes.At(i % stBytes.u32Length);
        }
    }
    return ResultOf(pstStep);
}

int32_t wrm(uint32_t /*u32Address*/, const void *pvBuffer, uint32_t u32Count) {
    Stage::CheckBytes(pvBuffer, u32Count);
    return NextResult(StepKind::Write);
}
