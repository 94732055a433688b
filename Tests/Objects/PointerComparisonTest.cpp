#include <ORLInterface.h>
#include <ORLObjectPtr.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

using namespace ORL;

namespace {

/// Counts the living objects.
struct Base
{
    Base() { ++sLiving; }
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base() { --sLiving; }
    static int sLiving;
};

int Base::sLiving = 0;

/// A second base class, so that a Derived and its Base subobject have different addresses.
struct Other
{
    virtual ~Other() = default;
    int mNumber = 5;
};

struct Derived : Other, Base
{
    Derived() = default;
    Derived(int inFirst, std::string inSecond) : mFirst(inFirst), mSecond(std::move(inSecond)) {}
    int mFirst = 1;
    std::string mSecond;
};

class IShape : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID{0x5151, 1};
    virtual int Corners() = 0;
};

class ISolid : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID{0x5151, 2};
};

class Square : public UnknownImpl<IShape, Square, IShape>
{
public:
    static constexpr Guid kInterfaceID{0x5151, 3};
    explicit Square(int inCorners = 4) : mCorners(inCorners) { ++sLiving; }
    ~Square() override { --sLiving; }
    int Corners() override { return mCorners; }
    static int sLiving;

private:
    int mCorners;
};

int Square::sLiving = 0;

/// Can be queried only for its interface, and inherits the identifier of that interface.
class Anonymous : public UnknownImpl<IShape, IShape>
{
public:
    int Corners() override { return 0; }
};

/// Reads the count at its guaranteed offset: directly after the vtable pointer.
AtomicValue CountOf(const void* inObject)
{
    AtomicValue count;
    std::memcpy(&count, static_cast<const char*>(inObject) + sizeof(void*), sizeof(count));
    return count;
}

/// An interface without a base interface.
class LoneInterface
{
public:
    virtual void AddRef() { ++mCount; }
    virtual void Release() { --mCount; }
    virtual ~LoneInterface() = default;
    int mCount = 0;
};

struct LoneObject : LoneInterface
{
};

} // namespace

static_assert(!std::is_convertible_v<ObjectPtr<Base>, ObjectPtr<Derived>>, "a base class is not converted down");
static_assert(!std::is_convertible_v<ObjectPtr<Other>, ObjectPtr<Base>>, "unrelated classes are not converted");
static_assert(!std::is_convertible_v<Derived*, ObjectPtr<Base>>, "a plain pointer must not become a second owner");
static_assert(!std::is_convertible_v<InterfaceRef<IShape>, InterfaceRef<ISolid>>, "siblings are not converted");
static_assert(!std::is_convertible_v<InterfaceRef<IShape>, InterfaceRef<Square>>, "a base class is not converted down");

TEST(ObjectPtrComparison, WithOthersAndNull_ComparesTheObjects)
{
    const ObjectPtr<Derived> first(new Derived);
    const ObjectPtr<Derived> same = first;
    const ObjectPtr<Derived> second(new Derived);
    const ObjectPtr<Derived> empty;
    EXPECT_TRUE(first == same);
    EXPECT_FALSE(first != same);
    EXPECT_TRUE(first != second);
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(empty == ObjectPtr<Derived>());
    EXPECT_TRUE(empty == nullptr && nullptr == empty);
    EXPECT_FALSE(empty != nullptr || nullptr != empty);
    EXPECT_TRUE(first != nullptr && nullptr != first);
    EXPECT_FALSE(first == nullptr || nullptr == first);
}

TEST(ObjectPtrComparison, OfBaseAndDerivedClass_AdjustsTheAddress)
{
    const ObjectPtr<Derived> derived(new Derived);
    const ObjectPtr<Base> base = derived;
    EXPECT_NE(static_cast<const void*>(derived.GetPtr()), static_cast<const void*>(base.GetPtr()));
    EXPECT_TRUE(base == derived);
    EXPECT_FALSE(derived != base);
}

TEST(ObjectPtrConversion, CopiedAsItsBase_SharesTheCounterAndTheLastOwnerDeletes)
{
    ObjectPtr<Base> base;
    {
        const ObjectPtr<Derived> derived(new Derived);
        base = derived;
        EXPECT_EQ(derived.GetPtr(), base.GetPtr());
    }
    EXPECT_EQ(1, Base::sLiving);
    ObjectPtr<const Base> reader = base;
    base = ObjectPtr<Base>();
    EXPECT_EQ(1, Base::sLiving);
    reader = ObjectPtr<const Base>();
    EXPECT_EQ(0, Base::sLiving);
}

TEST(ObjectPtrConversion, MovedAsItsBase_EmptiesTheSource)
{
    ObjectPtr<Derived> derived(new Derived);
    const ObjectPtr<Base> base = std::move(derived);
    EXPECT_TRUE(derived == nullptr);
    EXPECT_TRUE(base != nullptr);
    EXPECT_EQ(1, Base::sLiving);
}

TEST(ObjectPtrConversion, OfAnEmptyPointer_IsEmpty)
{
    const ObjectPtr<Derived> empty;
    const ObjectPtr<Base> copied = empty;
    const ObjectPtr<Base> moved = ObjectPtr<Derived>();
    EXPECT_TRUE(copied == nullptr && moved == nullptr);
}

