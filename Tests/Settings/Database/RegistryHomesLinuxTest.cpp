// Tests the registry with home folders that are missing, read-only or owned by another user, in forked children, and
// on file systems without shared memory.
#include "TestRegistry.h"

#include <FaultySystemCallsLinux.h>
#include <Linux/Settings/LinuxRegistryLocations.h>
#include <Linux/Settings/Store/LinuxRegistryStore.h>
#include <TempFolder.h>
#include <UnprivilegedLinux.h>

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;
using ORL::Registry::Linux::ReleaseStores;

namespace {

namespace fs = std::filesystem;

constexpr auto kUser = RegistryRootKeys::kUser;
constexpr auto kMachine = RegistryRootKeys::kMachine;
constexpr auto kAll = static_cast<RegistryKeyAccess::Type>(0);

UTF16String Tool()
{
    return MakeString("Software\\Tool");
}

Result Write(unsigned inValue, RegistryRootKeys::Type inRoot = kUser)
{
    RegistryKey key;
    const Result created = key.Create(inRoot, Tool());
    return ResultSucceeded(created) ? key.SetUInt32Value(MakeString("n"), inValue) : created;
}

// Returns the value, or 0 if it is missing.
unsigned Read(RegistryRootKeys::Type inRoot = kUser)
{
    RegistryKey key;
    unsigned value = 0;
    if (key.Open(inRoot, Tool(), RegistryKeyAccess::kRead) == kSuccess) {
        key.GetUInt32Value(MakeString("n"), value);
    }
    return value;
}

unsigned ModeOf(const fs::path& inPath)
{
    struct stat status;
    return ::stat(inPath.c_str(), &status) == 0 ? status.st_mode & 0777u : 0;
}

class RegistryHomes : public testing::Test
{
protected:
    fs::path Home() const { return mTestRegistry.Folder(); }
    fs::path File() const { return Home() / "ORLFoundation/user.registry"; }

