// Service flows: requested by the client, or provisioned by the network and set up
// when the link comes up. The base station admits what fits into its capacity.
#include <algorithm>
#include <deque>
#include <iterator>
#include <span>
#include <vector>

#include "ServiceFlowRecord.h"
#include "air/Signalling.h"
#include "host/HostSubsystems.h"
#include "host/MIBStore.h"
#include "link/Link.h"

namespace {

using FlowBytes = Record<ServiceFlowRecord::Size>;

// Confirmation codes of indications, as the air interface has them.
enum Confirmation : uint32_t {
    Accepted = 0,
    RejectOther = 1,
    UnrecognisedSetting = 2,
    NoResources = 3,
    FlowNotFound = 6,
    ParameterMissing = 8,
    AddAborted = 12,
    TooManyFlows = 13,
    UnsupportedValue = 17,
};

constexpr uint32_t u32AllSets =
    ServiceFlowRecord::Provisioned | ServiceFlowRecord::Admitted | ServiceFlowRecord::Active;
constexpr uint32_t u32HighestPriority = 7;
constexpr uint32_t u32HighestCS = 15;

// Connection IDs begin here in either direction; a station hands them out one after the other.
constexpr uint32_t au32FirstCID[] = {8192, 4096}; // downlink, uplink
constexpr uint32_t u32CIDs = 4096;

constexpr Field astRates[] = {SFParamSet::u32MaxSustainedTrafficRate,
                              SFParamSet::u32MinReservedTrafficRate, SFParamSet::u32ToleratedJitter,
                              SFParamSet::u32MaximumLatency};

constexpr uint64_t u64GrantsPerSecond = i64Second / iGrantInterval;

struct Flow {
    uint32_t u32SFID;
    uint32_t u32CID;
    uint32_t u32Direction;
    FlowBytes stRecord;          // its sets
    uint64_t u64GrantedRate = 0; // bits a second, of a grant that was changed
    FixedGrant stGrant{};        // the grant
    bool bConnected = false;     // the dialogue is over: packets may go
};

// A flow that the network sets up by itself.
struct ProvisionedFlow {
    uint32_t u32Direction;
    uint32_t u32Sets;
    Record<SFParamSet::Size> stSet;
};

ByteView SetOf(const FlowBytes &stRecord, uint32_t u32Offset) {
    return stRecord.View().From(u32Offset, SFParamSet::Size);
}

bool Present(ByteView stRecord, uint32_t u32SetOffset) {
    return Get(stRecord, SFParamSet::u8SetPresent, u32SetOffset) != 0;
}

// The most advanced set that is there; nothing when there is none.
ByteView LeadingSet(ByteView stRecord) {
    for (const ServiceFlowRecord::SetOfBit &stSet : ServiceFlowRecord::Sets) {
        if (Present(stRecord, stSet.u32Offset)) {
            return stRecord.From(stSet.u32Offset, SFParamSet::Size);
        }
    }
    return {};
}

// What the modem and the station say of a flow.
FlowParameters SaidOf(const Flow &stFlow) {
    return {stFlow.u32Direction == ServiceFlowRecord::Uplink,
            stFlow.u32SFID,
            stFlow.u32CID,
            LeadingSet(stFlow.stRecord.View()),
            {}};
}

// Says in all of a flow's sets which connection it has.
void PutCID(Flow &stFlow, uint32_t u32CID) {
    const ByteSpan stRecord = stFlow.stRecord.Span();
    stFlow.u32CID = u32CID;
    Put(stRecord, ServiceFlowRecord::u16CID, u32CID);
    for (const ServiceFlowRecord::SetOfBit &stRow : ServiceFlowRecord::Sets) {
        if (Present(stRecord, stRow.u32Offset)) {
            Put(stRecord, SFParamSet::u16CID, u32CID, stRow.u32Offset);
        }
    }
}

// Bits a second that the station has to keep free for a set.
uint64_t ReservedRate(ByteView stSet) {
    return Get(stSet, Get(stSet, SFParamSet::u8SchedulingType) == SFParamSet::UGS
                          ? SFParamSet::u32MaxSustainedTrafficRate
                          : SFParamSet::u32MinReservedTrafficRate);
}

// What a flow takes of the capacity: a set that is only provisioned takes nothing.
uint64_t Demand(const Flow &stFlow) {
    const FlowBytes &stRecord = stFlow.stRecord;
    uint64_t u64Most = stFlow.u64GrantedRate;
    for (const ServiceFlowRecord::SetOfBit &stSet : ServiceFlowRecord::Sets) {
        if (stSet.u32Bit != ServiceFlowRecord::Provisioned &&
            Present(stRecord.View(), stSet.u32Offset)) {
            u64Most = std::max(u64Most, ReservedRate(SetOf(stRecord, stSet.u32Offset)));
        }
    }
    return u64Most;
}

ByteView RuleOf(ByteView stSet, uint32_t u32Place) {
    return stSet.From(SFParamSet::astClassifierRule + u32Place * ClassifierRule::Size,
                      ClassifierRule::Size);
}

// What the station holds to of a flow with an active set.
FlowQuality QualityOf(const Flow &stFlow) {
    const ByteView stSet = SetOf(stFlow.stRecord, ServiceFlowRecord::stActiveSet);
    FlowQuality stQuality{stFlow.u32SFID,
                          stFlow.u32CID,
                          stFlow.u32Direction == ServiceFlowRecord::Uplink,
                          Get(stSet, SFParamSet::u8SchedulingType),
                          Get(stSet, SFParamSet::u32MaxSustainedTrafficRate),
                          ReservedRate(stSet),
                          Get(stSet, SFParamSet::u32MaximumLatency) * i64Millisecond,
                          Get(stSet, SFParamSet::u8TrafficPriority),
                          stFlow.stGrant,
                          {}};
    const uint32_t u32Rules =
        std::min(Get(stSet, SFParamSet::u8NumClassifierRules), SFParamSet::MaxClassifierRules);
    for (uint32_t i = 0; i < u32Rules; ++i) {
        stQuality.astRules.push_back(MatchRule::From(RuleOf(stSet, i)));
    }
    return stQuality;
}

// Whether the flow gets unsolicited grants of a size that can be changed.
bool TakesGrants(const Flow &stFlow) {
    return stFlow.u32Direction == ServiceFlowRecord::Uplink &&
           Get(SetOf(stFlow.stRecord, ServiceFlowRecord::stActiveSet),
               SFParamSet::u8SchedulingType) == SFParamSet::ERTPS;
}

void EndGrant(Flow *pstFlow) {
    pstFlow->u64GrantedRate = 0;
    pstFlow->stGrant = {};
}

// A range of four bytes, two port numbers in network order, that ends before it begins.
bool Reversed(ByteView stRule, Field stLength, Field stBytes) {
    const auto Port = [&](uint32_t u32At) {
        return Get(stRule, stBytes, u32At) << 8 | Get(stRule, stBytes, u32At + 1);
    };
    return Get(stRule, stLength) == ClassifierRule::PortRangeSize && Port(0) > Port(2);
}

Confirmation JudgeRules(ByteView stSet) {
    const uint32_t u32Rules = Get(stSet, SFParamSet::u8NumClassifierRules);
    if (u32Rules > SFParamSet::MaxClassifierRules) {
        return UnsupportedValue;
    }
    for (uint32_t i = 0; i < u32Rules; ++i) {
        using namespace ClassifierRule;
        const ByteView stRule = stSet.From(SFParamSet::astClassifierRule + i * Size, Size);
        const bool bLengthsFit = Get(stRule, u8IPMaskedSrcAddrLength) <= IPMaskedAddrSize &&
                                 Get(stRule, u8IPMaskedDestAddrLength) <= IPMaskedAddrSize &&
                                 Get(stRule, u8SrcPortRangeLength) <= PortRangeSize &&
                                 Get(stRule, u8DestPortRangeLength) <= PortRangeSize &&
                                 Get(stRule, u8EthSrcMacLength) <= EthMacSize &&
                                 Get(stRule, u8EthDestMacLength) <= EthMacSize;
        if (!bLengthsFit || Reversed(stRule, u8SrcPortRangeLength, au8SrcPortRange) ||
            Reversed(stRule, u8DestPortRangeLength, au8DestPortRange)) {
            return UnsupportedValue;
        }
    }
    return Accepted;
}

// Whether a set's parameters are known and go together.
Confirmation JudgeSet(ByteView stSet) {
    using namespace SFParamSet;
    const uint32_t u32Type = Get(stSet, u8SchedulingType);
    const uint32_t u32MaxRate = Get(stSet, u32MaxSustainedTrafficRate);
    const uint32_t u32Latency = Get(stSet, u32MaximumLatency);
    if (u32Type < BE || u32Type > UGS || Get(stSet, u8TrafficPriority) > u32HighestPriority ||
        Get(stSet, u8PagingPreference) > 1 || Get(stSet, u8CSSpecification) > u32HighestCS) {
        return UnsupportedValue;
    }
    if (u32Type == UGS && u32MaxRate == 0) {
        return ParameterMissing;
    }
    // Without a maximum, 0, any minimum goes.
    if ((u32MaxRate != 0 && Get(stSet, u32MinReservedTrafficRate) > u32MaxRate) ||
        (u32Latency != 0 && Get(stSet, u32ToleratedJitter) > u32Latency)) {
        return UnrecognisedSetting;
    }
    return JudgeRules(stSet);
}

// Whether a rule says more than what is to be done with it.
bool HasContent(ByteView stRule) {
    const ByteView stContent = stRule.From(EndOf(ClassifierRule::u8ClassifierAction));
    return std::any_of(stContent.pucData, stContent.pucData + stContent.u32Length,
                       [](uint8_t u8Byte) { return u8Byte != 0; });
}

// Does with one rule of a flow's set what the rule at the same place of a request
// asks for.
Confirmation ChangeRule(ByteSpan stSet, ByteView stRule, uint32_t u32Index) {
    using namespace ClassifierRule;
    const auto RuleAt = [&](uint32_t u32At) {
        return stSet.From(SFParamSet::astClassifierRule + u32At * Size, Size);
    };
    const uint32_t u32Rules = Get(stSet, SFParamSet::u8NumClassifierRules);
    const uint32_t u32Action = Get(stRule, u8ClassifierAction);
    if (u32Action != DeleteRule && !HasContent(stRule)) {
        return Accepted; // nothing is asked for
    }
    const bool bAdds = u32Action == AddRule;
    if (bAdds ? u32Rules >= SFParamSet::MaxClassifierRules : u32Index >= u32Rules) {
        return bAdds ? TooManyFlows : UnrecognisedSetting;
    }
    if (u32Action == DeleteRule) {
        for (uint32_t i = u32Index; i + 1 < u32Rules; ++i) {
            PutBytes(RuleAt(i), 0, RuleAt(i + 1));
        }
        const ByteSpan stLast = RuleAt(u32Rules - 1);
        std::fill_n(stLast.pucData, stLast.u32Length, uint8_t{0});
        Put(stSet, SFParamSet::u8NumClassifierRules, u32Rules - 1);
        return Accepted;
    }
    const ByteSpan stTo = RuleAt(bAdds ? u32Rules : u32Index);
    PutBytes(stTo, 0, stRule);
    Put(stTo, u8ClassifierAction, 0);
    Put(stSet, SFParamSet::u8NumClassifierRules, u32Rules + (bAdds ? 1 : 0));
    return Accepted;
}

// The rules of a flow that is added: asked for with what they match, answered with the numbers
// that the station gives them, which are their places, from 1 on.
std::vector<FlowRule> AddedRules(ByteView stSet, bool bNumbered) {
    std::vector<FlowRule> astRules;
    const uint32_t u32Count =
        std::min(Get(stSet, SFParamSet::u8NumClassifierRules), SFParamSet::MaxClassifierRules);
    for (uint32_t i = 0; i < u32Count; ++i) {
        astRules.push_back(bNumbered ? FlowRule{ClassifierRule::AddRule, i + 1, {}}
                                     : FlowRule{ClassifierRule::AddRule, 0, RuleOf(stSet, i)});
    }
    return astRules;
}

// What a change request's set does with the rules of a flow.
std::vector<FlowRule> ChangedRules(ByteView stChange) {
    using namespace ClassifierRule;
    std::vector<FlowRule> astRules;
    for (uint32_t i = 0; i < SFParamSet::MaxClassifierRules && stChange.u32Length != 0; ++i) {
        const ByteView stRule = RuleOf(stChange, i);
        const uint32_t u32Action = Get(stRule, u8ClassifierAction);
        if (u32Action == DeleteRule) {
            astRules.push_back({u32Action, i + 1, {}});
        } else if (HasContent(stRule)) {
            astRules.push_back({u32Action, u32Action == AddRule ? 0 : i + 1, stRule});
        }
    }
    return astRules;
}

// The modem's transaction as the host has numbered it; the number stands at the same place in
// all requests.
Transaction TransactionOf(ByteView stRequest) {
    return Signalling::ModemTransaction(Get(stRequest, ServiceFlowRecord::u16TID));
}

// Takes over what the set of a change request states: a parameter of 0 stays as it
// was, except that a scheduling type brings all its rates with it.
Confirmation ChangeSet(ByteSpan stSet, ByteView stChange) {
    using namespace SFParamSet;
    if (Get(stChange, u8SchedulingType) != 0) {
        Put(stSet, u8SchedulingType, Get(stChange, u8SchedulingType));
        for (const Field stRate : astRates) {
            Put(stSet, stRate, Get(stChange, stRate));
        }
    }
    if (Get(stChange, u8ServiceClassNameLength) != 0) {
        Put(stSet, u8ServiceClassNameLength, Get(stChange, u8ServiceClassNameLength));
        PutBytes(stSet, au8ServiceClassName.u16Offset,
                 stChange.From(au8ServiceClassName.u16Offset, ServiceClassNameSize));
    }
    for (const Field stField :
         {u8TrafficPriority, u8CSSpecification, u8RetransmissionPolicy, u8PagingPreference}) {
        if (Get(stChange, stField) != 0) {
            Put(stSet, stField, Get(stChange, stField));
        }
    }
    Put(stSet, u8QoSParamSetType, Get(stChange, u8QoSParamSetType));
    for (uint32_t i = 0; i < MaxClassifierRules; ++i) {
        const ByteView stRule =
            stChange.From(astClassifierRule + i * ClassifierRule::Size, ClassifierRule::Size);
        if (const Confirmation eCode = ChangeRule(stSet, stRule, i); eCode != Accepted) {
            return eCode;
        }
    }
    return JudgeSet(stSet);
}

class ServiceFlows : public Subsystem {
  public:
    explicit ServiceFlows(Modem &stModem);
    void Start() override;

