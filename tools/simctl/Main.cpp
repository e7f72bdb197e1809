// simctl: steers a simulated modem through its control socket, and checks scenarios.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include <editline/readline.h>

#include "Connection.h"
#include "Screen.h"
#include "library/WholeModem.h"
#include "scenario/Warnings.h"

namespace {

constexpr int iGood = 0;
constexpr int iRefused = 1;
constexpr int iUnusable = 2;

constexpr const char *pcUsage =
    R"(Usage: simctl SOCKET [COMMAND...]
       simctl --watch SOCKET
       simctl --check SCENARIO

Steers the simulated modem that listens at SOCKET (QOR020_CONTROL_SOCKET of the client's process).
Without a command: a prompt, or the lines of the standard input. "help" lists the commands;
docs/control.md explains them.

  --watch   shows the modem's state, once a second
  --check   what is wrong with a scenario, and what nobody can mean; the built-in one is right
  --help    this text

The exit status is 1 when the modem refuses a command or the scenario is wrong, 2 when there is
nothing to talk to.
)";

// Prints an answer; false when it is a refusal.
bool Show(const std::string &strAnswer) {
    const std::optional<std::string> strGood = GoodAnswer(strAnswer);
    if (!strGood) {
        std::cerr << "simctl: " << strAnswer << '\n';
        return false;
    }
    if (!strGood->empty()) {
        std::cout << *strGood << '\n';
    }
    return std::cout.flush().good();
}

// A word of the shell's as a word of a command: one with blanks in it has quotes again.
std::string AsWord(const std::string &strWord) {
    if (strWord.find(' ') == std::string::npos && !strWord.empty()) {
        return strWord;
    }
    const size_t uValue = strWord.find('=') + 1; // 0 without a key
    return strWord.substr(0, uValue) + "\"" + strWord.substr(uValue) + "\"";
}

int RunCommand(const std::vector<std::string> &astrWords) {
    std::string strCommand;
    for (size_t i = 1; i < astrWords.size(); ++i) {
        strCommand += (i > 1 ? " " : "") + AsWord(astrWords[i]);
    }
    ControlConnection stModem(astrWords[0]);
    return Show(stModem.Ask(strCommand)) ? iGood : iRefused;
}

// The next line of the user's; false at the end.
bool ReadLine(bool bTerminal, std::string *pstrLine) {
    if (!bTerminal) {
        return static_cast<bool>(std::getline(std::cin, *pstrLine));
    }
    const std::unique_ptr<char, void (*)(void *)> pcLine(readline("simctl> "), &std::free);
    if (pcLine == nullptr) {
        std::cout << '\n';
        return false;
    }
    *pstrLine = pcLine.get();
    if (!pstrLine->empty()) {
        (void)add_history(pcLine.get());
    }
    return true;
}

int RunPrompt(const std::string &strPath) {
    ControlConnection stModem(strPath);
    const bool bTerminal = isatty(STDIN_FILENO) != 0;
    bool bGood = true;
    for (std::string strLine; ReadLine(bTerminal, &strLine);) {
        if (strLine == "quit" || strLine == "exit") {
            break;
        }
        if (strLine.find_first_not_of(' ') != std::string::npos) {
            bGood = Show(stModem.Ask(strLine)) && bGood;
        }
    }
    return bGood || bTerminal ? iGood : iRefused;
}

// Writes over what stands there, so that nothing flickers.
std::string Refreshed(const std::string &strScreen) {
    std::string strLines = "\x1B[H";
    for (const char cChar : strScreen) {
        strLines += cChar == '\n' ? "\x1B[K\n" : std::string(1, cChar);
    }
    return strLines + "\x1B[J";
}

int Watch(const std::string &strPath) {
    ControlConnection stModem(strPath);
    const bool bTerminal = isatty(STDOUT_FILENO) != 0;
    for (;;) {
        const std::optional<std::string> strState = GoodAnswer(stModem.Ask("state"));
        if (!strState) {
            return iRefused;
        }
        const std::string strScreen = ScreenOf(*strState);
        std::cout << (bTerminal ? Refreshed(strScreen) : strScreen + "\n");
        if (!std::cout.flush()) {
            return iGood;
        }
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

int Check(const std::string &strPath) {
    try {
        const WholeModem stModem(Scenario::FromFile(strPath));
        for (const std::string &strWarning : WarningsAbout(Scenario::FromFile(strPath))) {
            std::cerr << strWarning << " (warning)\n";
        }
        return iGood;
    } catch (const ScenarioError &stError) {
        std::cerr << stError.what() << '\n';
        return iRefused;
    }
}

int Run(const std::vector<std::string> &astrWords) {
    if (astrWords.size() == 1 && astrWords[0] == "--help") {
        std::cout << pcUsage;
        return iGood;
    }
    if (astrWords.size() == 2 && astrWords[0] == "--watch") {
        return Watch(astrWords[1]);
    }
    if (astrWords.size() == 2 && astrWords[0] == "--check") {
        return Check(astrWords[1]);
    }
    if (astrWords.empty() || astrWords[0].starts_with("--")) {
        std::cerr << pcUsage;
        return iUnusable;
    }
    return astrWords.size() == 1 ? RunPrompt(astrWords[0]) : RunCommand(astrWords);
}

} // namespace

int main(int iArguments, char **ppcArguments) {
    try {
        return Run({ppcArguments + 1, ppcArguments + iArguments});
    } catch (const std::exception &stError) {
        std::cerr << "simctl: " << stError.what() << '\n';
        return iUnusable;
    }
}
