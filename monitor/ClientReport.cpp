#include "ClientReport.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "Console.h"
#include "Dispatcher.h"

// ---- The console and the device, as the decoders find them here ----

constinit thread_local OutputBuffer *gpstOutput = nullptr;

namespace {

OutputBuffer gstBuffer;
// The beginning of a report that is longer than the buffer.
std::string gstrLongReport;

} // namespace

void MakeOutputRoom() {
    gpstOutput = &gstBuffer;
    gstrLongReport.append(gstBuffer.acText, gstBuffer.uUsed);
    gstBuffer.uUsed = 0;
}

void PutLongText(std::string_view strText) {
    MakeOutputRoom();
    gstrLongReport.append(strText);
}

void PutFormat(const char *pcFormat, ...) {
    constexpr size_t uMost = 512;
    char *pcRoom = OutputRoom(uMost);
    va_list stArguments;
    va_start(stArguments, pcFormat);
    const int iLength = vsnprintf(pcRoom, uMost, pcFormat, stArguments);
    va_end(stArguments);
    EndOutputAt(pcRoom + std::clamp<int>(iLength, 0, uMost - 1));
}

void FlushOutput() {}
void EndIfOutputClosed() {}
bool BeginReport() { return true; }
void EndReport() {}

KeyTurn::KeyTurn() = default;
KeyTurn::~KeyTurn() = default;
int WaitForKey() { return -1; }
int NextInputChar() { return -1; }
int TakeInputChar() { return -1; }
void PushBackInputChar(int /*iChar*/) {}
void PauseMicroseconds(uint32_t /*u32Microseconds*/) {}

extern "C" int32_t SendWiMAXMessage(uint32_t /*hDevice*/, void * /*pvMessage*/,
                                    uint32_t /*u32Length*/) {
    return 0;
}

// ---- The report ----

std::string_view ClientReportOf(ByteView stMessage, uint32_t u32Length) {
    static WiMAXMessage stRecord;
    static uint32_t u32Filled = 0;
    const uint32_t u32Count = std::min(stMessage.u32Length, uint32_t{WIMAX_MESSAGE_SIZE});
    uint8_t *pucRecord = BytesOf(stRecord).pucData;
    PutBytes(BytesOf(stRecord), 0, stMessage);
    if (u32Filled > u32Count) {
        std::memset(pucRecord + u32Count, 0, u32Filled - u32Count);
    }
    u32Filled = u32Count;

    gpstOutput = &gstBuffer;
    gstBuffer.uUsed = 0;
    gstrLongReport.clear();
    TVLCallback(0, &stRecord, u32Length);
    const std::string_view strReport(gstBuffer.acText, gstBuffer.uUsed);
    if (gstrLongReport.empty()) {
        return strReport;
    }
    gstrLongReport.append(strReport);
    return gstrLongReport;
}
