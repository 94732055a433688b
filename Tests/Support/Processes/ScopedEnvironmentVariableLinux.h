// Changes an environment variable for the duration of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace ORLTest {

/// Sets one variable, or removes it if inValue is null. The destructor restores the old value.
class ScopedEnvironmentVariable
{
public:
    ScopedEnvironmentVariable(const char* inName, const char* inValue) : mName(inName)
    {
        if (const char* const earlier = std::getenv(inName)) {
            mEarlier = earlier;
        }
        Set(inValue);
    }
    ~ScopedEnvironmentVariable() { Set(mEarlier ? mEarlier->c_str() : nullptr); }
    ScopedEnvironmentVariable(const ScopedEnvironmentVariable&) = delete;
    ScopedEnvironmentVariable& operator=(const ScopedEnvironmentVariable&) = delete;

private:
    void Set(const char* inValue)
    {
        if (inValue != nullptr) {
            ::setenv(mName, inValue, 1);
        } else {
            ::unsetenv(mName);
        }
    }

    const char* const mName;
    std::optional<std::string> mEarlier;
};

} // namespace ORLTest
