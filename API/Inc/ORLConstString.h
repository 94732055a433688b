// Floor: Strings
// Cheap handles to constant strings, such as literals and the names of threads, queues and modules.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>

#include <tvxcore/String.h>
#include <tvxcore/UTF16Facets.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>

namespace ORL {

namespace Internal {

/// The shared copy of one string. Immutable, except for its reference count.
template <class String>
struct ConstStringShared
{
    String mString;
    const typename String::value_type* mText;
    AtomicValue mReferenceCount;
};

/// The common base of ConstString and StdConstString: the shared copy (null if there is none), a pointer to the string,
/// and its hash.
template <class String>
class ConstStringHandle
{
public:
    using Unit = typename String::value_type;

    const Unit* c_str() const noexcept { return mText; }
    const Unit* data() const noexcept { return mText; }
    bool empty() const noexcept { return *mText == 0; }

    /// Returns the number of units before the terminating zero. O(n): counted on every call.
    std::size_t size() const noexcept { return std::char_traits<Unit>::length(mText); }

    bool IsEqualTo(const ConstStringHandle& inOther) const noexcept
    {
        return mHash == inOther.mHash && CompareText(inOther) == 0;
    }
    bool IsBelow(const ConstStringHandle& inOther) const noexcept
    {
        return mHash != inOther.mHash ? mHash < inOther.mHash : CompareText(inOther) < 0;
    }

protected:
    struct Adopted
    {
        const Unit* mText;
    };

    ConstStringHandle() noexcept = default;

    /// Copies a zero-terminated string. Throws std::bad_alloc, or std::length_error if inText is too long for a
    /// string.
    explicit ConstStringHandle(const Unit* inText)
        : mShared(MakeShared(inText)), mText(mShared->mText), mHash(HashText(mText))
    {
        AtomicIncrement(mShared->mReferenceCount);
    }

    /// Moves from ioText, which must not contain a zero unit.
    explicit ConstStringHandle(String&& ioText)
        : mShared(MakeShared(std::move(ioText))), mText(mShared->mText), mHash(HashText(mText))
    {
        AtomicIncrement(mShared->mReferenceCount);
    }

    explicit ConstStringHandle(Adopted inAdopted) noexcept : mText(inAdopted.mText), mHash(HashText(mText)) {}

    ConstStringHandle(const ConstStringHandle& inOther)
        : mShared(inOther.mShared), mText(inOther.mText), mHash(inOther.mHash)
    {
        if (mShared != nullptr) {
            AtomicIncrement(mShared->mReferenceCount);
        }
    }

    ConstStringHandle& operator=(const ConstStringHandle& inOther)
    {
        if (inOther.mShared != nullptr) {
            AtomicIncrement(inOther.mShared->mReferenceCount);
        }
        Shared* const old = mShared;
        mShared = inOther.mShared;
        mText = inOther.mText;
        mHash = inOther.mHash;
        Release(old);
        return *this;
    }

    ~ConstStringHandle() { Release(mShared); }

    void Swap(ConstStringHandle& ioOther) noexcept
    {
        std::swap(mShared, ioOther.mShared);
        std::swap(mText, ioOther.mText);
        std::swap(mHash, ioOther.mHash);
    }

private:
    using Shared = ConstStringShared<String>;

    // The library exports these four functions. All other members are compiled into the caller: if the whole class were
    // explicitly instantiated, callers would link to its inline functions, which the library may not export.
    static ORL_API Shared* MakeShared(const Unit* inText);
    static ORL_API Shared* MakeShared(String&& ioText);
    static ORL_API void Destroy(Shared* inShared);
    static ORL_API std::uint32_t HashText(const Unit* inText) noexcept;

    static void Release(Shared* inShared)
    {
        if (inShared != nullptr && AtomicDecrement(inShared->mReferenceCount) == 0) {
            Destroy(inShared);
        }
    }

    // Returns a negative number, 0 or a positive number, by the unsigned values of the first units that differ.
    int CompareText(const ConstStringHandle& inOther) const noexcept
    {
        using Unsigned = std::make_unsigned_t<Unit>;
        const Unit* left = mText;
        const Unit* right = inOther.mText;
        while (*left == *right && *left != 0) {
            ++left;
            ++right;
        }
        return static_cast<int>(static_cast<Unsigned>(*left)) - static_cast<int>(static_cast<Unsigned>(*right));
    }

    static constexpr Unit kEmptyText[1] = {0};

