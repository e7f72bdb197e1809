#include "air/PacketSource.h"

#include <array>
#include <charconv>
#include <cmath>
#include <sstream>

#include "ServiceFlowRecord.h"
#include "scenario/TextFile.h"

namespace {

// More than any modem moves, and few enough to be made one by one.
constexpr double fMostPackets = 100000; // a second
constexpr uint32_t u32MostPacket = 65535;
constexpr uint32_t u32UDP = 17;

constexpr std::array astDirections{ScenarioWord{"downlink", 0}, ScenarioWord{"uplink", 1}};

double IntervalOf(double fRate, double fPacketSize) {
    return fRate > 0 ? fPacketSize / fRate * static_cast<double>(i64Second) : 0;
}

uint32_t AddressIn(const Section &stSection, const char *pcKey) {
    const std::string strText = stSection.Text(pcKey, "0.0.0.0");
    const char *pcAt = strText.data();
    const char *pcEnd = pcAt + strText.size();
    uint32_t u32Address = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        uint8_t u8Part = 0;
        const auto Read = std::from_chars(pcAt, pcEnd, u8Part);
        const bool bLast = i == 3;
        if (Read.ec != std::errc() || (bLast ? Read.ptr != pcEnd : Read.ptr == pcEnd) ||
            (!bLast && *Read.ptr != '.')) {
            stSection.Refuse(pcKey, "must be an IPv4 address in quotes, \"10.0.0.1\"");
        }
        u32Address = u32Address << 8 | u8Part;
        pcAt = Read.ptr + 1;
    }
    return u32Address;
}

} // namespace

PacketSource::PacketSource(bool bUplink, double fRate, uint32_t u32PacketSize)
    : m_bUplink(bUplink), m_fInterval(IntervalOf(fRate, u32PacketSize)),
      m_u32PacketSize(u32PacketSize) {}

PacketSource::PacketSource(const Section &stSection, Random &stRandom)
    : m_bUplink(stSection.Choice("direction", astDirections) != 0), m_u32PacketSize(0),
      m_pstRandom(&stRandom) {
    static constexpr std::array astPatterns{
        ScenarioWord{"constant", static_cast<uint32_t>(Pattern::Constant)},
        ScenarioWord{"poisson", static_cast<uint32_t>(Pattern::Poisson)},
        ScenarioWord{"on-off", static_cast<uint32_t>(Pattern::OnOff)},
        ScenarioWord{"file", static_cast<uint32_t>(Pattern::File)}};
    const auto Number = [&](const char *pcKey, int64_t iMost, int64_t iDefault) {
        return static_cast<uint32_t>(stSection.Integer(pcKey, 0, iMost, iDefault));
    };
    m_u32SFID = Number("sfid", UINT32_MAX, 0);
    m_stHeader = {Number("protocol", UINT8_MAX, u32UDP), AddressIn(stSection, "source"),
                  AddressIn(stSection, "destination"), Number("source-port", UINT16_MAX, 0),
                  Number("destination-port", UINT16_MAX, 0)};
    m_ePattern = static_cast<Pattern>(
        stSection.Choice("pattern", astPatterns, static_cast<uint32_t>(Pattern::Constant)));
    if (m_ePattern == Pattern::File) {
        ReadFile(stSection);
        return;
    }
    m_u32PacketSize =
        static_cast<uint32_t>(stSection.Integer("packet-size", 1, u32MostPacket, 600));
    m_fInterval =
        IntervalOf(stSection.Number("rate", 0, fMostPackets * m_u32PacketSize), m_u32PacketSize);
    if (m_ePattern == Pattern::OnOff) {
        m_iOn = stSection.Seconds("on", 0.001, 1e6, 1);
        m_iOff = stSection.Seconds("off", 0, 1e6, 1);
    }
}

