#include "Scrub.h"

#include <algorithm>

#include "AirScrub.h"
#include "DiagnosticRecords.h"

namespace {

std::string_view TextIn(ByteView stBytes) {
    return {reinterpret_cast<const char *>(stBytes.pucData), stBytes.u32Length};
}

// Calls fnLine with the name and the value of every line.
template <typename Function> void ForEachLine(std::string_view strLines, Function fnLine) {
    while (!strLines.empty()) {
        const std::string_view strLine = strLines.substr(0, strLines.find('\n'));
        const size_t uEqual = std::min(strLine.find('='), strLine.size());
        fnLine(strLine.substr(0, uEqual), strLine.substr(std::min(uEqual + 1, strLine.size())));
        strLines.remove_prefix(std::min(strLine.size() + 1, strLines.size()));
    }
}

// What the file's head tells is what its session says.
SectionTexts TextsOf(ByteView stOrigins) {
    SectionTexts stTexts;
    ForEachLine(TextIn(stOrigins), [&](std::string_view strName, std::string_view strValue) {
        if (strName == "machine") {
            stTexts.strHardware = strValue;
        } else if (strName == "system") {
            stTexts.strSystem = strValue;
        } else if (strName == "client") {
            stTexts.strClient = strValue;
        } else if (strName == "library") {
            stTexts.strComment = "device library " + std::string(strValue);
        }
    });
    return stTexts;
}

// The bytes of a field that are its value: a run's room may be larger.
uint32_t LengthOfValue(const FoundField &stFound) {
    if (!IsRun(*stFound.pstRow)) {
        return stFound.stBytes.u32Length;
    }
    const ByteView stValue = stFound.stBytes.From(0, stFound.u32Announced);
    return stFound.pstRow->eShown == Shown::Text ? static_cast<uint32_t>(TextOf(stValue).size())
                                                 : stValue.u32Length;
}

} // namespace

// The visitor of a message: what it replaces lies in the bytes that it was given to walk.
void Scrubber::ScrubDescribed(const MessageRow &stMessage, ByteSpan stPayload, uint32_t u32Received,
                              uint32_t u32ElsewhereFrom) {
    struct Part {
        uint32_t u32Offset;
        uint32_t u32Length;
        bool bText = false;
    };
    // A walk reads counts, which must be there until it has ended.
    std::vector<Part> astParts;
    WalkMessage(
        stMessage, stPayload,
        [&](const FoundField &stFound) {
            if (stFound.eWhat != Found::Field || stFound.u32Offset >= u32ElsewhereFrom) {
                return;
            }
            const uint32_t u32Length = stFound.stBytes.u32Length;
            // What nobody describes may be anything, and so may what was there before.
            if (IsReserved(*stFound.pstRow) || stFound.u32Offset >= u32Received) {
                astParts.push_back({stFound.u32Offset, u32Length});
            } else if (stFound.eGuard != Guard::Public) {
                const bool bText = stFound.pstRow->eShown == Shown::Text;
                const uint32_t u32Value = LengthOfValue(stFound);
                astParts.push_back({stFound.u32Offset, u32Value, bText});
                // What is left of its room.
                astParts.push_back({stFound.u32Offset + u32Value, u32Length - u32Value});
            }
        },
        Walk::Everything);
    for (const Part &stPart : astParts) {
        const ByteSpan stValue = stPayload.From(stPart.u32Offset, stPart.u32Length);
        if (stPart.bText) {
            m_stPseudonyms.ReplaceText(stValue);
        } else {
            m_stPseudonyms.Replace(stValue);
        }
    }
}

void Scrubber::ScrubMessage(const MessageRow *pstMessage, ByteSpan stMessage,
                            uint32_t u32Received) {
    const ByteSpan stPayload = stMessage.From(MessageHeader::Size);
    u32Received -= std::min(u32Received, MessageHeader::Size);
    uint32_t u32AirBody = UINT32_MAX;
    ManagementMessage stManagement;
    if (ManagementMessageOf(stMessage, &stManagement)) {
        u32AirBody = TraceRecord::aucBody;
        ScrubManagementMessage(m_stPseudonyms, stManagement.u8Code,
                               stPayload.From(u32AirBody, stManagement.stBody.u32Length));
        m_stPseudonyms.Replace(stPayload.From(u32AirBody + stManagement.stBody.u32Length));
    }
    if (pstMessage != nullptr) {
        ScrubDescribed(*pstMessage, stPayload, u32Received, u32AirBody);
    } else {
        m_stPseudonyms.Replace(stPayload);
    }
}

