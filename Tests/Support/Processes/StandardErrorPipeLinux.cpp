#include <StandardErrorPipe.h>

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace ORLTest {

namespace {

int File(std::intptr_t inFile)
{
    return static_cast<int>(inFile);
}

} // namespace

StandardErrorPipe::StandardErrorPipe() : mOld(::dup(STDERR_FILENO))
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    ::dup2(ends[1], STDERR_FILENO);
    mReader = ends[0];
    mWriter = ends[1];
}

StandardErrorPipe::~StandardErrorPipe()
{
    ::dup2(File(mOld), STDERR_FILENO);
    ::close(File(mOld));
    ::close(File(mWriter));
    CloseReader();
}

std::string StandardErrorPipe::TakeAll()
{
    std::string taken;
    char buffer[4096];
    for (ssize_t count = ::read(File(mReader), buffer, sizeof(buffer)); count > 0;
         count = ::read(File(mReader), buffer, sizeof(buffer))) {
        taken.append(buffer, static_cast<std::size_t>(count));
    }
    return taken;
}

void StandardErrorPipe::CloseReader()
{
    if (mReader != -1) {
        ::close(File(mReader));
        mReader = -1;
    }
}

NoStandardError::NoStandardError() : mOld(::dup(STDERR_FILENO))
{
    ::close(STDERR_FILENO);
}

NoStandardError::~NoStandardError()
{
    ::dup2(File(mOld), STDERR_FILENO);
    ::close(File(mOld));
}

void SetLastSystemError(int inError)
{
    errno = inError;
}

int LastSystemError()
{
    return errno;
}

} // namespace ORLTest
