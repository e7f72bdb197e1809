#include "library/SavedModem.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "library/ControlCommands.h"
#include "library/Refusal.h"
#include "scenario/Hex.h"

namespace {

// More than any modem has.
constexpr uint32_t u32MostMemory = 0x1000000;
// Later than any modem gets.
constexpr ModemTime iLatest = 1000000000000 * i64Second;

// Takes a word and the blank behind it from the front.
std::string_view TakeWord(std::string_view *pstrText) {
    const size_t uEnd = std::min(pstrText->find(' '), pstrText->size());
    const std::string_view strWord = pstrText->substr(0, uEnd);
    pstrText->remove_prefix(std::min(uEnd + 1, pstrText->size()));
    return strWord;
}

// Asks a modem again what the lines of a journal say.
class Player {
  public:
    Player(std::string_view strText, std::string strName, const std::function<bool()> &pfnGoesOn)
        : m_strText(strText), m_strRest(strText), m_strName(std::move(strName)),
          m_pfnGoesOn(pfnGoesOn) {}

    JournaledModem Play() {
        ReadHead();
        JournaledModem stModem = MakeModem();
        for (NextLine(); !m_strLine.starts_with("end "); NextLine()) {
            if (!m_pfnGoesOn()) {
                Refuse("is not needed any more");
            }
            Carry(&stModem);
        }
        stModem.TakeAll();
        if (!m_strRest.empty()) {
            Refuse("has something behind its end");
        }
        CompareWith(stModem);
        return stModem;
    }

  private:
    [[noreturn]] void Refuse(const std::string &strReason) const {
        throw ScenarioError(m_strName, m_u32Line, strReason);
    }

    void NextLine() {
        const size_t uEnd = m_strRest.find('\n');
        ++m_u32Line;
        if (uEnd == std::string_view::npos) {
            Refuse("the rest is missing");
        }
        m_strLine = m_strRest.substr(0, uEnd);
        m_strRest.remove_prefix(uEnd + 1);
    }

    std::string Unquoted(std::string_view strQuoted) const {
        std::optional<std::string> strText = UnquotedLine(strQuoted);
        if (!strText) {
            Refuse("a backslash has no two digits behind it");
        }
        return std::move(*strText);
    }

    // The quoted text that follows; nothing without one.
    std::optional<std::string> TakeText() {
        std::optional<std::string> strText;
        while (m_strRest.starts_with('|')) {
            NextLine();
            strText = (strText ? *std::move(strText) + "\n" : "") + Unquoted(m_strLine.substr(1));
        }
        return strText;
    }

    // The scenario and the files, up to the journal.
    void ReadHead() {
        if (m_strText.substr(0, m_strText.find('\n')) != Journal::strFirstLine) {
            throw ScenarioError(m_strName, 1, "is no saved modem, or one of another version");
        }
        NextLine();
        NextLine();
        if (TakeWord(&m_strLine) != "scenario") {
            Refuse("must be the scenario");
        }
        m_strScenario = Unquoted(m_strLine);
        m_strScenarioText = TakeText().value_or("");
        for (NextLine(); m_strLine != "journal"; NextLine()) {
            const std::string strQuestion(m_strLine);
            m_astAnswers.push_back({strQuestion, TakeText()});
        }
    }

    JournaledModem MakeModem() {
        const auto pstFiles = std::make_shared<JournaledFiles>(std::move(m_astAnswers));
        auto pstModem = std::make_unique<WholeModem>(
            Scenario::FromText(m_strScenarioText, m_strScenario, pstFiles));
        if (!pstModem->HowTimePasses().bStepped) {
            Refuse("the scenario does not have the stepped clock");
        }
        return JournaledModem(std::move(pstModem), std::make_unique<Journal>(pstFiles));
    }

    template <typename Number> Number TakeNumber(Number Least, Number Most) {
        const std::string_view strWord = TakeWord(&m_strLine);
        Number Value = 0;
        const auto Read = std::from_chars(strWord.data(), strWord.data() + strWord.size(), Value);
        if (Read.ec != std::errc() || Read.ptr != strWord.data() + strWord.size() ||
            Value < Least || Value > Most) {
            Refuse("a number is missing, or is none that can stand there");
        }
        return Value;
    }

