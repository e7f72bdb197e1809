#include "air/Traffic.h"

#include <algorithm>

#include "ServiceFlowRecord.h"

namespace {

// A queue holds so many bytes; packets that do not fit are lost.
constexpr uint32_t u32MostQueued = 65535;
// From a code that asks for bandwidth, over the request itself, to the grant; and from a poll.
constexpr uint64_t u64FramesToGrant = 2;
constexpr uint64_t u64FramesFromPoll = 1;
constexpr uint64_t u64FramesPerInterval = iGrantInterval / i64Frame;
constexpr uint64_t u64Millionths = 1000000;
constexpr uint64_t u64BitsPerByte = 8;
// No channel is that fast.
constexpr int64_t iMostCapacity = 1000000000000;

uint64_t FrameAt(ModemTime iTime) { return static_cast<uint64_t>(iTime / i64Frame); }

uint32_t WholeSlots(uint32_t u32Bytes) {
    return (u32Bytes + u32SlotBytes - 1) / u32SlotBytes * u32SlotBytes;
}

// Whether the flow's grants come at their times and are of their sizes, whatever waits.
bool IsFixed(const FlowQuality &stFlow) {
    return stFlow.bUplink &&
           (stFlow.u32SchedulingType == SFParamSet::UGS || stFlow.stGrant.u32Bytes != 0);
}

bool GrantsNow(uint64_t u64Frame) { return u64Frame % u64FramesPerInterval == 0; }

} // namespace

void Traffic::Bucket::Fill(uint64_t u64Frames, uint32_t u32Packet) {
    // Bits a second, for a frame, in millionths of bytes.
    const uint64_t u64Frame = u64Rate * (i64Frame / u64BitsPerByte);
    const uint64_t u64Most = u64Frame + Worth(u32Packet);
    u64Held = u64Frame == 0 || u64Frames <= u64Most / u64Frame
                  ? std::min(u64Most, u64Held + u64Frame * u64Frames)
                  : u64Most;
}

Traffic::Traffic(const Section &stRoot, Chance &stChance, Scheduler &stScheduler,
                 const Presence &stPresence)
    : m_stScheduler(stScheduler), m_stPresence(stPresence), m_stRandom(stChance.For("traffic")),
      m_stFrame(stScheduler) {
    const Section stTraffic = stRoot.Table("traffic");
    m_afRates = {stTraffic.Number("downlink-rate", 0, 1e9, 24000),
                 stTraffic.Number("uplink-rate", 0, 1e9, 6000)};
    m_u32PacketSize = static_cast<uint32_t>(stTraffic.Number("packet-size", 1, 65535, 600));
    m_bKeepsAwake = stTraffic.Flag("keeps-awake", false);
    const Section stFlows = stRoot.Table("service-flows");
    const auto ReadCapacity = [&](const char *pcKey, int64_t iDefault) {
        return static_cast<uint64_t>(
            std::min(stFlows.Integer(pcKey, 0, INT64_MAX, iDefault), iMostCapacity));
    };
    m_astChannels[0].stCapacity.u64Rate = ReadCapacity("downlink-capacity", 20000000);
    m_astChannels[1].stCapacity.u64Rate = ReadCapacity("uplink-capacity", 5000000);
    m_astChannels[1].stBurst.bUplink = true;
    for (const Section &stSection : stRoot.Tables("generator")) {
        const std::string strPurpose = "generator " + std::to_string(m_astGenerated.size());
        m_astGenerated.push_back({PacketSource(stSection, stChance.For(strPurpose)), 0});
    }
}

// Which packets come.

void Traffic::SetFlowing(bool bFlowing) {
    if (m_bFlowing == bFlowing) {
        return;
    }
    m_stTotals.iTimeFlowing = Totals().iTimeFlowing;
    m_iFlowingSince = m_stScheduler.Now();
    m_bFlowing = bFlowing;
    if (!bFlowing) {
        for (Flow &stFlow : m_astFlows) {
            DropQueue(stFlow);
        }
    }
    FollowSources();
}

