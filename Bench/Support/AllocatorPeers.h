// The allocators that the small block allocator is compared with.
//
// Each peer is loaded so that it is reached only by address: elsewhere malloc remains the C library's. A peer is
// a type with Allocate and Dispose, so that the benchmark's loop is compiled identically for each. Each call to a peer
// is one call through a pointer, like a program's call into a shared library.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace Bench {

struct Glibc
{
    static inline void* (*volatile sFindAllocate)(std::size_t) = &std::malloc;
    static inline void (*volatile sFindFree)(void*) = &std::free;
    static inline void* (*sAllocate)(std::size_t) = nullptr;
    static inline void (*sFree)(void*) = nullptr;

    static bool Load()
    {
        // Reads the pointers through a volatile, so that the compiler cannot see which functions are called.
        sAllocate = sFindAllocate;
        sFree = sFindFree;
        return true;
    }

    static void* Allocate(std::size_t inSize) { return sAllocate(inSize); }
    static void Dispose(void* inBlock, std::size_t) { sFree(inBlock); }
    static constexpr const char* kName = "glibc";
};

namespace Detail {

inline void* LoadPeer(const char* inLibrary)
{
    void* const library = ::dlopen(inLibrary, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "peer left out: %s\n", ::dlerror());
    }
    return library;
}

template <class Function>
bool Find(void* inLibrary, const char* inName, Function& outFunction)
{
    outFunction = inLibrary != nullptr ? reinterpret_cast<Function>(::dlsym(inLibrary, inName)) : nullptr;
    return outFunction != nullptr;
}

} // namespace Detail

struct Tcmalloc
{
    static inline void* (*sAllocate)(std::size_t) = nullptr;
    static inline void (*sFree)(void*, std::size_t) = nullptr;

    static bool Load()
    {
        void* const library = Detail::LoadPeer("libtcmalloc_minimal.so.4");
        return Detail::Find(library, "tc_malloc", sAllocate) && Detail::Find(library, "tc_free_sized", sFree);
    }

    static void* Allocate(std::size_t inSize) { return sAllocate(inSize); }
    static void Dispose(void* inBlock, std::size_t inSize) { sFree(inBlock, inSize); }
    static constexpr const char* kName = "tcmalloc (sized)";
};

struct Jemalloc
{
    static inline void* (*sAllocate)(std::size_t) = nullptr;
    static inline void (*sFree)(void*, std::size_t, int) = nullptr;

    static bool Load()
    {
        void* const library = Detail::LoadPeer("libjemalloc.so.2");
        return Detail::Find(library, "malloc", sAllocate) && Detail::Find(library, "sdallocx", sFree);
    }

    static void* Allocate(std::size_t inSize) { return sAllocate(inSize); }
    static void Dispose(void* inBlock, std::size_t inSize) { sFree(inBlock, inSize, 0); }
    static constexpr const char* kName = "jemalloc (sized)";
};

struct Mimalloc
{
    static inline void* (*sAllocate)(std::size_t) = nullptr;
    static inline void (*sFree)(void*) = nullptr;

    static bool Load()
    {
        void* const library = Detail::LoadPeer("libmimalloc.so.2.0");
        return Detail::Find(library, "mi_malloc", sAllocate) && Detail::Find(library, "mi_free", sFree);
    }

    static void* Allocate(std::size_t inSize) { return sAllocate(inSize); }
    static void Dispose(void* inBlock, std::size_t) { sFree(inBlock); }
    static constexpr const char* kName = "mimalloc";
};

/// jemalloc needs 2.6 KiB of static thread-local storage, more than the loader reserves for libraries that are
/// loaded later. The reserve cannot be changed after the start, so the program restarts itself with a larger
/// one.
inline void RestartWithLargerStaticTls(char** inArguments)
{
    if (std::getenv("GLIBC_TUNABLES") == nullptr) {
        ::setenv("GLIBC_TUNABLES", "glibc.rtld.optional_static_tls=16384", 1);
        ::execv("/proc/self/exe", inArguments);
    }
}

} // namespace Bench
