#include "library/Journal.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "scenario/Hex.h"

namespace {

bool IsPlain(char cChar) { return cChar >= ' ' && cChar <= '~' && cChar != '\\'; }

// Gives up what becomes too long.
void AddTo(std::optional<std::string> *pstrLines, const std::string &strMore) {
    if (*pstrLines && (*pstrLines)->size() + strMore.size() > uMostJournal) {
        pstrLines->reset();
    }
    if (*pstrLines) {
        **pstrLines += strMore;
    }
}

std::string Hexadecimal(uint64_t u64Value) {
    std::array<char, 20> acText{};
    (void)std::snprintf(acText.data(), acText.size(), "%016llX",
                        static_cast<unsigned long long>(u64Value));
    return acText.data();
}

} // namespace

std::string QuotedWord(std::string_view strText) {
    std::string strQuoted;
    for (const char cChar : strText) {
        if (IsPlain(cChar)) {
            strQuoted += cChar;
        } else {
            const auto u8Byte = static_cast<uint8_t>(cChar);
            strQuoted += "\\" + ToHex({&u8Byte, 1});
        }
    }
    return strQuoted;
}

std::string QuotedLines(std::string_view strText) {
    std::string strLines;
    for (;;) {
        const size_t uEnd = strText.find('\n');
        strLines += "|" + QuotedWord(strText.substr(0, uEnd)) + "\n";
        if (uEnd == std::string_view::npos) {
            return strLines;
        }
        strText.remove_prefix(uEnd + 1);
    }
}

std::optional<std::string> UnquotedLine(std::string_view strLine) {
    std::string strText;
    for (size_t i = 0; i < strLine.size(); ++i) {
        if (strLine[i] != '\\') {
            strText += strLine[i];
            continue;
        }
        const std::string_view strHex = strLine.substr(i + 1, 2);
        const auto aucByte = FromHex(strHex);
        if (strHex.size() != 2 || !aucByte) {
            return std::nullopt;
        }
        strText += static_cast<char>(aucByte->front());
        i += 2;
    }
    return strText;
}

// Files.

std::optional<std::string> JournaledFiles::Ask(const std::string &strQuestion,
                                               const Host &pfnHost) {
    std::optional<std::string> strAnswer;
    if (!m_bAnswersAgain) {
        try {
            strAnswer = pfnHost();
        } catch (const ScenarioError &) {
            Note(strQuestion, std::nullopt);
            throw;
        }
    } else if (m_astAnswers.empty() || m_astAnswers.front().strQuestion != strQuestion) {
        m_bAstray = true;
        return std::nullopt;
    } else {
        strAnswer = std::move(m_astAnswers.front().strAnswer);
        m_astAnswers.pop_front();
    }
    Note(strQuestion, strAnswer);
    return strAnswer;
}

void JournaledFiles::Note(const std::string &strQuestion,
                          const std::optional<std::string> &strAnswer) {
    AddTo(&m_strLines, strQuestion + "\n" + (strAnswer ? QuotedLines(*strAnswer) : ""));
}

bool JournaledFiles::TurnToHost() {
    m_bAnswersAgain = false;
    return !m_bAstray && m_astAnswers.empty();
}

std::optional<std::string> JournaledFiles::Read(const std::string &strPath) {
    return Ask("read " + QuotedWord(strPath), [&] { return Files::Read(strPath); });
}

std::optional<uint64_t> JournaledFiles::SizeOf(const std::string &strPath) {
    const std::optional<std::string> strSize =
        Ask("size " + QuotedWord(strPath), [&]() -> std::optional<std::string> {
            const std::optional<uint64_t> u64Size = Files::SizeOf(strPath);
            return u64Size ? std::optional(std::to_string(*u64Size)) : std::nullopt;
        });
    uint64_t u64Size = 0;
    return strSize && std::from_chars(strSize->data(), strSize->data() + strSize->size(), u64Size)
                              .ec == std::errc()
               ? std::optional(u64Size)
               : std::nullopt;
}

bool JournaledFiles::Replace(const std::string &strPath, const std::string &strText) {
    return Ask("write " + QuotedWord(strPath),
               [&] {
                   return Files::Replace(strPath, strText) ? std::optional<std::string>("done")
                                                           : std::nullopt;
               })
        .has_value();
}

// The journal.

std::string Journal::Pending() const {
    return m_iLived ? "live " + std::to_string(*m_iLived) + "\n" : "";
}

void Journal::Note(const std::string &strEntry) {
    m_u64Taken = 0;
    m_bMessagesWait = false;
    AddTo(&m_strLines, Pending() + strEntry + "\n");
    m_iLived.reset();
}

void Journal::NoteWaiting() {
    Note("took " + std::to_string(m_u64Taken));
    m_bMessagesWait = true;
}

void Journal::NoteLife(ModemTime iUntil) {
    if (m_bMessagesWait) {
        Note("live " + std::to_string(iUntil));
    } else {
        m_iLived = iUntil;
        m_u64Taken = 0;
    }
}

// FNV-1a, over the length and the bytes.
void Journal::NoteTaken(const MessageBytes &aucMessage) {
    constexpr uint64_t u64Prime = 0x100000001B3;
    ++m_u64Taken;
    ++m_u64Messages;
    m_u64Digest = (m_u64Digest ^ aucMessage.size()) * u64Prime;
    for (const uint8_t u8Byte : aucMessage) {
        m_u64Digest = (m_u64Digest ^ u8Byte) * u64Prime;
    }
}

std::optional<std::string> Journal::Text(const Scenario &stScenario) const {
    const std::optional<std::string> &strFiles = m_pstFiles->Lines();
    if (!m_strLines || !strFiles) {
        return std::nullopt;
    }
    std::string strText(strFirstLine);
    strText += "\nscenario " + QuotedWord(stScenario.Name()) + "\n";
    strText += QuotedLines(stScenario.Text()) + *strFiles + "journal\n";
    strText += *m_strLines + Pending();
    strText += "end " + std::to_string(m_u64Messages) + " " + Hexadecimal(m_u64Digest) + "\n";
    return strText.size() <= uMostJournal ? std::optional(std::move(strText)) : std::nullopt;
}
