// Shutdown mode: the radio is off; the modem looks around from time to time and
// comes back on an event, or when the client asks for synchronisation or entry.
#include <vector>

#include "link/Link.h"
#include "link/LinkSubsystems.h"

namespace {

// Answers to the shutdown and the shutdown mode status request.
constexpr uint32_t u32InShutdown = 0;
constexpr uint32_t u32NotInShutdown = 1;

class Shutdown : public Subsystem {
  public:
    explicit Shutdown(Modem &stModem);

  private:
    int32_t Begin();
    int32_t TellMode();
    void Finish();
    void WakeUpToLook();
    void Tell(uint32_t u32SubType, uint32_t u32Value);

    Modem &m_stModem;
    Link &m_stLink;
    ModemTime m_iTime;
    ModemTime m_iWakePeriod; // 0: never
    uint32_t m_u32StatusAsked = 0;
    Timer m_stStep;
};

Shutdown::Shutdown(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stStep(stModem.Clock()) {
    const Section stSettings = stModem.Settings("shutdown");
    m_iTime = stSettings.Seconds("time", 0, 1000, 0.5);
    m_iWakePeriod = stSettings.Seconds("wake-period", 0, 1e6, 60);
    stModem.On(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN, [this](const Request &) { return Begin(); });
    stModem.On(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_MODE_STATUS,
               [this](const Request &) { return TellMode(); });
    stModem.OnEvent("complete-wake-up", [this](const Section &) {
        return [this] {
            if (m_stLink.State() == LinkState::Shutdown) {
                m_stLink.WakeUpCompletely();
            }
        };
    });
    stModem.OnEvent("firmware-shutdown", [this](const Section &) {
        return [this] { m_stModem.Tell(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_FROM_FIRMWARE_IND); };
    });
    m_stLink.Observe([this](const LinkChange &stChange) {
        if (stChange.eBefore == stChange.eAfter) {
            return;
        }
        m_stStep.Stop();
        if (stChange.eAfter == LinkState::Shutdown && m_iWakePeriod != 0) {
            m_stStep.Start(m_iWakePeriod, [this] { WakeUpToLook(); });
        }
    });
}

int32_t Shutdown::Begin() {
    if (m_stLink.State() == LinkState::Shutdown) {
        Tell(SUBTYPE_SHUTDOWN, u32InShutdown);
        return 0;
    }
    // Neither in the middle of network entry nor of another change of mode.
    if (m_stLink.IsAnyOf({LinkState::Entering, LinkState::EnteringIdle, LinkState::LeavingIdle,
                          LinkState::ShuttingDown})) {
        Tell(SUBTYPE_SHUTDOWN, u32NotInShutdown);
        return 0;
    }
    if (m_stLink.State() == LinkState::Synchronising) {
        m_stLink.TellSyncStatus(LinkReason::ShutdownReceivedCommand);
    } else if (m_stLink.State() == LinkState::LinkUp) {
        m_stLink.TellEntryStatus(LinkReason::ShutdownReceivedCommand);
    } else if (m_stLink.State() == LinkState::Idle) {
        m_stModem.TheSignalling().GoesFromIdle();
        m_stLink.TellEntryStatus(LinkReason::LocationUpdateWithPowerDownSuccess);
    }
    m_u32StatusAsked = 0;
    m_stLink.SetState(LinkState::ShuttingDown);
    m_stStep.StartAnswer(m_iTime, [this] { Finish(); });
    return 0;
}

void Shutdown::Finish() {
    m_stLink.SetState(LinkState::Shutdown);
    Tell(SUBTYPE_SHUTDOWN, u32InShutdown);
    for (; m_u32StatusAsked != 0; --m_u32StatusAsked) {
        Tell(SUBTYPE_SHUTDOWN_MODE_STATUS, u32InShutdown);
    }
}

// Asked on the way into shutdown, the modem answers when it is there.
int32_t Shutdown::TellMode() {
    if (m_stLink.State() == LinkState::ShuttingDown) {
        ++m_u32StatusAsked;
    } else {
        const bool bShutdown = m_stLink.State() == LinkState::Shutdown;
        Tell(SUBTYPE_SHUTDOWN_MODE_STATUS, bShutdown ? u32InShutdown : u32NotInShutdown);
    }
    return 0;
}

void Shutdown::WakeUpToLook() {
    std::vector<uint8_t> aucIndication(StationList::astStations);
    uint32_t u32Count = 0;
    for (const Station &stStation : m_stModem.Air().Stations()) {
        if (m_stModem.Air().Receivable(stStation, m_stModem.Now())) {
            Record<BaseStation::Size> stRecord;
            m_stModem.Air().PutStation(stRecord.Span(), stStation, m_stModem.Now());
            aucIndication.insert(aucIndication.end(), std::begin(stRecord.aucBytes),
                                 std::end(stRecord.aucBytes));
            ++u32Count;
        }
    }
    const ByteSpan stTo{aucIndication.data(), static_cast<uint32_t>(aucIndication.size())};
    Put(stTo, StationList::u32NumStations, u32Count);
    Put(stTo, StationList::u32SearchStatus, StationList::SearchComplete);
    m_stModem.Tell(TYPE_SHUTDOWN, SUBTYPE_SHUTDOWN_PERIODIC_WAKE_UP_IND, stTo);
    m_stStep.Start(m_iWakePeriod, [this] { WakeUpToLook(); });
}

void Shutdown::Tell(uint32_t u32SubType, uint32_t u32Value) {
    Record<StatusWord::Size> stAnswer;
    Put(stAnswer.Span(), StatusWord::u32Value, u32Value);
    m_stModem.Tell(TYPE_SHUTDOWN, u32SubType, stAnswer.View());
}

} // namespace

std::unique_ptr<Subsystem> MakeShutdown(Modem &stModem) {
    return std::make_unique<Shutdown>(stModem);
}
