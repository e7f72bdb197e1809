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

// The channel's quality goes to the station every so many frames.
constexpr ModemTime iCQICHPeriod = 8 * i64Frame;
constexpr uint64_t u64PacketsPerRequest = 4;

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
    void LogPacket(uint64_t u64Queue);
    void LogPadding(uint32_t u32Bytes, uint32_t u32Allocation);
    void FollowLoggers();
    // When the next period begins: the same for all, whenever they were switched on.
    ModemTime ToNext(ModemTime iPeriod) const { return iPeriod - m_stModem.Now() % iPeriod; }
    // The signal that asked for the bandwidth of this uplink packet.
    RangingSignal RequestOf(uint64_t u64Packet) const;
    // The uplink packets and the channel quality reports of the last frames.
    void Look();
    void Report(uint32_t u32Kind);
    void ReportAll();

    Modem &m_stModem;
    Signalling &m_stSignalling;
    ModemTime m_iReportPeriod;
    uint32_t m_u32PacketSize; // bytes, a user's packet
    std::array<Logger, u32LastKind - u32FirstKind + 1> m_astLoggers;
    uint64_t m_u64PacketsSeen = 0;
    Timer m_stReport;
    Timer m_stLook;
};

Loggers::Loggers(Modem &stModem)
    : m_stModem(stModem), m_stSignalling(stModem.TheSignalling()),
      m_iReportPeriod(stModem.Settings("loggers").Seconds("report-period", 0.01, 1e6, 1)),
      m_u32PacketSize(stModem.UserTraffic().PacketSize()), m_stReport(stModem.Clock()),
      m_stLook(stModem.Clock()) {
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
    const auto IsOn = [&](uint32_t u32Kind) { return Of(u32Kind).bOn; };
    const bool bLooks =
        IsOn(SUBTYPE_LOG_BW_RANGING) || IsOn(SUBTYPE_LOG_BANDWIDTH) || IsOn(SUBTYPE_LOG_CQICH);
    const bool bAny = std::any_of(m_astLoggers.begin(), m_astLoggers.end(),
                                  [](const Logger &stLogger) { return stLogger.bOn; });
    if (!bLooks) {
        m_stLook.Stop();
    } else if (!m_stLook.Running()) {
        m_u64PacketsSeen = m_stModem.UserTraffic().Totals().u64UplinkPackets;
        m_stLook.Start(ToNext(iCQICHPeriod), [this] { Look(); });
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

// A packet goes out in an allocation of whole slots, or in as many grants as it takes;
// what it leaves of them is padding.
void Loggers::LogPacket(uint64_t u64Queue) {
    using namespace BandwidthLogEntry;
    const std::vector<Connection> &astConnections = m_stSignalling.Connections();
    const auto pstFlow =
        std::find_if(astConnections.begin(), astConnections.end(),
                     [](const Connection &stOne) { return stOne.bUplink && stOne.u32SFID != 0; });
    const bool bFlow = pstFlow != astConnections.end();
    const uint32_t u32PDU = m_u32PacketSize + u32PDUOverhead;
    const uint32_t u32Grant = bFlow ? pstFlow->u32Grant : 0;
    const uint32_t u32Unit = u32Grant != 0 ? u32Grant : u32SlotBytes;
    const uint32_t u32Allocation = (u32PDU + u32Unit - 1) / u32Unit * u32Unit;
    const uint64_t u64Depth = u64Queue * u32PDU;
    Record<Size> stEntry;
    const ByteSpan stTo = stEntry.Span();
    Put(stTo, u16PDULength, u32PDU);
    Put(stTo, u16AllocationReceived, u32Allocation);
    Put(stTo, u16VCID, bFlow ? pstFlow->u32VCID : 0);
    Put(stTo, u16CID, bFlow ? pstFlow->u32CID : m_stSignalling.DefaultUplinkCID());
    Put(stTo, u16QueueDepth, static_cast<uint32_t>(std::min<uint64_t>(u64Depth, UINT16_MAX)));
    // Grants come without being asked for.
    Put(stTo, u8BandwidthRequest, u64Queue != 0 && u32Grant == 0 ? 1 : 0);
    Put(stTo, u8SchedulingType, bFlow ? pstFlow->u32SchedulingType : SFParamSet::BE);
    Put(stTo, u32FrameNumber, m_stSignalling.Frame());
    Log(SUBTYPE_LOG_BANDWIDTH, stEntry.View());
    if (u32Allocation != u32PDU) {
        LogPadding(u32Allocation - u32PDU, u32Allocation);
    }
}

void Loggers::LogPadding(uint32_t u32Bytes, uint32_t u32Allocation) {
    using namespace BandwidthLogEntry;
    Record<Size> stEntry;
    const ByteSpan stTo = stEntry.Span();
    Put(stTo, u16PDULength, u32Bytes);
    Put(stTo, u16AllocationReceived, u32Allocation);
    Put(stTo, u16VCID, PaddingVCID);
    Put(stTo, u16CID, PaddingCID);
    Put(stTo, u32FrameNumber, m_stSignalling.Frame());
    Log(SUBTYPE_LOG_BANDWIDTH, stEntry.View());
}

RangingSignal Loggers::RequestOf(uint64_t u64Packet) const {
    const CodeGroup &stGroup = RangingCodes::BandwidthRequest;
    Random stRandom = m_stModem.RandomFor("bandwidth request " + std::to_string(u64Packet));
    const uint32_t u32Code = stGroup.u32First + stRandom.Below(stGroup.u32Count);
    return {m_stSignalling.Frame(), u32Code, stRandom.Below(RangingCodes::u32SubChannels),
            RangingCodes::u32LateSymbol};
}

void Loggers::Look() {
    m_stLook.Start(iCQICHPeriod, [this] { Look(); });
    const uint64_t u64Packets = m_stModem.UserTraffic().Totals().u64UplinkPackets;
    // No more than the log holds: old ones would go anyway.
    constexpr uint64_t u64Most = uMostBytes / BandwidthLogEntry::Size;
    if (u64Packets > m_u64PacketsSeen + u64Most) {
        m_u64PacketsSeen = u64Packets - u64Most;
    }
    while (m_u64PacketsSeen < u64Packets) {
        if (m_u64PacketsSeen % u64PacketsPerRequest == 0) {
            LogRanging(SUBTYPE_LOG_BW_RANGING, RequestOf(m_u64PacketsSeen));
        }
        ++m_u64PacketsSeen;
        LogPacket(u64Packets - m_u64PacketsSeen);
    }
    if (m_stModem.TheLink().State() == LinkState::LinkUp) {
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
