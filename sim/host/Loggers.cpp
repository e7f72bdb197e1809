// The eight loggers: each keeps what it has seen since its last report and reports it
// periodically, when there is something, and when it is stopped.
#include <algorithm>
#include <array>
#include <cmath>

#include "DiagnosticRecords.h"
#include "ServiceFlowRecord.h"
#include "air/Signalling.h"
#include "host/HostSubsystems.h"
#include "link/Link.h"

namespace {

constexpr uint32_t u32FirstKind = SUBTYPE_LOG_INITIAL_RANGING;
constexpr uint32_t u32LastKind = SUBTYPE_LOG_CQICH;
// The oldest entries go when there are more.
constexpr size_t uMostBytes = 8192;

constexpr ModemTime iCQICHPeriod = u32CQICHFrames * i64Frame;

class Loggers : public Subsystem {
  public:
    explicit Loggers(Modem &stModem);
    void Start() override;

  private:
    struct Logger {
        bool bOn = false;
        std::vector<uint8_t> aucData;
    };

    Logger &Of(uint32_t u32Kind) { return m_astLoggers[u32Kind - u32FirstKind]; }
    int32_t Switch(uint32_t u32Kind, bool bOn);
    void Log(uint32_t u32Kind, ByteView stEntry);
    void LogConnection(const Connection &stConnection);
    void LogRanging(uint32_t u32Kind, const RangingSignal &stSignal);
    void LogPower(const PowerChange &stChange);
    void LogBurst(const UserBurst &stBurst);
    void LogPDU(const UserPDU &stPDU, uint32_t u32Frame);
    void LogPadding(uint32_t u32Bytes, const UserPDU &stLast, uint32_t u32Frame);
    void FollowLoggers();
    // When the next period begins: the same for all, whenever they were switched on.
    ModemTime ToNext(ModemTime iPeriod) const { return iPeriod - m_stModem.Now() % iPeriod; }
    void LogQuality();
    void Report(uint32_t u32Kind);
    void ReportAll();

