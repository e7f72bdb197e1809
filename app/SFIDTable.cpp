#include "SFIDTable.h"

#include "Console.h"
#include "Report.h"

std::atomic<uint32_t> SFID_VALIDITY_TABLE[u32SFIDSlots];

void AddSFID(uint32_t u32SFID) {
    for (std::atomic<uint32_t> &u32Slot : SFID_VALIDITY_TABLE) {
        uint32_t u32Empty = 0;
        if (u32Slot.compare_exchange_strong(u32Empty, u32SFID)) {
            return;
        }
    }
}

void RemoveSFID(uint32_t u32SFID) {
    for (uint32_t i = 0; i + 1 < u32SFIDSlots; ++i) { // the last slot is never emptied
        uint32_t u32Held = u32SFID;
        if (SFID_VALIDITY_TABLE[i] == u32SFID &&
            SFID_VALIDITY_TABLE[i].compare_exchange_strong(u32Held, 0)) {
            return;
        }
    }
}

void DisplaySFIDTable() {
    PutText("\nValid SFIDs");
    for (uint32_t i = 0; i < u32VisibleSFIDs; ++i) {
        const uint32_t u32SFID = SFID_VALIDITY_TABLE[i];
        if (u32SFID != 0) {
            const uint32_t au32Entry[] = {i, u32SFID};
            PutNumbers("\nINDEX %u,  SF ID: %d", au32Entry);
        }
    }
    PutText("\n");
}

void ClearSFIDTable() {
    for (uint32_t i = 0; i < u32VisibleSFIDs; ++i) {
        SFID_VALIDITY_TABLE[i] = 0;
    }
}
