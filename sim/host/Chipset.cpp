// Chipset control: reset, firmware download, and the state of the modem, which is
// answered at once whatever that state is.
#include <array>
#include <string>

#include "StationRecords.h"
#include "host/HostSubsystems.h"
#include "link/Link.h"

namespace {

// Status of a download.
enum DownloadResult : uint32_t {
    Downloaded = 0,
    OutOfOrder = 1,  // the firmware without a good configuration before it
    NoSuchFile = 2,  // the host has no such file, or it cannot be read
    UnknownFile = 3, // neither configuration nor firmware
};

struct FileRow {
    uint32_t u32FileType;
    const char *pcName; // of its keys
    uint32_t u32Size;   // bytes, when the host's file does not count
};

constexpr std::array astFiles{
    FileRow{DownloadFile::Configuration, "configuration", 20000},
    FileRow{DownloadFile::Firmware, "firmware", 1500000},
};

// The text that the bytes hold: it ends at a zero byte or with them.
std::string TextIn(ByteView stBytes) {
    std::string strText;
    for (uint32_t i = 0; stBytes.At(i) != 0; ++i) {
        strText += static_cast<char>(stBytes.At(i));
    }
    return strText;
}

ByteView PathIn(ByteView stRequest) {
    return stRequest.From(DownloadRequest::acPath, DownloadRequest::PathSize);
}

class Chipset : public Subsystem {
  public:
    explicit Chipset(Modem &stModem);
    void Start() override;

  private:
    int32_t Reset();
    int32_t Download(ByteView stRequest);
    int32_t TellState(ByteSpan stReply) const;
    // Where a file is looked for.
    std::string OnHost(const std::string &strPath) const;
    // Transfers the file, from its beginning.
    void Transfer();
    void FinishTransfer(uint32_t u32Result);
    void Boot();
    uint32_t State() const;
    void TellDownload(uint32_t u32Result, ByteView stRequest) const;

    Modem &m_stModem;
    ModemTime m_iResetTime;
    ModemTime m_iWatchdog; // from a crash to the reset, 0: none comes
    double m_fRate;        // bytes a second
    ModemTime m_iRetryAfter;
    uint32_t m_u32Retries;
    bool m_bRequireFiles;
    std::string m_strHostDirectory; // empty: files are where their paths say
    uint32_t m_u32FailureCode;
    std::array<uint32_t, astFiles.size()> m_au32Sizes{};
    // So many transfers still fail, as the scenario has it. A reset changes nothing in
    // that.
    std::array<uint32_t, astFiles.size()> m_au32Failures{};

