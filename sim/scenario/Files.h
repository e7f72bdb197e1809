// The files that a modem reads and writes. Whoever makes the modem may put others in the place of
// the host's.
#ifndef FILES_H
#define FILES_H

#include <cstdint>
#include <optional>
#include <string>

class Files {
  public:
    Files() = default;
    Files(const Files &) = delete;
    Files &operator=(const Files &) = delete;
    virtual ~Files() = default;

    // As ReadTextFile.
    virtual std::optional<std::string> Read(const std::string &strPath);
    // In bytes; nothing for a file that is not there or cannot be read.
    virtual std::optional<uint64_t> SizeOf(const std::string &strPath);
    // The new file replaces the old one as a whole: there is always a good one. False when it
    // cannot be written.
    virtual bool Replace(const std::string &strPath, const std::string &strText);
};

#endif
