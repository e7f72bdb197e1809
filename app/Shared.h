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
    using Word = uintptr_t; // as much as every host stores at once
    static constexpr uint32_t WordSize = sizeof(Word);

    std::atomic<uint32_t> u32Writes{0}; // odd while a write is going on
    // The bytes in the order of memory.
    std::atomic<Word> auWords[(u32Size + WordSize - 1) / WordSize] = {};

    // Stores what fits of stFrom at the beginning.
    void Store(ByteView stFrom) {
        uint32_t u32Before = u32Writes;
        while (u32Before % 2 != 0 || !u32Writes.compare_exchange_weak(u32Before, u32Before + 1)) {
            std::this_thread::yield();
            u32Before = u32Writes;
        }
        const uint32_t u32Count = std::min(stFrom.u32Length, u32Size);
        const uint32_t u32Whole = u32Count / WordSize;
        // Whoever sees a word sees the odd number, too.
        for (uint32_t i = 0; i < u32Whole; ++i) {
            Word uWord = 0;
            std::memcpy(&uWord, stFrom.pucData + size_t{i} * WordSize, WordSize);
            auWords[i].store(uWord, std::memory_order_release);
        }
        if (u32Count % WordSize != 0) {
            Word uWord = auWords[u32Whole];
            std::memcpy(&uWord, stFrom.pucData + size_t{u32Whole} * WordSize, u32Count % WordSize);
            auWords[u32Whole].store(uWord, std::memory_order_release);
        }
        ++u32Writes;
    }

    Record<u32Size> Load() const {
        Record<u32Size> stCopy;
        uint32_t u32Before = 0;
        do {
            u32Before = u32Writes;
            for (uint32_t i = 0; i < u32Size; i += WordSize) {
                const Word uWord = auWords[i / WordSize].load(std::memory_order_acquire);
                std::memcpy(stCopy.aucBytes + i, &uWord, std::min(WordSize, u32Size - i));
            }
        } while (u32Before % 2 != 0 || u32Before != u32Writes);
        return stCopy;
    }
};

#endif
