// Counts its own starts in the user's settings: example_settings
#include <ORLFoundation.h>

#include <iostream>

namespace {

// Returns the number of starts, this one included, or 0 if the settings cannot be written.
unsigned int CountStart()
{
    const UTF16String name = ORL::MakeString("Starts");
    ORL::RegistryKey key;
    const ORL::Result opened = key.Create(ORL::RegistryRootKeys::kUser, ORL::MakeString("Software\\Zerin\\FirstSteps"));
    if (!ORL::ResultSucceeded(opened)) {
        return 0;
    }
    unsigned int starts = 0;
    key.GetUInt32Value(name, starts); // leaves 0 if there is no such value
    ++starts;
    return ORL::ResultSucceeded(key.SetUInt32Value(name, starts)) ? starts : 0;
}

} // namespace

int main()
{
    ORL::Foundation::Initialize();
    const unsigned int starts = CountStart();
    ORL::Foundation::Terminate();
    if (starts == 0) {
        std::cerr << "the settings cannot be written\n";
        return 1;
    }
    std::cout << "start " << starts << '\n';
}
