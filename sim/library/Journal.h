// What a modem with the stepped clock has been asked from its start on, in lines: another one that
// is asked the same lives the same life.
#ifndef JOURNAL_H
#define JOURNAL_H

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "modem/Modem.h"
#include "scenario/Files.h"

// The host's files, and what was read and written of them; or, first of all, those that another
// modem found.
// A longer journal is given up.
inline constexpr size_t uMostJournal = size_t{32} * 1024 * 1024;

class JournaledFiles : public Files {
  public:
    struct Answer {
        std::string strQuestion;
        std::optional<std::string> strAnswer;
    };

    JournaledFiles() = default;
    explicit JournaledFiles(std::deque<Answer> astAnswers)
        : m_bAnswersAgain(true), m_astAnswers(std::move(astAnswers)) {}

    std::optional<std::string> Read(const std::string &strPath) override;
    std::optional<uint64_t> SizeOf(const std::string &strPath) override;
    bool Replace(const std::string &strPath, const std::string &strText) override;

    // From now on the files are the host's. False when something else was asked for than that other
    // modem has, or less.
    bool TurnToHost();
    // Nothing when they are too many.
    const std::optional<std::string> &Lines() const { return m_strLines; }
    void Forget() { m_strLines.reset(); }

  private:
    using Host = std::function<std::optional<std::string>()>;

    std::optional<std::string> Ask(const std::string &strQuestion, const Host &pfnHost);
    void Note(const std::string &strQuestion, const std::optional<std::string> &strAnswer);

    bool m_bAnswersAgain = false;
    bool m_bAstray = false;
    std::deque<Answer> m_astAnswers;
    std::optional<std::string> m_strLines = "";
};

class Journal {
  public:
    static constexpr std::string_view strFirstLine = "qor020-journal 1";

    explicit Journal(std::shared_ptr<JournaledFiles> pstFiles) : m_pstFiles(std::move(pstFiles)) {}

    JournaledFiles &TheFiles() { return *m_pstFiles; }
    // The modem is about to be asked something, while messages of its wait for a callback that
    // others have been delivered to.
    void NoteWaiting();
    void Note(const std::string &strEntry);
    // The modem has lived until then, step by step.
    void NoteLife(ModemTime iUntil);
    void NoteTaken(const MessageBytes &aucMessage);
    // All of it; nothing when that is too long.
    std::optional<std::string> Text(const Scenario &stScenario) const;

  private:
    std::string Pending() const;

    std::shared_ptr<JournaledFiles> m_pstFiles;
    std::optional<std::string> m_strLines = ""; // nothing when they are too many
    std::optional<ModemTime> m_iLived;          // not among the lines yet
    bool m_bMessagesWait = false;
    uint64_t m_u64Taken = 0; // since the last line
    uint64_t m_u64Messages = 0;
    uint64_t m_u64Digest = 0xCBF29CE484222325; // of all messages
};

// A text as lines, each behind a bar: line ends stand between them, a backslash before what is no
// plain character.
std::string QuotedLines(std::string_view strText);
// One of them without its bar; nothing when it is none.
std::optional<std::string> UnquotedLine(std::string_view strLine);
// What may stand in a line with other things.
std::string QuotedWord(std::string_view strText);

#endif
