#include "air/Traffic.h"

Traffic::Traffic(const Section &stRoot, const Scheduler &stScheduler) : m_stScheduler(stScheduler) {
    const Section stTraffic = stRoot.Table("traffic");
    m_fDownlinkRate = stTraffic.Number("downlink-rate", 0, 1e9, 24000);
    m_fUplinkRate = stTraffic.Number("uplink-rate", 0, 1e9, 6000);
    m_fPacketSize = stTraffic.Number("packet-size", 1, 65535, 600);
    m_bKeepsAwake = stTraffic.Flag("keeps-awake", false);
}

void Traffic::SetFlowing(bool bFlowing) {
    if (m_bFlowing == bFlowing) {
        return;
    }
    m_iFlowedBefore = Totals().iTimeFlowing;
    m_iFlowingSince = m_stScheduler.Now();
    m_bFlowing = bFlowing;
}

TrafficTotals Traffic::Totals() const {
    const ModemTime iNow = m_bFlowing ? m_stScheduler.Now() - m_iFlowingSince : 0;
    const ModemTime iFlowing = m_iFlowedBefore + iNow;
    const double fSeconds = static_cast<double>(iFlowing) / static_cast<double>(i64Second);
    TrafficTotals stTotals;
    stTotals.u64DownlinkBytes = static_cast<uint64_t>(m_fDownlinkRate * fSeconds);
    stTotals.u64UplinkBytes = static_cast<uint64_t>(m_fUplinkRate * fSeconds);
    stTotals.u64DownlinkPackets = static_cast<uint64_t>(m_fDownlinkRate * fSeconds / m_fPacketSize);
    stTotals.u64UplinkPackets = static_cast<uint64_t>(m_fUplinkRate * fSeconds / m_fPacketSize);
    stTotals.iTimeFlowing = iFlowing;
    return stTotals;
}

void Traffic::Reset() {
    m_bFlowing = false;
    m_iFlowedBefore = 0;
}
