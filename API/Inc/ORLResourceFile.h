// Floor: System
// Reads the resources of a file as data, on every platform. The file is a Windows module, a Linux module with resources
// from orl_target_resources, or a compiled resource file (.res). None of its code runs.
//
//   std::size_t bytes = 0; // of all resources
//   Resources::ResourceFile file;
//   if (ResultSucceeded(file.Open(path))) {
//       for (const Resources::FileEntry& entry : file.GetEntries()) {
//           bytes += entry.mSize;
//       }
//   }
#pragma once

#include <ORLConfig.h>
#include <ORLImpl.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace ORL {
namespace Resources {

/// The type or name of a resource: a number or a string.
struct FileName
{
    bool mIsText;       ///< true if mText identifies it, false if mID does
    unsigned short mID; ///< the number
    UTF16String mText;  ///< the string
};

struct FileEntry ///< One resource of a file.
{
    FileName mType;             ///< what it is: a string table, a picture ...
    FileName mName;             ///< its name within its type
    unsigned short mLanguage;   ///< its Windows language identifier
    const unsigned char* mData; ///< owned by the ResourceFile
    std::size_t mSize;          ///< in bytes
};

struct FilePicture ///< A decoded picture.
{
    unsigned int mWidth = 0;            ///< in pixels
    unsigned int mHeight = 0;           ///< in pixels
    std::vector<std::uint32_t> mPixels; ///< top row first; alpha in bits 24 to 31, then red, green, blue, premultiplied
};

/// An open file with resources. Files may be damaged or hostile: the reader never reads out of bounds, and uses time
/// and memory in proportion to their size.
///
/// Owner:    the object owns the bytes of the file and its entries, until it is destroyed.
/// Threads:  thread-safe after Open has returned.
/// Failure:  Open returns an error; the lookups return null or false.
class ORL_API ResourceFile
{
public:
    enum Format { kNone, kCompiledFile, kWindowsModule, kLinuxModule }; ///< the format of the open file

    ResourceFile();
    ~ResourceFile();
    ResourceFile(const ResourceFile&) = delete;
    ResourceFile& operator=(const ResourceFile&) = delete;

    /// Reads a file by library path. Call Open once per object. Returns kSuccess even if only part of a damaged file
    /// could be read, kGeneralFailure for a file of another format or of 2 GiB or more, kAccessDenied for a directory,
    /// and otherwise the error of File::Open or File::Read. Throws std::bad_alloc.
    Result Open(const UTF16String& inPath);

    Format GetFormat() const; ///< returns kNone before Open has succeeded

    /// Returns whether some of the file's resources could not be read.
    bool IsDamaged() const;

    /// Returns all resources, sorted by type, name and language; strings precede numbers.
    const std::vector<FileEntry>& GetEntries() const;

    /// Finds a resource as Module::FindLocalizedResource would if inLanguage were the current language and American
    /// English the user's language. Returns null if the file has no such resource. Type and name have the form that
    /// the lookups of ResourceCollection expect. Throws std::bad_alloc.
    const FileEntry* FindLocalized(const unsigned short* inName, const unsigned short* inType,
                                   unsigned short inLanguage) const;

    /// Finds a string as LoadStringW would if inLanguage were the current language. Stores its language in
    /// outLanguage. Returns false, with the outputs unchanged, if there is no such string. Throws std::bad_alloc.
    bool FindString(unsigned int inID, unsigned short inLanguage, UTF16String& outText,
                    unsigned short& outLanguage) const;

    /// Finds and decodes a picture as Module::LoadBitmapWTL would in inLanguage: the resource of type "PNG",
    /// otherwise the bitmap resource. Returns false, with outPicture unchanged, if neither can be found and decoded.
    /// Throws std::bad_alloc. On Windows the host must have started GDI+.
    bool FindPicture(unsigned short inID, unsigned short inLanguage, FilePicture& outPicture) const;

private:
    struct PrivateImpl;
    std::unique_ptr<PrivateImpl> mImpl;
};

/// Reads the sixteen strings in one string table resource (type 6). A missing string is empty. Returns false, with
/// outTexts unchanged, if the data is truncated. Throws std::bad_alloc.
ORL_API bool ReadStringBlock(const FileEntry& inEntry, std::vector<UTF16String>& outTexts);

/// Returns whether a menu (type 4), dialog (type 5) or string table (type 6) can be parsed to its end. Returns true for
/// every other type. Throws std::bad_alloc.
ORL_API bool IsWellFormed(const FileEntry& inEntry);

} // namespace Resources
} // namespace ORL
