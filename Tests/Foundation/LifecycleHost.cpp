// A host that starts and stops the library, and uses it from static objects. Its only argument is the mode; it says what
// it does. With ORL_START_STATICALLY the start comes from a static constructor, before main.
#include <ORLFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

std::string sMode;

bool IsMode(const char* inMode)
{
    return sMode == inMode;
}

void Say(const char* inText)
{
    std::printf("%s\n", inText);
    std::fflush(stdout);
}

void UseWhatNeedsNoStart()
{
    const ORL::CriticalSectionLock lock(ORLGetGlobalCriticalSectionForSingletonConstruction());
    const ORL::CriticalSectionLock pooled(ORL::SharedObjectBase::GetCriticalSection());
    const ORL::ObjectPtr<int> number(new int(3));
    const ORL::ObjectPtr<int> copy(number);
    if (*copy != 3 || ORL::kPropertyKey_FrameRate.empty()) {
        std::abort();
    }
}

/// Destroyed after StartsAndStops, since it was built before it.
struct UsesLate
{
    ~UsesLate()
    {
        if (IsMode("late-use")) {
            UseWhatNeedsNoStart();
            Say("used after the stop");
        }
    }
};

struct StartsAndStops
{
    StartsAndStops()
    {
#if defined(ORL_START_STATICALLY)
        UseWhatNeedsNoStart();
        Start();
#endif
    }

    ~StartsAndStops()
    {
        if (mStarted && !IsMode("never-stopped")) {
            ORL::Foundation::Terminate();
            Say("stopped");
        }
    }

    void Start()
    {
        ORL::Foundation::Initialize();
        mStarted = true;
        Say("started");
    }

    bool mStarted = false;
};

UsesLate sUsesLate;
StartsAndStops sStartsAndStops;

} // namespace

int main(int argc, char** argv)
{
    sMode = argc > 1 ? argv[1] : "";
    if (IsMode("unmatched-stop")) {
        ORL::Foundation::Terminate();
    } else if (!sStartsAndStops.mStarted) {
        sStartsAndStops.Start();
    }
    UseWhatNeedsNoStart();
    Say("main");
    return 0;
}
