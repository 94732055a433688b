// Fails each allocation while pictures are loaded and their handles are copied. Whichever allocation fails, no bitmap
// may leak, and a handle must hold the whole picture or be empty.
#include "MemoryFaults.h"

#include <BitmapPixels.h>
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <ORLDirectoryRegistry.h>
#include <ORLHostPath.h>
#include <ORLModule.h>
#include <ORLOSImageHandle.h>
#include <ORLResult.h>
#include <Platform/Images.h>
#include <Platform/Modules.h>
#include <tvxcore/Debug.h>

#include <atomic>

using namespace ORL;
using namespace ORLTest;

namespace {

std::atomic<int> sBitmaps{0}; // created by the library or passed to it, and not yet deleted

} // namespace

// The linker redirects the library's calls to these three functions to the wrappers.
using Images::Platform::Picture;
using PixelBlock = std::unique_ptr<unsigned char[]>;

#define ORL_CREATE                                                                                                     \
  "_ZN3ORL6Images8Platform17CreateBitmap_ImplEPNS1_7PictureERSt10unique_ptrIA_hSt14default_deleteIS5_EERP9HBITMAP__"
extern "C" int RealCreateBitmap(Picture*, PixelBlock&, HBITMAP&) __asm__("__real_" ORL_CREATE);
extern "C" int WrappedCreateBitmap(Picture*, PixelBlock&, HBITMAP&) __asm__("__wrap_" ORL_CREATE);
extern "C" int WrappedCreateBitmap(Picture* inPicture, PixelBlock& ioBlock, HBITMAP& outBitmap)
{
    const int status = RealCreateBitmap(inPicture, ioBlock, outBitmap);
    sBitmaps += status == 0 ? 1 : 0;
    return status;
}

#define ORL_LOAD "_ZN3ORL7Modules8Platform15LoadBitmap_ImplERKNS1_6SourceEt"
extern "C" HBITMAP RealLoadBitmap(const Modules::Platform::Source&, unsigned short) __asm__("__real_" ORL_LOAD);
extern "C" HBITMAP WrappedLoadBitmap(const Modules::Platform::Source&, unsigned short) __asm__("__wrap_" ORL_LOAD);
extern "C" HBITMAP WrappedLoadBitmap(const Modules::Platform::Source& inSource, unsigned short inID)
{
    const HBITMAP bitmap = RealLoadBitmap(inSource, inID);
    sBitmaps += bitmap != nullptr ? 1 : 0;
    return bitmap;
}

#define ORL_DELETE "_ZN3ORL6Images8Platform17DeleteBitmap_ImplEP9HBITMAP__"
extern "C" void RealDeleteBitmap(HBITMAP) __asm__("__real_" ORL_DELETE);
extern "C" void WrappedDeleteBitmap(HBITMAP) __asm__("__wrap_" ORL_DELETE);
extern "C" void WrappedDeleteBitmap(HBITMAP inBitmap)
{
    --sBitmaps;
    RealDeleteBitmap(inBitmap);
}

namespace {

// Lets execution continue after each failed assertion, without allocating.
class QuietChecks
{
public:
    QuietChecks()
    {
        tvxcore::debug::Dialogs dialogs;
        dialogs.mAssert = [](bool&, const char*, const unsigned char*, const char*, long, const char*) {
            return false;
        };
        mOld = tvxcore::debug::InstallDialogs(dialogs);
    }
    ~QuietChecks() { tvxcore::debug::InstallDialogs(mOld); }
    QuietChecks(const QuietChecks&) = delete;
    QuietChecks& operator=(const QuietChecks&) = delete;

private:
    tvxcore::debug::Dialogs mOld;
};

class PicturesSweep : public testing::Test
{
protected:
    PicturesSweep()
    {
        const std::string file = FolderOfThisProgram() + "images_pictures" ORL_PLUG_IN_SUFFIX;
        EXPECT_EQ(kSuccess, Module::Load(PathUtils::FromHostPath(file), mModule)) << file;
    }

