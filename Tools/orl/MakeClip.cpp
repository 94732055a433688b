// orl make-clip PATH
#include "Commands.h"
#include "Failure.h"
#include "Text.h"

#include <ORLHostPath.h>

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

// A grey ramp that moves with the frame, under flat colour planes of half the size each way.
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

void WriteFrames(std::ofstream& ioFile, std::uint64_t inSize)
{
    const std::string header =
        "YUV4MPEG2 W" + std::to_string(kWidth) + " H" + std::to_string(kHeight) + " F25:1 Ip A1:1 C420jpeg\n";
    ioFile << header;
    std::uint64_t written = header.size();
    for (unsigned number = 0; written < inSize && ioFile; ++number) {
        const std::string frame = MakeFrame(number);
        ioFile << frame;
        written += frame.size();
    }
}

// The clip stands under its name only when it is whole.
void Run(const Options& inOptions)
{
    std::string hostPath;
    const ORL::Result result = ORL::PathUtils::ToHostPath(PathOfArgument(inOptions.mPath), hostPath);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("make-clip: cannot write \"" + inOptions.mPath + "\": " + Describe(result));
    }
    const std::filesystem::path path = std::filesystem::u8path(hostPath);
    const std::filesystem::path part = std::filesystem::u8path(hostPath + ".part");
    std::ofstream file(part, std::ios::binary);
    WriteFrames(file, inOptions.mSize);
    file.close();
    std::error_code error;
    if (file) {
        std::filesystem::rename(part, path, error);
    }
    if (!file || error) {
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
        throw Failure("make-clip: cannot write \"" + inOptions.mPath
                      + "\": " + (error ? error.message() : std::string("the folder is missing, or full, or closed")));
    }
}

} // namespace

void AddMakeClip(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        ioProgram.add_subcommand("make-clip", "Write an uncompressed YUV4MPEG2 clip of whole frames to try things on");
    command->add_option("PATH", options->mPath, "host path or library path")->required();
    command->add_option("--size", options->mSize, "bytes at least (default 256M)")->transform(CLI::AsSizeValue(false));
    command->callback([options] { Run(*options); });
}

} // namespace orl
