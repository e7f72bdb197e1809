#include "air/Capabilities.h"

#include <algorithm>
#include <array>
#include <span>

#include "MobilityRecords.h"
#include "air/PhysicalLayer.h"

namespace {

// A parameter of bits, as the modem has them and as stations do.
struct Capability {
    uint32_t u32Type;
    uint32_t u32Width; // bytes
    uint32_t u32Modem;
    uint32_t u32Station;
};

void PutRequest(BitWriter &stBody, std::span<const Capability> astCapabilities) {
    for (const Capability &stOne : astCapabilities) {
        stBody.TLV(stOne.u32Type, stOne.u32Width, stOne.u32Modem);
    }
}

// What both have.
void PutResponse(BitWriter &stBody, std::span<const Capability> astCapabilities) {
    for (const Capability &stOne : astCapabilities) {
        stBody.TLV(stOne.u32Type, stOne.u32Width, stOne.u32Modem & stOne.u32Station);
    }
}

// Powers in capabilities count in half dB from -64 dBm on.
constexpr uint32_t PowerCode(int32_t iPower) { return static_cast<uint32_t>(2 * iPower + 128); }

namespace SBCTLV {
enum : uint32_t { TransitionGaps = 2, MostPower = 3, Security = 25, Carriers = 150 };
}
// BPSK, QPSK, 16-QAM and 64-QAM, of which none is weaker.
constexpr uint32_t u32MostPowers = PowerCode(iMostPower) * 0x01010101;
constexpr uint32_t u32TransitionGaps = 0x3232; // 50 microseconds

// Power saving classes: all three types, as many instances of any as there are definitions.
constexpr uint32_t u32PowerSaving =
    0x07 | SleepMode::MaxDefinitions << 3 | SleepMode::MaxDefinitions << 5;
static_assert(SleepMode::MaxDefinitions <= 3, "two bits");

constexpr std::array astBasic{
    Capability{1, 1, 0x00, 0x00}, // full frequency division: not
    Capability{4, 1, 0x03, 0x01}, // piggybacked requests, 3-bit fragment numbers
    Capability{26, 1, u32PowerSaving, u32PowerSaving},
    Capability{151, 1, 0x05, 0x05}, // demodulator: 64-QAM, turbo codes
    Capability{152, 1, 0x05, 0x05}, // modulator: the same
    Capability{154, 1, 0x01, 0x00}, // permutations besides the usual ones
    Capability{160, 1, 0x03, 0x01}, // measurements
};
// Transforms by their number of carriers.
struct TransformBit {
    uint32_t u32Carriers;
    uint32_t u32Bit;
};
constexpr std::array astTransformBits{TransformBit{512, 0x08}, TransformBit{1024, 0x10}};

constexpr std::array astSecurity{Capability{1, 1, 0x02, 0x02}, Capability{2, 1, 0x02, 0x02},
                                 Capability{3, 1, 0x02, 0x02}};

constexpr std::array astRegistration{
    Capability{2, 1, 0x00, 0x00},  // no secondary management
    Capability{4, 1, 0x01, 0x03},  // IP versions: 4, 6
    Capability{10, 1, 0x00, 0x00}, // ARQ
    Capability{27, 1, 0x01, 0x01}, // one station at a time
    Capability{31, 1, 0x07, 0x07}, // mobility: handover, sleep, idle
};
namespace REGTLV {
enum : uint32_t { UplinkCIDs = 6, DownlinkCIDs = 15, ProvisionedFlows = 36 };
}

void PutFlows(BitWriter &stBody, uint32_t u32Flows) {
    stBody.TLV(REGTLV::UplinkCIDs, 2, u32Flows).TLV(REGTLV::DownlinkCIDs, 2, u32Flows);
}

} // namespace

void PutSecurityNegotiation(BitWriter &stBody, uint32_t u32Type) {
    BitWriter stSecurity;
    PutRequest(stSecurity, astSecurity);
    stBody.TLV(u32Type, stSecurity);
}

BitWriter SBCREQBody() {
    uint32_t u32Transforms = 0;
    for (const TransformBit &stOne : astTransformBits) {
        u32Transforms |= stOne.u32Bit;
    }
    BitWriter stBody;
    PutRequest(stBody, astBasic);
    stBody.TLV(SBCTLV::TransitionGaps, 2, u32TransitionGaps)
        .TLV(SBCTLV::MostPower, 4, u32MostPowers)
        .TLV(SBCTLV::Carriers, 1, u32Transforms);
    PutSecurityNegotiation(stBody, SBCTLV::Security);
    return stBody;
}

// Powers and the modem's own gaps are nothing that a station answers.
BitWriter SBCRSPBody(const Station &stStation) {
    const uint32_t u32Carriers = LayoutOf(stStation.u32Bandwidth).u32Carriers;
    BitWriter stBody;
    PutResponse(stBody, astBasic);
    for (const TransformBit &stOne : astTransformBits) {
        if (stOne.u32Carriers == u32Carriers) {
            stBody.TLV(SBCTLV::Carriers, 1, stOne.u32Bit);
        }
    }
    BitWriter stSecurity;
    PutResponse(stSecurity, astSecurity);
    return stBody.TLV(SBCTLV::Security, stSecurity);
}

BitWriter REGREQBody() {
    BitWriter stBody;
    PutRequest(stBody, astRegistration);
    PutFlows(stBody, u32ModemFlows);
    return stBody;
}

BitWriter REGRSPBody(bool bAccepted, const FlowLimits &stLimits) {
    BitWriter stBody;
    stBody.U8(bAccepted ? 0 : 1);
    if (bAccepted) {
        PutResponse(stBody, astRegistration);
        PutFlows(stBody, std::min(stLimits.u32Most, u32ModemFlows));
        stBody.TLV(REGTLV::ProvisionedFlows, 1,
                   std::min<uint32_t>(stLimits.u32Provisioned, UINT8_MAX));
    }
    return stBody;
}
