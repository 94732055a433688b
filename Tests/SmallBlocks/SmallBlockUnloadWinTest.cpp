#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <thread>

#include <windows.h>

namespace {

/// The plug-in, which loads the shared library.
class Guest
{
public:
    Guest() : mModule(::LoadLibraryA(TVXCORE_TEST_GUEST)) { EXPECT_NE(mModule, nullptr) << ::GetLastError(); }
    ~Guest() { ::FreeLibrary(mModule); }

    template <class Function>
    Function Find(const char* inFunction) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(mModule, inFunction)));
    }

    bool Call(const char* inFunction) const { return Find<bool (*)()>(inFunction)(); }
    void* Keep() const { return Find<void* (*)()>("GuestKeep")(); }

private:
    HMODULE mModule;
};

std::size_t TakenBytes()
{
    std::size_t taken = 0;
    MEMORY_BASIC_INFORMATION region;
    for (char* address = nullptr; ::VirtualQuery(address, &region, sizeof(region)) != 0; address += region.RegionSize) {
        taken += region.State != MEM_FREE ? region.RegionSize : 0;
    }
    return taken;
}

} // namespace

TEST(SmallBlockUnload, LoadedAndUnloadedAHundredTimes_MemoryDoesNotGrow)
{
    std::size_t early = 0;
    for (int round = 0; round < 120; ++round) {
        {
            const Guest guest;
            EXPECT_TRUE(guest.Call("GuestUse"));
            EXPECT_TRUE(guest.Call("GuestUseOnThread"));
        }
        ASSERT_EQ(::GetModuleHandleA("libtvxcore-" ORL_ABI ".dll"), nullptr);
        if (round == 19) {
            early = TakenBytes();
        }
    }
    // If each of a hundred rounds leaked a cluster, the growth would be 100 MiB.
    EXPECT_LT(TakenBytes(), early + 1024 * 1024);
}

TEST(SmallBlockUnload, BlockIsOutstandingAtTheUnloading_ItStaysReadable)
{
    void* kept = nullptr;
    {
        const Guest guest;
        kept = guest.Keep();
        ASSERT_NE(kept, nullptr);
        std::memset(kept, 0x77, 100);
    }
    EXPECT_EQ(static_cast<unsigned char*>(kept)[99], 0x77);
}
