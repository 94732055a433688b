// Symbol visibility macros of tvxcore.
#pragma once

#if defined(_WIN32)
#  if defined(tvxcore_BUILDING)
#    define TVXCORE_API __declspec(dllexport)
#  else
#    define TVXCORE_API
#  endif
#else
#  define TVXCORE_API __attribute__((visibility("default")))
#endif

// Marks a symbol that is not exported: every library that uses it compiles its own identical copy.
#if defined(_WIN32)
#  define TVXCORE_LOCAL
#else
#  define TVXCORE_LOCAL __attribute__((visibility("hidden")))
#endif

// 1 if other libraries can access a thread-local variable of this one directly.
#if defined(_WIN32)
#  define TVXCORE_HAS_SHARED_THREAD_LOCALS 0
#else
#  define TVXCORE_HAS_SHARED_THREAD_LOCALS 1
#endif
