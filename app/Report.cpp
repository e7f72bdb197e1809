#include "Report.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "Console.h"

namespace {

// The three digits of every number below 1000, and how many of them count.
struct ThreeDigits {
    char acDigits[3];
    uint8_t u8Count;
};

// Four characters can be copied from any digit on.
constexpr auto astDigits = [] {
    std::array<ThreeDigits, 1001> astTable{};
    for (uint32_t i = 0; i < 1000; ++i) {
        astTable[i] = {{static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                        static_cast<char>('0' + i % 10)},
                       static_cast<uint8_t>(1 + (i >= 10 ? 1 : 0) + (i >= 100 ? 1 : 0))};
    }
    return astTable;
}();

inline char *WriteThree(char *pcTo, uint32_t u32Value) {
    std::memcpy(pcTo, &astDigits[u32Value], 4);
    return pcTo + 3;
}

// A number below 1000 without zeros before it.
inline char *WriteFirst(char *pcTo, uint32_t u32Value) {
    const ThreeDigits &stDigits = astDigits[u32Value];
    std::memcpy(pcTo, reinterpret_cast<const char *>(&stDigits) + 3 - stDigits.u8Count, 4);
    return pcTo + stDigits.u8Count;
}

inline char *WriteDecimal(char *pcTo, uint32_t u32Value) {
    if (u32Value < 1000) {
        return WriteFirst(pcTo, u32Value);
    }
    const uint32_t u32Thousands = u32Value / 1000;
    if (u32Thousands < 1000) {
        pcTo = WriteFirst(pcTo, u32Thousands);
    } else if (u32Thousands < 1000000) {
        pcTo = WriteThree(WriteFirst(pcTo, u32Thousands / 1000), u32Thousands % 1000);
    } else {
        *pcTo++ = static_cast<char>('0' + u32Thousands / 1000000);
        pcTo = WriteThree(WriteThree(pcTo, u32Thousands / 1000 % 1000), u32Thousands % 1000);
    }
    return WriteThree(pcTo, u32Value % 1000);
}

inline char *WriteHex(char *pcTo, uint32_t u32Value, bool bUpperCase) {
    const char *pcPairs = HexPairs(bUpperCase);
    const uint32_t u32Digits = (static_cast<uint32_t>(std::bit_width(u32Value | 1)) + 3) / 4;
    for (uint32_t i = u32Digits; i-- > 0; u32Value >>= 4) {
        pcTo[i] = pcPairs[(u32Value & 0xF) * 2 + 1];
    }
    return pcTo + u32Digits;
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
    const bool bUpperCase = stNumber.eKind == NumberKind::UpperHex;
    const bool bHexadecimal = bUpperCase || stNumber.eKind == NumberKind::LowerHex;
    if (stNumber.u8Width == 2 && stNumber.bZeroFilled) {
        if (bHexadecimal && u32Value <= UINT8_MAX) {
            std::memcpy(pcTo, HexPairs(bUpperCase) + size_t{2} * u32Value, 2);
            return pcTo + 2;
        }
        if (!bHexadecimal && u32Value < 100) {
            std::memcpy(pcTo, &astDigits[u32Value].acDigits[1], 2);
            return pcTo + 2;
        }
    }
    if (stNumber.u8Width != 0) {
        return WriteWide(pcTo, stNumber, u32Value, bHexadecimal);
    }
    if (bHexadecimal) {
        return WriteHex(pcTo, u32Value, bUpperCase);
    }
    const uint32_t u32Sign = stNumber.eKind == NumberKind::Signed ? u32Value >> 31 : 0;
    *pcTo = '-';
    return WriteDecimal(pcTo + u32Sign, (u32Value ^ (0 - u32Sign)) + u32Sign);
}

constexpr uint32_t u32Million = 1000000;

// A number whose fraction is a quotient, rounded to six decimals, ties
// to even.
char *WriteFixed(char *pcTo, bool bNegative, uint32_t u32Units, uint64_t u64Numerator,
                 uint64_t u64Denominator) {
    const uint64_t u64Product = u64Numerator * u32Million;
    auto u32Decimals = static_cast<uint32_t>(u64Product / u64Denominator);
    const uint64_t u64Rest = u64Product % u64Denominator;
    if (u64Rest > u64Denominator / 2 || (u64Rest * 2 == u64Denominator && u32Decimals % 2 != 0)) {
        ++u32Decimals;
    }
    if (u32Decimals == u32Million) {
        u32Decimals = 0;
        ++u32Units;
    }
    if (bNegative) {
        *pcTo++ = '-';
    }
    pcTo = WriteDecimal(pcTo, u32Units);
    *pcTo++ = '.';
    return WriteThree(WriteThree(pcTo, u32Decimals / 1000), u32Decimals % 1000);
}

// Signed numbers come with the sign extended to all of the 32 bits.
bool IsSigned(FieldType eType) {
    return eType == FieldType::I8 || eType == FieldType::I16 || eType == FieldType::I32;
}

char *WriteQuotient(char *pcTo, const Conversion &stNumber, uint32_t u32Value, bool bSigned,
                    uint32_t u32Divisor) {
    const bool bNegative = bSigned && static_cast<int32_t>(u32Value) < 0;
    const uint32_t u32Magnitude = bNegative ? 0 - u32Value : u32Value;
    const uint32_t u32Whole = u32Magnitude / u32Divisor;
    if (stNumber.eKind == NumberKind::Real) {
        return WriteFixed(pcTo, bNegative, u32Whole, u32Magnitude % u32Divisor, u32Divisor);
    }
    return WriteInteger(pcTo, stNumber, bNegative ? 0 - u32Whole : u32Whole);
}

template <size_t uSize> inline void CopyBlock(char *pcTo, const char *pcFrom) {
    std::memcpy(pcTo, pcFrom, uSize);
}

// Texts are short, and their lengths differ: cheaper than a call. The blocks at
// both ends overlap.
inline char *CopyText(char *pcTo, const char *pcFrom, size_t uBytes) {
    if (uBytes >= 16) {
        for (size_t i = 0; i < uBytes - 16; i += 16) {
            CopyBlock<16>(pcTo + i, pcFrom + i);
        }
        CopyBlock<16>(pcTo + uBytes - 16, pcFrom + uBytes - 16);
    } else if (uBytes >= 8) {
        CopyBlock<8>(pcTo, pcFrom);
        CopyBlock<8>(pcTo + uBytes - 8, pcFrom + uBytes - 8);
    } else if (uBytes >= 4) {
        CopyBlock<4>(pcTo, pcFrom);
        CopyBlock<4>(pcTo + uBytes - 4, pcFrom + uBytes - 4);
    } else if (uBytes != 0) {
        pcTo[0] = pcFrom[0];
        pcTo[uBytes / 2] = pcFrom[uBytes / 2];
        pcTo[uBytes - 1] = pcFrom[uBytes - 1];
    }
    return pcTo + uBytes;
}

// Writes the text; WriteNext(to, conversion) writes each number. Takes
// NumberText::MostRoom of room at most.
template <typename NumberWriter>
inline char *WriteText(char *pcTo, const NumberText &stText, NumberWriter WriteNext) {
    const char *pcFrom = stText.pcText;
    for (uint32_t i = 0; i < stText.u8Numbers; ++i) {
        const Conversion &stNumber = stText.astNumbers[i];
        pcTo = CopyText(pcTo, pcFrom, stNumber.u8Before);
        pcFrom += stNumber.u8Before + stNumber.u8Own;
        pcTo = WriteNext(pcTo, stNumber);
    }
    return CopyText(pcTo, pcFrom, stText.u8Behind);
}

inline char *WriteRow(char *pcTo, ByteView stView, const ReportRow &stRow, uint32_t u32Base) {
    const Field stField = stRow.stField;
    return WriteText(pcTo, stRow.stText, [&](char *pcNumber, const Conversion &stNumber) {
        const uint32_t u32Value = Get(stView, stField, u32Base);
        u32Base += WidthOf(stField.eType);
        return stRow.u32Divisor == 1 ? WriteInteger(pcNumber, stNumber, u32Value)
                                     : WriteQuotient(pcNumber, stNumber, u32Value,
                                                     IsSigned(stField.eType), stRow.u32Divisor);
    });
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
    EndOutputAt(WriteText(OutputRoom(NumberText::MostRoom), stText,
                          [&](char *pcTo, const Conversion &stNumber) {
                              return WriteInteger(pcTo, stNumber, *pu32Values++);
                          }));
}

void PutElements(const TextWith<1> &stText, ByteView stView, Field stFirst, uint32_t u32Count) {
    const uint32_t u32Width = WidthOf(stFirst.eType);
    const uint32_t u32Bytes = stView.From(stFirst.u16Offset).u32Length;
    for (uint32_t i = 0; i < u32Count && (i + 1) * u32Width <= u32Bytes;) {
        const uint32_t u32End = std::min(u32Count, i + u32Group);
        char *pcTo = OutputRoom(size_t{u32End - i} * NumberText::MostRoom);
        for (; i < u32End && (i + 1) * u32Width <= u32Bytes; ++i) {
            pcTo = WriteText(pcTo, stText, [&](char *pcNumber, const Conversion &stNumber) {
                return WriteInteger(pcNumber, stNumber, Get(stView, stFirst, i * u32Width));
            });
        }
        EndOutputAt(pcTo);
    }
}

void PutReal(double dValue) {
    // Fractions of single-precision numbers are as fine as that, but for tiny ones.
    constexpr uint64_t u64Unit = uint64_t{1} << 43;
    constexpr uint32_t u32MostReal = MostDigits(NumberKind::Real);
    const double dMagnitude = std::fabs(dValue);
    const double dWhole = std::floor(dMagnitude);
    const double dPart = (dMagnitude - dWhole) * static_cast<double>(u64Unit);
    char *pcTo = OutputRoom(u32MostReal + NumberText::Slack);
    if (dMagnitude < static_cast<double>(UINT32_MAX) && dPart == std::floor(dPart)) {
        EndOutputAt(WriteFixed(pcTo, std::signbit(dValue), static_cast<uint32_t>(dWhole),
                               static_cast<uint64_t>(dPart), u64Unit));
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
