// A folder of the host that is open for reading its entries.
#pragma once

#include "SystemCalls.h"

#include <dirent.h>
#include <string_view>

namespace ORL {
namespace Linux {

/// Entries come in the system's own order, without "." and "..". Holds a buffer of its own: too large for the stack of
/// a recursion.
class OpenFolder
{
public:
    /// Opens a folder by its path, which a link may lead to.
    explicit OpenFolder(const char* inPath);

    /// Takes over an open folder, which may be a failed open's -1.
    explicit OpenFolder(int inFile) noexcept;

    ~OpenFolder();
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;

    bool IsOpen() const noexcept { return mFile >= 0; }
    int File() const noexcept { return mFile; }

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

    int mFile;
    int mFailure = 0;
    std::size_t mAt = 0;
    std::size_t mSize = 0;
    alignas(dirent64) char mBuffer[16384];
};

/// Puts the names of an open folder on disk: 0 or an errno. A file system without a way to sync folders keeps its names safe
/// by itself.
int SyncFolder(int inFolder) noexcept;

} // namespace Linux
} // namespace ORL
