// Traces a program from outside; the program needs no support for it.
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

/// Runs a program and counts the system calls of all its threads, starting with the first call that names a path in
/// inFolder. The class can send the program a signal before one of these calls. Standard output is discarded; standard
/// error goes to inErrors.
class TracedRun
{
public:
    explicit TracedRun(const std::string& inFolder, const std::string& inErrors = "/dev/null")
        : mFolder(inFolder), mErrors(inErrors)
    {
    }

    /// Runs the program and sends inSignal before call number inSignalAt; 0 sends none. Returns the number of counted
    /// calls, without the one that the signal prevented, or -1 if tracing is not possible.
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

    /// Returns the exit code, or -1 if a signal ended the program.
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

    // Needed because a sanitizer's leak checker traces threads to stop them, and a thread can have only one tracer.
    static void StopLeakChecker()
    {
        const char* const options = std::getenv("ASAN_OPTIONS");
        const std::string without = std::string(options != nullptr ? options : "") + ":detect_leaks=0";
        ::setenv("ASAN_OPTIONS", without.c_str(), 1);
    }

    // Returns false when the program has ended.
    bool Step(int inSignalAt)
    {
        int status = 0;
        const pid_t thread = ::waitpid(-1, &status, __WALL);
        if (thread < 0) {
            return false;
        }
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            mExitCode = thread == mChild && WIFEXITED(status) ? WEXITSTATUS(status) : mExitCode;
            return true; // continue until waitpid finds no thread
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

    // A traced call stops at its entry and at its return; only the entry is counted.
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
