#include "air/Presence.h"

#include <algorithm>

void Presence::Leave(Absence eKind, Test pfnAway) {
    Test &pfnNow = m_apfnAway[static_cast<size_t>(eKind)];
    if (!pfnNow && !pfnAway) {
        return;
    }
    for (const std::function<void()> &pfnObserver : m_apfnObservers) {
        pfnObserver();
    }
    pfnNow = std::move(pfnAway);
}

bool Presence::Away(uint64_t u64Frame) const {
    return std::any_of(m_apfnAway.begin(), m_apfnAway.end(),
                       [&](const Test &pfnAway) { return pfnAway && pfnAway(u64Frame); });
}

uint64_t Presence::Heard(ModemTime iFrom, ModemTime iTo, uint32_t u32Every) const {
    const ModemTime iPeriod = i64Frame * u32Every;
    const auto u64First = static_cast<uint64_t>(iFrom / iPeriod) + 1;
    const auto u64Last = static_cast<uint64_t>(iTo / iPeriod);
    if (std::none_of(m_apfnAway.begin(), m_apfnAway.end(),
                     [](const Test &pfnAway) { return bool{pfnAway}; })) {
        return u64Last + 1 - u64First;
    }
    uint64_t u64Heard = 0;
    for (uint64_t u64At = u64First; u64At <= u64Last; ++u64At) {
        u64Heard += Away(u64At * u32Every) ? 0 : 1;
    }
    return u64Heard;
}
