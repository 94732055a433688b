#include "LinuxUserLanguage.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace ORL {
namespace Linux {

namespace {

constexpr unsigned short kAmericanEnglish = 1033;

struct Row
{
    const char* mLocale;
    unsigned short mLanguage;
};

constexpr Row kRows[] = {
    {"en_US", 1033}, {"de_DE", 1031}, {"fr_FR", 1036}, {"it_IT", 1040}, {"ja_JP", 1041}, {"es_ES", 1034},
    {"nl_NL", 1043}, {"sv_SE", 1053}, {"cs_CZ", 1029}, {"ko_KR", 1042}, {"pl_PL", 1045}, {"pt_BR", 1046},
    {"ru_RU", 1049}, {"tr_TR", 1055}, {"zh_CN", 2052}, {"zh_TW", 1028},
};

const char* NameOfUsersLocale() noexcept
{
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const name = std::getenv(variable);
        if (name != nullptr && *name != '\0') {
            return name;
        }
    }
    return "";
}

} // namespace

unsigned short LanguageOfLocale(const char* inName) noexcept
{
    const std::size_t size = std::strcspn(inName, ".@");
    for (const Row& row : kRows) {
        if (std::strlen(row.mLocale) == size && std::memcmp(row.mLocale, inName, size) == 0) {
            return row.mLanguage;
        }
    }
    return kAmericanEnglish;
}

unsigned short UserLanguage() noexcept
{
    static std::atomic<unsigned short> sLanguage{0}; // 0: not read yet
    unsigned short language = sLanguage.load(std::memory_order_relaxed);
    if (language == 0) {
        language = LanguageOfLocale(NameOfUsersLocale());
        sLanguage.store(language, std::memory_order_relaxed);
    }
    return language;
}

} // namespace Linux
} // namespace ORL
