#include "Messages.h"

#include <cstring>
#include <iterator>

namespace {

// Types, and where numbers lie in the data area: written down here once more,
// so that the storm does not follow the client into a mistake.
constexpr uint32_t u32NetworkSearch = 1;
constexpr uint32_t u32Statistics = 17;
constexpr uint32_t u32ManagementTrace = 21;
constexpr uint32_t u32MIB = 24;
constexpr uint32_t u32HalfMiniCard = 36;
constexpr uint32_t u32LastType = 37;

constexpr uint32_t u32TraceBody = 18;
constexpr uint32_t u32MIBValue = 26;
constexpr uint32_t u32ZoneBursts = 1608;
constexpr uint32_t u32ZoneStatistics = 1625;
constexpr uint32_t au32Attributes[] = {
    1448, 1467, 1468, 1479, 1482, 1494, 1503, 1575, 1612, 1619, 1631, 1633, 1634, 1649, 1654, 501,
};

void Put32(WiMAXMessage *pstRecord, uint32_t u32Offset, uint32_t u32Value) {
    for (uint32_t i = 0; i < 4; ++i) {
        pstRecord->aucData[u32Offset + i] = static_cast<uint8_t>(u32Value >> (8 * i));
    }
}

uint32_t Get32(const WiMAXMessage &stRecord, uint32_t u32Offset) {
    uint32_t u32Value = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        u32Value |= static_cast<uint32_t>(stRecord.aucData[u32Offset + i]) << (8 * i);
    }
    return u32Value;
}

WiMAXMessage *Begin(StormMessage *pstMessage, uint32_t u32Type, uint32_t u32SubType,
                    uint32_t u32Payload) {
    WiMAXMessage *pstRecord = &pstMessage->stRecord;
    std::memset(pstRecord, 0, sizeof *pstRecord);
    const uint8_t aucHeader[] = {static_cast<uint8_t>(u32Type), static_cast<uint8_t>(u32Type >> 8),
                                 static_cast<uint8_t>(u32SubType),
                                 static_cast<uint8_t>(u32SubType >> 8)};
    std::memcpy(pstRecord, aucHeader, sizeof aucHeader);
    pstMessage->u32Length = WIMAX_HEADER_SIZE + u32Payload;
    return pstRecord;
}

// Mostly small numbers, the odd large or negative one: what counts and lengths
// are made of.
uint32_t AnyNumber(StormRandom *pstRandom) {
    switch (pstRandom->Below(8)) {
    case 0:
        return static_cast<uint32_t>(pstRandom->Next());
    case 1:
        return UINT32_MAX - pstRandom->Below(3);
    case 2:
        return pstRandom->Below(300);
    default:
        return pstRandom->Below(6);
    }
}

void FillAny(WiMAXMessage *pstRecord, StormRandom *pstRandom) {
    enum : uint32_t { AnyBytes, SmallBytes, Numbers, Nothing, Kinds };
    const uint32_t u32Kind = pstRandom->Below(Kinds);
    const uint32_t u32Used = pstRandom->Below(8) == 0 ? WIMAX_DATA_SIZE - 4 : pstRandom->Below(600);
    if (u32Kind == Numbers) {
        for (uint32_t i = pstRandom->Below(4); i < u32Used; i += 4) {
            Put32(pstRecord, i, AnyNumber(pstRandom));
        }
    } else if (u32Kind != Nothing) {
        for (uint32_t i = 0; i < u32Used; ++i) {
            pstRecord->aucData[i] =
                static_cast<uint8_t>(pstRandom->Below(u32Kind == AnyBytes ? 256 : 4));
        }
    }
}

// A MIB answer that gets as far as its value.
void MakeAnyAttribute(WiMAXMessage *pstRecord, StormRandom *pstRandom, bool bKeys) {
    uint32_t u32Attribute = au32Attributes[pstRandom->Below(std::size(au32Attributes))];
    if (bKeys && pstRandom->Below(8) == 0) {
        u32Attribute = pstRandom->Below(2) == 0 ? u32ZoneBursts : u32ZoneStatistics;
    }
    Put32(pstRecord, 0, u32Attribute);
    Put32(pstRecord, 21, AnyNumber(pstRandom));
    pstRecord->aucData[25] = 0; // the status
    Put32(pstRecord, u32MIBValue, AnyNumber(pstRandom));
}