    const TestRegistry mTestRegistry;
};

// Runs inWork in a forked child, and returns its result.
bool InChild(const std::function<bool()>& inWork)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(inWork() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

TEST_F(RegistryHomes, ReadingAlone_CreatesNothing)
{
    EXPECT_EQ(kFileNotFound, RegistryKey().Open(kUser, Tool(), kAll));
    EXPECT_EQ(kSuccess, RegistryKey().Open(kUser, MakeString("Software"), kAll));
    std::vector<UTF16String> names;
    EXPECT_EQ(kSuccess, RegistryStore::ListSubKeys(kUser, UTF16String(), names));
    EXPECT_EQ(std::vector<UTF16String>{MakeString("Software")}, names);
    EXPECT_TRUE(RegistryStore::Check(kUser).mIsWhole);
    EXPECT_TRUE(fs::is_empty(Home()));
}

TEST_F(RegistryHomes, MissingHome_IsMadeByTheFirstWrite)
{
    const std::string home = Home().string() + "/not/there/yet";
    ::setenv("XDG_DATA_HOME", home.c_str(), 1);
    RegistryKey early;
    ASSERT_EQ(kSuccess, early.Open(kUser, MakeString("Software"), kAll));
    EXPECT_EQ(0u, Read());
    EXPECT_FALSE(fs::exists(Home() / "not"));
    EXPECT_EQ(kSuccess, Write(1));
    EXPECT_EQ(1u, Read());
    EXPECT_EQ(0700u, ModeOf(home + "/ORLFoundation"));
    EXPECT_EQ(0600u, ModeOf(home + "/ORLFoundation/user.registry"));
    EXPECT_EQ(0600u, ModeOf(home + "/ORLFoundation/user.registry-wal"));
    EXPECT_EQ(kSuccess, early.SetUInt32Value(MakeString("n"), 2)) << "a handle from before";
}

TEST_F(RegistryHomes, DataFolder_IsFoundBelowTheHome)
{
    const char* const home = std::getenv("HOME");
    const std::string earlier = home != nullptr ? home : "";
    ::setenv("HOME", Home().c_str(), 1);
    ::setenv("XDG_DATA_HOME", "relative/paths/do/not/count", 1);
    EXPECT_EQ(Home().string() + "/.local/share/ORLFoundation", Registry::Linux::FindUserLocation().mFolder);
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(kSuccess, Write(1));
    EXPECT_TRUE(fs::exists(Home() / ".local/share/ORLFoundation/user.registry"));
    ::unsetenv("HOME");
    EXPECT_FALSE(Registry::Linux::FindUserLocation().mFolder.empty()) << "the system knows the user's home";
    ::setenv("HOME", earlier.c_str(), 1);
    EXPECT_EQ("/var/lib/ORLFoundation/machine.registry", [] {
        Registry::Linux::SetMachineFolder("");
        return Registry::Linux::FindMachineLocation().mDatabase;
    }());
}

TEST_F(RegistryHomes, ReadOnlyHome_CanBeReadAndRefusesEachWrite)
{
    ASSERT_EQ(kSuccess, Write(7));
    ReleaseStores();
    const fs::path folder = File().parent_path();
    RunUnprivileged(Home(), [&] {
        ::chmod(folder.c_str(), 0500);
        for (const auto& entry : fs::directory_iterator(folder)) {
            ::chmod(entry.path().c_str(), 0400);
        }
        RegistryKey key;
        EXPECT_EQ(7u, Read());
        EXPECT_EQ(kSuccess, key.Open(kUser, Tool(), kAll));
        EXPECT_EQ(kRegistryFailure, key.SetUInt32Value(MakeString("n"), 8));
        EXPECT_EQ(kRegistryFailure, key.DeleteValue(MakeString("n")));
        EXPECT_EQ(kRegistryFailure, RegistryKey().Create(key, MakeString("new")));
        EXPECT_EQ(kRegistryFailure, RegistryKey(key).DeleteSubKey(UTF16String()));
        EXPECT_EQ(7u, Read());
        EXPECT_TRUE(RegistryStore::Check(kUser).mIsWhole);
        return true;
    });
    ::chmod(folder.c_str(), 0700);
}

TEST_F(RegistryHomes, ReadOnlyHomeWithoutAStore_RefusesEachWrite)
{
    RunUnprivileged(Home(), [&] {
        ::chmod(Home().c_str(), 0500);
        EXPECT_EQ(0u, Read());
        EXPECT_EQ(kRegistryFailure, Write(1));
        EXPECT_EQ(kAccessDenied, RegistryStore::Apply({{RegistryEdit::kCreateKey, kUser, Tool(), {}}}));
        return true;
    });
    ::chmod(Home().c_str(), 0700);
}

// An ordinary user can read the machine's settings but not change them.
TEST_F(RegistryHomes, MachinesStore_IsReadByAllAndWrittenByItsOwner)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can make a store that belongs to another user";
    }
    const mode_t earlier = ::umask(077);
    EXPECT_EQ(kSuccess, Write(7, kMachine));
    ::umask(earlier);
    ReleaseStores();
    ::chmod(Home().c_str(), 0755);
    ::chmod((Home() / "machine").c_str(), 0755);
    ::chmod((Home() / "machine/ORLFoundation").c_str(), 0755);
    EXPECT_EQ(0644u, ModeOf(Home() / "machine/ORLFoundation/machine.registry"));
    const TempFolder own;
    RunUnprivileged(own.Host(), [] {
        EXPECT_EQ(7u, Read(kMachine));
        EXPECT_EQ(kSuccess, RegistryKey().Open(kMachine, MakeString("Software"), RegistryKeyAccess::kRead));
        EXPECT_EQ(kRegistryFailure, RegistryKey().Open(kMachine, Tool(), kAll));
        EXPECT_EQ(kRegistryFailure, RegistryKey().Open(kMachine, Tool(), RegistryKeyAccess::kWrite));
        EXPECT_EQ(kRegistryFailure, RegistryKey().Create(kMachine, MakeString("Software\\HeldOutProbe")));
        EXPECT_EQ(kAccessDenied, RegistryStore::Apply({{RegistryEdit::kDeleteKey, kMachine, Tool(), {}}}));
        RegistryKey software;
        EXPECT_EQ(kSuccess, software.Open(kMachine, MakeString("Software"), RegistryKeyAccess::kRead));
        EXPECT_EQ(kRegistryFailure, software.DeleteSubKey(MakeString("Tool")));
        EXPECT_EQ(kFileNotFound, software.DeleteSubKey(MakeString("missing")));
        return true;
    });
    EXPECT_EQ(7u, Read(kMachine));
}

