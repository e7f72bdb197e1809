// Reading and writing the device's memory.
#ifndef REGISTER_TEST_H
#define REGISTER_TEST_H

#include <cstdint>

// Main menu choice 7, until -1 is chosen. Options 3 and 4 are not listed: they
// read or write one register 15000 times, a millisecond apart, and take a
// library result of 0 for a failure. Returns 1, or 0 when a byte count below 1
// or a failed allocation ended it.
int32_t TestRDMWRM();

#endif
