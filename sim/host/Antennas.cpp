// The two antennas and the GPIO pins that switch between them: configuration, scans
// that measure both antennas frame by frame, selection.
#include <algorithm>
#include <array>
#include <vector>

#include "AntennaRecords.h"
#include "host/HostSubsystems.h"
#include "host/MIBStore.h"
#include "link/Link.h"

namespace {

constexpr uint32_t u32Pins = 16;
constexpr uint32_t u32WordSize = 4;

// Status of the answers.
enum Status : uint32_t {
    Success = 0,
    TooManyPins = 1, // or patterns
    NoSuchPin = 2,
    PinUsedTwice = 3,
    BadPattern = 4, // needs a pin that is not configured
    BadSetting = 5, // of configuration, transmit antenna or scan
    ScanRunning = 6,
    NoScanRunning = 7,
    NoStation = 8,
};

// Scan status of an answer without an error.
constexpr uint32_t u32ScanAborted = 0;
constexpr uint32_t u32ScanComplete = 1;
constexpr uint32_t u32ScanGoesOn = 2;

// Transmit antenna settings: the last one of each kind.
constexpr uint32_t u32FirstManualSetting = 1;
constexpr uint32_t u32LastManualSetting = 2;
constexpr uint32_t u32LastAutoSetting = 4;
enum AutoSetting : uint32_t { Better = 0, Second = 2, FirstIfBetter = 3 };

// Averaging parameters and thresholds (dB) beyond these make no sense.
constexpr uint32_t u32MostAveraging = 512; // the new value alone: 512 parts of 512
constexpr int32_t iMostThreshold = 100;

// How the transmit antenna is chosen.
struct TxChoice {
    bool bAuto = true;
    uint32_t u32Setting = Better;
    std::array<uint32_t, 2> au32Averaging{128, 128}; // parts of 512
    std::array<int32_t, 2> aiThresholds{3, 3};       // dB
};

struct PinConfig {
    std::vector<uint32_t> au32Rx;
    std::vector<uint32_t> au32Tx;
};

uint32_t Judge(const PinConfig &stConfig) {
    std::vector<uint32_t> au32All = stConfig.au32Rx;
    au32All.insert(au32All.end(), stConfig.au32Tx.begin(), stConfig.au32Tx.end());
    if (std::any_of(au32All.begin(), au32All.end(),
                    [](uint32_t u32Pin) { return u32Pin >= u32Pins; })) {
        return NoSuchPin;
    }
    std::sort(au32All.begin(), au32All.end());
    return std::adjacent_find(au32All.begin(), au32All.end()) == au32All.end() ? Success
                                                                               : PinUsedTwice;
}

std::vector<uint32_t> Words(ByteView stView, Field stFirst, uint32_t u32Count) {
    std::vector<uint32_t> au32Words;
    for (uint32_t i = 0; i < u32Count; ++i) {
        au32Words.push_back(Get(stView, stFirst, i * u32WordSize));
    }
    return au32Words;
}

template <typename Values> void PutWords(ByteSpan stTo, Field stFirst, const Values &au32Words) {
    uint32_t u32Base = 0;
    for (const uint32_t u32Word : au32Words) {
        Put(stTo, stFirst, u32Word, u32Base);
        u32Base += u32WordSize;
    }
}

class Antennas : public Subsystem {
  public:
    explicit Antennas(Modem &stModem);
    void Start() override;

  private:
    struct Levels {
        uint32_t u32RSSI;
        uint32_t u32CINR;
    };
    // What one frame of a scan has shown.
    struct Frame {
        uint32_t u32Number;
        std::array<Levels, 2> astAntennas;
    };
    using Patterns = std::array<uint32_t, AntennaScanRequest::MaxGPIOPatterns>;

