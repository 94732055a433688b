// Tests that the program occupies the standard streams that its parent has closed.
#include <Console.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// In a child without standard streams. Returns 0 on success, or the number of the check that failed.
int ReserveInChild()
{
    for (int stream = 0; stream < 3; ++stream) {
        ::close(stream);
    }
    orl::ReserveStandardStreams();
    if (::open("/dev/null", O_RDWR) < 3) {
        return 1;
    }
    char byte = 'x';
    return ::read(0, &byte, 1) != -1 ? 2 : ::write(1, &byte, 1) != -1 ? 3 : ::write(2, &byte, 1) != -1 ? 4 : 0;
}

} // namespace

TEST(StandardStreams, ThatAreClosed_AreOccupiedAndStillFail)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(ReserveInChild());
    }
    int status = -1;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}
