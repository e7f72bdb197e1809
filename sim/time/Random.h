// Repeatable chance. Every purpose draws from its own sequence, so that what one
// part of the modem does never shifts the values that another one sees.
#ifndef RANDOM_H
#define RANDOM_H

#include <cstdint>
#include <map>
#include <string>
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

// All sequences of one seed.
class Chance {
  public:
    explicit Chance(uint64_t u64Seed) : m_u64Seed(u64Seed) {}

    uint64_t Seed() const { return m_u64Seed; }
    // The sequence of a purpose. It stays where it is.
    Random &For(const std::string &strPurpose);
    // All sequences begin anew, from another seed.
    void SetSeed(uint64_t u64Seed);

  private:
    uint64_t m_u64Seed;
    std::map<std::string, Random> m_astSequences;
};

#endif
