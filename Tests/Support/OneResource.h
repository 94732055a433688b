// A resource collection with a single resource that the test provides.
#pragma once

#include <ORLResourceCollection.h>

#include <string>
#include <utility>

namespace ORLTest {

/// Holds one resource, which can be loaded only by its number and the name of its type; counts its releases.
class OneResource : public ORL::ResourceCollection
{
public:
    OneResource(short inID, UTF16String inType, std::string inData)
        : mID(inID), mType(std::move(inType)), mData(std::move(inData))
    {
    }

    void* FindLocalizedResource(const unsigned short*, const unsigned short*, int&) const override { return nullptr; }
    void* FindNonLocalizedResource(const unsigned short*, const unsigned short*, int&) const override
    {
        return nullptr;
    }
    void* LoadResource(const unsigned short*, const unsigned short*, int&) const override { return nullptr; }
    void* LoadResource(short inID, const UTF16String& inType, int& outSize) const override
    {
        if (inID != mID || inType != mType) {
            return nullptr;
        }
        outSize = static_cast<int>(mData.size());
        return const_cast<char*>(mData.data());
    }
    void* LoadFirstResourceOfType(const unsigned short*, int&) const override { return nullptr; }
    void ReleaseResource(void* inData) const override { mReleases += inData == mData.data() ? 1 : 0; }
    ORL::OSImageHandle LoadBitmapW(short, bool) override { return ORL::OSImageHandle(); }
    ORL::OSImageHandle LoadBitmapFromFile(UTF16String, bool) override { return ORL::OSImageHandle(); }
    ORL::OSImageHandle LoadBitmapWTL(short, bool) override { return ORL::OSImageHandle(); }
    void* LoadCursorW(short) const override { return nullptr; }
    HMENU LoadMenuW(short) const override { return nullptr; }

    int Releases() const { return mReleases; }

private:
    short mID;
    UTF16String mType;
    std::string mData;
    mutable int mReleases = 0;
};

} // namespace ORLTest
