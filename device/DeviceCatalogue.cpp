#include "DeviceRecords.h"
#include "Layouts.h"

namespace {

constexpr CodeRow astFilterStates[] = {
    CODE(IPFilterStatus, Invalid),
    CODE(IPFilterStatus, Success),
    CODE(IPFilterStatus, NotSupported),
};

constexpr FieldRow astIPFilterStatus[] = {
    FIELD(IPFilterStatus, u32Status, "IP filtering status: 0 invalid, 1 success, 4 not supported",
          .astCodes = astFilterStates),
};

} // namespace

constexpr Layout stIPFilterStatus = LAYOUT(IPFilterStatus, astIPFilterStatus);
