#include "time/Scheduler.h"

#include <algorithm>

Scheduler::Ticket Scheduler::After(ModemTime iDelay, Action pfnAction) {
    const Ticket stTicket{m_iNow + std::max<ModemTime>(iDelay, 0), m_u64Next++};
    m_astPlanned.emplace(stTicket, std::move(pfnAction));
    return stTicket;
}

std::optional<ModemTime> Scheduler::NextDue() const {
    if (m_astPlanned.empty()) {
        return std::nullopt;
    }
    return m_astPlanned.begin()->first.first;
}

void Scheduler::AdvanceTo(ModemTime iNow) {
    while (!m_astPlanned.empty() && m_astPlanned.begin()->first.first <= iNow) {
        // Taken out first: the action may plan and cancel others.
        auto stNode = m_astPlanned.extract(m_astPlanned.begin());
        m_iNow = std::max(m_iNow, stNode.key().first);
        stNode.mapped()();
    }
    m_iNow = std::max(m_iNow, iNow);
}

void Timer::Start(ModemTime iDelay, Scheduler::Action pfnAction) {
    Stop();
    m_stTicket = m_stScheduler.After(iDelay, [this, pfnRun = std::move(pfnAction)] {
        m_stTicket.reset();
        pfnRun();
    });
}

void Timer::Stop() {
    if (m_stTicket) {
        m_stScheduler.Cancel(*m_stTicket);
        m_stTicket.reset();
    }
}
