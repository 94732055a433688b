// The shared record of one interned string.
#pragma once

#include <ORLAtomic.h>
#include <ORLDebug.h>
#include <ORLImmutableString.h>

namespace ORL {

class ImmutableString::InternalRepresentation
{
public:
    /// Constructs a static record, or a search key. Null means the empty string.
    explicit InternalRepresentation(const unsigned char* inStaticText) : mStaticText(inStaticText) {}

    /// Selects the constructor of a dynamic record, whose string must not be null.
    struct Dynamic
    {
    };
    InternalRepresentation(const unsigned char* inText, Dynamic) : mStaticText(nullptr), mDynamicText(inText) {}

    InternalRepresentation(const InternalRepresentation&) = delete;
    InternalRepresentation& operator=(const InternalRepresentation&) = delete;

    void AddRef() { AtomicIncrement(mReferenceCount); }

    /// Never deletes the record, even at zero: it stays in the table and may be found again.
    void RemoveRef()
    {
        ORL_ASSERT_AT(AtomicRead(mReferenceCount) > 0, "ImmutableString", 70,
                      "ORL::ImmutableString::InternalRepresentation::RemoveRef");
        AtomicDecrement(mReferenceCount);
    }

    AtomicValue CountOfHandles() { return AtomicRead(mReferenceCount); }
    bool IsStatic() const { return mStaticText != nullptr; }
    const unsigned char* Text() const { return mStaticText != nullptr ? mStaticText : mDynamicText.c_str(); }
    const UTF8String& DynamicText() const { return mDynamicText; }

private:
    AtomicValue mReferenceCount = 0;  // handles only, not the table's entry
    const unsigned char* mStaticText; // owned by the caller; null in a dynamic record
    UTF8String mDynamicText;          // the copy, empty in a static record
};

/// Compares the bytes as unsigned values up to the first zero. Returns -1, 0 or 1.
int CompareBytes(const unsigned char* inLeft, const unsigned char* inRight);

} // namespace ORL
