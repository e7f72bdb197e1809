#include "air/PhysicalLayer.h"

#include <algorithm>

#include "air/Decibels.h"
#include "time/ModemTime.h"

namespace {

// By the widest channel that it is used for.
struct Transform {
    uint32_t u32Bandwidth; // kHz
    uint32_t u32Carriers;
    uint32_t u32DownlinkSubChannels;
    uint32_t u32UplinkSubChannels;
};
constexpr std::array astTransforms{
    Transform{1250, 128, 3, 4},
    Transform{5000, 512, 15, 17},
    Transform{10000, 1024, 30, 35},
};

// The samples a second, in units of 8 kHz: somewhat more than the bandwidth.
uint32_t SamplingRate(uint32_t u32Bandwidth) {
    constexpr std::array au32Raster{1250U, 1500U, 2000U, 2750U};
    const bool bFiner = u32Bandwidth % 1750 != 0 &&
                        std::any_of(au32Raster.begin(), au32Raster.end(),
                                    [&](uint32_t u32Step) { return u32Bandwidth % u32Step == 0; });
    return bFiner ? u32Bandwidth * 28 / (25 * 8) : u32Bandwidth * 8 / (7 * 8);
}

// In tenths of a microsecond. Stations of 8.75 MHz turn around more slowly after the uplink.
constexpr uint32_t u32LeastTransmitGap = 872;
constexpr uint32_t u32ReceiveGap = 600;
constexpr uint32_t u32SlowReceiveGap = 744;
constexpr uint32_t u32SlowBandwidth = 8750;

} // namespace

FrameLayout LayoutOf(uint32_t u32Bandwidth) {
    const uint32_t u32Channel = std::clamp(u32Bandwidth, astTransforms.front().u32Bandwidth,
                                           astTransforms.back().u32Bandwidth);
    const Transform &stTransform =
        *std::find_if(astTransforms.begin(), astTransforms.end(),
                      [&](const Transform &stOne) { return u32Channel <= stOne.u32Bandwidth; });
    const uint32_t u32Rate = SamplingRate(u32Channel);
    const auto Slots = [&](uint32_t u32Time) { return u32Time * u32Rate / 5000; };
    FrameLayout stLayout{};
    stLayout.u32Carriers = stTransform.u32Carriers;
    stLayout.u32SlotsPerSymbol = stTransform.u32Carriers * 9 / 8 / 4;
    stLayout.u32SlotsPerFrame = 10 * u32Rate;
    stLayout.u32ReceiveGap =
        Slots(u32Channel == u32SlowBandwidth ? u32SlowReceiveGap : u32ReceiveGap);
    const uint32_t u32ForSymbols =
        stLayout.u32SlotsPerFrame - stLayout.u32ReceiveGap - Slots(u32LeastTransmitGap);
    const uint32_t u32Symbols = u32ForSymbols / stLayout.u32SlotsPerSymbol;
    // An uplink slot is three symbols; somewhat more than a third of all is the uplink's.
    stLayout.u32UplinkSymbols = u32Symbols * 5 / 13 / 3 * 3;
    stLayout.u32DownlinkSymbols = u32Symbols - stLayout.u32UplinkSymbols;
    stLayout.u32DownlinkSubChannels = stTransform.u32DownlinkSubChannels;
    stLayout.u32UplinkSubChannels = stTransform.u32UplinkSubChannels;
    stLayout.u32TransmitGap = stLayout.u32SlotsPerFrame - stLayout.u32ReceiveGap -
                              u32Symbols * stLayout.u32SlotsPerSymbol;
    return stLayout;
}

uint32_t FrameLayout::SamplesPerSecond() const {
    constexpr uint32_t u32SamplesPerSlot = 4;
    return u32SlotsPerFrame * u32SamplesPerSlot * u32FramesPerSecond;
}

double RoundTrip(double fMetres, uint32_t u32Bandwidth) {
    constexpr double fLight = 299792458; // metres a second
    return 2 * fMetres / fLight * LayoutOf(u32Bandwidth).SamplesPerSecond();
}

double FailureRate(const BurstProfile &stProfile, double fCINR, uint32_t u32Attempt) {
    constexpr double fOdds = 9;    // one in ten
    constexpr double fTenfold = 2; // dB
    const double fGained = fCINR + Decibels(u32Attempt) - stProfile.fCINR;
    return 1 / (1 + fOdds * RatioOf(10 * fGained / fTenfold));
}

const BurstProfile &ProfileAt(double fCINR) {
    return *std::find_if(
        astBurstProfiles.begin(), astBurstProfiles.end() - 1,
        [fCINR](const BurstProfile &stProfile) { return fCINR >= stProfile.fCINR; });
}
