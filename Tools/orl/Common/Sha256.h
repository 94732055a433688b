// SHA-256 from the OS's own library: libcrypto on Linux, the cryptography services on Windows.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace orl {

class Sha256
{
public:
    /// Throws Failure if SHA-256 is not available.
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void Add(const void* inBytes, std::size_t inCount);

    /// Returns 64 lower-case hexadecimal digits. The object cannot be used afterwards.
    std::string Finish();

private:
    struct State;

    std::unique_ptr<State> mState;
};

} // namespace orl
