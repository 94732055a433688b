// Floor: Strings
// Interned text: of each distinct UTF-8 text the process holds one copy, and a handle is one word.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

#include <cstdint>
#include <string>

namespace ORL {

/// A counted handle to an interned UTF-8 text, or to nothing. All handles of one text share one record, so their c_str()
/// are one pointer.
///
/// A text is entered as static (the table keeps the caller's pointer, which must live as long as the process) or as dynamic
/// (the table owns a copy); a text that is already there keeps its kind. A record that nobody holds stays in the table
/// until PurgeUnusedStrings, which removes dynamic ones.
///
/// Threads: any thread may create, copy and release handles of its own. Creating and purging go through one lock; copying
/// and releasing touch one counter. One handle itself is a plain value.
/// Failure: creating throws std::bad_alloc and then leaves everything as it was.
/// At process exit the texts that nobody holds go, static ones too. What is held stays whole, and every operation works to
/// the end, on threads that nobody has stopped and on handles in static storage; such memory is left to the system. Whoever
/// unloads the library before the process ends has let its handles go: what it still holds is memory lost, and dangles.
class ORL_API ImmutableString
{
public:
    /// One text. Records belong to the table.
    class InternalRepresentation;

    /// The null handle: no text, not even the empty one.
    ImmutableString() noexcept : mRepresentation(nullptr) {}

    /// One more handle of a record, or a null handle.
    ImmutableString(InternalRepresentation* inRepresentation);
    ImmutableString(const ImmutableString& inOther);
    ~ImmutableString();
    ImmutableString& operator=(const ImmutableString& inOther);

    /// The zero-terminated text; an empty one for a null handle.
    const unsigned char* c_str() const;

    /// Bytes before the terminator. A static text is measured at each call.
    unsigned __int64 size() const;

    UTF16String ToString() const;

    /// -1, 0 or 1, by the bytes as unsigned values up to the first zero. A null handle is below every text, the empty one
    /// included, and equals only the null handle and the null pointer, which are below every text too.
    int Compare(const ImmutableString& inOther) const;
    int Compare(const char* inOther) const;
    int Compare(const unsigned char* inOther) const;
    int Compare(const std::string& inOther) const;
    int Compare(const UTF8String& inOther) const;

    /// The same with the UTF-8 form of a 16-bit text, where null stands for the empty text. A null handle answers -1
    /// without converting.
    int Compare(const UTF16String& inOther) const;
    int Compare(const unsigned short* inOther) const;

    /// Enters a text whose bytes live as long as the process. Null stands for the empty text.
    static ImmutableString CreateStatic(const unsigned char* inText);
    static ImmutableString CreateStatic(const char* inText);

    /// Enters a text up to its first zero. Null stands for the empty text.
    static ImmutableString CreateDynamic(const unsigned char* inText);
    static ImmutableString CreateDynamic(const char* inText);
    static ImmutableString CreateDynamic(const std::string& inText);
    static ImmutableString CreateDynamic(const UTF8String& inText);
    static ImmutableString CreateDynamic(const UTF16String& inText);
    static ImmutableString CreateDynamic(const unsigned short* inText);

    /// Removes the dynamic texts that nobody holds. True if there was one.
    static bool PurgeUnusedStrings();

private:
    static ImmutableString Enter(const unsigned char* inText, bool inIsStatic);

    InternalRepresentation* mRepresentation;
};

} // namespace ORL
