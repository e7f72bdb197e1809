// Writes the management messages of a modem's life to a capture file: network entry,
// sleep, service flows, idle mode and paging, a handover, deregistration; and entries
// that fail. Arguments: the file.
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "DiagnosticRecords.h"
#include "MobilityRecords.h"
#include "ServiceFlowRecord.h"
#include "Signalling.h"

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
[signalling]
map-period = 0.2
descriptor-period = 1
neighbour-period = 1
ranging-period = 0.5
report-period = 1
cmac-failures = 0.1
[trace]
on = true
)";

// A capture of upper-layer PDUs: each begins with the name of its decoder.
class Capture {
  public:
    explicit Capture(const char *pcPath) : m_stFile(pcPath, std::ios::binary) {
        constexpr uint32_t u32UpperPDU = 252;
        for (const uint32_t u32Word : {0xA1B2C3D4U, 0x00040002U, 0U, 0U, 65535U, u32UpperPDU}) {
            PutNative(u32Word);
        }
    }

    void Add(ModemTime iNow, uint32_t u32Code, ByteView stBody) {
        constexpr std::string_view strDecoder = "wmx_mac_mgmt_msg_decoder";
        constexpr uint32_t u32NameTag = 12;
        BitWriter stPacket;
        stPacket.U16(u32NameTag).U16(strDecoder.size());
        for (const char cChar : strDecoder) {
            stPacket.U8(static_cast<uint8_t>(cChar));
        }
        static_assert(strDecoder.size() % 4 == 0, "needs no padding");
        stPacket.U32(0).U8(u32Code).Bytes(stBody);
        const ByteView stBytes = stPacket.View();
        PutNative(static_cast<uint32_t>(iNow / i64Second));
        PutNative(static_cast<uint32_t>(iNow % i64Second));
        PutNative(stBytes.u32Length);
        PutNative(stBytes.u32Length);
        m_stFile.write(reinterpret_cast<const char *>(stBytes.pucData), stBytes.u32Length);
    }

    bool Good() {
        m_stFile.flush();
        return m_stFile.good();
    }

  private:
    // The file's numbers are in the order of whoever writes it.
    void PutNative(uint32_t u32Word) {
        m_stFile.write(reinterpret_cast<const char *>(&u32Word), sizeof u32Word);
    }

    std::ofstream m_stFile;
};

// A modem whose traced messages go into a capture, and one line each to standard output:
// frame number, direction, code, CID, CMAC result.
class TracedModem {
  public:
    TracedModem(const std::string &strScenario, Capture &stCapture)
        : m_stModem(Scenario::FromText(strScenario, "capture")), m_stCapture(stCapture) {}

    Modem &TheModem() { return m_stModem; }

    void Send(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload = {}) {
        WiMAXMessage stMessage{};
        const ByteSpan stBytes = BytesOf(stMessage);
        Put(stBytes, MessageHeader::Type, u32Type);
        Put(stBytes, MessageHeader::SubType, u32SubType);
        PutBytes(stBytes, MessageHeader::Size, stPayload);
        if (m_stModem.Send(stBytes.pucData, MessageHeader::Size + stPayload.u32Length) != 0) {
            std::fprintf(stderr, "request %u/%u was refused\n", u32Type, u32SubType);
            std::exit(1);
        }
    }

    void Run(double fSeconds) {
        const ModemTime iEnd = m_stModem.Now() + static_cast<ModemTime>(fSeconds * 1e6);
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
        if (Get(stMessage, MessageHeader::Type) != TYPE_MAC_MGMT) {
            return;
        }
        using namespace TraceRecord;
        const ByteView stRecord = stMessage.From(MessageHeader::Size);
        const uint32_t u32Code = Get(stRecord, Code);
        m_stCapture.Add(m_stModem.Now(), u32Code, stRecord.From(Body, Get(stRecord, BodyLength)));
        std::printf("%u %u %u %u %u\n", Get(stRecord, FrameNumber), Get(stRecord, Direction),
                    u32Code, Get(stRecord, CID), Get(stRecord, CMACResult));
    }

    Modem m_stModem;
    Capture &m_stCapture;
};

void SyncUp(TracedModem &stTraced) {
    Record<SyncUpRequest::Size> stRequest;
    Put(stRequest.Span(), SyncUpRequest::CenterFrequency, 2587500);
    Put(stRequest.Span(), SyncUpRequest::Bandwidth, 10000);
    Put(stRequest.Span(), SyncUpRequest::PreambleID, SyncUpRequest::AnyPreamble);
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
    Record<Size> stClass;
    const ByteSpan stTo = stClass.Span();
    Put(stTo, PSCType, 1);
    Put(stTo, InitialSleepWindow, 2);
    Put(stTo, ListenWindow, 2);
    Put(stTo, FinalSleepWindowBase, 64);
    Put(stTo, FinalSleepWindowExp, 1);
    Put(stTo, TTWF, 1);
    Put(stTo, TIR, 1);
    Signalling &stSignalling = stTraced.TheModem().TheSignalling();
    for (const uint32_t u32Activity : {ActivityDefinitionAndActivation, ActivityDeactivation}) {
        Put(stTo, Activity, u32Activity);
        stSignalling.SleepAgreed(stTo);
        stSignalling.TrafficIndicated(0);
        stTraced.Run(0.1);
    }
}

void UseFlows(TracedModem &stTraced) {
    Record<SFParamSet::Size> stSet;
    Put(stSet.Span(), SFParamSet::QoSParamSetType, 7);
    Put(stSet.Span(), SFParamSet::SchedulingType, SFParamSet::BE);
    Put(stSet.Span(), SFParamSet::MaxSustainedTrafficRate, 1000000);
    Put(stSet.Span(), SFParamSet::CSSpecification, 1);
    Signalling &stSignalling = stTraced.TheModem().TheSignalling();
    for (const bool bByStation : {false, true}) {
        const FlowParameters stFlow{!bByStation, 1U + bByStation, 4096U + bByStation, stSet.View()};
        stSignalling.FlowAdded(stFlow, 0, bByStation);
        stSignalling.FlowChanged(stFlow, 0);
        stSignalling.FlowDeleted(stFlow.u32SFID, 0, bByStation);
        stSignalling.FlowAdded(stFlow, 3, bByStation);
        stTraced.Run(0.5);
    }
}

void HandOver(TracedModem &stTraced) {
    Modem &stModem = stTraced.TheModem();
    for (const bool bSuccess : {false, true}) {
        stModem.TheSignalling().HandoverBegins(stModem.Air().Stations()[1]);
        stTraced.Run(0.04);
        stModem.TheSignalling().HandoverEnds(bSuccess);
        stTraced.Run(0.5);
    }
}

void LiveALife(Capture &stCapture) {
    TracedModem stTraced(std::string(pcStations) +
                             "[[event]]\nat = 25\nkind = \"paging\"\n"
                             "[[event]]\nat = 30\nkind = \"dreg\"\naction = 5\n",
                         stCapture);
    EnterNetwork(stTraced);
    Sleep(stTraced);
    UseFlows(stTraced);
    HandOver(stTraced);
    stTraced.Run(10);
    stTraced.Send(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE);
    stTraced.Run(15);
    stTraced.Send(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_WAKE_UP);
    stTraced.Run(1);
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
        TracedModem stTraced(pcStations + std::string("[[event]]\nat = 6\nkind = \"") + pcEvent,
                             stCapture);
        EnterNetwork(stTraced);
        stTraced.Run(2);
    }
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
    return stCapture.Good() ? 0 : 1;
}
