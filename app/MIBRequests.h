// MIB requests: reading and writing the modem's attributes.
#ifndef MIB_REQUESTS_H
#define MIB_REQUESTS_H

#include <cstdint>

#include "MIBRecord.h"

// Sends a get request for the record (MIBRecord, 27 bytes) and prints what the
// library said when it refused. Returns 0.
int32_t SendMIBGetRequest(ByteView stRecord);

#endif
