#include "scenario/Scenario.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

// The TOML reader asserts what it has not looked at yet: a "[" with nothing
// behind it, for one. It reports the mistake when it goes on, but must not take
// for granted what it asserts, as it does without assertions.
#undef NDEBUG
#define TOML_ASSERT(Expression) static_cast<void>(0)
#include <toml++/toml.h>

#include "scenario/DefaultScenario.h"

// The file's values with their lines, and whether somebody asked for them.
struct ScenarioValue {
    enum class Kind : uint8_t { Table, Array, Integer, Number, Flag, Text, Other };

    Kind eKind = Kind::Other;
    std::shared_ptr<const std::string> pstrFile; // that it stands in
    uint32_t u32Line = 0;
    bool bRead = false;
    bool bBare = false; // a text as well, whatever else it is
    bool bFlag = false;
    int64_t iInteger = 0;
    double fNumber = 0;
    std::string strKey;
    std::string strText;
    std::vector<ScenarioValue> astItems; // of a table or an array

    bool IsText() const { return bBare || eKind == Kind::Text; }
};

struct ScenarioDocument {
    ScenarioValue stRoot;
    std::string strName;
    std::string strText;
    std::shared_ptr<Files> pstFiles;
};

namespace {

using Kind = ScenarioValue::Kind;

std::string Quoted(std::string_view strText) { return "\"" + std::string(strText) + "\""; }

// As deep as the file is nested, which the TOML reader limits.
// NOLINTNEXTLINE(misc-no-recursion)
ScenarioValue Convert(const toml::node &stNode, std::string_view strKey,
                      const std::shared_ptr<const std::string> &pstrFile) {
    ScenarioValue stValue;
    stValue.pstrFile = pstrFile;
    stValue.strKey = strKey;
    stValue.u32Line = stNode.source().begin.line;
    if (const toml::table *pstTable = stNode.as_table()) {
        stValue.eKind = Kind::Table;
        for (const auto &[stKey, stItem] : *pstTable) {
            stValue.astItems.push_back(Convert(stItem, stKey.str(), pstrFile));
        }
    } else if (const toml::array *pstArray = stNode.as_array()) {
        stValue.eKind = Kind::Array;
        for (const toml::node &stItem : *pstArray) {
            stValue.astItems.push_back(Convert(stItem, strKey, pstrFile));
        }
    } else if (const auto *pstInteger = stNode.as_integer()) {
        stValue.eKind = Kind::Integer;
        stValue.iInteger = pstInteger->get();
        stValue.fNumber = static_cast<double>(stValue.iInteger);
    } else if (const auto *pstNumber = stNode.as_floating_point()) {
        stValue.eKind = Kind::Number;
        stValue.fNumber = pstNumber->get();
    } else if (const auto *pstFlag = stNode.as_boolean()) {
        stValue.eKind = Kind::Flag;
        stValue.bFlag = pstFlag->get();
    } else if (const auto *pstText = stNode.as_string()) {
        stValue.eKind = Kind::Text;
        stValue.strText = pstText->get();
    }
    return stValue;
}

ScenarioValue FromWord(const std::string &strKey, const std::string &strWord) {
    ScenarioValue stValue;
    stValue.strKey = strKey;
    stValue.strText = strWord;
    stValue.bBare = true;
    const char *pcEnd = strWord.data() + strWord.size();
    const auto Whole = std::from_chars(strWord.data(), pcEnd, stValue.iInteger);
    const auto Decimal = std::from_chars(strWord.data(), pcEnd, stValue.fNumber);
    if (strWord == "true" || strWord == "false") {
        stValue.eKind = Kind::Flag;
        stValue.bFlag = strWord == "true";
    } else if (Whole.ec == std::errc() && Whole.ptr == pcEnd) {
        stValue.eKind = Kind::Integer;
    } else if (Decimal.ec == std::errc() && Decimal.ptr == pcEnd) {
        stValue.eKind = Kind::Number;
    }
    return stValue;
}

// The unread value that stands first in the file.
// NOLINTNEXTLINE(misc-no-recursion)
const ScenarioValue *FirstUnread(const ScenarioValue &stTable) {
    const ScenarioValue *pstFirst = nullptr;
    for (const ScenarioValue &stItem : stTable.astItems) {
        const ScenarioValue *pstUnread = stItem.bRead ? FirstUnread(stItem) : &stItem;
        if (pstUnread != nullptr &&
            (pstFirst == nullptr || pstUnread->u32Line < pstFirst->u32Line)) {
            pstFirst = pstUnread;
        }
    }
    return pstFirst;
}

// 1.5, not 1.500000
std::string Short(double fValue) {
    std::array<char, 32> acText{};
    (void)std::snprintf(acText.data(), acText.size(), "%.12g", fValue);
    return acText.data();
}

int DigitOf(char cChar) {
    if (cChar >= '0' && cChar <= '9') {
        return cChar - '0';
    }
    if (cChar >= 'a' && cChar <= 'f') {
        return cChar - 'a' + 10;
    }
    return cChar >= 'A' && cChar <= 'F' ? cChar - 'A' + 10 : -1;
}

ScenarioError ErrorIn(const ScenarioValue &stValue, const std::string &strReason) {
    return {*stValue.pstrFile, stValue.u32Line, strReason};
}

// A path that a file names is taken from that file's own directory.
std::string PathBeside(const ScenarioValue &stPath) {
    return (std::filesystem::path(*stPath.pstrFile).parent_path() / stPath.strText)
        .lexically_normal();
}

std::string ReadPresent(Files &stFiles, const std::string &strPath) {
    std::optional<std::string> strText = stFiles.Read(strPath);
    if (!strText) {
        throw ScenarioError(strPath, ScenarioError::u32WholeFile,
                            std::string("cannot be read: ") + std::strerror(ENOENT));
    }
    return std::move(*strText);
}

bool IsListOfTables(const ScenarioValue &stValue) {
    return stValue.eKind == Kind::Array && !stValue.astItems.empty() &&
           stValue.astItems.front().eKind == Kind::Table;
}

// What stands in stOver counts; tables become one, and of sections that may stand several times
// both files' stand there.
// NOLINTNEXTLINE(misc-no-recursion)
void Merge(ScenarioValue *pstUnder, ScenarioValue stOver) {
    if (pstUnder->eKind == Kind::Table && stOver.eKind == Kind::Table) {
        for (ScenarioValue &stItem : stOver.astItems) {
            const auto pstSame = std::find_if(
                pstUnder->astItems.begin(), pstUnder->astItems.end(),
                [&](const ScenarioValue &stOther) { return stOther.strKey == stItem.strKey; });
            if (pstSame == pstUnder->astItems.end()) {
                pstUnder->astItems.push_back(std::move(stItem));
            } else {
                Merge(&*pstSame, std::move(stItem));
            }
        }
    } else if (IsListOfTables(*pstUnder) && IsListOfTables(stOver)) {
        std::move(stOver.astItems.begin(), stOver.astItems.end(),
                  std::back_inserter(pstUnder->astItems));
    } else {
        *pstUnder = std::move(stOver);
    }
}

// Reads a scenario with all that it includes.
class Loader {
  public:
    explicit Loader(Files &stFiles) : m_stFiles(stFiles) {}

