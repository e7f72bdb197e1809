#include "time/RealClock.h"

namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

// The farthest moment, well within what the clock can count.
constexpr std::chrono::hours stFarthest(1);

} // namespace

ModemTime RealClock::TimeAt(Moment stMoment) const {
    return static_cast<ModemTime>(Microseconds(stMoment - m_stZero).count() * m_fScale);
}

RealClock::Moment RealClock::MomentOf(ModemTime iTime) const {
    // Rounded up, so that the modem's clock has reached it then.
    const Microseconds stSince((static_cast<double>(iTime) + 1) / m_fScale);
    const Moment stLimit = Now() + stFarthest;
    if (stSince > stLimit - m_stZero) {
        return stLimit;
    }
    return m_stZero + std::chrono::ceil<Moment::duration>(stSince);
}

void RealClock::SlipTo(ModemTime iTime, Moment stMoment) {
    const Microseconds stLived(static_cast<double>(iTime) / m_fScale);
    m_stZero = stMoment - std::chrono::duration_cast<Moment::duration>(stLived);
}

void RealClock::SetScale(double fScale, Moment stMoment) {
    const ModemTime iTime = TimeAt(stMoment);
    m_fScale = fScale;
    SlipTo(iTime, stMoment);
}
