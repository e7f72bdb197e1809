// The physical layer that all stations have: what a frame is made of at a channel's bandwidth,
// the burst profiles, the powers. Descriptors, maps, capabilities and statistics all follow it.
#ifndef PHYSICAL_LAYER_H
#define PHYSICAL_LAYER_H

#include <array>
#include <cstdint>

// A frame of 5 ms with a guard interval of an eighth. Times and gaps are in physical slots,
// four samples each; the preamble is one of the downlink's symbols.
struct FrameLayout {
    uint32_t u32Carriers; // of the transform
    uint32_t u32SlotsPerSymbol;
    uint32_t u32SlotsPerFrame;
    uint32_t u32DownlinkSymbols;
    uint32_t u32UplinkSymbols;
    uint32_t u32DownlinkSubChannels;
    uint32_t u32UplinkSubChannels;
    uint32_t u32TransmitGap; // of the station, from downlink to uplink
    uint32_t u32ReceiveGap;  // and back

    uint32_t SamplesPerSecond() const;
    // From the start of the frame.
    uint32_t UplinkStart() const { return u32DownlinkSymbols * u32SlotsPerSymbol + u32TransmitGap; }
};
// u32Bandwidth is in kHz. Channels narrower than 1.25 MHz or wider than 10 MHz are laid out as
// those.
FrameLayout LayoutOf(uint32_t u32Bandwidth);

// There and back over so many metres, in samples of the channel.
double RoundTrip(double fMetres, uint32_t u32Bandwidth);

// Modulation and coding, turbo codes only: from which CINR on it carries the traffic, the code
// that maps name it by, how often everything is said, the air interface's code for it, and its
// counter in groups of counters by modulation.
struct BurstProfile {
    double fCINR;        // dB, at least
    uint32_t u32Code;    // DIUC; the UIUC is one more
    uint32_t u32Repeats; // 0: once, then twice, four and six times
    uint32_t u32FEC;
    uint32_t u32Counter;

    uint32_t DIUC() const { return u32Code; }
    uint32_t UIUC() const { return u32Code + 1; }
};
// From the fastest to the most robust.
inline constexpr std::array astBurstProfiles{
    BurstProfile{24, 7, 0, 21, 20}, // 64-QAM 5/6
    BurstProfile{21, 6, 0, 20, 19}, // 64-QAM 3/4
    BurstProfile{19, 5, 0, 19, 18}, // 64-QAM 2/3
    BurstProfile{17, 4, 0, 18, 17}, // 64-QAM 1/2
    BurstProfile{14, 3, 0, 17, 16}, // 16-QAM 3/4
    BurstProfile{11, 2, 0, 16, 15}, // 16-QAM 1/2
    BurstProfile{8, 1, 0, 15, 14},  // QPSK 3/4
    BurstProfile{5, 0, 0, 13, 10},  // QPSK 1/2
    BurstProfile{3, 0, 1, 13, 11},  //
    BurstProfile{0, 0, 2, 13, 12},  //
    BurstProfile{-3, 0, 3, 13, 13}  // what is below takes it, too
};
const BurstProfile &ProfileAt(double fCINR);
// The one that maps and broadcasts are sent with.
inline constexpr const BurstProfile &stBroadcastProfile = astBurstProfiles[8];

// The probability that the u32Attempt-th attempt (1 to 4) at a burst fails when those before have:
// a tenth at the profile's CINR, with ten times the odds against it for every 2 dB more. A receiver
// that keeps what it has heard gains 10 log10 of the number of attempts.
inline constexpr uint32_t u32MostAttempts = 4;
double FailureRate(const BurstProfile &stProfile, double fCINR, uint32_t u32Attempt = 1);

// So much lower is the CINR of what the station receives.
inline constexpr double fUplinkLoss = 6; // dB

// The quality of the channel goes to the station every so many frames.
inline constexpr uint32_t u32CQICHFrames = 8;

// Powers, in dBm.
inline constexpr int32_t iWantedPower = -90; // of a modem, at the station
inline constexpr int32_t iLeastPower = -40;  // of the modem
inline constexpr int32_t iMostPower = 23;

#endif
