#include "TemporaryName.h"

#include "Text.h"

#include <algorithm>
#include <iterator>
#include <random>

namespace orl {

namespace {

constexpr char kStem[] = ".orl-";
constexpr char kExtension[] = ".part";
constexpr std::size_t kRandomDigits = 32;

} // namespace

std::string RandomTemporaryName()
{
    std::random_device random;
    unsigned char bytes[kRandomDigits / 2];
    std::generate(std::begin(bytes), std::end(bytes), [&random] { return static_cast<unsigned char>(random()); });
    return kStem + Hexadecimal(bytes, sizeof(bytes)) + kExtension;
}

bool IsTemporaryName(const std::string& inLeaf)
{
    const std::size_t stem = sizeof(kStem) - 1;
    const std::size_t extension = sizeof(kExtension) - 1;
    return inLeaf.size() == stem + kRandomDigits + extension && inLeaf.compare(0, stem, kStem) == 0
           && inLeaf.compare(stem + kRandomDigits, extension, kExtension) == 0
           && inLeaf.find_first_not_of("0123456789abcdef", stem) == stem + kRandomDigits;
}

} // namespace orl
