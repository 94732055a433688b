// The standard error of this process as something else than what the test program was given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ORLTest {

/// While it lives, standard error is a pipe that nobody reads unless told to. It holds at least 32 KiB of short texts.
class StandardErrorPipe
{
public:
    StandardErrorPipe();
    ~StandardErrorPipe();
    StandardErrorPipe(const StandardErrorPipe&) = delete;
    StandardErrorPipe& operator=(const StandardErrorPipe&) = delete;

    /// Takes out what is in the pipe now.
    std::string TakeAll();

    void CloseReader();

private:
    std::intptr_t mReader;
    std::intptr_t mWriter;
    std::intptr_t mOld;
};

/// While it lives, there is no standard error.
class NoStandardError
{
public:
    NoStandardError();
    ~NoStandardError();
    NoStandardError(const NoStandardError&) = delete;
    NoStandardError& operator=(const NoStandardError&) = delete;

private:
    std::intptr_t mOld;
};

/// The number that the system keeps of the calling thread's last failure.
void SetLastSystemError(int inError);
int LastSystemError();

} // namespace ORLTest
