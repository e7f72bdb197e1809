// Writes the management messages of a modem's life to a capture file: network entry,
// sleep, service flows, idle mode and paging, a handover, deregistration; entries that fail; and
// one at a station with compressed maps. Arguments: the file.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "DiagnosticRecords.h"
#include "LinkRecords.h"
#include "MobilityRecords.h"
#include "ServiceFlowRecord.h"
#include "air/BitWriter.h"
#include "library/WholeModem.h"

namespace {

constexpr const char *pcStations = R"(
[[station]]
bsid = "00 12 0A 01 02 03"
frequency = 2587500
bandwidth = 10000
preamble = 3
rssi = -58
cinr = 28
dcd-change-count = 5
[[station]]
bsid = "00 12 0A 01 02 04"
frequency = 2600000
bandwidth = 10000
preamble = 35
rssi = -71
cinr = 16
dcd-change-count = 9
ip-subnet = 1
[[station]]
bsid = "00 12 0A 01 02 05"
frequency = 3490500
bandwidth = 7000
preamble = 64
rssi = -80
cinr = 8
[trace]
on = true
[signalling]
map-period = 0.2
descriptor-period = 1
neighbour-period = 1
ranging-period = 0.5
report-period = 1
)";

// A capture of upper-layer PDUs: each begins with the name of its decoder.
class Capture {
  public:
    explicit Capture(const char *pcPath) : m_stFile(pcPath, std::ios::binary) {
        constexpr uint32_t u32UpperPDU = 252;
        for (const uint32_t u32Word : {0xA1B2C3D4U, 0x00040002U, 0U, 0U, 65535U, u32UpperPDU}) {
            PutWord(u32Word);
        }
    }

    void Add(ModemTime iNow, bool bUplink, uint32_t u32Code, ByteView stBody) {
        constexpr std::string_view strMessage = "wmx_mac_mgmt_msg_decoder";
        constexpr std::string_view strBurst("wimax_pdu_burst_handler\0", 24);
        static_assert(strMessage.size() % 4 == 0 && strBurst.size() % 4 == 0, "need no padding");
        constexpr uint32_t u32NameTag = 12;
        constexpr uint32_t u32DirectionTag = 35;
        // Compressed maps have no type.
        const bool bMaps = u32Code == 2 && stBody.At(0) >> 5 == 6;
        const std::string_view strDecoder = bMaps ? strBurst : strMessage;
        BitWriter stPacket;
        stPacket.U16(u32NameTag).U16(static_cast<uint32_t>(strDecoder.size()));
        for (const char cChar : strDecoder) {
            stPacket.U8(static_cast<uint8_t>(cChar));
        }
        stPacket.U16(u32DirectionTag).U16(4).U32(bUplink ? 0 : 1).U32(0);
        if (!bMaps) {
            stPacket.U8(u32Code);
        }
        stPacket.Bytes(stBody);
        const ByteView stBytes = stPacket.View();
        PutWord(static_cast<uint32_t>(iNow / i64Second));
        PutWord(static_cast<uint32_t>(iNow % i64Second));
        PutWord(stBytes.u32Length);
        PutWord(stBytes.u32Length);
        m_stFile.write(reinterpret_cast<const char *>(stBytes.pucData), stBytes.u32Length);
    }

    bool Good() {
        m_stFile.flush();
        return m_stFile.good();
    }

  private:
    // The file's numbers are in the order of whoever writes it.
    // Little-endian, as the capture's first word says.
    void PutWord(uint32_t u32Word) {
        for (uint32_t i = 0; i < 4; ++i) {
            m_stFile.put(static_cast<char>(u32Word >> (8 * i) & 0xFF));
        }
    }

    std::ofstream m_stFile;
};

// A modem whose traced messages go into a capture, and one line each to standard output:
// frame number, direction, code, CID, CMAC result, first byte of the body.
class TracedModem {
  public:
    TracedModem(const std::string &strScenario, Capture &stCapture)
        : m_stModem(Scenario::FromText(strScenario, "capture")), m_stCapture(stCapture) {}

    Modem &TheModem() { return m_stModem; }

    void Send(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload = {}) {
        WiMAXMessage stMessage{};
        const ByteSpan stBytes = BytesOf(stMessage);
        Put(stBytes, MessageHeader::usType, u32Type);
        Put(stBytes, MessageHeader::usSubType, u32SubType);
        PutBytes(stBytes, MessageHeader::Size, stPayload);
        if (m_stModem.Send(stBytes.pucData, MessageHeader::Size + stPayload.u32Length) != 0) {
            std::fprintf(stderr, "request %u/%u was refused\n", u32Type, u32SubType);
            std::exit(1);
        }
    }

    void Run(double fSeconds) { RunUntil(static_cast<double>(m_stModem.Now()) / 1e6 + fSeconds); }

    void RunUntil(double fSeconds) {
        const auto iEnd = static_cast<ModemTime>(std::llround(fSeconds * 1e6));
        for (auto iDue = m_stModem.NextDue(); iDue && *iDue <= iEnd; iDue = m_stModem.NextDue()) {
            m_stModem.AdvanceTo(*iDue);
            for (MessageBytes aucMessage; m_stModem.TakeMessage(&aucMessage);) {
                Note({aucMessage.data(), static_cast<uint32_t>(aucMessage.size())});
            }
        }
        m_stModem.AdvanceTo(iEnd);
    }

