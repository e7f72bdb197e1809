#include "Shared.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr uint32_t u32Size = 402; // not a multiple of a word
using Table = SharedBytes<u32Size>;

Record<u32Size> Filled(uint8_t u8Value) {
    Record<u32Size> stRecord;
    for (uint8_t &u8Byte : stRecord.aucBytes) {
        u8Byte = u8Value;
    }
    return stRecord;
}

bool IsOfOneWrite(const Record<u32Size> &stRecord) {
    return std::ranges::all_of(
        stRecord.aucBytes, [&stRecord](uint8_t u8Byte) { return u8Byte == stRecord.aucBytes[0]; });
}

TEST(SharedTest, APartIsStoredInFrontAndWhatDoesNotFitIsDropped) {
    Table stTable;
    stTable.Store(Filled(7).View());
    uint8_t aucBytes[u32Size + 8];
    std::memset(aucBytes, 1, sizeof aucBytes);
    stTable.Store({aucBytes, 13});
    Record<u32Size> stRecord = stTable.Load();
    EXPECT_EQ(stRecord.aucBytes[0], 1);
    EXPECT_EQ(stRecord.aucBytes[12], 1);
    EXPECT_EQ(stRecord.aucBytes[13], 7);
    EXPECT_EQ(stRecord.aucBytes[401], 7);
    stTable.Store({});
    EXPECT_EQ(stTable.Load().aucBytes[0], 1);
    stTable.Store({aucBytes, sizeof aucBytes});
    stRecord = stTable.Load();
    EXPECT_EQ(stRecord.aucBytes[401], 1);
    EXPECT_TRUE(IsOfOneWrite(stRecord));
}

TEST(SharedTest, AReaderSeesWholeWritesOfSeveralThreads) {
    Table stTable;
    std::atomic<bool> bStop{false};
    std::vector<std::thread> Writers;
    for (uint8_t u8Writer = 1; u8Writer <= 3; ++u8Writer) {
        Writers.emplace_back([&stTable, &bStop, u8Writer] {
            const Record<u32Size> stRecord = Filled(u8Writer);
            while (!bStop) {
                stTable.Store(stRecord.View());
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

// Two pages, the second of which can be read and written only after the handler
// has been called by whoever has tried to.
class ForbiddenPage {
  public:
    explicit ForbiddenPage(void (*pfnOnTouch)()) {
        uPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        pfnTouched = pfnOnTouch;
        void *pvPages =
            mmap(nullptr, 2 * uPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pvPages == MAP_FAILED) {
            std::abort();
        }
        pucBegin = static_cast<uint8_t *>(pvPages) + uPage;
        struct sigaction stAction {};
        stAction.sa_handler = OnTouch;
        sigaction(SIGSEGV, &stAction, &stBefore);
    }
    ~ForbiddenPage() {
        sigaction(SIGSEGV, &stBefore, nullptr);
        munmap(pucBegin - uPage, 2 * uPage);
    }
    ForbiddenPage(const ForbiddenPage &) = delete;
    ForbiddenPage &operator=(const ForbiddenPage &) = delete;

    static void Forbid() { mprotect(pucBegin, uPage, PROT_NONE); }

    static inline uint8_t *pucBegin = nullptr;

  private:
    static void OnTouch(int /*iSignal*/) {
        pfnTouched();
        mprotect(pucBegin, uPage, PROT_READ | PROT_WRITE);
    }

    static inline size_t uPage = 0;
    static inline void (*pfnTouched)() = nullptr;
    struct sigaction stBefore {};
};

std::atomic<bool> gbStopped{false};
std::atomic<bool> gbOtherDone{false};

// A thread that stores the bytes is stopped in the middle of its write, before
// somebody else has had time to write.
TEST(SharedTest, AThreadStoppedInTheMiddleOfItsWriteLeavesNothingTorn) {
    // Another writer may have to wait for the stopped one: then time goes by.
    const ForbiddenPage stPage([] {
        gbStopped = true;
        for (int i = 0; i < 30 && !gbOtherDone; ++i) {
            poll(nullptr, 0, 1);
        }
    });
    uint8_t *pucBytes = ForbiddenPage::pucBegin - u32Size / 2;
    std::memset(pucBytes, 1, u32Size);
    ForbiddenPage::Forbid();

    Table stTable;
    std::thread Slow([&] { stTable.Store({pucBytes, u32Size}); });
    std::thread Quick([&] {
        const Record<u32Size> stOwn = Filled(2);
        while (!gbStopped) {
            std::this_thread::yield();
        }
        stTable.Store(stOwn.View());
        gbOtherDone = true;
    });
    Slow.join();
    Quick.join();
    EXPECT_TRUE(IsOfOneWrite(stTable.Load()));
}

// Lies across the border of the pages.
Table *gpstWrittenMeanwhile = nullptr;

TEST(SharedTest, AReaderStoppedInTheMiddleLooksAgainWhenSomebodyHasWritten) {
    const ForbiddenPage stPage([] {
        mprotect(ForbiddenPage::pucBegin, 1, PROT_READ | PROT_WRITE);
        gpstWrittenMeanwhile->Store(Filled(2).View());
    });
    gpstWrittenMeanwhile = new (ForbiddenPage::pucBegin - sizeof(Table) / 16 * 8) Table;
    gpstWrittenMeanwhile->Store(Filled(1).View());
    ForbiddenPage::Forbid();
    const Record<u32Size> stRead = gpstWrittenMeanwhile->Load();
    EXPECT_EQ(stRead.aucBytes[0], 2);
    EXPECT_TRUE(IsOfOneWrite(stRead));
}

std::atomic<bool> gbBeyondTheEnd{false};

TEST(SharedTest, NothingBeyondTheEndIsTouched) {
    using WholeWords = SharedBytes<400>;
    const ForbiddenPage stPage([] { gbBeyondTheEnd = true; });
    auto *pstLast = new (ForbiddenPage::pucBegin - sizeof(WholeWords)) WholeWords;
    uint8_t *pucLast = ForbiddenPage::pucBegin - 400;
    ForbiddenPage::Forbid();
    pstLast->Store(Filled(3).View().From(0, 400));
    EXPECT_EQ(pstLast->Load().aucBytes[399], 3);
    EXPECT_FALSE(gbBeyondTheEnd);

    std::memset(pucLast, 4, 400);
    Table stTable;
    stTable.Store({pucLast, 400});
    EXPECT_EQ(stTable.Load().aucBytes[399], 4);
    stTable.Store({pucLast + 1, 399});
    EXPECT_EQ(stTable.Load().aucBytes[398], 4);
    EXPECT_FALSE(gbBeyondTheEnd);
}

} // namespace
