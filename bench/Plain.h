// The plain way to print a report, as a measure: one formatted print to a FILE
// for each field and for each byte of a dump, in the order of the report.
#ifndef PLAIN_H
#define PLAIN_H

#include <cstdio>
#include <vector>

#include "Wire.h"

enum class Numbers : uint8_t {
    Next,        // the field, then the fields of the same type behind it
    Same,        // the field, for every conversion
    Index,       // which record of the block this is, counted from the field's place
    BehindIndex, // the index, then the field
    Address,     // where the record begins in its block
};

struct PlainExtra {
    uint32_t u32Repeat = 1; // one print for each element of an array, as far as received
    uint32_t u32Divisor = 1;
    Numbers eNumbers = Numbers::Next;
    double (*pfnValue)(ByteView stRecord) = nullptr; // for a number that is no field
};

// One print: a text, or up to seven numbers, or %s for the text at the field.
struct PlainRow {
    const char *pcFormat;
    Field stField;
    PlainExtra stExtra;
    uint32_t u32Conversions = 0;
    char cKind = '\0'; // of the last conversion

    constexpr PlainRow(const char *pcText, Field stNumber = {}, PlainExtra stMore = {})
        : pcFormat(pcText), stField(stNumber), stExtra(stMore) {
        for (; *pcText != '\0'; ++pcText) {
            if (*pcText == '%') {
                ++u32Conversions;
                do {
                    cKind = *++pcText;
                } while (cKind >= '0' && cKind <= '9');
            }
        }
    }
};

// Rows for every record of u32Stride bytes (0: one record) in the u32Size bytes
// from u32Base on.
struct PlainBlock {
    std::vector<PlainRow> astRows;
    uint32_t u32Base = 0;
    uint32_t u32Size = UINT32_MAX;
    uint32_t u32Stride = 0;
};

// Calls Visit(row, record, index) for every row of every record of a block.
template <typename Visitor>
void VisitRows(ByteView stPayload, const PlainBlock &stBlock, Visitor Visit) {
    const ByteView stBytes = stPayload.From(stBlock.u32Base, stBlock.u32Size);
    const uint32_t u32Stride = stBlock.u32Stride != 0 ? stBlock.u32Stride : UINT32_MAX;
    uint32_t u32Index = 0;
    uint32_t u32Start = 0;
    do {
        for (const PlainRow &stRow : stBlock.astRows) {
            Visit(stRow, stBytes.From(u32Start, u32Stride), u32Index);
        }
        ++u32Index;
        u32Start = u32Stride == UINT32_MAX ? stBytes.u32Length : u32Index * u32Stride;
    } while (u32Start < stBytes.u32Length);
}

void PutPlain(FILE *pstFile, ByteView stPayload, const std::vector<PlainBlock> &astBlocks);

#endif
