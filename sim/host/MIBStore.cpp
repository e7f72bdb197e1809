#include "host/MIBStore.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "scenario/Options.h"
#include "scenario/StateFile.h"

namespace {

using namespace MIBAttribute;

enum class Access : uint8_t { Read, ReadAndWrite, Command };

// What there is between two IDs, both included: the size of a value (bytes), and
// how many values of each key there are, 0 for an attribute without that key.
struct AttributeRow {
    uint32_t u32First;
    uint32_t u32Last;
    uint32_t u32Size;
    uint32_t u32Keys1;
    uint32_t u32Keys2;
    Access eAccess;
};

constexpr AttributeRow astAttributes[] = {
    {0, 13, 2, 0, 0, Access::ReadAndWrite},
    {14, 14, 1, 0, 0, Access::ReadAndWrite},
    {15, 16, 4, 0, 0, Access::ReadAndWrite},
    {17, 19, 2, 0, 0, Access::ReadAndWrite},
    {20, 22, 1, 4, 0, Access::ReadAndWrite},
    {23, 25, 4, 4, 0, Access::ReadAndWrite},
    {26, 199, 4, 0, 0, Access::ReadAndWrite},
    {200, 299, 2, 0, 0, Access::ReadAndWrite},
    {300, 399, 1, 0, 0, Access::ReadAndWrite},
    {400, 449, 6, 0, 0, Access::ReadAndWrite},
    {450, 506, 4, 0, 0, Access::ReadAndWrite},
    {MRUReset, MRUReset, 4, 0, 0, Access::Command},
    {508, 508, 4, 0, 0, Access::ReadAndWrite},
    {CenterFrequencyAndBandwidth, CenterFrequencyAndBandwidth, MIBCenterFrequency::Size, 0, 0,
     Access::ReadAndWrite},
    {510, LastConfig, 4, 0, 0, Access::ReadAndWrite},
    {800, 803, 4, 0, 0, Access::Read},
    {WritableStatistic, WritableStatistic, 4, 0, 0, Access::ReadAndWrite},
    {805, 892, 4, 0, 0, Access::Read},
    {893, 932, 4, 16, 0, Access::Read},
    {933, 1099, 4, 0, 0, Access::Read},
    {1100, 1122, 4, 16, 0, Access::Read},
    {1123, 1139, 4, 16, 4, Access::Read},
    {1140, 1141, 4, 16, 0, Access::Read},
    {1142, 1142, 4, 16, 4, Access::Read},
    {1143, 1614, 4, 0, 0, Access::Read},
    {1615, 1616, 4, 10, 0, Access::Read},
    {1617, 1699, 4, 0, 0, Access::Read},
};

// From this ID on hosts may send a key for an attribute that has none.
constexpr uint32_t u32FirstWithSpareKey = 1617;

// What the attributes hold before anybody writes them, from 0 on; the others 0.
constexpr uint32_t au32Defaults[] = {200,   400,  16, 16, 3, 20000, 200, 40,  200, 20000, 200, 30,
                                     20000, 2000, 16, 1,  1, 1000,  100, 100, 1,   0,     1};

const AttributeRow *RowOf(uint32_t u32AttributeID) {
    const auto *pstRow = std::find_if(
        std::begin(astAttributes), std::end(astAttributes), [&](const AttributeRow &stRow) {
            return u32AttributeID >= stRow.u32First && u32AttributeID <= stRow.u32Last;
        });
    return pstRow != std::end(astAttributes) ? pstRow : nullptr;
}

// Keys that nobody stated are 0, and count: the first line of the table.
bool KeysFit(const AttributeRow &stRow, ByteView stRecord) {
    const uint32_t u32Keys = (stRow.u32Keys1 != 0 ? 1 : 0) + (stRow.u32Keys2 != 0 ? 1 : 0);
    if (u32Keys == 0 && stRow.u32First >= u32FirstWithSpareKey) {
        return true;
    }
    const auto Fits = [](uint32_t u32Key, uint32_t u32Values) {
        return u32Key < std::max(u32Values, 1U);
    };
    return Get(stRecord, MIBRecord::u8KeyCount) <= u32Keys &&
           Fits(Get(stRecord, MIBRecord::u32Key1), stRow.u32Keys1) &&
           Fits(Get(stRecord, MIBRecord::u32Key2), stRow.u32Keys2);
}

std::array<uint32_t, 3> PlaceOf(const AttributeRow &stRow, ByteView stRecord) {
    return {Get(stRecord, MIBRecord::u32AttributeID),
            stRow.u32Keys1 != 0 ? Get(stRecord, MIBRecord::u32Key1) : 0,
            stRow.u32Keys2 != 0 ? Get(stRecord, MIBRecord::u32Key2) : 0};
}

std::string NameOf(const std::array<uint32_t, 3> &u32Place) {
    return std::to_string(u32Place[0]) + "." + std::to_string(u32Place[1]) + "." +
           std::to_string(u32Place[2]);
}

} // namespace

