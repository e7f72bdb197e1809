#include "air/ManagementMessages.h"

#include <algorithm>
#include <cmath>

#include "MobilityRecords.h"
#include "ServiceFlowRecord.h"
#include "air/Capabilities.h"
#include "air/Decibels.h"
#include "air/Traffic.h"
#include "time/Random.h"

namespace {

// A parameter that is the same for all stations and modems.
struct FixedTLV {
    uint32_t u32Type;
    uint32_t u32Width; // bytes
    uint32_t u32Value;
};

void Put(BitWriter &stBody, std::span<const FixedTLV> astTLVs) {
    for (const FixedTLV &stTLV : astTLVs) {
        stBody.TLV(stTLV.u32Type, stTLV.u32Width, stTLV.u32Value);
    }
}

constexpr uint32_t u32FrameDurationCode = 4; // 5 ms

namespace DCDTLV {
enum : uint32_t {
    Profile = 1,
    EIRP = 2,
    TransmitGap = 7,
    ReceiveGap = 8,
    WantedPower = 9,
    Frequency = 12,
    BSID = 13,
    PagingGroups = 35,
    Hysteresis = 51,
    TimeToTrigger = 52,
    Trigger = 54,
    MACVersion = 148,
    FEC = 150,
};
}
constexpr uint32_t u32MACVersion = 5; // with mobility

constexpr std::array astDCDMobility{
    FixedTLV{31, 1, 6},    // dB, to add a station
    FixedTLV{32, 1, 10},   // and to give one up
    FixedTLV{50, 1, 0x80}, // handover alone
};

namespace UCDTLV {
enum : uint32_t {
    Profile = 1,
    Frequency = 5,
    InitialCodes = 150,
    PeriodicCodes = 151,
    BandwidthRequestCodes = 152,
    FirstCode = 155,
    PermutationBase = 156,
    FEC = 150,
    RangingDataRatio = 151,
    HandoverCodes = 194,
};
}
// Backoff windows, as exponents of 2.
constexpr uint32_t u32BackoffStart = 0;
constexpr uint32_t u32BackoffEnd = 10;
constexpr std::array astUCDParameters{
    FixedTLV{2, 1, 8},                 // frames that a bandwidth request waits for its grant
    FixedTLV{153, 1, u32BackoffStart}, // periodic ranging
    FixedTLV{154, 1, u32BackoffEnd},
};

namespace RNGREQTLV {
enum : uint32_t {
    BurstProfile = 1,
    MACAddress = 2,
    ServingBSID = 5,
    Purpose = 6,
    PowerDown = 8,
    PagingController = 9,
    MACVersion = 148,
};
}
namespace RNGRSPTLV {
enum : uint32_t {
    Timing = 1,
    Power = 2,
    Frequency = 3,
    Status = 4,
    MACAddress = 8,
    BasicCID = 9,
    PrimaryCID = 10,
    Optimisation = 21,
    LocationUpdated = 23,
    PagingInformation = 24,
    PagingController = 25,
    Code = 150,
};
}
namespace CIDUpdateTLV {
enum : uint32_t { NewCID = 1, SFID = 2, Update = 24 };
}
// Left out are SBC, authentication, address, time of day, file transfer and REG, and the state is
// kept. In another subnet the modem needs a new address instead.
constexpr uint32_t u32FullOptimisation = 0x00FF;
constexpr uint32_t u32AddressLeftOut = 0x0008;
constexpr uint32_t u32AddressRefreshed = 0x2000;

constexpr uint32_t u32AKSequence = 1;
constexpr uint32_t u32PrimarySAID = 0x0100;
constexpr uint32_t u32KeyLifetime = 43200; // seconds
namespace PKMAttribute {
enum : uint32_t {
    TEK = 8,
    KeyLifetime = 9,
    KeySequence = 10,
    SAID = 12,
    TEKParameters = 13,
    ErrorCode = 16,
    SecurityCapabilities = 19,
    CryptoSuite = 20,
    CryptoSuites = 21,
    SADescriptor = 23,
    SAType = 24,
    SecurityNegotiation = 25,
    EAPPayload = 28,
    Nonce = 29,
    SAServiceType = 31,
    FrameNumber = 32,
    MSRandom = 33,
    BSRandom = 34,

    CMACDigest = 40,
    AKID = 45,
};
}
constexpr uint32_t u32AES = 0x020103; // CCM, with the keys encrypted by AES
constexpr uint32_t u32UnauthorisedSAID = 2;

BitWriter U64(uint64_t u64Value) {
    BitWriter stBytes;
    stBytes.U32(static_cast<uint32_t>(u64Value >> 32)).U32(static_cast<uint32_t>(u64Value));
    return stBytes;
}

// One for each code that maps name, from the most robust on.
template <typename Put> void ForEachProfile(Put pfnPut) {
    std::for_each(astBurstProfiles.rbegin(), astBurstProfiles.rend(),
                  [&](const BurstProfile &stProfile) {
                      if (stProfile.u32Repeats == 0) {
                          pfnPut(stProfile);
                      }
                  });
}

uint32_t Clamped(double fValue, double fLeast, double fMost) {
    return Rounded(std::clamp(fValue, fLeast, fMost));
}

// From -123 dBm on, as measurement reports carry it.
uint32_t RSSICode(double fRSSI) { return Clamped(fRSSI + 123, 0, 83); }

// The standard deviation of a level's power, as a level: with powers that move by fDeviation dB
// it lies so far from the mean.
double DeviationLevel(double fMean, double fDeviation) {
    return fMean + Decibels(RatioOf(fDeviation) - 1);
}

// Levels in messages about mobility: in half dB with a sign, and in quarters from -103.75 dBm on.
uint32_t MobilityCINR(double fCINR) {
    return static_cast<uint32_t>(std::lround(std::clamp<double>(2 * fCINR, INT8_MIN, INT8_MAX)));
}
uint32_t MobilityRSSI(double fRSSI) { return Clamped(4 * (fRSSI + 103.75), 0, UINT8_MAX); }

} // namespace

uint32_t CINRCode(double fCINR) { return Clamped(fCINR + 10, 0, 63); }

uint32_t Optimisation(const Station &stFormer, const Station &stTarget) {
    return stFormer.u32IPSubnet == stTarget.u32IPSubnet
               ? u32FullOptimisation
               : (u32FullOptimisation & ~u32AddressLeftOut) | u32AddressRefreshed;
}

ByteView ViewOf(const std::array<uint8_t, 6> &aucBytes) {
    return {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())};
}

