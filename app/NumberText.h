// Texts with numbers, taken apart when the program is compiled: whoever writes
// one copies pieces of known length and digits, and parses nothing.
#ifndef NUMBER_TEXT_H
#define NUMBER_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

enum class NumberKind : uint8_t { Signed, Unsigned, LowerHex, UpperHex, Real };

// The shapes of text that are written without looking at each conversion.
enum class TextForm : uint8_t {
    Plain,   // no number
    Decimal, // one decimal number of any length
    Hex,     // one hexadecimal number of any length
    Pairs,   // nothing but bytes of two hexadecimal digits
    Other,
};

// A conversion: %d, %u, %x or %X, with or without a zero and a width, or %f.
struct Conversion {
    uint8_t u8Before = 0; // characters of plain text before it
    uint8_t u8Width = 0;
    bool bZeroFilled = false;
    NumberKind eKind = NumberKind::Signed;
};

constexpr bool IsDecimal(const Conversion &stNumber) {
    return stNumber.eKind <= NumberKind::Unsigned;
}
constexpr bool IsHex(const Conversion &stNumber) {
    return stNumber.eKind == NumberKind::LowerHex || stNumber.eKind == NumberKind::UpperHex;
}
constexpr bool IsPair(const Conversion &stNumber) {
    return IsHex(stNumber) && stNumber.bZeroFilled && stNumber.u8Width == 2;
}

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
    ++pcText;
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
    const bool bWideReal = pstNumber->eKind == NumberKind::Real && pstNumber->u8Width != 0;
    return bWideReal ? nullptr : pcText;
}

// Aligned as what stands behind it in a row: clang 14 loses a member behind padding in a structure
// that is made while it compiles.
struct alignas(4) NumberText {
    static constexpr uint32_t MostText = 116; // plain characters
    static constexpr uint32_t MostNumbers = 7;
    // Plain text is copied in blocks of this size, beyond its end.
    static constexpr uint32_t BlockSize = 16;
    // What is written behind a piece is overwritten by what comes next.
    static constexpr uint32_t Slack = BlockSize;
    static constexpr uint32_t MostRoom =
        MostText + MostNumbers * MostDigits(NumberKind::Real) + Slack;

    char acText[MostText + BlockSize] = {}; // the plain text before, between and behind the numbers
    Conversion astNumbers[MostNumbers] = {};
    uint8_t u8Numbers = 0;
    uint8_t u8Behind = 0; // characters of plain text behind the last number
    TextForm eForm = TextForm::Plain;

    constexpr NumberText() = default;
    // A text that cannot be taken apart does not compile.
    consteval NumberText(const char *pcFormat);
};

constexpr TextForm FormOf(const NumberText &stText) {
    const Conversion *pstEnd = stText.astNumbers + stText.u8Numbers;
    if (stText.u8Numbers == 0) {
        return TextForm::Plain;
    }
    if (std::all_of(stText.astNumbers, pstEnd, IsPair)) {
        return TextForm::Pairs;
    }
    const Conversion &stFirst = stText.astNumbers[0];
    if (stText.u8Numbers != 1 || stFirst.u8Width != 0 || stFirst.eKind == NumberKind::Real) {
        return TextForm::Other;
    }
    return IsHex(stFirst) ? TextForm::Hex : TextForm::Decimal;
}

// False for a text with another conversion, with too many or too long.
constexpr bool TakeApart(const char *pcText, NumberText *pstText) {
    *pstText = {};
    uint32_t u32Used = 0;
    for (;;) {
        const uint32_t u32Begin = u32Used;
        for (; *pcText != '\0' && *pcText != '%'; ++pcText) {
            if (u32Used == NumberText::MostText) {
                return false;
            }
            pstText->acText[u32Used++] = *pcText;
        }
        const auto u8Plain = static_cast<uint8_t>(u32Used - u32Begin);
        if (*pcText == '\0') {
            pstText->u8Behind = u8Plain;
            pstText->eForm = FormOf(*pstText);
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

// The text of each element of an array: one whole number of any length, with
// little text around it, which is copied at its full size.
struct ElementText {
    static constexpr size_t MostBefore = 32;
    static constexpr size_t MostBehind = 16;
    static constexpr size_t MostRoom = MostBefore + MostDigits(NumberKind::Signed) + MostBehind;

    char acBefore[MostBefore] = {};
    char acBehind[MostBehind] = {};
    uint8_t u8Before = 0;
    uint8_t u8Behind = 0;
    NumberKind eKind = NumberKind::Signed;

    // Anything else does not compile.
    consteval ElementText(const char *pcFormat) {
        const NumberText stText = pcFormat;
        const Conversion &stNumber = stText.astNumbers[0];
        if ((stText.eForm != TextForm::Decimal && stText.eForm != TextForm::Hex) ||
            stNumber.u8Before > MostBefore || stText.u8Behind > MostBehind) {
            throw "no text of one whole number, or too long";
        }
        u8Before = stNumber.u8Before;
        u8Behind = stText.u8Behind;
        eKind = stNumber.eKind;
        std::copy_n(stText.acText, u8Before, acBefore);
        std::copy_n(stText.acText + u8Before, u8Behind, acBehind);
    }
};

#endif
