// What each symbol of tvxcore is marked with so that hosts can link to it.
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

// What is the same in every library that compiles it, and needs no name outside of it.
#if defined(_WIN32)
#  define TVXCORE_LOCAL
#else
#  define TVXCORE_LOCAL __attribute__((visibility("hidden")))
#endif

// Whether other libraries can reach a thread-local variable of this one directly.
#if defined(_WIN32)
#  define TVXCORE_HAS_SHARED_THREAD_LOCALS 0
#else
#  define TVXCORE_HAS_SHARED_THREAD_LOCALS 1
#endif
