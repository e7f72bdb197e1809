#include "Reader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <pcap/pcap.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int iPollMilliseconds = 100;
constexpr int64_t i64SecondInNanoseconds = 1'000'000'000;
constexpr int64_t i64LastSecond = INT64_MAX / i64SecondInNanoseconds - 1;
constexpr size_t uBuffer = size_t{256} * 1024;
constexpr size_t uStreamBuffer = size_t{16} * 1024;

bool WouldWait(int iFile) {
    pollfd stPoll{iFile, POLLIN, 0};
    return poll(&stPoll, 1, 0) == 0;
}

// The bytes of the file in their order, with the place of the next one. libpcap reads through it,
// so that the place of a damage is known for pipes too and the end of a growing file is waited at.
struct Source {
    int iFile = -1;
    bool bRegular = false;
    ReaderOptions stOptions;
    std::unique_ptr<char[]> pacBuffer = std::make_unique<char[]>(uBuffer);
    size_t uNext = 0;
    size_t uEnd = 0;
    uint64_t u64Position = 0;
    int iError = 0;

    bool MayWait() const { return !stOptions.fnIdle || stOptions.fnIdle(); }

    // Whether more may come behind the end of the file.
    bool WaitForMore() const {
        struct stat stStatus {};
        if (!stOptions.bFollow || !bRegular || fstat(iFile, &stStatus) != 0 ||
            stStatus.st_nlink == 0 || !MayWait()) {
            return false;
        }
        (void)poll(nullptr, 0, iPollMilliseconds);
        return true;
    }

    bool Fill() {
        for (;;) {
            if (!bRegular && WouldWait(iFile) && !MayWait()) {
                return false;
            }
            const ssize_t iCount = read(iFile, pacBuffer.get(), uBuffer);
            if (iCount > 0) {
                uNext = 0;
                uEnd = static_cast<size_t>(iCount);
                return true;
            }
            if (iCount < 0 && errno == EINTR) {
                continue;
            }
            if (iCount < 0) {
                iError = errno;
                return false;
            }
            if (!WaitForMore()) {
                return false;
            }
        }
    }

    ssize_t Read(char *pcTo, size_t uCount) {
        if (uNext == uEnd && !Fill()) {
            return 0;
        }
        const size_t uTaken = std::min(uCount, uEnd - uNext);
        std::memcpy(pcTo, pacBuffer.get() + uNext, uTaken);
        uNext += uTaken;
        u64Position += uTaken;
        return static_cast<ssize_t>(uTaken);
    }
};

ssize_t ReadSource(void *pvSource, char *pcTo, size_t uCount) {
    return static_cast<Source *>(pvSource)->Read(pcTo, uCount);
}

std::string AtByte(uint64_t u64Position, const std::string &strWhat) {
    return "byte " + std::to_string(u64Position) + ": " + strWhat;
}

} // namespace

struct RecordingReader::State {
    Source stSource;
    std::unique_ptr<char[]> pacStreamBuffer = std::make_unique<char[]>(uStreamBuffer);
    pcap_t *pstCapture = nullptr;
    std::string strProblem;
    uint64_t u64Size = 0;
    bool bAnyEvent = false;
    bool bEnded = false;

    ~State() {
        if (pstCapture != nullptr) {
            pcap_close(pstCapture); // closes the stream, which leaves the descriptor alone
        }
        if (stSource.iFile > STDIN_FILENO) {
            close(stSource.iFile);
        }
    }

    void Note(std::string strWhat) {
        if (strProblem.empty()) {
            strProblem = std::move(strWhat);
        }
    }

    void End(std::string strWhat) {
        bEnded = true;
        Note(std::move(strWhat));
    }