TEST(MakeObjectPtr, Arguments_ReachTheConstructor)
{
    const ObjectPtr<Derived> made = MakeObjectPtr<Derived>(7, "seven");
    EXPECT_EQ(7, made->mFirst);
    EXPECT_EQ("seven", made->mSecond);
    EXPECT_EQ(1, Base::sLiving);
}

TEST(InterfaceRefComparison, WithOthersAndNull_ComparesTheObjects)
{
    const InterfaceRef<IShape> first = MakeInterfaceRef<Square>();
    const InterfaceRef<IShape, IShape> same(first.GetPtr());
    const InterfaceRef<ORLUnknown> root = first;
    const InterfaceRef<IShape> second = MakeInterfaceRef<Square>();
    const InterfaceRef<IShape> null;
    EXPECT_TRUE(first == same);
    EXPECT_TRUE(first == root && root == first);
    EXPECT_FALSE(first != root);
    EXPECT_TRUE(first != second);
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(null == nullptr && nullptr == null);
    EXPECT_FALSE(null != nullptr || nullptr != null);
    EXPECT_TRUE(first != nullptr && nullptr != first);
    EXPECT_FALSE(first == nullptr || nullptr == first);
    EXPECT_EQ(nullptr, null);
}

TEST(InterfaceRefConversion, ToABase_CountsOneReferenceOfItsOwn)
{
    {
        const InterfaceRef<Square> square = MakeInterfaceRef<Square>();
        InterfaceRef<IShape> shape = square;
        EXPECT_EQ(2, CountOf(square.GetPtr()));
        const InterfaceRef<ORLUnknown, ORLUnknown> root = shape;
        EXPECT_EQ(3, CountOf(square.GetPtr()));
        shape = MakeInterfaceRef<Square>();
        EXPECT_EQ(2, CountOf(square.GetPtr()));
        EXPECT_EQ(2, Square::sLiving);
    }
    EXPECT_EQ(0, Square::sLiving);
}

TEST(InterfaceRefConversion, OfALoneInterface_CountsThroughItsOwnBase)
{
    LoneObject object;
    {
        const InterfaceRef<LoneObject, LoneInterface> reference(&object);
        const InterfaceRef<LoneInterface, LoneInterface> base = reference;
        EXPECT_EQ(2, object.mCount);
    }
    EXPECT_EQ(0, object.mCount);
}

TEST(InterfaceRefConversion, OfNull_IsNull)
{
    const InterfaceRef<IShape> shape = InterfaceRef<Square>();
    EXPECT_TRUE(shape == nullptr);
}

TEST(MakeInterfaceRef, Arguments_ReachTheConstructor)
{
    {
        const auto square = MakeInterfaceRef<Square>(5);
        static_assert(std::is_same_v<decltype(square), const InterfaceRef<Square, ORLUnknown>>);
        EXPECT_EQ(5, square->Corners());
        EXPECT_EQ(1, CountOf(square.GetPtr()));
    }
    EXPECT_EQ(0, Square::sLiving);
    const auto lone = MakeInterfaceRef<Anonymous, IShape>();
    static_assert(std::is_same_v<decltype(lone), const InterfaceRef<Anonymous, IShape>>);
}

TEST(InterfaceRefAs, ImplementedInterface_IsReturnedWithOneReference)
{
    {
        const InterfaceRef<ORLUnknown, ORLUnknown> root = MakeInterfaceRef<Square>();
        const InterfaceRef<IShape> shape = root.As<IShape>();
        ASSERT_TRUE(shape);
        EXPECT_EQ(4, shape->Corners());
        EXPECT_EQ(2, CountOf(root.GetPtr()));
        const auto square = shape.As<Square, IShape>();
        static_assert(std::is_same_v<decltype(square), const InterfaceRef<Square, IShape>>);
        EXPECT_TRUE(square == root);
        EXPECT_TRUE(square.As<ORLUnknown>() == root);
        EXPECT_EQ(3, CountOf(root.GetPtr()));
    }
    EXPECT_EQ(0, Square::sLiving);
}

TEST(InterfaceRefAs, ClassThatInheritsTheIdentifier_IsAskedForTheInterface)
{
    const auto anonymous = MakeInterfaceRef<Anonymous>();
    EXPECT_TRUE(anonymous.As<IShape>() == anonymous);
}

TEST(InterfaceRefAs, MissingInterfaceOrNullReference_IsNull)
{
    const InterfaceRef<IShape> shape = MakeInterfaceRef<Square>();
    EXPECT_TRUE(shape.As<ISolid>() == nullptr);
    EXPECT_EQ(1, CountOf(shape.GetPtr()));
    EXPECT_TRUE(InterfaceRef<IShape>().As<ISolid>() == nullptr);
}

TEST(InterfaceRefAs, ObjectThatFailsAndStoresItself_IsNull)
{
    class Confused : public UnknownImpl<ORLUnknown>
    {
    public:
        Result QueryInterface(const Guid&, void** outInterface) override
        {
            *outInterface = static_cast<ORLUnknown*>(this); // wrong: a failure stores null
            return kNoSuchInterface;
        }
    };
    const auto confused = MakeInterfaceRef<Confused>();
    EXPECT_TRUE(confused.As<IShape>() == nullptr);
    EXPECT_EQ(1, CountOf(confused.GetPtr()));
}
