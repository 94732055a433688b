// A plug-in with three effects, one of which cannot be created. One effect uses a class from the other plug-in, knowing
// only its identifier.
#include "Effects.h"
#include "PlugInConfig.h"

#include <algorithm>

namespace {

class Clip : public ORL::UnknownImpl<IEffect, IEffect>
{
public:
    static constexpr ORL::Guid kClassID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x20};

    const char* GetName() const override { return "clip"; }

    void Apply(std::vector<float>& ioSamples) override
    {
        for (float& sample : ioSamples) {
            sample = std::clamp(sample, -0.5f, 0.5f);
        }
    }
};

class Unlicensed : public ORL::UnknownImpl<IEffect, IEffect>
{
public:
    static constexpr ORL::Guid kClassID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x21};

    Unlicensed() { throw std::runtime_error("this effect has no licence here"); }

    const char* GetName() const override { return "unlicensed"; }
    void Apply(std::vector<float>&) override {}
};

class ClipInverted : public ORL::UnknownImpl<IEffect, IEffect>
{
public:
    static constexpr ORL::Guid kClassID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x22};

    const char* GetName() const override { return "clip, inverted"; }

    void Apply(std::vector<float>& ioSamples) override
    {
        mClip.Apply(ioSamples);
        mInvert->Apply(ioSamples);
    }

private:
    Clip mClip;
    // Throws if the plug-in with the class is not loaded.
    EffectRef mInvert = AsEffect(ORL::CreateClassInstanceRef(kInvertEffect));
};

} // namespace

PLUG_IN_EXPORT void RegisterEffects()
{
    ORL::ClassFactory::RegisterORLClass(Clip::kClassID, "clip", "shapes", &CreateEffect<Clip>, &InEffects);
    ORL::ClassFactory::RegisterORLClass(Unlicensed::kClassID, "unlicensed", "shapes", &CreateEffect<Unlicensed>,
                                        &InEffects);
    ORL::ClassFactory::RegisterORLClass(ClipInverted::kClassID, "clip, inverted", "shapes", &CreateEffect<ClipInverted>,
                                        &InEffects);
}
