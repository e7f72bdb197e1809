// A session for programs: one JSON object a line, as docs/monitor.md describes it.
#ifndef MONITOR_JSON_H
#define MONITOR_JSON_H

#include "Session.h"
#include "Writer.h"

void PutJSONEntry(Writer &stWriter, bool bRaw, const Entry &stEntry);
// A text of any bytes, between quotation marks. What is no UTF-8 becomes U+FFFD.
void PutJSONText(Writer &stWriter, std::string_view strText);

#endif
