#include <ORLTVXErrorManager.h>

#include <cstdio>
#include <cstring>

namespace ORL {

using tvxcore::config::ErrorLevel;
using tvxcore::config::ReplacementValue;

TVXException::TVXException(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                           const ReplacementValue& inFirst, const ReplacementValue& inSecond,
                           const ReplacementValue& inThird, const ReplacementValue& inFourth)
    : mLevel(inLevel), mZString(inZString), mPackage(static_cast<std::uint32_t>(inPackage)),
      mErrorID(static_cast<std::int32_t>(inErrorID)), mValues{&inFirst, &inSecond, &inThird, &inFourth}, mMessage{}
{
}

TVXException::~TVXException() = default;

namespace {

// Returns the default string of a ZString, or a fixed message if that string is missing or too long.
const char* ShownText(const char* inZString)
{
    constexpr std::size_t kTooLong = 201; // the smallest length that is too long, counted from the "="
    const char* const equals = std::strchr(inZString, '=');
    if (equals == nullptr || equals[1] == '\0') {
        return "Unknown TVX Exception";
    }
    return std::strlen(equals) < kTooLong ? equals + 1 : "(Error string too long)";
}

} // namespace

const char* TVXException::what() const noexcept
{
    std::snprintf(mMessage, sizeof(mMessage), "\"%s\" [ID %d, Package %d, Level %d]", ShownText(mZString), mErrorID,
                  static_cast<std::int32_t>(mPackage), static_cast<int>(mLevel));
    return mMessage;
}

} // namespace ORL