    Modem &m_stModem;
    Signalling &m_stSignalling;
    ModemTime m_iReportPeriod;
    std::array<Logger, u32LastKind - u32FirstKind + 1> m_astLoggers;
    Timer m_stReport;
    Timer m_stQuality;
};

Loggers::Loggers(Modem &stModem)
    : m_stModem(stModem), m_stSignalling(stModem.TheSignalling()),
      m_iReportPeriod(stModem.Settings("loggers").Seconds("report-period", 0.01, 1e6, 1)),
      m_stReport(stModem.Clock()), m_stQuality(stModem.Clock()) {
    for (uint32_t u32Kind = u32FirstKind; u32Kind <= u32LastKind; ++u32Kind) {
        for (const bool bOn : {true, false}) {
            stModem.On(bOn ? TYPE_START_LOGGER : TYPE_STOP_LOGGER, u32Kind,
                       [this, u32Kind, bOn](const Request &) { return Switch(u32Kind, bOn); });
        }
    }
    m_stSignalling.OnRanging([this](RangingKind eKind, const RangingSignal &stSignal) {
        LogRanging(eKind == RangingKind::Initial ? SUBTYPE_LOG_INITIAL_RANGING
                                                 : SUBTYPE_LOG_PERIODIC_RANGING,
                   stSignal);
    });
    m_stSignalling.OnPower([this](const PowerChange &stChange) { LogPower(stChange); });
    m_stSignalling.OnConnection(
        [this](const Connection &stConnection) { LogConnection(stConnection); });
    stModem.UserTraffic().OnBurst([this](const UserBurst &stBurst) { LogBurst(stBurst); });
    stModem.UserTraffic().OnRequest(
        [this](const RangingSignal &stSignal) { LogRanging(SUBTYPE_LOG_BW_RANGING, stSignal); });
}

void Loggers::Start() {
    for (Logger &stLogger : m_astLoggers) {
        stLogger = {};
    }
    FollowLoggers();
}

int32_t Loggers::Switch(uint32_t u32Kind, bool bOn) {
    Logger &stLogger = Of(u32Kind);
    if (stLogger.bOn == bOn) {
        return 0;
    }
    stLogger.bOn = bOn;
    if (bOn && u32Kind == SUBTYPE_LOG_CID) {
        for (const Connection &stConnection : m_stSignalling.Connections()) {
            LogConnection(stConnection);
        }
    } else if (!bOn) {
        Report(u32Kind);
    }
    FollowLoggers();
    return 0;
}

void Loggers::FollowLoggers() {
    const bool bAny = std::any_of(m_astLoggers.begin(), m_astLoggers.end(),
                                  [](const Logger &stLogger) { return stLogger.bOn; });
    if (!Of(SUBTYPE_LOG_CQICH).bOn) {
        m_stQuality.Stop();
    } else if (!m_stQuality.Running()) {
        m_stQuality.Start(ToNext(iCQICHPeriod), [this] { LogQuality(); });
    }
    if (!bAny) {
        m_stReport.Stop();
    } else if (!m_stReport.Running()) {
        m_stReport.Start(ToNext(m_iReportPeriod), [this] { ReportAll(); });
    }
}

void Loggers::Log(uint32_t u32Kind, ByteView stEntry) {
    Logger &stLogger = Of(u32Kind);
    if (!stLogger.bOn) {
        return;
    }
    if (stLogger.aucData.size() + stEntry.u32Length > uMostBytes) {
        stLogger.aucData.erase(stLogger.aucData.begin(),
                               stLogger.aucData.begin() + stEntry.u32Length);
    }
    stLogger.aucData.insert(stLogger.aucData.end(), stEntry.pucData,
                            stEntry.pucData + stEntry.u32Length);
}

void Loggers::LogConnection(const Connection &stConnection) {
    using namespace CIDLogEntry;
    Record<Size> stEntry;
    Put(stEntry.Span(), u16VCID, stConnection.u32VCID);
    Put(stEntry.Span(), u16CID, stConnection.u32CID);
    Put(stEntry.Span(), u16ARQ, stConnection.bARQ ? 1 : 0);
    Put(stEntry.Span(), u16Direction, stConnection.bUplink ? 1 : 0);
    Log(SUBTYPE_LOG_CID, stEntry.View());
}

void Loggers::LogRanging(uint32_t u32Kind, const RangingSignal &stSignal) {
    using namespace RangingLogEntry;
    Record<Size> stEntry;
    Put(stEntry.Span(), u32FrameNumber, stSignal.u32Frame);
    Put(stEntry.Span(), u32Code, stSignal.u32Code);
    Put(stEntry.Span(), u32SubChannel, stSignal.u32SubChannel);
    Put(stEntry.Span(), u32Symbol, stSignal.u32Symbol);
    Log(u32Kind, stEntry.View());
}

void Loggers::LogPower(const PowerChange &stChange) {
    using namespace PowerLogEntry;
    Record<Size> stEntry;
    Put(stEntry.Span(), s32Adjustment, static_cast<uint32_t>(stChange.iAdjustment));
    Put(stEntry.Span(), u32FrameOffset, stChange.u32FrameOffset);
    Put(stEntry.Span(), u32FrameNumber, stChange.u32Frame);
    Put(stEntry.Span(), u32Power, Rounded(stChange.iPower / fQuarters));
    Log(stChange.bClosedLoop ? SUBTYPE_LOG_CLOSED_LOOP_POWER : SUBTYPE_LOG_OPEN_LOOP_POWER,
        stEntry.View());
}

// What the packets leave of a grant is padding.
void Loggers::LogBurst(const UserBurst &stBurst) {
    if (!stBurst.bUplink || !Of(SUBTYPE_LOG_BANDWIDTH).bOn) {
        return;
    }
    uint32_t u32Used = 0;
    for (const UserPDU &stPDU : stBurst.astPDUs) {
        LogPDU(stPDU, stBurst.u32Frame);
        u32Used += stPDU.u32Length;
        if (stPDU.bEndsGrant) {
            if (u32Used != stPDU.u32Allocation) {
                LogPadding(stPDU.u32Allocation - u32Used, stPDU, stBurst.u32Frame);
            }
            u32Used = 0;
        }
    }
}

void Loggers::LogPDU(const UserPDU &stPDU, uint32_t u32Frame) {
    using namespace BandwidthLogEntry;
    const std::vector<Connection> &astConnections = m_stSignalling.Connections();
    const auto pstConnection =
        std::find_if(astConnections.begin(), astConnections.end(),
                     [&](const Connection &stOne) { return stOne.u32SFID == stPDU.u32SFID; });
    Record<Size> stEntry;
    const ByteSpan stTo = stEntry.Span();
    Put(stTo, u16PDULength, stPDU.u32Length);
    Put(stTo, u16AllocationReceived, std::min(stPDU.u32Allocation, u32LargestGrant));
    Put(stTo, u16VCID, pstConnection != astConnections.end() ? pstConnection->u32VCID : 0);
    Put(stTo, u16CID, stPDU.u32CID);
    Put(stTo, u16QueueDepth, stPDU.u32QueueDepth);
    Put(stTo, u8BandwidthRequest, stPDU.bRequested ? 1 : 0);
    Put(stTo, u8SchedulingType, stPDU.u32SchedulingType);
    Put(stTo, u32FrameNumber, u32Frame);
    Log(SUBTYPE_LOG_BANDWIDTH, stEntry.View());
}

void Loggers::LogPadding(uint32_t u32Bytes, const UserPDU &stLast, uint32_t u32Frame) {
    using namespace BandwidthLogEntry;
    Record<Size> stEntry;
    const ByteSpan stTo = stEntry.Span();
    Put(stTo, u16PDULength, u32Bytes);
    Put(stTo, u16AllocationReceived, std::min(stLast.u32Allocation, u32LargestGrant));
    Put(stTo, u16VCID, PaddingVCID);
    Put(stTo, u16CID, PaddingCID);
    Put(stTo, u32FrameNumber, u32Frame);
    Log(SUBTYPE_LOG_BANDWIDTH, stEntry.View());
}

void Loggers::LogQuality() {
    m_stQuality.Start(iCQICHPeriod, [this] { LogQuality(); });
    const auto u64Frame = static_cast<uint64_t>(m_stModem.Now() / i64Frame);
    if (m_stModem.TheLink().State() == LinkState::LinkUp &&
        !m_stModem.ThePresence().Away(u64Frame)) {
        const Station &stStation = *m_stModem.TheLink().Serving();
        Record<CQICHLogEntry::Size> stEntry;
        Put(stEntry.Span(), CQICHLogEntry::u32Value,
            CINRCode(m_stModem.Air().Measure(stStation, m_stModem.Now()).fCINR));
        Log(SUBTYPE_LOG_CQICH, stEntry.View());
    }
}

void Loggers::Report(uint32_t u32Kind) {
    std::vector<uint8_t> &aucData = Of(u32Kind).aucData;
    const auto u32Length = static_cast<uint32_t>(aucData.size());
    std::vector<uint8_t> aucIndication(LogRecord::aucData + u32Length);
    const ByteSpan stTo{aucIndication.data(), LogRecord::aucData + u32Length};
    Put(stTo, LogRecord::s16Length, u32Length);
    PutBytes(stTo, LogRecord::aucData, {aucData.data(), u32Length});
    aucData.clear();
    m_stModem.Tell(TYPE_START_LOGGER, u32Kind, stTo);
}

void Loggers::ReportAll() {
    m_stReport.Start(m_iReportPeriod, [this] { ReportAll(); });
    for (uint32_t u32Kind = u32FirstKind; u32Kind <= u32LastKind; ++u32Kind) {
        if (!Of(u32Kind).aucData.empty()) {
            Report(u32Kind);
        }
    }
}

} // namespace

std::unique_ptr<Subsystem> MakeLoggers(Modem &stModem) {
    return std::make_unique<Loggers>(stModem);
}