  private:
    void Note(ByteView stMessage) {
        if (Get(stMessage, MessageHeader::usType) != TYPE_MAC_MGMT) {
            return;
        }
        using namespace TraceRecord;
        const ByteView stRecord = stMessage.From(MessageHeader::Size);
        const uint32_t u32Code = Get(stRecord, TraceRecord::u32Code);
        m_stCapture.Add(m_stModem.Now(), Get(stRecord, u8Direction) == MSToBS, u32Code,
                        stRecord.From(aucBody, Get(stRecord, s32BodyLength)));
        std::printf("%u %u %u %u %u %u\n", Get(stRecord, u32FrameNumber),
                    Get(stRecord, u8Direction), u32Code, Get(stRecord, u32CID),
                    Get(stRecord, u8CMACResult), stRecord.At(aucBody));
    }

    WholeModem m_stModem;
    Capture &m_stCapture;
};

void SyncUp(TracedModem &stTraced) {
    Record<SyncUpRequest::Size> stRequest;
    Put(stRequest.Span(), SyncUpRequest::u32CenterFrequency, 2587500);
    Put(stRequest.Span(), SyncUpRequest::u32Bandwidth, 10000);
    Put(stRequest.Span(), SyncUpRequest::u32PreambleID, SyncUpRequest::AnyPreamble);
    stTraced.Send(TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_UP, stRequest.View());
    stTraced.Run(2);
}

void EnterNetwork(TracedModem &stTraced) {
    SyncUp(stTraced);
    const Record<NetworkEntryRequest::Size> stRequest;
    stTraced.Send(TYPE_NETWORK_ENTRY, SUBTYPE_NETWORK_ENTRY, stRequest.View());
    stTraced.Run(3);
}

void Sleep(TracedModem &stTraced) {
    using namespace PSCDefinition;
    Record<SleepMode::Size> stRequest;
    Put(stRequest.Span(), SleepMode::numOfDefinitions, 1);
    const ByteSpan stTo = stRequest.Span().From(SleepMode::astPSCDefinition);
    Put(stTo, u8PSCID, NewPSCID);
    Put(stTo, u8PSCType, 1);
    Put(stTo, u8InitialSleepWindow, 2);
    Put(stTo, u8ListenWindow, 2);
    Put(stTo, u16FinalSleepWindowBase, 64);
    Put(stTo, u8FinalSleepWindowExp, 1);
    Put(stTo, u8TTWF, 1);
    Put(stTo, u8TIR, 1);
    Put(stTo, u32NumOfCIDs, 2);
    Put(stTo, au16CID, 4096);
    for (const uint32_t u32Activity :
         {ActivityDefinitionAndActivation, ActivityDeactivation, ActivityActivation}) {
        Put(stTo, u8Activity, u32Activity);
        stTraced.Send(TYPE_SLEEP_MODE, SUBTYPE_SLEEP_PSC_DEFINITION, stRequest.View());
        stTraced.Run(0.3);
        Put(stTo, u8PSCID, 0);
    }
}

