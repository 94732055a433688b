// Reports the state of a store.
#include "Store/LinuxRegistryStoreWork.h"

#include "Store/LinuxRegistryFolder.h"

#include <algorithm>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;

namespace {

std::string ProblemOf(SystemError inError)
{
    switch (inError) {
    case kErrorAccessDenied:
        return "the database or its folder may not be used: it is a link, belongs to another user, or is writable "
               "by every user";
    case kErrorNotRegistryFile: return "the database was made by a newer version of this library";
    case kErrorBusy: return "another process keeps the database locked";
    case kErrorDiskFull: return "the disk is full";
    default: return "the database cannot be read: system error " + std::to_string(inError);
    }
}

} // namespace

Platform::StoreState Store::State(Platform::StoreCheck inCheck)
{
    const FairMutexLock work(mDatabaseLock);
    const MutexLock memory(mMemoryLock);
    Platform::StoreState state;
    const SystemError error = OpenAndUpdate(IfMissing::kReport);
    state.mPlace = mLocation.mDatabase;
    if (error != kNoError) {
        state.mIsWhole = false;
        state.mProblem = ProblemOf(error);
    } else if (mDatabase.IsOpen() && inCheck == Platform::StoreCheck::kEverything) {
        state.mProblem = mDatabase.FindFaults();
        state.mIsWhole = state.mProblem.empty();
    }
    state.mBytes = SizeOnDisk(mLocation.mDatabase);
    state.mSetAside = FindSetAside(mLocation.mDatabase);
    const std::vector<SetAside> known = mDatabase.IsOpen() ? mDatabase.ListSetAside() : std::vector<SetAside>();
    for (SetAside& aside : state.mSetAside) {
        const auto found = std::find_if(known.begin(), known.end(),
                                        [&](const SetAside& inKnown) { return inKnown.mTime == aside.mTime; });
        aside.mReason = found != known.end() ? found->mReason : std::string();
    }
    return state;
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
