#include "ClientReport.h"

#include <algorithm>

#include "ClientConsole.h"
#include "Dispatcher.h"

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

    DropConsoleText();
    TVLCallback(0, &stRecord, u32Length);
    return ConsoleText();
}
