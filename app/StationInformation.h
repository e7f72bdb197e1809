// Station information: identity and versions, EEPROM summary, EEPROM sections.
#ifndef STATION_INFORMATION_H
#define STATION_INFORMATION_H

#include <cstdint>

#include "WiMAXDevice.h"

// Main menu choice 2. A choice that is not in its menu asks for subtype 0.
// Returns the low byte of the send result.
uint32_t GetSSInfoRequest();

// Decodes type 7; a message of another type prints nothing. Returns 0.
uint32_t SSInfoResponse(const WiMAXMessage *pstMessage);

#endif
