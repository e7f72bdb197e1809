// User traffic over the link: it flows while the link is up, at the scenario's
// rates, and stops in idle mode and without a link.
#ifndef TRAFFIC_H
#define TRAFFIC_H

#include <cstdint>

#include "scenario/Scenario.h"
#include "time/ModemTime.h"
#include "time/Scheduler.h"

// Of an uplink burst, 16-QAM 1/2.
inline constexpr uint32_t u32SlotBytes = 12;
// Header and checksum of a MAC PDU.
inline constexpr uint32_t u32PDUOverhead = 10;
// Between two grants, or polls, that a station gives without being asked.
inline constexpr ModemTime iGrantInterval = 20 * i64Millisecond;

// Since the modem was started.
struct TrafficTotals {
    uint64_t u64DownlinkBytes = 0;
    uint64_t u64UplinkBytes = 0;
    uint64_t u64DownlinkPackets = 0;
    uint64_t u64UplinkPackets = 0;
    ModemTime iTimeFlowing = 0;
};

class Traffic {
  public:
    // Reads [traffic].
    Traffic(const Section &stRoot, const Scheduler &stScheduler);

    // Follows the link.
    void SetFlowing(bool bFlowing);
    // The totals at this moment.
    TrafficTotals Totals() const;
    // Of a user's packet, in bytes.
    uint32_t PacketSize() const { return static_cast<uint32_t>(m_fPacketSize); }
    // Whether it holds the modem off from idle mode.
    bool KeepsAwake() const { return m_bKeepsAwake; }
    void Reset();

  private:
    const Scheduler &m_stScheduler;
    double m_fDownlinkRate; // bytes a second
    double m_fUplinkRate;
    double m_fPacketSize; // bytes
    bool m_bKeepsAwake;
    bool m_bFlowing = false;
    ModemTime m_iFlowingSince = 0;
    ModemTime m_iFlowedBefore = 0;
};

#endif