    // NOLINTNEXTLINE(misc-no-recursion)
    ScenarioValue Load(std::string_view strText, const std::string &strName) {
        const auto pstrFile = std::make_shared<const std::string>(strName);
        ScenarioValue stOwn;
        try {
            stOwn = Convert(toml::parse(strText), "", pstrFile);
        } catch (const toml::parse_error &stError) {
            throw ScenarioError(strName, stError.source().begin.line,
                                std::string(stError.description()));
        }
        const auto pstInclude =
            std::find_if(stOwn.astItems.begin(), stOwn.astItems.end(),
                         [](const ScenarioValue &stItem) { return stItem.strKey == "include"; });
        if (pstInclude == stOwn.astItems.end()) {
            return stOwn;
        }
        const ScenarioValue stInclude = std::move(*pstInclude);
        stOwn.astItems.erase(pstInclude);
        ScenarioValue stAll;
        stAll.eKind = Kind::Table;
        stAll.pstrFile = pstrFile;
        m_astrWithin.push_back(strName);
        if (stInclude.eKind == Kind::Array) {
            for (const ScenarioValue &stPath : stInclude.astItems) {
                Merge(&stAll, Include(stPath));
            }
        } else {
            Merge(&stAll, Include(stInclude));
        }
        m_astrWithin.pop_back();
        Merge(&stAll, std::move(stOwn));
        return stAll;
    }

