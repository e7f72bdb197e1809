#include "GPIOPins.h"

#include <algorithm>

#include "AntennaRecords.h"
#include "Console.h"

namespace {

// Pins 0 to 15. The GPIO menu takes bits 0 to 16: the two ranges differ.
constexpr uint32_t u32Pins = 16;

bool IsAssigned(ByteView stList, uint32_t u32Pin) {
    using namespace AntennaConfig;
    const uint32_t u32Width = WidthOf(au32RxGPIO.eType);
    // The count is what somebody typed: the list has four places.
    const uint32_t u32Count = std::min(Get(stList, u32NumRxGPIOs), MaxRxGPIOs);
    const uint32_t u32Assigned = RecordsPresent(stList, au32RxGPIO.u16Offset, u32Width, u32Count);
    for (uint32_t i = 0; i < u32Assigned; ++i) {
        if (Get(stList, au32RxGPIO, i * u32Width) == u32Pin) {
            return true;
        }
    }
    return false;
}

} // namespace

uint32_t isValidGPIO_val(ByteView stList, uint32_t u32Pin) {
    if (u32Pin >= u32Pins) {
        PutLine("\n Enter a Valid GPIO Pin value b/w 0 - 15");
        return 0;
    }
    if (IsAssigned(stList, u32Pin)) {
        PutLine("\n Enter a unUsed/unDefined GPIO Pin Value");
        return 0;
    }
    return 1;
}
