// Runs the plug-in example as a user does.
#include <ProcessRunner.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

TEST(PlugInsExample, TwoPlugIns_AreListedInOrderAndTheOneThatThrowsCostsOneLine)
{
    const ProcessResult result = RunBesideThisProgram("example_plugins", {});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ("", result.mErrors);
    EXPECT_EQ("loaded plugin_levels\n"
              "loaded plugin_shapes\n"
              "effects, on 0.20 -0.50 1.00 0.00:\n"
              "  0  halve             0.10 -0.25  0.50  0.00\n"
              "  1  invert           -0.20  0.50 -1.00  0.00\n"
              "  2  clip              0.20 -0.50  0.50  0.00\n"
              "  3  cannot be made: this effect has no licence here\n"
              "  4  clip, inverted   -0.20  0.50 -0.50  0.00\n"
              "by identifier: invert\n",
              result.mOutput);
}

TEST(PlugInsExample, ClassOfAPlugInThatIsNotLoaded_CannotBeUsedByTheOther)
{
    const ProcessResult result = RunBesideThisProgram("example_plugins", {"plugin_shapes"});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ("", result.mErrors);
    EXPECT_NE(std::string::npos, result.mOutput.find("  0  clip "));
    EXPECT_NE(std::string::npos, result.mOutput.find("  1  cannot be made: this effect has no licence here\n"));
    EXPECT_NE(std::string::npos, result.mOutput.find("  2  cannot be made: "));
    EXPECT_NE(std::string::npos, result.mOutput.find("by identifier: nobody has registered it\n"));
}

TEST(PlugInsExample, SamePlugInTwice_StandsTwiceInTheCategory)
{
    const ProcessResult result = RunBesideThisProgram("example_plugins", {"plugin_levels", "plugin_levels"});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mOutput.find("  0  halve "));
    EXPECT_NE(std::string::npos, result.mOutput.find("  2  halve "));
    EXPECT_NE(std::string::npos, result.mOutput.find("  3  invert "));
    EXPECT_EQ(std::string::npos, result.mOutput.find("\n  4  "));
}

TEST(PlugInsExample, MissingPlugIn_IsOneLineAndTheOthersWork)
{
    const ProcessResult result = RunBesideThisProgram("example_plugins", {"plugin_of_nobody", "plugin_levels"});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ(0u, result.mErrors.find("example_plugins: "));
    EXPECT_NE(std::string::npos, result.mErrors.find("plugin_of_nobody"));
    EXPECT_EQ(result.mErrors.size() - 1, result.mErrors.find('\n')) << result.mErrors;
    EXPECT_NE(std::string::npos, result.mOutput.find("  1  invert "));
}

TEST(PlugInsExample, NoPlugInAtAll_EndsWithOne)
{
    const ProcessResult result = RunBesideThisProgram("example_plugins", {"plugin_of_nobody"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mOutput.find("by identifier: nobody has registered it\n"));
}
