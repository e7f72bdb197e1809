#include "scenario/StateFile.h"

#include <sstream>

#include "scenario/Hex.h"

StateFile::StateFile(const Section &stRoot)
    : m_stFiles(stRoot.TheFiles()), m_strPath(stRoot.Table("state").Text("file", "")) {
    if (!m_strPath.empty()) {
        // Without a file yet, it is written with the first value.
        ReadFrom(m_stFiles.Read(m_strPath).value_or(""));
    }
}

// A line for each value: section, key, bytes.
void StateFile::ReadFrom(const std::string &strText) {
    std::istringstream stLines(strText);
    uint32_t u32Line = 0;
    for (std::string strLine; std::getline(stLines, strLine);) {
        ++u32Line;
        std::istringstream stWords(strLine);
        std::string strSection;
        std::string strKey;
        std::string strBytes;
        std::string strMore;
        stWords >> strSection >> strKey >> strBytes >> strMore;
        std::optional<std::vector<uint8_t>> aucValue = FromHex(strBytes);
        if (!strMore.empty() || strBytes.empty() || !aucValue) {
            throw ScenarioError(m_strPath, u32Line, "must be a section, a key and bytes");
        }
        m_astSections[strSection][strKey] = std::move(*aucValue);
    }
}

const StateFile::Values &StateFile::Kept(const std::string &strSection) const {
    static const Values stNothing;
    const auto Found = m_astSections.find(strSection);
    return Found == m_astSections.end() ? stNothing : Found->second;
}

bool StateFile::Keep(const std::string &strSection, const std::string &strKey,
                     const std::vector<uint8_t> &aucValue) {
    if (m_strPath.empty()) {
        return true;
    }
    Values &stValues = m_astSections[strSection];
    const Values stBefore = stValues;
    if (aucValue.empty()) {
        stValues.erase(strKey);
    } else {
        stValues[strKey] = aucValue;
    }
    if (stValues == stBefore || Write()) {
        return true;
    }
    stValues = stBefore;
    return false;
}

bool StateFile::Write() const {
    std::string strText;
    for (const auto &[strSection, stValues] : m_astSections) {
        for (const auto &[strKey, aucValue] : stValues) {
            strText += strSection;
            strText += " " + strKey + " " + ToHex(aucValue) + "\n";
        }
    }
    return m_stFiles.Replace(m_strPath, strText);
}
