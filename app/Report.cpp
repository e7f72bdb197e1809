#include "Report.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "Console.h"

namespace {

// The digits of a number below 1000 and how many there are: copied as one word.
struct ThreeDigits {
    char acDigits[3];
    uint8_t u8Count;
};
using DigitTable = std::array<ThreeDigits, 1000>;

// All three digits of every number.
constexpr DigitTable astDigits = [] {
    DigitTable astTable{};
    for (uint32_t i = 0; i < 1000; ++i) {
        astTable[i] = {{static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                        static_cast<char>('0' + i % 10)},
                       3};
    }
    return astTable;
}();

// The same without zeros before them.
constexpr DigitTable astFirstDigits = [] {
    DigitTable astTable = astDigits;
    for (uint32_t i = 0; i < 100; ++i) {
        ThreeDigits &stDigits = astTable[i];
        stDigits.u8Count = i < 10 ? 1 : 2;
        std::copy(stDigits.acDigits + 3 - stDigits.u8Count, stDigits.acDigits + 3,
                  stDigits.acDigits);
    }
    return astTable;
}();

inline char *WriteThree(char *pcTo, uint32_t u32Value) {
    std::memcpy(pcTo, &astDigits[u32Value], sizeof(ThreeDigits));
    return pcTo + 3;
}

// A number below 1000 without zeros before it.
inline char *WriteFirst(char *pcTo, uint32_t u32Value) {
    const ThreeDigits &stDigits = astFirstDigits[u32Value];
    std::memcpy(pcTo, &stDigits, sizeof stDigits);
    return pcTo + stDigits.u8Count;
}

inline char *WriteDecimal(char *pcTo, uint32_t u32Value) {
    if (u32Value < 1000) {
        return WriteFirst(pcTo, u32Value);
    }
    const uint32_t u32Thousands = u32Value / 1000;
    const uint32_t u32Rest = u32Value - u32Thousands * 1000; // no second division
    if (u32Thousands < 1000) {
        pcTo = WriteFirst(pcTo, u32Thousands);
    } else if (u32Thousands < 1000000) {
        pcTo = WriteThree(WriteFirst(pcTo, u32Thousands / 1000), u32Thousands % 1000);
    } else {
        *pcTo++ = static_cast<char>('0' + u32Thousands / 1000000);
        pcTo = WriteThree(WriteThree(pcTo, u32Thousands / 1000 % 1000), u32Thousands % 1000);
    }
    return WriteThree(pcTo, u32Rest);
}

inline char *WriteHex(char *pcTo, uint32_t u32Value, bool bUpperCase) {
    const char *pcPairs = HexPairs(bUpperCase);
    const uint32_t u32Digits = (static_cast<uint32_t>(std::bit_width(u32Value | 1)) + 3) / 4;
    u32Value <<= 4 * (8 - u32Digits);
    for (uint32_t i = 0; i < 8; i += 2, u32Value <<= 8) {
        std::memcpy(pcTo + i, pcPairs + size_t{2} * (u32Value >> 24), 2);
    }
    return pcTo + u32Digits;
}

// The bit that makes a number negative.
constexpr uint32_t SignBitOf(NumberKind eKind) {
    return eKind == NumberKind::Signed ? uint32_t{1} << 31 : 0;
}

inline char *WriteSigned(char *pcTo, uint32_t u32Value, uint32_t u32SignBit) {
    const uint32_t u32Sign = (u32Value & u32SignBit) >> 31;
    *pcTo = '-';
    return WriteDecimal(pcTo + u32Sign, (u32Value ^ (0 - u32Sign)) + u32Sign);
}

// A number by a conversion with a width, which is rare but for bytes.
char *WriteWide(char *pcTo, const Conversion &stNumber, uint32_t u32Value, bool bHexadecimal) {
    char acNumber[MostDigits(NumberKind::Signed) + NumberText::Slack];
    const bool bNegative =
        stNumber.eKind == NumberKind::Signed && static_cast<int32_t>(u32Value) < 0;
    const uint32_t u32Magnitude = bNegative ? 0 - u32Value : u32Value;
    const char *pcEnd = bHexadecimal
                            ? WriteHex(acNumber, u32Value, stNumber.eKind == NumberKind::UpperHex)
                            : WriteDecimal(acNumber, u32Magnitude);
    const auto u32Digits = static_cast<uint32_t>(pcEnd - acNumber);
    const uint32_t u32Used = u32Digits + (bNegative ? 1 : 0);
    const uint32_t u32Fill = stNumber.u8Width > u32Used ? stNumber.u8Width - u32Used : 0;
    if (!stNumber.bZeroFilled) {
        pcTo = std::fill_n(pcTo, u32Fill, ' ');
    }
    if (bNegative) {
        *pcTo++ = '-';
    }
    if (stNumber.bZeroFilled) {
        pcTo = std::fill_n(pcTo, u32Fill, '0');
    }
    return std::copy_n(acNumber, u32Digits, pcTo);
}

inline char *WriteInteger(char *pcTo, const Conversion &stNumber, uint32_t u32Value) {
    const bool bHexadecimal = IsHex(stNumber);
    const bool bUpperCase = stNumber.eKind == NumberKind::UpperHex;
    if (stNumber.u8Width == 0) {
        return bHexadecimal ? WriteHex(pcTo, u32Value, bUpperCase)
                            : WriteSigned(pcTo, u32Value, SignBitOf(stNumber.eKind));
    }
    if (IsPair(stNumber) && u32Value <= UINT8_MAX) {
        std::memcpy(pcTo, HexPairs(bUpperCase) + size_t{2} * u32Value, 2);
        return pcTo + 2;
    }
    return WriteWide(pcTo, stNumber, u32Value, bHexadecimal);
}

constexpr uint32_t u32Million = 1000000;

// The quotient by a power of two of a number below it, in millionths, ties to
// even.
inline uint32_t Millionths(uint64_t u64Numerator, uint32_t u32Power) {
    const uint64_t u64Product = u64Numerator * u32Million;
    const uint64_t u64Half = uint64_t{1} << (u32Power - 1);
    const uint64_t u64Rest = u64Product & (2 * u64Half - 1);
    const auto u32Whole = static_cast<uint32_t>(u64Product >> u32Power);
    const bool bUp = u64Rest > u64Half || (u64Rest == u64Half && u32Whole % 2 != 0);
    return u32Whole + (bUp ? 1 : 0);
}

// A number with so many millionths, a million at most.
inline char *WriteFixed(char *pcTo, bool bNegative, uint32_t u32Units, uint32_t u32Millionths) {
    if (u32Millionths == u32Million) {
        u32Millionths = 0;
        ++u32Units;
    }
    *pcTo = '-';
    pcTo = WriteDecimal(pcTo + (bNegative ? 1 : 0), u32Units);
    *pcTo++ = '.';
    return WriteThree(WriteThree(pcTo, u32Millionths / 1000), u32Millionths % 1000);
}

// Signed numbers come with the sign extended to all of the 32 bits.
bool IsSigned(FieldType eType) {
    return eType == FieldType::I8 || eType == FieldType::I16 || eType == FieldType::I32;
}

char *WriteQuotient(char *pcTo, const Conversion &stNumber, uint32_t u32Value, bool bSigned,
                    uint32_t u32Divisor) {
    const bool bNegative = bSigned && static_cast<int32_t>(u32Value) < 0;
    const uint32_t u32Magnitude = bNegative ? 0 - u32Value : u32Value;
    if (stNumber.eKind != NumberKind::Real) {
        const uint32_t u32Whole = u32Magnitude / u32Divisor;
        return WriteInteger(pcTo, stNumber, bNegative ? 0 - u32Whole : u32Whole);
    }
    if (std::has_single_bit(u32Divisor)) { // a division takes as long as all the rest
        const auto u32Power = static_cast<uint32_t>(std::countr_zero(u32Divisor));
        return WriteFixed(pcTo, bNegative, u32Magnitude >> u32Power,
                          Millionths(u32Magnitude & (u32Divisor - 1), u32Power));
    }
    return WriteFixed(pcTo, bNegative, u32Magnitude / u32Divisor,
                      u32Magnitude % u32Divisor * (u32Million / u32Divisor));
}

template <size_t uSize> inline void CopyBlock(char *pcTo, const char *pcFrom) {
    std::memcpy(pcTo, pcFrom, uSize);
}

// Texts are short, and a block takes no longer than a byte.
inline char *CopyText(char *pcTo, const char *pcFrom, uint32_t u32Bytes) {
    CopyBlock<NumberText::BlockSize>(pcTo, pcFrom);
    for (uint32_t i = NumberText::BlockSize; i < u32Bytes; i += NumberText::BlockSize) {
        CopyBlock<NumberText::BlockSize>(pcTo + i, pcFrom + i);
    }
    return pcTo + u32Bytes;
}

// Writes a text of any form; WriteNext(to, conversion) writes each number. Takes
// NumberText::MostRoom of room at most.
template <typename NumberWriter>
inline char *WriteText(char *pcTo, const NumberText &stText, NumberWriter WriteNext) {
    const char *pcFrom = stText.acText;
    for (uint32_t i = 0; i < stText.u8Numbers; ++i) {
        const Conversion &stNumber = stText.astNumbers[i];
        pcTo = CopyText(pcTo, pcFrom, stNumber.u8Before);
        pcFrom += stNumber.u8Before;
        pcTo = WriteNext(pcTo, stNumber);
    }
    return CopyText(pcTo, pcFrom, stText.u8Behind);
}

// A text of the form Decimal or Hex.
template <bool bHexadecimal>
inline char *WriteOneNumber(char *pcTo, const NumberText &stText, uint32_t u32Value) {
    const Conversion &stNumber = stText.astNumbers[0];
    pcTo = CopyText(pcTo, stText.acText, stNumber.u8Before);
    pcTo = bHexadecimal ? WriteHex(pcTo, u32Value, stNumber.eKind == NumberKind::UpperHex)
                        : WriteSigned(pcTo, u32Value, SignBitOf(stNumber.eKind));
    return CopyText(pcTo, stText.acText + stNumber.u8Before, stText.u8Behind);
}

// A text of the form Pairs, with a byte for each.
inline char *WritePairs(char *pcTo, const NumberText &stText, const uint8_t *pucBytes) {
    const char *pcFrom = stText.acText;
    for (uint32_t i = 0; i < stText.u8Numbers; ++i) {
        const Conversion &stNumber = stText.astNumbers[i];
        if (stNumber.u8Before == 1) { // between two bytes
            *pcTo++ = *pcFrom;
        } else {
            pcTo = CopyText(pcTo, pcFrom, stNumber.u8Before);
        }
        pcFrom += stNumber.u8Before;
        const char *pcPairs = HexPairs(stNumber.eKind == NumberKind::UpperHex);
        std::memcpy(pcTo, pcPairs + size_t{2} * pucBytes[i], 2);
        pcTo += 2;
    }
    return CopyText(pcTo, pcFrom, stText.u8Behind);
}

// Kept out of the loops over rows, which are left with little to keep.
[[gnu::noinline]] char *WriteOtherRow(char *pcTo, ByteView stView, const ReportRow &stRow,
                                      uint32_t u32Base) {
    const Field stField = stRow.stField;
    if (stRow.stText.eForm == TextForm::Pairs) {
        const ByteView stBytes = stView.From(u32Base + stField.u16Offset);
        if (stBytes.u32Length >= stRow.stText.u8Numbers) {
            return WritePairs(pcTo, stRow.stText, stBytes.pucData);
        }
    }
    return WriteText(pcTo, stRow.stText, [&](char *pcNumber, const Conversion &stNumber) {
        const uint32_t u32Value = Get(stView, stField, u32Base);
        u32Base += WidthOf(stField.eType);
        return stRow.u32Divisor == 1 ? WriteInteger(pcNumber, stNumber, u32Value)
                                     : WriteQuotient(pcNumber, stNumber, u32Value,
                                                     IsSigned(stField.eType), stRow.u32Divisor);
    });
}

inline char *WriteRow(char *pcTo, ByteView stView, const ReportRow &stRow, uint32_t u32Base) {
    switch (stRow.stText.eForm) {
    case TextForm::Decimal:
        return WriteOneNumber<false>(pcTo, stRow.stText, Get(stView, stRow.stField, u32Base));
    case TextForm::Hex:
        return WriteOneNumber<true>(pcTo, stRow.stText, Get(stView, stRow.stField, u32Base));
    default:
        return WriteOtherRow(pcTo, stView, stRow, u32Base);
    }
}

template <bool bHexadecimal>
inline char *WriteElements(char *pcTo, const ElementText &stElement, ByteView stView, Field stFirst,
                           uint32_t u32Begin, uint32_t u32End) {
    const ElementText stText = stElement; // nothing that is written can change it
    const uint32_t u32Width = WidthOf(stFirst.eType);
    const uint32_t u32SignBit = SignBitOf(stText.eKind);
    for (uint32_t i = u32Begin; i < u32End; ++i) {
        const uint32_t u32Value = Get(stView, stFirst, i * u32Width);
        CopyBlock<ElementText::MostBefore>(pcTo, stText.acBefore);
        pcTo += stText.u8Before;
        pcTo = bHexadecimal ? WriteHex(pcTo, u32Value, stText.eKind == NumberKind::UpperHex)
                            : WriteSigned(pcTo, u32Value, u32SignBit);
        CopyBlock<ElementText::MostBehind>(pcTo, stText.acBehind);
        pcTo += stText.u8Behind;
    }
    return pcTo;
}

// Texts are written in so large groups, each in one room.
constexpr uint32_t u32Group = uMostRoom / NumberText::MostRoom;

} // namespace

