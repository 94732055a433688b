// Runs code as an ordinary user, because root bypasses permissions.
#pragma once

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ORLTest {

/// Runs inWork in a child process and expects it to return true. If run as root, the child first becomes "nobody" and
/// owns inFolder with its contents. inWork must not leave threads running.
inline void RunUnprivileged(const std::filesystem::path& inFolder, const std::function<bool()>& inWork)
{
    constexpr ::uid_t kNobody = 65534;
    const bool isRoot = ::geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(0, ::lchown(inFolder.c_str(), kNobody, kNobody));
        for (const auto& entry : std::filesystem::recursive_directory_iterator(inFolder)) {
            ASSERT_EQ(0, ::lchown(entry.path().c_str(), kNobody, kNobody));
        }
    }
    const ::pid_t child = ::fork();
    ASSERT_LE(0, child);
    if (child == 0) {
        if (isRoot && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
            ::_exit(2);
        }
        bool succeeded = false;
        try {
            succeeded = inWork() && !testing::Test::HasFailure();
        } catch (...) {
        }
        ::_exit(succeeded ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

} // namespace ORLTest
