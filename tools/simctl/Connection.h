// The other end of a modem's control socket.
#ifndef CONNECTION_H
#define CONNECTION_H

#include <optional>
#include <stdexcept>
#include <string>

// The modem cannot be reached, or is gone.
class NoModem : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ControlConnection {
  public:
    // Throws NoModem.
    explicit ControlConnection(const std::string &strPath);
    ControlConnection(const ControlConnection &) = delete;
    ControlConnection &operator=(const ControlConnection &) = delete;
    ~ControlConnection();

    // Sends a command, one line without its end, and waits for its answer. Throws NoModem.
    std::string Ask(const std::string &strCommand);

  private:
    void Send(const std::string &strLine) const;

    std::string m_strPath;
    int m_iSocket;
    std::string m_strReceived;
};

// What is behind the "ok" of an answer; nothing when it is an error.
std::optional<std::string> GoodAnswer(const std::string &strAnswer);

#endif
