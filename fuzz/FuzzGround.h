// What the fuzz targets stand on: a console without a person and a device
// without a modem.
#ifndef FUZZ_GROUND_H
#define FUZZ_GROUND_H

#include "Wire.h"

// Begins a run: the console is new, the bytes are what is typed, and what is
// printed goes nowhere.
void BeginRun(ByteView stTyped);

// What the device answers with from now on, over and over: in the buffers of
// sends and of reads, and as the results of calls. Empty: zeroes.
void SetDeviceBytes(ByteView stBytes);

#endif
