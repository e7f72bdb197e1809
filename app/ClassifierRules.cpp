#include "ClassifierRules.h"

#include "Console.h"
#include "Input.h"
#include "Report.h"

namespace {

using namespace ClassifierRule;

// Bytes that a packet is matched with: entered as a length and so many bytes.
struct MatchGroup {
    const char *pcQuestion;
    const char *pcLength;
    TextWith<1> stElement;
    uint32_t u32MostBytes;
    Field stLength;
    Field stBytes;
};

// A MAC address takes no more, although twelve bytes are offered and have room.
constexpr uint32_t u32MostMacBytes = 4;

constexpr MatchGroup astMatchGroups[] = {
    {"\nWould you like to enter  IP masked source address (1-Yes and 0-No)",
     "\nPlz enter length of IP masked source address <32 that you would like to enter",
     "\nPlz enter the %d element of the IP Masked source address", IPMaskedAddrSize,
     u8IPMaskedSrcAddrLength, au8IPMaskedSrcAddr},
    {"\nWould you like to enter  IP Masked Destination Address (1-Yes and 0-No)",
     "\nPlz enter length of IP Masked Destination Address <32 that you would like to enter",
     "Plz enter the %d element of the Masked Destination Address \n", IPMaskedAddrSize,
     u8IPMaskedDestAddrLength, au8IPMaskedDestAddr},
    {"\nWould you like to enter  Protocol Source Port Range (1-Yes and 0-No)",
     "\nPlz enter length of Protocol Source Port Range <4 that you would like to enter",
     "\nPlz enter the %d element of the Protocol Source Port Range", PortRangeSize,
     u8SrcPortRangeLength, au8SrcPortRange},
    {"\nWould you like to enter  Protocol Dest Port Range (1-Yes and 0-No)",
     "\nPlz enter length of Protocol Dest Port Range <4 that you would like to enter",
     "\nPlz enter the %d element of the Protocol Dest Port Range", PortRangeSize,
     u8DestPortRangeLength, au8DestPortRange},
    {"\nWould you like to enter  Ethernet Source MAC Address (1-Yes and 0-No)",
     "\nPlz enter length of Ethernet Source MAC Address <12 that you would like to enter",
     "\nPlz enter the %d element of the Ethernet Source MAC Address", u32MostMacBytes,
     u8EthSrcMacLength, au8EthSrcMac},
    {"\nWould you like to enter  Ethernet Dest Mac Address (1-Yes and 0-No)",
     "\nPlz enter length of Ethernet Dest Mac Address <12 that you would like to enter",
     "\nPlz enter the %d element of the Ethernet Dest Mac Address", u32MostMacBytes,
     u8EthDestMacLength, au8EthDestMac},
};

constexpr uint32_t OffsetOfRule(uint32_t u32Rule) {
    return SFParamSet::astClassifierRule + u32Rule * Size;
}

uint32_t EnterPriority(const SelectedSets &stSets, uint32_t u32Rule) {
    const uint32_t u32Priority = AskUnsigned("\nClassifier Rule priority (0-255): ");
    PutInRule(stSets, u32Rule, u8Priority, u32Priority);
    return u32Priority;
}

// u32Value stands when what is typed is no hexadecimal number.
void EnterProtocol(const SelectedSets &stSets, uint32_t u32Rule, uint32_t u32Value) {
    PutText("\nProtocol (Default - 0 UDP - 0x11 , TCP - 0x6 , ICMPv6 - 0x3a , Mobile Ipv6 - 0x87) "
            ": ");
    ReadHexNum(&u32Value);
    PutInRule(stSets, u32Rule, u8Protocol, u32Value);
}

// A negative length is stored, and no byte is asked for.
void EnterMatchGroup(const SelectedSets &stSets, uint32_t u32Rule, const MatchGroup &stGroup) {
    const int32_t iLength = AskOption(stGroup.pcLength);
    if (iLength > static_cast<int32_t>(stGroup.u32MostBytes)) {
        PutText("Value entered is out of range\n");
        return;
    }
    PutInRule(stSets, u32Rule, stGroup.stLength, static_cast<uint32_t>(iLength));
    uint32_t u32Element = 0; // one that is no number repeats the one before
    for (int32_t i = 0; i < iLength; ++i) {
        PutNumber(stGroup.stElement, static_cast<uint32_t>(i) + 1);
        ReadHexInteger(&u32Element);
        Put(stSets, stGroup.stBytes, u32Element, OffsetOfRule(u32Rule) + static_cast<uint32_t>(i));
    }
}

} // namespace

void Put(const SelectedSets &stSets, Field stField, uint32_t u32Value, uint32_t u32Base) {
    for (const ServiceFlowRecord::SetOfBit &stSet : ServiceFlowRecord::Sets) {
        if ((stSets.u32QoSBits & stSet.u32Bit) != 0) {
            Put(stSets.stRecord.From(stSet.u32Offset, SFParamSet::Size), stField, u32Value,
                u32Base);
        }
    }
}

void PutBytes(const SelectedSets &stSets, uint32_t u32Offset, ByteView stFrom) {
    for (uint32_t i = 0; i < stFrom.u32Length; ++i) {
        Put(stSets, {0, FieldType::U8}, stFrom.At(i), u32Offset + i);
    }
}

void PutInRule(const SelectedSets &stSets, uint32_t u32Rule, Field stField, uint32_t u32Value) {
    Put(stSets, stField, u32Value, OffsetOfRule(u32Rule));
}

void EnterClassifierRuleParams(ByteSpan stRecord, uint32_t u32RuleIndex, uint32_t u32QoSBits,
                               bool bAskAll) {
    const SelectedSets stSets{stRecord, u32QoSBits};
    // A protocol that is no number stores the low byte of the answer before it.
    uint32_t u32Answer = 0;
    const auto IsWanted = [bAskAll, &u32Answer](const char *pcQuestion) {
        if (!bAskAll) {
            u32Answer = AskUnsigned(pcQuestion);
        }
        return bAskAll || u32Answer != 0;
    };
    if (IsWanted("\nWould you like to change Classifier Rule priority (1-Yes and 0-No)")) {
        u32Answer = EnterPriority(stSets, u32RuleIndex);
    }
    if (IsWanted("\nWould you like to change Protocol (1-Yes and 0-No)")) {
        EnterProtocol(stSets, u32RuleIndex, u32Answer);
    }
    for (const MatchGroup &stGroup : astMatchGroups) {
        if (IsWanted(stGroup.pcQuestion)) {
            EnterMatchGroup(stSets, u32RuleIndex, stGroup);
        }
    }
}

void EnterAddedClassifierRule(const SelectedSets &stSets, uint32_t u32RuleIndex) {
    EnterPriority(stSets, u32RuleIndex);
    EnterProtocol(stSets, u32RuleIndex, 0);
    EnterPagingPreference(stSets);
    for (const MatchGroup &stGroup : astMatchGroups) {
        if (AskOption(stGroup.pcQuestion) != 0) {
            EnterMatchGroup(stSets, u32RuleIndex, stGroup);
        }
    }
}

void EnterPagingPreference(const SelectedSets &stSets) {
    Put(stSets, SFParamSet::u8PagingPreference, AskUnsigned("\nPaging Preference (0 - 1): "));
}
