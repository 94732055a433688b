// The one source file that knows ICU.
#include <CorePlatform/NumberFormat.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <unicode/uloc.h>
#include <unicode/unum.h>
#include <utility>

namespace tvxcore {
namespace utility {
namespace Platform {

namespace {

struct CloseFormat
{
    void operator()(UNumberFormat* inFormat) const { ::unum_close(inFormat); }
};

using Format = std::unique_ptr<UNumberFormat, CloseFormat>;

constexpr const char* kClassic = "en_US_POSIX";

// As the C library finds it, without asking it: the process-wide locale is the host's.
const char* UserLocale()
{
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const char* const name = std::getenv(variable);
        if (name != nullptr && *name != '\0') {
            return name;
        }
    }
    return "C";
}

std::string Language(const char* inLocale)
{
    char language[ULOC_LANG_CAPACITY] = "";
    UErrorCode error = U_ZERO_ERROR;
    ::uloc_getLanguage(inLocale, language, sizeof(language), &error);
    return U_SUCCESS(error) ? language : "";
}

Format Open(const char* inLocale)
{
    UErrorCode error = U_ZERO_ERROR;
    char name[ULOC_FULLNAME_CAPACITY];
    ::uloc_canonicalize(inLocale, name, sizeof(name), &error);
    Format format(U_SUCCESS(error) && error != U_STRING_NOT_TERMINATED_WARNING
                      ? ::unum_open(UNUM_DECIMAL, nullptr, 0, name, nullptr, &error)
                      : nullptr);
    if (format == nullptr || U_FAILURE(error)) {
        return nullptr;
    }
    // For a locale that it does not know it takes another, and for what is no name the root of all.
    const char* const found = ::unum_getLocaleByType(format.get(), ULOC_VALID_LOCALE, &error);
    const std::string language = Language(name);
    return U_SUCCESS(error) && !language.empty() && Language(found) == language ? std::move(format) : nullptr;
}

Format OpenFor(const char* inLocale)
{
    const std::size_t length = std::strcspn(inLocale, ".@");
    const bool isClassic = std::string(inLocale, length) == "C" || std::string(inLocale, length) == "POSIX";
    Format format = Open(isClassic ? kClassic : inLocale);
    return format != nullptr || isClassic ? std::move(format) : Open(kClassic);
}

void Apply(const NumberStyle& inStyle, UNumberFormat* ioFormat)
{
    ::unum_setAttribute(ioFormat, UNUM_MIN_INTEGER_DIGITS, inStyle.mHasLeadingZero ? 1 : 0);
    ::unum_setAttribute(ioFormat, UNUM_FRACTION_DIGITS, static_cast<std::int32_t>(inStyle.mFractionDigits));
    if (!inStyle.mIsGrouped) {
        ::unum_setAttribute(ioFormat, UNUM_GROUPING_USED, 0);
    }
}

} // namespace

UTF16String FormatNumber_Impl(const std::string& inDecimal, const NumberStyle& inStyle, const char* inLocale)
{
    const Format format = OpenFor(inLocale != nullptr ? inLocale : UserLocale());
    // 310 digits with a separator behind each two, and room for signs and marks of direction.
    UChar text[600];
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    if (format != nullptr) {
        Apply(inStyle, format.get());
        length = ::unum_formatDecimal(format.get(), inDecimal.data(), static_cast<std::int32_t>(inDecimal.size()), text,
                                      static_cast<std::int32_t>(std::size(text)), nullptr, &error);
    }
    if (format == nullptr || U_FAILURE(error)) {
        // Its data are missing. The number is shown all the same.
        return UTF16String(inDecimal.begin(), inDecimal.end());
    }
    return UTF16String(text, text + length);
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
