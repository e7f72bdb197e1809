#include "Dispatcher.h"

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

TEST_F(DispatcherTest, ANullMessageIsReportedEvenWhileAChoiceIsBeingHandled) {
    FakeDevice::DeliverNull();
    EXPECT_EQ(Printed(), "\nAppcallback called with null buffer !!!");
    gbInsideSubMenu = 1;
    FakeDevice::DeliverNull();
    EXPECT_EQ(Printed(), "\nAppcallback called with null buffer !!!");
}

TEST_F(DispatcherTest, ShortMessagesAreReadNoFurtherThanTheyGo) {
    EXPECT_EQ(PrintedFor("03"), UnknownType("3"));
}

TEST_F(DispatcherTest, ReportsReachTheOutputWhenTheCallbackReturns) {
    FakeDevice::Deliver(Message("30/4"));
    EXPECT_EQ(Printed(),
              "\n\n~~~~~~~~~~ COMPLETE WAKE UP INDICATION RECEIVED IN SHUTDOWN MODE ~~~~~~~~~~\n");
}

} // namespace
