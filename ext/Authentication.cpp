#include "Authentication.h"

#include <algorithm>
#include <string_view>

#include "Console.h"
#include "Input.h"
#include "Logging.h"
#include "Menu.h"
#include "Message.h"
#include "Report.h"

SharedBytes<u32PseudonymSize> gaucRespSEC_SNYMID_ID;
SharedBytes<u32SQNMSSize> gaucRespSEC_SQNMS_ID;

namespace {

constexpr const char *apcEAPLines[] = {
    "\n 1. AUTH EAP TRANSFER REQUEST",
    "\n 2. AUTH EAP COMPLETE REQUEST",
    "\n 3. Test Encrypt Message digest",
};

constexpr Menu stEAPMenu = {"\n********* EAP REQ MENU *********", apcEAPLines,
                            "\n\n******************************"};

constexpr const char *apcAuthLines[] = {
    "\n 1. AUTH STATUS REQUEST",
    "\n 2. AUTH EAP-AKA READ REQ MESSAGE",
    "\n 3. AUTH EAP_AKA WRITE REQ MESSAGE",
    "\n 4. AUTH EAP_SIM READ REQ MESSAGE",
    "\n 5. AUTH EAP_SIM WRITE REQ MESSAGE",
};

constexpr Menu stAuthMenu = {"\n****** AUTHENTICATION REQ MENU ******", apcAuthLines,
                             "\n\n******************************************"};

constexpr const char *pcClosing = "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";

// A test value: no network knows these keys.
constexpr uint8_t aucKeyMaterial[EAPComplete::KeySize] = {
    0x51, 0x07, 0xc4, 0x9a, 0x2e, 0xf8, 0x63, 0xbd, 0x10, 0xd5, 0x7f, 0x48, 0xa1, 0x36, 0xec, 0x0b,
    0x94, 0x6a, 0x23, 0xdf, 0x58, 0x81, 0x1c, 0xe7, 0x3d, 0xb2, 0x75, 0x0e, 0xc9, 0x46, 0xfa, 0x67,
    0x18, 0xad, 0xd0, 0x5b, 0x82, 0x39, 0xf4, 0x6f, 0x05, 0xce, 0x91, 0x2a, 0x7c, 0xb7, 0xe3, 0x40,
    0x9d, 0x16, 0x54, 0xcb, 0x68, 0xf1, 0x3a, 0x87, 0xde, 0x02, 0x79, 0xa5, 0x4c, 0xe0, 0x1f, 0xb6,
};

struct DumpedField {
    std::string_view strTitle;
    uint32_t u32Offset;
    uint32_t u32Size;
};

constexpr DumpedField astIndicationHead[] = {
    {"AUTH REQUEST TYPE", AuthParamIndication::u8RequestType, 1},
    {"AUTH ACK/NAK", AuthParamIndication::u8Acknowledgement, 1},
};

constexpr DumpedField astEAPAKAFields[] = {
    {"WNID", AuthParamIndication::aucWNID, AuthParamIndication::KeySize},
    {"K ID", AuthParamIndication::aucKID, AuthParamIndication::KeySize},
    {"OPc", AuthParamIndication::aucOPc, AuthParamIndication::KeySize},
    {"NonK", AuthParamIndication::aucNonK, AuthParamIndication::KeySize},
    {"NonOPc", AuthParamIndication::aucNonOPc, AuthParamIndication::KeySize},
    {"C1_5_R1_5", AuthParamIndication::aucConstants, AuthParamIndication::ConstantsSize},
    {"PseudonymID", AuthParamIndication::aucPseudonym, u32PseudonymSize},
    {"SQNMS", AuthParamIndication::aucSQNMS, u32SQNMSSize},
};

constexpr DumpedField astEAPSIMFields[] = {
    {"AUTH_INFO_IMEI", AuthParamIndication::aucIMEI, AuthParamIndication::IMEISize},
};

uint32_t SendToAuthenticator(uint32_t u32SubType, ByteView stPayload = {}) {
    return LowByte(SendRequest(TYPE_AUTHENTICATION, u32SubType, stPayload));
}

uint32_t SendEAPTransfer() {
    const Record<EAPTransfer::EmptySize> stEmpty;
    return SendToAuthenticator(SUBTYPE_EAP_TRANSFER, stEmpty.View());
}

uint32_t SendEAPComplete() {
    using namespace EAPComplete;
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_AUTHENTICATION, SUBTYPE_EAP_COMPLETE, Size);
    const ByteSpan stPayload = PayloadOf(stMessage);
    Put(stPayload, u16KeyLength, GetCompleteRequestData(stPayload.From(aucKey)));
    return LowByte(SendMessage(&stMessage, u32Length));
}