  private:
    static constexpr uint32_t u32MostFiles = 32;

    // NOLINTNEXTLINE(misc-no-recursion)
    ScenarioValue Include(const ScenarioValue &stPath) {
        if (stPath.eKind != Kind::Text) {
            throw ErrorIn(stPath, "\"include\" must be a file in quotes, or a list of such");
        }
        const std::string strPath = PathBeside(stPath);
        if (std::find(m_astrWithin.begin(), m_astrWithin.end(), strPath) != m_astrWithin.end()) {
            throw ErrorIn(stPath, "\"include\" names a file that includes this one");
        }
        if (++m_u32Files > u32MostFiles) {
            throw ErrorIn(stPath, "\"include\" names more than " + std::to_string(u32MostFiles) +
                                      " files in all");
        }
        std::string strText;
        try {
            strText = ReadPresent(m_stFiles, strPath);
        } catch (const ScenarioError &stError) {
            throw ErrorIn(stPath, "\"include\" names " + Quoted(stPath.strText) + ", which " +
                                      stError.Reason());
        }
        return Load(strText, strPath);
    }

    Files &m_stFiles;
    std::vector<std::string> m_astrWithin; // the files that are being read
    uint32_t m_u32Files = 0;
};

// False when the text is not whole bytes.
bool ReadBytes(std::string_view strText, std::vector<uint8_t> *paucBytes) {
    for (size_t i = 0; i < strText.size(); ++i) {
        if (std::string_view(" \t\r\n:-").find(strText[i]) != std::string_view::npos) {
            continue;
        }
        const int iHigh = DigitOf(strText[i]);
        const int iLow = i + 1 < strText.size() ? DigitOf(strText[i + 1]) : -1;
        if (iHigh < 0 || iLow < 0) {
            return false;
        }
        paucBytes->push_back(static_cast<uint8_t>(16 * iHigh + iLow));
        ++i;
    }
    return true;
}

} // namespace

ScenarioValue *Section::Find(std::string_view strKey) const {
    if (m_pstTable == nullptr) {
        return nullptr;
    }
    for (ScenarioValue &stItem : m_pstTable->astItems) {
        if (stItem.strKey == strKey) {
            stItem.bRead = true;
            return &stItem;
        }
    }
    return nullptr;
}

ScenarioValue *Section::FindOrRefuse(std::string_view strKey, bool bOptional) const {
    ScenarioValue *pstValue = Find(strKey);
    if (pstValue == nullptr && !bOptional) {
        Refuse(strKey, "is missing");
    }
    return pstValue;
}

bool Section::Has(std::string_view strKey) const { return Find(strKey) != nullptr; }

ScenarioError Section::ErrorAbout(std::string_view strKey, const std::string &strReason) const {
    const ScenarioValue *pstValue = Find(strKey);
    if (pstValue == nullptr) {
        pstValue = m_pstTable;
    }
    return ErrorIn(pstValue != nullptr ? *pstValue : m_pstDocument->stRoot,
                   Quoted(strKey) + " " + strReason);
}

int64_t Section::Integer(std::string_view strKey, int64_t iLeast, int64_t iMost,
                         std::optional<int64_t> iDefault) const {
    const ScenarioValue *pstValue = FindOrRefuse(strKey, iDefault.has_value());
    if (pstValue == nullptr) {
        return *iDefault;
    }
    if (pstValue->eKind != Kind::Integer || pstValue->iInteger < iLeast ||
        pstValue->iInteger > iMost) {
        Refuse(strKey, "must be a whole number from " + std::to_string(iLeast) + " to " +
                           std::to_string(iMost));
    }
    return pstValue->iInteger;
}

