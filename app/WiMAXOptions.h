// The eight WiMAX options: setting one, setting several, reading all.
#ifndef WIMAX_OPTIONS_H
#define WIMAX_OPTIONS_H

#include <atomic>
#include <cstdint>

#include "WiMAXDevice.h"

// 1 from the moment a single option request is built until its answer has been
// printed: a second answer prints nothing.
extern std::atomic<uint32_t> g_SetWimaxOptionsFlag;

// The options menu. Returns the send result, or 0 when nothing was sent.
int32_t FillSetWiMAXOptions();

// Decodes type 29. Returns 0 for a null message or a non-zero status, else 1.
uint32_t ProcessWiMAXOptionsResp(const WiMAXMessage *pstMessage);

#endif
