// What the client asks now beside what it asked when it was recorded, in words.
#ifndef REPLAY_DIFFERENCE_H
#define REPLAY_DIFFERENCE_H

#include <string>

#include "Format.h"

// A call as one line: `SendWiMAXMessage 1 68 2/1 | f8 92 36 00 00*60`.
std::string CallText(const Event &stCall, ByteView stBytes);

// The first thing that differs between two calls of the same kind; empty when nothing does.
std::string FirstDifference(const Event &stRecorded, ByteView stRecordedBytes, const Event &stNow,
                            ByteView stNowBytes);

#endif
