// The OMA-DM management tree, the tree update and the IMEI block: all answered
// inside the send.
#include "OMADMRecords.h"
#include "host/HostSubsystems.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/VendorRegion.h"
#include "scenario/StateFile.h"

namespace {

struct Element {
    uint32_t u32Class;
    uint32_t u32Number;
    uint32_t u32Index;
    bool operator==(const Element &) const = default;
};

using Path = std::vector<Element>;

enum class Access : uint8_t { ReadAndWrite, Read };

struct Node {
    Path astPath;
    Access eAccess;
    std::vector<uint8_t> aucValue; // of a fixed size
    bool bStationAddress = false;  // the value is the address that the station has now
};

// Built in. Arrays have one node for each element.
std::vector<Node> BuiltInNodes() {
    constexpr uint32_t u32SubscriptionElements = 8;
    constexpr uint32_t u32ChannelElements = 2;
    std::vector<Node> astNodes = {
        {{{3, 1, 0}}, Access::ReadAndWrite, std::vector<uint8_t>(32)},
        {{{8, 1, 0}, {1, 38, 0}, {1, 39, 0}}, Access::ReadAndWrite, {3, 0, 0, 0}},
        {{{7, 1, 0}, {1, 18, 0}, {1, 19, 0}},
         Access::Read,
         {0x12, 0x0A, 0x00, 0x00, 0x01, 0x10, 0x00, 0x00, 0x02, 0, 0, 0}},
        {{{7, 1, 0}, {1, 18, 0}, {1, 29, 0}, {3, 30, 0}},
         Access::Read,
         {'H', 'a', 'r', 'b', 'o', 'u', 'r', 0}},
        {{{6, 1, 0}, {1, 10, 0}, {6, 11, 0}}, Access::Read, std::vector<uint8_t>(6), true},
    };
    for (uint32_t i = 0; i < u32SubscriptionElements; ++i) {
        astNodes.push_back(
            {{{7, 1, 0}, {1, 18, 0}, {1, 19, 0}, {2, 20, 0}, {1, 22, 0}, {3, 23, i}, {1, 24, 0}},
             Access::ReadAndWrite,
             std::vector<uint8_t>(4)});
    }
    for (uint32_t i = 0; i < u32ChannelElements; ++i) {
        astNodes.push_back(
            {{{4, 1, 0}, {8, 3, i}}, Access::ReadAndWrite, {static_cast<uint8_t>(i), 1, 2, 3}});
    }
    return astNodes;
}

std::string KeyOf(const Path &astPath) {
    std::string strKey;
    for (const Element &stElement : astPath) {
        strKey += (strKey.empty() ? "" : "/") + std::to_string(stElement.u32Class) + "." +
                  std::to_string(stElement.u32Number) + "." + std::to_string(stElement.u32Index);
    }
    return strKey;
}

// Empty when the record has none or too many elements.
Path ReadPath(ByteView stPayload, uint32_t u32Offset, Field stCount) {
    Path astPath;
    const uint32_t u32Count = Get(stPayload, stCount);
    for (uint32_t i = 0; i < u32Count && u32Count <= OMADMPath::MaxElements; ++i) {
        const uint32_t u32Element = u32Offset + i * OMADMElement::Size;
        astPath.push_back({Get(stPayload, OMADMElement::u8Class, u32Element),
                           Get(stPayload, OMADMElement::u8Number, u32Element),
                           Get(stPayload, OMADMElement::u32Index, u32Element)});
    }
    return astPath;
}

class OMADMTree : public Subsystem {
  public:
    explicit OMADMTree(Modem &stModem);
    void Start() override;

  private:
    static constexpr const char *pcStateSection = "oma-dm";

    Node *Find(const Path &astPath);
    ByteView ValueOf(const Node &stNode) const;
    int32_t CheckVersion(const Request &stRequest) const;
    int32_t Set(const Request &stRequest);
    int32_t Get(const Request &stRequest);
    int32_t GetSize(const Request &stRequest);
    std::string ImageIn(const std::string &strName) const;
    int32_t UpdateTree(const Request &stRequest);
    int32_t ReadIMEI(const Request &stRequest) const;

