// Bytes that the callback's thread writes and the menus read.
#ifndef SHARED_H
#define SHARED_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>

#include "Wire.h"

// A byte table. A reader always gets the bytes of whole writes: it looks again
// when a write came in between. Writers, should a library have several threads,
// take turns.
template <uint32_t u32Size> struct SharedBytes {
    std::atomic<uint32_t> u32Writes{0}; // odd while a write is going on
    // The bytes in the order of memory, four at a time.
    std::atomic<uint32_t> au32Words[(u32Size + 3) / 4] = {};

    // Stores what fits of stFrom at u32Offset, a multiple of four.
    void Store(uint32_t u32Offset, ByteView stFrom) {
        uint32_t u32Before = u32Writes;
        while (u32Before % 2 != 0 || !u32Writes.compare_exchange_weak(u32Before, u32Before + 1)) {
            std::this_thread::yield();
            u32Before = u32Writes;
        }
        const uint32_t u32Count =
            std::min(stFrom.u32Length, u32Size - std::min(u32Offset, u32Size));
        for (uint32_t i = 0; i < u32Count; i += 4) {
            std::atomic<uint32_t> &u32Shared = au32Words[(u32Offset + i) / 4];
            uint32_t u32Word = 0;
            if (u32Count - i >= 4) {
                std::memcpy(&u32Word, stFrom.pucData + i, 4);
            } else {
                u32Word = u32Shared;
                std::memcpy(&u32Word, stFrom.pucData + i, u32Count - i);
            }
            // Whoever sees the word sees the odd number, too.
            u32Shared.store(u32Word, std::memory_order_release);
        }
        ++u32Writes;
    }

    Record<u32Size> Load() const {
        Record<u32Size> stCopy;
        uint32_t u32Before = 0;
        do {
            u32Before = u32Writes;
            for (uint32_t i = 0; i < u32Size; i += 4) {
                const uint32_t u32Word = au32Words[i / 4].load(std::memory_order_acquire);
                std::memcpy(stCopy.aucBytes + i, &u32Word, std::min(4U, u32Size - i));
            }
        } while (u32Before % 2 != 0 || u32Before != u32Writes);
        return stCopy;
    }
};

#endif