// A line a packet: the seconds from the start on, and the bytes. What begins with a # says nothing.
void PacketSource::ReadFile(const Section &stSection) {
    const std::string strPath = stSection.Path("file");
    const std::optional<std::string> strText = stSection.TheFiles().Read(strPath);
    if (!strText) {
        stSection.Refuse("file", "names a file that is not there");
    }
    std::istringstream stLines(*strText);
    uint32_t u32Line = 0;
    for (std::string strLine; std::getline(stLines, strLine);) {
        ++u32Line;
        const std::string strSaid = strLine.substr(0, strLine.find('#'));
        if (strSaid.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        std::istringstream stWords(strSaid);
        stWords.imbue(std::locale::classic());
        double fAt = 0;
        uint32_t u32Size = 0;
        std::string strMore;
        const bool bTwo = static_cast<bool>(stWords >> fAt >> u32Size) && !(stWords >> strMore);
        const ModemTime iAt = bTwo && fAt >= 0 && fAt <= 1e9
                                  ? std::llround(fAt * static_cast<double>(i64Second))
                                  : -1;
        const ModemTime iBefore = m_astListed.empty() ? 0 : m_astListed.back().iAt;
        if (iAt < iBefore || u32Size == 0 || u32Size > u32MostPacket) {
            throw ScenarioError(
                strPath, u32Line,
                "must be a second, none before the last one, and bytes, 1 to 65535");
        }
        m_astListed.push_back({iAt, u32Size});
    }
}

void PacketSource::Start(ModemTime iNow) {
    m_iStart = iNow;
    m_u64Done = 0;
    m_iNext = 0;
    Advance();
}

// Chance says when the next packet comes.
void PacketSource::Advance() {
    if (m_ePattern == Pattern::Poisson && m_fInterval > 0) {
        m_iNext += std::max<ModemTime>(
            std::llround(-std::log1p(-m_pstRandom->Uniform()) * m_fInterval), 1);
    }
}

ModemTime PacketSource::TimeOf(uint64_t u64Number) const {
    const ModemTime iOn = std::llround(static_cast<double>(u64Number) * m_fInterval);
    if (m_ePattern != Pattern::OnOff || iOn == 0) {
        return iOn;
    }
    return iOn + (iOn - 1) / m_iOn * m_iOff;
}

uint64_t PacketSource::NumberWithin(ModemTime iTime) const {
    ModemTime iOn = iTime;
    if (m_ePattern == Pattern::OnOff) {
        const ModemTime iCycle = m_iOn + m_iOff;
        iOn = iTime / iCycle * m_iOn + std::min(iTime % iCycle, m_iOn);
    }
    auto u64Number = static_cast<uint64_t>(static_cast<double>(iOn) / m_fInterval);
    // The last one may have been rounded to either side.
    while (TimeOf(u64Number + 1) <= iTime) {
        ++u64Number;
    }
    while (u64Number != 0 && TimeOf(u64Number) > iTime) {
        --u64Number;
    }
    return u64Number;
}

std::optional<ModemTime> PacketSource::Next() const {
    if (m_ePattern == Pattern::File) {
        return m_u64Done < m_astListed.size()
                   ? std::optional(m_iStart + m_astListed[static_cast<size_t>(m_u64Done)].iAt)
                   : std::nullopt;
    }
    if (m_fInterval <= 0) {
        return std::nullopt;
    }
    return m_iStart + (m_ePattern == Pattern::Poisson ? m_iNext : TimeOf(m_u64Done + 1));
}

uint64_t PacketSource::Take(ModemTime iNow,
                            const std::function<bool(ModemTime, uint32_t)> &pfnTake) {
    uint64_t u64Left = 0;
    bool bTakes = true;
    const bool bCountable = m_ePattern == Pattern::Constant || m_ePattern == Pattern::OnOff;
    for (auto iNext = Next(); iNext && *iNext <= iNow; iNext = Next()) {
        bTakes = bTakes && pfnTake(*iNext, m_ePattern == Pattern::File
                                               ? m_astListed[static_cast<size_t>(m_u64Done)].u32Size
                                               : m_u32PacketSize);
        if (!bTakes && bCountable) {
            const uint64_t u64All = NumberWithin(iNow - m_iStart);
            u64Left += u64All - m_u64Done;
            m_u64Done = u64All;
            break;
        }
        u64Left += bTakes ? 0 : 1;
        ++m_u64Done;
        Advance();
    }
    return u64Left;
}
