#include "scenario/StateFile.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

constexpr const char *pcDigits = "0123456789ABCDEF";

// False when the word is not whole bytes in capital hexadecimal digits.
bool ReadBytes(const std::string &strWord, std::vector<uint8_t> *paucBytes) {
    for (size_t i = 0; i + 1 < strWord.size(); i += 2) {
        const char *pcHigh = std::strchr(pcDigits, strWord[i]);
        const char *pcLow = std::strchr(pcDigits, strWord[i + 1]);
        if (pcHigh == nullptr || pcLow == nullptr) {
            return false;
        }
        paucBytes->push_back(static_cast<uint8_t>((pcHigh - pcDigits) * 16 + (pcLow - pcDigits)));
    }
    return !strWord.empty() && strWord.size() % 2 == 0;
}

std::string HexOf(const std::vector<uint8_t> &aucBytes) {
    std::string strHex;
    for (const uint8_t u8Byte : aucBytes) {
        strHex += pcDigits[u8Byte / 16];
        strHex += pcDigits[u8Byte % 16];
    }
    return strHex;
}

} // namespace

StateFile::StateFile(const Section &stRoot) : m_strPath(stRoot.Table("state").Text("file", "")) {
    if (!m_strPath.empty()) {
        // Without a file yet, it is written with the first value.
        ReadFrom(ReadTextFile(m_strPath).value_or(""));
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
        std::vector<uint8_t> aucValue;
        stWords >> strSection >> strKey >> strBytes >> strMore;
        if (!strMore.empty() || !ReadBytes(strBytes, &aucValue)) {
            throw ScenarioError(m_strPath, u32Line, "must be a section, a key and bytes");
        }
        m_astSections[strSection][strKey] = std::move(aucValue);
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

// The new file replaces the old one as a whole: there is always a good one.
bool StateFile::Write() const {
    const std::string strNew = m_strPath + ".new";
    File pstFile(std::fopen(strNew.c_str(), "wb"), &std::fclose);
    if (pstFile == nullptr) {
        return false;
    }
    bool bGood = true;
    for (const auto &[strSection, stValues] : m_astSections) {
        for (const auto &[strKey, aucValue] : stValues) {
            bGood = bGood && std::fprintf(pstFile.get(), "%s %s %s\n", strSection.c_str(),
                                          strKey.c_str(), HexOf(aucValue).c_str()) > 0;
        }
    }
    bGood = std::fclose(pstFile.release()) == 0 && bGood;
    return bGood && std::rename(strNew.c_str(), m_strPath.c_str()) == 0;
}
