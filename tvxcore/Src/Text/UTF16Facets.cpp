#include <tvxcore/UTF16Facets.h>

#include <CorePlatform/SmallBlockSystem.h>

#include <algorithm>
#include <atomic>
#include <memory>

namespace {

// The standard library classifies ASCII by a table that is the same in every locale.
std::ctype_base::mask ClassOf(unsigned short inUnit)
{
    return inUnit < 0x80 ? std::ctype<char>::classic_table()[inUnit] : std::ctype_base::mask();
}

constexpr bool IsBetween(unsigned short inUnit, char inFirst, char inLast)
{
    return inUnit >= inFirst && inUnit <= inLast;
}

std::basic_string<unsigned short> Widen(const char* inText)
{
    return std::basic_string<unsigned short>(inText, inText + std::char_traits<char>::length(inText));
}

} // namespace

namespace std {

locale::id ctype<unsigned short>::id;

ctype<unsigned short>::ctype(size_t inRefs) : locale::facet(inRefs)
{
}

ctype<unsigned short>::~ctype() = default;

bool ctype<unsigned short>::do_is(mask inMask, char_type inUnit) const
{
    return (ClassOf(inUnit) & inMask) != 0;
}

const unsigned short* ctype<unsigned short>::do_is(const char_type* inLow, const char_type* inHigh,
                                                   mask* outMasks) const
{
    std::transform(inLow, inHigh, outMasks, ClassOf);
    return inHigh;
}

const unsigned short* ctype<unsigned short>::do_scan_is(mask inMask, const char_type* inLow,
                                                        const char_type* inHigh) const
{
    return std::find_if(inLow, inHigh, [&](char_type inUnit) { return is(inMask, inUnit); });
}

const unsigned short* ctype<unsigned short>::do_scan_not(mask inMask, const char_type* inLow,
                                                         const char_type* inHigh) const
{
    return std::find_if_not(inLow, inHigh, [&](char_type inUnit) { return is(inMask, inUnit); });
}

unsigned short ctype<unsigned short>::do_toupper(char_type inUnit) const
{
    return static_cast<char_type>(IsBetween(inUnit, 'a', 'z') ? inUnit - ('a' - 'A') : inUnit);
}

const unsigned short* ctype<unsigned short>::do_toupper(char_type* ioLow, const char_type* inHigh) const
{
    for (; ioLow != inHigh; ++ioLow) {
        *ioLow = toupper(*ioLow);
    }
    return inHigh;
}

unsigned short ctype<unsigned short>::do_tolower(char_type inUnit) const
{
    return static_cast<char_type>(IsBetween(inUnit, 'A', 'Z') ? inUnit + ('a' - 'A') : inUnit);
}

const unsigned short* ctype<unsigned short>::do_tolower(char_type* ioLow, const char_type* inHigh) const
{
    for (; ioLow != inHigh; ++ioLow) {
        *ioLow = tolower(*ioLow);
    }
    return inHigh;
}

unsigned short ctype<unsigned short>::do_widen(char inCharacter) const
{
    return static_cast<unsigned char>(inCharacter);
}

const char* ctype<unsigned short>::do_widen(const char* inLow, const char* inHigh, char_type* outUnits) const
{
    for (; inLow != inHigh; ++inLow) {
        *outUnits++ = widen(*inLow);
    }
    return inHigh;
}

char ctype<unsigned short>::do_narrow(char_type inUnit, char inDefault) const
{
    return inUnit <= 0xFF ? static_cast<char>(inUnit) : inDefault;
}

const unsigned short* ctype<unsigned short>::do_narrow(const char_type* inLow, const char_type* inHigh, char inDefault,
                                                       char* outText) const
{
    for (; inLow != inHigh; ++inLow) {
        *outText++ = narrow(*inLow, inDefault);
    }
    return inHigh;
}

locale::id numpunct<unsigned short>::id;

numpunct<unsigned short>::numpunct(size_t inRefs) : locale::facet(inRefs)
{
}

numpunct<unsigned short>::~numpunct() = default;

unsigned short numpunct<unsigned short>::do_decimal_point() const
{
    return '.';
}

unsigned short numpunct<unsigned short>::do_thousands_sep() const
{
    return ',';
}

string numpunct<unsigned short>::do_grouping() const
{
    return string();
}

basic_string<unsigned short> numpunct<unsigned short>::do_truename() const
{
    return Widen("true");
}

basic_string<unsigned short> numpunct<unsigned short>::do_falsename() const
{
    return Widen("false");
}

template <>
locale::id num_put<unsigned short>::id{};
template <>
locale::id num_get<unsigned short>::id{};

} // namespace std

