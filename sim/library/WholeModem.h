// The simulated modem without its threads, put together from its parts: requests go in,
// time passes, messages come out through the faults. Whoever drives it does so from one
// thread at a time.
#ifndef WHOLE_MODEM_H
#define WHOLE_MODEM_H

#include <memory>
#include <vector>

#include "host/MIBStore.h"
#include "host/VendorRegion.h"
#include "library/Faults.h"
#include "link/Link.h"
#include "modem/Modem.h"

class WholeModem : public Modem {
  public:
    // Throws ScenarioError.
    explicit WholeModem(Scenario stScenario);

    void Restart() override;
    void SetSeed(uint64_t u64Seed) override;
    Faults &TheFaults() { return m_stFaults; }

  private:
    std::optional<int32_t> SendFailure(uint32_t u32Type, uint32_t u32SubType) override;
    void PassOn(MessageBytes aucMessage) override;

    Faults m_stFaults;
    Link m_stLink;
    MIBStore m_stMIBs;
    VendorRegionStore m_stVendorRegion;
    std::vector<std::unique_ptr<Subsystem>> m_apstSubsystems;
};

#endif
