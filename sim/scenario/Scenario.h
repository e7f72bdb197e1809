// A scenario file, with the files that it includes: what surrounds the modem, what happens to it,
// and what goes wrong. Every part of the modem reads its own section; what nobody has read at the
// end is a mistake in the file and is refused.
#ifndef SCENARIO_H
#define SCENARIO_H

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "scenario/Files.h"
#include "scenario/TextFile.h"
#include "time/ModemTime.h"

struct ScenarioDocument;
struct ScenarioValue;

// A word of the file that stands for a number.
struct ScenarioWord {
    const char *pcWord;
    uint32_t u32Value;
};

// One table of the file. Reading a key that is not there gives the default, or,
// where there is none, refuses the file; so does a value of the wrong kind or
// outside its range. A section that is not in the file has all its defaults.
class Section {
  public:
    Section(ScenarioDocument *pstDocument, ScenarioValue *pstTable)
        : m_pstDocument(pstDocument), m_pstTable(pstTable) {}

    bool Present() const { return m_pstTable != nullptr; }
    bool Has(std::string_view strKey) const;

    int64_t Integer(std::string_view strKey, int64_t iLeast, int64_t iMost,
                    std::optional<int64_t> iDefault = std::nullopt) const;
    double Number(std::string_view strKey, double fLeast, double fMost,
                  std::optional<double> fDefault = std::nullopt) const;
    // A number of seconds, as modem time.
    ModemTime Seconds(std::string_view strKey, double fLeast, double fMost,
                      std::optional<double> fDefault = std::nullopt) const;
    bool Flag(std::string_view strKey, std::optional<bool> bDefault = std::nullopt) const;
    std::string Text(std::string_view strKey,
                     std::optional<std::string_view> strDefault = std::nullopt) const;
    // A file's path, taken from the directory of the scenario file that names it.
    std::string Path(std::string_view strKey) const;
    // What paths are paths of.
    Files &TheFiles() const;
    // One of the words of a table.
    uint32_t Choice(std::string_view strKey, std::span<const ScenarioWord> astWords,
                    std::optional<uint32_t> u32Default = std::nullopt) const;
    // Bytes as text, in hexadecimal, two digits each; blanks, line ends,
    // colons and dashes may stand between them. Without the key: none.
    std::vector<uint8_t> Bytes(std::string_view strKey, size_t uMost) const;
    std::vector<int64_t> Integers(std::string_view strKey, int64_t iLeast, int64_t iMost) const;

    // [key]
    Section Table(std::string_view strKey) const;
    // [[key]], in the order of the file
    std::vector<Section> Tables(std::string_view strKey) const;

    // Refuses the file because of this key, or because of the whole table when
    // the key is not there.
    [[noreturn]] void Refuse(std::string_view strKey, const std::string &strReason) const {
        throw ErrorAbout(strKey, strReason);
    }
    // What is said of this key, or of the whole table.
    ScenarioError ErrorAbout(std::string_view strKey, const std::string &strReason) const;

  private:
    ScenarioValue *Find(std::string_view strKey) const;
    ScenarioValue *FindOrRefuse(std::string_view strKey, bool bOptional) const;

    ScenarioDocument *m_pstDocument;
    ScenarioValue *m_pstTable;
};

class Scenario {
  public:
    // strName stands for the file in messages; what it names is looked for in pstFiles. Throws
    // ScenarioError.
    static Scenario FromText(std::string_view strText, const std::string &strName,
                             std::shared_ptr<Files> pstFiles = std::make_shared<Files>());
    static Scenario FromFile(const std::string &strPath,
                             std::shared_ptr<Files> pstFiles = std::make_shared<Files>());
    static Scenario BuiltIn(std::shared_ptr<Files> pstFiles = std::make_shared<Files>());
    // One table of keys and values, the values as bare words: each is whatever the reader of its
    // key asks for, if it can be that.
    using Words = std::vector<std::pair<std::string, std::string>>;
    static Scenario FromWords(const Words &astWords, const std::string &strName);

    Scenario(Scenario &&) noexcept;
    Scenario &operator=(Scenario &&) noexcept;
    Scenario(const Scenario &) = delete;
    Scenario &operator=(const Scenario &) = delete;
    ~Scenario();

    // The file itself, without those that it includes.
    const std::string &Name() const;
    const std::string &Text() const;
    // The file's outermost table.
    Section Root() const;
    // To be called when everything has been read.
    void RefuseUnread() const;

  private:
    explicit Scenario(std::unique_ptr<ScenarioDocument> pstDocument);
    std::unique_ptr<ScenarioDocument> m_pstDocument;
};

#endif
