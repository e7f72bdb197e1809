// Which packets belong to a service flow: the header of a packet, and the rules of flows.
#ifndef CLASSIFIER_H
#define CLASSIFIER_H

#include <cstdint>
#include <optional>

#include "Wire.h"

// Of an IPv4 packet.
struct PacketHeader {
    uint32_t u32Protocol;
    uint32_t u32Source;
    uint32_t u32Destination;
    uint32_t u32SourcePort;
    uint32_t u32DestinationPort;
};

// What a rule says; what it does not say fits every packet.
struct MatchRule {
    struct Masked {
        uint32_t u32Address;
        uint32_t u32Mask;
    };
    struct Range {
        uint32_t u32Low;
        uint32_t u32High;
    };
    uint32_t u32Priority; // the highest one decides
    std::optional<uint32_t> u32Protocol;
    std::optional<Masked> stSource;
    std::optional<Masked> stDestination;
    std::optional<Range> stSourcePorts;
    std::optional<Range> stDestinationPorts;
    bool bOther; // asks for what these packets do not have: an IPv6 or a MAC address

    // From a ClassifierRule record of the host interface.
    static MatchRule From(ByteView stRule);
    bool Fits(const PacketHeader &stHeader) const;
};

#endif
