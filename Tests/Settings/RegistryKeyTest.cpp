#include "TestRegistry.h"

#include <CheckRecorder.h>
#include <Platform/Registry.h>
#include <System/RegistryKeyImpl.h>

#include <ORLString.h>

#include <cstring>
#include <vector>

using namespace ORL;
using namespace ORLTest;
using RegistryKeyTest = RegistryTest;

namespace {

constexpr auto kUser = RegistryRootKeys::kUser;
constexpr auto kRead = RegistryKeyAccess::kRead;
constexpr auto kWrite = RegistryKeyAccess::kWrite;
constexpr auto kAll = static_cast<RegistryKeyAccess::Type>(0);

UTF16String Name(const char* inText)
{
    return MakeString(inText);
}

// Stores a value through the OS, as another program may.
void Store(const UTF16String& inPath, const UTF16String& inName, unsigned inType, const void* inData, unsigned inSize)
{
    using namespace Registry::Platform;
    KeyHandle key = nullptr;
    ASSERT_EQ(0u, OpenKey_Impl(GetUserRoot_Impl(), inPath.c_str(), kAccessAll, key));
    EXPECT_EQ(0u, SetValue_Impl(key, inName.c_str(), inType, inData, inSize));
    EXPECT_EQ(0u, CloseKey_Impl(key));
}

} // namespace

TEST_F(RegistryKeyTest, CreateOnAnExistingKey_SaysSoAndOpensItWithAllAccess)
{
    RegistryKey key;
    const Result result = key.Create(kUser, mPath);
    EXPECT_EQ(kRegistryKeyExisted, result);
    EXPECT_TRUE(ResultSucceeded(result));
    EXPECT_EQ(kSuccess, key.SetUInt32Value(Name("n"), 1));
    unsigned value = 0;
    EXPECT_EQ(kSuccess, key.GetUInt32Value(Name("n"), value));
    EXPECT_EQ(1u, value);
}

TEST_F(RegistryKeyTest, OpenOfAMissingPath_LeavesThePathBehind)
{
    RegistryKey key;
    EXPECT_EQ(kFileNotFound, key.Open(kUser, Path(u"missing"), kRead));
    EXPECT_EQ(Path(u"missing"), key.GetParentKeyPath());
    EXPECT_EQ(Path(u"missing"), key.GetParentKeyPathLastPart());
    EXPECT_EQ(kFileNotFound, key.Open(mKey, Name("missing\\too")));
    EXPECT_EQ(Name("missing\\too"), key.GetParentKeyPath());
}

TEST_F(RegistryKeyTest, TextWithoutTerminator_IsAFailure)
{
    Store(mPath, Name("n"), 1, u"abcd", 6);
    UTF16String text = Name("untouched");
    EXPECT_EQ(kRegistryFailure, mKey.GetStringValue(Name("n"), text));
    EXPECT_EQ(Name("untouched"), text);
}

TEST_F(RegistryKeyTest, TextWithAZeroUnitInside_EndsThere)
{
    Store(mPath, Name("n"), 1, u"a\0b", 8);
    UTF16String text;
    EXPECT_EQ(kSuccess, mKey.GetStringValue(Name("n"), text));
    EXPECT_EQ(Name("a"), text);
}

TEST_F(RegistryKeyTest, ExpandableText_StaysUnexpanded)
{
    Store(mPath, Name("n"), 2, u"%PATH%", 14);
    UTF16String text;
    EXPECT_EQ(kSuccess, mKey.GetStringValue(Name("n"), text));
    EXPECT_EQ(Name("%PATH%"), text);
}

TEST_F(RegistryKeyTest, SetBinaryValue_Of4096BytesSucceedsAndOf4097FailsWithAReport)
{
    std::vector<char> data(4096, 'x');
    EXPECT_EQ(kSuccess, mKey.SetBinaryValue(Name("n"), data));
    CheckRecorder recorder;
    data.resize(4097);
    EXPECT_EQ(kRegistryFailure, mKey.SetBinaryValue(Name("n"), data));
    const auto reports = recorder.Reports(CheckReport::kAssert);
    ASSERT_EQ(1u, reports.size());
    EXPECT_NE(std::string::npos, reports[0].mMessage.find("greater than 2048 bytes: size = 4097"));
    std::vector<char> stored;
    EXPECT_EQ(kSuccess, mKey.GetBinaryValue(Name("n"), stored));
    EXPECT_EQ(std::vector<char>(4096, 'x'), stored) << "nothing was written";
}

