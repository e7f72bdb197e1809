// Reports as data: rows of text whose numbers are fields of a record.
#ifndef REPORT_H
#define REPORT_H

#include <bit>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

#include "HexDump.h"
#include "NumberText.h"
#include "Wire.h"

// The quotients that %f prints exactly: those by a power of two or by a divisor
// of a million.
constexpr bool HasExactDecimals(uint32_t u32Divisor) {
    constexpr uint32_t u32Most = 1000000;
    return u32Divisor > 1 && u32Divisor <= u32Most &&
           (std::has_single_bit(u32Divisor) || u32Most % u32Divisor == 0);
}

// One row. Each conversion in the text (%d, %u, %x, %X, with or without a zero
// and a width) prints one number: the first the field, each further one the
// field of the same type right behind the one before, so that a BS ID is one
// byte field and six conversions. A row without a field is plain text.
// A field in fractions of a unit has a divisor: %f prints the exact quotient
// with six decimals, the others the whole part.
struct ReportRow {
    NumberText stText;
    Field stField;
    uint32_t u32Divisor;

    // A text that does not go with its field does not compile.
    consteval ReportRow(const char *pcText, Field stNumber = {}, uint32_t u32DividedBy = 1)
        : stText(pcText), stField(stNumber), u32Divisor(u32DividedBy) {
        if ((stText.u8Numbers != 0) != (stField.eType != FieldType::None)) {
            throw "a field without a number, or a number without a field";
        }
        if (HasReal(stText) ? !HasExactDecimals(u32Divisor)
                            : u32Divisor == 0 || u32Divisor > INT32_MAX) {
            throw "no divisor for this number";
        }
        if (u32Divisor != 1 ||
            (stText.eForm == TextForm::Pairs && stField.eType != FieldType::U8)) {
            stText.eForm = TextForm::Other;
        }
    }
};

static_assert(sizeof(ReportRow) == sizeof(NumberText) + sizeof(Field) + sizeof(uint32_t));

// Prints one row, or all of them; u32Base is where the record begins in the view.
void PutRow(ByteView stView, const ReportRow &stRow, uint32_t u32Base = 0);
void PutRows(ByteView stView, std::span<const ReportRow> astRows, uint32_t u32Base = 0);
// A row with numbers that are no fields, one for each conversion.
void PutNumbersOf(const NumberText &stText, const uint32_t *pu32Values);
inline void PutNumber(const TextWith<1> &stText, uint32_t u32Value) {
    PutNumbersOf(stText, &u32Value);
}
template <uint32_t u32Count>
void PutNumbers(const std::type_identity_t<TextWith<u32Count>> &stText,
                const uint32_t (&au32Values)[u32Count]) {
    PutNumbersOf(stText, au32Values);
}
// A number with six decimals, as %f prints it: no more than ten digits before
// the point.
void PutReal(double dValue);
// Every element of an array by the same text: u32Count of them from stFirst on,
// as far as the view has them.
void PutElements(const ElementText &stText, ByteView stView, Field stFirst, uint32_t u32Count);
// The text that the bytes hold: it ends at a zero byte or with them.
void PutString(ByteView stBytes);

// True when the length field says that there are vendor-specific data: 1 to 255
// bytes.
bool HasVendorData(ByteView stView, Field stLength);
// Vendor-specific data, if there are any: the heading with its line end, the
// bytes from u32Offset as far as the view has them, a line end.
void PutVendorData(std::string_view strHeading, ByteView stView, Field stLength,
                   uint32_t u32Offset);

// A banner, and what the line has that closes its report or menu: the banner's
// own character as often as the banner is long.
struct Banner {
    std::string_view strText;
    uint32_t u32Length = 0; // without the line ends before it
    char cOwn;

    consteval Banner(const char *pcBanner) : strText(pcBanner) {
        const size_t uFirst = strText.find_first_not_of('\n');
        u32Length = static_cast<uint32_t>(strText.size() - uFirst);
        cOwn = strText[uFirst];
    }
};
// Two line ends, the closing line, a line end.
void PutClosingLine(const Banner &stBanner);

// The name of a code, or strOther when the table has none.
struct CodeName {
    uint32_t u32Code;
    std::string_view strName;
};
std::string_view NameOf(std::span<const CodeName> astNames, uint32_t u32Code,
                        std::string_view strOther);

#endif
