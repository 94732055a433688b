// Prints the digest of every sweep: color_digests STEP
#include "ColorSweeps.h"

#include <cstdio>
#include <cstdlib>

int main(int inCount, char** inArguments)
{
    const int step = inCount > 1 ? std::atoi(inArguments[1]) : 1;
    for (const ORLTest::Sweep& sweep : ORLTest::kSweeps) {
        std::printf("%-20s %016llx\n", sweep.mName,
                    static_cast<unsigned long long>(sweep.mRun(static_cast<std::uint32_t>(step > 0 ? step : 1))));
    }
    return 0;
}
