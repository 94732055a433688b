#include "PlugIns.h"

#include <ORLNativeHandles.h>

#include <atomic>
#include <cstddef>

// The linker redirects the library's calls to this function to the test.
namespace {

std::atomic<unsigned int> sPathQueries{0};

} // namespace

#if defined(_WIN32)
#  define ORL_MANGLED_PATH_QUERY "_ZN3ORL7Modules8Platform22GetModuleFileName_ImplEP11HINSTANCE__Pty"
#else
#  define ORL_MANGLED_PATH_QUERY "_ZN3ORL7Modules8Platform22GetModuleFileName_ImplEP11HINSTANCE__Ptm"
#endif

extern "C" void RealPathQuery(HINSTANCE, unsigned short*, std::size_t) __asm__("__real_" ORL_MANGLED_PATH_QUERY);
extern "C" void WrappedPathQuery(HINSTANCE, unsigned short*, std::size_t) __asm__("__wrap_" ORL_MANGLED_PATH_QUERY);
extern "C" void WrappedPathQuery(HINSTANCE inModule, unsigned short* outBuffer, std::size_t inSize)
{
    ++sPathQueries;
    RealPathQuery(inModule, outBuffer, inSize);
}

namespace ORLTest {

unsigned int CountOfPathQueries()
{
    return sPathQueries;
}

} // namespace ORLTest

TEST(PlugIns, LanguageScope_IsTheLanguageOfTheLookups)
{
    const ORLTest::ModulePtr module = ORLTest::LoadPlugIn("resources_lookup");
    int size = 0;
    const ORLTest::LanguageScope german(1031);
    const void* data = module->FindLocalizedResource(ORL::MakeResourceID(115), ORL::MakeResourceID(10), size);
    EXPECT_EQ("de", ORLTest::TextOf(data, size));
    const ORLTest::LanguageScope japanese(1041);
    data = module->FindLocalizedResource(ORL::MakeResourceID(115), ORL::MakeResourceID(10), size);
    EXPECT_EQ("ja", ORLTest::TextOf(data, size));
}
