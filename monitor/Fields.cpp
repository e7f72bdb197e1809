#include "Fields.h"

#include <algorithm>

#include "Names.h"

namespace {

constexpr uint32_t u32Indent = 4;
constexpr uint32_t u32StepIndent = 2;
constexpr uint32_t u32LineBytes = 32;

struct FieldLines {
    Writer &stWriter;
    uint32_t u32Depth = 0;

    void Indent() const { stWriter.PutSpaces(u32Indent + size_t{u32Depth} * u32StepIndent); }
    void Begin(std::string_view strName) const {
        Indent();
        stWriter.Put(strName);
        stWriter.Put(':');
    }

    void PutBytes(ByteView stBytes) const {
        if (stBytes.u32Length == 0) {
            stWriter.Put(" none");
        }
        for (uint32_t i = 0; i < stBytes.u32Length; i += u32LineBytes) {
            if (stBytes.u32Length > u32LineBytes) {
                stWriter.Put('\n');
                Indent();
                stWriter.Put(' ');
            }
            stWriter.Put(' ');
            stWriter.PutHex(stBytes.From(i, u32LineBytes), " ");
        }
    }

    void PutNumber(const FoundField &stFound) const {
        const FieldRow &stRow = *stFound.pstRow;
        stWriter.Put(' ');
        if (stRow.eShown == Shown::Hexadecimal) {
            stWriter.Put("0x");
            stWriter.PutNumber(stFound.u32Value, 16);
        } else {
            stWriter.PutFraction(NumberOf(stFound), stRow.u32Divisor);
        }
        if (const std::string_view strName = CodeNameOf(stFound); !strName.empty()) {
            stWriter.Put(" (");
            stWriter.Put(strName);
            stWriter.Put(')');
        }
        if (!IsRun(stRow) && stFound.stBytes.u32Length < WidthOf(stRow.stField.eType)) {
            stWriter.Put(" (cut off)");
        }
    }

    void PutUnit(const FieldRow &stRow) const {
        if (*stRow.pcUnit != '\0') {
            stWriter.Put(' ');
            stWriter.Put(stRow.pcUnit);
        }
    }

    void PutValue(const FoundField &stFound) const {
        if (IsNumber(stFound)) {
            PutNumber(stFound);
        } else if (stFound.pstRow->eShown == Shown::Text) {
            stWriter.Put(' ');
            PutQuoted(stWriter, TextOf(stFound.stBytes));
        } else if (stFound.pstRow->eShown == Shown::Address) {
            stWriter.Put(' ');
            stWriter.PutHex(stFound.stBytes, ":");
        } else {
            PutBytes(stFound.stBytes);
        }
    }

    void PutMissing(const FoundField &stFound) const {
        if (stFound.u32Count < stFound.u32Announced) {
            stWriter.Put(" (of ");
            stWriter.PutNumber(stFound.u32Announced);
            stWriter.Put(')');
        }
    }

    void Visit(const FoundField &stFound) {
        const FieldRow &stRow = *stFound.pstRow;
        const bool bRecords = stRow.pstRecord != nullptr;
        switch (stFound.eWhat) {
        case Found::Field:
            if (IsList(stRow)) {
                PutValue(stFound);
                return;
            }
            Begin(stRow.stName.Plain());
            PutValue(stFound);
            PutUnit(stRow);
            stWriter.Put('\n');
            return;
        case Found::ListBegin:
            Begin(stRow.stName.Plain());
            if (stFound.u32Count == 0) {
                stWriter.Put(" none");
            }
            if (bRecords) {
                PutMissing(stFound);
                stWriter.Put('\n');
                ++u32Depth;
            }
            return;
        case Found::ListEnd:
            if (bRecords) {
                --u32Depth;
                return;
            }
            if (stFound.u32Count != 0) {
                PutUnit(stRow);
            }
            PutMissing(stFound);
            stWriter.Put('\n');
            return;
        case Found::RecordBegin:
            if (IsList(stRow)) {
                Indent();
                stWriter.Put('[');
                stWriter.PutNumber(stFound.u32Index);
                stWriter.Put("]");
            } else {
                Begin(PlainNameOf(stFound));
            }
            stWriter.Put('\n');
            ++u32Depth;
            return;
        case Found::RecordEnd:
            --u32Depth;
            return;
        }
    }
};

bool IsPrintable(char cChar) { return cChar >= ' ' && cChar <= '~'; }

} // namespace

void PutFields(Writer &stWriter, const MessageRow &stMessage, ByteView stPayload) {
    FieldLines stLines{stWriter};
    WalkMessage(stMessage, stPayload, [&](const FoundField &stFound) { stLines.Visit(stFound); });
}

void PutUnknown(Writer &stWriter, ByteView stBytes) {
    const FieldLines stLines{stWriter};
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32LineBytes) {
        stLines.Indent();
        stWriter.PutHex(stBytes.From(i, u32LineBytes), " ");
        stWriter.Put('\n');
    }
}

void PutDump(Writer &stWriter, ByteView stBytes) {
    constexpr uint32_t u32DumpBytes = 16;
    constexpr uint32_t u32CharactersColumn = u32DumpBytes * 3 + 1;
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32DumpBytes) {
        const ByteView stLine = stBytes.From(i, u32DumpBytes);
        stWriter.PutSpaces(u32Indent);
        const uint8_t aucPlace[] = {static_cast<uint8_t>(i >> 16), static_cast<uint8_t>(i >> 8),
                                    static_cast<uint8_t>(i)};
        stWriter.PutHex({aucPlace, sizeof aucPlace});
        stWriter.Put("  ");
        stWriter.PutHex(stLine, " ");
        stWriter.PutSpaces(u32CharactersColumn + 1 - stLine.u32Length * 3);
        for (uint32_t j = 0; j < stLine.u32Length; ++j) {
            const char cChar = static_cast<char>(stLine.At(j));
            stWriter.Put(IsPrintable(cChar) ? cChar : '.');
        }
        stWriter.Put('\n');
    }
}

void PutQuoted(Writer &stWriter, std::string_view strText) {
    stWriter.Put('"');
    while (!strText.empty()) {
        const char cFirst = strText.front();
        size_t uLength = CharacterLength(strText);
        if (cFirst == '"' || cFirst == '\\') {
            stWriter.Put('\\');
            stWriter.Put(cFirst);
            // A control character of C1 takes two bytes.
        } else if (uLength > 2 || IsPrintable(cFirst) ||
                   (uLength == 2 && strText.substr(0, 2) >= "\xC2\xA0")) {
            stWriter.Put(strText.substr(0, uLength));
        } else {
            uLength = 1;
            stWriter.Put("\\x");
            stWriter.PutHex({reinterpret_cast<const uint8_t *>(strText.data()), 1});
        }
        strText.remove_prefix(uLength);
    }
    stWriter.Put('"');
}
