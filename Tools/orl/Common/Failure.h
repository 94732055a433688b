// Exit codes, and the exceptions that a failing command throws.
#pragma once

#include <ORLResult.h>
#include <stdexcept>
#include <string>

namespace orl {

// Exit codes of the program.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1; // the command failed
inline constexpr int kExitUsage = 2;   // invalid command line

// Exit codes of ingest. The first error determines the code.
inline constexpr int kExitNoSpace = 3;      // the destination is full, or would become full
inline constexpr int kExitUnreadable = 4;   // a file or folder of the source cannot be read
inline constexpr int kExitChanged = 5;      // a file changed while it was copied
inline constexpr int kExitDisappeared = 6;  // the source or the destination has disappeared
inline constexpr int kExitMismatch = 7;     // a copy reads back differently
inline constexpr int kExitNameConflict = 8; // the destination has a different file with the same name
inline constexpr int kExitEmpty = 9;        // the source contains no file
inline constexpr int kExitStopped = 130;    // stopped by the user; shells use this code too

/// Thrown by a command. The program prints "orl: " and the message as one line on standard error, and exits with the
/// code. The message names the command, the action, the value and the reason.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const std::string& inText, int inExitCode = kExitFailure)
        : std::runtime_error(inText), mExitCode(inExitCode)
    {
    }

    int ExitCode() const noexcept { return mExitCode; }

private:
    int mExitCode;
};

/// Writes "orl: " and the message as one line on standard error, after flushing standard output.
void ReportError(const std::string& inText);

/// Thrown at the end by a command that has already reported each failure and done all other work. The program exits
/// with kExitFailure and prints nothing more.
class PartialFailure : public std::runtime_error
{
public:
    PartialFailure() : std::runtime_error("some of the work could not be done") {}
};

/// The system lacks descriptors or memory. The file or folder may well exist.
inline constexpr ORL::Result kOutOfResources = static_cast<ORL::Result>(0xA0FF0001u);

/// Returns a description of a result: "path not found".
std::string Describe(ORL::Result inResult);

} // namespace orl
