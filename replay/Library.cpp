// The device library's functions, played from a recording. No exception leaves them.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Player.h"

#define EXPORTED __attribute__((visibility("default")))

namespace {

constexpr int32_t s32NotOpen = -1;

void Report(const std::string &strReason) {
    (void)std::fprintf(stderr, "libqor020: %s\n", strReason.c_str());
}

double ChosenSpeed() {
    const char *pcSpeed = std::getenv("QOR020_REPLAY_SPEED");
    if (pcSpeed == nullptr || *pcSpeed == '\0') {
        return 1;
    }
    char *pcEnd = nullptr;
    const double fSpeed = std::strtod(pcSpeed, &pcEnd);
    if (*pcEnd != '\0' || !std::isfinite(fSpeed) || fSpeed < 0) {
        Report(std::string("QOR020_REPLAY_SPEED is no speed, 1 is taken: ") + pcSpeed);
        return 1;
    }
    return fSpeed;
}

bool IsStrict() {
    const char *pcStrict = std::getenv("QOR020_REPLAY_STRICT");
    return pcStrict != nullptr && *pcStrict != '\0' && std::string(pcStrict) != "0";
}

Player *StartPlayer() {
    const char *pcPath = std::getenv("QOR020_REPLAY");
    if (pcPath == nullptr || *pcPath == '\0') {
        Report("QOR020_REPLAY names no recording");
        return nullptr;
    }
    Recording stRecording = LoadRecording(pcPath);
    if (!stRecording.strProblem.empty()) {
        Report(pcPath + (": " + stRecording.strProblem));
    }
    if (stRecording.astSteps.empty()) {
        return nullptr;
    }
    return Player::Start(std::move(stRecording), {ChosenSpeed(), IsStrict()});
}

// The one that plays, from the first open on; nothing when there is nothing to play.
Player *ThePlayer() {
    static Player *pstPlayer = StartPlayer();
    return pstPlayer;
}

// What fnUse makes of the player, or Failure when there is none.
template <typename Result, typename Use> Result WithPlayer(Result Failure, Use fnUse) {
    try {
        Player *pstPlayer = ThePlayer();
        return pstPlayer != nullptr ? fnUse(*pstPlayer) : Failure;
    } catch (const std::exception &) {
        return Failure;
    }
}

} // namespace

EXPORTED uint32_t OpenWiMAXDevice() {
    return WithPlayer(WIMAX_NO_DEVICE, [](Player &stPlayer) { return stPlayer.Open(); });
}

EXPORTED int32_t RegisterCallback(uint32_t hDevice, WiMAXCallback pfnCallback,
                                  uint32_t u32Context) {
    return WithPlayer(s32NotOpen, [=](Player &stPlayer) {
        return stPlayer.Register(hDevice, pfnCallback, u32Context);
    });
}

EXPORTED int32_t SendWiMAXMessage(uint32_t hDevice, void *pvMessage, uint32_t u32Length) {
    return WithPlayer(s32NotOpen, [=](Player &stPlayer) {
        return stPlayer.Send(hDevice, static_cast<uint8_t *>(pvMessage), u32Length);
    });
}

EXPORTED int32_t CloseWiMAXDevice() {
    return WithPlayer(s32NotOpen, [](Player &stPlayer) { return stPlayer.Close(); });
}

EXPORTED int32_t rdm(uint32_t u32Address, void *pvBuffer, uint32_t u32Count) {
    return WithPlayer(s32NotOpen, [=](Player &stPlayer) {
        return stPlayer.Read(u32Address, static_cast<uint8_t *>(pvBuffer), u32Count);
    });
}

EXPORTED int32_t wrm(uint32_t u32Address, const void *pvBuffer, uint32_t u32Count) {
    return WithPlayer(s32NotOpen, [=](Player &stPlayer) {
        return stPlayer.Write(u32Address, static_cast<const uint8_t *>(pvBuffer), u32Count);
    });
}
