// Tests the library's own module: created when the library is loaded, released when it is unloaded.
#include "PlugIns.h"

using namespace ORLTest;

TEST(LibraryModule, StaticObjectsOfAHost_UseItInConstructorAndDestructor)
{
    const ProcessResult result = RunBesideThisProgram("library_module_host", {});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const std::string expected =
        "constructor: libORLFoundation\nmain: libORLFoundation\ndestructor: libORLFoundation\n";
    EXPECT_EQ(expected, result.mOutput);
}

TEST(LibraryModule, ItsIconAndDialogs_AreThereInFiveLanguages)
{
    const ProcessResult result = RunBesideThisProgram("library_module_host", {"resources"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    std::string expected = "constructor: libORLFoundation\n";
    for (const char* const language : {"1031", "1033", "1034", "1036", "1040"}) {
        for (const char* const resource : {"14 14000", "5 14400", "5 14401"}) {
            expected += std::string(language) + " " + resource + " found\n";
        }
    }
    EXPECT_EQ(expected + "destructor: libORLFoundation\n", result.mOutput);
}
