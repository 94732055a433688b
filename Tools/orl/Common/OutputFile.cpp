#include "OutputFile.h"

#include "Failure.h"
#include "StopRequest.h"
#include "Text.h"

#include <cerrno>
#include <system_error>

namespace orl {

namespace {

namespace fs = std::filesystem;

// A stem of this many units and the suffix fit into the 255 units that file systems allow.
constexpr std::size_t kMaxStem = 240;

fs::path PartOf(const fs::path& inPath)
{
    fs::path part = inPath;
    part.replace_filename(inPath.filename().native().substr(0, kMaxStem));
    part += ".part";
    return part;
}

} // namespace

OutputFile::OutputFile(const std::string& inCommand, const std::string& inArgument)
    : mCommand(inCommand), mArgument(inArgument), mPath(fs::u8path(HostTextOf(PathOfArgument(inArgument))))
{
    ListenForStop();
    ChoosePaths();
    errno = 0;
    mStream.open(mPart.empty() ? mPath : mPart, std::ios::binary | std::ios::trunc);
    CheckStream();
    std::error_code error;
    const fs::file_status earlier = fs::status(mPath, error);
    if (!mPart.empty() && fs::exists(earlier)) { // before the first byte: a private file stays private
        fs::permissions(mPart, earlier.permissions(), error);
    }
}

OutputFile::~OutputFile()
{
    if (!mPart.empty()) {
        mStream.close();
        std::error_code ignored;
        fs::remove(mPart, ignored);
    }
}

void OutputFile::ChoosePaths()
{
    std::error_code error;
    if (fs::is_symlink(fs::symlink_status(mPath, error))) {
        const fs::path target = fs::canonical(mPath, error);
        mPath = error ? mPath : target;
    }
    const fs::file_status status = fs::symlink_status(mPath, error);
    if (fs::is_directory(status)) {
        Fail("it is a directory");
    }
    if (!fs::exists(status) || fs::is_regular_file(status)) {
        mPart = PartOf(mPath);
    }
}

void OutputFile::Write(const void* inBytes, std::size_t inCount)
{
    CheckStop();
    mStream.write(static_cast<const char*>(inBytes), static_cast<std::streamsize>(inCount));
    CheckStream();
}

void OutputFile::Finish()
{
    mStream.close();
    CheckStream();
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

// C++ streams store no error code, so the system's last error is used.
void OutputFile::CheckStream() const
{
    if (!mStream) {
        Fail(std::generic_category().message(errno != 0 ? errno : EIO));
    }
}

void OutputFile::CheckStop() const
{
    if (IsStopRequested()) {
        throw Failure(mCommand + ": stopped by the user; \"" + mArgument + "\" was not written", kExitStopped);
    }
}

} // namespace orl
