#include "Descriptors.h"

#include <array>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

// Standard error is a pipe as long as it lives.
class StandardErrorPipe {
  public:
    StandardErrorPipe() : iBefore(dup(STDERR_FILENO)) {
        EXPECT_EQ(pipe2(aiEnds.data(), O_CLOEXEC), 0);
        dup2(aiEnds[1], STDERR_FILENO);
    }
    ~StandardErrorPipe() {
        dup2(iBefore, STDERR_FILENO);
        close(iBefore);
        close(aiEnds[0]);
        close(aiEnds[1]);
    }
    StandardErrorPipe(const StandardErrorPipe &) = delete;
    StandardErrorPipe &operator=(const StandardErrorPipe &) = delete;

    void Fill() const {
        fcntl(aiEnds[1], F_SETFL, O_NONBLOCK);
        while (write(aiEnds[1], "#", 1) == 1) {
        }
        fcntl(aiEnds[1], F_SETFL, 0);
    }

    std::string Take() const {
        std::array<char, 1000> acText{};
        const ssize_t iCount = read(aiEnds[0], acText.data(), acText.size());
        return iCount > 0 ? std::string(acText.data(), static_cast<size_t>(iCount)) : std::string();
    }

  private:
    int iBefore;
    std::array<int, 2> aiEnds{};
};

TEST(DescriptorsTest, AComplaintIsALineWithTheProgramInFront) {
    const StandardErrorPipe Pipe;
    Complain("out of memory");
    EXPECT_EQ(Pipe.Take(), "unit_tests: out of memory\n");
}

TEST(DescriptorsTest, AComplaintThatIsTooLongIsCut) {
    const StandardErrorPipe Pipe;
    Complain(std::string(1000, 'x'));
    EXPECT_EQ(Pipe.Take(), "unit_tests: " + std::string(243, 'x'));
}

TEST(DescriptorsTest, AComplaintThatNobodyTakesIsGivenUp) {
    const StandardErrorPipe Pipe;
    Pipe.Fill();
    Complain("out of memory");
    EXPECT_EQ(Pipe.Take(), std::string(1000, '#'));
}

class MissingDescriptorTest : public testing::TestWithParam<int> {};

TEST_P(MissingDescriptorTest, IsTheNullDevice) {
    const int iMissing = GetParam();
    const int iBefore = dup(iMissing);
    close(iMissing);
    OpenDescriptors();
    struct stat stOpened {};
    struct stat stNull {};
    EXPECT_EQ(fstat(iMissing, &stOpened), 0);
    EXPECT_EQ(stat("/dev/null", &stNull), 0);
    EXPECT_EQ(stOpened.st_rdev, stNull.st_rdev);
    EXPECT_EQ(fcntl(iMissing, F_GETFL) & O_ACCMODE, O_RDWR);
    RestoreDescriptors();
    dup2(iBefore, iMissing);
    close(iBefore);
}

INSTANTIATE_TEST_SUITE_P(Standard, MissingDescriptorTest,
                         testing::Values(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO));

// Opened once more, it would be another terminal. In a process of its own.
TEST(DescriptorsTest, TheMasterOfATerminalIsWrittenByItsOwnDescriptor) {
    EXPECT_EXIT(
        {
            dup2(posix_openpt(O_RDWR | O_NOCTTY), STDOUT_FILENO);
            OpenDescriptors();
            const bool bOwn = OutputDescriptor() == STDOUT_FILENO;
            const bool bWaits = (fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK) == 0;
            RestoreDescriptors();
            const bool bWaitsAgain = (fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK) == 0;
            std::exit(bOwn && !bWaits && bWaitsAgain ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
