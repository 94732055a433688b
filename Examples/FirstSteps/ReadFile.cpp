// Reads a file unbuffered, eight reads in flight, and counts its lines: example_read_file FILE
#include <ORLFoundation.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <iostream>

namespace {

constexpr unsigned int kBlock = 1 << 20; // a multiple of every sector size

struct Count
{
    std::atomic<long long> mLines{0};
    std::atomic<bool> mHasFailed{false};
};

// Runs on the thread that drains completed reads.
void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void* inBuffer,
            void* ioCount, void*, void*, int inResult)
{
    Count& count = *static_cast<Count*>(ioCount);
    const char* const bytes = static_cast<const char*>(inBuffer);
    count.mLines += std::count(bytes, bytes + inBytesRead, '\n');
    count.mHasFailed = count.mHasFailed || inResult != ORL::kSuccess;
}

bool CountLines(const UTF16String& inPath, Count& outCount)
{
    unsigned __int64 size = 0;
    std::deque<ORL::MemoryBufferWrapper> buffers; // outlive the reader, which waits for its reads
    ORL::AsyncFileReader reader;
    if (ORL::File::SizeOnDisk(inPath, size) != ORL::kSuccess || ORL::AsyncFileReader::Open(inPath, reader) != 0) {
        return false;
    }
    for (unsigned __int64 at = 0; at < size; at += kBlock) {
        void* const buffer = buffers.emplace_back(kBlock).GetBuffer();
        reader.QueueReadRequest(at, kBlock, buffer, &OnRead, &outCount, nullptr, nullptr);
        if (buffers.size() == 8) {
            reader.WaitForPendingReads();
            buffers.clear();
        }
    }
    reader.WaitForPendingReads();
    return !outCount.mHasFailed;
}

} // namespace

int main(int inCount, char** inArguments)
{
    ORL::Foundation::Initialize();
    Count count;
    const bool isRead = inCount == 2 && CountLines(ORL::PathUtils::FromHostPath(inArguments[1]), count);
    std::cout << (isRead ? std::to_string(count.mLines) + " lines\n" : "the file cannot be read\n");
    ORL::Foundation::Terminate();
    return isRead ? 0 : 1;
}
