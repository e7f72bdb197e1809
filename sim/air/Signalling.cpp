#include "air/Signalling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "LinkRecords.h"
#include "ServiceFlowRecord.h"
#include "air/PhysicalLayer.h"

namespace {

using enum LinkState;

// Stages of the network entry, in their order.
enum Stage : uint32_t { Ranging, Capabilities, Authentication, Registration, TrafficKeys };

// CIDs: basic ones up to this one, then as many primary ones, then transport.
constexpr uint32_t u32BasicCIDs = 511;

constexpr auto iLowest = static_cast<int32_t>(iLeastPower * fQuarters);
constexpr auto iHighest = static_cast<int32_t>(iMostPower * fQuarters);
// So far the station's corrections may take the modem from its own measurement.
constexpr int32_t iMostCorrection = 32; // quarter dB

// Numbers of transactions: the lower half is the modem's, the upper half the station's.
constexpr uint32_t u32TransactionsOfEach = 0x8000;

struct DialogueCodes {
    uint32_t u32Request;
    uint32_t u32Response;
    uint32_t u32Acknowledgement; // none of a deletion
};
const DialogueCodes &CodesOf(FlowDialogue eDialogue) {
    static constexpr std::array astCodes{
        DialogueCodes{MessageCode::DSAREQ, MessageCode::DSARSP, MessageCode::DSAACK},
        DialogueCodes{MessageCode::DSCREQ, MessageCode::DSCRSP, MessageCode::DSCACK},
        DialogueCodes{MessageCode::DSDREQ, MessageCode::DSDRSP, 0}};
    return astCodes[static_cast<size_t>(eDialogue)];
}
constexpr uint32_t u32CodesWithoutAnswer = 4;

constexpr uint32_t u32DREGGoIdle = 5;
constexpr uint32_t u32DREGTerminate = 4;

bool IsManagement(const Connection &stConnection) { return stConnection.u32SFID == 0; }

} // namespace

Signalling::Signalling(const Section &stRoot, Chance &stChance, Scheduler &stClock, Radio &stAir,
                       const Attachment &stAt, const Traffic &stTraffic, const Presence &stPresence,
                       const Options &stOptions, const MACAddressBytes &aucAddress)
    : m_stClock(stClock), m_stAir(stAir), m_stAt(stAt), m_stTraffic(stTraffic),
      m_stPresence(stPresence), m_stOptions(stOptions), m_aucAddress(aucAddress),
      m_stRandom(stChance.For("signalling")), m_stStep(stClock), m_stMaps(stClock),
      m_stDescriptors(stClock), m_stNeighbours(stClock), m_stPaging(stClock), m_stRanging(stClock),
      m_stReport(stClock) {
    const Section stSettings = stRoot.Table("signalling");
    const auto ReadPeriod = [&](const char *pcKey, double fDefault) {
        return stSettings.Seconds(pcKey, 0.005, 1e6, fDefault);
    };
    m_iMapPeriod = ReadPeriod("map-period", 1);
    m_iDescriptorPeriod = ReadPeriod("descriptor-period", 5);
    m_iNeighbourPeriod = ReadPeriod("neighbour-period", 10);
    m_iRangingPeriod = ReadPeriod("ranging-period", 2);
    m_iReportPeriod = ReadPeriod("report-period", 10);
    m_fCMACFailures = stSettings.Number("cmac-failures", 0, 0.9, 0);
    m_stLimits = {static_cast<uint32_t>(
                      stRoot.Table("service-flows").Integer("most-flows", 0, u32ModemFlows, 16)),
                  static_cast<uint32_t>(stRoot.Tables("service-flow").size())};
}

void Signalling::Start() {
    ++m_u32Life;
    DropSteps();
    m_astWaiting.clear();
    m_stStep.Stop();
    m_pstTarget = nullptr;
    m_bToldToIdle = false;
    m_au32MapFrame = {UINT32_MAX, UINT32_MAX};
    m_astConnections.clear();
    m_iPower = 0;
    m_iOpenLoopPower = 0;
    m_iTiming = 0;
    if (m_stAt.Registered()) {
        AdjustOpenLoop(*m_stAt.pstServing);
        m_iTiming = RoundTripTo(*m_stAt.pstServing);
        MakeConnections();
        m_pstFormer = m_stAt.pstServing;
    }
    FollowState();
}

uint32_t Signalling::Frame() const {
    return static_cast<uint32_t>(m_stClock.Now() / i64Frame) & u32FrameNumberMask;
}

void Signalling::WantBroadcasts(bool bWanted) {
    if (m_bBroadcastsWanted != bWanted) {
        m_bBroadcastsWanted = bWanted;
        FollowBroadcasts();
    }
}

// One after the other.

void Signalling::Later(Step pfnStep, Map eMap) {
    m_astSteps.push_back({std::move(pfnStep), eMap});
    ++m_u64Steps;
    if (!m_stStep.Running()) {
        const ModemTime iWait = m_iLastStep + i64Frame - m_stClock.Now();
        m_stStep.Start(std::max<ModemTime>(iWait, 0), [this] { NextStep(); });
    }
}

void Signalling::DropSteps() {
    m_astSteps.clear();
    m_bRangingWaits = m_bReportWaits = false;
}

// Whether the first so many steps have been taken. A message that is said again is a step that
// has come back.
bool Signalling::Said(uint64_t u64Steps) const {
    return m_u64Steps - m_astSteps.size() >= u64Steps;
}

