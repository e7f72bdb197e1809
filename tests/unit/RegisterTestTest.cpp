#include "RegisterTest.h"

#include <cstdlib>
#include <memory>

#include <sys/resource.h>

#include "TestConsole.h"

namespace {

const std::string strRegisterTestMenu = "\n******** RDM-WRM MENU ********\n"
                                        "\n 1. READ REGISTER"
                                        "\n 2. WRITE TO REGISTER"
                                        "\n-1. GO TO MAIN MENU"
                                        "\n\n******************************\n"
                                        "\nENTER OPTION : ";
const std::string strAddress = "\nENTER THE REGISTER ADDRESS (XXXXXXXX):";
const std::string strValue = "\nENTER THE VALUE (XXXXXXXX):";
const std::string strCount = "\n ENTER NUMBER OF BYTES TO READ :";

using Strings = std::vector<std::string>;

class RegisterTestTest : public ConsoleTest {
  protected:
    // What the test prints, and that it returns this.
    static std::string PrintedFor(std::string_view strTyped, int32_t iExpected = 1) {
        int32_t iResult = 77;
        const std::string strPrinted = PrintedBy([&] { iResult = TestRDMWRM(); }, strTyped);
        EXPECT_EQ(iResult, iExpected);
        return strPrinted;
    }
};

TEST_F(RegisterTestTest, BytesAreReadAndPrintedEightALine) {
    FakeDevice::SetMemory({0x00, 0x11, 0xA2, 0xFF, 4, 5, 6, 7, 0x88, 0x99, 0xAA, 0xBB});
    EXPECT_EQ(PrintedFor("1\n1000\n10\n-1\n"), strRegisterTestMenu + strAddress + strCount +
                                                   "\n 0x00001000 :  0x00 0x11 0xa2 0xff 0x04 0x05 "
                                                   "0x06 0x07"
                                                   "\n 0x00001008 :  0x88 0x99" +
                                                   strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{"rdm 0x00001000 10"});
}

TEST_F(RegisterTestTest, AddressesWrapAround) {
    EXPECT_EQ(PrintedFor("1\n0xFFFFFFFC\n9\n-1\n"),
              strRegisterTestMenu + strAddress + strCount +
                  "\n 0xfffffffc :  0x00 0x00 0x00 0x00 0x00 0x00 0x00 0x00"
                  "\n 0x00000004 :  0x00" +
                  strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{"rdm 0xfffffffc 9"});
}

TEST_F(RegisterTestTest, AFailedReadPrintsNoBytes) {
    for (const int32_t iResult : {-1, 1}) {
        FakeDevice::SetMemoryResult(iResult);
        EXPECT_EQ(PrintedFor("1\n0\n4\n-1\n"), strRegisterTestMenu + strAddress + strCount +
                                                   "\nERROR!! RDM FAILED!!" + strRegisterTestMenu);
    }
}

TEST_F(RegisterTestTest, AByteCountBelowOneEndsTheTest) {
    for (const char *pcTyped : {"1\n1000\n0\n", "1\n1000\n-4\n", "1\n1000\nx\n"}) {
        EXPECT_EQ(PrintedFor(pcTyped, 0),
                  strRegisterTestMenu + strAddress + strCount + "\n Error !!!");
    }
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{});
}

TEST_F(RegisterTestTest, AWordIsWritten) {
    EXPECT_EQ(PrintedFor("2\nF000004\n12345678\n-1\n"),
              strRegisterTestMenu + strAddress + strValue + strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{"wrm 0x0f000004 4"});
    EXPECT_EQ(FakeDevice::LastWritten(), (Bytes{0x78, 0x56, 0x34, 0x12}));
}

TEST_F(RegisterTestTest, AFailedWriteIsReported) {
    FakeDevice::SetMemoryResult(-1);
    EXPECT_EQ(PrintedFor("2\n0\n0\n-1\n"), strRegisterTestMenu + strAddress + strValue +
                                               "\nERROR!! WRM FAILED!!" + strRegisterTestMenu);
}

