#include <tvxcore/ErrorManager.h>

#include <CorePlatform/StandardError.h>
#include <Reports/StandardError.h>
#include <Text/ZString.h>
#include <tvxcore/Localizer.h>
#include <tvxcore/Text.h>

#include <atomic>
#include <new>

namespace tvxcore {
namespace config {

namespace {

std::atomic<ErrorManager*> sInstalled{nullptr};

ErrorManager& BuiltInManager()
{
    // The manager is in static storage and never destroyed: errors may be raised during process exit.
    alignas(ErrorManager) static unsigned char storage[sizeof(ErrorManager)];
    static ErrorManager* const manager = new (storage) ErrorManager;
    return *manager;
}

// Set while this thread localises the message of an error: a localiser may itself raise one.
thread_local bool tIsLocalizing = false;

struct LocalizingMark
{
    LocalizingMark() { tIsLocalizing = true; }
    ~LocalizingMark() { tIsLocalizing = false; }
    LocalizingMark(const LocalizingMark&) = delete;
    LocalizingMark& operator=(const LocalizingMark&) = delete;
};

void WriteError(ErrorLevel inLevel, const char* inText, unsigned long inPackage, long inErrorID)
{
    debug::WriteStandardErrorLine("Error %ld of package %lu, level %d: %s", inErrorID, inPackage,
                                  static_cast<int>(inLevel), inText);
}

// Returns false, and writes nothing, if the message cannot be localised now.
bool WriteLocalizedError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID)
{
    if (tIsLocalizing) {
        return false;
    }
    const debug::Platform::SystemErrorKeeper keeper; // the caller may still read its errno or last error
    const LocalizingMark mark;
    try {
        const UTF8String text = utility::UTF16to8(Localizer::Get()->Localize(inZString));
        WriteError(inLevel, reinterpret_cast<const char*>(text.c_str()), inPackage, inErrorID);
        return true;
    } catch (...) {
        return false; // neither exhausted memory nor a failing localiser may hide the error
    }
}

} // namespace

ReplacementValue::ReplacementValue() noexcept = default;
ReplacementValue::~ReplacementValue() = default;

ErrorManager::~ErrorManager() = default;

bool ErrorManager::OnAllocationFailure(std::size_t)
{
    return false;
}

void ErrorManager::ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool,
                              const ReplacementValue&, const ReplacementValue&, const ReplacementValue&,
                              const ReplacementValue&) const
{
    if (!WriteLocalizedError(inLevel, inZString, inPackage, inErrorID)) {
        WriteError(inLevel, DefaultText(inZString), inPackage, inErrorID);
    }
}

long ErrorManager::ExecuteFunctionWithTopLevelExceptionHandler(boost::function0<long> inFunction)
{
    return inFunction();
}

ErrorManager* ErrorManager::Get(bool inAllowDefault)
{
    ErrorManager* const installed = sInstalled.load();
    return installed == nullptr && inAllowDefault ? &BuiltInManager() : installed;
}

ErrorManager* InstallErrorManager(ErrorManager* inManager)
{
    return sInstalled.exchange(inManager);
}

void ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool inFlag,
                const ReplacementValue& inFirst, const ReplacementValue& inSecond, const ReplacementValue& inThird,
                const ReplacementValue& inFourth)
{
    ErrorManager::Get(true)->ThrowError(inLevel, inZString, inPackage, inErrorID, inFlag, inFirst, inSecond, inThird,
                                        inFourth);
}

} // namespace config
} // namespace tvxcore
