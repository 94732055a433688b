#include <ORLStringUtils.h>

#include <CRV/Application.h>
#include <ORLDebug.h>
#include <ORLHostSettings.h>
#include <Platform/CodePages.h>
#include <System/CodePageConversion.h>

namespace ORL {

namespace {

constexpr std::size_t kStackBuffer = 1024; // elements

// The two directions of a conversion, as parameters of Convert.
struct ToUnicode16
{
    using Source = std::string;
    using Target = UTF16String;
    static constexpr std::size_t kMaxSourcePerResult = 4; // the maximum number of bytes that convert to one unit
    static constexpr auto kLimit = &StringUtils::Platform::MaxUnits_Impl;
    static constexpr auto kMeasure = &StringUtils::Platform::MeasureUnits_Impl;
    static constexpr auto kConvert = &StringUtils::Platform::ToUnits_Impl;
};

struct ToCodePage
{
    using Source = UTF16String;
    using Target = std::string;
    static constexpr std::size_t kMaxSourcePerResult = 2; // a surrogate pair may convert to one byte
    static constexpr auto kLimit = &StringUtils::Platform::MaxBytes_Impl;
    static constexpr auto kMeasure = &StringUtils::Platform::MeasureBytes_Impl;
    static constexpr auto kConvert = &StringUtils::Platform::ToBytes_Impl;
};

// Returns the capacity for the result in elements, or 0 if the text cannot be converted. Measures the text only if the
// choice of the buffer depends on it, because measuring costs as much as converting.
template <class Direction>
std::size_t CapacityForResult(const typename Direction::Source& inText, unsigned int inCodePage)
{
    const std::size_t most = Direction::kLimit(inCodePage, inText.size());
    const bool mayFitStack = inText.size() <= kStackBuffer * Direction::kMaxSourcePerResult;
    return most > kStackBuffer && mayFitStack ? Direction::kMeasure(inCodePage, inText.data(), inText.size()) : most;
}

// Passes the length of the result to the caller's check, because each caller reports its own source line in a failed
// check. Writes a long result directly into the returned string, whose capacity may exceed its length.
template <class Direction, class CheckSite>
typename Direction::Target Convert(const typename Direction::Source& inText, unsigned int inCodePage,
                                   CheckSite inCheckSite)
{
    using Target = typename Direction::Target;
    using Element = typename Target::value_type;
    if (inText.empty()) {
        return Target();
    }
    const unsigned int codePage = inCodePage != 0 ? inCodePage : StringUtils::GetDefaultCodePage();
    const std::size_t capacity = CapacityForResult<Direction>(inText, codePage);
    const auto convert = [&](Element* outBuffer) {
        const std::size_t length =
            capacity != 0 ? Direction::kConvert(codePage, inText.data(), inText.size(), outBuffer, capacity) : 0;
        inCheckSite(length);
        return length;
    };
    if (capacity <= kStackBuffer) {
        Element onStack[kStackBuffer];
        const std::size_t length = convert(onStack);
        return Target(onStack, length);
    }
    Target result(capacity, Element());
    result.resize(convert(&result[0]));
    return result;
}

unsigned int CodePageOfHost()
{
    const unsigned int codePage = GetConversionCodePage();
    return CRV::GetApplicationType() == CRV::kApplicationType_SystemCodePage ? 0 : codePage;
}

} // namespace

namespace Internal {

UTF16String To16BitUnicode(const std::string& inText, unsigned int inCodePage)
{
    return Convert<ToUnicode16>(inText, inCodePage, []([[maybe_unused]] std::size_t resultLength) {
        ORL_ASSERT_AT(resultLength > 0, "StringUtils", 570, "ORL::`anonymous-namespace'::To16BitUnicode");
    });
}

std::string ToMultiByteWithCodePage(const UTF16String& inText, unsigned int inCodePage)
{
    return Convert<ToCodePage>(inText, inCodePage, []([[maybe_unused]] std::size_t resultLength) {
        ORL_ASSERT_AT(resultLength > 0, "StringUtils", 610, "ORL::`anonymous-namespace'::ToMultiByteWithCodePage");
    });
}

UTF16String CodePageMultiByteToUnicode16(const std::string& inText, unsigned int inCodePage)
{
    return Convert<ToUnicode16>(inText, inCodePage, []([[maybe_unused]] std::size_t resultLength) {
        ORL_ASSERT_AT(resultLength > 0, "StringUtils", 756, "ORL::StringUtils::CodePageMultiByteToUnicode16");
    });
}

std::string Unicode16ToCodePageMultiByte(const UTF16String& inText, unsigned int inCodePage)
{
    return Convert<ToCodePage>(inText, inCodePage, []([[maybe_unused]] std::size_t resultLength) {
        ORL_ASSERT_AT(resultLength > 0, "StringUtils", 855, "ORL::StringUtils::Unicode16ToCodePageMultiByte");
    });
}

} // namespace Internal

namespace StringUtils {

UTF16String ToUnicode(const std::string& inText)
{
    return Internal::To16BitUnicode(inText, GetConversionCodePage());
}

UTF16String ToUnicode(const UTF16String& inText)
{
    return inText;
}

std::string ToMultiByte(const UTF16String& inText)
{
    return Internal::ToMultiByteWithCodePage(inText, GetConversionCodePage());
}

std::string ToMultiByte(const std::string& inText)
{
    return inText;
}

UTF16String CodePageMultiByteToUnicode16(const std::string& inText)
{
    return Internal::CodePageMultiByteToUnicode16(inText, CodePageOfHost());
}

std::string Unicode16ToCodePageMultiByte(const UTF16String& inText)
{
    return Internal::Unicode16ToCodePageMultiByte(inText, CodePageOfHost());
}

UTF16String TrimTrailingZeros(const UTF16String& inText)
{
    std::size_t length = inText.size();
    while (length > 2 && inText[length - 1] == '0') {
        --length;
    }
    return inText.substr(0, length);
}

unsigned int GetDefaultCodePage()
{
    return Platform::GetDefaultCodePage_Impl();
}

} // namespace StringUtils
} // namespace ORL
