#include "Dispatcher.h"

#include <new>
#include <set>
#include <thread>

#include <pthread.h>

#include "Ending.h"
#include "Message.h"
#include "TestConsole.h"

namespace {

class DispatcherTest : public ConsoleTest {
  protected:
    // What the callback prints, called on the library's thread.
    static std::string PrintedFor(std::string_view strMessage) {
        Printed();
        FakeDevice::Deliver(Message(strMessage));
        return Printed();
    }
};

std::string UnknownType(const std::string &strType) {
    return "\nUNKNOWN type of message received in Callback func (" + strType + ")!!!";
}

TEST_F(DispatcherTest, TypesTwentyFiveAndTwentySevenPrintNothing) {
    EXPECT_EQ(PrintedFor("25/1 | 01*100"), "");
    EXPECT_EQ(PrintedFor("27/2"), "");
}

TEST_F(DispatcherTest, TypesWithoutADecoderAreReported) {
    for (const char *pcType :
         {"0", "3", "5", "9", "14", "15", "18", "20", "32", "33", "35", "37", "255", "65535"}) {
        EXPECT_EQ(PrintedFor(std::string(pcType) + "/1"), UnknownType(pcType));
    }
}

TEST_F(DispatcherTest, TypesReachTheirDecoders) {
    const struct {
        const char *pcMessage;
        const char *pcFirstLine;
    } astTypes[] = {
        {"7/1", "\n~~~~~~~~~~~~~~~ SS INFO RESPONSE ~~~~~~~~~~~~~~\n"},
        {"11/1", "\n~~~~~~~~~~~~~~ MAC ADDRESS SET RESPONSE ~~~~~~~~~~~~~~\n"},
        {"12/2", "\n~~~~~~ DEVICE RESET_UNLOAD MESSAGE RECEIVED ~~~~~~\n"},
        {"13/6", "\nIP Filtering Status received as : IP_FILTER_STATUS_INVALID(0)"},
        {"16/1", "\n~~~~~~~~~~ RESET INDICATION RECEIVED ~~~~~~~~~~\n"},
        {"17/1", "\n~~~~~~~~~~ BASEBAND STATISTICS RESPONSE ~~~~~~~~~~\n"},
        {"23/1", "\n~~~~~~ HANDOVER RESPONSE MESSAGE ~~~~~~\n"},
        {"24/1", "\n~~~~~~~~~~~~~~~ MIB MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n"},
        {"26/2", "\n~~~~~~ SLEEP MODE INDICATION MESSAGE ~~~~~~\n"},
        {"28/1", "\n~~~~~~~~~~~~~~~ ANTENNA_SWITCHING_SELECTION MESSAGE RECEIVED "
                 "~~~~~~~~~~~~~~~\n"},
        {"34/1", "\n~~~~~~~~~~~~~~~ Security RESPONSE RECEIVED ~~~~~~~~~~~~~~~\n"},
    };
    for (const auto &stType : astTypes) {
        const std::string strFirstLine = stType.pcFirstLine;
        EXPECT_EQ(PrintedFor(stType.pcMessage).substr(0, strFirstLine.size()), strFirstLine);
    }
}

TEST_F(DispatcherTest, TheResultForAnUnknownSubtypeDependsOnTheType) {
    const std::set<int> Handled = {6, 8, 10, 12, 13, 22, 24, 28, 29, 34};
    for (int iType = 0; iType < 40; ++iType) {
        EXPECT_EQ(FakeDevice::Deliver(Message(std::to_string(iType) + "/99")), Handled.count(iType))
            << iType;
    }
}

TEST_F(DispatcherTest, BothBytesOfTheTypeCount) {
    EXPECT_EQ(PrintedFor("01 01 01 00"), UnknownType("257"));
}

TEST_F(DispatcherTest, UnknownIdleModeSubtypesAreReported) {
    EXPECT_EQ(PrintedFor("19/7"), "\nUNKNOWN sub-type in IDLE Mode in Callback func (7)!!!");
    EXPECT_EQ(PrintedFor("13 00 00 01"),
              "\nUNKNOWN sub-type in IDLE Mode in Callback func (256)!!!");
}

TEST_F(DispatcherTest, NothingIsPrintedWhileAChoiceIsBeingHandled) {
    gbInsideSubMenu = 1;
    EXPECT_EQ(PrintedFor("3/1"), "");
    EXPECT_EQ(PrintedFor("19/7"), "");
    EXPECT_EQ(PrintedFor("2/1 | 00*48"), "");
    gbInsideSubMenu = 0;
    EXPECT_EQ(PrintedFor("3/1"), UnknownType("3"));
}

TEST_F(DispatcherTest, AThreadCanBeCancelledBehindTheCallbackAsBeforeIt) {
    for (const int iBefore : {PTHREAD_CANCEL_ENABLE, PTHREAD_CANCEL_DISABLE}) {
        int iBehind = -1;
        std::thread([&] {
            pthread_setcancelstate(iBefore, nullptr);
            TVLCallback(0, nullptr, 0);
            pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &iBehind);
        }).join();
        EXPECT_EQ(iBehind, iBefore);
    }
}

