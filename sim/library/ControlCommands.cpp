#include "library/ControlCommands.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <vector>

#include "library/Refusal.h"
#include "library/SavedModem.h"
#include "library/StateReport.h"
#include "scenario/TextFile.h"

namespace {

constexpr ModemTime iUsualLimit = 3600 * i64Second;
constexpr const char *pcCommand = "command";

// A command's words behind its name: "2/2", or a key and its value, "limit=5".
struct Arguments {
    std::vector<std::string> astrPlain;
    Scenario::Words astKeyed;
};

// Takes a value from the front: as it stands until a blank, or what stands in quotes.
std::string TakeValue(std::string_view *pstrText) {
    std::string strValue;
    if (pstrText->starts_with('"')) {
        const size_t uEnd = pstrText->find('"', 1);
        if (uEnd == std::string_view::npos) {
            throw Refusal("a quote is never closed");
        }
        strValue = pstrText->substr(1, uEnd - 1);
        pstrText->remove_prefix(uEnd + 1);
        if (!pstrText->empty() && !pstrText->starts_with(' ')) {
            throw Refusal("a blank is missing behind a quote");
        }
        return strValue;
    }
    strValue = pstrText->substr(0, pstrText->find(' '));
    pstrText->remove_prefix(strValue.size());
    return strValue;
}

Arguments ReadArguments(std::string_view strText) {
    Arguments stArguments;
    for (;;) {
        strText.remove_prefix(std::min(strText.find_first_not_of(' '), strText.size()));
        if (strText.empty()) {
            return stArguments;
        }
        const size_t uEnd = strText.find_first_of("= \"");
        if (uEnd == 0 || uEnd == std::string_view::npos || strText[uEnd] != '=') {
            stArguments.astrPlain.push_back(TakeValue(&strText));
            continue;
        }
        const std::string strKey(strText.substr(0, uEnd));
        strText.remove_prefix(uEnd + 1);
        stArguments.astKeyed.emplace_back(strKey, TakeValue(&strText));
    }
}

std::string SecondsOf(ModemTime iTime) {
    std::array<char, 64> acText{};
    (void)std::snprintf(acText.data(), acText.size(), "%.6f",
                        static_cast<double>(iTime) / static_cast<double>(i64Second));
    return acText.data();
}

void NeedPlain(const Arguments &stArguments, size_t uLeast, size_t uMost) {
    if (stArguments.astrPlain.size() < uLeast) {
        throw Refusal("something is missing behind the command (help tells what)");
    }
    if (stArguments.astrPlain.size() > uMost) {
        throw Refusal("nothing is known of \"" + stArguments.astrPlain[uMost] + "\" here");
    }
}

// The keys of a command, and one of its plain words as a key, if it is there.
Scenario KeysOf(const Arguments &stArguments, const char *pcPlainKey = nullptr, size_t uPlain = 0) {
    Scenario::Words astWords = stArguments.astKeyed;
    if (pcPlainKey != nullptr && uPlain < stArguments.astrPlain.size()) {
        astWords.emplace_back(pcPlainKey, stArguments.astrPlain[uPlain]);
    }
    return Scenario::FromWords(astWords, pcCommand);
}

std::string EndOf(Device::AdvanceEnd eEnd, Device &stDevice) {
    switch (eEnd) {
    case Device::AdvanceEnd::Reached:
        return "ok " + SecondsOf(stDevice.Now());
    case Device::AdvanceEnd::Limit:
        throw Refusal("the limit was reached first, at " + SecondsOf(stDevice.Now()));
    case Device::AdvanceEnd::NotStepped:
        throw Refusal("the clock is the real one: only the stepped one goes when told");
    default:
        throw Refusal("the device was closed meanwhile");
    }
}

std::string Advance(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 1, 1);
    const Scenario stKeys = KeysOf(stArguments, "seconds");
    const ModemTime iBy = stKeys.Root().Seconds("seconds", 0, 1e9);
    stKeys.RefuseUnread();
    return EndOf(stDevice.Advance(iBy), stDevice);
}

std::string Until(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 1, 1);
    const Scenario stKeys = KeysOf(stArguments);
    const ModemTime iLimit = stKeys.Root().Seconds(
        "limit", 0, 1e9, static_cast<double>(iUsualLimit) / static_cast<double>(i64Second));
    stKeys.RefuseUnread();
    if (stArguments.astrPlain[0] == "idle") {
        return EndOf(stDevice.AdvanceUntilIdle(iLimit), stDevice);
    }
    const std::optional<MessageKind> stKind = MessageKind::FromText(stArguments.astrPlain[0]);
    if (!stKind) {
        throw Refusal("until what is \"idle\" or the type and the subtype of a message, 2/2");
    }
    return EndOf(stDevice.AdvanceUntilMessage(stKind->u32Type, stKind->u32SubType, iLimit),
                 stDevice);
}

