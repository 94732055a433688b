// Tests processes that notify each other of changes, even if the shared page of notifications is deleted.
#include "TestRegistry.h"

#include <ProcessRunner.h>

#include <ORLHostSettings.h>
#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <dlfcn.h>
#include <filesystem>

using namespace ORL;
using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

class RegistryChanges : public RegistryTest
{
protected:
    RegistryChanges() { EXPECT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("v"), 1)); }

    unsigned Read() const
    {
        RegistryKey key(mKey);
        unsigned value = 0;
        EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("v"), value));
        return value;
    }

    // Sets the value to 2 in another process.
    void WriteElsewhere() const
    {
        const std::string ledger = mTestRegistry.Folder() + "/ledger";
        EXPECT_EQ(0, RunBesideThisProgram("registry_host", {"step", "set", MakeStdString(mPath), ledger}).mExitCode);
    }

    fs::path Store() const { return fs::path(mTestRegistry.Folder()) / "ORLFoundation"; }
};

} // namespace

TEST_F(RegistryChanges, DeletedPage_LeavesNoReaderBehind)
{
    for (int round = 0; round < 5; ++round) {
        EXPECT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("v"), 1));
        EXPECT_EQ(1u, Read());
        ASSERT_TRUE(fs::remove(Store() / "user.registry-changes"));
        WriteElsewhere();
        ASSERT_EQ(2u, Read()) << round;
    }
}

TEST_F(RegistryChanges, PageDeletedBeforeAWriteHere_IsMadeAnew)
{
    EXPECT_EQ(1u, Read());
    ASSERT_TRUE(fs::remove(Store() / "user.registry-changes"));
    EXPECT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("v"), 3));
    EXPECT_TRUE(fs::exists(Store() / "user.registry-changes"));
    EXPECT_EQ(3u, Read());
    WriteElsewhere();
    EXPECT_EQ(2u, Read());
}

// The other process fills the page with changes of values that this process has cached.
TEST_F(RegistryChanges, MoreChangesThanThePageHolds_AreAllSeen)
{
    constexpr unsigned kCount = 400;
    for (unsigned i = 0; i < kCount; ++i) {
        ASSERT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("value " + std::to_string(i)), 0));
    }
    EXPECT_EQ(1u, Read());
    EXPECT_EQ(
        0,
        RunBesideThisProgram("registry_host", {"fill", MakeStdString(mPath), std::to_string(kCount), "5"}).mExitCode);
    for (unsigned i = 0; i < kCount; ++i) {
        unsigned value = 0;
        ASSERT_EQ(kSuccess, mKey.GetUInt32Value(MakeString("value " + std::to_string(i)), value));
        ASSERT_EQ(5u, value) << i;
    }
}

// A plug-in may bring its own copy of the library into the process. The copy stays loaded.
TEST_F(RegistryChanges, SecondLibraryInTheProcess_SharesTheStore)
{
    void* const guest = ::dlopen((FolderOfThisProgram() + "registry_guest.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, guest) << ::dlerror();
    const auto write = reinterpret_cast<bool (*)(const char*, unsigned)>(::dlsym(guest, "WriteAsGuest"));
    const auto read = reinterpret_cast<unsigned (*)(const char*)>(::dlsym(guest, "ReadAsGuest"));
    const auto identity = reinterpret_cast<const void* (*)()>(::dlsym(guest, "GuestsLanguage"));
    ASSERT_TRUE(write != nullptr && read != nullptr && identity != nullptr);
    const void* const own = &Internal::sLanguageID;
    EXPECT_NE(own, identity()) << "the guest has a library of its own";
    const std::string path = MakeStdString(mPath);
    EXPECT_EQ(1u, read(path.c_str()));
    for (unsigned round = 2; round < 200; round += 2) {
        ASSERT_TRUE(write(path.c_str(), round));
        ASSERT_EQ(round, Read());
        ASSERT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("v"), round + 1));
        ASSERT_EQ(round + 1, read(path.c_str()));
    }
    EXPECT_TRUE(RegistryStore::Check(RegistryRootKeys::kUser).mIsWhole);
}