double Section::Number(std::string_view strKey, double fLeast, double fMost,
                       std::optional<double> fDefault) const {
    const ScenarioValue *pstValue = FindOrRefuse(strKey, fDefault.has_value());
    if (pstValue == nullptr) {
        return *fDefault;
    }
    const bool bNumber = pstValue->eKind == Kind::Integer || pstValue->eKind == Kind::Number;
    // Written so that a value that is no number is refused too.
    if (!bNumber || !(pstValue->fNumber >= fLeast && pstValue->fNumber <= fMost)) {
        Refuse(strKey, "must be a number from " + Short(fLeast) + " to " + Short(fMost));
    }
    return pstValue->fNumber;
}

ModemTime Section::Seconds(std::string_view strKey, double fLeast, double fMost,
                           std::optional<double> fDefault) const {
    return std::llround(Number(strKey, fLeast, fMost, fDefault) * static_cast<double>(i64Second));
}

bool Section::Flag(std::string_view strKey, std::optional<bool> bDefault) const {
    const ScenarioValue *pstValue = FindOrRefuse(strKey, bDefault.has_value());
    if (pstValue == nullptr) {
        return *bDefault;
    }
    if (pstValue->eKind != Kind::Flag) {
        Refuse(strKey, "must be true or false");
    }
    return pstValue->bFlag;
}

std::string Section::Text(std::string_view strKey,
                          std::optional<std::string_view> strDefault) const {
    const ScenarioValue *pstValue = FindOrRefuse(strKey, strDefault.has_value());
    if (pstValue == nullptr) {
        return std::string(*strDefault);
    }
    if (!pstValue->IsText()) {
        Refuse(strKey, "must be a text in quotes");
    }
    return pstValue->strText;
}

std::string Section::Path(std::string_view strKey) const {
    (void)Text(strKey); // refuses what is none
    return PathBeside(*Find(strKey));
}

uint32_t Section::Choice(std::string_view strKey, std::span<const ScenarioWord> astWords,
                         std::optional<uint32_t> u32Default) const {
    const ScenarioValue *pstValue = FindOrRefuse(strKey, u32Default.has_value());
    if (pstValue == nullptr) {
        return *u32Default;
    }
    std::string strAllowed;
    for (const ScenarioWord &stWord : astWords) {
        if (pstValue->IsText() && pstValue->strText == stWord.pcWord) {
            return stWord.u32Value;
        }
        strAllowed += (strAllowed.empty() ? "" : ", ") + Quoted(stWord.pcWord);
    }
    Refuse(strKey, "must be one of " + strAllowed);
}

Files &Section::TheFiles() const { return *m_pstDocument->pstFiles; }

std::vector<uint8_t> Section::Bytes(std::string_view strKey, size_t uMost) const {
    std::vector<uint8_t> aucBytes;
    if (!ReadBytes(Text(strKey, ""), &aucBytes)) {
        Refuse(strKey, "must be whole bytes, each of two hexadecimal digits");
    }
    if (aucBytes.size() > uMost) {
        Refuse(strKey, "must be at most " + std::to_string(uMost) + " bytes");
    }
    return aucBytes;
}

std::vector<int64_t> Section::Integers(std::string_view strKey, int64_t iLeast,
                                       int64_t iMost) const {
    std::vector<int64_t> aiValues;
    ScenarioValue *pstValue = Find(strKey);
    if (pstValue == nullptr) {
        return aiValues;
    }
    bool bGood = pstValue->eKind == Kind::Array;
    for (ScenarioValue &stItem : pstValue->astItems) {
        stItem.bRead = true;
        bGood = bGood && stItem.eKind == Kind::Integer && stItem.iInteger >= iLeast &&
                stItem.iInteger <= iMost;
        aiValues.push_back(stItem.iInteger);
    }
    if (!bGood) {
        Refuse(strKey, "must be a list of whole numbers from " + std::to_string(iLeast) + " to " +
                           std::to_string(iMost));
    }
    return aiValues;
}

