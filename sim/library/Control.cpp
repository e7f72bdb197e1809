#include "library/Control.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "library/QuietThread.h"
#include "scenario/TextFile.h"

namespace {

constexpr int iQueue = 128;
constexpr size_t uMostPeers = 256;
constexpr size_t uMostToSend = 65536; // before a peer has to read its answers
constexpr int iFullPause = 100;       // milliseconds

[[noreturn]] void Refuse(const std::string &strPath, const std::string &strReason) {
    throw ScenarioError(strPath, ScenarioError::u32WholeFile, strReason);
}

[[noreturn]] void RefuseForError(const std::string &strPath) {
    Refuse(strPath, std::string("cannot be the control socket: ") + std::strerror(errno));
}

sockaddr_un AddressOf(const std::string &strPath) {
    sockaddr_un stAddress{};
    stAddress.sun_family = AF_UNIX;
    if (strPath.size() >= sizeof stAddress.sun_path) {
        Refuse(strPath, "cannot be the control socket: the path is longer than " +
                            std::to_string(sizeof stAddress.sun_path - 1) + " bytes");
    }
    std::copy(strPath.begin(), strPath.end(), std::begin(stAddress.sun_path));
    return stAddress;
}

FileDescriptor NewSocket() {
    return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

template <typename Call> int WithAddress(const std::string &strPath, Call pfnCall) {
    const sockaddr_un stAddress = AddressOf(strPath);
    return pfnCall(reinterpret_cast<const sockaddr *>(&stAddress), socklen_t{sizeof stAddress});
}

// Takes away the socket of a modem that is gone, and nothing else.
void RemoveStale(const std::string &strPath) {
    struct stat stStatus {};
    if (lstat(strPath.c_str(), &stStatus) != 0) {
        return;
    }
    if (!S_ISSOCK(stStatus.st_mode)) {
        Refuse(strPath, "cannot be the control socket: something else stands there");
    }
    const FileDescriptor stProbe = NewSocket();
    const int iResult = WithAddress(strPath, [&](const sockaddr *pstAddress, socklen_t uLength) {
        return connect(stProbe.Number(), pstAddress, uLength);
    });
    if (iResult == 0 || errno == EAGAIN) {
        Refuse(strPath, "cannot be the control socket: somebody listens there already");
    }
    if (errno != ECONNREFUSED || unlink(strPath.c_str()) != 0) {
        RefuseForError(strPath);
    }
}

FileDescriptor Listen(const std::string &strPath) {
    AddressOf(strPath);
    RemoveStale(strPath);
    FileDescriptor stSocket = NewSocket();
    // The file has the mode of the socket that it is made from: nobody else can get in first.
    const bool bListening = stSocket.Good() && fchmod(stSocket.Number(), S_IRUSR | S_IWUSR) == 0 &&
                            WithAddress(strPath,
                                        [&](const sockaddr *pstAddress, socklen_t uLength) {
                                            return bind(stSocket.Number(), pstAddress, uLength);
                                        }) == 0 &&
                            listen(stSocket.Number(), iQueue) == 0;
    if (!bListening) {
        RefuseForError(strPath);
    }
    return stSocket;
}

bool WouldWait() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

} // namespace

FileDescriptor::~FileDescriptor() {
    if (Good()) {
        (void)close(m_iNumber);
    }
}

Control::Control(std::string strPath)
    : m_strPath(std::move(strPath)), m_stListener(Listen(m_strPath)),
      m_stEnd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    struct stat stStatus {};
    if (!m_stEnd.Good() || lstat(m_strPath.c_str(), &stStatus) != 0) {
        RefuseForError(m_strPath);
    }
    m_stDevice = stStatus.st_dev;
    m_stFile = stStatus.st_ino;
}

Control::~Control() {
    if (m_stThread.joinable()) {
        (void)eventfd_write(m_stEnd.Number(), 1);
        m_stThread.join();
    }
    LeavePath();
}

void Control::LeavePath() {
    // Unless somebody else's stands there.
    struct stat stStatus {};
    if (lstat(m_strPath.c_str(), &stStatus) == 0 && stStatus.st_dev == m_stDevice &&
        stStatus.st_ino == m_stFile) {
        (void)unlink(m_strPath.c_str());
    }
}

void Control::Serve(std::shared_ptr<Device> pstDevice) {
    m_pstDevice = std::move(pstDevice);
    m_stThread = StartQuietThread([this] { Run(); });
}