    static PinConfig ReadConfig(const Section &stSettings);
    int32_t Configure(ByteView stRequest);
    int32_t Scan(ByteView stRequest);
    uint32_t JudgeScan(ByteView stRequest) const;
    int32_t Select(ByteView stRequest);
    void Transmit(const TxChoice &stTx);
    // The pins show what is selected, and select when the host sets one of them.
    void DrivePins();
    void FollowPin(uint32_t u32Pin);
    uint32_t JudgeSelection(ByteView stRequest) const;
    static bool JudgeSwitching(ByteView stRequest);
    bool PatternPossible(uint32_t u32Pattern) const;
    bool WithStation() const;
    void ScanFrame();
    void WaitForFrame(ModemTime iWait);
    void EndScan(uint32_t u32ScanStatus);
    void StopScanning();
    void TellScan(uint32_t u32ScanStatus);
    void TellScanError(uint32_t u32Error);
    std::array<Levels, 2> Measure(uint32_t u32Pattern);
    double PatternGain(uint32_t u32Pattern) const;
    uint32_t TransmitAntenna() const;
    std::vector<uint8_t> SwitchInformation() const;
    uint32_t FrameNumber() const;

    Modem &m_stModem;
    Link &m_stLink;
    PinConfig m_stConfigAtStart;
    std::array<double, 2> m_afGains{}; // dB
    std::vector<int64_t> m_aiPatternGains;
    double m_fVariation; // dB to either side, from frame to frame

