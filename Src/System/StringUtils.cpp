#include <ORLStringUtils.h>

#include <CRV/Application.h>
#include <CodePageConversion.h>
#include <ORLDebug.h>
#include <ORLHostSettings.h>
#include <Platform/CodePages.h>

#include <memory>

namespace ORL {

namespace {

constexpr std::size_t kStackBuffer = 1024; // elements
constexpr std::size_t kBytesOfUnit = 4;    // at most: a system's default page can be GB18030

// Both directions in one: how a text of Source becomes a text of Target.
struct ToUnicode16
{
    using Source = std::string;
    using Target = UTF16String;
    static constexpr std::size_t kMostForOne = 1;
    static constexpr auto kMeasure = &StringUtils::Platform::MeasureUnits_Impl;
    static constexpr auto kConvert = &StringUtils::Platform::ToUnits_Impl;
};

struct ToCodePage
{
    using Source = UTF16String;
    using Target = std::string;
    static constexpr std::size_t kMostForOne = kBytesOfUnit;
    static constexpr auto kMeasure = &StringUtils::Platform::MeasureBytes_Impl;
    static constexpr auto kConvert = &StringUtils::Platform::ToBytes_Impl;
};

// Tells the site of the caller whether the text could be converted.
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
    Element onStack[kStackBuffer];
    if (inText.size() <= kStackBuffer / Direction::kMostForOne) { // fits, so it need not be measured
        const std::size_t length = Direction::kConvert(codePage, inText.data(), inText.size(), onStack, kStackBuffer);
        inCheckSite(length);
        return Target(onStack, length);
    }
    const std::size_t length = Direction::kMeasure(codePage, inText.data(), inText.size());
    inCheckSite(length);
    if (length == 0) {
        return Target();
    }
    const std::unique_ptr<Element[]> onHeap(length > kStackBuffer ? new Element[length] : nullptr);
    Element* const buffer = onHeap ? onHeap.get() : onStack;
    Direction::kConvert(codePage, inText.data(), inText.size(), buffer, length);
    return Target(buffer, length);
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
