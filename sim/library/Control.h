// The control socket: others than the client steer the modem through it while it lives. A Unix
// stream socket; one command a line, one answer a line. All of it is done by one thread.
#ifndef CONTROL_H
#define CONTROL_H

#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/types.h>

#include "library/ControlCommands.h"
#include "library/Device.h"

// Closed with its owner.
class FileDescriptor {
  public:
    explicit FileDescriptor(int iNumber) : m_iNumber(iNumber) {}
    FileDescriptor(FileDescriptor &&stOther) noexcept : m_iNumber(stOther.m_iNumber) {
        stOther.m_iNumber = -1;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    FileDescriptor &operator=(FileDescriptor &&) = delete;
    ~FileDescriptor();
    int Number() const { return m_iNumber; }
    bool Good() const { return m_iNumber >= 0; }

  private:
    int m_iNumber;
};

class Control {
  public:
    // Listens at strPath; whoever connects waits until the service starts. A socket that nobody
    // listens at any more is replaced. Throws ScenarioError.
    explicit Control(std::string strPath);
    Control(const Control &) = delete;
    Control &operator=(const Control &) = delete;
    // Ends the service. A device that has been stopped keeps it no longer than it takes to notice.
    ~Control();
    void Serve(std::shared_ptr<Device> pstDevice);
    // Takes its socket's file away: nobody else connects, and another one can stand there.
    void LeavePath();

  private:
    struct Peer {
        FileDescriptor stSocket;
        std::string strReceived; // no answer yet
        std::string strToSend;
        bool bSkipping = false; // the rest of a line that was too long
        bool bEnded = false;    // nothing more comes
        bool bGone = false;
    };

    void Run();
    std::vector<pollfd> Awaited(bool bListening) const;
    void Accept();
    static void Receive(Peer &stPeer);
    void AnswerNext(Peer &stPeer);
    static bool HasLine(const Peer &stPeer);
    static void Send(Peer &stPeer);

    std::string m_strPath;
    FileDescriptor m_stListener;
    FileDescriptor m_stEnd; // readable when the service is to end
    dev_t m_stDevice = 0;   // of the socket's file
    ino_t m_stFile = 0;
    std::shared_ptr<Device> m_pstDevice;
    std::list<Peer> m_astPeers;
    bool m_bFull = false; // no descriptor is left for another one
    std::thread m_stThread;
};

#endif