TrafficTotals Traffic::Totals() const {
    TrafficTotals stTotals = m_stTotals;
    stTotals.iTimeFlowing += m_bFlowing ? m_stScheduler.Now() - m_iFlowingSince : 0;
    return stTotals;
}

void Traffic::Reset() {
    m_bFlowing = false;
    m_astFlows.clear();
    FollowSources();
    for (Channel &stChannel : m_astChannels) {
        stChannel.apstFlows.clear();
        stChannel.u32LargestPacket = 0;
        stChannel.u64Turn = 0;
    }
    m_u32Granted = 0;
    m_astRequests.clear();
    m_stTotals = {};
}

Traffic::Flow *Traffic::FlowOf(uint32_t u32SFID) {
    const auto Found = std::find_if(m_astFlows.begin(), m_astFlows.end(), [&](const Flow &stFlow) {
        return stFlow.stQuality.u32SFID == u32SFID;
    });
    return Found != m_astFlows.end() ? &*Found : nullptr;
}

FlowReport Traffic::ReportOf(uint32_t u32SFID) const {
    for (const Flow &stFlow : m_astFlows) {
        if (stFlow.stQuality.u32SFID == u32SFID) {
            return stFlow.stReport;
        }
    }
    return {};
}

void Traffic::Follow(const std::vector<FlowQuality> &astFlows) {
    FillBuckets();
    std::deque<Flow> astNow;
    for (const FlowQuality &stQuality : astFlows) {
        Flow *pstKnown = FlowOf(stQuality.u32SFID);
        astNow.push_back(pstKnown != nullptr ? std::move(*pstKnown) : Flow{});
        if (pstKnown != nullptr) {
            pstKnown->astQueue.clear();
            pstKnown->stQuality.u32SFID = 0;
        }
        Flow &stFlow = astNow.back();
        stFlow.stQuality = stQuality;
        stFlow.stMost.u64Rate = stQuality.u64MostRate;
        stFlow.stReserved.u64Rate = stQuality.u64ReservedRate;
    }
    for (Flow &stFlow : m_astFlows) {
        DropQueue(stFlow);
    }
    m_astFlows = std::move(astNow);
    for (Channel &stChannel : m_astChannels) {
        stChannel.apstFlows.clear();
    }
    for (Flow &stFlow : m_astFlows) {
        ChannelOf(stFlow.stQuality.bUplink).apstFlows.push_back(&stFlow);
    }
    for (Channel &stChannel : m_astChannels) {
        std::stable_sort(stChannel.apstFlows.begin(), stChannel.apstFlows.end(),
                         [](const Flow *pstOne, const Flow *pstOther) {
                             return pstOne->stQuality.u32Priority > pstOther->stQuality.u32Priority;
                         });
    }
    FollowSources();
}

// The rule of the highest priority decides, before flows without rules, which take what is left.
uint32_t Traffic::Classify(const PacketSource &stSource) const {
    uint32_t u32SFID = 0;
    int64_t iBest = -2;
    for (const Flow &stFlow : m_astFlows) {
        const FlowQuality &stQuality = stFlow.stQuality;
        if (stQuality.bUplink != stSource.Uplink()) {
            continue;
        }
        if (stQuality.u32SFID == stSource.SFID()) {
            return stQuality.u32SFID;
        }
        int64_t iPriority = stQuality.astRules.empty() ? -1 : -2;
        for (const MatchRule &stRule : stQuality.astRules) {
            if (stRule.Fits(stSource.Header())) {
                iPriority = std::max(iPriority, int64_t{stRule.u32Priority});
            }
        }
        if (iPriority > iBest) {
            iBest = iPriority;
            u32SFID = stQuality.u32SFID;
        }
    }
    return stSource.SFID() == 0 ? u32SFID : 0;
}

