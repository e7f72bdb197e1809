// The MIB attributes that may be written, and the values of the automated write.
#ifndef MIB_TABLE_H
#define MIB_TABLE_H

#include <cstdint>

inline constexpr uint32_t u32MIBParams = 32;

// One write of the automated test.
struct MIBParam {
    uint32_t u32AttributeID;
    uint32_t u32Key;       // table index of a keyed attribute, else 0
    uint32_t u32Size;      // value bytes that are sent: 1, 2 or 4
    uint8_t aucValue[128]; // little-endian, the rest zero
};

// The writes in the order in which they are sent.
extern const MIBParam MIBParams2Write[u32MIBParams];

// True for an ID from 500 to 799 and for 804.
bool IsConfigMIB(int32_t iID);

// Returns the ID when it may be written (0 to 799, and 804); else says so and
// reads another until one may.
int32_t validateuiID(int32_t iID);

#endif
