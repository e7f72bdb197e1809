// The device library's functions. No exception leaves them.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "library/Control.h"
#include "library/Device.h"

#define EXPORTED __attribute__((visibility("default")))

namespace {

constexpr uint32_t hTheDevice = 1;
// The exit status of a process that has no use for the library as it was set up.
constexpr int iUnusable = 2;

struct Library {
    std::mutex stMutex;
    std::shared_ptr<Device> pstDevice;   // null while closed
    std::unique_ptr<Control> pstControl; // of the device, if it is wanted
    std::string strScenario;             // the one that the attempts are counted for
    uint32_t u32Attempts = 0;
    std::string strLastReport;
    bool bWasOpen = false;
};

// Never destroyed: the device may be in use until the process is gone.
Library &TheLibrary() {
    static auto &stLibrary = *new Library;
    return stLibrary;
}

std::shared_ptr<Device> OpenDevice() {
    const std::lock_guard stLock(TheLibrary().stMutex);
    return TheLibrary().pstDevice;
}

Scenario ChosenScenario(const std::string &strPath, std::shared_ptr<Files> pstFiles) {
    return strPath.empty() ? Scenario::BuiltIn(std::move(pstFiles))
                           : Scenario::FromFile(strPath, std::move(pstFiles));
}

// A journal is for those who can ask for it, and for a modem whose time repeats.
JournaledModem Journaled(std::unique_ptr<WholeModem> pstModem, bool bCanBeAsked,
                         std::shared_ptr<JournaledFiles> pstFiles) {
    if (bCanBeAsked && pstModem->HowTimePasses().bStepped) {
        return JournaledModem(std::move(pstModem), std::make_unique<Journal>(std::move(pstFiles)));
    }
    pstFiles->Forget();
    return JournaledModem(std::move(pstModem));
}

// One line for one mistake, however often the client tries.
void Report(const std::string &strReason) {
    const std::lock_guard stLock(TheLibrary().stMutex);
    if (TheLibrary().strLastReport != strReason) {
        TheLibrary().strLastReport = strReason;
        (void)std::fprintf(stderr, "libqor020: %s\n", strReason.c_str());
    }
}

// A device that is to be closed, with its control, when nobody has the library's lock: a running
// callback may be sending.
struct Closing {
    std::shared_ptr<Device> pstDevice;
    std::unique_ptr<Control> pstControl;

