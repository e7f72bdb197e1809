// Changes inputs that are steps, knowing what steps, messages and words are.
#include <array>
#include <cstring>
#include <memory_resource>
#include <string>

#include "Catalogue.h"
#include "Dice.h"
#include "Steps.h"
#include "Vocabulary.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t *pucBytes, size_t uCount, size_t uMost);

namespace {

// What a mutation needs is forgotten before the next one.
struct Arena {
    std::array<std::byte, 1 << 20> aucRoom;
    std::pmr::monotonic_buffer_resource stMemory{aucRoom.data(), aucRoom.size()};
};

void ForgetMutation() {
    static Arena stArena;
    std::pmr::set_default_resource(&stArena.stMemory);
    stArena.stMemory.release();
}

using Bytes = std::pmr::vector<uint8_t>;

struct OwnStep {
    StepKind eKind;
    Bytes aucData;
};
using Steps = std::pmr::vector<OwnStep>;

ByteView ViewOf(const Bytes &aucBytes) {
    return {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())};
}
ByteSpan SpanOf(Bytes &aucBytes) {
    return {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())};
}

Steps ReadSteps(const uint8_t *pucBytes, size_t uCount) {
    Steps astSteps;
    ByteView stRest{pucBytes, static_cast<uint32_t>(uCount)};
    Step stStep;
    while (TakeStep(&stRest, &stStep)) {
        const ByteView stData = stStep.stData;
        astSteps.push_back({stStep.eKind, {stData.pucData, stData.pucData + stData.u32Length}});
    }
    return astSteps;
}

// The steps that there is room for.
size_t WriteSteps(const Steps &astSteps, uint8_t *pucBytes, size_t uMost) {
    std::vector<uint8_t> aucAll;
    aucAll.reserve(uMost);
    for (const OwnStep &stStep : astSteps) {
        if (aucAll.size() + StepHeader::Size + stStep.aucData.size() <= uMost) {
            AppendStep(&aucAll, stStep.eKind, ViewOf(stStep.aucData));
        }
    }
    std::copy(aucAll.begin(), aucAll.end(), pucBytes);
    return aucAll.size();
}

// Attributes with values of their own, and others.
uint32_t AnyAttribute(Dice &stDice) {
    const FieldRow &stValue = FindReceived(TYPE_MIB, SUBTYPE_MIB_GET)->pstLayout->astRows.back();
    return stDice.OneIn(2) ? stDice.Of(stValue.astCases).u32Code : stDice.Of(Attributes());
}

uint32_t AnyNumber(Dice &stDice) {
    switch (stDice.Roll(4)) {
    case 0:
        return stDice.Roll(256);
    case 1:
        return AnyAttribute(stDice);
    default:
        return stDice.Of(Numbers());
    }
}

void PutNumber(Bytes *paucBytes, uint32_t u32Offset, Field stField, uint32_t u32Value) {
    if (paucBytes->size() < u32Offset + EndOf(stField)) {
        paucBytes->resize(u32Offset + EndOf(stField));
    }
    Put(SpanOf(*paucBytes), stField, u32Value, u32Offset);
}

// ---- What is typed ----

std::string AnyWord(Dice &stDice) {
    switch (stDice.Roll(12)) {
    case 0:
        return std::to_string(AnyNumber(stDice));
    case 1:
        return std::to_string(static_cast<int32_t>(AnyNumber(stDice)));
    case 2:
        return {static_cast<char>(stDice.Roll(256))};
    case 3:
        return std::to_string(AnyAttribute(stDice));
    default:
        return stDice.Of(Words());
    }
}

std::string AnyLine(Dice &stDice) {
    constexpr const char *apcEnds[] = {"\n", "\n", "\n", "\n", " ", "\t", "\r\n", ""};
    return AnyWord(stDice) + stDice.Of<const char *>(apcEnds);
}

bool IsBlank(uint8_t u8Char) { return u8Char == ' ' || (u8Char >= '\t' && u8Char <= '\r'); }

