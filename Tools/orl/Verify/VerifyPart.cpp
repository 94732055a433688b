#include "VerifyPart.h"

#include "Failure.h"
#include "Hash/Checksum.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <numeric>
#include <queue>
#include <tuple>

namespace orl {

namespace {

bool ReadNumber(const std::string& inText, std::size_t& outNumber)
{
    const char* const end = inText.data() + inText.size();
    const auto [stop, error] = std::from_chars(inText.data(), end, outNumber);
    return error == std::errc() && stop == end;
}

} // namespace

VerifyPart ParsePart(const std::string& inText)
{
    VerifyPart part;
    const std::size_t slash = inText.find('/');
    const bool isPart = slash != std::string::npos && ReadNumber(inText.substr(0, slash), part.mNumber)
                        && ReadNumber(inText.substr(slash + 1), part.mCount) && part.mNumber >= 1
                        && part.mNumber <= part.mCount && part.mCount <= kMaxParts;
    if (!isPart) {
        throw Failure("verify: --part \"" + inText + "\" is no part: write K/N, with K from 1 to N and N at most "
                          + std::to_string(kMaxParts),
                      kExitUsage);
    }
    return part;
}

// Assigns the items in order of decreasing size, each to the part with the fewest bytes so far. Among parts with equal
// bytes, picks the one with the fewest items, so that empty files are spread too.
std::vector<std::size_t> AssignParts(const std::vector<PartItem>& inItems, std::size_t inParts)
{
    std::vector<std::size_t> order(inItems.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&inItems](std::size_t inLeft, std::size_t inRight) {
        const PartItem& left = inItems[inLeft];
        const PartItem& right = inItems[inRight];
        return left.mBytes != right.mBytes ? left.mBytes > right.mBytes : left.mName < right.mName;
    });
    using Load = std::tuple<std::uint64_t, std::size_t, std::size_t>; // bytes, items, number of the part
    std::priority_queue<Load, std::vector<Load>, std::greater<Load>> loads;
    for (std::size_t part = 1; part <= inParts; ++part) {
        loads.emplace(0, 0, part);
    }
    std::vector<std::size_t> partOfItem(inItems.size());
    for (const std::size_t item : order) {
        const auto [bytes, items, part] = loads.top();
        loads.pop();
        loads.emplace(bytes + inItems[item].mBytes, items + 1, part);
        partOfItem[item] = part;
    }
    return partOfItem;
}

std::string DigestOfParts(const std::vector<PartItem>& inItems, const std::vector<std::size_t>& inPartOfItem)
{
    Checksum digest(ChecksumKind::kSha256);
    for (std::size_t i = 0; i < inItems.size(); ++i) {
        const std::string line = std::to_string(inPartOfItem[i]) + ' ' + std::to_string(inItems[i].mBytes) + ' '
                                 + std::to_string(inItems[i].mName.size()) + ' ' + inItems[i].mName + '\n';
        digest.Add(line.data(), line.size());
    }
    return digest.Finish();
}

} // namespace orl
