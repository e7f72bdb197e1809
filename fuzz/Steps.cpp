#include "Steps.h"

bool TakeStep(ByteView *pstRest, Step *pstStep) {
    if (pstRest->u32Length == 0) {
        return false;
    }
    constexpr auto u32Kinds = static_cast<uint32_t>(StepKind::Count);
    pstStep->eKind = static_cast<StepKind>(Get(*pstRest, StepHeader::u8Kind) % u32Kinds);
    pstStep->stData = pstRest->From(StepHeader::Size, Get(*pstRest, StepHeader::u16Length));
    *pstRest = pstRest->From(StepHeader::Size + pstStep->stData.u32Length);
    return true;
}

void AppendStep(std::vector<uint8_t> *paucBytes, StepKind eKind, ByteView stData) {
    const uint32_t u32Length = std::min(stData.u32Length, 0xFFFFU);
    paucBytes->push_back(static_cast<uint8_t>(eKind));
    paucBytes->push_back(static_cast<uint8_t>(u32Length));
    paucBytes->push_back(static_cast<uint8_t>(u32Length >> 8));
    paucBytes->insert(paucBytes->end(), stData.pucData, stData.pucData + u32Length);
}
