// Fails each request to the C heap from the libraries that the PNG decoder uses.
#include <Linux/Images/LinuxPNG.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <libdeflate.h>
#include <spng.h>
#include <string>
#include <vector>

using namespace ORL::Linux;

namespace {

unsigned int sAsked = 0;
unsigned int sRefuseFrom = 0; // number of the first failing request; 0: none fails
bool sRefuseAllFurther = false;
int sBlocks = 0; // allocated and not yet freed

bool IsRefused()
{
    ++sAsked;
    return sRefuseFrom != 0 && (sRefuseAllFurther ? sAsked >= sRefuseFrom : sAsked == sRefuseFrom);
}

void* Counted(void* inBlock)
{
    sBlocks += inBlock != nullptr ? 1 : 0;
    return inBlock;
}

void* Allocate(std::size_t inSize)
{
    return IsRefused() ? nullptr : Counted(std::malloc(inSize));
}

void* AllocateZeros(std::size_t inCount, std::size_t inSize)
{
    return IsRefused() ? nullptr : Counted(std::calloc(inCount, inSize));
}

void* Reallocate(void* inBlock, std::size_t inSize)
{
    if (inBlock == nullptr) {
        return Allocate(inSize);
    }
    return IsRefused() ? nullptr : std::realloc(inBlock, inSize);
}

void Free(void* inBlock)
{
    sBlocks -= inBlock != nullptr ? 1 : 0;
    std::free(inBlock);
}

} // namespace

// The linker redirects the library's calls to the wrapper.
extern "C" spng_ctx* __wrap_spng_ctx_new(int inFlags);
extern "C" spng_ctx* __wrap_spng_ctx_new(int inFlags)
{
    spng_alloc allocator{&Allocate, &Reallocate, &AllocateZeros, &Free};
    return ::spng_ctx_new2(&allocator, inFlags);
}

namespace {

class PNGDecoderSweep : public testing::Test
{
protected:
    PNGDecoderSweep() { ::libdeflate_set_memory_allocator(&Allocate, &Free); }
    ~PNGDecoderSweep() override
    {
        sRefuseFrom = 0;
        ::libdeflate_set_memory_allocator(&std::malloc, &std::free);
    }
};

using Decoder = bool(const ORL::Resources::Bytes&, DecodedPNG&) noexcept;

std::string Pixels(Decoder& inDecode, const std::string& inFile)
{
    ORL::Resources::Bytes bytes;
    bytes.mData = reinterpret_cast<const unsigned char*>(inFile.data());
    bytes.mSize = inFile.size();
    DecodedPNG picture;
    if (!inDecode(bytes, picture)) {
        EXPECT_EQ(nullptr, picture.mPixels);
        return std::string();
    }
    const std::size_t size = std::size_t{picture.mWidth} * picture.mHeight * 4;
    return std::string(reinterpret_cast<const char*>(picture.mPixels.get()), size);
}

// Returns the number of requests. If a request fails, the decoder must fail or still decode the same pixels.
unsigned int Sweep(Decoder& inDecode, const std::string& inFile)
{
    sAsked = 0;
    sRefuseFrom = 0;
    const std::string whole = Pixels(inDecode, inFile);
    const unsigned int count = sAsked;
    EXPECT_EQ(0, sBlocks);
    for (const bool isAllFurther : {false, true}) {
        for (unsigned int number = 1; number <= count; ++number) {
            sAsked = 0;
            sRefuseFrom = number;
            sRefuseAllFurther = isAllFurther;
            const std::string pixels = Pixels(inDecode, inFile);
            EXPECT_TRUE(pixels.empty() || pixels == whole) << "request " << number;
            EXPECT_EQ(0, sBlocks) << "left behind at request " << number;
        }
    }
    sRefuseFrom = 0;
    return count;
}

std::vector<std::string> Files()
{
    std::vector<std::string> files;
    for (const char* const folder : {ORL_FUZZ_CORPUS "/PNGFuzz", ORL_PICTURES}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".png") {
                std::ifstream file(entry.path(), std::ios::binary);
                files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
            }
        }
    }
    return files;
}

} // namespace

TEST_F(PNGDecoderSweep, OfEachFile_WithEachRequestRefused_LeavesNothingBehind)
{
    unsigned int fast = 0;
    unsigned int any = 0;
    unsigned int both = 0;
    for (const std::string& file : Files()) {
        fast += Sweep(DecodeCommonPNG, file);
        any += Sweep(DecodeAnyPNG, file);
        both += Sweep(DecodePNG, file);
    }
    EXPECT_GT(fast, 0u);
    EXPECT_GT(any, 20u);
    EXPECT_GT(both, 20u);
}

// The slower decoder takes over if the faster one runs out of memory.
TEST_F(PNGDecoderSweep, OneRefusedRequestOfTheFastDecoder_CostsNoPicture)
{
    std::ifstream stream(std::string(ORL_PICTURES) + "/two_rows.png", std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    const std::string whole = Pixels(DecodePNG, file);
    ASSERT_EQ(24u, whole.size());
    sAsked = 0;
    sRefuseFrom = 1;
    sRefuseAllFurther = false;
    EXPECT_EQ(whole, Pixels(DecodePNG, file));
    EXPECT_GT(sAsked, 1u);
}
