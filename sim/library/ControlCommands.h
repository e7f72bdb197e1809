// What the control socket's commands mean.
#ifndef CONTROL_COMMANDS_H
#define CONTROL_COMMANDS_H

#include <string>
#include <string_view>

#include "library/Device.h"

// Enough for a whole message with a blank behind each byte.
inline constexpr size_t uLongestCommand = 65536;

// Carries out a command that changes the modem, as whoever steers it once gave it. Throws
// ScenarioError, or Refusal.
void CarryOutCommand(WholeModem &stModem, std::string_view strCommand);
// Carries out a command; returns its answer, one line without its end: "ok", with more behind it
// for those that have something to say, or "error" and the reason.
std::string AnswerTo(Device &stDevice, std::string_view strCommand);

#endif