void PutRow(ByteView stView, const ReportRow &stRow, uint32_t u32Base) {
    EndOutputAt(WriteRow(OutputRoom(NumberText::MostRoom), stView, stRow, u32Base));
}

void PutRows(ByteView stView, std::span<const ReportRow> astRows, uint32_t u32Base) {
    while (!astRows.empty()) {
        const auto astGroup = astRows.first(std::min<size_t>(astRows.size(), u32Group));
        char *pcTo = OutputRoom(astGroup.size() * NumberText::MostRoom);
        for (const ReportRow &stRow : astGroup) {
            pcTo = WriteRow(pcTo, stView, stRow, u32Base);
        }
        EndOutputAt(pcTo);
        astRows = astRows.subspan(astGroup.size());
    }
}

void PutNumbersOf(const NumberText &stText, const uint32_t *pu32Values) {
    char *pcTo = OutputRoom(NumberText::MostRoom);
    switch (stText.eForm) {
    case TextForm::Decimal:
        pcTo = WriteOneNumber<false>(pcTo, stText, *pu32Values);
        break;
    case TextForm::Hex:
        pcTo = WriteOneNumber<true>(pcTo, stText, *pu32Values);
        break;
    default:
        pcTo = WriteText(pcTo, stText, [&](char *pcNumber, const Conversion &stNumber) {
            return WriteInteger(pcNumber, stNumber, *pu32Values++);
        });
    }
    EndOutputAt(pcTo);
}

