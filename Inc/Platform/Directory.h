// Floor: Platform
// The system functions for directories.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

namespace ORL {
namespace Directories {
namespace Platform {

/// The kind of an entry as a listing reports it. A query of the entry's path at that moment would return the same kind.
enum class EntryKind {
    kDirectory,
    kOther,   // not a directory
    kUnknown, // the listing does not report the kind (of a link, for example): query the path
};

struct Entry
{
    UTF16String mName;
    EntryKind mKind = EntryKind::kUnknown;
};

/// An open directory listing.
struct Listing;

/// Opens a listing of a directory. Returns 0, or the system error with a null listing.
SystemError OpenListing_Impl(const UTF16String& inDirectory, Listing*& outListing);

/// Stores the next entry, in the system's order, without "." and "..". Returns 0, 18 (no more files) at the end, or the
/// error that aborts the listing.
SystemError NextEntry_Impl(Listing& ioListing, Entry& outEntry);

/// May buffer the remaining entries and close the directory. Called before subdirectories are listed, so that a walk of
/// any depth does not exhaust the process's handles. NextEntry_Impl still returns the remaining entries.
void Suspend_Impl(Listing& ioListing);

void CloseListing_Impl(Listing* inListing);

/// Returns whether two paths refer to the same directory; false if one cannot be queried.
bool IsSameDirectory_Impl(const UTF16String& inOne, const UTF16String& inOther);

/// Creates a hidden file, which must not exist yet, writes one byte to it and deletes it. Returns whether a file could
/// be created and written.
bool WriteProbe_Impl(const UTF16String& inPath);

/// Creates the directory and its missing parents. Returns 0, or the status of the system function that failed, which
/// need not be a system error number.
unsigned long PrepareForWrite_Impl(const UTF16String& inPath);

/// Removes an empty directory.
SystemError RemoveDirectory_Impl(const UTF16String& inPath);

/// The shell's function codes.
enum class ShellFunction { kMove = 1, kCopy = 2, kDelete = 3 };

/// Runs the shell's file operation on all files that match inFrom, a plain path that ends in "*.*". inTo, a plain path,
/// is the destination folder, created if missing; null for kDelete. Overwrites and merges without asking. Returns 0, or
/// a shell status code, which need not be a system error number. Fails if there is nothing to copy or move, except on
/// some versions of Windows, which return 0.
unsigned long OperateOnFiles_Impl(ShellFunction inFunction, const UTF16String& inFrom, const UTF16String* inTo);

} // namespace Platform
} // namespace Directories
} // namespace ORL
