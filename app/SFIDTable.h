// The service flow identifiers (SFID) that the modem reported as active.
#ifndef SFID_TABLE_H
#define SFID_TABLE_H

#include <atomic>
#include <cstdint>

// Slots that are shown, selected and cleared.
inline constexpr uint32_t u32VisibleSFIDs = 16;
// All slots: adding goes on behind the visible ones.
inline constexpr uint32_t u32SFIDSlots = 65;

// A slot that holds 0 is empty. Written by the callback's thread, cleared and
// read by the menus.
extern std::atomic<uint32_t> SFID_VALIDITY_TABLE[u32SFIDSlots];

// Stores the SFID in the first empty slot; drops it when there is none.
void AddSFID(uint32_t u32SFID);
// Empties the first of slots 0 to 63 that holds the SFID.
void RemoveSFID(uint32_t u32SFID);
// Prints the visible slots that are not empty.
void DisplaySFIDTable();
// Empties the visible slots.
void ClearSFIDTable();

#endif