namespace tvxcore {
namespace utility {

namespace {

// The decimal point and grouping of another locale's wide characters.
class PunctuationOf : public std::numpunct<unsigned short>
{
public:
    explicit PunctuationOf(const std::numpunct<wchar_t>& inWide)
        : mDecimalPoint(static_cast<unsigned short>(inWide.decimal_point())),
          mThousandsSeparator(static_cast<unsigned short>(inWide.thousands_sep())), mGrouping(inWide.grouping()),
          mTrueName(Units(inWide.truename())), mFalseName(Units(inWide.falsename()))
    {
    }

private:
    static string_type Units(const std::wstring& inText)
    {
        string_type units;
        for (const wchar_t character : inText) {
            units.push_back(static_cast<unsigned short>(character));
        }
        return units;
    }

    char_type do_decimal_point() const override { return mDecimalPoint; }
    char_type do_thousands_sep() const override { return mThousandsSeparator; }
    std::string do_grouping() const override { return mGrouping; }
    string_type do_truename() const override { return mTrueName; }
    string_type do_falsename() const override { return mFalseName; }

    const char_type mDecimalPoint;
    const char_type mThousandsSeparator;
    const std::string mGrouping;
    const string_type mTrueName;
    const string_type mFalseName;
};

// Makes the destructor accessible, to delete a facet that no locale owns.
template <class Facet>
class Owned : public Facet
{
public:
    using Facet::Facet;
    ~Owned() override = default;
};

template <class Facet, class Made, class... Arguments>
std::locale WithFacet(const std::locale& inBase, const Arguments&... inArguments)
{
    if (std::has_facet<Facet>(inBase)) {
        return inBase;
    }
    auto facet = std::make_unique<Owned<Made>>(inArguments...);
    std::locale built(inBase, static_cast<Facet*>(facet.get()));
    static_cast<void>(facet.release());
    return built;
}

std::locale Build(const std::locale& inBase)
{
    using Unit = unsigned short;
    std::locale built = WithFacet<std::ctype<Unit>, std::ctype<Unit>>(inBase);
    built = WithFacet<std::numpunct<Unit>, PunctuationOf>(built, std::use_facet<std::numpunct<wchar_t>>(inBase));
    built = WithFacet<std::num_put<Unit>, std::num_put<Unit>>(built);
    return WithFacet<std::num_get<Unit>, std::num_get<Unit>>(built);
}

// Nearly every stream uses the classic locale, and building it costs more than writing a short string, so it is cached.
// At process exit the locale is kept, since threads may be copying it; on unload it is destroyed. A stream constructed
// after this object is destroyed, in the destructor of another static, builds its own locale.
class ClassicLocale
{
public:
    ClassicLocale() : mLocale(Build(std::locale::classic())) {}

    ~ClassicLocale()
    {
        if (Platform::IsUnloading_Impl()) {
            sGone.store(true, std::memory_order_relaxed);
            mLocale.~locale();
        }
    }

    static std::locale Get()
    {
        if (sGone.load(std::memory_order_relaxed)) {
            return Build(std::locale::classic());
        }
        static const ClassicLocale classic;
        return classic.mLocale;
    }

private:
    static std::atomic<bool> sGone;

    union
    {
        const std::locale mLocale;
    };
};

std::atomic<bool> ClassicLocale::sGone{false};

} // namespace

std::locale UTF16Locale(const std::locale& inBase)
{
    return inBase == std::locale::classic() ? ClassicLocale::Get() : Build(inBase);
}

} // namespace utility
} // namespace tvxcore
