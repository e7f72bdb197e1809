// What the client prints for a message: its own decoders at work, with a console and a device that
// are not there. None of them waits, sleeps or sends.
#ifndef CLIENT_REPORT_H
#define CLIENT_REPORT_H

#include <string_view>

#include "Wire.h"

// The report on a message of which these bytes were received, u32Length of them as the library
// said; good until the next call. Empty for messages that the client passes over in silence.
std::string_view ClientReportOf(ByteView stMessage, uint32_t u32Length);

#endif
