// Time as the modem counts it.
#ifndef MODEM_TIME_H
#define MODEM_TIME_H

#include <cstdint>

// Microseconds since the device was opened, or a span of them. The scenario's
// time scale relates it to real time.
using ModemTime = int64_t;

inline constexpr ModemTime i64Second = 1000000;
inline constexpr ModemTime i64Millisecond = 1000;
// One frame of the air interface.
inline constexpr ModemTime i64Frame = 5 * i64Millisecond;
inline constexpr uint32_t u32FramesPerSecond = 200;

#endif
