// Floor: Core
// The symbol export macro of ORLFoundation, and the platform properties that headers depend on.
#pragma once

#if defined(_WIN32)
#  if defined(ORLFoundation_BUILDING)
#    define ORL_API __declspec(dllexport)
#  else
#    define ORL_API
#  endif
#else
#  define ORL_API __attribute__((visibility("default")))
#endif

// Hides a nested class that hosts do not use, although the enclosing class is exported.
#if defined(_WIN32)
#  define ORL_LOCAL
#else
#  define ORL_LOCAL __attribute__((visibility("hidden")))
#endif

// 1 if CriticalSection uses the library's own lock, 0 if it uses the lock of the OS.
#if defined(_WIN32)
#  define ORL_LOCK_IS_OURS 0
#else
#  define ORL_LOCK_IS_OURS 1
#endif

// 1 if ORLFoundation defines the record of a hardware exception, 0 if the headers of the OS define it.
#if defined(_WIN32)
#  define ORL_EXCEPTION_RECORD_IS_OURS 0
#else
#  define ORL_EXCEPTION_RECORD_IS_OURS 1
#endif

// 1 if built with the thread sanitizer.
#if defined(__SANITIZE_THREAD__)
#  define ORL_THREAD_SANITIZER 1
#elif defined(__has_feature)
#  if __has_feature(thread_sanitizer)
#    define ORL_THREAD_SANITIZER 1
#  endif
#endif
#if !defined(ORL_THREAD_SANITIZER)
#  define ORL_THREAD_SANITIZER 0
#endif
