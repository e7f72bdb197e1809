#include "library/Faults.h"

#include <array>
#include <limits>

#include "Wire.h"

namespace {

// A message with nothing behind it to overtake it is not held back longer.
constexpr ModemTime i64HoldLimit = 2 * i64Second;

ByteSpan SpanOf(MessageBytes &aucMessage) {
    return {aucMessage.data(), static_cast<uint32_t>(aucMessage.size())};
}

std::optional<uint32_t> Optional(const Section &stSection, const char *pcKey, uint32_t u32Most) {
    if (!stSection.Has(pcKey)) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(stSection.Integer(pcKey, 0, u32Most));
}

} // namespace

const std::array<ScenarioWord, 7> Faults::astKinds{
    ScenarioWord{"fail", Fail},       ScenarioWord{"drop", Drop},
    ScenarioWord{"delay", Delay},     ScenarioWord{"repeat", Repeat},
    ScenarioWord{"reorder", Reorder}, ScenarioWord{"truncate", Truncate},
    ScenarioWord{"corrupt", Corrupt},
};

Faults::Faults(const Section &stRoot, uint64_t u64Seed, Scheduler &stScheduler, Deliver pfnDeliver,
               Deliver pfnLose)
    : m_u64Seed(u64Seed), m_stScheduler(stScheduler), m_pfnDeliver(std::move(pfnDeliver)),
      m_pfnLose(std::move(pfnLose)), m_stHoldLimit(stScheduler) {
    for (const Section &stSection : stRoot.Tables("fault")) {
        Add(Read(stSection));
    }
}

uint32_t Faults::Add(Fault stFault) {
    m_astFaults.push_back(std::move(stFault));
    return static_cast<uint32_t>(m_astFaults.size());
}

bool Faults::Switch(uint32_t u32Number, bool bOn) {
    if (u32Number == 0 || u32Number > m_astFaults.size()) {
        return false;
    }
    m_astFaults[u32Number - 1].bOn = bOn;
    return true;
}

void Faults::SwitchAll(bool bOn) {
    for (Fault &stFault : m_astFaults) {
        stFault.bOn = bOn;
    }
}

uint64_t Faults::SeedOfFault(size_t uIndex) const {
    return SeedFor(m_u64Seed, "fault " + std::to_string(uIndex));
}

void Faults::SetSeed(uint64_t u64Seed) {
    m_u64Seed = u64Seed;
    for (Fault &stFault : m_astFaults) {
        stFault.u64Seed = SeedOfFault(static_cast<size_t>(&stFault - m_astFaults.data()));
        stFault.astRandoms.clear();
    }
}

std::vector<FaultReport> Faults::Reports() const {
    std::vector<FaultReport> astReports;
    for (const Fault &stFault : m_astFaults) {
        astReports.push_back({static_cast<uint32_t>(astReports.size()) + 1,
                              astKinds[stFault.u32Kind].pcWord, stFault.bOn, stFault.u64Hits});
    }
    return astReports;
}

Faults::Fault Faults::Read(const Section &stSection) const {
    constexpr uint32_t u32Always = std::numeric_limits<uint32_t>::max();
    Fault stFault{stSection.Choice("kind", astKinds),
                  Optional(stSection, "type", UINT16_MAX),
                  Optional(stSection, "subtype", UINT16_MAX),
                  static_cast<uint32_t>(stSection.Integer("skip", 0, u32Always, 0)),
                  static_cast<uint32_t>(stSection.Integer("count", 1, u32Always, u32Always)),
                  stSection.Number("probability", 0, 1, 1),
                  0,
                  0,
                  0,
                  std::nullopt,
                  std::nullopt,
                  {},
                  SeedOfFault(m_astFaults.size()),
                  {}};
    // Only the keys of its kind have a meaning.
    switch (stFault.u32Kind) {
    case Fail:
        stFault.iCode = static_cast<int32_t>(stSection.Integer("code", INT32_MIN, -1));
        break;
    case Delay:
        stFault.iDelay = stSection.Seconds("seconds", 0, 1e6);
        break;
    case Repeat:
        stFault.u32Times = static_cast<uint32_t>(stSection.Integer("times", 1, 1000, 1));
        break;
    case Truncate:
        stFault.u32Length = Optional(stSection, "length", WIMAX_DATA_SIZE);
        break;
    case Corrupt:
        stFault.u32Offset = Optional(stSection, "offset", WIMAX_DATA_SIZE - 1);
        stFault.aucBytes = stSection.Bytes("bytes", WIMAX_DATA_SIZE);
        break;
    default:
        break;
    }
    return stFault;
}

