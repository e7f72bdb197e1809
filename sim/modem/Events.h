// What happens to the modem by itself: the scenario's [[event]]s, and those of whoever steers it.
// At a moment, or when something has come about; once, or again and again.
#ifndef EVENTS_H
#define EVENTS_H

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "air/Attachment.h"
#include "scenario/Scenario.h"
#include "time/Scheduler.h"

struct MessageKind {
    uint32_t u32Type;
    uint32_t u32SubType;

    bool operator==(const MessageKind &) const = default;
    // "2/2"; nothing when the text is none.
    static std::optional<MessageKind> FromText(std::string_view strText);
};

class Events {
  public:
    // Reads the keys of an event of its kind; returns what the event does.
    using Reader = std::function<Scheduler::Action(const Section &)>;
    // The link gets into a state, or a message of this kind goes to the client.
    using Condition = std::variant<LinkState, MessageKind>;

    struct Planned {
        Scheduler::Action pfnHappens;
        std::optional<Condition> stWhen;
        ModemTime iAt;     // after the condition, if there is one
        ModemTime iEvery;  // then again and again; 0: not
        uint32_t u32Times; // how often in all, 0: without end
    };
    // What holds for an event that does not say when it happens.
    enum class Unsaid : uint8_t { Refused, Now };

    explicit Events(Scheduler &stScheduler) : m_stScheduler(stScheduler) {}

    void Know(const char *pcKind, Reader pfnRead);
    bool Knows(std::string_view strKind) const;
    std::vector<std::string> Kinds() const;
    // Throws ScenarioError.
    Planned Read(const Section &stSection, Unsaid eUnsaid) const;
    void Plan(Planned stPlanned);
    // The condition has come about.
    void Reached(const Condition &stCondition);

  private:
    struct Kind {
        std::string strName;
        Reader pfnRead;
    };

    void ReadTime(const Section &stSection, Unsaid eUnsaid, Planned *pstPlanned) const;
    void Happen(Planned stPlanned, ModemTime iDelay);

    Scheduler &m_stScheduler;
    std::vector<Kind> m_astKinds;
    std::vector<Planned> m_astWaiting; // for their conditions
};

#endif
