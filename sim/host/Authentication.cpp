// EAP and authentication: the parameters in the device, EAP transfers and the
// encryption service.
#include "AuthenticationRecords.h"
#include "host/HostSubsystems.h"

#include <algorithm>
#include <vector>

#include "host/VendorRegion.h"
#include "scenario/StateFile.h"

namespace {

constexpr uint8_t u8Acknowledged = 1;

// RFC 3748: a packet that asks for the identity.
constexpr uint8_t u8EAPRequest = 1;
constexpr uint8_t u8EAPResponse = 2;
constexpr uint8_t u8EAPIdentity = 1;
constexpr uint32_t u32EAPHeadSize = 5; // code, identifier, length, type

// Blocks of the two ways to encrypt.
constexpr uint32_t u32AESBlock = 16;
constexpr uint32_t u32RSABlock = 128;
constexpr uint32_t u32RSAOverhead = 11; // PKCS#1: at least so many bytes of a block

class Authentication : public Subsystem {
  public:
    explicit Authentication(Modem &stModem);
    void Start() override;

  private:
    static constexpr const char *pcStateSection = "authentication";
    static constexpr const char *pcStateKey = "eap-aka";

    int32_t TellStatus();
    int32_t ReadParameters(const Request &stRequest);
    int32_t WriteParameters(const Request &stRequest);
    int32_t Transfer(const Request &stRequest);
    int32_t Complete(const Request &stRequest);
    int32_t Encrypt(const Request &stRequest);
    void TellParameters(uint32_t u32Method, uint32_t u32RequestType);
    void Tell(uint32_t u32SubType, ByteView stPayload);

