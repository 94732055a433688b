#include <SystemProbes.h>

namespace ORLTest {

bool RunsOnEmulator()
{
    return false;
}

} // namespace ORLTest
