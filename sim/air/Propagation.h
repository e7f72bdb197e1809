// What becomes of a signal between a station and the modem, and what it has to stand out from.
#ifndef PROPAGATION_H
#define PROPAGATION_H

#include <cstdint>

#include "air/Route.h"

// In dB, at so many metres and kHz: that of Recommendation ITU-R M.1225 for a vehicle, with the
// antenna 15 m above the roofs, 58.8 + 37.6 log10(km) + 21 log10(MHz), and never less than in free
// space, 32.45 + 20 log10(km) + 20 log10(MHz) (ITU-R P.525). Nearer than 10 m it is that of 10 m.
double PathLoss(double fMetres, uint32_t u32Frequency);
// The distance with that loss.
double DistanceOfLoss(double fLoss, uint32_t u32Frequency);

// In dBm: thermal noise of 290 K, -174 dBm in each Hz, and what the receiver adds.
double NoiseLevel(uint32_t u32Bandwidth, double fNoiseFigure);

// Buildings and hills, in standard deviations: a normal value at the corners of a net of squares
// of so many metres, in between what lies around.
double Shadow(uint64_t u64Seed, const Place &stPlace, double fSquare);

// How a channel's echoes come, by their mean powers.
enum class Fading : uint8_t { None, Pedestrian, Vehicular };
// In dB against the mean, after so many metres of way: the powers of the echoes of channels B
// (pedestrian) and A (vehicular) of ITU-R M.1225, each with a normal amplitude in both
// phases that is another one half a wave length farther on.
double FadingAt(Fading eFading, uint64_t u64Seed, double fMetres, uint32_t u32Frequency);

#endif