    Module& Pictures() { return *mModule; }

    // inLoad returns an OSImageHandle.
    template <class Load>
    void Sweep(const Load& inLoad)
    {
        const OSImageHandle first(inLoad());
        ASSERT_TRUE(first.IsValid());
        const BitmapPixels whole = PixelsOf(first.GetHBITMAP());
        const int before = sBitmaps;
        SweepMemory(
            [&] {
                const OSImageHandle image(inLoad());
                if (image.IsValid()) {
                    EXPECT_EQ(whole.mPixels, PixelsOf(image.GetHBITMAP()).mPixels);
                } else {
                    EXPECT_EQ(nullptr, image.GetHBITMAP());
                }
            },
            [&] { EXPECT_EQ(before, sBitmaps) << "a bitmap is left"; });
    }

private:
    const PictureDecoder mDecoder;
    const QuietChecks mQuiet;
    ObjectPtr<Module, AtomicValue> mModule;
};

HBITMAP MakeCountedBitmap()
{
    const HBITMAP bitmap = MakeBitmap();
    sBitmaps += bitmap != nullptr ? 1 : 0;
    return bitmap;
}

} // namespace

TEST_F(PicturesSweep, OfPng)
{
    for (const bool isLocalized : {false, true}) {
        Sweep([&] { return Pictures().LoadBitmapW(100, isLocalized); });
        Sweep([&] { return Pictures().LoadBitmapWTL(100, isLocalized); });
    }
}

TEST_F(PicturesSweep, OfEachFormOfBitmap)
{
    for (short id = 1; id <= 15; ++id) {
        SCOPED_TRACE(id);
        Sweep([&] { return Pictures().LoadBitmapW(id, false); });
        Sweep([&] { return Pictures().LoadBitmapWTL(id, false); });
    }
}

TEST_F(PicturesSweep, OfFiles)
{
    const TempFolder folder;
    folder.MakeFolder("PNG");
    std::filesystem::copy_file(std::string(ORL_PICTURES) + "/two_rows.png", folder.Host() / "PNG" / "icon.png");
    DirectoryRegistry::RegisterDirectory(folder.Path() + UTF16String(1, '/'), TVX_UTF16("application"));
    Sweep([&] { return Pictures().LoadBitmapFromFile(TVX_UTF16("icon.png"), false); });
    DirectoryRegistry::UnregisterDirectory(TVX_UTF16("application"));
}

TEST_F(PicturesSweep, OfHandles)
{
    const int before = sBitmaps;
    SweepMemory(
        [] {
            OSImageHandle empty;
            OSImageHandle first(MakeCountedBitmap());
            const OSImageHandle null(nullptr);
            OSImageHandle second(first);
            second = empty;
            second.Swap(first);
            first = second;
        },
        [&] { EXPECT_EQ(before, sBitmaps); });
}

// The caller's bitmap is deleted when its handle cannot be made.
TEST_F(PicturesSweep, HandleWithoutMemory_DeletesItsBitmap)
{
    const int before = sBitmaps;
    for (unsigned int number = 1; number <= 3; ++number) {
        const HBITMAP bitmap = MakeCountedBitmap();
        ASSERT_NE(nullptr, bitmap);
        const MemoryFaults faults(FaultyAllocator::kHeap, number, false);
        EXPECT_THROW(OSImageHandle{bitmap}, std::bad_alloc) << number;
        EXPECT_EQ(before, sBitmaps);
    }
}

TEST_F(PicturesSweep, CopyWithoutMemory_LeavesTheOther)
{
    const OSImageHandle image(MakeCountedBitmap());
    {
        const MemoryFaults faults(FaultyAllocator::kHeap, 1, false);
        EXPECT_THROW(OSImageHandle{image}, std::bad_alloc);
    }
    EXPECT_TRUE(image.IsValid());
}
