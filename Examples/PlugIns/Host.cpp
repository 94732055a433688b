// A host whose effects are in plug-ins: it loads them, lists the category "effects", and creates instances by position
// and by identifier. Reports each plug-in that fails in one line.
//
//   example_plugins [PLUG-IN ...]      default: the plug-ins "plugin_levels" and "plugin_shapes"
//
// Exit code: 0, or 1 if no effect could be used.
#include "PlugInLoader.h"

#include <cstdio>
#include <exception>

namespace {

void RegisterPlugIn(const std::string& inName)
{
    try {
        LoadPlugIn(inName)();
        std::printf("loaded %s\n", inName.c_str());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "example_plugins: %s\n", failure.what());
    }
}

void Show(unsigned inPosition, const EffectRef& inEffect)
{
    std::vector<float> samples{0.2f, -0.5f, 1.0f, 0.0f};
    inEffect->Apply(samples);
    std::printf("  %u  %-16s", inPosition, inEffect->GetName());
    for (const float sample : samples) {
        std::printf(" %5.2f", static_cast<double>(sample + 0.0f));
    }
    std::printf("\n");
}

// Returns false at the end of the category.
bool ShowEffectAt(unsigned inPosition, unsigned& ioShown)
{
    try {
        UnknownRef object;
        const ORL::Result result = ORL::ClassFactory::CreateClassByCategory(kEffects, inPosition, object);
        if (!ORL::ResultSucceeded(result)) {
            return false;
        }
        Show(inPosition, AsEffect(object));
        ++ioShown;
    } catch (const std::exception& failure) {
        std::printf("  %u  cannot be made: %s\n", inPosition, failure.what());
    }
    return true;
}

unsigned ShowCategory()
{
    std::printf("effects, on 0.20 -0.50 1.00 0.00:\n");
    unsigned shown = 0;
    for (unsigned position = 0; ShowEffectAt(position, shown); ++position) {
    }
    return shown;
}

void ShowOneByIdentifier()
{
    UnknownRef object;
    const ORL::Result result = ORL::ClassFactory::CreateInstanceRef(kInvertEffect, object);
    if (ORL::ResultSucceeded(result)) {
        std::printf("by identifier: %s\n", AsEffect(object)->GetName());
    } else {
        std::printf("by identifier: nobody has registered it\n");
    }
}

} // namespace

int main(int inCount, char** inArguments)
{
    std::vector<std::string> names(inArguments + 1, inArguments + inCount);
    if (names.empty()) {
        names = {"plugin_levels", "plugin_shapes"};
    }
    ORL::Foundation::Initialize();
    for (const std::string& name : names) {
        RegisterPlugIn(name);
    }
    const unsigned shown = ShowCategory();
    ShowOneByIdentifier();
    ORL::Foundation::Terminate();
    return shown > 0 ? 0 : 1;
}