    bool m_bConfigured = false; // the firmware may come
    bool m_bCrashed = false;
    Record<DownloadRequest::Size> m_stRequest; // of the download under way
    uint32_t m_u32RetriesLeft = 0;
    Timer m_stStep; // transfer, or the pause before the next one
    Timer m_stBoot;
    Timer m_stWatchdog;
};

Chipset::Chipset(Modem &stModem)
    : m_stModem(stModem), m_stStep(stModem.Clock()), m_stBoot(stModem.Clock()),
      m_stWatchdog(stModem.Clock()) {
    const Section stSettings = stModem.Settings("chipset");
    m_iResetTime = stSettings.Seconds("reset-time", 0, 1000, 0.5);
    m_iWatchdog = stSettings.Seconds("watchdog", 0, 1e6, 0);
    const Section stDownload = stModem.Settings("download");
    m_fRate = stDownload.Number("rate", 1, 1e12, 500000);
    m_iRetryAfter = stDownload.Seconds("retry-after", 0.001, 1e6, 2);
    m_u32Retries = static_cast<uint32_t>(stDownload.Integer("retries", 0, UINT32_MAX, 3));
    m_bRequireFiles = stDownload.Flag("require-files", false);
    m_strHostDirectory = stDownload.Text("host-directory", "");
    m_u32FailureCode = static_cast<uint32_t>(stDownload.Integer("failure-code", 1, UINT32_MAX, 5));
    for (const FileRow &stFile : astFiles) {
        const std::string strName = stFile.pcName;
        m_au32Sizes[stFile.u32FileType] = static_cast<uint32_t>(
            stDownload.Integer(strName + "-size", 0, UINT32_MAX, stFile.u32Size));
        m_au32Failures[stFile.u32FileType] =
            static_cast<uint32_t>(stDownload.Integer(strName + "-failures", 0, UINT32_MAX, 0));
    }
    stModem.On(TYPE_CHIPSET, SUBTYPE_CHIPSET_RESET, [this](const Request &) { return Reset(); });
    stModem.On(TYPE_CHIPSET, SUBTYPE_FIRMWARE_DOWNLOAD,
               [this](const Request &stRequest) { return Download(stRequest.stPayload); });
    stModem.OnAnsweredAtOnce(TYPE_CHIPSET, SUBTYPE_MODEM_STATUS, [this](const Request &stRequest) {
        return TellState(stRequest.stReply);
    });
    stModem.OnEvent("crash", [this](const Section &) {
        return [this] {
            m_bCrashed = true;
            m_stStep.Stop();
            m_stBoot.Stop();
            m_stModem.Halt();
            if (m_iWatchdog != 0) {
                m_stWatchdog.Start(m_iWatchdog, [this] { Boot(); });
            }
        };
    });
}

void Chipset::Start() {
    m_bConfigured = false;
    m_bCrashed = false;
    m_stStep.Stop();
    m_stBoot.Stop();
    m_stWatchdog.Stop();
}

int32_t Chipset::Reset() {
    m_stStep.Stop();
    Boot();
    return 0;
}

// The modem is gone until it has started again.
void Chipset::Boot() {
    m_stWatchdog.Stop();
    m_stModem.Halt();
    m_stBoot.StartAnswer(m_iResetTime, [this] {
        m_stModem.Restart();
        m_stModem.Tell(TYPE_CHIPSET, SUBTYPE_CHIPSET_RESET);
    });
}

int32_t Chipset::Download(ByteView stRequest) {
    const uint32_t u32FileType = Get(stRequest, DownloadRequest::u32FileType);
    const bool bConfiguration = u32FileType == DownloadFile::Configuration;
    if (!bConfiguration && u32FileType != DownloadFile::Firmware) {
        TellDownload(UnknownFile, stRequest);
    } else if (!bConfiguration && !m_bConfigured) {
        TellDownload(OutOfOrder, stRequest);
    } else {
        m_bConfigured = false;
        m_u32RetriesLeft = m_u32Retries;
        PutBytes(m_stRequest.Span(), 0, stRequest);
        Transfer();
    }
    return 0;
}

std::string Chipset::OnHost(const std::string &strPath) const {
    return m_strHostDirectory.empty()
               ? strPath
               : m_strHostDirectory + "/" + strPath.substr(strPath.rfind('/') + 1);
}

void Chipset::Transfer() {
    const uint32_t u32FileType = Get(m_stRequest.View(), DownloadRequest::u32FileType);
    uint64_t u64Size = m_au32Sizes[u32FileType];
    uint32_t u32Result = Downloaded;
    if (m_bRequireFiles) {
        const std::optional<uint64_t> u64OnHost =
            m_stModem.TheFiles().SizeOf(OnHost(TextIn(PathIn(m_stRequest.View()))));
        u64Size = u64OnHost.value_or(0);
        u32Result = u64OnHost ? u32Result : NoSuchFile;
    }
    if (u32Result == Downloaded && m_au32Failures[u32FileType] != 0) {
        --m_au32Failures[u32FileType];
        u32Result = m_u32FailureCode;
    }
    const double fTime =
        std::min(static_cast<double>(u64Size) / m_fRate, 1e9) * static_cast<double>(i64Second);
    m_stStep.StartAnswer(static_cast<ModemTime>(fTime),
                         [this, u32Result] { FinishTransfer(u32Result); });
}

// What has failed is tried again, without being asked to.
void Chipset::FinishTransfer(uint32_t u32Result) {
    const bool bConfiguration =
        Get(m_stRequest.View(), DownloadRequest::u32FileType) == DownloadFile::Configuration;
    TellDownload(u32Result, m_stRequest.View());
    if (u32Result != Downloaded) {
        if (m_u32RetriesLeft != 0) {
            --m_u32RetriesLeft;
            m_stStep.StartAnswer(m_iRetryAfter, [this] { Transfer(); });
        }
    } else if (bConfiguration) {
        m_bConfigured = true;
    } else {
        Boot();
    }
}

void Chipset::TellDownload(uint32_t u32Result, ByteView stRequest) const {
    Record<DownloadStatus::acPath + DownloadRequest::PathSize> stStatus;
    Put(stStatus.Span(), DownloadStatus::u32Status, u32Result);
    Put(stStatus.Span(), DownloadStatus::u32FileType, Get(stRequest, DownloadRequest::u32FileType));
    PutBytes(stStatus.Span(), DownloadStatus::acPath, PathIn(stRequest));
    m_stModem.Tell(TYPE_CHIPSET, SUBTYPE_FIRMWARE_DOWNLOAD, stStatus.View());
}

uint32_t Chipset::State() const {
    const Link &stLink = m_stModem.TheLink();
    if (m_stStep.Running() || m_stBoot.Running()) {
        return ModemStatus::DownloadInProgress;
    }
    if (m_bCrashed) {
        return ModemStatus::Crashed;
    }
    if (stLink.IsAnyOf({LinkState::ShuttingDown, LinkState::Shutdown})) {
        return ModemStatus::InShutdownMode;
    }
    return stLink.State() == LinkState::Idle ? ModemStatus::InIdleMode : ModemStatus::Active;
}

int32_t Chipset::TellState(ByteSpan stReply) const {
    Put(stReply, ModemStatus::u8State, State());
    return 0;
}

} // namespace

std::unique_ptr<Subsystem> MakeChipset(Modem &stModem) {
    return std::make_unique<Chipset>(stModem);
}