MIBStore::MIBStore(Modem &stModem) : m_stModem(stModem) {
    m_bSupported = stModem.Settings("mib").Flag("supported", true);
    for (const Section &stSection : stModem.Root().Tables("attribute")) {
        const auto u32ID = static_cast<uint32_t>(stSection.Integer("id", 0, 1699));
        const AttributeRow &stRow = *RowOf(u32ID);
        const auto ReadKey = [&](const char *pcKey, uint32_t u32Values) {
            return static_cast<uint32_t>(
                stSection.Integer(pcKey, 0, std::max(u32Values, 1U) - 1, 0));
        };
        const Place u32Place{u32ID, ReadKey("key", stRow.u32Keys1),
                             ReadKey("second-key", stRow.u32Keys2)};
        const Bytes aucValue = stSection.Bytes("value", WIMAX_DATA_SIZE - MIBRecord::Size);
        const bool bSizeFits =
            stRow.eAccess == Access::Read ? !aucValue.empty() : aucValue.size() == stRow.u32Size;
        if (!bSizeFits) {
            stSection.Refuse("value", stRow.eAccess == Access::Read
                                          ? "is missing"
                                          : "must be " + std::to_string(stRow.u32Size) + " bytes");
        }
        m_astFromScenario[u32Place] = aucValue;
    }

    struct Kind {
        uint32_t u32SubType;
        int32_t (MIBStore::*pfnHandle)(const Request &);
    };
    // Short records of a set are refused record by record.
    for (const Kind &stKind : {Kind{SUBTYPE_MIB_GET, &MIBStore::GetOne},
                               Kind{SUBTYPE_MULTIPLE_MIB_SET, &MIBStore::SetSeveral},
                               Kind{SUBTYPE_MULTIPLE_MIB_GET, &MIBStore::GetSeveral}}) {
        stModem.On(TYPE_MIB, stKind.u32SubType, [this, stKind](const Request &stRequest) {
            return m_bSupported ? (this->*stKind.pfnHandle)(stRequest) : LibraryError::NoMIBSupport;
        });
    }
    // A set states four value bytes in a message that ends behind the first one: the
    // value is taken from the sender's buffer.
    stModem.OnAnsweredAtOnce(TYPE_MIB, SUBTYPE_MIB_SET, [this](const Request &stRequest) {
        return m_bSupported ? SetOne(stRequest) : LibraryError::NoMIBSupport;
    });
}

void MIBStore::Start() {
    m_astValues.clear();
    for (const auto &[strName, aucValue] : m_stModem.TheStateFile().Kept(pcStateSection)) {
        Place u32Place{};
        size_t uBegin = 0;
        for (uint32_t &u32Number : u32Place) {
            u32Number = static_cast<uint32_t>(std::strtoul(strName.c_str() + uBegin, nullptr, 10));
            uBegin = std::min(strName.find('.', uBegin), strName.size() - 1) + 1;
        }
        const AttributeRow *pstRow = RowOf(u32Place[0]);
        if (pstRow != nullptr && aucValue.size() == pstRow->u32Size) {
            m_astValues[u32Place] = aucValue;
        }
    }
}

void MIBStore::Provide(uint32_t u32AttributeID, Reader pfnRead) {
    m_apfnReaders[u32AttributeID] = std::move(pfnRead);
}

void MIBStore::OnWrite(uint32_t u32AttributeID, Writer pfnWrite) {
    m_apfnWriters[u32AttributeID] = std::move(pfnWrite);
}

