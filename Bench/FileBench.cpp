// Question: what does File cost on top of the system calls, and what does a block cache cost on top of a copy in
// memory?
//
// The 64 MiB file is in the page cache, so that the disk does not hide the cost of File. Small reads are 4 KiB,
// large ones 1 MiB. "pread" reads from a plain descriptor. The block cache is filled before the clock starts; the host
// of this benchmark keeps all blocks in an array, so its own cost is almost zero. The block cache's peer copies the
// same bytes from the same blocks. Copies use real files on this program's disk; both sides write to new names, and the
// results are deleted outside the measured time.
#include "Harness.h"

#include <ORLFoundation.h>
#include <ORLHostPath.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileSize = std::size_t{64} << 20;
constexpr std::size_t kBlockSize = 65536;

[[noreturn]] void Fail(const char* inWhy)
{
    std::fprintf(stderr, "FileBench: %s\n", inWhy);
    std::exit(1);
}

void Require(bool inHolds, const char* inWhy)
{
    if (!inHolds) {
        Fail(inWhy);
    }
}

// A folder on this program's disk, deleted at the end.
class Folder
{
public:
    Folder() : mPath(fs::read_symlink("/proc/self/exe").parent_path() / "file-bench")
    {
        fs::remove_all(mPath);
        fs::create_directories(mPath);
    }
    ~Folder()
    {
        std::error_code ignored;
        fs::remove_all(mPath, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string Host(const std::string& inName) const { return (mPath / inName).string(); }

    void Make(const std::string& inName, std::size_t inSize) const
    {
        std::mt19937_64 random(1);
        std::vector<std::uint64_t> words(std::min<std::size_t>(inSize, std::size_t{1} << 20) / 8 + 1);
        for (std::uint64_t& word : words) {
            word = random();
        }
        std::ofstream file(mPath / inName, std::ios::binary);
        for (std::size_t left = inSize; left != 0;) {
            const std::size_t size = std::min(left, words.size() * 8);
            file.write(reinterpret_cast<const char*>(words.data()), static_cast<std::streamsize>(size));
            left -= size;
        }
        Require(static_cast<bool>(file.flush()), "a file cannot be written");
    }

private:
    const fs::path mPath;
};

UTF16String LibraryPath(const std::string& inHost)
{
    return ORL::PathUtils::FromHostPath(inHost);
}

// --- reads -----------------------------------------------------------------------------------------------------------

struct Work
{
    std::size_t mSize;
    bool mIsRandom;

    std::string Title() const { return std::to_string(mSize / 1024) + " KiB " + (mIsRandom ? "random" : "sequential"); }
};

// Generates the same sequence of positions for every rival.
class Walk
{
public:
    explicit Walk(const Work& inWork) : mWork(inWork) {}

    std::size_t Next()
    {
        const std::size_t pieces = kFileSize / mWork.mSize;
        if (mWork.mIsRandom) {
            mState = mState * 6364136223846793005u + 1442695040888963407u;
            return static_cast<std::size_t>(mState >> 33) % pieces * mWork.mSize;
        }
        return static_cast<std::size_t>(mState++) % pieces * mWork.mSize;
    }

private:
    const Work mWork;
    std::uint64_t mState = 0;
};

// Sequential reads continue at the current position and seek only to start over.
void ReadOne(ORL::File& ioFile, const Work& inWork, std::size_t inPosition, char* outBuffer)
{
    if (inWork.mIsRandom || inPosition == 0) {
        ioFile.SetFilePointer(static_cast<__int64>(inPosition), ORL::FilePointerMoveMethod::kFilePointer_Begin);
    }
    unsigned int count = 0;
    ioFile.Read(outBuffer, static_cast<unsigned int>(inWork.mSize), count);
    Require(count == inWork.mSize, "a read came short");
}

void CompareReads(const Folder& inFolder, const Work& inWork, std::vector<char>& ioBuffer)
{
    ORL::File file;
    Require(ORL::File::Open(LibraryPath(inFolder.Host("clip")), ORL::FileAccessFlags::kFileAccess_Read, file) == 0,
            "the clip cannot be opened");
    const int plain = ::open(inFolder.Host("clip").c_str(), O_RDONLY | O_CLOEXEC);
    Walk ours(inWork);
    Walk theirs(inWork);
    char* const buffer = ioBuffer.data();
    Bench::Group("read " + inWork.Title() + ", no buffer")
        .Ours("File::Read", Bench::AtMost(inWork.mSize >= kBlockSize ? 1.05 : 1.2),
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      ReadOne(file, inWork, ours.Next(), buffer);
                  }
              })
        .Peer("pread",
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      Require(::pread(plain, buffer, inWork.mSize, static_cast<off_t>(theirs.Next()))
                                  == static_cast<ssize_t>(inWork.mSize),
                              "pread came short");
                  }
              })
        .Run();
    ::close(plain);
}

using Blocks = std::vector<ORL::ObjectPtr<ORL::MemoryBufferWrapper>>;

// Keeps the blocks of one file in an array.
class BlockKeeper : public ORL::UnknownImpl<ORL::IFileBuffer>
{
public:
    explicit BlockKeeper(Blocks& ioBlocks) : mBlocks(ioBlocks) {}