    Random &m_stRandom;
    PinConfig m_stConfig;
    Patterns m_au32Selected{};
    TxChoice m_stTx;
    Patterns m_au32Patterns{}; // of the scan
    uint32_t m_u32NumPatterns = 0;
    uint64_t m_u64FramesLeft = 0; // unless it has no end
    uint64_t m_u64FramesPerReport = 0;
    bool m_bEndless = false;
    ModemTime m_iFrameInterval = 0;
    uint64_t m_u64FramesDone = 0;
    std::vector<Frame> m_astFrames; // since the last report
    Timer m_stFrame;
};

Antennas::Antennas(Modem &stModem)
    : m_stModem(stModem), m_stLink(stModem.TheLink()), m_stRandom(stModem.RandomFor("antennas")),
      m_stFrame(stModem.Clock()) {
    const Section stSettings = stModem.Settings("antenna");
    m_stConfigAtStart = ReadConfig(stSettings);
    m_afGains = {stSettings.Number("gain-1", -100, 100, 0),
                 stSettings.Number("gain-2", -100, 100, -4)};
    m_aiPatternGains = stSettings.Integers("pattern-gains", -100, 100);
    m_fVariation = stSettings.Number("variation", 0, 100, 1);
    stModem.On(TYPE_ANTENNA, SUBTYPE_ANTENNA_CONFIG,
               [this](const Request &stRequest) { return Configure(stRequest.stPayload); });
    stModem.On(TYPE_ANTENNA, SUBTYPE_ANTENNA_SCANNING,
               [this](const Request &stRequest) { return Scan(stRequest.stPayload); });
    stModem.On(TYPE_ANTENNA, SUBTYPE_ANTENNA_SELECTION,
               [this](const Request &stRequest) { return Select(stRequest.stPayload); });
    stModem.TheMIBs().Provide(MIBAttribute::AntennaSwitch, [this] { return SwitchInformation(); });
    stModem.ThePins().OnHost([this](uint32_t u32Pin) { FollowPin(u32Pin); });
    Transmit({});
}

PinConfig Antennas::ReadConfig(const Section &stSettings) {
    PinConfig stConfig{{4, 5, 6}, {7}};
    const auto Read = [&](const char *pcKey, uint32_t u32Most, std::vector<uint32_t> *pau32Pins) {
        if (!stSettings.Has(pcKey)) {
            return;
        }
        const std::vector<int64_t> aiPins = stSettings.Integers(pcKey, 0, u32Pins - 1);
        if (aiPins.size() > u32Most) {
            stSettings.Refuse(pcKey, "must be at most " + std::to_string(u32Most));
        }
        pau32Pins->assign(aiPins.begin(), aiPins.end());
    };
    Read("rx-gpios", AntennaConfig::MaxRxGPIOs, &stConfig.au32Rx);
    Read("tx-gpios", AntennaConfig::MaxTxGPIOs, &stConfig.au32Tx);
    if (Judge(stConfig) != Success) {
        stSettings.Refuse("rx-gpios", "and \"tx-gpios\" must not name a pin twice");
    }
    return stConfig;
}

void Antennas::Start() {
    m_stConfig = m_stConfigAtStart;
    m_au32Selected = {};
    m_astFrames.clear();
    StopScanning();
    Transmit({});
}

void Antennas::Transmit(const TxChoice &stTx) {
    m_stTx = stTx;
    m_stModem.Air().SetTransmitGain(m_afGains[TransmitAntenna()]);
    DrivePins();
}

void Antennas::DrivePins() {
    for (size_t i = 0; i < m_stConfig.au32Rx.size(); ++i) {
        m_stModem.ThePins().Drive(m_stConfig.au32Rx[i], (m_au32Selected[0] >> i & 1) != 0);
    }
    for (const uint32_t u32Pin : m_stConfig.au32Tx) {
        m_stModem.ThePins().Drive(u32Pin, TransmitAntenna() != 0);
    }
}

void Antennas::FollowPin(uint32_t u32Pin) {
    const bool bHigh = m_stModem.ThePins().High(u32Pin);
    for (size_t i = 0; i < m_stConfig.au32Rx.size(); ++i) {
        if (m_stConfig.au32Rx[i] == u32Pin) {
            m_au32Selected[0] = (m_au32Selected[0] & ~(1U << i)) | (bHigh ? 1U << i : 0);
        }
    }
    const std::vector<uint32_t> &au32Tx = m_stConfig.au32Tx;
    if (std::find(au32Tx.begin(), au32Tx.end(), u32Pin) != au32Tx.end()) {
        TxChoice stTx = m_stTx;
        stTx.bAuto = false;
        stTx.u32Setting = bHigh ? u32LastManualSetting : u32FirstManualSetting;
        Transmit(stTx);
    }
}

// The antenna that transmits, 0 or 1. Chosen automatically, it is the one to begin with,
// until the other one is better by that one's threshold. What is better does not change:
// the antennas hear the same, but for their gains.
uint32_t Antennas::TransmitAntenna() const {
    const double fLead = m_afGains[0] - m_afGains[1]; // of the first one, dB
    if (!m_stTx.bAuto) {
        return m_stTx.u32Setting - u32FirstManualSetting;
    }
    switch (m_stTx.u32Setting) {
    case Better:
        return fLead >= 0 ? 0 : 1;
    case Second:
    case FirstIfBetter:
        return fLead > m_stTx.aiThresholds[0] ? 0 : 1;
    default: // the first one, or the second one if it is better
        return -fLead > m_stTx.aiThresholds[1] ? 1 : 0;
    }
}

// Attribute 1631.
std::vector<uint8_t> Antennas::SwitchInformation() const {
    using namespace MIBAntennaSwitch;
    constexpr double fSixteenths = 16;
    Record<Size> stValue;
    const ByteSpan stTo = stValue.Span();
    Put(stTo, u32Filtering1, m_stTx.au32Averaging[0]);
    Put(stTo, u32Filtering2, m_stTx.au32Averaging[1]);
    Put(stTo, u32Margin1, static_cast<uint32_t>(m_stTx.aiThresholds[0]));
    Put(stTo, u32Margin2, static_cast<uint32_t>(m_stTx.aiThresholds[1]));
    if (const Station *pstServing = m_stLink.Serving()) {
        const double fRSSI = m_stModem.Air().Measure(*pstServing, m_stModem.Now()).fRSSI +
                             PatternGain(m_au32Selected[0]);
        Put(stTo, s32SmoothRSSI1, Rounded((fRSSI + m_afGains[0]) * fSixteenths));
        Put(stTo, s32SmoothRSSI2, Rounded((fRSSI + m_afGains[1]) * fSixteenths));
    }
    Put(stTo, u32SelectionMode, m_stTx.bAuto ? 1 : 0);
    Put(stTo, u32CurrentAntenna, TransmitAntenna() + 1);
    return {std::begin(stValue.aucBytes), std::end(stValue.aucBytes)};
}

int32_t Antennas::Configure(ByteView stRequest) {
    using namespace AntennaConfig;
    Record<Size> stAnswer;
    PutBytes(stAnswer.Span(), 0, stRequest);
    Put(stAnswer.Span(), AntennaConfig::u32Status, Success);
    if (Get(stRequest, u32SetConfig) == Read) {
        std::vector<uint32_t> au32Rx = m_stConfig.au32Rx;
        au32Rx.resize(MaxRxGPIOs, UnusedPin);
        Put(stAnswer.Span(), u32NumRxGPIOs, static_cast<uint32_t>(m_stConfig.au32Rx.size()));
        Put(stAnswer.Span(), u32NumTxGPIOs, static_cast<uint32_t>(m_stConfig.au32Tx.size()));
        PutWords(stAnswer.Span(), au32RxGPIO, au32Rx);
        Put(stAnswer.Span(), u32TxGPIO,
            m_stConfig.au32Tx.empty() ? UnusedPin : m_stConfig.au32Tx[0]);
    } else if (Get(stRequest, u32SetConfig) != Write) {
        Put(stAnswer.Span(), AntennaConfig::u32Status, BadSetting);
    } else {
        const uint32_t u32Rx = Get(stRequest, u32NumRxGPIOs);
        const uint32_t u32Tx = Get(stRequest, u32NumTxGPIOs);
        uint32_t u32Status = TooManyPins;
        if (u32Rx <= MaxRxGPIOs && u32Tx <= MaxTxGPIOs) {
            const PinConfig stNew{Words(stRequest, au32RxGPIO, u32Rx),
                                  Words(stRequest, u32TxGPIO, u32Tx)};
            u32Status = m_stFrame.Running() ? ScanRunning : Judge(stNew);
            if (u32Status == Success) {
                m_stConfig = stNew;
                m_au32Selected = {};
                DrivePins();
            }
        }
        Put(stAnswer.Span(), AntennaConfig::u32Status, u32Status);
    }
    m_stModem.Tell(TYPE_ANTENNA, SUBTYPE_ANTENNA_CONFIG, stAnswer.View());
    return 0;
}

// A pattern has a bit for each receive pin of the configuration, in its order.
bool Antennas::PatternPossible(uint32_t u32Pattern) const {
    return u32Pattern < uint32_t{1} << m_stConfig.au32Rx.size();
}

bool Antennas::WithStation() const {
    return m_stLink.IsAnyOf({LinkState::Synchronised, LinkState::Entering, LinkState::LinkUp});
}

uint32_t Antennas::JudgeScan(ByteView stRequest) const {
    using namespace AntennaScanRequest;
    const uint32_t u32Choice = Get(stRequest, u32ScanChoice);
    const uint32_t u32Patterns = Get(stRequest, u32NumGPIOPatterns);
    if (m_stFrame.Running()) {
        return ScanRunning;
    }
    if (u32Choice != AntennaScanRequest::Scan && u32Choice != InfiniteScan) {
        return BadSetting;
    }
    if (u32Choice == AntennaScanRequest::Scan && Get(stRequest, u32Iterations) == 0) {
        return BadSetting;
    }
    if (u32Patterns > MaxGPIOPatterns) {
        return TooManyPins;
    }
    for (const uint32_t u32Pattern : Words(stRequest, au32GPIOPattern, u32Patterns)) {
        if (!PatternPossible(u32Pattern)) {
            return BadPattern;
        }
    }
    return WithStation() ? Success : NoStation;
}

int32_t Antennas::Scan(ByteView stRequest) {
    using namespace AntennaScanRequest;
    if (Get(stRequest, u32ScanChoice) == Abort) {
        if (m_stFrame.Running()) {
            EndScan(u32ScanAborted);
        } else {
            TellScanError(NoScanRunning);
        }
        return 0;
    }
    const uint32_t u32Error = JudgeScan(stRequest);
    if (u32Error != Success) {
        TellScanError(u32Error);
        return 0;
    }
    // An iteration takes a frame for each pattern; without patterns, one with the
    // antennas as they are.
    m_u32NumPatterns = Get(stRequest, u32NumGPIOPatterns);
    m_au32Patterns = {};
    for (uint32_t i = 0; i < m_u32NumPatterns; ++i) {
        m_au32Patterns[i] = Get(stRequest, au32GPIOPattern, i * u32WordSize);
    }
    m_u64FramesLeft = uint64_t{Get(stRequest, u32Iterations)} * std::max(m_u32NumPatterns, 1U);
    m_bEndless = Get(stRequest, u32ScanChoice) == InfiniteScan;
    m_u64FramesPerReport = AntennaScan::MaxFrames;
    if (m_bEndless && m_u64FramesLeft != 0) {
        m_u64FramesPerReport = std::min(m_u64FramesPerReport, m_u64FramesLeft);
    }
    m_iFrameInterval = (ModemTime{Get(stRequest, u32ScanInterleaveInterval)} + 1) * i64Frame;
    m_u64FramesDone = 0;
    m_astFrames.clear();
    const auto u64First = static_cast<uint64_t>(m_stModem.Now() / i64Frame) + 1;
    const auto u64Every = static_cast<uint64_t>(m_iFrameInterval / i64Frame);
    m_stModem.ThePresence().Leave(Absence::Scan, [u64First, u64Every](uint64_t u64Frame) {
        return u64Frame >= u64First && (u64Frame - u64First) % u64Every == 0;
    });
    WaitForFrame(i64Frame);
    return 0;
}

void Antennas::ScanFrame() {
    if (!WithStation()) {
        StopScanning();
        m_astFrames.clear();
        TellScanError(NoStation);
        return;
    }
    const uint32_t u32Pattern =
        m_u32NumPatterns != 0
            ? m_au32Patterns[static_cast<uint32_t>(m_u64FramesDone % m_u32NumPatterns)]
            : m_au32Selected[0];
    m_astFrames.push_back({FrameNumber(), Measure(u32Pattern)});
    ++m_u64FramesDone;
    if (!m_bEndless && --m_u64FramesLeft == 0) {
        EndScan(u32ScanComplete);
        return;
    }
    if (m_astFrames.size() == m_u64FramesPerReport) {
        TellScan(u32ScanGoesOn);
        m_astFrames.clear();
    }
    WaitForFrame(m_iFrameInterval);
}

// A scan without end is no answer that anybody could wait for.
void Antennas::WaitForFrame(ModemTime iWait) {
    if (m_bEndless) {
        m_stFrame.Start(iWait, [this] { ScanFrame(); });
    } else {
        m_stFrame.StartAnswer(iWait, [this] { ScanFrame(); });
    }
}

void Antennas::StopScanning() {
    m_stFrame.Stop();
    m_stModem.ThePresence().Return(Absence::Scan);
}

void Antennas::EndScan(uint32_t u32ScanStatus) {
    StopScanning();
    TellScan(u32ScanStatus);
    m_astFrames.clear();
}

uint32_t Antennas::FrameNumber() const {
    constexpr ModemTime i64Count = 1 << 24; // as wide as the air interface has it
    return static_cast<uint32_t>(m_stModem.Now() / i64Frame % i64Count);
}

double Antennas::PatternGain(uint32_t u32Pattern) const {
    return u32Pattern < m_aiPatternGains.size() ? static_cast<double>(m_aiPatternGains[u32Pattern])
                                                : 0;
}

std::array<Antennas::Levels, 2> Antennas::Measure(uint32_t u32Pattern) {
    std::array<Levels, 2> astLevels{};
    for (size_t i = 0; i < astLevels.size(); ++i) {
        const double fChange =
            m_afGains[i] + PatternGain(u32Pattern) + m_fVariation * (2 * m_stRandom.Uniform() - 1);
        const Measurement stMeasurement =
            m_stModem.Air().Measure(*m_stLink.Serving(), m_stModem.Now(), fChange);
        astLevels[i] = {Rounded(stMeasurement.fRSSI), Rounded(stMeasurement.fCINR)};
    }
    return astLevels;
}

void Antennas::TellScan(uint32_t u32ScanStatus) {
    using namespace AntennaScan;
    Record<Size> stAnswer;
    const ByteSpan stTo = stAnswer.Span();
    Put(stTo, AntennaScan::u32ScanStatus, u32ScanStatus);
    Put(stTo, u32FramesScanned, static_cast<uint32_t>(m_astFrames.size()));
    PutWords(stTo, au32RxGPIOPattern, m_au32Patterns);
    uint32_t u32Base = 0;
    for (const Frame &stFrame : m_astFrames) {
        Put(stTo, as32RSSIAnt1, stFrame.astAntennas[0].u32RSSI, u32Base);
        Put(stTo, as32CINRAnt1, stFrame.astAntennas[0].u32CINR, u32Base);
        Put(stTo, as32RSSIAnt2, stFrame.astAntennas[1].u32RSSI, u32Base);
        Put(stTo, as32CINRAnt2, stFrame.astAntennas[1].u32CINR, u32Base);
        Put(stTo, AntennaScan::au32FrameNumber, stFrame.u32Number, u32Base);
        u32Base += u32WordSize;
    }
    PutWords(stTo, au32CurrentGPIOPattern, m_au32Selected);
    if (WithStation()) {
        const std::array<Levels, 2> astNow = Measure(m_au32Selected[0]);
        Put(stTo, s32CurrentRSSIAnt1, astNow[0].u32RSSI);
        Put(stTo, s32CurrentCINRAnt1, astNow[0].u32CINR);
        Put(stTo, s32CurrentRSSIAnt2, astNow[1].u32RSSI);
        Put(stTo, s32CurrentCINRAnt2, astNow[1].u32CINR);
    }
    m_stModem.Tell(TYPE_ANTENNA, SUBTYPE_ANTENNA_SCANNING, stAnswer.View());
}

void Antennas::TellScanError(uint32_t u32Error) {
    Record<AntennaScan::Size> stAnswer;
    Put(stAnswer.Span(), AntennaScan::u32ScanError, u32Error);
    m_stModem.Tell(TYPE_ANTENNA, SUBTYPE_ANTENNA_SCANNING, stAnswer.View());
}

uint32_t Antennas::JudgeSelection(ByteView stRequest) const {
    using namespace AntennaSelection;
    if (Get(stRequest, u32RxSelectionValid) != 0) {
        for (const uint32_t u32Pattern : Words(stRequest, au32RxAntennaSetting, RxSettings)) {
            if (!PatternPossible(u32Pattern)) {
                return BadPattern;
            }
        }
    }
    if (Get(stRequest, u32TxSelectionValid) != 0) {
        const bool bAuto = Get(stRequest, u32TxAutoSelection) != 0;
        const uint32_t u32Setting = Get(stRequest, u32TxAntennaSetting);
        const bool bGood =
            bAuto ? u32Setting <= u32LastAutoSetting && JudgeSwitching(stRequest)
                  : u32Setting >= u32FirstManualSetting && u32Setting <= u32LastManualSetting;
        return bGood ? Success : BadSetting;
    }
    return Success;
}

bool Antennas::JudgeSwitching(ByteView stRequest) {
    using namespace AntennaSelection;
    const auto Sensible = [&](Field stThreshold) {
        return std::abs(int64_t{GetSigned(stRequest, stThreshold)}) <= iMostThreshold;
    };
    return Get(stRequest, u32IIRAvgAnt1) <= u32MostAveraging &&
           Get(stRequest, u32IIRAvgAnt2) <= u32MostAveraging && Sensible(s32HysThreshAnt1) &&
           Sensible(s32HysThreshAnt2);
}

int32_t Antennas::Select(ByteView stRequest) {
    using namespace AntennaSelection;
    const uint32_t u32Status = JudgeSelection(stRequest);
    if (u32Status == Success && Get(stRequest, u32RxSelectionValid) != 0) {
        for (uint32_t i = 0; i < RxSettings; ++i) {
            m_au32Selected[i] = Get(stRequest, au32RxAntennaSetting, i * u32WordSize);
        }
        DrivePins();
    }
    if (u32Status == Success && Get(stRequest, u32TxSelectionValid) != 0) {
        TxChoice stTx = m_stTx;
        stTx.bAuto = Get(stRequest, u32TxAutoSelection) != 0;
        stTx.u32Setting = Get(stRequest, u32TxAntennaSetting);
        if (stTx.bAuto) {
            stTx.au32Averaging = {Get(stRequest, u32IIRAvgAnt1), Get(stRequest, u32IIRAvgAnt2)};
            stTx.aiThresholds = {GetSigned(stRequest, s32HysThreshAnt1),
                                 GetSigned(stRequest, s32HysThreshAnt2)};
        }
        Transmit(stTx);
    }
    Record<StatusWord::Size> stAnswer;
    Put(stAnswer.Span(), StatusWord::u32Value, u32Status);
    m_stModem.Tell(TYPE_ANTENNA, SUBTYPE_ANTENNA_SELECTION, stAnswer.View());
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeAntennas(Modem &stModem) {
    return std::make_unique<Antennas>(stModem);
}
