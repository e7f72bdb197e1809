#include "library/WholeModem.h"

#include <array>

#include "host/HostSubsystems.h"
#include "link/LinkSubsystems.h"

namespace {

using MakeSubsystem = std::unique_ptr<Subsystem> (*)(Modem &stModem);

// Everything but the parts that others build on.
constexpr std::array apfnSubsystems{
    MakeSubsystem{MakeOptionRequests}, MakeSubsystem{MakeSearch},
    MakeSubsystem{MakeIdleMode},       MakeSubsystem{MakeRecovery},
    MakeSubsystem{MakeShutdown},       MakeSubsystem{MakeHalfMiniCard},
    MakeSubsystem{MakeIndications},    MakeSubsystem{MakeMIBStatistics},
    MakeSubsystem{MakeServiceFlows},   MakeSubsystem{MakeSecurityParameters},
    MakeSubsystem{MakeSleepMode},      MakeSubsystem{MakeHandovers},
    MakeSubsystem{MakeAntennas},       MakeSubsystem{MakeStationInformation},
    MakeSubsystem{MakeStatistics},     MakeSubsystem{MakeChipset},
    MakeSubsystem{MakeOMADMTree},      MakeSubsystem{MakeAuthentication},
    MakeSubsystem{MakeTrace},          MakeSubsystem{MakeLoggers},
    MakeSubsystem{MakeLogData},        MakeSubsystem{MakeGPIO},
    MakeSubsystem{MakeMemory},
};

} // namespace

WholeModem::WholeModem(Scenario stScenario)
    : Modem(std::move(stScenario)),
      m_stFaults(
          Root(), Seed(), Clock(),
          [this](MessageBytes aucMessage) { Queue(std::move(aucMessage)); },
          [this](const MessageBytes &aucMessage) { Lose(aucMessage); }),
      m_stLink(*this), m_stMIBs(*this), m_stVendorRegion(*this) {
    Know(m_stLink, m_stMIBs, m_stVendorRegion);
    for (const MakeSubsystem pfnMake : apfnSubsystems) {
        m_apstSubsystems.push_back(pfnMake(*this));
    }
    m_stLink.Observe([this](const LinkChange &stChange) {
        if (stChange.eBefore != stChange.eAfter) {
            TheEvents().Reached(stChange.eAfter);
        }
    });
    ReadEvents();
    WholeModem::Restart();
}

void WholeModem::Restart() {
    RestartOwn();
    TheOptions().Start();
    m_stLink.Start();
    TheSignalling().Start();
    m_stMIBs.Start();
    m_stVendorRegion.Start();
    for (const std::unique_ptr<Subsystem> &pstSubsystem : m_apstSubsystems) {
        pstSubsystem->Start();
    }
}

void WholeModem::SetSeed(uint64_t u64Seed) {
    Modem::SetSeed(u64Seed);
    m_stFaults.SetSeed(u64Seed);
}

std::optional<int32_t> WholeModem::SendFailure(uint32_t u32Type, uint32_t u32SubType) {
    return m_stFaults.SendFailure(u32Type, u32SubType);
}

void WholeModem::PassOn(MessageBytes aucMessage) { m_stFaults.Pass(std::move(aucMessage)); }
