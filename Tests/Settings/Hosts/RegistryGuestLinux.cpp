// A module linked to the shared libraries, for a process that contains another copy of the library.
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

// Returns the address of a variable that exists once in each copy of the library.
GUEST_EXPORT const void* GuestsLanguage()
{
    return &ORL::Internal::sLanguageID;
}
