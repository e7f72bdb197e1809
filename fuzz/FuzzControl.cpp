// What whoever steers the simulated modem says: commands of any bytes, a line each, and, behind
// them, a saved modem of any content. What the commands have made of the modem can be saved, and
// lives again to the letter.
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "OneFile.h"
#include "library/ControlCommands.h"
#include "library/SavedModem.h"
#include "scenario/Hex.h"

namespace {

constexpr const char *pcScenario = R"(seed = 3
[clock]
kind = "stepped"
[half-mini-card]
exchanges = 0
[[nsp]]
id = 7
name = "Seven"
[[station]]
bsid = "00 12 0A 00 01 01"
frequency = 2587500
bandwidth = 10000
preamble = 3
rssi = -58
cinr = 28
variation = 3
nsps = [7]
[[station]]
bsid = "00 12 0A 00 01 02"
frequency = 2600000
bandwidth = 10000
preamble = 35
x = 500
y = 0
[[way-point]]
at = 0
x = 100
y = 0
[[way-point]]
at = 10
x = 400
y = 0
[[service-flow]]
direction = "downlink"
type = "BE"
[[generator]]
direction = "downlink"
pattern = "poisson"
rate = 20000
[[fault]]
kind = "drop"
probability = 0.1
[start]
state = "link-up"
station = "00 12 0A 00 01 01"
)";

// Lines that let time go: few, for some seconds each.
constexpr uint32_t u32MostPauses = 3;
// Steps of a saved modem's life.
constexpr uint32_t u32MostSteps = 3000;

uint32_t Receive(uint32_t /*u32Context*/, const WiMAXMessage * /*pstMessage*/,
                 uint32_t /*u32Length*/) {
    return 0;
}

bool IsDigit(char cChar) { return cChar >= '0' && cChar <= '9'; }

// Whether a number of the line may be ten or more, but for those of a message, "24/2".
bool HasLongNumber(std::string_view strLine) {
    if (strLine.find_first_of("eE", strLine.find_first_of("0123456789")) !=
        std::string_view::npos) {
        return true;
    }
    for (size_t i = 0; i + 1 < strLine.size(); ++i) {
        const bool bOfMessage = strLine.substr(i).find('/') < 5;
        if (IsDigit(strLine[i]) && IsDigit(strLine[i + 1]) && !bOfMessage &&
            strLine.substr(0, i).find('.') == std::string_view::npos) {
            return true;
        }
    }
    return false;
}

class Steering {
  public:
    Steering() {
        const auto pstFiles = std::make_shared<JournaledFiles>();
        m_pstDevice = Device::Start(JournaledModem(
            std::make_unique<WholeModem>(Scenario::FromText(pcScenario, "control", pstFiles)),
            std::make_unique<Journal>(pstFiles)));
        m_pstDevice->SetCallback(Receive, 0);
    }
    Steering(const Steering &) = delete;
    Steering &operator=(const Steering &) = delete;
    ~Steering() { m_pstDevice->Stop(); }

    void Say(std::string_view strLine) {
        const std::string_view strBare =
            strLine.substr(std::min(strLine.find_first_not_of(' '), strLine.size()));
        const std::string_view strName = strBare.substr(0, strBare.find(' '));
        if (strName == "save" || strName == "load") {
            return; // files of this machine
        }
        if (strName == ">") {
            Send(strBare.substr(1));
            return;
        }
        std::string strCommand(strLine);
        if (strName == "advance" || strName == "until") {
            if (++m_u32Pauses > u32MostPauses || HasLongNumber(strBare)) {
                return;
            }
            if (strName == "until" && strBare.find("limit=") == std::string_view::npos) {
                strCommand += " limit=3";
            }
        }
        const std::string strAnswer = AnswerTo(*m_pstDevice, strCommand);
        const bool bOneLine =
            strAnswer.find('\n') == std::string::npos &&
            (strAnswer == "ok" || strAnswer.starts_with("ok ") || strAnswer.starts_with("error "));
        if (!bOneLine) {
            std::abort();
        }
    }

    // As the modem has been made by all of it.
    void LiveAllOfItAgain() const {
        const std::string strText = m_pstDevice->JournalText();
        (void)LiveAgain(strText, "again", [] { return true; });
    }

  private:
    // A request, in hexadecimal digits; without any, the callback goes away and comes back.
    void Send(std::string_view strHex) const {
        std::string strDigits;
        for (const char cChar : strHex) {
            if (cChar != ' ') {
                strDigits += cChar;
            }
        }
        std::optional<std::vector<uint8_t>> aucMessage = FromHex(strDigits);
        if (!aucMessage || aucMessage->empty()) {
            m_pstDevice->SetCallback(nullptr, 0);
            m_pstDevice->SetCallback(Receive, 0);
            return;
        }
        const auto u32Length = static_cast<uint32_t>(aucMessage->size());
        aucMessage->resize(std::max<size_t>(aucMessage->size(), WIMAX_MESSAGE_SIZE));
        (void)m_pstDevice->Send(aucMessage->data(), u32Length);
    }

    std::shared_ptr<Device> m_pstDevice;
    uint32_t m_u32Pauses = 0;
};

void Load(std::string_view strText) {
    // A call takes its time all at once, and may take very much.
    if (strText.find("call-time") != std::string_view::npos) {
        return;
    }
    uint32_t u32Steps = 0;
    try {
        (void)LiveAgain(strText, "saved", [&] { return ++u32Steps < u32MostSteps; });
    } catch (const ScenarioError &) {
        return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucBytes, size_t uCount) {
    std::string_view strRest(reinterpret_cast<const char *>(pucBytes), uCount);
    Steering stSteering;
    while (!strRest.empty() && !strRest.starts_with("qor020-journal")) {
        const size_t uEnd = std::min(strRest.find('\n'), strRest.size());
        stSteering.Say(strRest.substr(0, uEnd));
        strRest.remove_prefix(std::min(uEnd + 1, strRest.size()));
    }
    stSteering.LiveAllOfItAgain();
    if (!strRest.empty()) {
        Load(strRest);
    }
    return 0;
}
