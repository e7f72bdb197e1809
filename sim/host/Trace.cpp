// The management message trace: while it is on, every management message that goes
// over the air is copied to the client.
#include "DiagnosticRecords.h"
#include "air/Signalling.h"
#include "host/HostSubsystems.h"
#include "modem/Modem.h"

namespace {

class Trace : public Subsystem {
  public:
    explicit Trace(Modem &stModem);
    void Start() override { Switch(m_bOnAtStart); }

  private:
    void Switch(bool bOn);
    void TellState();
    void Copy(const ManagementMessage &stMessage);

    Modem &m_stModem;
    bool m_bOnAtStart;
    bool m_bOn = false;
};

Trace::Trace(Modem &stModem)
    : m_stModem(stModem), m_bOnAtStart(stModem.Settings("trace").Flag("on", false)) {
    for (const bool bOn : {true, false}) {
        stModem.On(TYPE_MAC_MGMT, bOn ? SUBTYPE_MAC_MGMT_ENABLE : SUBTYPE_MAC_MGMT_DISABLE,
                   [this, bOn](const Request &) {
                       Switch(bOn);
                       return 0;
                   });
    }
    stModem.On(TYPE_MAC_MGMT, SUBTYPE_MAC_MGMT_STATUS, [this](const Request &) {
        TellState();
        return 0;
    });
    stModem.TheSignalling().OnMessage([this](const ManagementMessage &stMessage) {
        if (m_bOn) {
            Copy(stMessage);
        }
    });
}

void Trace::Switch(bool bOn) {
    m_bOn = bOn;
    m_stModem.TheSignalling().WantBroadcasts(bOn);
}

void Trace::TellState() {
    Record<TraceState::Size> stAnswer;
    Put(stAnswer.Span(), TraceState::u32State, m_bOn ? TraceState::Enabled : 0);
    m_stModem.Tell(TYPE_MAC_MGMT, SUBTYPE_MAC_MGMT_STATUS, stAnswer.View());
}

void Trace::Copy(const ManagementMessage &stMessage) {
    using namespace TraceRecord;
    const auto u32Body = static_cast<uint32_t>(stMessage.aucBody.size());
    std::vector<uint8_t> aucRecord(aucBody + u32Body);
    const ByteSpan stTo{aucRecord.data(), aucBody + u32Body};
    Put(stTo, u8Direction, stMessage.bUplink ? MSToBS : BSToMS);
    Put(stTo, u32FrameNumber, stMessage.u32Frame);
    Put(stTo, u32Code, stMessage.u32Code);
    Put(stTo, s32BodyLength, u32Body);
    Put(stTo, u32CID, stMessage.u32CID);
    Put(stTo, u8CMACResult, stMessage.bCMACGood ? 1 : 0);
    PutBytes(stTo, aucBody, {stMessage.aucBody.data(), u32Body});
    m_stModem.Tell(TYPE_MAC_MGMT, SUBTYPE_MAC_MGMT_TRACE_IND, stTo);
}

} // namespace

std::unique_ptr<Subsystem> MakeTrace(Modem &stModem) { return std::make_unique<Trace>(stModem); }