    bool OpenFile(const std::string &strPath) {
        stSource.iFile =
            strPath == "-" ? STDIN_FILENO : open(strPath.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat stStatus {};
        if (stSource.iFile < 0 || fstat(stSource.iFile, &stStatus) != 0) {
            End(std::string("cannot be opened: ") + std::strerror(errno));
            return false;
        }
        stSource.bRegular = S_ISREG(stStatus.st_mode);
        u64Size = stSource.bRegular ? static_cast<uint64_t>(stStatus.st_size) : 0;
        return true;
    }

    void OpenCapture() {
        FILE *pstStream = fopencookie(&stSource, "rb", {ReadSource, nullptr, nullptr, nullptr});
        if (pstStream == nullptr) {
            End("out of memory");
            return;
        }
        // libpcap reads number by number.
        (void)setvbuf(pstStream, pacStreamBuffer.get(), _IOFBF, uStreamBuffer);
        char acError[PCAP_ERRBUF_SIZE] = "";
        pstCapture = pcap_fopen_offline_with_tstamp_precision(pstStream, PCAP_TSTAMP_PRECISION_NANO,
                                                              acError);
        if (pstCapture == nullptr) {
            (void)fclose(pstStream);
            End(AtByte(0, Reason(acError)));
        } else if (pcap_datalink(pstCapture) != u16UpperPDULinkType) {
            End(AtByte(0, "a capture of link type " + std::to_string(pcap_datalink(pstCapture)) +
                              ", not of upper-layer PDUs (252)"));
        }
    }

    // What libpcap has used: what it has taken but for what is still in its stream's buffer.
    uint64_t Position() const {
        const FILE *pstStream = pstCapture != nullptr ? pcap_file(pstCapture) : nullptr;
        const auto iAhead =
            pstStream != nullptr ? pstStream->_IO_read_end - pstStream->_IO_read_ptr : 0;
        return stSource.u64Position - static_cast<uint64_t>(iAhead);
    }

    // libpcap's words, unless the file itself could not be read.
    std::string Reason(const char *pcError) const {
        return stSource.iError != 0 ? std::strerror(stSource.iError) : pcError;
    }

    // True when *pstEvent is one.
    bool Take(const pcap_pkthdr &stHeader, const u_char *pucData, uint64_t u64At, Event *pstEvent) {
        switch (ReadPacket({pucData, stHeader.caplen}, pstEvent)) {
        case PacketKind::Event:
            if (stHeader.caplen < stHeader.len) {
                Note(AtByte(u64At, "an event was cut when it was captured"));
                return false;
            }
            if (stHeader.ts.tv_sec < 0 || stHeader.ts.tv_sec > i64LastSecond) {
                Note(AtByte(u64At, "an event of an impossible time"));
                return false;
            }
            // With this precision the field for microseconds holds nanoseconds.
            pstEvent->i64Time = stHeader.ts.tv_sec * i64SecondInNanoseconds + stHeader.ts.tv_usec;
            bAnyEvent = true;
            return true;
        case PacketKind::Management:
            return false;
        case PacketKind::Foreign:
            Note(AtByte(u64At, "a packet that is no part of a recorded session"));
            return false;
        case PacketKind::Broken:
            Note(AtByte(u64At, "a damaged event"));
            return false;
        case PacketKind::Newer:
            Note(AtByte(u64At, "an event of another version than " +
                                   std::to_string(u8RecordingVersion) +
                                   ", which this program does not know"));
            return false;
        }
        return false;
    }
};

RecordingReader::RecordingReader(const std::string &strPath, ReaderOptions stOptions)
    : m_pstState(std::make_unique<State>()) {
    m_pstState->stSource.stOptions = std::move(stOptions);
    if (m_pstState->OpenFile(strPath)) {
        m_pstState->OpenCapture();
    }
}

RecordingReader::~RecordingReader() = default;

bool RecordingReader::Next(Event *pstEvent) {
    State &stState = *m_pstState;
    while (!stState.bEnded) {
        const uint64_t u64At = stState.Position();
        pcap_pkthdr *pstHeader = nullptr;
        const u_char *pucData = nullptr;
        const int iResult = pcap_next_ex(stState.pstCapture, &pstHeader, &pucData);
        if (iResult == 1) {
            if (stState.Take(*pstHeader, pucData, u64At, pstEvent)) {
                return true;
            }
        } else if (iResult != PCAP_ERROR_BREAK) {
            stState.End(AtByte(u64At, stState.Reason(pcap_geterr(stState.pstCapture))));
        } else if (stState.stSource.iError != 0) {
            stState.End(AtByte(u64At, stState.Reason("")));
        } else {
            stState.End(stState.bAnyEvent ? "" : AtByte(u64At, "no event of a session"));
        }
    }
    return false;
}

const std::string &RecordingReader::Problem() const { return m_pstState->strProblem; }
uint64_t RecordingReader::Position() const { return m_pstState->Position(); }
uint64_t RecordingReader::Size() const { return m_pstState->u64Size; }
