// GPIO pins that a request assigns.
#ifndef GPIO_PINS_H
#define GPIO_PINS_H

#include <cstdint>

#include "Wire.h"

// Whether a pin may be assigned: pins 0 to 15 that the list does not have yet.
// The list begins with the number of pins (u32) and has up to four of them (u32)
// from byte 8 on. Returns 1, or 0 after saying why not.
uint32_t isValidGPIO_val(ByteView stList, uint32_t u32Pin);

#endif
