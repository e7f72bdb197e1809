// What the modem is, as the station information and the registers say: unless a scenario gives
// one of them another value, both say the same.
#ifndef IDENTITY_H
#define IDENTITY_H

#include <array>
#include <cstdint>

namespace Identity {
inline constexpr const char *pcSection = "station-information";
inline constexpr const char *pcBasebandChip = "baseband-chip";
inline constexpr uint32_t u32BasebandChip = 0x20000;
inline constexpr const char *pcFirmwareVersion = "firmware-version";
inline constexpr std::array<uint32_t, 3> au32FirmwareVersion{3, 1, 12}; // major, minor, build
} // namespace Identity

#endif
