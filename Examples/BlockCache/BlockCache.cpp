// Reads a file twice through the host's own block cache, and prints how many bytes the cache kept.
//   example_block_cache FILE [LIMIT-IN-MEGABYTES]
#include "LruFileBuffer.h"

#include <ORLFoundation.h>
#include <ORLHostPath.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Returns the sum of the file's bytes, read in pieces that do not match the blocks, or -1 on an error.
long long SumOf(ORL::File& ioFile)
{
    long long sum = 0;
    std::vector<unsigned char> piece(10000);
    for (;;) {
        unsigned int count = 0;
        if (!ORL::ResultSucceeded(ioFile.Read(piece.data(), static_cast<unsigned>(piece.size()), count))) {
            return -1;
        }
        if (count == 0) {
            return sum;
        }
        for (unsigned int i = 0; i < count; ++i) {
            sum += piece[i];
        }
    }
}

int ReadTwice(const UTF16String& inPath, const BlockStore& inStore)
{
    ORL::File file;
    // The library uses the cache only for files that no other handle can write while they are open.
    const ORL::Result result =
        file.Create(inPath, ORL::FileAccessFlags::kFileAccess_Read, ORL::FileShareModeFlags::kFileShare_Read,
                    ORL::FileCreateDispositionFlags::kFileCreate_OpenExisting,
                    ORL::FileAttributesFlags::kFileAttribute_Normal, false);
    if (!ORL::ResultSucceeded(result)) {
        std::fprintf(stderr, "The file cannot be opened (%08x).\n", static_cast<unsigned>(result));
        return 1;
    }
    const long long first = SumOf(file);
    file.SetFilePointer(0, ORL::FilePointerMoveMethod::kFilePointer_Begin);
    const long long second = SumOf(file);
    std::printf("sum %lld, then %lld; %zu bytes in the cache\n", first, second, inStore.Size());
    return first >= 0 && first == second ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: example_block_cache FILE [LIMIT-IN-MEGABYTES]\n");
        return 2;
    }
    ORL::Foundation::Initialize();
    const std::size_t megabytes = argc > 2 ? static_cast<std::size_t>(std::atoi(argv[2])) : 64;
    const auto store = std::make_shared<BlockStore>(megabytes << 20);
    ORL::Foundation::SetFileBufferFactory(new LruFileBufferFactory(store));
    const int result = ReadTwice(ORL::PathUtils::FromHostPath(argv[1]), *store);
    ORL::Foundation::SetFileBufferFactory({});
    ORL::Foundation::Terminate();
    return result;
}
