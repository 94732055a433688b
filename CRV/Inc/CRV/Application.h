// Name, version and kind of the host application.
#pragma once

#include <CRV/Config.h>

namespace CRV {

/// The kind of host. Only kApplicationType_SystemCodePage changes the behaviour of the library.
enum ApplicationType : int {
    kApplicationType_Default = 0,
    /// Conversions to and from a code page always use the system's default page, regardless of the language of the
    /// program.
    kApplicationType_SystemCodePage = 1
};

/// Return name, version and kind of the host. Name and version are part of the path of the host's settings.
///
/// The defaults are "ORL", "1.0" and kApplicationType_Default. A returned string stays valid while this library is
/// loaded, even after the host sets a new one. Thread-safe. Never throws.
CRV_API const char* GetApplicationName() noexcept;
CRV_API const char* GetApplicationVersion() noexcept;
CRV_API ApplicationType GetApplicationType() noexcept;

/// Set the values that the functions above return. The string is UTF-8 and is copied; null restores the default. Call
/// each function once, before ORL::Foundation::Initialize. Every distinct string is kept: up to 4096 bytes in
/// static memory, the rest on the heap, never freed. May throw std::bad_alloc, and then changes nothing. Thread-safe.
CRV_API void SetApplicationName(const char* inName);
CRV_API void SetApplicationVersion(const char* inVersion);
CRV_API void SetApplicationType(ApplicationType inType) noexcept;

} // namespace CRV