namespace {

enum TriggerMetric : uint32_t { OfCINR = 0, OfRSSI = 1 };
enum TriggerFunction : uint32_t { NeighbourAboveServing = 3, ServingBelow = 6 };
enum TriggerAction : uint32_t { AskForHandover = 2, AskToScan = 3 };

void PutGaps(BitWriter &stBody, const FrameLayout &stLayout) {
    stBody.TLV(DCDTLV::TransmitGap, 2, stLayout.u32TransmitGap)
        .TLV(DCDTLV::ReceiveGap, 1, stLayout.u32ReceiveGap);
}

// Whole dB, and milliseconds in a byte: stations with a longer one do not announce it.
void PutHandoverThresholds(BitWriter &stBody, const HandoverThresholds &stThresholds) {
    const ModemTime iMilliseconds = stThresholds.iTimeToTrigger / i64Millisecond;
    stBody.TLV(DCDTLV::Hysteresis, 1, Clamped(stThresholds.fHysteresis, 0, UINT8_MAX));
    if (iMilliseconds <= UINT8_MAX) {
        stBody.TLV(DCDTLV::TimeToTrigger, 1, static_cast<uint32_t>(iMilliseconds));
    }
    const auto PutTrigger = [&stBody](TriggerMetric eMetric, TriggerFunction eFunction,
                                      TriggerAction eAction, uint32_t u32Value) {
        BitWriter stTrigger;
        stTrigger.TLV(1, 1, uint32_t{eMetric} << 6 | uint32_t{eFunction} << 3 | uint32_t{eAction})
            .TLV(2, 1, u32Value);
        stBody.TLV(DCDTLV::Trigger, stTrigger);
    };
    PutTrigger(OfCINR, ServingBelow, AskToScan, MobilityCINR(stThresholds.fScanCINR));
    PutTrigger(OfRSSI, NeighbourAboveServing, AskForHandover,
               Clamped(4 * stThresholds.fHysteresis, 0, INT8_MAX));
}

} // namespace

BitWriter DCDBody(const Station &stStation, const HandoverThresholds &stThresholds) {
    BitWriter stBody;
    stBody.U8(0).U8(stStation.u32DCDChangeCount);
    stBody.TLV(DCDTLV::EIRP, 2, static_cast<uint32_t>(stStation.iPower));
    PutGaps(stBody, LayoutOf(stStation.u32Bandwidth));
    stBody.TLV(DCDTLV::WantedPower, 2, static_cast<uint32_t>(iWantedPower))
        .TLV(DCDTLV::Frequency, 4, stStation.u32Frequency)
        .TLV(DCDTLV::BSID, ViewOf(stStation.aucBSID));
    Put(stBody, astDCDMobility);
    PutHandoverThresholds(stBody, stThresholds);
    stBody.TLV(DCDTLV::PagingGroups, 2, stStation.u32PagingGroup);
    stBody.TLV(DCDTLV::MACVersion, 1, u32MACVersion);
    ForEachProfile([&](const BurstProfile &stOne) {
        BitWriter stProfile;
        stProfile.U8(stOne.DIUC()).TLV(DCDTLV::FEC, 1, stOne.u32FEC);
        stBody.TLV(DCDTLV::Profile, stProfile);
    });
    return stBody;
}

BitWriter UCDBody(const Station &stStation) {
    BitWriter stBody;
    stBody.U8(stStation.u32DCDChangeCount);
    stBody.U8(u32BackoffStart).U8(u32BackoffEnd); // ranging
    stBody.U8(u32BackoffStart).U8(u32BackoffEnd); // bandwidth requests
    Put(stBody, astUCDParameters);
    stBody.TLV(UCDTLV::Frequency, 4, stStation.u32Frequency)
        .TLV(UCDTLV::InitialCodes, 1, RangingCodes::Initial.u32Count)
        .TLV(UCDTLV::PeriodicCodes, 1, RangingCodes::Periodic.u32Count)
        .TLV(UCDTLV::BandwidthRequestCodes, 1, RangingCodes::BandwidthRequest.u32Count)
        .TLV(UCDTLV::FirstCode, 1, RangingCodes::Initial.u32First)
        .TLV(UCDTLV::HandoverCodes, 1, RangingCodes::Handover.u32Count)
        .TLV(UCDTLV::PermutationBase, 1, stStation.u32CellID & 0x7F);
    ForEachProfile([&](const BurstProfile &stOne) {
        BitWriter stProfile;
        stProfile.U8(stOne.UIUC())
            .TLV(UCDTLV::FEC, 1, stOne.u32FEC)
            .TLV(UCDTLV::RangingDataRatio, 1, 0);
        stBody.TLV(UCDTLV::Profile, stProfile);
    });
    return stBody;
}

namespace {

// Bandwidth, transform, guard interval and frame.
uint32_t PHYModeOf(const Station &stStation) {
    constexpr uint32_t u32BandwidthUnit = 125; // kHz
    constexpr uint32_t u32Eighth = 1;          // of a symbol
    const uint32_t u32Carriers = LayoutOf(stStation.u32Bandwidth).u32Carriers;
    const uint32_t u32Transform = u32Carriers == 1024 ? 1 : u32Carriers == 512 ? 2 : 3;
    return stStation.u32Bandwidth / u32BandwidthUnit << 9 | u32Transform << 6 | u32Eighth << 4 |
           u32FrameDurationCode;
}

// What of a neighbour's descriptors differs from the station's own.
void PutDifferences(BitWriter &stEntry, const Station &stStation, const Station &stNeighbour) {
    enum : uint32_t { DCDSettings = 1, UCDSettings = 2, PHYMode = 3 };
    const bool bSameBandwidth = stNeighbour.u32Bandwidth == stStation.u32Bandwidth;
    if (bSameBandwidth && stNeighbour.u32Frequency == stStation.u32Frequency) {
        return;
    }
    BitWriter stDCD;
    if (!bSameBandwidth) {
        PutGaps(stDCD, LayoutOf(stNeighbour.u32Bandwidth));
    }
    stDCD.TLV(DCDTLV::Frequency, 4, stNeighbour.u32Frequency);
    BitWriter stUCD;
    stUCD.TLV(UCDTLV::Frequency, 4, stNeighbour.u32Frequency);
    stEntry.TLV(DCDSettings, stDCD).TLV(UCDSettings, stUCD);
    stEntry.TLV(PHYMode, 2, PHYModeOf(stNeighbour));
}

} // namespace