    Modem &m_stModem;
    uint32_t m_u32Major;
    uint32_t m_u32Minor;
    std::vector<Node> m_astNodes;
};

OMADMTree::OMADMTree(Modem &stModem) : m_stModem(stModem) {
    const Section stSettings = stModem.Settings("oma-dm");
    m_u32Major = static_cast<uint32_t>(stSettings.Integer("major-version", 0, UINT32_MAX, 3));
    m_u32Minor = static_cast<uint32_t>(stSettings.Integer("minor-version", 0, UINT32_MAX, 0));
    stModem.OnAnsweredAtOnce(TYPE_OMADM, SUBTYPE_OMADM_VERSION,
                             [this](const Request &stRequest) { return CheckVersion(stRequest); });
    stModem.OnAnsweredAtOnce(TYPE_OMADM, SUBTYPE_OMADM_SET,
                             [this](const Request &stRequest) { return Set(stRequest); });
    stModem.OnAnsweredAtOnce(TYPE_OMADM, SUBTYPE_OMADM_GET,
                             [this](const Request &stRequest) { return Get(stRequest); });
    stModem.OnAnsweredAtOnce(TYPE_OMADM, SUBTYPE_OMADM_SIZE,
                             [this](const Request &stRequest) { return GetSize(stRequest); });
    stModem.OnAnsweredAtOnce(TYPE_OMADM, SUBTYPE_OMADM_TREE_UPDATE,
                             [this](const Request &stRequest) { return UpdateTree(stRequest); });
    stModem.OnAnsweredAtOnce(TYPE_SECURITY, SUBTYPE_IMEI_DATA,
                             [this](const Request &stRequest) { return ReadIMEI(stRequest); });
}

void OMADMTree::Start() {
    m_astNodes = BuiltInNodes();
    const StateFile::Values &stKept = m_stModem.TheStateFile().Kept(pcStateSection);
    for (Node &stNode : m_astNodes) {
        const auto Found = stKept.find(KeyOf(stNode.astPath));
        if (Found != stKept.end() && Found->second.size() == stNode.aucValue.size() &&
            stNode.eAccess == Access::ReadAndWrite) {
            stNode.aucValue = Found->second;
        }
    }
}

Node *OMADMTree::Find(const Path &astPath) {
    const auto Found = std::find_if(m_astNodes.begin(), m_astNodes.end(),
                                    [&](const Node &stNode) { return stNode.astPath == astPath; });
    return Found != m_astNodes.end() ? &*Found : nullptr;
}

ByteView OMADMTree::ValueOf(const Node &stNode) const {
    if (stNode.bStationAddress) {
        const StationAddress &stAddress = m_stModem.Address();
        return {stAddress.data(), static_cast<uint32_t>(stAddress.size())};
    }
    return {stNode.aucValue.data(), static_cast<uint32_t>(stNode.aucValue.size())};
}

// The application may be as old as the library's minor version allows.
int32_t OMADMTree::CheckVersion(const Request &stRequest) const {
    const uint32_t u32Major = ::Get(stRequest.stPayload, OMADMVersion::u32Major);
    const uint32_t u32Minor = ::Get(stRequest.stPayload, OMADMVersion::u32Minor);
    Put(stRequest.stReply, OMADMVersion::u32Major, m_u32Major);
    Put(stRequest.stReply, OMADMVersion::u32Minor, m_u32Minor);
    return u32Major == m_u32Major && u32Minor <= m_u32Minor ? 0 : LibraryError::WrongVersion;
}

int32_t OMADMTree::GetSize(const Request &stRequest) {
    const Node *pstNode = Find(
        ReadPath(stRequest.stPayload, OMADMSizeQuery::astPath, OMADMSizeQuery::u32NumElements));
    if (pstNode == nullptr) {
        return LibraryError::NoSuchNode;
    }
    Put(stRequest.stReply, OMADMSizeQuery::u32NodeSize, ValueOf(*pstNode).u32Length);
    return 0;
}

// A value size that the message has no room for is refused before anything is
// touched: the message's data length is 90 bytes more than the value's.
bool ClaimsTooMuch(ByteView stPayload) {
    return ::Get(stPayload, OMADMParameter::u32ValueSize) >
           stPayload.u32Length - OMADMParameter::Size;
}

int32_t OMADMTree::Get(const Request &stRequest) {
    using namespace OMADMParameter;
    const Node *pstNode =
        Find(ReadPath(stRequest.stPayload, OMADMParameter::astPath, u32NumElements));
    if (pstNode == nullptr) {
        return LibraryError::NoSuchNode;
    }
    const ByteView stValue = ValueOf(*pstNode);
    if (ClaimsTooMuch(stRequest.stPayload) ||
        ::Get(stRequest.stPayload, u32ValueSize) < stValue.u32Length) {
        return LibraryError::Overflow;
    }
    Put(stRequest.stReply, u32ValueSize, stValue.u32Length);
    PutBytes(stRequest.stReply, aucValue, stValue);
    return 0;
}

int32_t OMADMTree::Set(const Request &stRequest) {
    using namespace OMADMParameter;
    const ::Path astPath = ReadPath(stRequest.stPayload, OMADMParameter::astPath, u32NumElements);
    Node *pstNode = Find(astPath);
    if (pstNode == nullptr) {
        return LibraryError::NoSuchNode;
    }
    if (pstNode->eAccess == Access::Read) {
        return LibraryError::ReadOnly;
    }
    const uint32_t u32Size = ::Get(stRequest.stPayload, u32ValueSize);
    if (ClaimsTooMuch(stRequest.stPayload) || u32Size != pstNode->aucValue.size()) {
        return LibraryError::Overflow;
    }
    const ByteView stValue = stRequest.stPayload.From(aucValue, u32Size);
    const std::vector<uint8_t> aucValue(stValue.pucData, stValue.pucData + stValue.u32Length);
    if (!m_stModem.TheStateFile().Keep(pcStateSection, KeyOf(astPath), aucValue)) {
        return LibraryError::NotKept;
    }
    pstNode->aucValue = aucValue;
    return 0;
}

// Empty when there is none of its size, or none that can be read.
std::string OMADMTree::ImageIn(const std::string &strName) const {
    try {
        Files &stFiles = m_stModem.TheFiles();
        return stFiles.SizeOf(strName) == OMADMTreeImage::Size ? stFiles.Read(strName).value_or("")
                                                               : "";
    } catch (const ScenarioError &) {
        return "";
    }
}

// Reads the image that the host wrote. A good one takes the tree back to what it
// was built with.
int32_t OMADMTree::UpdateTree(const Request &stRequest) {
    using namespace OMADMTreeImage;
    constexpr uint32_t u32KnownVersion = 1;
    const std::string strName(TextOf(stRequest.stPayload.From(OMADMTreeUpdate::acFileName)));
    const std::string strImage = ImageIn(strName);
    const ByteView stImage{reinterpret_cast<const uint8_t *>(strImage.data()),
                           static_cast<uint32_t>(strImage.size())};
    if (stImage.u32Length != OMADMTreeImage::Size ||
        ::Get(stImage, OMADMTreeImage::u32Version) != u32KnownVersion ||
        ::Get(stImage, OMADMTreeImage::u32Length) != OMADMTreeImage::Size) {
        return LibraryError::BadFile;
    }
    for (const Node &stNode : m_astNodes) {
        m_stModem.TheStateFile().Keep(pcStateSection, KeyOf(stNode.astPath), {});
    }
    m_astNodes = BuiltInNodes();
    return 0;
}

// The IMEI as the vendor region holds it, then as digits.
int32_t OMADMTree::ReadIMEI(const Request &stRequest) const {
    const VendorRegionStore &stRegion = m_stModem.TheVendorRegion();
    const ByteView stPacked = stRegion.PackedIMEI();
    const std::string &strDigits = stRegion.IMEI();
    PutBytes(stRequest.stReply, IMEIBlock::aucData, Record<IMEIBlock::DataSize>{}.View());
    PutBytes(stRequest.stReply, IMEIBlock::aucData, stPacked);
    PutBytes(stRequest.stReply, IMEIBlock::aucData + stPacked.u32Length,
             {reinterpret_cast<const uint8_t *>(strDigits.data()),
              static_cast<uint32_t>(strDigits.size())});
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeOMADMTree(Modem &stModem) {
    return std::make_unique<OMADMTree>(stModem);
}
