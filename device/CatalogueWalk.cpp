// Going through what a message holds, row by row.
#include <algorithm>
#include <array>

#include "Catalogue.h"

// Records lie in records, and the calls follow them. NOLINTBEGIN(misc-no-recursion)

namespace {

struct Walker {
    Walk eWalk;
    Visit pfnVisit;
    void *pvContext;
    // A counter group in a zone in a value in a record of a list, and room.
    std::array<PathStep, 6> astPath = {};
    uint32_t u32Depth = 0;
};

// A record that is walked: where it begins in the payload, and what it inherits.
struct Place {
    ByteView stView;
    uint32_t u32Begin = 0;
    Guard eGuard = Guard::Public;
};

constexpr FieldRow stRest = {.eShown = Shown::Bytes};

bool IsCounted(const FieldRow &stRow) { return stRow.stCounter.eType != FieldType::None; }

// Elements that there should be, as the counter says or the room.
uint32_t Announced(const FieldRow &stRow, ByteView stRecord) {
    if (IsCounted(stRow)) {
        const uint32_t u32Counter = Get(stRecord, stRow.stCounter);
        if (IsSigned(stRow.stCounter.eType) && static_cast<int32_t>(u32Counter) < 0) {
            return 0;
        }
        return stRow.bCountsBytes ? u32Counter / ElementSize(stRow) : u32Counter;
    }
    if (stRow.u16Count != 0) {
        return stRow.u16Count;
    }
    const uint32_t u32Left = stRecord.From(stRow.stField.u16Offset).u32Length;
    return (u32Left + ElementSize(stRow) - 1) / ElementSize(stRow);
}

// Elements to look for: never more than there is room for.
uint32_t ToVisit(const FieldRow &stRow, ByteView stRecord, Walk eWalk) {
    if (stRow.u16Count == 0) {
        return Announced(stRow, stRecord);
    }
    return eWalk == Walk::Everything
               ? stRow.u16Count
               : std::min<uint32_t>(Announced(stRow, stRecord), stRow.u16Count);
}

Guard Stricter(Guard eFirst, Guard eSecond) { return std::max(eFirst, eSecond); }

Guard StrictestOf(const Layout &stLayout) {
    Guard eGuard = Guard::Public;
    for (const FieldRow &stRow : stLayout.astRows) {
        eGuard = Stricter(eGuard, stRow.eGuard);
        if (stRow.pstRecord != nullptr) {
            eGuard = Stricter(eGuard, StrictestOf(*stRow.pstRecord));
        }
        for (const CaseRow &stCase : stRow.astCases) {
            eGuard = Stricter(eGuard, stCase.eGuard);
        }
    }
    return eGuard;
}

void Tell(const Walker &stWalker, FoundField &stFound) {
    stFound.astPath = {stWalker.astPath.data(), stWalker.u32Depth};
    stWalker.pfnVisit(stWalker.pvContext, stFound);
}

void WalkRecord(Walker &stWalker, const Layout &stLayout, const Place &stPlace);

void WalkNested(Walker &stWalker, FoundField &stFound, const Layout &stLayout) {
    const Place stPlace{stFound.stBytes, stFound.u32Offset, stFound.eGuard};
    stWalker.astPath.at(stWalker.u32Depth++) = {stFound.pstRow, &stLayout, stFound.u32Index};
    stFound.eWhat = Found::RecordBegin;
    Tell(stWalker, stFound);
    WalkRecord(stWalker, stLayout, stPlace);
    stFound.eWhat = Found::RecordEnd;
    Tell(stWalker, stFound);
    --stWalker.u32Depth;
}

const CaseRow *CaseOf(const FieldRow &stRow, ByteView stRecord) {
    const uint32_t u32Code = Get(stRecord, stRow.stSelector);
    for (const CaseRow &stCase : stRow.astCases) {
        if (stCase.u32Code == u32Code) {
            return &stCase;
        }
    }
    return nullptr;
}

uint32_t ShortValue(ByteView stBytes) { return stBytes.u32Length <= 4 ? GetWord(stBytes, 0) : 0; }

// Bytes that belong together: a case of a value, or one field.
void WalkRun(Walker &stWalker, FoundField &stFound, ByteView stRecord, ByteView stRoom) {
    const FieldRow &stRow = *stFound.pstRow;
    stFound.stBytes = stRoom.From(0, ToVisit(stRow, stRecord, stWalker.eWalk));
    if (stFound.stBytes.u32Length == 0 && stFound.u32Announced != 0) {
        return;
    }
    stFound.u32Count = 1;
    if (const CaseRow *pstCase = CaseOf(stRow, stRecord); pstCase != nullptr) {
        stFound.eGuard = Stricter(stFound.eGuard, pstCase->eGuard);
        if (pstCase->pstLayout != nullptr) {
            WalkNested(stWalker, stFound, *pstCase->pstLayout);
            return;
        }
    }
    stFound.u32Value = stRow.eShown == Shown::Value ? ShortValue(stFound.stBytes) : 0;
    Tell(stWalker, stFound);
}

void WalkElement(Walker &stWalker, FoundField &stFound, ByteView stRoom, uint32_t u32Size) {
    stFound.stBytes = stRoom.From(0, u32Size);
    if (stFound.pstRow->pstRecord != nullptr) {
        WalkNested(stWalker, stFound, *stFound.pstRow->pstRecord);
        return;
    }
    stFound.u32Value = Get(stFound.stBytes, {0, stFound.pstRow->stField.eType});
    Tell(stWalker, stFound);
}

uint32_t AddSaturated(uint32_t u32First, uint64_t u64Second) {
    return static_cast<uint32_t>(std::min<uint64_t>(u32First + u64Second, UINT32_MAX));
}

// Where the last field ends, as its counter says.
uint32_t EndOfFields(const Layout &stLayout, ByteView stRecord) {
    if (stLayout.astRows.empty() || stLayout.astRows.back().u16Count != 0) {
        return stLayout.u32Size;
    }
    const FieldRow &stLast = stLayout.astRows.back();
    uint32_t u32End = stLast.stField.u16Offset;
    uint32_t u32Left = Announced(stLast, stRecord);
    // Records may be of different sizes: those that are there are looked at.
    while (stLast.pstRecord != nullptr && u32Left != 0 && u32End < stRecord.u32Length) {
        u32End = AddSaturated(u32End, SizeOf(*stLast.pstRecord, stRecord.From(u32End)));
        --u32Left;
    }
    return AddSaturated(u32End, uint64_t{u32Left} * ElementSize(stLast));
}

uint32_t SizeOfElement(const FieldRow &stRow, ByteView stRoom) {
    return stRow.pstRecord != nullptr ? SizeOf(*stRow.pstRecord, stRoom) : ElementSize(stRow);
}

// How many of the elements at least begin in the room.
uint32_t CountPresent(const FieldRow &stRow, ByteView stRoom, uint32_t u32Most) {
    if (stRow.pstRecord == nullptr) {
        return std::min(u32Most, (stRoom.u32Length + ElementSize(stRow) - 1) / ElementSize(stRow));
    }
    uint32_t u32Count = 0;
    while (u32Count < u32Most && stRoom.u32Length != 0) {
        stRoom = stRoom.From(SizeOfElement(stRow, stRoom));
        ++u32Count;
    }
    return u32Count;
}

void WalkElements(Walker &stWalker, FoundField &stFound, ByteView stRecord, ByteView stRoom) {
    const FieldRow &stRow = *stFound.pstRow;
    const uint32_t u32Begin = stFound.u32Offset;
    stFound.u32Count = CountPresent(stRow, stRoom, ToVisit(stRow, stRecord, stWalker.eWalk));
    if (IsList(stRow)) {
        stFound.eWhat = Found::ListBegin;
        Tell(stWalker, stFound);
    }
    for (stFound.u32Index = 0; stFound.u32Index < stFound.u32Count; ++stFound.u32Index) {
        stFound.eWhat = Found::Field;
        const uint32_t u32Size = SizeOfElement(stRow, stRoom);
        WalkElement(stWalker, stFound, stRoom, u32Size);
        stRoom = stRoom.From(u32Size);
        stFound.u32Offset += u32Size;
    }
    if (IsList(stRow)) {
        stFound.eWhat = Found::ListEnd;
        stFound.u32Index = 0;
        stFound.u32Offset = u32Begin;
        stFound.stBytes = {};
        stFound.u32Value = 0;
        Tell(stWalker, stFound);
    }
}

void WalkRow(Walker &stWalker, const FieldRow &stRow, const Place &stPlace) {
    const uint32_t u32Offset = stRow.stField.u16Offset;
    const ByteView stRoom = stPlace.stView.From(u32Offset);
    FoundField stFound = {};
    stFound.pstRow = &stRow;
    stFound.u32Announced = Announced(stRow, stPlace.stView);
    stFound.u32Offset = stPlace.u32Begin + u32Offset;
    stFound.eGuard = Stricter(stPlace.eGuard, stRow.eGuard);
    if (IsRun(stRow)) {
        WalkRun(stWalker, stFound, stPlace.stView, stRoom);
    } else {
        WalkElements(stWalker, stFound, stPlace.stView, stRoom);
    }
}

// What lies behind the last field.
void WalkRest(Walker &stWalker, const Layout &stLayout, const Place &stPlace) {
    const uint32_t u32End = EndOfFields(stLayout, stPlace.stView);
    FoundField stFound = {};
    stFound.pstRow = &stRest;
    stFound.stBytes = stPlace.stView.From(u32End);
    if (stFound.stBytes.u32Length != 0) {
        stFound.u32Count = 1;
        stFound.u32Announced = stFound.stBytes.u32Length;
        stFound.u32Offset = stPlace.u32Begin + u32End;
        stFound.eGuard = Stricter(stPlace.eGuard, StrictestOf(stLayout));
        Tell(stWalker, stFound);
    }
}

void WalkRecord(Walker &stWalker, const Layout &stLayout, const Place &stPlace) {
    for (const FieldRow &stRow : stLayout.astRows) {
        if (stWalker.eWalk == Walk::Everything || !IsReserved(stRow)) {
            WalkRow(stWalker, stRow, stPlace);
        }
    }
    if (stWalker.eWalk == Walk::Everything) {
        WalkRest(stWalker, stLayout, stPlace);
    }
}

void Append(FilterName &stName, std::string_view strText) {
    const auto u32Count =
        static_cast<uint32_t>(std::min(strText.size(), sizeof stName.acText - stName.u32Length));
    std::copy_n(strText.data(), u32Count, stName.acText + stName.u32Length);
    stName.u32Length += u32Count;
}

} // namespace

