// Where the modem stands with the network. The link moves it; whatever has to follow the
// link without knowing it looks here.
#ifndef ATTACHMENT_H
#define ATTACHMENT_H

#include <algorithm>
#include <initializer_list>

#include "air/Radio.h"

enum class LinkState : uint8_t {
    Unsynchronised,
    Synchronising,
    Synchronised,
    Entering,
    LinkUp,
    EnteringIdle,
    Idle,
    LeavingIdle,
    ShuttingDown,
    Shutdown
};

// Ranging, basic capabilities, authentication, registration, traffic keys.
inline constexpr uint32_t u32EntryStages = 5;

// A change of state, or, with the same state before and after, one more stage of the
// network entry behind it.
struct LinkChange {
    LinkState eBefore;
    LinkState eAfter;
    uint32_t u32StagesDone; // of the network entry
};

struct Attachment {
    LinkState eState = LinkState::Unsynchronised;
    // The station that the modem is synchronised to or registered with, else null.
    Station *pstServing = nullptr;

    bool IsAnyOf(std::initializer_list<LinkState> aeStates) const {
        return std::find(aeStates.begin(), aeStates.end(), eState) != aeStates.end();
    }
    // The link is up, in idle mode or on its way into or out of it.
    bool Registered() const {
        using enum LinkState;
        return IsAnyOf({LinkUp, EnteringIdle, Idle, LeavingIdle});
    }
};

#endif
