// Tests that a debugger receives a thread's name in a special exception. The test debugs a child process.
#include <DebuggedProcessWin.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using ORLTest::DebuggedException;

namespace {

constexpr DWORD kThreadNameException = 0x406D1388;

std::string TextAt(HANDLE inProcess, ULONG_PTR inAddress)
{
    std::string text;
    char letter = 0;
    const char* at = reinterpret_cast<const char*>(inAddress);
    while (::ReadProcessMemory(inProcess, at++, &letter, 1, nullptr) != FALSE && letter != 0) {
        text += letter;
    }
    return text;
}

DWORD LowHalf(ULONG_PTR inWord)
{
    return static_cast<DWORD>(inWord);
}

DWORD HighHalf(ULONG_PTR inWord)
{
    return static_cast<DWORD>(inWord >> 32);
}

} // namespace

TEST(ThreadName, UnderADebugger_ComesAsTheExceptionItKnows)
{
    std::vector<std::string> names;
    const DWORD exitCode =
        ORLTest::RunDebugged(L"naming_child.exe", L"", [&names](const DebuggedException& inException) {
            const EXCEPTION_RECORD& record = inException.mRecord;
            if (record.ExceptionCode != kThreadNameException) {
                return record.ExceptionCode == EXCEPTION_BREAKPOINT;
            }
            EXPECT_EQ(3u, record.NumberParameters);
            EXPECT_EQ(0x1000u, LowHalf(record.ExceptionInformation[0]));
            EXPECT_EQ(inException.mThread, LowHalf(record.ExceptionInformation[2])) << "the thread names itself";
            EXPECT_EQ(0u, HighHalf(record.ExceptionInformation[2]));
            names.push_back(TextAt(inException.mProcess, record.ExceptionInformation[1]));
            return false; // the program must survive if the debugger does not handle the exception
        });
    EXPECT_EQ(17u, exitCode);
    EXPECT_EQ((std::vector<std::string>{"CorvantoMain", "Decoder"}), names);
}
