#include "OutputFile.h"

#include "Failure.h"
#include "OutputSystem.h"
#include "StopRequest.h"
#include "TemporaryName.h"
#include "Text.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace orl {

namespace {

namespace fs = std::filesystem;

bool IsRefusedByTheFolder(int inError)
{
    return inError == EACCES || inError == EPERM || inError == EROFS;
}

} // namespace

OutputFile::OutputFile(const std::string& inCommand, const std::string& inArgument)
    : mCommand(inCommand), mArgument(inArgument), mPath(fs::u8path(HostTextOf(PathOfArgument(inArgument))))
{
    std::error_code error;
    if (fs::is_symlink(fs::symlink_status(mPath, error))) {
        const fs::path target = fs::canonical(mPath, error);
        mPath = error ? mPath : target;
    }
    const fs::file_status earlier = fs::symlink_status(mPath, error);
    if (fs::is_directory(earlier)) {
        Fail("it is a directory");
    }
    if (!fs::exists(earlier) || fs::is_regular_file(earlier)) {
        OpenFile(earlier);
    } else {
        OpenDirectly();
    }
}

OutputFile::~OutputFile()
{
    if (mFile != nullptr) {
        std::fclose(mFile);
    }
    if (!mPart.empty()) {
        std::error_code ignored;
        fs::remove(mPart, ignored);
    }
}

// A rename needs no write access to the file that it replaces, so write access is checked here.
void OutputFile::OpenFile(const fs::file_status& inEarlier)
{
    const bool isPresent = fs::exists(inEarlier);
    if (isPresent && !CanWrite(mPath)) {
        FailWith(errno);
    }
    ListenForStop();
    fs::path part = WithoutLimit(fs::path(mPath).replace_filename(RandomTemporaryName()));
    mFile = CreateNewFile(part);
    if (mFile == nullptr && isPresent && IsRefusedByTheFolder(errno)) {
        ExitOnStop();
        OpenDirectly();
        return;
    }
    if (mFile == nullptr) {
        FailWith(errno);
    }
    mPart = std::move(part);
    if (isPresent) { // before the first write, so that a private file stays private
        std::error_code ignored;
        fs::permissions(mPart, inEarlier.permissions(), ignored);
    }
}

// Opening and writing a pipe may wait for its reader forever. There is no temporary file to delete, so the stop
// signals end the program at once.
void OutputFile::OpenDirectly()
{
    mFile = OpenForWriting(mPath);
    if (mFile == nullptr) {
        FailWith(errno);
    }
}

void OutputFile::Write(const void* inBytes, std::size_t inCount)
{
    CheckStop();
    if (inCount != 0 && std::fwrite(inBytes, 1, inCount, mFile) != inCount) {
        FailWith(errno);
    }
}

void OutputFile::Finish()
{
    if (std::fclose(std::exchange(mFile, nullptr)) != 0) {
        FailWith(errno);
    }
    CheckStop();
    if (mPart.empty()) {
        return;
    }
    std::error_code error;
    fs::rename(mPart, mPath, error);
    if (error) {
        Fail(error.message());
    }
    mPart.clear();
}

void OutputFile::Fail(const std::string& inReason) const
{
    throw Failure(mCommand + ": cannot write \"" + mArgument + "\": " + inReason);
}

void OutputFile::FailWith(int inError) const
{
    Fail(std::generic_category().message(inError));
}

void OutputFile::CheckStop() const
{
    if (IsStopRequested()) {
        throw Failure(mCommand + ": stopped by the user; \"" + mArgument + "\" was not written", kExitStopped);
    }
}

} // namespace orl
