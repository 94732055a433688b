// Tests DebugDatabase: debug settings that are stored in the registry.
#include <PrivateHost.h>
#include <TextHelpers.h>

#include <Diagnostics/DebugDatabaseLifecycle.h>
#include <ORLDebugDatabase.h>
#include <ORLFoundation.h>
#include <ORLHostSettings.h>
#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORL;
using namespace ORLTest;

namespace {

class DebugDatabaseTest : public testing::Test
{
protected:
    void SetUp() override
    {
        UsePrivateHost();
        DeletePrivateHostSettings();
        ReleaseDebugDatabase();
    }

    void TearDown() override { ReleaseDebugDatabase(); }

    static DebugDatabase& Database() { return DebugDatabase::Instance(); }

    static UTF16String CacheKey() { return GetRegistryBaseKey() + Units(u"DebugCache"); }

    // Returns "(none)" if the registry has no such value.
    static std::string Stored(const std::string& inName)
    {
        RegistryKey key;
        std::string value;
        const bool isThere = ResultSucceeded(key.Open(RegistryRootKeys::kUser, CacheKey(), RegistryKeyAccess::kRead))
                             && ResultSucceeded(key.GetStringValue(MakeString(inName), value));
        return isThere ? value : "(none)";
    }

    static void Store(const std::string& inName, const std::string& inValue)
    {
        RegistryKey key;
        key.Create(RegistryRootKeys::kUser, CacheKey());
        EXPECT_EQ(kSuccess, key.SetStringValue(MakeString(inName), inValue));
    }
};

// A name that is too long for the registry.
const std::string kImpossibleName(20000, 'n');

} // namespace

TEST_F(DebugDatabaseTest, GetEntryOfANewKey_WritesTheDefaultAndHasItThen)
{
    EXPECT_FALSE(Database().HasEntry("a"));
    EXPECT_EQ("one", Database().GetEntry("a", "one"));
    EXPECT_EQ("one", Stored("a"));
    EXPECT_TRUE(Database().HasEntry("a"));
}

TEST_F(DebugDatabaseTest, HasEntry_OfAKeyThatOnlyTheRegistryHas_IsFalseUntilItIsRead)
{
    Store("a", "stored");
    EXPECT_FALSE(Database().HasEntry("a"));
    EXPECT_EQ("stored", Database().GetEntry("a", "default"));
    EXPECT_TRUE(Database().HasEntry("a"));
    EXPECT_EQ("stored", Stored("a"));
}

TEST_F(DebugDatabaseTest, GetEntryOfACachedKey_IgnoresItsDefaultAndTheRegistry)
{
    EXPECT_EQ("one", Database().GetEntry("a", "one"));
    Store("a", "changed");
    EXPECT_EQ("one", Database().GetEntry("a", "two"));
    EXPECT_EQ("changed", Stored("a"));
}

TEST_F(DebugDatabaseTest, EmptyStoredText_IsTheSettingAndNotMissing)
{
    Store("a", "");
    EXPECT_EQ("", Database().GetEntry("a", "default"));
    EXPECT_EQ("", Stored("a"));
}

TEST_F(DebugDatabaseTest, StoredValueOfAnotherType_IsReplacedByTheDefault)
{
    RegistryKey key;
    key.Create(RegistryRootKeys::kUser, CacheKey());
    EXPECT_EQ(kSuccess, key.SetUInt32Value(Units(u"a"), 7));
    EXPECT_EQ("default", Database().GetEntry("a", "default"));
    EXPECT_EQ("default", Stored("a"));
}

TEST_F(DebugDatabaseTest, SetEntry_ChangesRegistryAndCache)
{
    Database().SetEntry("a", "one");
    EXPECT_TRUE(Database().HasEntry("a"));
    EXPECT_EQ("one", Stored("a"));
    Database().SetEntry("a", "two");
    EXPECT_EQ("two", Database().GetEntry("a", "default"));
    EXPECT_EQ("two", Stored("a"));
}

TEST_F(DebugDatabaseTest, SetEntryThatFails_LeavesTheCacheAsItWas)
{
    EXPECT_EQ("default", Database().GetEntry(kImpossibleName, "default"));
    EXPECT_TRUE(Database().HasEntry(kImpossibleName)); // cached although the registry rejected the name
    EXPECT_EQ("(none)", Stored(kImpossibleName));
    Database().SetEntry(kImpossibleName, "changed");
    EXPECT_EQ("default", Database().GetEntry(kImpossibleName, "other"));
    const std::string another = kImpossibleName + "2";
    Database().SetEntry(another, "value");
    EXPECT_FALSE(Database().HasEntry(another));
}

TEST_F(DebugDatabaseTest, Clear_RemovesCacheAndSubkeyAndTheDefaultComesBack)
{
    Database().SetEntry("a", "one");
    Database().SetEntry("b", "two");
    Database().Clear();
    EXPECT_FALSE(Database().HasEntry("a"));
    RegistryKey key;
    EXPECT_EQ(kFileNotFound, key.Open(RegistryRootKeys::kUser, CacheKey(), RegistryKeyAccess::kRead));
    EXPECT_EQ(kSuccess, key.Open(RegistryRootKeys::kUser, GetRegistryBaseKey(), RegistryKeyAccess::kRead));
    EXPECT_EQ("default", Database().GetEntry("a", "default"));
    EXPECT_EQ("default", Stored("a"));
    EXPECT_EQ("(none)", Stored("b"));
}

TEST_F(DebugDatabaseTest, ClearOfNothing_ChangesNothing)
{
    Database().Clear();
    EXPECT_FALSE(Database().HasEntry("a"));
    EXPECT_EQ("default", Database().GetEntry("a", "default"));
}

TEST_F(DebugDatabaseTest, NamesAndValues_AreUTF8)
{
    const std::string name = "caf\xC3\xA9 \xF0\x9F\x98\x80";
    EXPECT_EQ("\xE6\x97\xA5", Database().GetEntry(name, "\xE6\x97\xA5"));
    EXPECT_EQ("\xE6\x97\xA5", Stored(name));
    ReleaseDebugDatabase();
    EXPECT_EQ("\xE6\x97\xA5", Database().GetEntry(name, "default"));
}

TEST_F(DebugDatabaseTest, Names_DifferByCaseInTheCacheAlone)
{
    EXPECT_EQ("one", Database().GetEntry("name", "one"));
    EXPECT_FALSE(Database().HasEntry("NAME"));
    EXPECT_EQ("one", Database().GetEntry("NAME", "two")); // read from the registry, which is case-insensitive
}

TEST_F(DebugDatabaseTest, Release_EmptiesTheCacheAndKeepsTheRegistry)
{
    Database().SetEntry("a", "one");
    ReleaseDebugDatabase();
    ReleaseDebugDatabase(); // a second call does nothing
    EXPECT_FALSE(Database().HasEntry("a"));
    EXPECT_EQ("one", Database().GetEntry("a", "default"));
}

TEST_F(DebugDatabaseTest, Terminate_ReleasesTheDatabase)
{
    Foundation::Initialize();
    Database().SetEntry("a", "one");
    Foundation::Terminate();
    EXPECT_FALSE(Database().HasEntry("a"));
    EXPECT_EQ("one", Database().GetEntry("a", "default"));
}
