#include "Names.h"

#include <algorithm>
#include <charconv>

namespace {

struct TypeRow {
    uint16_t u16Type;
    std::string_view strName;
};

#define TYPE_ROW(NAME)                                                                             \
    { TYPE_##NAME, #NAME }

constexpr TypeRow astTypes[] = {
    TYPE_ROW(NETWORK_SEARCH),
    TYPE_ROW(NETWORK_ENTRY),
    TYPE_ROW(NETWORK_EXIT),
    TYPE_ROW(AUTHENTICATION),
    TYPE_ROW(SERVICE_FLOW),
    TYPE_ROW(SS_INFO),
    TYPE_ROW(START_LOGGER),
    TYPE_ROW(STOP_LOGGER),
    TYPE_ROW(VENDOR_SPECIFIC),
    TYPE_ROW(MAC_ADDRESS),
    TYPE_ROW(DEVICE_UNLOAD),
    TYPE_ROW(DEVICE_CONFIG),
    TYPE_ROW(CHIPSET),
    TYPE_ROW(STATISTICS),
    TYPE_ROW(IDLE_MODE),
    TYPE_ROW(MAC_MGMT),
    TYPE_ROW(GPIO),
    TYPE_ROW(HANDOVER),
    TYPE_ROW(MIB),
    TYPE_ROW(SLEEP_MODE),
    TYPE_ROW(MAC_LOGGING),
    TYPE_ROW(ANTENNA),
    TYPE_ROW(WIMAX_OPTIONS),
    TYPE_ROW(SHUTDOWN),
    TYPE_ROW(PHY_LOGGING),
    TYPE_ROW(OMADM),
    TYPE_ROW(SECURITY),
    TYPE_ROW(HALF_MINI_CARD),
};

#undef TYPE_ROW

constexpr char ToLower(char cChar) {
    return IsUpper(cChar) ? static_cast<char>(cChar - 'A' + 'a') : cChar;
}

} // namespace

std::string_view NameOfType(uint32_t u32Type) {
    const auto *pstRow = std::ranges::find(astTypes, u32Type, &TypeRow::u16Type);
    return pstRow != std::end(astTypes) ? pstRow->strName : std::string_view();
}

bool SameLetters(std::string_view strFirst, std::string_view strSecond) {
    return std::ranges::equal(strFirst, strSecond, {}, ToLower, ToLower);
}

std::optional<uint32_t> NumberOf(std::string_view strText) {
    int iBase = 10;
    if (strText.starts_with("0x") || strText.starts_with("0X")) {
        strText.remove_prefix(2);
        iBase = 16;
    }
    uint32_t u32Value = 0;
    const char *pcEnd = strText.data() + strText.size();
    const auto [pcStop, eError] = std::from_chars(strText.data(), pcEnd, u32Value, iBase);
    if (strText.empty() || eError != std::errc() || pcStop != pcEnd) {
        return {};
    }
    return u32Value;
}

std::optional<uint16_t> TypeOf(std::string_view strText) {
    if (const auto u32Number = NumberOf(strText); u32Number && *u32Number <= UINT16_MAX) {
        return static_cast<uint16_t>(*u32Number);
    }
    const auto *pstRow = std::ranges::find_if(
        astTypes, [&](const TypeRow &stRow) { return SameLetters(stRow.strName, strText); });
    if (pstRow == std::end(astTypes)) {
        return {};
    }
    return pstRow->u16Type;
}

uint32_t CharacterLength(std::string_view strText) {
    const auto Byte = [&](size_t i) {
        return i < strText.size() ? static_cast<uint8_t>(strText[i]) : uint8_t{0};
    };
    const uint8_t u8First = Byte(0);
    if (u8First < 0x80) {
        return strText.empty() ? 0 : 1;
    }
    const uint32_t u32Length = u8First >= 0xF0 ? 4 : u8First >= 0xE0 ? 3 : 2;
    uint32_t u32Point = u8First & (0x7FU >> u32Length);
    for (uint32_t i = 1; i < u32Length; ++i) {
        if ((Byte(i) & 0xC0) != 0x80) {
            return 0;
        }
        u32Point = u32Point << 6 | (Byte(i) & 0x3FU);
    }
    // Longer than need be, half of a pair, or none at all.
    constexpr uint32_t au32Least[] = {0x80, 0x800, 0x10000};
    const bool bWrong = u8First < 0xC0 || u8First > 0xF4 || u32Point < au32Least[u32Length - 2] ||
                        u32Point > 0x10FFFF || (u32Point >= 0xD800 && u32Point < 0xE000);
    return bWrong ? 0 : u32Length;
}

bool IsNumber(const FoundField &stFound) {
    const uint32_t u32Length = stFound.stBytes.u32Length;
    return !IsRun(*stFound.pstRow) || (stFound.pstRow->eShown == Shown::Value &&
                                       (u32Length == 1 || u32Length == 2 || u32Length == 4));
}

int64_t NumberOf(const FoundField &stFound) {
    switch (stFound.pstRow->stField.eType) {
    case FieldType::I8:
    case FieldType::I16:
    case FieldType::I32:
        return static_cast<int32_t>(stFound.u32Value);
    default:
        return stFound.u32Value;
    }
}

std::string_view PlainNameOf(const FoundField &stFound) {
    return stFound.eWhat == Found::RecordBegin ? stFound.astPath.back().Name().Plain()
                                               : stFound.pstRow->stName.Plain();
}
