// SHA-256 by the system's own library: libcrypto on Linux, the cryptography services on Windows.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace orl {

class Sha256
{
public:
    /// Throws Failure where the system has no SHA-256.
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void Add(const void* inBytes, std::size_t inCount);

    /// 64 hexadecimal digits in lower case. The sum is used up.
    std::string Finish();

private:
    struct State;

    std::unique_ptr<State> mState;
};

} // namespace orl
