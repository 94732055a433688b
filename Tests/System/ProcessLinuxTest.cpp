// Tests IsProcessRunning on Linux: unusual names, other users' processes, and failing calls.
#include <ORLProcess.h>

#include <FaultySystemCallsLinux.h>
#include <TempFolder.h>
#include <UnprivilegedLinux.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace ORLTest;
using namespace ORL::Process;

namespace {

using Flags = ProcessSearchFlags::Type;

UTF16String Units(const std::u16string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

bool IsRunning(const std::u16string& inName, Flags inFlags = ProcessSearchFlags::kExactMatch)
{
    return IsProcessRunning(Units(inName), inFlags);
}

/// A process that waits until it is killed.
class Sleeper
{
public:
    // Returns when the program runs: exec closes the child's end of the pipe.
    Sleeper(const std::string& inProgram, const std::string& inShownName)
    {
        int started[2];
        EXPECT_EQ(0, ::pipe2(started, O_CLOEXEC));
        EXPECT_EQ(0, ::pipe2(mInput, O_CLOEXEC));
        mProcess = ::fork();
        if (mProcess == 0) {
            ::dup2(mInput[0], STDIN_FILENO);
            ::execl(inProgram.c_str(), inShownName.c_str(), nullptr);
            ::_exit(127);
        }
        ::close(started[1]);
        char nothing;
        EXPECT_EQ(0, ::read(started[0], &nothing, 1));
        ::close(started[0]);
    }

    ~Sleeper()
    {
        ::kill(mProcess, SIGKILL);
        ::waitpid(mProcess, nullptr, 0);
        ::close(mInput[0]);
        ::close(mInput[1]);
    }

    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;

private:
    pid_t mProcess;
    int mInput[2];
};

class ProcessNames : public testing::Test
{
protected:
    // Copies cat, which reads until its input ends, under the given name.
    std::string Program(const std::string& inName)
    {
        const std::string path = mFolder.Host().string() + "/" + inName;
        std::filesystem::copy_file("/bin/cat", path);
        return path;
    }

    TempFolder mFolder;
};

std::size_t OpenFiles()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

} // namespace

TEST_F(ProcessNames, LongerThan15Bytes_AreWhole)
{
    const std::string name = "orl-a-name-that-is-much-longer-than-fifteen-bytes";
    const Sleeper sleeper(Program(name), "x");
    EXPECT_TRUE(IsRunning(u"orl-a-name-that-is-much-longer-than-fifteen-bytes"));
    EXPECT_FALSE(IsRunning(u"orl-a-name-that")) << "what the kernel keeps as the thread's name";
}

TEST_F(ProcessNames, OfHostileKinds_ReadAsLibraryPathsHoldThem)
{
    const struct
    {
        int mLine;
        const char* mBytes;
        const char16_t* mUnits;
    } rows[] = {
        {__LINE__, "orl test with blanks", u"orl test with blanks"},
        {__LINE__, "orl-caf\xC3\xA9-\xF0\x9F\x98\x80", u"orl-caf\u00e9-\U0001F600"},
        {__LINE__, "orl-caf\xE9", u"orl-caf\uF0E9"},
        {__LINE__, "orl-a:b", u"orl-a\uF03Ab"},
        {__LINE__, "orl\n(x) R 1", u"orl\uF00A(x) R 1"},
        {__LINE__, "orl (deleted)", u"orl (deleted)"},
    };
    for (const auto& row : rows) {
        const Sleeper sleeper(Program(row.mBytes), "x");
        EXPECT_TRUE(IsRunning(row.mUnits)) << "row at line " << row.mLine;
    }
}

TEST_F(ProcessNames, OfADeletedFile_HaveNoMark)
{
    const std::string path = Program("orl-deleted-program");
    const Sleeper sleeper(path, "x");
    std::filesystem::remove(path);
    EXPECT_TRUE(IsRunning(u"orl-deleted-program"));
    EXPECT_FALSE(IsRunning(u"orl-deleted-program (deleted)"));
}

TEST_F(ProcessNames, OfAnEndedProcess_AreGone)
{
    {
        const Sleeper sleeper(Program("orl-ended-program"), "x");
        EXPECT_TRUE(IsRunning(u"orl-ended-program"));
    }
    EXPECT_FALSE(IsRunning(u"orl-ended-program"));
}

// If the exe link cannot be read, the command line is used.
TEST_F(ProcessNames, WithoutALink_ComeFromTheCommandLine)
{
    const std::string path = Program("orl-linked-program");
    const struct
    {
        int mLine;
        const char* mShown;
        const char16_t* mName;
    } rows[] = {
        {__LINE__, "/opt/somewhere/orl-shown-program", u"orl-shown-program"},
        {__LINE__, "-orl-shown-shell", u"orl-shown-shell"},
        {__LINE__, "orl-shown-server: worker process /x/y", u"orl-shown-server"},
        {__LINE__, "orl-shown-caf\xC3\xA9", u"orl-shown-caf\u00e9"},
    };
    for (const auto& row : rows) {
        const Sleeper sleeper(path, row.mShown);
        EXPECT_FALSE(IsRunning(row.mName)) << "row at line " << row.mLine;
        FaultySystemCalls calls;
        calls.Fail(FaultySystemCalls::kReadLinkAt, 1, EACCES, FaultySystemCalls::kForEver);
        EXPECT_TRUE(IsRunning(row.mName)) << "row at line " << row.mLine;
        EXPECT_FALSE(IsRunning(u"orl-linked-program")) << "row at line " << row.mLine;
    }
}

TEST_F(ProcessNames, WithAnEmptyCommandLine_ArePassedOver)
{
    const Sleeper sleeper(Program("orl-nameless"), "");
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kReadLinkAt, 1, EACCES, FaultySystemCalls::kForEver);
    EXPECT_FALSE(IsRunning(u""));
    EXPECT_FALSE(IsRunning(u"orl-nameless"));
}

