// Moments and spans of time as text.
#ifndef MONITOR_TIMES_H
#define MONITOR_TIMES_H

#include "Writer.h"

// Nanoseconds since 1970 as UTC, with cBetween between the day and the hour.
void PutTime(Writer &stWriter, int64_t i64Nanoseconds, char cBetween);
// Nanoseconds as milliseconds with three decimals.
void PutMilliseconds(Writer &stWriter, uint64_t u64Nanoseconds);

#endif
