// String streams of 16-bit units, which can read and write numbers.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>
#include <tvxcore/UTF16Facets.h>

#include <sstream>

namespace tvxcore {

/// A stream that reads from a string. Uses the process's global locale at the time of construction. Not thread-safe,
/// like any stream. The constructor throws std::bad_alloc.
///
/// A 16-bit unit is an unsigned short: `stream >> unit` and `stream << unit` treat it as a number. Use
/// get() and put() for a unit.
class TVXCORE_API iUTF16StringStream
    : public std::basic_istringstream<unsigned short, std::char_traits<unsigned short>,
                                      utility::SmallBlockAllocator::STLAllocator<unsigned short>>
{
public:
    explicit iUTF16StringStream(const UTF16String& inText);
    ~iUTF16StringStream() override;

    /// Like std::basic_ios::imbue, but keeps the facets of 16-bit streams.
    std::locale imbue(const std::locale& inLocale);
};

/// A stream that writes to a string, which str() returns. Uses the process's global locale at the time of construction.
/// Not thread-safe, like any stream. The constructor throws std::bad_alloc.
class TVXCORE_API oUTF16StringStream
    : public std::basic_ostringstream<unsigned short, std::char_traits<unsigned short>,
                                      utility::SmallBlockAllocator::STLAllocator<unsigned short>>
{
public:
    oUTF16StringStream();
    ~oUTF16StringStream() override;

    /// Like std::basic_ios::imbue, but keeps the facets of 16-bit streams.
    std::locale imbue(const std::locale& inLocale);
};

} // namespace tvxcore
