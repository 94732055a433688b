#include <ORLConstString.h>

#include <ORLAllocator.h>
#include <ORLString.h>

#include <Strings/StringConversion.h>

#include <new>
#include <utility>

namespace ORL {

namespace Internal {

namespace {

template <class String, class Source>
ConstStringShared<String>* NewShared(Source&& inSource)
{
    using Shared = ConstStringShared<String>;
    void* const block = Allocator::Allocate(sizeof(Shared));
    try {
        Shared* const shared = ::new (block) Shared{String(std::forward<Source>(inSource)), nullptr, 0};
        shared->mText = shared->mString.c_str();
        return shared;
    } catch (...) {
        Allocator::Dispose(block, sizeof(Shared));
        throw;
    }
}

} // namespace

template <class String>
ConstStringShared<String>* ConstStringHandle<String>::MakeShared(const Unit* inText)
{
    return NewShared<String>(inText);
}

template <class String>
ConstStringShared<String>* ConstStringHandle<String>::MakeShared(String&& ioText)
{
    return NewShared<String>(std::move(ioText));
}

template <class String>
void ConstStringHandle<String>::Destroy(Shared* inShared)
{
    inShared->~Shared();
    Allocator::Dispose(inShared, sizeof(Shared));
}

template <class String>
std::uint32_t ConstStringHandle<String>::HashText(const Unit* inText) noexcept
{
    std::uint32_t hash = 0;
    for (; *inText != 0; ++inText) {
        hash = hash * 5 + static_cast<std::make_unsigned_t<Unit>>(*inText);
    }
    return hash;
}

template class ConstStringHandle<UTF16String>;
template class ConstStringHandle<std::string>;

} // namespace Internal

ConstString::ConstString(const char* inText) : ConstStringHandle(MakeString(inText))
{
}

ConstString::ConstString(const unsigned short* inText) : ConstStringHandle(inText)
{
}

ConstString::ConstString(const UTF16String& inText) : ConstStringHandle(inText.c_str())
{
}

StdConstString::StdConstString(const char* inText) : ConstStringHandle(inText)
{
}

StdConstString::StdConstString(const std::string& inText) : ConstStringHandle(inText.c_str())
{
}

std::string MakeStdString(const ConstString& inText)
{
    return Internal::EncodeUTF8(inText.c_str(), inText.size());
}

std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream, const ConstString& inText)
{
    return std::operator<<(ioStream, inText.c_str());
}

// The standard inserter for narrow text widens each byte.
std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream,
                                               const StdConstString& inText)
{
    return std::operator<<(ioStream, inText.c_str());
}

} // namespace ORL
