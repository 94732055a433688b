// Tests two plug-ins that share a stream. Each plug-in is linked to the shared tvxcore and sees no symbols of the
// other; the host that loads both plug-ins is linked to neither. If the identity of a facet differed between the
// plug-ins, the lookup of the facet would fail.
#include <gtest/gtest.h>

#if defined(_WIN32)
#  include <windows.h>
#else
#  include <dlfcn.h>
#endif

namespace {

// The opaque result of MakeStream.
struct Stream;

class Plugin
{
public:
#if defined(_WIN32)
    explicit Plugin(const char* inPath) : mModule(::LoadLibraryA(inPath))
    {
    }
    ~Plugin()
    {
        ::FreeLibrary(mModule);
    }

    template <class Function>
    Function* Find(const char* inName) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(mModule, inName)));
    }

private:
    HMODULE mModule;
#else
    explicit Plugin(const char* inPath) : mModule(::dlopen(inPath, RTLD_NOW | RTLD_LOCAL))
    {
    }
    ~Plugin()
    {
        ::dlclose(mModule);
    }

    template <class Function>
    Function* Find(const char* inName) const
    {
        return reinterpret_cast<Function*>(::dlsym(mModule, inName));
    }

private:
    void* mModule;
#endif
};

class SharedStream : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, mFirst.Find<Stream*()>("MakeStream")) << "the plug-in is not there";
        ASSERT_NE(nullptr, mSecond.Find<Stream*()>("MakeStream")) << "the plug-in is not there";
        mStream = mFirst.Find<Stream*()>("MakeStream")();
    }

    void TearDown() override { mFirst.Find<void(Stream*)>("DeleteStream")(mStream); }

    const Plugin mFirst{TVX_TEST_PLUGIN_1};
    const Plugin mSecond{TVX_TEST_PLUGIN_2};
    Stream* mStream = nullptr;
};

} // namespace

TEST_F(SharedStream, FacetsOfItsMaker_AreFoundByAnotherPlugin)
{
    EXPECT_TRUE(mFirst.Find<bool(const Stream*)>("HasFacets")(mStream));
    EXPECT_TRUE(mSecond.Find<bool(const Stream*)>("HasFacets")(mStream));
}

TEST_F(SharedStream, NumbersWrittenByOnePlugin_AreReadByTheOther)
{
    mSecond.Find<void(Stream*, int, double)>("WriteNumbers")(mStream, -42, 2.5);
    EXPECT_EQ(-42, mFirst.Find<int(const Stream*)>("ReadNumber")(mStream));
    EXPECT_EQ(-42, mSecond.Find<int(const Stream*)>("ReadNumber")(mStream));
}
