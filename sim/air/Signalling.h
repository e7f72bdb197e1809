// What the modem and its base station say to each other: the MAC management messages
// of synchronisation, network entry, idle mode and everything else, with the ranging
// and the power control that belong to them. The parts of the modem say what they do through the
// functions below. Whoever wants to know (trace, logs) observes it.
//
// One message of a dialogue goes over the air in each frame; the station's periodic
// broadcasts go beside it. Nothing depends on who observes.
#ifndef SIGNALLING_H
#define SIGNALLING_H

#include <array>
#include <deque>
#include <functional>
#include <vector>

#include "air/Attachment.h"
#include "air/Capabilities.h"
#include "air/ManagementMessages.h"
#include "air/Presence.h"
#include "air/Traffic.h"
#include "scenario/Options.h"
#include "time/Random.h"
#include "time/Scheduler.h"

struct ManagementMessage {
    uint32_t u32Frame;
    uint32_t u32Code;
    bool bUplink;
    uint32_t u32CID;
    bool bCMACGood; // has a digest, and that is right
    std::vector<uint8_t> aucBody;
};

enum class RangingKind : uint8_t { Initial, Periodic };

struct PowerChange {
    bool bClosedLoop;    // on the station's order, else by the modem's own measurement
    int32_t iAdjustment; // quarter dB
    uint32_t u32FrameOffset;
    uint32_t u32Frame;
    int32_t iPower; // quarter dBm, afterwards
};

struct Connection {
    uint32_t u32VCID; // the modem's own number for it
    uint32_t u32CID;
    bool bUplink;
    bool bARQ;
    uint32_t u32SFID;           // 0: not of a service flow
    uint32_t u32SchedulingType; // 0 for management connections
};

enum class FlowDialogue : uint8_t { Add, Change, Delete };

struct Transaction {
    bool bByStation;
    uint32_t u32ID;
};

class Signalling {
  public:
    using Step = std::function<void()>;

    // Reads [signalling], and how many service flows the network has.
    Signalling(const Section &stRoot, Chance &stChance, Scheduler &stClock, Radio &stAir,
               const Attachment &stAt, const Traffic &stTraffic, const Presence &stPresence,
               const Options &stOptions, const MACAddressBytes &aucAddress);
    // Takes on the state at start.
    void Start();

    // ---- For observers ----

    void OnMessage(std::function<void(const ManagementMessage &)> pfnObserver) {
        m_apfnOnMessage.push_back(std::move(pfnObserver));
    }
    void OnRanging(std::function<void(RangingKind, const RangingSignal &)> pfnObserver) {
        m_apfnOnRanging.push_back(std::move(pfnObserver));
    }
    void OnPower(std::function<void(const PowerChange &)> pfnObserver) {
        m_apfnOnPower.push_back(std::move(pfnObserver));
    }
    // A connection that has come to be.
    void OnConnection(std::function<void(const Connection &)> pfnObserver) {
        m_apfnOnConnection.push_back(std::move(pfnObserver));
    }
    // While set, the station's periodic broadcasts are put together, too.
    void WantBroadcasts(bool bWanted);
    // The number of the present frame.
    uint32_t Frame() const;
    // The connections that there are now.
    const std::vector<Connection> &Connections() const { return m_astConnections; }
    const FlowLimits &Limits() const { return m_stLimits; }
    int32_t Power() const { return m_iPower; } // quarter dBm

    // ---- For the parts of the modem that talk to the station ----

    // Does something once all that has been planned to be said is on the air, or given up: at
    // once when nothing is.
    void OnceSaid(Step pfnAction);
    // The link has changed.
    void Follow(const LinkChange &stChange);
    // The link is about to be left.
    void Leaving(uint32_t u32Reason, uint32_t u32DREGAction);
    // A deregistration command that the link survives.
    void DREGReceived(uint32_t u32Action);
    // The modem has found itself in a paging message.
    void Paged();
    // In idle mode: tells the station that the modem listens to where it is. False when the station
    // does not hear it.
    bool LocationUpdated();
    // The same, for the last time: it goes.
    void GoesFromIdle();
    // A handover: towards the target, one more ranging attempt there, its end.
    void HandoverBegins(const Station &stTarget, bool bOrdered);
    // The modem wants to look at a neighbour, or (null) at whatever there is, for so long; it has
    // seen these. Of other networks the station is not told.
    void ScanAsked(ModemTime iTime, const Station *pstNeighbour);
    void ScanReported(const std::vector<const Station *> &apstSeen);
    void HandoverRangingRepeated();
    void HandoverEnds(bool bSuccess);
    // A power saving class as it was asked for and granted: a PSCDefinition record.
    void SleepAgreed(ByteView stClass);
    // The station says that traffic waits.
    void TrafficIndicated(uint32_t u32PSCID);
    // A service flow's dialogue: asked for, and what came of it. Who knows no transaction yet
    // has one of its own. What stFlow refers to is copied.
    Transaction StationTransaction();
    static Transaction ModemTransaction(uint32_t u32Wanted);
    void FlowAsked(FlowDialogue eDialogue, const Transaction &stTransaction,
                   const FlowParameters &stFlow);
    void FlowAnswered(FlowDialogue eDialogue, const Transaction &stTransaction,
                      const FlowParameters &stFlow, uint32_t u32Confirmation);
    // A flow of a link that was up from the start: nothing had to be said.
    void FlowThere(const FlowParameters &stFlow);
    // The flow has another connection with the station that the modem has come to.
    void FlowMoved(uint32_t u32SFID, uint32_t u32CID);

  private:
    enum class Protection : uint8_t { None, Tuple, Attribute };
    static constexpr bool bUp = true;
    static constexpr bool bDown = false;