    void AddBlock(ORL::ObjectPtr<ORL::MemoryBufferWrapper> inBlock, __int64 inPosition) override
    {
        mBlocks[static_cast<std::size_t>(inPosition) / kBlockSize] = inBlock;
    }

    ORL::Result GetBlock(__int64 inPosition, ORL::ObjectPtr<ORL::MemoryBufferWrapper>& outBlock) override
    {
        outBlock = mBlocks[static_cast<std::size_t>(inPosition) / kBlockSize];
        return outBlock ? ORL::kSuccess : ORL::kFileNotFound;
    }

private:
    Blocks& mBlocks;
};

class BlockKeeperFactory : public ORL::UnknownImpl<ORL::IFileBufferFactory>
{
public:
    explicit BlockKeeperFactory(Blocks& ioBlocks) : mBlocks(ioBlocks) {}
    ORL::InterfaceRef<ORL::IFileBuffer, ORL::IFileBuffer> CreateFileBuffer() override
    {
        return new BlockKeeper(mBlocks);
    }

private:
    Blocks& mBlocks;
};

// Copies from the blocks with memcpy alone, which is the minimum cost.
void CopyFromBlocks(const std::vector<const char*>& inBlocks, std::size_t inPosition, std::size_t inSize,
                    char* outBuffer)
{
    while (inSize != 0) {
        const std::size_t offset = inPosition % kBlockSize;
        const std::size_t count = std::min(kBlockSize - offset, inSize);
        std::memcpy(outBuffer, inBlocks[inPosition / kBlockSize] + offset, count);
        outBuffer += count;
        inPosition += count;
        inSize -= count;
    }
}

template <class Read>
double NanosecondsPerRead(std::uint64_t inCount, Read inRead)
{
    const double start = Bench::NowInNanoseconds();
    for (std::uint64_t i = 0; i < inCount; ++i) {
        inRead();
    }
    return (Bench::NowInNanoseconds() - start) / static_cast<double>(inCount);
}

// The goal is 1.3 times memcpy's time plus 150 ns. With 150 / 1.3 = 115 ns added to memcpy's figure, it is a plain
// ratio of 1.3.
void CompareCachedReads(ORL::File& ioFile, const Work& inWork, const std::vector<const char*>& inBlocks,
                        std::vector<char>& ioBuffer)
{
    Walk ours(inWork);
    Walk theirs(inWork);
    char* const buffer = ioBuffer.data();
    Bench::Group("read " + inWork.Title() + ", all in the block cache (memcpy with 115 ns added)")
        .Ours("File::Read", Bench::AtMost(1.3),
              [&](std::uint64_t inCount) {
                  return NanosecondsPerRead(inCount, [&] { ReadOne(ioFile, inWork, ours.Next(), buffer); });
              })
        .Peer("memcpy",
              [&](std::uint64_t inCount) {
                  return NanosecondsPerRead(inCount,
                                            [&] {
                                                CopyFromBlocks(inBlocks, theirs.Next(), inWork.mSize, buffer);
                                                Bench::ClobberMemory();
                                            })
                         + 150 / 1.3;
              })
        .Run();
}

void CompareAllCachedReads(const Folder& inFolder, std::vector<char>& ioBuffer)
{
    Blocks blocks(kFileSize / kBlockSize);
    ORL::Foundation::SetFileBufferFactory(new BlockKeeperFactory(blocks));
    ORL::File file;
    Require(file.Create(LibraryPath(inFolder.Host("clip")), ORL::FileAccessFlags::kFileAccess_Read,
                        ORL::FileShareModeFlags::kFileShare_Read,
                        ORL::FileCreateDispositionFlags::kFileCreate_OpenExisting,
                        ORL::FileAttributesFlags::kFileAttribute_Normal, false)
                == 0,
            "the clip cannot be opened");
    ORL::Foundation::SetFileBufferFactory({});
    std::vector<const char*> bytes;
    for (std::size_t at = 0; at < kFileSize; at += kBlockSize) {
        ReadOne(file, Work{kBlockSize, true}, at, ioBuffer.data());
        bytes.push_back(static_cast<const char*>(blocks[at / kBlockSize]->GetBuffer()));
    }
    for (const bool isRandom : {false, true}) {
        for (const std::size_t size : {std::size_t{4096}, std::size_t{65536}, std::size_t{1} << 20}) {
            file.SetFilePointer(0, ORL::FilePointerMoveMethod::kFilePointer_Begin);
            CompareCachedReads(file, Work{size, isRandom}, bytes, ioBuffer);
        }
    }
}

// --- opening ---------------------------------------------------------------------------------------------------------

