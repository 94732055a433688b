// Fails each system call that Load makes, one at a time. Afterwards the module is fully loaded or not loaded at all.
#include "PlugIns.h"

#include <FaultySystemCallsLinux.h>
#include <TempFolder.h>

#include <ORLResources.h>
#include <ORLStringResources.h>

#include <Linux/Modules/LinuxUserLanguage.h>
#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;
using Calls = FaultySystemCalls;

namespace {

struct Fault
{
    int mLine;
    Calls::Call mCall;
    int mErrno;
    Result mResult;
};

void ExpectFailures(const std::string& inFile, const std::vector<Fault>& inFaults)
{
    for (const Fault& fault : inFaults) {
        Calls calls;
        calls.Fail(fault.mCall, 1, fault.mErrno);
        ModulePtr module;
        EXPECT_EQ(fault.mResult, Module::Load(LibraryPath(inFile), module)) << "row at line " << fault.mLine;
        EXPECT_FALSE(module);
        EXPECT_EQ(calls.Count(Calls::kOpen) - (fault.mCall == Calls::kOpen ? 1 : 0), calls.Count(Calls::kClose))
            << "row at line " << fault.mLine;
    }
}

bool IsLoaded(const std::string& inFile)
{
    void* const handle = ::dlopen(inFile.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        ::dlclose(handle);
    }
    return handle != nullptr;
}

} // namespace

TEST(ModuleFaults, OfASharedObject)
{
    const std::string file = PlugInFile("resources_lookup");
    ExpectFailures(file, {
                             {__LINE__, Calls::kOpen, EACCES, kAccessDenied},
                             {__LINE__, Calls::kOpen, ENOENT, kGeneralFailure},
                             {__LINE__, Calls::kOpen, EMFILE, kGeneralFailure},
                             {__LINE__, Calls::kFStat, EIO, kGeneralFailure},
                             {__LINE__, Calls::kPRead, EIO, kGeneralFailure},
                             {__LINE__, Calls::kLoadObject, ENOMEM, kGeneralFailure},
                         });
    EXPECT_FALSE(IsLoaded(file));
}

TEST(ModuleFaults, OfADataFile)
{
    ExpectFailures(FileBeside("resources_lookup_windows.dll"),
                   {
                       {__LINE__, Calls::kOpen, EACCES, kAccessDenied},
                       {__LINE__, Calls::kFStat, EIO, kGeneralFailure},
                       {__LINE__, Calls::kPRead, EIO, kGeneralFailure},
                       {__LINE__, Calls::kMapPages, ENOMEM, kGeneralFailure},
                   });
}

TEST(ModuleFaults, DataFileReadInPieces_IsWhole)
{
    Calls calls;
    calls.Shorten(Calls::kPRead, 2, 5000);
    calls.Fail(Calls::kPRead, 3, EINTR);
    const ModulePtr module = LoadModule(FileBeside("resources_lookup_windows.dll"));
    EXPECT_EQ("three hundred", AnswerOf([&](int& outSize) {
                  return module->LoadResource(MakeResourceID(300), MakeResourceID(10), outSize);
              }));
    EXPECT_GE(calls.Count(Calls::kPRead), 4u);
}

TEST(ModuleFaults, MapsAndUnmapsADataFileOnce)
{
    Calls calls;
    LoadModule(FileBeside("resources_lookup.res"));
    EXPECT_EQ(1u, calls.Count(Calls::kMapPages));
    EXPECT_EQ(1u, calls.Count(Calls::kUnmapPages));
}

TEST(ModuleLinux, LastRelease_UnloadsTheSharedObject)
{
    const std::string file = PlugInFile("resources_twin");
    {
        const ModulePtr module = LoadModule(file);
        EXPECT_TRUE(IsLoaded(file));
    }
    EXPECT_FALSE(IsLoaded(file));
}

TEST(ModuleLinux, CompiledResourceFile_IsAModuleOfDataAlone)
{
    const ModulePtr module = LoadModule(FileBeside("resources_lookup.res"));
    const LanguageScope language(1031);
    EXPECT_EQ("null", LoadStdString(*module, 0));
    EXPECT_EQ(nullptr, module->GetProcAddress("PlugInAnswer"));
    ModulePtr attached;
    EXPECT_EQ(kSuccess, Module::Create(module->GetNativeModule(), attached));
    EXPECT_EQ("null", LoadStdString(*attached, 0));
}

TEST(ModuleLinux, DataFileCutWhileItIsLoaded_StaysWhole)
{
    const TempFolder folder;
    const std::filesystem::path copy = folder.Host() / "copy.dll";
    std::filesystem::copy_file(FileBeside("resources_lookup_windows.dll"), copy);
    const ModulePtr module = LoadModule(copy.string());
    std::filesystem::resize_file(copy, 10);
    const LanguageScope language(1031);
    EXPECT_EQ("null", LoadStdString(*module, 0));
}

