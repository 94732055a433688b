#include "LinuxNames.h"

#include <algorithm>

namespace ORL {
namespace Linux {

namespace {

constexpr std::size_t kLongestName = 255;
constexpr unsigned kPrivateBase = 0xF000;
constexpr char kIllegal[] = "\"*/:<>?\\|";

bool IsIllegalCharacter(unsigned inCharacter) noexcept
{
    if (inCharacter < 0x20) {
        return true;
    }
    for (const char* illegal = kIllegal; *illegal != '\0'; ++illegal) {
        if (inCharacter == static_cast<unsigned char>(*illegal)) {
            return true;
        }
    }
    return false;
}

// The bytes that are the same on disk and in a library path, except a blank or dot at the end of a
// name.
struct PlainBytes
{
    constexpr PlainBytes() : mIsPlain()
    {
        for (unsigned byte = 0x20; byte < 0x7F; ++byte) {
            mIsPlain[byte] = true;
        }
        for (const char* illegal = kIllegal; *illegal != '\0'; ++illegal) {
            mIsPlain[static_cast<unsigned char>(*illegal)] = false;
        }
    }

    // Applies to a byte or a unit.
    constexpr bool Has(unsigned inCharacter) const noexcept { return inCharacter < 256 && mIsPlain[inCharacter]; }

private:
    bool mIsPlain[256];
};

constexpr PlainBytes kPlainBytes;

bool IsBlankOrDot(unsigned inCharacter) noexcept
{
    return inCharacter == ' ' || inCharacter == '.';
}

// Returns true for the units that encode a byte. U+F041 is not one of them: its byte, "A", is never encoded.
bool IsUnitOfByte(unsigned inUnit) noexcept
{
    if (inUnit <= kPrivateBase || inUnit > kPrivateBase + 0xFF) {
        return false;
    }
    const unsigned byte = inUnit - kPrivateBase;
    return byte >= 0x80 || IsBlankOrDot(byte) || (byte != '/' && IsIllegalCharacter(byte));
}

bool IsHighHalf(unsigned inUnit) noexcept
{
    return (inUnit & 0xFC00) == 0xD800;
}

bool IsLowHalf(unsigned inUnit) noexcept
{
    return (inUnit & 0xFC00) == 0xDC00;
}

struct Sequence
{
    unsigned mCharacter = 0;
    std::size_t mSize = 0; // 0 if the bytes are not a character
};

unsigned SmallestOfSize(std::size_t inSize) noexcept
{
    return inSize == 2 ? 0x80 : inSize == 3 ? 0x800 : 0x10000;
}

// Decodes one character of two to four bytes. Unpaired surrogates are accepted, because a Windows name may contain one.
Sequence ReadSequence(const unsigned char* inBytes, std::size_t inSize) noexcept
{
    const unsigned first = inBytes[0];
    const std::size_t size = (first & 0xE0) == 0xC0 ? 2 : (first & 0xF0) == 0xE0 ? 3 : (first & 0xF8) == 0xF0 ? 4 : 0;
    if (size == 0 || size > inSize) {
        return {};
    }
    unsigned character = first & (0x7Fu >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((inBytes[i] & 0xC0) != 0x80) {
            return {};
        }
        character = character << 6 | (inBytes[i] & 0x3Fu);
    }
    return character < SmallestOfSize(size) || character > 0x10FFFF ? Sequence{} : Sequence{character, size};
}

void AppendCharacter(UTF16String& ioText, unsigned inCharacter)
{
    if (inCharacter < 0x10000) {
        ioText += static_cast<unsigned short>(inCharacter);
        return;
    }
    ioText += static_cast<unsigned short>(0xD7C0 + (inCharacter >> 10));
    ioText += static_cast<unsigned short>(0xDC00 + (inCharacter & 0x3FF));
}

void AppendUTF8(std::string& ioBytes, unsigned inCharacter)
{
    const auto add = [&ioBytes](unsigned inByte) { ioBytes += static_cast<char>(inByte); };
    if (inCharacter < 0x80) {
        add(inCharacter);
        return;
    }
    if (inCharacter < 0x800) {
        add(0xC0 | inCharacter >> 6);
    } else {
        if (inCharacter < 0x10000) {
            add(0xE0 | inCharacter >> 12);
        } else {
            add(0xF0 | inCharacter >> 18);
            add(0x80 | (inCharacter >> 12 & 0x3F));
        }
        add(0x80 | (inCharacter >> 6 & 0x3F));
    }
    add(0x80 | (inCharacter & 0x3F));
}

void AppendUnitOfASCII(UTF16String& ioText, unsigned inByte, bool inIsLast)
{
    const bool travels = IsIllegalCharacter(inByte) || (inIsLast && IsBlankOrDot(inByte));
    ioText += static_cast<unsigned short>(travels ? kPrivateBase + inByte : inByte);
}

// Returns true if the name needs no conversion: a fast path, because most names consist only of plain bytes.
bool IsPlainName(const unsigned char* inBytes, std::size_t inSize) noexcept
{
    for (std::size_t i = 0; i < inSize; ++i) {
        if (!kPlainBytes.Has(inBytes[i])) {
            return false;
        }
    }
    return inSize != 0 && !IsBlankOrDot(inBytes[inSize - 1]);
}

} // namespace

void AppendUnitsOfName(UTF16String& ioText, const char* inName, std::size_t inSize)
{
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(inName);
    if (IsPlainName(bytes, inSize)) {
        const std::size_t end = ioText.size();
        ioText.resize(end + inSize);
        std::copy(bytes, bytes + inSize, ioText.begin() + static_cast<std::ptrdiff_t>(end));
        return;
    }
    bool afterHighHalf = false;
    for (std::size_t i = 0; i < inSize;) {
        if (bytes[i] < 0x80) {
            AppendUnitOfASCII(ioText, bytes[i], i + 1 == inSize);
            afterHighHalf = false;
            ++i;
            continue;
        }
        Sequence sequence = ReadSequence(bytes + i, inSize - i);
        // Two surrogates that are separate characters on disk must not join into one.
        if (IsUnitOfByte(sequence.mCharacter) || (afterHighHalf && IsLowHalf(sequence.mCharacter))) {
            sequence = {};
        }
        AppendCharacter(ioText, sequence.mSize != 0 ? sequence.mCharacter : kPrivateBase + bytes[i]);
        afterHighHalf = IsHighHalf(sequence.mCharacter) && sequence.mSize == 3;
        i += sequence.mSize != 0 ? sequence.mSize : 1;
    }
}

void AppendBytesOfName(std::string& ioBytes, const unsigned short* inUnits, std::size_t inCount)
{
    // A string zero-fills its memory when it grows, so the bytes are collected here and appended once.
    char bytes[kLongestName] = {};
    const std::size_t most = std::min(inCount, kLongestName);
    std::size_t plain = 0;
    for (; plain < most && kPlainBytes.Has(inUnits[plain]); ++plain) {
        bytes[plain] = static_cast<char>(inUnits[plain]);
    }
    ioBytes.append(bytes, plain);
    for (std::size_t i = plain; i < inCount; ++i) {
        const unsigned unit = inUnits[i];
        if (IsUnitOfByte(unit)) {
            ioBytes += static_cast<char>(unit - kPrivateBase);
        } else if (IsHighHalf(unit) && i + 1 < inCount && IsLowHalf(inUnits[i + 1])) {
            ++i;
            AppendUTF8(ioBytes, 0x10000 + ((unit & 0x3FF) << 10) + (inUnits[i] & 0x3FFu));
        } else {
            AppendUTF8(ioBytes, unit);
        }
    }
}

SystemError CheckName(const unsigned short* inUnits, std::size_t inCount) noexcept
{
    if (inCount == 0 || inCount > kLongestName) {
        return SystemErrors::kErrorInvalidName;
    }
    bool hasColon = false;
    for (std::size_t i = 0; i < inCount; ++i) {
        if (kPlainBytes.Has(inUnits[i])) {
            continue;
        }
        hasColon = hasColon || inUnits[i] == ':';
        if (inUnits[i] != ':' && IsIllegalCharacter(inUnits[i])) {
            return SystemErrors::kErrorInvalidName;
        }
    }
    return hasColon ? SystemErrors::kErrorFileNotFound : SystemErrors::kNoError;
}

} // namespace Linux
} // namespace ORL
