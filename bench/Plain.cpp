#include "Plain.h"

// The formats come from tables, so the compiler cannot look at them.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

void PutReal(FILE *pstFile, const PlainRow &stRow, ByteView stRecord) {
    const uint32_t u32Value = Get(stRecord, stRow.stField);
    const double dValue = stRow.stField.eType == FieldType::I32 ? static_cast<int32_t>(u32Value)
                                                                : static_cast<double>(u32Value);
    fprintf(pstFile, stRow.pcFormat, dValue / stRow.stExtra.u32Divisor);
}

void PutOneNumber(FILE *pstFile, const PlainRow &stRow, ByteView stRecord, uint32_t u32Base) {
    uint32_t u32Value = Get(stRecord, stRow.stField, u32Base);
    if (stRow.stExtra.u32Divisor != 1) {
        u32Value = static_cast<uint32_t>(static_cast<int32_t>(u32Value) /
                                         static_cast<int32_t>(stRow.stExtra.u32Divisor));
    }
    fprintf(pstFile, stRow.pcFormat, u32Value);
}

void PutManyNumbers(FILE *pstFile, const PlainRow &stRow, ByteView stRecord) {
    const uint32_t u32Width = WidthOf(stRow.stField.eType);
    uint32_t au32Values[7] = {};
    for (uint32_t i = 0; i < stRow.u32Conversions; ++i) {
        au32Values[i] = Get(stRecord, stRow.stField, i * u32Width);
    }
    fprintf(pstFile, stRow.pcFormat, au32Values[0], au32Values[1], au32Values[2], au32Values[3],
            au32Values[4], au32Values[5], au32Values[6]);
}

void PutValueOf(FILE *pstFile, const PlainRow &stRow, ByteView stRecord) {
    const double dValue = stRow.stExtra.pfnValue(stRecord);
    if (stRow.cKind == 'f') {
        fprintf(pstFile, stRow.pcFormat, dValue);
    } else {
        fprintf(pstFile, stRow.pcFormat, static_cast<int32_t>(dValue));
    }
}

void PutFields(FILE *pstFile, const PlainRow &stRow, ByteView stRecord) {
    const uint32_t u32Width = WidthOf(stRow.stField.eType);
    if (stRow.stExtra.u32Repeat != 1) {
        const uint32_t u32End = std::min(stRow.stExtra.u32Repeat * u32Width,
                                         stRecord.From(stRow.stField.u16Offset).u32Length);
        for (uint32_t i = 0; i + u32Width <= u32End; i += u32Width) {
            fprintf(pstFile, stRow.pcFormat, Get(stRecord, stRow.stField, i));
        }
    } else if (stRow.cKind == 's') {
        fprintf(pstFile, stRow.pcFormat, stRecord.pucData + stRow.stField.u16Offset);
    } else if (stRow.cKind == 'f') {
        PutReal(pstFile, stRow, stRecord);
    } else if (stRow.u32Conversions == 1) {
        PutOneNumber(pstFile, stRow, stRecord, 0);
    } else {
        PutManyNumbers(pstFile, stRow, stRecord);
    }
}

void PutPlainRow(FILE *pstFile, const PlainRow &stRow, ByteView stRecord, uint32_t u32Index,
                 uint32_t u32Stride) {
    if (stRow.u32Conversions == 0) {
        fputs(stRow.pcFormat, pstFile);
        return;
    }
    if (stRow.stExtra.pfnValue != nullptr) {
        PutValueOf(pstFile, stRow, stRecord);
        return;
    }
    switch (stRow.stExtra.eNumbers) {
    case Numbers::Next:
        PutFields(pstFile, stRow, stRecord);
        break;
    case Numbers::Same: {
        const uint32_t u32Value = Get(stRecord, stRow.stField);
        fprintf(pstFile, stRow.pcFormat, u32Value, u32Value);
        break;
    }
    case Numbers::Index:
        fprintf(pstFile, stRow.pcFormat, u32Index + stRow.stField.u16Offset);
        break;
    case Numbers::BehindIndex:
        fprintf(pstFile, stRow.pcFormat, u32Index, Get(stRecord, stRow.stField));
        break;
    case Numbers::Address:
        fprintf(pstFile, stRow.pcFormat, u32Index * u32Stride);
        break;
    }
}

} // namespace

void PutPlain(FILE *pstFile, ByteView stPayload, const std::vector<PlainBlock> &astBlocks) {
    for (const PlainBlock &stBlock : astBlocks) {
        VisitRows(stPayload, stBlock,
                  [&](const PlainRow &stRow, ByteView stRecord, uint32_t u32Index) {
                      PutPlainRow(pstFile, stRow, stRecord, u32Index, stBlock.u32Stride);
                  });
    }
}
