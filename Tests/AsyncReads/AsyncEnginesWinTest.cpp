#include "AsyncEngines.h"

namespace ORLTest {

std::vector<std::string> AsyncEngineNames()
{
    return {"Port"};
}

std::unique_ptr<AsyncEngine> UseAsyncEngine(const std::string&)
{
    return std::make_unique<AsyncEngine>();
}

} // namespace ORLTest
