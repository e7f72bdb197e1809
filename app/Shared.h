// Bytes that the callback's thread writes and the menus read.
#ifndef SHARED_H
#define SHARED_H

#include <atomic>
#include <cstdint>

#include "Wire.h"

// A byte table with one writer. A reader always gets the bytes of whole writes:
// it looks again when a write came in between.
template <uint32_t u32Size> struct SharedBytes {
    std::atomic<uint32_t> u32Writes{0}; // odd while a write is going on
    std::atomic<uint8_t> aucBytes[u32Size] = {};

    // Stores what fits of stFrom at u32Offset.
    void Store(uint32_t u32Offset, ByteView stFrom) {
        ++u32Writes;
        for (uint32_t i = 0; i < stFrom.u32Length && u32Offset + i < u32Size; ++i) {
            aucBytes[u32Offset + i] = stFrom.At(i);
        }
        ++u32Writes;
    }

    Record<u32Size> Load() const {
        Record<u32Size> stCopy;
        uint32_t u32Before = 0;
        do {
            u32Before = u32Writes;
            for (uint32_t i = 0; i < u32Size; ++i) {
                stCopy.aucBytes[i] = aucBytes[i];
            }
        } while (u32Before % 2 != 0 || u32Before != u32Writes);
        return stCopy;
    }
};

#endif