// The bytes of a call of rdm or wrm are a field of it.
void Scrubber::ScrubMemory(const Event &stEvent) {
    const bool bRead = stEvent.eKind == EventKind::ReadMemoryResult;
    m_aucBytes.insert(m_aucBytes.begin(), RegisterCall::aucValue, 0);
    const ByteSpan stCall{m_aucBytes.data(), static_cast<uint32_t>(m_aucBytes.size())};
    Put(stCall, RegisterCall::u32Address, stEvent.u32Word);
    Put(stCall, RegisterCall::u32Count, stEvent.u32Length);
    ScrubDescribed(bRead ? RegisterRead() : RegisterWrite(), stCall, stCall.u32Length, UINT32_MAX);
    m_aucBytes.erase(m_aucBytes.begin(), m_aucBytes.begin() + RegisterCall::aucValue);
}

// Of a path the last name stays; the host's name goes.
void Scrubber::ScrubOrigins() {
    const std::string strLines(m_aucBytes.begin(), m_aucBytes.end());
    const auto Replace = [&](std::string_view strPart) {
        const auto uAt = static_cast<size_t>(strPart.data() - strLines.data());
        m_stPseudonyms.ReplaceText(
            {m_aucBytes.data() + uAt, static_cast<uint32_t>(strPart.size())});
    };
    ForEachLine(strLines, [&](std::string_view strName, std::string_view strValue) {
        if (strName == "host") {
            Replace(strValue);
        } else if (strName == "client" || strName == "library") {
            for (size_t uSlash = strValue.find('/'); uSlash != std::string_view::npos;
                 uSlash = strValue.find('/')) {
                if (uSlash != 0) {
                    Replace(strValue.substr(0, uSlash));
                }
                strValue.remove_prefix(uSlash + 1);
            }
        }
    });
}

Event Scrubber::Scrubbed(const Event &stEvent) {
    m_aucBytes.assign(stEvent.stBytes.pucData, stEvent.stBytes.pucData + stEvent.stBytes.u32Length);
    const ByteSpan stBytes{m_aucBytes.data(), static_cast<uint32_t>(m_aucBytes.size())};
    const uint32_t u32Type = Get(stBytes, MessageHeader::usType);
    const uint32_t u32SubType = Get(stBytes, MessageHeader::usSubType);
    switch (stEvent.eKind) {
    case EventKind::Session:
        ScrubOrigins();
        break;
    case EventKind::Send:
        ScrubMessage(FindSent(u32Type, u32SubType), stBytes, stEvent.u32Length);
        break;
    case EventKind::SendResult: {
        const MessageRow *pstLeft = FindWrittenBack(u32Type, u32SubType);
        // What is not said to be written back is the request, wholly or in part.
        ScrubMessage(pstLeft != nullptr ? pstLeft : FindSent(u32Type, u32SubType), stBytes,
                     stBytes.u32Length);
        break;
    }
    case EventKind::Message:
        ScrubMessage(FindReceived(u32Type, u32SubType), stBytes, stEvent.u32Length);
        break;
    case EventKind::ReadMemoryResult:
    case EventKind::WriteMemory:
        ScrubMemory(stEvent);
        break;
    default:
        m_stPseudonyms.Replace(stBytes); // has none
        break;
    }
    Event stScrubbed = stEvent;
    stScrubbed.stBytes = {m_aucBytes.data(), static_cast<uint32_t>(m_aucBytes.size())};
    return stScrubbed;
}

void ScrubbedFile::PutPacket(const Packet &stPacket) {
    const auto Text = [](const uint8_t *pucBytes, uint32_t u32Length) {
        return TextIn({pucBytes, u32Length});
    };
    m_pstWriter->Put(Text(stPacket.aucHead, stPacket.u32Head));
    m_pstWriter->Put(TextIn(stPacket.stBytes));
    m_pstWriter->Put(Text(stPacket.aucTail, stPacket.u32Tail));
}

void ScrubbedFile::Add(const Event &stScrubbed) {
    if (!m_bHasHead) {
        m_bHasHead = true;
        const bool bSession = stScrubbed.eKind == EventKind::Session;
        m_pstWriter->Put(FileHead(TextsOf(bSession ? stScrubbed.stBytes : ByteView())));
    }
    Packet stPacket;
    WriteEvent(stScrubbed, &stPacket);
    PutPacket(stPacket);
    ManagementMessage stManagement;
    if (stScrubbed.eKind == EventKind::Message &&
        ManagementMessageOf(stScrubbed.stBytes, &stManagement)) {
        WriteManagementMessage(stScrubbed.i64Time, stManagement, &stPacket);
        PutPacket(stPacket);
    }
}