    Shared* mShared = nullptr;
    const Unit* mText = kEmptyText;
    std::uint32_t mHash = 0;
};

} // namespace Internal

/// A handle to a constant 16-bit string.
///
/// Copying costs one atomic increment, and comparing two different strings usually costs one comparison of their
/// hashes. Strings are not interned: two handles made from the same string are equal but share nothing. The order is
/// strict and total, so handles work as map keys. Hashes are compared first, so the order is not alphabetical.
/// Owner:    the handles share ownership of the copy. The caller owns an adopted string.
/// Threads:  one thread at a time per handle. Handles on several threads may share one string. Takes no lock.
/// Failure:  the constructors that copy a string throw std::bad_alloc. Copying a handle never allocates.
class ConstString : public Internal::ConstStringHandle<UTF16String>
{
public:
    /// Constructs an empty string. Allocates nothing.
    ConstString() noexcept = default;

    /// Copies the string up to its first zero unit. Narrow strings are UTF-8. The pointer must not be null.
    ORL_API ConstString(const char* inText);
    ORL_API ConstString(const unsigned short* inText);
    ORL_API ConstString(const UTF16String& inText);

    operator const unsigned short*() const noexcept { return c_str(); } ///< same as c_str

    void swap(ConstString& ioOther) noexcept { Swap(ioOther); }

    /// Creates handles to strings that are not copied, such as literals.
    struct Adoptor
    {
        /// The string must outlive every copy of the handle.
        static ConstString Adopt(const unsigned short* inText) noexcept { return ConstString(Adopted{inText}); }
    };

    // Declared inside the class, so at least one operand must be a ConstString. Two strings of other types are never
    // compared through temporary handles: UTF16String == "abc" does not compile.
    friend bool operator==(const ConstString& inLeft, const ConstString& inRight) noexcept
    {
        return inLeft.IsEqualTo(inRight);
    }
    friend bool operator!=(const ConstString& inLeft, const ConstString& inRight) noexcept
    {
        return !inLeft.IsEqualTo(inRight);
    }
    friend bool operator<(const ConstString& inLeft, const ConstString& inRight) noexcept
    {
        return inLeft.IsBelow(inRight);
    }
    friend bool operator>(const ConstString& inLeft, const ConstString& inRight) noexcept
    {
        return inRight.IsBelow(inLeft);
    }

private:
    explicit ConstString(Adopted inAdopted) noexcept : ConstStringHandle(inAdopted) {}
};

/// A handle to a constant 8-bit string, which is never decoded. Otherwise the same as ConstString.
class StdConstString : public Internal::ConstStringHandle<std::string>
{
public:
    StdConstString() noexcept = default;
    ORL_API StdConstString(const char* inText);        ///< copies the string, which must not be null
    ORL_API StdConstString(const std::string& inText); ///< copies up to the first zero byte

    void swap(StdConstString& ioOther) noexcept { Swap(ioOther); }

    struct Adoptor ///< Creates handles to strings that are not copied, such as literals.
    {
        /// The string must outlive every copy of the handle.
        static StdConstString Adopt(const char* inText) noexcept { return StdConstString(Adopted{inText}); }
    };

    // Declared inside the class for the same reason as those of ConstString.
    friend bool operator==(const StdConstString& inLeft, const StdConstString& inRight) noexcept
    {
        return inLeft.IsEqualTo(inRight);
    }
    friend bool operator!=(const StdConstString& inLeft, const StdConstString& inRight) noexcept
    {
        return !inLeft.IsEqualTo(inRight);
    }
    friend bool operator<(const StdConstString& inLeft, const StdConstString& inRight) noexcept
    {
        return inLeft.IsBelow(inRight);
    }
    friend bool operator>(const StdConstString& inLeft, const StdConstString& inRight) noexcept
    {
        return inRight.IsBelow(inLeft);
    }

private:
    explicit StdConstString(Adopted inAdopted) noexcept : ConstStringHandle(inAdopted) {}
};

/// Returns the string as UTF-8.
ORL_API std::string MakeStdString(const ConstString& inText);

/// Writes the string with the stream's width, fill and adjustment, and resets the width to 0.
ORL_API std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream,
                                                       const ConstString& inText);

/// Writes an 8-bit string in the same way; the stream's locale widens each byte separately. Unlike a const char* or
/// std::string on the same stream, the bytes are not decoded as UTF-8.
ORL_API std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream,
                                                       const StdConstString& inText);

} // namespace ORL