void MutateTyped(Bytes *paucText, Dice &stDice) {
    const auto uPlace = static_cast<ptrdiff_t>(stDice.Roll(paucText->size() + 1));
    auto Begin = paucText->begin() + uPlace;
    while (Begin != paucText->begin() && !IsBlank(*(Begin - 1))) {
        --Begin;
    }
    auto End = Begin;
    while (End != paucText->end() && !IsBlank(*End)) {
        ++End;
    }
    switch (stDice.Roll(8)) {
    case 0: // a word less
        paucText->erase(Begin, End == paucText->end() ? End : End + 1);
        break;
    case 1: // a byte more
        paucText->insert(paucText->begin() + uPlace, static_cast<uint8_t>(stDice.Roll(256)));
        break;
    case 2: // all that is behind
        paucText->erase(Begin, paucText->end());
        break;
    case 3: { // once more
        const Bytes aucRest(Begin, paucText->end());
        paucText->insert(paucText->end(), aucRest.begin(), aucRest.end());
        break;
    }
    case 4:
    case 5: { // other words
        const std::string strWord = AnyWord(stDice);
        Begin = paucText->erase(Begin, End);
        paucText->insert(Begin, strWord.begin(), strWord.end());
        break;
    }
    default: // more words
        for (uint32_t i = stDice.Roll(6); i < 6; ++i) {
            const std::string strLine = AnyLine(stDice);
            Begin = paucText->insert(Begin, strLine.begin(), strLine.end());
        }
    }
}

// ---- Messages ----

// The message that the bytes are, of either direction; null when they are none.
const MessageRow *RowOf(ByteView stMessage, Dice &stDice) {
    const uint32_t u32Type = Get(stMessage, MessageHeader::usType);
    const uint32_t u32SubType = Get(stMessage, MessageHeader::usSubType);
    const MessageRow *pstReceived = FindReceived(u32Type, u32SubType);
    const MessageRow *pstSent = FindSent(u32Type, u32SubType);
    return pstSent == nullptr || (pstReceived != nullptr && stDice.OneIn(2)) ? pstReceived
                                                                             : pstSent;
}

bool Same(Field stFirst, Field stSecond) {
    return stFirst.u16Offset == stSecond.u16Offset && stFirst.eType == stSecond.eType;
}

// A number of a message that can be changed, and what it decides.
struct Target {
    Field stField;
    const FieldRow *pstRow = nullptr;
    const FieldRow *pstDecided = nullptr; // the field that it counts or chooses the case of
};

Target TargetOf(const FoundField &stFound, const Layout &stMessageLayout) {
    const Layout &stLayout =
        stFound.astPath.empty() ? stMessageLayout : *stFound.astPath.back().pstLayout;
    Target stTarget{{static_cast<uint16_t>(stFound.u32Offset), stFound.pstRow->stField.eType},
                    stFound.pstRow};
    for (const FieldRow &stRow : stLayout.astRows) {
        if (Same(stRow.stCounter, stFound.pstRow->stField) ||
            (!stRow.astCases.empty() && Same(stRow.stSelector, stFound.pstRow->stField))) {
            stTarget.pstDecided = &stRow;
        }
    }
    return stTarget;
}

// A number of the message, most likely one that decides how others are read.
Target AnyTarget(ByteView stPayload, const MessageRow &stMessage, Dice &stDice) {
    Target stChosen;
    uint32_t u32Seen = 0;
    WalkMessage(stMessage, stPayload, [&](const FoundField &stFound) {
        if (stFound.eWhat != Found::Field || IsRun(*stFound.pstRow)) {
            return;
        }
        const Target stTarget = TargetOf(stFound, *stMessage.pstLayout);
        const bool bDecides = stTarget.pstDecided != nullptr || !stTarget.pstRow->astCodes.empty();
        const uint32_t u32Weight = bDecides ? 16 : 1;
        u32Seen += u32Weight;
        if (stDice.Roll(u32Seen) < u32Weight) {
            stChosen = stTarget;
        }
    });
    return stChosen;
}

uint32_t AnyValueFor(const Target &stTarget, Dice &stDice) {
    if (stTarget.pstDecided != nullptr && !stTarget.pstDecided->astCases.empty()) {
        return stDice.OneIn(4) ? AnyNumber(stDice)
                               : stDice.Of(stTarget.pstDecided->astCases).u32Code;
    }
    if (!stTarget.pstRow->astCodes.empty() && !stDice.OneIn(4)) {
        return stDice.Of(stTarget.pstRow->astCodes).u32Code;
    }
    return AnyNumber(stDice);
}

void Decide(Bytes *paucBytes, uint32_t u32Payload, const MessageRow &stMessage, Dice &stDice) {
    const ByteView stPayload = ViewOf(*paucBytes).From(u32Payload, WIMAX_DATA_SIZE);
    const Target stTarget = AnyTarget(stPayload, stMessage, stDice);
    if (stTarget.pstRow != nullptr) {
        PutNumber(paucBytes, u32Payload, stTarget.stField, AnyValueFor(stTarget, stDice));
    }
}

// Type and subtype of a row; now and then some that there may be none for.
void PutKind(Bytes *paucBytes, uint32_t u32Begin, const MessageRow &stMessage, Dice &stDice) {
    const bool bAny = stDice.OneIn(32);
    PutNumber(paucBytes, u32Begin, MessageHeader::usType,
              bAny ? stDice.Roll(40) : stMessage.u16Type);
    PutNumber(paucBytes, u32Begin, MessageHeader::usSubType,
              bAny ? stDice.Roll(12) : stMessage.u16SubType);
}

