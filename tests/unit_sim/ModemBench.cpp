#include "ModemBench.h"

#include <cmath>
#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

namespace {

constexpr size_t uShortestRun = 5;

std::string WithDefaults(const std::string &strScenario) {
    return strScenario.find("[device]") != std::string::npos
               ? strScenario
               : "[device]\nanswer-delay = 0\n" + strScenario;
}

// Keys outside all sections must stand before the first section.
Scenario Read(const std::string &strScenario) {
    const size_t uSections = strScenario.find('[');
    const std::string strHead = strScenario.substr(0, uSections);
    const std::string strRest = uSections == std::string::npos ? "" : strScenario.substr(uSections);
    return Scenario::FromText(strHead + WithDefaults(strRest), "test.toml");
}

// The catalogue has the message, and it is of a size that it may have.
bool IsDescribed(ByteView stMessage) {
    const MessageRow *pstMessage = FindReceived(Get(stMessage, MessageHeader::usType),
                                                Get(stMessage, MessageHeader::usSubType));
    return pstMessage != nullptr && HasRightSize(*pstMessage, stMessage.From(MessageHeader::Size));
}

} // namespace

std::string HexOf(const std::vector<uint8_t> &aucBytes) {
    std::string strHex;
    for (size_t i = 0; i < aucBytes.size();) {
        size_t uRun = 1;
        while (i + uRun < aucBytes.size() && aucBytes[i + uRun] == aucBytes[i]) {
            ++uRun;
        }
        if (uRun < uShortestRun) {
            uRun = 1;
        }
        char acText[32];
        (void)std::snprintf(acText, sizeof acText, uRun == 1 ? "%02X" : "%02X*%zu", aucBytes[i],
                            uRun);
        strHex += (strHex.empty() ? "" : " ") + std::string(acText);
        i += uRun;
    }
    return strHex;
}

std::vector<uint8_t> BytesOfHex(const std::string &strHex) {
    std::vector<uint8_t> aucBytes;
    std::istringstream stWords(strHex);
    for (std::string strWord; stWords >> strWord;) {
        const size_t uStar = strWord.find('*');
        const size_t uCount =
            uStar == std::string::npos ? 1 : std::stoul(strWord.substr(uStar + 1));
        aucBytes.insert(aucBytes.end(), uCount,
                        static_cast<uint8_t>(std::stoul(strWord, nullptr, 16)));
    }
    return aucBytes;
}

std::vector<std::string> Told(std::vector<std::string> astrTexts) {
    for (std::string &strText : astrTexts) {
        const size_t uColon = strText.find(':');
        const std::string strPayload = HexOf(BytesOfHex(strText.substr(uColon + 1)));
        strText.resize(uColon + 1);
        strText += strPayload.empty() ? "" : " " + strPayload;
    }
    return astrTexts;
}

ModemBench::ModemBench(const std::string &strScenario)
    : m_stModem(Read(strScenario)),
      m_bDistorts(strScenario.find("\"truncate\"") != std::string::npos ||
                  strScenario.find("\"corrupt\"") != std::string::npos ||
                  strScenario.find("kind = \"message\"") != std::string::npos) {}

int32_t ModemBench::Send(uint32_t u32Type, uint32_t u32SubType, const std::string &strPayload) {
    WiMAXMessage stMessage{};
    const std::vector<uint8_t> aucPayload = BytesOfHex(strPayload);
    const ByteSpan stBytes = BytesOf(stMessage);
    Put(stBytes, MessageHeader::usType, u32Type);
    Put(stBytes, MessageHeader::usSubType, u32SubType);
    PutBytes(stBytes, MessageHeader::Size,
             {aucPayload.data(), static_cast<uint32_t>(aucPayload.size())});
    const int32_t iResult = m_stModem.Send(
        stBytes.pucData, static_cast<uint32_t>(MessageHeader::Size + aucPayload.size()));
    m_stModem.AdvanceTo(m_stModem.Now());
    Collect();
    return iResult;
}

void ModemBench::RunUntil(double fSeconds) {
    const auto iEnd = static_cast<ModemTime>(std::llround(fSeconds * 1e6));
    for (auto iDue = m_stModem.NextDue(); iDue && *iDue <= iEnd; iDue = m_stModem.NextDue()) {
        m_stModem.AdvanceTo(*iDue);
        Collect();
    }
    m_stModem.AdvanceTo(iEnd);
}

void ModemBench::Pass(double fSeconds) {
    RunUntil(static_cast<double>(m_stModem.Now()) / 1e6 + fSeconds);
}

void ModemBench::Collect() {
    for (MessageBytes aucMessage; m_stModem.TakeMessage(&aucMessage);) {
        const ByteView stBytes{aucMessage.data(), static_cast<uint32_t>(aucMessage.size())};
        EXPECT_TRUE(m_bDistorts || IsDescribed(stBytes))
            << Get(stBytes, MessageHeader::usType) << "/" << Get(stBytes, MessageHeader::usSubType)
            << " with " << stBytes.u32Length;
        std::string strText = std::to_string(Get(stBytes, MessageHeader::usType)) + "/" +
                              std::to_string(Get(stBytes, MessageHeader::usSubType)) + ":";
        const std::string strPayload =
            HexOf({aucMessage.begin() + MessageHeader::Size, aucMessage.end()});
        strText += strPayload.empty() ? "" : " " + strPayload;
        m_astArrivals.push_back({static_cast<double>(m_stModem.Now()) / 1e6, strText});
    }
}

std::vector<std::string> ModemBench::Messages() {
    std::vector<std::string> astrTexts;
    for (const Arrival &stArrival : m_astArrivals) {
        astrTexts.push_back(stArrival.strText);
    }
    m_astArrivals.clear();
    return astrTexts;
}

std::vector<std::string> ModemBench::TimedMessages() {
    std::vector<std::string> astrTexts;
    for (const Arrival &stArrival : m_astArrivals) {
        char acTime[32];
        (void)std::snprintf(acTime, sizeof acTime, "%.2f ", stArrival.fTime);
        astrTexts.push_back(acTime + stArrival.strText);
    }
    m_astArrivals.clear();
    return astrTexts;
}
