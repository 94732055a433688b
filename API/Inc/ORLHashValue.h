// Floor: Media
// A 96-bit running hash of bytes, and its text form.
//
// The hash is for tables and comparisons, not for security: anyone who controls the bytes can force any hash.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/String.h>
#include <tvxcore/UTF16Facets.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <ostream>
#include <vector>

namespace ORL {

/// A hash of three 32-bit words. A value type. Not thread-safe: one thread at a time per object.
///
///   ORL::HashValue hash(0, 0, 0);
///   ORL::MixHash::Mix(hash, bytes.data(), bytes.size());
class HashValue
{
public:
    static constexpr std::size_t kWordCount = 3; ///< the number of 32-bit words

    /// Sets the initial words. Different initial words produce independent hashes of the same bytes.
    constexpr HashValue(std::uint32_t inWord0, std::uint32_t inWord1, std::uint32_t inWord2) noexcept
        : mWords{inWord0, inWord1, inWord2}
    {
    }

    /// Returns one of the words. inIndex is 0, 1 or 2.
    constexpr std::uint32_t GetWord(std::size_t inIndex) const noexcept { return mWords[inIndex]; }

    friend constexpr bool operator==(const HashValue& inLeft, const HashValue& inRight) noexcept
    {
        return inLeft.mWords[0] == inRight.mWords[0] && inLeft.mWords[1] == inRight.mWords[1]
               && inLeft.mWords[2] == inRight.mWords[2];
    }
    friend constexpr bool operator!=(const HashValue& inLeft, const HashValue& inRight) noexcept
    {
        return !(inLeft == inRight);
    }

    /// Orders by word 0, then word 1, then word 2.
    friend constexpr bool operator<(const HashValue& inLeft, const HashValue& inRight) noexcept
    {
        for (std::size_t i = 0; i < kWordCount; ++i) {
            if (inLeft.mWords[i] != inRight.mWords[i]) {
                return inLeft.mWords[i] < inRight.mWords[i];
            }
        }
        return false;
    }

private:
    friend class MixHash;
    friend ORL_API std::basic_istream<unsigned short>& operator>>(std::basic_istream<unsigned short>& ioStream,
                                                                  HashValue& outHash);

    std::uint32_t mWords[kWordCount];
};

/// Hashes blocks of bytes into a HashValue. The result depends on the order and the boundaries of the blocks, and each
/// of its words depends on all bytes so far. Bytes are hashed with Bob Jenkins's lookup2 (1996), seeded with word 0;
/// one more mix step then spreads the result over the three words. Words are read in little-endian order at any
/// alignment, so equal bytes have equal hashes on every platform.
///
/// Thread-safe for different hashes. Never throws, allocates nothing.
class MixHash
{
public:
    /// Mixes inLength bytes into the hash. A length of 0 also changes the hash, and allows a null inData.
    static void Mix(HashValue& ioHash, const void* inData, std::size_t inLength)
    {
        MixInData(ioHash, static_cast<const unsigned char*>(inData), inLength);
    }

private:
    static ORL_API void MixInData(HashValue& ioHash, const unsigned char* inData, std::size_t inLength);
};

/// Writes the three words in lower-case hexadecimal, separated by ":", for example "1a:2b:3c". operator>> reads this
/// format. Ignores the flags, width and locale of the stream, and leaves them unchanged.
ORL_API std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream,
                                                       const HashValue& inHash);

/// Reads text up to white space and parses three hexadecimal words from it, separated by ":". A run of ":" counts
/// as one, and text after the third word is ignored. A missing word keeps its value, a word that is not a number
/// becomes 0, and a word of more than 32 bits becomes 0xFFFFFFFF. The stream's state only reports whether there was any
/// text.
ORL_API std::basic_istream<unsigned short>& operator>>(std::basic_istream<unsigned short>& ioStream,
                                                       HashValue& outHash);

/// The CRC table of the reflected polynomial 0xEDB88320, with only the low 8 bits of each entry.
class CRCHashValue
{
    /// 256 entries, built when the library is loaded.
    static ORL_API const std::vector<unsigned char>& sCRCTable;
};

} // namespace ORL
