#include "../Resources/PlugIns.h"
#include "ExpectedBitmaps.h"
#include "Wrapped.h"

#include "../PublishedSites/PublishedSites.h"

#include <BitmapPixels.h>
#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <TempFolder.h>

#include <ORLDirectoryRegistry.h>
#include <Platform/Images.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <thread>

using namespace ORL;
using namespace ORLTest;

namespace ORLTest {

WrappedImages& Wrapped()
{
    static WrappedImages sWrapped;
    return sWrapped;
}

void ResetWrapped()
{
    WrappedImages& wrapped = Wrapped();
    for (std::atomic<int>* const count :
         {&wrapped.mFailCopies, &wrapped.mFailStreams, &wrapped.mFailObjects, &wrapped.mFailLocks, &wrapped.mSkipLocks,
          &wrapped.mLocks, &wrapped.mDeletions}) {
        *count = 0;
    }
}

} // namespace ORLTest

namespace {

bool IsToFail(std::atomic<int>& ioCount)
{
    int count = ioCount;
    while (count > 0 && !ioCount.compare_exchange_weak(count, count - 1)) {
    }
    return count > 0;
}

} // namespace

using namespace ORL::Images::Platform;

#define ORL_MANGLED_COPY "_ZN3ORL6Images8Platform17CopyToMemory_ImplEPKv" ORL_MANGLED_SIZE
extern "C" MemoryCopy* RealCopy(const void*, std::size_t) __asm__("__real_" ORL_MANGLED_COPY);
extern "C" MemoryCopy* WrappedCopy(const void*, std::size_t) __asm__("__wrap_" ORL_MANGLED_COPY);
extern "C" MemoryCopy* WrappedCopy(const void* inData, std::size_t inSize)
{
    return IsToFail(Wrapped().mFailCopies) ? nullptr : RealCopy(inData, inSize);
}

#define ORL_MANGLED_STREAM "_ZN3ORL6Images8Platform17CreateStream_ImplEPNS1_10MemoryCopyE"
extern "C" Stream* RealStream(MemoryCopy*) __asm__("__real_" ORL_MANGLED_STREAM);
extern "C" Stream* WrappedStream(MemoryCopy*) __asm__("__wrap_" ORL_MANGLED_STREAM);
extern "C" Stream* WrappedStream(MemoryCopy* inCopy)
{
    Stream* const stream = RealStream(inCopy);
    if (stream != nullptr && IsToFail(Wrapped().mFailStreams)) {
        ReleaseStream_Impl(stream);
        return nullptr;
    }
    return stream;
}

#define ORL_MANGLED_CREATE "_ZN3ORL6Images8Platform21CreateFromStream_ImplEPNS1_6StreamE"
extern "C" Picture* RealCreate(Stream*) __asm__("__real_" ORL_MANGLED_CREATE);
extern "C" Picture* WrappedCreate(Stream*) __asm__("__wrap_" ORL_MANGLED_CREATE);
extern "C" Picture* WrappedCreate(Stream* inStream)
{
    return IsToFail(Wrapped().mFailObjects) ? nullptr : RealCreate(inStream);
}

#define ORL_MANGLED_LOCK "_ZN3ORL6Images8Platform15LockPixels_ImplEPNS1_7PictureEjiRNS1_12LockedPixelsE"
extern "C" int RealLock(Picture*, unsigned int, int, LockedPixels&) __asm__("__real_" ORL_MANGLED_LOCK);
extern "C" int WrappedLock(Picture*, unsigned int, int, LockedPixels&) __asm__("__wrap_" ORL_MANGLED_LOCK);
extern "C" int WrappedLock(Picture* inPicture, unsigned int inMode, int inFormat, LockedPixels& outPixels)
{
    ++Wrapped().mLocks;
    if (!IsToFail(Wrapped().mSkipLocks) && IsToFail(Wrapped().mFailLocks)) {
        return 3;
    }
    return RealLock(inPicture, inMode, inFormat, outPixels);
}

