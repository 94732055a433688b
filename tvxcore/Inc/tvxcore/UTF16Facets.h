// Character and number facets for streams of 16-bit units. The standard library has facets only for char and wchar_t:
// without these, writing a number to a 16-bit stream only sets the stream's bad bit.
//
// Include this (or StringStream.h) before the first use of a standard stream of unsigned short.
#pragma once

#include <tvxcore/Config.h>

#include <cstddef>
#include <ios>
#include <iterator>
#include <locale>
#include <string>

namespace std {

/// Classifies ASCII and converts its case; other units have no class and keep their case. A narrow character widens to
/// the unit of the same value, 0 to 255, in every locale; units above 255 narrow to the default argument. Thread-safe.
template <>
class TVXCORE_API ctype<unsigned short> : public locale::facet, public ctype_base
{
public:
    using char_type = unsigned short;

    static locale::id id;

    explicit ctype(size_t inRefs = 0);

    bool is(mask inMask, char_type inUnit) const { return do_is(inMask, inUnit); }
    const char_type* is(const char_type* inLow, const char_type* inHigh, mask* outMasks) const
    {
        return do_is(inLow, inHigh, outMasks);
    }
    const char_type* scan_is(mask inMask, const char_type* inLow, const char_type* inHigh) const
    {
        return do_scan_is(inMask, inLow, inHigh);
    }
    const char_type* scan_not(mask inMask, const char_type* inLow, const char_type* inHigh) const
    {
        return do_scan_not(inMask, inLow, inHigh);
    }
    char_type toupper(char_type inUnit) const { return do_toupper(inUnit); }
    const char_type* toupper(char_type* ioLow, const char_type* inHigh) const { return do_toupper(ioLow, inHigh); }
    char_type tolower(char_type inUnit) const { return do_tolower(inUnit); }
    const char_type* tolower(char_type* ioLow, const char_type* inHigh) const { return do_tolower(ioLow, inHigh); }
    char_type widen(char inCharacter) const { return do_widen(inCharacter); }
    const char* widen(const char* inLow, const char* inHigh, char_type* outUnits) const
    {
        return do_widen(inLow, inHigh, outUnits);
    }
    char narrow(char_type inUnit, char inDefault) const { return do_narrow(inUnit, inDefault); }
    const char_type* narrow(const char_type* inLow, const char_type* inHigh, char inDefault, char* outText) const
    {
        return do_narrow(inLow, inHigh, inDefault, outText);
    }

protected:
    ~ctype() override;

    virtual bool do_is(mask inMask, char_type inUnit) const;
    virtual const char_type* do_is(const char_type* inLow, const char_type* inHigh, mask* outMasks) const;
    virtual const char_type* do_scan_is(mask inMask, const char_type* inLow, const char_type* inHigh) const;
    virtual const char_type* do_scan_not(mask inMask, const char_type* inLow, const char_type* inHigh) const;
    virtual char_type do_toupper(char_type inUnit) const;
    virtual const char_type* do_toupper(char_type* ioLow, const char_type* inHigh) const;
    virtual char_type do_tolower(char_type inUnit) const;
    virtual const char_type* do_tolower(char_type* ioLow, const char_type* inHigh) const;
    virtual char_type do_widen(char inCharacter) const;
    virtual const char* do_widen(const char* inLow, const char* inHigh, char_type* outUnits) const;
    virtual char do_narrow(char_type inUnit, char inDefault) const;
    virtual const char_type* do_narrow(const char_type* inLow, const char_type* inHigh, char inDefault,
                                       char* outText) const;
};

/// Decimal point and grouping of numbers: those of the classic locale, unless a derived facet overrides them.
/// Immutable, so thread-safe.
template <>
class TVXCORE_API numpunct<unsigned short> : public locale::facet
{
public:
    using char_type = unsigned short;
    using string_type = basic_string<unsigned short>;

    static locale::id id;

    explicit numpunct(size_t inRefs = 0);

    char_type decimal_point() const { return do_decimal_point(); }
    char_type thousands_sep() const { return do_thousands_sep(); }
    string grouping() const { return do_grouping(); }
    string_type truename() const { return do_truename(); }
    string_type falsename() const { return do_falsename(); }

protected:
    ~numpunct() override;

    virtual char_type do_decimal_point() const;
    virtual char_type do_thousands_sep() const;
    virtual string do_grouping() const;
    virtual string_type do_truename() const;
    virtual string_type do_falsename() const;
};

// The standard library formats and parses numbers with the two facets above. Each facet's id exists once, so that every
// module of a process finds the same facet. All else is compiled into each module: an explicit instantiation of the
// whole class would make modules link to inline functions that this library might not export.
template <>
TVXCORE_API locale::id num_put<unsigned short>::id;
template <>
TVXCORE_API locale::id num_get<unsigned short>::id;

} // namespace std

namespace tvxcore {
namespace utility {

/// Returns inBase with the facets above added if it lacks them. Decimal point and grouping are then those of inBase for
/// wide characters. A later std::locale::global does not change the returned locale. Thread-safe.
TVXCORE_API std::locale UTF16Locale(const std::locale& inBase = std::locale());

} // namespace utility
} // namespace tvxcore
