// A module of a host that ends with threads at work.
#pragma once

#if defined(_WIN32)
#  if defined(tvxcore_exit_module_EXPORTS)
#    define EXIT_MODULE_API __declspec(dllexport)
#  else
#    define EXIT_MODULE_API
#  endif
#else
#  define EXIT_MODULE_API __attribute__((visibility("default")))
#endif

/// Sets executors and repeated functions to work, and returns when they are at it. They are held by statics of the
/// module, which the end of the process destroys, or by nobody.
EXIT_MODULE_API void StartWork(bool inIsHeldByStatics);

/// Sets threads to work that do nothing but allocate and dispose, and returns when they are at it. A static of the
/// module allocates and disposes at the end of the process, and ends it with 99 when it finds a block that is null or
/// somebody else's too.
EXIT_MODULE_API void StartAllocating();
