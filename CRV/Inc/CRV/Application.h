// What the host application says of itself.
#pragma once

#include <CRV/Config.h>

namespace CRV {

/// The kind of host. Only one kind makes a difference to the library.
enum ApplicationType : int
{
    kApplicationType_Default = 0,
    /// Text in a code page is always in the system's own one, whatever the language of the program.
    kApplicationType_SystemCodePage = 1
};

/// Name, version and kind of the host. The name and the version become part of the path of the host's settings.
///
/// Before the host says anything they are "ORL", "1.0" and kApplicationType_Default. A text that was handed out stays
/// valid for as long as this library is loaded, also after the host sets another.
/// Threads:  every function may be called from any thread.
CRV_API const char* GetApplicationName() noexcept;
CRV_API const char* GetApplicationVersion() noexcept;
CRV_API ApplicationType GetApplicationType() noexcept;

/// Set what the functions above answer. The text is UTF-8 and is copied; null brings the default back. Hosts do this
/// once, before ORL::Foundation::Initialize. Each different text keeps its memory: the first 4096 bytes of them are part of the
/// library, the rest is never freed.
/// Throws std::bad_alloc when memory is out; nothing has changed then.
CRV_API void SetApplicationName(const char* inName);
CRV_API void SetApplicationVersion(const char* inVersion);
CRV_API void SetApplicationType(ApplicationType inType) noexcept;

} // namespace CRV