BitWriter NBRADVBody(const Station &stStation, std::span<const Station *const> apstNeighbours) {
    constexpr size_t uMost = UINT8_MAX;
    const auto apstFirst = apstNeighbours.first(std::min(apstNeighbours.size(), uMost));
    BitWriter stBody;
    stBody.U8(0); // nothing is skipped
    stBody.U24(stStation.NAPID());
    stBody.U8(stStation.u32DCDChangeCount);
    stBody.Bits(0, 4).Bits(1, 4); // the first and only fragment
    stBody.U8(static_cast<uint32_t>(apstFirst.size()));
    for (const Station *pstNeighbour : apstFirst) {
        BitWriter stEntry;
        stEntry
            .U8(0) // nothing to be taken from other entries
            .Bytes(ViewOf(pstNeighbour->aucBSID).From(3))
            .U8(pstNeighbour->u32Preamble)
            .U8(Optimisation(stStation, *pstNeighbour)) // of two bytes the lower one
            .U8(0x1F)                                   // all scheduling services
            .Bits(pstNeighbour->u32DCDChangeCount, 4)
            .Bits(pstNeighbour->u32DCDChangeCount, 4);
        PutDifferences(stEntry, stStation, *pstNeighbour);
        stBody.U8(stEntry.View().u32Length).Bytes(stEntry.View());
    }
    return stBody;
}

namespace {

// What of a DL-MAP names the bursts: one with the broadcast messages, said twice for the edge of
// the cell; one with the rest, in the slots of two symbols that are left.
constexpr uint32_t u32DownlinkIEs = 2;
void PutDownlinkIEs(BitWriter &stBody, const FrameLayout &stLayout, const BurstProfile &stProfile) {
    constexpr uint32_t u32First = 1; // the symbol behind the preamble
    constexpr uint32_t u32Broadcast = 4;
    const auto PutBurst = [&](const BurstProfile &stOf, uint32_t u32Offset, uint32_t u32Symbols,
                              uint32_t u32SubChannels) {
        stBody.Bits(stOf.DIUC(), 4).Bits(u32Offset, 8).Bits(0, 6); // from the first subchannel
        stBody.Bits(0, 3);                                         // not louder than the rest
        stBody.Bits(u32Symbols, 7).Bits(u32SubChannels, 6).Bits(stOf.u32Repeats, 2);
    };
    const uint32_t u32Rest = (stLayout.u32DownlinkSymbols - u32First - u32Broadcast) / 2 * 2;
    PutBurst(stBroadcastProfile, u32First, u32Broadcast, 10);
    PutBurst(stProfile, u32First + u32Broadcast, u32Rest, stLayout.u32DownlinkSubChannels);
    stBody.Pad();
}

// From the UCD's change count on.
void PutUplink(BitWriter &stBody, const Station &stStation, const Grants &stGrants) {
    constexpr uint32_t u32RangingRegion = 12;
    constexpr uint32_t u32CDMAAllocation = 14;
    constexpr uint32_t u32MostSlots = 1023;
    const FrameLayout stLayout = LayoutOf(stStation.u32Bandwidth);
    stBody.U8(stStation.u32DCDChangeCount);
    stBody.U32(stLayout.UplinkStart()).U8(stLayout.u32UplinkSymbols);
    if (stGrants.stData) {
        const BurstProfile &stProfile = stGrants.stData->stProfile;
        stBody.U16(stGrants.stData->u32BasicCID).Bits(stProfile.UIUC(), 4);
        stBody.Bits(std::min(stGrants.stData->u32Slots, u32MostSlots), 10)
            .Bits(stProfile.u32Repeats, 2);
    }
    // Symbol offset, subchannel offset, symbols, subchannels, method, dedicated.
    for (const uint32_t u32Method : {0U, 2U}) { // initial; bandwidth requests and periodic
        stBody.U16(WellKnownCID::Broadcast).Bits(u32RangingRegion, 4);
        stBody.Bits(u32Method == 0 ? 0 : 2, 8).Bits(0, 7).Bits(u32Method == 0 ? 2 : 1, 7);
        stBody.Bits(6, 7).Bits(u32Method, 2).Bits(0, 1);
    }
    for (const RangingSignal &stSignal : stGrants.astCodes) {
        // Six slots of the most robust profile have room for a RNG-REQ; a request for bandwidth is
        // a bare header.
        const bool bRequest = stSignal.u32Code >= RangingCodes::BandwidthRequest.u32First &&
                              stSignal.u32Code < RangingCodes::Handover.u32First;
        stBody.U16(WellKnownCID::InitialRanging).Bits(u32CDMAAllocation, 4);
        stBody.Bits(bRequest ? 1 : 6, 6).Bits(1, 4).Bits(0, 2).Bits(stSignal.u32Frame, 4);
        stBody.U8(stSignal.u32Code)
            .U8(stSignal.u32Symbol)
            .Bits(stSignal.u32SubChannel, 7)
            .Bits(bRequest ? 1 : 0, 1); // what it is for
    }
    stBody.Pad();
}

// What is left of the bytes, the highest bit first, divided by the polynomial of so many bits.
uint32_t Remainder(ByteView stBytes, uint32_t u32Bits, uint32_t u32Polynomial, uint32_t u32Start) {
    const uint32_t u32HighestBit = 1U << (u32Bits - 1);
    uint32_t u32Left = u32Start;
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        u32Left ^= uint32_t{stBytes.At(i)} << (u32Bits - 8);
        for (uint32_t j = 0; j < 8; ++j) {
            u32Left = (u32Left & u32HighestBit) != 0 ? u32Left << 1 ^ u32Polynomial : u32Left << 1;
        }
    }
    return u32Left;
}

} // namespace

BitWriter DLMAPBody(const Station &stStation, uint32_t u32Frame, const BurstProfile &stProfile) {
    const FrameLayout stLayout = LayoutOf(stStation.u32Bandwidth);
    BitWriter stBody;
    stBody.U8(u32FrameDurationCode).U24(u32Frame);
    stBody.U8(stStation.u32DCDChangeCount);
    stBody.Bytes(ViewOf(stStation.aucBSID));
    stBody.U8(stLayout.u32DownlinkSymbols);
    PutDownlinkIEs(stBody, stLayout, stProfile);
    return stBody;
}

BitWriter ULMAPBody(const Station &stStation, const Grants &stGrants) {
    BitWriter stBody;
    stBody.U8(0);
    PutUplink(stBody, stStation, stGrants);
    return stBody;
}

