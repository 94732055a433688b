#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

#include <sstream>
#include <utility>

namespace Consumer {

template <class Handle, class Text>
void TouchHandles(const Text& inText)
{
    const Handle empty;
    Handle handle(inText);
    Handle copy(handle);
    copy = empty;
    copy.swap(handle);
    copy = std::move(copy);
    const Handle adopted = Handle::Adoptor::Adopt(copy.c_str());
    Touch(copy.data(), copy.empty(), copy.size(), copy == adopted, copy != adopted, copy<adopted, copy> adopted);
    tvxcore::oUTF16StringStream stream;
    stream << copy;
    Touch(stream.str());
}

inline void TouchConstStrings(const UTF16String& inText)
{
    using namespace ORL;
    TouchHandles<ConstString>("text");
    TouchHandles<ConstString>(inText.c_str());
    TouchHandles<ConstString>(inText);
    TouchHandles<StdConstString>("text");
    TouchHandles<StdConstString>(std::string("text"));
    const unsigned short* const units = ConstString(inText);
    Touch(units, MakeStdString(ConstString(inText)));
}

inline void TouchImmutableStrings(const UTF16String& inText)
{
    using namespace ORL;
    const ImmutableString null;
    ImmutableString name = ImmutableString::CreateStatic("text");
    name = ImmutableString::CreateDynamic(std::string("text"));
    const ImmutableString copy(name);
    Touch(name.c_str(), name.size(), name.ToString(), name.Compare(copy), name.Compare("a"), name.Compare(inText),
          name.Compare(std::string("a")), name.Compare(tvxcore::utility::UTF16to8(inText)),
          name.Compare(inText.c_str()), ImmutableString::CreateDynamic("a"), ImmutableString::CreateDynamic(inText),
          ImmutableString::CreateDynamic(inText.c_str()), &ImmutableString::PurgeUnusedStrings, null);
}

inline void TouchConversion(const UTF16String& inText)
{
    using namespace ORL;
    const CString classic = MakeCString(inText);
    const unsigned short* const units = classic;
    Touch(classic.GetString(), classic.GetLength(), classic.IsEmpty(), units, MakeString("a"), MakeString(classic),
          MakeString(std::string("a")), MakeString(inText.c_str()), MakeString(tvxcore::utility::UTF16to8(inText)),
          MakeString(reinterpret_cast<const unsigned char*>("a")), MakeStringFromWchar(inText.c_str()),
          MakeStdString(inText), tvxcore::utility::WcharToUTF16(inText.c_str()),
          tvxcore::utility::UTF16ToWstring(inText));
}

inline void TouchTemplates(const UTF16String& inText)
{
    using namespace ORL;
    UTF16String first, second;
    std::string narrow;
    const ParamVector parameters{inText};
    const ParamVectorImpl<std::string> narrowParameters{"a"};
    Touch(parameters.size(), ParseString(inText, parameters, first), ParseStdString("%1", narrowParameters, narrow));
    SplitString(inText, inText, first, second);
}

inline void TouchStreams(const UTF16String& inText)
{
    using namespace ORL;
    tvxcore::oUTF16StringStream stream;
    stream << 1 << ' ' << 2.5 << ' ' << "narrow" << std::string("narrow") << inText.c_str();
    SetStreamBuffer(stream, static_cast<std::basic_ostream<unsigned short>&>(stream).rdbuf());
    SetStreamBuffer(Out, Out.rdbuf());
    Touch(&In, &Out, &Log, &Err, Locale::Native(), Locale::Default(), Locale::GetValueFromDisplayString(inText));
}

inline void TouchStrings()
{
    const UTF16String text = ORL::MakeString("text");
    TouchConstStrings(text);
    TouchImmutableStrings(text);
    TouchConversion(text);
    TouchTemplates(text);
    TouchStreams(text);
}

} // namespace Consumer
