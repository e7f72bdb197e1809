#include "JSON.h"

#include "Names.h"
#include "Times.h"

namespace {

// The members of an object, one behind the other.
struct Members {
    Writer &stWriter;
    bool bFirst = true;

    void Name(std::string_view strName) {
        stWriter.Put(bFirst ? "\"" : ",\"");
        stWriter.Put(strName);
        stWriter.Put("\":");
        bFirst = false;
    }
    void Number(std::string_view strName, std::integral auto Value) {
        Name(strName);
        stWriter.PutNumber(Value);
    }
    void True(std::string_view strName, bool bValue) {
        if (bValue) {
            Name(strName);
            stWriter.Put("true");
        }
    }
    // A text that needs no escapes.
    void Word(std::string_view strName, std::string_view strWord) {
        Name(strName);
        stWriter.Put('"');
        stWriter.Put(strWord);
        stWriter.Put('"');
    }
    void Hex(std::string_view strName, ByteView stBytes) {
        Name(strName);
        stWriter.Put('"');
        stWriter.PutHex(stBytes);
        stWriter.Put('"');
    }
};

struct FieldMembers {
    Members stMembers;
    Writer &stWriter = stMembers.stWriter;

    // Before an element of a list, or a member of an object.
    void Begin(const FoundField &stFound) {
        if (stFound.eWhat == Found::ListBegin || !IsList(*stFound.pstRow)) {
            stMembers.Name(PlainNameOf(stFound));
        } else if (stFound.u32Index != 0) {
            stWriter.Put(',');
        }
    }

    void PutValue(const FoundField &stFound) const {
        if (IsNumber(stFound)) {
            stWriter.PutFraction(NumberOf(stFound), stFound.pstRow->u32Divisor);
            return;
        }
        if (stFound.pstRow->eShown == Shown::Text) {
            PutJSONText(stWriter, TextOf(stFound.stBytes));
            return;
        }
        stWriter.Put('"');
        stWriter.PutHex(stFound.stBytes, stFound.pstRow->eShown == Shown::Address ? ":" : "");
        stWriter.Put('"');
    }

    void PutCodeName(const FoundField &stFound) {
        const std::string_view strName = CodeNameOf(stFound);
        if (!strName.empty() && !IsList(*stFound.pstRow)) {
            stWriter.Put(",\"");
            stWriter.Put(stFound.pstRow->stName.Plain());
            stWriter.Put("_name\":\"");
            stWriter.Put(strName);
            stWriter.Put('"');
        }
    }

