// Timecode compared with libavutil's timecode functions, and with snprintf and sscanf for formats that libavutil lacks.
//
// Question: would a host that displays and parses many labels be faster with another library? Labels and times are
// random in a day, so that branches cannot be predicted; the library returns its labels by value, as 16-bit strings.
#include "Harness.h"

#include <ORLTimecode.h>

#include <tvxcore/SmallBlockAllocator.h>
#include <tvxmediatypes/Constants.h>

extern "C" {
#include <libavutil/rational.h>
#include <libavutil/timecode.h>
}

#include <array>
#include <random>

using namespace tvxmediatypes;
using ORL::Timecode;

namespace {

unsigned long long sHeapBlocks = 0; // not atomic: this program has one thread

} // namespace

// Replaces the C library's malloc, in shared libraries as well.
extern "C" void* __libc_malloc(std::size_t inSize);
extern "C" void* malloc(std::size_t inSize)
{
    ++sHeapBlocks;
    return __libc_malloc(inSize);
}

namespace {

constexpr std::size_t kCount = 4096;
constexpr std::size_t kMask = kCount - 1;

struct BenchFormat
{
    const char* mName;
    TimeDisplay mDisplay;
    FrameRate mRate;
    AVRational mPeerRate;
    unsigned mPeerFlags;
    int mFramesOfADay;
};

const BenchFormat kDrop2997 = {"29.97 drop",  kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC,
                               {30000, 1001}, AV_TIMECODE_FLAG_DROPFRAME,    2589408};
const BenchFormat k25 = {"25", kTimeDisplay_25Timecode, kFrameRate_VideoPAL, {25, 1}, 0, 2160000};
const BenchFormat kDrop5994 = {"59.94 drop",  kTimeDisplay_5994DropTimecode, kFrameRate_VideoNTSC_HD,
                               {60000, 1001}, AV_TIMECODE_FLAG_DROPFRAME,    5178816};
const BenchFormat kSamples = {"samples at 48000", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio48000, {}, 0,
                              2147483647};
const BenchFormat kFeet = {"feet and frames", kTimeDisplay_35mmFeetFrames, kFrameRate_Film24, {}, 0, 2073600};

UTF16String Wide(const char* inText)
{
    return UTF16String(inText, inText + std::strlen(inText));
}

// Random frames of a day, converted for both sides.
struct Material
{
    explicit Material(const BenchFormat& inFormat) : mFormat(inFormat)
    {
        std::mt19937 random(29);
        if (inFormat.mPeerRate.num != 0) {
            av_timecode_init(&mPeer, inFormat.mPeerRate, static_cast<int>(inFormat.mPeerFlags), 0, nullptr);
        }
        for (std::size_t i = 0; i < kCount; ++i) {
            mFrames.push_back(static_cast<int>(random() % static_cast<unsigned>(inFormat.mFramesOfADay)));
            mTimes.emplace_back(mFrames.back(), inFormat.mRate);
            mCodes.emplace_back(mTimes.back(), inFormat.mRate, inFormat.mDisplay);
            mTexts.push_back(mCodes.back().GetString());
            mNarrow.emplace_back(mTexts.back().begin(), mTexts.back().end());
        }
    }

