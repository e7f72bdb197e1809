// MAC and PHY log data: blocks of fixed size, sent periodically while their logging
// is on. A block begins with its number and the frame of its end, both little-endian
// words of four bytes; records follow, and zeroes up to the end.
#include <algorithm>
#include <deque>

#include "DiagnosticRecords.h"
#include "air/Signalling.h"
#include "host/HostSubsystems.h"
#include "link/Link.h"

namespace {

constexpr Field stBlockNumber{0, FieldType::U32};
constexpr Field stBlockFrame{4, FieldType::U32};
constexpr uint32_t u32Records = 8;

// MAC: a management message.
namespace MACRecord {
constexpr Field u32Frame{0, FieldType::U32};
constexpr Field u8Code{4, FieldType::U8};
constexpr Field u8Uplink{5, FieldType::U8};
constexpr Field u16CID{6, FieldType::U16};
constexpr Field u16Length{8, FieldType::U16}; // of the body
constexpr Field u8CMACResult{10, FieldType::U8};
constexpr uint32_t Size = 12;
} // namespace MACRecord

// PHY: a look at the serving station. Quarters of a dB and of a dBm.
namespace PHYRecord {
constexpr Field u32Frame{0, FieldType::U32};
constexpr Field s16RSSI{4, FieldType::I16};
constexpr Field s16CINR{6, FieldType::I16};
constexpr Field s16Power{8, FieldType::I16};
constexpr uint32_t Size = 12;
} // namespace PHYRecord

constexpr uint32_t u32MACRecords = (u32MACLogSize - u32Records) / MACRecord::Size;
constexpr uint32_t u32PHYRecords = (u32PHYLogSize - u32Records) / PHYRecord::Size;

class LogData : public Subsystem {
  public:
    explicit LogData(Modem &stModem);
    void Start() override;

  private:
    void SwitchMAC(bool bOn);
    void SwitchPHY(bool bOn);
    void NoteMessage(const ManagementMessage &stMessage);
    void TellMAC();
    void LookAtStation();

    template <uint32_t u32Size> Record<u32Size> NewBlock(uint32_t &u32Number) {
        Record<u32Size> stBlock;
        Put(stBlock.Span(), stBlockNumber, u32Number++);
        Put(stBlock.Span(), stBlockFrame, m_stSignalling.Frame());
        return stBlock;
    }

