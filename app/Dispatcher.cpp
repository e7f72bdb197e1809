#include "Dispatcher.h"

#include <array>

#include <pthread.h>

#include "AntennaSwitching.h"
#include "Authentication.h"
#include "ChipsetControl.h"
#include "Console.h"
#include "DeviceConfiguration.h"
#include "GPIO.h"
#include "Handover.h"
#include "IdleMode.h"
#include "LinkStatus.h"
#include "Logging.h"
#include "MACManagement.h"
#include "MIBIndication.h"
#include "Message.h"
#include "Report.h"
#include "SecurityParameters.h"
#include "ServiceFlows.h"
#include "SleepMode.h"
#include "StationInformation.h"
#include "Statistics.h"
#include "VendorSpecificParameters.h"
#include "WiMAXOptions.h"

namespace {

using Decoder = uint32_t (*)(const WiMAXMessage *pstMessage);

uint32_t Ignore(const WiMAXMessage * /*pstMessage*/) { return 0; }

uint32_t DecodeIdleMode(const WiMAXMessage *pstMessage) {
    const uint32_t u32SubType = View(pstMessage).u32SubType;
    switch (u32SubType) {
    case SUBTYPE_IDLE_MODE:
        return IdleModeIndication(pstMessage);
    case SUBTYPE_IDLE_MODE_STATUS:
        return IdleModeStatusResponse(pstMessage);
    case SUBTYPE_IDLE_MODE_INACTIVITY_TIMER:
        return IdleModeInactivityTImerResponse(pstMessage);
    case SUBTYPE_IDLE_MODE_WAKE_UP:
        return IdleModeWakeupResponse(pstMessage);
    default:
        PutNumber("\nUNKNOWN sub-type in IDLE Mode in Callback func (%d)!!!", u32SubType);
        return 0;
    }
}

struct DecoderRow {
    uint32_t u32Type;
    Decoder pfnDecode;
};

constexpr DecoderRow astDecoders[] = {
    {TYPE_NETWORK_SEARCH, NetEntrySearchResponse},
    {TYPE_NETWORK_ENTRY, NetEntryExitResponse},
    {TYPE_AUTHENTICATION, EAPResponse},
    {TYPE_SS_INFO, SSInfoResponse},
    {TYPE_START_LOGGER, LogIndication},
    {TYPE_VENDOR_SPECIFIC, DisplayVendorSpecificParamInfo},
    {TYPE_MAC_ADDRESS, MACSetResponse},
    {TYPE_DEVICE_UNLOAD, DeviceUnloadIndication},
    {TYPE_DEVICE_CONFIG, DeviceConfigResp},
    {TYPE_CHIPSET, ChipsetResponse},
    {TYPE_STATISTICS, GetStatisticsResponse},
    {TYPE_IDLE_MODE, DecodeIdleMode},
    {TYPE_MAC_MGMT, MACMgmtMessage},
    {TYPE_GPIO, GPIOIndication},
    {TYPE_HANDOVER, HandOverResponse},
    {TYPE_MIB, MIBIndication},
    {TYPE_IGNORED_25, Ignore},
    {TYPE_SLEEP_MODE, SleepModeIndication},
    {TYPE_MAC_LOGGING, Ignore},
    {TYPE_ANTENNA, AntennaSwitchingAndSelectionResponse},
    {TYPE_WIMAX_OPTIONS, ProcessWiMAXOptionsResp},
    {TYPE_SHUTDOWN, ShutDownResponse},
    {TYPE_PHY_LOGGING, ProcessPHYLOggingInfo},
    {TYPE_SECURITY, ProcessSecResponse},
    {TYPE_HALF_MINI_CARD, ProcessHalfMiniCardResponse},
};

// The same by type.
constexpr auto apfnDecoders = [] {
    std::array<Decoder, 64> apfnTable{};
    for (const DecoderRow &stRow : astDecoders) {
        apfnTable[stRow.u32Type] = stRow.pfnDecode;
    }
    return apfnTable;
}();

Decoder DecoderOf(uint32_t u32Type) {
    return u32Type < apfnDecoders.size() ? apfnDecoders[u32Type] : nullptr;
}

uint32_t Decode(const WiMAXMessage *pstMessage, uint32_t u32Length) {
    if (pstMessage == nullptr) {
        PutText("\nAppcallback called with null buffer !!!");
        return 0;
    }
    if (gbInsideSubMenu != 0) {
        return 0;
    }
    const uint32_t u32Type = View(pstMessage).u32Type;
    if (u32Type == TYPE_SERVICE_FLOW) {
        return ServiceFlowResponse(pstMessage, u32Length);
    }
    const Decoder pfnDecode = DecoderOf(u32Type);
    if (pfnDecode == nullptr) {
        PutNumber("\nUNKNOWN type of message received in Callback func (%d)!!!", u32Type);
        return 0;
    }
    return pfnDecode(pstMessage);
}

} // namespace

uint32_t TVLCallback(uint32_t /*u32Context*/, const WiMAXMessage *pstMessage, uint32_t u32Length) {
    // A library that cancels its thread gets its way behind the report, which would
    // stop in the middle otherwise and keep the output from everybody else. No
    // guard object: a destructor could not let the cancellation through.
    int iCancelStateBefore = PTHREAD_CANCEL_ENABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &iCancelStateBefore);
    uint32_t u32Result = 0;
    if (BeginReport()) {
        try {
            u32Result = Decode(pstMessage, u32Length);
        } catch (...) { // the library is no place for it; decoders throw for nothing else
            EndWithoutMemory();
        }
        EndReport();
    }
    pthread_setcancelstate(iCancelStateBefore, nullptr);
    return u32Result;
}
