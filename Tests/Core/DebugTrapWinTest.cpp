// A failed check stops in the debugger only when its report asks for that and a debugger is attached. The test is the
// debugger of a child.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <windows.h>

namespace {

constexpr std::uintptr_t kLargestProgram = 64 << 20; // more than the child takes, less than its distance to any DLL

struct Outcome
{
    int mTraps = 0;
    DWORD mExitCode = 0;
};

std::wstring ChildProgram()
{
    wchar_t path[MAX_PATH];
    const std::wstring own(path, ::GetModuleFileNameW(nullptr, path, MAX_PATH));
    return own.substr(0, own.find_last_of(L'\\') + 1) + L"debugged_child.exe";
}

PROCESS_INFORMATION StartChild(bool inAskToBreak, bool inAttach)
{
    std::wstring command = L"\"" + ChildProgram() + (inAskToBreak ? L"\" break" : L"\" \"go on\"");
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION child{};
    EXPECT_NE(FALSE, ::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE,
                                      inAttach ? DEBUG_ONLY_THIS_PROCESS : 0, nullptr, nullptr, &startup, &child));
    return child;
}

// Lets the child run to its end and counts the breakpoints in its own program; the loader brings one of its own.
int CountTraps()
{
    int traps = 0;
    std::uintptr_t program = 0;
    DEBUG_EVENT event{};
    while (::WaitForDebugEvent(&event, INFINITE) != FALSE && event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT) {
        DWORD answer = DBG_CONTINUE;
        if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
            program = reinterpret_cast<std::uintptr_t>(event.u.CreateProcessInfo.lpBaseOfImage);
            ::CloseHandle(event.u.CreateProcessInfo.hFile);
        } else if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) {
            const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
            const auto where = reinterpret_cast<std::uintptr_t>(record.ExceptionAddress);
            const bool isBreakpoint = record.ExceptionCode == EXCEPTION_BREAKPOINT;
            answer = isBreakpoint ? DBG_CONTINUE : DBG_EXCEPTION_NOT_HANDLED;
            traps += isBreakpoint && where - program < kLargestProgram ? 1 : 0;
        }
        ::ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
    }
    ::ContinueDebugEvent(event.dwProcessId, event.dwThreadId, DBG_CONTINUE);
    return traps;
}

Outcome Watch(bool inAskToBreak, bool inAttach)
{
    const PROCESS_INFORMATION child = StartChild(inAskToBreak, inAttach);
    Outcome outcome;
    if (inAttach) {
        outcome.mTraps = CountTraps();
    }
    ::WaitForSingleObject(child.hProcess, INFINITE);
    ::GetExitCodeProcess(child.hProcess, &outcome.mExitCode);
    ::CloseHandle(child.hThread);
    ::CloseHandle(child.hProcess);
    return outcome;
}

} // namespace

TEST(CheckUnderDebugger, TrapsOnlyWhenAskedAndAttached_AndGoesOnBehindTheCheck)
{
    struct Row
    {
        int mLine;
        bool mAskToBreak;
        bool mAttach;
        int mTraps;
    };
    const Row rows[] = {
        {__LINE__, true, true, 3},
        {__LINE__, false, true, 0},
        {__LINE__, true, false, 0},
        {__LINE__, false, false, 0},
    };
    for (const Row& row : rows) {
        const Outcome outcome = Watch(row.mAskToBreak, row.mAttach);
        EXPECT_EQ(row.mTraps, outcome.mTraps) << "row at line " << row.mLine;
        EXPECT_EQ(7u, outcome.mExitCode) << "row at line " << row.mLine;
    }
}
