#include "Shared.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr uint32_t u32Size = 402; // not a multiple of four
using Table = SharedBytes<u32Size>;

Record<u32Size> Filled(uint8_t u8Value) {
    Record<u32Size> stRecord;
    for (uint8_t &u8Byte : stRecord.aucBytes) {
        u8Byte = u8Value;
    }
    return stRecord;
}

bool IsOfOneWrite(const Record<u32Size> &stRecord) {
    for (const uint8_t u8Byte : stRecord.aucBytes) {
        if (u8Byte != stRecord.aucBytes[0]) {
            return false;
        }
    }
    return true;
}

TEST(SharedTest, APartIsStoredAtItsPlaceAndWhatDoesNotFitIsDropped) {
    Table stTable;
    const uint8_t aucBytes[] = {1, 2, 3, 4, 5, 6};
    stTable.Store(4, {aucBytes, 5});
    stTable.Store(400, {aucBytes, 6});
    stTable.Store(404, {aucBytes, 6});
    const Record<u32Size> stRecord = stTable.Load();
    EXPECT_EQ(stRecord.aucBytes[3], 0);
    EXPECT_EQ(stRecord.aucBytes[4], 1);
    EXPECT_EQ(stRecord.aucBytes[8], 5);
    EXPECT_EQ(stRecord.aucBytes[9], 0);
    EXPECT_EQ(stRecord.aucBytes[400], 1);
    EXPECT_EQ(stRecord.aucBytes[401], 2);
}

TEST(SharedTest, AReaderSeesWholeWritesOfSeveralThreads) {
    Table stTable;
    std::atomic<bool> bStop{false};
    std::vector<std::thread> Writers;
    for (uint8_t u8Writer = 1; u8Writer <= 3; ++u8Writer) {
        Writers.emplace_back([&stTable, &bStop, u8Writer] {
            const Record<u32Size> stRecord = Filled(u8Writer);
            while (!bStop) {
                stTable.Store(0, stRecord.View());
            }
        });
    }
    int iTorn = 0;
    for (int i = 0; i < 300; ++i) {
        iTorn += IsOfOneWrite(stTable.Load()) ? 0 : 1;
    }
    bStop = true;
    for (std::thread &Writer : Writers) {
        Writer.join();
    }
    EXPECT_EQ(iTorn, 0);
    EXPECT_TRUE(IsOfOneWrite(stTable.Load()));
}

} // namespace
