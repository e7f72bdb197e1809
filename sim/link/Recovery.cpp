// What the modem does for itself when the network is lost, or when a reset has taken it out of
// the station that the scenario starts it with: it looks for a station, synchronises and enters, as
// often as it takes. When the host moves the link, the host has it.
#include "link/Link.h"
#include "link/LinkSubsystems.h"

namespace {

class Recovery : public Subsystem {
  public:
    explicit Recovery(Modem &stModem);
    void Start() override;

  private:
    void Begin(Station &stStation, LinkState eWanted);
    void Look();
    void FollowLink(const LinkChange &stChange);
    void End();

    Modem &m_stModem;
    Link &m_stLink;
    bool m_bOn;
    ModemTime m_iAfter;
    ModemTime m_iRetry;
    bool m_bStarted = false;      // once already: what follows are resets
    Station *m_pstLast = nullptr; // that it looks for first; null: nothing to recover
    LinkState m_eWanted = LinkState::LinkUp;
    Timer m_stNext;
};

Recovery::Recovery(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stNext(stModem.Clock()) {
    const Section stSettings = stModem.Settings("recovery");
    m_bOn = stSettings.Flag("on", true);
    m_iAfter = stSettings.Seconds("after", 0, 1e6, 2);
    m_iRetry = stSettings.Seconds("retry", 0.1, 1e6, 5);
    m_stLink.OnLoss([this](Station &stStation) { Begin(stStation, LinkState::LinkUp); });
    m_stLink.OnHostActs([this] { End(); });
    m_stLink.Observe([this](const LinkChange &stChange) {
        if (m_pstLast != nullptr && stChange.eBefore != stChange.eAfter) {
            FollowLink(stChange);
        }
    });
}

void Recovery::Start() {
    End();
    if (m_bStarted && m_stLink.StationAtStart() != nullptr) {
        Begin(*m_stLink.StationAtStart(), m_stLink.StateAtStart());
    }
    m_bStarted = true;
}

void Recovery::Begin(Station &stStation, LinkState eWanted) {
    if (m_bOn) {
        m_pstLast = &stStation;
        m_eWanted = eWanted;
        m_stNext.Start(m_iAfter, [this] { Look(); });
    }
}

void Recovery::End() {
    m_pstLast = nullptr;
    m_stNext.Stop();
}

// The station that was there last, if it can be entered; else the best one of its network.
void Recovery::Look() {
    if (m_stLink.State() == LinkState::Synchronised) {
        (void)m_stLink.Enter(std::nullopt);
        return;
    }
    Radio &stAir = m_stModem.Air();
    const ModemTime iNow = m_stModem.Now();
    const auto TooWeak = [&](const Station &stStation) {
        return !stAir.StrongEnoughToEnter(stStation, iNow);
    };
    constexpr double fAnyLevel = -1000; // dBm
    const Station *pstBest = TooWeak(*m_pstLast)
                                 ? stAir.StrongestOfNetwork(*m_pstLast, fAnyLevel, iNow, TooWeak)
                                 : m_pstLast;
    if (pstBest == nullptr) {
        m_stNext.Start(m_iRetry, [this] { Look(); });
    } else {
        m_stLink.SynchroniseTo(*pstBest);
    }
}

void Recovery::FollowLink(const LinkChange &stChange) {
    using enum LinkState;
    if (stChange.eBefore == Synchronising && stChange.eAfter == Synchronised) {
        if (m_eWanted == Synchronised) {
            End();
        } else {
            m_stNext.Start(0, [this] { Look(); });
        }
    } else if (stChange.eAfter == Unsynchronised || stChange.eAfter == Synchronised) {
        m_stNext.Start(m_iRetry, [this] { Look(); });
    } else if (stChange.eAfter == LinkUp) {
        const bool bToIdle = m_eWanted == Idle;
        End();
        if (bToIdle) {
            m_stNext.Start(0, [this] { m_stLink.GoIdle(); });
        }
    } else if (stChange.eAfter != Synchronising && stChange.eAfter != Entering) {
        End();
    }
}

} // namespace

std::unique_ptr<Subsystem> MakeRecovery(Modem &stModem) {
    return std::make_unique<Recovery>(stModem);
}