BitWriter CompressedMaps(const Station &stStation, uint32_t u32Frame, const BurstProfile &stProfile,
                         const Grants &stGrants) {
    constexpr uint32_t u32Compressed = 6;
    constexpr uint32_t u32UplinkAppended = 1;
    constexpr uint32_t u32LengthField = 2; // with what stands before it
    constexpr uint32_t u32ChecksumBits = 32;
    constexpr uint32_t u32Polynomial = 0x04C11DB7;
    const FrameLayout stLayout = LayoutOf(stStation.u32Bandwidth);
    BitWriter stContent;
    stContent.U8(u32FrameDurationCode).U24(u32Frame);
    stContent.U8(stStation.u32DCDChangeCount);
    // Of the station's ID the last byte of the operator's half, and the last one.
    stContent.U8(stStation.aucBSID[2]).U8(stStation.aucBSID[5]);
    stContent.U8(stLayout.u32DownlinkSymbols).U8(u32DownlinkIEs);
    PutDownlinkIEs(stContent, stLayout, stProfile);
    PutUplink(stContent, stStation, stGrants);
    BitWriter stMaps;
    stMaps.Bits(u32Compressed, 3).Bits(u32UplinkAppended, 1).Bits(0, 1);
    stMaps.Bits(u32LengthField + stContent.View().u32Length + u32ChecksumBits / 8, 11);
    stMaps.Bytes(stContent.View());
    return stMaps.U32(~Remainder(stMaps.View(), u32ChecksumBits, u32Polynomial, UINT32_MAX));
}

BitWriter RNGREQBody(RangingPurpose ePurpose, const MACAddressBytes &aucMAC,
                     const Station &stStation, const BurstProfile &stProfile,
                     const Station *pstFormer) {
    BitWriter stWanted;
    stWanted.Bits(stStation.u32DCDChangeCount, 4).Bits(stProfile.DIUC(), 4);
    BitWriter stBody;
    stBody.U8(0);
    stBody.TLV(RNGREQTLV::BurstProfile, stWanted).TLV(RNGREQTLV::MACAddress, ViewOf(aucMAC));
    constexpr uint32_t u32Handover = 0x01;
    constexpr uint32_t u32LocationUpdate = 0x02;
    if (ePurpose == RangingPurpose::Handover) {
        stBody.TLV(RNGREQTLV::ServingBSID, ViewOf(pstFormer->aucBSID))
            .TLV(RNGREQTLV::Purpose, 1, u32Handover);
    } else if (ePurpose != RangingPurpose::Entry) {
        stBody.TLV(RNGREQTLV::Purpose, 1,
                   ePurpose == RangingPurpose::IdleReentry ? 0 : u32LocationUpdate);
        if (ePurpose == RangingPurpose::PowerDown) {
            stBody.TLV(RNGREQTLV::PowerDown, 1, 1);
        }
        stBody.TLV(RNGREQTLV::PagingController, ViewOf(pstFormer->aucBSID));
    }
    return stBody.TLV(RNGREQTLV::MACVersion, 1, u32MACVersion);
}

BitWriter RNGRSPBody(const RangingSignal &stSignal, const Corrections &stCorrections,
                     RangingStatus eStatus) {
    BitWriter stCode;
    stCode.Bits(stSignal.u32Symbol, 10).Bits(stSignal.u32SubChannel, 6);
    stCode.Bits(stSignal.u32Code, 8).Bits(stSignal.u32Frame, 8);
    BitWriter stBody;
    stBody.U8(0)
        .TLV(RNGRSPTLV::Timing, 4, static_cast<uint32_t>(stCorrections.iTiming))
        .TLV(RNGRSPTLV::Power, 1, static_cast<uint32_t>(stCorrections.iPower))
        .TLV(RNGRSPTLV::Frequency, 4, static_cast<uint32_t>(stCorrections.iFrequency))
        .TLV(RNGRSPTLV::Status, 1, static_cast<uint32_t>(eStatus))
        .TLV(RNGRSPTLV::Code, stCode);
    return stBody;
}

BitWriter RNGRSPBody(RangingStatus eStatus, const MACAddressBytes &aucMAC,
                     const Admission *pstAdmission) {
    BitWriter stBody;
    stBody.U8(0)
        .TLV(RNGRSPTLV::Status, 1, static_cast<uint32_t>(eStatus))
        .TLV(RNGRSPTLV::MACAddress, ViewOf(aucMAC));
    if (pstAdmission == nullptr) {
        return stBody;
    }
    stBody.TLV(RNGRSPTLV::BasicCID, 2, pstAdmission->u32BasicCID)
        .TLV(RNGRSPTLV::PrimaryCID, 2, pstAdmission->u32PrimaryCID);
    if (pstAdmission->u32Optimisation) {
        stBody.TLV(RNGRSPTLV::Optimisation, 2, *pstAdmission->u32Optimisation);
    }
    return stBody;
}

namespace {

// Cycle in frames, offset, group.
BitWriter PagingInformation(const Station &stStation, uint32_t u32PagingCycle) {
    BitWriter stPaging;
    stPaging.U16(u32PagingCycle * u32FramesPerSecond).U8(0).U16(stStation.u32PagingGroup);
    return stPaging;
}

} // namespace

BitWriter RNGRSPBody(const MACAddressBytes &aucMAC, const Station &stStation,
                     uint32_t u32PagingCycle) {
    constexpr uint32_t u32Updated = 0;
    return RNGRSPBody(RangingStatus::Success, aucMAC, nullptr)
        .TLV(RNGRSPTLV::LocationUpdated, 1, u32Updated)
        .TLV(RNGRSPTLV::PagingInformation, PagingInformation(stStation, u32PagingCycle))
        .TLV(RNGRSPTLV::PagingController, ViewOf(stStation.aucBSID));
}

BitWriter CIDUpdateBody(std::span<const FlowCID> astFlows) {
    BitWriter stBody;
    stBody.U8(0); // registered
    for (const FlowCID &stFlow : astFlows) {
        BitWriter stUpdate;
        stUpdate.TLV(CIDUpdateTLV::NewCID, 2, stFlow.u32CID)
            .TLV(CIDUpdateTLV::SFID, 4, stFlow.u32SFID);
        stBody.TLV(CIDUpdateTLV::Update, stUpdate);
    }
    return stBody;
}

