// What the modem reports after a handover attempt, and about the network layer.
#ifndef HANDOVER_H
#define HANDOVER_H

#include <cstdint>

#include "WiMAXDevice.h"

// Decodes type 23. Returns 1 for a handover indication, else 0.
uint32_t HandOverResponse(const WiMAXMessage *pstMessage);

// Decodes network layer control messages. No message type leads here: it is not
// known which one carries them. Returns 0.
uint32_t ProcessNetworkLayerControlMessage(const WiMAXMessage *pstMessage);

#endif
