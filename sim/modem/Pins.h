// The general purpose pins. The host sets them, and parts of the modem drive those that they are
// connected to.
#ifndef PINS_H
#define PINS_H

#include <cstdint>
#include <functional>
#include <vector>

class Pins {
  public:
    // Hears of the pin that the host has set.
    void OnHost(std::function<void(uint32_t u32Pin)> pfnObserver) {
        m_apfnObservers.push_back(std::move(pfnObserver));
    }
    // All low.
    void Start() { m_u32Levels = 0; }
    bool High(uint32_t u32Pin) const { return (m_u32Levels >> u32Pin & 1) != 0; }
    void Drive(uint32_t u32Pin, bool bHigh) {
        m_u32Levels = (m_u32Levels & ~(1U << u32Pin)) | (bHigh ? 1U << u32Pin : 0);
    }
    void SetByHost(uint32_t u32Pin, bool bHigh) {
        Drive(u32Pin, bHigh);
        for (const auto &pfnObserver : m_apfnObservers) {
            pfnObserver(u32Pin);
        }
    }

  private:
    uint32_t m_u32Levels = 0; // a bit a pin
    std::vector<std::function<void(uint32_t u32Pin)>> m_apfnObservers;
};

#endif
