// What the modem has still to do, in modem time.
#ifndef SCHEDULER_H
#define SCHEDULER_H

#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "time/ModemTime.h"

class Scheduler {
  public:
    using Action = std::function<void()>;
    // Names one planned action; the time stands first, so that actions are
    // ordered by it, and those of the same moment as they were planned.
    using Ticket = std::pair<ModemTime, uint64_t>;

    // While an action runs, the moment that it was planned for.
    ModemTime Now() const { return m_iNow; }
    Ticket After(ModemTime iDelay, Action pfnAction);
    // Does nothing when the action has run already.
    void Cancel(Ticket stTicket) { m_astPlanned.erase(stTicket); }
    std::optional<ModemTime> NextDue() const;
    // Runs what is due until iNow, in order. Time never goes back.
    void AdvanceTo(ModemTime iNow);

  private:
    ModemTime m_iNow = 0;
    uint64_t m_u64Next = 0;
    std::map<Ticket, Action> m_astPlanned;
};

// One action that a subsystem may have planned. Starting it again replaces the
// plan; it is cancelled with its owner.
class Timer {
  public:
    explicit Timer(Scheduler &stScheduler) : m_stScheduler(stScheduler) {}
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;
    ~Timer() { Stop(); }

    void Start(ModemTime iDelay, Scheduler::Action pfnAction);
    void Stop();
    bool Running() const { return m_stTicket.has_value(); }

  private:
    Scheduler &m_stScheduler;
    std::optional<Scheduler::Ticket> m_stTicket;
};

#endif
