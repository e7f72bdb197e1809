#include "library/ControlCommands.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <vector>

#include "library/StateReport.h"
#include "scenario/TextFile.h"

namespace {

constexpr ModemTime iUsualLimit = 3600 * i64Second;
constexpr const char *pcCommand = "command";

// What is wrong with a command.
class Refusal : public std::exception {
  public:
    explicit Refusal(std::string strReason) : m_strReason(std::move(strReason)) {}
    const char *what() const noexcept override { return m_strReason.c_str(); }

  private:
    std::string m_strReason;
};

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

template <typename Use> std::string WithModem(Device &stDevice, Use pfnUse) {
    std::string strAnswer = "ok";
    stDevice.Steer([&](WholeModem &stModem) { pfnUse(stModem, &strAnswer); });
    return strAnswer;
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
    return WithModem(stDevice, [](WholeModem &stModem, std::string *pstrAnswer) {
        std::array<char, 32> acText{};
        (void)std::snprintf(acText.data(), acText.size(), " %.12g",
                            stModem.HowTimePasses().fTimeScale);
        *pstrAnswer += acText.data();
    });
}

std::string Seed(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    return WithModem(stDevice, [](WholeModem &stModem, std::string *pstrAnswer) {
        *pstrAnswer += " " + std::to_string(stModem.Seed());
    });
}

std::string State(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    return WithModem(stDevice, [](WholeModem &stModem, std::string *pstrAnswer) {
        *pstrAnswer += " " + StateReport(stModem);
    });
}

std::string Stations(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    return WithModem(stDevice, [](WholeModem &stModem, std::string *pstrAnswer) {
        *pstrAnswer += " " + StationReport(stModem);
    });
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

std::string Fault(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 1, 2);
    return WithModem(stDevice, [&](WholeModem &stModem, std::string *pstrAnswer) {
        Faults &stFaults = stModem.TheFaults();
        if (stArguments.astrPlain[0] == "on" || stArguments.astrPlain[0] == "off") {
            SwitchFaults(stFaults, stArguments);
            return;
        }
        NeedPlain(stArguments, 1, 1);
        const Scenario stKeys = KeysOf(stArguments, "kind");
        Faults::Fault stFault = stFaults.Read(stKeys.Root());
        stKeys.RefuseUnread();
        *pstrAnswer += " " + std::to_string(stFaults.Add(std::move(stFault)));
    });
}

std::string Event(Device &stDevice, const std::string &strKind, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    Arguments stWhole = stArguments;
    stWhole.astrPlain = {strKind};
    return WithModem(stDevice, [&](WholeModem &stModem, std::string *) {
        const Scenario stKeys = KeysOf(stWhole, "kind");
        Events::Planned stPlanned = stModem.TheEvents().Read(stKeys.Root(), Events::Unsaid::Now);
        stKeys.RefuseUnread();
        stModem.TheEvents().Plan(std::move(stPlanned));
    });
}

std::string Help(Device &stDevice, const Arguments &stArguments);

struct Command {
    const char *pcName;
    const char *pcUsage;
    std::string (*pfnRun)(Device &stDevice, const Arguments &stArguments);
};

constexpr std::array astCommands{
    Command{"state", "state", State},
    Command{"stations", "stations", Stations},
    Command{"advance", "advance SECONDS", Advance},
    Command{"until", "until TYPE/SUBTYPE|idle [limit=SECONDS]", Until},
    Command{"time-scale", "time-scale [SCALE]", TimeScale},
    Command{"seed", "seed", Seed},
    Command{"fault", "fault KIND [KEY=VALUE]...; fault on|off NUMBER|all", Fault},
    Command{"help", "help", Help},
};

std::string Help(Device &stDevice, const Arguments &stArguments) {
    NeedPlain(stArguments, 0, 0);
    KeysOf(stArguments).RefuseUnread();
    std::string strAnswer = "ok";
    for (const Command &stCommand : astCommands) {
        strAnswer += std::string(" ") + stCommand.pcUsage + ";";
    }
    strAnswer += " EVENT [KEY=VALUE]..., EVENT one of";
    stDevice.Steer([&](WholeModem &stModem) {
        for (const std::string &strKind : stModem.TheEvents().Kinds()) {
            strAnswer += " " + strKind;
        }
    });
    return strAnswer;
}

std::string Run(Device &stDevice, std::string_view strCommand) {
    const size_t uStart = std::min(strCommand.find_first_not_of(' '), strCommand.size());
    strCommand.remove_prefix(uStart);
    const std::string strName(strCommand.substr(0, strCommand.find(' ')));
    if (strName.empty()) {
        throw Refusal("there is no command in this line");
    }
    const Arguments stArguments = ReadArguments(strCommand.substr(strName.size()));
    for (const Command &stCommand : astCommands) {
        if (strName == stCommand.pcName) {
            return stCommand.pfnRun(stDevice, stArguments);
        }
    }
    bool bEvent = false;
    stDevice.Steer([&](WholeModem &stModem) { bEvent = stModem.TheEvents().Knows(strName); });
    if (!bEvent) {
        throw Refusal("there is no command \"" + strName + "\" (help tells all)");
    }
    return Event(stDevice, strName, stArguments);
}

} // namespace

std::string AnswerTo(Device &stDevice, std::string_view strCommand) {
    if (strCommand.ends_with('\r')) {
        strCommand.remove_suffix(1);
    }
    if (!IsPrintable(strCommand)) {
        return "error a command is a line of text";
    }
    try {
        return Run(stDevice, strCommand);
    } catch (const ScenarioError &stError) {
        return "error " + stError.Reason();
    } catch (const std::exception &stError) {
        return "error " + Printable(stError.what());
    }
}