std::string TimeScale(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 1);
    const Scenario stKeys = KeysOf(stArguments, "scale");
    const bool bSets = stKeys.Root().Has("scale");
    const double fScale = stKeys.Root().Number("scale", 0.001, 1e6, 1);
    stKeys.RefuseUnread();
    if (bSets && !stDevice.SetTimeScale(fScale)) {
        throw Refusal("the clock is stepped: it has no scale");
    }
    std::array<char, 32> acText{};
    stDevice.Look([&](WholeModem &stModem) {
        (void)std::snprintf(acText.data(), acText.size(), "ok %.12g",
                            stModem.HowTimePasses().fTimeScale);
    });
    return acText.data();
}

std::string PathOf(const Arguments &stArguments) {
    NeedPlain(stArguments, 1, 1);
    KeysOf(stArguments).RefuseUnread();
    if (stArguments.astrPlain[0].empty()) {
        throw Refusal("a file has a name");
    }
    return stArguments.astrPlain[0];
}

std::string Save(Device &stDevice, const Arguments &stArguments) {
    SaveModem(stDevice, PathOf(stArguments));
    return "ok";
}

std::string Load(Device &stDevice, const Arguments &stArguments) {
    LoadModem(stDevice, PathOf(stArguments));
    return "ok " + SecondsOf(stDevice.Now());
}

std::string Seed(WholeModem &stModem, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 1);
    const Scenario stKeys = KeysOf(stArguments, "seed");
    const bool bSets = stKeys.Root().Has("seed");
    const int64_t iSeed = stKeys.Root().Integer("seed", 0, INT64_MAX, 0);
    stKeys.RefuseUnread();
    if (bSets) {
        stModem.SetSeed(static_cast<uint64_t>(iSeed));
    }
    return "ok " + std::to_string(stModem.Seed());
}

std::string State(WholeModem &stModem, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    return "ok " + StateReport(stModem);
}

std::string Stations(WholeModem &stModem, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    return "ok " + StationReport(stModem);
}

void SwitchFaults(Faults &stFaults, const Arguments &stArguments) {
    NeedPlain(stArguments, 2, 2);
    const bool bOn = stArguments.astrPlain[0] == "on";
    if (stArguments.astrPlain[1] == "all") {
        KeysOf(stArguments).RefuseUnread();
        stFaults.SwitchAll(bOn);
        return;
    }
    const Scenario stKeys = KeysOf(stArguments, "number", 1);
    const auto u32Number = static_cast<uint32_t>(stKeys.Root().Integer("number", 1, UINT32_MAX));
    stKeys.RefuseUnread();
    if (!stFaults.Switch(u32Number, bOn)) {
        throw Refusal("there is no fault " + std::to_string(u32Number));
    }
}

std::string Fault(WholeModem &stModem, const Arguments &stArguments) {
    NeedPlain(stArguments, 1, 2);
    Faults &stFaults = stModem.TheFaults();
    if (stArguments.astrPlain[0] == "on" || stArguments.astrPlain[0] == "off") {
        SwitchFaults(stFaults, stArguments);
        return "ok";
    }
    NeedPlain(stArguments, 1, 1);
    const Scenario stKeys = KeysOf(stArguments, "kind");
    Faults::Fault stFault = stFaults.Read(stKeys.Root());
    stKeys.RefuseUnread();
    return "ok " + std::to_string(stFaults.Add(std::move(stFault)));
}

std::string Event(WholeModem &stModem, const std::string &strKind, const Arguments &stArguments) {
    if (!stModem.TheEvents().Knows(strKind)) {
        throw Refusal("there is no command \"" + strKind + "\" (help tells all)");
    }
    NeedPlain(stArguments, 0, 0);
    Arguments stWhole = stArguments;
    stWhole.astrPlain = {strKind};
    const Scenario stKeys = KeysOf(stWhole, "kind");
    Events::Planned stPlanned = stModem.TheEvents().Read(stKeys.Root(), Events::Unsaid::Now);
    stKeys.RefuseUnread();
    stModem.TheEvents().Plan(std::move(stPlanned));
    return "ok";
}