  private:
    static ProvisionedFlow ReadFlow(const Section &stSection);
    // Asks the station over the air, false when there is nothing to ask for; finishes the request
    // when it has had the time to answer, unless the modem is reset.
    using Asking = bool (ServiceFlows::*)(ByteView stRequest, const Transaction &stTransaction);
    using Finishing = void (ServiceFlows::*)(ByteView stRequest, const Transaction &stTransaction,
                                             bool bAsked);
    int32_t Ask(const Request &stRequest, uint32_t u32RecordSize, Asking pfnAsk,
                Finishing pfnFinish);
    bool AskAdd(ByteView stRequest, const Transaction &stTransaction);
    bool AskChange(ByteView stRequest, const Transaction &stTransaction);
    bool AskDelete(ByteView stRequest, const Transaction &stTransaction);
    void FinishAdd(ByteView stRequest, const Transaction &stTransaction, bool bAsked);
    void FinishChange(ByteView stRequest, const Transaction &stTransaction, bool bAsked);
    void FinishDelete(ByteView stRequest, const Transaction &stTransaction, bool bAsked);
    // What the network does by itself.
    void AddByStation(const ProvisionedFlow &stProvisioned);
    struct Rates {
        uint32_t u32Most;
        uint32_t u32Least;
    };
    void ChangeByStation(uint32_t u32SFID, const Rates &stRates);
    void DeleteByStation(uint32_t u32SFID);
    // The flow that a change request means; null when there is none.
    Flow *FlowToChange(ByteView stRequest);
    uint32_t NextCID(uint32_t u32Direction);
    // The modem is with another station, which gives all flows new connections.
    void Reconnect();
    Flow *FlowOfConnection(uint32_t u32Connection);
    // The flow's dialogue is on its way: packets go when it is over.
    void ConnectOnceSaid(uint32_t u32SFID);
    // Tells the traffic which flows there are, and how they are.
    void FollowFlows();
    int32_t ChangeGrant(const Request &stRequest);
    Confirmation JudgeAdd(ByteView stRequest) const;
    Confirmation Change(ByteView stRequest, Flow *pstFlow) const;
    Confirmation Admit(const Flow &stFlow) const;
    Flow NewFlow(uint32_t u32Direction, uint32_t u32Sets, ByteView stSet);
    // The flow that has this value; null when there is none.
    Flow *FlowWith(uint32_t Flow::*pu32Member, uint32_t u32Value);
    void Delete(const Flow *pstFlow);
    void Provision(bool bOverTheAir);
    // Null when there is no room for it.
    const Flow *SetUp(const ProvisionedFlow &stProvisioned, bool bOverTheAir);
    void OnLinkChange(const LinkChange &stChange);
    void Tell(uint32_t u32SubType, ByteView stRequest, FlowBytes stRecord, Confirmation eCode);
    bool LinkUp() const { return m_stModem.TheLink().State() == LinkState::LinkUp; }
    std::vector<uint8_t> ActiveSFIDs() const;

