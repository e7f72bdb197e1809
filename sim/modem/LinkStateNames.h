// The states of the link as people write and read them.
#ifndef LINK_STATE_NAMES_H
#define LINK_STATE_NAMES_H

#include <array>

#include "air/Attachment.h"

// In the order of LinkState.
inline constexpr std::array apcLinkStates{
    "unsynchronised", "synchronising", "synchronised", "entering",      "link-up",
    "entering-idle",  "idle",          "leaving-idle", "shutting-down", "shutdown"};

inline const char *NameOf(LinkState eState) { return apcLinkStates[static_cast<size_t>(eState)]; }

#endif