    // Maps, which a frame has once, whoever has them said.
    enum class Map : uint8_t { Downlink, Uplink, None };
    // Puts a step of a dialogue behind those that wait; with the map that it says.
    void Later(Step pfnStep, Map eMap = Map::None);
    void NextStep();
    bool Said(uint64_t u64Steps) const;
    void LookWhenSaid(uint64_t u64Steps);
    // Over the air in the present frame.
    void Say(uint32_t u32Code, bool bUplink, uint32_t u32CID, BitWriter stBody,
             Protection eProtection = Protection::None);
    void SayLater(uint32_t u32Code, bool bUplink, uint32_t u32CID, BitWriter stBody,
                  Protection eProtection = Protection::None);
    void SayPKM(bool bUplink, uint32_t u32Code, Protection eProtection, ByteView stEAP = {});

    // Starts what runs in the present state: the broadcasts, and ranging and reports.
    void FollowState();
    void FollowBroadcasts();
    // What waits of the dialogues is not said any more.
    void DropSteps();
    // A ranging or a report that begins when its period is over, unless the last one still
    // waits for its turn: others would never have one.
    void StartPeriod(Timer &stTimer, ModemTime iPeriod, bool &bWaits,
                     void (Signalling::*pfnBegin)());
    void BeginStage(uint32_t u32Stage);
    void FinishStage(uint32_t u32Stage);
    void FailStage(uint32_t u32Reason);
    void Authenticate();
    void SayKeyExchange();

    // Codes until the station is content, then the RNG-REQ.
    void Range(const Station &stStation, RangingPurpose ePurpose);
    void SendCode(const CodeGroup &stGroup, RangingKind eKind);
    void AnswerCode(const Station &stStation, RangingStatus eStatus);
    void SayLocationUpdated(const Station &stStation);
    int32_t RoundTripTo(const Station &stStation) const;
    void AnswerRNGREQ(RangingPurpose ePurpose, uint32_t u32Optimisation);
    // The answer for a modem that is known, and what belongs to it.
    void Readmit(RangingPurpose ePurpose, uint32_t u32Optimisation);
    void AdjustOpenLoop(const Station &stStation);

    void MakeConnections();
    void Connect(uint32_t u32CID, bool bUplink, uint32_t u32SFID, uint32_t u32SchedulingType);

    void Broadcast(Timer &stTimer, ModemTime iPeriod, void (Signalling::*pfnSay)());
    void SayMaps();
    // Whether a dialogue has said the map in this frame, or will.
    bool IsSaid(Map eMap) const;
    // Of a station with compressed maps either says both.
    void SayDLMAP(const Station &stStation);
    void SayULMAP(const Station &stStation, const RangingSignal *pstAnswered);
    void SayCompressedMaps(const Station &stStation, const Grants &stGrants);
    // What the uplink of the present frame is granted for, with the code that is answered in it.
    Grants GrantsNow(const Station &stStation, const RangingSignal *pstAnswered) const;
    double CINROf(const Station &stStation) const;
    void SayDescriptors();
    void SayNeighbours();
    void SayPaging();
    void RangePeriodically();
    void Report();
    uint32_t PagingCycle() const;

    Scheduler &m_stClock;
    Radio &m_stAir;
    const Attachment &m_stAt;
    const Traffic &m_stTraffic;
    const Presence &m_stPresence;
    const Options &m_stOptions;
    const MACAddressBytes &m_aucAddress;
    ModemTime m_iMapPeriod;
    ModemTime m_iDescriptorPeriod;
    ModemTime m_iNeighbourPeriod;
    ModemTime m_iRangingPeriod;
    ModemTime m_iReportPeriod;
    double m_fCMACFailures;
    FlowLimits m_stLimits{};
    Random &m_stRandom;
    std::vector<std::function<void(const ManagementMessage &)>> m_apfnOnMessage;
    std::vector<std::function<void(RangingKind, const RangingSignal &)>> m_apfnOnRanging;
    std::vector<std::function<void(const PowerChange &)>> m_apfnOnPower;
    std::vector<std::function<void(const Connection &)>> m_apfnOnConnection;

    bool m_bBroadcastsWanted = false;
    bool m_bRangingWaits = false;
    bool m_bReportWaits = false;
    struct Planned {
        Step pfnStep;
        Map eMap;
    };
    std::deque<Planned> m_astSteps;
    std::array<uint32_t, 2> m_au32MapFrame{UINT32_MAX, UINT32_MAX}; // in which a map was said last
    uint64_t m_u64Steps = 0;                                        // planned so far
    struct Waiting {
        uint64_t u64Steps;
        Step pfnAction;
    };
    std::deque<Waiting> m_astWaiting; // for what has been planned to be said
    uint32_t m_u32Life = 0;           // counts resets
    ModemTime m_iLastStep = -i64Frame;
    Timer m_stStep;
    Timer m_stMaps;
    Timer m_stDescriptors;
    Timer m_stNeighbours;
    Timer m_stPaging;
    Timer m_stRanging;
    Timer m_stReport;

    std::vector<Connection> m_astConnections;
    uint32_t m_u32BasicCID = 0;
    uint32_t m_u32PrimaryCID = 0;
    uint32_t m_au32PacketNumber[2] = {}; // of digests, down and up
    uint32_t m_u32PKMIdentifier = 0;
    KeyExchange m_stKeys{};
    RangingSignal m_stSignal{}; // the last one sent
    int32_t m_iPower = 0;       // quarter dBm
    int32_t m_iOpenLoopPower = 0;
    int32_t m_iTiming = 0; // samples that the modem sends earlier than it hears
    bool m_bToldToIdle = false;
    const Station *m_pstFormer = nullptr; // the station of idle mode's beginning
    const Station *m_pstTarget = nullptr; // of the handover under way
    uint32_t m_u32StationTransactions = 0;
};

#endif
