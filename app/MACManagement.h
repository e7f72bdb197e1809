// The trace of IEEE 802.16 management messages: switching it, and printing it.
#ifndef MAC_MANAGEMENT_H
#define MAC_MANAGEMENT_H

#include <cstdint>

#include "WiMAXDevice.h"

// A management message's code and its name.
struct MACMgmtMsg {
    uint8_t u8Code;
    char acName[61];
};
static_assert(sizeof(MACMgmtMsg) == 62);

inline constexpr uint32_t u32MACMgmtMsgs = 64;
extern const MACMgmtMsg MACMgmtMsgs[u32MACMgmtMsgs];

// Bytes of a name as GetMACMessageName copies it, and the least that its buffer
// may have.
inline constexpr int32_t iMACMessageNameSize = 60;

// Main menu choice 5. Returns the low byte of the send result.
uint32_t MACMgmtMessageRequest();

// Clears the buffer of iSize bytes and copies the name of the code, or a text
// that it is unknown. Leaves a null or too small buffer as it is.
void GetMACMessageName(uint32_t u32Code, char *pcBuffer, int32_t iSize);

// Decodes type 21. Returns 0.
uint32_t MACMgmtMessage(const WiMAXMessage *pstMessage);

#endif
