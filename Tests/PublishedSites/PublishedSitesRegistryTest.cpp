// Tests the published identity of the checks in registry keys.
#include "PublishedSites.h"

#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <vector>

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;

namespace {

// A path that every operation refuses, so that nothing is opened or created.
const char* const kRefused = "\\";

void OpenBelowAnUnknownRoot()
{
    RegistryKey().Open(static_cast<RegistryRootKeys::Type>(2), MakeString(kRefused), RegistryKeyAccess::kRead);
}

void CreateBelowAnUnknownRoot()
{
    RegistryKey().Create(static_cast<RegistryRootKeys::Type>(-1), MakeString(kRefused));
}

void OpenWithUnknownAccess()
{
    RegistryKey().Open(RegistryRootKeys::kUser, MakeString(kRefused), static_cast<RegistryKeyAccess::Type>(4));
}

void SetTooMuch()
{
    std::vector<char> data(4097);
    EXPECT_EQ(kRegistryFailure, RegistryKey().SetBinaryValue(MakeString("n"), data));
}

const char* const kRoot = "inType == RegistryRootKeys::kUser";
const char* const kRootFunction = "ORL::`anonymous-namespace'::GetHKeyFromORLRegistryRootKey";

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kAssert, kRoot, "", "WinRegistryKey", 52, kRootFunction, &OpenBelowAnUnknownRoot},
    {__LINE__, PublishedSite::kAssert, kRoot, "", "WinRegistryKey", 52, kRootFunction, &CreateBelowAnUnknownRoot},
    {__LINE__, PublishedSite::kAssert,
     "(inDesiredAccess & RegistryKeyAccess::kRead) || (inDesiredAccess & RegistryKeyAccess::kWrite)", "", nullptr, 0,
     "ORL::`anonymous-namespace'::GetREGSAMFromRegistryKeyAccess", &OpenWithUnknownAccess},
    {__LINE__, PublishedSite::kAssert, "inBytes <= kMaxBinarySize",
     "ORL::RegistryKey::SetBinaryValue(): Attempt to write a value greater than 2048 bytes: size = 4097\r\n",
     "WinRegistryKey", 364, "ORL::RegistryKey::SetBinaryValue", &SetTooMuch},
};

} // namespace

TEST(PublishedSites, OfRegistryKeys_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
