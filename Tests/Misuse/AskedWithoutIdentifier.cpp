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

class Circle : public UnknownImpl<IShape, IShape>
{
};

} // namespace

int main()
{
    const auto circle = MakeInterfaceRef<Circle>();
    const InterfaceRef<IShape> shape = circle.As<IShape>();
    return shape.As<IRoundShape>() == nullptr && shape.As<ISolid>() == nullptr && shape.As<ORLUnknown>() == shape ? 0
                                                                                                                  : 1;
}
