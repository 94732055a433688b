// Fails each allocation in every File operation.
#include "FilesSweep.h"

#include <BlockCacheSupport.h>

using namespace ORL;
using namespace ORLTest;

namespace {

class FileSweep : public FilesSweep
{
protected:
    void MakeBoth(const std::string& inOther = "new") const
    {
        Empty();
        mFolder.MakeFile("real.txt", "old");
        mFolder.MakeFile("temp.txt", inOther);
    }

    const UTF16String mReal = mFolder.Path(u"real.txt");
    const UTF16String mTemp = mFolder.Path(u"temp.txt");
};

bool KeepGoing(float, void*)
{
    return true;
}

} // namespace

TEST_F(FileSweep, Create_WriteSeekCutAndAsk)
{
    Sweep([this] { Empty(); },
          [this] {
              File file;
              if (file.Create(mReal, kReadWrite, kShareNone, Disposition::kFileCreate_New, kNormal, false)
                  != kSuccess) {
                  throw std::bad_alloc(); // Create reports out of memory as its result
              }
              unsigned count = 0;
              unsigned __int64 time = 0;
              __int64 position = 0;
              EXPECT_EQ(kSuccess, file.Write("hello", 5, count));
              EXPECT_EQ(kSuccess, file.SetFilePointer(2, Method::kFilePointer_Begin));
              EXPECT_EQ(kSuccess, file.GetFilePointer(position));
              EXPECT_EQ(kSuccess, file.SetEndOfFile());
              EXPECT_EQ(2u, file.SizeOnDisk());
              EXPECT_EQ(kSuccess, file.GetLastModificationTime(time));
          },
          [this](bool inDone) {
              EXPECT_EQ(inDone ? Entries({{"real.txt", "he"}}) : Entries(), Read());
          });
}

TEST_F(FileSweep, Open_AndRead)
{
    MakeBoth();
    SweepReadOnly([this] {
        File file;
        if (File::Open(mReal, kRead, file) == kSuccess) {
            char text[4] = {};
            unsigned count = 0;
            EXPECT_EQ(kSuccess, file.Read(text, 3, count));
            EXPECT_STREQ("old", text);
        }
    });
}

TEST_F(FileSweep, Read_ThroughABlockCache)
{
    const std::string contents(200000, 'c');
    mFolder.MakeFile("real.txt", contents);
    std::string bytes(contents.size(), '#');
    const Entries before = Read();
    SweepMemory(
        [&] {
            BufferLog log;
            const ScopedBlockCache factory([&log] { return BufferRef(new RecordingBuffer(log)); });
            Opened file(mReal, kRead, kShareReaders);
            if (file.mResult == kSuccess) {
                unsigned count = 0;
                const Result result = file.mFile.Read(&bytes[0], static_cast<unsigned>(bytes.size()), count);
                EXPECT_TRUE(result == kSuccess || result == kGeneralFailure); // the allocation of a block may fail
                EXPECT_EQ(result == kSuccess, count == contents.size());
            }
        },
        [&] { EXPECT_EQ(before, Read()); });
}

TEST_F(FileSweep, QuestionsByPath)
{
    MakeBoth();
    SweepReadOnly([this] {
        unsigned __int64 number = 77;
        const Result size = File::SizeOnDisk(mReal, number);
        EXPECT_TRUE((size == kSuccess && number == 3) || number == 77);
        number = 77;
        const Result time = File::GetLastModificationTime(mReal, number);
        EXPECT_EQ(time == kSuccess, number != 77);
        number = 77;
        const Result ofFolder = File::GetLastModificationTimeForFolder(mFolder.Path(), number);
        EXPECT_EQ(ofFolder == kSuccess, number != 77);
        EXPECT_EQ(0u, File::GetOSFileType(mReal));
        EXPECT_FALSE(File::MakeUniqueTempPath(mReal).empty());
    });
}

TEST_F(FileSweep, Delete)
{
    Result result = kSuccess;
    Sweep([&] { MakeBoth(); }, [&] { result = File::Delete(mReal); },
          [&](bool inDone) { EXPECT_EQ(inDone && result == kSuccess ? 1u : 2u, Read().size()); });
}

TEST_F(FileSweep, Copy_LeavesNoHalfFile)
{
    const std::string contents(100000, 'c');
    for (const bool withProgress : {false, true}) {
        Result result = kSuccess;
        Sweep(
            [&] {
                Empty();
                mFolder.MakeFile("temp.txt", contents);
            },
            [&] {
                result =
                    withProgress ? File::CopyWithProgress(mTemp, mReal, &KeepGoing, nullptr) : File::Copy(mTemp, mReal);
            },
            [&](bool inDone) {
                Entries expected{{"temp.txt", contents}};
                if (inDone && result == kSuccess) {
                    expected["real.txt"] = contents;
                }
                EXPECT_TRUE(expected == Read()) << Read().size();
            });
    }
}

TEST_F(FileSweep, Move)
{
    Result result = kSuccess;
    Sweep(
        [&] {
            Empty();
            mFolder.MakeFile("temp.txt", "new");
        },
        [&] { result = File::Move(mTemp, mReal); },
        [&](bool inDone) {
            const bool isMoved = inDone && result == kSuccess;
            EXPECT_EQ(Entries({{isMoved ? "real.txt" : "temp.txt", "new"}}), Read());
        });
}

// Either nothing changes, or the swap returns success and leaves only the real file.
TEST_F(FileSweep, SwapTempFile_IsDoneAndToldOrNotDone)
{
    Result result = kSuccess;
    Sweep([&] { MakeBoth(); }, [&] { result = File::SwapTempFile(mTemp, mReal); },
          [&](bool inDone) {
              const bool isSwapped = inDone && result == kSuccess;
              EXPECT_EQ(isSwapped ? Entries({{"real.txt", "new"}})
                                  : Entries({{"real.txt", "old"}, {"temp.txt", "new"}}),
                        Read());
          });
}
