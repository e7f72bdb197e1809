#include "link/NetworkSearch.h"

#include <algorithm>

namespace {

// 1 for the first, 0 when it is not there.
uint64_t PlaceIn(const std::vector<uint32_t> &au32Values, uint32_t u32Value) {
    const auto Position = std::find(au32Values.begin(), au32Values.end(), u32Value);
    return Position == au32Values.end() ? 0
                                        : static_cast<uint64_t>(Position - au32Values.begin()) + 1;
}

void AddOnce(std::vector<uint32_t> *pau32Values, uint32_t u32Value) {
    if (PlaceIn(*pau32Values, u32Value) == 0) {
        pau32Values->push_back(u32Value);
    }
}

// No search lasts longer: the sum of all the pairs stays within the clock.
constexpr ModemTime i64LongestSearch = ModemTime{1000} * 24 * 3600 * i64Second;

} // namespace

ChannelPlan::ChannelPlan(ByteView stRequest, const std::vector<uint32_t> &au32Standard)
    : m_u32Start(Get(stRequest, SearchRequest::u32FrequencyStart)),
      m_u32Step(Get(stRequest, SearchRequest::u32FrequencyStep)) {
    const uint32_t u32End = Get(stRequest, SearchRequest::u32FrequencyEnd);
    if (m_u32Start != 0 && u32End >= m_u32Start) {
        m_u64RangeCount = m_u32Step == 0 ? 1 : uint64_t{u32End - m_u32Start} / m_u32Step + 1;
    } else if (m_u32Start != 0 && u32End == 0) {
        m_u64RangeCount = 1;
    }
    for (uint32_t i = 0; i < Get(stRequest, SearchRequest::u32NumFrequencies); ++i) {
        const uint32_t u32Frequency = Get(stRequest, SearchRequest::au32Frequencies, 4 * i);
        if (PlaceInRange(u32Frequency) == 0) {
            AddOnce(&m_au32List, u32Frequency);
        }
    }
    for (uint32_t i = 0; i < Get(stRequest, SearchRequest::u32NumBandwidths); ++i) {
        AddOnce(&m_au32Bandwidths, Get(stRequest, SearchRequest::au32Bandwidths, 4 * i));
    }
    if (m_au32Bandwidths.empty()) {
        m_au32Bandwidths = au32Standard;
    }
}

uint64_t ChannelPlan::PlaceInRange(uint32_t u32Frequency) const {
    if (u32Frequency < m_u32Start) {
        return 0;
    }
    const uint32_t u32Above = u32Frequency - m_u32Start;
    const uint64_t u64Index = m_u32Step == 0 ? u32Above : u32Above / m_u32Step;
    const bool bOnStep = m_u32Step == 0 || u32Above % m_u32Step == 0;
    return bOnStep && u64Index < m_u64RangeCount ? u64Index + 1 : 0;
}

uint64_t ChannelPlan::PlaceOf(uint32_t u32Frequency, uint32_t u32Bandwidth) const {
    uint64_t u64Frequency = PlaceInRange(u32Frequency);
    if (u64Frequency == 0) {
        const uint64_t u64InList = PlaceIn(m_au32List, u32Frequency);
        u64Frequency = u64InList == 0 ? 0 : m_u64RangeCount + u64InList;
    }
    const uint64_t u64Bandwidth = PlaceIn(m_au32Bandwidths, u32Bandwidth);
    return u64Frequency == 0 || u64Bandwidth == 0
               ? 0
               : (u64Frequency - 1) * m_au32Bandwidths.size() + u64Bandwidth;
}

NetworkSearch::NetworkSearch(Modem &stModem)
    : m_stModem(stModem), m_stExcursion(stModem, Absence::Search), m_stStep(stModem.Clock()) {
    const Section stSettings = stModem.Settings("search");
    m_iTimePerChannel = stSettings.Seconds("time-per-channel", 0.0001, 1000, 0.05);
    for (const int64_t iBandwidth : stSettings.Integers("bandwidths", 1, UINT32_MAX)) {
        AddOnce(&m_au32Standard, static_cast<uint32_t>(iBandwidth));
    }
    if (m_au32Standard.empty()) {
        m_au32Standard = {10000, 8750, 7000, 5000};
    }
    m_iRSSIAtStart =
        static_cast<int32_t>(stSettings.Integer("rssi-threshold", INT32_MIN, INT32_MAX, -100));
    m_iCINRAtStart =
        static_cast<int32_t>(stSettings.Integer("cinr-threshold", INT32_MIN, INT32_MAX, -10));
}

void NetworkSearch::Start() {
    m_stStep.Stop();
    m_stExcursion.Stop();
    m_aucFound.clear();
    m_apstFound.clear();
    m_u32LastStatus = StationList::SearchComplete;
    SetThresholds(m_iRSSIAtStart, m_iCINRAtStart);
}

void NetworkSearch::SetThresholds(int32_t iRSSI, int32_t iCINR) {
    m_iRSSIThreshold = iRSSI;
    m_iCINRThreshold = iCINR;
}

