// A static object that is destroyed on unload but not at process exit.
#pragma once

#include <Platform/Unload.h>

#include <utility>

namespace ORL {

/// Destroys its value when the library is unloaded, and keeps it at process exit for threads that are still running.
/// Only for static objects. The value is at the address of the object.
template <class T>
class UntilUnload
{
public:
    template <class... Arguments>
    explicit constexpr UntilUnload(Arguments&&... inArguments) : mValue(std::forward<Arguments>(inArguments)...)
    {
    }

    ~UntilUnload()
    {
        if (Unload::Platform::IsUnloading_Impl()) {
            mValue.~T();
        }
    }

    UntilUnload(const UntilUnload&) = delete;
    UntilUnload& operator=(const UntilUnload&) = delete;

    constexpr T& Get() { return mValue; }
    constexpr const T& Get() const { return mValue; }

private:
    union
    {
        T mValue;
    };
};

} // namespace ORL