    Modem &m_stModem;
    Signalling &m_stSignalling;
    ModemTime m_iMACPeriod;
    ModemTime m_iPHYPeriod;
    std::deque<Record<MACRecord::Size>> m_astMessages;
    std::deque<Record<PHYRecord::Size>> m_astLooks;
    uint32_t m_u32MACBlocks = 0;
    uint32_t m_u32PHYBlocks = 0;
    Timer m_stMAC;
    Timer m_stPHY;
};

LogData::LogData(Modem &stModem)
    : m_stModem(stModem), m_stSignalling(stModem.TheSignalling()), m_stMAC(stModem.Clock()),
      m_stPHY(stModem.Clock()) {
    const Section stSettings = stModem.Settings("log-data");
    m_iMACPeriod = stSettings.Seconds("mac-period", 0.01, 1e6, 1);
    m_iPHYPeriod = stSettings.Seconds("phy-period", 0.08, 1e6, 1);
    for (const bool bOn : {true, false}) {
        const uint32_t u32SubType = bOn ? SUBTYPE_LOGGING_ENABLE : SUBTYPE_LOGGING_DISABLE;
        stModem.On(TYPE_MAC_LOGGING, u32SubType, [this, bOn](const Request &) {
            SwitchMAC(bOn);
            return 0;
        });
        stModem.On(TYPE_PHY_LOGGING, u32SubType, [this, bOn](const Request &) {
            SwitchPHY(bOn);
            return 0;
        });
    }
    m_stSignalling.OnMessage([this](const ManagementMessage &stMessage) {
        if (m_stMAC.Running()) {
            NoteMessage(stMessage);
        }
    });
}

void LogData::Start() {
    SwitchMAC(false);
    SwitchPHY(false);
    m_u32MACBlocks = m_u32PHYBlocks = 0;
}

void LogData::SwitchMAC(bool bOn) {
    if (!bOn) {
        m_stMAC.Stop();
        m_astMessages.clear();
    } else if (!m_stMAC.Running()) {
        m_stMAC.Start(m_iMACPeriod, [this] { TellMAC(); });
    }
}

void LogData::SwitchPHY(bool bOn) {
    if (!bOn) {
        m_stPHY.Stop();
        m_astLooks.clear();
    } else if (!m_stPHY.Running()) {
        m_stPHY.Start(m_iPHYPeriod / u32PHYRecords, [this] { LookAtStation(); });
    }
}

void LogData::NoteMessage(const ManagementMessage &stMessage) {
    using namespace MACRecord;
    Record<Size> stRecord;
    Put(stRecord.Span(), u32Frame, stMessage.u32Frame);
    Put(stRecord.Span(), u8Code, stMessage.u32Code);
    Put(stRecord.Span(), u8Uplink, stMessage.bUplink ? 1 : 0);
    Put(stRecord.Span(), u16CID, stMessage.u32CID);
    Put(stRecord.Span(), u16Length, static_cast<uint32_t>(stMessage.aucBody.size()));
    Put(stRecord.Span(), u8CMACResult, stMessage.bCMACGood ? 1 : 0);
    m_astMessages.push_back(stRecord);
    if (m_astMessages.size() > u32MACRecords) {
        m_astMessages.pop_front();
    }
}

void LogData::TellMAC() {
    m_stMAC.Start(m_iMACPeriod, [this] { TellMAC(); });
    auto stBlock = NewBlock<u32MACLogSize>(m_u32MACBlocks);
    uint32_t u32Offset = u32Records;
    for (const Record<MACRecord::Size> &stRecord : m_astMessages) {
        PutBytes(stBlock.Span(), u32Offset, stRecord.View());
        u32Offset += MACRecord::Size;
    }
    m_astMessages.clear();
    m_stModem.Tell(TYPE_MAC_LOGGING, SUBTYPE_LOGGING_ENABLE, stBlock.View());
}

// A block is full after so many looks. Without a station there is nothing to look at.
void LogData::LookAtStation() {
    using namespace PHYRecord;
    m_stPHY.Start(m_iPHYPeriod / u32PHYRecords, [this] { LookAtStation(); });
    const Station *pstServing = m_stModem.TheLink().Serving();
    if (pstServing == nullptr) {
        return;
    }
    const Measurement stMeasurement = m_stModem.Air().Measure(*pstServing, m_stModem.Now());
    Record<Size> stRecord;
    Put(stRecord.Span(), u32Frame, m_stSignalling.Frame());
    Put(stRecord.Span(), s16RSSI, Rounded(stMeasurement.fRSSI * fQuarters));
    Put(stRecord.Span(), s16CINR, Rounded(stMeasurement.fCINR * fQuarters));
    Put(stRecord.Span(), s16Power, static_cast<uint32_t>(m_stSignalling.Power()));
    m_astLooks.push_back(stRecord);
    if (m_astLooks.size() < u32PHYRecords) {
        return;
    }
    auto stBlock = NewBlock<u32PHYLogSize>(m_u32PHYBlocks);
    for (uint32_t i = 0; i < u32PHYRecords; ++i) {
        PutBytes(stBlock.Span(), u32Records + i * Size, m_astLooks[i].View());
    }
    m_astLooks.clear();
    m_stModem.Tell(TYPE_PHY_LOGGING, SUBTYPE_LOGGING_ENABLE, stBlock.View());
}

} // namespace

std::unique_ptr<Subsystem> MakeLogData(Modem &stModem) {
    return std::make_unique<LogData>(stModem);
}
