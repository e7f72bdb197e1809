// Chipset control: reset, firmware download and modem status.
#ifndef CHIPSET_CONTROL_H
#define CHIPSET_CONTROL_H

#include <atomic>
#include <cstdint>

#include "WiMAXDevice.h"

// -1 from the moment a download begins until the modem reports that the
// configuration file went down well, then 0.
extern std::atomic<int32_t> iFWDlFlag;

// Main menu choice 3. Returns 1, or 0 when a request failed or a download was
// carried out.
uint32_t ChipsetControl();

// Sends the configuration file's path, waits without a time limit until that
// file went down well, and sends the firmware image's path. Only a signal ends
// the wait earlier (ClientEnd). Returns 0.
uint32_t FirmwareDownload();

// Decodes type 16; a null message prints nothing. Returns 0.
uint32_t ChipsetResponse(const WiMAXMessage *pstMessage);

#endif