void Signalling::OnceSaid(Step pfnAction) {
    if (m_astWaiting.empty() && Said(m_u64Steps)) {
        pfnAction();
        return;
    }
    m_astWaiting.push_back({m_u64Steps, std::move(pfnAction)});
    LookWhenSaid(m_u64Steps);
}

void Signalling::LookWhenSaid(uint64_t u64Steps) {
    // The last of them is taken then, unless some have to be taken again.
    ModemTime iWait = 0;
    if (!Said(u64Steps)) {
        const uint64_t u64Before = u64Steps - (m_u64Steps - m_astSteps.size()) - 1;
        iWait = std::max<ModemTime>(m_iLastStep + i64Frame - m_stClock.Now(), 0) +
                static_cast<ModemTime>(u64Before) * i64Frame;
    }
    m_stClock.After(iWait, [this, u64Steps, u32Life = m_u32Life] {
        if (u32Life != m_u32Life) {
            return;
        }
        if (!Said(u64Steps)) {
            LookWhenSaid(u64Steps);
        }
        while (!m_astWaiting.empty() && m_astWaiting.front().u64Steps <= u64Steps &&
               Said(m_astWaiting.front().u64Steps)) {
            const Step pfnAction = std::move(m_astWaiting.front().pfnAction);
            m_astWaiting.pop_front();
            pfnAction();
        }
    });
}

void Signalling::NextStep() {
    if (m_astSteps.empty()) {
        return;
    }
    const Step pfnStep = std::move(m_astSteps.front().pfnStep);
    m_astSteps.pop_front();
    m_iLastStep = m_stClock.Now();
    pfnStep();
    if (!m_astSteps.empty()) {
        m_stStep.Start(i64Frame, [this] { NextStep(); });
    }
}

void Signalling::Say(uint32_t u32Code, bool bUplink, uint32_t u32CID, BitWriter stBody,
                     Protection eProtection) {
    const BitWriter stBare = stBody;
    bool bGood = eProtection != Protection::None;
    if (bGood) {
        const uint32_t u32PacketNumber = ++m_au32PacketNumber[bUplink ? 1 : 0];
        const ByteView stBytes = stBody.View();
        const std::string_view strBytes{reinterpret_cast<const char *>(stBytes.pucData),
                                        stBytes.u32Length};
        uint64_t u64Digest = SeedFor(m_stKeys.u64AKID + u32PacketNumber, strBytes);
        bGood = bUplink || !m_stRandom.Chance(m_fCMACFailures);
        if (!bGood) {
            u64Digest = ~u64Digest;
        }
        if (eProtection == Protection::Tuple) {
            PutCMACTuple(stBody, u32PacketNumber, u64Digest);
        } else {
            PutCMACAttribute(stBody, u32PacketNumber, u64Digest);
        }
    }
    const ManagementMessage stMessage{Frame(), u32Code, bUplink, u32CID, bGood, stBody.Take()};
    for (const auto &pfnObserver : m_apfnOnMessage) {
        pfnObserver(stMessage);
    }
    if (eProtection != Protection::None && !bGood) {
        // The modem drops it, and the station says it again.
        Step pfnAgain = [this, u32Code, bUplink, u32CID, stBare, eProtection] {
            Say(u32Code, bUplink, u32CID, stBare, eProtection);
        };
        m_astSteps.push_front({std::move(pfnAgain), Map::None});
    }
}

void Signalling::SayLater(uint32_t u32Code, bool bUplink, uint32_t u32CID, BitWriter stBody,
                          Protection eProtection) {
    Later([this, u32Code, bUplink, u32CID, stBody = std::move(stBody), eProtection] {
        Say(u32Code, bUplink, u32CID, stBody, eProtection);
    });
}

// Following the link.

void Signalling::Follow(const LinkChange &stChange) {
    const bool bStageDone = stChange.eBefore == Entering && stChange.eAfter == Entering;
    if (bStageDone) {
        FinishStage(stChange.u32StagesDone - 1);
        if (stChange.u32StagesDone < u32EntryStages) {
            BeginStage(stChange.u32StagesDone);
        }
        return;
    }
    const Station *pstServing = m_stAt.pstServing;
    if (stChange.eBefore == Synchronising && stChange.eAfter == Synchronised) {
        Later([this, pstServing] { SayDLMAP(*pstServing); }, Map::Downlink);
        SayLater(MessageCode::DCD, bDown, WellKnownCID::FragmentableBroadcast,
                 DCDBody(*pstServing, m_stAir.Thresholds()));
        SayLater(MessageCode::UCD, bDown, WellKnownCID::FragmentableBroadcast,
                 UCDBody(*pstServing));
        Later([this, pstServing] { SayULMAP(*pstServing, nullptr); }, Map::Uplink);
    } else if (stChange.eAfter == Entering) {
        BeginStage(Ranging);
    } else if (stChange.eAfter == EnteringIdle) {
        SayLater(MessageCode::DREGREQ, bUp, m_u32BasicCID,
                 DREGREQBody(m_bToldToIdle ? GoesAsTold : GoIdle, PagingCycle()),
                 Protection::Tuple);
    } else if (stChange.eBefore == EnteringIdle && stChange.eAfter == Idle) {
        if (!m_bToldToIdle) {
            SayLater(MessageCode::DREGCMD, bDown, m_u32BasicCID,
                     DREGCMDBody(*pstServing, u32DREGGoIdle, PagingCycle()), Protection::Tuple);
        }
        m_bToldToIdle = false;
        m_pstFormer = pstServing;
        std::erase_if(m_astConnections, IsManagement);
    } else if (stChange.eAfter == LeavingIdle) {
        Range(*pstServing, RangingPurpose::IdleReentry);
    } else if (stChange.eBefore == LeavingIdle && stChange.eAfter == LinkUp) {
        Readmit(RangingPurpose::IdleReentry, Optimisation(*m_pstFormer, *pstServing));
    }
    m_pstTarget = nullptr;
    if (!m_stAt.Registered() && m_stAt.eState != Entering) {
        m_astConnections.clear();
    }
    FollowState();
}

