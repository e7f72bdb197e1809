// MAC and PHY logging, and the reports of the modem's loggers.
#ifndef LOGGING_H
#define LOGGING_H

#include <cstdint>
#include <string_view>

#include "Wire.h"

// Main menu choices 18 and 19. Return 1 when the request was sent, else 0.
uint32_t ControlMACLogging();
uint32_t ControlPHYLogging();

// Print log data, 1500 or 200 bytes. Return 0.
uint32_t ProcessMACLOggingInfo(const WiMAXMessage *pstMessage);
uint32_t ProcessPHYLOggingInfo(const WiMAXMessage *pstMessage);

// Decodes type 8. Returns 0 for a null message and for one of another type,
// else 1.
uint32_t LogIndication(const WiMAXMessage *pstMessage);

// Print one log of u16Length bytes, as many of its entries as stData holds. A
// length from 0x8000 on is negative: no entries.
void DisplayRangeLog(uint32_t u32Kind, ByteView stData, uint16_t u16Length);
void DisplayPowerAdjLog(uint32_t u32Kind, ByteView stData, uint16_t u16Length);
void DisplayBWLLog(ByteView stData, uint16_t u16Length);
void DisplayCIDLog(ByteView stData, uint16_t u16Length);
void DisplayCQICHLog(ByteView stData, uint16_t u16Length);

// Prints the bytes under a title, eight a line; nothing when there are none.
// Returns 0.
uint32_t DebugDump(std::string_view strTitle, ByteView stData);

#endif
