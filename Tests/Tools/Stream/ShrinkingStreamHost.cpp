// Streams a file as orl does, and truncates it after the first block. Arguments: the file, the remaining size in bytes.
#include <StreamFile.h>

#include <ORLFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 3) {
        return 2;
    }
    const std::string file = argv[1];
    const std::uintmax_t left = std::stoull(argv[2]);
    orl::StreamSettings settings;
    settings.mBlockSize = 4096;
    settings.mDepth = 1;
    settings.mTimeoutSeconds = 3600;
    ORL::Foundation::Initialize();
    try {
        orl::StreamFile(file, settings, [&](std::uint64_t inDone, std::uint64_t) {
            if (inDone <= settings.mBlockSize) {
                std::filesystem::resize_file(std::filesystem::u8path(file), left);
            }
            return true;
        });
        std::puts("streamed");
    } catch (const orl::NoAnswer& failure) {
        std::printf("no answer: %s\n", failure.what());
        std::fflush(stdout);
        std::_Exit(0);
    } catch (const orl::Failure& failure) {
        std::printf("failure: %s\n", failure.what());
    }
    ORL::Foundation::Terminate();
    return 0;
}