// A message in the form of a row: with its header, behind u32Before bytes.
void AppendMessage(Bytes *paucBytes, Dice &stDice) {
    const MessageRow &stMessage = stDice.Of(Messages());
    const auto u32Begin = static_cast<uint32_t>(paucBytes->size());
    const auto [u32Least, u32Most, bAsCounted] = stMessage.stSize;
    const uint32_t u32Whole = u32Least + (u32Most != u32Least ? stDice.Roll(100) : 0);
    const uint32_t u32Size = u32Whole < 1000 || stDice.OneIn(8) ? u32Whole : stDice.Roll(300);
    paucBytes->resize(u32Begin + MessageHeader::Size + u32Size);
    const uint32_t u32Fill = stDice.Roll(4);
    for (auto Byte = paucBytes->begin() + u32Begin; Byte != paucBytes->end(); ++Byte) {
        *Byte = static_cast<uint8_t>(u32Fill == 0   ? 0U
                                     : u32Fill == 1 ? stDice.Roll(3)
                                     : u32Fill == 2 ? 0xFFU
                                                    : stDice.Roll(256));
    }
    PutKind(paucBytes, u32Begin, stMessage, stDice);
    for (uint32_t i = stDice.Roll(8); i < 8; ++i) {
        Decide(paucBytes, u32Begin + MessageHeader::Size, stMessage, stDice);
    }
}

void MutateMessage(Bytes *paucBytes, uint32_t u32Begin, Dice &stDice) {
    const uint32_t u32Payload = u32Begin + MessageHeader::Size;
    const MessageRow *pstMessage = RowOf(ViewOf(*paucBytes).From(u32Begin), stDice);
    switch (stDice.Roll(6)) {
    case 0: // another kind of message in the same bytes
        PutKind(paucBytes, u32Begin, stDice.Of(Messages()), stDice);
        break;
    case 1: // another length
        paucBytes->resize(stDice.OneIn(4)
                              ? stDice.Roll(u32Payload + 1)
                              : u32Payload + stDice.Roll(stDice.OneIn(8) ? 10241 : 300));
        break;
    case 2: // a number anywhere
        if (paucBytes->size() > u32Payload) {
            const FieldType aeTypes[] = {FieldType::U8, FieldType::U16, FieldType::U32};
            const auto u16Offset =
                static_cast<uint16_t>(stDice.Roll(paucBytes->size() - u32Payload));
            Put(SpanOf(*paucBytes), {u16Offset, stDice.Of<FieldType>(aeTypes)}, AnyNumber(stDice),
                u32Payload);
        }
        break;
    default:
        if (pstMessage != nullptr) {
            Decide(paucBytes, u32Payload, *pstMessage, stDice);
        }
    }
}

void MutateBytes(Bytes *paucBytes) {
    const size_t uOld = paucBytes->size();
    paucBytes->resize(uOld + 16);
    paucBytes->resize(LLVMFuzzerMutate(paucBytes->data(), uOld, paucBytes->size()));
}

// ---- Steps ----

void MutateStep(OwnStep *pstStep, Dice &stDice) {
    Bytes *paucData = &pstStep->aucData;
    if (stDice.OneIn(10)) {
        MutateBytes(paucData);
        return;
    }
    switch (pstStep->eKind) {
    case StepKind::Type:
        MutateTyped(paucData, stDice);
        break;
    case StepKind::Message:
    case StepKind::Answer:
        if (stDice.OneIn(8)) {
            PutNumber(paucData, 0, MessageStep::u32StatedLength, AnyNumber(stDice));
        } else if (stDice.OneIn(8)) {
            PutNumber(paucData, 0, MessageStep::u8Delay, stDice.Roll(stDice.OneIn(4) ? 256 : 12));
        } else {
            MutateMessage(paucData, MessageStep::Message, stDice);
        }
        break;
    case StepKind::Send:
        if (stDice.OneIn(2)) {
            PutNumber(paucData, 0, {0, FieldType::U32}, stDice.OneIn(3) ? 0 : AnyNumber(stDice));
        } else {
            MutateMessage(paucData, 4, stDice);
        }
        break;
    case StepKind::Open:
    case StepKind::Register:
    case StepKind::Close:
    case StepKind::Read:
    case StepKind::Write:
        PutNumber(paucData, 0, {0, FieldType::U32},
                  stDice.OneIn(3) ? UINT32_MAX : AnyNumber(stDice));
        break;
    case StepKind::Aside:
        MutateBytes(paucData);
        PutNumber(paucData, 0, {0, FieldType::U8}, stDice.Roll(16));
        break;
    default:
        paucData->resize(pstStep->eKind == StepKind::Turns ? 16 : 2);
        for (uint8_t &u8Byte : *paucData) {
            u8Byte = static_cast<uint8_t>(stDice.Roll(stDice.OneIn(2) ? 8 : 256));
        }
    }
}

