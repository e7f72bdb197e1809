// A person who types anything, on a device that answers anything. The bytes up
// to the first zero are typed; those behind it are the device's.
#include <algorithm>

#include "Client.h"
#include "FuzzGround.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    const ByteView stBytes{pucBytes, static_cast<uint32_t>(uCount)};
    const auto u32Typed =
        static_cast<uint32_t>(std::find(pucBytes, pucBytes + uCount, uint8_t{0}) - pucBytes);
    BeginRun(stBytes.From(0, u32Typed));
    SetDeviceBytes(stBytes.From(u32Typed + 1));
    RunClient(RunMainMenu);
    return 0;
}
