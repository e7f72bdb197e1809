// What answers the host, each in the file of its name.
#ifndef HOST_SUBSYSTEMS_H
#define HOST_SUBSYSTEMS_H

#include <memory>

#include "modem/Subsystem.h"

class Modem;

std::unique_ptr<Subsystem> MakeAntennas(Modem &stModem);
std::unique_ptr<Subsystem> MakeAuthentication(Modem &stModem);
std::unique_ptr<Subsystem> MakeChipset(Modem &stModem);
std::unique_ptr<Subsystem> MakeGPIO(Modem &stModem);
std::unique_ptr<Subsystem> MakeHalfMiniCard(Modem &stModem);
std::unique_ptr<Subsystem> MakeIndications(Modem &stModem);
std::unique_ptr<Subsystem> MakeLogData(Modem &stModem);
std::unique_ptr<Subsystem> MakeLoggers(Modem &stModem);
std::unique_ptr<Subsystem> MakeMemory(Modem &stModem);
std::unique_ptr<Subsystem> MakeMIBStatistics(Modem &stModem);
std::unique_ptr<Subsystem> MakeOMADMTree(Modem &stModem);
std::unique_ptr<Subsystem> MakeOptionRequests(Modem &stModem);
std::unique_ptr<Subsystem> MakeSecurityParameters(Modem &stModem);
std::unique_ptr<Subsystem> MakeServiceFlows(Modem &stModem);
std::unique_ptr<Subsystem> MakeStationInformation(Modem &stModem);
std::unique_ptr<Subsystem> MakeStatistics(Modem &stModem);
std::unique_ptr<Subsystem> MakeTrace(Modem &stModem);

#endif
