#include "Text.h"

#include <algorithm>
#include <string>

#include "ClientReport.h"
#include "Fields.h"
#include "Times.h"

namespace {

constexpr std::string_view strPlain = "\x1b[0m";
constexpr std::string_view strOfSent = "\x1b[1;32m";
constexpr std::string_view strOfReceived = "\x1b[1;34m";
constexpr std::string_view strOfFailure = "\x1b[1;31m";

constexpr std::string_view strIndent = "    ";

// What a terminal may do something at.
constexpr bool IsControl(char cChar) {
    const auto u8Char = static_cast<uint8_t>(cChar);
    return (u8Char < ' ' && u8Char != '\n' && u8Char != '\t') || u8Char == 0x7F;
}

bool HasControl(std::string_view strText) {
    // Without a way out, so that many characters are looked at at once.
    uint8_t u8Any = 0;
    for (const char cChar : strText) {
        const auto u8Char = static_cast<uint8_t>(cChar);
        const auto u8Low = static_cast<uint8_t>(u8Char < ' ' ? 1 : 0);
        const auto u8Allowed = static_cast<uint8_t>(u8Char == '\n' || u8Char == '\t' ? 1 : 0);
        u8Any |= static_cast<uint8_t>((u8Low & ~u8Allowed) | (u8Char == 0x7F ? 1 : 0));
    }
    return u8Any != 0;
}

// The lines of a report, indented, without the empty ones at both ends.
void PutReport(Writer &stWriter, std::string_view strReport) {
    std::string strTamed;
    if (HasControl(strReport)) {
        strTamed = strReport;
        std::ranges::replace_if(strTamed, IsControl, '.');
        strReport = strTamed;
    }
    while (strReport.ends_with('\n')) {
        strReport.remove_suffix(1);
    }
    while (strReport.starts_with('\n')) {
        strReport.remove_prefix(1);
    }
    while (!strReport.empty()) {
        const std::string_view strLine = strReport.substr(0, strReport.find('\n'));
        stWriter.Put(strLine.empty() ? std::string_view() : strIndent);
        stWriter.Put(strLine);
        stWriter.Put('\n');
        strReport.remove_prefix(std::min(strLine.size() + 1, strReport.size()));
    }
}

void PutNameAndSize(Writer &stWriter, const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    if (stEntry.stCodes) {
        stWriter.Put(stEntry.pstSubject != nullptr ? stEntry.pstSubject->stName.Plain()
                                                   : "unknown_message");
        stWriter.Put(' ');
        stWriter.PutNumber(stEntry.stCodes->u16Type);
        stWriter.Put('/');
        stWriter.PutNumber(stEntry.stCodes->u16SubType);
    } else {
        stWriter.Put((stEvent.u16Flags & EventFlag::Null) != 0 ? "null message" : "cut message");
    }
    if (stEvent.eKind == EventKind::Send || stEvent.eKind == EventKind::Message) {
        stWriter.Put(", ");
        stWriter.PutNumber(stEvent.u32Length);
        stWriter.Put(" bytes");
        if (stEntry.pstMessage != nullptr &&
            !HasRightSize(*stEntry.pstMessage, stEntry.stPayload)) {
            stWriter.Put(" (wrong size)");
        }
    }
}

void PutCall(Writer &stWriter, const Event &stEvent) {
    const std::string_view strName = NameOf(stEvent.eKind);
    stWriter.Put(strName.substr(0, strName.find("_result")));
    if ((stEvent.u16Flags & EventFlag::More) != 0) {
        stWriter.Put(", to be continued");
    }
    if (stEvent.eKind == EventKind::Register) {
        stWriter.Put(", context ");
        stWriter.PutNumber(stEvent.u32Word);
    }
    if ((stEvent.u16Flags & EventFlag::Null) != 0) {
        stWriter.Put(", null");
    }
}

void PutResult(Writer &stWriter, const TextStyle &stStyle, const Event &stEvent) {
    if (stEvent.u32BelongsTo != 0) {
        stWriter.Put(" (#");
        stWriter.PutNumber(stEvent.u32BelongsTo);
        stWriter.Put(')');
    }
    const bool bRed = stStyle.bColours && HasFailed(stEvent);
    stWriter.Put(bRed ? strOfFailure : std::string_view());
    if (stEvent.eKind == EventKind::OpenResult) {
        stWriter.Put(HasFailed(stEvent) ? ", no device" : ", handle ");
        if (!HasFailed(stEvent)) {
            stWriter.PutNumber(static_cast<uint32_t>(stEvent.s32Result));
        }
    } else {
        stWriter.Put(", result ");
        stWriter.PutNumber(stEvent.s32Result);
    }
    stWriter.Put(bRed ? strPlain : std::string_view());
    stWriter.Put(", took ");
    PutMilliseconds(stWriter, stEvent.u64Duration);
    stWriter.Put(" ms");
}

void PutHead(Writer &stWriter, const TextStyle &stStyle, const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    const bool bSent = IsSent(stEvent);
    if (stStyle.bColours) {
        stWriter.Put(bSent ? strOfSent : strOfReceived);
    }
    stWriter.Put(bSent ? "> " : "< ");
    PutTime(stWriter, stEvent.i64Time, ' ');
    stWriter.Put(" #");
    stWriter.PutNumber(stEvent.u32Number);
    stWriter.Put(' ');
    if (stEvent.eKind == EventKind::Send || stEvent.eKind == EventKind::Message ||
        stEntry.stCodes) {
        PutNameAndSize(stWriter, stEntry);
    } else {
        PutCall(stWriter, stEvent);
    }
    stWriter.Put(stStyle.bColours ? strPlain : std::string_view());
    if (IsResult(stEvent.eKind)) {
        PutResult(stWriter, stStyle, stEvent);
    }
    if (stEntry.u32Answers != 0) {
        stWriter.Put(", ");
        PutMilliseconds(stWriter, static_cast<uint64_t>(stEntry.i64Latency));
        stWriter.Put(" ms after #");
        stWriter.PutNumber(stEntry.u32Answers);
    }
    stWriter.Put('\n');
}

void PutBody(Writer &stWriter, const TextStyle &stStyle, const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    if (stEvent.eKind == EventKind::Session) {
        PutReport(stWriter, {reinterpret_cast<const char *>(stEvent.stBytes.pucData),
                             stEvent.stBytes.u32Length});
        return;
    }
    std::string_view strReport;
    if (stEvent.eKind == EventKind::Message && stEntry.stCodes) {
        strReport = ClientReportOf(stEvent.stBytes, stEvent.u32Length);
        PutReport(stWriter, strReport);
    }
    if (!strReport.empty() && !stStyle.bFields) {
        return;
    }
    if (stEntry.pstMessage != nullptr) {
        PutFields(stWriter, *stEntry.pstMessage, stEntry.stPayload);
    } else {
        PutUnknown(stWriter, stEntry.stPayload);
    }
}

} // namespace

void PutEntry(Writer &stWriter, const TextStyle &stStyle, const Entry &stEntry) {
    // That a report has been printed is no news.
    if (stEntry.pstEvent->eKind == EventKind::MessageDone) {
        return;
    }
    PutHead(stWriter, stStyle, stEntry);
    PutBody(stWriter, stStyle, stEntry);
    if (stStyle.bRaw && stEntry.pstEvent->eKind != EventKind::Session) {
        PutDump(stWriter, stEntry.pstEvent->stBytes);
    }
}
