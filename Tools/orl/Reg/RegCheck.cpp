#include "RegCheck.h"

#include "Failure.h"
#include "Text.h"

#include <ORLRegistryStore.h>
#include <iostream>

namespace orl {

namespace {

struct NamedState
{
    const char* mName;
    ORL::RegistryStoreState mState;
};

void Print(const NamedState& inStore)
{
    const ORL::RegistryStoreState& state = inStore.mState;
    std::cout << PaddedTo(9, inStore.mName) << (state.mIsWhole ? "intact   " : "damaged  ")
              << (state.mPlace.empty() ? "kept by the system" : WithoutControlCharacters(state.mPlace));
    if (!state.mPlace.empty()) {
        std::cout << "  " << (state.mBytes == 0 ? "empty" : std::to_string(state.mBytes) + " bytes");
    }
    std::cout << '\n';
    if (!state.mProblem.empty()) {
        std::cout << "         " << WithoutControlCharacters(state.mProblem) << '\n';
    }
    for (const ORL::RegistryStoreState::SetAside& aside : state.mSetAside) {
        std::cout << "         set aside " << WithoutControlCharacters(aside.mTime) << ": "
                  << WithoutControlCharacters(aside.mFile);
        if (!aside.mReason.empty()) {
            std::cout << " (" << WithoutControlCharacters(aside.mReason) << ')';
        }
        std::cout << '\n';
    }
}

void PrintJson(const NamedState& inStore)
{
    const ORL::RegistryStoreState& state = inStore.mState;
    std::cout << "  {\"name\": " << JsonQuoted(inStore.mName) << ", \"whole\": " << (state.mIsWhole ? "true" : "false")
              << ", \"problem\": " << JsonQuoted(state.mProblem) << ", \"place\": " << JsonQuoted(state.mPlace)
              << ", \"bytes\": " << state.mBytes << ", \"setAside\": [";
    const char* separator = "\n";
    for (const ORL::RegistryStoreState::SetAside& aside : state.mSetAside) {
        std::cout << separator << "    {\"time\": " << JsonQuoted(aside.mTime)
                  << ", \"file\": " << JsonQuoted(aside.mFile) << ", \"reason\": " << JsonQuoted(aside.mReason) << '}';
        separator = ",\n";
    }
    std::cout << "]}";
}

} // namespace

void CheckRegStores(bool inAsJson)
{
    const NamedState stores[] = {{"user", ORL::RegistryStore::Check(ORL::RegistryRootKeys::kUser)},
                                 {"machine", ORL::RegistryStore::Check(ORL::RegistryRootKeys::kMachine)}};
    if (inAsJson) {
        std::cout << "{\"stores\": [\n";
        PrintJson(stores[0]);
        std::cout << ",\n";
        PrintJson(stores[1]);
        std::cout << "]}\n";
    } else {
        Print(stores[0]);
        Print(stores[1]);
    }
    if (!stores[0].mState.mIsWhole || !stores[1].mState.mIsWhole) {
        throw PartialFailure();
    }
}

} // namespace orl
