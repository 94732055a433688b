// A program that is traced from outside: nothing of it knows of the test.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace ORLTest {

/// Runs a program, counts the system calls of all its threads from the one on that first names a file below a folder,
/// and may send it a signal before one of them. Its output goes nowhere, its errors to a file where one is named.
class TracedRun
{
public:
    explicit TracedRun(const std::string& inFolder, const std::string& inErrors = "/dev/null")
        : mFolder(inFolder), mErrors(inErrors)
    {
    }

    /// The calls that were counted, less the one that the signal came before when that ended it; -1 where nothing can be
    /// traced here. 0 for inSignalAt sends none.
    int Run(std::vector<std::string> inArguments, int inSignalAt, int inSignal = SIGKILL)
    {
        mSignal = inSignal;
        mCount = 0;
        mIsCounting = false;
        mExitCode = -1;
        mChild = ::fork();
        if (mChild == 0) {
            Become(inArguments, mErrors);
        }
        int status = 0;
        if (mChild < 0 || ::waitpid(mChild, &status, 0) != mChild || !WIFSTOPPED(status)) {
            return -1;
        }
        constexpr long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_EXITKILL;
        ::ptrace(PTRACE_SETOPTIONS, mChild, nullptr, kOptions);
        ::ptrace(PTRACE_SYSCALL, mChild, nullptr, nullptr);
        while (Step(inSignalAt)) {
        }
        return mCount;
    }

    /// -1 when a signal ended it.
    int ExitCode() const { return mExitCode; }

private:
    [[noreturn]] static void Become(std::vector<std::string>& ioArguments, const std::string& inErrors)
    {
        std::vector<char*> arguments;
        for (std::string& argument : ioArguments) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        StopLeakChecker();
        const int null = ::open("/dev/null", O_RDWR);
        ::dup2(null, 1);
        ::dup2(::open(inErrors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666), 2);
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
    bool Step(int inSignalAt)
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
            if (IsCounted(thread) && ++mCount == inSignalAt) {
                ::kill(mChild, mSignal);
                if (mSignal == SIGKILL) {
                    --mCount;
                    return true;
                }
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
    const std::string mErrors;
    int mSignal = SIGKILL;
    pid_t mChild = -1;
    int mCount = 0;
    bool mIsCounting = false;
    int mExitCode = -1;
};

} // namespace ORLTest
