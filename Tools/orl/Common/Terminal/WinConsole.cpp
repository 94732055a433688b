#include "Console.h"

#include "QuietOutput.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <shellapi.h>
#include <stdio.h>

namespace orl {

namespace {

std::string AsUTF8(const wchar_t* inText)
{
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, inText, -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, inText, -1, text.data(), size, nullptr, nullptr);
    text.resize(text.size() - 1);
    return text;
}

} // namespace

// The narrow arguments lose characters outside the code page, so the wide command line is parsed instead.
std::vector<std::string> Arguments(int, char**)
{
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i) {
        arguments.push_back(AsUTF8(wide[i]));
    }
    ::LocalFree(wide);
    return arguments;
}

void ReserveStandardStreams()
{
}

UTF8Console::UTF8Console() : mEarlierCodePage(::GetConsoleOutputCP())
{
    ::SetConsoleOutputCP(CP_UTF8);
}

UTF8Console::~UTF8Console()
{
    ::SetConsoleOutputCP(mEarlierCodePage);
}

bool OutputIsTerminal()
{
    return !IsOutputSilenced() && ::_isatty(::_fileno(stdout)) != 0;
}

std::size_t TerminalColumns()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    const bool isKnown = ::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &info) != FALSE;
    const int columns = isKnown ? info.srWindow.Right - info.srWindow.Left + 1 : 80;
    return static_cast<std::size_t>(columns < 2 ? 2 : columns);
}

void MakeOutputBinary()
{
    std::cout.flush();
    ::_setmode(::_fileno(stdout), _O_BINARY);
}

ColourOutput::ColourOutput() : mShowsColours(false), mEarlierMode(0)
{
    const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
    if (!IsOutputSilenced() && ::GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) <= 1
        && ::GetConsoleMode(output, &mEarlierMode) != FALSE) {
        mShowsColours = ::SetConsoleMode(output, mEarlierMode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
    }
}

ColourOutput::~ColourOutput()
{
    if (mShowsColours) {
        ::SetConsoleMode(::GetStdHandle(STD_OUTPUT_HANDLE), mEarlierMode);
    }
}

// The runtime would insert a carriage return before each line feed.
void WriteBytesToOutput()
{
    ::_setmode(::_fileno(stdout), _O_BINARY);
}

} // namespace orl