TEST_F(RegistryKeyTest, NumbersOfTheOtherWidth_AreFailures)
{
    ASSERT_EQ(kSuccess, mKey.SetUInt64Value(Name("long"), 0x1122334455667788u));
    ASSERT_EQ(kSuccess, mKey.SetUInt32Value(Name("short"), 7));
    unsigned number = 99;
    EXPECT_EQ(kRegistryFailure, mKey.GetUInt32Value(Name("long"), number));
    EXPECT_EQ(99u, number) << "is left alone";
    unsigned __int64 large = 0;
    EXPECT_EQ(kRegistryFailure, mKey.GetUInt64Value(Name("short"), large));
    EXPECT_EQ(kSuccess, mKey.GetUInt64Value(Name("long"), large));
    EXPECT_EQ(0x1122334455667788u, large);
    EXPECT_EQ(kSuccess, mKey.GetUInt32Value(Name("SHORT"), number));
    EXPECT_EQ(7u, number);
    EXPECT_EQ(kRegistryFailure, mKey.GetUInt32Value(Name("missing"), number));
}

TEST_F(RegistryKeyTest, EnumerateSubKeys_AppendsKeysWithBareNames)
{
    RegistryKey other;
    ASSERT_EQ(kSuccess, other.Create(mKey, Name("one\\deep")));
    ASSERT_EQ(kSuccess, other.Create(mKey, Name("two")));
    std::vector<RegistryKey> keys(1);
    mKey.EnumerateSubKeys(keys);
    ASSERT_EQ(3u, keys.size());
    EXPECT_EQ(UTF16String(), keys[0].GetParentKeyPath());
    EXPECT_EQ(Name("one"), keys[1].GetParentKeyPath());
    EXPECT_EQ(Name("two"), keys[2].GetParentKeyPath());
    EXPECT_EQ(kSuccess, keys[2].SetUInt32Value(Name("n"), 5));
    unsigned value = 0;
    EXPECT_EQ(kSuccess, other.GetUInt32Value(Name("n"), value));
    EXPECT_EQ(5u, value);
}

TEST_F(RegistryKeyTest, DeleteSubKey_RemovesASubtreeOfAnyDepth)
{
    RegistryKey deep;
    UTF16String path = Name("a");
    for (int i = 0; i < 28; ++i) {
        path += Name("\\level");
    }
    ASSERT_EQ(kSuccess, deep.Create(mKey, path));
    ASSERT_EQ(kSuccess, deep.SetUInt32Value(Name("n"), 1));
    RegistryKey wide;
    for (const char* name : {"a\\b", "a\\c", "a\\level\\d"}) {
        ASSERT_EQ(kSuccess, wide.Create(mKey, Name(name)));
    }
    EXPECT_EQ(kSuccess, mKey.DeleteSubKey(Name("A")));
    EXPECT_EQ(kFileNotFound, wide.Open(mKey, Name("a")));
    EXPECT_EQ(kFileNotFound, mKey.DeleteSubKey(Name("a")));
    unsigned value = 0;
    EXPECT_EQ(kRegistryFailure, deep.GetUInt32Value(Name("n"), value)) << "a handle of a deleted key";
    ASSERT_EQ(kSuccess, wide.Create(mKey, path));
    EXPECT_EQ(kRegistryFailure, deep.GetUInt32Value(Name("n"), value)) << "also when there is a key of that name again";
}

TEST_F(RegistryKeyTest, ClosedKey_FailsEverywhere)
{
    RegistryKey key;
    unsigned number = 0;
    UTF16String text;
    std::vector<char> data;
    std::vector<RegistryKey> keys;
    EXPECT_EQ(UTF16String(), key.GetParentKeyPath());
    EXPECT_EQ(kRegistryFailure, key.GetUInt32Value(Name("n"), number));
    EXPECT_EQ(kRegistryFailure, key.GetStringValue(Name("n"), text));
    EXPECT_EQ(kRegistryFailure, key.GetBinaryValue(Name("n"), data));
    EXPECT_EQ(kRegistryFailure, key.SetUInt32Value(Name("n"), 1));
    EXPECT_EQ(kRegistryFailure, key.DeleteValue(Name("n")));
    EXPECT_EQ(kRegistryFailure, key.DeleteSubKey(Name("n")));
    key.EnumerateSubKeys(keys);
    EXPECT_TRUE(keys.empty());
    RegistryKey child;
    EXPECT_EQ(kRegistryFailure, child.Open(key, Name("n")));
    EXPECT_EQ(kRegistryFailure, child.Create(key, Name("n")));
}

