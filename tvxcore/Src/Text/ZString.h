// Strings with a translation key: "$$$/" key "=" default text.
#pragma once

#include <cstring>

namespace tvxcore {
namespace config {

/// Returns the default text, or the whole string if it is not a ZString.
inline const char* DefaultText(const char* inZString)
{
    constexpr char kMark[] = "$$$/";
    if (std::strncmp(inZString, kMark, sizeof(kMark) - 1) != 0) {
        return inZString;
    }
    const char* const equalSign = std::strchr(inZString, '=');
    return equalSign != nullptr ? equalSign + 1 : inZString;
}

} // namespace config
} // namespace tvxcore
