// The XXH algorithms: fast checksums against accidental changes, not against forgery.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace orl {

enum class XxHashKind { kXxh64, kXxh3, kXxh128 };

class XxHash
{
public:
    /// Throws std::bad_alloc.
    explicit XxHash(XxHashKind inKind);
    ~XxHash();
    XxHash(const XxHash&) = delete;
    XxHash& operator=(const XxHash&) = delete;

    void Add(const void* inBytes, std::size_t inCount);

    /// Returns the canonical form, which is big-endian.
    std::vector<unsigned char> Finish() const;

private:
    struct State;

    std::unique_ptr<State> mState;
};

} // namespace orl
