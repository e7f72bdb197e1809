#include "Client.h"

#include <new>

#include "Console.h"
#include "Dispatcher.h"
#include "Message.h"

namespace {

constexpr int iRetries = 20;
constexpr uint32_t u32RetryPause = 1000000; // microseconds

bool OpenDevice() {
    g_hDevice = OpenWiMAXDevice();
    for (int i = 0; i < iRetries && g_hDevice == WIMAX_NO_DEVICE; ++i) {
        if (i > 0) {
            PauseMicroseconds(u32RetryPause);
            EndIfTold();
        }
        PutText("\n Opening device handle... ");
        FlushOutput();
        g_hDevice = OpenWiMAXDevice();
        PutText(g_hDevice == WIMAX_NO_DEVICE ? " Failed" : " Success");
        FlushOutput();
    }
    if (g_hDevice == WIMAX_NO_DEVICE) {
        PutText("\n Error opening device handle !!!, exiting...");
        FlushOutput();
        return false;
    }
    RegisterCallback(g_hDevice, TVLCallback, 0);
    return true;
}

// Runs a step of the client; returns the exit status that a throw asked for.
template <typename Step> int StatusOf(Step RunStep) {
    try {
        return RunStep();
    } catch (const ClientEnd &stEnd) {
        return stEnd.iExitStatus;
    } catch (const std::bad_alloc &) {
        EndWithoutMemory();
        return EndStatus();
    }
}

} // namespace

int RunClient(void (*pfnRunMenus)()) {
    OpenConsole();
    bool bOpen = false;
    int iStatus = StatusOf([&] {
        bOpen = OpenDevice();
        return bOpen ? 0 : -1;
    });
    if (bOpen) {
        iStatus = StatusOf([&] {
            pfnRunMenus();
            return 0;
        });
        FlushOutput();
        BeginLeaving();
        CloseWiMAXDevice();
    }
    CloseConsole();
    return EndStatus() != 0 ? EndStatus() : iStatus;
}
