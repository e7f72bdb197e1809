// A console for unit tests: descriptor 0 is a pipe that the test types into,
// descriptor 1 a file that it reads what was printed from.
#ifndef TEST_CONSOLE_H
#define TEST_CONSOLE_H

#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "FakeDevice.h"

// The fixture of every test that prints, reads or sends: it begins with an
// empty console, a reset fake device that is open (handle 1), and the callback
// listening.
class ConsoleTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Puts text into the input, up to a megabyte ahead of the reader.
    static void Type(std::string_view strText);
    static void EndInput();
    // Ends the input; returns what nobody has read of it.
    static std::string Unread();

    // All that was printed since the last call, by this thread (flushed or not)
    // and, as far as flushed, by others.
    static std::string Printed();

    // What the function prints when the text is typed.
    template <typename Function>
    static std::string PrintedBy(Function Run, std::string_view strTyped = {}) {
        Printed();
        Type(strTyped);
        Run();
        return Printed();
    }

    // What a decoder prints for a message such as "2/1 | 00*48", on this thread,
    // in a record of its own.
    static std::string Report(uint32_t (*pfnDecode)(const WiMAXMessage *),
                              std::string_view strMessage);
};

// A text so many times.
std::string Times(std::string_view strText, uint32_t u32Times);

#endif
