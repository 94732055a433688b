// Converts and folds arbitrary bytes, and compares the conversions with a reference from the Unicode standard's table.
#include <UtfCheck.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    if (const char* const fault = ORLTest::CheckUtf(inData, inSize)) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