void Traffic::FollowSources() {
    const ModemTime iNow = m_stScheduler.Now();
    for (Feed &stFeed : m_astGenerated) {
        const uint32_t u32SFID = m_bFlowing ? Classify(stFeed.stSource) : 0;
        if (stFeed.u32SFID == 0 && u32SFID != 0) {
            stFeed.stSource.Start(iNow);
        }
        stFeed.u32SFID = u32SFID;
    }
    for (const bool bUplink : {false, true}) {
        FollowShares(bUplink);
    }
    PlanFrame();
}

// The flows that no generator feeds have equal shares of the direction's rate.
void Traffic::FollowShares(bool bUplink) {
    std::vector<uint32_t> au32Unfed;
    for (const Flow &stFlow : m_astFlows) {
        const auto Feeds = [&](const Feed &stFeed) {
            return stFeed.u32SFID == stFlow.stQuality.u32SFID;
        };
        if (m_bFlowing && stFlow.stQuality.bUplink == bUplink &&
            std::none_of(m_astGenerated.begin(), m_astGenerated.end(), Feeds)) {
            au32Unfed.push_back(stFlow.stQuality.u32SFID);
        }
    }
    std::vector<Feed> &astShares = ChannelOf(bUplink).astShares;
    if (std::equal(
            astShares.begin(), astShares.end(), au32Unfed.begin(), au32Unfed.end(),
            [](const Feed &stFeed, uint32_t u32SFID) { return stFeed.u32SFID == u32SFID; })) {
        return;
    }
    astShares.clear();
    for (const uint32_t u32SFID : au32Unfed) {
        const double fRate = m_afRates[bUplink ? 1 : 0] / static_cast<double>(au32Unfed.size());
        astShares.push_back({PacketSource(bUplink, fRate, m_u32PacketSize), u32SFID});
        astShares.back().stSource.Start(m_stScheduler.Now());
    }
}

void Traffic::TakePackets(Feed &stFeed) {
    Flow *pstFlow = FlowOf(stFeed.u32SFID);
    if (pstFlow == nullptr) {
        return;
    }
    Channel &stChannel = ChannelOf(pstFlow->stQuality.bUplink);
    const uint64_t u64Lost =
        stFeed.stSource.Take(m_stScheduler.Now(), [&](ModemTime iCame, uint32_t u32Size) {
            if (pstFlow->stReport.u32Queued + u32Size > u32MostQueued) {
                return false;
            }
            pstFlow->astQueue.push_back({iCame, u32Size, u32Size});
            pstFlow->stReport.u32Queued += u32Size;
            pstFlow->u32LargestPacket = std::max(pstFlow->u32LargestPacket, u32Size);
            stChannel.u32LargestPacket = std::max(stChannel.u32LargestPacket, u32Size);
            return true;
        });
    pstFlow->stReport.u64Lost += u64Lost;
    TotalsOf(pstFlow->stQuality.bUplink).u64Lost += u64Lost;
}

void Traffic::DropQueue(Flow &stFlow) {
    stFlow.stReport.u64Lost += stFlow.astQueue.size();
    TotalsOf(stFlow.stQuality.bUplink).u64Lost += stFlow.astQueue.size();
    stFlow.astQueue.clear();
    stFlow.stReport.u32Queued = 0;
    stFlow.u32Asked = 0;
    stFlow.bRequested = false;
}

// The station's scheduler.

void Traffic::PlanFrame() {
    m_stFrame.Stop();
    if (!m_bFlowing || m_astFlows.empty()) {
        return;
    }
    const ModemTime iNow = m_stScheduler.Now();
    const uint64_t u64Next = FrameAt(iNow) + 1;
    uint64_t u64Frame = UINT64_MAX;
    for (const Flow &stFlow : m_astFlows) {
        if (!stFlow.astQueue.empty()) {
            u64Frame = u64Next;
        } else if (IsFixed(stFlow.stQuality)) {
            u64Frame = std::min(u64Frame, (u64Next + u64FramesPerInterval - 1) /
                                              u64FramesPerInterval * u64FramesPerInterval);
        }
    }
    const auto Consider = [&](const Feed &stFeed) {
        const std::optional<ModemTime> iComes =
            stFeed.u32SFID != 0 ? stFeed.stSource.Next() : std::nullopt;
        if (iComes) {
            u64Frame = std::min(u64Frame, std::max(u64Next, FrameAt(*iComes + i64Frame - 1)));
        }
    };
    ForEachFeed(Consider);
    if (u64Frame != UINT64_MAX) {
        m_stFrame.StartFirst(static_cast<ModemTime>(u64Frame) * i64Frame - iNow,
                             [this] { RunFrame(); });
    }
}

