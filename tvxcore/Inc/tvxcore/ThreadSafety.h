// Annotations that say which lock guards which variable. clang checks them with -Wthread-safety; for every other
// compiler they are empty.
//
//   ORL::CriticalSection mLock;
//   int mCount TVXCORE_GUARDED_BY(mLock) = 0;
//   void CountLocked() TVXCORE_REQUIRES(mLock);
#pragma once

#if defined(__clang__)
#  define TVXCORE_ANNOTATION(inAttribute) __attribute__((inAttribute))
#else
#  define TVXCORE_ANNOTATION(inAttribute)
#endif

/// On a class: its objects are locks.
#define TVXCORE_LOCK TVXCORE_ANNOTATION(capability("mutex"))

/// On a class: its objects hold a lock from construction to destruction.
#define TVXCORE_SCOPED_LOCK TVXCORE_ANNOTATION(scoped_lockable)

/// On a variable: only a thread that holds the lock accesses it.
#define TVXCORE_GUARDED_BY(inLock) TVXCORE_ANNOTATION(guarded_by(inLock))

/// On a function: its caller holds the locks before the call and after it.
#define TVXCORE_REQUIRES(...) TVXCORE_ANNOTATION(requires_capability(__VA_ARGS__))

/// On a function: its caller does not hold the locks.
#define TVXCORE_EXCLUDES(...) TVXCORE_ANNOTATION(locks_excluded(__VA_ARGS__))

/// On a function: it locks and returns with the lock held. Without an argument the object itself is the lock.
#define TVXCORE_ACQUIRES(...) TVXCORE_ANNOTATION(acquire_capability(__VA_ARGS__))

/// On a function: it tries to lock, and holds the lock if it returns the first argument.
#define TVXCORE_TRIES_TO_ACQUIRE(...) TVXCORE_ANNOTATION(try_acquire_capability(__VA_ARGS__))

/// On a function: it unlocks a lock that its caller holds.
#define TVXCORE_RELEASES(...) TVXCORE_ANNOTATION(release_capability(__VA_ARGS__))

/// On a function: clang does not check its body. A comment on the function states the reason.
#define TVXCORE_UNCHECKED_LOCKING TVXCORE_ANNOTATION(no_thread_safety_analysis)
