// Floor: System
// Names of keys and values, and paths made of them.
#pragma once

#include <Platform/SystemErrors.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ORL {
namespace Registry {
namespace Linux {

using Units = std::basic_string<unsigned short>;
using UnitsView = std::basic_string_view<unsigned short>;

inline constexpr std::size_t kLongestKeyName = 255;
inline constexpr std::size_t kLongestValueName = 16383;
inline constexpr unsigned kMostLevels = 512;
inline constexpr unsigned kMostLevelsAtOnce = 32;

/// Stores in outFolded what two names have in common that differ in case alone: as many units, in upper case for ASCII.
/// The result is part of the store's format.
void FoldName(UnitsView inName, Units& outFolded);

/// The hash of a folded name. It is part of the format in which processes tell each other of changes.
std::uint64_t HashName(UnitsView inFolded) noexcept;

/// The names of a path, one after the other.
class PathNames
{
public:
    /// Null counts as empty.
    explicit PathNames(const unsigned short* inPath) noexcept;

    /// 161 for a path with a leading backslash, 87 for one with a name that is too long.
    SystemError Check() const noexcept;

    /// The next name, or false at the end. Backslashes in a row count as one.
    bool Next(UnitsView& outName) noexcept;

private:
    const unsigned short* mRest;
};

/// The length of a text, which ends at its first zero unit.
std::size_t LengthOf(const unsigned short* inText) noexcept;

} // namespace Linux
} // namespace Registry
} // namespace ORL
