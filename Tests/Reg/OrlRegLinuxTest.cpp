// Runs orl reg on stores that are damaged, full, read-only or missing.
#include <JsonLayout.h>
#include <ProcessRunner.h>
#include <TempFolder.h>
#include <UnprivilegedLinux.h>

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

const std::string kKey = "HKCU\\Software\\Tool";

class OrlRegStores : public testing::Test
{
protected:
    OrlRegStores() { ::setenv("XDG_DATA_HOME", mHome.Host().c_str(), 1); }
    ~OrlRegStores() override
    {
        if (mHadVariable) {
            ::setenv("XDG_DATA_HOME", mEarlier.c_str(), 1);
        } else {
            ::unsetenv("XDG_DATA_HOME");
        }
    }

    static ProcessResult Orl(std::vector<std::string> inArguments)
    {
        inArguments.insert(inArguments.begin(), "reg");
        return RunBesideThisProgram("orl", inArguments);
    }

    static bool Works(const std::vector<std::string>& inArguments) { return Orl(inArguments).mExitCode == 0; }

    // Returns the output of a shell command, errors included, and its exit code on the last line.
    std::string Shell(const std::string& inCommand) const
    {
        const std::string file = (mFiles.Host() / "output").string();
        const int status = std::system(("{ " + inCommand + "; } > '" + file + "' 2>&1").c_str());
        std::ifstream stream(file);
        return std::string((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>())
               + std::to_string(WEXITSTATUS(status)) + '\n';
    }

    fs::path File() const { return mHome.Host() / "ORLFoundation/user.registry"; }

    const bool mHadVariable = std::getenv("XDG_DATA_HOME") != nullptr;
    const std::string mEarlier = mHadVariable ? std::getenv("XDG_DATA_HOME") : "";
    const TempFolder mHome;
    const TempFolder mFiles;
};

} // namespace

TEST_F(OrlRegStores, DamagedStore_IsSetAsideAndReported)
{
    ASSERT_TRUE(Works({"set", kKey, "n", "v"}));
    std::ofstream(File(), std::ios::binary | std::ios::trunc) << std::string(8192, 'x');
    const ProcessResult lost = Orl({"get", kKey, "n"});
    EXPECT_EQ(1, lost.mExitCode);
    EXPECT_EQ("orl: reg get: cannot read \"n\" of \"" + kKey + "\": no such key or value\n", lost.mErrors);
    const ProcessResult check = Orl({"check"});
    EXPECT_EQ(0, check.mExitCode);
    EXPECT_NE(std::string::npos, check.mOutput.find("\n         set aside 20")) << check.mOutput;
    EXPECT_NE(std::string::npos, check.mOutput.find("user.registry.damaged-20")) << check.mOutput;
    EXPECT_NE(std::string::npos, check.mOutput.find("(file is not a database)")) << check.mOutput;
    const std::string json = WithoutLayout(Orl({"check", "--json"}).mOutput);
    EXPECT_EQ(0u, json.find(R"({"stores":[{"name":"user","whole":true,"problem":"","place":)")) << json;
    EXPECT_NE(std::string::npos, json.find(R"("setAside":[{"time":"20)")) << json;
    EXPECT_NE(std::string::npos, json.find(R"("reason":"file is not a database"}]})")) << json;
    EXPECT_TRUE(Works({"set", kKey, "n", "v"}));
}

TEST_F(OrlRegStores, LinkInTheStoresPlace_IsReportedAndLeftAlone)
{
    ASSERT_TRUE(Works({"set", kKey, "n", "v"}));
    fs::rename(File(), mFiles.Host() / "elsewhere");
    fs::create_symlink(mFiles.Host() / "elsewhere", File());
    const ProcessResult check = Orl({"check"});
    EXPECT_EQ(1, check.mExitCode);
    EXPECT_EQ(0u, check.mOutput.find("user     damaged  ")) << check.mOutput;
    EXPECT_NE(std::string::npos, check.mOutput.find("it is a link")) << check.mOutput;
    const ProcessResult json = Orl({"check", "--json"});
    EXPECT_EQ(1, json.mExitCode);
    EXPECT_NE(std::string::npos, json.mOutput.find("\"whole\": false")) << json.mOutput;
    EXPECT_EQ(1, Orl({"set", kKey, "n", "w"}).mExitCode);
}

// A limit on the file size has the same effect as a full disk.
TEST_F(OrlRegStores, StoreThatCannotGrow_FailsClearlyAndLosesNothing)
{
    ASSERT_TRUE(Works({"set", kKey, "n", "v"}));
    const std::string orl = "trap '' XFSZ; ulimit -f 8; \"" + FolderOfThisProgram() + "orl\" reg ";
    const std::string big(2 * 60000, 'a');
    std::ofstream(mFiles.Host() / "big.reg", std::ios::binary)
        << "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\Software\\Tool]\n\"n\"=\"changed\"\n\"big\"=\""
        << big << "\"\n";
    const std::string said = Shell(orl + "import '" + (mFiles.Host() / "big.reg").string() + "'");
    EXPECT_EQ(0u, said.find("orl: reg import: ")) << said;
    EXPECT_EQ("\n1\n", said.substr(said.size() - 3)) << said;
    EXPECT_EQ("v\n", Orl({"get", kKey, "n"}).mOutput);
    EXPECT_EQ(1, Orl({"get", kKey, "big"}).mExitCode);
    EXPECT_TRUE(Works({"check"}));
    EXPECT_TRUE(Works({"set", kKey, "n", "w"}));
}

TEST_F(OrlRegStores, MissingHome_IsMadeByTheFirstWriteAlone)
{
    const fs::path home = mHome.Host() / "not/there";
    ::setenv("XDG_DATA_HOME", home.c_str(), 1);
    EXPECT_EQ(1, Orl({"get", kKey, "n"}).mExitCode);
    EXPECT_TRUE(Works({"check"}));
    EXPECT_FALSE(fs::exists(mHome.Host() / "not"));
    EXPECT_TRUE(Works({"set", kKey, "n", "v"}));
    EXPECT_EQ("v\n", Orl({"get", kKey, "n"}).mOutput);
}

TEST_F(OrlRegStores, ReadOnlyHomeOfAnOrdinaryUser_CanBeReadAndNotWritten)
{
    ASSERT_TRUE(Works({"set", kKey, "n", "v"}));
    RunUnprivileged(mHome.Host(), [this] {
        const fs::path folder = File().parent_path();
        ::chmod(folder.c_str(), 0500);
        for (const auto& entry : fs::directory_iterator(folder)) {
            ::chmod(entry.path().c_str(), 0400);
        }
        EXPECT_EQ("v\n", Orl({"get", kKey, "n"}).mOutput);
        const ProcessResult set = Orl({"set", kKey, "n", "w"});
        EXPECT_EQ(1, set.mExitCode);
        EXPECT_NE(std::string::npos, set.mErrors.find("access denied")) << set.mErrors;
        EXPECT_EQ("v\n", Orl({"get", kKey, "n"}).mOutput);
        EXPECT_EQ(0, Orl({"check"}).mExitCode);
        ::chmod(folder.c_str(), 0700);
        return true;
    });
}

TEST_F(OrlRegStores, MachinesSettings_AreRefusedToAnOrdinaryUser)
{
    RunUnprivileged(mHome.Host(), [] {
        const ProcessResult set = Orl({"set", "HKLM\\Software\\ORL test", "n", "v"});
        EXPECT_EQ(1, set.mExitCode);
        EXPECT_NE(std::string::npos, set.mErrors.find("access denied")) << set.mErrors;
        return true;
    });
}
