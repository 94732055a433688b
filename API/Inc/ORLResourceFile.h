// Floor: System
// The resources of any file, read as data on every platform: a Windows module, a Linux module that orl_target_resources
// has put resources into, or a compiled resource file (.res). No code of the file runs.
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

/// A type or name of a resource: a number, or a text.
struct FileName
{
    bool mIsText;
    unsigned short mID;
    UTF16String mText;
};

struct FileEntry
{
    FileName mType;
    FileName mName;
    unsigned short mLanguage;
    const unsigned char* mData; ///< belongs to the file object
    std::size_t mSize;          ///< in bytes
};

struct FilePicture
{
    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    std::vector<std::uint32_t>
        mPixels; ///< rows from the top; alpha in bits 24 to 31, then red, green, blue, premultiplied
};

/// One open file. Thread-safe once it is open. Files may be damaged or hostile: whatever they say, nothing outside of
/// their bytes is read, and time and memory stay in proportion to their size.
class ORL_API ResourceFile
{
public:
    enum Format { kNone, kCompiledFile, kWindowsModule, kLinuxModule };

    ResourceFile();
    ~ResourceFile();
    ResourceFile(const ResourceFile&) = delete;
    ResourceFile& operator=(const ResourceFile&) = delete;

    /// Reads a file by library path. Once in the object's life.
    /// Returns kSuccess, also for a damaged file of which only part could be read; kGeneralFailure for a file of
    /// another format and for one of 2 GiB and more; else what File::Open returns. Throws std::bad_alloc.
    Result Open(const UTF16String& inPath);

    Format GetFormat() const;

    /// Whether some of the file's resources could not be read.
    bool IsDamaged() const;

    /// All resources, in the order of types, names and languages; texts come before numbers.
    const std::vector<FileEntry>& GetEntries() const;

    /// Finds a resource as Module::FindLocalizedResource does for that language and a user of American English. Null if
    /// there is none. The type and name are numbers in the pointer's value or texts.
    const FileEntry* FindLocalized(const unsigned short* inName, const unsigned short* inType,
                                   unsigned short inLanguage) const;

    /// Finds a text as LoadStringW does for that language. Returns false, with the outputs untouched, if there is none.
    /// outLanguage is the language that answered.
    bool FindString(unsigned int inID, unsigned short inLanguage, UTF16String& outText,
                    unsigned short& outLanguage) const;

    /// Finds and decodes a picture as Module::LoadBitmapWTL does for that language: the resource of type "PNG", else
    /// the bitmap resource. Returns false, with outPicture untouched, if there is neither or it cannot be decoded.
    /// Throws std::bad_alloc. Windows: the host has started GDI+.
    bool FindPicture(unsigned short inID, unsigned short inLanguage, FilePicture& outPicture) const;

private:
    struct PrivateImpl;
    std::unique_ptr<PrivateImpl> mImpl;
};

/// The sixteen texts of one resource of a string table (type 6); missing ones are empty. Returns false, with outTexts
/// untouched, if they are not all inside of the data. Throws std::bad_alloc.
ORL_API bool ReadStringBlock(const FileEntry& inEntry, std::vector<UTF16String>& outTexts);

/// Whether a menu (type 4), dialog (type 5) or string table (type 6) can be read to its end; true for every other type.
ORL_API bool IsWellFormed(const FileEntry& inEntry);

} // namespace Resources
} // namespace ORL
