// A plug-in with two effects.
#include "Effects.h"
#include "PlugInConfig.h"

namespace {

class Halve : public ORL::UnknownImpl<IEffect, IEffect>
{
public:
    static constexpr ORL::Guid kClassID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x10};

    const char* GetName() const override { return "halve"; }

    void Apply(std::vector<float>& ioSamples) override
    {
        for (float& sample : ioSamples) {
            sample *= 0.5f;
        }
    }
};

class Invert : public ORL::UnknownImpl<IEffect, IEffect>
{
public:
    const char* GetName() const override { return "invert"; }

    void Apply(std::vector<float>& ioSamples) override
    {
        for (float& sample : ioSamples) {
            sample = -sample;
        }
    }
};

} // namespace

PLUG_IN_EXPORT void RegisterEffects()
{
    ORL::ClassFactory::RegisterORLClass(Halve::kClassID, "halve", "levels", &CreateEffect<Halve>, &InEffects);
    ORL::ClassFactory::RegisterORLClass(kInvertEffect, "invert", "levels", &CreateEffect<Invert>, &InEffects);
}