void Signalling::FollowState() {
    FollowBroadcasts();
    m_stRanging.Stop();
    m_stReport.Stop();
    if (m_stAt.eState == LinkUp) {
        StartPeriod(m_stRanging, m_iRangingPeriod, m_bRangingWaits, &Signalling::RangePeriodically);
        StartPeriod(m_stReport, m_iReportPeriod, m_bReportWaits, &Signalling::Report);
    }
}

void Signalling::FollowBroadcasts() {
    for (Timer *pstTimer : {&m_stMaps, &m_stDescriptors, &m_stNeighbours, &m_stPaging}) {
        pstTimer->Stop();
    }
    if (!m_bBroadcastsWanted) {
        return;
    }
    if (m_stAt.IsAnyOf({Synchronised, Entering, LinkUp, EnteringIdle, LeavingIdle})) {
        Broadcast(m_stMaps, m_iMapPeriod, &Signalling::SayMaps);
        Broadcast(m_stDescriptors, m_iDescriptorPeriod, &Signalling::SayDescriptors);
        Broadcast(m_stNeighbours, m_iNeighbourPeriod, &Signalling::SayNeighbours);
    } else if (m_stAt.eState == Idle) {
        // One frame behind the one in which this modem would be paged.
        const ModemTime iCycle = std::max<ModemTime>(PagingCycle(), 1) * i64Second;
        m_stPaging.Start(iCycle - m_stClock.Now() % iCycle + i64Frame, [this] { SayPaging(); });
    }
}

void Signalling::StartPeriod(Timer &stTimer, ModemTime iPeriod, bool &bWaits,
                             void (Signalling::*pfnBegin)()) {
    stTimer.Start(iPeriod, [this, &stTimer, iPeriod, &bWaits, pfnBegin] {
        StartPeriod(stTimer, iPeriod, bWaits, pfnBegin);
        if (!bWaits) {
            bWaits = true;
            (this->*pfnBegin)();
        }
    });
}

uint32_t Signalling::PagingCycle() const { return m_stOptions.Value(Options::PagingCycle); }

void Signalling::BeginStage(uint32_t u32Stage) {
    switch (u32Stage) {
    case Ranging:
        m_au32PacketNumber[0] = m_au32PacketNumber[1] = 0;
        Range(*m_stAt.pstServing, RangingPurpose::Entry);
        break;
    case Capabilities:
        SayLater(MessageCode::SBCREQ, bUp, m_u32BasicCID, SBCREQBody());
        break;
    case Authentication:
        Authenticate();
        break;
    case Registration:
        SayLater(MessageCode::REGREQ, bUp, m_u32PrimaryCID, REGREQBody(), Protection::Tuple);
        break;
    case TrafficKeys:
        Later([this] {
            m_stKeys.u64Nonce = m_stRandom.Next();
            ++m_u32PKMIdentifier;
            SayPKM(bUp, PKMCode::KeyRequest, Protection::Attribute);
        });
        break;
    default:
        break;
    }
}

void Signalling::FinishStage(uint32_t u32Stage) {
    switch (u32Stage) {
    case Ranging:
        MakeConnections();
        Later([this] { AnswerRNGREQ(RangingPurpose::Entry, 0); });
        break;
    case Capabilities:
        SayLater(MessageCode::SBCRSP, bDown, m_u32BasicCID, SBCRSPBody(*m_stAt.pstServing));
        break;
    case Authentication:
        SayKeyExchange();
        break;
    case Registration:
        SayLater(MessageCode::REGRSP, bDown, m_u32PrimaryCID, REGRSPBody(true, m_stLimits),
                 Protection::Tuple);
        break;
    case TrafficKeys:
        Later([this] {
            for (auto &aucTEK : m_stKeys.aaucTEK) {
                for (uint8_t &u8Byte : aucTEK) {
                    u8Byte = static_cast<uint8_t>(m_stRandom.Below(256));
                }
            }
            SayPKM(bDown, PKMCode::KeyReply, Protection::Attribute);
        });
        break;
    default:
        break;
    }
}

// The station's refusal, where it says one: the missing of an answer is one, too.
void Signalling::FailStage(uint32_t u32Reason) {
    switch (u32Reason) {
    case LinkReason::RangingFailure:
        if (m_stAt.pstServing->u32EntryFailure == u32Reason) {
            SayLater(MessageCode::RNGRSP, bDown, WellKnownCID::InitialRanging,
                     RNGRSPBody(RangingStatus::Abort, m_aucAddress, nullptr));
        }
        break;
    case LinkReason::PKMFailure:
        Later([this] {
            const BitWriter stFailure = EAPPacket(EAP::Failure, m_u32PKMIdentifier, EAP::Result, 0);
            SayPKM(bDown, PKMCode::EAPTransfer, Protection::None, stFailure.View());
        });
        break;
    case LinkReason::RegistrationFailure:
        SayLater(MessageCode::REGRSP, bDown, m_u32PrimaryCID, REGRSPBody(false, m_stLimits),
                 Protection::Tuple);
        break;
    case LinkReason::SATEKFailure:
        Later([this] { SayPKM(bDown, PKMCode::KeyReject, Protection::Attribute); });
        break;
    default:
        break;
    }
}

