// A part of the modem. Its constructor reads its section of the scenario and
// registers the requests and events that it answers to.
#ifndef SUBSYSTEM_H
#define SUBSYSTEM_H

#include <memory>

class Modem;

class Subsystem {
  public:
    Subsystem() = default;
    Subsystem(const Subsystem &) = delete;
    Subsystem &operator=(const Subsystem &) = delete;
    virtual ~Subsystem() = default;
    // Takes on the state at start: when the device is opened, and again whenever the
    // modem is reset.
    virtual void Start() {}
};

// Each in the file of its name.
std::unique_ptr<Subsystem> MakeAntennas(Modem &stModem);
std::unique_ptr<Subsystem> MakeAuthentication(Modem &stModem);
std::unique_ptr<Subsystem> MakeChipset(Modem &stModem);
std::unique_ptr<Subsystem> MakeGPIO(Modem &stModem);
std::unique_ptr<Subsystem> MakeHalfMiniCard(Modem &stModem);
std::unique_ptr<Subsystem> MakeHandovers(Modem &stModem);
std::unique_ptr<Subsystem> MakeIdleMode(Modem &stModem);
std::unique_ptr<Subsystem> MakeIndications(Modem &stModem);
std::unique_ptr<Subsystem> MakeLogData(Modem &stModem);
std::unique_ptr<Subsystem> MakeLoggers(Modem &stModem);
std::unique_ptr<Subsystem> MakeMemory(Modem &stModem);
std::unique_ptr<Subsystem> MakeMIBStatistics(Modem &stModem);
std::unique_ptr<Subsystem> MakeOMADMTree(Modem &stModem);
std::unique_ptr<Subsystem> MakeSearch(Modem &stModem);
std::unique_ptr<Subsystem> MakeSecurityParameters(Modem &stModem);
std::unique_ptr<Subsystem> MakeServiceFlows(Modem &stModem);
std::unique_ptr<Subsystem> MakeShutdown(Modem &stModem);
std::unique_ptr<Subsystem> MakeSleepMode(Modem &stModem);
std::unique_ptr<Subsystem> MakeStationInformation(Modem &stModem);
std::unique_ptr<Subsystem> MakeStatistics(Modem &stModem);
std::unique_ptr<Subsystem> MakeTrace(Modem &stModem);

#endif
