// What every page has: everything before the data of a session, and everything behind them.
#ifndef MONITOR_PAGE_PARTS_H
#define MONITOR_PAGE_PARTS_H

#include <string_view>

extern const std::string_view strPageHead;
extern const std::string_view strPageTail;

#endif