TEST_F(RegisterTestTest, OtherChoicesAreInvalid) {
    EXPECT_EQ(PrintedFor("5\n0\nabc\n-2\n-1\n"),
              strRegisterTestMenu + "\nINVALID OPTION!!\n" + strRegisterTestMenu +
                  "\nINVALID OPTION!!\n" + strRegisterTestMenu + "\nINVALID OPTION!!\n" +
                  strRegisterTestMenu + "\nINVALID OPTION!!\n" + strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{});
}

TEST_F(RegisterTestTest, LeavingAtOnce) { EXPECT_EQ(PrintedFor("-1\n"), strRegisterTestMenu); }

TEST_F(RegisterTestTest, BadAddressesAndValuesAreReportedAndTheMenuGoesOn) {
    for (const char *pcOption : {"1", "2", "3", "4"}) {
        EXPECT_EQ(PrintedFor(std::string(pcOption) + "\nxyz\n-1\n"),
                  strRegisterTestMenu + strAddress + "\nINVALID REGISTER ADDRESS!!\n" +
                      strRegisterTestMenu);
    }
    for (const char *pcOption : {"2", "4"}) {
        EXPECT_EQ(PrintedFor(std::string(pcOption) + "\n10\nxyz\n-1\n"),
                  strRegisterTestMenu + strAddress + strValue + "\nINVALID HEX VALUE!!\n" +
                      strRegisterTestMenu);
    }
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{});
}

TEST_F(RegisterTestTest, TheRepeatedReadTakesZeroForAFailure) {
    EXPECT_EQ(PrintedFor("3\n2000\n-1\n"), strRegisterTestMenu + strAddress +
                                               "\nERROR!! RDM FAILED!!RDM FAILED FOR COUNT 0\n" +
                                               strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{"rdm 0x00002000 0"});
}

TEST_F(RegisterTestTest, TheRepeatedReadGoesOnWhileTheResultIsNotZero) {
    FakeDevice::SetMemory({0xCD, 0xAB, 0x00, 0x00, 1, 2, 3, 4});
    FakeDevice::QueueMemoryResult(0); // the single read
    FakeDevice::QueueMemoryResult(1);
    FakeDevice::QueueMemoryResult(-1);
    EXPECT_EQ(PrintedFor("1\n10\n5\n3\n20\n-1\n"),
              strRegisterTestMenu + strAddress + strCount +
                  "\n 0x00000010 :  0xcd 0xab 0x00 0x00 0x01" + strRegisterTestMenu + strAddress +
                  "RDM SUCCESS 0\nRegister Value = abcd"
                  "RDM SUCCESS 1\nRegister Value = abcd"
                  "\nERROR!! RDM FAILED!!RDM FAILED FOR COUNT 2\n" +
                  strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), (Strings{"rdm 0x00000010 5", "rdm 0x00000020 5",
                                                  "rdm 0x00000020 5", "rdm 0x00000020 5"}));
}

TEST_F(RegisterTestTest, TheRepeatedReadStartsCountingAgain) {
    FakeDevice::QueueMemoryResult(1);
    FakeDevice::QueueMemoryResult(0);
    EXPECT_EQ(PrintedFor("3\n0\n3\n0\n-1\n"), strRegisterTestMenu + strAddress +
                                                  "RDM SUCCESS 0\nRegister Value = 0000"
                                                  "\nERROR!! RDM FAILED!!RDM FAILED FOR COUNT 1\n" +
                                                  strRegisterTestMenu + strAddress +
                                                  "\nERROR!! RDM FAILED!!RDM FAILED FOR COUNT 0\n" +
                                                  strRegisterTestMenu);
}

