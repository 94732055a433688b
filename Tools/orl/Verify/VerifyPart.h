// Divides a list into parts that several computers verify.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orl {

/// The part that one computer verifies.
struct VerifyPart
{
    std::size_t mNumber = 1; // from 1 to mCount
    std::size_t mCount = 1;
};

struct PartItem
{
    std::string mName;
    std::uint64_t mBytes = 0;
};

/// The highest number of parts.
inline constexpr std::size_t kMaxParts = 100000;

/// Reads "K/N". Throws Failure (kExitUsage) unless K is from 1 to N and N is at most kMaxParts.
VerifyPart ParsePart(const std::string& inText);

/// Returns the number of the part, from 1 to inParts, for each item. The result depends on the arguments alone. The
/// sizes of two parts differ by at most that of the largest item.
std::vector<std::size_t> AssignParts(const std::vector<PartItem>& inItems, std::size_t inParts);

/// Returns the SHA-256 of items and their parts. Jobs with the same digest divide the list in the same way.
std::string DigestOfParts(const std::vector<PartItem>& inItems, const std::vector<std::size_t>& inPartOfItem);

} // namespace orl
