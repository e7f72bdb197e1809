// Security parameters: sizes, values, what can be written, and the state file.
#include <gtest/gtest.h>

#include <filesystem>

#include <unistd.h>

#include "ModemBench.h"
#include "TestScenarios.h"

namespace {

TEST(SecurityParameters, AValueThatIsSetStays) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(34, 2, "00*10"), 0);
    EXPECT_EQ(stBench.Send(34, 1, "00 00 00 00 04 00 00 00 00 05 00 00 00 00"), 0);
    EXPECT_EQ(stBench.Send(34, 2, "00*10"), 0);
    EXPECT_EQ(stBench.Send(34, 3, "00*4"), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"34/2: 00*4 04 00*8", "34/1: 00*10", "34/2: 00*4 04 00 00 00 00 05 00 00 00",
                    "34/3: 00*4 04 00*5"}));
}

TEST(SecurityParameters, TextsHaveAnyLengthUpTo128) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(34, 3, "04 00*3"), 0);
    EXPECT_EQ(stBench.Send(34, 2, "04 00*9"), 0);
    EXPECT_EQ(stBench.Send(34, 1, "04 00*3 80 00*4 41*128 00"), 0);
    EXPECT_EQ(stBench.Send(34, 3, "04 00*3"), 0);
    EXPECT_EQ(stBench.Send(34, 1, "04 00*3 81 00*4 41*129 00"), 0);
    EXPECT_EQ(stBench.Send(34, 1, "04 00*9"), 0);
    EXPECT_EQ(stBench.Send(34, 2, "04 00*9"), 0);
    EXPECT_EQ(stBench.Messages(),
              Told({"34/3: 04 00 00 00 07 00*5", "34/2: 04 00 00 00 07 00*4 65 78 61 6D 70 6C 65",
                    "34/1: 04 00*9", "34/3: 04 00 00 00 80 00*5", "34/1: 04 00*7 FE 00",
                    "34/1: 04 00*9", "34/2: 04 00*9"}));
}

TEST(SecurityParameters, WhatCannotBeDoneGetsANegativeStatus) {
    ModemBench stBench("");
    EXPECT_EQ(stBench.Send(34, 1, "0B 00*3 01 00*4 01 00"), 0);       // none
    EXPECT_EQ(stBench.Send(34, 2, "0B 00*9"), 0);                     // none
    EXPECT_EQ(stBench.Send(34, 3, "FF FF FF FF"), 0);                 // none
    EXPECT_EQ(stBench.Send(34, 1, "00*4 02 00*4 01 00 00"), 0);       // size
    EXPECT_EQ(stBench.Send(34, 1, "00*4 FF FF FF FF 00 01 00"), 0);   // wild length
    EXPECT_EQ(stBench.Send(34, 1, "0A 00*3 14 00*4 01*20 00"), 0);    // read only
    EXPECT_EQ(stBench.Send(34, 2, "06 00*9"), 0);                     // write only
    EXPECT_EQ(stBench.Send(34, 1, "00*4 04 00*4 08 00 00 00 00"), 0); // value
    EXPECT_EQ(stBench.Messages(),
              Told({"34/1: 0B 00*7 FF 00", "34/2: 0B 00*7 FF 00", "34/3: FF FF FF FF 00*4 FF 00",
                    "34/1: 00*8 FE 00", "34/1: 00*8 FE 00", "34/1: 0A 00*7 FD 00",
                    "34/2: 06 00*7 FC 00", "34/1: 00*8 FB 00"}));
    EXPECT_EQ(stBench.Send(34, 1, "00*9"), -4);
    EXPECT_EQ(stBench.Send(34, 2, "00*11"), -4);
    EXPECT_EQ(stBench.Send(34, 3, "00*5"), -4);
}

TEST(SecurityParameters, TheyAreInUseDuringNetworkEntry) {
    ModemBench stBench(pcFourStations);
    EXPECT_EQ(stBench.Send(2, 1, "6C 7B 27 00 10 27 00 00 FF 00*55"), 0);
    stBench.RunUntil(0.5);
    EXPECT_EQ(stBench.Send(2, 2, "00*4"), 0);
    stBench.Messages();
    EXPECT_EQ(stBench.Send(34, 1, "02 00*3 01 00*4 01 00"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"34/1: 02 00*7 FA 00"}));
}

TEST(SecurityParameters, TheScenarioAndTheStateFileGiveValues) {
    const std::string strFile = (std::filesystem::temp_directory_path() /
                                 ("security-" + std::to_string(::getpid()) + ".state"))
                                    .string();
    std::filesystem::remove(strFile);
    const std::string strScenario = "[state]\nfile = \"" + strFile +
                                    "\"\n[[security-parameter]]\nid = 3\nvalue = \"61 62\"\n"
                                    "[[security-parameter]]\nid = 5\nvalue = \"63\"\n";
    {
        ModemBench stBench(strScenario);
        EXPECT_EQ(stBench.Send(34, 2, "03 00*9"), 0);
        EXPECT_EQ(stBench.Messages(), Told({"34/2: 03 00 00 00 02 00*4 61 62"}));
        EXPECT_EQ(stBench.Send(34, 1, "03 00*3 03 00*4 78 79 7A 00"), 0);
        EXPECT_EQ(stBench.Send(34, 1, "05 00*9"), 0); // emptied
        stBench.Messages();
    }
    ModemBench stBench(strScenario);
    EXPECT_EQ(stBench.Send(34, 2, "03 00*9"), 0);
    EXPECT_EQ(stBench.Send(34, 3, "05 00*3"), 0);
    EXPECT_EQ(stBench.Messages(), Told({"34/2: 03 00 00 00 03 00*4 78 79 7A", "34/3: 05 00*9"}));
    std::filesystem::remove(strFile);
}

} // namespace
