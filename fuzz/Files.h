// The files that the simulated modem reads and writes in a run: one in memory,
// whatever its name.
#ifndef FUZZ_FILES_H
#define FUZZ_FILES_H

#include <string_view>

// From now on the modem's file has these bytes; what it writes goes nowhere. As
// long as one of these lives.
struct ModemFile {
    explicit ModemFile(std::string_view strBytes);
    ~ModemFile();
    ModemFile(const ModemFile &) = delete;
    ModemFile &operator=(const ModemFile &) = delete;
};

#endif