    const BenchFormat& mFormat;
    AVTimecode mPeer{};
    std::vector<int> mFrames;
    std::vector<TickTime> mTimes;
    std::vector<Timecode> mCodes;
    std::vector<UTF16String> mTexts;
    std::vector<std::string> mNarrow;
};

// Returns the fields of a label as libavutil computes them, unpacked.
struct PeerFields
{
    int mHours;
    int mMinutes;
    int mSeconds;
    int mFrames;
};

int FromPacked(std::uint32_t inPacked)
{
    return static_cast<int>((inPacked >> 4 & 15) * 10 + (inPacked & 15));
}

PeerFields FieldsOf(const AVTimecode& inPeer, int inFrame)
{
    const std::uint32_t packed = av_timecode_get_smpte_from_framenum(&inPeer, inFrame);
    return {FromPacked(packed & 0x3F), FromPacked(packed >> 8 & 0x7F), FromPacked(packed >> 16 & 0x7F),
            FromPacked(packed >> 24 & 0x3F)};
}

void WriteGroup(const Material& inMaterial)
{
    const std::string name = inMaterial.mFormat.mName;
    Bench::Group("GetString, " + name)
        .Ours("GetString, by value", Bench::AtMost(0.25, "av_timecode_make_string"),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const UTF16String text = inMaterial.mCodes[i & kMask].GetString();
                      Bench::DoNotOptimize(text.data());
                  }
              })
        .Peer("av_timecode_make_string",
              [&](std::uint64_t n) {
                  char text[AV_TIMECODE_STR_SIZE];
                  for (std::uint64_t i = 0; i < n; ++i) {
                      Bench::DoNotOptimize(
                          av_timecode_make_string(&inMaterial.mPeer, text, inMaterial.mFrames[i & kMask]));
                  }
              })
        .Run();
}

void WriteGroupAgainstPrint(const Material& inMaterial, const char* inPattern, std::array<int, 4> (*inFields)(int),
                            int inFieldCount)
{
    std::vector<std::array<int, 4>> fields;
    for (const int frame : inMaterial.mFrames) {
        fields.push_back(inFields(frame));
    }
    Bench::Group(std::string("GetString, ") + inMaterial.mFormat.mName)
        .Ours("GetString, by value", Bench::AtMost(0.25, "snprintf of known fields"),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const UTF16String text = inMaterial.mCodes[i & kMask].GetString();
                      Bench::DoNotOptimize(text.data());
                  }
              })
        .Peer("snprintf of known fields",
              [&](std::uint64_t n) {
                  char text[32];
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const std::array<int, 4>& field = fields[i & kMask];
                      if (inFieldCount == 4) {
                          std::snprintf(text, sizeof(text), inPattern, field[0], field[1], field[2], field[3]);
                      } else {
                          std::snprintf(text, sizeof(text), inPattern, field[0], field[1]);
                      }
                      Bench::DoNotOptimize(text[0]);
                  }
              })
        .Run();
}

void ReadGroup(const Material& inMaterial)
{
    const BenchFormat& format = inMaterial.mFormat;
    // libavutil detects drop-frame by the last separator and accepts ";" only there.
    std::vector<std::string> peerTexts;
    for (const int frame : inMaterial.mFrames) {
        char text[AV_TIMECODE_STR_SIZE];
        peerTexts.emplace_back(av_timecode_make_string(&inMaterial.mPeer, text, frame));
    }
    Bench::Group(std::string("StringToTime of a full label, ") + format.mName)
        .Ours("StringToTime", Bench::AtMost(0.2, "av_timecode_init_from_string"),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      Bench::DoNotOptimize(
                          Timecode::StringToTime(inMaterial.mTexts[i & kMask], format.mRate, format.mDisplay, false));
                  }
              })
        .Peer("av_timecode_init_from_string",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      AVTimecode peer;
                      av_timecode_init_from_string(&peer, format.mPeerRate, peerTexts[i & kMask].c_str(), nullptr);
                      Bench::DoNotOptimize(peer.start);
                  }
              })
        .Run();
}

void ReadShorthandGroup(const Material& inMaterial)
{
    const BenchFormat& format = inMaterial.mFormat;
    std::vector<UTF16String> texts;
    std::vector<std::string> peerTexts;
    for (const std::string& label : inMaterial.mNarrow) {
        std::string digits;
        for (const char unit : label) {
            if (unit != ':' && unit != ';') {
                digits += unit;
            }
        }
        texts.push_back(Wide(digits.c_str()));
        peerTexts.push_back(digits);
    }
    Bench::Group(std::string("StringToTime of shorthand digits, ") + format.mName)
        .Ours("StringToTime", Bench::AtMost(0.2, "sscanf of four fields"),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      Bench::DoNotOptimize(
                          Timecode::StringToTime(texts[i & kMask], format.mRate, format.mDisplay, false));
                  }
              })
        .Peer("sscanf of four fields",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      int hours = 0;
                      int minutes = 0;
                      int seconds = 0;
                      int frames = 0;
                      std::sscanf(peerTexts[i & kMask].c_str(), "%2d%2d%2d%2d", &hours, &minutes, &seconds, &frames);
                      Bench::DoNotOptimize(hours + minutes + seconds + frames);
                  }
              })
        .Run();
}

