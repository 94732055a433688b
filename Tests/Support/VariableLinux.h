// Changes an environment variable for the duration of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace ORLTest {

/// Sets one variable, or removes it if inValue is null. The destructor restores it.
class Variable
{
public:
    Variable(const char* inName, const char* inValue) : mName(inName)
    {
        if (const char* const earlier = std::getenv(inName)) {
            mEarlier = earlier;
        }
        Set(inValue);
    }
    ~Variable() { Set(mEarlier ? mEarlier->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

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
