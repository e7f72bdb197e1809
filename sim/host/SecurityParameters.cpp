// The eleven security parameters: what the subscriber proves itself with.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "SecurityRecords.h"
#include "host/HostSubsystems.h"
#include "link/Link.h"
#include "scenario/StateFile.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Statuses of answers.
enum Status : int32_t {
    Success = 0,
    UnknownParameter = -1,
    WrongSize = -2,
    ReadOnly = -3,
    WriteOnly = -4,
    OutOfRange = -5,
    InUse = -6,   // while the modem authenticates with it
    NotKept = -7, // the state file cannot be written
};

enum class ParameterAccess : uint8_t { ReadAndWrite, Read, Write };

// A parameter: how many bytes its value may have, and for numbers the most.
struct ParameterRow {
    uint32_t u32Least;
    uint32_t u32Most;
    ParameterAccess eAccess;
    uint32_t u32MostValue;
    const char *pcDefault; // text, or null for a number, 0, of u32Least bytes
};

constexpr uint32_t u32AnyValue = UINT32_MAX;

constexpr std::array<ParameterRow, SecurityRecord::LastParameter + 1> astParameters{{
    {4, 4, ParameterAccess::ReadAndWrite, 7, nullptr},           // authentication methods, bits
    {2, 2, ParameterAccess::ReadAndWrite, u32AnyValue, nullptr}, // seconds to wait for an answer
    {1, 1, ParameterAccess::ReadAndWrite, 1, nullptr},           // check the network's certificate
    {0, 128, ParameterAccess::ReadAndWrite, u32AnyValue, "modem"},   // outer identity
    {0, 128, ParameterAccess::ReadAndWrite, u32AnyValue, "example"}, // realm
    {0, 128, ParameterAccess::ReadAndWrite, u32AnyValue, "modem"},   // inner identity
    {0, 128, ParameterAccess::Write, u32AnyValue, ""},               // password
    {16, 16, ParameterAccess::Write, u32AnyValue, nullptr},          // shared key
    {4, 4, ParameterAccess::ReadAndWrite, 604800, nullptr},          // lifetime of keys, seconds
    {2, 2, ParameterAccess::ReadAndWrite, 16, nullptr},    // attempts before the modem gives up
    {20, 20, ParameterAccess::Read, u32AnyValue, nullptr}, // fingerprint of its certificate
}};

constexpr uint32_t u32Fingerprint = 10;
// More than one message could carry back is no value.
constexpr size_t uLongestValue = 128;

class SecurityParameters : public Subsystem {
  public:
    explicit SecurityParameters(Modem &stModem);
    void Start() override;

  private:
    static constexpr const char *pcStateSection = "security";

    int32_t Set(const Request &stRequest);
    int32_t Get(const Request &stRequest);
    int32_t GetSize(const Request &stRequest);
    Status Write(uint32_t u32ID, ByteView stValue);
    void Answer(uint32_t u32SubType, uint32_t u32ID, Status eStatus, uint32_t u32Length,
                const Bytes &aucValue = {});

    Modem &m_stModem;
    std::array<Bytes, astParameters.size()> m_aaucFromScenario;
    std::array<Bytes, astParameters.size()> m_aaucValues;
};

SecurityParameters::SecurityParameters(Modem &stModem) : m_stModem(stModem) {
    for (uint32_t u32ID = 0; u32ID < astParameters.size(); ++u32ID) {
        const ParameterRow &stRow = astParameters[u32ID];
        Bytes &aucValue = m_aaucFromScenario[u32ID];
        if (stRow.pcDefault != nullptr) {
            const std::string strDefault = stRow.pcDefault;
            aucValue.assign(strDefault.begin(), strDefault.end());
        } else {
            aucValue.resize(stRow.u32Least);
        }
    }
    Random stRandom = stModem.RandomFor("security parameters");
    std::generate(m_aaucFromScenario[u32Fingerprint].begin(),
                  m_aaucFromScenario[u32Fingerprint].end(),
                  [&] { return static_cast<uint8_t>(stRandom.Next()); });
    for (const Section &stSection : stModem.Root().Tables("security-parameter")) {
        const int64_t iID = stSection.Integer("id", 0, SecurityRecord::LastParameter);
        const ParameterRow &stRow = astParameters[static_cast<size_t>(iID)];
        const Bytes aucValue = stSection.Bytes("value", uLongestValue);
        if (aucValue.size() < stRow.u32Least || aucValue.size() > stRow.u32Most) {
            stSection.Refuse("value", "must be " + std::to_string(stRow.u32Least) + " to " +
                                          std::to_string(stRow.u32Most) + " bytes");
        }
        m_aaucFromScenario[static_cast<size_t>(iID)] = aucValue;
    }
    stModem.On(TYPE_SECURITY, SUBTYPE_SECURITY_SET,
               [this](const Request &stRequest) { return Set(stRequest); });
    stModem.On(TYPE_SECURITY, SUBTYPE_SECURITY_GET,
               [this](const Request &stRequest) { return Get(stRequest); });
    stModem.On(TYPE_SECURITY, SUBTYPE_SECURITY_SIZE,
               [this](const Request &stRequest) { return GetSize(stRequest); });
}

