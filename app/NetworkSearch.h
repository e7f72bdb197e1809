// Network searches by frequency and by network service provider, and the
// thresholds that the modem applies to them.
#ifndef NETWORK_SEARCH_H
#define NETWORK_SEARCH_H

#include <cstdint>

#include "WiMAXDevice.h"

// The network search menu. Returns the send result, or -1 when the choice is
// not in the menu.
int32_t NetworkSearchOptions();

// Asks for the CINR (dB) and RSSI (dBm) thresholds and sends them. Returns the
// send result.
int32_t SetCinrRssiForNetworkSearchRequest();

// Decodes type 13, subtype 5. Returns 1.
uint32_t SetCinrRssiForNetworkSearchResponse(const WiMAXMessage *pstMessage);

#endif
