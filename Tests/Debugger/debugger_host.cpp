// Contains values for a debugger to display. The script stops this program in Stop and prints the variables of main.
#include <ORLClassFactory.h>
#include <ORLConstString.h>
#include <ORLImmutableString.h>
#include <ORLInterface.h>
#include <ORLObjectPtr.h>
#include <ORLThreadedWorkQueue.h>
#include <ORLTimecode.h>

#include <tvxcore/Guid.h>
#include <tvxmediatypes/Constants.h>

#include <random>
#include <vector>

using namespace tvxmediatypes;

namespace {

struct Clip
{
    int mFrames;
};

class INamed : public ORL::ORLUnknown
{
public:
    static constexpr tvxcore::utility::Guid kInterfaceID{1, 2};
};

class Reel : public ORL::UnknownImpl<INamed, INamed>
{
public:
    int mNumber = 12;
};

class Work : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    void Process() override {}
};

void CreateReel(ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>& outRef)
{
    outRef = ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>(new Reel);
}

void Start(ORL::ThreadedWorkQueue& ioQueue, int inThreads)
{
    ioQueue.Initialize(ORL::ThreadPriorities::kNormal, inThreads, ORL::ConstString("Scan"), ORL::ConstString("Editor"));
}

UTF16String Units(const std::u16string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

constexpr int kLabels = 2000;

// Returns random labels in all formats and styles.
std::vector<ORL::Timecode> AnyCodes()
{
    static constexpr int kDisplays[] = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 200, 201};
    static constexpr FrameRate kRates[] = {kFrameRate_23976, kFrameRate_Film24, kFrameRate_VideoPAL,
                                           kFrameRate_VideoNTSC, kFrameRate_Video12_5};
    static constexpr FrameRate kAudioRates[] = {kFrameRate_Video1000, kFrameRate_Audio44100, kFrameRate_Audio96000,
                                                kFrameRate_Audio192000};
    std::mt19937 random(7);
    std::vector<ORL::Timecode> codes;
    for (int i = 0; i < kLabels; ++i) {
        const auto display = static_cast<TimeDisplay>(kDisplays[random() % 15]);
        const FrameRate rate =
            display < kTimeDisplay_AudioSamplesTimecode ? kRates[random() % 5] : kAudioRates[random() % 4];
        ORL::Timecode::Style style;
        style.mShowSign = random() % 2 == 0;
        style.mNoLeadingZeros = random() % 4 == 0;
        style.mHoursMode = random() % 4 == 0 ? 0 : 1;
        style.mPreviousFrame = random() % 4 == 0;
        const auto frames = static_cast<long long>(random()) - (1LL << 31);
        codes.emplace_back(TickTime(frames % (i + 1000000), rate), rate, display, style);
    }
    return codes;
}

ORL::Timecode Shown(long long inFrames, TimeDisplay inDisplay, const FrameRate& inRate, bool inSign = false)
{
    ORL::Timecode::Style style;
    style.mShowSign = inSign;
    return ORL::Timecode(TickTime(inFrames, inRate), inRate, inDisplay, style);
}

} // namespace

extern "C" __attribute__((noinline)) void Stop()
{
    __asm__ volatile("");
}

int main()
{
    const ORL::Timecode drop = Shown(107892, kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC);
    const ORL::Timecode pal = Shown(93784, kTimeDisplay_25Timecode, kFrameRate_VideoPAL);
    const ORL::Timecode before = Shown(-1, kTimeDisplay_25Timecode, kFrameRate_VideoPAL);
    const ORL::Timecode minus = Shown(-1, kTimeDisplay_25Timecode, kFrameRate_VideoPAL, true);
    const ORL::Timecode plus = Shown(17, kTimeDisplay_35mmFeetFrames, kFrameRate_Film24, true);
    const ORL::Timecode feet = Shown(-41, kTimeDisplay_16mmFeetFrames, kFrameRate_Film24);
    const ORL::Timecode count = Shown(-1234, kTimeDisplay_Frames, kFrameRate_23976);
    const ORL::Timecode samples = Shown(48450, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio48000);
    const ORL::Timecode fast = Shown(192001, kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio192000);
    const ORL::Timecode milliseconds = Shown(3723045, kTimeDisplay_AudioMsTimecode, kFrameRate_Video1000);
    const UTF16String text = Units(u"caf\u00e9 \U0001F600");
    const UTF16String lone = Units(u"a") + UTF16String(1, 0xD83D);
    const UTF16String nothing;
    const UTF8String bytes(4, static_cast<unsigned char>('x'));
    const ORL::ConstString name(text);
    const ORL::StdConstString narrow("clip.mov");
    const ORL::ObjectPtr<Clip> clip(new Clip{750});
    const ORL::ObjectPtr<Clip> second(clip);
    const ORL::ObjectPtr<Clip> noClip;
    const ORL::InterfaceRef<INamed> reel(new Reel);
    const ORL::InterfaceRef<INamed> noReel;
    [[maybe_unused]] const tvxcore::utility::Guid guid(0x20974874, 0x84a4, 0x4245, 0x93, 0x72, 0xb2, 0x4a, 0x16, 0x49,
                                                       0x81, 0x99);
    const TickTime time(90, kFrameRate_VideoNTSC);
    const TickTime invalid = kTime_Invalid;
    const FrameRate rate = kFrameRate_VideoNTSC_HD;
    const std::vector<ORL::Timecode> many{drop, pal};
    const std::vector<ORL::Timecode> codes = AnyCodes();
    std::vector<UTF16String> labels;
    for (const ORL::Timecode& code : codes) {
        labels.push_back(code.GetString());
    }
    const ORL::ImmutableString interned = ORL::ImmutableString::CreateStatic("caf\u00e9");
    const ORL::ImmutableString again = interned;
    const ORL::ImmutableString copied = ORL::ImmutableString::CreateDynamic("take 2");
    const ORL::ImmutableString unnamed;
    const ORL::Guid classID(0x03020100, 0x0504, 0x0706, 8, 9, 10, 11, 12, 13, 14, 15);
    ORL::ClassFactory::RegisterORLClass(classID, "reel", "media", &CreateReel, &ORLGetClassCategories);
    const ORL::ClassMapEntry* const entry = ORL::ClassFactory::GetClassTokenFromClassID(classID);
    const ORL::ThreadedWorkQueue idle;
    ORL::ThreadedWorkQueue busy;
    Start(busy, 2);
    busy.Pause();
    for (int i = 0; i < 3; ++i) {
        busy.QueueRequest(ORL::ThreadedWorkQueue::Request(new Work));
    }
    ORL::ThreadedWorkQueue stopped;
    Start(stopped, 1);
    stopped.Stop();
    Stop();
    busy.Stop();
    static_cast<void>(entry);
    return rate == kFrameRate_Zero || invalid == time ? 1 : 0;
}