BitWriter PKMBody(uint32_t u32Code, uint32_t u32Identifier, const KeyExchange &stKeys,
                  uint32_t u32Frame, ByteView stEAP) {
    using namespace PKMAttribute;
    BitWriter stBody;
    stBody.U8(u32Code).U8(u32Identifier);
    const auto PutSuite = [](BitWriter &stTo) { stTo.TLV(CryptoSuite, 3, u32AES); };
    const auto PutSATEK = [&](bool bWithMSRandom) {
        if (bWithMSRandom) {
            stBody.TLV(MSRandom, U64(stKeys.u64MSRandom));
        }
        stBody.TLV(BSRandom, U64(stKeys.u64BSRandom))
            .TLV(KeySequence, 1, u32AKSequence)
            .TLV(AKID, U64(stKeys.u64AKID));
    };
    const auto PutNegotiation = [&] { PutSecurityNegotiation(stBody, SecurityNegotiation); };
    const auto PutSAID = [&] {
        stBody.TLV(KeySequence, 1, u32AKSequence).TLV(SAID, 2, u32PrimarySAID);
    };
    switch (u32Code) {
    case PKMCode::EAPTransfer:
        stBody.TLV(EAPPayload, stEAP);
        break;
    case PKMCode::SATEKChallenge:
        PutSATEK(false);
        stBody.TLV(KeyLifetime, 4, u32KeyLifetime);
        break;
    case PKMCode::SATEKRequest: {
        PutSATEK(true);
        // The list of suites has one entry.
        BitWriter stSuites;
        PutSuite(stSuites);
        BitWriter stCapabilities;
        stCapabilities.TLV(CryptoSuites, stSuites);
        stBody.TLV(SecurityCapabilities, stCapabilities);
        PutNegotiation();
        break;
    }
    case PKMCode::SATEKResponse: {
        PutSATEK(true);
        BitWriter stDescriptor;
        stDescriptor.TLV(SAID, 2, u32PrimarySAID).TLV(SAType, 1, 0).TLV(SAServiceType, 1, 0);
        PutSuite(stDescriptor);
        stBody.TLV(FrameNumber, 3, u32Frame).TLV(SADescriptor, stDescriptor);
        PutNegotiation();
        break;
    }
    case PKMCode::KeyRequest:
        PutSAID();
        stBody.TLV(Nonce, U64(stKeys.u64Nonce));
        break;
    case PKMCode::KeyReply:
        PutSAID();
        for (uint32_t i = 0; i < std::size(stKeys.aaucTEK); ++i) {
            BitWriter stParameters;
            stParameters
                .TLV(TEK, ByteView{stKeys.aaucTEK[i].data(),
                                   static_cast<uint32_t>(stKeys.aaucTEK[i].size())})
                .TLV(KeyLifetime, 4, u32KeyLifetime / 2 * (i + 1))
                .TLV(KeySequence, 1, i);
            stBody.TLV(TEKParameters, stParameters);
        }
        stBody.TLV(Nonce, U64(stKeys.u64Nonce));
        break;
    case PKMCode::KeyReject:
        PutSAID();
        stBody.TLV(ErrorCode, 1, u32UnauthorisedSAID).TLV(Nonce, U64(stKeys.u64Nonce));
        break;
    default:
        break;
    }
    return stBody;
}

BitWriter EAPPacket(EAP::Code eCode, uint32_t u32Identifier, EAP::Step eStep, uint64_t u64Secret) {
    constexpr uint32_t u32IdentityType = 1;
    constexpr uint32_t u32KeyAgreementType = 23;
    constexpr uint32_t u32ChallengeSubType = 1;
    constexpr std::string_view strIdentity = "0310150123456789@wireless.example";
    enum Attribute : uint32_t { Random = 1, Token = 2, Answer = 3, Authenticator = 11 };
    ::Random stRandom(u64Secret, "eap");
    BitWriter stData;
    // Attributes count their length in words of four bytes.
    const auto PutAttribute = [&](uint32_t u32Type, uint32_t u32Bytes, uint32_t u32Head) {
        stData.U8(u32Type).U8((4 + u32Bytes) / 4).U16(u32Head);
        for (uint32_t i = 0; i < u32Bytes; ++i) {
            stData.U8(stRandom.Below(256));
        }
    };
    if (eStep == EAP::Identity) {
        stData.U8(u32IdentityType);
        if (eCode == EAP::Response) {
            for (const char cChar : strIdentity) {
                stData.U8(static_cast<uint8_t>(cChar));
            }
        }
    } else if (eStep == EAP::Challenge) {
        stData.U8(u32KeyAgreementType).U8(u32ChallengeSubType).U16(0);
        if (eCode == EAP::Request) {
            PutAttribute(Random, 16, 0);
            PutAttribute(Token, 16, 0);
        } else {
            PutAttribute(Answer, 8, 64); // bits
        }
        PutAttribute(Authenticator, 16, 0);
    }
    BitWriter stPacket;
    stPacket.U8(eCode).U8(u32Identifier).U16(4 + stData.View().u32Length).Bytes(stData.View());
    return stPacket;
}

namespace {

namespace DREGTLV {
enum : uint32_t { PagingInformation = 1, PagingController = 3, Retain = 4, PagingCycle = 52 };
}
constexpr uint32_t u32RetainAll = 0x7F;

} // namespace

BitWriter DREGREQBody(DeregistrationRequest eRequest, uint32_t u32PagingCycle) {
    BitWriter stBody;
    stBody.U8(eRequest);
    if (eRequest == GoIdle) {
        stBody.TLV(DREGTLV::PagingCycle, 2, u32PagingCycle * u32FramesPerSecond)
            .TLV(DREGTLV::Retain, 1, u32RetainAll);
    }
    return stBody;
}

BitWriter DREGCMDBody(const Station &stStation, uint32_t u32Action, uint32_t u32PagingCycle) {
    constexpr uint32_t u32GoIdle = 5;
    BitWriter stBody;
    stBody.U8(u32Action);
    if (u32Action == u32GoIdle) {
        stBody.TLV(DREGTLV::PagingInformation, PagingInformation(stStation, u32PagingCycle))
            .TLV(DREGTLV::PagingController, ViewOf(stStation.aucBSID))
            .TLV(DREGTLV::Retain, 1, u32RetainAll);
    }
    return stBody;
}

uint32_t MACAddressHash(const MACAddressBytes &aucMAC) {
    constexpr uint32_t u32Bits = 24;
    return Remainder(ViewOf(aucMAC), u32Bits, 0x864CFB, 0) & 0xFFFFFF;
}

BitWriter PAGADVBody(const Station &stStation, const MACAddressBytes *pstPaged) {
    constexpr uint32_t u32EnterNetwork = 2;
    BitWriter stBody;
    stBody.U16(1).U16(stStation.u32PagingGroup);
    stBody.U8(pstPaged != nullptr ? 1 : 0);
    if (pstPaged != nullptr) {
        stBody.U24(MACAddressHash(*pstPaged)).Bits(u32EnterNetwork, 2).Bits(0, 6);
    }
    return stBody;
}

namespace {

constexpr uint32_t u32ReportRequest = 1;
constexpr uint32_t u32ReportType = 1; // bit 2: CINR, bit 3: RSSI
constexpr uint32_t u32WithCINRAndRSSI = 0x06;
constexpr uint32_t u32Report = 1;
namespace ReportTLV {
enum : uint32_t { CINR = 5, RSSI = 6 };
}

} // namespace