// Ranging and power.

void Signalling::Range(const Station &stStation, RangingPurpose ePurpose) {
    const CodeGroup &stGroup =
        ePurpose == RangingPurpose::Handover ? RangingCodes::Handover : RangingCodes::Initial;
    Later([this, &stStation, &stGroup] {
        AdjustOpenLoop(stStation);
        m_iTiming = 0;
        SendCode(stGroup, RangingKind::Initial);
    });
    const bool bHeard = m_stAir.StrongEnoughToEnter(stStation, m_stClock.Now());
    if (!bHeard) {
        for (uint32_t i = 1; i < u32CodesWithoutAnswer; ++i) {
            Later([this, &stGroup] { SendCode(stGroup, RangingKind::Initial); });
        }
        return;
    }
    if (ePurpose == RangingPurpose::Entry) {
        Later([this, &stStation] { AnswerCode(stStation, RangingStatus::Continue); });
        Later([this, &stGroup] { SendCode(stGroup, RangingKind::Initial); });
    }
    Later([this, &stStation] { AnswerCode(stStation, RangingStatus::Success); });
    Later([this, &stStation] { SayULMAP(stStation, &m_stSignal); }, Map::Uplink);
    // The station that the modem comes from still knows its keys.
    const Station *pstFormer =
        ePurpose == RangingPurpose::Handover ? m_stAt.pstServing : m_pstFormer;
    Later([this, &stStation, ePurpose, pstFormer] {
        Say(MessageCode::RNGREQ, bUp, WellKnownCID::InitialRanging,
            RNGREQBody(ePurpose, m_aucAddress, stStation, ProfileAt(CINROf(stStation)), pstFormer),
            ePurpose == RangingPurpose::Entry ? Protection::None : Protection::Tuple);
    });
}

void Signalling::SendCode(const CodeGroup &stGroup, RangingKind eKind) {
    const bool bEarly = &stGroup == &RangingCodes::Initial || &stGroup == &RangingCodes::Handover;
    m_stSignal = {Frame(), stGroup.u32First + m_stRandom.Below(stGroup.u32Count),
                  m_stRandom.Below(RangingCodes::u32SubChannels),
                  bEarly ? m_stRandom.Below(RangingCodes::u32EarlySymbols)
                         : RangingCodes::u32LateSymbol};
    for (const auto &pfnObserver : m_apfnOnRanging) {
        pfnObserver(eKind, m_stSignal);
    }
}

// In samples: so much earlier the modem has to send.
int32_t Signalling::RoundTripTo(const Station &stStation) const {
    constexpr double fMost = 1e9;
    const double fMetres = m_stAir.Distance(stStation, m_stClock.Now());
    return static_cast<int32_t>(
        std::lround(std::min(RoundTrip(fMetres, stStation.u32Bandwidth), fMost)));
}

// The station measures timing, power and frequency; what is still wrong becomes less
// with every answer.
void Signalling::AnswerCode(const Station &stStation, RangingStatus eStatus) {
    const uint32_t u32Spread = eStatus == RangingStatus::Continue ? 8 : 1;
    const auto Error = [&](uint32_t u32Steps) {
        return static_cast<int32_t>(m_stRandom.Below(2 * u32Steps + 1)) -
               static_cast<int32_t>(u32Steps);
    };
    Corrections stCorrections{RoundTripTo(stStation) - m_iTiming + Error(4 * u32Spread),
                              Error(u32Spread), Error(30 * u32Spread)};
    m_iTiming += stCorrections.iTiming;
    const int32_t iPower = std::clamp(m_iPower + stCorrections.iPower,
                                      std::max(iLowest, m_iOpenLoopPower - iMostCorrection),
                                      std::min(iHighest, m_iOpenLoopPower + iMostCorrection));
    stCorrections.iPower = iPower - m_iPower;
    Say(MessageCode::RNGRSP, bDown, WellKnownCID::InitialRanging,
        RNGRSPBody(m_stSignal, stCorrections, eStatus));
    if (stCorrections.iPower != 0) {
        m_iPower = iPower;
        for (const auto &pfnObserver : m_apfnOnPower) {
            pfnObserver({true, stCorrections.iPower, 1, Frame(), m_iPower});
        }
    }
}

void Signalling::AdjustOpenLoop(const Station &stStation) {
    const double fPathLoss = m_stAir.LossTo(stStation, m_stClock.Now());
    const double fPower = std::clamp<double>(iWantedPower + fPathLoss - m_stAir.TransmitGain(),
                                             iLeastPower, iMostPower);
    const auto iWanted = static_cast<int32_t>(std::lround(fPower * fQuarters));
    const int32_t iPower = std::clamp(m_iPower + iWanted - m_iOpenLoopPower, iLowest, iHighest);
    const int32_t iAdjustment = iPower - m_iPower;
    m_iOpenLoopPower = iWanted;
    if (iAdjustment == 0) {
        return;
    }
    m_iPower = iPower;
    for (const auto &pfnObserver : m_apfnOnPower) {
        pfnObserver({false, iAdjustment, 0, Frame(), m_iPower});
    }
}

