// A module that is linked to the shared libraries, for a process that has the library in itself.
#include <ORLHostSettings.h>
#include <ORLRegistryKey.h>
#include <ORLString.h>

#define GUEST_EXPORT extern "C" __attribute__((visibility("default")))

GUEST_EXPORT bool WriteAsGuest(const char* inPath, unsigned inValue)
{
    ORL::RegistryKey key;
    return ORL::ResultSucceeded(key.Create(ORL::RegistryRootKeys::kUser, ORL::MakeString(inPath)))
           && key.SetUInt32Value(ORL::MakeString("v"), inValue) == ORL::kSuccess;
}

GUEST_EXPORT unsigned ReadAsGuest(const char* inPath)
{
    ORL::RegistryKey key;
    unsigned value = 0;
    if (key.Open(ORL::RegistryRootKeys::kUser, ORL::MakeString(inPath), ORL::RegistryKeyAccess::kRead)
        == ORL::kSuccess) {
        key.GetUInt32Value(ORL::MakeString("v"), value);
    }
    return value;
}

// The address of something that each library has one of.
GUEST_EXPORT const void* GuestsLanguage()
{
    return &ORL::Internal::sLanguageID;
}
