// The modem's vendor-specific region: bytes that are read and written by their
// offset (type 10).
#ifndef VENDOR_SPECIFIC_PARAMETERS_H
#define VENDOR_SPECIFIC_PARAMETERS_H

#include <cstdint>

#include "Shared.h"
#include "VendorRecords.h"

// The ATR lock as the modem reported it last.
extern SharedBytes<VendorRegion::ATRLock.u16Size> gaucRespATRLock;

// Main menu choice 10. Returns 0.
int32_t VendorSpecificParamRequest();

int32_t SendVSAReadRequest();
int32_t SendVSAWriteRequest();
int32_t SendVSASizeRequest();
// Asks for offset, size and, for a write request, that many bytes, and sends a
// request of the record (VendorParameter); a size request (subtype 4) asks
// nothing and takes no record. A size that neither the record nor a message
// holds is cut; the bytes typed beyond it are read and dropped. Returns the
// send result.
int32_t SendVendorSpecificParamRequest(ByteSpan stRecord, uint32_t u32SubType);

// Ask for a known entry of the region, read only or writable, and store its
// offset and size in the head of a record (4 bytes). Return 0, or -1 when the
// choice is none; for a null head 0 at once. No menu leads here.
int32_t GetVSROParam(ByteSpan stHead);
int32_t GetVSRWParam(ByteSpan stHead);

// Decodes type 10. Returns 1, or 0 for any other type.
uint32_t DisplayVendorSpecificParamInfo(const WiMAXMessage *pstMessage);
// Prints the data bytes of a record, as far as the view has them; nothing for a
// null record or a size of 0.
void DisplayVendorSpecificParamData(ByteView stRecord);

#endif
