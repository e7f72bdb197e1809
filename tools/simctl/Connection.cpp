#include "Connection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

[[noreturn]] void Fail(const std::string &strPath, const std::string &strReason) {
    throw NoModem(strPath + ": " + strReason);
}

} // namespace

ControlConnection::ControlConnection(const std::string &strPath)
    : m_strPath(strPath), m_iSocket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un stAddress{};
    stAddress.sun_family = AF_UNIX;
    if (strPath.size() >= sizeof stAddress.sun_path) {
        Fail(strPath, "is too long for the path of a socket");
    }
    std::copy(strPath.begin(), strPath.end(), std::begin(stAddress.sun_path));
    if (m_iSocket < 0 ||
        connect(m_iSocket, reinterpret_cast<const sockaddr *>(&stAddress), sizeof stAddress) != 0) {
        const int iError = errno;
        (void)close(m_iSocket);
        Fail(strPath, std::strerror(iError));
    }
}

ControlConnection::~ControlConnection() { (void)close(m_iSocket); }

void ControlConnection::Send(const std::string &strLine) const {
    size_t uSent = 0;
    while (uSent < strLine.size()) {
        const ssize_t iCount =
            send(m_iSocket, strLine.data() + uSent, strLine.size() - uSent, MSG_NOSIGNAL);
        if (iCount < 0 && errno != EINTR) {
            Fail(m_strPath, "the modem is gone");
        }
        uSent += static_cast<size_t>(std::max<ssize_t>(iCount, 0));
    }
}

std::string ControlConnection::Ask(const std::string &strCommand) {
    Send(strCommand + "\n");
    size_t uEnd = std::string::npos;
    while ((uEnd = m_strReceived.find('\n')) == std::string::npos) {
        std::array<char, 4096> acBlock{};
        const ssize_t iCount = recv(m_iSocket, acBlock.data(), acBlock.size(), 0);
        if (iCount == 0 || (iCount < 0 && errno != EINTR)) {
            Fail(m_strPath, "the modem is gone");
        }
        m_strReceived.append(acBlock.data(), static_cast<size_t>(std::max<ssize_t>(iCount, 0)));
    }
    std::string strAnswer = m_strReceived.substr(0, uEnd);
    m_strReceived.erase(0, uEnd + 1);
    return strAnswer;
}

std::optional<std::string> GoodAnswer(const std::string &strAnswer) {
    if (strAnswer == "ok") {
        return "";
    }
    return strAnswer.starts_with("ok ") ? std::optional(strAnswer.substr(3)) : std::nullopt;
}
