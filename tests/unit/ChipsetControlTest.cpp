#include "ChipsetControl.h"

#include <chrono>
#include <thread>

#include "Message.h"
#include "TestConsole.h"

namespace {

class ChipsetControlTest : public ConsoleTest {
  protected:
    static std::string ReportOf(std::string_view strMessage) {
        return Report(ChipsetResponse, strMessage);
    }
};

constexpr const char *pcChipsetControlMenu = "\n******** CONNCETION MGMT MENU ********\n"
                                             "\n 1. CHIPSET RESET"
                                             "\n 2. FIRMWARE DOWNLOAD"
                                             "\n 3. BASEBAND MODEM STATUS CHECK"
                                             "\n\n**************************************\n"
                                             "\nENTER OPTION : ";
constexpr const char *pcDownloadBanner =
    "\n~~~~~~~~~~ FIRMWARE DOWNLOAD STATUS RECEIVED ~~~~~~~~~~\n";
constexpr const char *pcDownloadClosing =
    "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n";

constexpr const char *pcConfigurationRequest = "16/2 | 0:4 \"/lib/firmware/macqor.cfg\" 00*104";
constexpr const char *pcFirmwareRequest = "16/2 | 1:4 \"/lib/firmware/macqor200.bin\" 00*101";
constexpr const char *pcConfigurationDone = "16/2 | 0:4 0:4 \"/lib/firmware/macqor.cfg\" 00";

std::vector<std::string> BothRequests() {
    return {Recorded(pcConfigurationRequest), Recorded(pcFirmwareRequest)};
}

TEST_F(ChipsetControlTest, AResetIsSent) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(ChipsetControl(), 1U); }, "1\n"), pcChipsetControlMenu);
    FakeDevice::SetSendResult(3);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(ChipsetControl(), 0U); }, "1\n"),
              std::string(pcChipsetControlMenu) + "\nFailed to send the RESET Message to device!!");
    EXPECT_EQ(FakeDevice::Sent(), (std::vector<std::string>{"16/1", "16/1"}));
}

TEST_F(ChipsetControlTest, TheModemStatusIsInTheRequestsBuffer) {
    const struct {
        const char *pcReply;
        const char *pcText;
    } astStates[] = {
        {"16/3 | 00", "\nMODEM STATUS: MODE_ACTIVE"},
        {"16/3 | 01", "\nMODEM STATUS: MODEM_CRASHED_HANG"},
        {"16/3 | 02", "\nMODEM STATUS: MODEM_IN_SHUTDOWN_MODE"},
        {"16/3 | 03", "\nMODEM STATUS: MODEM_IN_IDLE_MODE"},
        {"16/3 | 04", "\nMODEM STATUS: MODEM_FIRMWARE_DOWNLOAD_IN_PROGRESS"},
        {"16/3 | 05", "\nMODEM STATUS: UNKNOWN"},
        {"16/3 | 09", "\nMODEM STATUS: UNKNOWN"},
        {"16/3 | ff", "\nMODEM STATUS: UNKNOWN"},
    };
    for (const auto &stState : astStates) {
        FakeDevice::QueueReply(Message(stState.pcReply));
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(ChipsetControl(), 1U); }, "3\n"),
                  std::string(pcChipsetControlMenu) + stState.pcText);
    }
    EXPECT_EQ(FakeDevice::Sent().at(0), "16/3 | 00");
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll().at(0).u32Length, 5U);
}

TEST_F(ChipsetControlTest, AModemStatusThatCannotBeAskedForIsReported) {
    for (const int32_t iResult : {-1, 1}) {
        FakeDevice::SetSendResult(iResult);
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(ChipsetControl(), 0U); }, "3\n"),
                  std::string(pcChipsetControlMenu) +
                      "\nFailed to get the baseband modem status :-(!!");
    }
}

TEST_F(ChipsetControlTest, OtherChoicesDoNothing) {
    for (const char *pcTyped : {"5\n", "0\n", "-1\n"}) {
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(ChipsetControl(), 1U); }, pcTyped),
                  pcChipsetControlMenu);
    }
    EXPECT_EQ(FakeDevice::Sent(), std::vector<std::string>{});
}

TEST_F(ChipsetControlTest, TheFirmwareFollowsTheConfiguration) {
    FakeDevice::QueueAnswer(Message(pcConfigurationDone));
    gbInsideSubMenu = 1;
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(ChipsetControl(), 0U); }, "2\n"),
              std::string(pcChipsetControlMenu) + "received path\nreceived path\n" +
                  pcDownloadBanner +
                  "\n Firmware Download Status : 0"
                  "\n Configuration File : /lib/firmware/macqor.cfg" +
                  pcDownloadClosing);
    EXPECT_EQ(FakeDevice::Sent(), BothRequests());
    EXPECT_EQ(FakeDevice::SendArgumentsOfAll(),
              (std::vector<FakeDevice::SendArguments>{{1, 136}, {1, 136}}));
}

