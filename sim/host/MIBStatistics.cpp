// The MIB attributes that report on the radio environment, the way into the
// network and the traffic.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "air/PhysicalLayer.h"
#include "host/HostSubsystems.h"
#include "host/MIBStore.h"
#include "link/Link.h"
#include "scenario/StateFile.h"

namespace {

using Bytes = MIBStore::Bytes;
using CounterGroup = std::array<uint32_t, MIBCounterGroup::Count>;

constexpr ModemTime i64Sampling = i64Second;

// A zone's counters: by matrix or pilot pattern, in the order of the records.
enum Pattern : uint32_t { PatternA, PatternB, NoPattern, Patterns };

struct Zone {
    uint32_t u32LastFrame = 0;
    std::array<CounterGroup, Patterns> au32Bursts{};
    std::array<CounterGroup, Patterns> au32Pdus{};
};

// Good signals go with matrix B, fair ones with matrix A, in zones of their own.
constexpr double fMatrixB = 20;
constexpr double fMatrixA = 10;

Pattern PatternAt(double fCINR) {
    if (fCINR >= fMatrixB) {
        return PatternB;
    }
    return fCINR >= fMatrixA ? PatternA : NoPattern;
}

constexpr std::array<uint32_t, Patterns> au32ZoneOfPattern{1, 2, 0};

// The groups of all patterns, one behind the other.
void PutGroups(ByteSpan stTo, uint32_t u32Offset,
               const std::array<CounterGroup, Patterns> &aau32Groups) {
    for (const CounterGroup &au32Group : aau32Groups) {
        for (uint32_t i = 0; i < MIBCounterGroup::Count; ++i) {
            Put(stTo, MIBCounterGroup::s32First, au32Group[i], u32Offset + 4 * i);
        }
        u32Offset += MIBCounterGroup::Size;
    }
}

// Numbers of 1/65536, as the measured list carries them: without a sign.
uint32_t Sixteenth(double fValue) { return Rounded(std::max(fValue, 0.0) * 65536); }

// The counters of lost messages, in the order of the attribute.
enum DropCounter : uint32_t {
    Responses,
    ServiceFlowResponses,
    LinkControl,
    StatusResponses,
    StatisticsReports,
    IdleMode,
    Authentication,
    LowPriority,
    DropCounters
};

DropCounter DropCounterOf(uint32_t u32Type) {
    switch (u32Type) {
    case TYPE_SERVICE_FLOW:
        return ServiceFlowResponses;
    case TYPE_NETWORK_ENTRY:
        return LinkControl;
    case TYPE_CHIPSET:
    case TYPE_SHUTDOWN:
    case TYPE_HALF_MINI_CARD:
        return StatusResponses;
    case TYPE_STATISTICS:
        return StatisticsReports;
    case TYPE_IDLE_MODE:
        return IdleMode;
    case TYPE_AUTHENTICATION:
        return Authentication;
    case TYPE_START_LOGGER:
    case TYPE_MAC_MGMT:
    case TYPE_MAC_LOGGING:
    case TYPE_PHY_LOGGING:
        return LowPriority;
    default:
        return Responses;
    }
}

constexpr size_t uMostMRUEntries = 10;

class MIBStatistics : public Subsystem {
  public:
    explicit MIBStatistics(Modem &stModem);
    void Start() override;

  private:
    static constexpr const char *pcStateSection = "mib-mru";
    static constexpr const char *pcStateKey = "table";

    struct MRUEntry {
        uint32_t u32Bandwidth; // kHz
        std::vector<uint32_t> au32Frequencies;
    };

    void OnLinkChange(const LinkChange &stChange);
    // Counts a burst under the conditions of its frame.
    void CountBurst(const UserBurst &stBurst);
    void Measure();
    // Looks at the conditions once a second.
    void Sample();
    void ClearAttempts();
    void NoteUsed(const Station &stStation);
    std::vector<const Station *> Neighbours(uint32_t u32Most) const;
    template <typename Entry> Bytes List(uint32_t u32EntrySize, Entry pfnPutEntry) const;

