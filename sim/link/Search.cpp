// What the modem answers to everything of the network search type. Network search
// and NSP search share the receiver: only one of them runs.
#include "LinkRecords.h"
#include "link/Link.h"
#include "link/LinkSubsystems.h"
#include "link/NSPSearch.h"
#include "link/NetworkSearch.h"

namespace {

class Search : public Subsystem {
  public:
    explicit Search(Modem &stModem);
    void Start() override;

  private:
    // False when a search would be in the way of what the modem is doing.
    bool ReceiverFree() const;
    // Ends the search that runs; false when there is none.
    bool EndRunning();
    int32_t BeginSearch(const Request &stRequest);
    int32_t BeginNSPSearch(const Request &stRequest);
    int32_t SetScanMode(const Request &stRequest);
    int32_t SetThresholds(const Request &stRequest);

    Modem &m_stModem;
    NetworkSearch m_stNetworkSearch;
    NSPSearch m_stNSPSearch;
};

Search::Search(Modem &stModem)
    : m_stModem(stModem), m_stNetworkSearch(stModem), m_stNSPSearch(stModem) {
    stModem.On(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH,
               [this](const Request &stRequest) { return BeginSearch(stRequest); });
    stModem.On(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH_ABORT, [this](const Request &) {
        if (!EndRunning()) {
            m_stNetworkSearch.TellResults();
        }
        return 0;
    });
    stModem.On(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH_QUERY, [this](const Request &) {
        m_stNetworkSearch.TellResults();
        return 0;
    });
    stModem.On(TYPE_NETWORK_SEARCH, SUBTYPE_NSP_SEARCH,
               [this](const Request &stRequest) { return BeginNSPSearch(stRequest); });
    stModem.On(TYPE_NETWORK_SEARCH, SUBTYPE_LOW_POWER_SCAN,
               [this](const Request &stRequest) { return SetScanMode(stRequest); });
    stModem.On(TYPE_DEVICE_CONFIG, SUBTYPE_CINR_RSSI_THRESHOLD,
               [this](const Request &stRequest) { return SetThresholds(stRequest); });
    stModem.TheLink().Observe([this](const LinkChange &) {
        if (!ReceiverFree()) {
            EndRunning();
        }
    });
}

void Search::Start() {
    m_stNetworkSearch.Start();
    m_stNSPSearch.Start();
}

bool Search::ReceiverFree() const {
    return m_stModem.TheLink().IsAnyOf(
        {LinkState::Unsynchronised, LinkState::Synchronised, LinkState::LinkUp, LinkState::Idle});
}

bool Search::EndRunning() {
    if (m_stNetworkSearch.Running()) {
        m_stNetworkSearch.Abort();
    } else if (m_stNSPSearch.Running()) {
        m_stNSPSearch.Abort();
    } else {
        return false;
    }
    return true;
}

int32_t Search::BeginSearch(const Request &stRequest) {
    if (!ReceiverFree()) {
        m_stNetworkSearch.Refuse();
        return 0;
    }
    if (m_stNSPSearch.Running()) {
        m_stNSPSearch.Abort();
    }
    return m_stNetworkSearch.Begin(stRequest.stPayload);
}

int32_t Search::BeginNSPSearch(const Request &stRequest) {
    if (!ReceiverFree()) {
        m_stNSPSearch.Refuse();
        return 0;
    }
    if (m_stNetworkSearch.Running()) {
        m_stNetworkSearch.Abort();
    }
    return m_stNSPSearch.Begin(stRequest.stPayload);
}

int32_t Search::SetScanMode(const Request &stRequest) {
    const uint32_t u32Mode = Get(stRequest.stPayload, LowPowerScanRequest::u8Mode);
    const bool bKnown =
        u32Mode >= LowPowerScanRequest::FirstMode && u32Mode <= LowPowerScanRequest::LastMode;
    Record<LowPowerScanAnswer::Size> stAnswer;
    Put(stAnswer.Span(), LowPowerScanAnswer::u32Result, bKnown ? 1 : 0);
    Put(stAnswer.Span(), LowPowerScanAnswer::u8Mode, u32Mode);
    m_stModem.Tell(TYPE_NETWORK_SEARCH, SUBTYPE_LOW_POWER_SCAN, stAnswer.View());
    return 0;
}

int32_t Search::SetThresholds(const Request &stRequest) {
    m_stNetworkSearch.SetThresholds(GetSigned(stRequest.stPayload, CinrRssiThreshold::s32RSSI),
                                    GetSigned(stRequest.stPayload, CinrRssiThreshold::s32CINR));
    m_stModem.Tell(TYPE_DEVICE_CONFIG, SUBTYPE_CINR_RSSI_THRESHOLD, stRequest.stPayload);
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeSearch(Modem &stModem) { return std::make_unique<Search>(stModem); }