void FieldGroups(const Material& inMaterial)
{
    const BenchFormat& format = inMaterial.mFormat;
    const std::string name = format.mName;
    const auto peerConstruct = [&](std::uint64_t n) {
        for (std::uint64_t i = 0; i < n; ++i) {
            AVTimecode peer;
            av_timecode_init(&peer, format.mPeerRate, static_cast<int>(format.mPeerFlags), 0, nullptr);
            Bench::DoNotOptimize(FieldsOf(peer, inMaterial.mFrames[i & kMask]));
        }
    };
    const auto peerSetTime = [&](std::uint64_t n) {
        for (std::uint64_t i = 0; i < n; ++i) {
            Bench::DoNotOptimize(FieldsOf(inMaterial.mPeer, inMaterial.mFrames[i & kMask]));
        }
    };
    Bench::Group("construct, " + name)
        .Ours("Timecode(time, rate, format)", Bench::AtMost(1.0, "libavutil, init and fields"),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const Timecode code(inMaterial.mTimes[i & kMask], format.mRate, format.mDisplay);
                      Bench::DoNotOptimize(&code);
                  }
              })
        .Peer("libavutil, init and fields", peerConstruct)
        .Run();
    Bench::Group("SetTime, " + name)
        .Ours("SetTime(TickTime)", Bench::AtMost(1.0, "libavutil, fields of a frame"),
              [&](std::uint64_t n) {
                  Timecode code(kTime_Zero, format.mRate, format.mDisplay);
                  for (std::uint64_t i = 0; i < n; ++i) {
                      code.SetTime(inMaterial.mTimes[i & kMask]);
                      Bench::ClobberMemory();
                  }
              })
        .Peer("libavutil, fields of a frame", peerSetTime)
        .Run();
    Bench::Group("IncrementHMSF, " + name)
        .Ours("IncrementHMSF(0, 0, 0, 1)", Bench::AtMost(1.0, "libavutil, fields of the next frame"),
              [&](std::uint64_t n) {
                  Timecode code(kTime_Zero, format.mRate, format.mDisplay);
                  for (std::uint64_t i = 0; i < n; ++i) {
                      code.IncrementHMSF(0, 0, 0, 1);
                      Bench::ClobberMemory();
                  }
              })
        .Peer("libavutil, fields of the next frame",
              [&](std::uint64_t n) {
                  int frame = 0;
                  for (std::uint64_t i = 0; i < n; ++i) {
                      Bench::DoNotOptimize(FieldsOf(inMaterial.mPeer, ++frame));
                  }
              })
        .Run();
    Bench::Group("copy, " + name)
        .Ours("Timecode(other)", Bench::AtMost(1.0, "libavutil, copy and fields"),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const Timecode copy(inMaterial.mCodes[i & kMask]);
                      Bench::DoNotOptimize(&copy);
                  }
              })
        .Peer("libavutil, copy and fields",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const AVTimecode peer = inMaterial.mPeer;
                      Bench::DoNotOptimize(FieldsOf(peer, inMaterial.mFrames[i & kMask]));
                  }
              })
        .Run();
}

