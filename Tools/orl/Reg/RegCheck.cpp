#include "RegCheck.h"

#include "Failure.h"
#include "Json.h"
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

Json JsonOf(const NamedState& inStore)
{
    const ORL::RegistryStoreState& state = inStore.mState;
    Json aside = Json::Array();
    for (const ORL::RegistryStoreState::SetAside& each : state.mSetAside) {
        aside.Append({{"time", each.mTime}, {"file", each.mFile}, {"reason", each.mReason}});
    }
    return {{"name", inStore.mName}, {"whole", state.mIsWhole}, {"problem", state.mProblem},
            {"place", state.mPlace}, {"bytes", state.mBytes},   {"setAside", aside}};
}

} // namespace

void CheckRegStores(bool inAsJson)
{
    const NamedState stores[] = {{"user", ORL::RegistryStore::Check(ORL::RegistryRootKeys::kUser)},
                                 {"machine", ORL::RegistryStore::Check(ORL::RegistryRootKeys::kMachine)}};
    if (inAsJson) {
        Json both = Json::Array();
        both.Append(JsonOf(stores[0]));
        both.Append(JsonOf(stores[1]));
        const Json document = {{"stores", both}};
        std::cout << document.Document();
    } else {
        Print(stores[0]);
        Print(stores[1]);
    }
    if (!stores[0].mState.mIsWhole || !stores[1].mState.mIsWhole) {
        throw PartialFailure();
    }
}

} // namespace orl
