// The messages of a storm.
#ifndef STORM_MESSAGES_H
#define STORM_MESSAGES_H

#include <cstdint>

#include "WiMAXDevice.h"

// A whole record and the length that is stated for it.
struct StormMessage {
    WiMAXMessage stRecord;
    uint32_t u32Length = 0;
};

// A traced management message that says which thread sent it, and as its how
// manyth. Its body has up to u32MostBytes bytes.
void MakeTrace(StormMessage *pstMessage, uint32_t u32Thread, uint32_t u32Number,
               uint32_t u32MostBytes);
// A message of any type, valid or corrupt: always the same one for a seed and a
// number. With bKeys also those whose decoders wait for keys or send.
void MakeAny(StormMessage *pstMessage, uint64_t u64Seed, uint32_t u32Number, bool bKeys);
// A message of a type that nobody knows: 40000 and its number.
void MakeMark(StormMessage *pstMessage, uint32_t u32Number);
// A full list of stations all of whose numbers say which thread sent it, and as
// its how manyth.
void MakeStations(StormMessage *pstMessage, uint32_t u32Thread, uint32_t u32Number);
// A list of three active service flows, from 1 + 100 * the thread's number on.
void MakeFlows(StormMessage *pstMessage, uint32_t u32Thread);
// The attribute whose decoder waits for a key after each of ten zones.
void MakeZones(StormMessage *pstMessage);

// Always the same numbers for a seed.
struct StormRandom {
    uint64_t u64State;

    uint64_t Next() {
        u64State += UINT64_C(0x9E3779B97F4A7C15);
        uint64_t u64Mixed = u64State;
        u64Mixed = (u64Mixed ^ (u64Mixed >> 30)) * UINT64_C(0xBF58476D1CE4E5B9);
        u64Mixed = (u64Mixed ^ (u64Mixed >> 27)) * UINT64_C(0x94D049BB133111EB);
        return u64Mixed ^ (u64Mixed >> 31);
    }
    uint32_t Below(uint32_t u32Limit) { return static_cast<uint32_t>(Next() % u32Limit); }
};

#endif
