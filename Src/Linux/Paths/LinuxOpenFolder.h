// A host folder that is open for reading its entries.
#pragma once

#include "../Calls/SystemCalls.h"
#include "../Files/LinuxDescriptor.h"

#include <dirent.h>
#include <string_view>

namespace ORL {
namespace Linux {

/// The entries of an open folder, in the kernel's order, without "." and "..". Contains a buffer that is too large for
/// the stack frames of a recursive function.
class FolderEntries
{
public:
    /// Does not own inFile, and reads from its current position.
    explicit FolderEntries(int inFile) noexcept : mFile(inFile) {}
    FolderEntries(const FolderEntries&) = delete;
    FolderEntries& operator=(const FolderEntries&) = delete;

    /// Returns the next entry, or null at the end of the list. The entry is valid until the next call.
    const dirent64* Next();

    /// Returns the errno that ended the list early, or 0.
    int Failure() const noexcept { return mFailure; }

    /// Returns true if inMatches(name) is true for one of the remaining entries.
    template <class Predicate>
    bool AnyEntry(const Predicate& inMatches)
    {
        while (const dirent64* entry = Next()) {
            if (inMatches(std::string_view(entry->d_name))) {
                return true;
            }
        }
        return false;
    }

private:
    bool Fill();

    const int mFile;
    int mFailure = 0;
    std::size_t mAt = 0;
    std::size_t mSize = 0;
    alignas(dirent64) char mBuffer[16384];
};

/// A folder opened by its path; links in the path are followed.
class OpenFolder
{
public:
    explicit OpenFolder(const char* inPath);

    bool IsOpen() const noexcept { return static_cast<bool>(mFile); }
    int File() const noexcept { return mFile.Get(); }
    FolderEntries& Entries() noexcept { return mEntries; }

    /// Closes the folder. Call this function after reading all entries.
    void Close() noexcept { mFile.Close(); }

private:
    Descriptor mFile;
    FolderEntries mEntries;
};

/// Syncs the entries of an open folder to disk. Returns 0 or an errno. Returns 0 on a file system that cannot sync
/// folders, because such a file system needs no sync to keep names.
int SyncFolder(int inFolder) noexcept;

} // namespace Linux
} // namespace ORL
