// Floor: Strings
// A plain zero-terminated 16-bit string, for interfaces that would otherwise use the platform's string class.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {

/// Owns one zero-terminated 16-bit string. Copies are deep. Not thread-safe: one thread at a time per object.
/// Construction from a pointer and copying may throw std::bad_alloc.
class CString
{
public:
    CString() = default;

    /// Copies inText up to its first zero unit. inText must not be null.
    explicit CString(const unsigned short* inText) : mText(inText) {}

    /// Returns the string. Never null. Valid until the object is changed or destroyed.
    const unsigned short* GetString() const noexcept { return mText.c_str(); }
    operator const unsigned short*() const noexcept { return mText.c_str(); }

    /// Returns the number of units before the terminating zero.
    std::size_t GetLength() const noexcept { return mText.size(); }
    bool IsEmpty() const noexcept { return mText.empty(); }

private:
    UTF16String mText;
};

} // namespace ORL
