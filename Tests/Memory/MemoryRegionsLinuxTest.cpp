#include <Platform/MemoryRegions.h>

#include <FaultySystemCallsLinux.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>

using namespace ORL::MemoryRegions;
using ORLTest::FaultySystemCalls;

namespace {

std::uint64_t Address(const void* inAddress)
{
    return reinterpret_cast<std::uintptr_t>(inAddress);
}

Region RegionAt(std::uint64_t inAddress)
{
    Platform::Walk* const walk = Platform::OpenWalk_Impl();
    Region region{0, 0};
    Platform::QueryRegion_Impl(*walk, inAddress, region);
    Platform::CloseWalk_Impl(walk);
    return region;
}

constexpr std::size_t kPage = 4096;

// The region list that the next walk reads instead of the process's own.
std::string sList;

ssize_t ReadList(int, void* outBuffer, std::size_t inSize, off_t inPosition)
{
    const std::size_t position = static_cast<std::size_t>(inPosition);
    const std::size_t size = std::min({inSize, sList.size() - position, std::size_t{100}});
    std::memcpy(outBuffer, sList.data() + position, size);
    return static_cast<ssize_t>(size);
}

} // namespace

TEST(MemoryRegions, MappingWithoutAccess_IsReservedAndFreeOnceItIsGone)
{
    char* const pages = static_cast<char*>(::mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(pages, MAP_FAILED);
    ASSERT_EQ(::mprotect(pages + kPage, kPage, PROT_READ), 0);
    EXPECT_EQ(RegionAt(Address(pages)).mState, kReserved);
    EXPECT_EQ(RegionAt(Address(pages)).mSize, kPage);
    EXPECT_EQ(RegionAt(Address(pages + kPage)).mState, kCommitted);
    EXPECT_EQ(RegionAt(Address(pages + kPage)).mSize, kPage);
    EXPECT_EQ(RegionAt(Address(pages + 2 * kPage)).mState, kReserved);
    ASSERT_EQ(::munmap(pages + kPage, kPage), 0);
    EXPECT_EQ(RegionAt(Address(pages + kPage)).mState, kFree);
    EXPECT_EQ(RegionAt(Address(pages + kPage)).mSize, kPage);
    ::munmap(pages, kPage);
    ::munmap(pages + 2 * kPage, kPage);
}

TEST(MemoryRegions, ListInPieces_IsReadWhole)
{
    sList = "00010000-00020000 r--p 00000000 00:00 0  /a path with blanks/" + std::string(3000, 'x')
            + "\n00030000-00040000 ---p 00000000 00:00 0\n"
              "00040000-00041000 --xp 00000000 00:00 0\n"
              "ffffffffff600000-ffffffffff601000 --xp 00000000 00:00 0                  [vsyscall]\n";
    FaultySystemCalls calls;
    calls.Underlying().mPRead = &ReadList;
    calls.Fail(FaultySystemCalls::kPRead, 2, EINTR);
    struct Row
    {
        std::uint64_t mAddress;
        std::uint64_t mSize;
        std::uint32_t mState;
    };
    const Row rows[] = {{0, 0x10000, kFree},           {0x10000, 0x10000, kCommitted},
                        {0x20000, 0x10000, kFree},     {0x30000, 0x10000, kReserved},
                        {0x40000, 0x1000, kCommitted}, {0x41000, 0x7ffffffff000 - 0x41000, kFree}};
    Platform::Walk* const walk = Platform::OpenWalk_Impl();
    Region region{0, 0};
    for (const Row& row : rows) {
        ASSERT_TRUE(Platform::QueryRegion_Impl(*walk, row.mAddress, region)) << row.mAddress;
        EXPECT_EQ(region.mSize, row.mSize) << row.mAddress;
        EXPECT_EQ(region.mState, row.mState) << row.mAddress;
    }
    EXPECT_FALSE(Platform::QueryRegion_Impl(*walk, 0x7ffffffff000, region));
    Platform::CloseWalk_Impl(walk);
}

TEST(MemoryRegions, ListCannotBeOpened_ThereIsNoWalk)
{
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kOpen, 1, EMFILE);
    EXPECT_EQ(Platform::OpenWalk_Impl(), nullptr);
}

TEST(MemoryRegions, ListEndsInAnError_TheRestIsNotToldAsFree)
{
    sList = "00010000-00020000 rw-p 00000000 00:00 0\n00030000-00040000 rw-p 00000000 00:00 0\n";
    FaultySystemCalls calls;
    calls.Underlying().mPRead = &ReadList;
    calls.Fail(FaultySystemCalls::kPRead, 2, EIO, FaultySystemCalls::kForEver);
    Platform::Walk* const walk = Platform::OpenWalk_Impl();
    ASSERT_NE(walk, nullptr);
    Region region{0, 0};
    EXPECT_TRUE(Platform::QueryRegion_Impl(*walk, 0x30000, region));
    EXPECT_EQ(region.mSize, 0x10000u);
    EXPECT_FALSE(Platform::QueryRegion_Impl(*walk, 0x40000, region));
    Platform::CloseWalk_Impl(walk);
    EXPECT_EQ(calls.Count(FaultySystemCalls::kClose), 1u);
}
