// Modem time against real time: so many times as fast.
#ifndef REAL_CLOCK_H
#define REAL_CLOCK_H

#include <chrono>

#include "time/ModemTime.h"

class RealClock {
  public:
    using Moment = std::chrono::steady_clock::time_point;

    explicit RealClock(double fScale) : m_fScale(fScale) {}

    static Moment Now() { return std::chrono::steady_clock::now(); }
    // The modem time that it should be at a moment.
    ModemTime TimeAt(Moment stMoment) const;
    // When a modem time will have come; an hour from now when that is farther away.
    Moment MomentOf(ModemTime iTime) const;
    // Modem time has not kept up: it is iTime at stMoment.
    void SlipTo(ModemTime iTime, Moment stMoment);
    // From stMoment on time goes so many times as fast.
    void SetScale(double fScale, Moment stMoment);

  private:
    double m_fScale;
    Moment m_stZero = Now(); // when modem time 0 was; later when it has slipped
};

#endif
