#include <cstdio>

#include <unistd.h>

#include <gtest/gtest.h>

// Descriptors 0 and 1 belong to the client under test: the test program's own
// reports go to a copy of the standard output.
int main(int iCount, char **ppcArguments) {
    stdout = fdopen(dup(STDOUT_FILENO), "w");
    testing::InitGoogleTest(&iCount, ppcArguments);
    return RUN_ALL_TESTS();
}
