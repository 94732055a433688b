// orl make-clip PATH
#include "Commands.h"
#include "Failure.h"
#include "Text.h"

#include <ORLDiskUtils.h>
#include <ORLHostPath.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

namespace orl {

namespace {

struct Options
{
    std::string mPath;
    std::uint64_t mSize = std::uint64_t{256} << 20;
};

constexpr unsigned kWidth = 1920;
constexpr unsigned kHeight = 1080;

// A grey ramp that moves with the frame number, with flat chroma planes of half the width and height.
std::string MakeFrame(unsigned inNumber)
{
    std::string frame = "FRAME\n";
    frame.reserve(frame.size() + kWidth * kHeight * 3 / 2);
    for (unsigned y = 0; y < kHeight; ++y) {
        for (unsigned x = 0; x < kWidth; ++x) {
            frame += static_cast<char>(16 + (x * 3 + y * 5 + inNumber * 7) % 220);
        }
    }
    frame.append(kWidth * kHeight / 4, static_cast<char>(96 + inNumber % 64));
    frame.append(kWidth * kHeight / 4, static_cast<char>(160 - inNumber % 64));
    return frame;
}

volatile std::sig_atomic_t sIsInterrupted = 0;

void OnInterrupt(int)
{
    sIsInterrupted = 1;
}

Failure CannotWrite(const Options& inOptions, const std::string& inReason)
{
    return Failure("make-clip: cannot write \"" + inOptions.mPath + "\": " + inReason);
}

// C++ streams store no error code, so the system's last error is used.
std::string SystemErrorText()
{
    return std::generic_category().message(errno != 0 ? errno : EIO);
}

/// The clip under its temporary name, deleted unless the clip is finished.
class PartFile
{
public:
    PartFile(const Options& inOptions, const std::filesystem::path& inPath)
        : mOptions(inOptions), mPath(inPath), mPart(inPath)
    {
        mPart += ".part";
        errno = 0;
        mFile.open(mPart, std::ios::binary);
        Check();
    }

    ~PartFile()
    {
        if (!mIsFinished) {
            mFile.close();
            std::error_code ignored;
            std::filesystem::remove(mPart, ignored);
        }
    }

    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    void Write(const std::string& inBytes)
    {
        if (sIsInterrupted != 0) {
            throw Failure("make-clip: stopped by the user; \"" + mOptions.mPath + "\" was not written", kExitStopped);
        }
        mFile << inBytes;
        Check();
    }

    // The clip gets its final name only when it is complete.
    void Finish()
    {
        mFile.close();
        Check();
        std::error_code error;
        std::filesystem::rename(mPart, mPath, error);
        if (error) {
            throw CannotWrite(mOptions, error.message());
        }
        mIsFinished = true;
    }

private:
    void Check() const
    {
        if (!mFile) {
            throw CannotWrite(mOptions, SystemErrorText());
        }
    }

    const Options& mOptions;
    const std::filesystem::path mPath;
    std::filesystem::path mPart;
    std::ofstream mFile;
    bool mIsFinished = false;
};

void WriteFrames(PartFile& ioFile, std::uint64_t inSize)
{
    const std::string header =
        "YUV4MPEG2 W" + std::to_string(kWidth) + " H" + std::to_string(kHeight) + " F25:1 Ip A1:1 C420jpeg\n";
    ioFile.Write(header);
    std::uint64_t written = header.size();
    unsigned number = 0;
    do {
        const std::string frame = MakeFrame(number++);
        ioFile.Write(frame);
        written += frame.size();
    } while (written < inSize);
}

// Refuses to replace a device, a pipe or a folder.
void CheckTarget(const Options& inOptions, const std::filesystem::path& inPath)
{
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(inPath, ignored);
    if (std::filesystem::is_directory(status)) {
        throw CannotWrite(inOptions, "it is a directory");
    }
    if (std::filesystem::is_other(status)) {
        throw CannotWrite(inOptions, "it is a device or a pipe, not a file");
    }
}

void CheckFreeSpace(const Options& inOptions, const UTF16String& inPath)
{
    const std::uint64_t room = ORL::DiskUtils::GetFreeSpaceFromPath(inPath);
    if (room != 0 && room < inOptions.mSize) { // 0: unknown, or the disk is full and the first write will fail
        throw CannotWrite(inOptions, "the disk has " + FormatSize(room) + " free, but " + FormatSize(inOptions.mSize)
                                         + " are needed");
    }
}

void Run(const Options& inOptions)
{
    const UTF16String libraryPath = PathOfArgument(inOptions.mPath);
    std::string hostPath;
    const ORL::Result result = ORL::PathUtils::ToHostPath(libraryPath, hostPath);
    if (!ORL::ResultSucceeded(result)) {
        throw CannotWrite(inOptions, Describe(result));
    }
    std::signal(SIGINT, &OnInterrupt);
    std::signal(SIGTERM, &OnInterrupt);
    const std::filesystem::path path = std::filesystem::u8path(hostPath);
    CheckTarget(inOptions, path);
    CheckFreeSpace(inOptions, libraryPath);
    PartFile file(inOptions, path);
    WriteFrames(file, inOptions.mSize);
    file.Finish();
}

} // namespace

void AddMakeClip(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        ioProgram.add_subcommand("make-clip", "Write an uncompressed YUV4MPEG2 clip of whole frames for tests");
    command->add_option("PATH", options->mPath, "host path or library path")->required();
    command->add_option("--size", options->mSize, "minimum size in bytes, 1 to 1T (default 256M)")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1} << 40).description(""));
    command->callback([options] { Run(*options); });
}

} // namespace orl
