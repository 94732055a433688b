#include "LinuxCodePageTables.h"

namespace ORL {
namespace Linux {

namespace {

#include "Tables/CodePage1250.inc"
#include "Tables/CodePage1251.inc"
#include "Tables/CodePage1252.inc"
#include "Tables/CodePage1253.inc"
#include "Tables/CodePage1254.inc"
#include "Tables/CodePage1255.inc"
#include "Tables/CodePage1256.inc"
#include "Tables/CodePage1257.inc"
#include "Tables/CodePage1258.inc"
#include "Tables/CodePage437.inc"
#include "Tables/CodePage874.inc"
#include "Tables/CodePage932.inc"
#include "Tables/CodePage936.inc"
#include "Tables/CodePage949.inc"
#include "Tables/CodePage950.inc"

#define ORL_SINGLE_BYTE_PAGE(number)                                                                                   \
    constexpr SingleBytePage kPage##number = {kSingles##number, {kIndex##number, kBlocks##number}};
#define ORL_DOUBLE_BYTE_PAGE(number)                                                                                   \
    constexpr DoubleBytePage kPage##number = {                                                                         \
        kSingles##number, kRows##number, kPairs##number, {kIndex##number, kBlocks##number}};

ORL_SINGLE_BYTE_PAGE(437)
ORL_SINGLE_BYTE_PAGE(874)
ORL_DOUBLE_BYTE_PAGE(932)
ORL_DOUBLE_BYTE_PAGE(936)
ORL_DOUBLE_BYTE_PAGE(949)
ORL_DOUBLE_BYTE_PAGE(950)
ORL_SINGLE_BYTE_PAGE(1250)
ORL_SINGLE_BYTE_PAGE(1251)
ORL_SINGLE_BYTE_PAGE(1252)
ORL_SINGLE_BYTE_PAGE(1253)
ORL_SINGLE_BYTE_PAGE(1254)
ORL_SINGLE_BYTE_PAGE(1255)
ORL_SINGLE_BYTE_PAGE(1256)
ORL_SINGLE_BYTE_PAGE(1257)
ORL_SINGLE_BYTE_PAGE(1258)

#undef ORL_SINGLE_BYTE_PAGE
#undef ORL_DOUBLE_BYTE_PAGE

constexpr CodePageTable kPages[] = {
    {1252, &kPage1252, nullptr}, {932, nullptr, &kPage932},   {949, nullptr, &kPage949},   {936, nullptr, &kPage936},
    {950, nullptr, &kPage950},   {1250, &kPage1250, nullptr}, {1251, &kPage1251, nullptr}, {1253, &kPage1253, nullptr},
    {1254, &kPage1254, nullptr}, {1255, &kPage1255, nullptr}, {1256, &kPage1256, nullptr}, {1257, &kPage1257, nullptr},
    {1258, &kPage1258, nullptr}, {874, &kPage874, nullptr},   {437, &kPage437, nullptr},
};

} // namespace

const CodePageTable* FindCodePage(unsigned int inNumber) noexcept
{
    for (const CodePageTable& page : kPages) {
        if (page.mNumber == inNumber) {
            return &page;
        }
    }
    return nullptr;
}

} // namespace Linux
} // namespace ORL
