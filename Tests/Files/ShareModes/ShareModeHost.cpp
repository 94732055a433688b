// A separate process that opens the files that the tests hold open.
//   share_mode_host matrix FOLDER   opens each file 0, 1, 2 ... in every way and prints one line per file: the
//                                   errors of its opens, in order
//   share_mode_host hold PATH       opens the path exclusively and exits without closing it
//   share_mode_host race PATH N     opens the path exclusively until N opens have succeeded; prints the number of
//                                   successes, of errors other than 32, and of successes beside another holder
#include "ShareModes.h"

#include <ORLHostPath.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

using namespace ORL::Files::Platform;
using namespace ORLTest;

namespace {

constexpr OpenMode kExclusive = {kGenericRead | kGenericWrite, 0};

UTF16String LibraryPath(const std::string& inHostPath)
{
    return ORL::PathUtils::FromHostPath(inHostPath);
}

unsigned Try(const UTF16String& inPath, const OpenMode& inMode)
{
    Handle file = nullptr;
    const ORL::SystemError error = OpenWithMode(inPath, inMode, file);
    if (error == 0) {
        CloseFile_Impl(file);
    }
    return static_cast<unsigned>(error);
}

int TryAll(const std::string& inFolder)
{
    const std::vector<OpenMode> all = AllOpenModes();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const UTF16String path = LibraryPath(inFolder + "/" + std::to_string(i));
        for (const OpenMode& mode : all) {
            std::printf("%u ", Try(path, mode));
        }
        std::printf("\n");
    }
    return 0;
}

int HoldAndExit(const std::string& inPath)
{
    Handle file = nullptr;
    std::printf("%u\n", static_cast<unsigned>(OpenWithMode(LibraryPath(inPath), kExclusive, file)));
    std::fflush(stdout);
    std::_Exit(3);
}

int Race(const std::string& inPath, int inTimes)
{
    const UTF16String path = LibraryPath(inPath);
    int got = 0;
    int wrong = 0;
    int notAlone = 0;
    const std::filesystem::path mark = std::filesystem::u8path(inPath + ".mark");
    while (got < inTimes && wrong == 0) {
        Handle file = nullptr;
        const ORL::SystemError error = OpenWithMode(path, kExclusive, file);
        if (error == 0) {
            ++got;
            std::error_code ignored;
            notAlone += std::filesystem::create_directory(mark, ignored) ? 0 : 1;
            std::filesystem::remove(mark, ignored);
            CloseFile_Impl(file);
        }
        wrong += error != 0 && error != 32 ? 1 : 0;
    }
    std::printf("%d %d %d\n", got, wrong, notAlone);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        return 2;
    }
    return std::strcmp(argv[1], "matrix") == 0 ? TryAll(argv[2])
           : std::strcmp(argv[1], "hold") == 0 ? HoldAndExit(argv[2])
           : argc > 3                          ? Race(argv[2], std::atoi(argv[3]))
                                               : 2;
}