void Signalling::AnswerRNGREQ(RangingPurpose ePurpose, uint32_t u32Optimisation) {
    const bool bEntry = ePurpose == RangingPurpose::Entry;
    Admission stAdmission{};
    if (!bEntry) {
        MakeConnections();
        stAdmission.u32Optimisation = u32Optimisation;
    }
    stAdmission.u32BasicCID = m_u32BasicCID;
    stAdmission.u32PrimaryCID = m_u32PrimaryCID;
    Say(MessageCode::RNGRSP, bDown, WellKnownCID::InitialRanging,
        RNGRSPBody(RangingStatus::Success, m_aucAddress, &stAdmission),
        bEntry ? Protection::None : Protection::Tuple);
}

void Signalling::Readmit(RangingPurpose ePurpose, uint32_t u32Optimisation) {
    if (std::all_of(m_astConnections.begin(), m_astConnections.end(), IsManagement)) {
        Later([this, ePurpose, u32Optimisation] { AnswerRNGREQ(ePurpose, u32Optimisation); });
        return;
    }
    Later([this, ePurpose, u32Optimisation] {
        AnswerRNGREQ(ePurpose, u32Optimisation | u32RegistrationComes);
    });
    Later([this] {
        std::vector<FlowCID> astFlows;
        for (const Connection &stConnection : m_astConnections) {
            if (!IsManagement(stConnection)) {
                astFlows.push_back({stConnection.u32SFID, stConnection.u32CID});
            }
        }
        Say(MessageCode::REGRSP, bDown, m_u32PrimaryCID, CIDUpdateBody(astFlows),
            Protection::Tuple);
    });
}

void Signalling::RangePeriodically() {
    Later([this] {
        if (m_stAt.eState == LinkUp) {
            AdjustOpenLoop(*m_stAt.pstServing);
        }
        SendCode(RangingCodes::Periodic, RangingKind::Periodic);
    });
    Later([this] {
        m_bRangingWaits = false;
        if (m_stAt.pstServing != nullptr) {
            AnswerCode(*m_stAt.pstServing, RangingStatus::Success);
        }
    });
}

void Signalling::Report() {
    SayLater(MessageCode::REPREQ, bDown, m_u32BasicCID, REPREQBody());
    Later([this] {
        m_bReportWaits = false;
        if (m_stAt.eState == LinkUp) {
            Say(MessageCode::REPRSP, bUp, m_u32BasicCID,
                REPRSPBody(m_stAir.Measure(*m_stAt.pstServing, m_stClock.Now()),
                           m_stAir.Deviations(*m_stAt.pstServing, m_stClock.Now())));
        }
    });
}

void Signalling::MakeConnections() {
    m_u32BasicCID = 1 + m_stRandom.Below(u32BasicCIDs);
    m_u32PrimaryCID = m_u32BasicCID + u32BasicCIDs;
    std::vector<Connection> astFlows;
    std::swap(astFlows, m_astConnections);
    std::erase_if(astFlows, IsManagement);
    for (const uint32_t u32CID : {m_u32BasicCID, m_u32PrimaryCID}) {
        Connect(u32CID, bDown, 0, 0);
    }
    for (const Connection &stFlow : astFlows) {
        Connect(stFlow.u32CID, stFlow.bUplink, stFlow.u32SFID, stFlow.u32SchedulingType);
    }
}

void Signalling::Connect(uint32_t u32CID, bool bUplink, uint32_t u32SFID,
                         uint32_t u32SchedulingType) {
    // The lowest number that is free: connections go in any order.
    uint32_t u32VCID = 1;
    const auto IsTaken = [&](const Connection &stOne) { return stOne.u32VCID == u32VCID; };
    while (std::any_of(m_astConnections.begin(), m_astConnections.end(), IsTaken)) {
        ++u32VCID;
    }
    m_astConnections.push_back({u32VCID, u32CID, bUplink, false, u32SFID, u32SchedulingType});
    const Connection stConnection = m_astConnections.back();
    for (const auto &pfnObserver : m_apfnOnConnection) {
        pfnObserver(stConnection);
    }
}

// Keys.

void Signalling::SayPKM(bool bUplink, uint32_t u32Code, Protection eProtection, ByteView stEAP) {
    Say(bUplink ? MessageCode::PKMREQ : MessageCode::PKMRSP, bUplink, m_u32PrimaryCID,
        PKMBody(u32Code, m_u32PKMIdentifier, m_stKeys, Frame(), stEAP), eProtection);
}

void Signalling::Authenticate() {
    Later([this] {
        ++m_u32PKMIdentifier;
        m_stKeys.u64Nonce = m_stRandom.Next();
        SayPKM(bUp, PKMCode::EAPStart, Protection::None);
    });
    struct Transfer {
        bool bUplink;
        EAP::Code eCode;
        EAP::Step eStep;
    };
    constexpr Transfer astTransfers[] = {
        {bDown, EAP::Request, EAP::Identity},
        {bUp, EAP::Response, EAP::Identity},
        {bDown, EAP::Request, EAP::Challenge},
        {bUp, EAP::Response, EAP::Challenge},
    };
    for (const Transfer &stTransfer : astTransfers) {
        Later([this, stTransfer] {
            if (stTransfer.bUplink == bDown) {
                ++m_u32PKMIdentifier;
            }
            const BitWriter stEAP = EAPPacket(stTransfer.eCode, m_u32PKMIdentifier,
                                              stTransfer.eStep, m_stRandom.Next());
            SayPKM(stTransfer.bUplink, PKMCode::EAPTransfer, Protection::None, stEAP.View());
        });
    }
}

