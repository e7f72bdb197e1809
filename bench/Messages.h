// The messages that are measured, each with the rows of its plain report.
#ifndef MESSAGES_H
#define MESSAGES_H

#include <vector>

#include "Plain.h"

struct BenchMessage {
    const char *pcName;
    WiMAXMessage stMessage = {};
    uint32_t u32Length = 0; // header included
    std::vector<PlainBlock> astPlain;

    ByteView Payload() const {
        return View(&stMessage).stPayload.From(0, u32Length - MessageHeader::Size);
    }
};

// At least one message of every type that prints something without waiting.
std::vector<BenchMessage> BenchMessages();

#endif
