#include "WiMAXDevice.h"

uint32_t OpenWiMAXDevice() { return 1; }
int32_t RegisterCallback(uint32_t, WiMAXCallback, uint32_t) { return 0; }
int32_t SendWiMAXMessage(uint32_t, void *, uint32_t) { return 0; }
int32_t CloseWiMAXDevice() { return 0; }
int32_t rdm(uint32_t, void *, uint32_t) { return -1; }
int32_t wrm(uint32_t, const void *, uint32_t) { return -1; }
