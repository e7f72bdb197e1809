// A modem's state for somebody who looks at it.
#ifndef SCREEN_H
#define SCREEN_H

#include <string>
#include <string_view>

// The answer of "state" in lines: a line for each of its parts, and one for each row of a list.
std::string ScreenOf(std::string_view strState);

#endif
