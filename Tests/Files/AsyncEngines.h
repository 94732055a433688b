// The engines that asynchronous reads may go through here: the reader's whole suite runs once with each.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ORLTest {

/// While it lives, the machinery that is started uses that engine.
class AsyncEngine
{
public:
    virtual ~AsyncEngine() = default;
};

/// Names of the engines of this platform; each is a test's parameter.
std::vector<std::string> AsyncEngineNames();

std::unique_ptr<AsyncEngine> UseAsyncEngine(const std::string& inName);

} // namespace ORLTest