void Signalling::SayKeyExchange() {
    Later([this] {
        const BitWriter stSuccess = EAPPacket(EAP::Success, m_u32PKMIdentifier, EAP::Result, 0);
        SayPKM(bDown, PKMCode::EAPTransfer, Protection::None, stSuccess.View());
    });
    Later([this] {
        ++m_u32PKMIdentifier;
        m_stKeys.u64AKID = m_stRandom.Next();
        m_stKeys.u64BSRandom = m_stRandom.Next();
        SayPKM(bDown, PKMCode::SATEKChallenge, Protection::Attribute);
    });
    Later([this] {
        m_stKeys.u64MSRandom = m_stRandom.Next();
        SayPKM(bUp, PKMCode::SATEKRequest, Protection::Attribute);
    });
    Later([this] { SayPKM(bDown, PKMCode::SATEKResponse, Protection::Attribute); });
}

// Broadcasts, as far as the modem is there to hear them.

void Signalling::Broadcast(Timer &stTimer, ModemTime iPeriod, void (Signalling::*pfnSay)()) {
    stTimer.Start(iPeriod - m_stClock.Now() % iPeriod, [this, &stTimer, iPeriod, pfnSay] {
        if (!m_stPresence.Away(static_cast<uint64_t>(m_stClock.Now() / i64Frame))) {
            (this->*pfnSay)();
        }
        Broadcast(stTimer, iPeriod, pfnSay);
    });
}

void Signalling::SayMaps() {
    const Station &stStation = *m_stAt.pstServing;
    const bool bBoth = stStation.bCompressedMap;
    const bool bDownlink = IsSaid(Map::Downlink) || (bBoth && IsSaid(Map::Uplink));
    if (!bDownlink) {
        SayDLMAP(stStation);
    }
    if (!bBoth && !IsSaid(Map::Uplink)) {
        SayULMAP(stStation, nullptr);
    }
}

bool Signalling::IsSaid(Map eMap) const {
    if (m_au32MapFrame[static_cast<size_t>(eMap)] == Frame()) {
        return true;
    }
    const ModemTime iNext = std::max(m_iLastStep + i64Frame, m_stClock.Now());
    return !m_astSteps.empty() && m_astSteps.front().eMap == eMap &&
           iNext / i64Frame == m_stClock.Now() / i64Frame;
}

void Signalling::SayDLMAP(const Station &stStation) {
    m_au32MapFrame[static_cast<size_t>(Map::Downlink)] = Frame();
    if (stStation.bCompressedMap) {
        SayCompressedMaps(stStation, GrantsNow(stStation, nullptr));
    } else {
        Say(MessageCode::DLMAP, bDown, WellKnownCID::Broadcast,
            DLMAPBody(stStation, Frame(), ProfileAt(CINROf(stStation))));
    }
}

void Signalling::SayULMAP(const Station &stStation, const RangingSignal *pstAnswered) {
    m_au32MapFrame[static_cast<size_t>(Map::Uplink)] = Frame();
    const Grants stGrants = GrantsNow(stStation, pstAnswered);
    if (stStation.bCompressedMap) {
        SayCompressedMaps(stStation, stGrants);
    } else {
        Say(MessageCode::ULMAP, bDown, WellKnownCID::Broadcast, ULMAPBody(stStation, stGrants));
    }
}

// They have no code of their own.
void Signalling::SayCompressedMaps(const Station &stStation, const Grants &stGrants) {
    Say(MessageCode::DLMAP, bDown, WellKnownCID::Broadcast,
        CompressedMaps(stStation, Frame(), ProfileAt(CINROf(stStation)), stGrants));
}

Grants Signalling::GrantsNow(const Station &stStation, const RangingSignal *pstAnswered) const {
    Grants stGrants;
    if (pstAnswered != nullptr) {
        stGrants.astCodes.push_back(*pstAnswered);
    }
    if (&stStation != m_stAt.pstServing) {
        return stGrants; // of the target of a handover: the traffic is with the serving one
    }
    for (const RangingSignal &stSignal : m_stTraffic.LatestRequests()) {
        if (((stSignal.u32Frame + 1) & u32FrameNumberMask) == Frame()) {
            stGrants.astCodes.push_back(stSignal);
        }
    }
    const uint32_t u32Granted = m_stTraffic.Granted(Frame());
    if (u32Granted != 0) {
        stGrants.stData = {m_u32BasicCID, ProfileAt(CINROf(stStation) - fUplinkLoss),
                           u32Granted / u32SlotBytes};
    }
    return stGrants;
}

double Signalling::CINROf(const Station &stStation) const {
    return m_stAir.Measure(stStation, m_stClock.Now()).fCINR;
}

void Signalling::SayDescriptors() {
    const Station &stStation = *m_stAt.pstServing;
    Say(MessageCode::DCD, bDown, WellKnownCID::FragmentableBroadcast,
        DCDBody(stStation, m_stAir.Thresholds()));
    Say(MessageCode::UCD, bDown, WellKnownCID::FragmentableBroadcast, UCDBody(stStation));
}

