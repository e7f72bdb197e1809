#include "GPIOPins.h"

#include "Console.h"
#include "TestConsole.h"

namespace {

class GPIOPinsTest : public ConsoleTest {
  protected:
    // What is printed for a pin; "" when it may be used.
    static std::string Checked(std::string_view strList, uint32_t u32Pin) {
        const Bytes aucList = Message(strList);
        return PrintedBy([&] {
            const uint32_t u32Result =
                isValidGPIO_val({aucList.data(), static_cast<uint32_t>(aucList.size())}, u32Pin);
            EXPECT_EQ(u32Result, PendingOutput().empty() ? 1U : 0U);
        });
    }
};

constexpr const char *pcInvalid = "\n Enter a Valid GPIO Pin value b/w 0 - 15\n";
constexpr const char *pcUsed = "\n Enter a unUsed/unDefined GPIO Pin Value\n";

TEST_F(GPIOPinsTest, PinsZeroToFifteenMayBeUsed) {
    EXPECT_EQ(Checked("0:4 0:4 00*28", 0), "");
    EXPECT_EQ(Checked("0:4 0:4 00*28", 15), "");
    EXPECT_EQ(Checked("0:4 0:4 00*28", 16), pcInvalid);
    EXPECT_EQ(Checked("0:4 0:4 00*28", UINT32_MAX), pcInvalid);
}

TEST_F(GPIOPinsTest, PinsInTheListMayNot) {
    EXPECT_EQ(Checked("2:4 0:4 3:4 4:4 5:4 6:4 00*12", 3), pcUsed);
    EXPECT_EQ(Checked("2:4 0:4 3:4 4:4 5:4 6:4 00*12", 4), pcUsed);
    EXPECT_EQ(Checked("2:4 0:4 3:4 4:4 5:4 6:4 00*12", 5), "");
    EXPECT_EQ(Checked("1:4 0:4 16:4 00*24", 16), pcInvalid);
}

TEST_F(GPIOPinsTest, TheListHasNoMoreThanFourPins) {
    EXPECT_EQ(Checked("-1:4 0:4 3:4 4:4 5:4 6:4 7:4 8:4 9:4", 6), pcUsed);
    EXPECT_EQ(Checked("-1:4 0:4 3:4 4:4 5:4 6:4 7:4 8:4 9:4", 7), "");
    EXPECT_EQ(Checked("4:4 0:4 3:4", 0), "");
}

} // namespace