void CompareOpening(const Folder& inFolder)
{
    const std::string host = inFolder.Host("clip");
    const UTF16String path = LibraryPath(host);
    const auto create = [&path](ORL::FileAccessFlags::Type inAccess, ORL::FileShareModeFlags::Type inShare) {
        return [&path, inAccess, inShare](std::uint64_t inCount) {
            while (inCount-- != 0) {
                ORL::File file;
                Require(file.Create(path, inAccess, inShare, ORL::FileCreateDispositionFlags::kFileCreate_OpenExisting,
                                    ORL::FileAttributesFlags::kFileAttribute_Normal, true)
                            == 0,
                        "the clip cannot be opened");
                file.Close();
            }
        };
    };
    const auto plain = [&host](int inFlags) {
        return [&host, inFlags](std::uint64_t inCount) {
            while (inCount-- != 0) {
                ::close(::open(host.c_str(), inFlags | O_CLOEXEC));
            }
        };
    };
    using Access = ORL::FileAccessFlags;
    using Share = ORL::FileShareModeFlags;
    Bench::Group("open to read and close, sharing all")
        .Ours("File::Create, Close", Bench::AtMost(2.0),
              create(Access::kFileAccess_Read,
                     Share::kFileShare_Read | Share::kFileShare_Write | Share::kFileShare_Delete))
        .Peer("open, close", plain(O_RDONLY))
        .Run();
    Bench::Group("open to write and close, sharing nothing")
        .Ours("File::Create, Close", Bench::AtMost(2.0), create(Access::kFileAccess_Write, static_cast<Share::Type>(0)))
        .Peer("open, close", plain(O_RDWR))
        .Run();
}

// --- copying ---------------------------------------------------------------------------------------------------------

bool KeepGoing(float, void*)
{
    return true;
}

void Run(const std::string& inCommand)
{
    Require(std::system(inCommand.c_str()) == 0, "a command failed");
}

double BytesPerSecond(double inBytes, double inStart)
{
    return inBytes / (Bench::NowInNanoseconds() - inStart) * 1e3;
}

void CompareLargeCopies(const Folder& inFolder)
{
    const std::size_t size = std::size_t{Bench::IsQuick() ? 64u : 1024u} << 20;
    inFolder.Make("large", size);
    const std::string source = inFolder.Host("large");
    const std::string target = inFolder.Host("copy");
    const auto clean = [&target] {
        fs::remove(target);
        ::sync();
    };
    Bench::Group("copy a file of " + std::to_string(size >> 20) + " MiB")
        .Unit("MB/s", true)
        .Operations(1)
        .Ours("CopyWithProgress", Bench::AtLeast(1.0),
              [&](std::uint64_t) {
                  clean();
                  const double start = Bench::NowInNanoseconds();
                  Require(ORL::File::CopyWithProgress(LibraryPath(source), LibraryPath(target), &KeepGoing, nullptr)
                              == 0,
                          "a copy failed");
                  return BytesPerSecond(static_cast<double>(size), start);
              })
        .Peer("cp --reflink=never",
              [&](std::uint64_t) {
                  clean();
                  const double start = Bench::NowInNanoseconds();
                  Run("cp --reflink=never '" + source + "' '" + target + "'");
                  return BytesPerSecond(static_cast<double>(size), start);
              })
        .Run();
    fs::remove(target);
    fs::remove(source);
}

void CompareSmallCopies(const Folder& inFolder)
{
    const int files = Bench::IsQuick() ? 200 : 10000;
    fs::create_directory(inFolder.Host("many"));
    for (int i = 0; i < files; ++i) {
        inFolder.Make("many/" + std::to_string(i), 10240);
    }
    const std::string source = inFolder.Host("many");
    const std::string target = inFolder.Host("copies");
    const auto clean = [&target] {
        fs::remove_all(target);
        ::sync();
    };
    const double bytes = 10240.0 * files;
    Bench::Group("copy " + std::to_string(files) + " files of 10 KiB")
        .Unit("MB/s", true)
        .Operations(1)
        .Ours("CopyWithProgress", Bench::AtLeast(1.0),
              [&](std::uint64_t) {
                  clean();
                  const double start = Bench::NowInNanoseconds();
                  fs::create_directory(target);
                  for (const auto& entry : fs::directory_iterator(source)) {
                      const std::string name = entry.path().filename().string();
                      Require(ORL::File::CopyWithProgress(LibraryPath(entry.path().string()),
                                                          LibraryPath(target + "/" + name), &KeepGoing, nullptr)
                                  == 0,
                              "a copy failed");
                  }
                  return BytesPerSecond(bytes, start);
              })
        .Peer("cp -r --reflink=never",
              [&](std::uint64_t) {
                  clean();
                  const double start = Bench::NowInNanoseconds();
                  Run("cp -r --reflink=never '" + source + "' '" + target + "'");
                  return BytesPerSecond(bytes, start);
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    ORL::Foundation::Initialize();
    {
        const Folder folder;
        folder.Make("clip", kFileSize);
        std::vector<char> buffer(std::size_t{1} << 20);
        for (const bool isRandom : {false, true}) {
            for (const std::size_t size : {std::size_t{4096}, std::size_t{65536}, std::size_t{1} << 20}) {
                CompareReads(folder, Work{size, isRandom}, buffer);
            }
        }
        CompareAllCachedReads(folder, buffer);
        CompareOpening(folder);
        CompareLargeCopies(folder);
        CompareSmallCopies(folder);
    }
    ORL::Foundation::Terminate();
    return Bench::Finish();
}
