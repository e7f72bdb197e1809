// Requests: the envelope, the state shared with the callback, and sending.
#ifndef MESSAGE_H
#define MESSAGE_H

#include <atomic>
#include <cstdint>

#include "Wire.h"

// The device handle; WIMAX_NO_DEVICE when none is open.
extern std::atomic<uint32_t> g_hDevice;
// 1 while a menu choice is being handled and no request has been built yet: the
// callback drops every message.
extern std::atomic<uint8_t> gbInsideSubMenu;

// Zeroes the whole message, writes type and subtype and lets answers through
// again. Returns the length to send: the low 16 bits of the payload length plus
// the header, or all ones for a null buffer.
uint32_t FillWiMAXMsg(WiMAXMessage *pstMessage, uint32_t u32Type, uint32_t u32SubType,
                      uint32_t u32PayloadLength);

// What a send results in where the modem does without MIBs.
inline constexpr int32_t iNoMIBSupport = -27;

// Shows what was printed so far, then sends: u32Length bytes, never more than
// the record has. Returns the library's result.
int32_t SendMessage(WiMAXMessage *pstMessage, uint32_t u32Length);

// Builds and sends a request whose payload is stPayload (nothing by default).
int32_t SendRequest(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload = {});
// The same for a request that is answered inside the send: *pstMessage is left
// as the library left it.
int32_t SendForAnswer(WiMAXMessage *pstMessage, uint32_t u32Type, uint32_t u32SubType,
                      ByteView stPayload);

// Some menus go by the lowest byte of a send's result alone.
inline uint32_t LowByte(int32_t iSendResult) { return static_cast<uint32_t>(iSendResult) & 0xFF; }

#endif
