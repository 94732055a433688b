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

/// The host's application object, of which a process has at most one. The host derives from it and creates the object
/// at start-up; the library does not create one.
///
/// Owner:    the host. The host creates and destroys the object on its main thread, while no other thread uses
///           Instance.
/// Threads:  not thread-safe: Instance reads a plain pointer, and the first call of GetApplicationFilePath fills a
///           cache in the application module.
/// Failure:  the constructor and GetApplicationFilePath throw std::bad_alloc.
class ORL_API Application
{
public:
    /// Makes this object the instance. Keeps references to both modules and copies of inStartupText and inStartupValue.
    /// The library uses only inApplicationModule, whose path GetApplicationFilePath returns. Fires an input contract if
    /// there already is an instance. Throws std::bad_alloc.
    Application(const ObjectPtr<Module, AtomicValue>& inModule,
                const ObjectPtr<Module, AtomicValue>& inApplicationModule, const UTF16String& inStartupText,
                int inStartupValue);

    /// Clears the instance.
    virtual ~Application();

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The host's main loop, or its equivalent. The library does not call Run.
    virtual int Run() = 0;

    /// Does nothing by default; a host may override it to do idle work. The library does not call Idle.
    virtual void Idle();

    /// Returns the application, or null if there is none.
    static Application* Instance();

    /// Returns the path of the application's file. Fires ObjectPtr's assertion if the application module is null.
    UTF16String GetApplicationFilePath();

private:
    ObjectPtr<Module, AtomicValue> mModule;
    ObjectPtr<Module, AtomicValue> mApplicationModule;
    UTF16String mStartupText;
    std::int32_t mStartupValue;
};

} // namespace ORL
