// Redirects the standard error of this process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ORLTest {

/// While an instance exists, standard error is a pipe that only TakeAll reads. The pipe holds at least 32 KiB.
class StandardErrorPipe
{
public:
    StandardErrorPipe();
    ~StandardErrorPipe();
    StandardErrorPipe(const StandardErrorPipe&) = delete;
    StandardErrorPipe& operator=(const StandardErrorPipe&) = delete;

    /// Removes and returns the current contents of the pipe.
    std::string TakeAll();

    void CloseReader();

private:
    std::intptr_t mReader;
    std::intptr_t mWriter;
    std::intptr_t mOld;
};

/// While an instance exists, standard error is closed.
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

/// Set and return the calling thread's last error: errno, or GetLastError on Windows.
void SetLastSystemError(int inError);
int LastSystemError();

} // namespace ORLTest