TEST_F(DispatcherTest, ANullMessageIsReportedEvenWhileAChoiceIsBeingHandled) {
    FakeDevice::DeliverNull();
    EXPECT_EQ(Printed(), "\nAppcallback called with null buffer !!!");
    gbInsideSubMenu = 1;
    FakeDevice::DeliverNull();
    EXPECT_EQ(Printed(), "\nAppcallback called with null buffer !!!");
}

TEST_F(DispatcherTest, AWrongLengthChangesNothing) {
    const struct {
        const char *pcMessage;
        std::string strPrinted;
    } astMessages[] = {
        {"03 02", UnknownType("515")},
        {"19/7 | 01", "\nUNKNOWN sub-type in IDLE Mode in Callback func (7)!!!"},
        {"19/2 | 77:4", "\n~~~~~~~~~~ IDLE MODE STATUS RESPONSE ~~~~~~~~~~\n\n"
                        "IDLE MODE STATUS : 77 \n"
                        "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"},
        {"6/1 | 00 02 00*6 01 00 4097:4 00*165 513:2 00*8293",
         "\n~~~~~~ SERVICE FLOW RESPONSE MESSAGE ~~~~~~\n"
         "\nSF ADD INDICATION RESPONSE MESSAGE RECEIVED.\n"
         "\nService flow added with confirmation code : 0\n"
         "\nDirection of Service Flow                 : 2\n"
         "\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"},
        {"24/2 | 7:4 00*17 2:4 00 05 06",
         "\n~~~~~~~~~~~~~~~ MIB MESSAGE RECEIVED ~~~~~~~~~~~~~~~\n"
         "\nGet Response received"
         "\n MIB OID - 7 :  0x05 0x06\n"
         "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"},
        {"25/1 | 01", ""},
    };
    for (const auto &stMessage : astMessages) {
        for (const uint32_t u32Length : {0U, 3U, 4U, 20000U}) {
            FakeDevice::Deliver(Message(stMessage.pcMessage), u32Length);
            EXPECT_EQ(Printed(), stMessage.strPrinted) << u32Length;
        }
    }
}

TEST_F(DispatcherTest, LackOfMemoryInADecoderEndsTheClientAndReachesNoLibrary) {
    FakeDevice::OnSend([](size_t, auto) { throw std::bad_alloc(); });
    testing::internal::CaptureStderr();
    EXPECT_EQ(FakeDevice::Deliver(Message("36/2")), 0U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "unit_tests: out of memory\n");
    EXPECT_EQ(EndStatus(), 1);
}

TEST_F(DispatcherTest, ReportsReachTheOutputWhenTheCallbackReturns) {
    FakeDevice::Deliver(Message("30/4"));
    EXPECT_EQ(Printed(),
              "\n\n~~~~~~~~~~ COMPLETE WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~\n");
}

} // namespace