Section Section::Table(std::string_view strKey) const {
    ScenarioValue *pstValue = Find(strKey);
    if (pstValue != nullptr && pstValue->eKind != Kind::Table) {
        Refuse(strKey, "must be a section, [" + std::string(strKey) + "]");
    }
    return {m_pstDocument, pstValue};
}

std::vector<Section> Section::Tables(std::string_view strKey) const {
    std::vector<Section> astSections;
    ScenarioValue *pstValue = Find(strKey);
    if (pstValue == nullptr) {
        return astSections;
    }
    bool bGood = pstValue->eKind == Kind::Array;
    for (ScenarioValue &stItem : pstValue->astItems) {
        stItem.bRead = true;
        bGood = bGood && stItem.eKind == Kind::Table;
        astSections.emplace_back(m_pstDocument, &stItem);
    }
    if (!bGood) {
        Refuse(strKey,
               "must be a section that may stand several times, [[" + std::string(strKey) + "]]");
    }
    return astSections;
}

Scenario::Scenario(std::unique_ptr<ScenarioDocument> pstDocument)
    : m_pstDocument(std::move(pstDocument)) {}
Scenario::Scenario(Scenario &&) noexcept = default;
Scenario &Scenario::operator=(Scenario &&) noexcept = default;
Scenario::~Scenario() = default;

Scenario Scenario::FromText(std::string_view strText, const std::string &strName,
                            std::shared_ptr<Files> pstFiles) {
    auto pstDocument = std::make_unique<ScenarioDocument>();
    pstDocument->stRoot = Loader(*pstFiles).Load(strText, strName);
    pstDocument->strName = strName;
    pstDocument->strText = strText;
    pstDocument->pstFiles = std::move(pstFiles);
    return Scenario(std::move(pstDocument));
}

Scenario Scenario::FromFile(const std::string &strPath, std::shared_ptr<Files> pstFiles) {
    Files stHost;
    return FromText(ReadPresent(stHost, strPath), strPath, std::move(pstFiles));
}

Scenario Scenario::BuiltIn(std::shared_ptr<Files> pstFiles) {
    return FromText(pcDefaultScenario, "built-in scenario", std::move(pstFiles));
}

Scenario Scenario::FromWords(const Words &astWords, const std::string &strName) {
    auto pstDocument = std::make_unique<ScenarioDocument>();
    pstDocument->stRoot.pstrFile = std::make_shared<const std::string>(strName);
    pstDocument->stRoot.eKind = Kind::Table;
    pstDocument->pstFiles = std::make_shared<Files>();
    for (const auto &stWord : astWords) {
        const std::string &strKey = stWord.first;
        const auto &astItems = pstDocument->stRoot.astItems;
        if (std::any_of(astItems.begin(), astItems.end(),
                        [&](const ScenarioValue &stItem) { return stItem.strKey == strKey; })) {
            throw ScenarioError(strName, ScenarioError::u32WholeFile,
                                Quoted(strKey) + " stands twice");
        }
        pstDocument->stRoot.astItems.push_back(FromWord(strKey, stWord.second));
        pstDocument->stRoot.astItems.back().pstrFile = pstDocument->stRoot.pstrFile;
    }
    return Scenario(std::move(pstDocument));
}

const std::string &Scenario::Name() const { return m_pstDocument->strName; }

const std::string &Scenario::Text() const { return m_pstDocument->strText; }

Section Scenario::Root() const { return {m_pstDocument.get(), &m_pstDocument->stRoot}; }

void Scenario::RefuseUnread() const {
    if (const ScenarioValue *pstUnread = FirstUnread(m_pstDocument->stRoot)) {
        throw ErrorIn(*pstUnread, Quoted(pstUnread->strKey) + " is not known here");
    }
}
