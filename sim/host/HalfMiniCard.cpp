// The half mini card's own shutdown: while it lasts, the client is kept asking
// once a second; then the card reports that it has woken up.
#include "host/HostSubsystems.h"
#include "modem/Modem.h"

namespace {

class HalfMiniCard : public Subsystem {
  public:
    explicit HalfMiniCard(Modem &stModem);
    void Start() override;

  private:
    int32_t Answer();
    void WakeUp();
    void ShutDown();

    Modem &m_stModem;
    bool m_bShutdownAtStart;
    uint32_t m_u32Exchanges; // until it wakes up, 0: no limit
    ModemTime m_iWakeAfter;  // since the first of them, 0: no limit
    bool m_bInShutdown = false;
    uint32_t m_u32Answered = 0;
    Timer m_stWakeUp;
};

HalfMiniCard::HalfMiniCard(Modem &stModem) : m_stModem(stModem), m_stWakeUp(stModem.Clock()) {
    const Section stSettings = stModem.Settings("half-mini-card");
    m_bShutdownAtStart = stSettings.Flag("shutdown", true);
    m_u32Exchanges = static_cast<uint32_t>(stSettings.Integer("exchanges", 0, UINT32_MAX, 3));
    m_iWakeAfter = stSettings.Seconds("wake-after", 0, 1e6, 0);
    stModem.On(TYPE_HALF_MINI_CARD, SUBTYPE_HALF_MINI_CARD_STATUS,
               [this](const Request &) { return Answer(); });
    stModem.OnEvent("half-mini-card-wake-up", [this](const Section &) {
        return [this] {
            if (m_bInShutdown) {
                WakeUp();
            }
        };
    });
    stModem.OnEvent("half-mini-card-shutdown",
                    [this](const Section &) { return [this] { ShutDown(); }; });
}

void HalfMiniCard::Start() {
    ShutDown();
    m_bInShutdown = m_bShutdownAtStart;
}

void HalfMiniCard::ShutDown() {
    m_stWakeUp.Stop();
    m_bInShutdown = true;
    m_u32Answered = 0;
}

int32_t HalfMiniCard::Answer() {
    if (!m_bInShutdown || (m_u32Exchanges != 0 && m_u32Answered == m_u32Exchanges)) {
        WakeUp();
        return 0;
    }
    if (m_u32Answered == 0 && m_iWakeAfter != 0) {
        m_stWakeUp.Start(m_iWakeAfter, [this] { WakeUp(); });
    }
    ++m_u32Answered;
    m_stModem.Tell(TYPE_HALF_MINI_CARD, SUBTYPE_HALF_MINI_CARD_RESP);
    return 0;
}

void HalfMiniCard::WakeUp() {
    m_stWakeUp.Stop();
    m_bInShutdown = false;
    m_stModem.Tell(TYPE_HALF_MINI_CARD, SUBTYPE_HALF_MINI_CARD_WAKE_UP_IND);
}

} // namespace

std::unique_ptr<Subsystem> MakeHalfMiniCard(Modem &stModem) {
    return std::make_unique<HalfMiniCard>(stModem);
}
