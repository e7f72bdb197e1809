#include "SFIDTable.h"

#include "TestConsole.h"

namespace {

class SFIDTableTest : public ConsoleTest {
  protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        Empty();
    }
    void TearDown() override {
        Empty();
        ConsoleTest::TearDown();
    }
    static void Empty() {
        for (std::atomic<uint32_t> &u32Slot : SFID_VALIDITY_TABLE) {
            u32Slot = 0;
        }
    }
    static void AddFromOneTo(uint32_t u32Last) {
        for (uint32_t i = 1; i <= u32Last; ++i) {
            AddSFID(i);
        }
    }
};

TEST_F(SFIDTableTest, AddingTakesTheFirstEmptySlot) {
    AddSFID(11);
    AddSFID(22);
    AddSFID(33);
    RemoveSFID(22);
    AddSFID(44);
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 11U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[1], 44U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[2], 33U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[3], 0U);
}

TEST_F(SFIDTableTest, AnSFIDStoredTwiceIsRemovedOnceFromTheLowerSlot) {
    AddSFID(7);
    AddSFID(7);
    RemoveSFID(7);
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 0U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[1], 7U);
}

TEST_F(SFIDTableTest, RemovingAnUnknownSFIDChangesNothingAndPrintsNothing) {
    AddSFID(7);
    EXPECT_EQ(PrintedBy([] { RemoveSFID(8); }), "");
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 7U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[1], 0U);
}

TEST_F(SFIDTableTest, SixtyFiveSlotsAreFilledAndOneMoreIsDropped) {
    AddFromOneTo(66);
    EXPECT_EQ(SFID_VALIDITY_TABLE[64], 65U);
    for (const std::atomic<uint32_t> &u32Slot : SFID_VALIDITY_TABLE) {
        EXPECT_NE(u32Slot, 66U);
    }
}

TEST_F(SFIDTableTest, TheLastSlotIsNotRemovedFrom) {
    AddFromOneTo(65);
    RemoveSFID(64);
    RemoveSFID(65);
    EXPECT_EQ(SFID_VALIDITY_TABLE[63], 0U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[64], 65U);
}

TEST_F(SFIDTableTest, TheTableIsShownWithoutItsEmptySlots) {
    AddSFID(4097);
    AddSFID(2);
    AddSFID(0xFFFFFFFF);
    RemoveSFID(2);
    EXPECT_EQ(PrintedBy(DisplaySFIDTable), "\nValid SFIDs"
                                           "\nINDEX 0,  SF ID: 4097"
                                           "\nINDEX 2,  SF ID: -1"
                                           "\n");
}

TEST_F(SFIDTableTest, AnEmptyTableIsItsTitle) {
    EXPECT_EQ(PrintedBy(DisplaySFIDTable), "\nValid SFIDs\n");
}

TEST_F(SFIDTableTest, TheSeventeenthSFIDIsNeitherShownNorCleared) {
    AddFromOneTo(17);
    EXPECT_EQ(PrintedBy(DisplaySFIDTable), "\nValid SFIDs"
                                           "\nINDEX 0,  SF ID: 1"
                                           "\nINDEX 1,  SF ID: 2"
                                           "\nINDEX 2,  SF ID: 3"
                                           "\nINDEX 3,  SF ID: 4"
                                           "\nINDEX 4,  SF ID: 5"
                                           "\nINDEX 5,  SF ID: 6"
                                           "\nINDEX 6,  SF ID: 7"
                                           "\nINDEX 7,  SF ID: 8"
                                           "\nINDEX 8,  SF ID: 9"
                                           "\nINDEX 9,  SF ID: 10"
                                           "\nINDEX 10,  SF ID: 11"
                                           "\nINDEX 11,  SF ID: 12"
                                           "\nINDEX 12,  SF ID: 13"
                                           "\nINDEX 13,  SF ID: 14"
                                           "\nINDEX 14,  SF ID: 15"
                                           "\nINDEX 15,  SF ID: 16"
                                           "\n");
    ClearSFIDTable();
    EXPECT_EQ(SFID_VALIDITY_TABLE[0], 0U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[15], 0U);
    EXPECT_EQ(SFID_VALIDITY_TABLE[16], 17U);
}

} // namespace
