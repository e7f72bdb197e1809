#include "Report.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "Console.h"

namespace {

// A conversion of a row's text: %[0][width](d|u|x|X), or %f.
struct Conversion {
    bool bZeroFilled = false;
    uint32_t u32Width = 0;
    char cKind = 'd';
};

// Reads the conversion behind a percent sign; returns where the text goes on.
const char *ParseConversion(const char *pcText, Conversion *pstConversion) {
    pstConversion->bZeroFilled = *pcText == '0';
    for (; *pcText >= '0' && *pcText <= '9'; ++pcText) {
        pstConversion->u32Width =
            pstConversion->u32Width * 10 + static_cast<uint32_t>(*pcText - '0');
    }
    pstConversion->cKind = *pcText;
    return pcText + 1;
}

// A number to be converted.
struct Number {
    uint32_t u32Value;
    bool bSigned = false;
    uint32_t u32Divisor = 1;
};

uint32_t WholePart(const Number &stNumber) {
    if (stNumber.bSigned) {
        return static_cast<uint32_t>(static_cast<int32_t>(stNumber.u32Value) /
                                     static_cast<int32_t>(stNumber.u32Divisor));
    }
    return stNumber.u32Value / stNumber.u32Divisor;
}

double RealOf(const Number &stNumber) {
    const double dValue = stNumber.bSigned ? static_cast<int32_t>(stNumber.u32Value)
                                           : static_cast<double>(stNumber.u32Value);
    return dValue / stNumber.u32Divisor;
}

void PutConverted(const Conversion &stConversion, const Number &stNumber) {
    if (stConversion.cKind == 'f') {
        PutReal(RealOf(stNumber));
        return;
    }
    const uint32_t u32Value = WholePart(stNumber);
    const char *pcDigits = stConversion.cKind == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    const bool bHexadecimal = stConversion.cKind == 'x' || stConversion.cKind == 'X';
    const bool bNegative = stConversion.cKind == 'd' && static_cast<int32_t>(u32Value) < 0;
    uint32_t u32Rest = bNegative ? 0 - u32Value : u32Value;
    char acDigits[10]; // filled from its end
    char *pcFirst = std::end(acDigits);
    do {
        *--pcFirst = pcDigits[bHexadecimal ? u32Rest % 16 : u32Rest % 10];
        u32Rest = bHexadecimal ? u32Rest / 16 : u32Rest / 10;
    } while (u32Rest != 0);
    const auto u32Count = static_cast<uint32_t>(std::end(acDigits) - pcFirst);
    const uint32_t u32Used = u32Count + (bNegative ? 1 : 0);
    const uint32_t u32Fill = stConversion.u32Width > u32Used ? stConversion.u32Width - u32Used : 0;
    char *pcTo = OutputRoom(u32Fill + u32Used);
    if (!stConversion.bZeroFilled) {
        pcTo = std::fill_n(pcTo, u32Fill, ' ');
    }
    if (bNegative) {
        *pcTo++ = '-';
    }
    if (stConversion.bZeroFilled) {
        pcTo = std::fill_n(pcTo, u32Fill, '0');
    }
    EndOutputAt(std::copy_n(pcFirst, u32Count, pcTo));
}

// Puts the text, taking the number of each conversion from NextNumber().
template <typename NumberSource> void PutConversions(const char *pcText, NumberSource NextNumber) {
    for (;;) {
        const char *pcPercent = std::strchr(pcText, '%');
        if (pcPercent == nullptr) {
            PutText(pcText);
            return;
        }
        PutText({pcText, static_cast<size_t>(pcPercent - pcText)});
        Conversion stConversion;
        pcText = ParseConversion(pcPercent + 1, &stConversion);
        PutConverted(stConversion, NextNumber());
    }
}

} // namespace

void PutRow(ByteView stView, const ReportRow &stRow, uint32_t u32Base) {
    if (stRow.stField.eType == FieldType::None) {
        PutText(stRow.pcText);
        return;
    }
    const FieldType eType = stRow.stField.eType;
    const bool bSigned =
        eType == FieldType::I8 || eType == FieldType::I16 || eType == FieldType::I32;
    PutConversions(stRow.pcText, [&] {
        const Number stNumber{Get(stView, stRow.stField, u32Base), bSigned, stRow.u32Divisor};
        u32Base += WidthOf(eType);
        return stNumber;
    });
}

void PutRows(ByteView stView, std::span<const ReportRow> astRows, uint32_t u32Base) {
    for (const ReportRow &stRow : astRows) {
        PutRow(stView, stRow, u32Base);
    }
}

void PutNumber(const char *pcText, uint32_t u32Value) {
    const uint32_t au32Values[] = {u32Value};
    PutNumbers(pcText, au32Values);
}

void PutNumbers(const char *pcText, std::span<const uint32_t> au32Values) {
    size_t uNext = 0;
    PutConversions(pcText,
                   [&] { return Number{uNext < au32Values.size() ? au32Values[uNext++] : 0}; });
}

void PutReal(double dValue) {
    char acReal[32]; // ten digits, a sign, a point and six decimals at most
    const std::to_chars_result stEnd =
        std::to_chars(acReal, std::end(acReal), dValue, std::chars_format::fixed, 6);
    PutText({acReal, static_cast<size_t>(stEnd.ptr - acReal)});
}

void PutElements(const char *pcText, ByteView stView, Field stFirst, uint32_t u32Count) {
    const uint32_t u32Width = WidthOf(stFirst.eType);
    const uint32_t u32Present = stView.From(stFirst.u16Offset).u32Length;
    for (uint32_t i = 0; i < u32Count && (i + 1) * u32Width <= u32Present; ++i) {
        PutNumber(pcText, Get(stView, stFirst, i * u32Width));
    }
}

void PutString(ByteView stBytes) { PutText(TextOf(stBytes)); }

bool HasVendorData(ByteView stView, Field stLength) {
    constexpr uint32_t u32Most = 255;
    const uint32_t u32Length = Get(stView, stLength);
    return u32Length >= 1 && u32Length <= u32Most;
}

void PutVendorData(const char *pcHeading, ByteView stView, Field stLength, uint32_t u32Offset) {
    if (HasVendorData(stView, stLength)) {
        PutLine(pcHeading);
        PutEachByte("0x%02x ", stView.From(u32Offset, Get(stView, stLength)));
        PutText("\n");
    }
}

void PutClosingLine(const char *pcBanner) {
    const char *pcFirst = pcBanner + std::strspn(pcBanner, "\n");
    const size_t uLength = std::strlen(pcFirst);
    PutText("\n\n");
    EndOutputAt(std::fill_n(OutputRoom(uLength), uLength, *pcFirst));
    PutText("\n");
}

const char *NameOf(std::span<const CodeName> astNames, uint32_t u32Code, const char *pcOther) {
    for (const CodeName &stName : astNames) {
        if (stName.u32Code == u32Code) {
            return stName.pcName;
        }
    }
    return pcOther;
}
