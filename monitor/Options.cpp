#include "Options.h"

#include <charconv>
#include <ctime>

#include "Names.h"

const char *const pcUsage =
    R"(Usage: TarvelWiMAXMonitor [OPTION]... FILE
       TarvelWiMAXMonitor --scrub OUT FILE
       TarvelWiMAXMonitor --page OUT.html [FILTER]... FILE

Shows a recorded session (- is standard input): every call of the device library and every message
of the modem, requests by their fields and answers by the client's own reports.

  --fields            every message by its fields
  --json              one JSON object a line (docs/monitor.md describes it)
  --raw               the bytes, too
  --summary           figures: messages, bytes and rates, answer times, failed calls
  --follow            go on when the file grows

  --type TYPE         only messages of this type, by number or name (network_entry)
  --subtype SUBTYPE   only this subtype, by number, or the message of this name (sync_status)
  --direction WAY     only what was sent, or received
  --from TIME         only from this time on: 2026-11-22T01:46:07.5 (UTC), or seconds since the
  --to TIME           first event; only up to this time
  --result RESULT     only results: ok, failed, or a number

  --scrub OUT         write a copy to OUT that can be given away: without keys, identities, paths
  --page OUT.html     draw it: one page for a browser, with charts, a ladder and a table
  --help              this text

Exit status: 0; 1 when the recording is damaged or cannot be read or written; 2 for wrong arguments.
)";

namespace {

constexpr int64_t i64Second = 1'000'000'000;

// Digits from the front of a text; false when there are not that many.
bool TakeNumber(std::string_view *pstrText, size_t uDigits, int *piNumber) {
    if (pstrText->size() < uDigits) {
        return false;
    }
    const char *pcEnd = pstrText->data() + uDigits;
    const auto [pcStop, eError] = std::from_chars(pstrText->data(), pcEnd, *piNumber);
    if (eError != std::errc() || pcStop != pcEnd || *piNumber < 0) {
        return false;
    }
    pstrText->remove_prefix(uDigits);
    return true;
}

bool TakeChar(std::string_view *pstrText, std::string_view strChars) {
    if (pstrText->empty() || strChars.find(pstrText->front()) == std::string_view::npos) {
        return false;
    }
    pstrText->remove_prefix(1);
    return true;
}

// Decimals of a second behind the point, up to nine.
bool ReadDecimals(std::string_view strText, int64_t *pi64Nanoseconds) {
    constexpr size_t uMost = 9;
    if (strText.empty()) {
        return true;
    }
    if (!TakeChar(&strText, ".") || strText.empty() || strText.size() > uMost) {
        return false;
    }
    int64_t i64Unit = i64Second;
    for (; !strText.empty(); strText.remove_prefix(1)) {
        if (!IsDigit(strText.front())) {
            return false;
        }
        i64Unit /= 10;
        *pi64Nanoseconds += i64Unit * (strText.front() - '0');
    }
    return true;
}

std::optional<Moment> ReadDate(std::string_view strText) {
    tm stTime{};
    if (!TakeNumber(&strText, 4, &stTime.tm_year) || !TakeChar(&strText, "-") ||
        !TakeNumber(&strText, 2, &stTime.tm_mon) || !TakeChar(&strText, "-") ||
        !TakeNumber(&strText, 2, &stTime.tm_mday) || !TakeChar(&strText, "T ") ||
        !TakeNumber(&strText, 2, &stTime.tm_hour) || !TakeChar(&strText, ":") ||
        !TakeNumber(&strText, 2, &stTime.tm_min) || !TakeChar(&strText, ":") ||
        !TakeNumber(&strText, 2, &stTime.tm_sec)) {
        return {};
    }
    if (strText.ends_with('Z')) {
        strText.remove_suffix(1);
    }
    stTime.tm_year -= 1900;
    stTime.tm_mon -= 1;
    const tm stGiven = stTime;
    Moment stMoment{static_cast<int64_t>(timegm(&stTime)) * i64Second, false};
    // A day that the month does not have becomes another one.
    if (stTime.tm_mday != stGiven.tm_mday || stTime.tm_hour != stGiven.tm_hour ||
        stTime.tm_min != stGiven.tm_min || !ReadDecimals(strText, &stMoment.i64Nanoseconds)) {
        return {};
    }
    return stMoment;
}

std::optional<Moment> ReadMoment(std::string_view strText) {
    const size_t uDigits = std::min(strText.find_first_not_of("0123456789"), strText.size());
    uint32_t u32Seconds = 0;
    const auto stEnd = std::from_chars(strText.data(), strText.data() + uDigits, u32Seconds);
    if (uDigits == 0 || stEnd.ec != std::errc()) {
        return {};
    }
    Moment stMoment{int64_t{u32Seconds} * i64Second, true};
    if (!ReadDecimals(strText.substr(uDigits), &stMoment.i64Nanoseconds)) {
        return ReadDate(strText);
    }
    return stMoment;
}

bool ReadSubType(const std::string &strText, FilterOptions *pstFilter) {
    if (const auto u32Number = NumberOf(strText); u32Number && *u32Number <= UINT16_MAX) {
        pstFilter->u16SubType = static_cast<uint16_t>(*u32Number);
        return true;
    }
    for (const MessageRow &stRow : Messages()) {
        if (strText == stRow.stName.Plain() || SameLetters(strText, stRow.stName.pcOwn)) {
            pstFilter->pstMessage = &stRow;
            return true;
        }
    }
    return false;
}

bool ReadDirection(const std::string &strText, FilterOptions *pstFilter) {
    pstFilter->bSent = strText == "sent";
    return strText == "sent" || strText == "received";
}

bool ReadResult(const std::string &strText, FilterOptions *pstFilter) {
    const char *pcEnd = strText.data() + strText.size();
    if (strText == "ok" || strText == "failed") {
        pstFilter->eResult = strText == "ok" ? ResultFilter::Ok : ResultFilter::Failed;
        return true;
    }
    pstFilter->eResult = ResultFilter::Value;
    const auto [pcStop, eError] = std::from_chars(strText.data(), pcEnd, pstFilter->s32Result);
    return !strText.empty() && eError == std::errc() && pcStop == pcEnd;
}

// An option; its value is empty when it takes none. False: not with this value.
struct OptionRow {
    std::string_view strName;
    bool bHasValue;
    bool (*pfnRead)(const std::string &strValue, Options *pst);
};

bool TakeForm(OutputForm eForm, Options *pst) {
    const bool bFirst = pst->eForm == OutputForm::Text || pst->eForm == eForm;
    pst->eForm = eForm;
    return bFirst;
}

bool TakeOutput(OutputForm eForm, const std::string &strFile, Options *pst) {
    pst->strOutput = strFile;
    return !strFile.empty() && TakeForm(eForm, pst);
}

constexpr OptionRow astOptions[] = {
    {"--fields", false, [](const std::string &, Options *pst) { return pst->bFields = true; }},
    {"--raw", false, [](const std::string &, Options *pst) { return pst->bRaw = true; }},
    {"--follow", false, [](const std::string &, Options *pst) { return pst->bFollow = true; }},
    {"--help", false, [](const std::string &, Options *pst) { return pst->bHelp = true; }},
    {"--json", false,
     [](const std::string &, Options *pst) { return TakeForm(OutputForm::JSON, pst); }},
    {"--summary", false,
     [](const std::string &, Options *pst) { return TakeForm(OutputForm::Summary, pst); }},
    {"--scrub", true,
     [](const std::string &strValue, Options *pst) {
         return TakeOutput(OutputForm::Scrub, strValue, pst);
     }},
    {"--page", true,
     [](const std::string &strValue, Options *pst) {
         return TakeOutput(OutputForm::Page, strValue, pst);
     }},
    {"--type", true,
     [](const std::string &strValue, Options *pst) {
         return (pst->stFilter.u16Type = TypeOf(strValue)).has_value();
     }},
    {"--subtype", true,
     [](const std::string &strValue, Options *pst) {
         return ReadSubType(strValue, &pst->stFilter);
     }},
    {"--direction", true,
     [](const std::string &strValue, Options *pst) {
         return ReadDirection(strValue, &pst->stFilter);
     }},
    {"--from", true,
     [](const std::string &strValue, Options *pst) {
         return (pst->stFilter.stFrom = ReadMoment(strValue)).has_value();
     }},
    {"--to", true,
     [](const std::string &strValue, Options *pst) {
         return (pst->stFilter.stTo = ReadMoment(strValue)).has_value();
     }},
    {"--result", true,
     [](const std::string &strValue, Options *pst) {
         return ReadResult(strValue, &pst->stFilter);
     }},
};

const OptionRow *FindOption(std::string_view strName) {
    for (const OptionRow &stRow : astOptions) {
        if (stRow.strName == strName) {
            return &stRow;
        }
    }
    return nullptr;
}

} // namespace