TEST_F(RegistryHomes, ChildOfFork_HasAConnectionOfItsOwn)
{
    ASSERT_EQ(kSuccess, Write(1));
    RegistryKey key;
    ASSERT_EQ(kSuccess, key.Open(kUser, Tool(), kAll));
    EXPECT_TRUE(InChild([&] {
        unsigned value = 0;
        return key.GetUInt32Value(MakeString("n"), value) == kSuccess && value == 1
               && key.SetUInt32Value(MakeString("n"), 2) == kSuccess
               && key.GetUInt32Value(MakeString("n"), value) == kSuccess && value == 2
               && ResultSucceeded(RegistryKey().Create(key, MakeString("child")));
    }));
    unsigned value = 0;
    EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("n"), value));
    EXPECT_EQ(2u, value);
    EXPECT_EQ(kSuccess, key.SetUInt32Value(MakeString("n"), 3));
    EXPECT_EQ(kSuccess, RegistryKey().Open(key, MakeString("child")));
    EXPECT_TRUE(RegistryStore::Check(kUser).mIsWhole);
}

// fork waits until other threads have left the store, so that the child can use it.
TEST_F(RegistryHomes, ForkBesideThreadsAtWork_LeavesAStoreThatWorks)
{
    ASSERT_EQ(kSuccess, Write(1));
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&isOver, i] {
            RegistryKey key;
            key.Create(kUser, Tool());
            const UTF16String name = MakeString("thread" + std::to_string(i));
            for (unsigned round = 0; !isOver; ++round) {
                EXPECT_EQ(kSuccess, key.SetUInt32Value(name, round));
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(InChild([] { return Write(2) == kSuccess && Read() == 2; }));
    }
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(RegistryStore::Check(kUser).mIsWhole);
}

// Without shared memory every read queries the database.
TEST_F(RegistryHomes, FileSystemWithoutSharedMemory_IsAskedAtEachRead)
{
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kMapShared, 1, ENODEV, FaultySystemCalls::kForEver);
    ASSERT_EQ(kSuccess, Write(1));
    RegistryKey key;
    RegistryKey child;
    ASSERT_EQ(kSuccess, key.Open(kUser, Tool(), kAll));
    ASSERT_EQ(kSuccess, child.Create(key, MakeString("child")));
    EXPECT_EQ(1u, Read());
    EXPECT_FALSE(fs::exists(File().string() + "-wal"));
    sqlite3* other = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(File().c_str(), &other));
    ASSERT_EQ(SQLITE_OK,
              sqlite3_exec(other,
                           "UPDATE vals SET data = x'05000000'; DELETE FROM keys WHERE name = x'6300680069006C006400'",
                           nullptr, nullptr, nullptr))
        << sqlite3_errmsg(other);
    EXPECT_EQ(5u, Read());
    EXPECT_EQ(kRegistryFailure, child.SetUInt32Value(MakeString("n"), 1));
    EXPECT_EQ(kSuccess, key.SetUInt32Value(MakeString("n"), 6));
    EXPECT_EQ(6u, Read());
    sqlite3_close(other);
}

TEST_F(RegistryHomes, DatabaseRemovedUnderneath_IsNoticedByTheNextWriteAndMadeAnew)
{
    ASSERT_EQ(kSuccess, Write(1));
    fs::remove_all(File().parent_path());
    Write(2); // may fail: the cached key was deleted with the database
    EXPECT_EQ(kSuccess, Write(2)) << "into the file that the name leads to";
    ReleaseStores();
    EXPECT_EQ(2u, Read());
}
