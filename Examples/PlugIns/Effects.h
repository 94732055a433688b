// The contract between the host and its plug-ins: one interface, one category, and the function that a plug-in exports.
#pragma once

#include <ORLFoundation.h>

#include <stdexcept>
#include <vector>

/// An effect that changes sound.
class IEffect : public ORL::ORLUnknown
{
public:
    static constexpr ORL::Guid kInterfaceID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x01};

    virtual const char* GetName() const = 0;
    virtual void Apply(std::vector<float>& ioSamples) = 0;
};

using EffectRef = ORL::InterfaceRef<IEffect>;
using UnknownRef = ORL::InterfaceRef<ORL::ORLUnknown>;

/// The category of effects.
inline constexpr ORL::Guid kEffects{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x02};

/// Inverts the sound. The levels plug-in registers this class; any module can create it by this identifier.
inline constexpr ORL::Guid kInvertEffect{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x03};

/// Converts an object from the class register to an effect.
inline EffectRef AsEffect(const UnknownRef& inObject)
{
    void* found = nullptr;
    if (!ORL::ResultSucceeded(inObject->QueryInterface(IEffect::kInterfaceID, &found))) {
        throw std::runtime_error("the class is no effect");
    }
    const EffectRef effect(static_cast<IEffect*>(static_cast<ORL::ORLUnknown*>(found)));
    effect->Release(); // releases the reference from QueryInterface
    return effect;
}

/// The functions that ORL::ClassFactory needs for a class: one creates it, one lists its categories.
template <class Effect>
void CreateEffect(UnknownRef& outRef)
{
    outRef = UnknownRef(new Effect);
}

inline void InEffects(std::vector<ORL::Guid>& outCategories)
{
    outCategories.push_back(kEffects);
}

/// The name and type of the function that each plug-in exports. The host calls the function once, on its main thread.
inline constexpr char kRegisterEffects[] = "RegisterEffects";
using RegisterEffectsFunction = void();
