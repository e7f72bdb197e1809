// NSP search: asks stations for the network service providers that they serve,
// one station after the other.
#ifndef NSP_SEARCH_H
#define NSP_SEARCH_H

#include <vector>

#include "LinkRecords.h"
#include "link/Excursion.h"
#include "modem/Modem.h"

class NSPSearch {
  public:
    explicit NSPSearch(Modem &stModem);
    void Start();

    // The payload of an NSP search request. A search that is under way ends first.
    int32_t Begin(ByteView stPayload);
    bool Running() const { return m_stStep.Running() || m_stLimit.Running(); }
    void Abort() { End(NSPDiscovery::Aborted); }
    // Answers a search that cannot begin.
    void Refuse() { TellStatus(NSPDiscovery::SearchFailure); }

  private:
    // A station that is asked, and what the client knows of it.
    struct Target {
        const Station *pstStation;
        bool bKnown; // its change counts are those that the client has
    };

    void ReadTargets(ByteView stPayload);
    void WaitForNext();
    void Ask();
    // The first target from uFirst on that can be received, or the number of targets.
    size_t NextReceivable(size_t uFirst) const;
    void End(uint32_t u32Status);
    void TellStatus(uint32_t u32Status);
    void Tell(uint32_t u32Status, const Station &stStation, bool bLast);

    Modem &m_stModem;
    ModemTime m_iTimePerStation;
    std::vector<Target> m_astTargets;
    size_t m_uNext = 0;
    std::vector<const Station *> m_apstAsked;
    Excursion m_stExcursion;
    Timer m_stStep;
    Timer m_stLimit; // the duration asked for
};

#endif
