// What the modem has still to do, in modem time.
//
// Some of it is the rest of an answer: somebody asked, and waits. Whoever drives the clock
// may go to that at once, while everything else waits for its time.
#ifndef SCHEDULER_H
#define SCHEDULER_H

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "time/ModemTime.h"

class Scheduler {
  public:
    using Action = std::function<void()>;
    // Names one planned action; the time stands first, so that actions are
    // ordered by it, and those of the same moment as they were planned, but for
    // those that come first in their moment.
    using Ticket = std::pair<ModemTime, uint64_t>;

    // While an action runs, the moment that it was planned for.
    ModemTime Now() const { return m_iNow; }
    // What is planned while a request is handled, or by a part of its answer, is awaited as
    // its answer is.
    Ticket After(ModemTime iDelay, Action pfnAction);
    // The modem's own business, whoever brought it about.
    Ticket AfterByItself(ModemTime iDelay, Action pfnAction);
    // The same, before all else of its moment: what others find there whoever comes when.
    Ticket FirstAfter(ModemTime iDelay, Action pfnAction);
    // Does nothing when the action has run already.
    void Cancel(Ticket stTicket);
    std::optional<ModemTime> NextDue() const;
    // The next part of an answer.
    std::optional<ModemTime> NextAwaited() const;
    // Whether what runs now is a request, or a part of an answer.
    bool Answering() const { return m_bAnswering; }
    // While it lives, a request is handled.
    class Asking {
      public:
        explicit Asking(Scheduler &stScheduler) : m_stScheduler(stScheduler) {
            m_stScheduler.m_bAnswering = true;
        }
        Asking(const Asking &) = delete;
        Asking &operator=(const Asking &) = delete;
        ~Asking() { m_stScheduler.m_bAnswering = false; }

      private:
        Scheduler &m_stScheduler;
    };
    // Runs what is due until iNow, in order. Time never goes back.
    void AdvanceTo(ModemTime iNow);

  private:
    struct Plan {
        Action pfnAction;
        bool bAwaited;
    };
    Ticket Add(ModemTime iDelay, uint64_t u64Place, Plan stPlan);

    ModemTime m_iNow = 0;
    uint64_t m_u64NextFirst = 0;
    uint64_t m_u64Next = UINT64_C(1) << 63; // behind all that come first
    bool m_bAnswering = false;
    std::map<Ticket, Plan> m_astPlanned;
    std::set<Ticket> m_astAwaited;
};

// One action that a subsystem may have planned. Starting it again replaces the
// plan; it is cancelled with its owner.
class Timer {
  public:
    explicit Timer(Scheduler &stScheduler) : m_stScheduler(stScheduler) {}
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;
    ~Timer() { Stop(); }

    // For the modem's own business.
    void Start(ModemTime iDelay, Scheduler::Action pfnAction);
    // The same, before all else of its moment.
    void StartFirst(ModemTime iDelay, Scheduler::Action pfnAction);
    // For the work on a request: awaited, when a request or a part of its answer starts it.
    void StartAnswer(ModemTime iDelay, Scheduler::Action pfnAction);
    void Stop();
    bool Running() const { return m_stTicket.has_value(); }

  private:
    Scheduler::Action Ending(Scheduler::Action pfnAction);

    Scheduler &m_stScheduler;
    std::optional<Scheduler::Ticket> m_stTicket;
};

#endif