BitWriter REPREQBody() {
    BitWriter stRequest;
    stRequest.TLV(u32ReportType, 1, u32WithCINRAndRSSI);
    BitWriter stBody;
    return stBody.TLV(u32ReportRequest, stRequest);
}

// Mean and standard deviation, each one byte of the same scale.
BitWriter REPRSPBody(const Measurement &stMeasurement, const Deviation &stDeviation) {
    const auto Pair = [](uint32_t (*pfnCode)(double), double fMean, double fDeviation) {
        return pfnCode(fMean) << 8 | pfnCode(DeviationLevel(fMean, fDeviation));
    };
    BitWriter stReport;
    stReport.TLV(ReportTLV::CINR, 2, Pair(CINRCode, stMeasurement.fCINR, stDeviation.fCINR))
        .TLV(ReportTLV::RSSI, 2, Pair(RSSICode, stMeasurement.fRSSI, stDeviation.fRSSI));
    BitWriter stBody;
    return stBody.TLV(u32Report, stReport);
}

namespace {

constexpr uint32_t u32CINRAndRSSI = 0x03; // of the report metrics

void PutLevels(BitWriter &stTo, const Measurement &stLevels) {
    stTo.U8(MobilityCINR(stLevels.fCINR)).U8(MobilityRSSI(stLevels.fRSSI));
}

constexpr uint32_t u32Interleaving = 0;

// None by its place in the neighbour advertisement, one or none by its ID, without association.
void PutScanned(BitWriter &stTo, const Station *pstNeighbour) {
    stTo.U8(0).U8(pstNeighbour != nullptr ? 1 : 0);
    if (pstNeighbour != nullptr) {
        stTo.Bytes(ViewOf(pstNeighbour->aucBSID)).Bits(0, 3);
    }
}

// Recommended, with resources kept: one station, and when to range there.
void PutRecommendation(BitWriter &stTo, const Station &stServing, const Station &stTarget) {
    constexpr uint32_t u32AllServices = 2;
    constexpr uint32_t u32ActionTime = 2; // frames
    stTo.Bits(0, 1)
        .Bits(1, 1)
        .Bits(0, 6)
        .U8(1)
        .Bytes(ViewOf(stTarget.aucBSID))
        .U8(stTarget.u32Preamble)
        .U8(u32AllServices)
        .U8(Optimisation(stServing, stTarget)) // of two bytes the lower one
        .Bits(0, 3)                            // no network assistance, ID or policy
        .Pad()
        .U8(u32ActionTime);
}

} // namespace

ScanTimes ScanTimesOf(ModemTime iTime) {
    constexpr ModemTime iMost = UINT8_MAX;
    const ModemTime iFrames = std::max<ModemTime>((iTime + i64Frame - 1) / i64Frame, 1);
    const ModemTime iIterations = std::min((iFrames + iMost - 1) / iMost, iMost);
    const ModemTime iEach = std::min((iFrames + iIterations - 1) / iIterations, iMost);
    return {static_cast<uint32_t>(iEach), static_cast<uint32_t>(iIterations)};
}

BitWriter SCNREQBody(const ScanTimes &stTimes, const Station *pstNeighbour) {
    BitWriter stBody;
    stBody.U8(stTimes.u32Frames).U8(u32Interleaving).U8(stTimes.u32Iterations);
    PutScanned(stBody, pstNeighbour);
    return stBody.Pad();
}

BitWriter SCNRSPBody(const ScanTimes &stTimes, const Station *pstNeighbour) {
    constexpr uint32_t u32ReportOnce = 3;
    BitWriter stBody;
    stBody.U8(stTimes.u32Frames).Bits(u32ReportOnce, 2).Bits(0, 6).U8(0).U8(u32CINRAndRSSI);
    stBody.Bits(u32FramesToScan, 4)
        .Bits(0, 1)
        .U8(u32Interleaving)
        .U8(stTimes.u32Iterations)
        .Bits(0, 3);
    PutScanned(stBody, pstNeighbour);
    return stBody.Pad();
}

BitWriter SCNREPBody(std::span<const Seen> astSeen, const Measurement &stHere) {
    constexpr size_t uMost = UINT8_MAX;
    const auto astFirst = astSeen.first(std::min(astSeen.size(), uMost));
    BitWriter stBody;
    stBody
        .Bits(0, 1) // by event
        .Bits(0, 1) // whole IDs
        .Bits(1, 3) // active stations
        .Bits(0, 3)
        .U8(u32CINRAndRSSI)
        .Bits(0, 4) // the temporary ID of the only one
        .Bits(0, 4);
    PutLevels(stBody, stHere);
    stBody.U8(0).U8(static_cast<uint32_t>(astFirst.size()));
    for (const Seen &stSeen : astFirst) {
        stBody.Bytes(ViewOf(stSeen.pstStation->aucBSID));
        PutLevels(stBody, stSeen.stLevels);
    }
    return stBody;
}

BitWriter BSHOREQBody(const Station &stServing, const Station &stTarget) {
    BitWriter stBody;
    stBody.Bits(0, 1).Bits(0, 3).Pad(); // handover, without the network's assistance
    PutRecommendation(stBody, stServing, stTarget);
    return stBody;
}

BitWriter MSHOREQBody(const Station &stTarget, const Measurement &stThere,
                      const Measurement &stHere) {
    constexpr uint32_t u32ServingStation = 0; // the temporary ID of the only active station
    BitWriter stBody;
    stBody.U8(u32CINRAndRSSI)
        .U8(0) // stations by their place in the neighbour advertisement
        .U8(1) // stations by their ID
        .Bytes(ViewOf(stTarget.aucBSID))
        .U8(stTarget.u32Preamble);
    PutLevels(stBody, stThere);
    stBody
        .Bits(0, 1) // no arrival time difference
        .Bits(1, 4) // active stations
        .Bits(u32ServingStation, 4);
    PutLevels(stBody, stHere);
    return stBody.Pad();
}

BitWriter BSHORSPBody(const Station &stServing, const Station &stTarget) {
    BitWriter stBody;
    stBody.Bits(0, 3).Pad(); // handover, as it was asked for
    PutRecommendation(stBody, stServing, stTarget);
    return stBody;
}

BitWriter HOINDBody(HandoverIndication eIndication, const Station &stTarget) {
    BitWriter stBody;
    stBody.Bits(0, 6).Bits(0, 2).Bits(eIndication, 2).Bits(0, 2).Bits(0, 4);
    if (eIndication == ServingReleased) {
        stBody.Bytes(ViewOf(stTarget.aucBSID));
    }
    return stBody;
}

