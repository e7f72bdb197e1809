// Idle mode: the menu with its requests, and the decoders of type 19.
#ifndef IDLE_MODE_H
#define IDLE_MODE_H

#include <cstdint>

#include "WiMAXDevice.h"

// Main menu choice 16. Returns 0.
int32_t SendIdleModeMsg();

// The requests. Each returns 0, whatever the send result was.
int32_t SendIdleModeRequest();
int32_t SendIdleModeStatusRequest();
int32_t SendIdleModeInactivityTimerRequest();
int32_t SendIdleModeWakeupRequest();

// The decoders, one a subtype; a null message prints nothing.
uint32_t IdleModeIndication(const WiMAXMessage *pstMessage);
uint32_t IdleModeStatusResponse(const WiMAXMessage *pstMessage);
uint32_t IdleModeInactivityTImerResponse(const WiMAXMessage *pstMessage);
uint32_t IdleModeWakeupResponse(const WiMAXMessage *pstMessage);

#endif
