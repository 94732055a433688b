// orl make-clip PATH
#include "Commands.h"
#include "Failure.h"
#include "OutputFile.h"
#include "Text.h"

#include <ORLDiskUtils.h>
#include <ORLHostPath.h>

#include <cstdint>
#include <filesystem>
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

Failure CannotWrite(const Options& inOptions, const std::string& inReason)
{
    return Failure("make-clip: cannot write \"" + inOptions.mPath + "\": " + inReason);
}

void WriteFrames(OutputFile& ioFile, std::uint64_t inSize)
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
    CheckTarget(inOptions, std::filesystem::u8path(hostPath));
    CheckFreeSpace(inOptions, libraryPath);
    OutputFile file("make-clip", inOptions.mPath);
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
    command
        ->add_option(
            "--size", options->mSize,
            "minimum size in bytes, 1 to 1Ti (default 256Mi); k, M, G, T are powers of 1000, Ki, Mi, Gi, Ti of 1024")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(true).description(""))
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1} << 40).description(""));
    command->callback([options] { Run(*options); });
}

} // namespace orl