OwnStep NewStep(Dice &stDice) {
    OwnStep stStep{static_cast<StepKind>(stDice.Roll(static_cast<size_t>(StepKind::Count))), {}};
    if (stDice.OneIn(3)) {
        stStep.eKind = stDice.OneIn(2) ? StepKind::Message : StepKind::Type;
    }
    switch (stStep.eKind) {
    case StepKind::Message:
    case StepKind::Answer:
        stStep.aucData = {0, 0xFF, 0xFF, 0, 0};
        AppendMessage(&stStep.aucData, stDice);
        break;
    case StepKind::Send:
        stStep.aucData = {0, 0, 0, 0};
        if (stDice.OneIn(2)) {
            AppendMessage(&stStep.aucData, stDice);
        }
        break;
    case StepKind::Close:
        stStep.aucData = {0, 0, 0, 0, static_cast<uint8_t>(stDice.Roll(2))};
        break;
    case StepKind::Read:
        stStep.aucData = {0, 0, 0, 0, static_cast<uint8_t>(stDice.Roll(256)), 1, 2};
        break;
    default:
        MutateStep(&stStep, stDice);
    }
    return stStep;
}

void MutateSteps(Steps *pastSteps, Dice &stDice) {
    const auto uPlace = static_cast<ptrdiff_t>(stDice.Roll(pastSteps->size() + 1));
    const auto Place = pastSteps->begin() + uPlace;
    if (pastSteps->empty() || Place == pastSteps->end() || stDice.OneIn(8)) {
        pastSteps->insert(Place, NewStep(stDice));
        return;
    }
    switch (stDice.Roll(12)) {
    case 0: // one less
        pastSteps->erase(Place);
        break;
    case 1: { // once more, somewhere
        const OwnStep stStep = *Place;
        pastSteps->insert(pastSteps->begin() + stDice.Roll(pastSteps->size() + 1), stStep);
        break;
    }
    case 2:
        std::swap(*Place, (*pastSteps)[stDice.Roll(pastSteps->size())]);
        break;
    case 3: { // typed in two pieces, with something between them
        if (Place->eKind == StepKind::Type && Place->aucData.size() > 1) {
            const auto uCut = static_cast<ptrdiff_t>(stDice.Roll(Place->aucData.size() - 1)) + 1;
            OwnStep stSecond{StepKind::Type, {Place->aucData.begin() + uCut, Place->aucData.end()}};
            Place->aucData.resize(static_cast<size_t>(uCut));
            pastSteps->insert(Place + 1, {NewStep(stDice), std::move(stSecond)});
        }
        break;
    }
    default:
        MutateStep(&*Place, stDice);
    }
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *pucBytes, size_t uCount, size_t uMost,
                                          unsigned uSeed) {
    ForgetMutation();
    Dice stDice(uSeed);
    Steps astSteps = ReadSteps(pucBytes, uCount);
    for (uint32_t i = stDice.Roll(4); i < 4; ++i) {
        MutateSteps(&astSteps, stDice);
    }
    return WriteSteps(astSteps, pucBytes, uMost);
}

// The first steps of one and the last of the other, or some of the other in the
// midst of the one.
extern "C" size_t LLVMFuzzerCustomCrossOver(const uint8_t *pucFirst, size_t uFirst,
                                            const uint8_t *pucSecond, size_t uSecond,
                                            uint8_t *pucBytes, size_t uMost, unsigned uSeed) {
    ForgetMutation();
    Dice stDice(uSeed);
    Steps astSteps = ReadSteps(pucFirst, uFirst);
    const Steps astOther = ReadSteps(pucSecond, uSecond);
    const auto uPlace = static_cast<ptrdiff_t>(stDice.Roll(astSteps.size() + 1));
    const auto uFrom = static_cast<ptrdiff_t>(stDice.Roll(astOther.size() + 1));
    auto OtherEnd = astOther.end();
    if (stDice.OneIn(2)) {
        astSteps.erase(astSteps.begin() + uPlace, astSteps.end());
    } else {
        OtherEnd = astOther.begin() + uFrom +
                   stDice.Roll(static_cast<size_t>(astOther.end() - astOther.begin() - uFrom) + 1);
    }
    astSteps.insert(astSteps.begin() + uPlace, astOther.begin() + uFrom, OtherEnd);
    return WriteSteps(astSteps, pucBytes, uMost);
}
