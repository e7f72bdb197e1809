#include "link/Excursion.h"

#include "air/Signalling.h"
#include "link/Link.h"

void Excursion::Begin(ModemTime iTime) {
    Stop();
    if (m_stModem.TheLink().State() != LinkState::LinkUp) {
        LeaveFrom(0);
        return;
    }
    Ask(iTime, nullptr,
        [this] { LeaveFrom(static_cast<uint64_t>(m_stModem.Now() / i64Frame) + u32FramesToScan); });
}

void Excursion::Visit(const Station &stNeighbour, uint32_t u32Frames) {
    Stop();
    const ModemTime iTime = u32Frames * i64Frame;
    Ask(iTime, &stNeighbour, [this, iTime, &stNeighbour] {
        LeaveFrom(static_cast<uint64_t>(m_stModem.Now() / i64Frame) + u32FramesToScan);
        m_stReturn.Start(u32FramesToScan * i64Frame + iTime,
                         [this, &stNeighbour] { End({&stNeighbour}); });
    });
}

void Excursion::Ask(ModemTime iTime, const Station *pstNeighbour,
                    const std::function<void()> &pfnThen) {
    m_bAsked = true;
    m_stModem.TheSignalling().ScanAsked(iTime, pstNeighbour);
    m_stModem.TheSignalling().OnceSaid([this, pfnThen, u32Number = m_u32Number] {
        if (u32Number == m_u32Number) {
            pfnThen();
        }
    });
}

void Excursion::LeaveFrom(uint64_t u64Frame) {
    m_stModem.ThePresence().Leave(m_eKind,
                                  [u64Frame](uint64_t u64Now) { return u64Now >= u64Frame; });
}

void Excursion::End(const std::vector<const Station *> &apstSeen) {
    if (m_bAsked && m_stModem.TheLink().State() == LinkState::LinkUp) {
        m_stModem.TheSignalling().ScanReported(apstSeen);
    }
    Stop();
}

void Excursion::Stop() {
    ++m_u32Number;
    m_bAsked = false;
    m_stReturn.Stop();
    m_stModem.ThePresence().Return(m_eKind);
}
