// A device library that does nothing but call back: a read of memory calls the callback as often as
// the count says, with the message that was sent last.
#include <cstring>

#include "WiMAXDevice.h"

#define EXPORTED __attribute__((visibility("default")))

namespace {

WiMAXCallback gpfnCallback = nullptr;
WiMAXMessage gstMessage;
uint32_t gu32Length = 0;

} // namespace

EXPORTED uint32_t OpenWiMAXDevice() { return 1; }

EXPORTED int32_t RegisterCallback(uint32_t /*hDevice*/, WiMAXCallback pfnCallback,
                                  uint32_t /*u32Context*/) {
    gpfnCallback = pfnCallback;
    return 0;
}

EXPORTED int32_t SendWiMAXMessage(uint32_t /*hDevice*/, void *pvMessage, uint32_t u32Length) {
    std::memcpy(&gstMessage, pvMessage, sizeof gstMessage);
    gu32Length = u32Length;
    return 0;
}

EXPORTED int32_t CloseWiMAXDevice() { return 0; }

EXPORTED int32_t rdm(uint32_t /*u32Address*/, void * /*pvBuffer*/, uint32_t u32Count) {
    for (uint32_t i = 0; i < u32Count; ++i) {
        gpfnCallback(0, &gstMessage, gu32Length);
    }
    return 0;
}

EXPORTED int32_t wrm(uint32_t /*u32Address*/, const void * /*pvBuffer*/, uint32_t /*u32Count*/) {
    return 0;
}
