// The modem as it is at a moment, for those who watch it from outside: JSON on one line.
#ifndef STATE_REPORT_H
#define STATE_REPORT_H

#include <string>

#include "library/WholeModem.h"

std::string StateReport(WholeModem &stModem);
std::string StationReport(WholeModem &stModem);

#endif
