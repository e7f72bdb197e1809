// A part of the modem. Its constructor reads its section of the scenario and
// registers the requests and events that it answers to.
#ifndef SUBSYSTEM_H
#define SUBSYSTEM_H

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

#endif
