// The fields of a message by name, as the catalogue describes them: one a line, lists and records
// indented.
#ifndef MONITOR_FIELDS_H
#define MONITOR_FIELDS_H

#include "Catalogue.h"
#include "Writer.h"

void PutFields(Writer &stWriter, const MessageRow &stMessage, ByteView stPayload);
// Bytes that nothing is known of, in lines of 32.
void PutUnknown(Writer &stWriter, ByteView stBytes);
// A dump as the one in front of the bytes: place, hexadecimal, characters.
void PutDump(Writer &stWriter, ByteView stBytes);
// Text between quotation marks, on one line whatever is in it.
void PutQuoted(Writer &stWriter, std::string_view strText);

#endif