TEST_F(RegistryKeyTest, AccessRights_AreEnforced)
{
    RegistryKey reader;
    ASSERT_EQ(kSuccess, mKey.SetUInt32Value(Name("n"), 1));
    ASSERT_EQ(kSuccess, reader.Open(kUser, mPath, kRead));
    unsigned number = 0;
    EXPECT_EQ(kSuccess, reader.GetUInt32Value(Name("n"), number));
    EXPECT_EQ(kRegistryFailure, reader.SetUInt32Value(Name("n"), 2));
    EXPECT_EQ(kRegistryFailure, reader.DeleteValue(Name("n")));
    RegistryKey writer;
    ASSERT_EQ(kSuccess, writer.Open(kUser, mPath, kWrite));
    EXPECT_EQ(kSuccess, writer.SetUInt32Value(Name("n"), 3));
    EXPECT_EQ(kRegistryFailure, writer.GetUInt32Value(Name("n"), number));
    RegistryKey both;
    ASSERT_EQ(kSuccess, both.Open(kUser, mPath, kRead | kWrite));
    EXPECT_EQ(kSuccess, both.SetUInt32Value(Name("n"), 4));
    EXPECT_EQ(kSuccess, both.GetUInt32Value(Name("n"), number));
    EXPECT_EQ(4u, number);
    ASSERT_EQ(kSuccess, both.Open(kUser, mPath, kAll));
    EXPECT_EQ(kSuccess, both.DeleteValue(Name("N")));
    EXPECT_EQ(kRegistryFailure, both.DeleteValue(Name("N")));
}

TEST_F(RegistryKeyTest, CopiesShareAHandleAndKeepTheirPaths)
{
    RegistryKey child;
    ASSERT_EQ(kSuccess, child.Create(mKey, Name("child")));
    RegistryKey copy(child);
    EXPECT_EQ(Name("child"), copy.GetParentKeyPath());
    ASSERT_EQ(kSuccess, copy.Open(kUser, mPath, kAll)); // both handles now refer to the new key
    ASSERT_EQ(kSuccess, child.SetUInt32Value(Name("n"), 8));
    EXPECT_EQ(Name("child"), child.GetParentKeyPath());
    unsigned value = 0;
    EXPECT_EQ(kSuccess, mKey.GetUInt32Value(Name("n"), value));
    EXPECT_EQ(8u, value);
    EXPECT_EQ(kFileNotFound, copy.Open(kUser, Path(u"missing"), kAll));
    EXPECT_EQ(kSuccess, child.GetUInt32Value(Name("n"), value)) << "a failed open leaves the handle";
}

TEST_F(RegistryKeyTest, AssignedKey_SharesTheOthersHandle)
{
    RegistryKey key;
    {
        RegistryKey other;
        ASSERT_EQ(kSuccess, other.Create(mKey, Name("child")));
        key = other;
        RegistryKey& same = key;
        key = same;
    }
    EXPECT_EQ(Name("child"), key.GetParentKeyPath());
    EXPECT_EQ(kSuccess, key.SetUInt32Value(Name("n"), 6));
    RegistryKey again;
    unsigned value = 0;
    ASSERT_EQ(kSuccess, again.Open(mKey, Name("CHILD")));
    EXPECT_EQ(kSuccess, again.GetUInt32Value(Name("n"), value));
    EXPECT_EQ(6u, value);
}

TEST_F(RegistryKeyTest, Swap_ExchangesHandlesAndPaths)
{
    RegistryKey key;
    key.Swap(mKey);
    EXPECT_EQ(mPath, key.GetParentKeyPath());
    EXPECT_EQ(UTF16String(), mKey.GetParentKeyPath());
    EXPECT_EQ(kSuccess, key.SetUInt32Value(Name("n"), 1));
    EXPECT_EQ(kRegistryFailure, mKey.SetUInt32Value(Name("n"), 1));
    key.Swap(mKey);
}

