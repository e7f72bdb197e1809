// General purpose pins and the behaviour of the LEDs.
#include <vector>

#include "DiagnosticRecords.h"
#include "host/HostSubsystems.h"
#include "modem/Modem.h"

namespace {

using LEDs = Record<LEDState::Size>;

// Red while the driver starts and, blinking, while firmware is loaded; blue in idle
// mode; yellow without a network; green once firmware is there and for traffic.
constexpr LEDs stFactoryLEDs{{1, 0x01, 0x02, 2, 0x40, 0xA0, 3, 0x08, 0x00, 4, 0x04, 0x10}};

class GPIO : public Subsystem {
  public:
    explicit GPIO(Modem &stModem);
    void Start() override;

  private:
    int32_t SetBit(ByteView stRequest);
    int32_t TellBit(ByteView stRequest);
    int32_t SetLEDs(ByteView stRequest);

    Modem &m_stModem;
    std::vector<int64_t> m_aiSetAtStart;
    LEDs m_stLEDs;
    LEDs m_stSavedLEDs = stFactoryLEDs;
};

// Where saved LEDs are kept: the modem's configuration file.
constexpr const char *pcSection = "gpio";
constexpr const char *pcLEDs = "leds";

GPIO::GPIO(Modem &stModem) : m_stModem(stModem) {
    const StateFile::Values &astKept = stModem.TheStateFile().Kept(pcSection);
    const auto pstKept = astKept.find(pcLEDs);
    if (pstKept != astKept.end() && pstKept->second.size() == LEDState::Size) {
        PutBytes(m_stSavedLEDs.Span(), 0, {pstKept->second.data(), LEDState::Size});
    }
    m_aiSetAtStart = stModem.Settings("gpio").Integers("set", 0, GPIOBit::LastPosition);
    stModem.On(TYPE_GPIO, SUBTYPE_GPIO_SET,
               [this](const Request &stRequest) { return SetBit(stRequest.stPayload); });
    stModem.On(TYPE_GPIO, SUBTYPE_GPIO_STATUS,
               [this](const Request &stRequest) { return TellBit(stRequest.stPayload); });
    stModem.On(TYPE_GPIO, SUBTYPE_SET_LED_STATE,
               [this](const Request &stRequest) { return SetLEDs(stRequest.stPayload); });
    stModem.On(TYPE_GPIO, SUBTYPE_GET_LED_STATE, [this](const Request &) {
        m_stModem.Tell(TYPE_GPIO, SUBTYPE_GET_LED_STATE, m_stLEDs.View());
        return 0;
    });
}

void GPIO::Start() {
    for (const int64_t iPin : m_aiSetAtStart) {
        m_stModem.ThePins().SetByHost(static_cast<uint32_t>(iPin), true);
    }
    m_stLEDs = m_stSavedLEDs;
}

int32_t GPIO::SetBit(ByteView stRequest) {
    const uint32_t u32Position = Get(stRequest, GPIOBit::u32Position);
    const uint32_t u32Value = Get(stRequest, GPIOBit::u32Value);
    if (u32Position > GPIOBit::LastPosition || u32Value > GPIOBit::Set) {
        return LibraryError::BadValue;
    }
    m_stModem.ThePins().SetByHost(u32Position, u32Value != 0);
    return 0;
}

int32_t GPIO::TellBit(ByteView stRequest) {
    const uint32_t u32Position = Get(stRequest, GPIOBit::u32Position);
    if (u32Position > GPIOBit::LastPosition) {
        return LibraryError::BadValue;
    }
    Record<GPIOBit::Size> stAnswer;
    Put(stAnswer.Span(), GPIOBit::u32Position, u32Position);
    Put(stAnswer.Span(), GPIOBit::u32Value, m_stModem.ThePins().High(u32Position) ? 1 : 0);
    m_stModem.Tell(TYPE_GPIO, SUBTYPE_GPIO_STATUS, stAnswer.View());
    return 0;
}

// An entry that was left untouched leaves its LED as it is; any other one must be of
// the LED of its place. All entries are taken, or none.
int32_t GPIO::SetLEDs(ByteView stRequest) {
    LEDs stNew = m_stLEDs;
    for (uint32_t i = 0; i < LEDEntry::Count; ++i) {
        const uint32_t u32Offset = i * LEDEntry::Size;
        const ByteView stEntry =
            stRequest.From(LEDBehaviour::astEntries + u32Offset, LEDEntry::Size);
        const uint32_t u32Type = Get(stEntry, LEDEntry::ucLedType);
        if (u32Type == LEDEntry::Untouched) {
            continue;
        }
        if ((u32Type & ~LEDEntry::ReversePolarity) != i + 1) {
            return LibraryError::BadValue;
        }
        PutBytes(stNew.Span(), LEDState::astEntries + u32Offset, stEntry);
    }
    m_stLEDs = stNew;
    if (Get(stRequest, LEDBehaviour::u32Save) == 1) {
        m_stSavedLEDs = stNew;
        m_stModem.TheStateFile().Keep(pcSection, pcLEDs,
                                      {std::begin(stNew.aucBytes), std::end(stNew.aucBytes)});
    }
    m_stModem.Tell(TYPE_GPIO, SUBTYPE_SET_LED_STATE);
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeGPIO(Modem &stModem) { return std::make_unique<GPIO>(stModem); }
