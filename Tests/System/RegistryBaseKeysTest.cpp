// Tests the registry keys of a host's settings.
#include <PrivateHost.h>
#include <ProcessRunner.h>
#include <TextHelpers.h>

#include <ORLHostSettings.h>
#include <ORLString.h>

#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

TEST(RegistryBaseKeys, AreBuiltOnceFromTheNameAndVersionOfTheirFirstCall)
{
    const ProcessResult result = RunBesideThisProgram("settings_host", {"keys", "Editor", "5.0"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    // The host changes its name before the last of the four keys is built; the other three stay as they were.
    EXPECT_EQ("Software\\Zerin\\Editor\\5.0\\\n"
              "Software\\Zerin\\Editor\\5.0\\Settings\\\n"
              "Software\\Zerin\\Editor\\5.0\\Help\\\n"
              "Software\\Zerin\\another name\\CurrentVersion\n",
              result.mOutput);
}

TEST(RegistryBaseKeys, OfTheCurrentVersion_HasNeitherTheVersionNorABackslashAtItsEnd)
{
    const ProcessResult result = RunBesideThisProgram("settings_host", {"current-version", "Editor", "5.0"});
    EXPECT_EQ("Software\\Zerin\\Editor\\CurrentVersion\n", result.mOutput);
}

TEST(RegistryBaseKeys, OnEightThreads_AreOneTextEach)
{
    UsePrivateHost();
    std::vector<const UTF16String*> seen(32);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 8; ++i) {
        threads.emplace_back([&seen, i] {
            seen[4 * i] = &GetRegistrySettingsKey();
            seen[4 * i + 1] = &GetRegistryHelpKey();
            seen[4 * i + 2] = &GetRegistryCurrentVersionKey();
            seen[4 * i + 3] = &GetRegistryBaseKey();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const UTF16String base = MakeString("Software\\Zerin\\" + UsePrivateHost() + "\\5.0\\");
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(&GetRegistrySettingsKey(), seen[4 * i]);
        EXPECT_EQ(base + MakeString("Settings\\"), *seen[4 * i]);
        EXPECT_EQ(base + MakeString("Help\\"), *seen[4 * i + 1]);
        EXPECT_EQ(MakeString("Software\\Zerin\\" + UsePrivateHost() + "\\CurrentVersion"), *seen[4 * i + 2]);
        EXPECT_EQ(base, *seen[4 * i + 3]);
    }
}
