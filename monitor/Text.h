// A session for people: one block an entry, answers in the client's own words.
#ifndef MONITOR_TEXT_H
#define MONITOR_TEXT_H

#include "Session.h"
#include "Writer.h"

struct TextStyle {
    bool bFields = false; // answers by their fields, too
    bool bRaw = false;    // the bytes of everything behind it
    bool bColours = false;
};

void PutEntry(Writer &stWriter, const TextStyle &stStyle, const Entry &stEntry);

#endif
