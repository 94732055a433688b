// Creates a card and a disk, and checks the conditions that must hold after an ingest.
#pragma once

#include <TempFolder.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace ORLTest {

/// Computes SHA-256 with code written from the standard, independent of the tool's library.
inline std::string ReferenceSha256(std::string inBytes)
{
    static const std::uint32_t kRound[64] = {
        0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
        0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
        0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
        0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
        0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
        0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
        0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
        0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};
    std::uint32_t hash[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                             0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    const std::uint64_t bits = std::uint64_t{inBytes.size()} * 8;
    inBytes += '\x80';
    inBytes.append((120 - inBytes.size() % 64) % 64, '\0');
    for (int shift = 56; shift >= 0; shift -= 8) {
        inBytes += static_cast<char>(bits >> shift);
    }
    const auto turn = [](std::uint32_t inWord, int inBits) { return inWord >> inBits | inWord << (32 - inBits); };
    for (std::size_t block = 0; block < inBytes.size(); block += 64) {
        std::uint32_t w[64];
        for (std::size_t i = 0; i < 16; ++i) {
            w[i] = 0;
            for (std::size_t j = 0; j < 4; ++j) {
                w[i] = w[i] << 8 | static_cast<unsigned char>(inBytes[block + 4 * i + j]);
            }
        }
        for (std::size_t i = 16; i < 64; ++i) {
            w[i] = w[i - 16] + (turn(w[i - 15], 7) ^ turn(w[i - 15], 18) ^ w[i - 15] >> 3) + w[i - 7]
                   + (turn(w[i - 2], 17) ^ turn(w[i - 2], 19) ^ w[i - 2] >> 10);
        }
        std::uint32_t v[8];
        std::memcpy(v, hash, sizeof(v));
        for (std::size_t i = 0; i < 64; ++i) {
            const std::uint32_t t1 = v[7] + (turn(v[4], 6) ^ turn(v[4], 11) ^ turn(v[4], 25))
                                     + ((v[4] & v[5]) ^ (~v[4] & v[6])) + kRound[i] + w[i];
            const std::uint32_t t2 =
                (turn(v[0], 2) ^ turn(v[0], 13) ^ turn(v[0], 22)) + ((v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]));
            std::memmove(v + 1, v, 7 * sizeof(v[0]));
            v[4] += t1;
            v[0] = t1 + t2;
        }
        for (std::size_t i = 0; i < 8; ++i) {
            hash[i] += v[i];
        }
    }
    std::string text;
    for (const std::uint32_t word : hash) {
        char digits[9];
        std::snprintf(digits, sizeof(digits), "%08x", static_cast<unsigned>(word));
        text += digits;
    }
    return text;
}

/// Maps each name to the contents of the file, or to "/" for a folder.
using FileTree = std::map<std::string, std::string>;

inline std::string ReadFile(const std::filesystem::path& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline void WriteFile(const std::filesystem::path& inPath, const std::string& inContents)
{
    std::ofstream(inPath, std::ios::binary) << inContents;
}

inline FileTree ReadTree(const std::filesystem::path& inFolder)
{
    FileTree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(inFolder)) {
        const std::string name = entry.path().lexically_relative(inFolder).generic_u8string();
        tree[name] = entry.is_directory() ? "/" : ReadFile(entry.path());
    }
    return tree;
}

/// Returns the names and digests of a manifest, without its comments. If inMayBeTorn, the last line may be incomplete.
inline std::map<std::string, std::string> ReadManifest(const std::filesystem::path& inPath, bool inMayBeTorn = false)
{
    std::map<std::string, std::string> lines;
    const std::string text = ReadFile(inPath);
    EXPECT_TRUE(inMayBeTorn || text.empty() || text.back() == '\n');
    for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        const std::string line = text.substr(at, end - at);
        if (line.compare(0, 1, "#") == 0) {
            continue;
        }
        EXPECT_LT(66u, line.size()) << line;
        EXPECT_EQ("  ", line.substr(64, 2)) << line;
        EXPECT_EQ(0u, lines.count(line.substr(66))) << "a second line for " << line;
        lines[line.substr(66)] = line.substr(0, 64);
    }
    return lines;
}

inline constexpr char kManifest[] = "ingest.sha256";
inline constexpr char kRecord[] = ".ingest.sha256.run";

/// Returns the record of a killed run with these lines: "T name", "M length", "W offset".
inline std::string RecordOf(const std::string& inLines)
{
    return "orl ingest: the record of a run; it is deleted when the run has ended\n" + inLines;
}

inline constexpr char kUnfinished[] = ".orl-0123456789abcdef0123456789abcdef.part";

/// Returns whether a name is that of an unfinished file, the record, or the old file that a killed replacement left.
inline bool IsLeftover(const std::string& inName)
{
    return inName.find(".orl-") != std::string::npos || inName == kRecord || inName.find('~') != std::string::npos;
}

/// Expects that the disk holds the card's tree and its manifest, and nothing else.
inline void ExpectIngested(const FileTree& inCard, const std::filesystem::path& inDisk)
{
    FileTree disk = ReadTree(inDisk);
    const std::map<std::string, std::string> manifest = ReadManifest(inDisk / kManifest);
    disk.erase(kManifest);
    EXPECT_EQ(inCard, disk);
    std::map<std::string, std::string> expected;
    for (const auto& [name, contents] : inCard) {
        if (contents != "/") {
            expected[name] = ReferenceSha256(contents);
        }
    }
    EXPECT_EQ(expected, manifest);
}

/// Returns a RIFF file of 16-bit stereo silence.
inline std::string MakeWav(std::uint32_t inSamplesPerSecond, std::uint32_t inSamples)
{
    const auto number = [](std::uint32_t inNumber, int inSize) {
        std::string bytes;
        for (int i = 0; i < inSize; ++i) {
            bytes += static_cast<char>(inNumber >> (8 * i));
        }
        return bytes;
    };
    const std::string format = number(1, 2) + number(2, 2) + number(inSamplesPerSecond, 4)
                               + number(inSamplesPerSecond * 4, 4) + number(4, 2) + number(16, 2);
    const std::string body = "WAVEfmt " + number(16, 4) + format + "odd " + number(3, 4) + std::string(4, 'o') + "data"
                             + number(inSamples * 4, 4) + std::string(inSamples * 4, '\0');
    return "RIFF" + number(static_cast<std::uint32_t>(body.size()), 4) + body;
}

} // namespace ORLTest