MIBStore::Bytes MIBStore::ValueAt(const Place &u32Place, uint32_t u32Size) const {
    for (const auto *pstValues : {&m_astValues, &m_astFromScenario}) {
        const auto Found = pstValues->find(u32Place);
        if (Found != pstValues->end()) {
            return Found->second;
        }
    }
    const auto Live = m_apfnReaders.find(u32Place[0]);
    if (Live != m_apfnReaders.end()) {
        return Live->second();
    }
    Bytes aucValue(u32Size);
    const ByteSpan stValue{aucValue.data(), u32Size};
    if (u32Place[0] < std::size(au32Defaults)) {
        for (uint32_t i = 0; i < u32Size; ++i) {
            stValue.Set(i, static_cast<uint8_t>(au32Defaults[u32Place[0]] >> (8 * i)));
        }
    } else if (u32Place[0] > LastConfig && u32Place[0] != WritableStatistic) {
        // One of many counters of the traffic, each with a share of its own.
        const TrafficTotals stTotals = m_stModem.UserTraffic().Totals();
        const uint64_t u64Packets = stTotals.stDownlink.u64Packets + stTotals.stUplink.u64Packets;
        const uint64_t u64Share = Random(u32Place[0], NameOf(u32Place)).Below(256);
        Put(stValue, Field{0, FieldType::U32}, static_cast<uint32_t>(u64Packets * u64Share / 256));
    }
    return aucValue;
}

MIBStore::Bytes MIBStore::ValueOf(uint32_t u32AttributeID) const {
    return ValueAt({u32AttributeID, 0, 0}, RowOf(u32AttributeID)->u32Size);
}

MIBStore::Outcome MIBStore::Read(ByteView stRecord) const {
    const AttributeRow *pstRow = RowOf(Get(stRecord, MIBRecord::u32AttributeID));
    if (pstRow == nullptr) {
        return {MIBStatus::UnknownAttribute, {}};
    }
    if (!KeysFit(*pstRow, stRecord)) {
        return {MIBStatus::WrongKey, {}};
    }
    const Place u32Place = PlaceOf(*pstRow, stRecord);
    Bytes aucValue = ValueAt(u32Place, pstRow->u32Size);
    if (u32Place[0] == MRUTable && aucValue.empty()) {
        return {LibraryError::MRUTableEmpty, {}};
    }
    return {MIBStatus::Success, std::move(aucValue)};
}

bool MIBStore::Writable(uint32_t u32AttributeID) const {
    const uint32_t u32Open = m_stModem.TheOptions().Value(Options::WritableMIBs);
    switch (u32AttributeID) {
    case ZoneBursts:
    case ZoneStatistics:
        return (u32Open & 1) != 0;
    case PerAttemptReceived:
    case PerAttemptCompleted:
        return (u32Open & 2) != 0;
    default:
        return RowOf(u32AttributeID)->eAccess != Access::Read;
    }
}

int32_t MIBStore::Write(ByteView stRecord, ByteView stValue) {
    const uint32_t u32ID = Get(stRecord, MIBRecord::u32AttributeID);
    const AttributeRow *pstRow = RowOf(u32ID);
    if (pstRow == nullptr) {
        return MIBStatus::UnknownAttribute;
    }
    if (!Writable(u32ID)) {
        return MIBStatus::ReadOnly;
    }
    if (!KeysFit(*pstRow, stRecord)) {
        return MIBStatus::WrongKey;
    }
    const auto Found = m_apfnWriters.find(u32ID);
    if (Found != m_apfnWriters.end()) {
        Found->second(stValue);
        return MIBStatus::Success;
    }
    if (stValue.u32Length != pstRow->u32Size) {
        return MIBStatus::WrongSize;
    }
    const Place u32Place = PlaceOf(*pstRow, stRecord);
    const Bytes aucValue(stValue.pucData, stValue.pucData + stValue.u32Length);
    if (m_stModem.TheOptions().Value(Options::EEPROMWritesOff) == 0 &&
        !m_stModem.TheStateFile().Keep(pcStateSection, NameOf(u32Place), aucValue)) {
        return MIBStatus::NotKept;
    }
    m_astValues[u32Place] = aucValue;
    return MIBStatus::Success;
}

MIBStore::Bytes MIBStore::AnswerTo(ByteView stRecord, const Outcome &stOutcome) {
    const auto u32Length = static_cast<uint32_t>(stOutcome.aucValue.size());
    Bytes aucAnswer(std::max(MIBRecord::Size, MIBRecord::aucValue + u32Length));
    const ByteSpan stAnswer{aucAnswer.data(), static_cast<uint32_t>(aucAnswer.size())};
    PutBytes(stAnswer, 0, stRecord.From(0, MIBRecord::u32DataLength.u16Offset));
    Put(stAnswer, MIBRecord::u32DataLength, u32Length);
    Put(stAnswer, MIBRecord::s8Status, static_cast<uint32_t>(stOutcome.iStatus));
    PutBytes(stAnswer, MIBRecord::aucValue, {stOutcome.aucValue.data(), u32Length});
    return aucAnswer;
}