    Modem &m_stModem;
    bool m_bAnswersWithinSend;
    std::vector<uint8_t> m_aucAKAAtStart; // the whole indication of EAP-AKA
    std::vector<uint8_t> m_aucAKA;
    uint8_t m_u8NextIdentifier = 1;
    uint32_t m_u32Status = 0; // 0 nothing, 1 EAP is going on, 2 it is complete
};

Authentication::Authentication(Modem &stModem)
    : m_stModem(stModem),
      m_bAnswersWithinSend(stModem.Settings("authentication").Flag("answers-within-send", false)),
      m_aucAKAAtStart(AuthParamIndication::Size) {
    Random stRandom = stModem.RandomFor("authentication parameters");
    std::generate(m_aucAKAAtStart.begin() + AuthParamIndication::aucWNID, m_aucAKAAtStart.end(),
                  [&] { return static_cast<uint8_t>(stRandom.Next()); });
    const auto On = [&](uint32_t u32SubType,
                        int32_t (Authentication::*pfnHandle)(const Request &)) {
        stModem.On(TYPE_AUTHENTICATION, u32SubType, [this, pfnHandle](const Request &stRequest) {
            return (this->*pfnHandle)(stRequest);
        });
    };
    stModem.On(TYPE_AUTHENTICATION, SUBTYPE_AUTH_STATUS,
               [this](const Request & /*stRequest*/) { return TellStatus(); });
    On(SUBTYPE_AUTH_PARAM_READ, &Authentication::ReadParameters);
    On(SUBTYPE_AUTH_PARAM_WRITE, &Authentication::WriteParameters);
    On(SUBTYPE_EAP_TRANSFER, &Authentication::Transfer);
    On(SUBTYPE_EAP_COMPLETE, &Authentication::Complete);
    On(SUBTYPE_ENCRYPTION_TEST, &Authentication::Encrypt);
}

void Authentication::Start() {
    m_aucAKA = m_aucAKAAtStart;
    m_u32Status = 0;
    const StateFile::Values &stKept = m_stModem.TheStateFile().Kept(pcStateSection);
    const auto Found = stKept.find(pcStateKey);
    if (Found != stKept.end() && Found->second.size() == AuthParamWrite::DataSize) {
        std::copy(Found->second.begin(), Found->second.end(),
                  m_aucAKA.begin() + AuthParamIndication::aucPseudonym);
    }
}

// A sender that the scenario lets wait has its answer when the send returns.
void Authentication::Tell(uint32_t u32SubType, ByteView stPayload) {
    m_stModem.Tell(TYPE_AUTHENTICATION, u32SubType, stPayload);
    if (m_bAnswersWithinSend) {
        m_stModem.HoldSender();
    }
}

int32_t Authentication::TellStatus() {
    Record<4> stAnswer;
    Put(stAnswer.Span(), Field{0, FieldType::U32}, m_u32Status);
    Tell(SUBTYPE_AUTH_STATUS_RESP, stAnswer.View());
    return 0;
}

void Authentication::TellParameters(uint32_t u32Method, uint32_t u32RequestType) {
    using namespace AuthParamIndication;
    Record<Size> stAnswer;
    uint32_t u32Size = Size;
    if (u32Method == AuthMethod::EAPAKA) {
        PutBytes(stAnswer.Span(), 0, {m_aucAKA.data(), Size});
    } else {
        u32Size = aucIMEI + IMEISize;
        PutBytes(stAnswer.Span(), aucIMEI, m_stModem.TheVendorRegion().PackedIMEI());
    }
    Put(stAnswer.Span(), u8Method, u32Method);
    stAnswer.Span().Set(u8RequestType, static_cast<uint8_t>(u32RequestType));
    stAnswer.Span().Set(u8Acknowledgement, u8Acknowledged);
    Tell(SUBTYPE_AUTH_PARAM_IND, stAnswer.View().From(0, u32Size));
}

int32_t Authentication::ReadParameters(const Request &stRequest) {
    const uint32_t u32Method = Get(stRequest.stPayload, AuthParamRead::u8Method);
    if (u32Method != AuthMethod::EAPAKA && u32Method != AuthMethod::EAPSIM) {
        return LibraryError::BadValue;
    }
    TellParameters(u32Method, SUBTYPE_AUTH_PARAM_READ);
    return 0;
}

// Only what the request carries is written: the pseudonym and the SQN-MS block,
// which lie side by side in the indication too.
int32_t Authentication::WriteParameters(const Request &stRequest) {
    using namespace AuthParamWrite;
    const ByteView stData = stRequest.stPayload.From(aucData, DataSize);
    if (Get(stRequest.stPayload, u8Method) != AuthMethod::EAPAKA ||
        Get(stRequest.stPayload, u8DataLength) != DataSize ||
        !m_stModem.TheStateFile().Keep(pcStateSection, pcStateKey,
                                       {stData.pucData, stData.pucData + stData.u32Length})) {
        return LibraryError::BadValue;
    }
    PutBytes({m_aucAKA.data(), AuthParamIndication::Size}, AuthParamIndication::aucPseudonym,
             stData);
    return 0;
}

// An empty transfer starts EAP: the modem asks for the identity. A response is
// answered with the next request, as an authenticator would go on.
int32_t Authentication::Transfer(const Request &stRequest) {
    const uint32_t u32Length = Get(stRequest.stPayload, EAPTransfer::u16Length);
    const ByteView stPacket = stRequest.stPayload.From(EAPTransfer::aucData, u32Length);
    if (stPacket.u32Length != u32Length) {
        return LibraryError::BadValue;
    }
    if (u32Length != 0 && stPacket.At(0) != u8EAPResponse) {
        return LibraryError::BadValue;
    }
    m_u32Status = 1;
    Record<EAPTransfer::aucData + u32EAPHeadSize> stAnswer;
    Put(stAnswer.Span(), EAPTransfer::u16Length, u32EAPHeadSize);
    const uint8_t aucRequest[u32EAPHeadSize] = {u8EAPRequest, m_u8NextIdentifier++, 0,
                                                u32EAPHeadSize, u8EAPIdentity};
    PutBytes(stAnswer.Span(), EAPTransfer::aucData, {aucRequest, u32EAPHeadSize});
    Tell(SUBTYPE_EAP_TRANSFER_IND, stAnswer.View());
    return 0;
}

int32_t Authentication::Complete(const Request &stRequest) {
    if (Get(stRequest.stPayload, EAPComplete::u16KeyLength) != EAPComplete::KeySize) {
        return LibraryError::BadValue;
    }
    m_u32Status = 2;
    return TellStatus();
}

// The result is as long as the real one would be; its bytes follow from the key
// and the data. One more byte of the same kind stands behind it.
int32_t Authentication::Encrypt(const Request &stRequest) {
    using namespace EncryptionTest;
    const uint32_t u32Length = Get(stRequest.stPayload, u32DataLength);
    const uint32_t u32Padding = Get(stRequest.stPayload, EncryptionTest::u32Padding);
    if (u32Length > MaxDataSize || u32Padding > PaddingPKCS1) {
        return LibraryError::BadValue;
    }
    const uint32_t u32Block =
        u32Padding == PaddingPKCS1 ? u32RSABlock - u32RSAOverhead : u32AESBlock;
    const uint32_t u32Blocks = std::max((u32Length + u32Block - 1) / u32Block, 1U);
    const uint32_t u32Result = u32Blocks * (u32Padding == PaddingPKCS1 ? u32RSABlock : u32AESBlock);
    if (u32Result >= MaxDataSize) {
        return LibraryError::BadValue;
    }
    uint64_t u64Seed = u32Length;
    for (uint32_t i = u8AESkey; i < stRequest.stPayload.u32Length; ++i) {
        u64Seed = (u64Seed ^ stRequest.stPayload.At(i)) * 0x100000001B3; // FNV-1a
    }
    Random stRandom(u64Seed, "encryption");
    std::vector<uint8_t> aucAnswer(u8Data + u32Result + 1);
    std::generate(aucAnswer.begin() + u8Data, aucAnswer.end(),
                  [&] { return static_cast<uint8_t>(stRandom.Next()); });
    const ByteSpan stAnswer{aucAnswer.data(), static_cast<uint32_t>(aucAnswer.size())};
    Put(stAnswer, u32DataLength, u32Result);
    Put(stAnswer, EncryptionTest::u32Padding, u32Padding);
    Tell(SUBTYPE_ENCRYPTION_RESULT_RESP, stAnswer);
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeAuthentication(Modem &stModem) {
    return std::make_unique<Authentication>(stModem);
}
