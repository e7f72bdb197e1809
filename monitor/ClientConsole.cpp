// Stands in the place of the client's Console.cpp and Output.cpp and of a device library, with all
// that they define, so that the linker takes nothing of them.
#include "ClientConsole.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "Console.h"
#include "WiMAXDevice.h"

constinit thread_local OutputBuffer *gpstOutput = nullptr;

namespace {

OutputBuffer gstBuffer;
// The beginning of a text that is longer than the buffer.
std::string gstrLongText;

} // namespace

std::string_view ConsoleText() {
    const std::string_view strText(gstBuffer.acText, gstBuffer.uUsed);
    if (gstrLongText.empty()) {
        return strText;
    }
    gstrLongText.append(strText);
    gstBuffer.uUsed = 0;
    return gstrLongText;
}

void DropConsoleText() {
    gpstOutput = &gstBuffer;
    gstBuffer.uUsed = 0;
    gstrLongText.clear();
}

void MakeOutputRoom() {
    gpstOutput = &gstBuffer;
    gstrLongText.append(gstBuffer.acText, gstBuffer.uUsed);
    gstBuffer.uUsed = 0;
}

void PutLongText(std::string_view strText) {
    MakeOutputRoom();
    gstrLongText.append(strText);
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

void OpenOutput() {}
void CloseOutput() {}
bool BeginReport() { return true; }
void EndReport() {}
void FlushOutput() {}
std::string_view PendingOutput() { return ConsoleText(); }
void DropPendingOutput() { DropConsoleText(); }
void HeedOutput(int /*iEvents*/) {}
void LookAtOutput() {}
void EndIfOutputClosed() {}

void OpenConsole() {}
void CloseConsole() {}
KeyTurn::KeyTurn() = default;
// A default one would be trivial, which the client's is not.
// NOLINTNEXTLINE(modernize-use-equals-default)
KeyTurn::~KeyTurn() {}
int WaitForKey() { return -1; }
int NextInputChar() { return -1; }
int TakeInputChar() { return -1; }
void PushBackInputChar(int /*iChar*/) {}
int PushedBackInputChar() { return iNoInputChar; }
void PauseMicroseconds(uint32_t /*u32Microseconds*/) {}

uint32_t OpenWiMAXDevice() { return WIMAX_NO_DEVICE; }
int32_t RegisterCallback(uint32_t /*hDevice*/, WiMAXCallback /*pfnCallback*/,
                         uint32_t /*u32Context*/) {
    return -1;
}
int32_t SendWiMAXMessage(uint32_t /*hDevice*/, void * /*pvMessage*/, uint32_t /*u32Length*/) {
    return -1;
}
int32_t CloseWiMAXDevice() { return -1; }
int32_t rdm(uint32_t /*u32Address*/, void * /*pvBuffer*/, uint32_t /*u32Count*/) { return -1; }
int32_t wrm(uint32_t /*u32Address*/, const void * /*pvBuffer*/, uint32_t /*u32Count*/) {
    return -1;
}