namespace {

bool Defines(ByteView stClass) {
    const uint32_t u32Activity = Get(stClass, PSCDefinition::u8Activity);
    return u32Activity == PSCDefinition::ActivityDefinition ||
           u32Activity == PSCDefinition::ActivityDefinitionAndActivation;
}

bool Activates(ByteView stClass) {
    const uint32_t u32Activity = Get(stClass, PSCDefinition::u8Activity);
    return u32Activity == PSCDefinition::ActivityActivation ||
           u32Activity == PSCDefinition::ActivityDefinitionAndActivation;
}

uint32_t CIDsOf(ByteView stClass) {
    return std::min(Get(stClass, PSCDefinition::u32NumOfCIDs), PSCDefinition::MaxCIDs);
}

void PutCIDs(BitWriter &stBody, ByteView stClass, uint32_t u32Count) {
    for (uint32_t i = 0; i < u32Count; ++i) {
        stBody.U16(Get(stClass, PSCDefinition::au16CID, i * WidthOf(PSCDefinition::au16CID.eType)));
    }
}

constexpr uint32_t u32SleepDelay = 2; // frames from the answer to the first window

} // namespace

BitWriter SLPREQBody(ByteView stClass, uint32_t u32Frame) {
    using namespace PSCDefinition;
    constexpr uint32_t u32MostCIDs = 7; // in three bits
    BitWriter stBody;
    stBody.U8(1);
    stBody.Bits(Defines(stClass) ? 1 : 0, 1).Bits(Activates(stClass) ? 1 : 0, 1);
    stBody.Bits(Get(stClass, u8PSCID), 6);
    if (Activates(stClass)) {
        stBody.Bits(u32Frame + u32SleepDelay, 6).Bits(0, 2);
    }
    if (Defines(stClass)) {
        const uint32_t u32CIDs = std::min(CIDsOf(stClass), u32MostCIDs);
        stBody.Bits(Get(stClass, u8PSCType), 2)
            .Bits(Get(stClass, u8Direction), 2)
            .Bits(Get(stClass, u8TTWF), 1)
            .Bits(0, 3)
            .U8(Get(stClass, u8InitialSleepWindow))
            .U8(Get(stClass, u8ListenWindow))
            .Bits(Get(stClass, u16FinalSleepWindowBase), 10)
            .Bits(Get(stClass, u8FinalSleepWindowExp), 3)
            .Bits(u32CIDs, 3);
        PutCIDs(stBody, stClass, u32CIDs);
    }
    return stBody;
}

BitWriter SLPRSPBody(ByteView stClass, uint32_t u32Frame) {
    using namespace PSCDefinition;
    constexpr uint32_t u32MostCIDs = 15; // in four bits
    BitWriter stData;
    stData.Bits(Defines(stClass) ? 1 : 0, 1).Bits(Activates(stClass) ? 1 : 0, 1);
    stData.Bits(Get(stClass, u8PSCID), 6);
    if (Activates(stClass)) {
        stData.Bits(u32Frame + u32SleepDelay, 6).Bits(0, 2);
    }
    if (Defines(stClass)) {
        const uint32_t u32CIDs = std::min(CIDsOf(stClass), u32MostCIDs);
        stData.Bits(Get(stClass, u8PSCType), 2)
            .Bits(Get(stClass, u8Direction), 2)
            .U8(Get(stClass, u8InitialSleepWindow))
            .U8(Get(stClass, u8ListenWindow))
            .Bits(Get(stClass, u16FinalSleepWindowBase), 10)
            .Bits(Get(stClass, u8FinalSleepWindowExp), 3)
            .Bits(Get(stClass, u8TIR), 1)
            .Bits(Get(stClass, u8TTWF), 1)
            .Bits(0, 1);
        if (Get(stClass, u8TIR) != 0) {
            stData.Bits(Get(stClass, u8PSCID), 10).Bits(0, 2);
        }
        stData.Bits(u32CIDs, 4);
        PutCIDs(stData, stClass, u32CIDs);
    }
    stData.Pad();
    BitWriter stBody;
    stBody.U8(1).Bits(stData.View().u32Length, 7).Bits(1, 1).Bytes(stData.View());
    return stBody;
}

BitWriter TRFINDBody(uint32_t u32SleepID) {
    BitWriter stBody;
    stBody.Bits(1, 1).Bits(1, 7).Bits(u32SleepID, 10).Pad();
    return stBody;
}

