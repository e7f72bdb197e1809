// Messages from a hostile modem, one behind the other, without any menus; and
// what no menu leads to. What is typed is for whoever asks.
#include "ConnectionManagement.h"
#include "Console.h"
#include "Handover.h"
#include "Logging.h"
#include "Message.h"
#include "OMADM.h"
#include "ServiceFlows.h"
#include "Stage.h"
#include "VendorSpecificParameters.h"

namespace {

// With the bytes as what they read or fill in.
constexpr void (*apfnAsides[])(ByteSpan stBytes, const WiMAXMessage &stMessage) = {
    [](ByteSpan, const WiMAXMessage &stMessage) { ProcessNetworkLayerControlMessage(&stMessage); },
    [](ByteSpan, const WiMAXMessage &stMessage) { ProcessMACLOggingInfo(&stMessage); },
    [](ByteSpan stBytes, const WiMAXMessage &) { FillDiscreteFrequencyInfo(stBytes); },
    [](ByteSpan stBytes, const WiMAXMessage &) { GetVSROParam(stBytes); },
    [](ByteSpan stBytes, const WiMAXMessage &) { GetVSRWParam(stBytes); },
    [](ByteSpan stBytes, const WiMAXMessage &) { SetSFDefaultValues(stBytes); },
    [](ByteSpan stBytes, const WiMAXMessage &) { SetOmaParam(stBytes); },
    [](ByteSpan stBytes, const WiMAXMessage &) { SendOMADMGetRequest(stBytes); },
    [](ByteSpan, const WiMAXMessage &) { OMADMOutOfBoundArrayAccessTest(); },
};

void RunAside(ByteView stData) {
    const ByteView stBytes = stData.From(1);
    // A block of their own: every byte beside them is found.
    std::vector<uint8_t> aucBytes(stBytes.pucData, stBytes.pucData + stBytes.u32Length);
    WiMAXMessage stMessage{};
    PutBytes(BytesOf(stMessage), 0, stBytes);
    try {
        apfnAsides[stData.At(0) % std::size(apfnAsides)]({aucBytes.data(), stBytes.u32Length},
                                                         stMessage);
    } catch (const ClientEnd &) {
        DropPendingOutput(); // the input has ended
    }
}

void RunSteps() {
    g_hDevice = 1;
    for (const Step &stStep : Stage::Steps()) {
        if (stStep.eKind == StepKind::Message) {
            Stage::CallBack(stStep.stData);
        } else if (stStep.eKind == StepKind::Silent) {
            gbInsideSubMenu = gbInsideSubMenu == 0 ? 1 : 0;
        } else if (stStep.eKind == StepKind::Aside) {
            RunAside(stStep.stData);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    Stage::Begin({pucBytes, static_cast<uint32_t>(uCount)});
    Stage::Play(RunSteps);
    return 0;
}
