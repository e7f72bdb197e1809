// Texts with numbers, taken apart when the program is compiled: whoever writes
// one copies pieces of known length and digits, and parses nothing.
#ifndef NUMBER_TEXT_H
#define NUMBER_TEXT_H

#include <algorithm>
#include <cstdint>

enum class NumberKind : uint8_t { Signed, Unsigned, LowerHex, UpperHex, Real };

// A conversion: %d, %u, %x or %X, with or without a zero and a width, or %f.
struct Conversion {
    uint8_t u8Before = 0; // characters of plain text before it
    uint8_t u8Own = 0;    // its own characters
    uint8_t u8Width = 0;
    bool bZeroFilled = false;
    NumberKind eKind = NumberKind::Signed;
};

// The most characters that a number of this kind comes to.
constexpr uint8_t MostDigits(NumberKind eKind) {
    switch (eKind) {
    case NumberKind::Signed:
        return 11; // a sign among them
    case NumberKind::Unsigned:
        return 10;
    case NumberKind::LowerHex:
    case NumberKind::UpperHex:
        return 8;
    case NumberKind::Real:
        return 18; // a sign, ten digits, a point, six decimals
    }
    return 0;
}

// Reads the conversion that begins with a percent sign; returns where the text
// goes on, or null when it is no conversion.
constexpr const char *TakeConversion(const char *pcText, Conversion *pstNumber) {
    const char *const pcBegin = pcText++;
    if (*pcText == '0') {
        pstNumber->bZeroFilled = true;
        ++pcText;
    }
    if (*pcText >= '1' && *pcText <= '9') {
        pstNumber->u8Width = static_cast<uint8_t>(*pcText++ - '0');
    } else if (pstNumber->bZeroFilled) {
        return nullptr;
    }
    switch (*pcText++) {
    case 'd':
        pstNumber->eKind = NumberKind::Signed;
        break;
    case 'u':
        pstNumber->eKind = NumberKind::Unsigned;
        break;
    case 'x':
        pstNumber->eKind = NumberKind::LowerHex;
        break;
    case 'X':
        pstNumber->eKind = NumberKind::UpperHex;
        break;
    case 'f':
        pstNumber->eKind = NumberKind::Real;
        break;
    default:
        return nullptr;
    }
    pstNumber->u8Own = static_cast<uint8_t>(pcText - pcBegin);
    const bool bWideReal = pstNumber->eKind == NumberKind::Real && pstNumber->u8Width != 0;
    return bWideReal ? nullptr : pcText;
}

struct NumberText {
    static constexpr uint32_t MostText = 240; // plain characters
    static constexpr uint32_t MostNumbers = 7;
    // What is written behind a number is overwritten by what comes next.
    static constexpr uint32_t Slack = 4;
    static constexpr uint32_t MostRoom =
        MostText + MostNumbers * MostDigits(NumberKind::Real) + Slack;

    const char *pcText = "";
    Conversion astNumbers[MostNumbers] = {};
    uint8_t u8Numbers = 0;
    uint8_t u8Behind = 0; // characters of plain text behind the last number

    constexpr NumberText() = default;
    // A text that cannot be taken apart does not compile.
    consteval NumberText(const char *pcFormat);
};

// False for a text with another conversion, with too many or too long.
constexpr bool TakeApart(const char *pcText, NumberText *pstText) {
    *pstText = {};
    pstText->pcText = pcText;
    uint32_t u32Used = 0;
    for (;;) {
        const uint32_t u32Begin = u32Used;
        for (; *pcText != '\0' && *pcText != '%'; ++pcText) {
            if (++u32Used > NumberText::MostText) {
                return false;
            }
        }
        const auto u8Plain = static_cast<uint8_t>(u32Used - u32Begin);
        if (*pcText == '\0') {
            pstText->u8Behind = u8Plain;
            return true;
        }
        if (pstText->u8Numbers == NumberText::MostNumbers) {
            return false;
        }
        Conversion &stNumber = pstText->astNumbers[pstText->u8Numbers++];
        stNumber.u8Before = u8Plain;
        pcText = TakeConversion(pcText, &stNumber);
        if (pcText == nullptr) {
            return false;
        }
    }
}

consteval NumberText::NumberText(const char *pcFormat) {
    if (!TakeApart(pcFormat, this)) {
        throw "no text with numbers";
    }
}

constexpr bool HasReal(const NumberText &stText) {
    return std::any_of(
        stText.astNumbers, stText.astNumbers + stText.u8Numbers,
        [](const Conversion &stNumber) { return stNumber.eKind == NumberKind::Real; });
}

// A text with exactly so many numbers, all of them whole.
// No derived structure: clang 14 breaks down on those that are made while it compiles.
template <uint32_t u32Count> struct TextWith {
    NumberText stText;

    consteval TextWith(const char *pcFormat) : stText(pcFormat) {
        if (stText.u8Numbers != u32Count || HasReal(stText)) {
            throw "no text with that many whole numbers";
        }
    }
    constexpr operator const NumberText &() const { return stText; }
};

#endif
