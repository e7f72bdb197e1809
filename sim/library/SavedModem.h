// Modems in files: the journal of one, and another one that has lived all of it again.
#ifndef SAVED_MODEM_H
#define SAVED_MODEM_H

#include <functional>
#include <string>
#include <string_view>

#include "library/Device.h"
#include "library/JournaledModem.h"

// The modem that the text is the journal of. It says nothing to anybody, writes no file, and reads
// none: what it found then stands in the text. strName stands for the text in messages. Throws
// ScenarioError, also as soon as pfnGoesOn returns false.
JournaledModem LiveAgain(std::string_view strText, const std::string &strName,
                         const std::function<bool()> &pfnGoesOn);

// Writes the device's modem into a file, for its owner alone. Throws Refusal.
void SaveModem(Device &stDevice, const std::string &strPath);
// Puts the modem of a file into the device. When that throws, the device has the modem that it had.
void LoadModem(Device &stDevice, const std::string &strPath);

#endif
