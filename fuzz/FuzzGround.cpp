#include "FuzzGround.h"

#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "ChipsetControl.h"
#include "Console.h"
#include "Message.h"

namespace {

ByteView gstDeviceBytes;
uint32_t gu32NextByte = 0;

uint8_t NextDeviceByte() {
    return gstDeviceBytes.u32Length == 0
               ? uint8_t{0}
               : gstDeviceBytes.At(gu32NextByte++ % gstDeviceBytes.u32Length);
}

// One call in eight fails.
int32_t NextResult() {
    const uint8_t u8Byte = NextDeviceByte();
    return u8Byte >= 0xE0 ? static_cast<int8_t>(u8Byte) : 0;
}

void Replace(int iDescriptor, int iNew) {
    if (iNew < 0 || dup2(iNew, iDescriptor) < 0) {
        std::abort();
    }
    close(iNew);
}

} // namespace

void BeginRun(ByteView stTyped) {
    static const bool bOnce = [] {
        Replace(STDOUT_FILENO, open("/dev/null", O_WRONLY));
        return true;
    }();
    (void)bOnce;
    const int iInput = memfd_create("typed", 0);
    if (write(iInput, stTyped.pucData, stTyped.u32Length) != ssize_t{stTyped.u32Length}) {
        std::abort();
    }
    lseek(iInput, 0, SEEK_SET);
    Replace(STDIN_FILENO, iInput);
    DropPendingOutput();
    OpenConsole();
    SetDeviceBytes({});
    g_hDevice = 1;
    gbInsideSubMenu = 0;
}

void SetDeviceBytes(ByteView stBytes) {
    gstDeviceBytes = stBytes;
    gu32NextByte = 0;
}

// Stands in for PauseMicroseconds.
void EndPauseAtOnce(uint32_t u32Microseconds) asm("__wrap__Z17PauseMicrosecondsj");
void EndPauseAtOnce(uint32_t /*u32Microseconds*/) {}

uint32_t OpenWiMAXDevice() { return 1; }
int32_t RegisterCallback(uint32_t /*hDevice*/, WiMAXCallback /*pfnCallback*/,
                         uint32_t /*u32Context*/) {
    return 0;
}

int32_t SendWiMAXMessage(uint32_t /*hDevice*/, void *pvMessage, uint32_t /*u32Length*/) {
    if (gstDeviceBytes.u32Length != 0 && pvMessage != nullptr) {
        auto *pucMessage = static_cast<uint8_t *>(pvMessage);
        for (uint32_t i = WIMAX_HEADER_SIZE; i < WIMAX_MESSAGE_SIZE; ++i) {
            pucMessage[i] = NextDeviceByte();
        }
    }
    iFWDlFlag = 0; // a download never waits
    return NextResult();
}

int32_t CloseWiMAXDevice() { return 0; }

int32_t rdm(uint32_t /*u32Address*/, void *pvBuffer, uint32_t u32Count) {
    auto *pucBuffer = static_cast<uint8_t *>(pvBuffer);
    for (uint32_t i = 0; i < u32Count; ++i) {
        pucBuffer[i] = NextDeviceByte();
    }
    return NextResult();
}

int32_t wrm(uint32_t /*u32Address*/, const void *pvBuffer, uint32_t u32Count) {
    const auto *pucBuffer = static_cast<const uint8_t *>(pvBuffer);
    volatile uint8_t u8Sum = 0; // volatile: every byte is really read
    for (uint32_t i = 0; i < u32Count; ++i) {
        u8Sum = static_cast<uint8_t>(u8Sum + pucBuffer[i]);
    }
    return NextResult();
}
