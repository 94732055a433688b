// How a command ends that cannot do its work.
#pragma once

#include <ORLResult.h>
#include <stdexcept>
#include <string>

namespace orl {

// Exit codes of the program.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1; // the work could not be done
inline constexpr int kExitUsage = 2;   // the command line makes no sense

/// Thrown by a command. The program prints "orl: " and the text on standard error, on one line, and ends with
/// kExitFailure. The text says who, doing what, with which value, and why.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Writes "orl: " and the text on standard error, as one line, behind what standard output has so far.
void Complain(const std::string& inText);

/// Thrown by a command that has complained of all that failed, once the rest of its work is done. The program ends with
/// kExitFailure and says no more.
class PartialFailure : public std::runtime_error
{
public:
    PartialFailure() : std::runtime_error("some of the work could not be done") {}
};

/// A result in words: "path not found".
std::string Describe(ORL::Result inResult);

} // namespace orl
