// Tests the published identity of the checks in modules and string tables. The check "length > 0" in line 449 of
// StringUtils cannot fail, because a string of length 0 counts as missing.
#include "../PublishedSites/PublishedSites.h"
#include "PlugIns.h"
#include <ExpectReport.h>

#include <ORLStringResources.h>
#include <Platform/Modules.h>
#include <System/LibraryModule.h>

#include <new>

using namespace ORL;
using namespace ORLTest;

namespace {

bool sFailsToLoad = false;
bool sFailsToOpen = false;

} // namespace

#define ORL_MANGLED_LOAD "_ZN3ORL7Modules8Platform17LoadResource_ImplERKNS1_6SourceEPKvRi"
extern "C" void* RealLoad(const Modules::Platform::Source&, const void*, int&) __asm__("__real_" ORL_MANGLED_LOAD);
extern "C" void* WrappedLoad(const Modules::Platform::Source&, const void*, int&) __asm__("__wrap_" ORL_MANGLED_LOAD);
extern "C" void* WrappedLoad(const Modules::Platform::Source& inSource, const void* inResource, int& outSize)
{
    return sFailsToLoad ? nullptr : RealLoad(inSource, inResource, outSize);
}

#define ORL_MANGLED_OPEN "_ZN3ORL7Modules8Platform18OpenResources_ImplEP11HINSTANCE__"
extern "C" Modules::ResourceStore* RealOpen(HINSTANCE) __asm__("__real_" ORL_MANGLED_OPEN);
extern "C" Modules::ResourceStore* WrappedOpen(HINSTANCE) __asm__("__wrap_" ORL_MANGLED_OPEN);
extern "C" Modules::ResourceStore* WrappedOpen(HINSTANCE inModule)
{
    if (sFailsToOpen) {
        throw std::bad_alloc();
    }
    return RealOpen(inModule);
}

namespace {

const unsigned short* const kRawData = MakeResourceID(10);
const unsigned short* const kMissing = MakeResourceID(9999);
const unsigned short* const kPresent = MakeResourceID(115);

Module& ThePlugIn()
{
    static const ModulePtr sModule = LoadPlugIn("resources_lookup");
    return *sModule;
}

struct FailingLoads
{
    FailingLoads() { sFailsToLoad = true; }
    ~FailingLoads() { sFailsToLoad = false; }
};

void LoadEmptyPath()
{
    ModulePtr module;
    Module::Load(UTF16String(), module);
}

void AskNullModule()
{
    ModulePtr module;
    Module::Create(nullptr, module);
    module->GetProcAddress("main");
}

void FailToLoadLocalized()
{
    const FailingLoads failing;
    int size = 5;
    EXPECT_EQ(nullptr, ThePlugIn().FindLocalizedResource(kPresent, kRawData, size));
    EXPECT_EQ(5, size);
}

void FailToLoadEnglish()
{
    const FailingLoads failing;
    int size = 5;
    EXPECT_EQ(nullptr, ThePlugIn().FindNonLocalizedResource(kPresent, kRawData, size));
    EXPECT_EQ(5, size);
}

// The library cannot create its own module; the host continues without it.
void LoadLibraryWithoutMemory()
{
    sFailsToOpen = true;
    OnLibraryLoad(nullptr);
    sFailsToOpen = false;
    EXPECT_FALSE(GetLibraryModule());
    OnLibraryUnload();
}

// Provides one block that exists only in American English.
class EnglishBlock : public ResourceCollection
{
public:
    explicit EnglishBlock(bool inIsLocalized, int inSize) : mIsLocalized(inIsLocalized), mSize(inSize) {}

    void* FindLocalizedResource(const unsigned short*, const unsigned short*, int& outSize) const override
    {
        return mIsLocalized ? Block(outSize) : nullptr;
    }
    void* FindNonLocalizedResource(const unsigned short*, const unsigned short*, int& outSize) const override
    {
        return Block(outSize);
    }
    void* LoadResource(const unsigned short*, const unsigned short*, int&) const override { return nullptr; }
    void* LoadResource(short, const UTF16String&, int&) const override { return nullptr; }
    void* LoadFirstResourceOfType(const unsigned short*, int&) const override { return nullptr; }
    void ReleaseResource(void*) const override {}
    OSImageHandle LoadBitmapW(short, bool) override { return OSImageHandle(); }
    OSImageHandle LoadBitmapFromFile(UTF16String, bool) override { return OSImageHandle(); }
    OSImageHandle LoadBitmapWTL(short, bool) override { return OSImageHandle(); }
    void* LoadCursorW(short) const override { return nullptr; }
    HMENU LoadMenuW(short) const override { return nullptr; }

private:
    void* Block(int& outSize) const
    {
        static unsigned short sBlock[17] = {1, 'a'};
        outSize = mSize;
        return sBlock;
    }

    const bool mIsLocalized;
    const int mSize;
};

const char* const kFind = "ORL::`anonymous-namespace'::FindStringInResource";

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kInputContract, "!inModulePath.empty()", "", "WinModule", 615, "", &LoadEmptyPath},
    {__LINE__, PublishedSite::kInputContract, "!inProcName.empty()", "", "WinModule", 707, "",
     [] { ThePlugIn().GetProcAddress(std::string()); }},
    {__LINE__, PublishedSite::kAssert, "mNativeModule != NULL", "", "WinModule", 708, "ORL::Module::GetProcAddress",
     &AskNullModule},
    {__LINE__, PublishedSite::kAssert, "false", "", "WinModule", 739, "ORL::Module::FindLocalizedResource",
     [] {
         int size = 0;
         ThePlugIn().FindLocalizedResource(kMissing, kRawData, size);
     }},
    {__LINE__, PublishedSite::kAssert, "false", "", "WinModule", 746, "ORL::Module::FindLocalizedResource",
     &FailToLoadLocalized},
    {__LINE__, PublishedSite::kAssert, "rsrc != NULL", "", "WinModule", 765, "ORL::Module::FindNonLocalizedResource",
     [] {
         int size = 0;
         ThePlugIn().FindNonLocalizedResource(kMissing, kRawData, size);
     }},
    {__LINE__, PublishedSite::kAssert, "hGlobal != NULL", "", "WinModule", 772, "ORL::Module::FindNonLocalizedResource",
     &FailToLoadEnglish},
    {__LINE__, PublishedSite::kAssert, "ORL::ResultSucceeded(moduleLoaded)", "", "WinDLLMain", 51, "DllMain",
     &LoadLibraryWithoutMemory},
    {__LINE__, PublishedSite::kAssert, "rsrc != NULL", "", "StringUtils", 293, kFind,
     [] { EXPECT_EQ(1u, LoadStringW(EnglishBlock(false, 34), 0).size()); }},
    {__LINE__, PublishedSite::kAssert, "data < dataEnd", "", "StringUtils", 308, kFind,
     [] { EXPECT_EQ(0u, LoadStringW(EnglishBlock(true, 4), 1).size()); }},
};

} // namespace

TEST(PublishedSites, OfModulesAndStringTables_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}

// The lookup before the check also reports the missing menu.
TEST(PublishedSites, OfAMissingMenu_IsReportedAsPublished)
{
    const CheckRecorder recorder;
    EXPECT_EQ(nullptr, ThePlugIn().LoadMenuW(9999));
    const auto reports = recorder.Reports();
    ASSERT_EQ(2u, reports.size());
    ExpectReport(reports[0]).Line(739);
    ExpectReport(reports[1])
        .Expression("menuResource != NULL")
        .File("WinModule")
        .Line(936)
        .Function("ORL::Module::LoadMenuW");
}
