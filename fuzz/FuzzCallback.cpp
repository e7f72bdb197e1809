// Messages from a hostile modem. The bytes are messages one after the other,
// each behind its length in two bytes, little-endian; the same bytes are what
// is typed for decoders that wait for a key.
#include <memory>

#include "Dispatcher.h"
#include "FuzzGround.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    const ByteView stBytes{pucBytes, static_cast<uint32_t>(uCount)};
    BeginRun(stBytes);
    for (ByteView stRest = stBytes; stRest.u32Length != 0;) {
        constexpr Field stLength{0, FieldType::U16};
        const ByteView stMessage = stRest.From(2, Get(stRest, stLength));
        stRest = stRest.From(2 + stMessage.u32Length);
        // A block of exactly a record's size shows every byte read behind it.
        const auto pstRecord = std::make_unique<WiMAXMessage>();
        PutBytes(BytesOf(*pstRecord), 0, stMessage);
        TVLCallback(0, pstRecord.get(), stMessage.u32Length);
    }
    return 0;
}
