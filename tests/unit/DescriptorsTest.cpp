#include "Descriptors.h"

#include <array>
#include <string>

#include <fcntl.h>
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

} // namespace