int32_t NetworkSearch::Begin(ByteView stPayload) {
    if (Get(stPayload, SearchRequest::u32NumBandwidths) > SearchRequest::MaxBandwidths ||
        Get(stPayload, SearchRequest::u32NumFrequencies) > SearchRequest::MaxFrequencies) {
        return LibraryError::BadValue;
    }
    if (Running()) {
        Abort();
    }
    m_stPlan = ChannelPlan(stPayload, m_au32Standard);
    m_bByStation = Get(stPayload, SearchRequest::u32ReportType) == SearchRequest::ReportByList;
    m_iBegan = m_stModem.Now();
    m_iDuration = Get(stPayload, SearchRequest::u32Duration) * i64Second;
    m_u64Done = 0;
    m_aucFound.clear();
    m_apstFound.clear();
    const ModemTime iAll = TimeOf(m_stPlan.Count());
    m_stExcursion.Begin(m_iDuration != 0 ? std::min(iAll, m_iDuration) : iAll);
    WaitForNext();
    return 0;
}

// How long the search takes until it has looked at the pair.
ModemTime NetworkSearch::TimeOf(uint64_t u64Place) const {
    const auto u64Most = static_cast<uint64_t>(i64LongestSearch / m_iTimePerChannel);
    return static_cast<ModemTime>(std::min(u64Place, u64Most)) * m_iTimePerChannel;
}

void NetworkSearch::WaitForNext() {
    uint64_t u64Next = m_stPlan.Count();
    for (const Station &stStation : m_stModem.Air().Stations()) {
        const uint64_t u64Place = m_stPlan.PlaceOf(stStation.u32Frequency, stStation.u32Bandwidth);
        if (u64Place > m_u64Done) {
            u64Next = std::min(u64Next, u64Place);
        }
    }
    const ModemTime iSoFar = m_stModem.Now() - m_iBegan;
    const ModemTime iNext = TimeOf(u64Next);
    if (m_iDuration != 0 && iNext > m_iDuration) {
        m_stStep.StartAnswer(m_iDuration - iSoFar, [this] { Abort(); });
        return;
    }
    m_stStep.StartAnswer(iNext - iSoFar, [this, u64Next] { LookUntil(u64Next); });
}

void NetworkSearch::LookUntil(uint64_t u64Place) {
    bool bFound = false;
    for (const Station &stStation : m_stModem.Air().Stations()) {
        if (u64Place != 0 && Wanted(stStation) &&
            m_stPlan.PlaceOf(stStation.u32Frequency, stStation.u32Bandwidth) == u64Place) {
            Record<BaseStation::Size> stRecord;
            m_stModem.Air().PutStation(stRecord.Span(), stStation, m_stModem.Now());
            m_aucFound.insert(m_aucFound.end(), std::begin(stRecord.aucBytes),
                              std::end(stRecord.aucBytes));
            m_apstFound.push_back(&stStation);
            bFound = true;
        }
    }
    m_u64Done = u64Place;
    if (bFound && m_bByStation) {
        Tell(StationList::SearchInProgress);
    }
    if (u64Place == m_stPlan.Count()) {
        End(StationList::SearchComplete);
    } else {
        WaitForNext();
    }
}

bool NetworkSearch::Wanted(const Station &stStation) const {
    const ModemTime iNow = m_stModem.Now();
    const Measurement stMeasurement = m_stModem.Air().Measure(stStation, iNow);
    return m_stModem.Air().Receivable(stStation, iNow) && stMeasurement.fRSSI >= m_iRSSIThreshold &&
           stMeasurement.fCINR >= m_iCINRThreshold;
}

void NetworkSearch::End(uint32_t u32Status) {
    m_stStep.Stop();
    m_stExcursion.End(m_apstFound);
    m_stModem.History().iSearch = m_stModem.Now() - m_iBegan;
    m_u32LastStatus = u32Status;
    Tell(u32Status);
}

void NetworkSearch::TellResults() {
    Tell(Running() ? StationList::SearchInProgress : m_u32LastStatus);
}

void NetworkSearch::Refuse() {
    Record<StationList::astStations> stAnswer;
    Put(stAnswer.Span(), StationList::u32SearchStatus, StationList::SearchTimedOut);
    m_stModem.Tell(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH, stAnswer.View());
}

void NetworkSearch::Tell(uint32_t u32Status) {
    std::vector<uint8_t> aucAnswer(StationList::astStations);
    const ByteSpan stHead{aucAnswer.data(), StationList::astStations};
    Put(stHead, StationList::u32NumStations,
        static_cast<uint32_t>(m_aucFound.size() / BaseStation::Size));
    Put(stHead, StationList::u32SearchStatus, u32Status);
    aucAnswer.insert(aucAnswer.end(), m_aucFound.begin(), m_aucFound.end());
    m_stModem.Tell(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH,
                   {aucAnswer.data(), static_cast<uint32_t>(aucAnswer.size())});
}
