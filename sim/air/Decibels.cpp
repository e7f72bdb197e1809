#include "air/Decibels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double fLeastLevel = -400; // dB: no power at all
constexpr double fPerOctave = 10 * std::numbers::ln2 / std::numbers::ln10;
constexpr double fPerE = 10 / std::numbers::ln10;

} // namespace

// The logarithm of what is left between 1/sqrt(2) and sqrt(2) is a series of the odd powers of
// (m-1)/(m+1), which is below 0.18: ten of them fill a double.
double Decibels(double fRatio) {
    if (!(fRatio > 0)) {
        return fLeastLevel;
    }
    int iOctaves = 0;
    double fPart = std::frexp(fRatio, &iOctaves);
    if (fPart < std::numbers::sqrt2 / 2) {
        fPart *= 2;
        --iOctaves;
    }
    const double fBase = (fPart - 1) / (fPart + 1);
    constexpr int iLastPower = 21;
    double fSum = 0;
    for (int i = iLastPower; i > 0; i -= 2) {
        fSum = fSum * fBase * fBase + 1.0 / i;
    }
    return std::max(fLeastLevel, iOctaves * fPerOctave + 2 * fBase * fSum * fPerE);
}

// Whole octaves, and for the rest, at most half of one, the series of e's powers.
double RatioOf(double fDecibels) {
    const double fOctaves = std::clamp(fDecibels, fLeastLevel, -fLeastLevel) / fPerOctave;
    const double fWhole = std::floor(fOctaves + 0.5);
    const double fRest = (fOctaves - fWhole) * std::numbers::ln2;
    constexpr int iTerms = 14;
    double fSum = 1;
    for (int i = iTerms; i > 0; --i) {
        fSum = 1 + fSum * fRest / i;
    }
    return std::ldexp(fSum, static_cast<int>(fWhole));
}
