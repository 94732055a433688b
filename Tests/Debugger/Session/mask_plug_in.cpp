// A plug-in with a bug: nothing sets the mask.
#include "Player.h"

namespace {

class Mask : public ORL::UnknownImpl<IEffect, Mask, IEffect>
{
public:
    static constexpr ORL::Guid kInterfaceID = kMaskEffect;

    void Apply(Picture& ioPicture) override { ioPicture.mWidth = mMask.GetPtr()->mWidth; }

private:
    ORL::ObjectPtr<Picture> mMask;
};

void Create(ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>& outRef)
{
    outRef = ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>(new Mask);
}

const ORL::Result sRegistered =
    ORL::ClassFactory::RegisterORLClass(kMaskEffect, "mask", "looks", &Create, &ORLGetClassCategories);

} // namespace
