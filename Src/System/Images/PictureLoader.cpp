#include <Images/PictureLoader.h>

#include <Images/Premultiply.h>
#include <ORLDebug.h>
#include <Platform/Images.h>

#include <limits>
#include <memory>
#include <new>

namespace ORL {
namespace Images {

using namespace Platform;

namespace {

constexpr std::size_t kBytesInPixel = 4;
constexpr std::size_t kHeapFlush = 16000000;

template <class T, void (*Free)(T*)>
struct Freer
{
    void operator()(T* inThing) const { Free(inThing); }
};

using PicturePtr = std::unique_ptr<Picture, Freer<Picture, &DisposePicture_Impl>>;
using StreamPtr = std::unique_ptr<Stream, Freer<Stream, &ReleaseStream_Impl>>;
using Block = std::unique_ptr<unsigned char[]>;

// The traits of the two variants of the loader: behaviour, and line numbers and names in check messages.
struct RowsExchanged
{
    static constexpr bool kIsFlipped = true;
    static constexpr bool kTestsLocks = true;
    static constexpr long kCopyLine = 84;
    static constexpr long kObjectLine = 104;
    static constexpr char kFunction[] = "`anonymous-namespace'::LoadGDIPlusBitmap";
};

struct RowsInOrder
{
    static constexpr bool kIsFlipped = false;
    static constexpr bool kTestsLocks = false;
    static constexpr long kCopyLine = 466;
    static constexpr long kObjectLine = 486;
    static constexpr char kFunction[] = "`anonymous-namespace'::LoadGDIPlusBitmapWTL";
};

// In a fragmented heap the decoder may run out of memory. Allocating and freeing a large block makes the heap return
// its free pages. The volatile store prevents the compiler from removing the allocation.
void FlushHeap()
{
    const Block block(new (std::nothrow) unsigned char[kHeapFlush]);
    if (block != nullptr) {
        *static_cast<volatile unsigned char*>(block.get()) = 0;
    }
}

enum class Retry { kNever, kOnce };

// Locks the pixels of a whole picture during its lifetime.
class Lock
{
public:
    Lock(Picture* inPicture, unsigned int inMode, int inFormat, Retry inRetry) : mPicture(inPicture)
    {
        mStatus = LockPixels_Impl(mPicture, inMode, inFormat, mPixels);
        if (mStatus != 0 && inRetry == Retry::kOnce) {
            FlushHeap();
            mStatus = LockPixels_Impl(mPicture, inMode, inFormat, mPixels);
        }
    }
    ~Lock()
    {
        if (IsGood()) {
            UnlockPixels_Impl(mPicture, mPixels);
        }
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    bool IsGood() const noexcept { return mStatus == 0; }

    std::uint32_t* Row(std::size_t inRow) const noexcept
    {
        return reinterpret_cast<std::uint32_t*>(mPixels.mPixels + static_cast<std::ptrdiff_t>(inRow) * mPixels.mStride);
    }

private:
    Picture* const mPicture;
    LockedPixels mPixels;
    int mStatus;
};

// If locking fails, the variant that tests its locks returns false; the other returns true without copying.
template <class Form>
bool CopyPixels(Picture* inSource, Picture* inDestination, std::size_t inWidth, std::size_t inHeight)
{
    constexpr Retry kRetry = Form::kTestsLocks ? Retry::kOnce : Retry::kNever;
    const Lock source(inSource, kLockRead, kFormat32bppARGB, kRetry);
    if (Form::kTestsLocks && !source.IsGood()) {
        return false;
    }
    const Lock destination(inDestination, kLockReadWrite, kFormat32bppPARGB, kRetry);
    if (!source.IsGood() || !destination.IsGood()) {
        return !Form::kTestsLocks;
    }
    for (std::size_t y = 0; y < inHeight; ++y) {
        Premultiply(source.Row(y), destination.Row(Form::kIsFlipped ? inHeight - 1 - y : y), inWidth);
    }
    return true;
}

// Returns false if the pixels do not fit into the address space.
bool SizeOfBlock(std::size_t inWidth, std::size_t inHeight, std::size_t& outSize) noexcept
{
    constexpr std::size_t kLargest = std::numeric_limits<std::ptrdiff_t>::max();
    if (inWidth == 0 || inHeight == 0 || inWidth > kLargest / kBytesInPixel / inHeight) {
        return false;
    }
    outSize = inWidth * inHeight * kBytesInPixel;
    return true;
}

// A variant that does not test its locks may create a bitmap whose pixels were never written, so they start
// transparent.
template <class Form>
Block AllocateBlock(std::size_t inSize)
{
    return Block(Form::kTestsLocks ? new (std::nothrow) unsigned char[inSize]
                                   : new (std::nothrow) unsigned char[inSize]());
}

template <class Form>
HBITMAP BitmapOf(Picture* inSource)
{
    const std::size_t width = GetWidth_Impl(inSource);
    const std::size_t height = GetHeight_Impl(inSource);
    std::size_t size = 0;
    if (!SizeOfBlock(width, height, size)) {
        return nullptr;
    }
    Block block = AllocateBlock<Form>(size);
    if (block == nullptr) {
        return nullptr;
    }
    const PicturePtr destination(CreateOnBlock_Impl(static_cast<unsigned int>(width), static_cast<unsigned int>(height),
                                                    width * kBytesInPixel, kFormat32bppPARGB, block.get()));
    if (destination == nullptr || !CopyPixels<Form>(inSource, destination.get(), width, height)) {
        return nullptr;
    }
    HBITMAP bitmap = nullptr;
    return CreateBitmap_Impl(destination.get(), block, bitmap) == 0 ? bitmap : nullptr;
}

template <class Form>
HBITMAP BitmapOfStream(Stream* inStream)
{
    const PicturePtr bitmapMask(CreateFromStream_Impl(inStream));
    ORL_ASSERT_MESSAGE_AT(bitmapMask.get() != nullptr, "bitmapMask.get() != 0", "", "WinModule", Form::kObjectLine,
                          Form::kFunction);
    if (bitmapMask == nullptr || GetLastStatus_Impl(bitmapMask.get()) != 0) {
        return nullptr;
    }
    return BitmapOf<Form>(bitmapMask.get());
}

void* FindPNG(const ResourceCollection& inResources, short inID, bool inLocalized, int& outSize)
{
    const unsigned short* const name = MakeResourceID(static_cast<unsigned short>(inID));
    const unsigned short* const type = TVX_UTF16("PNG");
    return inLocalized ? inResources.FindLocalizedResource(name, type, outSize)
                       : inResources.LoadResource(name, type, outSize);
}

template <class Form>
HBITMAP Load(const ResourceCollection& inResources, short inID, bool inLocalized)
{
    int size = 0;
    const void* const data = FindPNG(inResources, inID, inLocalized, size);
    if (data == nullptr || size < 0) {
        return nullptr;
    }
    MemoryCopy* const resDataCopyH = CopyToMemory_Impl(data, static_cast<std::size_t>(size));
    ORL_ASSERT_MESSAGE_AT(resDataCopyH != nullptr, "resDataCopyH != NULL", "", "WinModule", Form::kCopyLine,
                          Form::kFunction);
    if (resDataCopyH == nullptr) {
        return nullptr;
    }
    const StreamPtr stream(CreateStream_Impl(resDataCopyH));
    return stream != nullptr ? BitmapOfStream<Form>(stream.get()) : nullptr;
}

} // namespace

HBITMAP LoadGDIPlusBitmap(const ResourceCollection& inResources, short inID, bool inLocalized)
{
    return Load<RowsExchanged>(inResources, inID, inLocalized);
}

HBITMAP LoadGDIPlusBitmapWTL(const ResourceCollection& inResources, short inID, bool inLocalized)
{
    return Load<RowsInOrder>(inResources, inID, inLocalized);
}

HBITMAP LoadBitmapOfFile(const UTF16String& inPath)
{
    const PicturePtr picture(CreateFromFile_Impl(inPath));
    if (picture == nullptr || GetLastStatus_Impl(picture.get()) != 0) {
        return nullptr;
    }
    return BitmapOf<RowsExchanged>(picture.get());
}

bool DecodePicture(const Resources::Bytes& inFile, PixelPicture& outPicture)
{
    MemoryCopy* const copy = CopyToMemory_Impl(inFile.mData, inFile.mSize);
    const StreamPtr stream(copy != nullptr ? CreateStream_Impl(copy) : nullptr);
    const PicturePtr source(stream != nullptr ? CreateFromStream_Impl(stream.get()) : nullptr);
    if (source == nullptr || GetLastStatus_Impl(source.get()) != 0) {
        return false;
    }
    PixelPicture picture;
    picture.mWidth = GetWidth_Impl(source.get());
    picture.mHeight = GetHeight_Impl(source.get());
    const Lock lock(source.get(), kLockRead, kFormat32bppARGB, Retry::kOnce);
    std::size_t size = 0;
    if (!lock.IsGood() || !SizeOfBlock(picture.mWidth, picture.mHeight, size)) {
        return false;
    }
    picture.mPixels.resize(size / kBytesInPixel);
    for (std::size_t y = 0; y < picture.mHeight; ++y) {
        Premultiply(lock.Row(y), picture.mPixels.data() + y * picture.mWidth, picture.mWidth);
    }
    outPicture = std::move(picture);
    return true;
}

} // namespace Images
} // namespace ORL
