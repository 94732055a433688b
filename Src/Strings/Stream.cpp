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

// Taking on a fill character asks the stream's own locale for the old one first, which one that knows nothing of the
// unit cannot answer.
template <class Unit>
void MakeItKnowItsUnit(std::basic_ostream<Unit>& ioStream, const std::locale& inLocale)
{
    if (!std::has_facet<std::ctype<Unit>>(ioStream.getloc())) {
        ioStream.imbue(inLocale);
    }
}

// Ending and rebuilding the stream where it stands would hit its neighbours in memory whenever the stream is part of a
// larger one, as a string stream's is. Taking on the whole format of a new stream, then the buffer, leaves every
// member as the rebuilding would, and calls the same callbacks. Neither buffer is there while a locale is set, since it
// would be handed on to a buffer, whose locale is the caller's.
template <class Unit>
std::basic_streambuf<Unit>* Rebind(std::basic_ostream<Unit>& ioStream, std::basic_streambuf<Unit>* inBuffer)
{
    std::basic_ios<Unit> fresh(nullptr);
    fresh.imbue(LocaleFor(fresh));
    ioStream.exceptions(std::ios_base::goodbit);
    std::basic_streambuf<Unit>* const old = ioStream.rdbuf(nullptr);
    MakeItKnowItsUnit(ioStream, fresh.getloc());
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