TEST_F(RegistryKeyTest, Text_ComesBackAsItWas)
{
    const UTF16String text = Units(u"a text with \u00e9, \u4e2d, \xD834\xDD1E and half a pair \xD800");
    EXPECT_EQ(kSuccess, mKey.SetStringValue(Name("units"), text));
    UTF16String units;
    EXPECT_EQ(kSuccess, mKey.GetStringValue(Name("units"), units));
    EXPECT_EQ(text, units);
    EXPECT_EQ(kSuccess, mKey.SetStringValue(Name("bytes"), std::string("\xC3\xA9t\xC3\xA9")));
    std::string bytes;
    EXPECT_EQ(kSuccess, mKey.GetStringValue(Name("bytes"), bytes));
    EXPECT_EQ("\xC3\xA9t\xC3\xA9", bytes);
    EXPECT_EQ(kSuccess, mKey.SetStringValue(Name("empty"), UTF16String()));
    EXPECT_EQ(kSuccess, mKey.GetStringValue(Name("empty"), units));
    EXPECT_EQ(UTF16String(), units);
    Store(mPath, Name("nothing"), 1, "", 0);
    units = text;
    EXPECT_EQ(kSuccess, mKey.GetStringValue(Name("nothing"), units));
    EXPECT_EQ(UTF16String(), units);
    Store(mPath, Name("odd"), 1, "a\0b\0c", 5);
    EXPECT_EQ(kRegistryFailure, mKey.GetStringValue(Name("odd"), units));
    EXPECT_EQ(kRegistryFailure, mKey.GetStringValue(Name("missing"), units));
    EXPECT_EQ(kSuccess, mKey.SetUInt32Value(Name("number"), 1));
    EXPECT_EQ(kRegistryFailure, mKey.GetStringValue(Name("number"), bytes));
}

TEST_F(RegistryKeyTest, BinaryData_ComesBackAsItWas)
{
    const char bytes[] = {0, 1, 2, static_cast<char>(0xFF)};
    EXPECT_EQ(kSuccess, mKey.SetBinaryValue(Name("n"), bytes, sizeof(bytes)));
    unsigned __int64 size = 0xFFFFFFFF00000000u;
    EXPECT_EQ(kSuccess, mKey.GetBinaryValue(Name("n"), nullptr, &size));
    EXPECT_EQ(4u, size);
    char buffer[8] = {};
    size = 3;
    EXPECT_EQ(kRegistryFailure, mKey.GetBinaryValue(Name("n"), buffer, &size));
    EXPECT_EQ(3u, size);
    size = 0x500000008u; // the library uses only the low 32 bits
    EXPECT_EQ(kSuccess, mKey.GetBinaryValue(Name("n"), buffer, &size));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(0, std::memcmp(bytes, buffer, 4));
    std::vector<char> data(10, 'x');
    EXPECT_EQ(kSuccess, mKey.GetBinaryValue(Name("n"), data));
    EXPECT_EQ(std::vector<char>(bytes, bytes + 4), data);
    EXPECT_EQ(kSuccess, mKey.SetBinaryValue(Name("empty"), nullptr, 0));
    EXPECT_EQ(kSuccess, mKey.GetBinaryValue(Name("empty"), data));
    EXPECT_TRUE(data.empty());
    EXPECT_EQ(kSuccess, mKey.SetUInt32Value(Name("number"), 1));
    EXPECT_EQ(kRegistryFailure, mKey.GetBinaryValue(Name("number"), data));
    size = 8;
    EXPECT_EQ(kRegistryFailure, mKey.GetBinaryValue(Name("number"), buffer, &size));
    EXPECT_EQ(8u, size);
}

TEST_F(RegistryKeyTest, TrailingBackslashes_AreIgnoredAndALeadingOneIsRefused)
{
    RegistryKey key;
    EXPECT_EQ(kSuccess, key.Create(kUser, Path(u"child\\")));
    EXPECT_EQ(kSuccess, key.Open(kUser, Path(u"child"), kRead));
    EXPECT_EQ(kSuccess, key.Open(kUser, Path(u"child\\\\"), kRead));
    EXPECT_EQ(kRegistryFailure, key.Open(kUser, Name("\\") + mPath, kRead));
    EXPECT_EQ(kRegistryFailure, key.Create(kUser, Name("\\") + mPath));
}
