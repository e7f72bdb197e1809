// In which frames the modem is with its station. Sleep windows, scans, searches and handovers take
// others: nothing is sent, received or counted then.
#ifndef PRESENCE_H
#define PRESENCE_H

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "time/ModemTime.h"

enum class Absence : uint8_t { Sleep, Scan, Search, Neighbour, Handover, Kinds };

class Presence {
  public:
    // Whether the modem is away in a frame; the same for a frame whenever it is asked.
    using Test = std::function<bool(uint64_t u64Frame)>;

    // Who counts frames hears of a change before it takes place, with those until then to count.
    void OnChange(std::function<void()> pfnObserver) {
        m_apfnObservers.push_back(std::move(pfnObserver));
    }
    // From now on the modem is away for this reason as the test says; without one it is not.
    void Leave(Absence eKind, Test pfnAway);
    void Return(Absence eKind) { Leave(eKind, nullptr); }

    bool Away(uint64_t u64Frame) const;
    // How many frames of those that begin after iFrom and not after iTo the modem is with its
    // station, of every u32Every-th frame.
    uint64_t Heard(ModemTime iFrom, ModemTime iTo, uint32_t u32Every = 1) const;

  private:
    std::vector<std::function<void()>> m_apfnObservers;
    std::array<Test, static_cast<size_t>(Absence::Kinds)> m_apfnAway;
};

#endif
