#include <ProcessRunner.h>

#include <windows.h>

namespace ORLTest {

namespace {

std::wstring Wide(const std::string& inText)
{
    const int size = ::MultiByteToWideChar(CP_UTF8, 0, inText.data(), static_cast<int>(inText.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, inText.data(), static_cast<int>(inText.size()), wide.data(), size);
    return wide;
}

std::wstring WideFolderOfThisProgram()
{
    wchar_t path[4096];
    const DWORD size = ::GetModuleFileNameW(nullptr, path, 4096);
    const std::wstring program(path, size);
    return program.substr(0, program.rfind(L'\\') + 1);
}

std::string Narrow(const std::wstring& inText)
{
    const int length = static_cast<int>(inText.size());
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, inText.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, inText.data(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

// Quotes for the C runtime's command line parser: backslashes are special only before a quote.
std::wstring Quoted(const std::wstring& inWord)
{
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t unit : inWord) {
        if (unit == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        quoted += unit;
    }
    quoted.append(backslashes, L'\\');
    return quoted += L'"';
}

HANDLE OpenTemporary()
{
    wchar_t folder[MAX_PATH];
    wchar_t path[MAX_PATH];
    ::GetTempPathW(MAX_PATH, folder);
    ::GetTempFileNameW(folder, L"orl", 0, path);
    SECURITY_ATTRIBUTES inheritable{sizeof(inheritable), nullptr, TRUE};
    return ::CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                         CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

HANDLE FileOf(const std::string& inBytes)
{
    const HANDLE file = OpenTemporary();
    DWORD written = 0;
    ::WriteFile(file, inBytes.data(), static_cast<DWORD>(inBytes.size()), &written, nullptr);
    ::SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    return file;
}

std::string ReadAll(HANDLE inFile)
{
    std::string text;
    char buffer[4096];
    DWORD size = 0;
    ::SetFilePointer(inFile, 0, nullptr, FILE_BEGIN);
    while (::ReadFile(inFile, buffer, sizeof(buffer), &size, nullptr) && size != 0) {
        for (DWORD i = 0; i < size; ++i) {
            if (buffer[i] != '\r') {
                text += buffer[i];
            }
        }
    }
    ::CloseHandle(inFile);
    return text;
}

void WaitFor(const PROCESS_INFORMATION& inProcess, int inSeconds, ProcessResult& outResult)
{
    outResult.mTimedOut =
        ::WaitForSingleObject(inProcess.hProcess, static_cast<DWORD>(inSeconds) * 1000) == WAIT_TIMEOUT;
    if (outResult.mTimedOut) {
        ::TerminateProcess(inProcess.hProcess, 1);
        ::WaitForSingleObject(inProcess.hProcess, INFINITE);
    }
    DWORD exitCode = 0;
    ::GetExitCodeProcess(inProcess.hProcess, &exitCode);
    outResult.mExitCode = outResult.mTimedOut ? -1 : static_cast<int>(exitCode);
    ::CloseHandle(inProcess.hThread);
    ::CloseHandle(inProcess.hProcess);
}

ProcessResult RunOnce(const std::wstring& inProgram, std::wstring inLine, const std::wstring& inFolder, int inSeconds,
                      const std::string& inInput)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = FileOf(inInput);
    startup.hStdOutput = OpenTemporary();
    startup.hStdError = OpenTemporary();
    PROCESS_INFORMATION process{};
    ProcessResult result;
    if (::CreateProcessW(inProgram.c_str(), inLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                         inFolder.empty() ? nullptr : inFolder.c_str(), &startup, &process)) {
        WaitFor(process, inSeconds, result);
    }
    ::CloseHandle(startup.hStdInput);
    result.mOutput = ReadAll(startup.hStdOutput);
    result.mErrors = ReadAll(startup.hStdError);
    return result;
}

// On a busy machine, about one start in several thousand fails: Wine ends the process before its program begins. Such a
// process exits with -1 and no output. No test program ends like that, so the start is repeated.
constexpr int kStarts = 3;

bool NeverBegan(const ProcessResult& inResult)
{
    return inResult.mExitCode == -1 && !inResult.mTimedOut && inResult.mOutput.empty() && inResult.mErrors.empty();
}

} // namespace

std::string FolderOfThisProgram()
{
    return Narrow(WideFolderOfThisProgram());
}

ProcessResult RunBesideThisProgram(const std::string& inName, const std::vector<std::string>& inArguments,
                                   const std::string& inWorkingFolder, int inSeconds, const std::string& inInput)
{
    const std::wstring program = WideFolderOfThisProgram() + Wide(inName) + L".exe";
    std::wstring line = Quoted(program);
    for (const std::string& argument : inArguments) {
        line += L' ' + Quoted(Wide(argument));
    }
    ProcessResult result;
    for (int start = 0; start != kStarts; ++start) {
        result = RunOnce(program, line, Wide(inWorkingFolder), inSeconds, inInput);
        if (!NeverBegan(result)) {
            break;
        }
    }
    return result;
}

} // namespace ORLTest
