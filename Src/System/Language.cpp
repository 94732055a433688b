#include <ORLHostSettings.h>

#include <Core/Immortal.h>
#include <ORLCriticalSection.h>
#include <ORLRegistryKey.h>
#include <ORLString.h>
#include <System/LanguageInternals.h>
#include <tvxcore/StringStream.h>
#include <tvxcore/Trace.h>

#include <atomic>
#include <cstdint>

namespace ORL {

namespace {

struct Language
{
    const char* mName;
    unsigned short mID;
    unsigned int mCodePage; // 0 is the system's default code page
};

constexpr Language kLanguages[] = {
    {"en_US", 1033, 0},   {"de_DE", 1031, 0},   {"fr_FR", 1036, 0}, {"it_IT", 1040, 0},
    {"ja_JP", 1041, 932}, {"es_ES", 1034, 0},   {"nl_NL", 1043, 0}, {"sv_SE", 1053, 0},
    {"cs_CZ", 1029, 0},   {"ko_KR", 1042, 949}, {"pl_PL", 1045, 0}, {"pt_BR", 1046, 0},
    {"ru_RU", 1049, 0},   {"tr_TR", 1055, 0},   {"zh_CN", 2052, 0}, {"zh_TW", 1028, 0},
};

constexpr const Language& kDefaultLanguage = kLanguages[0];
constexpr char kLanguageValueName[] = "Language";

using Internal::kLanguageIsKnown;
using Internal::sLanguageID;

Immortal<CriticalSection> sLanguageLock; // guards writes; acquired before the base keys' lock

const Language* FindLanguage(unsigned short inID)
{
    for (const Language& language : kLanguages) {
        if (language.mID == inID) {
            return &language;
        }
    }
    return nullptr;
}

unsigned short LanguageIDOfString(const UTF16String& inText)
{
    for (const Language& language : kLanguages) {
        if (inText == MakeString(language.mName)) {
            return language.mID;
        }
    }
    tvxcore::iUTF16StringStream stream(inText);
    unsigned int number = 0;
    return stream >> number ? static_cast<unsigned short>(number & 0xFFFF) : static_cast<unsigned short>(0);
}

void TraceMissingLanguage()
{
    static tvxcore::debug::TraceSite sSite("ORL.ResourceUtils.GetLanguageIDFromRegistry", 0, true);
    if (sSite.IsEnabled()) {
        tvxcore::debug::TraceLine(sSite) << "Unable to obtain the User '" << kLanguageValueName
                                         << "' registry key at: " << MakeStdString(GetRegistryBaseKey()).c_str()
                                         << " Defaulting to 'en_US'.\n";
    }
}

unsigned short GetLanguageIDFromRegistry()
{
    RegistryKey key;
    if (ResultSucceeded(key.Open(RegistryRootKeys::kUser, GetRegistryBaseKey(), RegistryKeyAccess::kRead))) {
        UTF16String language;
        key.GetStringValue(MakeString(kLanguageValueName), language);
        if (!language.empty()) {
            return LanguageIDOfString(language);
        }
    }
    TraceMissingLanguage();
    return kDefaultLanguage.mID;
}

} // namespace

namespace Internal {

std::atomic<std::uint32_t> sLanguageID{0};

unsigned short FetchLanguageID()
{
    const CriticalSectionLock lock(sLanguageLock.mValue);
    const std::uint32_t language = sLanguageID.load(std::memory_order_relaxed);
    if ((language & kLanguageIsKnown) != 0) {
        return static_cast<unsigned short>(language & 0xFFFF);
    }
    const unsigned short fetched = GetLanguageIDFromRegistry();
    sLanguageID.store(fetched | kLanguageIsKnown, std::memory_order_relaxed);
    return fetched;
}

// GetLanguageID is inlined into its callers. Its address is taken so that the compiler emits a copy. The Windows
// library exports the copy, for hosts that look it up by name. The Linux library must not: there, the host's copy would
// replace that of a plug-in.
[[gnu::used]] unsigned short (*const sExportedGetLanguageID)() = &GetLanguageID;

} // namespace Internal

unsigned short GetPrimaryLanguageID()
{
    return GetLanguageID() & 1023;
}

void SetLanguageID(unsigned short inLanguageID)
{
    const CriticalSectionLock lock(sLanguageLock.mValue);
    sLanguageID.store(inLanguageID | kLanguageIsKnown, std::memory_order_relaxed);
}

void SetLanguageString(const UTF16String& inLanguage)
{
    SetLanguageID(LanguageIDOfString(inLanguage));
}

UTF16String GetLanguageString()
{
    const Language* const language = FindLanguage(GetLanguageID());
    return MakeString((language != nullptr ? *language : kDefaultLanguage).mName);
}

unsigned int GetConversionCodePage()
{
    const Language* const language = FindLanguage(GetLanguageID());
    return language != nullptr ? language->mCodePage : 0;
}

namespace Internal {

void ForgetLanguage()
{
    const CriticalSectionLock lock(sLanguageLock.mValue);
    sLanguageID.store(0, std::memory_order_relaxed);
}

} // namespace Internal
} // namespace ORL
