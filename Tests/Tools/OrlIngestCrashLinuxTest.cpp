// An ingest that is killed at every system call. The program is traced from outside: nothing of it knows of the test.
#include <IngestTestSupport.h>
#include <ProcessRunner.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

fs::path FastFolder()
{
    return ::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::temp_directory_path();
}

/// Runs a program, counts the system calls of all its threads from the one on that first names a file below a folder,
/// and may kill it before one of them.
class TracedRun
{
public:
    explicit TracedRun(const std::string& inFolder) : mFolder(inFolder) {}

    /// The calls that were counted, less the one it was killed before; -1 where nothing can be traced here. 0 for
    /// inKillAt kills it never.
    int Run(std::vector<std::string> inArguments, int inKillAt)
    {
        mCount = 0;
        mIsCounting = false;
        mChild = ::fork();
        if (mChild == 0) {
            Become(inArguments);
        }
        int status = 0;
        if (mChild < 0 || ::waitpid(mChild, &status, 0) != mChild || !WIFSTOPPED(status)) {
            return -1;
        }
        constexpr long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_EXITKILL;
        ::ptrace(PTRACE_SETOPTIONS, mChild, nullptr, kOptions);
        ::ptrace(PTRACE_SYSCALL, mChild, nullptr, nullptr);
        while (Step(inKillAt)) {
        }
        return mCount;
    }

    int ExitCode() const { return mExitCode; }

private:
    [[noreturn]] static void Become(std::vector<std::string>& ioArguments)
    {
        std::vector<char*> arguments;
        for (std::string& argument : ioArguments) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        StopLeakChecker();
        const int null = ::open("/dev/null", O_RDWR);
        ::dup2(null, 1);
        ::dup2(null, 2);
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
            ::raise(SIGSTOP);
            ::execv(arguments[0], arguments.data());
        }
        ::_exit(99);
    }

    // A sanitizer's leak checker stops the threads by tracing them, and a thread has one tracer.
    static void StopLeakChecker()
    {
        const char* const options = std::getenv("ASAN_OPTIONS");
        const std::string without = std::string(options != nullptr ? options : "") + ":detect_leaks=0";
        ::setenv("ASAN_OPTIONS", without.c_str(), 1);
    }

    // False when the program is over.
    bool Step(int inKillAt)
    {
        int status = 0;
        const pid_t thread = ::waitpid(-1, &status, __WALL);
        if (thread < 0) {
            return false;
        }
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            mExitCode = thread == mChild && WIFEXITED(status) ? WEXITSTATUS(status) : mExitCode;
            return true; // until no thread is left to wait for
        }
        const int signal = WSTOPSIG(status);
        if (signal == (SIGTRAP | 0x80)) {
            if (IsCounted(thread) && ++mCount == inKillAt) {
                --mCount;
                ::kill(mChild, SIGKILL);
                return true;
            }
            ::ptrace(PTRACE_SYSCALL, thread, nullptr, nullptr);
            return true;
        }
        const bool isOfTracing = signal == SIGTRAP || signal == SIGSTOP;
        ::ptrace(PTRACE_SYSCALL, thread, nullptr, isOfTracing ? 0 : signal);
        return true;
    }

    // Calls stop at their entry and at their return; the entry counts.
    bool IsCounted(pid_t inThread)
    {
        struct user_regs_struct registers;
        if (::ptrace(PTRACE_GETREGS, inThread, nullptr, &registers) != 0
            || static_cast<long long>(registers.rax) != -ENOSYS) {
            return false;
        }
        mIsCounting = mIsCounting || NamesFolder(inThread, registers.rdi) || NamesFolder(inThread, registers.rsi);
        return mIsCounting;
    }

    bool NamesFolder(pid_t inThread, unsigned long long inAddress) const
    {
        std::string text(mFolder.size(), '\0');
        struct iovec here = {text.data(), text.size()};
        struct iovec there = {reinterpret_cast<void*>(inAddress), text.size()};
        return ::process_vm_readv(inThread, &here, 1, &there, 1, 0) == static_cast<ssize_t>(text.size())
               && text == mFolder;
    }

    const std::string mFolder;
    pid_t mChild = -1;
    int mCount = 0;
    bool mIsCounting = false;
    int mExitCode = -1;
};

