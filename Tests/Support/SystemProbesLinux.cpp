#include <SystemProbes.h>

namespace ORLTest {

bool RunsOnEmulator()
{
    return false;
}

bool SystemTakesLongPlainPaths()
{
    return true;
}

} // namespace ORLTest
