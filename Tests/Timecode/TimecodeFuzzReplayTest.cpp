// Replays the fuzzer's corpus and random strings of the grammar as plain tests on both platforms.
#include "../../Fuzz/TimecodeFuzzTarget.h"
#include "TimecodeTestSupport.h"
#include "TypedStringGrammar.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

using namespace ORLTest;

namespace {

std::vector<std::uint8_t> BytesOf(const TypedStringGrammar::Typed& inTyped, unsigned inChoices)
{
    std::vector<std::uint8_t> bytes = {static_cast<std::uint8_t>(inChoices), static_cast<std::uint8_t>(inChoices >> 8),
                                       static_cast<std::uint8_t>(inChoices >> 16)};
    for (const unsigned short unit : inTyped.mText) {
        if (unit < 0xFF) {
            bytes.push_back(static_cast<std::uint8_t>(unit));
        } else {
            bytes.insert(bytes.end(), {0xFF, static_cast<std::uint8_t>(unit), static_cast<std::uint8_t>(unit >> 8)});
        }
    }
    return bytes;
}

} // namespace

TEST(TimecodeFuzzReplay, EveryInputOfTheCorpus_Holds)
{
    CheckRecorder recorder;
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORL_FUZZ_CORPUS "/Timecode")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const char* const fault =
            ORLFuzz::CheckTimecodeInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        EXPECT_EQ(nullptr, fault) << entry.path().filename().string() << ": " << (fault != nullptr ? fault : "");
        ++count;
    }
    EXPECT_GE(count, 30u) << "the corpus is there";
}

TEST(TimecodeFuzzReplay, RandomTextsOfTheGrammar_Hold)
{
    CheckRecorder recorder;
    recorder.mIgnoreForGood = false;
    TypedStringGrammar grammar(2398);
    std::mt19937 random(11988);
    int comeBack = 0;
    for (int i = 0; i < 200000; ++i) {
        const std::vector<std::uint8_t> bytes = BytesOf(grammar.Next(), static_cast<unsigned>(random()));
        const char* const fault = ORLFuzz::CheckTimecodeInput(bytes.data(), bytes.size());
        ASSERT_EQ(nullptr, fault) << fault;
        const ORLFuzz::TimecodeInput input = ORLFuzz::ReadInput(bytes.data(), bytes.size());
        comeBack += ORLFuzz::RoundTrips(input, Timecode::StringToTime(input.mText, input.mRate, input.mDisplay, false));
        recorder.Clear();
    }
    EXPECT_GT(comeBack, 20000) << "the texts are not all junk";
}