namespace {

namespace FlowTLV {
enum : uint32_t {
    SFID = 1,
    CID = 2,
    ServiceClassName = 3,
    ParamSets = 5,
    Priority = 6,
    MostRate = 7,
    LeastRate = 9,
    Scheduling = 11,
    Policy = 12,
    Jitter = 13,
    Latency = 14,
    TargetSAID = 17,
    ARQ = 18,
    CS = 28,
    DownlinkService = 29,
    GrantInterval = 40,
    PollingInterval = 41,
    Uplink = 145,
    Downlink = 146,
};
}

// The type of a downlink flow's service has numbers of its own.
uint32_t DownlinkService(uint32_t u32SchedulingType) {
    switch (u32SchedulingType) {
    case SFParamSet::UGS:
        return 0;
    case SFParamSet::RTPS:
        return 1;
    case SFParamSet::NRTPS:
        return 2;
    case SFParamSet::ERTPS:
        return 4;
    default:
        return 3; // best effort
    }
}

// How the station serves the flow, and in the uplink how often it does without being asked.
void PutService(BitWriter &stTLVs, bool bUplink, uint32_t u32SchedulingType) {
    constexpr auto u32Interval = static_cast<uint32_t>(iGrantInterval / i64Millisecond);
    if (!bUplink) {
        stTLVs.TLV(FlowTLV::DownlinkService, 1, DownlinkService(u32SchedulingType));
        return;
    }
    stTLVs.TLV(FlowTLV::Scheduling, 1, u32SchedulingType);
    if (u32SchedulingType == SFParamSet::UGS || u32SchedulingType == SFParamSet::ERTPS) {
        stTLVs.TLV(FlowTLV::GrantInterval, 2, u32Interval);
    } else if (u32SchedulingType == SFParamSet::RTPS) {
        stTLVs.TLV(FlowTLV::PollingInterval, 2, u32Interval);
    }
}

// What of a rule is there: the bytes that its length says.
struct RuleBytes {
    uint32_t u32Type;
    Field stLength;
    Field stBytes;
};
constexpr std::array astRuleBytes{
    RuleBytes{4, ClassifierRule::u8IPMaskedSrcAddrLength, ClassifierRule::au8IPMaskedSrcAddr},
    RuleBytes{5, ClassifierRule::u8IPMaskedDestAddrLength, ClassifierRule::au8IPMaskedDestAddr},
    RuleBytes{6, ClassifierRule::u8SrcPortRangeLength, ClassifierRule::au8SrcPortRange},
    RuleBytes{7, ClassifierRule::u8DestPortRangeLength, ClassifierRule::au8DestPortRange},
    RuleBytes{8, ClassifierRule::u8EthDestMacLength, ClassifierRule::au8EthDestMac},
    RuleBytes{9, ClassifierRule::u8EthSrcMacLength, ClassifierRule::au8EthSrcMac},
};
namespace RuleTLV {
enum : uint32_t { Priority = 1, Protocol = 3, Index = 14, Action = 1, Rule = 3 };
}

void PutRule(BitWriter &stTLVs, uint32_t u32CS, const FlowRule &stRule) {
    // The parameters of the convergence sublayers stand in the order of their numbers.
    constexpr uint32_t u32FirstCS = 1;
    constexpr uint32_t u32LastCS = 8;
    constexpr uint32_t u32FirstParameters = 100;
    if (u32CS < u32FirstCS || u32CS > u32LastCS) {
        return;
    }
    BitWriter stContent;
    if (stRule.stContent.u32Length != 0) {
        stContent.TLV(RuleTLV::Priority, 1, Get(stRule.stContent, ClassifierRule::u8Priority));
        if (const uint32_t u32Protocol = Get(stRule.stContent, ClassifierRule::u8Protocol)) {
            stContent.TLV(RuleTLV::Protocol, 1, u32Protocol);
        }
        for (const RuleBytes &stRow : astRuleBytes) {
            if (const uint32_t u32Length = Get(stRule.stContent, stRow.stLength)) {
                stContent.TLV(stRow.u32Type,
                              stRule.stContent.From(stRow.stBytes.u16Offset, u32Length));
            }
        }
    }
    if (stRule.u32Index != 0) {
        stContent.TLV(RuleTLV::Index, 2, stRule.u32Index);
    }
    BitWriter stParameters;
    stParameters.TLV(RuleTLV::Action, 1, stRule.u32Action).TLV(RuleTLV::Rule, stContent);
    stTLVs.TLV(u32FirstParameters + u32CS - u32FirstCS, stParameters);
}

void PutFlow(BitWriter &stBody, const FlowParameters &stFlow, bool bWithParameters) {
    using namespace SFParamSet;
    BitWriter stTLVs;
    if (stFlow.u32SFID != 0) {
        stTLVs.TLV(FlowTLV::SFID, 4, stFlow.u32SFID);
    }
    if (stFlow.u32CID != 0) {
        stTLVs.TLV(FlowTLV::CID, 2, stFlow.u32CID);
    }
    const ByteView stSet = stFlow.stSet;
    const uint32_t u32CS = Get(stSet, u8CSSpecification);
    if (bWithParameters) {
        const uint32_t u32NameRoom = EndOf(au8ServiceClassName) + 32;
        const uint32_t u32Name = std::min(Get(stSet, u8ServiceClassNameLength),
                                          u32NameRoom - au8ServiceClassName.u16Offset);
        if (u32Name > 1) {
            stTLVs.TLV(FlowTLV::ServiceClassName,
                       stSet.From(au8ServiceClassName.u16Offset, u32Name));
        }
        stTLVs.TLV(FlowTLV::ParamSets, 1, Get(stSet, u8QoSParamSetType))
            .TLV(FlowTLV::Priority, 1, Get(stSet, u8TrafficPriority))
            .TLV(FlowTLV::MostRate, 4, Get(stSet, u32MaxSustainedTrafficRate))
            .TLV(FlowTLV::LeastRate, 4, Get(stSet, u32MinReservedTrafficRate));
        PutService(stTLVs, stFlow.bUplink, Get(stSet, u8SchedulingType));
        stTLVs.TLV(FlowTLV::Policy, 4, Get(stSet, u8RetransmissionPolicy))
            .TLV(FlowTLV::Jitter, 4, Get(stSet, u32ToleratedJitter))
            .TLV(FlowTLV::Latency, 4, Get(stSet, u32MaximumLatency))
            .TLV(FlowTLV::TargetSAID, 2, u32PrimarySAID)
            .TLV(FlowTLV::ARQ, 1, 0)
            .TLV(FlowTLV::CS, 1, u32CS);
    }
    for (const FlowRule &stRule : stFlow.astRules) {
        PutRule(stTLVs, u32CS, stRule);
    }
    stBody.TLV(stFlow.bUplink ? FlowTLV::Uplink : FlowTLV::Downlink, stTLVs);
}

} // namespace

BitWriter DSxREQBody(uint32_t u32TransactionID, const FlowParameters &stFlow) {
    BitWriter stBody;
    stBody.U16(u32TransactionID);
    PutFlow(stBody, stFlow, true);
    return stBody;
}

BitWriter DSxRSPBody(uint32_t u32TransactionID, uint32_t u32Confirmation,
                     const FlowParameters &stFlow) {
    BitWriter stBody;
    stBody.U16(u32TransactionID).U8(u32Confirmation);
    if (u32Confirmation == 0) {
        PutFlow(stBody, stFlow, false);
    }
    return stBody;
}

BitWriter DSXRVDBody(uint32_t u32TransactionID, uint32_t u32Confirmation) {
    BitWriter stBody;
    return stBody.U16(u32TransactionID).U8(u32Confirmation);
}

BitWriter DSDREQBody(uint32_t u32TransactionID, uint32_t u32SFID) {
    BitWriter stBody;
    return stBody.U16(u32TransactionID).U32(u32SFID);
}

BitWriter DSDRSPBody(uint32_t u32TransactionID, uint32_t u32Confirmation, uint32_t u32SFID) {
    BitWriter stBody;
    return stBody.U16(u32TransactionID).U8(u32Confirmation).U32(u32SFID);
}

void PutCMACTuple(BitWriter &stBody, uint32_t u32PacketNumber, uint64_t u64Digest) {
    constexpr uint32_t u32CMACTuple = 141;
    BitWriter stTuple;
    stTuple.U8(u32AKSequence).U32(u32PacketNumber).Bytes(U64(u64Digest).View());
    stBody.TLV(u32CMACTuple, stTuple);
}

void PutCMACAttribute(BitWriter &stBody, uint32_t u32PacketNumber, uint64_t u64Digest) {
    BitWriter stDigest;
    stDigest.U32(u32PacketNumber).Bytes(U64(u64Digest).View());
    stBody.TLV(PKMAttribute::CMACDigest, stDigest);
}