#define ORL_MANGLED_DELETE "_ZN3ORL6Images8Platform17DeleteBitmap_ImplEP9HBITMAP__"
extern "C" void RealDelete(HBITMAP) __asm__("__real_" ORL_MANGLED_DELETE);
extern "C" void WrappedDelete(HBITMAP) __asm__("__wrap_" ORL_MANGLED_DELETE);
extern "C" void WrappedDelete(HBITMAP inBitmap)
{
    {
        static std::mutex sMutex; // bitmaps are deleted on several threads
        const std::lock_guard<std::mutex> lock(sMutex);
        ++Wrapped().mDeletions;
    }
    RealDelete(inBitmap);
}

namespace {

using Pixels = std::vector<std::uint32_t>;

class PictureLoader : public testing::Test
{
protected:
    PictureLoader() { ResetWrapped(); }

    Module& ThePlugIn() { return *mModule; }

private:
    const PictureDecoder mDecoder;
    const ModulePtr mModule = LoadPlugIn("images_pictures");
};

Pixels PixelsIn(const OSImageHandle& inImage)
{
    return inImage.IsValid() ? PixelsOf(inImage.GetHBITMAP()).mPixels : Pixels();
}

constexpr unsigned short kEnglish = 1033;
constexpr unsigned short kGerman = 1031;
constexpr unsigned short kFrench = 1036;

const Pixels kRowsInOrder = {0x80800000, 0x00000000, 0xFF0A141E, 0xFF00FF00, 0x7F404040, 0x01010101};
const Pixels kRowsExchanged = {0xFF00FF00, 0x7F404040, 0x01010101, 0x80800000, 0x00000000, 0xFF0A141E};

} // namespace

TEST_F(PictureLoader, TwoRows_AreExchangedByLoadBitmapWAndInOrderByLoadBitmapWTL)
{
    const OSImageHandle exchanged(ThePlugIn().LoadBitmapW(100, false));
    const OSImageHandle inOrder(ThePlugIn().LoadBitmapWTL(100, false));
    ASSERT_TRUE(exchanged.IsValid());
    EXPECT_EQ(3, PixelsOf(exchanged.GetHBITMAP()).mWidth);
    EXPECT_EQ(2, PixelsOf(exchanged.GetHBITMAP()).mHeight);
    EXPECT_EQ(kRowsExchanged, PixelsIn(exchanged));
    EXPECT_EQ(kRowsInOrder, PixelsIn(inOrder));
}

TEST_F(PictureLoader, NotLocalized_TakesThePlatformsLanguageQuietly)
{
    const CheckRecorder recorder;
    const LanguageScope language(kGerman);
    EXPECT_EQ(Pixels{0xFF000003}, PixelsIn(ThePlugIn().LoadBitmapW(101, false)));
    EXPECT_EQ(Pixels{0xFF000001}, PixelsIn(ThePlugIn().LoadBitmapW(102, false)));
    EXPECT_FALSE(ThePlugIn().LoadBitmapW(9999, false).IsValid());
    EXPECT_FALSE(ThePlugIn().LoadBitmapWTL(9999, false).IsValid());
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST_F(PictureLoader, Localized_TakesTheLanguageThenTheNeutralOne)
{
    const struct
    {
        unsigned short mLanguage;
        std::uint32_t mPixel;
    } kRows[] = {{kEnglish, 0xFF000001}, {kGerman, 0xFF000002}, {kFrench, 0xFF000003}};
    for (const auto& row : kRows) {
        const LanguageScope language(row.mLanguage);
        EXPECT_EQ(Pixels{row.mPixel}, PixelsIn(ThePlugIn().LoadBitmapW(101, true))) << row.mLanguage;
        EXPECT_EQ(Pixels{row.mPixel}, PixelsIn(ThePlugIn().LoadBitmapWTL(101, true))) << row.mLanguage;
    }
}

TEST_F(PictureLoader, LocalizedMiss_IsReportedOnceAndIgnorable)
{
    const CheckRecorder recorder;
    EXPECT_FALSE(ThePlugIn().LoadBitmapW(9999, true).IsValid());
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0]).Line(739);
}

TEST_F(PictureLoader, WithoutAPng_TheBitmapResourceIsLoaded)
{
    const CheckRecorder recorder;
    const OSImageHandle image(ThePlugIn().LoadBitmapW(1, false));
    ASSERT_TRUE(image.IsValid());
    EXPECT_EQ(kBitmapWidth, PixelsOf(image.GetHBITMAP()).mWidth);
}

