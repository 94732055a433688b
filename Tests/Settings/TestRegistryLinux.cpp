#include "TestRegistry.h"

#include <Linux/Settings/LinuxRegistryLocations.h>
#include <Linux/Settings/Store/LinuxRegistryStore.h>
#include <OwnUserStore.h>

namespace ORLTest {

using namespace ORL::Registry::Linux;

// Releases the stores that other tests left open, then creates the stores' folders for the lifetime of this object.
class TestRegistry::Impl
{
public:
    Impl()
    {
        ReleaseStores();
        SetMachineFolder(mStore.Folder() + "/machine");
    }

    ~Impl()
    {
        ReleaseStores();
        SetMachineFolder(std::string());
    }

    const OwnUserStore mStore;
};

TestRegistry::TestRegistry() : mImpl(std::make_unique<Impl>())
{
}

TestRegistry::~TestRegistry() = default;

std::string TestRegistry::Folder() const
{
    return mImpl->mStore.Folder();
}

} // namespace ORLTest