void UseFlows(TracedModem &stTraced) {
    Record<ServiceFlowRecord::Size> stRequest;
    const ByteSpan stTo = stRequest.Span();
    const ByteSpan stSet = stTo.From(ServiceFlowRecord::stProvisionedSet);
    Put(stTo, ServiceFlowRecord::u8MsgCode, ServiceFlowRecord::AddRequest);
    Put(stTo, ServiceFlowRecord::u8Direction, ServiceFlowRecord::Uplink);
    Put(stSet, SFParamSet::u8SetPresent, 1);
    Put(stSet, SFParamSet::u8QoSParamSetType, 7);
    Put(stSet, SFParamSet::u8SchedulingType, SFParamSet::UGS);
    Put(stSet, SFParamSet::u8CSSpecification, 1);
    Put(stSet, SFParamSet::u8NumClassifierRules, 2);
    const ByteSpan stRule = stSet.From(SFParamSet::astClassifierRule, ClassifierRule::Size);
    Put(stRule, ClassifierRule::u8Protocol, 17);
    Put(stRule, ClassifierRule::u8IPMaskedSrcAddrLength, 8);
    Put(stRule, ClassifierRule::u8DestPortRangeLength, ClassifierRule::PortRangeSize);
    // The second one is too large for the station.
    for (const uint32_t u32Rate : {1000000U, 1000000000U}) {
        Put(stSet, SFParamSet::u32MaxSustainedTrafficRate, u32Rate);
        stTraced.Send(TYPE_SERVICE_FLOW, SUBTYPE_DSA,
                      stRequest.View().From(0, ServiceFlowRecord::ShortSize));
        stTraced.Run(0.3);
    }
    Put(stTo, ServiceFlowRecord::u8MsgCode, ServiceFlowRecord::ChangeRequest);
    Put(stSet, SFParamSet::u32SFID, 2);
    Put(stSet, SFParamSet::u32MaxSustainedTrafficRate, 500000);
    stTraced.Send(TYPE_SERVICE_FLOW, SUBTYPE_DSC, stRequest.View());
    stTraced.Run(0.3);
    // Without its first rule.
    Put(stRule, ClassifierRule::u8ClassifierAction, ClassifierRule::DeleteRule);
    stTraced.Send(TYPE_SERVICE_FLOW, SUBTYPE_DSC, stRequest.View());
    stTraced.Run(0.3);
    Record<DeleteFlowRequest::Size> stDelete;
    Put(stDelete.Span(), DeleteFlowRequest::u8MsgCode, ServiceFlowRecord::DeleteRequest);
    Put(stDelete.Span(), DeleteFlowRequest::u32SFID, 2);
    stTraced.Send(TYPE_SERVICE_FLOW, SUBTYPE_DSD, stDelete.View());
    stTraced.Run(0.3);
    // One of each other type in either direction.
    Put(stTo, ServiceFlowRecord::u8MsgCode, ServiceFlowRecord::AddRequest);
    Put(stSet, SFParamSet::u32SFID, 0);
    Put(stRule, ClassifierRule::u8ClassifierAction, ClassifierRule::AddRule);
    for (const uint32_t u32Direction : {ServiceFlowRecord::Downlink, ServiceFlowRecord::Uplink}) {
        for (uint32_t u32Type = SFParamSet::BE; u32Type < SFParamSet::UGS; ++u32Type) {
            Put(stTo, ServiceFlowRecord::u8Direction, u32Direction);
            Put(stSet, SFParamSet::u8SchedulingType, u32Type);
            stTraced.Send(TYPE_SERVICE_FLOW, SUBTYPE_DSA,
                          stRequest.View().From(0, ServiceFlowRecord::ShortSize));
            stTraced.Run(0.05);
        }
    }
}

constexpr const char *pcEvents = R"(
[[service-flow]]
direction = "downlink"
type = "BE"
max-rate = 64000
[[event]]
at = 6.5
kind = "traffic-waits"
[[event]]
at = 10
kind = "handover"
station = "00 12 0A 01 02 04"
fails = true
ordered = true
[[event]]
at = 11
kind = "handover"
station = "00 12 0A 01 02 04"
ranging-failures = 1
[[event]]
at = 20.5
kind = "paging"
[[event]]
at = 24
kind = "dreg"
action = 5
[[event]]
at = 30
kind = "flow-deleted"
sfid = 1
)";

void LiveALife(Capture &stCapture) {
    TracedModem stTraced(std::string(pcStations) + pcEvents, stCapture);
    EnterNetwork(stTraced); // until 5 s
    Sleep(stTraced);
    stTraced.Run(1);
    UseFlows(stTraced);
    stTraced.RunUntil(15); // two handovers
    stTraced.Send(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE);
    stTraced.RunUntil(27); // paged, and sent to idle mode again
    stTraced.Send(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_WAKE_UP);
    stTraced.RunUntil(32);
    stTraced.Send(TYPE_NETWORK_EXIT, SUBTYPE_SYNC_DEREG);
    stTraced.Run(1);
}

void FailToEnter(Capture &stCapture) {
    for (const char *pcEntry : {"ranging-failure", "sbc-failure", "pkm-failure",
                                "registration-failure", "satek-failure"}) {
        std::string strScenario = pcStations;
        strScenario.insert(strScenario.find("rssi"), "entry = \"" + std::string(pcEntry) + "\"\n");
        TracedModem stTraced(strScenario, stCapture);
        EnterNetwork(stTraced);
    }
    for (const char *pcEvent : {"reset\"\n", "dreg\"\naction = 0\n", "dreg\"\naction = 3\n"}) {
        TracedModem stTraced(
            pcStations + std::string("cmac-failures = 0.3\n[[event]]\nat = 6\nkind = \"") + pcEvent,
            stCapture);
        EnterNetwork(stTraced);
        stTraced.Run(2);
    }
}

// With traffic, so that the maps answer codes and grant bursts.
void EnterByCompressedMaps(Capture &stCapture) {
    std::string strScenario = std::string(pcStations) +
                              "[[service-flow]]\ndirection = \"uplink\"\ntype = \"BE\"\n"
                              "[traffic]\nuplink-rate = 2000\npacket-size = 100\n";
    strScenario.insert(strScenario.find("rssi"), "compressed-map = true\n");
    strScenario.replace(strScenario.find("map-period = 0.2"), 16, "map-period = 0.005");
    TracedModem stTraced(strScenario, stCapture);
    EnterNetwork(stTraced);
}

} // namespace

int main(int iArgs, char **ppcArgs) {
    if (iArgs != 2) {
        std::fprintf(stderr, "usage: trace_capture FILE\n");
        return 2;
    }
    Capture stCapture(ppcArgs[1]);
    LiveALife(stCapture);
    FailToEnter(stCapture);
    EnterByCompressedMaps(stCapture);
    return stCapture.Good() ? 0 : 1;
}
