// Reports as data: rows of text whose numbers are fields of a record.
#ifndef REPORT_H
#define REPORT_H

#include <cstdint>
#include <span>

#include "HexDump.h"
#include "Wire.h"

// One row. Each conversion in the text (%d, %u, %x, %X, with or without a zero
// and a width) prints one number: the first the field, each further one the
// field of the same type right behind the one before, so that a BS ID is one
// byte field and six conversions. A row without a field is plain text.
// A field in fractions of a unit has a divisor: %f prints the exact quotient
// with six decimals, the others the whole part.
struct ReportRow {
    const char *pcText;
    Field stField = {};
    uint32_t u32Divisor = 1;
};

// Prints one row, or all of them; u32Base is where the record begins in the view.
void PutRow(ByteView stView, const ReportRow &stRow, uint32_t u32Base = 0);
void PutRows(ByteView stView, std::span<const ReportRow> astRows, uint32_t u32Base = 0);
// A row with numbers that are no fields. Further conversions print 0.
void PutNumber(const char *pcText, uint32_t u32Value);
void PutNumbers(const char *pcText, std::span<const uint32_t> au32Values);
// A number with six decimals, as %f prints it: no more than ten digits before
// the point.
void PutReal(double dValue);
// Every element of an array by the same text: u32Count of them from stFirst on,
// as far as the view has them.
void PutElements(const char *pcText, ByteView stView, Field stFirst, uint32_t u32Count);
// The text that the bytes hold: it ends at a zero byte or with them.
void PutString(ByteView stBytes);

// True when the length field says that there are vendor-specific data: 1 to 255
// bytes.
bool HasVendorData(ByteView stView, Field stLength);
// Vendor-specific data, if there are any: the heading with its line end, the
// bytes from u32Offset as far as the view has them, a line end.
void PutVendorData(const char *pcHeading, ByteView stView, Field stLength, uint32_t u32Offset);

// The line that closes a report or a menu whose banner is pcBanner: two line
// ends, the banner's own character as often as the banner is long, a line end.
void PutClosingLine(const char *pcBanner);

// The name of a code, or pcOther when the table has none.
struct CodeName {
    uint32_t u32Code;
    const char *pcName;
};
const char *NameOf(std::span<const CodeName> astNames, uint32_t u32Code, const char *pcOther);

#endif
