// A plug-in that passes its 16-bit streams to others and uses theirs.
#include <tvxcore/StringStream.h>

#if defined(_WIN32)
#  define PLUGIN_API extern "C" __declspec(dllexport)
#else
#  define PLUGIN_API extern "C" __attribute__((visibility("default")))
#endif

using tvxcore::oUTF16StringStream;

PLUGIN_API oUTF16StringStream* MakeStream()
{
    return new oUTF16StringStream;
}

PLUGIN_API void DeleteStream(oUTF16StringStream* inStream)
{
    delete inStream;
}

// Uses the stream only through the standard base class.
PLUGIN_API void WriteNumbers(oUTF16StringStream* ioStream, int inNumber, double inFraction)
{
    std::basic_ostream<unsigned short>& stream = *ioStream;
    stream << inNumber << UTF16String(1, stream.widen(' ')) << inFraction;
}

PLUGIN_API int ReadNumber(const oUTF16StringStream* inStream)
{
    std::basic_istringstream<unsigned short, std::char_traits<unsigned short>, UTF16String::allocator_type> stream(
        inStream->str());
    stream.std::basic_ios<unsigned short>::imbue(inStream->getloc());
    int number = -1;
    stream >> number;
    return stream ? number : -2;
}

PLUGIN_API bool HasFacets(const oUTF16StringStream* inStream)
{
    const std::locale locale = inStream->getloc();
    return std::has_facet<std::ctype<unsigned short>>(locale) && std::has_facet<std::numpunct<unsigned short>>(locale)
           && std::has_facet<std::num_put<unsigned short>>(locale)
           && std::has_facet<std::num_get<unsigned short>>(locale);
}