void Signalling::SayNeighbours() {
    const Station &stServing = *m_stAt.pstServing;
    std::vector<const Station *> apstNeighbours;
    for (const Station &stStation : m_stAir.Stations()) {
        if (&stStation != &stServing && stStation.bOnAir &&
            stStation.NAPID() == stServing.NAPID()) {
            apstNeighbours.push_back(&stStation);
        }
    }
    Say(MessageCode::NBRADV, bDown, WellKnownCID::Broadcast, NBRADVBody(stServing, apstNeighbours));
}

void Signalling::SayPaging() {
    Say(MessageCode::PAGADV, bDown, WellKnownCID::Broadcast,
        PAGADVBody(*m_stAt.pstServing, nullptr));
    FollowBroadcasts();
}

// What others say.

void Signalling::Leaving(uint32_t u32Reason, uint32_t u32DREGAction) {
    DropSteps();
    const bool bActive = m_stAt.IsAnyOf({LinkUp, EnteringIdle, LeavingIdle});
    if (m_stAt.eState == Entering) {
        FailStage(u32Reason);
    } else if (u32Reason == LinkReason::DREGReceived) {
        DREGReceived(u32DREGAction);
    } else if (u32Reason == LinkReason::ResetReceived) {
        SayLater(MessageCode::RESCMD, bDown, m_u32BasicCID, {}, Protection::Tuple);
    } else if (bActive && (u32Reason == LinkReason::LinkDownHostInitiated ||
                           u32Reason == LinkReason::ShutdownReceivedCommand)) {
        SayLater(MessageCode::DREGREQ, bUp, m_u32BasicCID, DREGREQBody(Deregister, PagingCycle()),
                 Protection::Tuple);
        SayLater(MessageCode::DREGCMD, bDown, m_u32BasicCID,
                 DREGCMDBody(*m_stAt.pstServing, u32DREGTerminate, PagingCycle()),
                 Protection::Tuple);
    }
}

void Signalling::DREGReceived(uint32_t u32Action) {
    m_bToldToIdle = u32Action == u32DREGGoIdle;
    SayLater(MessageCode::DREGCMD, bDown, m_u32BasicCID,
             DREGCMDBody(*m_stAt.pstServing, u32Action, PagingCycle()), Protection::Tuple);
}

void Signalling::Paged() {
    SayLater(MessageCode::PAGADV, bDown, WellKnownCID::Broadcast,
             PAGADVBody(*m_stAt.pstServing, &m_aucAddress));
}

bool Signalling::LocationUpdated() {
    const Station &stStation = *m_stAt.pstServing;
    Range(stStation, RangingPurpose::LocationUpdate);
    if (!m_stAir.StrongEnoughToEnter(stStation, m_stClock.Now())) {
        return false;
    }
    SayLocationUpdated(stStation);
    m_pstFormer = &stStation;
    return true;
}

void Signalling::GoesFromIdle() {
    const Station &stStation = *m_stAt.pstServing;
    Range(stStation, RangingPurpose::PowerDown);
    if (m_stAir.StrongEnoughToEnter(stStation, m_stClock.Now())) {
        SayLocationUpdated(stStation);
    }
}

void Signalling::SayLocationUpdated(const Station &stStation) {
    SayLater(MessageCode::RNGRSP, bDown, WellKnownCID::InitialRanging,
             RNGRSPBody(m_aucAddress, stStation, PagingCycle()), Protection::Tuple);
}

void Signalling::ScanAsked(ModemTime iTime, const Station *pstNeighbour) {
    const ScanTimes stTimes = ScanTimesOf(iTime);
    SayLater(MessageCode::SCNREQ, bUp, m_u32BasicCID, SCNREQBody(stTimes, pstNeighbour),
             Protection::Tuple);
    SayLater(MessageCode::SCNRSP, bDown, m_u32BasicCID, SCNRSPBody(stTimes, pstNeighbour),
             Protection::Tuple);
}

void Signalling::ScanReported(const std::vector<const Station *> &apstSeen) {
    Later([this, apstSeen] {
        if (m_stAt.eState != LinkUp) {
            return;
        }
        const Station &stServing = *m_stAt.pstServing;
        std::vector<Seen> astSeen;
        for (const Station *pstStation : apstSeen) {
            if (pstStation != &stServing && pstStation->NAPID() == stServing.NAPID()) {
                astSeen.push_back({pstStation, m_stAir.Measure(*pstStation, m_stClock.Now())});
            }
        }
        Say(MessageCode::SCNREP, bUp, m_u32PrimaryCID,
            SCNREPBody(astSeen, m_stAir.Measure(stServing, m_stClock.Now())), Protection::Tuple);
    });
}

void Signalling::HandoverBegins(const Station &stTarget, bool bOrdered) {
    const Station &stServing = *m_stAt.pstServing;
    m_pstTarget = &stTarget;
    if (bOrdered) {
        SayLater(MessageCode::BSHOREQ, bDown, m_u32BasicCID, BSHOREQBody(stServing, stTarget),
                 Protection::Tuple);
    } else {
        SayLater(MessageCode::MSHOREQ, bUp, m_u32BasicCID,
                 MSHOREQBody(stTarget, m_stAir.Measure(stTarget, m_stClock.Now()),
                             m_stAir.Measure(stServing, m_stClock.Now())),
                 Protection::Tuple);
        SayLater(MessageCode::BSHORSP, bDown, m_u32BasicCID, BSHORSPBody(stServing, stTarget),
                 Protection::Tuple);
    }
    SayLater(MessageCode::HOIND, bUp, m_u32BasicCID, HOINDBody(ServingReleased, stTarget),
             Protection::Tuple);
    Range(stTarget, RangingPurpose::Handover);
}