    std::vector<uint8_t> TakeBytes() {
        std::optional<std::vector<uint8_t>> aucBytes = FromHex(TakeWord(&m_strLine));
        if (!aucBytes) {
            Refuse("must end with whole bytes");
        }
        return std::move(*aucBytes);
    }

    bool TakeSwitch() {
        const std::string_view strWord = TakeWord(&m_strLine);
        if (strWord != "on" && strWord != "off") {
            Refuse("must be on or off");
        }
        return strWord == "on";
    }

    // Carries out a line.
    void Carry(JournaledModem *pstModem) {
        const std::string_view strWord = TakeWord(&m_strLine);
        if (strWord == "took") {
            Took(pstModem);
            return;
        }
        // Callbacks have had all messages before anything else happened, unless it says otherwise.
        if (!m_bMessagesWait) {
            pstModem->TakeAll();
        }
        m_bMessagesWait = false;
        for (const Entry &stEntry : astEntries) {
            if (strWord == stEntry.strWord) {
                if (stEntry.bCall) {
                    pstModem->PassCallTime();
                }
                if (stEntry.pfnCarry != nullptr) {
                    (this->*stEntry.pfnCarry)(pstModem);
                } else {
                    (void)pstModem->Send(nullptr, 0);
                }
                return;
            }
        }
        Refuse("is nothing that a modem is asked");
    }

    void Took(JournaledModem *pstModem) {
        MessageBytes aucMessage;
        for (auto u64Left = TakeNumber<uint64_t>(0, UINT64_MAX); u64Left != 0; --u64Left) {
            if (!pstModem->Take(&aucMessage)) {
                Refuse("there are not that many messages");
            }
        }
        m_bMessagesWait = true;
    }

    void SetCallback(JournaledModem *pstModem) { pstModem->SetListening(TakeSwitch()); }

    void Send(JournaledModem *pstModem) {
        (void)TakeNumber<int32_t>(INT32_MIN, INT32_MAX); // its result, which is compared later
        const std::vector<uint8_t> aucMessage = TakeBytes();
        if (aucMessage.size() > WIMAX_MESSAGE_SIZE) {
            Refuse("is longer than a message");
        }
        // An answer may be written where the request stands.
        std::vector<uint8_t> aucRecord(WIMAX_MESSAGE_SIZE);
        std::copy(aucMessage.begin(), aucMessage.end(), aucRecord.begin());
        (void)pstModem->Send(aucRecord.data(), static_cast<uint32_t>(aucMessage.size()));
    }

    void ReadMemory(JournaledModem *pstModem) {
        const auto u32Address = TakeNumber<uint32_t>(0, UINT32_MAX);
        std::vector<uint8_t> aucRead(TakeNumber<uint32_t>(0, u32MostMemory));
        (void)pstModem->ReadMemory(u32Address,
                                   {aucRead.data(), static_cast<uint32_t>(aucRead.size())});
    }

    void WriteMemory(JournaledModem *pstModem) {
        const auto u32Address = TakeNumber<uint32_t>(0, UINT32_MAX);
        const std::vector<uint8_t> aucBytes = TakeBytes();
        (void)pstModem->WriteMemory(u32Address,
                                    {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())});
    }

    void ChangeListener(JournaledModem *pstModem) { pstModem->ChangeListener(TakeSwitch()); }

    void Command(JournaledModem *pstModem) {
        const std::string strCommand(m_strLine);
        try {
            pstModem->CarryOut(strCommand,
                               [&](WholeModem &stModem) { CarryOutCommand(stModem, strCommand); });
        } catch (const ScenarioError &stError) {
            Refuse(stError.Reason());
        } catch (const Refusal &stRefusal) {
            Refuse(stRefusal.what());
        }
    }

    void Live(JournaledModem *pstModem) {
        const auto iUntil = TakeNumber<ModemTime>((*pstModem)->Now(), iLatest);
        for (;;) {
            const std::optional<ModemTime> iDue = (*pstModem)->NextDue();
            if (!iDue || *iDue >= iUntil) {
                break;
            }
            if (!m_pfnGoesOn()) {
                Refuse("is not needed any more");
            }
            pstModem->LiveTo(*iDue);
            pstModem->TakeAll();
        }
        pstModem->LiveTo(iUntil);
    }

