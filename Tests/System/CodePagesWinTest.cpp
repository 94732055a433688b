// Compares the library's conversions with those of Windows.
#include "CodePageSweep.h"

#include <System/CodePageConversion.h>

#include <gtest/gtest.h>
#include <windows.h>

using namespace ORL;
using namespace ORLTest;

namespace {

UTF16String UnitsOfSystem(unsigned inPage, const std::string& inBytes)
{
    wchar_t units[256];
    const int count = ::MultiByteToWideChar(inPage, 0, inBytes.data(), static_cast<int>(inBytes.size()), units, 256);
    return UTF16String(units, units + count);
}

std::string BytesOfSystem(unsigned inPage, const UTF16String& inUnits)
{
    char bytes[512];
    const wchar_t* const units = reinterpret_cast<const wchar_t*>(inUnits.data());
    const int count =
        ::WideCharToMultiByte(inPage, 0, units, static_cast<int>(inUnits.size()), bytes, 512, nullptr, nullptr);
    return std::string(bytes, bytes + count);
}

} // namespace

TEST(CodePagesOfTheSystem, EveryPage_IsReadAndWrittenAsTheSystemDoes)
{
    for (const unsigned page : kCodePages) {
        EXPECT_EQ(DigestOfUnits([page](const std::string& inBytes) { return UnitsOfSystem(page, inBytes); }),
                  DigestOfUnits([page](const std::string& inBytes) { return Internal::To16BitUnicode(inBytes, page); }))
            << page;
        EXPECT_EQ(DigestOfBytes([page](const UTF16String& inUnits) { return BytesOfSystem(page, inUnits); }),
                  DigestOfBytes(
                      [page](const UTF16String& inUnits) { return Internal::ToMultiByteWithCodePage(inUnits, page); }))
            << page;
    }
}
