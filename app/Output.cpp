#include "Output.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <poll.h>
#include <unistd.h>

#include "Descriptors.h"
#include "Ending.h"

constinit thread_local OutputBuffer *gpstOutput = nullptr;

namespace {

// The menus have a buffer of their own; reports of more threads than have one at
// a time wait for the end of another. Whatever prints a report has taken one
// until its end, so that nothing else has to be counted.
OutputBuffer gstMenuBuffer;
OutputBuffer gastReportBuffers[15];
constinit thread_local bool gbMenuThread = false;

// Turns at the output, in the order of asking.
std::atomic<uint32_t> gu32NextTurn{0};
std::atomic<uint32_t> gu32Turn{0};

// The exit status when nobody reads the output.
constexpr int iOutputGone = 128 + SIGPIPE;

std::atomic<bool> gbClosed{false};

void WaitAMillisecond() { poll(nullptr, 0, 1); }

OutputBuffer *TakeBuffer() {
    if (gbMenuThread) {
        return &gstMenuBuffer;
    }
    for (;;) {
        for (OutputBuffer &stBuffer : gastReportBuffers) {
            // In one order with the look at gbClosed behind it, and with the close.
            if (!stBuffer.Taken.test_and_set()) {
                return &stBuffer;
            }
        }
        WaitAMillisecond();
    }
}

void LeaveBuffer() {
    OutputBuffer *pstBuffer = gpstOutput;
    gpstOutput = nullptr;
    pstBuffer->Taken.clear(std::memory_order_release);
}

bool IsReportUnderWay() {
    return std::any_of(std::begin(gastReportBuffers), std::end(gastReportBuffers),
                       [](const OutputBuffer &stBuffer) { return stBuffer.Taken.test(); });
}

// False when the client ends before it is this thread's turn; nobody gets one
// any more then.
bool TakeOutput(OutputBuffer *pstBuffer) {
    if (TimeLeft() == 0) {
        return false;
    }
    if (!pstBuffer->bHasOutput) {
        const uint32_t u32Mine = gu32NextTurn++;
        while (gu32Turn.load(std::memory_order_acquire) != u32Mine) {
            WaitAMillisecond();
            if (TimeLeft() == 0) {
                return false;
            }
        }
        pstBuffer->bHasOutput = true;
    }
    return true;
}

void LeaveOutput(OutputBuffer *pstBuffer) {
    if (pstBuffer->bHasOutput) {
        pstBuffer->bHasOutput = false;
        // Nobody else writes it during this turn.
        gu32Turn.store(gu32Turn.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }
}

// Waits until the output takes something; false when the client ends first.
// *piIdle is how long it has taken nothing while the client was leaving.
bool WaitForRoom(int *piIdle) {
    const int iTimeLeft = TimeLeft();
    if (iTimeLeft == 0) {
        return false;
    }
    pollfd astPoll[] = {{OutputDescriptor(), POLLOUT, 0}, {EndEvent(), POLLIN, 0}};
    if (iTimeLeft > 0) {
        poll(astPoll, 1, iTimeLeft);
    } else if (IsEnding()) {
        // The client is leaving: an output that takes nothing does not hold it up.
        if (poll(astPoll, 1, iLookAgain) == 0 && (*piIdle += iLookAgain) >= iLastReportTime) {
            EndLastReport();
        }
    } else {
        poll(astPoll, 2, IdleLimit());
    }
    return true;
}

// Writes all of it, or as much as the output takes until the client ends.
void WriteWhole(std::string_view strText) {
    bool bJustWaited = false;
    int iIdle = 0;
    while (!strText.empty()) {
        const ssize_t iWritten = WriteOutput(strText.data(), strText.size());
        if (iWritten >= 0) {
            strText.remove_prefix(static_cast<size_t>(iWritten));
            bJustWaited = false;
            iIdle = 0;
        } else if (errno == EAGAIN) {
            if (bJustWaited) {
                WaitAMillisecond(); // room for less than the smallest piece
            }
            if (!WaitForRoom(&iIdle)) {
                return;
            }
            bJustWaited = true;
        } else if (errno != EINTR) {
            EndClient(iOutputGone);
            return;
        }
    }
}

void WritePending(OutputBuffer *pstBuffer) {
    if (TakeOutput(pstBuffer)) {
        WriteWhole({pstBuffer->acText, pstBuffer->uUsed});
    }
    pstBuffer->uUsed = 0;
}

} // namespace

void MakeOutputRoom() {
    if (gpstOutput == nullptr) {
        gpstOutput = TakeBuffer();
    } else {
        WritePending(gpstOutput);
    }
}

void PutLongText(std::string_view strText) {
    while (!strText.empty()) {
        PutShortText(strText.substr(0, uMostRoom));
        strText.remove_prefix(std::min(strText.size(), uMostRoom));
    }
}

void PutFormat(const char *pcFormat, ...) {
    constexpr size_t uMost = 512;
    char *pcRoom = OutputRoom(uMost);
    va_list stArguments;
    va_start(stArguments, pcFormat);
    const int iLength = vsnprintf(pcRoom, uMost, pcFormat, stArguments);
    va_end(stArguments);
    if (iLength > 0) {
        EndOutputAt(pcRoom + std::min<size_t>(static_cast<size_t>(iLength), uMost - 1));
    }
}

void FlushOutput() {
    if (gpstOutput != nullptr) {
        if (gpstOutput->uUsed != 0) {
            WritePending(gpstOutput);
        }
        LeaveOutput(gpstOutput);
        if (gpstOutput->u32Reports == 0) {
            LeaveBuffer();
        }
    }
}

std::string_view PendingOutput() {
    if (gpstOutput == nullptr) {
        return {};
    }
    return {gpstOutput->acText, gpstOutput->uUsed};
}

void DropPendingOutput() {
    if (gpstOutput != nullptr) {
        LeaveOutput(gpstOutput);
        gpstOutput->uUsed = 0;
        gpstOutput->u32Reports = 0;
        LeaveBuffer();
    }
}

void HeedOutput(int iEvents) {
    if ((iEvents & (POLLERR | POLLHUP)) != 0) {
        EndClient(iOutputGone);
    }
}

void LookAtOutput() {
    pollfd stPoll{STDOUT_FILENO, 0, 0};
    poll(&stPoll, 1, 0);
    HeedOutput(stPoll.revents);
}

void EndIfOutputClosed() {
    if (TimeLeft() == 0 || EndStatus() == iOutputGone) {
        EndIfTold();
    }
}

bool BeginReport() {
    if (gpstOutput == nullptr) {
        gpstOutput = TakeBuffer();
    }
    if (gbClosed) {
        FlushOutput();
        return false;
    }
    ++gpstOutput->u32Reports;
    return true;
}

void EndReport() {
    --gpstOutput->u32Reports;
    FlushOutput();
}

void CloseOutput() {
    LimitLastReport();
    gbClosed = true;
    while (IsReportUnderWay() && TimeLeft() != 0) {
        WaitAMillisecond();
    }
    EndLastReport();
}

void OpenOutput() {
    DropPendingOutput();
    gbMenuThread = true;
    gu32NextTurn = 0;
    gu32Turn = 0;
    gbClosed = false;
}
