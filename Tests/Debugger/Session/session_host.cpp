// A player with three bugs, for the session in Docs/debugging.md: session_host crash|leak|queue
#include "Player.h"

#include <ORLImmutableString.h>
#include <ORLString.h>
#include <ORLThreadedWorkQueue.h>
#include <ORLTimecode.h>
#include <ORLWaitableGate.h>

#include <tvxmediatypes/Constants.h>

#include <csignal>
#include <cstring>
#include <dlfcn.h>

namespace {

using ORL::ImmutableString;

class Reel : public ORL::UnknownImpl<ORL::ORLUnknown, Reel>
{
public:
    static constexpr ORL::Guid kInterfaceID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x42};

    ImmutableString mName = ImmutableString::CreateStatic("A001");
    ORL::Timecode mStart{tvxmediatypes::TickTime(90000, tvxmediatypes::kFrameRate_VideoPAL),
                         tvxmediatypes::kFrameRate_VideoPAL, tvxmediatypes::kTimeDisplay_25Timecode};
};

using ReelRef = ORL::InterfaceRef<Reel, ORL::ORLUnknown>;

class Scan : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    Scan(ORL::WaitableGate& inStarted, ORL::WaitableGate& inDiskReady) : mStarted(inStarted), mDiskReady(inDiskReady) {}

    void Process() override
    {
        mStarted.Open();
        mDiskReady.Wait(-1);
    }

private:
    ORL::WaitableGate& mStarted;
    ORL::WaitableGate& mDiskReady;
};

// The plug-in crashes because its mask is empty.
void Crash()
{
    ::dlopen(PLUG_IN, RTLD_NOW);
    const ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown> object = ORL::CreateClassInstanceRef(kMaskEffect);
    const ORL::InterfaceRef<IEffect> effect(static_cast<IEffect*>(object.GetPtr()));
    Picture picture{1920, 1080};
    effect->Apply(picture);
}

void Show(Reel& inReel)
{
    ReelRef shown(&inReel);
}

void Remember(Reel& inReel)
{
    inReel.AddRef(); // the mistake: no Release
}

// The reel outlives its last owner.
void Leak()
{
    ReelRef reel(new Reel);
    Show(*reel.GetPtr());
    Remember(*reel.GetPtr());
    reel = ReelRef();
}

// Nobody opens the gate that the first request waits for, so the others never start.
void Queue()
{
    ORL::InterfaceRef<ORL::ThreadedWorkQueue, ORL::ORLUnknown> queue(new ORL::ThreadedWorkQueue);
    ORL::WaitableGate started;
    ORL::WaitableGate diskReady;
    queue->Initialize(ORL::ThreadPriorities::kNormal, 1, ORL::ConstString("Scan"), ORL::ConstString("Player"));
    for (int i = 0; i < 3; ++i) {
        queue->QueueRequest(ORL::ThreadedWorkQueue::Request(new Scan(started, diskReady)));
    }
    started.Wait(-1);
    std::raise(SIGINT); // as if the user had pressed Ctrl-C
    diskReady.Open();
    queue->Stop();
}

} // namespace

int main(int inCount, char** inArguments)
{
    const char* const mistake = inCount > 1 ? inArguments[1] : "";
    if (std::strcmp(mistake, "crash") == 0) {
        Crash();
    } else if (std::strcmp(mistake, "leak") == 0) {
        Leak();
    } else {
        Queue();
    }
}
