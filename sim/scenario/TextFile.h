// Files that people write, read whole; and what is said about them.
#ifndef TEXT_FILE_H
#define TEXT_FILE_H

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

// The text on one line that a terminal shows as it is: control bytes and bytes that are no UTF-8
// stand as \n or \x1B, and a very long text is cut.
std::string Printable(std::string_view strText);
// Whether a terminal shows all of it as it is.
bool IsPrintable(std::string_view strText);

// What is wrong with a file: "FILE:LINE: reason", or "FILE: reason" about the file as a whole.
class ScenarioError : public std::exception {
  public:
    static constexpr uint32_t u32WholeFile = 0;

    ScenarioError(std::string_view strFile, uint32_t u32Line, std::string_view strReason);
    const char *what() const noexcept override { return m_strText.c_str(); }
    const std::string &Reason() const { return m_strReason; }

  private:
    std::string m_strReason;
    std::string m_strText;
};

// A file's text, or nothing when there is no such file. Throws ScenarioError when it cannot be
// read, is longer than uMost bytes, or is no file that has an end (a directory, a device).
inline constexpr size_t uMostFileBytes = size_t{4} * 1024 * 1024;
std::optional<std::string> ReadTextFile(const std::string &strPath, size_t uMost = uMostFileBytes);

#endif
