// The one entry point for everything the modem sends.
#ifndef DISPATCHER_H
#define DISPATCHER_H

#include <cstdint>

#include "WiMAXDevice.h"

// Hands a message to the decoder of its type and shows what that printed as one
// piece. Drops everything while gbInsideSubMenu is set. The message is a whole
// record: what is read of it does not depend on u32Length. Runs on the library's
// thread; returns what the decoder returned, else 0.
extern "C" uint32_t TVLCallback(uint32_t u32Context, const WiMAXMessage *pstMessage,
                                uint32_t u32Length);

#endif
