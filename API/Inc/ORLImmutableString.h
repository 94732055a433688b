// Floor: Strings
// Interned UTF-8 strings: the process has one copy of each distinct string, and a handle is one word.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <cstdint>
#include <string>

namespace ORL {

/// A reference-counted handle to an interned UTF-8 string, or a null handle. All handles to one string share one
/// record, so c_str returns the same pointer for all of them.
///
/// A string is interned as static (the table keeps the caller's pointer, which must live as long as the process) or as
/// dynamic (the table owns a copy). A string that is already in the table keeps its kind.
/// Owner:    the table owns the records. An unreferenced record stays in the table until the process exits or,
///           if it is dynamic, until PurgeUnusedStrings removes it.
/// Threads:  one thread at a time per handle. Handles on several threads may refer to one string. Interning a new
///           string and purging take one lock; copying and releasing change one counter.
/// Failure:  creating a handle may throw std::bad_alloc; in that case nothing has changed.
/// Exit:     at process exit unreferenced strings are destroyed, including static ones. Referenced strings stay valid
///           and every operation works until the process ends, for threads still running and for handles in static
///           storage; the system reclaims their memory. A module that unloads the library before process exit must
///           release its handles first: other handles dangle, and the memory of their strings leaks.
class ORL_API ImmutableString
{
public:
    /// The record of one string. The table owns it.
    class InternalRepresentation;

    /// Constructs a null handle, which has no string and is not equal to the empty string.
    ImmutableString() noexcept : mRepresentation(nullptr) {}

    /// Constructs a handle and adds a reference to the record. Null constructs a null handle.
    ImmutableString(InternalRepresentation* inRepresentation);
    ImmutableString(const ImmutableString& inOther);
    ~ImmutableString();
    ImmutableString& operator=(const ImmutableString& inOther);

    /// Returns the zero-terminated string, which is empty for a null handle.
    const unsigned char* c_str() const;

    /// Returns the number of bytes before the terminator. O(n) for static strings, whose length is not stored.
    unsigned __int64 size() const;

    UTF16String ToString() const; ///< returns the string converted to UTF-16

    /// Compares bytes as unsigned, up to the first zero, and returns -1, 0 or 1. A null handle is below every string,
    /// even the empty one, and equal only to a null handle or a null pointer. A null pointer acts like a null handle.
    int Compare(const ImmutableString& inOther) const;
    int Compare(const char* inOther) const;
    int Compare(const unsigned char* inOther) const;
    int Compare(const std::string& inOther) const;
    int Compare(const UTF8String& inOther) const;

    /// Compares with a 16-bit string converted to UTF-8; null means the empty string. If this handle is null, returns
    /// -1 without converting.
    int Compare(const UTF16String& inOther) const;
    int Compare(const unsigned short* inOther) const;

    /// Interns a string whose bytes must live as long as the process. Null means the empty string.
    static ImmutableString CreateStatic(const unsigned char* inText);
    static ImmutableString CreateStatic(const char* inText);

    /// Interns a copy of a string up to its first zero. Null means the empty string.
    static ImmutableString CreateDynamic(const unsigned char* inText);
    static ImmutableString CreateDynamic(const char* inText);
    static ImmutableString CreateDynamic(const std::string& inText);
    static ImmutableString CreateDynamic(const UTF8String& inText);
    static ImmutableString CreateDynamic(const UTF16String& inText);
    static ImmutableString CreateDynamic(const unsigned short* inText);

    /// Removes unreferenced dynamic strings. Returns whether it removed any.
    static bool PurgeUnusedStrings();

private:
    static ImmutableString Enter(const unsigned char* inText, bool inIsStatic);

    InternalRepresentation* mRepresentation;
};

} // namespace ORL