std::string Help(WholeModem &stModem, const Arguments &stArguments);

// One that works with the device, or with the modem in it. Whatever is said behind the name of one
// that changes the modem changes it; by its bare name it tells something.
struct Command {
    const char *pcName;
    const char *pcUsage;
    std::string (*pfnWithDevice)(Device &stDevice, const Arguments &stArguments);
    std::string (*pfnWithModem)(WholeModem &stModem, const Arguments &stArguments);
    bool bChanges;
};

constexpr std::array astCommands{
    Command{"state", "state", nullptr, State, false},
    Command{"stations", "stations", nullptr, Stations, false},
    Command{"advance", "advance SECONDS", Advance, nullptr, false},
    Command{"until", "until TYPE/SUBTYPE|idle [limit=SECONDS]", Until, nullptr, false},
    Command{"time-scale", "time-scale [SCALE]", TimeScale, nullptr, false},
    Command{"seed", "seed [SEED]", nullptr, Seed, true},
    Command{"save", "save FILE", Save, nullptr, false},
    Command{"load", "load FILE", Load, nullptr, false},
    Command{"fault", "fault KIND [KEY=VALUE]...; fault on|off NUMBER|all", nullptr, Fault, true},
    Command{"help", "help", nullptr, Help, false},
};

std::string Help(WholeModem &stModem, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    std::string strAnswer = "ok";
    for (const Command &stCommand : astCommands) {
        strAnswer += std::string(" ") + stCommand.pcUsage + ";";
    }
    strAnswer += " EVENT [KEY=VALUE]..., EVENT one of";
    for (const std::string &strKind : stModem.TheEvents().Kinds()) {
        strAnswer += " " + strKind;
    }
    return strAnswer;
}

// A command, taken apart. Null: the name is that of an event, if anything's.
struct Line {
    std::string strName;
    Arguments stArguments;
    const Command *pstCommand;

    explicit Line(std::string_view strCommand) {
        strCommand.remove_prefix(std::min(strCommand.find_first_not_of(' '), strCommand.size()));
        strName = strCommand.substr(0, strCommand.find(' '));
        if (strName.empty()) {
            throw Refusal("there is no command in this line");
        }
        stArguments = ReadArguments(strCommand.substr(strName.size()));
        const auto *const pstFound =
            std::find_if(astCommands.begin(), astCommands.end(),
                         [&](const Command &stOne) { return strName == stOne.pcName; });
        pstCommand = pstFound != astCommands.end() ? pstFound : nullptr;
    }

    bool Changes() const {
        const bool bBare = stArguments.astrPlain.empty() && stArguments.astKeyed.empty();
        return pstCommand == nullptr || (pstCommand->bChanges && !bBare);
    }
    std::string CarryOut(WholeModem &stModem) const {
        return pstCommand != nullptr ? pstCommand->pfnWithModem(stModem, stArguments)
                                     : Event(stModem, strName, stArguments);
    }
};

std::string Run(Device &stDevice, const std::string &strCommand) {
    const Line stLine(strCommand);
    if (stLine.pstCommand != nullptr && stLine.pstCommand->pfnWithDevice != nullptr) {
        return stLine.pstCommand->pfnWithDevice(stDevice, stLine.stArguments);
    }
    std::string strAnswer;
    const auto CarryOut = [&](WholeModem &stModem) { strAnswer = stLine.CarryOut(stModem); };
    if (stLine.Changes()) {
        stDevice.Steer(strCommand, CarryOut);
    } else {
        stDevice.Look(CarryOut);
    }
    return strAnswer;
}

} // namespace

void CarryOutCommand(WholeModem &stModem, std::string_view strCommand) {
    const Line stLine(strCommand);
    if (!stLine.Changes() ||
        (stLine.pstCommand != nullptr && stLine.pstCommand->pfnWithModem == nullptr)) {
        throw Refusal("\"" + stLine.strName + "\" changes nothing in a modem");
    }
    (void)stLine.CarryOut(stModem);
}

std::string AnswerTo(Device &stDevice, std::string_view strCommand) {
    if (strCommand.ends_with('\r')) {
        strCommand.remove_suffix(1);
    }
    if (!IsPrintable(strCommand)) {
        return "error a command is a line of text";
    }
    try {
        return Run(stDevice, std::string(strCommand));
    } catch (const ScenarioError &stError) {
        return "error " + stError.Reason();
    } catch (const std::exception &stError) {
        return "error " + Printable(stError.what());
    }
}
