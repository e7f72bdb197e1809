// What a scenario says that is allowed, and that nobody can mean.
#ifndef WARNINGS_H
#define WARNINGS_H

#include <string>
#include <vector>

#include "scenario/Scenario.h"

// "FILE:LINE: reason", in no order that matters. The scenario is one that the modem takes.
std::vector<std::string> WarningsAbout(const Scenario &stScenario);

#endif
