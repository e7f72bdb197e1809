// Device configuration: its menu, the MAC address, and the unload indication.
#ifndef DEVICE_CONFIGURATION_H
#define DEVICE_CONFIGURATION_H

#include <cstdint>

#include "WiMAXDevice.h"

// Main menu choice 13. Returns what the chosen request returned, or all ones.
uint32_t DeviceConfigRequest();

// Main menu choice 12: reads a MAC address (xx-xx-xx-xx-xx-xx) and sends it.
// Returns the low byte of the send result, or 0 when the address was refused.
uint32_t SetMACAddress();

// Decodes type 13. Returns 1.
uint32_t DeviceConfigResp(const WiMAXMessage *pstMessage);

// Decodes type 11; null messages and unknown subtypes print nothing. Returns 0.
uint32_t MACSetResponse(const WiMAXMessage *pstMessage);

// Decodes type 12. Returns 1, or 0 for another type.
uint32_t DeviceUnloadIndication(const WiMAXMessage *pstMessage);

#endif
