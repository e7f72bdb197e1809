#include "air/Propagation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "air/Decibels.h"
#include "time/Random.h"

namespace {

constexpr double fMetresPerKilometre = 1000;
constexpr double fNearest = 10; // metres

// A loss of fAtOne + fPerDecade log10(km) + fPerFrequencyDecade log10(MHz).
struct LossFormula {
    double fAtOne;
    double fPerDecade;
    double fPerFrequencyDecade;

    double AtOneKilometre(uint32_t u32Frequency) const {
        return fAtOne + fPerFrequencyDecade / 10 * Decibels(u32Frequency / 1000.0);
    }
};
// The greatest of them counts.
constexpr std::array astLosses{LossFormula{58.8, 37.6, 21}, LossFormula{32.45, 20, 20}};

// As the sum of twelve equal chances is, nearly.
double NormalAt(uint64_t u64Seed, int64_t iX, int64_t iY) {
    const std::array<int64_t, 2> aiCorner{iX, iY};
    std::array<char, 16> acCorner{};
    for (size_t i = 0; i < acCorner.size(); ++i) {
        acCorner[i] =
            static_cast<char>(static_cast<uint64_t>(aiCorner[i / 8]) >> 8 * (i % 8) & 0xFF);
    }
    Random stRandom(u64Seed, {acCorner.data(), acCorner.size()});
    constexpr int iChances = 12;
    double fSum = -iChances / 2.0;
    for (int i = 0; i < iChances; ++i) {
        fSum += stRandom.Uniform();
    }
    return fSum;
}

// A smooth curve of normal values, one at every whole number. Weights are scaled so that the
// deviation is the same in between.
double NormalCurve(uint64_t u64Seed, double fPosition) {
    const double fFloor = std::floor(fPosition);
    const double fPart = fPosition - fFloor;
    const auto iFloor = static_cast<int64_t>(fFloor);
    return ((1 - fPart) * NormalAt(u64Seed, iFloor, 0) + fPart * NormalAt(u64Seed, iFloor + 1, 0)) /
           std::sqrt((1 - fPart) * (1 - fPart) + fPart * fPart);
}

// The echoes' mean powers in dB.
constexpr std::array afPedestrianB{0.0, -0.9, -4.9, -8.0, -7.8, -23.9};
constexpr std::array afVehicularA{0.0, -1.0, -9.0, -10.0, -15.0, -20.0};

} // namespace

double PathLoss(double fMetres, uint32_t u32Frequency) {
    const double fDecades = Decibels(std::max(fMetres, fNearest) / fMetresPerKilometre) / 10;
    double fLoss = 0;
    for (const LossFormula &stFormula : astLosses) {
        fLoss = std::max(fLoss,
                         stFormula.AtOneKilometre(u32Frequency) + stFormula.fPerDecade * fDecades);
    }
    return fLoss;
}

double DistanceOfLoss(double fLoss, uint32_t u32Frequency) {
    constexpr double fFarthest = 1e9; // metres
    double fMetres = fFarthest;
    for (const LossFormula &stFormula : astLosses) {
        const double fDecades =
            (fLoss - stFormula.AtOneKilometre(u32Frequency)) / stFormula.fPerDecade;
        fMetres = std::min(fMetres, fMetresPerKilometre * RatioOf(10 * fDecades));
    }
    return std::max(fMetres, fNearest);
}

double NoiseLevel(uint32_t u32Bandwidth, double fNoiseFigure) {
    constexpr double fPerHertz = -174;
    return fPerHertz + Decibels(u32Bandwidth * 1000.0) + fNoiseFigure;
}

double Shadow(uint64_t u64Seed, const Place &stPlace, double fSquare) {
    const double fX = stPlace.fX / fSquare;
    const double fY = stPlace.fY / fSquare;
    double fSum = 0;
    double fWeights = 0;
    for (const double fCornerX : {std::floor(fX), std::floor(fX) + 1}) {
        for (const double fCornerY : {std::floor(fY), std::floor(fY) + 1}) {
            const double fWeight = (1 - std::abs(fX - fCornerX)) * (1 - std::abs(fY - fCornerY));
            fSum += fWeight * NormalAt(u64Seed, static_cast<int64_t>(fCornerX),
                                       static_cast<int64_t>(fCornerY));
            fWeights += fWeight * fWeight;
        }
    }
    return fSum / std::sqrt(fWeights);
}

double FadingAt(Fading eFading, uint64_t u64Seed, double fMetres, uint32_t u32Frequency) {
    if (eFading == Fading::None) {
        return 0;
    }
    constexpr double fHalfWave = 149896.229; // metres, of 1 kHz
    const double fWaves = fMetres * u32Frequency / fHalfWave;
    const std::span<const double> afEchoes = eFading == Fading::Pedestrian
                                                 ? std::span<const double>(afPedestrianB)
                                                 : std::span<const double>(afVehicularA);
    double fPower = 0;
    double fMean = 0;
    for (size_t i = 0; i < afEchoes.size(); ++i) {
        const double fEcho = RatioOf(afEchoes[i]);
        const double fReal = NormalCurve(u64Seed + 2 * i, fWaves);
        const double fImaginary = NormalCurve(u64Seed + 2 * i + 1, fWaves);
        fPower += fEcho * (fReal * fReal + fImaginary * fImaginary) / 2;
        fMean += fEcho;
    }
    return Decibels(fPower / fMean);
}
