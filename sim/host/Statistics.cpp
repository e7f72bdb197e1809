// Baseband statistics: counters that grow with the link's time, its traffic and its
// errors; reported once or periodically.
#include <algorithm>
#include <array>

#include "StationRecords.h"
#include "air/PhysicalLayer.h"
#include "air/Signalling.h"
#include "host/HostSubsystems.h"
#include "link/Link.h"

namespace {

// The quality of the link is looked at so often, and what it comes to counted so often:
// whether anybody asks makes no difference.
constexpr ModemTime iLookPeriod = i64Second / 4;
constexpr ModemTime iCountPeriod = i64Second;
constexpr double fHCSShare = 0.25; // of the frames in error
constexpr ModemTime i64ShortestInterval = i64Frame;

class StatisticsReports : public Subsystem {
  public:
    explicit StatisticsReports(Modem &stModem);
    void Start() override;

  private:
    int32_t Report(uint32_t u32Interval);
    int32_t SetPolicy(uint32_t u32Policy);
    void ReportPeriodically();
    void Tell();
    struct Counters {
        uint64_t u64Frames = 0;
        uint64_t u64CQICH = 0;
        double fFramesInError = 0;
        double fCRCErrors = 0;
        uint64_t u64Requests = 0;
    };

    // The counters at this moment, but for the errors of packets, which are counted later.
    Counters CountersNow() const;
    // Counts what has happened since the last time.
    void CatchUp();
    void FollowLink(const LinkChange &stChange);
    void Resynchronised();
    double ErrorRate(double fCINR) const;
    void PutStation(ByteSpan stTo, const Station &stStation) const;

    Modem &m_stModem;
    Link &m_stLink;
    double m_fErrorFloor;
    bool m_bResetAtStart;

    bool m_bResetOnResync = false;
    ModemTime m_iInterval = 0;
    Timer m_stNext;