TEST_F(ChipsetControlTest, OnlyAConfigurationThatWentDownWellEndsTheWait) {
    std::atomic<uint32_t> u32SentBefore{0};
    std::thread Modem([&] {
        while (FakeDevice::Sent().empty()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        FakeDevice::Deliver(Message("16/2 | 5:4 0:4 \"a\" 00"));
        FakeDevice::Deliver(Message("16/2 | 0:4 1:4 \"b\" 00"));
        FakeDevice::Deliver(Message("16/2 | 0:4 7:4 \"c\" 00"));
        FakeDevice::Deliver(Message("16/1"));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        u32SentBefore = static_cast<uint32_t>(FakeDevice::Sent().size());
        FakeDevice::Deliver(Message(pcConfigurationDone));
    });
    EndInput(); // does not end the wait either
    EXPECT_EQ(FirmwareDownload(), 0U);
    Modem.join();
    EXPECT_EQ(u32SentBefore, 1U);
    EXPECT_EQ(FakeDevice::Sent(), BothRequests());
}

TEST_F(ChipsetControlTest, AConfigurationThatCouldNotBeSentIsWaitedFor) {
    FakeDevice::QueueSendResult(-1);
    std::thread Modem([] {
        while (FakeDevice::Sent().empty()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        FakeDevice::Deliver(Message(pcConfigurationDone));
    });
    EXPECT_EQ(FirmwareDownload(), 0U);
    Modem.join();
    EXPECT_EQ(FakeDevice::Sent(), BothRequests());
}

TEST_F(ChipsetControlTest, OnlyAConfigurationWithoutAnErrorClearsTheFlag) {
    iFWDlFlag = -1;
    Printed();
    FakeDevice::Deliver(Message(pcConfigurationDone));
    EXPECT_EQ(iFWDlFlag, 0);
    iFWDlFlag = -1;
    FakeDevice::Deliver(Message("16/2 | 1:4 0:4"));
    FakeDevice::Deliver(Message("16/2 | 0:4 1:4"));
    EXPECT_EQ(iFWDlFlag, -1);
}

TEST_F(ChipsetControlTest, AResetIndicationIsReported) {
    EXPECT_EQ(ReportOf("16/1 | 00*8"), "\n~~~~~~~~~~ RESET INDICATION RECEIVED ~~~~~~~~~~\n");
}

TEST_F(ChipsetControlTest, EachFileHasItsDownloadStatus) {
    EXPECT_EQ(ReportOf("16/2 | -4:4 0:4 \"/lib/a.cfg\" 00 \"rest\""),
              std::string(pcDownloadBanner) +
                  "\n Firmware Download Status : -4"
                  "\n Configuration File : /lib/a.cfg" +
                  pcDownloadClosing);
    EXPECT_EQ(ReportOf("16/2 | 0:4 1:4 \"/lib/firmware/macqor200.bin\" 00"),
              std::string(pcDownloadBanner) +
                  "\n Firmware Download Status : 0"
                  "\n Firmware File : /lib/firmware/macqor200.bin" +
                  pcDownloadClosing);
    EXPECT_EQ(ReportOf("16/2 | 9:4 7:4 \"/lib/a.cfg\" 00"), std::string(pcDownloadBanner) +
                                                                "\n Firmware Download Status : 9"
                                                                "\n Invalid file type set" +
                                                                pcDownloadClosing);
}

TEST_F(ChipsetControlTest, APathEndsWithTheMessage) {
    EXPECT_EQ(ReportOf("16/2 | 1:4 1:4 78*10232"), std::string(pcDownloadBanner) +
                                                       "\n Firmware Download Status : 1"
                                                       "\n Firmware File : " +
                                                       std::string(10232, 'x') + pcDownloadClosing);
    EXPECT_EQ(ReportOf("16/2 | 1:4 1:4"), std::string(pcDownloadBanner) +
                                              "\n Firmware Download Status : 1"
                                              "\n Firmware File : " +
                                              pcDownloadClosing);
}

TEST_F(ChipsetControlTest, OtherMessagesPrintNothing) {
    EXPECT_EQ(ReportOf("16/3 | 00"), "");
    EXPECT_EQ(PrintedBy([] { ChipsetResponse(nullptr); }), "");
}

} // namespace
