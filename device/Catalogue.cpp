// The messages of the interface.
#include "Catalogue.h"

#include <algorithm>

#include "DiagnosticRecords.h"
#include "Layouts.h"
#include "LinkRecords.h"
#include "MIBRecord.h"

namespace {

constexpr MessageRow astMessages[] = {
    {TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH, Direction::Request, "NetworkSearchRequest",
     "network search", Exactly(SearchRequest::Size), &stSearchRequest, SUBTYPE_NETWORK_SEARCH},
    {TYPE_NETWORK_SEARCH, SUBTYPE_NETWORK_SEARCH, Direction::Answer, "NetworkSearchResult",
     "search results", AsCounted(StationList::astStations), &stStationList},
    {TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_UP, Direction::Request, "SyncUp", "sync up",
     Exactly(SyncUpRequest::Size), &stSyncUpRequest, SUBTYPE_SYNC_STATUS_RESP},
    {TYPE_NETWORK_ENTRY, SUBTYPE_SYNC_STATUS_RESP, Direction::Indication, "SyncStatus",
     "sync status", Exactly(SyncStatus::Size), &stSyncStatus},
    {TYPE_MAC_MGMT, SUBTYPE_MAC_MGMT_TRACE_IND, Direction::Indication, "TracedMessage",
     "one traced message", AsCounted(TraceRecord::aucBody), &stTraceRecord},
    {TYPE_MIB, SUBTYPE_MIB_GET, Direction::Answer, "MIBGetAnswer", "the record with its value",
     AsCounted(MIBRecord::Size), &stMIBAnswer},
};

constexpr FieldRow astRegisterCall[] = {
    FIELD(RegisterCall, u32Address, "address", .eShown = Shown::Hexadecimal),
    FIELD(RegisterCall, u32Count, "number of bytes"),
    FIELD(RegisterCall, aucValue, "bytes that were read or written", .u16Count = 0,
          .stCounter = RegisterCall::u32Count, .eShown = Shown::Value),
};
constexpr Layout stRegisterCall = {"RegisterCall", astRegisterCall, RegisterCall::aucValue};

// A call that failed has no bytes.
constexpr MessageRow stRegisterRead = {0,
                                       0,
                                       Direction::RegisterRead,
                                       "RegisterRead",
                                       "call of rdm",
                                       {RegisterCall::aucValue, UINT32_MAX},
                                       &stRegisterCall};
constexpr MessageRow stRegisterWrite = {0,
                                        0,
                                        Direction::RegisterWrite,
                                        "RegisterWrite",
                                        "call of wrm",
                                        {RegisterCall::aucValue, UINT32_MAX},
                                        &stRegisterCall};

// An answer and an indication go the same way.
enum class Way : uint8_t { Sent, WrittenBack, Received };

constexpr Way WayOf(Direction eDirection) {
    return eDirection == Direction::Request     ? Way::Sent
           : eDirection == Direction::WriteBack ? Way::WrittenBack
                                                : Way::Received;
}

constexpr uint64_t KeyOf(uint32_t u32Type, Way eWay, uint32_t u32SubType) {
    return uint64_t{u32Type} << 24 | uint64_t{static_cast<uint8_t>(eWay)} << 16 | u32SubType;
}

constexpr uint64_t KeyOf(const MessageRow &stRow) {
    return KeyOf(stRow.u16Type, WayOf(stRow.eDirection), stRow.u16SubType);
}

constexpr bool IsInOrder() {
    for (size_t i = 1; i < std::size(astMessages); ++i) {
        if (KeyOf(astMessages[i - 1]) >= KeyOf(astMessages[i])) {
            return false;
        }
    }
    return true;
}
static_assert(IsInOrder(), "by type, way and subtype, each once");

const MessageRow *FindExactly(uint64_t u64Key) {
    const MessageRow *pstRow = std::ranges::lower_bound(
        astMessages, u64Key, {}, [](const MessageRow &stRow) { return KeyOf(stRow); });
    return pstRow != std::end(astMessages) && KeyOf(*pstRow) == u64Key ? pstRow : nullptr;
}

const MessageRow *Find(uint32_t u32Type, Way eWay, uint32_t u32SubType) {
    if (u32SubType > UINT16_MAX) {
        return nullptr;
    }
    const MessageRow *pstRow = FindExactly(KeyOf(u32Type, eWay, u32SubType));
    return pstRow != nullptr ? pstRow : FindExactly(KeyOf(u32Type, eWay, AnySubType));
}

} // namespace

constexpr Layout stEmpty = {"Empty", {}, 0};

std::span<const MessageRow> Messages() { return astMessages; }

const MessageRow *FindSent(uint32_t u32Type, uint32_t u32SubType) {
    return Find(u32Type, Way::Sent, u32SubType);
}
const MessageRow *FindWrittenBack(uint32_t u32Type, uint32_t u32SubType) {
    return Find(u32Type, Way::WrittenBack, u32SubType);
}
const MessageRow *FindReceived(uint32_t u32Type, uint32_t u32SubType) {
    return Find(u32Type, Way::Received, u32SubType);
}
const MessageRow &RegisterRead() { return stRegisterRead; }
const MessageRow &RegisterWrite() { return stRegisterWrite; }
