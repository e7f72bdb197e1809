#include "time/Random.h"

#include <cmath>

namespace {

// Spreads every bit of the input over the whole result.
uint64_t Mix(uint64_t u64Value) {
    u64Value = (u64Value ^ (u64Value >> 30)) * UINT64_C(0xBF58476D1CE4E5B9);
    u64Value = (u64Value ^ (u64Value >> 27)) * UINT64_C(0x94D049BB133111EB);
    return u64Value ^ (u64Value >> 31);
}

constexpr uint64_t u64Step = UINT64_C(0x9E3779B97F4A7C15);

double ToUnit(uint64_t u64Value) { return static_cast<double>(u64Value >> 11) * 0x1p-53; }

} // namespace

uint64_t SeedFor(uint64_t u64Seed, std::string_view strPurpose) {
    uint64_t u64Result = Mix(u64Seed + u64Step);
    for (const char cChar : strPurpose) {
        u64Result = Mix(u64Result + u64Step + static_cast<uint8_t>(cChar));
    }
    return u64Result;
}

Random::Random(uint64_t u64Seed, std::string_view strPurpose)
    : m_u64State(SeedFor(u64Seed, strPurpose)) {}

uint64_t Random::Next() {
    m_u64State += u64Step;
    return Mix(m_u64State);
}

uint32_t Random::Below(uint32_t u32Limit) {
    return static_cast<uint32_t>(((Next() >> 32) * u32Limit) >> 32);
}

double Random::Uniform() { return ToUnit(Next()); }

Random &Chance::For(const std::string &strPurpose) {
    return m_astSequences.try_emplace(strPurpose, m_u64Seed, strPurpose).first->second;
}

void Chance::SetSeed(uint64_t u64Seed) {
    m_u64Seed = u64Seed;
    for (auto &[strPurpose, stSequence] : m_astSequences) {
        stSequence = Random(u64Seed, strPurpose);
    }
}

double SmoothNoise(uint64_t u64Seed, double fPosition) {
    const double fFloor = std::floor(fPosition);
    const auto u64Index = static_cast<uint64_t>(static_cast<int64_t>(fFloor));
    const double fBefore = 2 * ToUnit(Mix(u64Seed + u64Step * u64Index)) - 1;
    const double fAfter = 2 * ToUnit(Mix(u64Seed + u64Step * (u64Index + 1))) - 1;
    const double fPart = fPosition - fFloor;
    return fBefore + (fAfter - fBefore) * fPart * fPart * (3 - 2 * fPart);
}