void SecurityParameters::Start() {
    m_aaucValues = m_aaucFromScenario;
    const StateFile::Values &stKept = m_stModem.TheStateFile().Kept(pcStateSection);
    for (uint32_t u32ID = 0; u32ID < astParameters.size(); ++u32ID) {
        const auto Found = stKept.find(std::to_string(u32ID));
        const ParameterRow &stRow = astParameters[u32ID];
        // Behind its length, so that an empty value is kept too.
        if (Found != stKept.end() && Found->second[0] + size_t{1} == Found->second.size() &&
            Found->second[0] >= stRow.u32Least && Found->second[0] <= stRow.u32Most) {
            m_aaucValues[u32ID].assign(Found->second.begin() + 1, Found->second.end());
        }
    }
}

Status SecurityParameters::Write(uint32_t u32ID, ByteView stValue) {
    const ParameterRow &stRow = astParameters[u32ID];
    if (stRow.eAccess == ParameterAccess::Read) {
        return ReadOnly;
    }
    if (stValue.u32Length < stRow.u32Least || stValue.u32Length > stRow.u32Most) {
        return WrongSize;
    }
    if (stRow.u32MostValue != u32AnyValue &&
        ::Get(stValue, Field{0, FieldType::U32}) > stRow.u32MostValue) {
        return OutOfRange;
    }
    if (m_stModem.TheLink().State() == LinkState::Entering) {
        return InUse;
    }
    const Bytes aucValue(stValue.pucData, stValue.pucData + stValue.u32Length);
    Bytes aucKept(1 + aucValue.size());
    aucKept[0] = static_cast<uint8_t>(aucValue.size());
    std::copy(aucValue.begin(), aucValue.end(), aucKept.begin() + 1);
    if (!m_stModem.TheStateFile().Keep(pcStateSection, std::to_string(u32ID), aucKept)) {
        return NotKept;
    }
    m_aaucValues[u32ID] = aucValue;
    return Success;
}

int32_t SecurityParameters::Set(const Request &stRequest) {
    const uint32_t u32ID = ::Get(stRequest.stPayload, SecurityRecord::u32ParameterID);
    const uint32_t u32Length = ::Get(stRequest.stPayload, SecurityRecord::u32DataLength);
    const ByteView stValue = stRequest.stPayload.From(SecurityRecord::aucValue, u32Length);
    Status eStatus = WrongSize;
    if (u32ID > SecurityRecord::LastParameter) {
        eStatus = UnknownParameter;
    } else if (stValue.u32Length == u32Length) {
        eStatus = Write(u32ID, stValue);
    }
    Answer(SUBTYPE_SECURITY_SET, u32ID, eStatus, 0);
    return 0;
}

int32_t SecurityParameters::Get(const Request &stRequest) {
    const uint32_t u32ID = ::Get(stRequest.stPayload, SecurityRecord::u32ParameterID);
    if (u32ID > SecurityRecord::LastParameter) {
        Answer(SUBTYPE_SECURITY_GET, u32ID, UnknownParameter, 0);
    } else if (astParameters[u32ID].eAccess == ParameterAccess::Write) {
        Answer(SUBTYPE_SECURITY_GET, u32ID, WriteOnly, 0);
    } else {
        const Bytes &aucValue = m_aaucValues[u32ID];
        Answer(SUBTYPE_SECURITY_GET, u32ID, Success, static_cast<uint32_t>(aucValue.size()),
               aucValue);
    }
    return 0;
}

int32_t SecurityParameters::GetSize(const Request &stRequest) {
    const uint32_t u32ID = ::Get(stRequest.stPayload, SecuritySizeRequest::u32ParameterID);
    if (u32ID > SecurityRecord::LastParameter) {
        Answer(SUBTYPE_SECURITY_SIZE, u32ID, UnknownParameter, 0);
    } else {
        Answer(SUBTYPE_SECURITY_SIZE, u32ID, Success,
               static_cast<uint32_t>(m_aaucValues[u32ID].size()));
    }
    return 0;
}

// A record with its one value byte at least.
void SecurityParameters::Answer(uint32_t u32SubType, uint32_t u32ID, Status eStatus,
                                uint32_t u32Length, const Bytes &aucValue) {
    Record<SecurityRecord::aucValue + uLongestValue> stAnswer;
    const auto u32ValueLength = static_cast<uint32_t>(aucValue.size());
    Put(stAnswer.Span(), SecurityRecord::u32ParameterID, u32ID);
    Put(stAnswer.Span(), SecurityRecord::u32DataLength, u32Length);
    Put(stAnswer.Span(), SecurityRecord::s8Status, static_cast<uint32_t>(eStatus));
    PutBytes(stAnswer.Span(), SecurityRecord::aucValue, {aucValue.data(), u32ValueLength});
    m_stModem.Tell(TYPE_SECURITY, u32SubType,
                   stAnswer.View().From(0, std::max(SecurityRecord::Size,
                                                    SecurityRecord::aucValue + u32ValueLength)));
}

} // namespace

std::unique_ptr<Subsystem> MakeSecurityParameters(Modem &stModem) {
    return std::make_unique<SecurityParameters>(stModem);
}
