#include "RegistryPlace.h"

#include <Linux/Settings/LinuxRegistryPlaces.h>
#include <Linux/Settings/LinuxRegistryStore.h>
#include <TempFolder.h>

#include <cstdlib>

namespace ORLTest {

using namespace ORL::Registry::Linux;

// The stores' folders last as long as the place, and what other tests have left in memory is gone.
class RegistryPlace::Impl
{
public:
    Impl()
    {
        const char* const earlier = std::getenv("XDG_DATA_HOME");
        mHadVariable = earlier != nullptr;
        mEarlier = earlier != nullptr ? earlier : "";
        ReleaseStores();
        ::setenv("XDG_DATA_HOME", mFolder.Host().c_str(), 1);
        SetMachineFolder(mFolder.Host().string() + "/machine");
    }

    ~Impl()
    {
        ReleaseStores();
        SetMachineFolder(std::string());
        if (mHadVariable) {
            ::setenv("XDG_DATA_HOME", mEarlier.c_str(), 1);
        } else {
            ::unsetenv("XDG_DATA_HOME");
        }
    }

    const TempFolder mFolder;

private:
    bool mHadVariable;
    std::string mEarlier;
};

RegistryPlace::RegistryPlace() : mImpl(std::make_unique<Impl>())
{
}

RegistryPlace::~RegistryPlace() = default;

std::string RegistryPlace::Folder() const
{
    return mImpl->mFolder.Host().string();
}

} // namespace ORLTest
