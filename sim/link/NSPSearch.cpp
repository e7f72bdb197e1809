#include "link/NSPSearch.h"

#include <array>

NSPSearch::NSPSearch(Modem &stModem)
    : m_stModem(stModem), m_stExcursion(stModem, Absence::Search), m_stStep(stModem.Clock()),
      m_stLimit(stModem.Clock()) {
    m_iTimePerStation =
        stModem.Settings("search").Seconds("time-per-nsp-discovery", 0.0001, 1000, 0.5);
}

void NSPSearch::Start() {
    m_stStep.Stop();
    m_stLimit.Stop();
    m_stExcursion.Stop();
}

int32_t NSPSearch::Begin(ByteView stPayload) {
    if (Get(stPayload, NSPSearchRequest::u32NumStations) > u32MaxBaseStations) {
        return LibraryError::BadValue;
    }
    if (Running()) {
        Abort();
    }
    ReadTargets(stPayload);
    m_uNext = 0;
    m_apstAsked.clear();
    const uint32_t u32Duration = Get(stPayload, NSPSearchRequest::u32Duration);
    const ModemTime iAll = std::max<ModemTime>(std::ssize(m_astTargets), 1) * m_iTimePerStation;
    m_stExcursion.Begin(u32Duration != 0 ? std::min(iAll, u32Duration * i64Second) : iAll);
    if (u32Duration != 0) {
        m_stLimit.Start(u32Duration * i64Second,
                        [this] { End(NSPDiscovery::ScanDurationTimeout); });
    }
    WaitForNext();
    return 0;
}

// The stations that the request lists; without a list, all of the provider's. A
// provider of 0 is any.
void NSPSearch::ReadTargets(ByteView stPayload) {
    namespace Entry = NSPSearchRequest::StationEntry;
    const uint32_t u32NAPID = Get(stPayload, NSPSearchRequest::u32NAPID);
    const uint32_t u32NSPCount = Get(stPayload, NSPSearchRequest::u32NSPChangeCount);
    const uint32_t u32Listed = Get(stPayload, NSPSearchRequest::u32NumStations);
    m_astTargets.clear();
    for (const Station &stStation : m_stModem.Air().Stations()) {
        if (u32Listed == 0 && (u32NAPID == 0 || u32NAPID == stStation.NAPID())) {
            m_astTargets.push_back({&stStation, false});
        }
    }
    for (uint32_t i = 0; i < u32Listed; ++i) {
        const ByteView stEntry =
            stPayload.From(NSPSearchRequest::stPhyInfo + i * Entry::Size, Entry::Size);
        const Station *pstStation =
            m_stModem.Air().Strongest(Get(stEntry, Entry::u32CF), Get(stEntry, Entry::u32BW),
                                      Get(stEntry, Entry::u32Pid), m_stModem.Now());
        if (pstStation != nullptr && (u32NAPID == 0 || u32NAPID == pstStation->NAPID())) {
            const bool bKnown =
                Get(stEntry, Entry::u32DCDChangeCount) == pstStation->u32DCDChangeCount &&
                u32NSPCount == pstStation->u32NSPChangeCount;
            m_astTargets.push_back({pstStation, bKnown});
        }
    }
}

size_t NSPSearch::NextReceivable(size_t uFirst) const {
    while (uFirst < m_astTargets.size() &&
           !m_stModem.Air().Receivable(*m_astTargets[uFirst].pstStation, m_stModem.Now())) {
        ++uFirst;
    }
    return uFirst;
}

void NSPSearch::WaitForNext() {
    m_stStep.StartAnswer(m_iTimePerStation, [this] { Ask(); });
}

void NSPSearch::Ask() {
    m_uNext = NextReceivable(m_uNext);
    if (m_uNext == m_astTargets.size()) {
        End(NSPDiscovery::SearchFailure);
        return;
    }
    const Target &stTarget = m_astTargets[m_uNext];
    m_uNext = NextReceivable(m_uNext + 1);
    const bool bLast = m_uNext == m_astTargets.size();
    uint32_t u32Status = stTarget.bKnown ? NSPDiscovery::NotNeeded : NSPDiscovery::Success;
    if (!stTarget.pstStation->bNSPSupport) {
        u32Status = NSPDiscovery::NotSupported;
    }
    Tell(u32Status, *stTarget.pstStation, bLast);
    m_apstAsked.push_back(stTarget.pstStation);
    if (bLast) {
        m_stExcursion.End(m_apstAsked);
        Start();
    } else {
        WaitForNext();
    }
}

void NSPSearch::End(uint32_t u32Status) {
    m_stExcursion.End(m_apstAsked);
    Start();
    TellStatus(u32Status);
}

void NSPSearch::TellStatus(uint32_t u32Status) {
    Record<NSPDiscovery::Size> stAnswer;
    Put(stAnswer.Span(), NSPDiscovery::u8Status, u32Status);
    Put(stAnswer.Span(), NSPDiscovery::u32Complete, 1);
    m_stModem.Tell(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_DISCOVERY_RESP, stAnswer.View());
}

void NSPSearch::Tell(uint32_t u32Status, const Station &stStation, bool bLast) {
    const Measurement stMeasurement = m_stModem.Air().Measure(stStation, m_stModem.Now());
    Record<NSPDiscovery::Size> stAnswer;
    const ByteSpan stTo = stAnswer.Span();
    Put(stTo, NSPDiscovery::u8Status, u32Status);
    Put(stTo, NSPDiscovery::u32Complete, bLast ? 1 : 0);
    PutBytes(stTo, NSPDiscovery::aucBSID.u16Offset, {stStation.aucBSID.data(), u32BSIDSize});
    Put(stTo, NSPDiscovery::u32DCDChangeCount, stStation.u32DCDChangeCount);
    Put(stTo, NSPDiscovery::u32NSPChangeCount, stStation.u32NSPChangeCount);
    Put(stTo, NSPDiscovery::u32PID, stStation.u32Preamble);
    Put(stTo, NSPDiscovery::u32CF, stStation.u32Frequency);
    Put(stTo, NSPDiscovery::u32Bandwidth, stStation.u32Bandwidth);
    Put(stTo, NSPDiscovery::u32RSSI, Rounded(stMeasurement.fRSSI));
    Put(stTo, NSPDiscovery::u32CINR, Rounded(stMeasurement.fCINR));
    if (u32Status == NSPDiscovery::Success) {
        namespace Entry = NSPDiscovery::NSPEntry;
        Put(stTo, NSPDiscovery::s32NumNSPs, static_cast<uint32_t>(stStation.astNSPs.size()));
        uint32_t u32Offset = NSPDiscovery::astNSPs;
        for (const NSP &stNSP : stStation.astNSPs) {
            const auto u32Length = static_cast<uint32_t>(stNSP.strName.size());
            Put(stTo, Entry::u32ID, stNSP.u32ID, u32Offset);
            Put(stTo, Entry::u32NameLength, u32Length, u32Offset);
            PutBytes(stTo, u32Offset + Entry::aucName,
                     {reinterpret_cast<const uint8_t *>(stNSP.strName.data()), u32Length});
            u32Offset += Entry::Size;
        }
    }
    m_stModem.Tell(TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_DISCOVERY_RESP, stAnswer.View());
}
