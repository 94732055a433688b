// Interfaces that lack their own identifier, selected by number. Without a number this file compiles.
//
// Expected: declares a kInterfaceID of its own
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

class IForgetful : public ORLUnknown
{
public:
#if ORL_MISUSE != 2
    static constexpr Guid kInterfaceID{0x1111, 3};
#endif
};

class Circle : public UnknownImpl<IRoundShape, Circle, IRoundShape, IShape>
{
public:
#if ORL_MISUSE != 3
    static constexpr Guid kInterfaceID{0x1111, 4};
#endif
};

class Forgetful : public UnknownImpl<IForgetful, IForgetful>
{
};

// A class that lists itself, but not the interface that it extends.
class Square : public UnknownImpl<IShape, Square>
{
public:
#if ORL_MISUSE != 4
    static constexpr Guid kInterfaceID{0x1111, 5};
#endif
};

// An interface that is not listed needs no identifier, and the root may be listed but need not be.
class IUnasked : public ORLUnknown
{
};
class Unasked : public UnknownImpl<IUnasked>
{
};
class Rooted : public UnknownImpl<ORLUnknown, ORLUnknown>
{
};

} // namespace

int main()
{
    const InterfaceRef<ORLUnknown, ORLUnknown> objects[] = {
        InterfaceRef<ORLUnknown, ORLUnknown>(new Circle), InterfaceRef<ORLUnknown, ORLUnknown>(new Forgetful),
        InterfaceRef<ORLUnknown, ORLUnknown>(new Square), InterfaceRef<ORLUnknown, ORLUnknown>(new Unasked),
        InterfaceRef<ORLUnknown, ORLUnknown>(new Rooted),
    };
    return objects[0] ? 0 : 1;
}
