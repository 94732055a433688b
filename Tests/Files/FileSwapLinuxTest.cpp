// Tests swaps of files whose names leave no room for a longer name next to them: a name is limited to 255 bytes on
// Linux and to 255 units on Windows.
#include <FileSupport.h>

#include <FaultySystemCallsLinux.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <set>

using namespace ORL;
using namespace ORLTest;

namespace {

std::u16string Times(std::size_t inCount, char16_t inUnit)
{
    return std::u16string(inCount, inUnit);
}

// Returns a long name of characters that take two, three or four UTF-8 bytes; the last take two UTF-16 units.
std::u16string LongNames(int inIndex)
{
    if (inIndex == 2) {
        std::u16string name;
        for (int i = 0; i < 63; ++i) {
            name += u"\U0001F3AC";
        }
        return name;
    }
    return inIndex == 0 ? Times(127, u'\u044F') : inIndex == 1 ? Times(85, u'\u20AC') : Times(122, u'\u044F') + u".mov";
}

std::string HostName(const std::u16string& inName)
{
    std::string host;
    EXPECT_EQ(kSuccess, PathUtils::ToHostPath(Units(u"C:\\") + UTF16String(inName.begin(), inName.end()), host));
    return host.substr(host.rfind('/') + 1);
}

std::set<std::string> Names(const TempFolder& inFolder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(inFolder.Host())) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

Result Swap(const TempFolder& inFolder, const std::u16string& inName)
{
    return File::SwapTempFile(inFolder.Path(u"temp"), inFolder.Path(inName));
}

} // namespace

TEST(SwapOfLongNames, PutsTheNewContentsInPlaceAndLeavesNothing)
{
    for (int index = 0; index < 4; ++index) {
        const std::u16string name = LongNames(index);
        const std::string host = HostName(name);
        ASSERT_LE(248u, host.size());
        for (const bool hasLinks : {true, false}) {
            const TempFolder folder;
            folder.MakeFile(host, "old");
            folder.MakeFile("temp", "new");
            FaultySystemCalls calls;
            if (!hasLinks) {
                calls.Fail(FaultySystemCalls::kLink, 1, EPERM, FaultySystemCalls::kForEver);
            }
            EXPECT_EQ(kSuccess, Swap(folder, name)) << "name " << index << ", second names: " << hasLinks;
            EXPECT_EQ("new", ContentsOf(folder, host));
            EXPECT_EQ(std::set<std::string>{host}, Names(folder));
        }
    }
}

// A failed swap keeps both files and leaves no other file.
TEST(SwapOfLongNames, ThatFails_LeavesBothFilesAlone)
{
    for (const FaultySystemCalls::Call call : {FaultySystemCalls::kRename, FaultySystemCalls::kFSync}) {
        const TempFolder folder;
        const std::string host = HostName(LongNames(0));
        folder.MakeFile(host, "old");
        folder.MakeFile("temp", "new");
        FaultySystemCalls calls;
        calls.Fail(call, 1, EIO);
        EXPECT_EQ(kGeneralFailure, Swap(folder, LongNames(0)));
        EXPECT_EQ("old", ContentsOf(folder, host));
        EXPECT_EQ((std::set<std::string>{host, "temp"}), Names(folder));
    }
}

// If the sync of a completed swap fails, the old contents are kept under a backup name.
TEST(SwapOfLongNames, ThatCannotBePutOnDisk_KeepsTheOldContentsBesideTheNew)
{
    const TempFolder folder;
    const std::string host = HostName(LongNames(0));
    folder.MakeFile(host, "old");
    folder.MakeFile("temp", "new");
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kFSync, 2, EIO);
    EXPECT_EQ(kGeneralFailure, Swap(folder, LongNames(0)));
    EXPECT_EQ("new", ContentsOf(folder, host));
    std::set<std::string> names = Names(folder);
    EXPECT_EQ(1u, names.erase(host));
    ASSERT_EQ(1u, names.size());
    EXPECT_EQ(".orl-swap-", names.begin()->substr(0, 10));
    EXPECT_EQ("old", ContentsOf(folder, *names.begin()));
}

// A killed process has left files with the temporary names that this swap tries first.
TEST(SwapOfLongNames, BesideTheLeftoversOfAKilledOne_IsDone)
{
    const TempFolder folder;
    const std::string host = HostName(LongNames(0));
    static std::set<std::string> sLeft;
    sLeft.clear();
    FaultySystemCalls calls;
    // The first two temporary names are already taken.
    calls.Underlying().mLink = [](const char* inFrom, const char* inTo) {
        const std::filesystem::path to(inTo);
        const std::string name = to.filename().string();
        if (name.substr(0, 10) == ".orl-swap-" && sLeft.size() < 2) {
            std::ofstream(to, std::ios::binary) << "left";
            sLeft.insert(name);
        }
        return Linux::kSystem.mLink(inFrom, inTo);
    };
    folder.MakeFile(host, "old");
    folder.MakeFile("temp", "new");
    EXPECT_EQ(kSuccess, Swap(folder, LongNames(0)));
    EXPECT_EQ("new", ContentsOf(folder, host));
    std::set<std::string> expected = sLeft;
    expected.insert(host);
    EXPECT_EQ(expected, Names(folder));
    ASSERT_EQ(2u, sLeft.size());
    for (const std::string& name : sLeft) {
        EXPECT_EQ("left", ContentsOf(folder, name)) << "it is not ours";
    }
}
