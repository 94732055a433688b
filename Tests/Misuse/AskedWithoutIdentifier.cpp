// Queries for interfaces that lack their own identifier, selected by number. Such a query could return an object that
// does not implement the interface.
//
// Expected: a queried interface declares a kInterfaceID of its own
#include <ORLInterface.h>

using namespace ORL;

namespace {

class IShape : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID{0x1111, 1};
};

class IRoundShape : public IShape
{
public:
#if ORL_MISUSE != 1
    static constexpr Guid kInterfaceID{0x1111, 2};
#endif
};

class ISolid : public ORLUnknown
{
public:
#if ORL_MISUSE != 2
    static constexpr Guid kInterfaceID{0x1111, 3};
#endif
};

class IHollow : public ISolid
{
public:
#if ORL_MISUSE != 3
    static constexpr Guid kInterfaceID{0x1111, 4};
#endif
};

class IFlat : public IShape
{
public:
#if ORL_MISUSE != 4
    static constexpr Guid kInterfaceID{0x1111, 5};
#endif
};

template <int>
class INumbered : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID{0x1111, 6};
};

class Circle : public UnknownImpl<IShape, Circle, IShape>
{
public:
    static constexpr Guid kInterfaceID{0x1111, 7};
};

} // namespace

int main()
{
    const auto circle = MakeInterfaceRef<Circle>();
    const InterfaceRef<IShape> shape = circle.As<IShape>();
    const InterfaceRef<ORLUnknown> unknown = circle.As<ORLUnknown>();
    const bool isAsked = shape.As<IRoundShape>() == nullptr && shape.As<ISolid>() == nullptr
                         && unknown.As<IHollow>() == nullptr && circle.As<IFlat>() == nullptr
                         && unknown.As<INumbered<3>>() == nullptr && unknown.As<Circle>() == circle
                         && shape.As<ORLUnknown>() == shape;
    return isAsked ? 0 : 1;
}
