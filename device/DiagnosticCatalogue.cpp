#include "DiagnosticRecords.h"
#include "Layouts.h"

namespace {

constexpr CodeRow astDirections[] = {CODE(TraceRecord, BSToMS), CODE(TraceRecord, MSToBS)};

constexpr FieldRow astTraceRecord[] = {
    FIELD(TraceRecord, u8Direction,
          "0 base station to mobile station, 1 the other way, else not shown",
          .astCodes = astDirections),
    FIELD(TraceRecord, u32FrameNumber, "frame number"),
    FIELD(TraceRecord, u32Code, "the IEEE 802.16 management message type"),
    FIELD(TraceRecord, s32BodyLength, "length of the body"),
    FIELD(TraceRecord, u32CID, "connection identifier", .eShown = Shown::Hexadecimal),
    FIELD(TraceRecord, u8CMACResult, "result of the CMAC check"),
    FIELD(TraceRecord, aucBody, "body", .u16Count = 0, .stCounter = TraceRecord::s32BodyLength,
          .eShown = Shown::Bytes),
};

} // namespace

constexpr Layout stTraceRecord = {"TraceRecord", astTraceRecord, TraceRecord::aucBody};
