#include "VendorSpecificMessageApp.h"

#include <fcntl.h>
#include <unistd.h>

#include "TestConsole.h"

namespace {

class VendorSpecificMessageAppTest : public ConsoleTest {};

TEST_F(VendorSpecificMessageAppTest, AKeyIsNoticedAndLeftWhereItIs) {
    EXPECT_EQ(MyKbHit(), 0U);
    Type("k");
    EXPECT_EQ(MyKbHit(), 1U);
    EXPECT_EQ(MyKbHit(), 1U);
    EXPECT_EQ(Unread(), "k");
}

TEST_F(VendorSpecificMessageAppTest, TheEndOfTheInputCountsAsAKey) {
    EndInput();
    EXPECT_EQ(MyKbHit(), 1U);
}

TEST_F(VendorSpecificMessageAppTest, WithoutAnInputThereIsNoKey) {
    close(STDIN_FILENO);
    EXPECT_EQ(MyKbHit(), 0U);
    EXPECT_EQ(open("/dev/null", O_RDONLY), STDIN_FILENO); // for the tests that follow
}

TEST_F(VendorSpecificMessageAppTest, EntriesAreNumberedBehindTheLastOne) {
    EXPECT_EQ(PrintedBy([] { DisplayExMenu(20); }), "\n21. AUTH REQUESTS\n22. TEST EEPROM");
    EXPECT_EQ(PrintedBy([] { DisplayExMenu(-2); }), "\n-1. AUTH REQUESTS\n0. TEST EEPROM");
}

} // namespace
