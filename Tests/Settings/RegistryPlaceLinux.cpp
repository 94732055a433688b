#include "RegistryPlace.h"

#include <Linux/Settings/LinuxRegistryPlaces.h>
#include <Linux/Settings/LinuxRegistryStore.h>
#include <OwnUserStore.h>

namespace ORLTest {

using namespace ORL::Registry::Linux;

// The stores' folders exist as long as the place. The stores that other tests left open are released first.
class RegistryPlace::Impl
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

RegistryPlace::RegistryPlace() : mImpl(std::make_unique<Impl>())
{
}

RegistryPlace::~RegistryPlace() = default;

std::string RegistryPlace::Folder() const
{
    return mImpl->mStore.Folder();
}

} // namespace ORLTest
