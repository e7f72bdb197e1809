// MAC management messages of IEEE 802.16, OFDMA air interface with mobility: codes
// and bodies. A body begins behind the message's type byte.
#ifndef MANAGEMENT_MESSAGES_H
#define MANAGEMENT_MESSAGES_H

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "air/BitWriter.h"
#include "air/PhysicalLayer.h"
#include "air/Radio.h"
#include "time/ModemTime.h"

namespace MessageCode {
enum : uint32_t {
    UCD = 0,
    DCD = 1,
    DLMAP = 2,
    ULMAP = 3,
    RNGREQ = 4,
    RNGRSP = 5,
    REGREQ = 6,
    REGRSP = 7,
    PKMREQ = 9,
    PKMRSP = 10,
    DSAREQ = 11,
    DSARSP = 12,
    DSAACK = 13,
    DSCREQ = 14,
    DSCRSP = 15,
    DSCACK = 16,
    DSDREQ = 17,
    DSDRSP = 18,
    RESCMD = 25,
    SBCREQ = 26,
    SBCRSP = 27,
    DREGCMD = 29,
    DSXRVD = 30,
    REPREQ = 36,
    REPRSP = 37,
    DREGREQ = 49,
    SLPREQ = 50,
    SLPRSP = 51,
    TRFIND = 52,
    NBRADV = 53,
    SCNREQ = 54,
    SCNRSP = 55,
    BSHOREQ = 56,
    MSHOREQ = 57,
    BSHORSP = 58,
    HOIND = 59,
    SCNREP = 60,
    PAGADV = 61,
};
}

namespace WellKnownCID {
inline constexpr uint32_t InitialRanging = 0;
inline constexpr uint32_t FragmentableBroadcast = 0xFFFD;
inline constexpr uint32_t Broadcast = 0xFFFF;
} // namespace WellKnownCID

inline constexpr uint32_t u32FrameNumberMask = 0xFFFFFF; // 24 bits

using MACAddressBytes = std::array<uint8_t, 6>;
ByteView ViewOf(const std::array<uint8_t, 6> &aucBytes);

// The ranging codes of a cell, in groups that follow each other from code 0 on.
struct CodeGroup {
    uint32_t u32First;
    uint32_t u32Count;
};
namespace RangingCodes {
inline constexpr CodeGroup Initial{0, 64};
inline constexpr CodeGroup Periodic{64, 32};
inline constexpr CodeGroup BandwidthRequest{96, 96};
inline constexpr CodeGroup Handover{192, 64};
// Where a code goes: sub-channels from 0 on; one of two symbols for the initial ranging,
// the one behind them for all else.
inline constexpr uint32_t u32SubChannels = 6;
inline constexpr uint32_t u32EarlySymbols = 2;
inline constexpr uint32_t u32LateSymbol = 2;
} // namespace RangingCodes

// A ranging code and where in which frame it was sent.
struct RangingSignal {
    uint32_t u32Frame;
    uint32_t u32Code;
    uint32_t u32SubChannel;
    uint32_t u32Symbol;
};

// A station's two descriptors and its list of neighbours.
BitWriter DCDBody(const Station &stStation, const HandoverThresholds &stThresholds);
BitWriter UCDBody(const Station &stStation);
BitWriter NBRADVBody(const Station &stStation, std::span<const Station *const> apstNeighbours);

// The maps of a frame: a downlink burst of the profile, and what the uplink is granted for.
struct DataGrant {
    uint32_t u32BasicCID; // of this modem
    BurstProfile stProfile;
    uint32_t u32Slots;
};
struct Grants {
    std::vector<RangingSignal> astCodes; // that are answered with an allocation
    std::optional<DataGrant> stData;
};
BitWriter DLMAPBody(const Station &stStation, uint32_t u32Frame, const BurstProfile &stProfile);
BitWriter ULMAPBody(const Station &stStation, const Grants &stGrants);
// Both in one, with a checksum. It is no management message and has no type: its first bits, 110,
// tell it from a DL-MAP.
BitWriter CompressedMaps(const Station &stStation, uint32_t u32Frame, const BurstProfile &stProfile,
                         const Grants &stGrants);

// Ranging.
enum class RangingPurpose : uint8_t { Entry, Handover, IdleReentry, LocationUpdate, PowerDown };
// With the burst profile that the modem wants. In idle mode the former station is the one whose
// paging controller knows the modem.
BitWriter RNGREQBody(RangingPurpose ePurpose, const MACAddressBytes &aucMAC,
                     const Station &stStation, const BurstProfile &stProfile,
                     const Station *pstFormer);
enum class RangingStatus : uint8_t { Continue = 1, Abort = 2, Success = 3 };
struct Corrections {
    int32_t iTiming;    // samples
    int32_t iPower;     // quarter dB
    int32_t iFrequency; // Hz
};
// In answer to a code.
BitWriter RNGRSPBody(const RangingSignal &stSignal, const Corrections &stCorrections,
                     RangingStatus eStatus);
struct Admission {
    uint32_t u32BasicCID;
    uint32_t u32PrimaryCID;
    std::optional<uint32_t> u32Optimisation; // not at the first entry
};
// In answer to a location update: from now on the modem is paged there, every so many seconds.
BitWriter RNGRSPBody(const MACAddressBytes &aucMAC, const Station &stStation,
                     uint32_t u32PagingCycle);
// In answer to a RNG-REQ; null when the modem is not let in.
BitWriter RNGRSPBody(RangingStatus eStatus, const MACAddressBytes &aucMAC,
                     const Admission *pstAdmission);
