// User traffic: packets come from sources, take the service flow that the rules name, wait in its
// queue, and go over the air in the bursts of frames as the station's scheduler has it. Whoever
// counts packets hears of the bursts: there is no other account of them.
#ifndef TRAFFIC_H
#define TRAFFIC_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "air/Classifier.h"
#include "air/ManagementMessages.h"
#include "air/PacketSource.h"
#include "air/Presence.h"
#include "scenario/Scenario.h"
#include "time/ModemTime.h"
#include "time/Random.h"
#include "time/Scheduler.h"

// Of an uplink burst, 16-QAM 1/2.
inline constexpr uint32_t u32SlotBytes = 12;
// Header and checksum of a MAC PDU, and the longest one.
inline constexpr uint32_t u32PDUOverhead = 10;
inline constexpr uint32_t u32LongestPDU = 2047;
// Between two grants, or polls, that a station gives without being asked.
inline constexpr ModemTime iGrantInterval = 20 * i64Millisecond;
// A grant is counted in 16 bits: whole slots.
inline constexpr uint32_t u32LargestGrant = UINT16_MAX / u32SlotBytes * u32SlotBytes;

// The grant that a host has asked for: bytes of packets in it, and all its bytes. 0: none.
struct FixedGrant {
    uint32_t u32Payload = 0;
    uint32_t u32Bytes = 0;
};

// A service flow that carries packets.
struct FlowQuality {
    uint32_t u32SFID;
    uint32_t u32CID;
    bool bUplink;
    uint32_t u32SchedulingType; // of SFParamSet
    uint64_t u64MostRate;       // bits a second, 0: no limit
    uint64_t u64ReservedRate;
    ModemTime iLatency; // at most, 0: whatever it is
    uint32_t u32Priority;
    FixedGrant stGrant;
    std::vector<MatchRule> astRules;
};

// One PDU of a burst.
struct UserPDU {
    uint32_t u32SFID;
    uint32_t u32CID;
    uint32_t u32SchedulingType;
    uint32_t u32Length;     // with header and checksum
    uint32_t u32QueueDepth; // bytes of packets that wait behind it
    uint32_t u32Allocation; // uplink: bytes of the grant that it goes out in
    bool bRequested;        // the first one in a grant that a bandwidth request has brought
    bool bEndsGrant;        // the last one in its grant
};
// What goes over the air in one frame, in one direction.
struct UserBurst {
    uint32_t u32Frame;
    bool bUplink;
    std::vector<UserPDU> astPDUs;
};

// Since the modem was started.
struct TrafficTotals {
    struct Direction {
        uint64_t u64Bytes = 0; // of packets
        uint64_t u64Packets = 0;
        uint64_t u64PDUs = 0;
        uint64_t u64Bursts = 0;
        uint64_t u64Lost = 0; // packets that found a full queue, or lost their flow or the link
    };
    Direction stDownlink;
    Direction stUplink;
    uint64_t u64Requests = 0; // for bandwidth, by code or when polled
    ModemTime iTimeFlowing = 0;
};

// What has become of a flow's packets.
struct FlowReport {
    uint64_t u64Packets = 0;
    uint64_t u64Bytes = 0;
    uint64_t u64Grants = 0;
    uint64_t u64Lost = 0;
    uint64_t u64Late = 0;    // that took longer than the flow's latency
    uint32_t u32Queued = 0;  // bytes
    ModemTime iShortest = 0; // on the way
    ModemTime iLongest = 0;
};

class Traffic {
  public:
    // Reads [traffic], [[generator]] and the capacities of [service-flows].
    Traffic(const Section &stRoot, Chance &stChance, Scheduler &stScheduler,
            const Presence &stPresence);

    // Hears of each burst in its frame, before anything else happens in that moment.
    void OnBurst(std::function<void(const UserBurst &)> pfnObserver) {
        m_apfnOnBurst.push_back(std::move(pfnObserver));
    }
    // Of each code that asks for bandwidth.
    void OnRequest(std::function<void(const RangingSignal &)> pfnObserver) {
        m_apfnOnRequest.push_back(std::move(pfnObserver));
    }

    // Follows the link: without it nothing flows, and what waits is lost.
    void SetFlowing(bool bFlowing);
    // The flows that carry packets from now on, by SFID.
    void Follow(const std::vector<FlowQuality> &astFlows);
    // The totals at this moment.
    TrafficTotals Totals() const;
    // Of a flow that carries packets, else an empty one.
    FlowReport ReportOf(uint32_t u32SFID) const;
    // Bytes of all uplink grants of a frame, if that is the present one.
    uint32_t Granted(uint32_t u32Frame) const {
        return u32Frame == m_u32GrantFrame ? m_u32Granted : 0;
    }
    // The codes that have asked for bandwidth in the last frame with such, and in the one before
    // it. The station answers in the next frame, with room for the request itself.
    const std::vector<RangingSignal> &LatestRequests() const { return m_astRequests; }
    // Whether it holds the modem off from idle mode.
    bool KeepsAwake() const { return m_bKeepsAwake; }
    void Reset();

