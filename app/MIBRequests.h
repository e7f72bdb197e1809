// MIB requests: reading and writing the modem's attributes.
#ifndef MIB_REQUESTS_H
#define MIB_REQUESTS_H

#include <cstdint>

#include "MIBRecord.h"

// The MIB menu, until choice -1. Returns 0.
int32_t MIBRequest();

// Sends a get request for the record (MIBRecord, 27 bytes) and prints what the
// library said when it refused. Returns 0.
int32_t SendMIBGetRequest(ByteView stRecord);

// Asks for one attribute and its keys, and reads it. Returns 0.
int32_t MIBGetRequest();
// Asks for one attribute and its value, and writes it; or sends the automated
// writes. Returns the result of the send, 0 after the automated writes and when
// nothing was sent.
int32_t MIBSetRequest();

// Ask for a count and for so many attributes, and read or write them with as
// few messages as hold them. Five messages are kept; when a sixth is needed,
// those five are sent before the next question. The get returns -27 as soon as
// the library has refused a message so, else 0; the set always 0.
int32_t MultipleMIBGetRequest();
int32_t MultipleMIBSetRequest();

#endif
