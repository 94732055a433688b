// Question: what does verification cost? Compares an ingest (copy, unbuffered read-back, SHA-256 of both sides, flush
// of the volume, manifest) with "cp" followed by an unbuffered read that compares the copy with the source byte by
// byte. The peer does not flush and keeps no checksums.
//
// The sources are 2 GiB in 40 files, and 10000 files of 10 KiB in 100 folders. The source is cached for both; the
// destination is emptied before each round, outside the measured time.
//
// Also: what do several destinations cost (one run to two destinations, compared with one run for each), and how fast
// is "orl verify" compared with "sha256sum -c"? Both programs read a folder whose pages were dropped from the cache
// before each round.
#include "Harness.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& inWhat)
{
    std::fprintf(stderr, "bench_IngestBench: %s\n", inWhat.c_str());
    std::exit(1);
}

fs::path FolderOfThisProgram()
{
    return fs::read_symlink("/proc/self/exe").parent_path();
}

struct Card
{
    const char* mTitle;
    const char* mName;
    int mFolders;
    int mFilesInEach;
    std::size_t mFileSize;

    std::uint64_t Files() const
    {
        return static_cast<std::uint64_t>(mFolders) * static_cast<std::uint64_t>(mFilesInEach);
    }
    std::uint64_t Bytes() const { return Files() * mFileSize; }
};

void MakeCard(const Card& inCard, const fs::path& inFolder)
{
    std::vector<std::uint64_t> words(inCard.mFileSize / sizeof(std::uint64_t));
    std::mt19937_64 random(1);
    for (int i = 0; i < inCard.mFolders; ++i) {
        const fs::path folder = inFolder / ("d" + std::to_string(i));
        fs::create_directories(folder);
        for (int j = 0; j < inCard.mFilesInEach; ++j) {
            for (std::uint64_t& word : words) {
                word = random();
            }
            std::ofstream file(folder / ("clip" + std::to_string(j)), std::ios::binary);
            file.write(reinterpret_cast<const char*>(words.data()), static_cast<std::streamsize>(inCard.mFileSize));
            if (!file.flush()) {
                Fail("the card cannot be written");
            }
        }
    }
    ::sync();
}

void RunCommand(const std::string& inCommand)
{
    if (std::system((inCommand + " >/dev/null").c_str()) != 0) {
        Fail(inCommand + " failed");
    }
}

// Reads a whole file, unbuffered if inFlags requests it.
std::size_t ReadWhole(const fs::path& inFile, int inFlags, unsigned char* outBytes, std::size_t inRoom)
{
    const int file = ::open(inFile.c_str(), O_RDONLY | O_CLOEXEC | inFlags);
    std::size_t size = 0;
    ssize_t count = 0;
    while (file >= 0 && size < inRoom
           && (count = ::read(file, outBytes + size, std::min<std::size_t>(inRoom - size, 4 << 20))) > 0) {
        size += static_cast<std::size_t>(count);
    }
    ::close(file);
    if (file < 0 || count < 0) {
        Fail("cannot read " + inFile.string());
    }
    return size;
}

void Compare(const fs::path& inSource, const fs::path& inCopy, std::size_t inFileSize)
{
    const std::size_t room = (inFileSize + 8191) / 4096 * 4096;
    const auto memory = [room] {
        return std::unique_ptr<unsigned char, decltype(&std::free)>(
            static_cast<unsigned char*>(std::aligned_alloc(4096, room)), &std::free);
    };
    const auto one = memory();
    const auto other = memory();
    for (const auto& entry : fs::recursive_directory_iterator(inSource)) {
        if (entry.is_regular_file()) {
            const std::size_t size = ReadWhole(entry.path(), 0, one.get(), room);
            const fs::path copy = inCopy / entry.path().lexically_relative(inSource);
            if (ReadWhole(copy, O_DIRECT, other.get(), room) != size
                || std::memcmp(one.get(), other.get(), size) != 0) {
                Fail("the copy differs");
            }
        }
    }
}

// Drops the cached pages of all files, so that the next read comes from the disk.
void DropFromCache(const fs::path& inFolder)
{
    for (const auto& entry : fs::recursive_directory_iterator(inFolder)) {
        if (entry.is_regular_file()) {
            const int file = ::open(entry.path().c_str(), O_RDONLY | O_CLOEXEC);
            if (file < 0 || ::fdatasync(file) != 0 || ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED) != 0) {
                Fail("cannot drop " + entry.path().string() + " from the cache");
            }
            ::close(file);
        }
    }
}

template <class Work>
double SecondsOf(const Work& inWork)
{
    const double start = Bench::NowInNanoseconds();
    inWork();
    return (Bench::NowInNanoseconds() - start) / 1e9;
}

template <class Work>
double Seconds(const fs::path& inDisk, const Work& inWork)
{
    fs::remove_all(inDisk);
    ::sync();
    return SecondsOf(inWork);
}

