// Tests databases not written by the library: damaged, of another format, of a newer version, or in the wrong place.
#include "TestRegistry.h"

#include <Linux/Settings/Store/LinuxRegistryStore.h>
#include <TempFolder.h>

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sqlite3.h>
#include <sys/stat.h>

using namespace ORL;
using namespace ORLTest;
using ORL::Registry::Linux::ReleaseStores;

namespace {

namespace fs = std::filesystem;

constexpr auto kUser = RegistryRootKeys::kUser;
constexpr auto kAll = static_cast<RegistryKeyAccess::Type>(0);

std::string Contents(const fs::path& inFile)
{
    std::ifstream file(inFile, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void Write(const fs::path& inFile, const std::string& inContents)
{
    std::ofstream(inFile, std::ios::binary | std::ios::trunc) << inContents;
}

class RegistryHostile : public testing::Test
{
protected:
    // Creates a store with some settings, and closes it.
    RegistryHostile() : mFolder(fs::path(mTestRegistry.Folder()) / "ORLFoundation"), mFile(mFolder / "user.registry")
    {
        RegistryKey key;
        for (int i = 0; i < 40; ++i) {
            EXPECT_EQ(kSuccess, key.Create(kUser, MakeString("Software\\Tool\\key" + std::to_string(i))));
            EXPECT_EQ(kSuccess, key.SetStringValue(MakeString("text"), std::string(100, 'x')));
        }
        RegistryKey().Swap(key);
        ReleaseStores();
    }

    void Run(const char* inStatements) const
    {
        sqlite3* database = nullptr;
        ASSERT_EQ(SQLITE_OK, sqlite3_open(mFile.c_str(), &database));
        EXPECT_EQ(SQLITE_OK, sqlite3_exec(database, inStatements, nullptr, nullptr, nullptr))
            << sqlite3_errmsg(database);
        sqlite3_close(database);
    }

    static Result TryToWrite()
    {
        RegistryKey key;
        const Result created = key.Create(kUser, MakeString("Software\\Other"));
        return ResultSucceeded(created) ? key.SetUInt32Value(MakeString("n"), 5) : created;
    }

    static bool CanRead()
    {
        RegistryKey key;
        unsigned value = 0;
        return key.Open(kUser, MakeString("Software\\Other"), kAll) == kSuccess
               && key.GetUInt32Value(MakeString("n"), value) == kSuccess && value == 5;
    }

    // Expects that the database was treated as damaged: kept under another name and replaced by a new one.
    void ExpectSetAside(const std::string& inContents, const std::string& inReason)
    {
        EXPECT_EQ(kSuccess, TryToWrite());
        EXPECT_TRUE(CanRead());
        const RegistryStoreState state = RegistryStore::Check(kUser);
        EXPECT_EQ("", state.mProblem);
        ASSERT_EQ(1u, state.mSetAside.size());
        EXPECT_EQ(inContents, Contents(state.mSetAside[0].mFile));
        EXPECT_EQ(20u, state.mSetAside[0].mTime.size());
        EXPECT_NE(std::string::npos, state.mSetAside[0].mReason.find(inReason)) << state.mSetAside[0].mReason;
    }

    // Expects that the store is unchanged and every use of it fails.
    void ExpectRefused(const std::string& inProblem)
    {
        EXPECT_EQ(kRegistryFailure, TryToWrite());
        EXPECT_EQ(kRegistryFailure, RegistryKey().Open(kUser, MakeString("Software"), RegistryKeyAccess::kRead));
        const RegistryStoreState state = RegistryStore::Check(kUser);
        EXPECT_FALSE(state.mIsWhole);
        EXPECT_NE(std::string::npos, state.mProblem.find(inProblem)) << state.mProblem;
        EXPECT_TRUE(state.mSetAside.empty());
    }

    const TestRegistry mTestRegistry;
    const fs::path mFolder;
    const fs::path mFile;
};

} // namespace

TEST_F(RegistryHostile, DatabaseThatIsNone_IsSetAside)
{
    const std::string contents(5000, 'n');
    Write(mFile, contents);
    ExpectSetAside(contents, "not a database");
}

TEST_F(RegistryHostile, DatabaseThatWasCut_IsSetAside)
{
    const std::string whole = Contents(mFile);
    const std::string cut = whole.substr(0, 4096 + 2000);
    Write(mFile, cut);
    ExpectSetAside(cut, "");
}

TEST_F(RegistryHostile, DatabaseOfAnotherMake_IsSetAside)
{
    fs::remove(mFile);
    Run("PRAGMA journal_mode = DELETE; CREATE TABLE letters(sender, text); INSERT INTO letters VALUES('me', 'hello')");
    ExpectSetAside(Contents(mFile), "");
}

TEST_F(RegistryHostile, DatabaseWithATriggerOfItsOwn_IsSetAside)
{
    Run("PRAGMA journal_mode = DELETE; CREATE TRIGGER spy AFTER INSERT ON vals BEGIN DELETE FROM keys; END");
    ExpectSetAside(Contents(mFile), "");
}

TEST_F(RegistryHostile, DatabaseOfANewerVersion_IsLeftAlone)
{
    Run("PRAGMA journal_mode = DELETE; PRAGMA user_version = 2");
    const std::string contents = Contents(mFile);
    ExpectRefused("newer version");
    EXPECT_EQ(contents, Contents(mFile));
}

// Only the tables matter: an older version number with the same tables is accepted.
TEST_F(RegistryHostile, DatabaseOfAnOlderVersionWithTheSameTables_IsUsed)
{
    Run("PRAGMA journal_mode = DELETE; PRAGMA user_version = 0");
    RegistryKey key;
    EXPECT_EQ(kSuccess, key.Open(kUser, MakeString("Software\\Tool\\key7"), kAll));
    EXPECT_EQ(kSuccess, TryToWrite());
    EXPECT_TRUE(CanRead());
    EXPECT_TRUE(RegistryStore::Check(kUser).mSetAside.empty());
}

TEST_F(RegistryHostile, LinkInTheDatabasesPlace_IsRefused)
{
    const fs::path elsewhere = fs::path(mTestRegistry.Folder()) / "elsewhere";
    fs::rename(mFile, elsewhere);
    fs::create_symlink(elsewhere, mFile);
    const std::string contents = Contents(elsewhere);
    ExpectRefused("link");
    EXPECT_EQ(contents, Contents(elsewhere));
}

TEST_F(RegistryHostile, LinkInTheBoardsPlace_IsRefused)
{
    const fs::path board = mFile.string() + "-changes";
    const fs::path elsewhere = fs::path(mTestRegistry.Folder()) / "elsewhere";
    Write(elsewhere, "precious");
    fs::remove(board);
    fs::create_symlink(elsewhere, board);
    ExpectRefused("link");
    EXPECT_EQ("precious", Contents(elsewhere));
}

TEST_F(RegistryHostile, FolderInTheDatabasesPlace_IsRefused)
{
    fs::remove(mFile);
    fs::create_directory(mFile);
    ExpectRefused("link");
}

TEST_F(RegistryHostile, FolderThatEverybodyMayWrite_IsRefused)
{
    ASSERT_EQ(0, ::chmod(mFolder.c_str(), 0777));
    ExpectRefused("every user");
    ASSERT_EQ(0, ::chmod(mFolder.c_str(), 0700));
    EXPECT_EQ(kSuccess, TryToWrite());
}

// A folder above the store may be a link, which the library must follow.
TEST_F(RegistryHostile, LinkOnTheWayToTheFolder_IsFollowed)
{
    const fs::path elsewhere = fs::path(mTestRegistry.Folder()) / "elsewhere";
    fs::rename(mFolder, elsewhere);
    fs::create_directory_symlink(elsewhere, mFolder);
    EXPECT_EQ(kSuccess, TryToWrite());
    EXPECT_TRUE(fs::is_regular_file(elsewhere / "user.registry"));
}

// With any flipped bytes, nothing crashes, results follow the contract, and the store is writable in the end.
TEST_F(RegistryHostile, FlippedBytes_AreSurvived)
{
    const std::string whole = Contents(mFile);
    std::mt19937 random(7);
    unsigned noticed = 0;
    for (int round = 0; round < 60; ++round) {
        ReleaseStores();
        std::string flipped = whole;
        for (int i = 0; i < 4; ++i) {
            flipped[random() % flipped.size()] ^= static_cast<char>(1 + random() % 255);
        }
        for (const auto& entry : fs::directory_iterator(mFolder)) {
            fs::remove(entry.path());
        }
        Write(mFile, flipped);
        RegistryKey key;
        std::vector<RegistryKey> keys;
        std::string text;
        if (key.Open(kUser, MakeString("Software\\Tool"), kAll) == kSuccess) {
            key.EnumerateSubKeys(keys);
        }
        for (RegistryKey& found : keys) {
            found.GetStringValue(MakeString("text"), text);
        }
        Result result = TryToWrite();
        result = result == kSuccess ? result : TryToWrite();
        EXPECT_EQ(kSuccess, result) << "round " << round;
        const RegistryStoreState state = RegistryStore::Check(kUser);
        noticed += state.mIsWhole && state.mSetAside.empty() ? 0 : 1;
        for (const RegistryStoreState::SetAside& aside : state.mSetAside) {
            EXPECT_EQ(flipped.size(), fs::file_size(aside.mFile));
        }
    }
    EXPECT_LT(5u, noticed);
}

// Inserts a name that the API would refuse.
TEST_F(RegistryHostile, NameThatIsTooLong_EndsTheListing)
{
    Run("INSERT INTO keys SELECT 9000, id, CAST(replace(hex(zeroblob(300)), '00', 'NN') AS BLOB), "
        "CAST(replace(hex(zeroblob(300)), '00', 'NN') AS BLOB) FROM keys WHERE folded = x'54004F004F004C00'");
    RegistryKey tool;
    ASSERT_EQ(kSuccess, tool.Open(kUser, MakeString("Software\\Tool"), kAll));
    RegistryKey before;
    ASSERT_EQ(kSuccess, before.Create(tool, MakeString("0 comes first")));
    std::vector<RegistryKey> keys;
    tool.EnumerateSubKeys(keys);
    ASSERT_EQ(41u, keys.size()) << "the long name sorts behind all others";
    std::vector<UTF16String> names;
    EXPECT_EQ(kSuccess, RegistryStore::ListSubKeys(kUser, MakeString("Software\\Tool"), names));
    EXPECT_EQ(42u, names.size());
}

TEST_F(RegistryHostile, KeysInACircle_AreNoWayWithoutEnd)
{
    Run("INSERT INTO keys VALUES(9000, 9001, x'4100', x'4100'); INSERT INTO keys VALUES(9001, 9000, x'4200', x'4200');"
        "INSERT INTO keys VALUES(9002, 9002, x'4300', x'4300'); INSERT INTO keys VALUES(9003, 0, x'4400', x'4400');"
        "INSERT INTO keys VALUES(9004, 2, x'', x''); INSERT INTO vals VALUES(2, x'41', x'42', -1, 'text')");
    EXPECT_EQ(kSuccess, TryToWrite());
    std::vector<RegistryValue> values;
    EXPECT_EQ(kSuccess, RegistryStore::ListValues(kUser, MakeString("Software"), values));
    std::vector<UTF16String> names;
    EXPECT_EQ(kSuccess, RegistryStore::ListSubKeys(kUser, MakeString("Software"), names));
    EXPECT_EQ(2u, names.size());
    RegistryKey software;
    ASSERT_EQ(kSuccess, software.Open(kUser, MakeString("Software"), kAll));
    EXPECT_EQ(kSuccess, software.DeleteSubKey(MakeString("Tool")));
}