TEST_F(PictureLoader, WithAPng_TheBitmapResourceIsNotLoaded)
{
    EXPECT_EQ(Pixels{0xFF000001}, PixelsIn(ThePlugIn().LoadBitmapW(105, false)));
    EXPECT_EQ(Pixels{0xFF000001}, PixelsIn(ThePlugIn().LoadBitmapWTL(105, false)));
}

TEST_F(PictureLoader, ABrokenPng_FallsBackToTheBitmapResource)
{
    EXPECT_EQ(21u, PixelsIn(ThePlugIn().LoadBitmapW(103, false)).size());
    EXPECT_EQ(21u, PixelsIn(ThePlugIn().LoadBitmapWTL(103, false)).size());
}

TEST_F(PictureLoader, ABitmapOfTenThousandMillionPixelsInFiftyBytes_IsNotLoaded)
{
    const OSImageHandle image(ThePlugIn().LoadBitmapW(104, false));
    EXPECT_FALSE(image.IsValid());
    EXPECT_EQ(nullptr, image.GetHBITMAP());
}

TEST_F(PictureLoader, EveryFormOfBitmap_HasItsPixelsInOrder)
{
    for (const BitmapRow& row : kBitmaps) {
        if (!IsTopDown(row)) {
            ExpectPixels(ThePlugIn(), row);
        }
    }
}

TEST_F(PictureLoader, ALockThatFailsOnce_IsTriedAgain)
{
    for (const int skipped : {0, 1}) { // the lock of the source fails, then that of the destination
        ResetWrapped();
        Wrapped().mSkipLocks = skipped;
        Wrapped().mFailLocks = 1;
        EXPECT_EQ(kRowsExchanged, PixelsIn(ThePlugIn().LoadBitmapW(100, false))) << skipped;
        EXPECT_EQ(3, Wrapped().mLocks);
    }
}

TEST_F(PictureLoader, ALockThatFailsTwice_GivesNull)
{
    for (const int skipped : {0, 1}) {
        ResetWrapped();
        Wrapped().mSkipLocks = skipped;
        Wrapped().mFailLocks = 2;
        EXPECT_FALSE(ThePlugIn().LoadBitmapW(100, false).IsValid()) << skipped;
        EXPECT_EQ(skipped + 2, Wrapped().mLocks);
    }
}

TEST_F(PictureLoader, LoadBitmapWTL_DoesNotNoticeAFailedLock)
{
    for (const int skipped : {0, 1}) {
        ResetWrapped();
        Wrapped().mSkipLocks = skipped;
        Wrapped().mFailLocks = 1;
        EXPECT_EQ(Pixels(6, 0), PixelsIn(ThePlugIn().LoadBitmapWTL(100, false))) << skipped;
        EXPECT_EQ(2, Wrapped().mLocks);
    }
}

TEST_F(PictureLoader, WithoutAStream_GivesNull)
{
    Wrapped().mFailStreams = 2;
    EXPECT_FALSE(ThePlugIn().LoadBitmapW(100, false).IsValid());
    EXPECT_FALSE(ThePlugIn().LoadBitmapWTL(100, false).IsValid());
    EXPECT_TRUE(ThePlugIn().LoadBitmapW(100, false).IsValid());
}

TEST_F(PictureLoader, LoadBitmapFromFile_ReadsBelowTheApplicationsFolder)
{
    const TempFolder folder;
    folder.MakeFolder("PNG");
    std::filesystem::copy_file(std::string(ORL_PICTURES) + "/two_rows.png", folder.Host() / "PNG" / "icon.png");
    DirectoryRegistry::RegisterDirectory(folder.Path() + UTF16String(1, '/'), TVX_UTF16("application"));
    EXPECT_EQ(kRowsExchanged, PixelsIn(ThePlugIn().LoadBitmapFromFile(TVX_UTF16("icon.png"), true)));
    const OSImageHandle missing(ThePlugIn().LoadBitmapFromFile(TVX_UTF16("none.png"), false));
    EXPECT_FALSE(missing.IsValid());
    EXPECT_EQ(nullptr, missing.GetHBITMAP());
    folder.MakeFile("PNG/text.png", "no picture");
    EXPECT_FALSE(ThePlugIn().LoadBitmapFromFile(TVX_UTF16("text.png"), false).IsValid());
    folder.MakeFolder("PNG/folder.png");
    EXPECT_FALSE(ThePlugIn().LoadBitmapFromFile(TVX_UTF16("folder.png"), false).IsValid());
    DirectoryRegistry::UnregisterDirectory(TVX_UTF16("application"));
}

