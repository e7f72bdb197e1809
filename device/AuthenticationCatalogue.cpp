#include "AuthenticationRecords.h"
#include "Layouts.h"

namespace {

constexpr CodeRow astMethods[] = {CODE(AuthMethod, EAPAKA), CODE(AuthMethod, EAPSIM)};

constexpr FieldRow astAuthParamRead[] = {
    FIELD(AuthParamRead, u8Method, "method: 0 EAP-AKA, 1 EAP-SIM", .astCodes = astMethods),
};

constexpr FieldRow astAuthParamWrite[] = {
    FIELD(AuthParamWrite, u8Method, "method: 0 EAP-AKA", .astCodes = astMethods),
    FIELD(AuthParamWrite, u8DataLength, "length of the two that follow: 215"),
    RESERVED(2, 1),
    FIELD(AuthParamWrite, aucPseudonym, "pseudonym identifier", .u16Count = u32PseudonymSize,
          .eShown = Shown::Bytes, .eGuard = Guard::Identity),
    FIELD(AuthParamWrite, aucSQNMS, "SQN-MS block", .u16Count = u32SQNMSSize,
          .eShown = Shown::Bytes, .eGuard = Guard::Secret),
    RESERVED(AuthParamWrite::aucTail, AuthParamWrite::TailSize),
};

// The parameters lie behind the head; the records give their place in the payload.
constexpr uint32_t u32Parameters = 5;
constexpr FieldRow Parameter(FieldRow stRow) {
    stRow.stField.u16Offset = static_cast<uint16_t>(stRow.stField.u16Offset - u32Parameters);
    return stRow;
}

constexpr FieldRow astAKAParameters[] = {
    Parameter(FIELD(AuthParamIndication, aucWNID, "WNID", .u16Count = AuthParamIndication::KeySize,
                    .eShown = Shown::Bytes, .eGuard = Guard::Identity)),
    Parameter(FIELD(AuthParamIndication, aucKID, "K ID", .u16Count = AuthParamIndication::KeySize,
                    .eShown = Shown::Bytes, .eGuard = Guard::Secret)),
    Parameter(FIELD(AuthParamIndication, aucOPc, "OPc", .u16Count = AuthParamIndication::KeySize,
                    .eShown = Shown::Bytes, .eGuard = Guard::Secret)),
    Parameter(FIELD(AuthParamIndication, aucNonK, "NonK", .u16Count = AuthParamIndication::KeySize,
                    .eShown = Shown::Bytes, .eGuard = Guard::Secret)),
    Parameter(FIELD(AuthParamIndication, aucNonOPc, "NonOPc",
                    .u16Count = AuthParamIndication::KeySize, .eShown = Shown::Bytes,
                    .eGuard = Guard::Secret)),
    Parameter(FIELD(AuthParamIndication, aucConstants, "C1 to C5 and R1 to R5",
                    .u16Count = AuthParamIndication::ConstantsSize, .eShown = Shown::Bytes,
                    .eGuard = Guard::Secret)),
    Parameter(FIELD(AuthParamIndication, aucPseudonym, "pseudonym identifier",
                    .u16Count = u32PseudonymSize, .eShown = Shown::Bytes,
                    .eGuard = Guard::Identity)),
    Parameter(FIELD(AuthParamIndication, aucSQNMS, "SQN-MS", .u16Count = u32SQNMSSize,
                    .eShown = Shown::Bytes, .eGuard = Guard::Secret)),
};
constexpr Layout stAKAParameters = {"EAPAKA", astAKAParameters,
                                    AuthParamIndication::Size - u32Parameters};

constexpr FieldRow astSIMParameters[] = {
    Parameter(FIELD(AuthParamIndication, aucIMEI, "IMEI", .u16Count = AuthParamIndication::IMEISize,
                    .eShown = Shown::Bytes, .eGuard = Guard::Identity)),
};
constexpr Layout stSIMParameters = {"EAPSIM", astSIMParameters, AuthParamIndication::IMEISize};

constexpr CaseRow astParameters[] = {
    {AuthMethod::EAPAKA, &stAKAParameters},
    {AuthMethod::EAPSIM, &stSIMParameters},
};

constexpr FieldRow astAuthParamIndication[] = {
    FIELD(AuthParamIndication, u8Method,
          "method: 0 EAP-AKA, 1 EAP-SIM; of any other only the next two bytes are shown",
          .astCodes = astMethods),
    FIELD(AuthParamIndication, u8RequestType, "request type"),
    FIELD(AuthParamIndication, u8Acknowledgement, "acknowledgement"),
    RESERVED(3, 2),
    NAMED("aucParameters", u32Parameters, "parameters of the method", .u16Count = 0,
          .eShown = Shown::Bytes, .eGuard = Guard::Identity, .astCases = astParameters,
          .stSelector = AuthParamIndication::u8Method),
};

constexpr FieldRow astEAPTransfer[] = {
    FIELD(EAPTransfer, u16Length, "length of the data; 0 in the client's requests"),
    FIELD(EAPTransfer, aucData, "EAP data", .u16Count = 0, .stCounter = EAPTransfer::u16Length,
          .eShown = Shown::Bytes, .eGuard = Guard::Identity),
};

constexpr FieldRow astEAPComplete[] = {
    RESERVED(0, 1),
    FIELD(EAPComplete, u16KeyLength, "length of the key material: 64"),
    FIELD(EAPComplete, aucKey, "key material without its last three bytes",
          .u16Count = EAPComplete::Size - EAPComplete::aucKey, .eShown = Shown::Bytes,
          .eGuard = Guard::Secret),
};

constexpr CodeRow astPaddings[] = {
    CODE(EncryptionTest, NoPadding),
    CODE(EncryptionTest, PaddingPKCS1),
};

constexpr FieldRow astEncryptionTest[] = {
    FIELD(EncryptionTest, u32DataLength, "length of the data"),
    FIELD(EncryptionTest, u32Padding, "padding: 0 none, 1 PKCS#1", .astCodes = astPaddings),
    NAMED("aucAESKey", EncryptionTest::u8AESkey,
          "AES key, zeroes behind the bytes typed (test only)",
          .u16Count = EncryptionTest::MaxKeySize, .eShown = Shown::Bytes, .eGuard = Guard::Secret),
    NAMED("aucData", EncryptionTest::u8Data, "the data", .u16Count = 0,
          .stCounter = EncryptionTest::u32DataLength, .eShown = Shown::Bytes,
          .eGuard = Guard::Secret),
};

constexpr FieldRow astAuthStatus[] = {
    NAMED("aucStatus", 0U, "status, not read", .u16Count = 0, .eShown = Shown::Value),
};

} // namespace

constexpr Layout stAuthStatus = {"AuthStatus", astAuthStatus, 0};
constexpr Layout stAuthParamRead = LAYOUT(AuthParamRead, astAuthParamRead);
constexpr Layout stAuthParamWrite = LAYOUT(AuthParamWrite, astAuthParamWrite);
constexpr Layout stAuthParamIndication = {"AuthParamIndication", astAuthParamIndication,
                                          u32Parameters};
constexpr Layout stEAPTransfer = {"EAPTransfer", astEAPTransfer, EAPTransfer::EmptySize};
constexpr Layout stEAPComplete = LAYOUT(EAPComplete, astEAPComplete);
constexpr Layout stEncryptionTest = {"EncryptionTest", astEncryptionTest, EncryptionTest::u8Data};
