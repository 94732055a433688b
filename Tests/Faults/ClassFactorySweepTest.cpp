// The class factory with its memory refused at every place.
#include "MemoryFaults.h"

#include <ORLClassFactory.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using UnknownRef = InterfaceRef<ORLUnknown, ORLUnknown>;

class Instance : public UnknownImpl<ORLUnknown>
{
};

void Create(UnknownRef& outRef)
{
    outRef = UnknownRef(new Instance);
}

constexpr Guid kCategory(0xFA01, 1);

void InCategory(std::vector<Guid>& outCategories)
{
    outCategories.push_back(kCategory);
}

unsigned CountCategory()
{
    UnknownRef object;
    unsigned count = 0;
    while (ResultSucceeded(ClassFactory::CreateClassByCategory(kCategory, count, object))) {
        ++count;
    }
    return count;
}

} // namespace

TEST(ClassFactorySweep, CreatingInstances_LeavesNothingBehind)
{
    constexpr Guid kClass(0xFA02, 1);
    ClassFactory::RegisterORLClass(kClass, "", "", &Create, &InCategory);
    const unsigned count = CountCategory();
    SweepMemory(
        [&kClass] {
            UnknownRef object;
            static_cast<void>(ClassFactory::CreateInstanceRef(kClass, object));
            static_cast<void>(ClassFactory::CreateClassByCategory(kCategory, 0, object));
            object = CreateClassInstanceRef(kClass);
            static_cast<void>(ClassFactory::GetClassTokenFromClassID(kClass));
        },
        [count] { EXPECT_EQ(count, CountCategory()); });
}

// Nothing is ever taken out of the register, so each round registers a class of its own, and what it leaves behind stays.
TEST(ClassFactoryFaults, RegistrationThatFindsNoMemory_CanBeRepeated)
{
    std::uint64_t next = 1;
    for (const MemoryDoor door : kMemoryDoors) {
        unsigned refused = 1;
        for (unsigned number = 1; refused != 0; ++number) {
            SCOPED_TRACE(number);
            const Guid id(0xFA03, next++);
            const unsigned before = CountCategory();
            bool hasFailed = false;
            {
                const MemoryFaults faults(door, number, false);
                try {
                    ClassFactory::RegisterORLClass(id, "", "", &Create, &InCategory);
                } catch (const std::bad_alloc&) {
                    hasFailed = true;
                }
                refused = faults.Refused();
            }
            EXPECT_EQ(refused != 0, hasFailed);
            EXPECT_EQ(before + (hasFailed ? 0 : 1), CountCategory()) << "in the category only when all went well";
            ClassMapEntry* const token = ClassFactory::GetClassTokenFromClassID(id);
            if (token != nullptr) {
                EXPECT_EQ(id, ClassFactory::GetClassIDFromClassToken(token));
            }
            if (hasFailed) {
                ClassFactory::RegisterORLClass(id, "", "", &Create, &InCategory);
                EXPECT_EQ(before + 1, CountCategory());
            }
            UnknownRef object;
            EXPECT_EQ(kSuccess, ClassFactory::CreateInstanceRef(id, object));
        }
    }
    EXPECT_GT(next, 5u) << "the sweep has refused something";
}
