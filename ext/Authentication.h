// EAP and authentication (type 4): the two menus and the decoders.
#ifndef AUTHENTICATION_H
#define AUTHENTICATION_H

#include <cstdint>

#include "AuthenticationRecords.h"
#include "Shared.h"

// The pseudonym identifier and the SQN-MS block of the last EAP-AKA parameter
// indication.
extern SharedBytes<u32PseudonymSize> gaucRespSEC_SNYMID_ID;
extern SharedBytes<u32SQNMSSize> gaucRespSEC_SQNMS_ID;

// Main menu choice 14. Returns the low 8 bits of the send result, 0 when the
// choice is none.
uint32_t EAPRequests();
// The authentication menu. Returns the low 8 bits of the send result, 1 when
// nothing was sent.
uint32_t AuthRequest();

// Copies the key material of the EAP complete request, a fixed test value, to
// the buffer. Returns its length, 64.
uint32_t GetCompleteRequestData(ByteSpan stBuffer);

// Decodes type 4: the EAP part, around what AuthenticationResponse prints of
// the same message. Both return 0; a null message prints nothing.
uint32_t EAPResponse(const WiMAXMessage *pstMessage);
uint32_t AuthenticationResponse(const WiMAXMessage *pstMessage);

#endif
