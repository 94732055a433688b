// A folder of the host that is open for reading its entries.
#pragma once

#include "LinuxDescriptor.h"
#include "SystemCalls.h"

#include <dirent.h>
#include <string_view>

namespace ORL {
namespace Linux {

/// The entries of an open folder, in the system's own order, without "." and "..". Holds a buffer of its own: too large
/// for the stack of a recursion.
class FolderEntries
{
public:
    /// The folder stays the caller's, and is read from where its list stands.
    explicit FolderEntries(int inFile) noexcept : mFile(inFile) {}
    FolderEntries(const FolderEntries&) = delete;
    FolderEntries& operator=(const FolderEntries&) = delete;

    /// The next entry, or null at the end of the list. Good until the next call.
    const dirent64* Next();

    /// The errno that broke the list off, or 0.
    int Failure() const noexcept { return mFailure; }

    /// Whether inMatches(name) holds for one of the entries that are still to come.
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

/// A folder opened by its path, which a link may lead to.
class OpenFolder
{
public:
    explicit OpenFolder(const char* inPath);

    bool IsOpen() const noexcept { return static_cast<bool>(mFile); }
    int File() const noexcept { return mFile.Get(); }
    FolderEntries& Entries() noexcept { return mEntries; }

    /// Closes the folder, whose entries are all read.
    void Close() noexcept { mFile.Close(); }

private:
    Descriptor mFile;
    FolderEntries mEntries;
};

/// Puts the names of an open folder on disk: 0 or an errno. A file system without a way to sync folders keeps its names safe
/// by itself.
int SyncFolder(int inFolder) noexcept;

} // namespace Linux
} // namespace ORL
