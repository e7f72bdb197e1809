#include "Summary.h"

#include <algorithm>
#include <bit>
#include <string>

#include "Times.h"

namespace {

constexpr uint32_t u32StepBits = 6; // steps in each power of two: 64
constexpr uint64_t u64Steps = uint64_t{1} << u32StepBits;

// A hostile file has as many kinds as it likes.
constexpr size_t uMostKinds = 1024;

// Numbers below 64 have a place of their own each, and every power of two above has 64.
size_t PlaceOf(uint64_t u64Time) {
    if (u64Time < u64Steps) {
        return u64Time;
    }
    const auto u32Shift = static_cast<uint32_t>(std::bit_width(u64Time)) - 1 - u32StepBits;
    return (size_t{u32Shift} << u32StepBits) + (u64Time >> u32Shift);
}

// The middle of those that have this place.
uint64_t TimeAt(size_t uPlace) {
    if (uPlace < 2 * u64Steps) {
        return uPlace;
    }
    const size_t uShift = (uPlace >> u32StepBits) - 1;
    return ((u64Steps + uPlace % u64Steps) << uShift) + (uint64_t{1} << (uShift - 1));
}

using TableLine = std::vector<std::string>;

// The first column to the left, the others to the right; nothing for a heading alone.
void PutTable(Writer &stWriter, const std::vector<TableLine> &astLines) {
    if (astLines.size() == 1) {
        return;
    }
    std::vector<size_t> auWidths(astLines.front().size());
    for (const TableLine &astCells : astLines) {
        for (size_t i = 0; i < astCells.size(); ++i) {
            auWidths[i] = std::max(auWidths[i], astCells[i].size());
        }
    }
    stWriter.Put('\n');
    for (const TableLine &astCells : astLines) {
        stWriter.Put(astCells[0]);
        size_t uMissing = auWidths[0] - astCells[0].size();
        for (size_t i = 1; i < astCells.size(); ++i) {
            stWriter.PutSpaces(uMissing + 2 + auWidths[i] - astCells[i].size());
            stWriter.Put(astCells[i]);
            uMissing = 0;
        }
        stWriter.Put('\n');
    }
}

std::string Milliseconds(uint64_t u64Nanoseconds) {
    constexpr uint64_t u64Microsecond = 1000;
    const std::string strMicroseconds = std::to_string(u64Nanoseconds / u64Microsecond);
    const std::string strDigits =
        std::string(strMicroseconds.size() < 4 ? 4 - strMicroseconds.size() : 0, '0') +
        strMicroseconds;
    return strDigits.substr(0, strDigits.size() - 3) + "." + strDigits.substr(strDigits.size() - 3);
}

std::string PerSecond(uint64_t u64Count, int64_t i64Span) {
    if (i64Span <= 0) {
        return "-";
    }
    char acText[64];
    const double dRate = static_cast<double>(u64Count) * 1e9 / static_cast<double>(i64Span);
    return {acText,
            std::to_chars(acText, acText + sizeof acText, dRate, std::chars_format::fixed, 1).ptr};
}

std::string NameOf(const MessageRow *pstRow, uint16_t u16Type, uint16_t u16SubType) {
    return std::string(pstRow != nullptr ? pstRow->stName.Plain() : "unknown_message") + " " +
           std::to_string(u16Type) + "/" + std::to_string(u16SubType);
}

TableLine TimesLine(std::string strName, const Times &stTimes) {
    return {std::move(strName),
            std::to_string(stTimes.Count()),
            Milliseconds(stTimes.Least()),
            Milliseconds(stTimes.Percentile(50)),
            Milliseconds(stTimes.Percentile(99)),
            Milliseconds(stTimes.Most())};
}

} // namespace

void Times::Add(uint64_t u64Time) {
    const size_t uPlace = PlaceOf(u64Time);
    if (uPlace >= m_au64Counts.size()) {
        m_au64Counts.resize(uPlace + 1);
    }
    ++m_au64Counts[uPlace];
    ++m_u64Count;
    m_u64Least = std::min(m_u64Least, u64Time);
    m_u64Most = std::max(m_u64Most, u64Time);
}

uint64_t Times::Percentile(uint32_t u32Percent) const {
    uint64_t u64Left = (m_u64Count * u32Percent + 99) / 100;
    for (size_t i = 0; i < m_au64Counts.size(); ++i) {
        if (m_au64Counts[i] >= u64Left) {
            return std::clamp(TimeAt(i), m_u64Least, m_u64Most);
        }
        u64Left -= m_au64Counts[i];
    }
    return m_u64Most;
}

