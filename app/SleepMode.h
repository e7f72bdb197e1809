// Sleep mode: power saving classes and the indication that answers them.
#ifndef SLEEP_MODE_H
#define SLEEP_MODE_H

#include <cstdint>

#include "WiMAXDevice.h"

// Main menu choice 15: asks for up to three power saving class definitions, or
// takes the default one, and sends them. Returns the send result.
int32_t SendSleepPSCDefinitionMsg();

// Decodes type 26. Returns 1 for an indication, else 0.
uint32_t SleepModeIndication(const WiMAXMessage *pstMessage);

#endif
