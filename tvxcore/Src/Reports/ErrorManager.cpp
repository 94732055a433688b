#include <tvxcore/ErrorManager.h>

#include <Reports/StandardError.h>

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
    debug::WriteStandardErrorLine("Error %ld of package %lu, level %d: %s", inErrorID, inPackage,
                                  static_cast<int>(inLevel), inZString);
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
