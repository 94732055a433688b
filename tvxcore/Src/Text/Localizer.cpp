#include <tvxcore/Localizer.h>

#include <Text/ZString.h>
#include <tvxcore/Text.h>

#include <atomic>
#include <new>

namespace tvxcore {
namespace config {

namespace {

std::atomic<Localizer*> sInstalled{nullptr};

// The localiser is in static storage and never destroyed: strings may be requested during process exit.
Localizer& BuiltInLocalizer()
{
    alignas(Localizer) static unsigned char storage[sizeof(Localizer)];
    static Localizer* const localizer = new (storage) Localizer;
    return *localizer;
}

} // namespace

Localizer::~Localizer() = default;

UTF16String Localizer::Localize(const char* inZString)
{
    const char* const text = DefaultText(inZString);
    return utility::UTF8to16(UTF8String(reinterpret_cast<const unsigned char*>(text)));
}

Localizer* Localizer::Get()
{
    Localizer* const installed = sInstalled.load();
    return installed != nullptr ? installed : &BuiltInLocalizer();
}

Localizer* InstallLocalizer(Localizer* inLocalizer)
{
    return sInstalled.exchange(inLocalizer);
}

} // namespace config
} // namespace tvxcore
