#include <ORLStream.h>

#include <ORLString.h>

#include <iostream>
#include <locale>

namespace ORL {

std::basic_istream<char>& In = std::cin;
std::basic_ostream<char>& Out = std::cout;
std::basic_ostream<char>& Log = std::clog;
std::basic_ostream<char>& Err = std::cerr;

namespace {

std::locale LocaleFor(const std::basic_ios<char>&)
{
    return std::locale();
}

std::locale LocaleFor(const std::basic_ios<unsigned short>&)
{
    return tvxcore::utility::UTF16Locale();
}

// Prepares for `copyfmt`. To copy the fill character, `copyfmt` first widens the stream's old one with the stream's
// locale, which throws if that locale has no facet for the unit.
template <class Unit>
void EnsureUnitFacets(std::basic_ostream<Unit>& ioStream, const std::locale& inLocale)
{
    if (!std::has_facet<std::ctype<Unit>>(ioStream.getloc())) {
        ioStream.imbue(inLocale);
    }
}

// Destroying and reconstructing the stream in place would overwrite its neighbours in memory if it is part of a larger
// one, as in a string stream. Copying the whole format of a new stream, then setting the buffer, resets every member in
// the same way and calls the same callbacks. No buffer is set while the locale changes, because the stream would pass
// the locale on to the buffer, whose locale belongs to the caller.
template <class Unit>
std::basic_streambuf<Unit>* Rebind(std::basic_ostream<Unit>& ioStream, std::basic_streambuf<Unit>* inBuffer)
{
    std::basic_ios<Unit> fresh(nullptr);
    fresh.imbue(LocaleFor(fresh));
    ioStream.exceptions(std::ios_base::goodbit);
    std::basic_streambuf<Unit>* const old = ioStream.rdbuf(nullptr);
    EnsureUnitFacets(ioStream, fresh.getloc());
    ioStream.copyfmt(fresh);
    ioStream.rdbuf(inBuffer);
    return old;
}

} // namespace

std::basic_streambuf<char>* SetStreamBuffer(std::basic_ostream<char>& ioStream, std::basic_streambuf<char>* inBuffer)
{
    return Rebind(ioStream, inBuffer);
}

std::basic_streambuf<unsigned short>* SetStreamBuffer(std::basic_ostream<unsigned short>& ioStream,
                                                      std::basic_streambuf<unsigned short>* inBuffer)
{
    return Rebind(ioStream, inBuffer);
}

std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream, const char* inText)
{
    return ioStream << MakeString(inText);
}

std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream, const std::string& inText)
{
    return ioStream << MakeString(inText);
}

} // namespace ORL
