// What the modem answers to search, synchronisation, network entry, shutdown
// and half mini card requests. The decoders take the whole message and its
// length, print and return 0; null messages and unknown subtypes print nothing.
#ifndef LINK_STATUS_H
#define LINK_STATUS_H

#include <atomic>
#include <cstdint>

#include "LinkRecords.h"
#include "Shared.h"

// The last network search: its first 20 station records, their number, and the
// NAP ID (24 bits) of the last one.
extern SharedBytes<u32MaxBaseStations * BaseStation::Size> g_BSINFO;
extern std::atomic<uint32_t> g_u32NumberOfBaseStations;
extern std::atomic<uint32_t> g_u32NAPID;
// The payload of the last successful NSP discovery.
extern SharedBytes<NSPDiscovery::Size> g_BSNSPLIST;

uint32_t NetEntrySearchResponse(const WiMAXMessage *pstMessage);
uint32_t NetEntryExitResponse(const WiMAXMessage *pstMessage);
uint32_t ShutDownResponse(const WiMAXMessage *pstMessage);
// Answers a half mini card response with the next status request, a second later.
uint32_t ProcessHalfMiniCardResponse(const WiMAXMessage *pstMessage);

// Prints the name of a link reason code, without a line end.
void DisplayLinkStatus(uint32_t u32Reason);
// Prints the base information (32 bytes); nothing for a null view.
void DisplayBaseInfo(ByteView stBaseInformation);

#endif