    Closing() = default;
    Closing(const Closing &) = delete;
    Closing &operator=(const Closing &) = delete;
    ~Closing() {
        if (pstDevice != nullptr) {
            pstDevice->Stop();
        }
    }
    // With the lock.
    void TakeFrom(Library &stLibrary) {
        pstDevice = std::move(stLibrary.pstDevice);
        stLibrary.pstDevice = nullptr;
        pstControl = std::move(stLibrary.pstControl);
    }
};

std::string EnvironmentOf(const char *pcName) {
    const char *pcValue = std::getenv(pcName);
    return pcValue != nullptr ? pcValue : "";
}

// Throws ScenarioError.
std::unique_ptr<Control> WantedControl() {
    const std::string strPath = EnvironmentOf("QOR020_CONTROL_SOCKET");
    return strPath.empty() ? nullptr : std::make_unique<Control>(strPath);
}

// Throws ScenarioError.
uint32_t Open() {
    Closing stUnloaded;
    Library &stLibrary = TheLibrary();
    const std::lock_guard stLock(stLibrary.stMutex);
    if (stLibrary.pstDevice != nullptr && !stLibrary.pstDevice->Unloaded()) {
        return hTheDevice;
    }
    const std::string strScenario = EnvironmentOf("QOR020_SCENARIO");
    if (strScenario != stLibrary.strScenario) {
        stLibrary.strScenario = strScenario;
        stLibrary.u32Attempts = 0;
    }
    ++stLibrary.u32Attempts;
    const auto pstFiles = std::make_shared<JournaledFiles>();
    auto pstModem = std::make_unique<WholeModem>(ChosenScenario(strScenario, pstFiles));
    if (!pstModem->OpensAt(stLibrary.u32Attempts)) {
        return WIMAX_NO_DEVICE;
    }
    if (stLibrary.pstControl != nullptr) {
        stLibrary.pstControl->LeavePath();
    }
    std::unique_ptr<Control> pstControl = WantedControl();
    std::shared_ptr<Device> pstDevice =
        Device::Start(Journaled(std::move(pstModem), pstControl != nullptr, pstFiles));
    if (pstControl != nullptr) {
        pstControl->Serve(pstDevice);
    }
    stUnloaded.TakeFrom(stLibrary);
    stLibrary.pstDevice = std::move(pstDevice);
    stLibrary.pstControl = std::move(pstControl);
    stLibrary.bWasOpen = true;
    return hTheDevice;
}

bool WasOpen() {
    const std::lock_guard stLock(TheLibrary().stMutex);
    return TheLibrary().bWasOpen;
}

// The interface knows one result for a device that is not there, which clients try again and again.
// No attempt helps against a mistake in the files that the process was started with: it ends.
uint32_t OpenOrEnd() {
    try {
        return Open();
    } catch (const ScenarioError &stError) {
        Report(stError.what());
    }
    if (!WasOpen()) {
        std::exit(iUnusable); // without the lock: what runs at the end may close the device
    }
    return WIMAX_NO_DEVICE;
}

// Runs pfnUse with the open device, if hDevice is its handle.
template <typename Use> int32_t WithDevice(uint32_t hDevice, Use pfnUse) {
    const std::shared_ptr<Device> pstDevice = OpenDevice();
    if (pstDevice == nullptr) {
        return LibraryError::NotOpen;
    }
    return hDevice == hTheDevice ? pfnUse(*pstDevice) : LibraryError::BadHandle;
}

// The result of pfnCall, or that of a device that is not there when it throws.
template <typename Result, typename Call> Result Guarded(Result Failure, Call pfnCall) noexcept {
    try {
        return pfnCall();
    } catch (...) {
        return Failure;
    }
}

} // namespace

EXPORTED uint32_t OpenWiMAXDevice() { return Guarded(WIMAX_NO_DEVICE, OpenOrEnd); }

EXPORTED int32_t RegisterCallback(uint32_t hDevice, WiMAXCallback pfnCallback,
                                  uint32_t u32Context) {
    return Guarded(LibraryError::NotOpen, [&] {
        return WithDevice(hDevice, [&](Device &stDevice) {
            stDevice.SetCallback(pfnCallback, u32Context);
            return 0;
        });
    });
}

EXPORTED int32_t SendWiMAXMessage(uint32_t hDevice, void *pvMessage, uint32_t u32Length) {
    return Guarded(LibraryError::NotOpen, [&] {
        return WithDevice(hDevice, [&](Device &stDevice) {
            return stDevice.Send(static_cast<uint8_t *>(pvMessage), u32Length);
        });
    });
}

EXPORTED int32_t CloseWiMAXDevice() {
    return Guarded(LibraryError::NotOpen, [] {
        Closing stClosed;
        const std::lock_guard stLock(TheLibrary().stMutex);
        stClosed.TakeFrom(TheLibrary());
        return stClosed.pstDevice != nullptr ? 0 : LibraryError::NotOpen;
    });
}

EXPORTED int32_t rdm(uint32_t u32Address, void *pvBuffer, uint32_t u32Count) {
    return Guarded(LibraryError::NotOpen, [&] {
        return WithDevice(hTheDevice, [&](Device &stDevice) {
            return pvBuffer == nullptr
                       ? LibraryError::NullBuffer
                       : stDevice.ReadMemory(u32Address,
                                             {static_cast<uint8_t *>(pvBuffer), u32Count});
        });
    });
}

EXPORTED int32_t wrm(uint32_t u32Address, const void *pvBuffer, uint32_t u32Count) {
    return Guarded(LibraryError::NotOpen, [&] {
        return WithDevice(hTheDevice, [&](Device &stDevice) {
            return pvBuffer == nullptr
                       ? LibraryError::NullBuffer
                       : stDevice.WriteMemory(u32Address,
                                              {static_cast<const uint8_t *>(pvBuffer), u32Count});
        });
    });
}
