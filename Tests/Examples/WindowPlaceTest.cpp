// Runs the example that remembers a window position and a language, as a user does.
#include <OwnUserStore.h>
#include <ProcessRunner.h>

#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <gtest/gtest.h>

using namespace ORLTest;

namespace {

class WindowPlaceExample : public testing::Test
{
protected:
    // On Windows the example stores its settings in the registry of the user who runs the test.
    void SetUp() override { Forget(); }
    void TearDown() override { Forget(); }

    static std::string Said(const std::vector<std::string>& inArguments)
    {
        const ProcessResult result = RunBesideThisProgram("example_window_place", inArguments);
        return result.mOutput + result.mErrors;
    }

private:
    static void Forget()
    {
        ORL::RegistryKey key;
        key.Create(ORL::RegistryRootKeys::kUser, ORL::MakeString("Software\\Zerin"));
        key.DeleteSubKey(ORL::MakeString("Window Place"));
    }

    const OwnUserStore mStore;
};

} // namespace

// A single test, because on Windows two concurrent tests would share the settings.
TEST_F(WindowPlaceExample, PlaceAndLanguage_LastFromStartToStart)
{
    EXPECT_EQ("Good day. The window stands at 100, 100.\n", Said({}));
    EXPECT_EQ("Good day. The window stands at -20, 340.\n", Said({"--move", "-20", "340"}));
    EXPECT_EQ("Good day. The window stands at -20, 340.\n", Said({"--language", "de_DE"}));
    EXPECT_EQ("Guten Tag. The window stands at -20, 340.\n", Said({}));
    EXPECT_EQ("Guten Tag. The window stands at -20, 340.\n", Said({"--language", "fr_FR"}));
    EXPECT_EQ("Bonjour. The window stands at -20, 340.\n", Said({}));
    EXPECT_EQ("example_window_place: \"x\" is no place on a screen\n", Said({"--move", "1", "x"}));
    EXPECT_EQ("example_window_place: usage: example_window_place [--move X Y] [--language NAME]\n", Said({"--where"}));
    EXPECT_EQ("Bonjour. The window stands at -20, 340.\n", Said({}));
}