TEST(ModuleLinux, FileReplacedWhileItIsLoaded_ResourcesStayThoseOfTheImage)
{
    const TempFolder folder;
    const std::filesystem::path copy = folder.Host() / "plug_in.so";
    std::filesystem::copy_file(PlugInFile("resources_lookup"), copy);
    const ModulePtr module = LoadModule(copy.string());
    std::filesystem::remove(copy);
    std::filesystem::copy_file(PlugInFile("resources_twin"), copy);
    ModulePtr attached;
    Module::Create(module->GetNativeModule(), attached);
    const LanguageScope language(1031);
    EXPECT_EQ("null", LoadStdString(*attached, 0));
}

TEST(ModuleLinux, GetProcAddress_DoesNotReachTheModulesBelow)
{
    ModulePtr module;
    ASSERT_EQ(kSuccess, Module::Load(Units(u"libm.so.6"), module));
    EXPECT_NE(nullptr, ::dlsym(module->GetNativeModule(), "malloc")) << "the loader would go on";
    EXPECT_EQ(nullptr, module->GetProcAddress("malloc"));
    EXPECT_NE(nullptr, module->GetProcAddress("cos"));
}

TEST(ModuleLinux, ModuleOfAddress_IsTheModuleThatHoldsIt)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    int (*const function)() = module->GetProcAddress("PlugInAnswer");
    ASSERT_NE(nullptr, function);
    EXPECT_EQ(module->GetNativeModule(), Resources::Linux::ModuleOfAddress(reinterpret_cast<const void*>(function)));
    int onTheStack = 0;
    EXPECT_EQ(nullptr, Resources::Linux::ModuleOfAddress(&onTheStack));
}

TEST(ModuleLinux, BareName_IsSearchedBesideTheProgramAndThenByTheLoader)
{
    ModulePtr module;
    EXPECT_EQ(kSuccess, Module::Load(Units(u"resources_twin.so"), module));
    EXPECT_EQ(kSuccess, Module::Load(Units(u"libm.so.6"), module));
    EXPECT_NE(nullptr, module->GetProcAddress("cos"));
    int size = 0;
    EXPECT_EQ(nullptr, module->LoadResource(MakeResourceID(1), MakeResourceID(10), size));
}

TEST(ModuleLinux, PathOfMoreThan259Units_IsCut)
{
    const TempFolder folder;
    const std::filesystem::path deep = folder.Host() / std::string(200, 'a') / std::string(200, 'b');
    std::filesystem::create_directories(deep);
    std::filesystem::copy_file(PlugInFile("resources_twin"), deep / "plug_in.so");
    const ModulePtr module = LoadModule((deep / "plug_in.so").string());
    UTF16String path;
    module->GetPath(path);
    EXPECT_EQ(Show(LibraryPath((deep / "plug_in.so").string())).substr(0, 259), Show(path));
}

TEST(ModuleLinux, AwkwardNames)
{
    const TempFolder folder;
    for (const char* name : {"a b.so", "\xC3\xA4\xE3\x81\x82.so", "\xFF\xFE.so", "a:b.so", "a\\b.so", ".so", "x.so."}) {
        const std::string file = (folder.Host() / name).string();
        std::filesystem::copy_file(PlugInFile("resources_twin"), file);
        const ModulePtr module = LoadModule(file);
        ASSERT_TRUE(module) << name;
        UTF16String path;
        module->GetPath(path);
        EXPECT_EQ(Show(LibraryPath(file)), Show(path));
        std::string host;
        EXPECT_EQ(kSuccess, PathUtils::ToHostPath(path, host));
        EXPECT_EQ(file, host);
    }
}

TEST(ModuleLinux, WhatIsNoFileToLoad_FailsAtOnce)
{
    const TempFolder folder;
    ASSERT_EQ(0, ::mkfifo((folder.Host() / "pipe.so").c_str(), 0600));
    ASSERT_EQ(0, ::symlink("loop.so", (folder.Host() / "loop.so").c_str()));
    ASSERT_EQ(0, ::symlink("missing", (folder.Host() / "dangling.so").c_str()));
    std::string elf(64, '\0');
    elf.replace(0, 6,
                "\x7F"
                "ELF\x01\x01");
    folder.MakeFile("other_machine.so", elf);
    folder.MakeFile("cut.so", elf.substr(0, 20));
    for (const char16_t* name : {u"pipe.so", u"loop.so", u"dangling.so", u"other_machine.so", u"cut.so"}) {
        ModulePtr module;
        EXPECT_EQ(kGeneralFailure, Module::Load(folder.Path(name), module)) << Show(Units(name));
    }
    ModulePtr module;
    EXPECT_EQ(kGeneralFailure, Module::Load(LibraryPath("/dev/null"), module));
}

TEST(ModuleLinux, LanguageOfALocalesName)
{
    struct Row
    {
        const char* mName;
        unsigned short mLanguage;
    };
    const Row kRows[] = {
        {"de_DE", 1031},       {"de_DE.UTF-8", 1031}, {"ja_JP.eucJP", 1041}, {"de_DE@euro", 1031}, {"zh_TW", 1028},
        {"pt_BR.UTF-8", 1046}, {"C", 1033},           {"C.UTF-8", 1033},     {"POSIX", 1033},      {"", 1033},
        {"de", 1033},          {"de_AT", 1033},       {"xx_YY", 1033},       {".", 1033},          {"de_DEx", 1033},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(row.mLanguage, Linux::LanguageOfLocale(row.mName)) << row.mName;
    }
}
