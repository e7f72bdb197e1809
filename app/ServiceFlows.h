// Service flows: the menu with its requests, and the decoder of type 6.
#ifndef SERVICE_FLOWS_H
#define SERVICE_FLOWS_H

#include <cstdint>

#include "ServiceFlowRecord.h"

// The transaction ID that the next request takes, 0 to 32766; 32767 stands for
// 0. Read and written by the menus only.
extern int32_t giGlobalTID;

// Room for 16 add indications (ServiceFlowRecord). Nothing is kept there yet.
inline constexpr uint32_t u32KeptAddIndications = 16;
extern uint8_t SFID_ADD_INDICATION[u32KeptAddIndications * ServiceFlowRecord::Size];

// Writes the six default values of a parameter set and no other byte. A span
// without data is left alone.
void SetSFParamDefaults(ByteSpan stSet);
// Zeroes the record and writes the defaults of its three sets. A span without
// data is left alone.
void SetSFDefaultValues(ByteSpan stRecord);

// Main menu choice 6. Returns what the chosen request returned, 0 for a choice
// that is none.
int32_t ServiceFlowRequest();

// The requests. Each returns the send result, or what stands at its name.
int32_t SendDSARequest();
int32_t SendDSCRequest(); // 1: no flow is active, -1: the classifier part was refused
int32_t SendDSDRequest(); // 1: no flow is active
int32_t SendeRTPSChangeRequest();

// The classifier part of a change request, for the sets of stRecord whose bits
// are set: asks what to do with which rule. The active set says how many rules
// there are. Returns 0, or -1 when it refused the answer.
int32_t EnterClassifierAction(ByteSpan stRecord, uint32_t u32QoSBits);

// The decoder; the received length is not used. Returns 0 after a refusal and
// for a null message, which prints nothing, else 1.
uint32_t ServiceFlowResponse(const WiMAXMessage *pstMessage, uint32_t u32Length);

#endif
