// A module of a host that exits while threads are working.
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

/// Starts executors and repeated functions, and returns when they run. If inIsHeldByStatics, statics of the module hold
/// the executors and functions, which are then destroyed when the process exits; if not, nothing destroys them.
EXIT_MODULE_API void StartWork(bool inIsHeldByStatics);

/// Starts threads that only allocate and free blocks, and returns when they run. At process exit a static of the module
/// allocates and frees blocks; it exits with 99 if it gets a null block or a block that is also used
/// elsewhere.
EXIT_MODULE_API void StartAllocating();
