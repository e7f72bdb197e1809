// Answers to MIB requests.
#ifndef MIB_INDICATION_H
#define MIB_INDICATION_H

#include <cstdint>

#include "WiMAXDevice.h"

// Prints an answer of type 24. The attributes 1608 and 1625 are shown zone by
// zone: after each one it waits for a key, and the library with it. Returns 0
// after an attribute that has a report of its own, else 1.
uint32_t MIBIndication(const WiMAXMessage *pstMessage);

#endif
