// Fails each allocation while modules are loaded and queried.
#include "MemoryFaults.h"

#include <ProcessRunner.h>

#include <ORLHostPath.h>
#include <ORLModule.h>
#include <ORLResourceFile.h>
#include <ORLResources.h>
#include <ORLResult.h>
#include <ORLStringResources.h>

using namespace ORL;
using namespace ORLTest;

namespace {

UTF16String PathBeside(const char* inName)
{
    return PathUtils::FromHostPath(FolderOfThisProgram() + inName);
}

void LoadAndAsk(const UTF16String& inPath)
{
    ObjectPtr<Module, AtomicValue> module;
    const int result = Module::Load(inPath, module);
    if (result != kSuccess) {
        EXPECT_EQ(kGeneralFailure, result);
        EXPECT_FALSE(module);
        throw std::bad_alloc(); // if the pages for a file cannot be allocated, the load fails and does not throw
    }
    EXPECT_EQ(4u, LoadStringW(*module, 0).size());
    int size = 0;
    const UTF16String type(TVX_UTF16("\u00E4rger"));
    EXPECT_EQ(nullptr, module->LoadResource(MakeResourceID(1), type.c_str(), size));
    Resources::Linux::CursorPicture picture;
    EXPECT_TRUE(Resources::Linux::GetCursorPicture(module->LoadCursorW(3), picture));
    const HMENU menu = module->LoadMenuW(1);
    EXPECT_EQ(2, Resources::Linux::GetMenuItemCount(menu));
    Resources::Linux::DestroyMenu(menu);
    UTF16String path;
    module->GetPath(path);
    EXPECT_FALSE(path.empty());
}

void Sweep(const char* inName)
{
    const UTF16String path = PathBeside(inName);
    SweepMemory([&] { LoadAndAsk(path); }, [] {});
}

} // namespace

TEST(ResourcesSweep, WindowsModule_WithEachRequestRefused_LeavesNothingBehind)
{
    Sweep("resources_lookup_windows.dll");
}

TEST(ResourcesSweep, CompiledFile_WithEachRequestRefused_LeavesNothingBehind)
{
    Sweep("resources_lookup.res");
}

TEST(ResourcesSweep, ResourceFile_WithEachRequestRefused_LeavesNothingBehind)
{
    const UTF16String path = PathBeside("resources_lookup.res");
    SweepMemory(
        [&] {
            Resources::ResourceFile file;
            EXPECT_EQ(kSuccess, file.Open(path));
            EXPECT_GT(file.GetEntries().size(), 50u);
        },
        [] {});
}
