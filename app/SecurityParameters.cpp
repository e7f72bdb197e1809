#include "SecurityParameters.h"

#include <algorithm>

#include "Console.h"
#include "Input.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

namespace {

constexpr int32_t iMaxValues = 10240; // numbers read for one value

constexpr const char *apcIDLines[] = {
    "\nEnter the Security Parameter ID ",
    "\n[",
    "\n  Security Parameters (0 - 10)",
    "\n]",
};

constexpr const char *pcIDAgain = "\nEnter the Security Parameter ID : ";
constexpr const char *pcDataPrompt = "\nEnter the data : ";

// Reads the ID that was asked for; a number that is none is asked for again
// with pcPromptAgain.
uint32_t ReadParameterID(const char *pcPromptAgain) {
    uint32_t u32ID = AskUnsigned("");
    while (u32ID > SecurityRecord::LastParameter) {
        u32ID = AskUnsigned(pcPromptAgain);
    }
    return u32ID;
}

uint32_t AskParameterID() {
    PutTexts(apcIDLines);
    return ReadParameterID(pcIDAgain);
}

// A value of any number of bytes but 2 and 4: one number for each byte.
void AskValueBytes(ByteSpan stRecord, uint32_t u32Bytes) {
    PutText(pcDataPrompt);
    const int32_t iValues = std::min(static_cast<int32_t>(u32Bytes), iMaxValues);
    for (int32_t i = 0; i < iValues; ++i) {
        stRecord.Set(SecurityRecord::aucValue + static_cast<uint32_t>(i),
                     static_cast<uint8_t>(AskInteger("")));
    }
}

void PutParameterValue(ByteView stRecord) {
    using namespace SecurityRecord;
    const uint32_t u32DataLength = Get(stRecord, SecurityRecord::u32DataLength);
    PutEachByte(" 0x%02x", stRecord.From(aucValue, u32DataLength));
    if (u32DataLength == WidthOf(u32LongValue.eType)) {
        PutRow(stRecord, {" UINT eq : %d", u32LongValue});
    }
    PutText("\n");
}

// Prints the answer; returns false when it ends without the closing line.
bool PutAnswer(uint32_t u32SubType, ByteView stRecord) {
    using namespace SecurityRecord;
    constexpr const char *pcHeading = "\nGet Response received"; // of a set answer too
    switch (u32SubType) {
    case SUBTYPE_SECURITY_SET:
        PutText(pcHeading);
        if (Get(stRecord, s8Status) != 0) {
            PutRow(stRecord, {" Error Code while Security Parameter Set: (%d) \n", s8Status});
        } else {
            PutText("\nSecurity Parmater Set is Successful !!!");
        }
        return true;
    case SUBTYPE_SECURITY_GET:
        PutText(pcHeading);
        PutRow(stRecord, {"\n Security OID - %d : ", u32ParameterID});
        if (GetSigned(stRecord, s8Status) < 0) {
            PutRow(stRecord, {" ERROR RECEIVED : [%d]", s8Status});
            return false;
        }
        PutParameterValue(stRecord);
        return true;
    case SUBTYPE_SECURITY_SIZE:
        PutRow(stRecord, {"\n Security Param ID - [%d], Size : [%d]\n", u32ParameterID});
        return true;
    default:
        return true;
    }
}

} // namespace

int32_t SecGetRequest() {
    Record<SecurityRecord::Size> stRecord;
    Put(stRecord.Span(), SecurityRecord::u32ParameterID, AskParameterID());
    const int32_t iResult = SendSecGetRequest(stRecord.View());
    if (iResult < 0) {
        PutFormat("\nError Received as: [%d]\n", iResult);
    }
    return 0;
}

int32_t SecSetRequest() {
    using namespace SecurityRecord;
    PutText("\nSecurity Parameters : (0 - 10)\nEnter the Security Parameter ID : ");
    const uint32_t u32ID = ReadParameterID(""); // asks again without a word
    const uint32_t u32Bytes = AskInteger("\nEnter the number of data bytes : ");
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_SECURITY, SUBTYPE_SECURITY_SET, u32Bytes + Size);
    const ByteSpan stRecord = PayloadOf(stMessage);
    Put(stRecord, u32ParameterID, u32ID);
    Put(stRecord, u32DataLength, u32Bytes);
    switch (u32Bytes) {
    case WidthOf(u32LongValue.eType):
        Put(stRecord, u32LongValue, AskInteger(pcDataPrompt));
        break;
    case WidthOf(u16ShortValue.eType):
        Put(stRecord, u16ShortValue, AskInteger(pcDataPrompt));
        break;
    default:
        AskValueBytes(stRecord, u32Bytes);
        break;
    }
    return SendMessage(&stMessage, u32Length);
}

int32_t SecGetParamSize() {
    Record<SecuritySizeRequest::Size> stRequest;
    Put(stRequest.Span(), SecuritySizeRequest::u32ParameterID, AskParameterID());
    return SendRequest(TYPE_SECURITY, SUBTYPE_SECURITY_SIZE, stRequest.View());
}

int32_t SendSecGetRequest(ByteView stRecord) {
    return SendRequest(TYPE_SECURITY, SUBTYPE_SECURITY_GET, stRecord.From(0, SecurityRecord::Size));
}

uint32_t ProcessSecResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 1;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~~~~~~~~~~ Security RESPONSE RECEIVED ~~~~~~~~~~~~~~~");
    if (PutAnswer(stReceived.u32SubType, stReceived.stPayload)) {
        PutLine("\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
    }
    return 1;
}