/// A disk that holds one clip of an earlier ingest, and a card with a newer one of that name.
class CrashedIngest : public testing::Test
{
protected:
    CrashedIngest() : mFolder(FastFolder())
    {
        mFolder.MakeFolder("card/d");
        mFolder.MakeFile("card/new.wav", MakeWav(8000, 2000));
        mFolder.MakeFile("card/d/clip", "the newer clip");
        mCard = ReadTree(mFolder.Host() / "card");
    }

    fs::path Disk() const { return mFolder.Host() / "disk"; }

    void PutBack() const
    {
        fs::remove_all(Disk());
        mFolder.MakeFolder("disk/d");
        WriteFile(Disk() / "d/clip", kOld);
        WriteFile(Disk() / "kept", kOld);
        WriteFile(Disk() / kManifest, ReferenceSha256(kOld) + "  d/clip\n" + ReferenceSha256(kOld) + "  kept\n");
    }

    std::vector<std::string> Arguments() const
    {
        return {FolderOfThisProgram() + "orl",      "ingest",       "--replace", "--files-at-once", "1",
                (mFolder.Host() / "card").string(), Disk().string()};
    }

    /// Under a final name is what was there before or what is to be there, whole; every line of the manifest is true.
    void ExpectNothingHalf() const
    {
        const FileTree disk = ReadTree(Disk());
        for (const auto& [name, contents] : disk) {
            const bool isUnfinished = name.find(".part") != std::string::npos || name.find('~') != std::string::npos;
            const bool isNew = mCard.count(name) != 0 && contents == mCard.at(name);
            EXPECT_TRUE(isUnfinished || name == kManifest || contents == kOld || isNew) << name;
        }
        EXPECT_EQ(1u, disk.count("d/clip")) << "the real name is never without its file";
        EXPECT_EQ(kOld, ReadFile(Disk() / "kept"));
        const auto manifest = ReadManifest(Disk() / kManifest, true);
        EXPECT_EQ(1u, manifest.count("kept")) << "a line of another file is lost";
        for (const auto& [name, digest] : manifest) {
            ASSERT_EQ(1u, disk.count(name)) << name;
            EXPECT_EQ(ReferenceSha256(disk.at(name)), digest) << name;
        }
    }

    void ExpectComplete() const
    {
        FileTree expected = mCard;
        expected["kept"] = kOld;
        FileTree disk = ReadTree(Disk());
        disk.erase(kManifest);
        // A swap that was killed may leave the earlier file beside the new one, under a name of its own.
        for (auto entry = disk.begin(); entry != disk.end();) {
            entry = entry->first.find('~') != std::string::npos ? disk.erase(entry) : std::next(entry);
        }
        EXPECT_EQ(expected, disk);
        std::map<std::string, std::string> digests;
        for (const auto& [name, contents] : expected) {
            if (contents != "/") {
                digests[name] = ReferenceSha256(contents);
            }
        }
        EXPECT_EQ(digests, ReadManifest(Disk() / kManifest));
    }

    static constexpr const char* kOld = "the earlier clip";

    TempFolder mFolder;
    FileTree mCard;
};

} // namespace

TEST_F(CrashedIngest, KilledBeforeEachSystemCall_LosesNothingAndASecondRunCompletes)
{
    TracedRun traced(Disk().string());
    PutBack();
    const int calls = traced.Run(Arguments(), 0);
    if (calls < 0 || traced.ExitCode() == 99) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    ASSERT_EQ(0, traced.ExitCode());
    ASSERT_LT(50, calls);
    ExpectComplete();
    // Threads take turns as they like, so the number of calls varies a little from run to run.
    int longest = 0;
    for (int number = 1; number <= calls + 20 && !HasFailure(); ++number) {
        SCOPED_TRACE("killed before call " + std::to_string(number) + " of about " + std::to_string(calls));
        PutBack();
        const int made = traced.Run(Arguments(), number);
        longest = std::max(longest, made);
        if (made < number - 1) {
            break; // it came to its end
        }
        ExpectNothingHalf();
        std::vector<std::string> arguments = Arguments();
        arguments.erase(arguments.begin());
        const ProcessResult result = RunBesideThisProgram("orl", arguments);
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        ExpectComplete();
    }
    EXPECT_LE(calls / 2, longest);
}
