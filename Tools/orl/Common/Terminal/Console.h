// The program's interface to its console.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orl {

/// Returns the program's arguments without its name: the original bytes on Linux, UTF-8 of the wide command line on
/// Windows.
std::vector<std::string> Arguments(int inCount, char** inArguments);

/// Occupies each standard stream that the parent process has closed, so that no file of the program gets its number and
/// receives its output. Reading and writing still fail. Call first in main. Does nothing on Windows.
void ReserveStandardStreams();

/// While an instance exists, bytes written to standard output and standard error are shown as UTF-8.
class UTF8Console
{
public:
    UTF8Console();
    ~UTF8Console();
    UTF8Console(const UTF8Console&) = delete;
    UTF8Console& operator=(const UTF8Console&) = delete;

private:
    [[maybe_unused]] unsigned int mEarlierCodePage; // code page of the Windows console, restored at the end
};

/// Switches standard output to binary mode without flushing it. Does nothing on Linux.
void WriteBytesToOutput();

/// Returns whether standard output is a terminal, not a file or pipe, and is not silenced.
bool OutputIsTerminal();

/// Returns the current width in columns of the terminal on standard output: 80 if unknown, and at least 2.
std::size_t TerminalColumns();

/// Flushes standard output and switches it to binary mode: Windows would write CR LF for LF. Does nothing on Linux.
void MakeOutputBinary();

/// While an instance exists, standard output shows colours if it is a terminal that supports their escape sequences and
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
    [[maybe_unused]] unsigned long mEarlierMode; // mode of the Windows console, restored at the end
};

} // namespace orl