TEST_F(ProcessNames, OfAnotherUsersProcess_AreSeenQuietly)
{
    const std::string path = Program("orl-other-users-program");
    const Sleeper sleeper(path, path);
    RunUnprivileged(mFolder.Host(),
                    [] { return IsRunning(u"orl-other-users-program") && !IsRunning(u"no process has this name"); });
}

namespace {

constexpr int kFakeCount = 1100;
int sNextFake = 0;

// Lists processes 1 to 1100, with other entries between them.
ssize_t FakeDents(int, void* outEntries, std::size_t inSize)
{
    char* const outBuffer = static_cast<char*>(outEntries);
    std::size_t size = 0;
    while (sNextFake < 2 * kFakeCount && size + 300 < inSize) {
        dirent64 entry{};
        const int number = sNextFake / 2 + 1;
        const char* const kind = sNextFake % 2 == 0 ? "%d" : "%dth";
        std::snprintf(entry.d_name, sizeof(entry.d_name), kind, number);
        const std::size_t length = offsetof(dirent64, d_name) + std::strlen(entry.d_name) + 1;
        entry.d_reclen = static_cast<unsigned short>((length + 7) / 8 * 8);
        std::memcpy(outBuffer + size, &entry, entry.d_reclen);
        size += entry.d_reclen;
        ++sNextFake;
    }
    return static_cast<ssize_t>(size);
}

ssize_t FakeLink(int, const char* inPath, char* outTarget, std::size_t inSize)
{
    int number = 0;
    std::sscanf(inPath, "/proc/%d/exe", &number);
    return std::snprintf(outTarget, inSize, "/bin/process-%d", number);
}

} // namespace

TEST(IsProcessRunning, TheFirst1024Processes_AreSeenAndNoMore)
{
    const struct
    {
        const char16_t* mName;
        bool mIsSeen;
    } rows[] = {{u"process-1", true},
                {u"process-1023", true},
                {u"process-1024", true},
                {u"process-1025", false},
                {u"process-1100", false}};
    for (const auto& row : rows) {
        sNextFake = 0;
        FaultySystemCalls calls;
        calls.Underlying().mGetDents = &FakeDents;
        calls.Underlying().mReadLinkAt = &FakeLink;
        EXPECT_EQ(row.mIsSeen, IsRunning(row.mName)) << UTF16String(Units(row.mName)).size();
    }
}

TEST(IsProcessRunning, WithoutProc_IsFalse)
{
    for (const auto call : {FaultySystemCalls::kOpen, FaultySystemCalls::kGetDents}) {
        FaultySystemCalls calls;
        calls.Fail(call, 1, EACCES);
        EXPECT_FALSE(IsRunning(u"", ProcessSearchFlags::kContains));
    }
}

// Fails each call of the search once; the search continues, and no file stays open.
TEST(IsProcessRunning, WithAnyCallFailing_EndsAndLeavesNoFileOpen)
{
    const std::size_t before = OpenFiles();
    unsigned total = 0;
    {
        FaultySystemCalls calls;
        IsRunning(u"no process has this name");
        total = calls.Count(FaultySystemCalls::kAny);
    }
    ASSERT_GT(total, 3u);
    for (const int error : {EACCES, ENOENT, ESRCH}) {
        for (unsigned number = 1; number <= total; number += number < 40 ? 1 : 17) {
            FaultySystemCalls calls;
            calls.Fail(FaultySystemCalls::kAny, number, error);
            EXPECT_FALSE(IsRunning(u"no process has this name"));
        }
    }
    EXPECT_EQ(before, OpenFiles());
}
