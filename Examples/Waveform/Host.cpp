// Draws the waveforms of WAV files as a PNG picture.
//
//   example_waveform OUT.png FILE.wav ...                  a sheet with a card for each file
//   example_waveform --thumbnail WxH OUT.png FILE.wav      a single waveform, edge to edge
//
// The columns of each picture are split into requests for a shared queue; a flush waits until all are done. Each
// request reads through a buffer from the recycler, and the requests for a file share its name as an immutable string.
// Exit code: 0, 1 if a file cannot be read or written, 2 for invalid arguments.
#include "Painter.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

constexpr std::size_t kSheetWidth = 1200;
constexpr std::size_t kColumnsPerRequest = 64;
constexpr std::size_t kLargestSide = 8192;

struct Options
{
    bool mIsThumbnail = false;
    std::size_t mWidth = kSheetWidth;
    std::size_t mHeight = 0;
    std::string mOutput;
    std::vector<std::string> mInputs;
};

// Returns false if the arguments are invalid.
bool ReadArguments(std::vector<std::string> inArguments, Options& outOptions)
{
    if (inArguments.size() > 1 && inArguments[0] == "--thumbnail") {
        outOptions.mIsThumbnail = true;
        char tooMuch;
        if (std::sscanf(inArguments[1].c_str(), "%zux%zu%c", &outOptions.mWidth, &outOptions.mHeight, &tooMuch) != 2
            || outOptions.mWidth == 0 || outOptions.mWidth > kLargestSide || outOptions.mHeight == 0
            || outOptions.mHeight > kLargestSide) {
            return false;
        }
        inArguments.erase(inArguments.begin(), inArguments.begin() + 2);
    }
    if (inArguments.size() < 2 || (outOptions.mIsThumbnail && inArguments.size() > 2)) {
        return false;
    }
    outOptions.mOutput = inArguments[0];
    outOptions.mInputs.assign(inArguments.begin() + 1, inArguments.end());
    return true;
}

std::string Leaf(const std::string& inPath)
{
    return inPath.substr(inPath.find_last_of("/\\") + 1); // a path without a separator is a bare file name
}

Sound OpenSound(const std::string& inPath, std::size_t inColumns)
{
    Sound sound;
    sound.mPath = inPath;
    sound.mName = ORL::ImmutableString::CreateDynamic(Leaf(inPath));
    try {
        sound.mFormat = ReadWavFormat(inPath);
    } catch (const std::runtime_error& failure) {
        throw std::runtime_error(Leaf(inPath) + " " + failure.what());
    }
    sound.mPeaks.assign(sound.mFormat.mChannels, std::vector<Peak>(inColumns));
    return sound;
}

using Queue = ORL::InterfaceRef<ORL::ThreadedWorkQueue>;
using Request = ORL::InterfaceRef<FindPeaks>;

// Returns false if the queue refused a request.
bool QueueRequests(const Queue& inQueue, std::vector<Sound>& ioSounds, std::size_t inColumns,
                   std::vector<Request>& outRequests)
{
    bool allTaken = true;
    for (Sound& sound : ioSounds) {
        for (std::size_t column = 0; column < inColumns; column += kColumnsPerRequest) {
            const std::size_t end = std::min(column + kColumnsPerRequest, inColumns);
            outRequests.emplace_back(new FindPeaks(sound, column, end));
            allTaken = inQueue->QueueRequest(outRequests.back().GetPtr()) && allTaken;
        }
    }
    return allTaken;
}

void FindAllPeaks(std::vector<Sound>& ioSounds, std::size_t inColumns)
{
    const Queue queue = ORL::SharedThreadedWorkQueue::Instance()->RetrieveOrCreate(ORL::ThreadPriorities::kNormal);
    const ORL::InterfaceRef<ORL::ThreadedWorkQueueFlush> flush(new ORL::ThreadedWorkQueueFlush);
    flush->Init(queue);
    std::vector<Request> requests;
    const bool allTaken = QueueRequests(queue, ioSounds, inColumns, requests);
    flush->Flush();
    if (!allTaken) {
        throw std::runtime_error("the queue takes no more work");
    }
    for (const Request& request : requests) {
        if (!request->GetFailure().empty()) {
            throw std::runtime_error(request->GetFailure());
        }
    }
}

void Render(const Options& inOptions)
{
    const std::size_t columns = inOptions.mIsThumbnail ? inOptions.mWidth : SheetColumns(inOptions.mWidth);
    std::vector<Sound> sounds;
    for (const std::string& path : inOptions.mInputs) {
        sounds.push_back(OpenSound(path, columns));
    }
    FindAllPeaks(sounds, columns);
    const Picture picture = inOptions.mIsThumbnail ? PaintThumbnail(sounds[0], inOptions.mWidth, inOptions.mHeight)
                                                   : PaintSheet(sounds, inOptions.mWidth);
    try {
        picture.Save(inOptions.mOutput);
    } catch (const std::runtime_error& failure) {
        throw std::runtime_error(inOptions.mOutput + " " + failure.what());
    }
    std::printf("%s: %zu by %zu pixels\n", inOptions.mOutput.c_str(), picture.Width(), picture.Height());
}

int TryRender(const Options& inOptions)
{
    try {
        Render(inOptions);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "example_waveform: %s\n", failure.what());
        return 1;
    }
}

} // namespace

int main(int inCount, char** inArguments)
{
    Options options;
    if (!ReadArguments(std::vector<std::string>(inArguments + 1, inArguments + inCount), options)) {
        std::fprintf(stderr, "usage: example_waveform [--thumbnail WxH] OUT.png FILE.wav ...\n");
        return 2;
    }
    ORL::Foundation::Initialize();
    const int exitCode = TryRender(options);
    ORL::Foundation::Terminate();
    return exitCode;
}
