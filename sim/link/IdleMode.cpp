// Idle mode: into it on request, on the station's order or by the inactivity timer; out of it
// on request or by paging. Meanwhile the modem listens to the best station, and says where it is
// when the paging group is another one or the planned time is over.
#include "air/Signalling.h"
#include "link/Link.h"
#include "link/LinkSubsystems.h"
#include "scenario/Options.h"

namespace {

// What an idle mode status request is answered with.
enum IdleStatus : uint32_t { NotIdle = 0, GoingIdle = 1, InIdle = 2, ComingOut = 3 };

// Return status of the inactivity timer request.
constexpr uint32_t u32TimerSet = 0;
constexpr uint32_t u32TimerRefused = 1;
constexpr uint32_t u32LongestTimer = 65535; // seconds

// A station that does not hear the modem is told again where it is.
constexpr ModemTime iUpdateRetry = 10 * i64Second;
// dBm: any station is better than none.
constexpr double fNothing = -1000;

class IdleMode : public Subsystem {
  public:
    explicit IdleMode(Modem &stModem);
    void Start() override;

  private:
    void Enter();
    void ComeOut();
    uint32_t Status() const;
    int32_t SetTimer(uint32_t u32Seconds);
    int32_t WakeUp();
    // Lets the inactivity timer begin anew.
    void NoteActivity();
    void OnLinkChange(const LinkChange &stChange);
    void Page();
    // Listens to the best station of the network.
    void Reselect();
    void UpdateLocation();
    // The network knows where the modem is; until the planned time is over.
    void NoteLocation();
    void TellWord(uint32_t u32SubType, uint32_t u32Value);
    void TellIndication(uint32_t u32StateWord);

