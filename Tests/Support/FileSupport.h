// Shared helpers for the File tests.
#pragma once

#include <ORLFile.h>
#include <ORLResult.h>

#include <TempFolder.h>
#include <TextHelpers.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace ORLTest {

using Access = ORL::FileAccessFlags;
using Share = ORL::FileShareModeFlags;
using Disposition = ORL::FileCreateDispositionFlags;
using Attributes = ORL::FileAttributesFlags;
using Method = ORL::FilePointerMoveMethod;

inline constexpr Access::Type kRead = Access::kFileAccess_Read;
inline constexpr Access::Type kWrite = Access::kFileAccess_Write;
inline constexpr Access::Type kReadWrite = kRead | kWrite;
inline constexpr Share::Type kShareNone = static_cast<Share::Type>(0);
inline constexpr Share::Type kShareReaders = Share::kFileShare_Read;
inline constexpr Share::Type kShareEverything =
    Share::kFileShare_Read | Share::kFileShare_Write | Share::kFileShare_Delete;
inline constexpr Attributes::Type kNormal = Attributes::kFileAttribute_Normal;

/// A file together with the result of opening it.
struct Opened
{
    ORL::File mFile;
    ORL::Result mResult;

    Opened(const UTF16String& inPath, Access::Type inAccess, Share::Type inShare = kShareEverything,
           Disposition::Type inDisposition = Disposition::kFileCreate_OpenExisting,
           Attributes::Type inAttributes = kNormal, bool inAllowDirectory = false)
        : mResult(mFile.Create(inPath, inAccess, inShare, inDisposition, inAttributes, inAllowDirectory))
    {
    }
};

/// Returns the bytes of a file, read without the library; "<none>" if it does not exist.
inline std::string ContentsOf(const TempFolder& inFolder, const std::string& inName)
{
    std::ifstream file(inFolder.Host() / inName, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "<none>";
}

/// Returns the bytes that Read delivers, or "result N" if the result is not inExpected.
inline std::string ReadText(ORL::File& ioFile, unsigned inCount, ORL::Result inExpected = ORL::kSuccess)
{
    std::string text(inCount, '#');
    unsigned bytesRead = 0;
    const ORL::Result result = ioFile.Read(&text[0], inCount, bytesRead);
    return result == inExpected ? text.substr(0, bytesRead) : "result " + std::to_string(result);
}

inline bool WriteText(ORL::File& ioFile, const std::string& inText)
{
    unsigned bytesWritten = 0;
    return ioFile.Write(inText.data(), static_cast<unsigned>(inText.size()), bytesWritten) == ORL::kSuccess
           && bytesWritten == inText.size();
}

inline __int64 PositionOf(ORL::File& ioFile)
{
    __int64 position = -77;
    return ioFile.GetFilePointer(position) == ORL::kSuccess ? position : -78;
}

/// Sets the modification time to 1000000000 s after 1970 without using the library.
inline void SetTimeTo2001(const std::filesystem::path& inPath)
{
    using namespace std::filesystem;
    // The epochs of the file clock and the system clock differ, so the time is converted relative to now.
    const auto systemNow = std::chrono::system_clock::now();
    const auto fileNow = file_time_type::clock::now();
    const auto wanted = std::chrono::system_clock::from_time_t(1000000000);
    last_write_time(inPath, fileNow + std::chrono::duration_cast<file_time_type::duration>(wanted - systemNow));
}

} // namespace ORLTest