// Asks until the answer, taken as unsigned, is u32Most or less.
uint32_t AskLengthUpTo(uint32_t u32Most, const char *pcPrompt, const char *pcPromptAgain) {
    uint32_t u32Value = AskUnsigned(pcPrompt);
    while (u32Value > u32Most) {
        u32Value = AskUnsigned(pcPromptAgain);
    }
    return u32Value;
}

// Asks for each byte; the prompt has its number, counted from u32First.
void AskBytes(ByteSpan stBytes, const TextWith<1> &stPrompt, uint32_t u32First) {
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        PutNumber(stPrompt, u32First + i);
        stBytes.Set(i, static_cast<uint8_t>(ReadOption()));
    }
}

uint32_t TestEncryption() {
    using namespace EncryptionTest;
    WiMAXMessage stMessage;
    const uint32_t u32Length =
        FillWiMAXMsg(&stMessage, TYPE_AUTHENTICATION, SUBTYPE_ENCRYPTION_TEST, RequestSize);
    const ByteSpan stPayload = PayloadOf(stMessage);
    PutText("\nPadding algorithm to be used:");
    Put(stPayload, u32Padding,
        AskLengthUpTo(
            PaddingPKCS1,
            "\n0 - Indicates no padding. \n1 - Indicates padding based on PKCS1. \nEnter 0 or 1:",
            "\nEnter either 0 or 1"));
    const uint32_t u32KeySize =
        AskLengthUpTo(MaxKeySize, "\nNumber of AES symmetric keys you want to enter (0-32) : ",
                      "\nRange of number is 0 to 32");
    PutText("\nEnter array elements of symmetric key");
    AskBytes(stPayload.From(u8AESkey, u32KeySize),
             "\nEnter array elements of symmetric key u8AESkey[%d] : ", 0);
    const uint32_t u32DataLength =
        std::min(AskUnsigned("\nEnter Data length to be encrypted : "), MaxDataSize);
    Put(stPayload, EncryptionTest::u32DataLength, u32DataLength);
    AskBytes(stPayload.From(u8Data, u32DataLength),
             "\nEnter data to be encrypted u8Data[%d] : ", 1);
    return LowByte(SendMessage(&stMessage, u32Length));
}

uint32_t ReadParameters(uint32_t u32Method) {
    Record<AuthParamRead::Size> stRequest;
    Put(stRequest.Span(), AuthParamRead::u8Method, u32Method);
    return SendToAuthenticator(SUBTYPE_AUTH_PARAM_READ, stRequest.View());
}

// Every data byte holds its own index.
uint32_t WriteTestPattern() {
    using namespace AuthParamWrite;
    Record<Size> stRequest;
    Put(stRequest.Span(), u8DataLength, DataSize);
    for (uint32_t i = 0; i < DataSize; ++i) {
        stRequest.aucBytes[aucData + i] = static_cast<uint8_t>(i);
    }
    return SendToAuthenticator(SUBTYPE_AUTH_PARAM_WRITE, stRequest.View());
}

void DumpFields(ByteView stPayload, std::span<const DumpedField> astFields) {
    for (const DumpedField &stField : astFields) {
        DebugDump(stField.strTitle, stPayload.From(stField.u32Offset, stField.u32Size));
    }
}

// The bytes of a table that an indication fills.
template <uint32_t u32Size>
void Keep(SharedBytes<u32Size> &stTable, ByteView stPayload, uint32_t u32Offset) {
    stTable.Store(stPayload.From(u32Offset, u32Size));
}

