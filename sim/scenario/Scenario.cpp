#include "scenario/Scenario.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

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
    uint32_t u32Line = 0;
    bool bRead = false;
    bool bFlag = false;
    int64_t iInteger = 0;
    double fNumber = 0;
    std::string strKey;
    std::string strText;
    std::vector<ScenarioValue> astItems; // of a table or an array
};

struct ScenarioDocument {
    std::string strName;
    ScenarioValue stRoot;
};

namespace {

using Kind = ScenarioValue::Kind;

// As deep as the file is nested, which the TOML reader limits.
// NOLINTNEXTLINE(misc-no-recursion)
ScenarioValue Convert(const toml::node &stNode, std::string_view strKey) {
    ScenarioValue stValue;
    stValue.strKey = strKey;
    stValue.u32Line = stNode.source().begin.line;
    if (const toml::table *pstTable = stNode.as_table()) {
        stValue.eKind = Kind::Table;
        for (const auto &[stKey, stItem] : *pstTable) {
            stValue.astItems.push_back(Convert(stItem, stKey.str()));
        }
    } else if (const toml::array *pstArray = stNode.as_array()) {
        stValue.eKind = Kind::Array;
        for (const toml::node &stItem : *pstArray) {
            stValue.astItems.push_back(Convert(stItem, strKey));
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

std::string Quoted(std::string_view strText) { return "\"" + std::string(strText) + "\""; }

int DigitOf(char cChar) {
    if (cChar >= '0' && cChar <= '9') {
        return cChar - '0';
    }
    if (cChar >= 'a' && cChar <= 'f') {
        return cChar - 'a' + 10;
    }
    return cChar >= 'A' && cChar <= 'F' ? cChar - 'A' + 10 : -1;
}

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

std::optional<std::string> ReadTextFile(const std::string &strPath) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> pstFile(
        std::fopen(strPath.c_str(), "rb"), &std::fclose);
    if (pstFile == nullptr && errno == ENOENT) {
        return {};
    }
    std::string strText;
    if (pstFile != nullptr) {
        std::array<char, 4096> acBlock{};
        size_t uCount = 0;
        while ((uCount = std::fread(acBlock.data(), 1, acBlock.size(), pstFile.get())) != 0) {
            strText.append(acBlock.data(), uCount);
        }
    }
    if (pstFile == nullptr || std::ferror(pstFile.get()) != 0) {
        throw ScenarioError(strPath, 0, std::string("cannot be read: ") + std::strerror(errno));
    }
    return strText;
}

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

void Section::Refuse(std::string_view strKey, const std::string &strReason) const {
    const ScenarioValue *pstValue = Find(strKey);
    if (pstValue == nullptr) {
        pstValue = m_pstTable;
    }
    throw ScenarioError(m_pstDocument->strName, pstValue != nullptr ? pstValue->u32Line : 0,
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
    if (pstValue->eKind != Kind::Text) {
        Refuse(strKey, "must be a text in quotes");
    }
    return pstValue->strText;
}

uint32_t Section::Choice(std::string_view strKey, std::span<const ScenarioWord> astWords,
                         std::optional<uint32_t> u32Default) const {
    const ScenarioValue *pstValue = FindOrRefuse(strKey, u32Default.has_value());
    if (pstValue == nullptr) {
        return *u32Default;
    }
    std::string strAllowed;
    for (const ScenarioWord &stWord : astWords) {
        if (pstValue->eKind == Kind::Text && pstValue->strText == stWord.pcWord) {
            return stWord.u32Value;
        }
        strAllowed += (strAllowed.empty() ? "" : ", ") + Quoted(stWord.pcWord);
    }
    Refuse(strKey, "must be one of " + strAllowed);
}

std::vector<uint8_t> Section::Bytes(std::string_view strKey, size_t uMost) const {
    std::vector<uint8_t> aucBytes;
    if (!ReadBytes(Text(strKey, ""), &aucBytes) || aucBytes.size() > uMost) {
        Refuse(strKey, "must be at most " + std::to_string(uMost) +
                           " bytes, each of two hexadecimal digits");
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

Scenario Scenario::FromText(std::string_view strText, const std::string &strName) {
    try {
        const toml::table stTable = toml::parse(strText);
        auto pstDocument = std::make_unique<ScenarioDocument>();
        pstDocument->strName = strName;
        pstDocument->stRoot = Convert(stTable, "");
        return Scenario(std::move(pstDocument));
    } catch (const toml::parse_error &stError) {
        throw ScenarioError(strName, stError.source().begin.line,
                            std::string(stError.description()));
    }
}

Scenario Scenario::FromFile(const std::string &strPath) {
    const std::optional<std::string> strText = ReadTextFile(strPath);
    if (!strText) {
        throw ScenarioError(strPath, 0, std::string("cannot be read: ") + std::strerror(ENOENT));
    }
    return FromText(*strText, strPath);
}

Scenario Scenario::BuiltIn() { return FromText(pcDefaultScenario, "built-in scenario"); }

Section Scenario::Root() const { return {m_pstDocument.get(), &m_pstDocument->stRoot}; }

void Scenario::RefuseUnread() const {
    if (const ScenarioValue *pstUnread = FirstUnread(m_pstDocument->stRoot)) {
        throw ScenarioError(m_pstDocument->strName, pstUnread->u32Line,
                            Quoted(pstUnread->strKey) + " is not known here");
    }
}
