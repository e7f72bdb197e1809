#include "Recording.h"

#include <unordered_map>

#include "Reader.h"

bool IsCall(EventKind eKind) {
    switch (eKind) {
    case EventKind::Open:
    case EventKind::Register:
    case EventKind::Send:
    case EventKind::ReadMemory:
    case EventKind::WriteMemory:
    case EventKind::Close:
        return true;
    default:
        return false;
    }
}

Recording LoadRecording(const std::string &strPath) {
    Recording stRecording;
    std::vector<Step> &astSteps = stRecording.astSteps;
    std::unordered_map<uint32_t, size_t> stNumbers; // of calls and messages
    RecordingReader stReader(strPath);
    bool bGoesOn = false;
    for (Event stEvent; stReader.Next(&stEvent);) {
        const EventKind eKind = stEvent.eKind;
        if (!bGoesOn && eKind != EventKind::Session) {
            const bool bBegins = IsCall(eKind) || eKind == EventKind::Message;
            const auto stCall = stNumbers.find(stEvent.u32BelongsTo);
            if (!bBegins && (stCall == stNumbers.end() ||
                             ResultOf(astSteps[stCall->second].stEvent.eKind) != eKind)) {
                continue; // the end of something that was damaged
            }
            astSteps.emplace_back();
            if (!bBegins) {
                astSteps.back().uPartner = stCall->second;
                astSteps[stCall->second].uPartner = astSteps.size() - 1;
            }
        }
        if (eKind == EventKind::Session || astSteps.empty()) {
            continue;
        }
        // Pieces of one event follow each other; the last one has the number that counts.
        Step &stStep = astSteps.back();
        stStep.aucBytes.insert(stStep.aucBytes.end(), stEvent.stBytes.pucData,
                               stEvent.stBytes.pucData + stEvent.stBytes.u32Length);
        stStep.stEvent = stEvent;
        stStep.stEvent.stBytes = {};
        stNumbers[stEvent.u32Number] = astSteps.size() - 1;
        bGoesOn = (stEvent.u16Flags & EventFlag::More) != 0;
    }
    stRecording.strProblem = stReader.Problem();
    return stRecording;
}
