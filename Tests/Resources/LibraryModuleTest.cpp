// The library's own module: made at load, gone at unload.
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