    Modem &m_stModem;
    ModemTime m_iTransactionTime;
    ModemTime m_iProvisioningTime;
    uint64_t m_au64Capacity[2]; // by direction, bits a second
    std::vector<ProvisionedFlow> m_astProvisioned;

    std::deque<Flow> m_astFlows;
    uint32_t m_u32NextSFID = 1;
    uint32_t m_au32NextCID[2]{}; // by direction, from the first one on
    uint32_t m_u32Life = 0;      // counts resets
    Timer m_stProvisioning;
};

constexpr ScenarioWord astDirections[] = {{"downlink", ServiceFlowRecord::Downlink},
                                          {"uplink", ServiceFlowRecord::Uplink}};
constexpr ScenarioWord astTypes[] = {{"BE", SFParamSet::BE},
                                     {"NRTPS", SFParamSet::NRTPS},
                                     {"RTPS", SFParamSet::RTPS},
                                     {"ERTPS", SFParamSet::ERTPS},
                                     {"UGS", SFParamSet::UGS}};

ServiceFlows::ServiceFlows(Modem &stModem) : m_stModem(stModem), m_stProvisioning(stModem.Clock()) {
    const Section stSettings = stModem.Settings("service-flows");
    const auto ReadCapacity = [&](const char *pcKey, int64_t iDefault) {
        return static_cast<uint64_t>(stSettings.Integer(pcKey, 0, INT64_MAX, iDefault));
    };
    m_au64Capacity[ServiceFlowRecord::Downlink] = ReadCapacity("downlink-capacity", 20000000);
    m_au64Capacity[ServiceFlowRecord::Uplink] = ReadCapacity("uplink-capacity", 5000000);
    m_iTransactionTime = stSettings.Seconds("transaction-time", 0, 1000, 0.1);
    m_iProvisioningTime = stSettings.Seconds("provisioning-time", 0, 1000, 0.05);
    for (const Section &stSection : stModem.Root().Tables("service-flow")) {
        m_astProvisioned.push_back(ReadFlow(stSection));
    }
    stModem.On(TYPE_SERVICE_FLOW, SUBTYPE_DSA, [this](const Request &stRequest) {
        return Ask(stRequest, ServiceFlowRecord::ShortSize, &ServiceFlows::AskAdd,
                   &ServiceFlows::FinishAdd);
    });
    stModem.On(TYPE_SERVICE_FLOW, SUBTYPE_DSC, [this](const Request &stRequest) {
        return Ask(stRequest, ServiceFlowRecord::Size, &ServiceFlows::AskChange,
                   &ServiceFlows::FinishChange);
    });
    stModem.On(TYPE_SERVICE_FLOW, SUBTYPE_DSD, [this](const Request &stRequest) {
        return Ask(stRequest, DeleteFlowRequest::Size, &ServiceFlows::AskDelete,
                   &ServiceFlows::FinishDelete);
    });
    stModem.On(TYPE_SERVICE_FLOW, SUBTYPE_ERTPS_CHANGE,
               [this](const Request &stRequest) { return ChangeGrant(stRequest); });
    stModem.OnEvent("flow-added", [this](const Section &stSection) {
        return [this, stFlow = ReadFlow(stSection)] { AddByStation(stFlow); };
    });
    stModem.OnEvent("flow-changed", [this](const Section &stSection) {
        const auto u32SFID = static_cast<uint32_t>(stSection.Integer("sfid", 1, UINT32_MAX));
        const Rates stRates{static_cast<uint32_t>(stSection.Integer("max-rate", 0, UINT32_MAX, 0)),
                            static_cast<uint32_t>(stSection.Integer("min-rate", 0, UINT32_MAX, 0))};
        return [this, u32SFID, stRates] { ChangeByStation(u32SFID, stRates); };
    });
    stModem.OnEvent("flow-deleted", [this](const Section &stSection) {
        const auto u32SFID = static_cast<uint32_t>(stSection.Integer("sfid", 1, UINT32_MAX));
        return [this, u32SFID] { DeleteByStation(u32SFID); };
    });
    stModem.TheMIBs().Provide(MIBAttribute::ActiveSFIDs, [this] { return ActiveSFIDs(); });
    stModem.OnTransportCIDs([this] {
        // In idle mode the flows are kept, and have no connections.
        std::vector<uint32_t> au32CIDs;
        if (LinkUp()) {
            std::transform(m_astFlows.begin(), m_astFlows.end(), std::back_inserter(au32CIDs),
                           [](const Flow &stFlow) { return stFlow.u32CID; });
        }
        return au32CIDs;
    });
    stModem.TheLink().Observe([this](const LinkChange &stChange) { OnLinkChange(stChange); });
    stModem.TheLink().OnMove([this] { Reconnect(); });
}

ProvisionedFlow ServiceFlows::ReadFlow(const Section &stSection) {
    const auto ReadNumber = [&](const char *pcKey) {
        return static_cast<uint32_t>(stSection.Integer(pcKey, 0, UINT32_MAX, 0));
    };
    ProvisionedFlow stFlow{};
    stFlow.u32Direction = stSection.Choice("direction", astDirections);
    stFlow.u32Sets = static_cast<uint32_t>(stSection.Integer("sets", 1, u32AllSets, u32AllSets));
    const ByteSpan stSet = stFlow.stSet.Span();
    Put(stSet, SFParamSet::u8SchedulingType, stSection.Choice("type", astTypes));
    Put(stSet, SFParamSet::u32MaxSustainedTrafficRate, ReadNumber("max-rate"));
    Put(stSet, SFParamSet::u32MinReservedTrafficRate, ReadNumber("min-rate"));
    Put(stSet, SFParamSet::u32MaximumLatency, ReadNumber("latency"));
    Put(stSet, SFParamSet::u32ToleratedJitter, ReadNumber("jitter"));
    Put(stSet, SFParamSet::u8TrafficPriority,
        static_cast<uint32_t>(stSection.Integer("priority", 0, u32HighestPriority, 0)));
    Put(stSet, SFParamSet::u8CSSpecification, 1);
    if (JudgeSet(stSet) != Accepted) {
        stSection.Refuse("type", "does not go together with the rates");
    }
    return stFlow;
}

void ServiceFlows::Start() {
    ++m_u32Life;
    m_stProvisioning.Stop();
    m_astFlows.clear();
    FollowFlows();
    m_u32NextSFID = 1;
    std::fill(std::begin(m_au32NextCID), std::end(m_au32NextCID), 0U);
    // A link that is up from the start has everything that belongs to it.
    if (m_stModem.TheLink().Registered()) {
        Provision(false);
    }
}

void ServiceFlows::OnLinkChange(const LinkChange &stChange) {
    if (!m_stModem.TheLink().Registered()) {
        m_stProvisioning.Stop();
        m_astFlows.clear();
        FollowFlows();
    } else if (stChange.eBefore == LinkState::Entering && stChange.eAfter == LinkState::LinkUp &&
               !m_astProvisioned.empty()) {
        m_stProvisioning.Start(m_iProvisioningTime, [this] { Provision(true); });
    } else if (stChange.eBefore == LinkState::LeavingIdle && stChange.eAfter == LinkState::LinkUp) {
        Reconnect();
    }
}

void ServiceFlows::Reconnect() {
    for (Flow &stFlow : m_astFlows) {
        PutCID(stFlow, NextCID(stFlow.u32Direction));
        m_stModem.TheSignalling().FlowMoved(stFlow.u32SFID, stFlow.u32CID);
    }
    FollowFlows();
}

void ServiceFlows::ConnectOnceSaid(uint32_t u32SFID) {
    m_stModem.TheSignalling().OnceSaid([this, u32SFID] {
        if (Flow *pstFlow = FlowWith(&Flow::u32SFID, u32SFID)) {
            pstFlow->bConnected = true;
            FollowFlows();
        }
    });
}

void ServiceFlows::FollowFlows() {
    std::vector<FlowQuality> astQualities;
    for (const Flow &stFlow : m_astFlows) {
        if (stFlow.bConnected && Present(stFlow.stRecord.View(), ServiceFlowRecord::stActiveSet)) {
            astQualities.push_back(QualityOf(stFlow));
        }
    }
    m_stModem.UserTraffic().Follow(astQualities);
}

uint32_t ServiceFlows::NextCID(uint32_t u32Direction) {
    uint32_t u32CID = 0;
    do {
        u32CID = au32FirstCID[u32Direction] + m_au32NextCID[u32Direction]++ % u32CIDs;
    } while (FlowWith(&Flow::u32CID, u32CID) != nullptr);
    return u32CID;
}

const Flow *ServiceFlows::SetUp(const ProvisionedFlow &stProvisioned, bool bOverTheAir) {
    Signalling &stSignalling = m_stModem.TheSignalling();
    const Flow stFlow =
        NewFlow(stProvisioned.u32Direction, stProvisioned.u32Sets, stProvisioned.stSet.View());
    if (Admit(stFlow) != Accepted) {
        return nullptr;
    }
    m_astFlows.push_back(stFlow);
    if (bOverTheAir) {
        const Transaction stTransaction = stSignalling.StationTransaction();
        FlowParameters stSaid = SaidOf(stFlow);
        stSaid.astRules = AddedRules(stSaid.stSet, false);
        stSignalling.FlowAsked(FlowDialogue::Add, stTransaction, stSaid);
        stSignalling.FlowAnswered(FlowDialogue::Add, stTransaction, SaidOf(stFlow), Accepted);
    } else {
        stSignalling.FlowThere(SaidOf(stFlow));
    }
    ConnectOnceSaid(stFlow.u32SFID);
    return &m_astFlows.back();
}

void ServiceFlows::Provision(bool bOverTheAir) {
    for (const ProvisionedFlow &stProvisioned : m_astProvisioned) {
        (void)SetUp(stProvisioned, bOverTheAir);
    }
    m_stModem.History().iProvisioning = m_astProvisioned.empty() ? 0 : m_iProvisioningTime;
}

void ServiceFlows::AddByStation(const ProvisionedFlow &stProvisioned) {
    if (!LinkUp()) {
        return;
    }
    if (const Flow *pstFlow = SetUp(stProvisioned, true)) {
        Record<ServiceFlowRecord::Size> stRequest;
        Put(stRequest.Span(), ServiceFlowRecord::u8MsgCode, ServiceFlowRecord::AddRequest);
        Tell(SUBTYPE_DSA, stRequest.View(), pstFlow->stRecord, Accepted);
    }
}

// A rate of 0 stays as it was.
void ServiceFlows::ChangeByStation(uint32_t u32SFID, const Rates &stRates) {
    const Flow *pstFlow = FlowWith(&Flow::u32SFID, u32SFID);
    if (pstFlow == nullptr || !LinkUp()) {
        return;
    }
    FlowBytes stRequest;
    const ByteSpan stTo = stRequest.Span();
    Put(stTo, ServiceFlowRecord::u8MsgCode, ServiceFlowRecord::ChangeRequest);
    Put(stTo, ServiceFlowRecord::u8Direction, pstFlow->u32Direction);
    Put(stTo, ServiceFlowRecord::u16CID, pstFlow->u32CID);
    for (const ServiceFlowRecord::SetOfBit &stRow : ServiceFlowRecord::Sets) {
        using namespace SFParamSet;
        if (!Present(pstFlow->stRecord.View(), stRow.u32Offset)) {
            continue;
        }
        const ByteView stOld = SetOf(pstFlow->stRecord, stRow.u32Offset);
        const ByteSpan stSet = stTo.From(stRow.u32Offset, SFParamSet::Size);
        for (const Field stField :
             {SFParamSet::u32SFID, u8SetPresent, u8QoSParamSetType, u8SchedulingType}) {
            Put(stSet, stField, Get(stOld, stField));
        }
        for (const Field stRate : astRates) {
            Put(stSet, stRate, Get(stOld, stRate));
        }
        if (stRates.u32Most != 0) {
            Put(stSet, u32MaxSustainedTrafficRate, stRates.u32Most);
        }
        if (stRates.u32Least != 0) {
            Put(stSet, u32MinReservedTrafficRate, stRates.u32Least);
        }
    }
    const Transaction stTransaction = m_stModem.TheSignalling().StationTransaction();
    FinishChange(stRequest.View(), stTransaction, AskChange(stRequest.View(), stTransaction));
}

int32_t ServiceFlows::Ask(const Request &stRequest, uint32_t u32RecordSize, Asking pfnAsk,
                          Finishing pfnFinish) {
    const ByteView stRecord = stRequest.stPayload.From(0, u32RecordSize);
    const std::vector<uint8_t> aucRequest(stRecord.pucData, stRecord.pucData + u32RecordSize);
    const Transaction stTransaction = TransactionOf(stRecord);
    const bool bAsked = LinkUp() && (this->*pfnAsk)(stRecord, stTransaction);
    const auto Finish = [this, aucRequest, stTransaction, pfnAsk, pfnFinish, bAsked,
                         u32Life = m_u32Life] {
        if (u32Life == m_u32Life) {
            const ByteView stAgain{aucRequest.data(), static_cast<uint32_t>(aucRequest.size())};
            // What was not there to be asked for may be there by now.
            (this->*pfnFinish)(stAgain, stTransaction,
                               LinkUp() && (bAsked || (this->*pfnAsk)(stAgain, stTransaction)));
        }
    };
    // Without a link there is nobody to ask.
    m_stModem.Clock().After(LinkUp() ? m_iTransactionTime : 0, Finish);
    return 0;
}

Flow ServiceFlows::NewFlow(uint32_t u32Direction, uint32_t u32Sets, ByteView stSet) {
    Flow stFlow{m_u32NextSFID++, 0, u32Direction, {}};
    Put(stFlow.stRecord.Span(), ServiceFlowRecord::u8Direction, u32Direction);
    for (const ServiceFlowRecord::SetOfBit &stRow : ServiceFlowRecord::Sets) {
        if ((u32Sets & stRow.u32Bit) != 0) {
            const ByteSpan stTo = stFlow.stRecord.Span().From(stRow.u32Offset, SFParamSet::Size);
            PutBytes(stTo, 0, stSet);
            Put(stTo, SFParamSet::u32SFID, stFlow.u32SFID);
            Put(stTo, SFParamSet::u8QoSParamSetType, u32Sets);
            Put(stTo, SFParamSet::u8SetPresent, 1);
        }
    }
    PutCID(stFlow, NextCID(u32Direction));
    return stFlow;
}

Flow *ServiceFlows::FlowWith(uint32_t Flow::*pu32Member, uint32_t u32Value) {
    const auto Found = std::find_if(m_astFlows.begin(), m_astFlows.end(), [&](const Flow &stFlow) {
        return stFlow.*pu32Member == u32Value;
    });
    return Found != m_astFlows.end() ? &*Found : nullptr;
}

// Whether there is room for the flow, besides all flows with another SFID.
Confirmation ServiceFlows::Admit(const Flow &stFlow) const {
    uint64_t u64Taken = 0;
    uint32_t u32Others = 0;
    for (const Flow &stOther : m_astFlows) {
        if (stOther.u32SFID != stFlow.u32SFID) {
            ++u32Others;
            u64Taken += stOther.u32Direction == stFlow.u32Direction ? Demand(stOther) : 0;
        }
    }
    if (u32Others >= m_stModem.TheSignalling().Limits().u32Most) {
        return TooManyFlows;
    }
    const uint64_t u64Demand = Demand(stFlow);
    return u64Demand != 0 && u64Taken + u64Demand > m_au64Capacity[stFlow.u32Direction]
               ? NoResources
               : Accepted;
}

Confirmation ServiceFlows::JudgeAdd(ByteView stRequest) const {
    const ByteView stSet = stRequest.From(ServiceFlowRecord::stProvisionedSet, SFParamSet::Size);
    const uint32_t u32Sets = Get(stSet, SFParamSet::u8QoSParamSetType);
    if (!LinkUp()) {
        return AddAborted;
    }
    if (Get(stRequest, ServiceFlowRecord::u8MsgCode) != ServiceFlowRecord::AddRequest) {
        return UnrecognisedSetting;
    }
    if (Get(stSet, SFParamSet::u8SetPresent) == 0 || u32Sets == 0) {
        return ParameterMissing;
    }
    if (u32Sets > u32AllSets ||
        Get(stRequest, ServiceFlowRecord::u8Direction) > ServiceFlowRecord::Uplink) {
        return UnsupportedValue;
    }
    return JudgeSet(stSet);
}

bool ServiceFlows::AskAdd(ByteView stRequest, const Transaction &stTransaction) {
    const ByteView stSet = stRequest.From(ServiceFlowRecord::stProvisionedSet, SFParamSet::Size);
    const bool bUplink =
        Get(stRequest, ServiceFlowRecord::u8Direction) == ServiceFlowRecord::Uplink;
    m_stModem.TheSignalling().FlowAsked(FlowDialogue::Add, stTransaction,
                                        {bUplink, 0, 0, stSet, AddedRules(stSet, false)});
    return true;
}

void ServiceFlows::FinishAdd(ByteView stRequest, const Transaction &stTransaction, bool bAsked) {
    const ByteView stSet = stRequest.From(ServiceFlowRecord::stProvisionedSet, SFParamSet::Size);
    const bool bUplink =
        Get(stRequest, ServiceFlowRecord::u8Direction) == ServiceFlowRecord::Uplink;
    FlowParameters stSaid{bUplink, 0, 0, stSet, AddedRules(stSet, true)};
    Confirmation eCode = JudgeAdd(stRequest);
    FlowBytes stAnswer;
    PutBytes(stAnswer.Span(), 0, stRequest);
    if (eCode == Accepted) {
        const uint32_t u32Next = m_u32NextSFID;
        const uint32_t u32Direction = Get(stRequest, ServiceFlowRecord::u8Direction);
        const Flow stFlow = NewFlow(u32Direction, Get(stSet, SFParamSet::u8QoSParamSetType), stSet);
        eCode = Admit(stFlow);
        if (eCode == Accepted) {
            m_astFlows.push_back(stFlow);
            stAnswer = stFlow.stRecord;
            stSaid.u32SFID = stFlow.u32SFID;
            stSaid.u32CID = stFlow.u32CID;
        } else {
            m_u32NextSFID = u32Next;
            --m_au32NextCID[u32Direction];
        }
    }
    if (bAsked) {
        m_stModem.TheSignalling().FlowAnswered(FlowDialogue::Add, stTransaction, stSaid, eCode);
    }
    if (eCode == Accepted) {
        ConnectOnceSaid(stSaid.u32SFID);
    }
    Tell(SUBTYPE_DSA, stRequest, stAnswer, eCode);
}

// What becomes of the flow; *pstFlow is a copy.
Confirmation ServiceFlows::Change(ByteView stRequest, Flow *pstFlow) const {
    const uint32_t u32CID = Get(stRequest, ServiceFlowRecord::u16CID);
    if (Get(stRequest, ServiceFlowRecord::u8MsgCode) != ServiceFlowRecord::ChangeRequest ||
        Get(stRequest, ServiceFlowRecord::u8Direction) != pstFlow->u32Direction ||
        (u32CID != 0 && u32CID != pstFlow->u32CID)) {
        return UnrecognisedSetting;
    }
    const ByteSpan stRecord = pstFlow->stRecord.Span();
    if (LeadingSet(stRequest).u32Length == 0) {
        // No set at all: nothing is admitted or active any more.
        if (!Present(stRecord, ServiceFlowRecord::stProvisionedSet)) {
            return ParameterMissing;
        }
        for (const uint32_t u32Offset :
             {ServiceFlowRecord::stAdmittedSet, ServiceFlowRecord::stActiveSet}) {
            const ByteSpan stSet = stRecord.From(u32Offset, SFParamSet::Size);
            std::fill_n(stSet.pucData, stSet.u32Length, uint8_t{0});
        }
        EndGrant(pstFlow);
        return Accepted;
    }
    const FlowBytes stBefore = pstFlow->stRecord;
    for (const ServiceFlowRecord::SetOfBit &stRow : ServiceFlowRecord::Sets) {
        const ByteView stChange = stRequest.From(stRow.u32Offset, SFParamSet::Size);
        if (Get(stChange, SFParamSet::u8SetPresent) == 0) {
            continue;
        }
        const ByteSpan stSet = stRecord.From(stRow.u32Offset, SFParamSet::Size);
        if (!Present(stRecord, stRow.u32Offset)) {
            // A set that is new begins as what the flow had.
            PutBytes(stSet, 0, LeadingSet(stBefore.View()));
        }
        const bool bSameFlow = Get(stChange, SFParamSet::u32SFID) == pstFlow->u32SFID;
        const Confirmation eCode = bSameFlow ? ChangeSet(stSet, stChange) : UnrecognisedSetting;
        if (eCode != Accepted) {
            return eCode;
        }
    }
    if (!TakesGrants(*pstFlow)) {
        EndGrant(pstFlow);
    }
    return Admit(*pstFlow);
}

// A request without a set has only its CID to tell the flow by.
Flow *ServiceFlows::FlowToChange(ByteView stRequest) {
    const ByteView stLeading = LeadingSet(stRequest);
    return stLeading.u32Length != 0
               ? FlowWith(&Flow::u32SFID, Get(stLeading, SFParamSet::u32SFID))
               : FlowWith(&Flow::u32CID, Get(stRequest, ServiceFlowRecord::u16CID));
}

// The flow as it would be afterwards, and what is to be done with its rules.
bool ServiceFlows::AskChange(ByteView stRequest, const Transaction &stTransaction) {
    const Flow *pstFlow = FlowToChange(stRequest);
    if (pstFlow == nullptr) {
        return false;
    }
    Flow stChanged = *pstFlow;
    (void)Change(stRequest, &stChanged);
    FlowParameters stSaid = SaidOf(stChanged);
    stSaid.astRules = ChangedRules(LeadingSet(stRequest));
    m_stModem.TheSignalling().FlowAsked(FlowDialogue::Change, stTransaction, stSaid);
    return true;
}

void ServiceFlows::FinishChange(ByteView stRequest, const Transaction &stTransaction, bool bAsked) {
    Flow *pstFlow = FlowToChange(stRequest);
    FlowBytes stAnswer;
    PutBytes(stAnswer.Span(), 0, stRequest);
    Confirmation eCode = LinkUp() ? FlowNotFound : RejectOther;
    Flow stChanged{};
    if (LinkUp() && pstFlow != nullptr) {
        stChanged = *pstFlow;
        eCode = Change(stRequest, &stChanged);
        if (eCode == Accepted) {
            *pstFlow = stChanged;
            stAnswer = stChanged.stRecord;
        }
    }
    if (bAsked) {
        m_stModem.TheSignalling().FlowAnswered(FlowDialogue::Change, stTransaction,
                                               SaidOf(stChanged), eCode);
    }
    if (eCode == Accepted) {
        m_stModem.TheSignalling().OnceSaid([this] { FollowFlows(); });
    }
    Tell(SUBTYPE_DSC, stRequest, stAnswer, eCode);
}

bool ServiceFlows::AskDelete(ByteView stRequest, const Transaction &stTransaction) {
    const uint32_t u32SFID = Get(stRequest, DeleteFlowRequest::u32SFID);
    if (FlowWith(&Flow::u32SFID, u32SFID) == nullptr) {
        return false;
    }
    m_stModem.TheSignalling().FlowAsked(FlowDialogue::Delete, stTransaction,
                                        {false, u32SFID, 0, {}, {}});
    return true;
}

void ServiceFlows::DeleteByStation(uint32_t u32SFID) {
    if (FlowWith(&Flow::u32SFID, u32SFID) == nullptr) {
        return;
    }
    Signalling &stSignalling = m_stModem.TheSignalling();
    const Transaction stTransaction = stSignalling.StationTransaction();
    Record<DeleteFlowRequest::Size> stRequest;
    Put(stRequest.Span(), DeleteFlowRequest::u8MsgCode, ServiceFlowRecord::DeleteRequest);
    Put(stRequest.Span(), DeleteFlowRequest::u32SFID, u32SFID);
    if (LinkUp()) {
        stSignalling.FlowAsked(FlowDialogue::Delete, stTransaction, {false, u32SFID, 0, {}, {}});
    }
    FinishDelete(stRequest.View(), stTransaction, LinkUp());
}

void ServiceFlows::FinishDelete(ByteView stRequest, const Transaction &stTransaction, bool bAsked) {
    const uint32_t u32SFID = Get(stRequest, DeleteFlowRequest::u32SFID);
    const Flow *pstFlow = FlowWith(&Flow::u32SFID, u32SFID);
    Confirmation eCode = LinkUp() ? FlowNotFound : RejectOther;
    FlowBytes stAnswer;
    if (LinkUp() && pstFlow != nullptr) {
        eCode = Accepted;
        stAnswer = pstFlow->stRecord;
        Delete(pstFlow);
    }
    if (bAsked) {
        m_stModem.TheSignalling().FlowAnswered(FlowDialogue::Delete, stTransaction,
                                               {false, u32SFID, 0, {}, {}}, eCode);
    }
    Put(stAnswer.Span(), SFParamSet::u32SFID, u32SFID, ServiceFlowRecord::stProvisionedSet);
    Tell(SUBTYPE_DSD, stRequest, stAnswer, eCode);
}

void ServiceFlows::Delete(const Flow *pstFlow) {
    m_astFlows.erase(std::find_if(m_astFlows.begin(), m_astFlows.end(),
                                  [&](const Flow &stFlow) { return &stFlow == pstFlow; }));
    FollowFlows();
}

// The flow of a connection, which hosts know by the modem's number for it, as the log of
// connections has it, or by its CID, as the flow's record has it.
Flow *ServiceFlows::FlowOfConnection(uint32_t u32Connection) {
    for (const Connection &stConnection : m_stModem.TheSignalling().Connections()) {
        if (stConnection.u32VCID == u32Connection && stConnection.u32SFID != 0) {
            return FlowWith(&Flow::u32SFID, stConnection.u32SFID);
        }
    }
    return FlowWith(&Flow::u32CID, u32Connection);
}

// Nothing answers it, and the flow's sets are as they were: the packets go out in other
// allocations from now on, and the station keeps the capacity for them free.
int32_t ServiceFlows::ChangeGrant(const Request &stRequest) {
    const ByteView stPayload = stRequest.stPayload;
    const uint32_t u32Bytes = Get(stPayload, GrantChangeRequest::u32PayloadBytesPerUGI);
    const uint32_t u32SDUs = Get(stPayload, GrantChangeRequest::u32SDUsPerUGI);
    Flow *pstFlow = FlowOfConnection(Get(stPayload, GrantChangeRequest::u16VCID));
    if (pstFlow == nullptr || !LinkUp() || !TakesGrants(*pstFlow)) {
        return LibraryError::BadValue;
    }
    Flow stChanged = *pstFlow;
    stChanged.u64GrantedRate = u64GrantsPerSecond * 8 * u32Bytes;
    const uint64_t u64MostRate = Get(SetOf(stChanged.stRecord, ServiceFlowRecord::stActiveSet),
                                     SFParamSet::u32MaxSustainedTrafficRate);
    const bool bTooFast = u64MostRate != 0 && stChanged.u64GrantedRate > u64MostRate;
    if ((u32Bytes != 0 && (u32SDUs == 0 || u32SDUs > u32Bytes)) || bTooFast ||
        Admit(stChanged) != Accepted) {
        return LibraryError::BadValue;
    }
    // The headers of the packets, and whole slots.
    const uint64_t u64Grant =
        (uint64_t{u32Bytes} + uint64_t{u32SDUs} * u32PDUOverhead + u32SlotBytes - 1) /
        u32SlotBytes * u32SlotBytes;
    stChanged.stGrant = {
        u32Bytes,
        u32Bytes == 0 ? 0 : static_cast<uint32_t>(std::min<uint64_t>(u64Grant, u32LargestGrant))};
    *pstFlow = stChanged;
    FollowFlows();
    return 0;
}

// Sends the record as the answer in the request's transaction, once all of it is over.
void ServiceFlows::Tell(uint32_t u32SubType, ByteView stRequest, FlowBytes stRecord,
                        Confirmation eCode) {
    const ByteSpan stTo = stRecord.Span();
    Put(stTo, ServiceFlowRecord::u8MsgCode, Get(stRequest, ServiceFlowRecord::u8MsgCode));
    Put(stTo, ServiceFlowRecord::u16TID, Get(stRequest, ServiceFlowRecord::u16TID));
    Put(stTo, ServiceFlowRecord::u8ConfirmationCode, eCode);
    m_stModem.TellOnceSaid(TYPE_SERVICE_FLOW, u32SubType, stTo);
}

std::vector<uint8_t> ServiceFlows::ActiveSFIDs() const {
    using namespace MIBActiveSFIDs;
    const auto u32Count = static_cast<uint32_t>(m_astFlows.size());
    std::vector<uint8_t> aucValue(astEntries + u32Count * EntrySize);
    const ByteSpan stValue{aucValue.data(), static_cast<uint32_t>(aucValue.size())};
    Put(stValue, MIBActiveSFIDs::u32Count, u32Count);
    for (uint32_t i = 0; i < u32Count; ++i) {
        Put(stValue, u32SFID, m_astFlows[i].u32SFID, astEntries + i * EntrySize);
    }
    return aucValue;
}

} // namespace

std::unique_ptr<Subsystem> MakeServiceFlows(Modem &stModem) {
    return std::make_unique<ServiceFlows>(stModem);
}
