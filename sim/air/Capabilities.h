// What the modem can do and what stations can, said once: for the negotiations of the network
// entry, and for whoever holds to it.
#ifndef CAPABILITIES_H
#define CAPABILITIES_H

#include "MIBRecord.h"
#include "air/BitWriter.h"
#include "air/Radio.h"

// A record of the list of service flows has room for no more.
inline constexpr uint32_t u32ModemFlows =
    (WIMAX_DATA_SIZE - MIBRecord::aucValue - MIBActiveSFIDs::astEntries) /
    MIBActiveSFIDs::EntrySize;

// The service flows of the network.
struct FlowLimits {
    uint32_t u32Most;        // at a time, both directions together
    uint32_t u32Provisioned; // set up by the network itself
};

// A request says what the modem can do, a response what the station makes of that.
BitWriter SBCREQBody();
BitWriter SBCRSPBody(const Station &stStation);
BitWriter REGREQBody();
BitWriter REGRSPBody(bool bAccepted, const FlowLimits &stLimits);

// PKM version 2, EAP at the first entry, CMAC: for the key messages, which say it again.
void PutSecurityNegotiation(BitWriter &stBody, uint32_t u32Type);

#endif
