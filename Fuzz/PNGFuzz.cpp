// Random mutations rarely keep a checksum valid, so the target first corrects each chunk's checksum, unless the last
// byte of the input disables that.
#include "PNGFuzzTarget.h"

#include <cstdio>
#include <cstdlib>
#include <libdeflate.h>
#include <vector>

namespace {

void WriteBigEndian(unsigned char* outBytes, unsigned int inNumber)
{
    for (int i = 0; i < 4; ++i) {
        outBytes[i] = static_cast<unsigned char>(inNumber >> (24 - 8 * i));
    }
}

void CorrectCheckSums(std::vector<unsigned char>& ioFile)
{
    for (std::size_t place = 8; ioFile.size() >= 12 && place <= ioFile.size() - 12;) {
        const std::size_t size = std::size_t{ioFile[place]} << 24 | std::size_t{ioFile[place + 1]} << 16
                                 | std::size_t{ioFile[place + 2]} << 8 | ioFile[place + 3];
        if (size > ioFile.size() - place - 12) {
            break;
        }
        WriteBigEndian(ioFile.data() + place + 8 + size, ::libdeflate_crc32(0, ioFile.data() + place + 4, size + 4));
        place += 12 + size;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    std::vector<unsigned char> file(inData, inData + inSize);
    if (!file.empty() && file.back() % 8 != 0) {
        CorrectCheckSums(file);
    }
    if (const char* const fault = ORLFuzz::CheckPNG(file.data(), file.size())) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
