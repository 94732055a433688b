// Tests the published identity of the checks in symbolic directories and the application object.
#include "PublishedSites.h"

#include <ORLApplication.h>
#include <ORLDirectoryRegistry.h>
#include <ORLString.h>
#include <OneResource.h>

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;

namespace {

const UTF16String kEmpty;

class Host : public Application
{
public:
    Host() : Application(ObjectPtr<Module, AtomicValue>(), ObjectPtr<Module, AtomicValue>(), kEmpty, 0) {}
    int Run() override { return 0; }
};

void MakeTwoApplications()
{
    const Host first;
    const Host second;
}

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kInputContract, "!inFullPathname.empty()", "", "DirectoryRegistry", 283, nullptr,
     [] { DirectoryRegistry::RegisterDirectory(kEmpty, MakeString("Symbol")); }},
    {__LINE__, PublishedSite::kInputContract, "!inSymbolicName.empty()", "", "DirectoryRegistry", 284, nullptr,
     [] { DirectoryRegistry::RegisterDirectory(MakeString("C:\\"), kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, "!inSymbolicName.empty()", "", "DirectoryRegistry", 296, nullptr,
     [] { DirectoryRegistry::UnregisterDirectory(kEmpty); }},
    {__LINE__, PublishedSite::kInputContract, "!inSymbolicName.empty()", "", "DirectoryRegistry", 306, nullptr,
     [] { DirectoryRegistry::FindDirectory(kEmpty); }},
    {__LINE__, PublishedSite::kAssert, "!pathname.empty()", "The symbolic directory Nowhere is not registered.\r\n",
     "DirectoryRegistry", 325, "ORL::DirectoryRegistry::FindDirectory",
     [] { DirectoryRegistry::FindDirectory(MakeString("Nowhere")); }},
    {__LINE__, PublishedSite::kAssert, "resData != 0", "", "DirectoryRegistry", 249,
     "ORL::DirectoryRegistry::RegisterDirectories",
     [] { DirectoryRegistry::RegisterDirectories(ORLTest::OneResource(1, kEmpty, ""), 2); }},
    {__LINE__, PublishedSite::kInputContract, "sInstance == NULL", "", "WinApplication", 64, nullptr,
     [] { MakeTwoApplications(); }},
};

} // namespace

TEST(PublishedSites, OfSymbolicDirectoriesAndTheApplication_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
