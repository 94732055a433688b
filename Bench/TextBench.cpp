// Question: is conversion that returns strings faster than ICU's conversion into a preallocated buffer, and is case
// folding faster than ICU's?
#include <tvxcore/Text.h>

#include <Harness.h>

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <string>
#include <vector>

namespace {

using tvxcore::utility::FoldCase;
using tvxcore::utility::UTF16to8;
using tvxcore::utility::UTF8to16;

// Repeats the sample up to inBytes bytes, and cuts the result at a character boundary.
UTF8String TextOf(const std::string& inSample, std::size_t inBytes)
{
    UTF8String text;
    while (text.size() < inBytes) {
        text.append(inSample.begin(), inSample.end());
    }
    std::size_t length = inBytes;
    while (length < text.size() && (text[length] & 0xC0) == 0x80) {
        --length;
    }
    return text.substr(0, length);
}

struct Kind
{
    const char* mName;
    const char* mSample;
    double mGoals[3]; // goals for 16, 256 and 65536 bytes; 0 for no goal
};

const Kind kKinds[] = {
    {"ASCII", "The quick brown fox jumps over the lazy dog, twice. ", {1.2, 0.25, 0.4}},
    {"Latin",
     "Fa\xC3\xA7"
     "ade na\xC3\xAFve \xC3\xBC"
     "ber Gr\xC3\xB6\xC3\x9F"
     "e d\xC3\xA9j\xC3\xA0 vu. ",
     {0, 0.9, 0.9}},
    {"CJK",
     "\xE6\xBC\xA2\xE5\xAD\x97\xE3\x81\x8B\xE3\x81\xAA\xE4\xBA\xA4\xE3\x81\x98\xE3\x82\x8A\xE6\x96\x87",
     {0, 0.9, 0.9}},
    {"mixed with emoji",
     "ab \xE6\xBC\xA2\xE5\xAD\x97 \xF0\x9F\x98\x80\xF0\x9F\x8E\xAC cut \xC3\xA9 \xE2\x82\xAC ",
     {0, 0.9, 0.9}},
};

const std::size_t kSizes[] = {16, 256, 65536};

Bench::Goal GoalOf(const Kind& inKind, std::size_t inSize)
{
    return Bench::AtMost(inKind.mGoals[inSize]);
}

void ToUTF16(const Kind& inKind, std::size_t inSize)
{
    const UTF8String text = TextOf(inKind.mSample, kSizes[inSize]);
    std::vector<UChar> buffer(text.size() + 64);
    Bench::Group(std::string("UTF-8 to UTF-16, ") + inKind.mName + ", " + std::to_string(kSizes[inSize]) + " B")
        .Ours("by value", GoalOf(inKind, inSize),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(UTF8to16(text));
                  }
              })
        .Ours("into a buffer", Bench::AtMost(0),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      UTF8to16(text.data(), text.size(), reinterpret_cast<unsigned short*>(buffer.data()));
                      Bench::ClobberMemory();
                  }
              })
        .Peer("u_strFromUTF8WithSub, buffer",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      UErrorCode error = U_ZERO_ERROR;
                      std::int32_t length = 0;
                      u_strFromUTF8WithSub(buffer.data(), static_cast<std::int32_t>(buffer.size()), &length,
                                           reinterpret_cast<const char*>(text.data()),
                                           static_cast<std::int32_t>(text.size()), 0xFFFD, nullptr, &error);
                      Bench::ClobberMemory();
                  }
              })
        .Run();
}

void ToUTF8(const Kind& inKind, std::size_t inSize)
{
    const UTF16String text = UTF8to16(TextOf(inKind.mSample, kSizes[inSize]));
    std::vector<char> buffer(3 * text.size() + 64);
    Bench::Group(std::string("UTF-16 to UTF-8, ") + inKind.mName + ", " + std::to_string(kSizes[inSize]) + " B")
        .Ours("by value", GoalOf(inKind, inSize),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(UTF16to8(text));
                  }
              })
        .Ours("into a buffer", Bench::AtMost(0),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      UTF16to8(text.data(), text.size(), reinterpret_cast<unsigned char*>(buffer.data()));
                      Bench::ClobberMemory();
                  }
              })
        .Peer("u_strToUTF8, buffer",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      UErrorCode error = U_ZERO_ERROR;
                      std::int32_t length = 0;
                      u_strToUTF8(buffer.data(), static_cast<std::int32_t>(buffer.size()), &length,
                                  reinterpret_cast<const UChar*>(text.data()), static_cast<std::int32_t>(text.size()),
                                  &error);
                      Bench::ClobberMemory();
                  }
              })
        .Run();
}

void Fold(const char* inName, const UTF16String& inText)
{
    std::vector<UChar> buffer(3 * inText.size());
    Bench::Group(std::string("case folding, ") + inName)
        .Ours("by value", Bench::AtMost(0.5),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(FoldCase(inText));
                  }
              })
        .Peer("u_strFoldCase, buffer",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      UErrorCode error = U_ZERO_ERROR;
                      u_strFoldCase(buffer.data(), static_cast<std::int32_t>(buffer.size()),
                                    reinterpret_cast<const UChar*>(inText.data()),
                                    static_cast<std::int32_t>(inText.size()), U_FOLD_CASE_DEFAULT, &error);
                      Bench::ClobberMemory();
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    for (const Kind& kind : kKinds) {
        for (std::size_t size = 0; size < 3; ++size) {
            ToUTF16(kind, size);
            ToUTF8(kind, size);
        }
    }
    Fold("24 ASCII units", tvxcore::utility::AsciiToUTF16("Some Clip With A Name.WAV"));
    return Bench::Finish();
}