void Measure(const Card& inCard)
{
    const fs::path work = FolderOfThisProgram() / "ingest-bench";
    const fs::path card = work / inCard.mName;
    const fs::path disk = work / "disk";
    fs::remove_all(work);
    Bench::Group group(inCard.mTitle);
    const std::string orl = "'" + (FolderOfThisProgram() / "orl").string() + "' ingest '";
    const double megabytes = static_cast<double>(inCard.Bytes()) / 1e6;
    bool isMade = false;
    const auto prepare = [&] {
        Bench::UseAllProcessors();
        if (!isMade) {
            MakeCard(inCard, card);
            isMade = true;
        }
    };
    group.Unit("MB/s", true).Operations(1);
    group.Ours("orl ingest", Bench::AtLeast(1.0), [&](std::uint64_t) {
        prepare();
        return megabytes / Seconds(disk, [&] { RunCommand(orl + card.string() + "' '" + disk.string() + "'"); });
    });
    group.Peer("cp, then a comparing read past the cache", [&](std::uint64_t) {
        prepare();
        return megabytes / Seconds(disk, [&] {
                   RunCommand("cp -r --reflink=never '" + card.string() + "' '" + disk.string() + "'");
                   Compare(card, disk, inCard.mFileSize);
               });
    });
    group.Run();
    fs::remove_all(work);
}

// The source and destination of an ingest, created when the first round begins.
struct Ingested
{
    const Card mCard;
    const fs::path mWork = FolderOfThisProgram() / "ingest-bench";
    const std::string mOrl = "'" + (FolderOfThisProgram() / "orl").string() + "' ";
    bool mIsMade = false;

    explicit Ingested(const Card& inCard) : mCard(inCard) { fs::remove_all(mWork); }
    ~Ingested() { fs::remove_all(mWork); }
    Ingested(const Ingested&) = delete;
    Ingested& operator=(const Ingested&) = delete;

    double Megabytes() const { return static_cast<double>(mCard.Bytes()) / 1e6; }
    std::string Shown(const char* inName) const { return " '" + (mWork / inName).string() + "'"; }

    void Prepare()
    {
        Bench::UseAllProcessors();
        if (!mIsMade) {
            MakeCard(mCard, mWork / "card");
            mIsMade = true;
        }
    }

    void Ingest(const std::string& inDestinations) const
    {
        RunCommand(mOrl + "ingest" + Shown("card") + inDestinations);
    }
};

void MeasureTwoDestinations(const Card& inCard)
{
    Ingested ingested(inCard);
    const auto seconds = [&ingested](const auto& inWork) {
        ingested.Prepare();
        fs::remove_all(ingested.mWork / "one");
        return Seconds(ingested.mWork / "other", inWork);
    };
    Bench::Group group(inCard.mTitle);
    group.Unit("MB/s", true).Operations(1);
    group.Ours("orl ingest to two destinations", Bench::AtLeast(1 / 0.65), [&](std::uint64_t) {
        return ingested.Megabytes()
               / seconds([&] { ingested.Ingest(ingested.Shown("one") + ingested.Shown("other")); });
    });
    group.Peer("orl ingest to one after the other", [&](std::uint64_t) {
        return ingested.Megabytes() / seconds([&] {
                   ingested.Ingest(ingested.Shown("one"));
                   ingested.Ingest(ingested.Shown("other"));
               });
    });
    group.Run();
}

void MeasureVerify(const Card& inCard)
{
    Ingested ingested(inCard);
    const fs::path disk = ingested.mWork / "one";
    const auto seconds = [&](const std::string& inCommand) {
        ingested.Prepare();
        if (!fs::exists(disk)) {
            ingested.Ingest(ingested.Shown("one"));
        }
        DropFromCache(disk);
        return SecondsOf([&inCommand] { RunCommand(inCommand); });
    };
    Bench::Group group(inCard.mTitle);
    group.Unit("MB/s", true).Operations(1);
    group.Ours("orl verify", Bench::AtLeast(1 / 0.6), [&](std::uint64_t) {
        return ingested.Megabytes() / seconds(ingested.mOrl + "verify" + ingested.Shown("one"));
    });
    group.Peer("sha256sum -c, nothing in the cache", [&](std::uint64_t) {
        return ingested.Megabytes() / seconds("cd '" + disk.string() + "' && sha256sum -c --quiet ingest.sha256");
    });
    group.Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const std::size_t large = Bench::IsQuick() ? std::size_t{2} << 20 : (std::size_t{2} << 30) / 40 / 4096 * 4096;
    const int folders = Bench::IsQuick() ? 10 : 100;
    Measure({"ingest of 2 GiB in 40 files", "large", 1, 40, large});
    Measure({"ingest of 10000 files of 10 KiB", "small", folders, 100, 10240});
    MeasureTwoDestinations({"ingest of 2 GiB to two destinations", "large", 1, 40, large});
    MeasureVerify({"verify of 2 GiB in 40 files", "large", 1, 40, large});
    return Bench::Finish();
}
