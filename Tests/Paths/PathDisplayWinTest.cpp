// Tests GetShellName_Impl, which queries the Windows shell for a display name.
#include <Platform/Paths.h>

#include <ORLPathUtils.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <thread>

using namespace ORL::PathUtils;
using ORLTest::Units;

TEST(GetShellName, OfAFolderThatExists_ComesFromTheShell)
{
    const ORLTest::TempFolder folder;
    folder.MakeFolder("clips one");
    UTF16String name;
    EXPECT_TRUE(Platform::GetShellName_Impl(folder.Path(u"clips one"), name));
    EXPECT_EQ(Units(u"clips one"), name);
}

TEST(GetShellName, OfWhatIsNotThere_FailsAndLeavesTheName)
{
    UTF16String name = Units(u"plain leaf");
    EXPECT_FALSE(Platform::GetShellName_Impl(Units(uR"(C:\no such folder\no such file)"), name));
    EXPECT_EQ(Units(u"plain leaf"), name);
}

// CoUninitialize must not be called after a failed COM initialisation; it would change the thread's COM state.
TEST(GetShellName, OnAThreadOfAnotherKind_FallsBackAndLeavesTheThreadAlone)
{
    std::thread([] {
        ASSERT_EQ(S_OK, ::CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        UTF16String name = Units(u"plain leaf");
        EXPECT_FALSE(Platform::GetShellName_Impl(Units(u"C:\\windows"), name));
        EXPECT_EQ(Units(u"plain leaf"), name);
        EXPECT_EQ(S_FALSE, ::CoInitializeEx(nullptr, COINIT_MULTITHREADED)) << "still initialised";
        ::CoUninitialize();
        ::CoUninitialize();
    }).join();
}
