#include "VendorSpecificParameters.h"

#include <algorithm>

#include "Console.h"
#include "Input.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

SharedBytes<VendorRegion::ATRLock.u16Size> gaucRespATRLock;

namespace {

constexpr const char *apcVendorSpecificParametersMenuLines[] = {
    "\n 1. VSA READ REQUEST",
    "\n 2. VSA WRITE REQUEST",
    "\n 3. VSA Size REQUEST",
};

constexpr Menu stVendorSpecificParametersMenu = {
    "\n*********** VENDOR SPECIFIC PARAM ***********", apcVendorSpecificParametersMenuLines,
    "\n\n*********************************************"};

constexpr const char *pcClosingRule =
    "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

int32_t AskEntry(ByteSpan stHead, const Banner &stBanner, std::string_view strEntry,
                 const VendorEntry &stEntry) {
    if (stHead.pucData == nullptr) {
        return 0;
    }
    PutLine(stBanner.strText);
    PutText(strEntry);
    PutClosingLine(stBanner);
    if (AskOption(pcMenuPrompt) != 1) {
        PutText("SORRY!! INVALID OPTION SELECTED!!");
        return -1;
    }
    Put(stHead, VendorParameter::u16Offset, stEntry.u16Offset);
    Put(stHead, VendorParameter::u16DataSize, stEntry.u16Size);
    return 0;
}

ByteView DataOf(ByteView stRecord) {
    return stRecord.From(VendorParameter::aucData, Get(stRecord, VendorParameter::u16DataSize));
}

// Keeps the ATR lock when the bytes read begin at it or before it and reach it.
void KeepATRLock(ByteView stRecord) {
    const uint32_t u32Lock = VendorRegion::ATRLock.u16Offset;
    const uint32_t u32First = Get(stRecord, VendorParameter::u16Offset);
    if (u32First <= u32Lock) {
        gaucRespATRLock.Store(DataOf(stRecord).From(u32Lock - u32First));
    }
}

void PutIndication(std::string_view strBanner, ByteView stRecord) {
    PutLine(strBanner);
    DisplayVendorSpecificParamData(stRecord);
    PutLine(pcClosingRule);
}

} // namespace

int32_t SendVendorSpecificParamRequest(ByteSpan stRecord, uint32_t u32SubType) {
    using namespace VendorParameter;
    if (u32SubType == SUBTYPE_VSA_SIZE) {
        return SendRequest(TYPE_VENDOR_SPECIFIC, u32SubType);
    }
    const bool bWrite = u32SubType == SUBTYPE_VSA_WRITE;
    Put(stRecord, u16Offset, AskUnsigned("Enter the VSA offset : "));
    const uint32_t u32Typed =
        static_cast<uint16_t>(AskUnsigned(bWrite ? "Enter the Size of VSA Data to Write : "
                                                 : "Enter the Size of VSA Data to be Read : "));
    const uint32_t u32Size = std::min({u32Typed, stRecord.From(Size).u32Length, MaxDataSize});
    Put(stRecord, u16DataSize, u32Size);
    for (uint32_t i = 0; bWrite && i < u32Typed; ++i) {
        const auto u8Byte = static_cast<uint8_t>(ReadOption());
        if (i < u32Size) {
            stRecord.Set(aucData + i, u8Byte);
        }
    }
    return SendRequest(TYPE_VENDOR_SPECIFIC, u32SubType,
                       ByteView(stRecord).From(0, Size + u32Size));
}

int32_t SendVSAReadRequest() {
    Record<WIMAX_DATA_SIZE> stScratch;
    return SendVendorSpecificParamRequest(stScratch.Span(), SUBTYPE_VSA_READ);
}

int32_t SendVSAWriteRequest() {
    Record<WIMAX_MESSAGE_SIZE> stScratch;
    return SendVendorSpecificParamRequest(stScratch.Span(), SUBTYPE_VSA_WRITE);
}

int32_t SendVSASizeRequest() { return SendVendorSpecificParamRequest({}, SUBTYPE_VSA_SIZE); }

int32_t VendorSpecificParamRequest() {
    int32_t iResult = 0;
    switch (AskMenu(stVendorSpecificParametersMenu)) {
    case 1:
        iResult = SendVSAReadRequest();
        break;
    case 2:
        iResult = SendVSAWriteRequest();
        break;
    case 3:
        iResult = SendVSASizeRequest();
        break;
    default:
        PutText("\nSORRY! INVALID OPTION SELECTED!");
        break;
    }
    if (iResult < 0) {
        PutFormat("\nRECEIVED ERROR : %d\n", iResult);
    }
    return 0;
}

int32_t GetVSROParam(ByteSpan stHead) {
    return AskEntry(stHead, "\n************* VSRO PARAM *************", "\n 1. IMEI",
                    VendorRegion::IMEI);
}

int32_t GetVSRWParam(ByteSpan stHead) {
    return AskEntry(stHead, "\n*********** VSRW PARAM ***********", "\n 1. ATR-LOCK",
                    VendorRegion::ATRLock);
}

void DisplayVendorSpecificParamData(ByteView stRecord) {
    using namespace VendorParameter;
    if (Get(stRecord, u16DataSize) == 0) {
        return;
    }
    PutRow(stRecord, {"\n Data (%d bytes) :\n", u16DataSize});
    PutEachByte(" 0x%02X", DataOf(stRecord));
    PutText("\n");
}

uint32_t DisplayVendorSpecificParamInfo(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    if (stReceived.u32Type != TYPE_VENDOR_SPECIFIC) {
        PutText("\nINVALID MESSAGE TYPE!");
        return 0;
    }
    const ByteView stPayload = stReceived.stPayload;
    switch (stReceived.u32SubType) {
    case SUBTYPE_VSA_READ:
        KeepATRLock(stPayload);
        PutIndication("\n~~~~~~~~~~~~~~ VSRO READ INDICATION RECEIVED ~~~~~~~~~~~~~~", stPayload);
        break;
    case SUBTYPE_VSA_WRITE:
        PutIndication("\n~~~~~~ VSRW WRITE INDICATION RECEIVED ~~~~~~", stPayload);
        break;
    case SUBTYPE_VSA_SIZE:
        PutLine("\n~~~~~~ VSRegion SIZE INDICATION RECEIVED ~~~~~~");
        PutRow(stPayload, {"\nVendor Specific Region Size : %d\n", VendorRegionSize::u32Bytes});
        PutLine(pcClosingRule);
        break;
    default:
        break;
    }
    return 1;
}
