#include "time/Scheduler.h"

#include <algorithm>

namespace {

std::optional<ModemTime> FirstOf(const auto &astTickets, auto TicketOf) {
    if (astTickets.empty()) {
        return std::nullopt;
    }
    return TicketOf(*astTickets.begin()).first;
}

} // namespace

Scheduler::Ticket Scheduler::After(ModemTime iDelay, Action pfnAction) {
    return Add(iDelay, m_u64Next++, {std::move(pfnAction), m_bAnswering});
}

Scheduler::Ticket Scheduler::AfterByItself(ModemTime iDelay, Action pfnAction) {
    return Add(iDelay, m_u64Next++, {std::move(pfnAction), false});
}

Scheduler::Ticket Scheduler::FirstAfter(ModemTime iDelay, Action pfnAction) {
    return Add(iDelay, m_u64NextFirst++, {std::move(pfnAction), false});
}

Scheduler::Ticket Scheduler::Add(ModemTime iDelay, uint64_t u64Place, Plan stPlan) {
    const Ticket stTicket{m_iNow + std::max<ModemTime>(iDelay, 0), u64Place};
    if (stPlan.bAwaited) {
        m_astAwaited.insert(stTicket);
    }
    m_astPlanned.emplace(stTicket, std::move(stPlan));
    return stTicket;
}

void Scheduler::Cancel(Ticket stTicket) {
    m_astPlanned.erase(stTicket);
    m_astAwaited.erase(stTicket);
}

std::optional<ModemTime> Scheduler::NextDue() const {
    return FirstOf(m_astPlanned, [](const auto &stPlanned) { return stPlanned.first; });
}

std::optional<ModemTime> Scheduler::NextAwaited() const {
    return FirstOf(m_astAwaited, [](const Ticket &stTicket) { return stTicket; });
}

void Scheduler::AdvanceTo(ModemTime iNow) {
    while (!m_astPlanned.empty() && m_astPlanned.begin()->first.first <= iNow) {
        // Taken out first: the action may plan and cancel others.
        auto stNode = m_astPlanned.extract(m_astPlanned.begin());
        m_iNow = std::max(m_iNow, stNode.key().first);
        m_bAnswering = stNode.mapped().bAwaited;
        if (m_bAnswering) {
            m_astAwaited.erase(stNode.key());
        }
        stNode.mapped().pfnAction();
        m_bAnswering = false;
    }
    m_iNow = std::max(m_iNow, iNow);
}

Scheduler::Action Timer::Ending(Scheduler::Action pfnAction) {
    return [this, pfnRun = std::move(pfnAction)] {
        m_stTicket.reset();
        pfnRun();
    };
}

void Timer::Start(ModemTime iDelay, Scheduler::Action pfnAction) {
    Stop();
    m_stTicket = m_stScheduler.AfterByItself(iDelay, Ending(std::move(pfnAction)));
}

void Timer::StartFirst(ModemTime iDelay, Scheduler::Action pfnAction) {
    Stop();
    m_stTicket = m_stScheduler.FirstAfter(iDelay, Ending(std::move(pfnAction)));
}

void Timer::StartAnswer(ModemTime iDelay, Scheduler::Action pfnAction) {
    Stop();
    m_stTicket = m_stScheduler.After(iDelay, Ending(std::move(pfnAction)));
}

void Timer::Stop() {
    if (m_stTicket) {
        m_stScheduler.Cancel(*m_stTicket);
        m_stTicket.reset();
    }
}
