// General-purpose I/O: the bits, and what the LEDs show in each state of the
// driver.
#ifndef GPIO_H
#define GPIO_H

#include <cstdint>

#include "Wire.h"

// Main menu choice 8. Returns what the request returned, or 1 when the choice
// is not in the menu.
uint32_t GPIOMsgs();

// Choices 1 (set), 2 (clear) and 3 (status) of the menu: asks for the bit and
// sends the request. Returns the low byte of the send result, or 0 when nothing
// was sent.
uint32_t SendGPIOMsg(int32_t iChoice);

// Asks for the behaviour of the LEDs and sends it. Returns the low byte of the
// send result. (The name is spelt so.)
uint32_t SetLEDStateInformaton();
// Asks for the driver states of one LED and stores them in its entry (LEDEntry).
// Returns -1.
int32_t SetDriverStateInformation(uint32_t u32LED, bool bReversePolarity, ByteSpan stEntry,
                                  const char *pcName);
// Returns the low byte of the send result.
uint32_t GetLEDStateInformation();

// Decodes type 22. Returns 1.
uint32_t GPIOIndication(const WiMAXMessage *pstMessage);

#endif
