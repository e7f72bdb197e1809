// Starting and stopping the modem's eight loggers.
#ifndef LOGGERS_H
#define LOGGERS_H

#include <cstdint>

// Main menu choice 9. Returns what the request returned, or 1 when the choice
// is not in the menu.
uint32_t LoggerRequests();

// Ask for a logger and send the request. Return the low byte of the send
// result, or 0 when nothing was sent.
uint32_t StartLoggerRequest();
uint32_t StopLoggerRequest();

// Prints the loggers. Returns the length of the last line.
int32_t ListLoggerTypes();

#endif
