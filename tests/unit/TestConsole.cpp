#include "TestConsole.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "Console.h"
#include "Message.h"

namespace {

constexpr int iPipeSize = 1 << 20;

int giTypingEnd = -1;
off_t giOutputTaken = 0;

void Require(bool bDone, const char *pcWhat) {
    if (!bDone) {
        perror(pcWhat);
        std::abort();
    }
}

void ReplaceInput() {
    int aiPipe[2];
    Require(pipe2(aiPipe, O_CLOEXEC) == 0, "pipe2");
    Require(fcntl(aiPipe[1], F_SETPIPE_SZ, iPipeSize) >= iPipeSize, "F_SETPIPE_SZ");
    Require(dup2(aiPipe[0], STDIN_FILENO) == STDIN_FILENO, "dup2");
    close(aiPipe[0]);
    giTypingEnd = aiPipe[1];
}

void ReplaceOutput() {
    const int iFile = memfd_create("printed", MFD_CLOEXEC);
    Require(iFile >= 0, "memfd_create");
    Require(dup2(iFile, STDOUT_FILENO) == STDOUT_FILENO, "dup2");
    close(iFile);
    giOutputTaken = 0;
}

} // namespace

void ConsoleTest::SetUp() {
    ReplaceInput();
    ReplaceOutput();
    DropPendingOutput();
    OpenConsole();
    FakeDevice::Reset();
    g_hDevice = 1;
    gbInsideSubMenu = 0;
}

void ConsoleTest::TearDown() { EndInput(); }

void ConsoleTest::Type(std::string_view strText) {
    while (!strText.empty()) {
        const ssize_t iWritten = write(giTypingEnd, strText.data(), strText.size());
        Require(iWritten > 0, "write");
        strText.remove_prefix(static_cast<size_t>(iWritten));
    }
}

void ConsoleTest::EndInput() {
    if (giTypingEnd >= 0) {
        close(giTypingEnd);
        giTypingEnd = -1;
    }
}

std::string ConsoleTest::Unread() {
    EndInput();
    std::string strUnread;
    for (int iChar = NextInputChar(); iChar >= 0; iChar = NextInputChar()) {
        strUnread += static_cast<char>(iChar);
    }
    return strUnread;
}

std::string ConsoleTest::Printed() {
    FlushOutput();
    std::string strText;
    char acChunk[4096];
    for (;;) {
        const ssize_t iCount = pread(STDOUT_FILENO, acChunk, sizeof acChunk, giOutputTaken);
        Require(iCount >= 0, "pread");
        if (iCount == 0) {
            return strText;
        }
        giOutputTaken += iCount;
        strText.append(acChunk, static_cast<size_t>(iCount));
    }
}

std::string ConsoleTest::Report(uint32_t (*pfnDecode)(const WiMAXMessage *),
                                std::string_view strMessage) {
    Printed();
    pfnDecode(RecordOf(Message(strMessage)).get());
    return Printed();
}

std::string Times(std::string_view strText, uint32_t u32Times) {
    std::string strAll;
    for (uint32_t i = 0; i < u32Times; ++i) {
        strAll += strText;
    }
    return strAll;
}
