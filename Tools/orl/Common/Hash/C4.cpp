#include "C4.h"

namespace orl {

namespace {

constexpr char kDigits[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz"; // no 0, I, O and l
constexpr unsigned kBase = sizeof(kDigits) - 1;
constexpr std::size_t kCount = 88; // enough for 512 bits

// Divides a big-endian number in place and returns the remainder.
unsigned Divide(std::vector<unsigned char>& ioNumber)
{
    unsigned remainder = 0;
    for (unsigned char& byte : ioNumber) {
        const unsigned part = remainder << 8 | byte;
        byte = static_cast<unsigned char>(part / kBase);
        remainder = part % kBase;
    }
    return remainder;
}

} // namespace

std::string C4Of(std::vector<unsigned char> inDigest)
{
    std::string digits(kCount, kDigits[0]);
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        *digit = kDigits[Divide(inDigest)];
    }
    return "c4" + digits;
}

} // namespace orl
