#include "PlugIns.h"

#include <CheckRecorder.h>
#include <TempFolder.h>

#include <ORLApplication.h>
#include <ORLResources.h>

#include <fstream>

using namespace ORL;
using namespace ORLTest;

namespace {

int Answer(const Module& inModule)
{
    int (*const function)() = inModule.GetProcAddress("PlugInAnswer");
    return function != nullptr ? function() : -1;
}

} // namespace

TEST(Module, LoadAPlugIn_CallsItsFunction)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    EXPECT_NE(nullptr, module->GetNativeModule());
    EXPECT_EQ(42, Answer(*module));
    EXPECT_EQ(nullptr, module->GetProcAddress("PlugInQuestion"));
}

TEST(Module, LoadTwice_IsOneNativeModule)
{
    const ModulePtr first = LoadPlugIn("resources_lookup");
    const ModulePtr second = LoadPlugIn("resources_lookup");
    EXPECT_NE(first.GetPtr(), second.GetPtr());
    EXPECT_EQ(first->GetNativeModule(), second->GetNativeModule());
}

TEST(Module, Load_ReplacesWhatTheOutputHeld)
{
    ModulePtr module = LoadPlugIn("resources_lookup");
    EXPECT_EQ(kSuccess, Module::Load(LibraryPath(PlugInFile("resources_twin")), module));
    int size = 0;
    EXPECT_EQ(nullptr, module->LoadResource(MakeResourceID(300), MakeResourceID(10), size));
    EXPECT_NE(nullptr, module->LoadResource(MakeResourceID(115), MakeResourceID(10), size));
}

TEST(Module, Load_OfWhatIsNoModule_FailsWithTheOutputUntouched)
{
    const TempFolder folder;
    folder.MakeFile("text.dll", "this is a text and no module, however long it may become before it ends");
    folder.MakeFile("empty.dll", "");
    folder.MakeFile("short.dll", "MZ");
    folder.MakeFolder("folder.dll");
    const ModulePtr before = LoadPlugIn("resources_lookup");
    struct Row
    {
        UTF16String mPath;
        Result mResult;
    };
    const Row kRows[] = {
        {folder.Path(u"missing.dll"), kGeneralFailure},
        {folder.Path(u"missing\\missing.dll"), kGeneralFailure},
        {folder.Path(u"text.dll\\x.dll"), kGeneralFailure},
        {folder.Path(u"text.dll"), kGeneralFailure},
        {folder.Path(u"empty.dll"), kGeneralFailure},
        {folder.Path(u"short.dll"), kGeneralFailure},
        {folder.Path(u"folder.dll"), kAccessDenied},
        {folder.Path(u"folder.dll\\"), kGeneralFailure},
        {Units(u"Q:\\x.dll"), kGeneralFailure},
        {Units(u"no_such_module_anywhere.dll"), kGeneralFailure},
        {Units(u"a<b"), kGeneralFailure},
    };
    for (const Row& row : kRows) {
        ModulePtr module = before;
        EXPECT_EQ(row.mResult, Module::Load(row.mPath, module)) << Show(row.mPath);
        EXPECT_EQ(before.GetPtr(), module.GetPtr()) << Show(row.mPath);
    }
}

TEST(Module, LoadOfAnEmptyPath_FiresTheContractBeforeThePlatformIsAsked)
{
    CheckRecorder recorder;
    recorder.mThrow = true;
    ModulePtr module;
    EXPECT_THROW(Module::Load(UTF16String(), module), CheckRecorder::ContractError);
    EXPECT_FALSE(module);
    recorder.mThrow = false;
    EXPECT_EQ(kGeneralFailure, Module::Load(UTF16String(), module));
    EXPECT_FALSE(module);
}

TEST(Module, CreateAndLastRelease_LeaveTheModuleLoaded)
{
    const ModulePtr owner = LoadPlugIn("resources_lookup");
    ModulePtr attached;
    EXPECT_EQ(kSuccess, Module::Create(owner->GetNativeModule(), attached));
    ModulePtr second = attached;
    EXPECT_EQ(42, Answer(*second));
    attached = ModulePtr();
    second = ModulePtr();
    EXPECT_EQ(42, Answer(*owner));
    int size = 0;
    EXPECT_NE(nullptr, owner->LoadResource(MakeResourceID(300), MakeResourceID(10), size));
}

TEST(Module, LastRelease_UnloadsWhatWasLoaded)
{
    const UTF16String path = LibraryPath(PlugInFile("resources_twin"));
    for (int round = 0; round < 50; ++round) {
        ModulePtr module;
        ASSERT_EQ(kSuccess, Module::Load(path, module));
        EXPECT_EQ(42, Answer(*module));
    }
}

TEST(Module, GetPath_AsksThePlatformOnce)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    const unsigned int before = CountOfPathQueries();
    UTF16String first;
    UTF16String second = Units(u"something else");
    module->GetPath(first);
    module->GetPath(second);
    EXPECT_EQ(Show(LibraryPath(PlugInFile("resources_lookup"))), Show(first));
    EXPECT_EQ(Show(first), Show(second));
    EXPECT_EQ(before + 1, CountOfPathQueries());
}

TEST(Application, FilePath_AsksThePlatformOnce)
{
    struct Host : Application
    {
        using Application::Application;
        int Run() override { return 0; }
    };
    const ModulePtr module = LoadPlugIn("resources_lookup");
    Host host(ModulePtr(), module, UTF16String(), 0);
    const unsigned int before = CountOfPathQueries();
    EXPECT_EQ(Show(LibraryPath(PlugInFile("resources_lookup"))), Show(host.GetApplicationFilePath()));
    EXPECT_EQ(Show(LibraryPath(PlugInFile("resources_lookup"))), Show(host.GetApplicationFilePath()));
    EXPECT_EQ(before + 1, CountOfPathQueries());
}

TEST(Module, OfNullHandle_IsTheProgram)
{
    ModulePtr program;
    EXPECT_EQ(kSuccess, Module::Create(nullptr, program));
    UTF16String path;
    program->GetPath(path);
    const std::string name = Show(path);
    EXPECT_NE(std::string::npos, name.find("test_Resources")) << name;
    int size = 0;
    EXPECT_EQ(nullptr, program->LoadResource(MakeResourceID(300), MakeResourceID(10), size));
    const CheckRecorder recorder;
    EXPECT_EQ(nullptr, program->GetProcAddress("PlugInAnswer"));
    EXPECT_EQ(1u, recorder.Reports().size());
}

TEST(Module, WindowsModule_GivesItsResourcesAndPath)
{
    const std::string file = FileBeside("resources_lookup_windows.dll");
    const ModulePtr module = LoadModule(file);
    EXPECT_EQ("three hundred", AnswerOf([&](int& outSize) {
                  return module->LoadResource(MakeResourceID(300), MakeResourceID(10), outSize);
              }));
    EXPECT_EQ(nullptr, module->GetProcAddress("PlugInAnswer"));
    UTF16String path;
    module->GetPath(path);
    EXPECT_EQ(Show(LibraryPath(file)), Show(path));
}

TEST(Module, ReleaseResource_ChangesNothing)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    int size = 0;
    void* const data = module->LoadResource(MakeResourceID(300), MakeResourceID(10), size);
    module->ReleaseResource(data);
    module->ReleaseResource(data);
    EXPECT_EQ("three hundred", TextOf(data, size));
}