uint32_t ElementSize(const FieldRow &stRow) {
    if (stRow.pstRecord != nullptr) {
        return stRow.pstRecord->u32Size;
    }
    return IsRun(stRow) ? 1 : WidthOf(stRow.stField.eType);
}

uint32_t SizeOf(const Layout &stLayout, ByteView stRecord) {
    return std::max(EndOfFields(stLayout, stRecord), stLayout.u32Size);
}

bool HasRightSize(const MessageRow &stMessage, ByteView stPayload) {
    const SizeRule &stRule = stMessage.stSize;
    return stPayload.u32Length >= stRule.u32Least && stPayload.u32Length <= stRule.u32Most &&
           (!stRule.bAsCounted || stPayload.u32Length == SizeOf(*stMessage.pstLayout, stPayload));
}

std::string_view NameOf(const FieldRow &stRow, uint32_t u32Code) {
    for (const CodeRow &stCode : stRow.astCodes) {
        if (stCode.u32Code == u32Code) {
            return stCode.stName.Plain();
        }
    }
    return {};
}

void WalkMessageWith(const MessageRow &stMessage, ByteView stPayload, Walk eWalk, Visit pfnVisit,
                     void *pvContext) {
    Walker stWalker{eWalk, pfnVisit, pvContext};
    WalkRecord(stWalker, *stMessage.pstLayout, {stPayload});
}

FilterName FilterNameOf(const MessageRow &stMessage, std::span<const PathStep> astPath,
                        const FieldRow &stRow) {
    FilterName stName;
    Append(stName, "qor020.");
    Append(stName, stMessage.stName.Plain());
    for (const PathStep &stStep : astPath) {
        Append(stName, ".");
        Append(stName, stStep.Name().Plain());
    }
    Append(stName, ".");
    Append(stName, stRow.stName.Plain());
    return stName;
}

// NOLINTEND(misc-no-recursion)
