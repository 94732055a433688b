// Declarations shared by the host and the plug-in of the debugging session.
#pragma once

#include <ORLClassFactory.h>
#include <ORLInterface.h>
#include <ORLObjectPtr.h>

#include <vector>

struct Picture
{
    int mWidth;
    int mHeight;
};

class IEffect : public ORL::ORLUnknown
{
public:
    static constexpr ORL::Guid kInterfaceID{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x40};

    virtual void Apply(Picture& ioPicture) = 0;
};

inline constexpr ORL::Guid kMaskEffect{0x6f0c2a11, 0x3d5e, 0x4b70, 0x9a, 0x14, 0x52, 0x0e, 0x77, 0xc1, 0x30, 0x41};
