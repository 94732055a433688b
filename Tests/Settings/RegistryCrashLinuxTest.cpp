// Kills a process before each of its system calls in turn. An acknowledged change is in the store; a change that was
// not acknowledged is there completely or not at all.
#include "TestRegistry.h"

#include <Linux/Settings/Store/LinuxRegistryStore.h>
#include <ProcessRunner.h>
#include <TempFolder.h>
#include <TracedRunLinux.h>

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <filesystem>
#include <fstream>
#include <functional>

using namespace ORL;
using namespace ORLTest;
using ORL::Registry::Linux::ReleaseStores;

namespace {

namespace fs = std::filesystem;

constexpr auto kUser = RegistryRootKeys::kUser;

enum class Found { kOld, kNew, kBroken };

// Each part covers every fourth call, so that every test is short on a busy machine.
constexpr int kParts = 4;

class RegistryCrash : public RegistryTest, public testing::WithParamInterface<int>
{
protected:
    RegistryCrash()
    {
        mKey.SetUInt32Value(MakeString("v"), 1);
        for (const char* path : {"tree\\a\\b", "tree\\c"}) {
            RegistryKey key;
            key.Create(mKey, MakeString(path));
            key.SetUInt32Value(MakeString("n"), 1);
        }
        RegistryKey().Swap(mKey);
        ReleaseStores();
        fs::copy(mTestRegistry.Folder(), mPristine.Host() / "stores", fs::copy_options::recursive);
    }

    // Runs a program repeatedly, killed before its first, second, ... counted call, until it runs to the end. A
    // program with a ledger writes a line after its change has been acknowledged.
    void Sweep(const std::vector<std::string>& inCommand, const std::function<Found()>& inLook)
    {
        const std::string& step = inCommand[2];
        unsigned killed = 0;
        for (int call = 1 + GetParam();; call += kParts) {
            ReleaseStores();
            for (const auto& entry : fs::directory_iterator(mTestRegistry.Folder())) {
                fs::remove_all(entry.path());
            }
            fs::copy(mPristine.Host() / "stores", mTestRegistry.Folder(), fs::copy_options::recursive);
            fs::remove(Ledger());
            TracedRun run(mTestRegistry.Folder());
            const int count = run.Run(inCommand, call);
            ASSERT_LE(0, count) << "nothing can be traced here";
            const bool isAcknowledged = run.ExitCode() == 0 || (fs::exists(Ledger()) && fs::file_size(Ledger()) != 0);
            const Found found = inLook();
            ASSERT_NE(Found::kBroken, found) << step << ", killed before call " << call;
            ASSERT_TRUE(!isAcknowledged || found == Found::kNew) << step << ", killed before call " << call;
            ASSERT_EQ("", RegistryStore::Check(kUser).mProblem) << step << ", killed before call " << call;
            ASSERT_TRUE(RegistryStore::Check(kUser).mSetAside.empty());
            if (run.ExitCode() == 0) {
                break;
            }
            ++killed;
        }
        EXPECT_LT(5u, killed) << "too few calls to be the whole step";
    }

    void SweepStep(const std::string& inStep, const std::function<Found()>& inLook)
    {
        Sweep({FolderOfThisProgram() + "registry_host", "step", inStep, MakeStdString(mPath), Ledger()}, inLook);
    }

    std::string Ledger() const { return mPristine.Host().string() + "/ledger"; }

    std::string FileWith(const std::string& inText) const
    {
        const std::string file = mPristine.Host().string() + "/import.reg";
        std::ofstream(file, std::ios::binary) << inText;
        return file;
    }

    bool Exists(const char* inPath) const
    {
        return RegistryKey().Open(kUser, mPath + MakeString(inPath), RegistryKeyAccess::kRead) == kSuccess;
    }

    bool HasNumber(const char* inPath) const
    {
        RegistryValue value;
        return RegistryStore::GetValue(kUser, mPath + MakeString(inPath), MakeString("n"), value) == kSuccess;
    }

    bool HasBytes(const char* inPath, const char* inName, unsigned char inByte) const
    {
        RegistryValue value;
        return RegistryStore::GetValue(kUser, mPath + MakeString(inPath), MakeString(inName), value) == kSuccess
               && value.mData == std::vector<unsigned char>(100, inByte);
    }

    static Found AllOrNone(unsigned inCount, unsigned inAll)
    {
        return inCount == 0 ? Found::kOld : inCount == inAll ? Found::kNew : Found::kBroken;
    }

private:
    const TempFolder mPristine;
};

} // namespace

TEST_P(RegistryCrash, SetKilledAtEachCall_IsThereOrNot)
{
    SweepStep("set", [this] {
        RegistryKey key;
        unsigned value = 0;
        key.Open(kUser, mPath, RegistryKeyAccess::kRead);
        key.GetUInt32Value(MakeString("v"), value);
        return value == 1 ? Found::kOld : value == 2 ? Found::kNew : Found::kBroken;
    });
}

TEST_P(RegistryCrash, CreateKilledAtEachCall_IsThereAsAWholeOrNot)
{
    SweepStep("create", [this] {
        const unsigned count =
            unsigned{Exists("\\made")} + unsigned{Exists("\\made\\deep")} + unsigned{Exists("\\made\\deep\\deeper")};
        return AllOrNone(count, 3);
    });
}

TEST_P(RegistryCrash, DeleteOfASubtreeKilledAtEachCall_IsDoneAsAWholeOrNot)
{
    SweepStep("delete", [this] {
        const unsigned count =
            unsigned{Exists("\\tree")} + unsigned{HasNumber("\\tree\\a\\b")} + unsigned{HasNumber("\\tree\\c")};
        return count == 3 ? Found::kOld : count == 0 ? Found::kNew : Found::kBroken;
    });
}

TEST_P(RegistryCrash, SeveralEditsKilledAtEachCall_AreThereAsAWholeOrNot)
{
    SweepStep("apply", [this] {
        const unsigned count = unsigned{HasBytes("", "one", 1)} + unsigned{HasBytes("\\new", "two", 2)}
                               + unsigned{HasBytes("\\new\\newer", "three", 3)};
        return AllOrNone(count, 3);
    });
}

TEST_P(RegistryCrash, ImportKilledAtEachCall_IsDoneAsAWholeOrNot)
{
    const std::string key = "HKEY_CURRENT_USER\\" + MakeStdString(mPath);
    const std::string file = FileWith("Windows Registry Editor Version 5.00\n[" + key + "\\new]\n\"n\"=dword:1\n[" + key
                                      + "\\new\\newer]\n\"n\"=dword:2\n[-" + key + "\\tree]\n[" + key + "]\n\"v\"=-\n");
    Sweep({FolderOfThisProgram() + "orl", "reg", "import", file}, [this] {
        RegistryValue value;
        const bool hasOld = RegistryStore::GetValue(kUser, mPath, MakeString("v"), value) == kSuccess;
        const unsigned old = unsigned{hasOld} + unsigned{HasNumber("\\tree\\a\\b")} + unsigned{HasNumber("\\tree\\c")};
        const unsigned made = unsigned{HasNumber("\\new")} + unsigned{HasNumber("\\new\\newer")};
        return old == 3 && made == 0 ? Found::kOld : old == 0 && made == 2 ? Found::kNew : Found::kBroken;
    });
}

INSTANTIATE_TEST_SUITE_P(Parts, RegistryCrash, testing::Range(0, kParts));