    Bytes ZoneBursts() const;
    Bytes ZoneStatistics();
    Bytes NetworkEntryTiming() const;
    Bytes MRUTable() const;
    Bytes TriggerStatus() const;
    uint8_t Trigger(bool bSameFrequency) const;
    Bytes Attempts(bool bDownlink) const;
    Bytes BurstErrorRate() const;
    Bytes SubmapErrors();
    Bytes MessagesDropped() const;
    Bytes StrengthOf(double Measurement::*pfMember, double Measurement::*pfLess) const;

    Modem &m_stModem;
    Link &m_stLink;
    std::array<Zone, MIBZoneStatistics::NumDLZones> m_astDLZones;
    std::array<Zone, MIBZoneStatistics::NumULZones> m_astULZones;
    uint32_t m_u32DLBursts = 0;
    uint32_t m_u32ULBursts = 0;
    // Of those, how many were left after so many attempts.
    std::array<double, u32MostAttempts> m_afDLBurstsAfter{};
    std::array<double, u32MostAttempts> m_afULBurstsAfter{};
    uint32_t m_u32SubmapErrors = 0;
    ModemTime m_iSampled = 0; // of the time that traffic has flowed
    double m_fReuseOneCINR = 0;
    double m_fCINR = 0; // when it could be measured last
    ModemTime m_iSyncBegan = 0;
    ModemTime m_iSyncTime = 0;
    std::vector<MRUEntry> m_astMRU; // the one used last is the first
    Timer m_stSampling;
};

Bytes Words(std::initializer_list<uint32_t> au32Words) {
    Bytes aucValue(au32Words.size() * 4);
    uint32_t u32At = 0;
    for (const uint32_t u32Word : au32Words) {
        Put({aucValue.data(), static_cast<uint32_t>(aucValue.size())}, Field{0, FieldType::U32},
            u32Word, u32At);
        u32At += 4;
    }
    return aucValue;
}

template <uint32_t u32Size> Bytes BytesIn(const Record<u32Size> &stRecord) {
    return {std::begin(stRecord.aucBytes), std::end(stRecord.aucBytes)};
}

MIBStatistics::MIBStatistics(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stSampling(stModem.Clock()) {
    using namespace MIBAttribute;
    MIBStore &stMIBs = stModem.TheMIBs();
    stMIBs.Provide(MIBAttribute::ZoneBursts, [this] { return ZoneBursts(); });
    stMIBs.Provide(MIBAttribute::ZoneStatistics, [this] { return ZoneStatistics(); });
    stMIBs.Provide(MIBAttribute::NetworkEntryTiming, [this] { return NetworkEntryTiming(); });
    stMIBs.Provide(MIBAttribute::MRUTable, [this] { return MRUTable(); });
    stMIBs.Provide(MIBAttribute::TriggerStatus, [this] { return TriggerStatus(); });
    stMIBs.Provide(PerAttemptReceived, [this] { return Attempts(true); });
    stMIBs.Provide(PerAttemptCompleted, [this] { return Attempts(false); });
    stMIBs.Provide(MIBAttribute::BurstErrorRate, [this] { return BurstErrorRate(); });
    stMIBs.Provide(MIBAttribute::SubmapErrors, [this] { return SubmapErrors(); });
    // No sounding is asked for: no map has a zone for it.
    stMIBs.Provide(SoundingType, [] { return Words({0, 0, 0, 0}); });
    stMIBs.Provide(ControlMessagesDropped, [this] { return MessagesDropped(); });
    // Both without their minus sign: the signal, and what it has to stand out from.
    stMIBs.Provide(Negated1467, [this] { return StrengthOf(&Measurement::fRSSI, nullptr); });
    stMIBs.Provide(Negated1468,
                   [this] { return StrengthOf(&Measurement::fRSSI, &Measurement::fCINR); });
    stMIBs.Provide(MIBAttribute::Neighbours, [this] {
        return List(MIBNeighbour::Size,
                    [](ByteSpan stTo, const Station &stStation, const Measurement &stMeasurement) {
                        using namespace MIBNeighbour;
                        Put(stTo, u32Preamble, stStation.u32Preamble);
                        Put(stTo, u32ChannelBandwidth, stStation.u32Bandwidth * 1000);
                        Put(stTo, u32CenterFrequency, Rounded(stStation.u32Frequency / 125.0));
                        for (uint32_t i = 0; i < BSIDSize; ++i) {
                            Put(stTo, aucBSID, stStation.aucBSID[BSIDSize - 1 - i], i);
                        }
                        Put(stTo, s32RSSI, Rounded(stMeasurement.fRSSI * 4));
                        Put(stTo, u32CINR, Rounded(stMeasurement.fCINR));
                    });
    });
    stMIBs.Provide(MeasuredNeighbours, [this] {
        return List(MIBMeasuredNeighbour::Size, [this](ByteSpan stTo, const Station &stStation,
                                                       const Measurement &stMeasurement) {
            using namespace MIBMeasuredNeighbour;
            const Radio &stAir = m_stModem.Air();
            const double fRoundTrip =
                RoundTrip(stAir.Distance(stStation, m_stModem.Now()), stStation.u32Bandwidth);
            Put(stTo, u32PreambleID, stStation.u32Preamble);
            Put(stTo, u32Frequency, Rounded(stStation.u32Frequency / 125.0));
            Put(stTo, u32Bandwidth, stStation.u32Bandwidth * 1000);
            PutBytes(stTo, aucBSID.u16Offset, {stStation.aucBSID.data(), u32BSIDSize});
            Put(stTo, u32R1CINR, Sixteenth(stAir.ReuseOneCINR(stStation, m_stModem.Now())));
            Put(stTo, u32R3CINR, Sixteenth(stMeasurement.fCINR));
            Put(stTo, u32RSSI, Sixteenth(-stMeasurement.fRSSI));
            Put(stTo, u32ToF, Rounded(fRoundTrip / 2 * 16));
            Put(stTo, u32RTD, Rounded(fRoundTrip));
            Put(stTo, u32MeasDur, 4);
            Put(stTo, u32Flags, 3);
        });
    });
    stMIBs.Provide(CenterFrequencyAndBandwidth, [this] {
        Record<MIBCenterFrequency::Size> stValue;
        if (const Station *pstServing = m_stLink.Serving()) {
            Put(stValue.Span(), MIBCenterFrequency::u32CenterFrequency, pstServing->u32Frequency);
            Put(stValue.Span(), MIBCenterFrequency::u32Bandwidth, pstServing->u32Bandwidth);
        }
        return BytesIn(stValue);
    });
    stModem.OnConfiguredChannel([&stMIBs] {
        const Bytes aucValue = stMIBs.ValueOf(CenterFrequencyAndBandwidth);
        const ByteView stValue{aucValue.data(), static_cast<uint32_t>(aucValue.size())};
        return Channel{Get(stValue, MIBCenterFrequency::u32CenterFrequency),
                       Get(stValue, MIBCenterFrequency::u32Bandwidth)};
    });
    stMIBs.OnWrite(MRUReset, [this](ByteView) {
        m_astMRU.clear();
        m_stModem.TheStateFile().Keep(pcStateSection, pcStateKey, MRUTable());
    });
    // Writing counters, where that is open, sets them to zero.
    for (const uint32_t u32ID : {MIBAttribute::ZoneBursts, MIBAttribute::ZoneStatistics}) {
        stMIBs.OnWrite(u32ID, [this](ByteView) {
            m_astDLZones = {};
            m_astULZones = {};
        });
    }
    for (const uint32_t u32ID : {PerAttemptReceived, PerAttemptCompleted}) {
        stMIBs.OnWrite(u32ID, [this](ByteView) { ClearAttempts(); });
    }
    m_stLink.Observe([this](const LinkChange &stChange) { OnLinkChange(stChange); });
    m_stLink.OnMove([this] { NoteUsed(*m_stLink.Serving()); });
    stModem.UserTraffic().OnBurst([this](const UserBurst &stBurst) { CountBurst(stBurst); });
}

void MIBStatistics::Start() {
    m_astDLZones = {};
    m_astULZones = {};
    ClearAttempts();
    m_u32SubmapErrors = 0;
    m_iSampled = 0;
    m_iSyncTime = 0;
    m_stModem.History() = {};
    m_astMRU.clear();
    const StateFile::Values &stKept = m_stModem.TheStateFile().Kept(pcStateSection);
    if (const auto Found = stKept.find(pcStateKey); Found != stKept.end()) {
        const ByteView stTable{Found->second.data(), static_cast<uint32_t>(Found->second.size())};
        for (uint32_t u32At = 0; u32At < stTable.u32Length; u32At += MIBMRUEntry::Size) {
            MRUEntry stEntry{Get(stTable, MIBMRUEntry::u32Bandwidth, u32At) * 1000, {}};
            for (uint32_t i = 0; i < MIBMRUEntry::NumFrequencies; ++i) {
                const uint32_t u32Frequency =
                    Get(stTable, MIBMRUEntry::au32Frequencies, u32At + 4 * i);
                if (u32Frequency != 0) {
                    stEntry.au32Frequencies.push_back(u32Frequency);
                }
            }
            m_astMRU.push_back(stEntry);
        }
    }
    m_stSampling.Stop();
    if (m_stLink.State() == LinkState::LinkUp) {
        NoteUsed(*m_stLink.Serving());
        Sample();
    }
}

void MIBStatistics::OnLinkChange(const LinkChange &stChange) {
    if (stChange.eAfter == LinkState::Synchronising) {
        m_iSyncBegan = m_stModem.Now();
    } else if (stChange.eBefore == LinkState::Synchronising &&
               stChange.eAfter == LinkState::Synchronised) {
        m_iSyncTime = m_stModem.Now() - m_iSyncBegan;
    } else if (stChange.eBefore == LinkState::Entering && stChange.eAfter == LinkState::LinkUp) {
        NoteUsed(*m_stLink.Serving());
    }
    Sample();
}

void MIBStatistics::Measure() {
    if (m_stLink.Serving() != nullptr) {
        m_fCINR = m_stModem.Air().Measure(*m_stLink.Serving(), m_stModem.Now()).fCINR;
        m_fReuseOneCINR = m_stModem.Air().ReuseOneCINR(*m_stLink.Serving(), m_stModem.Now());
    }
}

void MIBStatistics::CountBurst(const UserBurst &stBurst) {
    Measure();
    const Pattern ePattern = stBurst.bUplink ? NoPattern : PatternAt(m_fCINR);
    const double fCINR = stBurst.bUplink ? m_fCINR - fUplinkLoss : m_fCINR;
    const BurstProfile &stProfile = ProfileAt(fCINR);
    Zone &stZone = stBurst.bUplink ? m_astULZones[0] : m_astDLZones[au32ZoneOfPattern[ePattern]];
    stZone.u32LastFrame = stBurst.u32Frame;
    ++stZone.au32Bursts[ePattern][stProfile.u32Counter];
    stZone.au32Pdus[ePattern][stProfile.u32Counter] +=
        static_cast<uint32_t>(stBurst.astPDUs.size());
    ++(stBurst.bUplink ? m_u32ULBursts : m_u32DLBursts);
    double fLeft = 1;
    for (uint32_t i = 0; i < u32MostAttempts; ++i) {
        fLeft *= FailureRate(stProfile, fCINR, i + 1);
        (stBurst.bUplink ? m_afULBurstsAfter : m_afDLBurstsAfter)[i] += fLeft;
    }
}

void MIBStatistics::Sample() {
    Measure();
    const ModemTime iFlowed = m_stModem.UserTraffic().Totals().iTimeFlowing;
    if (m_fCINR < 5) {
        m_u32SubmapErrors += static_cast<uint32_t>((iFlowed - m_iSampled) / i64Frame / 50);
    }
    m_iSampled = iFlowed;
    if (m_stLink.State() == LinkState::LinkUp) {
        m_stSampling.Start(i64Sampling, [this] { Sample(); });
    } else {
        m_stSampling.Stop();
    }
}

void MIBStatistics::ClearAttempts() {
    m_u32DLBursts = m_u32ULBursts = 0;
    m_afDLBurstsAfter = {};
    m_afULBurstsAfter = {};
}

Bytes MIBStatistics::ZoneBursts() const {
    using namespace MIBBurstZone;
    Record<Count * Size> stValue;
    for (uint32_t i = 0; i < Count; ++i) {
        const ByteSpan stZone = stValue.Span().From(i * Size, Size);
        PutGroups(stZone, stMatrixA, m_astDLZones[i].au32Bursts);
    }
    return BytesIn(stValue);
}

Bytes MIBStatistics::ZoneStatistics() {
    Measure();
    Record<MIBZoneStatistics::Size> stValue;
    Put(stValue.Span(), MIBZoneStatistics::u32MajorGroup, m_stLink.Serving() != nullptr ? 0x3F : 0);
    for (uint32_t i = 0; i < MIBZoneStatistics::NumDLZones; ++i) {
        using namespace MIBDLZone;
        const ByteSpan stZone = stValue.Span().From(MIBZoneStatistics::astDLZones + i * Size, Size);
        const Zone &stCounters = m_astDLZones[i];
        if (stCounters.u32LastFrame != 0) {
            const uint32_t u32CINR = Rounded(std::clamp(m_fCINR, -100.0, 100.0));
            Put(stZone, u32FrameNumber, stCounters.u32LastFrame);
            Put(stZone, s8PCINRRate1, Rounded(std::clamp(m_fReuseOneCINR, -100.0, 100.0)));
            Put(stZone, s8PCINRRate2, u32CINR);
            Put(stZone, s8ECINRRate, u32CINR);
            Put(stZone, s32PCINRFrame, stCounters.u32LastFrame);
            Put(stZone, s32ECINRFrame, stCounters.u32LastFrame);
        }
        PutGroups(stZone, stBurstsMatrixA, stCounters.au32Bursts);
        PutGroups(stZone, stPdusMatrixA, stCounters.au32Pdus);
    }
    for (uint32_t i = 0; i < MIBZoneStatistics::NumULZones; ++i) {
        using namespace MIBULZone;
        const ByteSpan stZone = stValue.Span().From(MIBZoneStatistics::astULZones + i * Size, Size);
        const Zone &stCounters = m_astULZones[i];
        Put(stZone, u32FrameNumber, stCounters.u32LastFrame);
        PutGroups(stZone, stBurstsPilotA, stCounters.au32Bursts);
        PutGroups(stZone, stPdusPilotA, stCounters.au32Pdus);
    }
    return BytesIn(stValue);
}

// In milliseconds; nothing before the first entry.
Bytes MIBStatistics::NetworkEntryTiming() const {
    using namespace MIBNetworkEntryTiming;
    const auto &aiTimes = m_stLink.EntryTimes();
    const Modem::EntryHistory &stHistory = m_stModem.History();
    Record<Size> stValue;
    const auto PutTime = [&](Field stField, ModemTime iTime) {
        Put(stValue.Span(), stField, static_cast<uint32_t>(std::max<ModemTime>(iTime, 0) / 1000));
    };
    const auto Stage = [&](uint32_t u32Stage) { return aiTimes[u32Stage + 1] - aiTimes[u32Stage]; };
    // The frame structure is found in the last third.
    const ModemTime iMacSync = m_iSyncTime / 3;
    PutTime(u32NwSearchTime, stHistory.iSearch);
    PutTime(u32PhySyncTime, m_iSyncTime - iMacSync);
    PutTime(u32MacSyncTime, iMacSync);
    if (m_stLink.Registered() && aiTimes[u32EntryStages] != 0) {
        PutTime(u32RangingTime, Stage(0));
        PutTime(u32SbcTime, Stage(1));
        PutTime(u32AuthPhaseTime, Stage(2) + Stage(4)); // the second: traffic keys
        PutTime(u32RegNegTime, Stage(3));
        PutTime(u32ProvSfTime, stHistory.iProvisioning);
        PutTime(u32NwEntryTime,
                aiTimes[u32EntryStages] - aiTimes[0] + m_iSyncTime + stHistory.iProvisioning);
    }
    return BytesIn(stValue);
}

// An entry for each bandwidth, with the frequencies used last.
void MIBStatistics::NoteUsed(const Station &stStation) {
    const auto SameBandwidth = [&](const MRUEntry &stEntry) {
        return stEntry.u32Bandwidth / 1000 == stStation.u32Bandwidth / 1000;
    };
    const auto Found = std::find_if(m_astMRU.begin(), m_astMRU.end(), SameBandwidth);
    MRUEntry stEntry{stStation.u32Bandwidth, {}};
    if (Found != m_astMRU.end()) {
        stEntry = *Found;
        m_astMRU.erase(Found);
    }
    std::vector<uint32_t> &au32Frequencies = stEntry.au32Frequencies;
    au32Frequencies.erase(
        std::remove(au32Frequencies.begin(), au32Frequencies.end(), stStation.u32Frequency),
        au32Frequencies.end());
    au32Frequencies.insert(au32Frequencies.begin(), stStation.u32Frequency);
    au32Frequencies.resize(std::min<size_t>(au32Frequencies.size(), MIBMRUEntry::NumFrequencies));
    m_astMRU.insert(m_astMRU.begin(), stEntry);
    m_astMRU.resize(std::min(m_astMRU.size(), uMostMRUEntries));
    m_stModem.TheStateFile().Keep(pcStateSection, pcStateKey, MRUTable());
}

Bytes MIBStatistics::MRUTable() const {
    using namespace MIBMRUEntry;
    Bytes aucValue(m_astMRU.size() * Size);
    const ByteSpan stValue{aucValue.data(), static_cast<uint32_t>(aucValue.size())};
    for (uint32_t i = 0; i < m_astMRU.size(); ++i) {
        Put(stValue, u32Index, i, i * Size);
        for (uint32_t k = 0; k < m_astMRU[i].au32Frequencies.size(); ++k) {
            Put(stValue, au32Frequencies, m_astMRU[i].au32Frequencies[k], i * Size + 4 * k);
        }
        Put(stValue, u32Bandwidth, m_astMRU[i].u32Bandwidth / 1000, i * Size);
    }
    return aucValue;
}

// The other stations of the network that the modem is in, as far as it hears them.
std::vector<const Station *> MIBStatistics::Neighbours(uint32_t u32Most) const {
    std::vector<const Station *> apstFound;
    const Station *pstServing = m_stLink.Serving();
    for (const Station &stStation : m_stModem.Air().Stations()) {
        if (pstServing != nullptr && &stStation != pstServing && apstFound.size() < u32Most &&
            stStation.NAPID() == pstServing->NAPID() &&
            m_stModem.Air().Receivable(stStation, m_stModem.Now())) {
            apstFound.push_back(&stStation);
        }
    }
    return apstFound;
}

template <typename Entry>
Bytes MIBStatistics::List(uint32_t u32EntrySize, Entry pfnPutEntry) const {
    using namespace MIBNeighbourList;
    const std::vector<const Station *> apstStations =
        Neighbours((WIMAX_DATA_SIZE - MIBRecord::aucValue - astEntries) / u32EntrySize);
    Bytes aucValue(astEntries + apstStations.size() * u32EntrySize);
    const ByteSpan stValue{aucValue.data(), static_cast<uint32_t>(aucValue.size())};
    Put(stValue, u32Count, static_cast<uint32_t>(apstStations.size()));
    for (uint32_t i = 0; i < apstStations.size(); ++i) {
        pfnPutEntry(stValue.From(astEntries + i * u32EntrySize, u32EntrySize), *apstStations[i],
                    m_stModem.Air().Measure(*apstStations[i], m_stModem.Now()));
    }
    return aucValue;
}

uint8_t MIBStatistics::Trigger(bool bSameFrequency) const {
    const Station &stServing = *m_stLink.Serving();
    const auto RSSI = [this](const Station &stStation) {
        return m_stModem.Air().Measure(stStation, m_stModem.Now()).fRSSI;
    };
    const double fMargin = m_stModem.Air().Thresholds().fHysteresis;
    uint32_t u32Trigger = MIBTriggerStatus::NoMeasurements;
    for (const Station *pstStation : Neighbours(UINT32_MAX)) {
        if ((pstStation->u32Frequency == stServing.u32Frequency) == bSameFrequency &&
            u32Trigger != MIBTriggerStatus::Passed) {
            u32Trigger = RSSI(*pstStation) > RSSI(stServing) + fMargin ? MIBTriggerStatus::Passed
                                                                       : MIBTriggerStatus::Failed;
        }
    }
    return static_cast<uint8_t>(u32Trigger);
}

// A trigger passes when it is time to go elsewhere.
Bytes MIBStatistics::TriggerStatus() const {
    using namespace MIBTriggerStatus;
    if (m_stLink.Serving() == nullptr) {
        return Bytes(3, uint8_t{NotDefined});
    }
    const Radio &stAir = m_stModem.Air();
    const bool bWeak =
        stAir.Measure(*m_stLink.Serving(), m_stModem.Now()).fCINR < stAir.Thresholds().fScanCINR;
    return {static_cast<uint8_t>(bWeak ? Passed : Failed), Trigger(true), Trigger(false)};
}

// How many bursts got through at the first attempt, the second and so on, at the last one all that
// are left.
Bytes MIBStatistics::Attempts(bool bDownlink) const {
    const std::array<double, u32MostAttempts> &afLeft =
        bDownlink ? m_afDLBurstsAfter : m_afULBurstsAfter;
    uint32_t u32Before = bDownlink ? m_u32DLBursts : m_u32ULBursts;
    std::array<uint32_t, u32MostAttempts> au32Completed{};
    for (uint32_t i = 0; i < u32MostAttempts; ++i) {
        const bool bLast = i + 1 == u32MostAttempts;
        const uint32_t u32After = bLast ? 0 : static_cast<uint32_t>(afLeft[i]);
        au32Completed[i] = u32Before - u32After;
        u32Before = u32After;
    }
    return Words({au32Completed[0], au32Completed[1], au32Completed[2], au32Completed[3]});
}

// In thousandths, for each attempt that those before have made necessary.
Bytes MIBStatistics::BurstErrorRate() const {
    if (m_stLink.Serving() == nullptr) {
        return Words({0, 0, 0, 0});
    }
    const double fCINR = m_stModem.Air().Measure(*m_stLink.Serving(), m_stModem.Now()).fCINR;
    const auto PerMille = [fCINR](uint32_t u32Attempt) {
        return Rounded(1000 * FailureRate(ProfileAt(fCINR), fCINR, u32Attempt));
    };
    return Words({PerMille(1), PerMille(2), PerMille(3), PerMille(4)});
}

Bytes MIBStatistics::SubmapErrors() {
    Sample();
    return Words({m_u32SubmapErrors, 0, 0, 0});
}

// What the client never got.
Bytes MIBStatistics::MessagesDropped() const {
    std::array<uint32_t, DropCounters> au32Dropped{};
    for (const auto &[u32Type, u32Count] : m_stModem.LostMessages()) {
        au32Dropped[DropCounterOf(u32Type)] += u32Count;
    }
    Bytes aucValue;
    for (const uint32_t u32Dropped : au32Dropped) {
        const Bytes aucWord = Words({u32Dropped});
        aucValue.insert(aucValue.end(), aucWord.begin(), aucWord.end());
    }
    return aucValue;
}

Bytes MIBStatistics::StrengthOf(double Measurement::*pfMember, double Measurement::*pfLess) const {
    if (m_stLink.Serving() == nullptr) {
        return Words({0});
    }
    const Measurement stMeasurement = m_stModem.Air().Measure(*m_stLink.Serving(), m_stModem.Now());
    const double fLess = pfLess != nullptr ? stMeasurement.*pfLess : 0;
    return Words({Rounded(fLess - stMeasurement.*pfMember)});
}

} // namespace

std::unique_ptr<Subsystem> MakeMIBStatistics(Modem &stModem) {
    return std::make_unique<MIBStatistics>(stModem);
}