void Traffic::FillBuckets() {
    const uint64_t u64Frame = FrameAt(m_stScheduler.Now());
    const uint64_t u64Passed = u64Frame - m_u64FilledFrame;
    m_u64FilledFrame = u64Frame;
    for (Flow &stFlow : m_astFlows) {
        stFlow.stMost.Fill(u64Passed, stFlow.u32LargestPacket);
        stFlow.stReserved.Fill(u64Passed, stFlow.u32LargestPacket);
    }
    for (Channel &stChannel : m_astChannels) {
        stChannel.stCapacity.Fill(u64Passed, stChannel.u32LargestPacket);
    }
}

void Traffic::RunFrame() {
    ForEachFeed([this](Feed &stFeed) { TakePackets(stFeed); });
    FillBuckets();
    const uint64_t u64Frame = FrameAt(m_stScheduler.Now());
    if (!m_stPresence.Away(u64Frame)) {
        m_u32GrantFrame = static_cast<uint32_t>(u64Frame) & u32FrameNumberMask;
        m_u32Granted = 0;
        for (const bool bUplink : {false, true}) {
            Serve(ChannelOf(bUplink), u64Frame);
        }
    }
    PlanFrame();
}

void Traffic::Serve(Channel &stChannel, uint64_t u64Frame) {
    for (Flow *pstFlow : stChannel.apstFlows) {
        if (!pstFlow->stQuality.bUplink) {
            break;
        }
        if (!IsFixed(pstFlow->stQuality)) {
            AskForBandwidth(*pstFlow, u64Frame);
        } else if (GrantsNow(u64Frame)) {
            GiveFixedGrant(stChannel, *pstFlow);
        }
    }
    ServeReserved(stChannel, u64Frame) && ServeRest(stChannel, u64Frame);
    CloseGrants(stChannel, u64Frame);
    Tell(stChannel);
}

void Traffic::GiveFixedGrant(Channel &stChannel, Flow &stFlow) {
    FixedGrant stGrant = stFlow.stQuality.stGrant;
    if (stGrant.u32Bytes == 0) {
        // The most rate's bytes of an interval, and one header.
        stFlow.u64GrantCarry += stFlow.stQuality.u64MostRate * (iGrantInterval / u64BitsPerByte);
        const uint64_t u64Payload = stFlow.u64GrantCarry / u64Millionths;
        stFlow.u64GrantCarry %= u64Millionths;
        stGrant.u32Payload = static_cast<uint32_t>(std::min<uint64_t>(u64Payload, u32LargestGrant));
        stGrant.u32Bytes = WholeSlots(stGrant.u32Payload + u32PDUOverhead);
    }
    ++stFlow.stReport.u64Grants;
    m_u32Granted += stGrant.u32Bytes;
    stChannel.stCapacity.Spend(stGrant.u32Payload);
    Carry(stFlow, stGrant.u32Payload, stGrant.u32Bytes);
    for (UserPDU &stPDU : stFlow.astPDUs) {
        stPDU.u32Allocation = stGrant.u32Bytes;
    }
}