// Measures formatting every label of a day in order.
void DayGroup()
{
    constexpr int kLabels = 2589408;
    constexpr std::size_t kUnits = 11;
    std::vector<std::array<unsigned short, kUnits>> rows(kLabels);
    std::vector<std::array<char, AV_TIMECODE_STR_SIZE>> peerRows(kLabels);
    AVTimecode peer;
    av_timecode_init(&peer, AVRational{30000, 1001}, AV_TIMECODE_FLAG_DROPFRAME, 0, nullptr);
    Bench::Group("label table of a day, 29.97 drop")
        .Operations(1)
        .Unit("ns a label")
        .Ours("SetTime and GetString", Bench::AtMost(0.35, "av_timecode_make_string"),
              [&](std::uint64_t) {
                  const double start = Bench::NowInNanoseconds();
                  Timecode code;
                  TickTime time;
                  for (auto& row : rows) {
                      code.SetTime(time);
                      const UTF16String text = code.GetString();
                      std::memcpy(row.data(), text.data(), kUnits * sizeof(unsigned short));
                      time.AddFrames(1, kFrameRate_VideoNTSC);
                  }
                  return (Bench::NowInNanoseconds() - start) / kLabels;
              })
        .Peer("av_timecode_make_string",
              [&](std::uint64_t) {
                  const double start = Bench::NowInNanoseconds();
                  int frame = 0;
                  for (auto& row : peerRows) {
                      av_timecode_make_string(&peer, row.data(), frame++);
                  }
                  return (Bench::NowInNanoseconds() - start) / kLabels;
              })
        .Run();
}

// Returns the blocks allocated so far: from the small block allocator, if it has counters, and from the system's heap
// beneath it. An allocator without counters may pass every block on to the heap.
unsigned long long BlocksSoFar()
{
    tvxcore::utility::SmallBlockAllocator::Metrics::Snapshot snapshot{};
    const bool counts = tvxcore::utility::SmallBlockAllocator::Metrics::GetSnapshot(snapshot);
    return (counts ? snapshot.mSmallBlockCountTotal : 0) + sHeapBlocks;
}

template <class Function>
void PrintAllocations(const char* inName, Function inFunction)
{
    constexpr int kOperations = 10000;
    const unsigned long long before = BlocksSoFar();
    for (int i = 0; i < kOperations; ++i) {
        inFunction();
    }
    std::printf("  %-34s %9.4g\n", inName, static_cast<double>(BlocksSoFar() - before) / kOperations);
}

// A label has 11 units, which the string stores in one heap block. A Timecode owns one record.
void PrintAllAllocations()
{
    std::printf("\nallocations (blocks an operation)\n");
    Timecode code;
    const UTF16String text = code.GetString();
    PrintAllocations("construct", [] { Timecode made(kTime_Zero, kFrameRate_VideoPAL, kTimeDisplay_25Timecode); });
    PrintAllocations("copy", [&] { Timecode copy(code); });
    PrintAllocations("SetTime(TickTime)", [&] { code.SetTime(kTime_Zero); });
    PrintAllocations("SetTime(text)", [&] { code.SetTime(text); });
    PrintAllocations("StringToTime",
                     [&] { Timecode::StringToTime(text, kFrameRate_VideoPAL, kTimeDisplay_25Timecode, false); });
    PrintAllocations("IncrementHMSF", [&] { code.IncrementHMSF(0, 0, 0, 1); });
    PrintAllocations("GetString", [&] { Bench::DoNotOptimize(code.GetString().size()); });
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const Material drop2997(kDrop2997);
    const Material pal(k25);
    const Material drop5994(kDrop5994);
    const Material samples(kSamples);
    const Material feet(kFeet);
    WriteGroup(drop2997);
    WriteGroup(pal);
    WriteGroup(drop5994);
    WriteGroupAgainstPrint(
        samples, "%02d:%02d:%02d:%05d",
        [](int frame) {
            const int second = frame / 48000;
            return std::array<int, 4>{second / 3600, second / 60 % 60, second % 60, frame % 48000};
        },
        4);
    WriteGroupAgainstPrint(
        feet, "%d+%02d",
        [](int frame) {
            return std::array<int, 4>{frame / 16, frame % 16, 0, 0};
        },
        2);
    for (const Material* material : {&drop2997, &pal, &drop5994}) {
        ReadGroup(*material);
        ReadShorthandGroup(*material);
        FieldGroups(*material);
    }
    DayGroup();
    PrintAllAllocations();
    return Bench::Finish();
}
