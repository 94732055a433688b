#include "LinuxProcFile.h"

#include "../Files/LinuxDescriptor.h"

#include <cerrno>
#include <charconv>

namespace ORL {
namespace Linux {

namespace {

int ReadOpenFile(int inFile, char* outBuffer, std::size_t inSize, std::size_t& outSize) noexcept
{
    while (outSize < inSize) {
        const ssize_t given =
            System().mPRead(inFile, outBuffer + outSize, inSize - outSize, static_cast<off_t>(outSize));
        if (given == 0) {
            return 0;
        }
        if (given > 0) {
            outSize += static_cast<std::size_t>(given);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

int ReadProcFile(const char* inPath, char* outBuffer, std::size_t inSize, std::size_t& outSize) noexcept
{
    outSize = 0;
    const Descriptor file = OpenByPath(inPath, O_RDONLY);
    return file ? ReadOpenFile(file.Get(), outBuffer, inSize, outSize) : errno;
}

bool TakeNumber(std::string_view& ioText, std::uint64_t& outNumber) noexcept
{
    std::string_view text = ioText;
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), outNumber);
    if (error != std::errc()) {
        return false;
    }
    ioText = text.substr(static_cast<std::size_t>(end - text.data()));
    return true;
}

} // namespace Linux
} // namespace ORL
