// The life of the link beside the link itself, each in the file of its name.
#ifndef LINK_SUBSYSTEMS_H
#define LINK_SUBSYSTEMS_H

#include <memory>

#include "modem/Subsystem.h"

class Modem;

std::unique_ptr<Subsystem> MakeHandovers(Modem &stModem);
std::unique_ptr<Subsystem> MakeIdleMode(Modem &stModem);
std::unique_ptr<Subsystem> MakeRecovery(Modem &stModem);
std::unique_ptr<Subsystem> MakeSearch(Modem &stModem);
std::unique_ptr<Subsystem> MakeShutdown(Modem &stModem);
std::unique_ptr<Subsystem> MakeSleepMode(Modem &stModem);

#endif
