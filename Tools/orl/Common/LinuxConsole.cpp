#include "Console.h"

#include <unistd.h>

namespace orl {

std::vector<std::string> Arguments(int inCount, char** inArguments)
{
    return std::vector<std::string>(inArguments + (inCount > 0 ? 1 : 0), inArguments + inCount);
}

// Terminals show UTF-8 here.
UTF8Console::UTF8Console() : mEarlierCodePage(0)
{
}
UTF8Console::~UTF8Console() = default;

bool OutputIsTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

} // namespace orl
