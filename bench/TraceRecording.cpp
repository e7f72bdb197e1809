// Writes a recording of traced management messages, as the recorder would, to standard output: an
// event for each message and for its end, and the message itself for stock decoders. With --air
// nothing but the latter. Arguments: [--air] COUNT.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "DiagnosticRecords.h"
#include "Format.h"

namespace {

struct TracedBody {
    uint8_t u8Code;
    std::vector<uint8_t> aucBody;
};

const TracedBody astBodies[] = {
    {2, {0x04, 0x00, 0x02, 0x58, 0x05, 0x00, 0x12, 0x0A, 0x00, 0x01, 0x01,
         0x1D, 0x00, 0x10, 0x00, 0x42, 0x92, 0x05, 0x00, 0x18, 0x78}},
    {3, {0x00, 0x05, 0x00, 0x00, 0x2A, 0x80, 0x12, 0x00, 0xA6, 0x30, 0x28, 0xFF,
         0xFF, 0xC0, 0x00, 0x00, 0x83, 0x0F, 0xFF, 0xFC, 0x02, 0x00, 0x04, 0x34}},
    {5, {0x00, 0x01, 0x04, 0x00, 0x00, 0x00, 0x05, 0x02, 0x01, 0x03, 0x03, 0x04,
         0x00, 0x00, 0x00, 0x10, 0x04, 0x01, 0x03, 0x08, 0x06, 0x02, 0x00, 0x00,
         0x20, 0x00, 0x01, 0x09, 0x02, 0x00, 0x01, 0x0A, 0x02, 0x01, 0x41}},
    {37, {0x04, 0x04, 0x01, 0x02, 0x1E, 0x02}},
};

void Fail(const char *pcWhat) {
    std::perror(pcWhat);
    std::exit(1);
}

void Write(const void *pvBytes, size_t uCount) {
    if (uCount != 0 && std::fwrite(pvBytes, uCount, 1, stdout) != 1) {
        Fail("standard output");
    }
}

void Write(const Packet &stPacket) {
    Write(stPacket.aucHead, stPacket.u32Head);
    Write(stPacket.stBytes.pucData, stPacket.stBytes.u32Length);
    Write(stPacket.aucTail, stPacket.u32Tail);
}

} // namespace

int main(int argc, char **argv) {
    const bool bAirOnly = argc > 2 && std::string(argv[1]) == "--air";
    const char *pcCount = argc > 1 ? argv[argc - 1] : "";
    const auto u32Count = static_cast<uint32_t>(std::strtoul(pcCount, nullptr, 10));
    constexpr int64_t i64Begin = 1'800'000'000'000'000'000;
    constexpr int64_t i64Frame = 5'000'000;
    const std::string strHead = FileHead({"", "", "bench_trace_recording", ""});
    Write(strHead.data(), strHead.size());
    Event stEvent;
    Packet stPacket;
    for (uint32_t i = 0; i < u32Count; ++i) {
        const TracedBody &stBody = astBodies[i % std::size(astBodies)];
        const auto u32Body = static_cast<uint32_t>(stBody.aucBody.size());
        WiMAXMessage stMessage{};
        Put(BytesOf(stMessage), MessageHeader::usType, TYPE_MAC_MGMT);
        Put(BytesOf(stMessage), MessageHeader::usSubType, SUBTYPE_MAC_MGMT_TRACE_IND);
        const ByteSpan stPayload = PayloadOf(stMessage);
        Put(stPayload, TraceRecord::u32FrameNumber, i);
        Put(stPayload, TraceRecord::u32Code, stBody.u8Code);
        Put(stPayload, TraceRecord::s32BodyLength, u32Body);
        Put(stPayload, TraceRecord::u32CID, 0xFFFF);
        PutBytes(stPayload, TraceRecord::aucBody, {stBody.aucBody.data(), u32Body});
        stEvent.eKind = EventKind::Message;
        stEvent.u32BelongsTo = 0;
        ++stEvent.u32Number;
        stEvent.i64Time = i64Begin + i * i64Frame;
        stEvent.u64Duration = 0;
        stEvent.u32Length = MessageHeader::Size + TraceRecord::aucBody + u32Body;
        stEvent.stBytes = ByteView(BytesOf(stMessage)).From(0, stEvent.u32Length);
        if (!bAirOnly) {
            WriteEvent(stEvent, &stPacket);
            Write(stPacket);
        }
        ManagementMessage stManagement;
        if (ManagementMessageOf(stEvent.stBytes, &stManagement)) {
            WriteManagementMessage(stEvent.i64Time, stManagement, &stPacket);
            Write(stPacket);
        }
        if (!bAirOnly) {
            stEvent.eKind = EventKind::MessageDone;
            stEvent.u32BelongsTo = stEvent.u32Number++;
            stEvent.i64Time += 50'000;
            stEvent.u64Duration = 49'000;
            stEvent.u32Length = 0;
            stEvent.stBytes = {};
            WriteEvent(stEvent, &stPacket);
            Write(stPacket);
        }
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
