// Repeatable chance. Every purpose draws from its own sequence, so that what one
// part of the modem does never shifts the values that another one sees.
#ifndef RANDOM_H
#define RANDOM_H

#include <cstdint>
#include <string_view>

class Random {
  public:
    Random(uint64_t u64Seed, std::string_view strPurpose);

    uint64_t Next();
    // 0 to u32Limit - 1; 0 for a limit of 0.
    uint32_t Below(uint32_t u32Limit);
    // 0 up to, but not including, 1.
    double Uniform();
    bool Chance(double fProbability) { return Uniform() < fProbability; }

  private:
    uint64_t m_u64State;
};

// A smooth curve through random values between -1 and 1, one at every whole
// number of fPosition; the same seed gives the same curve.
double SmoothNoise(uint64_t u64Seed, double fPosition);

// A seed of its own for every purpose.
uint64_t SeedFor(uint64_t u64Seed, std::string_view strPurpose);

#endif
