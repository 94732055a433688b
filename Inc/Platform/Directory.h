// Floor: Platform
// What directories need of the system.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

namespace ORL {
namespace Directories {
namespace Platform {

/// What a listing tells of an entry: exactly what asking for the entry's path would answer at that moment.
enum class EntryKind {
    kDirectory,
    kOther,   // no directory
    kUnknown, // the listing does not tell (a link, for one): the path has to be asked
};

struct Entry
{
    UTF16String mName;
    EntryKind mKind = EntryKind::kUnknown;
};

/// A directory that is being read.
struct Listing;

/// Begins to read a directory. Gives 0, or the system error and null.
SystemError OpenListing_Impl(const UTF16String& inDirectory, Listing*& outListing);

/// The next entry, in the system's own order, without "." and "..". 0, 18 (no more files) at the end, or the error that
/// breaks the list off.
SystemError NextEntry_Impl(Listing& ioListing, Entry& outEntry);

/// Is called before directories below this one are listed, so that a walk of any depth does not use up the handles of a
/// process that has few. The entries still to come are kept.
void Suspend_Impl(Listing& ioListing);

void CloseListing_Impl(Listing* inListing);

/// Whether two paths lead to one directory. False when one cannot be asked.
bool IsSameDirectory_Impl(const UTF16String& inOne, const UTF16String& inOther);

/// Makes a file that must not exist yet, hidden and sure to be gone at the end, and writes one byte into it. Whether
/// that could be done.
bool WriteProbe_Impl(const UTF16String& inPath);

/// Makes the directory and all above it. The status of the system's path service: 0, or not 0; it is no system error
/// number of the usual kind.
unsigned long PrepareForWrite_Impl(const UTF16String& inPath);

/// Removes an empty directory.
SystemError RemoveDirectory_Impl(const UTF16String& inPath);

/// The shell's own numbers of its functions.
enum class ShellFunction { kMove = 1, kCopy = 2, kDelete = 3 };

/// The shell's operation on all that inFrom names: a plain path and "*.*". inTo, a plain path, is the folder that it
/// goes to, made where missing, and null for kDelete. Overwrites and joins without asking. 0, or a status of the shell
/// that is no system error number of the usual kind. Nothing to copy or to move is a failure; on the home platform
/// some versions give 0 for it.
unsigned long OperateOnFiles_Impl(ShellFunction inFunction, const UTF16String& inFrom, const UTF16String* inTo);

} // namespace Platform
} // namespace Directories
} // namespace ORL
