#include "LinuxRegistryLocations.h"

#include <Platform/Mutex.h>

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

namespace {

Mutex sMutex; // a leaf lock
std::string* sMachineFolder TVXCORE_GUARDED_BY(sMutex) = nullptr;

std::string Variable(const char* inName)
{
    const char* const value = std::getenv(inName);
    return value != nullptr && value[0] == '/' ? value : std::string();
}

std::string HomeFolder()
{
    const std::string home = Variable("HOME");
    if (!home.empty()) {
        return home;
    }
    std::vector<char> buffer(16384);
    struct passwd entry;
    struct passwd* found = nullptr;
    const bool isKnown = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0
                         && found != nullptr && found->pw_dir != nullptr && found->pw_dir[0] == '/';
    return isKnown ? found->pw_dir : std::string();
}

enum class Readers { kOwner, kAllUsers };

StoreLocation LocationIn(const std::string& inFolder, const char* inName, Readers inReaders)
{
    StoreLocation location;
    location.mFolder = inFolder + "/ORLFoundation";
    location.mDatabase = location.mFolder + "/" + inName;
    location.mIsWorldReadable = inReaders == Readers::kAllUsers;
    return location;
}

} // namespace

StoreLocation FindUserLocation()
{
    std::string data = Variable("XDG_DATA_HOME");
    if (data.empty()) {
        const std::string home = HomeFolder();
        if (home.empty()) {
            return StoreLocation();
        }
        data = home + "/.local/share";
    }
    return LocationIn(data, "user.registry", Readers::kOwner);
}

StoreLocation FindMachineLocation()
{
    const MutexLock lock(sMutex);
    return LocationIn(sMachineFolder != nullptr ? *sMachineFolder : "/var/lib", "machine.registry", Readers::kAllUsers);
}

void SetMachineFolder(const std::string& inFolder)
{
    const MutexLock lock(sMutex);
    delete sMachineFolder;
    sMachineFolder = inFolder.empty() ? nullptr : new std::string(inFolder);
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
