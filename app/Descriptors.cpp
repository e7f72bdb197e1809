#include "Descriptors.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// One of the console's streams.
struct Stream {
    int iStandard;   // the descriptor that the client was started with
    int iDescriptor; // the one that is read or written
    bool bSocket = false;
    int iFlagsBefore = -1; // of the standard descriptor, when they had to be changed
};

Stream gstInput{STDIN_FILENO, STDIN_FILENO};
Stream gstOutput{STDOUT_FILENO, STDOUT_FILENO};

// Terminals and pipes can be opened once more. The master of a terminal cannot:
// that would make a new terminal.
bool CanReopen(int iDescriptor, mode_t uMode) {
    int iTerminal = 0;
    return S_ISFIFO(uMode) ||
           (isatty(iDescriptor) != 0 && ioctl(iDescriptor, TIOCGPTN, &iTerminal) != 0);
}

// Flags are shared with every program that has the same stream, the shell for
// one; a stream opened once more has flags of its own.
int Reopen(int iDescriptor, int iAccess) {
    const char *pcPath = iDescriptor == STDIN_FILENO ? "/proc/self/fd/0" : "/proc/self/fd/1";
    return open(pcPath, iAccess | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

void Restore(Stream *pstStream) {
    if (pstStream->iFlagsBefore >= 0) {
        fcntl(pstStream->iStandard, F_SETFL, pstStream->iFlagsBefore);
        pstStream->iFlagsBefore = -1;
    }
}

void Prepare(Stream *pstStream, int iAccess) {
    const int iStandard = pstStream->iStandard;
    Restore(pstStream);
    if (pstStream->iDescriptor != iStandard) {
        close(pstStream->iDescriptor);
    }
    *pstStream = {iStandard, iStandard};
    struct stat stKind {};
    // What cannot be found out counts as a stream that may wait.
    [[maybe_unused]] const int iFailed = fstat(iStandard, &stKind);
    if (S_ISREG(stKind.st_mode) || S_ISBLK(stKind.st_mode)) {
        return; // files never wait
    }
    pstStream->bSocket = S_ISSOCK(stKind.st_mode);
    const int iFlags = fcntl(iStandard, F_GETFL);
    if (pstStream->bSocket || (iFlags >= 0 && (iFlags & O_NONBLOCK) != 0)) {
        return;
    }
    const int iOwn = CanReopen(iStandard, stKind.st_mode) ? Reopen(iStandard, iAccess) : -1;
    if (iOwn >= 0) {
        pstStream->iDescriptor = iOwn;
    } else if (iFlags >= 0 && fcntl(iStandard, F_SETFL, iFlags | O_NONBLOCK) == 0) {
        pstStream->iFlagsBefore = iFlags;
    }
}

} // namespace

void OpenDescriptors() {
    for (int iDescriptor = STDIN_FILENO; iDescriptor <= STDERR_FILENO; ++iDescriptor) {
        if (fcntl(iDescriptor, F_GETFD) < 0) {
            // The lowest free number is this one.
            [[maybe_unused]] const int iOpened = open("/dev/null", O_RDWR);
        }
    }
    Prepare(&gstInput, O_RDONLY);
    Prepare(&gstOutput, O_WRONLY);
}

void RestoreDescriptors() {
    Restore(&gstOutput);
    Restore(&gstInput);
}

ssize_t ReadInput(void *pvBytes, size_t uCount) {
    return gstInput.bSocket ? recv(gstInput.iDescriptor, pvBytes, uCount, MSG_DONTWAIT)
                            : read(gstInput.iDescriptor, pvBytes, uCount);
}

ssize_t WriteOutput(const void *pvBytes, size_t uCount) {
    return gstOutput.bSocket
               ? send(gstOutput.iDescriptor, pvBytes, uCount, MSG_DONTWAIT | MSG_NOSIGNAL)
               : write(gstOutput.iDescriptor, pvBytes, uCount);
}

int OutputDescriptor() { return gstOutput.iDescriptor; }

void Complain(std::string_view strText) {
    char acLine[256];
    const int iLength =
        std::snprintf(acLine, sizeof acLine, "%s: %.*s\n", program_invocation_short_name,
                      static_cast<int>(strText.size()), strText.data());
    // A short line fits wherever there is room at all.
    pollfd stPoll{STDERR_FILENO, POLLOUT, 0};
    if (iLength > 0 && poll(&stPoll, 1, 100) > 0) {
        [[maybe_unused]] const ssize_t iWritten =
            write(STDERR_FILENO, acLine,
                  std::min<size_t>(static_cast<size_t>(iLength), sizeof acLine - 1));
    }
}

void ReplaceEvent(int *piEvent) {
    if (*piEvent >= 0) {
        close(*piEvent);
    }
    *piEvent = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
}

void RaiseEvent(int iEvent) {
    const uint64_t u64One = 1;
    if (iEvent >= 0) {
        // A full counter is as good as one more.
        [[maybe_unused]] const ssize_t iWritten = write(iEvent, &u64One, sizeof u64One);
    }
}

void ClearEvent(int iEvent) {
    uint64_t u64Count = 0;
    if (iEvent >= 0) {
        [[maybe_unused]] const ssize_t iRead = read(iEvent, &u64Count, sizeof u64Count);
    }
}
