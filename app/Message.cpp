#include "Message.h"

#include <algorithm>

#include "Console.h"

std::atomic<uint32_t> g_hDevice{WIMAX_NO_DEVICE};
std::atomic<uint8_t> gbInsideSubMenu{0};

uint32_t FillWiMAXMsg(WiMAXMessage *pstMessage, uint32_t u32Type, uint32_t u32SubType,
                      uint32_t u32PayloadLength) {
    if (pstMessage == nullptr) {
        return UINT32_MAX;
    }
    *pstMessage = {};
    Put(BytesOf(*pstMessage), MessageHeader::usType, u32Type);
    Put(BytesOf(*pstMessage), MessageHeader::usSubType, u32SubType);
    gbInsideSubMenu = 0;
    return (u32PayloadLength & 0xFFFF) + MessageHeader::Size;
}

int32_t SendMessage(WiMAXMessage *pstMessage, uint32_t u32Length) {
    FlushOutput();
    return SendWiMAXMessage(g_hDevice, pstMessage,
                            std::min<uint32_t>(u32Length, sizeof *pstMessage));
}

int32_t SendRequest(uint32_t u32Type, uint32_t u32SubType, ByteView stPayload) {
    WiMAXMessage stMessage;
    return SendForAnswer(&stMessage, u32Type, u32SubType, stPayload);
}

int32_t SendForAnswer(WiMAXMessage *pstMessage, uint32_t u32Type, uint32_t u32SubType,
                      ByteView stPayload) {
    const uint32_t u32Length = FillWiMAXMsg(pstMessage, u32Type, u32SubType, stPayload.u32Length);
    PutBytes(PayloadOf(*pstMessage), 0, stPayload);
    return SendMessage(pstMessage, u32Length);
}