void Signalling::HandoverRangingRepeated() {
    if (m_pstTarget != nullptr) {
        Later([this] { SendCode(RangingCodes::Handover, RangingKind::Initial); });
    }
}

void Signalling::HandoverEnds(bool bSuccess) {
    if (m_pstTarget == nullptr) {
        return;
    }
    if (bSuccess) {
        Readmit(RangingPurpose::Handover, Optimisation(*m_stAt.pstServing, *m_pstTarget));
    } else {
        DropSteps();
        SayLater(MessageCode::HOIND, bUp, m_u32BasicCID, HOINDBody(Cancelled, *m_pstTarget),
                 Protection::Tuple);
    }
    m_pstTarget = nullptr;
}

void Signalling::SleepAgreed(ByteView stClass) {
    const std::vector<uint8_t> aucClass(stClass.pucData, stClass.pucData + stClass.u32Length);
    const auto SayClass = [&](uint32_t u32Code, bool bUplink,
                              BitWriter (*pfnBody)(ByteView, uint32_t)) {
        Later([this, aucClass, u32Code, bUplink, pfnBody] {
            const ByteView stBytes{aucClass.data(), static_cast<uint32_t>(aucClass.size())};
            Say(u32Code, bUplink, m_u32BasicCID, pfnBody(stBytes, Frame()), Protection::Tuple);
        });
    };
    SayClass(MessageCode::SLPREQ, bUp, SLPREQBody);
    SayClass(MessageCode::SLPRSP, bDown, SLPRSPBody);
}

void Signalling::TrafficIndicated(uint32_t u32PSCID) {
    SayLater(MessageCode::TRFIND, bDown, WellKnownCID::Broadcast, TRFINDBody(u32PSCID));
}

Transaction Signalling::StationTransaction() {
    const uint32_t u32Place = m_u32StationTransactions++ % u32TransactionsOfEach;
    return {true, u32TransactionsOfEach + u32Place};
}

Transaction Signalling::ModemTransaction(uint32_t u32Wanted) {
    return {false, u32Wanted % u32TransactionsOfEach};
}

void Signalling::FlowAsked(FlowDialogue eDialogue, const Transaction &stTransaction,
                           const FlowParameters &stFlow) {
    const bool bAsks = stTransaction.bByStation ? bDown : bUp;
    const DialogueCodes &stCodes = CodesOf(eDialogue);
    FlowParameters stAsked = stFlow;
    if (eDialogue == FlowDialogue::Add && !stTransaction.bByStation) {
        stAsked.u32SFID = stAsked.u32CID = 0; // the station hands them out
    }
    SayLater(stCodes.u32Request, bAsks, m_u32PrimaryCID,
             eDialogue == FlowDialogue::Delete ? DSDREQBody(stTransaction.u32ID, stFlow.u32SFID)
                                               : DSxREQBody(stTransaction.u32ID, stAsked),
             Protection::Tuple);
    if (eDialogue != FlowDialogue::Delete && !stTransaction.bByStation) {
        SayLater(MessageCode::DSXRVD, bDown, m_u32PrimaryCID, DSXRVDBody(stTransaction.u32ID, 0));
    }
}

void Signalling::FlowAnswered(FlowDialogue eDialogue, const Transaction &stTransaction,
                              const FlowParameters &stFlow, uint32_t u32Confirmation) {
    const bool bAsks = stTransaction.bByStation ? bDown : bUp;
    const DialogueCodes &stCodes = CodesOf(eDialogue);
    const bool bDelete = eDialogue == FlowDialogue::Delete;
    SayLater(stCodes.u32Response, !bAsks, m_u32PrimaryCID,
             bDelete ? DSDRSPBody(stTransaction.u32ID, u32Confirmation, stFlow.u32SFID)
                     : DSxRSPBody(stTransaction.u32ID, u32Confirmation, stFlow),
             Protection::Tuple);
    if (!bDelete) {
        FlowParameters stKnown = stFlow;
        stKnown.astRules.clear();
        SayLater(stCodes.u32Acknowledgement, bAsks, m_u32PrimaryCID,
                 DSxRSPBody(stTransaction.u32ID, u32Confirmation, stKnown), Protection::Tuple);
    }
    if (u32Confirmation != 0 || eDialogue == FlowDialogue::Change) {
        return;
    }
    const uint32_t u32Type = Get(stFlow.stSet, SFParamSet::u8SchedulingType);
    const Connection stConnection{0, stFlow.u32CID, stFlow.bUplink, false, stFlow.u32SFID, u32Type};
    OnceSaid([this, bDelete, stConnection] {
        if (bDelete) {
            std::erase_if(m_astConnections, [&](const Connection &stOne) {
                return stOne.u32SFID == stConnection.u32SFID;
            });
        } else if (m_stAt.Registered()) {
            Connect(stConnection.u32CID, stConnection.bUplink, stConnection.u32SFID,
                    stConnection.u32SchedulingType);
        }
    });
}

void Signalling::FlowThere(const FlowParameters &stFlow) {
    Connect(stFlow.u32CID, stFlow.bUplink, stFlow.u32SFID,
            Get(stFlow.stSet, SFParamSet::u8SchedulingType));
}

void Signalling::FlowMoved(uint32_t u32SFID, uint32_t u32CID) {
    for (Connection &stConnection : m_astConnections) {
        if (stConnection.u32SFID == u32SFID) {
            stConnection.u32CID = u32CID;
        }
    }
}
