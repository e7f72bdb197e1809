// Network search: looks at the frequencies and bandwidths that were asked for,
// one pair after the other, and at nothing else.
#ifndef NETWORK_SEARCH_H
#define NETWORK_SEARCH_H

#include <vector>

#include "LinkRecords.h"
#include "link/Excursion.h"
#include "modem/Modem.h"

// The pairs of frequency and bandwidth of one search, in the order in which they
// are looked at. A range of frequencies is never written out: it may have
// millions.
class ChannelPlan {
  public:
    ChannelPlan() = default;
    ChannelPlan(ByteView stRequest, const std::vector<uint32_t> &au32Standard);

    uint64_t Count() const {
        return (m_u64RangeCount + m_au32List.size()) * m_au32Bandwidths.size();
    }
    // How many pairs have been looked at when this one has, or 0 when it is not
    // among them.
    uint64_t PlaceOf(uint32_t u32Frequency, uint32_t u32Bandwidth) const;

  private:
    // 1 for the first, 0 when it is not in the range.
    uint64_t PlaceInRange(uint32_t u32Frequency) const;

    uint32_t m_u32Start = 0;
    uint32_t m_u32Step = 0;
    uint64_t m_u64RangeCount = 0;
    std::vector<uint32_t> m_au32List;
    std::vector<uint32_t> m_au32Bandwidths;
};

class NetworkSearch {
  public:
    explicit NetworkSearch(Modem &stModem);
    void Start();

    // The payload of a search request. A search that is under way ends first.
    int32_t Begin(ByteView stPayload);
    bool Running() const { return m_stStep.Running(); }
    // Ends the search with what it has found.
    void Abort() { End(StationList::SearchTimedOut); }
    // Answers with the results so far, or with those of the last search.
    void TellResults();
    // Answers a search that cannot begin.
    void Refuse();
    void SetThresholds(int32_t iRSSI, int32_t iCINR);

  private:
    // Waits for the next pair that has a station on it, or for the end.
    void WaitForNext();
    // Takes down the stations on the pairs up to this one.
    void LookUntil(uint64_t u64Place);
    void End(uint32_t u32Status);
    void Tell(uint32_t u32Status);
    bool Wanted(const Station &stStation) const;
    ModemTime TimeOf(uint64_t u64Place) const;

    Modem &m_stModem;
    ModemTime m_iTimePerChannel;
    std::vector<uint32_t> m_au32Standard; // bandwidths, when a request names none
    int32_t m_iRSSIAtStart;
    int32_t m_iCINRAtStart;

    int32_t m_iRSSIThreshold = 0;
    int32_t m_iCINRThreshold = 0;
    ChannelPlan m_stPlan;
    bool m_bByStation = false;
    ModemTime m_iBegan = 0;
    ModemTime m_iDuration = 0; // 0: no limit
    uint64_t m_u64Done = 0;    // pairs looked at
    uint32_t m_u32LastStatus = StationList::SearchComplete;
    std::vector<uint8_t> m_aucFound; // BaseStation records
    std::vector<const Station *> m_apstFound;
    Excursion m_stExcursion;
    Timer m_stStep;
};

#endif