// Which steps of an entry are left out for a modem that comes from another station.
uint32_t Optimisation(const Station &stFormer, const Station &stTarget);
// Besides: a REG-RSP comes unasked, with the connections that the service flows have from now on.
inline constexpr uint32_t u32RegistrationComes = 0x0400;
struct FlowCID {
    uint32_t u32SFID;
    uint32_t u32CID;
};
BitWriter CIDUpdateBody(std::span<const FlowCID> astFlows);

// Keys. The identifier ties answers to requests.
namespace PKMCode {
enum : uint32_t {
    EAPStart = 17,
    EAPTransfer = 18,
    SATEKChallenge = 20,
    SATEKRequest = 21,
    SATEKResponse = 22,
    KeyRequest = 23,
    KeyReply = 24,
    KeyReject = 25,
};
}
struct KeyExchange {
    uint64_t u64BSRandom;
    uint64_t u64MSRandom;
    uint64_t u64AKID; // of the authorisation key
    uint64_t u64Nonce;
    std::array<uint8_t, 16> aaucTEK[2]; // older and newer traffic key, encrypted
};
// An EAP transfer carries stEAP, all others what belongs to them of the exchange.
BitWriter PKMBody(uint32_t u32Code, uint32_t u32Identifier, const KeyExchange &stKeys,
                  uint32_t u32Frame, ByteView stEAP = {});
// EAP: authentication and key agreement by a shared secret.
namespace EAP {
enum Code : uint32_t { Request = 1, Response = 2, Success = 3, Failure = 4 };
enum Step : uint32_t { Identity, Challenge, Result };
} // namespace EAP
// u64Secret makes the challenge's and its answer's values differ from one to the next.
BitWriter EAPPacket(EAP::Code eCode, uint32_t u32Identifier, EAP::Step eStep, uint64_t u64Secret);

// The modem goes: for good, into idle mode on its own account, or as it was told to.
enum DeregistrationRequest : uint32_t { Deregister = 0, GoIdle = 1, GoesAsTold = 2 };
BitWriter DREGREQBody(DeregistrationRequest eRequest, uint32_t u32PagingCycle);
BitWriter DREGCMDBody(const Station &stStation, uint32_t u32Action, uint32_t u32PagingCycle);

// A hash of a MAC address, 24 bits, by which idle modems are paged.
uint32_t MACAddressHash(const MACAddressBytes &aucMAC);
BitWriter PAGADVBody(const Station &stStation, const MACAddressBytes *pstPaged);

// Channel measurement reports. A CINR counts in dB from -10 on.
uint32_t CINRCode(double fCINR);
BitWriter REPREQBody();
BitWriter REPRSPBody(const Measurement &stMeasurement, const Deviation &stDeviation);

// Looking at other stations: asked for, allowed, reported. So many frames at a time, so many times,
// one behind the other.
struct ScanTimes {
    uint32_t u32Frames;
    uint32_t u32Iterations;
};
// What a scan of this time is asked for with: at most 255 frames, 255 times.
ScanTimes ScanTimesOf(ModemTime iTime);
// From the station's answer to the first frame of the scan.
inline constexpr uint32_t u32FramesToScan = 2;
// Null: no station in particular.
BitWriter SCNREQBody(const ScanTimes &stTimes, const Station *pstNeighbour);
BitWriter SCNRSPBody(const ScanTimes &stTimes, const Station *pstNeighbour);
struct Seen {
    const Station *pstStation;
    Measurement stLevels;
};
// Reports at most 255 stations.
BitWriter SCNREPBody(std::span<const Seen> astSeen, const Measurement &stHere);

// Handover: as the modem asks for it, or as the station orders it.
BitWriter BSHOREQBody(const Station &stServing, const Station &stTarget);
BitWriter MSHOREQBody(const Station &stTarget, const Measurement &stThere,
                      const Measurement &stHere);
BitWriter BSHORSPBody(const Station &stServing, const Station &stTarget);
enum HandoverIndication : uint32_t { ServingReleased = 0, Cancelled = 1 };
BitWriter HOINDBody(HandoverIndication eIndication, const Station &stTarget);

// Sleep mode; the class is a PSCDefinition record of the host interface.
BitWriter SLPREQBody(ByteView stClass, uint32_t u32Frame);
BitWriter SLPRSPBody(ByteView stClass, uint32_t u32Frame);
BitWriter TRFINDBody(uint32_t u32SleepID);

// Service flows. A rule of a flow's classifier, and what is to be done with it: content and
// actions are those of the host interface's ClassifierRule.
struct FlowRule {
    uint32_t u32Action;
    uint32_t u32Index;  // that the station has given it, 0: not known yet
    ByteView stContent; // may be empty where the index says all
};
// The set is a SFParamSet record of the host interface.
struct FlowParameters {
    bool bUplink;
    uint32_t u32SFID; // 0: not known yet
    uint32_t u32CID;  // 0: not known yet
    ByteView stSet;
    std::vector<FlowRule> astRules;
};
BitWriter DSxREQBody(uint32_t u32TransactionID, const FlowParameters &stFlow);
// RSP and ACK of an addition or a change.
BitWriter DSxRSPBody(uint32_t u32TransactionID, uint32_t u32Confirmation,
                     const FlowParameters &stFlow);
BitWriter DSXRVDBody(uint32_t u32TransactionID, uint32_t u32Confirmation);
BitWriter DSDREQBody(uint32_t u32TransactionID, uint32_t u32SFID);
BitWriter DSDRSPBody(uint32_t u32TransactionID, uint32_t u32Confirmation, uint32_t u32SFID);

// The digest at the end of an authenticated message: as a TLV of its own, and as an
// attribute of key messages.
void PutCMACTuple(BitWriter &stBody, uint32_t u32PacketNumber, uint64_t u64Digest);
void PutCMACAttribute(BitWriter &stBody, uint32_t u32PacketNumber, uint64_t u64Digest);

#endif