bool Faults::Fault::Hits(uint32_t u32OfType, uint32_t u32OfSubType) {
    if (!bOn || u32Type.value_or(u32OfType) != u32OfType ||
        u32SubType.value_or(u32OfSubType) != u32OfSubType) {
        return false;
    }
    if (u32Skip != 0) {
        --u32Skip;
        return false;
    }
    if (u32Left == 0 || !RandomFor(u32OfType, u32OfSubType).Chance(fProbability)) {
        return false;
    }
    if (u32Left != std::numeric_limits<uint32_t>::max()) {
        --u32Left;
    }
    ++u64Hits;
    return true;
}

Random &Faults::Fault::RandomFor(uint32_t u32OfType, uint32_t u32OfSubType) {
    const std::pair stKind{u32OfType, u32OfSubType};
    const auto stNew = [&] {
        return Random(u64Seed, std::to_string(u32OfType) + "/" + std::to_string(u32OfSubType));
    };
    const auto Found = astRandoms.find(stKind);
    return Found != astRandoms.end() ? Found->second
                                     : astRandoms.emplace(stKind, stNew()).first->second;
}

std::optional<int32_t> Faults::SendFailure(uint32_t u32Type, uint32_t u32SubType) {
    for (Fault &stFault : m_astFaults) {
        if (stFault.u32Kind == Fail && stFault.Hits(u32Type, u32SubType)) {
            return stFault.iCode;
        }
    }
    return std::nullopt;
}

void Faults::Pass(MessageBytes aucMessage) { PassFrom(0, std::move(aucMessage)); }

void Faults::PassFrom(size_t uFirst, MessageBytes aucMessage) {
    uint32_t u32Copies = 1;
    bool bHoldBack = false;
    for (size_t i = uFirst; i < m_astFaults.size(); ++i) {
        Fault &stFault = m_astFaults[i];
        const ByteView stBytes = SpanOf(aucMessage);
        if (stFault.u32Kind == Fail || !stFault.Hits(Get(stBytes, MessageHeader::usType),
                                                     Get(stBytes, MessageHeader::usSubType))) {
            continue;
        }
        switch (stFault.u32Kind) {
        case Drop:
            m_pfnLose(std::move(aucMessage));
            return;
        case Delay:
            m_stScheduler.After(stFault.iDelay,
                                [this, i, aucLate = std::move(aucMessage)]() mutable {
                                    PassFrom(i + 1, std::move(aucLate));
                                });
            return;
        case Repeat:
            u32Copies += stFault.u32Times;
            break;
        case Reorder:
            bHoldBack = true;
            break;
        default:
            DamageMessage(stFault, &aucMessage);
            break;
        }
    }
    if (bHoldBack) {
        m_astHeldBack.insert(m_astHeldBack.end(), u32Copies, aucMessage);
        m_stHoldLimit.Start(i64HoldLimit, [this] { LetOut({}); });
        return;
    }
    for (uint32_t i = 1; i < u32Copies; ++i) {
        m_pfnDeliver(aucMessage);
    }
    LetOut(std::move(aucMessage));
}

void Faults::DamageMessage(Fault &stFault, MessageBytes *paucMessage) {
    const ByteView stBytes = SpanOf(*paucMessage);
    Random &stRandom = stFault.RandomFor(Get(stBytes, MessageHeader::usType),
                                         Get(stBytes, MessageHeader::usSubType));
    const auto u32Payload = static_cast<uint32_t>(paucMessage->size()) - MessageHeader::Size;
    if (stFault.u32Kind == Truncate) {
        const uint32_t u32Length = stFault.u32Length.value_or(stRandom.Below(u32Payload));
        paucMessage->resize(MessageHeader::Size + std::min(u32Length, u32Payload));
        return;
    }
    // Numbers that counts and lengths should never have.
    static constexpr std::array<uint32_t, 8> au32Wild{0xFFFFFFFF, 0x7FFFFFFF, 0x80000000,
                                                      0x00010000, 0x000000FF, 0x00000100,
                                                      0x00002801, 0x00000015};
    const ByteSpan stPayload = SpanOf(*paucMessage).From(MessageHeader::Size);
    if (!stFault.aucBytes.empty()) {
        PutBytes(stPayload, stFault.u32Offset.value_or(stRandom.Below(u32Payload)),
                 {stFault.aucBytes.data(), static_cast<uint32_t>(stFault.aucBytes.size())});
        return;
    }
    constexpr Field stWord{0, FieldType::U32};
    const uint32_t u32Hits = 1 + stRandom.Below(3);
    for (uint32_t i = 0; i < u32Hits; ++i) {
        const uint32_t u32Value = au32Wild[stRandom.Below(au32Wild.size())];
        Put(stPayload, stWord, u32Value, stFault.u32Offset.value_or(stRandom.Below(u32Payload)));
    }
}

void Faults::LetOut(MessageBytes aucMessage) {
    if (!aucMessage.empty()) {
        m_pfnDeliver(std::move(aucMessage));
    }
    for (MessageBytes &aucHeld : m_astHeldBack) {
        m_pfnDeliver(std::move(aucHeld));
    }
    m_astHeldBack.clear();
    m_stHoldLimit.Stop();
}
