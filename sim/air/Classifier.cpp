#include "air/Classifier.h"

#include "ServiceFlowRecord.h"

namespace {

// An address and its mask.
constexpr uint32_t u32MaskedIPv4 = 8;

uint32_t Number(ByteView stRule, Field stFirst, uint32_t u32At, uint32_t u32Bytes) {
    uint32_t u32Value = 0;
    for (uint32_t i = 0; i < u32Bytes; ++i) {
        u32Value = u32Value << 8 | Get(stRule, stFirst, u32At + i);
    }
    return u32Value;
}

std::optional<MatchRule::Masked> AddressIn(ByteView stRule, Field stLength, Field stBytes) {
    if (Get(stRule, stLength) != u32MaskedIPv4) {
        return std::nullopt;
    }
    return MatchRule::Masked{Number(stRule, stBytes, 0, 4), Number(stRule, stBytes, 4, 4)};
}

std::optional<MatchRule::Range> PortsIn(ByteView stRule, Field stLength, Field stBytes) {
    if (Get(stRule, stLength) != ClassifierRule::PortRangeSize) {
        return std::nullopt;
    }
    return MatchRule::Range{Number(stRule, stBytes, 0, 2), Number(stRule, stBytes, 2, 2)};
}

bool Within(const std::optional<MatchRule::Masked> &stWanted, uint32_t u32Address) {
    return !stWanted || ((stWanted->u32Address ^ u32Address) & stWanted->u32Mask) == 0;
}

bool Within(const std::optional<MatchRule::Range> &stWanted, uint32_t u32Port) {
    return !stWanted || (u32Port >= stWanted->u32Low && u32Port <= stWanted->u32High);
}

} // namespace

MatchRule MatchRule::From(ByteView stRule) {
    using namespace ClassifierRule;
    MatchRule stMatch{};
    stMatch.u32Priority = Get(stRule, u8Priority);
    if (Get(stRule, u8Protocol) != 0) {
        stMatch.u32Protocol = Get(stRule, u8Protocol);
    }
    stMatch.stSource = AddressIn(stRule, u8IPMaskedSrcAddrLength, au8IPMaskedSrcAddr);
    stMatch.stDestination = AddressIn(stRule, u8IPMaskedDestAddrLength, au8IPMaskedDestAddr);
    stMatch.stSourcePorts = PortsIn(stRule, u8SrcPortRangeLength, au8SrcPortRange);
    stMatch.stDestinationPorts = PortsIn(stRule, u8DestPortRangeLength, au8DestPortRange);
    stMatch.bOther = Get(stRule, u8IPMaskedSrcAddrLength) > u32MaskedIPv4 ||
                     Get(stRule, u8IPMaskedDestAddrLength) > u32MaskedIPv4 ||
                     Get(stRule, u8EthSrcMacLength) != 0 || Get(stRule, u8EthDestMacLength) != 0;
    return stMatch;
}

bool MatchRule::Fits(const PacketHeader &stHeader) const {
    return !bOther && (!u32Protocol || *u32Protocol == stHeader.u32Protocol) &&
           Within(stSource, stHeader.u32Source) && Within(stDestination, stHeader.u32Destination) &&
           Within(stSourcePorts, stHeader.u32SourcePort) &&
           Within(stDestinationPorts, stHeader.u32DestinationPort);
}
