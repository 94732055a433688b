// What the program needs of the console that it runs in.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orl {

/// The program's arguments without its name: on Linux the bytes as they came, on Windows UTF-8 of the wide command
/// line.
std::vector<std::string> Arguments(int inCount, char** inArguments);

/// While it lives, bytes written to standard output and standard error show as UTF-8.
class UTF8Console
{
public:
    UTF8Console();
    ~UTF8Console();
    UTF8Console(const UTF8Console&) = delete;
    UTF8Console& operator=(const UTF8Console&) = delete;

private:
    [[maybe_unused]] unsigned int mEarlierCodePage; // of the Windows console
};

/// From here on standard output takes bytes as they are, and no text.
void WriteBytesToOutput();

/// Whether standard output is a terminal and not a file or pipe.
bool OutputIsTerminal();

/// Columns of the terminal on standard output, as wide as it is now; 80 where it does not tell, and at least 2.
std::size_t TerminalColumns();

/// Bytes written to standard output from now on arrive as they are: Windows would write CR LF for LF.
void MakeOutputBinary();

/// While it lives, standard output shows colours if it can: if it is a terminal that knows their escape sequences and
/// the user has not set NO_COLOR.
class ColourOutput
{
public:
    ColourOutput();
    ~ColourOutput();
    ColourOutput(const ColourOutput&) = delete;
    ColourOutput& operator=(const ColourOutput&) = delete;

    bool ShowsColours() const noexcept { return mShowsColours; }

private:
    bool mShowsColours;
    [[maybe_unused]] unsigned long mEarlierMode; // of the Windows console
};

} // namespace orl