// What waits is asked for once, unless the station asks or knows by itself.
void Traffic::AskForBandwidth(Flow &stFlow, uint64_t u64Frame) {
    if (stFlow.astQueue.empty() || stFlow.u32Asked != 0) {
        return;
    }
    const uint32_t u32Type = stFlow.stQuality.u32SchedulingType;
    const bool bByItself = u32Type == SFParamSet::ERTPS;
    const bool bPolled = u32Type == SFParamSet::RTPS;
    if ((bByItself || bPolled) && !GrantsNow(u64Frame)) {
        return;
    }
    stFlow.u32Asked = stFlow.stReport.u32Queued;
    stFlow.u64GrantFrame = u64Frame;
    if (bByItself) {
        return;
    }
    stFlow.bRequested = true;
    ++m_stTotals.u64Requests;
    stFlow.u64GrantFrame += bPolled ? u64FramesFromPoll : u64FramesToGrant;
    if (!bPolled) {
        const CodeGroup &stGroup = RangingCodes::BandwidthRequest;
        const uint32_t u32Code = stGroup.u32First + m_stRandom.Below(stGroup.u32Count);
        const uint32_t u32Frame = static_cast<uint32_t>(u64Frame) & u32FrameNumberMask;
        const RangingSignal stSignal{u32Frame, u32Code,
                                     m_stRandom.Below(RangingCodes::u32SubChannels),
                                     RangingCodes::u32LateSymbol};
        std::erase_if(m_astRequests, [u32Frame](const RangingSignal &stOne) {
            return ((u32Frame - stOne.u32Frame) & u32FrameNumberMask) > 1;
        });
        m_astRequests.push_back(stSignal);
        for (const auto &pfnObserver : m_apfnOnRequest) {
            pfnObserver(stSignal);
        }
    }
}

bool Traffic::MayGo(const Flow &stFlow, uint64_t u64Frame) {
    const FlowQuality &stQuality = stFlow.stQuality;
    if (stFlow.astQueue.empty() ||
        (stQuality.u64MostRate != 0 && !stFlow.stMost.Holds(stFlow.astQueue.front().u32Left))) {
        return false;
    }
    return !stQuality.bUplink || (stFlow.u32Asked != 0 && u64Frame >= stFlow.u64GrantFrame);
}

// First what is reserved. False when there is no room for the next packet.
bool Traffic::ServeReserved(Channel &stChannel, uint64_t u64Frame) {
    for (Flow *pstFlow : stChannel.apstFlows) {
        while (MayGo(*pstFlow, u64Frame) &&
               pstFlow->stReserved.Holds(pstFlow->astQueue.front().u32Left)) {
            if (!SendHead(stChannel, *pstFlow)) {
                return false;
            }
        }
    }
    return true;
}

// Then the rest: higher priorities first, flows of the same one in turns.
bool Traffic::ServeRest(Channel &stChannel, uint64_t u64Frame) {
    const uint64_t u64Turn = stChannel.u64Turn++;
    const auto Last = stChannel.apstFlows.end();
    for (auto First = stChannel.apstFlows.begin(); First != Last;) {
        const uint32_t u32Priority = (*First)->stQuality.u32Priority;
        const auto Next = std::find_if(First, Last, [&](const Flow *pstFlow) {
            return pstFlow->stQuality.u32Priority != u32Priority;
        });
        const auto u64Flows = static_cast<uint64_t>(Next - First);
        for (uint64_t u64Idle = 0, i = u64Turn; u64Idle < u64Flows; ++i) {
            Flow &stFlow = *First[static_cast<std::ptrdiff_t>(i % u64Flows)];
            if (!MayGo(stFlow, u64Frame)) {
                ++u64Idle;
            } else if (SendHead(stChannel, stFlow)) {
                u64Idle = 0;
            } else {
                return false;
            }
        }
        First = Next;
    }
    return true;
}

bool Traffic::SendHead(Channel &stChannel, Flow &stFlow) {
    const uint32_t u32Bytes = stFlow.astQueue.front().u32Left;
    if (!stChannel.stCapacity.Holds(u32Bytes)) {
        return false;
    }
    stChannel.stCapacity.Spend(u32Bytes);
    stFlow.stMost.Spend(u32Bytes);
    stFlow.stReserved.Spend(u32Bytes);
    stFlow.u32Asked -= std::min(stFlow.u32Asked, u32Bytes);
    Carry(stFlow, u32Bytes, UINT32_MAX);
    return true;
}

