#include <Platform/CodePages.h>

#include "../Calls/WinText.h"

#include <windows.h>

#include <climits>

namespace ORL {
namespace StringUtils {
namespace Platform {

namespace {

constexpr std::size_t kMax = INT_MAX;

int SizeOf(std::size_t inSize)
{
    return static_cast<int>(inSize < kMax ? inSize : kMax);
}

std::size_t CountOf(int inResult)
{
    return inResult > 0 ? static_cast<std::size_t>(inResult) : 0;
}

// Returns the maximum number of bytes per unit; 0 if the system lacks the page.
std::size_t MostOfEach(unsigned int inCodePage)
{
    CPINFO info;
    return ::GetCPInfo(inCodePage, &info) != FALSE ? info.MaxCharSize : 0;
}

} // namespace

std::size_t MaxUnits_Impl(unsigned int inCodePage, std::size_t inBytes)
{
    return MostOfEach(inCodePage) != 0 && inBytes <= kMax ? inBytes : 0;
}

std::size_t MeasureUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes)
{
    return inBytes > kMax ? 0 : CountOf(::MultiByteToWideChar(inCodePage, 0, inText, SizeOf(inBytes), nullptr, 0));
}

std::size_t ToUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes, unsigned short* outUnits,
                         std::size_t inCapacity)
{
    if (inBytes > kMax) {
        return 0;
    }
    return CountOf(
        ::MultiByteToWideChar(inCodePage, 0, inText, SizeOf(inBytes), Win::AsWide(outUnits), SizeOf(inCapacity)));
}

std::size_t MaxBytes_Impl(unsigned int inCodePage, std::size_t inUnits)
{
    return inUnits <= kMax ? inUnits * MostOfEach(inCodePage) : 0;
}

std::size_t MeasureBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits)
{
    if (inUnits > kMax) {
        return 0;
    }
    return CountOf(
        ::WideCharToMultiByte(inCodePage, 0, Win::AsWide(inText), SizeOf(inUnits), nullptr, 0, nullptr, nullptr));
}

std::size_t ToBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits, char* outBytes,
                         std::size_t inCapacity)
{
    if (inUnits > kMax) {
        return 0;
    }
    return CountOf(::WideCharToMultiByte(inCodePage, 0, Win::AsWide(inText), SizeOf(inUnits), outBytes,
                                         SizeOf(inCapacity), nullptr, nullptr));
}

unsigned int GetDefaultCodePage_Impl()
{
    return ::GetACP();
}

} // namespace Platform
} // namespace StringUtils
} // namespace ORL
