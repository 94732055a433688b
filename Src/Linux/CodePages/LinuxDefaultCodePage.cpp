#include "LinuxDefaultCodePage.h"

#include <ORLStringUtils.h>
#include <Platform/CodePages.h>

#include "LinuxCodePageTables.h"

#include <atomic>
#include <cstdlib>
#include <string_view>

namespace ORL {
namespace Linux {

namespace {

// The first matching row is used. All other languages use 1252, even those that have no page on Windows.
struct Row
{
    std::string_view mLanguage;
    std::string_view mTerritory; // empty: any territory
    std::string_view mModifier;  // empty: any modifier
    unsigned int mCodePage;
};

constexpr Row kRows[] = {
    {"ja", "", "", 932},          {"ko", "", "", 949},          {"zh", "TW", "", 950}, {"zh", "HK", "", 950},
    {"zh", "MO", "", 950},        {"zh", "", "", 936},          {"th", "", "", 874},   {"sr", "", "latin", 1250},
    {"sr", "", "", 1251},         {"bs", "", "cyrillic", 1251}, {"bs", "", "", 1250},  {"cs", "", "", 1250},
    {"hr", "", "", 1250},         {"hu", "", "", 1250},         {"pl", "", "", 1250},  {"ro", "", "", 1250},
    {"sk", "", "", 1250},         {"sl", "", "", 1250},         {"sq", "", "", 1250},  {"tk", "", "", 1250},
    {"ba", "", "", 1251},         {"be", "", "", 1251},         {"bg", "", "", 1251},  {"kk", "", "", 1251},
    {"ky", "", "", 1251},         {"mk", "", "", 1251},         {"mn", "", "", 1251},  {"ru", "", "", 1251},
    {"sah", "", "", 1251},        {"tg", "", "", 1251},         {"tt", "", "", 1251},  {"uk", "", "", 1251},
    {"uz", "", "cyrillic", 1251}, {"el", "", "", 1253},         {"az", "", "", 1254},  {"tr", "", "", 1254},
    {"uz", "", "", 1254},         {"he", "", "", 1255},         {"iw", "", "", 1255},  {"ar", "", "", 1256},
    {"fa", "", "", 1256},         {"ug", "", "", 1256},         {"ur", "", "", 1256},  {"ckb", "", "", 1256},
    {"pa", "PK", "", 1256},       {"sd", "PK", "", 1256},       {"et", "", "", 1257},  {"lt", "", "", 1257},
    {"lv", "", "", 1257},         {"vi", "", "", 1258},
};

// Returns the part of a locale name after inMark, up to the next mark; empty if the name does not contain inMark.
std::string_view PartAfter(std::string_view inName, char inMark)
{
    const std::size_t mark = inName.find(inMark);
    if (mark == std::string_view::npos) {
        return std::string_view();
    }
    const std::string_view rest = inName.substr(mark + 1);
    return rest.substr(0, rest.find_first_of("_.@"));
}

constexpr unsigned int kPageWithoutLocale = 1252;

} // namespace

unsigned int CodePageOfLocale(const char* inName) noexcept
{
    const std::string_view name = inName;
    const std::string_view language = name.substr(0, name.find_first_of("_.@"));
    const std::string_view territory = PartAfter(name.substr(0, name.find_first_of(".@")), '_');
    const std::string_view modifier = PartAfter(name, '@');
    for (const Row& row : kRows) {
        if (row.mLanguage == language && (row.mTerritory.empty() || row.mTerritory == territory)
            && (row.mModifier.empty() || row.mModifier == modifier)) {
            return row.mCodePage;
        }
    }
    return kPageWithoutLocale;
}

namespace {

unsigned int CodePageOfUser() noexcept
{
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const name = std::getenv(variable);
        if (name != nullptr && *name != '\0') {
            return CodePageOfLocale(name);
        }
    }
    return kPageWithoutLocale;
}

std::atomic<unsigned int> sPageOfUser{0}; // 0 until the environment has been read
std::atomic<unsigned int> sPageOfHost{0}; // 0 unless the host has set one

} // namespace
} // namespace Linux

namespace StringUtils {
namespace Platform {

unsigned int GetDefaultCodePage_Impl()
{
    const unsigned int ofHost = ORL::Linux::sPageOfHost.load(std::memory_order_relaxed);
    if (ofHost != 0) {
        return ofHost;
    }
    unsigned int ofUser = ORL::Linux::sPageOfUser.load(std::memory_order_relaxed);
    if (ofUser == 0) { // if two threads read the environment, both find the same page
        ofUser = ORL::Linux::CodePageOfUser();
        ORL::Linux::sPageOfUser.store(ofUser, std::memory_order_relaxed);
    }
    return ofUser;
}

} // namespace Platform

namespace Linux {

Result SetDefaultCodePage(unsigned int inCodePage)
{
    if (inCodePage != 0 && ORL::Linux::FindCodePage(inCodePage) == nullptr) {
        return kGeneralFailure;
    }
    ORL::Linux::sPageOfHost.store(inCodePage, std::memory_order_relaxed);
    return kSuccess;
}

} // namespace Linux
} // namespace StringUtils
} // namespace ORL