void Summary::Add(const Entry &stEntry) {
    const Event &stEvent = *stEntry.pstEvent;
    m_i64First = m_u64Events == 0 ? stEvent.i64Time : std::min(m_i64First, stEvent.i64Time);
    m_i64Last = m_u64Events == 0 ? stEvent.i64Time : std::max(m_i64Last, stEvent.i64Time);
    ++m_u64Events;
    const MessageCodes stCodes = stEntry.stCodes.value_or(MessageCodes{});
    if (stEvent.eKind == EventKind::Send || stEvent.eKind == EventKind::Message) {
        const TrafficKey stKey{!IsSent(stEvent), stCodes.u16Type, stCodes.u16SubType};
        Traffic *pstTraffic = &m_stOtherTraffic;
        if (m_stTraffic.size() < uMostKinds || m_stTraffic.contains(stKey)) {
            pstTraffic = &m_stTraffic[stKey];
        }
        ++pstTraffic->u64Messages;
        pstTraffic->u64Bytes += stEvent.u32Length;
    }
    if (stEntry.u32Answers != 0) {
        m_stAnswers[{stCodes.u16Type, stCodes.u16SubType}].Add(
            static_cast<uint64_t>(stEntry.i64Latency));
    }
    if (IsResult(stEvent.eKind)) {
        Calls &stCalls = m_stCalls[stEvent.eKind];
        stCalls.stTimes.Add(stEvent.u64Duration);
        if (HasFailed(stEvent)) {
            ++stCalls.u64Failed;
            const FailureKey stKey{stEvent.eKind, stCodes.u16Type, stCodes.u16SubType,
                                   stEvent.s32Result};
            if (m_stFailures.size() < uMostKinds || m_stFailures.contains(stKey)) {
                ++m_stFailures[stKey];
            } else {
                ++m_u64OtherFailures;
            }
        }
    }
}

void Summary::PutMessages(Writer &stWriter) const {
    std::vector<TableLine> astLines = {
        {"messages", "number", "bytes", "a second", "bytes a second"}};
    const int64_t i64Span = m_i64Last - m_i64First;
    const auto AddLine = [&](std::string strName, const Traffic &stTraffic) {
        astLines.push_back({std::move(strName), std::to_string(stTraffic.u64Messages),
                            std::to_string(stTraffic.u64Bytes),
                            PerSecond(stTraffic.u64Messages, i64Span),
                            PerSecond(stTraffic.u64Bytes, i64Span)});
    };
    for (const auto &[stKey, stTraffic] : m_stTraffic) {
        const auto [bReceived, u16Type, u16SubType] = stKey;
        const MessageRow *pstRow =
            bReceived ? FindReceived(u16Type, u16SubType) : FindSent(u16Type, u16SubType);
        AddLine((bReceived ? "< " : "> ") + NameOf(pstRow, u16Type, u16SubType), stTraffic);
    }
    if (m_stOtherTraffic.u64Messages != 0) {
        AddLine("others", m_stOtherTraffic);
    }
    PutTable(stWriter, astLines);
}

void Summary::PutAnswerTimes(Writer &stWriter) const {
    std::vector<TableLine> astLines = {
        {"answer times in ms", "answers", "least", "median", "99 %", "most"}};
    for (const auto &[stCodes, stTimes] : m_stAnswers) {
        const auto [u16Type, u16SubType] = stCodes;
        astLines.push_back(TimesLine(
            "< " + NameOf(FindReceived(u16Type, u16SubType), u16Type, u16SubType), stTimes));
    }
    PutTable(stWriter, astLines);
}

void Summary::PutCalls(Writer &stWriter) const {
    std::vector<TableLine> astLines = {
        {"call times in ms", "calls", "least", "median", "99 %", "most", "failed"}};
    const auto CallName = [](EventKind eKind) {
        const std::string_view strName = NameOf(eKind);
        return std::string(strName.substr(0, strName.find("_result")));
    };
    for (const auto &[eKind, stCalls] : m_stCalls) {
        astLines.push_back(TimesLine("> " + CallName(eKind), stCalls.stTimes));
        astLines.back().push_back(std::to_string(stCalls.u64Failed));
    }
    PutTable(stWriter, astLines);
    astLines = {{"failed calls", "result", "number"}};
    for (const auto &[stKey, u64Count] : m_stFailures) {
        const auto [eKind, u16Type, u16SubType, s32Result] = stKey;
        std::string strName = "> " + CallName(eKind);
        if (eKind == EventKind::SendResult) {
            strName += " " + NameOf(FindSent(u16Type, u16SubType), u16Type, u16SubType);
        }
        astLines.push_back({strName, std::to_string(s32Result), std::to_string(u64Count)});
    }
    if (m_u64OtherFailures != 0) {
        astLines.push_back({"others", "", std::to_string(m_u64OtherFailures)});
    }
    PutTable(stWriter, astLines);
}

void Summary::Put(Writer &stWriter, const Session &stSession) const {
    stWriter.PutNumber(m_u64Events);
    stWriter.Put(" events");
    if (m_u64Events != 0) {
        stWriter.Put(" from ");
        PutTime(stWriter, m_i64First, ' ');
        stWriter.Put(" to ");
        PutTime(stWriter, m_i64Last, ' ');
    }
    stWriter.Put('\n');
    if (m_u64Events == 0) {
        return;
    }
    PutMessages(stWriter);
    PutAnswerTimes(stWriter);
    PutCalls(stWriter);
    std::vector<TableLine> astLines = {{"unanswered requests, waiting for", "number"}};
    for (const auto &[pstAnswer, u64Requests] : stSession.UnansweredRequests()) {
        astLines.push_back({"< " + NameOf(pstAnswer, pstAnswer->u16Type, pstAnswer->u16SubType),
                            std::to_string(u64Requests)});
    }
    PutTable(stWriter, astLines);
}