    Modem &m_stModem;
    Link &m_stLink;
    ModemTime m_iEntryTime;
    ModemTime m_iExitTime;
    uint32_t m_u32PlannedTimeout; // seconds
    uint32_t m_u32TimerAtStart;
    uint32_t m_u32TimerSeconds = 0; // 0: off
    uint32_t m_u32PagingGroup = 0;  // that the network knows the modem in
    ModemTime m_iUpdateAfter = 0;   // not before, when the last update failed
    Timer m_stStep;                 // into or out of idle mode, or its planned end
    Timer m_stPaging;
    Timer m_stInactivity;
};

IdleMode::IdleMode(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stStep(stModem.Clock()),
      m_stPaging(stModem.Clock()), m_stInactivity(stModem.Clock()) {
    const Section stSettings = stModem.Settings("idle");
    m_iEntryTime = stSettings.Seconds("entry-time", 0, 1000, 0.3);
    m_iExitTime = stSettings.Seconds("exit-time", 0, 1000, 0.3);
    m_u32PlannedTimeout =
        static_cast<uint32_t>(stSettings.Integer("planned-timeout", 1, u32LongestTimer, 4096));
    m_u32TimerAtStart =
        static_cast<uint32_t>(stSettings.Integer("inactivity-timer", 0, u32LongestTimer, 0));

    stModem.On(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE, [this](const Request &) {
        if (m_stLink.State() == LinkState::LinkUp) {
            Enter();
        } else if (m_stLink.State() == LinkState::Idle) {
            TellIndication(m_u32PlannedTimeout);
        } else {
            TellWord(SUBTYPE_IDLE_MODE_STATUS, Status());
        }
        return 0;
    });
    stModem.On(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_STATUS, [this](const Request &) {
        TellWord(SUBTYPE_IDLE_MODE_STATUS, Status());
        return 0;
    });
    stModem.On(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_INACTIVITY_TIMER,
               [this](const Request &stRequest) {
                   return SetTimer(Get(stRequest.stPayload, StatusWord::u32Value));
               });
    stModem.On(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE_WAKE_UP,
               [this](const Request &) { return WakeUp(); });
    stModem.OnEvent("paging", [this](const Section &) { return [this] { Page(); }; });
    stModem.OnAnyRequest([this] { NoteActivity(); });
    m_stLink.OnIdleOrder([this] { Enter(); });
    m_stLink.OnIdleLook([this] { Reselect(); });
    m_stLink.Observe([this](const LinkChange &stChange) { OnLinkChange(stChange); });
}

void IdleMode::Start() {
    m_u32TimerSeconds = m_u32TimerAtStart;
    NoteActivity();
}

void IdleMode::OnLinkChange(const LinkChange &stChange) {
    if (stChange.eBefore == stChange.eAfter) {
        return;
    }
    m_stStep.Stop();
    m_stPaging.Stop();
    if (stChange.eAfter == LinkState::Idle) {
        NoteLocation();
    }
    NoteActivity();
}

void IdleMode::NoteLocation() {
    m_u32PagingGroup = m_stLink.Serving()->u32PagingGroup;
    m_iUpdateAfter = 0;
    m_stStep.Start(m_u32PlannedTimeout * i64Second, [this] {
        UpdateLocation();
        TellIndication(m_u32PlannedTimeout);
    });
}

void IdleMode::Reselect() {
    Radio &stAir = m_stModem.Air();
    const ModemTime iNow = m_stModem.Now();
    const Station *pstServing = m_stLink.Serving();
    const double fHere =
        stAir.Receivable(*pstServing, iNow)
            ? stAir.Measure(*pstServing, iNow).fRSSI + stAir.Thresholds().fHysteresis
            : fNothing;
    if (Station *pstBetter = stAir.StrongestOfNetwork(*pstServing, fHere, iNow)) {
        m_stLink.ListenTo(*pstBetter);
    }
    if (m_stLink.Serving()->u32PagingGroup != m_u32PagingGroup && iNow >= m_iUpdateAfter) {
        UpdateLocation();
    }
}

void IdleMode::UpdateLocation() {
    if (m_stModem.TheSignalling().LocationUpdated()) {
        NoteLocation();
    } else {
        m_iUpdateAfter = m_stModem.Now() + iUpdateRetry;
        m_stStep.Start(iUpdateRetry, [this] { UpdateLocation(); });
    }
}

void IdleMode::NoteActivity() {
    const bool bMayGoIdle = m_u32TimerSeconds != 0 && m_stLink.State() == LinkState::LinkUp &&
                            !m_stModem.UserTraffic().KeepsAwake();
    if (bMayGoIdle) {
        m_stInactivity.Start(m_u32TimerSeconds * i64Second, [this] { Enter(); });
    } else {
        m_stInactivity.Stop();
    }
}

void IdleMode::Enter() {
    m_stLink.SetState(LinkState::EnteringIdle);
    m_stStep.StartAnswer(m_iEntryTime, [this] {
        m_stLink.SetState(LinkState::Idle);
        TellIndication(m_u32PlannedTimeout);
    });
}

void IdleMode::ComeOut() {
    m_stLink.SetState(LinkState::LeavingIdle);
    m_stStep.StartAnswer(m_iExitTime, [this] {
        if (!m_stModem.Air().StrongEnoughToEnter(*m_stLink.Serving(), m_stModem.Now())) {
            m_stLink.Lose(LinkReason::IdleModeFailureCodeReceived);
            return;
        }
        m_stLink.SetState(LinkState::LinkUp);
        TellIndication(0);
    });
}

// The modem listens once in every paging cycle.
void IdleMode::Page() {
    if (m_stLink.State() != LinkState::Idle || m_stPaging.Running()) {
        return;
    }
    const ModemTime iCycle = m_stModem.TheOptions().Value(Options::PagingCycle) * i64Second;
    const ModemTime iToNext = iCycle == 0 ? 0 : iCycle - m_stModem.Now() % iCycle;
    m_stPaging.Start(iToNext, [this] {
        m_stModem.TheSignalling().Paged();
        ComeOut();
    });
}

uint32_t IdleMode::Status() const {
    switch (m_stLink.State()) {
    case LinkState::EnteringIdle:
        return GoingIdle;
    case LinkState::Idle:
        return InIdle;
    case LinkState::LeavingIdle:
        return ComingOut;
    default:
        return NotIdle;
    }
}

int32_t IdleMode::SetTimer(uint32_t u32Seconds) {
    const bool bGood = u32Seconds <= u32LongestTimer;
    if (bGood) {
        m_u32TimerSeconds = u32Seconds;
        NoteActivity();
    }
    TellWord(SUBTYPE_IDLE_MODE_INACTIVITY_TIMER, bGood ? u32TimerSet : u32TimerRefused);
    return 0;
}

int32_t IdleMode::WakeUp() {
    const bool bIdle = m_stLink.State() == LinkState::Idle;
    TellWord(SUBTYPE_IDLE_MODE_WAKE_UP, bIdle ? 1 : 0);
    if (bIdle) {
        ComeOut();
    }
    return 0;
}

void IdleMode::TellWord(uint32_t u32SubType, uint32_t u32Value) {
    Record<StatusWord::Size> stAnswer;
    Put(stAnswer.Span(), StatusWord::u32Value, u32Value);
    m_stModem.Tell(TYPE_IDLE_MODE, u32SubType, stAnswer.View());
}

void IdleMode::TellIndication(uint32_t u32StateWord) {
    const Station &stStation = *m_stLink.Serving();
    const Measurement stMeasurement = m_stModem.Air().Measure(stStation, m_stModem.Now());
    const auto u32Vendor = static_cast<uint32_t>(stStation.aucVendorData.size());
    Record<IdleIndication::aucVendorData + UINT8_MAX> stIndication;
    const ByteSpan stTo = stIndication.Span();
    Put(stTo, IdleIndication::u32State, u32StateWord);
    PutBytes(stTo, IdleIndication::aucBSID.u16Offset, {stStation.aucBSID.data(), u32BSIDSize});
    Put(stTo, IdleIndication::s32RSSIMean, Rounded(stMeasurement.fRSSI * fQuarters));
    Put(stTo, IdleIndication::u32CINRMean, Rounded(stMeasurement.fCINR));
    Put(stTo, IdleIndication::u32PreambleID, stStation.u32Preamble);
    Put(stTo, IdleIndication::s32VendorDataLength, u32Vendor);
    PutBytes(stTo, IdleIndication::aucVendorData, {stStation.aucVendorData.data(), u32Vendor});
    m_stModem.TellOnceSaid(TYPE_IDLE_MODE, SUBTYPE_IDLE_MODE,
                           stIndication.View().From(0, IdleIndication::aucVendorData + u32Vendor));
}

} // namespace

std::unique_ptr<Subsystem> MakeIdleMode(Modem &stModem) {
    return std::make_unique<IdleMode>(stModem);
}
