#include "Text.h"

#include <algorithm>

#include "ClientReport.h"
#include "Fields.h"
#include "Times.h"

namespace {

constexpr std::string_view strPlain = "\x1b[0m";
constexpr std::string_view strOfSent = "\x1b[1;32m";
constexpr std::string_view strOfReceived = "\x1b[1;34m";
constexpr std::string_view strOfFailure = "\x1b[1;31m";

constexpr size_t uIndent = 4;

// What a terminal may do something at.
bool IsControl(char cChar) {
    return (static_cast<uint8_t>(cChar) < ' ' && cChar != '\n' && cChar != '\t') || cChar == '\x7f';
}

// The lines of a report, indented, without the empty ones at both ends.
void PutReport(Writer &stWriter, std::string_view strReport) {
    while (strReport.ends_with('\n')) {
        strReport.remove_suffix(1);
    }
    while (strReport.starts_with('\n')) {
        strReport.remove_prefix(1);
    }
    while (!strReport.empty()) {
        const size_t uLine = std::min(strReport.find('\n'), strReport.size());
        for (std::string_view strLine = strReport.substr(0, uLine); !strLine.empty();) {
            const std::string_view strPart = strLine.substr(0, Writer::uMostRoom / 2);
            char *pcRoom = stWriter.Room(strPart.size() + uIndent);
            if (strPart.data() == strReport.data()) {
                std::memset(pcRoom, ' ', uIndent);
                pcRoom += uIndent;
            }
            bool bAnyControl = false;
            for (size_t i = 0; i < strPart.size(); ++i) {
                pcRoom[i] = strPart[i];
                bAnyControl |= IsControl(strPart[i]);
            }
            if (bAnyControl) {
                std::replace_if(pcRoom, pcRoom + strPart.size(), IsControl, '.');
            }
            stWriter.EndAt(pcRoom + strPart.size());
            strLine.remove_prefix(strPart.size());
        }
        stWriter.Put('\n');
        strReport.remove_prefix(std::min(uLine + 1, strReport.size()));
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
        if (stEntry.pstMessage != nullptr && !HasRightSize(*stEntry.pstMessage, stEntry.stPayload)) {
            stWriter.Put(" (not its size)");
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
    if (stEvent.eKind == EventKind::Send || stEvent.eKind == EventKind::Message || stEntry.stCodes) {
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
