#include "Console.h"

#include "QuietOutput.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orl {

std::vector<std::string> Arguments(int inCount, char** inArguments)
{
    return std::vector<std::string>(inArguments + (inCount > 0 ? 1 : 0), inArguments + inCount);
}

void ReserveStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1) { // the next file gets the lowest free number, which is this stream's
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

// Changes nothing: terminals on Linux show UTF-8 anyway.
UTF8Console::UTF8Console() : mEarlierCodePage(0)
{
}
UTF8Console::~UTF8Console() = default;

bool OutputIsTerminal()
{
    return !IsOutputSilenced() && ::isatty(STDOUT_FILENO) == 1;
}

std::size_t TerminalColumns()
{
    struct winsize size
    {
    };
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return isKnown ? std::max<std::size_t>(size.ws_col, 2) : 80;
}

void MakeOutputBinary()
{
}

namespace {

bool IsSet(const char* inVariable)
{
    const char* const value = std::getenv(inVariable);
    return value != nullptr && *value != '\0';
}

} // namespace

ColourOutput::ColourOutput()
    : mShowsColours(OutputIsTerminal() && !IsSet("NO_COLOR") && IsSet("TERM")
                    && std::strcmp(std::getenv("TERM"), "dumb") != 0),
      mEarlierMode(0)
{
}
ColourOutput::~ColourOutput() = default;

void WriteBytesToOutput()
{
}

} // namespace orl
