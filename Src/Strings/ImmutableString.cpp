#include <ORLImmutableString.h>

#include <Strings/ImmutableStringTable.h>
#include <tvxcore/Text.h>

#include <cstring>
#include <utility>

namespace ORL {

namespace {

using Lifetime = ImmutableStringTable::Lifetime;
using Record = ImmutableString::InternalRepresentation;

// Names for the values of inIsStatic, which is a bool in the public header.
constexpr bool kStatic = true;
constexpr bool kDynamic = false;

const unsigned char* Bytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

// Compares a record, which may be null, with a string that is not null.
int CompareWithText(const Record* inRecord, const unsigned char* inText)
{
    return inRecord == nullptr ? -1 : CompareBytes(inRecord->Text(), inText);
}

// Returns the empty string for null.
const unsigned short* UnitsOrEmpty(const unsigned short* inText)
{
    static constexpr unsigned short kEmpty[] = {0};
    return inText != nullptr ? inText : kEmpty;
}

} // namespace

int CompareBytes(const unsigned char* inLeft, const unsigned char* inRight)
{
    const int order = std::strcmp(reinterpret_cast<const char*>(inLeft), reinterpret_cast<const char*>(inRight));
    return (order > 0) - (order < 0);
}

ImmutableString::ImmutableString(InternalRepresentation* inRepresentation) : mRepresentation(inRepresentation)
{
    if (mRepresentation != nullptr) {
        mRepresentation->AddRef();
    }
}

ImmutableString::ImmutableString(const ImmutableString& inOther) : ImmutableString(inOther.mRepresentation)
{
}

ImmutableString::~ImmutableString()
{
    if (mRepresentation != nullptr) {
        mRepresentation->RemoveRef();
    }
}

ImmutableString& ImmutableString::operator=(const ImmutableString& inOther)
{
    if (inOther.mRepresentation != nullptr) {
        inOther.mRepresentation->AddRef();
    }
    InternalRepresentation* const old = std::exchange(mRepresentation, inOther.mRepresentation);
    if (old != nullptr) {
        old->RemoveRef();
    }
    return *this;
}

const unsigned char* ImmutableString::c_str() const
{
    static constexpr unsigned char kEmpty[] = {0};
    return mRepresentation != nullptr ? mRepresentation->Text() : kEmpty;
}

unsigned __int64 ImmutableString::size() const
{
    if (mRepresentation == nullptr) {
        return 0;
    }
    return mRepresentation->IsStatic() ? std::strlen(reinterpret_cast<const char*>(mRepresentation->Text()))
                                       : mRepresentation->DynamicText().size();
}

UTF16String ImmutableString::ToString() const
{
    return mRepresentation != nullptr ? tvxcore::utility::UTF8to16(UTF8String(mRepresentation->Text())) : UTF16String();
}

int ImmutableString::Compare(const ImmutableString& inOther) const
{
    if (mRepresentation == inOther.mRepresentation) {
        return 0;
    }
    return inOther.mRepresentation == nullptr ? 1 : CompareWithText(mRepresentation, inOther.mRepresentation->Text());
}

int ImmutableString::Compare(const char* inOther) const
{
    return Compare(Bytes(inOther));
}

int ImmutableString::Compare(const unsigned char* inOther) const
{
    if (inOther == nullptr) {
        return mRepresentation == nullptr ? 0 : 1;
    }
    return CompareWithText(mRepresentation, inOther);
}

int ImmutableString::Compare(const std::string& inOther) const
{
    return CompareWithText(mRepresentation, Bytes(inOther.c_str()));
}

int ImmutableString::Compare(const UTF8String& inOther) const
{
    return CompareWithText(mRepresentation, inOther.c_str());
}

int ImmutableString::Compare(const UTF16String& inOther) const
{
    if (mRepresentation == nullptr) {
        return -1; // a null handle sorts before every string
    }
    return CompareBytes(mRepresentation->Text(), tvxcore::utility::UTF16to8(inOther).c_str());
}

int ImmutableString::Compare(const unsigned short* inOther) const
{
    if (mRepresentation == nullptr) {
        return -1;
    }
    return CompareBytes(mRepresentation->Text(), tvxcore::utility::UTF16to8(UnitsOrEmpty(inOther)).c_str());
}

ImmutableString ImmutableString::Enter(const unsigned char* inText, bool inIsStatic)
{
    ImmutableString handle;
    const Lifetime lifetime = inIsStatic ? Lifetime::kStatic : Lifetime::kDynamic;
    handle.mRepresentation = ImmutableStringTable::Get().Enter(inText, lifetime); // Enter has counted this handle
    return handle;
}

ImmutableString ImmutableString::CreateStatic(const unsigned char* inText)
{
    return Enter(inText, kStatic);
}

ImmutableString ImmutableString::CreateStatic(const char* inText)
{
    return Enter(Bytes(inText), kStatic);
}

ImmutableString ImmutableString::CreateDynamic(const unsigned char* inText)
{
    return Enter(inText, kDynamic);
}

ImmutableString ImmutableString::CreateDynamic(const char* inText)
{
    return Enter(Bytes(inText), kDynamic);
}

ImmutableString ImmutableString::CreateDynamic(const std::string& inText)
{
    return Enter(Bytes(inText.c_str()), kDynamic);
}

ImmutableString ImmutableString::CreateDynamic(const UTF8String& inText)
{
    return Enter(inText.c_str(), kDynamic);
}

ImmutableString ImmutableString::CreateDynamic(const UTF16String& inText)
{
    return Enter(tvxcore::utility::UTF16to8(inText).c_str(), kDynamic);
}

ImmutableString ImmutableString::CreateDynamic(const unsigned short* inText)
{
    return Enter(tvxcore::utility::UTF16to8(UnitsOrEmpty(inText)).c_str(), kDynamic);
}

bool ImmutableString::PurgeUnusedStrings()
{
    return ImmutableStringTable::Get().Purge();
}

} // namespace ORL
