#include "WiMAXDevice.h"

/* What a C program sees of the header: compared with what C++ sees. */
unsigned long MessageSizeInC(void);
unsigned long MessageSizeInC(void) { return sizeof(WiMAXMessage); }
uint32_t OpenInC(void);
uint32_t OpenInC(void) { return OpenWiMAXDevice(); }