TEST_F(RegisterTestTest, WideRegisterValuesAreNotCut) {
    FakeDevice::SetMemory({0x78, 0x56, 0x34, 0x92});
    FakeDevice::QueueMemoryResult(0); // the single read
    FakeDevice::QueueMemoryResult(1);
    EXPECT_NE(PrintedFor("1\n0\n4\n3\n0\n-1\n").find("Register Value = 92345678"),
              std::string::npos);
}

TEST_F(RegisterTestTest, TheRepeatedReadStopsAtTheFirstZero) {
    FakeDevice::QueueMemoryResult(-1);
    FakeDevice::QueueMemoryResult(0);
    FakeDevice::QueueMemoryResult(-1);
    PrintedFor("3\n0\n-1\n");
    EXPECT_EQ(FakeDevice::MemoryCalls(), (Strings{"rdm 0x00000000 0", "rdm 0x00000000 0"}));
}

TEST_F(RegisterTestTest, TheRepeatedWriteTakesZeroForAFailure) {
    EXPECT_EQ(PrintedFor("4\n2000\nABCD\n-1\n"), strRegisterTestMenu + strAddress + strValue +
                                                     "\nERROR!! WRM FAILED!!" +
                                                     strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{"wrm 0x00002000 4"});
    EXPECT_EQ(FakeDevice::LastWritten(), (Bytes{0xCD, 0xAB, 0x00, 0x00}));
}

TEST_F(RegisterTestTest, TheRepeatedWriteGoesOnWhileTheResultIsNotZero) {
    FakeDevice::QueueMemoryResult(-1);
    FakeDevice::QueueMemoryResult(1);
    EXPECT_EQ(PrintedFor("4\n10\n1\n-1\n"), strRegisterTestMenu + strAddress + strValue +
                                                "WRM SUCCESS 0\nWRM SUCCESS 1\n"
                                                "\nERROR!! WRM FAILED!!" +
                                                strRegisterTestMenu);
    EXPECT_EQ(FakeDevice::MemoryCalls(),
              (Strings{"wrm 0x00000010 4", "wrm 0x00000010 4", "wrm 0x00000010 4"}));
}

TEST_F(RegisterTestTest, ALargeReadIsPrintedToItsEnd) {
    const std::string strPrinted = PrintedFor("1\n0\n1050000\n-1\n");
    const std::string strEnd =
        "\n 0x00100588 :  0x00 0x00 0x00 0x00 0x00 0x00 0x00 0x00" + strRegisterTestMenu;
    EXPECT_TRUE(strPrinted.ends_with(strEnd));
    EXPECT_NE(strPrinted.find("\n 0x000ffff8 :  0x00 0x00 0x00 0x00 0x00 0x00 0x00 0x00"
                              "\n 0x00100000 :  0x00 0x00"),
              std::string::npos);
    // 131250 lines of 15 characters and 8 bytes of 5.
    EXPECT_EQ(strPrinted.size(), 2 * strRegisterTestMenu.size() + strAddress.size() +
                                     strCount.size() + 131250 * (15 + 40));
}

// The sanitizers' own allocators end the program instead.
#if !defined SANITIZE_ADDRESS && !defined SANITIZE_THREAD
TEST_F(RegisterTestTest, TooManyBytesForTheMemoryEndTheTest) {
    rlimit stBefore{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &stBefore), 0);
    const rlimit stSmall{rlim_t{1} << 30, stBefore.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &stSmall), 0);
    if (const std::unique_ptr<void, decltype(&std::free)> Block{std::malloc(2147483647),
                                                                std::free}) {
        setrlimit(RLIMIT_AS, &stBefore);
        GTEST_SKIP() << "An emulator does not limit the memory";
    }
    const std::string strPrinted = PrintedFor("1\n1000\n2147483647\n", 0);
    setrlimit(RLIMIT_AS, &stBefore);
    EXPECT_EQ(strPrinted,
              strRegisterTestMenu + strAddress + strCount + "\n Error - Malloc failed!!!");
    EXPECT_EQ(FakeDevice::MemoryCalls(), Strings{});
}
#endif

} // namespace
