#include "RegCheck.h"

#include "Failure.h"
#include "Text.h"

#include <ORLRegistryStore.h>
#include <iostream>

namespace orl {

namespace {

// Returns whether the store is whole.
bool CheckOne(const char* inName, ORL::RegistryRootKeys::Type inRoot)
{
    const ORL::RegistryStoreState state = ORL::RegistryStore::Check(inRoot);
    std::cout << PaddedTo(9, inName) << (state.mIsWhole ? "whole    " : "damaged  ")
              << (state.mPlace.empty() ? "kept by the system" : OnOneLine(state.mPlace));
    if (!state.mPlace.empty()) {
        std::cout << "  " << (state.mBytes == 0 ? "empty" : std::to_string(state.mBytes) + " bytes");
    }
    std::cout << '\n';
    if (!state.mProblem.empty()) {
        std::cout << "         " << OnOneLine(state.mProblem) << '\n';
    }
    for (const ORL::RegistryStoreState::SetAside& aside : state.mSetAside) {
        std::cout << "         set aside " << OnOneLine(aside.mTime) << ": " << OnOneLine(aside.mFile);
        if (!aside.mReason.empty()) {
            std::cout << " (" << OnOneLine(aside.mReason) << ')';
        }
        std::cout << '\n';
    }
    return state.mIsWhole;
}

} // namespace

void CheckRegStores()
{
    const bool userIsWhole = CheckOne("user", ORL::RegistryRootKeys::kUser);
    const bool machineIsWhole = CheckOne("machine", ORL::RegistryRootKeys::kMachine);
    if (!userIsWhole || !machineIsWhole) {
        throw PartialFailure();
    }
}

} // namespace orl
