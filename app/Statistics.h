// Baseband statistics, once or periodically, and their reset policy.
#ifndef STATISTICS_H
#define STATISTICS_H

#include <cstdint>

#include "WiMAXDevice.h"

// Main menu choice 4: asks for the interval (milliseconds) and sends it. Returns
// 0, or 1 when nothing was sent.
uint32_t GetStatisticsRequest();

// Whether the modem clears its statistics when it synchronises again. Returns
// the send result, or -1 for a choice that is not in the menu.
int32_t StatisticsResetControlRequest();

// Decodes type 17. Returns 1, or 0 for an unknown subtype.
uint32_t GetStatisticsResponse(const WiMAXMessage *pstMessage);

// Prints the status of a reset control request. Returns 1.
uint32_t StatisticsResetControlResponse(uint32_t u32Status);

#endif
