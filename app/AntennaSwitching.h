// Antenna switching and selection: the menu with its requests, and the decoder
// of type 28.
#ifndef ANTENNA_SWITCHING_H
#define ANTENNA_SWITCHING_H

#include <cstdint>

#include "WiMAXDevice.h"

// Main menu choice 17. Returns what the chosen request returned, or 0.
int32_t AntennaSwitchingSelectionMenu();

// The requests. Each returns the send result, or 0 when nothing was sent.
int32_t SendAntennaConfigRequest();
int32_t SendAntennaScanningRequest();
int32_t SendAntennaSelectionRequest();

// Decodes type 28. Returns 1.
uint32_t AntennaSwitchingAndSelectionResponse(const WiMAXMessage *pstMessage);

#endif
