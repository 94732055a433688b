#include "PrivateHost.h"

#include "../OwnUserStore.h"

#include <CRV/Application.h>
#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <cstdio>
#include <random>

namespace ORLTest {

namespace {

std::string UnusedName()
{
    std::random_device random;
    return "ORLTests " + std::to_string(random());
}

struct PrivateHost
{
    PrivateHost() : mName(UnusedName())
    {
        CRV::SetApplicationName(mName.c_str());
        CRV::SetApplicationVersion("5.0");
    }

    ~PrivateHost() { DeletePrivateHostSettings(); }

    const OwnUserStore mStore;
    const std::string mName;
};

} // namespace

const std::string& UsePrivateHost()
{
    static const PrivateHost sHost;
    return sHost.mName;
}

void DeletePrivateHostSettings()
{
    ORL::RegistryKey key;
    if (ORL::ResultSucceeded(key.Open(ORL::RegistryRootKeys::kUser, ORL::MakeString("Software\\Zerin"),
                                      ORL::RegistryKeyAccess::kRead | ORL::RegistryKeyAccess::kWrite))) {
        key.DeleteSubKey(ORL::MakeString(CRV::GetApplicationName()));
    }
}

} // namespace ORLTest