uint32_t AnyLength(StormRandom *pstRandom) {
    constexpr uint32_t au32Lengths[] = {0, 3, 4, 5, 36, WIMAX_MESSAGE_SIZE, UINT32_MAX};
    return au32Lengths[pstRandom->Below(std::size(au32Lengths))];
}

} // namespace

void MakeTrace(StormMessage *pstMessage, uint32_t u32Thread, uint32_t u32Number,
               uint32_t u32MostBytes) {
    const auto u32Bytes = static_cast<uint32_t>(uint64_t{u32Number} * 37 % (u32MostBytes + 1));
    WiMAXMessage *pstRecord = Begin(pstMessage, u32ManagementTrace, 1, u32TraceBody + u32Bytes);
    Put32(pstRecord, 1, u32Number);
    Put32(pstRecord, 5, 4); // the code: a ranging request
    Put32(pstRecord, 9, u32Bytes);
    Put32(pstRecord, 13, u32Thread);
    pstRecord->aucData[17] = 1;
    std::memset(pstRecord->aucData + u32TraceBody, static_cast<uint8_t>(u32Number), u32Bytes);
}

void MakeAny(StormMessage *pstMessage, uint64_t u64Seed, uint32_t u32Number, bool bKeys) {
    StormRandom stRandom{u64Seed << 32 | u32Number};
    uint32_t u32Type = stRandom.Below(u32LastType + 1);
    if (u32Type == u32LastType) {
        u32Type = stRandom.Below(1U << 16);
    } else if (u32Type == u32HalfMiniCard && !bKeys) {
        u32Type = u32Statistics;
    }
    WiMAXMessage *pstRecord = Begin(pstMessage, u32Type, stRandom.Below(12), 0);
    FillAny(pstRecord, &stRandom);
    if (u32Type == u32MIB) {
        const uint32_t u32Attribute = Get32(*pstRecord, 0);
        if (stRandom.Below(3) != 0 || u32Attribute == u32ZoneBursts ||
            u32Attribute == u32ZoneStatistics) {
            MakeAnyAttribute(pstRecord, &stRandom, bKeys);
        }
    }
    pstMessage->u32Length = AnyLength(&stRandom);
}

void MakeMark(StormMessage *pstMessage, uint32_t u32Number) {
    Begin(pstMessage, 40000 + u32Number, 0, 0);
}

void MakeStations(StormMessage *pstMessage, uint32_t u32Thread, uint32_t u32Number) {
    constexpr uint32_t u32Stations = 20;
    constexpr uint32_t u32StationSize = 36;
    WiMAXMessage *pstRecord =
        Begin(pstMessage, u32NetworkSearch, 1, 8 + u32Stations * u32StationSize);
    Put32(pstRecord, 0, u32Stations);
    const uint32_t u32Sender = (u32Thread + 1) << 16 | (u32Number & 0xFFFF);
    for (uint32_t i = 0; i < u32Stations; ++i) {
        for (const uint32_t u32Offset : {8U, 12U, 16U}) { // preamble, frequency, bandwidth
            Put32(pstRecord, 8 + i * u32StationSize + u32Offset, u32Sender);
        }
    }
}

void MakeFlows(StormMessage *pstMessage, uint32_t u32Thread) {
    constexpr uint32_t u32Flows = 3;
    constexpr uint32_t u32EntrySize = 136;
    constexpr uint32_t u32Size = 4 + u32Flows * u32EntrySize;
    WiMAXMessage *pstRecord = Begin(pstMessage, u32MIB, 2, u32MIBValue + u32Size);
    Put32(pstRecord, 0, 1503);
    Put32(pstRecord, 21, u32Size);
    // NOLINTNEXTLINE(readability-suspicious-call-argument)
    Put32(pstRecord, u32MIBValue, u32Flows);
    for (uint32_t i = 0; i < u32Flows; ++i) {
        Put32(pstRecord, u32MIBValue + 4 + i * u32EntrySize, 1 + 100 * u32Thread + i);
    }
}

void MakeZones(StormMessage *pstMessage) {
    constexpr uint32_t u32Size = 10 * 252;
    WiMAXMessage *pstRecord = Begin(pstMessage, u32MIB, 2, u32MIBValue + u32Size);
    Put32(pstRecord, 0, u32ZoneBursts);
    Put32(pstRecord, 21, u32Size);
}
