// What the mutators roll.
#ifndef FUZZ_DICE_H
#define FUZZ_DICE_H

#include <cstdint>
#include <span>

class Dice {
  public:
    explicit Dice(uint32_t u32Seed) : m_u64State(u32Seed * UINT64_C(0x9E3779B97F4A7C15) + 1) {}

    // 0 to u32Sides - 1.
    uint32_t Roll(size_t uSides) {
        m_u64State ^= m_u64State << 13;
        m_u64State ^= m_u64State >> 7;
        m_u64State ^= m_u64State << 17;
        return static_cast<uint32_t>((m_u64State >> 16) % uSides);
    }
    bool OneIn(uint32_t u32Sides) { return Roll(u32Sides) == 0; }
    template <typename Value> const Value &Of(std::span<const Value> stValues) {
        return stValues[Roll(stValues.size())];
    }

  private:
    uint64_t m_u64State;
};

#endif