// Puts packets, or parts of them, into PDUs.
void Traffic::Carry(Flow &stFlow, uint32_t u32Payload, uint32_t u32Space) {
    const FlowQuality &stQuality = stFlow.stQuality;
    FlowReport &stReport = stFlow.stReport;
    while (!stFlow.astQueue.empty() && u32Payload != 0 && u32Space > u32PDUOverhead) {
        Packet &stPacket = stFlow.astQueue.front();
        const uint32_t u32Bytes = std::min({stPacket.u32Left, u32Payload, u32Space - u32PDUOverhead,
                                            u32LongestPDU - u32PDUOverhead});
        u32Payload -= u32Bytes;
        u32Space -= u32Bytes + u32PDUOverhead;
        stPacket.u32Left -= u32Bytes;
        stReport.u32Queued -= u32Bytes;
        stReport.u64Bytes += u32Bytes;
        TotalsOf(stQuality.bUplink).u64Bytes += u32Bytes;
        if (stPacket.u32Left == 0) {
            PacketGone(stFlow);
        }
        stFlow.astPDUs.push_back({stQuality.u32SFID, stQuality.u32CID, stQuality.u32SchedulingType,
                                  u32Bytes + u32PDUOverhead, stReport.u32Queued, 0, false, false});
    }
}

void Traffic::PacketGone(Flow &stFlow) {
    FlowReport &stReport = stFlow.stReport;
    const ModemTime iTook = m_stScheduler.Now() - stFlow.astQueue.front().iCame;
    stReport.iShortest = stReport.u64Packets == 0 ? iTook : std::min(stReport.iShortest, iTook);
    stReport.iLongest = std::max(stReport.iLongest, iTook);
    const ModemTime iMost = stFlow.stQuality.iLatency;
    stReport.u64Late += iMost != 0 && iTook > iMost ? 1 : 0;
    ++stReport.u64Packets;
    ++TotalsOf(stFlow.stQuality.bUplink).u64Packets;
    stFlow.astQueue.pop_front();
}

// A grant that was asked for is as large as what went out in it, in whole slots; what waits behind
// is asked for along with it.
void Traffic::CloseGrants(Channel &stChannel, uint64_t u64Frame) {
    std::vector<UserPDU> &astBurst = stChannel.stBurst.astPDUs;
    astBurst.clear();
    for (Flow *pstFlow : stChannel.apstFlows) {
        std::vector<UserPDU> &astPDUs = pstFlow->astPDUs;
        if (astPDUs.empty()) {
            continue;
        }
        const FlowQuality &stQuality = pstFlow->stQuality;
        if (stQuality.bUplink && !IsFixed(stQuality)) {
            uint32_t u32Bytes = 0;
            for (const UserPDU &stPDU : astPDUs) {
                u32Bytes += stPDU.u32Length;
            }
            for (UserPDU &stPDU : astPDUs) {
                stPDU.u32Allocation = WholeSlots(u32Bytes);
            }
            m_u32Granted += WholeSlots(u32Bytes);
            ++pstFlow->stReport.u64Grants;
            astPDUs.front().bRequested = pstFlow->bRequested;
            pstFlow->bRequested = false;
            pstFlow->u32Asked = pstFlow->stReport.u32Queued;
            pstFlow->u64GrantFrame = u64Frame + 1;
        }
        astPDUs.back().bEndsGrant = true;
        astBurst.insert(astBurst.end(), astPDUs.begin(), astPDUs.end());
        astPDUs.clear();
    }
}

void Traffic::Tell(Channel &stChannel) {
    UserBurst &stBurst = stChannel.stBurst;
    if (stBurst.astPDUs.empty()) {
        return;
    }
    stBurst.u32Frame = static_cast<uint32_t>(FrameAt(m_stScheduler.Now())) & u32FrameNumberMask;
    ++TotalsOf(stBurst.bUplink).u64Bursts;
    TotalsOf(stBurst.bUplink).u64PDUs += stBurst.astPDUs.size();
    for (const auto &pfnObserver : m_apfnOnBurst) {
        pfnObserver(stBurst);
    }
}
