#include "Difference.h"

#include <algorithm>

#include "Catalogue.h"

namespace {

struct CallName {
    EventKind eKind;
    const char *pcName;
};

constexpr CallName astCallNames[] = {
    {EventKind::Open, "OpenWiMAXDevice"},  {EventKind::Register, "RegisterCallback"},
    {EventKind::Send, "SendWiMAXMessage"}, {EventKind::ReadMemory, "rdm"},
    {EventKind::WriteMemory, "wrm"},       {EventKind::Close, "CloseWiMAXDevice"},
};

std::string Hexadecimal(uint32_t u32Value, uint32_t u32Digits) {
    std::string strText(u32Digits, '0');
    for (uint32_t i = 0; i < u32Digits; ++i) {
        strText[u32Digits - 1 - i] = "0123456789abcdef"[u32Value >> (4 * i) & 0xF];
    }
    return strText;
}

// Four or more equal bytes in a row are shortened: `00*12`.
std::string BytesText(ByteView stBytes) {
    constexpr uint32_t u32ShortestRun = 4;
    std::string strText;
    for (uint32_t u32At = 0; u32At < stBytes.u32Length;) {
        const uint8_t u8Byte = stBytes.At(u32At);
        uint32_t u32Run = 1;
        while (u32At + u32Run < stBytes.u32Length && stBytes.At(u32At + u32Run) == u8Byte) {
            ++u32Run;
        }
        const bool bShort = u32Run >= u32ShortestRun;
        strText += " " + Hexadecimal(u8Byte, 2);
        if (bShort) {
            strText += "*" + std::to_string(u32Run);
        }
        u32At += bShort ? u32Run : 1;
    }
    return strText;
}

std::string MessageText(ByteView stMessage) {
    if (stMessage.u32Length < MessageHeader::Size) {
        return stMessage.u32Length == 0 ? "" : " |" + BytesText(stMessage);
    }
    const ByteView stPayload = stMessage.From(MessageHeader::Size);
    return " " + std::to_string(Get(stMessage, MessageHeader::usType)) + "/" +
           std::to_string(Get(stMessage, MessageHeader::usSubType)) +
           (stPayload.u32Length == 0 ? "" : " |" + BytesText(stPayload));
}

// What stands at a byte of a request: a field by the name that filters give it, too, or just the
// byte.
std::string PlaceInRequest(ByteView stMessage, uint32_t u32Offset) {
    if (u32Offset < MessageHeader::Size) {
        return "type and subtype";
    }
    const uint32_t u32Place = u32Offset - MessageHeader::Size;
    std::string strPlace = "byte " + std::to_string(u32Place) + " of the payload";
    const MessageRow *pstMessage =
        FindSent(Get(stMessage, MessageHeader::usType), Get(stMessage, MessageHeader::usSubType));
    if (pstMessage != nullptr) {
        WalkMessage(
            *pstMessage, stMessage.From(MessageHeader::Size), [&](const FoundField &stFound) {
                if (stFound.eWhat == Found::Field && !IsReserved(*stFound.pstRow) &&
                    u32Place - stFound.u32Offset < stFound.stBytes.u32Length) {
                    strPlace = FilterNameOf(*pstMessage, stFound.astPath, *stFound.pstRow).View();
                }
            });
    }
    return strPlace;
}

} // namespace

std::string CallText(const Event &stCall, ByteView stBytes) {
    const auto *pstName =
        std::find_if(std::begin(astCallNames), std::end(astCallNames),
                     [&](const CallName &stName) { return stName.eKind == stCall.eKind; });
    std::string strText = pstName != std::end(astCallNames) ? pstName->pcName : "?";
    const std::string strNull = (stCall.u16Flags & EventFlag::Null) != 0 ? " null" : "";
    const std::string strLength = " " + std::to_string(stCall.u32Length);
    switch (stCall.eKind) {
    case EventKind::Register:
        return strText + " " + std::to_string(stCall.u32Handle) + strNull + " " +
               std::to_string(stCall.u32Word);
    case EventKind::Send:
        return strText + " " + std::to_string(stCall.u32Handle) + strLength + strNull +
               MessageText(stBytes);
    case EventKind::ReadMemory:
    case EventKind::WriteMemory:
        return strText + " 0x" + Hexadecimal(stCall.u32Word, 8) + strLength + strNull +
               (stBytes.u32Length == 0 ? "" : " |" + BytesText(stBytes));
    default:
        return strText;
    }
}

std::string FirstDifference(const Event &stRecorded, ByteView stRecordedBytes, const Event &stNow,
                            ByteView stNowBytes) {
    const uint32_t u32Shorter = std::min(stRecordedBytes.u32Length, stNowBytes.u32Length);
    const uint8_t *pucPlace =
        std::mismatch(stRecordedBytes.pucData, stRecordedBytes.pucData + u32Shorter,
                      stNowBytes.pucData)
            .first;
    const auto u32Place = static_cast<uint32_t>(pucPlace - stRecordedBytes.pucData);
    if (((stRecorded.u16Flags ^ stNow.u16Flags) & EventFlag::Null) != 0) {
        return "the null pointer";
    }
    if (stRecorded.u32Handle != stNow.u32Handle) {
        return "the handle";
    }
    if (stRecorded.u32Word != stNow.u32Word) {
        return stNow.eKind == EventKind::Register ? "the context" : "the address";
    }
    if (u32Place != u32Shorter) {
        return stNow.eKind == EventKind::Send ? PlaceInRequest(stNowBytes, u32Place)
                                              : "byte " + std::to_string(u32Place);
    }
    return stRecorded.u32Length != stNow.u32Length ||
                   stRecordedBytes.u32Length != stNowBytes.u32Length
               ? "the length"
               : "";
}
