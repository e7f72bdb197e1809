// The management messages of the air interface, without the identities and keys in them.
#ifndef MONITOR_AIR_SCRUB_H
#define MONITOR_AIR_SCRUB_H

#include "Pseudonyms.h"

// Replaces what must not be told in a message's body. Its structure stays: whatever decoded the
// message decodes it still.
void ScrubManagementMessage(const Pseudonyms &stPseudonyms, uint8_t u8Code, ByteSpan stBody);

#endif