    void Visit(const FoundField &stFound) {
        switch (stFound.eWhat) {
        case Found::Field:
            Begin(stFound);
            PutValue(stFound);
            PutCodeName(stFound);
            return;
        case Found::ListBegin:
            Begin(stFound);
            stWriter.Put('[');
            return;
        case Found::ListEnd:
            stWriter.Put(']');
            return;
        case Found::RecordBegin:
            Begin(stFound);
            stWriter.Put('{');
            stMembers.bFirst = true;
            return;
        case Found::RecordEnd:
            stWriter.Put('}');
            stMembers.bFirst = false;
            return;
        }
    }
};

// The lines NAME=VALUE.
void PutOrigins(Members *pstMembers, std::string_view strLines) {
    pstMembers->Name("session");
    pstMembers->stWriter.Put('{');
    bool bFirst = true;
    while (!strLines.empty()) {
        const std::string_view strLine = strLines.substr(0, strLines.find('\n'));
        strLines.remove_prefix(std::min(strLine.size() + 1, strLines.size()));
        const size_t uEqual = std::min(strLine.find('='), strLine.size());
        pstMembers->stWriter.Put(bFirst ? "" : ",");
        bFirst = false;
        PutJSONText(pstMembers->stWriter, strLine.substr(0, uEqual));
        pstMembers->stWriter.Put(':');
        PutJSONText(pstMembers->stWriter, strLine.substr(std::min(uEqual + 1, strLine.size())));
    }
    pstMembers->stWriter.Put('}');
}

void PutPayload(Members *pstMembers, const Entry &stEntry) {
    if (stEntry.pstMessage == nullptr) {
        if (stEntry.stPayload.u32Length != 0) {
            pstMembers->Hex("payload", stEntry.stPayload);
        }
        return;
    }
    pstMembers->True("wrong_size", !HasRightSize(*stEntry.pstMessage, stEntry.stPayload));
    pstMembers->Name("fields");
    pstMembers->stWriter.Put('{');
    FieldMembers stFields{{pstMembers->stWriter}};
    WalkMessage(*stEntry.pstMessage, stEntry.stPayload,
                [&](const FoundField &stFound) { stFields.Visit(stFound); });
    pstMembers->stWriter.Put('}');
}

bool Ends(const Event &stEvent) {
    return IsResult(stEvent.eKind) || stEvent.eKind == EventKind::MessageDone;
}

// What the kinds of events have besides number and time.
void PutOwnMembers(Members *pstMembers, const Event &stEvent) {
    switch (stEvent.eKind) {
    case EventKind::Register:
        pstMembers->Number("handle", stEvent.u32Handle);
        pstMembers->Number("context", stEvent.u32Word);
        break;
    case EventKind::Send:
        pstMembers->Number("handle", stEvent.u32Handle);
        pstMembers->Number("length", stEvent.u32Length);
        break;
    case EventKind::Message:
        pstMembers->Number("context", stEvent.u32Word);
        pstMembers->Number("length", stEvent.u32Length);
        break;
    default:
        break;
    }
    pstMembers->True("null", (stEvent.u16Flags & EventFlag::Null) != 0);
    pstMembers->True("more", (stEvent.u16Flags & EventFlag::More) != 0);
    if (Ends(stEvent)) {
        pstMembers->Number("belongs_to", stEvent.u32BelongsTo);
        pstMembers->Number("result", stEvent.s32Result);
        pstMembers->True("failed", HasFailed(stEvent));
        pstMembers->Number("duration_ns", stEvent.u64Duration);
    }
}

} // namespace

void PutJSONText(Writer &stWriter, std::string_view strText) {
    stWriter.Put('"');
    while (!strText.empty()) {
        const char cFirst = strText.front();
        const uint32_t u32Length = CharacterLength(strText);
        if (u32Length == 0) {
            stWriter.Put("\xEF\xBF\xBD");
        } else if (cFirst == '"' || cFirst == '\\') {
            stWriter.Put('\\');
            stWriter.Put(cFirst);
        } else if (u32Length > 1 || (cFirst >= ' ' && cFirst != '\x7f')) {
            stWriter.Put(strText.substr(0, u32Length));
        } else {
            stWriter.Put("\\u00");
            stWriter.PutHex({reinterpret_cast<const uint8_t *>(strText.data()), 1});
        }
        strText.remove_prefix(std::max(u32Length, 1U));
    }
    stWriter.Put('"');
}

void PutJSONEntry(Writer &stWriter, bool bRaw, const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    stWriter.Put('{');
    Members stMembers{stWriter};
    stMembers.Number("number", stEvent.u32Number);
    stMembers.Name("time");
    stWriter.Put('"');
    PutTime(stWriter, stEvent.i64Time, 'T');
    stWriter.Put("Z\"");
    stMembers.Word("event", NameOf(stEvent.eKind));
    stMembers.Word("direction", IsSent(stEvent) ? "sent" : "received");
    if (stEntry.stCodes) {
        stMembers.Number("type", stEntry.stCodes->u16Type);
        stMembers.Number("subtype", stEntry.stCodes->u16SubType);
    }
    if (stEntry.pstSubject != nullptr) {
        stMembers.Word("name", stEntry.pstSubject->stName.Plain());
    }
    PutOwnMembers(&stMembers, stEvent);
    if (stEntry.u32Answers != 0) {
        stMembers.Number("answers", stEntry.u32Answers);
        stMembers.Number("latency_ns", stEntry.i64Latency);
    }
    if (stEvent.eKind == EventKind::Session) {
        PutOrigins(&stMembers, {reinterpret_cast<const char *>(stEvent.stBytes.pucData),
                                stEvent.stBytes.u32Length});
    }
    PutPayload(&stMembers, stEntry);
    if (bRaw) {
        stMembers.Hex("raw", stEvent.stBytes);
    }
    stWriter.Put("}\n");
}