void PutParameterIndication(ByteView stPayload) {
    using namespace AuthParamIndication;
    PutText("\nAUTH PARAM INDICATION MESSAGE RECEIVED.");
    DumpFields(stPayload, astIndicationHead);
    switch (Get(stPayload, u8Method)) {
    case AuthMethod::EAPAKA:
        PutText("\nAUTH METHOD TYPE : AUTH_METHOD_EAP_AKA\n");
        DumpFields(stPayload, astEAPAKAFields);
        Keep(gaucRespSEC_SQNMS_ID, stPayload, aucSQNMS);
        Keep(gaucRespSEC_SNYMID_ID, stPayload, aucPseudonym);
        PutText("\n");
        break;
    case AuthMethod::EAPSIM:
        PutText("\nAUTH METHOD TYPE : AUTH_METHOD_EAP_SIM\n");
        DumpFields(stPayload, astEAPSIMFields);
        break;
    default:
        break;
    }
}

void PutTransferIndication(ByteView stPayload) {
    PutText("\nAUTH EAP TRANSFER INDICATION RECEIVED.");
    DebugDump("AUTH TRANSFER INDICATION BUFFER",
              stPayload.From(EAPTransfer::aucData, Get(stPayload, EAPTransfer::u16Length)));
}

void PutEncryptionResult(ByteView stPayload) {
    using namespace EncryptionTest;
    PutText("\nEAP ENCRYPT PRIVATE RESPONSE RECEIVED");
    PutRow(stPayload, {"\nPadding algorithm used u32Padding = %d ", u32Padding});
    PutLine("\nEncrypted data ");
    // Only the byte behind the encrypted data is shown.
    PutNumber("%d \t", stPayload.From(u8Data).At(Get(stPayload, u32DataLength)));
}

} // namespace

uint32_t GetCompleteRequestData(ByteSpan stBuffer) {
    PutBytes(stBuffer, 0, {aucKeyMaterial, sizeof aucKeyMaterial});
    return sizeof aucKeyMaterial;
}

uint32_t EAPRequests() {
    switch (AskMenu(stEAPMenu)) {
    case 1:
        return SendEAPTransfer();
    case 2:
        return SendEAPComplete();
    case 3:
        return TestEncryption();
    default:
        PutText("\n Invalid choice");
        return 0;
    }
}

uint32_t AuthRequest() {
    switch (AskMenu(stAuthMenu)) {
    case 1:
        return SendToAuthenticator(SUBTYPE_AUTH_STATUS);
    case 2:
        return ReadParameters(AuthMethod::EAPAKA);
    case 3:
        return WriteTestPattern();
    case 4:
        return ReadParameters(AuthMethod::EAPSIM);
    case 5:
        PutLine("\nSorry!!Currently service is UNAVAILABLE!!");
        return 1;
    default:
        return 1;
    }
}

uint32_t EAPResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~ EAP RESPONSE MESSAGE ~~~~~~");
    switch (stReceived.u32SubType) {
    case SUBTYPE_EAP_TRANSFER_IND:
        PutTransferIndication(stReceived.stPayload);
        break;
    case SUBTYPE_ENCRYPTION_RESULT_RESP:
        PutEncryptionResult(stReceived.stPayload);
        break;
    default:
        break;
    }
    AuthenticationResponse(pstMessage);
    PutLine(pcClosing);
    return 0;
}

uint32_t AuthenticationResponse(const WiMAXMessage *pstMessage) {
    if (pstMessage == nullptr) {
        return 0;
    }
    const Received stReceived = View(pstMessage);
    PutLine("\n~~~~~~ AUTHENTICATION RESPONSE MESSAGE ~~~~~~");
    switch (stReceived.u32SubType) {
    case SUBTYPE_AUTH_STATUS_RESP:
        PutText("\nAUTH STATUS RESPONSE MESSAGE RECEIVED.");
        break;
    case SUBTYPE_AUTH_PARAM_IND:
        PutParameterIndication(stReceived.stPayload);
        break;
    default:
        break;
    }
    PutLine(pcClosing);
    return 0;
}
