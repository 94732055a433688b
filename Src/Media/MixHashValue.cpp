#include <ORLHashValue.h>

#include <ORLDebug.h>

#include <cstring>

namespace ORL {

namespace {

struct State
{
    std::uint32_t a;
    std::uint32_t b;
    std::uint32_t c;
};

// The mix step of lookup2.
inline void MixStep(State& ioState)
{
    std::uint32_t a = ioState.a;
    std::uint32_t b = ioState.b;
    std::uint32_t c = ioState.c;
    a = (a - b - c) ^ (c >> 13);
    b = (b - c - a) ^ (a << 8);
    c = (c - a - b) ^ (b >> 13);
    a = (a - b - c) ^ (c >> 12);
    b = (b - c - a) ^ (a << 16);
    c = (c - a - b) ^ (b >> 5);
    a = (a - b - c) ^ (c >> 3);
    b = (b - c - a) ^ (a << 10);
    c = (c - a - b) ^ (b >> 15);
    ioState = {a, b, c};
}

// Compiles to one load on x86-64, aligned or not.
inline std::uint32_t WordAt(const unsigned char* inBytes)
{
    std::uint32_t word;
    std::memcpy(&word, inBytes, sizeof(word));
    return word;
}

// Returns up to four bytes as a word, little-endian.
std::uint32_t WordOfTail(const unsigned char* inBytes, std::size_t inCount)
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < inCount; ++i) {
        word |= static_cast<std::uint32_t>(inBytes[i]) << (8 * i);
    }
    return word;
}

// The low byte of c is reserved for the length.
void AddTail(State& ioState, const unsigned char* inBytes, std::size_t inCount)
{
    if (inCount > 8) {
        ioState.c += WordOfTail(inBytes + 8, inCount - 8) << 8;
    }
    if (inCount > 4) {
        ioState.b += WordOfTail(inBytes + 4, inCount < 8 ? inCount - 4 : 4);
    }
    ioState.a += WordOfTail(inBytes, inCount < 4 ? inCount : 4);
}

} // namespace

void MixHash::MixInData(HashValue& ioHash, const unsigned char* inData, std::size_t inLength)
{
    constexpr std::size_t kStep = 12;
    constexpr std::uint32_t kGoldenRatio = 0x9E3779B9;
    State state{kGoldenRatio, kGoldenRatio, ioHash.mWords[0]};
    const unsigned char* bytes = inData;
    std::size_t len = inLength;
    for (; len >= kStep; len -= kStep, bytes += kStep) {
        state.a += WordAt(bytes);
        state.b += WordAt(bytes + 4);
        state.c += WordAt(bytes + 8);
        MixStep(state);
    }
    ORL_ASSERT_AT(len < 12, "MixHashValue", 151, "ORL::MixHash::MixInData");
    state.c += static_cast<std::uint32_t>(inLength);
    AddTail(state, bytes, len);
    MixStep(state);
    State spread{state.c, ioHash.mWords[1], ioHash.mWords[2]};
    MixStep(spread);
    ioHash = HashValue(spread.a, spread.b, spread.c);
}

} // namespace ORL