// With every decoder, a damaged file yields a whole picture or none, and the loaders stay usable.
TEST_F(PictureLoader, AFileWithEachByteFlippedAndEachLengthCut_GivesAPictureOrNull)
{
    std::ifstream file(std::string(ORL_PICTURES) + "/two_rows.png", std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    ASSERT_FALSE(whole.empty());
    const TempFolder folder;
    folder.MakeFolder("PNG");
    DirectoryRegistry::RegisterDirectory(folder.Path() + UTF16String(1, '/'), TVX_UTF16("application"));
    const auto load = [&](const std::string& inContents) {
        folder.MakeFile("PNG/damaged.png", inContents);
        const OSImageHandle image(ThePlugIn().LoadBitmapFromFile(TVX_UTF16("damaged.png"), false));
        const BitmapPixels pixels = image.IsValid() ? PixelsOf(image.GetHBITMAP()) : BitmapPixels();
        EXPECT_EQ(image.IsValid(), !pixels.mPixels.empty());
        return pixels.mPixels;
    };
    for (std::size_t place = 0; place < whole.size(); ++place) {
        std::string damaged = whole;
        damaged[place] = static_cast<char>(~damaged[place]);
        load(damaged);
        load(whole.substr(0, place));
    }
    EXPECT_EQ(kRowsExchanged, load(whole));
    DirectoryRegistry::UnregisterDirectory(TVX_UTF16("application"));
}

TEST_F(PictureLoader, EightThreads_LoadThePicturesOfOneModule)
{
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                wrong += PixelsIn(ThePlugIn().LoadBitmapW(100, false)) != kRowsExchanged;
                wrong += PixelsIn(ThePlugIn().LoadBitmapWTL(100, true)) != kRowsInOrder;
                wrong += PixelsIn(ThePlugIn().LoadBitmapW(1, false)).size() != 21;
                wrong += ThePlugIn().LoadBitmapW(104, false).IsValid();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(8 * 20 * 3, Wrapped().mDeletions);
}

TEST(PublishedSites, OfThePictureLoader_AreReportedAsPublished)
{
    const PictureDecoder decoder;
    static ModulePtr sModule = LoadPlugIn("images_pictures");
    static const char kLoader[] = "`anonymous-namespace'::LoadGDIPlusBitmap";
    static const char kLoaderWTL[] = "`anonymous-namespace'::LoadGDIPlusBitmapWTL";
    const PublishedSite kSites[] = {
        {__LINE__, PublishedSite::kAssert, "resDataCopyH != NULL", "", "WinModule", 84, kLoader,
         [] {
             Wrapped().mFailCopies = 1;
             EXPECT_FALSE(sModule->LoadBitmapW(100, false).IsValid());
         }},
        {__LINE__, PublishedSite::kAssert, "bitmapMask.get() != 0", "", "WinModule", 104, kLoader,
         [] {
             Wrapped().mFailObjects = 1;
             EXPECT_FALSE(sModule->LoadBitmapW(100, false).IsValid());
         }},
        {__LINE__, PublishedSite::kAssert, "resDataCopyH != NULL", "", "WinModule", 466, kLoaderWTL,
         [] {
             Wrapped().mFailCopies = 1;
             EXPECT_FALSE(sModule->LoadBitmapWTL(100, false).IsValid());
         }},
        {__LINE__, PublishedSite::kAssert, "bitmapMask.get() != 0", "", "WinModule", 486, kLoaderWTL,
         [] {
             Wrapped().mFailObjects = 1;
             EXPECT_FALSE(sModule->LoadBitmapWTL(100, false).IsValid());
         }},
    };
    ExpectPublished(kSites);
    ModulePtr().Swap(sModule);
}
