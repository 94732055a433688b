// A temporary folder for a test, deleted with its contents when the test ends.
#pragma once

#include <ORLHostPath.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace ORLTest {

class TempFolder
{
public:
    TempFolder() : TempFolder(std::filesystem::temp_directory_path()) {}

    /// Creates the folder below inAbove.
    explicit TempFolder(const std::filesystem::path& inAbove)
    {
        std::random_device random;
        do {
            mFolder = inAbove / ("orl-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(mFolder));
    }

    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
    }

    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Host() const noexcept { return mFolder; }

    /// Returns the library path of the folder, or of a name in it, without a trailing backslash.
    UTF16String Path() const { return ORL::PathUtils::FromHostPath(mFolder.u8string()); }
    UTF16String Path(const std::u16string& inName) const
    {
        return Path() + UTF16String(1, '\\') + UTF16String(inName.begin(), inName.end());
    }

    void MakeFolder(const std::string& inName) const { std::filesystem::create_directories(mFolder / inName); }

    void MakeFile(const std::string& inName, const std::string& inContents = "x") const
    {
        std::ofstream(mFolder / inName, std::ios::binary) << inContents;
    }

private:
    std::filesystem::path mFolder;
};

} // namespace ORLTest