  private:
    struct Packet {
        ModemTime iCame;
        uint32_t u32Size;
        uint32_t u32Left; // that has not gone yet
    };
    // Millionths of bytes that may go, at a rate.
    struct Bucket {
        uint64_t u64Rate = 0; // bits a second
        uint64_t u64Held = 0;

        // What comes in so many frames; no more is held than one frame's, and a packet's worth.
        void Fill(uint64_t u64Frames, uint32_t u32Packet);
        bool Holds(uint32_t u32Bytes) const { return u64Held >= Worth(u32Bytes); }
        void Spend(uint32_t u32Bytes) { u64Held -= std::min(u64Held, Worth(u32Bytes)); }
        static uint64_t Worth(uint32_t u32Bytes) { return uint64_t{u32Bytes} * 1000000; }
    };
    struct Flow {
        FlowQuality stQuality;
        std::deque<Packet> astQueue;
        Bucket stMost;
        Bucket stReserved;
        uint64_t u64GrantCarry = 0; // of an unsolicited grant, a part of a byte
        uint32_t u32LargestPacket = 0;
        uint32_t u32Asked = 0; // bytes that the station knows of
        uint64_t u64GrantFrame = 0;
        bool bRequested = false;      // by a request of its own, and not granted yet
        std::vector<UserPDU> astPDUs; // of this frame
        FlowReport stReport;
    };
    // A source and the flow that it feeds, 0: none.
    struct Feed {
        PacketSource stSource;
        uint32_t u32SFID;
    };
    // Of one direction.
    struct Channel {
        Bucket stCapacity;
        uint32_t u32LargestPacket = 0;
        uint64_t u64Turn = 0;
        std::vector<Flow *> apstFlows; // the highest priority first, then by SFID
        std::vector<Feed> astShares;   // of the flows that no generator feeds
        UserBurst stBurst{};
    };

    Flow *FlowOf(uint32_t u32SFID);
    // Which flow the packets of a source take; 0: none.
    uint32_t Classify(const PacketSource &stSource) const;
    void FollowSources();
    void FollowShares(bool bUplink);
    void TakePackets(Feed &stFeed);
    void DropQueue(Flow &stFlow);
    void ForEachFeed(const auto &pfnDo) {
        for (std::vector<Feed> *pastFeeds :
             {&m_astGenerated, &m_astChannels[0].astShares, &m_astChannels[1].astShares}) {
            std::for_each(pastFeeds->begin(), pastFeeds->end(), pfnDo);
        }
    }

    void PlanFrame();
    void RunFrame();
    void FillBuckets();
    void Serve(Channel &stChannel, uint64_t u64Frame);
    bool ServeReserved(Channel &stChannel, uint64_t u64Frame);
    bool ServeRest(Channel &stChannel, uint64_t u64Frame);
    bool SendHead(Channel &stChannel, Flow &stFlow);
    void GiveFixedGrant(Channel &stChannel, Flow &stFlow);
    void AskForBandwidth(Flow &stFlow, uint64_t u64Frame);
    // Whether the station lets the next packet of the flow go in this frame.
    static bool MayGo(const Flow &stFlow, uint64_t u64Frame);
    void Carry(Flow &stFlow, uint32_t u32Payload, uint32_t u32Space);
    void PacketGone(Flow &stFlow);
    void CloseGrants(Channel &stChannel, uint64_t u64Frame);
    void Tell(Channel &stChannel);
    TrafficTotals::Direction &TotalsOf(bool bUplink) {
        return bUplink ? m_stTotals.stUplink : m_stTotals.stDownlink;
    }
    Channel &ChannelOf(bool bUplink) { return m_astChannels[bUplink ? 1 : 0]; }

    Scheduler &m_stScheduler;
    const Presence &m_stPresence;
    std::array<double, 2> m_afRates; // bytes a second, down and up, that the flows share
    uint32_t m_u32PacketSize;
    bool m_bKeepsAwake;
    Random &m_stRandom;
    std::vector<std::function<void(const UserBurst &)>> m_apfnOnBurst;
    std::vector<std::function<void(const RangingSignal &)>> m_apfnOnRequest;

    bool m_bFlowing = false;
    ModemTime m_iFlowingSince = 0;
    std::deque<Flow> m_astFlows; // by SFID
    std::array<Channel, 2> m_astChannels;
    std::vector<Feed> m_astGenerated;
    uint64_t m_u64FilledFrame = 0;
    uint32_t m_u32GrantFrame = 0;
    uint32_t m_u32Granted = 0;
    std::vector<RangingSignal> m_astRequests;
    TrafficTotals m_stTotals;
    Timer m_stFrame;
};

#endif
