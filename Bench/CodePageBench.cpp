// Question: is converting code page strings by value faster than with ICU's converter, kept open and writing to a
// preallocated buffer? And does a repeated query of the language cost more than an atomic load?
#include <ORLHostSettings.h>
#include <ORLStringUtils.h>

#include <Harness.h>

#include <unicode/ucnv.h>

#include <atomic>
#include <string>
#include <vector>

namespace {

using namespace ORL;

struct Page
{
    const char* mName;
    unsigned short mLanguage; // the language that uses the page
    const char* mConverter;   // ICU's name for the page
    const char* mSample;
};

const Page kPages[] = {
    {"932", 1041, "ibm-943_P15A-2003",
     "Take 3: "
     "\x93\xFA\x96\x7B\x8C\xEA\x82\xCC\x8E\x9A\x96\x8B\x81\x41\x83\x4A\x83\x81\x83\x89 1 "
     "\x82\xC6 2 \x82\xF0\x95\xD2\x8F\x57\x82\xB7\x82\xE9\x81\x42"},
    {"1252", 1031, "windows-1252",
     "Fa\xE7"
     "ade na\xEFve \x84\xFC"
     "ber\x93 Gr\xF6\xDF"
     "e d\xE9j\xE0 vu, 12 \x80. "},
};

const std::size_t kSizes[] = {16, 256, 65536};
const double kGoals[] = {0.8, 0.35, 0.35};

// Repeats the sample, and cuts the result where both converters see a character boundary.
std::string TextOf(const Page& inPage, std::size_t inBytes)
{
    std::string text;
    while (text.size() < inBytes) {
        text += inPage.mSample;
    }
    text.resize(inBytes);
    return StringUtils::ToMultiByte(StringUtils::ToUnicode(text));
}

class Converter
{
public:
    explicit Converter(const char* inName) : mConverter(ucnv_open(inName, &mError))
    {
        if (U_FAILURE(mError)) {
            std::fprintf(stderr, "ICU has no converter %s\n", inName);
            std::exit(1);
        }
    }
    ~Converter() { ucnv_close(mConverter); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    void ToUnits(const std::string& inText, std::vector<UChar>& outUnits)
    {
        UErrorCode error = U_ZERO_ERROR;
        ucnv_toUChars(mConverter, outUnits.data(), static_cast<std::int32_t>(outUnits.size()), inText.data(),
                      static_cast<std::int32_t>(inText.size()), &error);
    }

    void ToBytes(const UTF16String& inText, std::vector<char>& outBytes)
    {
        UErrorCode error = U_ZERO_ERROR;
        ucnv_fromUChars(mConverter, outBytes.data(), static_cast<std::int32_t>(outBytes.size()),
                        reinterpret_cast<const UChar*>(inText.data()), static_cast<std::int32_t>(inText.size()),
                        &error);
    }

private:
    UErrorCode mError = U_ZERO_ERROR;
    UConverter* mConverter;
};

void Convert(const Page& inPage, std::size_t inSize)
{
    SetLanguageID(inPage.mLanguage);
    const std::string bytes = TextOf(inPage, kSizes[inSize]);
    const UTF16String units = StringUtils::ToUnicode(bytes);
    Converter converter(inPage.mConverter);
    std::vector<UChar> unitBuffer(bytes.size() + 64);
    std::vector<char> byteBuffer(2 * units.size() + 64);
    const std::string title = std::string("page ") + inPage.mName + ", " + std::to_string(kSizes[inSize]) + " B, ";
    Bench::Group(title + "to 16-bit text")
        .Ours("ToUnicode", Bench::AtMost(kGoals[inSize]),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(StringUtils::ToUnicode(bytes));
                  }
              })
        .Peer("ICU ucnv_toUChars, buffer",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      converter.ToUnits(bytes, unitBuffer);
                      Bench::ClobberMemory();
                  }
              })
        .Run();
    Bench::Group(title + "from 16-bit text")
        .Ours("ToMultiByte", Bench::AtMost(kGoals[inSize]),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(StringUtils::ToMultiByte(units));
                  }
              })
        .Peer("ICU ucnv_fromUChars, buffer",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      converter.ToBytes(units, byteBuffer);
                      Bench::ClobberMemory();
                  }
              })
        .Run();
}

void AskForLanguage()
{
    SetLanguageID(1031);
    std::atomic<unsigned> word{1031};
    Bench::Group("the known language")
        .Ours("GetLanguageID", Bench::AtMost(1.5),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(GetLanguageID());
                  }
              })
        .Peer("relaxed load",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Bench::DoNotOptimize(word.load(std::memory_order_relaxed));
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    StringUtils::Linux::SetDefaultCodePage(1252);
    for (const Page& page : kPages) {
        for (std::size_t size = 0; size < 3; ++size) {
            Convert(page, size);
        }
    }
    AskForLanguage();
    return Bench::Finish();
}
