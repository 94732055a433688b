#include <ORLHashValue.h>

namespace ORL {

namespace {

unsigned char Entry(std::uint32_t inIndex)
{
    constexpr std::uint32_t kPolynomial = 0xEDB88320;
    std::uint32_t value = inIndex;
    for (int bit = 0; bit < 8; ++bit) {
        value = (value >> 1) ^ ((value & 1u) != 0 ? kPolynomial : 0u);
    }
    return static_cast<unsigned char>(value);
}

const std::vector<unsigned char>& Table()
{
    static const std::vector<unsigned char> sTable = [] {
        std::vector<unsigned char> table;
        table.reserve(256);
        for (std::uint32_t i = 0; i < 256; ++i) {
            table.push_back(Entry(i));
        }
        return table;
    }();
    return sTable;
}

} // namespace

const std::vector<unsigned char>& CRCHashValue::sCRCTable = Table();

} // namespace ORL
