#include "Handover.h"

#include "Console.h"
#include "MobilityRecords.h"
#include "Report.h"

namespace {

constexpr ReportRow astSuccessRows[] = {
    {"\nLast Preamble ID: %d\n", Handover::u32LastPreambleID},
    {"\nCurrent Preamble ID: %d\n", Handover::u32CurrentPreambleID},
    {"\nHand over latency: %d\n", Handover::u32HOLatency},
    {"\nNumber of Ranging Failures: %d\n", Handover::u32NumRangingFailures},
    {"\nCurrent BSID: %02x %02x %02x %02x %02x %02x", Handover::au8CurrentBSID},
    {"\nLast BSID: %02x %02x %02x %02x %02x %02x", Handover::au8LastBSID},
};

void PutSuccess(ByteView stPayload) {
    using namespace Handover;
    PutLine("\nHANDOFF SUCCESS!!");
    PutRows(stPayload, astSuccessRows);
    if (Get(stPayload, u8IPRefreshNeeded) != 0) {
        PutLine("\nIP Refresh needs to be done");
    }
    if (HasVendorData(stPayload, u32VendorSpecificDataLength)) {
        PutRow(stPayload, {"\nVENDOR SPECIFIC DATA LENGTH : %d\n", u32VendorSpecificDataLength});
    } else {
        PutRow(stPayload, {"\nINVALID VENDOR SPECIFIC DATA LENGTH! RECEIVED LENGTH IS %d\n",
                           u32VendorSpecificDataLength});
    }
    PutVendorData("\nVENDOR SPECIFIC DATA", stPayload, u32VendorSpecificDataLength,
                  au8VendorSpecificData);
}

} // namespace

uint32_t HandOverResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        PutText("\nINVALID WIMAX MESSAGE!!");
        return 0;
    }
    const Received stReceived = View(pstMessage);
    if (stReceived.u32SubType != SUBTYPE_HANDOVER_IND) {
        PutText("\nUNKNOWN HANDOFF INDICATION TYPE!!");
        return 0;
    }
    PutLine("\n~~~~~~ HANDOVER RESPONSE MESSAGE ~~~~~~");
    if (Get(stReceived.stPayload, Handover::u8HOSuccess) != 0) {
        PutSuccess(stReceived.stPayload);
    } else {
        PutLine("\nHANDOFF FALIED!!");
    }
    PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    return 1;
}

uint32_t ProcessNetworkLayerControlMessage(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        PutLine("\nINVALID WIMAX MESSAGE!!");
    } else if (View(pstMessage).u32SubType == NetworkLayerControl::DHCPRefresh) {
        PutLine("\nDHCP REFRESH MESSAGE");
    } else {
        PutLine("\nMessage with unknown SUBTYPE received for TYPE_NETWORK_LAYER_CONTROL");
    }
    return 0;
}
