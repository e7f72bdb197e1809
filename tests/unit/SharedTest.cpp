#include "Shared.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

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

// Bytes that cannot be read beyond the middle before somebody else has had time
// to write: a thread that stores them is stopped in the middle of its write.
uint8_t *gpucSecondHalf = nullptr;
size_t guPage = 0;
std::atomic<bool> gbStopped{false};
std::atomic<bool> gbOtherDone{false};

// Another writer may have to wait for the stopped one: then time goes by.
void OnForbiddenRead(int /*iSignal*/) {
    gbStopped = true;
    for (int i = 0; i < 30 && !gbOtherDone; ++i) {
        poll(nullptr, 0, 1);
    }
    mprotect(gpucSecondHalf, guPage, PROT_READ);
}

TEST(SharedTest, AThreadStoppedInTheMiddleOfItsWriteLeavesNothingTorn) {
    guPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void *pvPages =
        mmap(nullptr, 2 * guPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pvPages, MAP_FAILED);
    std::memset(pvPages, 1, 2 * guPage);
    gpucSecondHalf = static_cast<uint8_t *>(pvPages) + guPage;
    mprotect(gpucSecondHalf, guPage, PROT_NONE);
    struct sigaction stAction {};
    struct sigaction stBefore {};
    stAction.sa_handler = OnForbiddenRead;
    sigaction(SIGSEGV, &stAction, &stBefore);

    Table stTable;
    std::thread Slow([&] { stTable.Store(0, {gpucSecondHalf - u32Size / 2, u32Size}); });
    std::thread Quick([&] {
        const Record<u32Size> stOwn = Filled(2);
        while (!gbStopped) {
            std::this_thread::yield();
        }
        stTable.Store(0, stOwn.View());
        gbOtherDone = true;
    });
    Slow.join();
    Quick.join();
    sigaction(SIGSEGV, &stBefore, nullptr);
    EXPECT_TRUE(IsOfOneWrite(stTable.Load()));
    munmap(pvPages, 2 * guPage);
}

} // namespace
