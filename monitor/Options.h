// What the monitor was asked for.
#ifndef MONITOR_OPTIONS_H
#define MONITOR_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "Session.h"

enum class OutputForm : uint8_t { Text, JSON, Summary, Scrub, Page };

// A moment, as it was given.
struct Moment {
    int64_t i64Nanoseconds = 0;
    bool bSinceStart = false; // since the first event, not since 1970
};

enum class ResultFilter : uint8_t { Any, Ok, Failed, Value };

// What an entry must be to be shown. Without members everything is.
struct FilterOptions {
    std::optional<uint16_t> u16Type;
    std::optional<uint16_t> u16SubType;
    const MessageRow *pstMessage = nullptr; // in the place of a number
    std::optional<bool> bSent;
    std::optional<Moment> stFrom;
    std::optional<Moment> stTo;
    ResultFilter eResult = ResultFilter::Any;
    int32_t s32Result = 0;
};

struct Options {
    OutputForm eForm = OutputForm::Text;
    bool bFields = false;
    bool bRaw = false;
    bool bFollow = false;
    bool bHelp = false;
    FilterOptions stFilter;
    std::string strFile;
    std::string strOutput; // the copy or page
};

// Empty, or what is wrong with the arguments: one line.
std::string ReadOptions(const std::vector<std::string> &astrArguments, Options *pstOptions);

extern const char *const pcUsage;

#endif
