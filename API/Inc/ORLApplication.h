// Floor: System
// The base class of a host's application object.
#pragma once

#include <ORLAtomic.h>
#include <ORLConfig.h>
#include <ORLModule.h>
#include <ORLObjectPtr.h>
#include <tvxcore/String.h>

#include <cstdint>

namespace ORL {

/// The host's application object, of which a process has at most one. The host derives from it, makes the object at
/// start-up and destroys it at the end, on its main thread, before and after other threads use Instance. The library
/// makes none.
///
/// Not thread-safe: Instance reads a plain pointer, and GetApplicationFilePath fills the cache of its module on the first
/// call.
class ORL_API Application
{
public:
    /// Shares both modules and copies the text and the value. inApplicationModule is the one whose path
    /// GetApplicationFilePath returns; the other three are kept for the host. Makes this object the instance, after an
    /// input contract that there is none. Throws std::bad_alloc.
    Application(const ObjectPtr<Module, AtomicValue>& inModule,
                const ObjectPtr<Module, AtomicValue>& inApplicationModule, const UTF16String& inStartupText,
                int inStartupValue);

    /// From here on there is no instance.
    virtual ~Application();

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The host's main loop, or what it puts in that place. The library does not call it.
    virtual int Run() = 0;

    /// For hosts that act when nothing else is to be done. Does nothing here, and the library does not call it.
    virtual void Idle();

    /// Returns the application, or null if there is none.
    static Application* Instance();

    /// Returns the path of the application's file. Fires the assertion of ObjectPtr if the application module is empty.
    UTF16String GetApplicationFilePath();

private:
    ObjectPtr<Module, AtomicValue> mModule;
    ObjectPtr<Module, AtomicValue> mApplicationModule;
    UTF16String mStartupText;
    std::int32_t mStartupValue;
};

} // namespace ORL