bool Control::HasLine(const Peer &stPeer) {
    return stPeer.strToSend.size() < uMostToSend &&
           (stPeer.strReceived.find('\n') != std::string::npos ||
            (stPeer.bEnded && !stPeer.strReceived.empty()));
}

// The end, the listener, and the peers in their order.
std::vector<pollfd> Control::Awaited(bool bListening) const {
    std::vector<pollfd> astAwaited{
        {m_stEnd.Number(), POLLIN, 0},
        {m_stListener.Number(), static_cast<short>(bListening ? POLLIN : 0), 0}};
    for (const Peer &stPeer : m_astPeers) {
        const bool bReceives =
            !stPeer.bEnded && !HasLine(stPeer) && stPeer.strToSend.size() < uMostToSend;
        astAwaited.push_back({stPeer.stSocket.Number(),
                              static_cast<short>((bReceives ? POLLIN : 0) |
                                                 (stPeer.strToSend.empty() ? 0 : POLLOUT)),
                              0});
    }
    return astAwaited;
}

void Control::Run() {
    for (;;) {
        const bool bWork = std::any_of(m_astPeers.begin(), m_astPeers.end(), HasLine);
        std::vector<pollfd> astAwaited = Awaited(!m_bFull && m_astPeers.size() < uMostPeers);
        const int iPause = m_bFull ? iFullPause : -1;
        (void)poll(astAwaited.data(), astAwaited.size(), bWork ? 0 : iPause);
        m_bFull = false;
        if (astAwaited[0].revents != 0) {
            return;
        }
        auto pstPoll = astAwaited.begin() + 2;
        for (Peer &stPeer : m_astPeers) {
            const short iEvents = (pstPoll++)->revents;
            if ((iEvents & POLLIN) != 0) {
                Receive(stPeer);
            } else if ((iEvents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                stPeer.bGone = true;
            }
            if (HasLine(stPeer)) {
                AnswerNext(stPeer);
            }
            Send(stPeer);
        }
        m_astPeers.remove_if([](const Peer &stPeer) {
            return stPeer.bGone ||
                   (stPeer.bEnded && stPeer.strReceived.empty() && stPeer.strToSend.empty());
        });
        if ((astAwaited[1].revents & POLLIN) != 0) {
            Accept();
        }
    }
}

void Control::Accept() {
    FileDescriptor stSocket(
        accept4(m_stListener.Number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (stSocket.Good()) {
        m_astPeers.push_back({std::move(stSocket), {}, {}});
    } else {
        m_bFull = !WouldWait();
    }
}

void Control::Receive(Peer &stPeer) {
    std::array<char, 4096> acBlock{};
    const ssize_t iCount = recv(stPeer.stSocket.Number(), acBlock.data(), acBlock.size(), 0);
    if (iCount <= 0) {
        stPeer.bEnded = iCount == 0;
        stPeer.bGone = iCount < 0 && !WouldWait();
        return;
    }
    std::string_view strBlock(acBlock.data(), static_cast<size_t>(iCount));
    if (stPeer.bSkipping) {
        const size_t uEnd = strBlock.find('\n');
        if (uEnd == std::string_view::npos) {
            return;
        }
        stPeer.bSkipping = false;
        strBlock.remove_prefix(uEnd + 1);
    }
    stPeer.strReceived += strBlock;
    if (stPeer.strReceived.size() > uLongestCommand &&
        stPeer.strReceived.find('\n') == std::string::npos) {
        stPeer.bSkipping = true;
        stPeer.strReceived.clear();
        stPeer.strToSend +=
            "error a command has at most " + std::to_string(uLongestCommand) + " bytes\n";
    }
}

void Control::AnswerNext(Peer &stPeer) {
    const size_t uEnd = stPeer.strReceived.find('\n');
    if (uEnd == std::string::npos) {
        stPeer.strReceived.clear();
        stPeer.strToSend += "error a command ends with a line end\n";
        return;
    }
    const std::string strLine = stPeer.strReceived.substr(0, uEnd);
    stPeer.strReceived.erase(0, uEnd + 1);
    stPeer.strToSend += AnswerTo(*m_pstDevice, strLine) + "\n";
}

void Control::Send(Peer &stPeer) {
    if (stPeer.bGone || stPeer.strToSend.empty()) {
        return;
    }
    const ssize_t iCount = send(stPeer.stSocket.Number(), stPeer.strToSend.data(),
                                stPeer.strToSend.size(), MSG_NOSIGNAL);
    if (iCount > 0) {
        stPeer.strToSend.erase(0, static_cast<size_t>(iCount));
    } else if (!WouldWait()) {
        stPeer.bGone = true;
    }
}
