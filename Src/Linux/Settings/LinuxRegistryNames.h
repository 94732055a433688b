// Floor: System
// Names of keys and values, and paths of key names.
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
inline constexpr unsigned kMaxLevels = 512;
inline constexpr unsigned kMaxLevelsAtOnce = 32;

/// Case-folds a name: two names that differ only in case have the same folded name. The folded name has as many units
/// as the name, and ASCII letters become upper case. Folding is part of the store's format.
void FoldName(UnitsView inName, Units& outFolded);

/// Returns the hash of a folded name. The hash is part of the board's format.
std::uint64_t HashName(UnitsView inFolded) noexcept;

/// The folded form of a name, with its hash. Names of ordinary length need no allocation.
class FoldedName
{
public:
    /// Throws std::bad_alloc.
    explicit FoldedName(UnitsView inName);
    FoldedName(const FoldedName&) = delete;
    FoldedName& operator=(const FoldedName&) = delete;

    UnitsView Text() const noexcept { return mText; }
    std::uint64_t Hash() const noexcept { return mHash; }

private:
    static constexpr std::size_t kShort = 64;

    unsigned short mShort[kShort];
    Units mLong;
    UnitsView mText;
    std::uint64_t mHash;
};

/// Iterates over the names of a path.
class PathNames
{
public:
    /// Treats null as an empty path.
    explicit PathNames(const unsigned short* inPath) noexcept;

    /// Returns 161 for a path with a leading backslash, 87 for one with a name that is too long, and otherwise 0.
    SystemError Check() const noexcept;

    /// Stores the next name, or returns false at the end. Consecutive backslashes count as one.
    bool Next(UnitsView& outName) noexcept;

private:
    const unsigned short* mRest;
};

/// Returns the number of units before the first zero unit; 0 for null.
std::size_t LengthOf(const unsigned short* inText) noexcept;

} // namespace Linux
} // namespace Registry
} // namespace ORL