    // It has found what the other one found, and has kept the same journal, with the same results
    // and the same messages.
    void CompareWith(JournaledModem &stModem) {
        const bool bFiles = stModem.TheJournal()->TheFiles().TurnToHost();
        const std::string strText = stModem.JournalText().value_or("");
        const auto Differs =
            std::mismatch(m_strText.begin(), m_strText.end(), strText.begin(), strText.end());
        if (!bFiles || Differs.first != m_strText.end() || Differs.second != strText.end()) {
            m_u32Line =
                1 + static_cast<uint32_t>(std::count(m_strText.begin(), Differs.first, '\n'));
            Refuse("this modem does something else here: another version of it was saved");
        }
    }

    struct Entry {
        std::string_view strWord;
        bool bCall;
        void (Player::*pfnCarry)(JournaledModem *pstModem); // null: the modem has nothing of it
    };
    static const std::array<Entry, 8> astEntries;

    std::string_view m_strText;
    std::string_view m_strRest;
    std::string m_strName;
    const std::function<bool()> &m_pfnGoesOn;
    uint32_t m_u32Line = 0;
    std::string_view m_strLine;
    std::string m_strScenario;
    std::string m_strScenarioText;
    std::deque<JournaledFiles::Answer> m_astAnswers;
    bool m_bMessagesWait = false;
};

const std::array<Player::Entry, 8> Player::astEntries{
    Entry{"call", true, nullptr},
    Entry{"callback", true, &Player::SetCallback},
    Entry{"send", true, &Player::Send},
    Entry{"read", true, &Player::ReadMemory},
    Entry{"write", true, &Player::WriteMemory},
    Entry{"live", false, &Player::Live},
    Entry{"command", false, &Player::Command},
    Entry{"listener", false, &Player::ChangeListener},
};

// A new file for its owner alone, which then takes the place of an old one.
class NewFile {
  public:
    explicit NewFile(std::string strPath)
        : m_strPath(std::move(strPath)), m_strNew(m_strPath + ".XXXXXX") {
        struct stat stStatus {};
        if (lstat(m_strPath.c_str(), &stStatus) == 0 && !S_ISREG(stStatus.st_mode)) {
            throw Refusal(Printable(m_strPath) +
                          " cannot be written: something else than a file stands there");
        }
        m_iFile = mkostemp(m_strNew.data(), O_CLOEXEC);
        if (m_iFile < 0) {
            Fail();
        }
    }
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;
    ~NewFile() {
        if (m_iFile >= 0) {
            (void)close(m_iFile);
            (void)unlink(m_strNew.c_str());
        }
    }
    void Write(std::string_view strText) {
        while (!strText.empty()) {
            const ssize_t iCount = write(m_iFile, strText.data(), strText.size());
            if (iCount < 0 && errno != EINTR) {
                Fail();
            }
            strText.remove_prefix(static_cast<size_t>(std::max<ssize_t>(iCount, 0)));
        }
        if (rename(m_strNew.c_str(), m_strPath.c_str()) != 0) {
            Fail();
        }
        (void)close(m_iFile);
        m_iFile = -1;
    }

  private:
    [[noreturn]] void Fail() const {
        throw Refusal(Printable(m_strPath) + " cannot be written: " + std::strerror(errno));
    }

    std::string m_strPath;
    std::string m_strNew;
    int m_iFile = -1;
};

} // namespace

JournaledModem LiveAgain(std::string_view strText, const std::string &strName,
                         const std::function<bool()> &pfnGoesOn) {
    return Player(strText, strName, pfnGoesOn).Play();
}

void SaveModem(Device &stDevice, const std::string &strPath) {
    const std::string strText = stDevice.JournalText();
    NewFile(strPath).Write(strText);
}

void LoadModem(Device &stDevice, const std::string &strPath) {
    stDevice.RefuseUnlessStepped();
    try {
        const std::optional<std::string> strText = ReadTextFile(strPath, uMostJournal);
        if (!strText) {
            throw ScenarioError(strPath, ScenarioError::u32WholeFile, "is not there");
        }
        stDevice.Replace(LiveAgain(*strText, strPath, [&] { return !stDevice.Stopping(); }));
    } catch (const ScenarioError &stError) {
        throw Refusal(stError.what()); // with the file and its line
    }
}
