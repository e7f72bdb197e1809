#include "scenario/TextFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t uMostShown = 1000;

// How many bytes from here on are one character that may be shown; 0: none.
size_t ShownBytes(std::string_view strText) {
    const auto u8First = static_cast<uint8_t>(strText.front());
    if (u8First < 0x80) {
        return u8First >= 0x20 && u8First != 0x7F ? 1 : 0;
    }
    const auto uBytes = static_cast<size_t>(std::countl_one(u8First));
    if (uBytes < 2 || uBytes > 4 || uBytes > strText.size()) {
        return 0;
    }
    const bool bWhole = std::all_of(strText.begin() + 1, strText.begin() + uBytes,
                                    [](char cByte) { return (cByte & 0xC0) == 0x80; });
    // The control characters behind the seven bits, which terminals follow as well.
    const bool bControl = u8First == 0xC2 && static_cast<uint8_t>(strText[1]) < 0xA0;
    return bWhole && !bControl ? uBytes : 0;
}

std::string Escaped(char cByte) {
    if (cByte == '\n') {
        return "\\n";
    }
    std::array<char, 8> acText{};
    (void)std::snprintf(acText.data(), acText.size(), "\\x%02X", static_cast<uint8_t>(cByte));
    return acText.data();
}

class Descriptor {
  public:
    explicit Descriptor(const std::string &strPath)
        // Without waiting for somebody at the other end of a pipe.
        : m_iFile(open(strPath.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        if (m_iFile >= 0) {
            (void)close(m_iFile);
        }
    }
    int Number() const { return m_iFile; }

  private:
    int m_iFile;
};

[[noreturn]] void RefuseFile(const std::string &strPath, const std::string &strReason) {
    throw ScenarioError(strPath, ScenarioError::u32WholeFile, strReason);
}

[[noreturn]] void RefuseUnreadable(const std::string &strPath) {
    RefuseFile(strPath, std::string("cannot be read: ") + std::strerror(errno));
}

} // namespace

std::string Printable(std::string_view strText) {
    std::string strShown;
    while (!strText.empty()) {
        if (strShown.size() > uMostShown) {
            return strShown + "...";
        }
        const size_t uBytes = ShownBytes(strText);
        strShown += uBytes != 0 ? std::string(strText.substr(0, uBytes)) : Escaped(strText.front());
        strText.remove_prefix(std::max<size_t>(uBytes, 1));
    }
    return strShown;
}

bool IsPrintable(std::string_view strText) {
    while (!strText.empty()) {
        const size_t uBytes = ShownBytes(strText);
        if (uBytes == 0) {
            return false;
        }
        strText.remove_prefix(uBytes);
    }
    return true;
}

ScenarioError::ScenarioError(std::string_view strFile, uint32_t u32Line, std::string_view strReason)
    : m_strReason(Printable(strReason)), m_strText(Printable(strFile)) {
    if (u32Line != u32WholeFile) {
        m_strText += ":" + std::to_string(u32Line);
    }
    m_strText += ": " + m_strReason;
}

std::optional<std::string> ReadTextFile(const std::string &strPath, size_t uMost) {
    const Descriptor stFile(strPath);
    if (stFile.Number() < 0 && errno == ENOENT) {
        return {};
    }
    struct stat stStatus {};
    if (stFile.Number() < 0 || fstat(stFile.Number(), &stStatus) != 0) {
        RefuseUnreadable(strPath);
    }
    if (!S_ISREG(stStatus.st_mode)) {
        RefuseFile(strPath, "cannot be read: it is not a regular file");
    }
    std::string strText;
    std::array<char, 4096> acBlock{};
    ssize_t iCount = 0;
    // Whatever its size was a moment ago.
    while ((iCount = read(stFile.Number(), acBlock.data(), acBlock.size())) > 0) {
        strText.append(acBlock.data(), static_cast<size_t>(iCount));
        if (strText.size() > uMost) {
            RefuseFile(strPath, "is longer than " + std::to_string(uMost) + " bytes");
        }
    }
    if (iCount < 0) {
        RefuseUnreadable(strPath);
    }
    return strText;
}
