// The security parameters, 0 to 10: reading, writing and asking the size.
#ifndef SECURITY_PARAMETERS_H
#define SECURITY_PARAMETERS_H

#include <cstdint>

#include "SecurityRecords.h"

// Asks for a parameter and reads it; prints what the library said when it
// refused. Returns 0.
int32_t SecGetRequest();
// Asks for a parameter and its value, and writes it. Returns the send's result.
int32_t SecSetRequest();
// Asks for a parameter and queries its size. Returns the send's result.
int32_t SecGetParamSize();

// Sends a get request for the record (SecurityRecord, 10 bytes). Returns the
// send's result.
int32_t SendSecGetRequest(ByteView stRecord);

// Prints an answer of type 34. Returns 1.
uint32_t ProcessSecResponse(const WiMAXMessage *pstMessage);

#endif
