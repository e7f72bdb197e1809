#include "Times.h"

#include <ctime>

void PutTime(Writer &stWriter, int64_t i64Nanoseconds, char cBetween) {
    constexpr int64_t i64Second = 1'000'000'000;
    // Most moments lie in the second of the one before.
    static int64_t i64Shown = -1;
    static char acText[64];
    static size_t uBetween = 0;
    static size_t uLength = 0;
    int64_t i64Seconds = i64Nanoseconds / i64Second;
    int64_t i64Rest = i64Nanoseconds % i64Second;
    if (i64Rest < 0) {
        i64Rest += i64Second;
        --i64Seconds;
    }
    if (i64Seconds != i64Shown || uLength == 0) {
        const time_t stSeconds = i64Seconds;
        tm stTime{};
        (void)gmtime_r(&stSeconds, &stTime);
        uBetween = std::strftime(acText, sizeof acText, "%Y-%m-%d", &stTime);
        uLength = uBetween +
                  std::strftime(acText + uBetween, sizeof acText - uBetween, " %H:%M:%S.", &stTime);
        i64Shown = i64Seconds;
    }
    acText[uBetween] = cBetween;
    stWriter.Put(std::string_view(acText, uLength));
    stWriter.PutDigits(static_cast<uint32_t>(i64Rest), 9);
}

void PutMilliseconds(Writer &stWriter, uint64_t u64Nanoseconds) {
    constexpr uint64_t u64Microsecond = 1000;
    constexpr uint64_t u64Millisecond = 1'000'000;
    stWriter.PutNumber(u64Nanoseconds / u64Millisecond);
    stWriter.Put('.');
    stWriter.PutDigits(static_cast<uint32_t>(u64Nanoseconds % u64Millisecond / u64Microsecond), 3);
}
