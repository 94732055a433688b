// Tests that a failed check breaks into the debugger only if the report's answer requests it and a debugger is
// attached. The test debugs its own forked child.
#include <ORLDebug.h>

#include <tvxcore/Debug.h>
#include <tvxcore/ErrorManager.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Outcome
{
    int mTraps = 0;
    int mExitCode = -1;
};

class QuietManager : public tvxcore::config::ErrorManager
{
    void ThrowError(tvxcore::config::ErrorLevel, const char*, unsigned long, long, bool,
                    const tvxcore::config::ReplacementValue&, const tvxcore::config::ReplacementValue&,
                    const tvxcore::config::ReplacementValue&, const tvxcore::config::ReplacementValue&) const override
    {
    }
};

[[noreturn]] void RunChild(void (*inCheck)(), bool inAskToBreak, bool inAttach)
{
    static bool sAskToBreak;
    sAskToBreak = inAskToBreak;
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool&, const char*, const unsigned char*, const char*, long, const char*) {
        return sAskToBreak;
    };
    dialogs.mContract = [](const char*, const char*, long) { return sAskToBreak; };
    tvxcore::debug::InstallDialogs(dialogs);
    static QuietManager sManager;
    tvxcore::config::InstallErrorManager(&sManager);
    if (inAttach && ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
        ::_exit(99);
    }
    inCheck();
    ::_exit(tvxcore::debug::IsDebuggerAttached() == inAttach ? 7 : 98);
}

Outcome Watch(void (*inCheck)(), bool inAskToBreak, bool inAttach)
{
    std::fflush(nullptr); // otherwise both processes would print the buffered output
    const pid_t child = ::fork();
    if (child == 0) {
        RunChild(inCheck, inAskToBreak, inAttach);
    }
    Outcome outcome;
    int status = 0;
    while (::waitpid(child, &status, 0) == child && !WIFEXITED(status) && !WIFSIGNALED(status)) {
        outcome.mTraps += WSTOPSIG(status) == SIGTRAP ? 1 : 0;
        ::ptrace(PTRACE_CONT, child, nullptr, nullptr);
    }
    outcome.mExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

const bool sGoesOn = false;

void FailAssert()
{
    ORL_ASSERT(sGoesOn);
}

void FailInputContract()
{
    ORL_INPUT_CONTRACT(sGoesOn);
}

void FailOutputContract()
{
    ORL_OUTPUT_CONTRACT(sGoesOn);
}

} // namespace

TEST(CheckUnderDebugger, TrapsOnlyWhenAskedAndAttached_AndGoesOnBehindTheCheck)
{
    struct Row
    {
        int mLine;
        void (*mCheck)();
        bool mAskToBreak;
        bool mAttach;
        int mTraps;
    };
    const Row rows[] = {
        {__LINE__, FailAssert, true, true, 1},          {__LINE__, FailAssert, false, true, 0},
        {__LINE__, FailAssert, true, false, 0},         {__LINE__, FailAssert, false, false, 0},
        {__LINE__, FailInputContract, true, true, 1},   {__LINE__, FailInputContract, false, true, 0},
        {__LINE__, FailInputContract, true, false, 0},  {__LINE__, FailOutputContract, true, true, 1},
        {__LINE__, FailOutputContract, false, true, 0}, {__LINE__, FailOutputContract, true, false, 0},
    };
    for (const Row& row : rows) {
        const Outcome outcome = Watch(row.mCheck, row.mAskToBreak, row.mAttach);
        EXPECT_EQ(row.mTraps, outcome.mTraps) << "row at line " << row.mLine;
        EXPECT_EQ(7, outcome.mExitCode) << "row at line " << row.mLine;
    }
}
