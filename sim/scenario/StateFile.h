// What the modem keeps over a restart, as its flash memory would: values of bytes
// under keys, in sections, one for each part of the modem. They last only when
// the scenario names a file.
#ifndef STATE_FILE_H
#define STATE_FILE_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "scenario/Scenario.h"

class StateFile {
  public:
    using Values = std::map<std::string, std::vector<uint8_t>>;

    // Reads [state], and the file that it names, where there is one already. Throws
    // ScenarioError for a file that cannot be read.
    explicit StateFile(const Section &stRoot);

    // What was kept in a section; nothing without a file. Section names and keys
    // are words without blanks.
    const Values &Kept(const std::string &strSection) const;
    // Keeps the value, or forgets the key when it is empty. False when the file
    // cannot be written; nothing has changed then. Without a file, true, and
    // nothing is kept.
    bool Keep(const std::string &strSection, const std::string &strKey,
              const std::vector<uint8_t> &aucValue);

  private:
    void ReadFrom(const std::string &strText);
    bool Write() const;

    Files &m_stFiles;
    std::string m_strPath; // empty: none
    std::map<std::string, Values> m_astSections;
};

#endif