    // Since the last reset of the counters.
    Counters m_stCounters;
    Timer m_stCount;
    ModemTime m_iCountedUntil = 0;
    TrafficTotals m_stTrafficThen;
    const Station *m_pstServing = nullptr; // since m_iCountedUntil, null: not receiving
    bool m_bLinkUp = false;
};

StatisticsReports::StatisticsReports(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stNext(stModem.Clock()),
      m_stCount(stModem.Clock()) {
    const Section stSettings = stModem.Settings("statistics");
    m_fErrorFloor = stSettings.Number("error-rate", 0, 1, 0.0005);
    m_bResetAtStart = stSettings.Flag("reset-on-resync", false);
    stModem.On(TYPE_STATISTICS, SUBTYPE_STATISTICS, [this](const Request &stRequest) {
        return Report(Get(stRequest.stPayload, StatusWord::u32Value));
    });
    stModem.On(TYPE_STATISTICS, SUBTYPE_STATISTICS_RESET_CONTROL, [this](const Request &stRequest) {
        return SetPolicy(Get(stRequest.stPayload, StatusWord::u32Value));
    });
    m_stLink.Observe([this](const LinkChange &stChange) { FollowLink(stChange); });
    m_stLink.OnMove([this] {
        CatchUp();
        Resynchronised();
    });
    stModem.ThePresence().OnChange([this] { CatchUp(); });
}

void StatisticsReports::Start() {
    m_bResetOnResync = m_bResetAtStart;
    m_stNext.Stop();
    CatchUp();
    m_stCounters = {};
}

void StatisticsReports::FollowLink(const LinkChange &stChange) {
    CatchUp();
    const bool bSynchronised =
        stChange.eBefore == LinkState::Synchronising && stChange.eAfter == LinkState::Synchronised;
    if (bSynchronised) {
        Resynchronised();
    }
}

void StatisticsReports::Resynchronised() {
    if (m_bResetOnResync) {
        m_stCounters = {};
    }
}

double StatisticsReports::ErrorRate(double fCINR) const {
    return std::min(1.0, m_fErrorFloor + FailureRate(stBroadcastProfile, fCINR));
}

StatisticsReports::Counters StatisticsReports::CountersNow() const {
    Counters stNow = m_stCounters;
    if (m_pstServing == nullptr) {
        return stNow;
    }
    const Presence &stPresence = m_stModem.ThePresence();
    const ModemTime iNow = m_stModem.Now();
    for (ModemTime iFrom = m_iCountedUntil; iFrom < iNow; iFrom += iLookPeriod) {
        const double fRate =
            ErrorRate(m_stModem.Air().Measure(*m_pstServing, iFrom + iLookPeriod / 2).fCINR);
        const uint64_t u64Frames = stPresence.Heard(iFrom, std::min(iFrom + iLookPeriod, iNow));
        stNow.u64Frames += u64Frames;
        stNow.fFramesInError += fRate * static_cast<double>(u64Frames);
    }
    stNow.u64CQICH += m_bLinkUp ? stPresence.Heard(m_iCountedUntil, iNow, u32CQICHFrames) : 0;
    stNow.u64Requests += m_stModem.UserTraffic().Totals().u64Requests - m_stTrafficThen.u64Requests;
    return stNow;
}

void StatisticsReports::CatchUp() {
    const TrafficTotals stTraffic = m_stModem.UserTraffic().Totals();
    Counters stNow = CountersNow();
    const uint64_t u64Frames = stNow.u64Frames - m_stCounters.u64Frames;
    if (u64Frames != 0) {
        const double fErrors = stNow.fFramesInError - m_stCounters.fFramesInError;
        const uint64_t u64PDUs = stTraffic.stDownlink.u64PDUs - m_stTrafficThen.stDownlink.u64PDUs;
        stNow.fCRCErrors += fErrors / static_cast<double>(u64Frames) * static_cast<double>(u64PDUs);
    }
    m_stCounters = stNow;
    m_iCountedUntil = m_stModem.Now();
    m_stTrafficThen = stTraffic;
    m_bLinkUp = m_stLink.State() == LinkState::LinkUp;
    const bool bReceiving =
        m_bLinkUp || m_stLink.IsAnyOf({LinkState::Synchronised, LinkState::Entering});
    m_pstServing = bReceiving ? m_stLink.Serving() : nullptr;
    if (bReceiving) {
        m_stCount.Start(iCountPeriod, [this] { CatchUp(); });
    } else {
        m_stCount.Stop();
    }
}

// An interval starts the periodic reports, or replaces that of those that run; zero
// stops them and reports once.
int32_t StatisticsReports::Report(uint32_t u32Interval) {
    m_iInterval = ModemTime{u32Interval} * i64Millisecond;
    if (m_iInterval == 0) {
        m_stNext.Stop();
        Tell();
    } else {
        m_iInterval = std::max(m_iInterval, i64ShortestInterval);
        m_stNext.Start(m_iInterval, [this] { ReportPeriodically(); });
    }
    return 0;
}

void StatisticsReports::ReportPeriodically() {
    m_stNext.Start(m_iInterval, [this] { ReportPeriodically(); });
    Tell();
}

int32_t StatisticsReports::SetPolicy(uint32_t u32Policy) {
    const bool bGood =
        u32Policy == StatisticsReset::Disable || u32Policy == StatisticsReset::Enable;
    if (bGood) {
        m_bResetOnResync = u32Policy == StatisticsReset::Enable;
    }
    Record<StatusWord::Size> stAnswer;
    Put(stAnswer.Span(), StatusWord::u32Value,
        bGood ? StatisticsReset::Applied : StatisticsReset::Failed);
    m_stModem.Tell(TYPE_STATISTICS, SUBTYPE_STATISTICS_RESET_CONTROL, stAnswer.View());
    return 0;
}

void StatisticsReports::PutStation(ByteSpan stTo, const Station &stStation) const {
    const Measurement stMeasurement = m_stModem.Air().Measure(stStation, m_stModem.Now());
    Put(stTo, Statistics::u32RSSI, Rounded(stMeasurement.fRSSI));
    Put(stTo, Statistics::u32CINR, Rounded(stMeasurement.fCINR));
    PutBytes(stTo, Statistics::aucBSID.u16Offset, {stStation.aucBSID.data(), u32BSIDSize});
    Put(stTo, Statistics::u8BurstFEC, ProfileAt(stMeasurement.fCINR).u32FEC);
    Put(stTo, Statistics::u32CenterFrequency, stStation.u32Frequency);
    if (m_stLink.IsAnyOf({LinkState::Entering, LinkState::LinkUp})) {
        Put(stTo, Statistics::s8TxPower, Rounded(m_stModem.TheSignalling().Power() / fQuarters));
    }
}

void StatisticsReports::Tell() {
    const Counters stCounters = CountersNow();
    // Counters wrap around at 32 bits.
    const auto Counted = [](double fValue) {
        return static_cast<uint32_t>(static_cast<uint64_t>(fValue));
    };
    Record<Statistics::Size> stReport;
    const ByteSpan stTo = stReport.Span();
    Put(stTo, Statistics::u32RecordSize, Statistics::Size);
    Put(stTo, Statistics::u32FramesReceived, static_cast<uint32_t>(stCounters.u64Frames));
    Put(stTo, Statistics::u32FramesInError, Counted(stCounters.fFramesInError));
    Put(stTo, Statistics::u32CRCErrors, Counted(stCounters.fCRCErrors));
    Put(stTo, Statistics::u32HCSErrors, Counted(stCounters.fFramesInError * fHCSShare));
    Put(stTo, Statistics::u32CQICHTransmitted, static_cast<uint32_t>(stCounters.u64CQICH));
    Put(stTo, Statistics::u32BandwidthRequests, static_cast<uint32_t>(stCounters.u64Requests));
    std::vector<uint32_t> au32CIDs = m_stModem.TransportCIDs();
    au32CIDs.resize(std::min<size_t>(au32CIDs.size(), Statistics::MaxConnections));
    Put(stTo, Statistics::s32NumConnections, static_cast<uint32_t>(au32CIDs.size()));
    uint32_t u32Base = 0;
    for (const uint32_t u32CID : au32CIDs) {
        Put(stTo, Statistics::au32TransportCIDs, u32CID, u32Base);
        u32Base += WidthOf(Statistics::au32TransportCIDs.eType);
    }
    if (m_stLink.Serving() != nullptr) {
        PutStation(stTo, *m_stLink.Serving());
    }
    m_stModem.Tell(TYPE_STATISTICS, SUBTYPE_STATISTICS, stReport.View());
}

} // namespace

std::unique_ptr<Subsystem> MakeStatistics(Modem &stModem) {
    return std::make_unique<StatisticsReports>(stModem);
}
