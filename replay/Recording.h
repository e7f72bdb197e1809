// A recording as it is played: what was called, what came of it and what the modem said, in the
// order in which it happened.
#ifndef REPLAY_RECORDING_H
#define REPLAY_RECORDING_H

#include <cstdint>
#include <string>
#include <vector>

#include "Format.h"

inline constexpr size_t uNoStep = SIZE_MAX;

struct Step {
    Event stEvent; // without its bytes
    std::vector<uint8_t> aucBytes;
    // Of a call its result and of a message its end, if the recording has it; and the other way
    // round.
    size_t uPartner = uNoStep;

    ByteView Bytes() const { return {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())}; }
};

struct Recording {
    std::vector<Step> astSteps;
    std::string strProblem; // empty, or what is wrong with the file: the rest of it is here
};

bool IsCall(EventKind eKind);

Recording LoadRecording(const std::string &strPath);

#endif