int32_t MIBStore::GetOne(const Request &stRequest) {
    const Outcome stOutcome = Read(stRequest.stPayload);
    if (stOutcome.iStatus == LibraryError::MRUTableEmpty) {
        return LibraryError::MRUTableEmpty;
    }
    if (Get(stRequest.stPayload, MIBRecord::u32AttributeID) == ActiveSFIDs) {
        // Hosts look at their table of flows as soon as the send has returned.
        m_stModem.HoldSender();
    }
    const Bytes aucAnswer = AnswerTo(stRequest.stPayload, stOutcome);
    m_stModem.Tell(TYPE_MIB, SUBTYPE_MIB_GET,
                   {aucAnswer.data(), static_cast<uint32_t>(aucAnswer.size())});
    return 0;
}

int32_t MIBStore::SetOne(const Request &stRequest) {
    const ByteView stRecord = stRequest.stPayload;
    const uint32_t u32Stated = Get(stRecord, MIBRecord::u32DataLength);
    // Six bytes come without their number.
    const uint32_t u32Length = u32Stated != 0 ? u32Stated : stRecord.u32Length - MIBRecord::Size;
    const ByteView stBuffer = stRequest.stReply;
    const Outcome stOutcome{Write(stRecord, stBuffer.From(MIBRecord::aucValue, u32Length)), {}};
    const Bytes aucAnswer = AnswerTo(stRecord, stOutcome);
    m_stModem.Tell(TYPE_MIB, SUBTYPE_MIB_SET,
                   {aucAnswer.data(), static_cast<uint32_t>(aucAnswer.size())});
    return 0;
}

int32_t MIBStore::GetSeveral(const Request &stRequest) {
    const ByteView stPayload = stRequest.stPayload;
    const uint32_t u32Count = Get(stPayload, MIBRecordList::u16Count);
    if (stPayload.u32Length != MIBRecordList::astRecords + u32Count * MIBRecord::Size) {
        return LibraryError::BadLength;
    }
    std::vector<Bytes> aaucRecords;
    for (uint32_t i = 0; i < u32Count; ++i) {
        const ByteView stRecord =
            stPayload.From(MIBRecordList::astRecords + i * MIBRecord::Size, MIBRecord::Size);
        aaucRecords.push_back(AnswerTo(stRecord, Read(stRecord)));
    }
    TellList(SUBTYPE_MULTIPLE_MIB_GET, aaucRecords);
    return 0;
}

int32_t MIBStore::SetSeveral(const Request &stRequest) {
    ByteView stRest = stRequest.stPayload.From(MIBRecordList::astRecords);
    const uint32_t u32Count = Get(stRequest.stPayload, MIBRecordList::u16Count);
    std::vector<Bytes> aaucRecords;
    // A record that breaks off is the last one.
    while (aaucRecords.size() < u32Count && stRest.u32Length >= MIBRecord::aucValue) {
        const uint32_t u32Length = Get(stRest, MIBRecord::u32DataLength);
        const ByteView stValue = stRest.From(MIBRecord::aucValue, u32Length);
        const int32_t iStatus =
            stValue.u32Length == u32Length ? Write(stRest, stValue) : MIBStatus::WrongSize;
        aaucRecords.push_back(AnswerTo(stRest, {iStatus, {}}));
        stRest = stRest.From(MIBRecord::aucValue).From(stValue.u32Length);
    }
    if (aaucRecords.size() < u32Count && aaucRecords.empty()) {
        return LibraryError::BadLength;
    }
    TellList(SUBTYPE_MULTIPLE_MIB_SET, aaucRecords);
    return 0;
}

// In as many messages as it takes.
void MIBStore::TellList(uint32_t u32SubType, const std::vector<Bytes> &aaucRecords) {
    Bytes aucMessage(MIBRecordList::astRecords);
    uint32_t u32Count = 0;
    const auto TellMessage = [&] {
        const auto u32Length = static_cast<uint32_t>(aucMessage.size());
        Put({aucMessage.data(), u32Length}, MIBRecordList::u16Count, u32Count);
        m_stModem.Tell(TYPE_MIB, u32SubType, {aucMessage.data(), u32Length});
        aucMessage.resize(MIBRecordList::astRecords);
        u32Count = 0;
    };
    for (const Bytes &aucRecord : aaucRecords) {
        if (aucMessage.size() + aucRecord.size() > WIMAX_DATA_SIZE) {
            TellMessage();
        }
        aucMessage.insert(aucMessage.end(), aucRecord.begin(), aucRecord.end());
        ++u32Count;
    }
    TellMessage();
}