std::string ReadOptions(const std::vector<std::string> &astrArguments, Options *pstOptions) {
    for (size_t i = 0; i < astrArguments.size(); ++i) {
        const std::string &strArgument = astrArguments[i];
        if (strArgument == "-" || !strArgument.starts_with('-')) {
            if (!pstOptions->strFile.empty()) {
                return "more than one file: " + strArgument;
            }
            pstOptions->strFile = strArgument;
            continue;
        }
        const size_t uEqual = strArgument.find('=');
        const OptionRow *pstRow = FindOption(std::string_view(strArgument).substr(0, uEqual));
        if (pstRow == nullptr || (uEqual != std::string::npos && !pstRow->bHasValue)) {
            return "unknown option: " + strArgument;
        }
        std::string strValue;
        if (uEqual != std::string::npos) {
            strValue = strArgument.substr(uEqual + 1);
        } else if (pstRow->bHasValue) {
            if (++i == astrArguments.size()) {
                return strArgument + " needs a value";
            }
            strValue = astrArguments[i];
        }
        if (!pstRow->pfnRead(strValue, pstOptions)) {
            return pstRow->bHasValue
                       ? std::string(pstRow->strName) + " does not go with " + strValue
                       : "only one of --json, --summary and --scrub";
        }
    }
    if (pstOptions->strFile.empty() && !pstOptions->bHelp) {
        return "which file?";
    }
    return {};
}
