// Runs a test program with the test as its debugger.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <windows.h>

namespace ORLTest {

/// An exception that the debugged program raised.
struct DebuggedException
{
    HANDLE mProcess;
    std::uintptr_t mProgram; ///< load address of the program's own image
    DWORD mThread;
    EXCEPTION_RECORD mRecord;
};

/// Runs a program from this program's folder until it ends, and returns its exit code. Each exception is first
/// passed to inLook; if inLook returns false, the handlers of the debugged program get the exception.
inline DWORD RunDebugged(const std::wstring& inProgram, const std::wstring& inArgument,
                         const std::function<bool(const DebuggedException&)>& inLook)
{
    wchar_t path[MAX_PATH];
    const std::wstring own(path, ::GetModuleFileNameW(nullptr, path, MAX_PATH));
    std::wstring command =
        L"\"" + own.substr(0, own.find_last_of(L'\\') + 1) + inProgram + L"\" \"" + inArgument + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION child{};
    if (::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS, nullptr, nullptr,
                         &startup, &child)
        == FALSE) {
        ADD_FAILURE() << "the program does not start, error " << ::GetLastError();
        return 0;
    }
    std::uintptr_t program = 0;
    DEBUG_EVENT event{};
    while (::WaitForDebugEvent(&event, INFINITE) != FALSE && event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT) {
        DWORD answer = DBG_CONTINUE;
        if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
            program = reinterpret_cast<std::uintptr_t>(event.u.CreateProcessInfo.lpBaseOfImage);
            ::CloseHandle(event.u.CreateProcessInfo.hFile);
        } else if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) {
            const DebuggedException exception = {child.hProcess, program, event.dwThreadId,
                                                 event.u.Exception.ExceptionRecord};
            answer = inLook(exception) ? DBG_CONTINUE : DBG_EXCEPTION_NOT_HANDLED;
        }
        ::ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
    }
    ::ContinueDebugEvent(event.dwProcessId, event.dwThreadId, DBG_CONTINUE);
    ::WaitForSingleObject(child.hProcess, INFINITE);
    DWORD exitCode = 0;
    ::GetExitCodeProcess(child.hProcess, &exitCode);
    ::CloseHandle(child.hThread);
    ::CloseHandle(child.hProcess);
    return exitCode;
}

} // namespace ORLTest