void PutElements(const ElementText &stText, ByteView stView, Field stFirst, uint32_t u32Count) {
    constexpr uint32_t u32Piece = 256;
    const uint32_t u32Width = std::max(WidthOf(stFirst.eType), 1U); // there is always a type
    const uint32_t u32Present =
        std::min(u32Count, stView.From(stFirst.u16Offset).u32Length / u32Width);
    for (uint32_t i = 0; i < u32Present; i += u32Piece) {
        const uint32_t u32End = std::min(u32Present, i + u32Piece);
        // What is written behind an element is less than one more.
        char *pcTo = OutputRoom((u32End - i + 1) * ElementText::MostRoom);
        EndOutputAt(stText.eKind == NumberKind::LowerHex || stText.eKind == NumberKind::UpperHex
                        ? WriteElements<true>(pcTo, stText, stView, stFirst, i, u32End)
                        : WriteElements<false>(pcTo, stText, stView, stFirst, i, u32End));
    }
}

void PutReal(double dValue) {
    // Fractions of single-precision numbers are as fine as that, but for tiny ones.
    constexpr uint32_t u32Power = 43;
    constexpr uint64_t u64Unit = uint64_t{1} << u32Power;
    constexpr uint32_t u32MostReal = MostDigits(NumberKind::Real);
    const double dMagnitude = std::fabs(dValue);
    const double dWhole = std::floor(dMagnitude);
    const double dPart = (dMagnitude - dWhole) * static_cast<double>(u64Unit);
    char *pcTo = OutputRoom(u32MostReal + NumberText::Slack);
    if (dMagnitude < static_cast<double>(UINT32_MAX) && dPart == std::floor(dPart)) {
        EndOutputAt(WriteFixed(pcTo, std::signbit(dValue), static_cast<uint32_t>(dWhole),
                               Millionths(static_cast<uint64_t>(dPart), u32Power)));
    } else {
        // Not by std::to_chars, whose tables are a third of a client that brings its library along.
        const int iLength = std::snprintf(pcTo, u32MostReal + NumberText::Slack, "%.6f", dValue);
        EndOutputAt(pcTo + std::min(static_cast<uint32_t>(iLength), u32MostReal));
    }
}

void PutString(ByteView stBytes) { PutText(TextOf(stBytes)); }

bool HasVendorData(ByteView stView, Field stLength) {
    constexpr uint32_t u32Most = 255;
    const uint32_t u32Length = Get(stView, stLength);
    return u32Length >= 1 && u32Length <= u32Most;
}

void PutVendorData(std::string_view strHeading, ByteView stView, Field stLength,
                   uint32_t u32Offset) {
    if (HasVendorData(stView, stLength)) {
        PutLine(strHeading);
        PutEachByte("0x%02x ", stView.From(u32Offset, Get(stView, stLength)));
        PutText("\n");
    }
}

void PutClosingLine(const Banner &stBanner) {
    char *pcTo = OutputRoom(stBanner.u32Length + 3);
    pcTo = std::fill_n(pcTo, 2, '\n');
    pcTo = std::fill_n(pcTo, stBanner.u32Length, stBanner.cOwn);
    *pcTo++ = '\n';
    EndOutputAt(pcTo);
}

std::string_view NameOf(std::span<const CodeName> astNames, uint32_t u32Code,
                        std::string_view strOther) {
    for (const CodeName &stName : astNames) {
        if (stName.u32Code == u32Code) {
            return stName.strName;
        }
    }
    return strOther;
}
