// Selects an engine for asynchronous reads. The tests of AsyncFileReader run once per engine of this platform.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ORLTest {

/// While an instance exists, asynchronous reads start with the selected engine.
class AsyncEngine
{
public:
    virtual ~AsyncEngine() = default;
};

/// Returns the names of this platform's engines; each is a test parameter.
std::vector<std::string> AsyncEngineNames();

std::unique_ptr<AsyncEngine> UseAsyncEngine(const std::string& inName);

} // namespace ORLTest
