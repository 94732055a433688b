// Fails each allocation in the class factory.
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

unsigned CountCategory(const Guid& inCategory = kCategory)
{
    UnknownRef object;
    unsigned count = 0;
    while (ResultSucceeded(ClassFactory::CreateClassByCategory(inCategory, count, object))) {
        ++count;
    }
    return count;
}

// Each registration uses a new pair of categories, so that it creates both.
std::uint64_t sPair = 0;

Guid OfPair(std::uint64_t inWhich)
{
    return Guid(0xFA04, 2 * sPair + inWhich);
}

void InAPair(std::vector<Guid>& outCategories)
{
    outCategories.push_back(OfPair(0));
    outCategories.push_back(OfPair(1));
}

// Registers a class in a new pair of categories with one allocation failing. Returns true if it ran out of memory.
bool RegisterInAPair(const Guid& inClass, FaultyAllocator inAllocator, unsigned inNumber, unsigned& outRefused)
{
    ++sPair;
    const MemoryFaults faults(inAllocator, inNumber, false);
    bool hasFailed = false;
    try {
        ClassFactory::RegisterORLClass(inClass, "", "", &Create, &InAPair);
    } catch (const std::bad_alloc&) {
        hasFailed = true;
    }
    outRefused = faults.Refused();
    return hasFailed;
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

// Registrations are permanent, so each round registers a new class and leaves it registered.
TEST(ClassFactoryFaults, RegistrationThatFindsNoMemory_CanBeRepeated)
{
    std::uint64_t next = 1;
    for (const FaultyAllocator allocator : kFaultyAllocators) {
        unsigned refused = 1;
        for (unsigned number = 1; refused != 0; ++number) {
            SCOPED_TRACE(number);
            const Guid id(0xFA03, next++);
            const unsigned before = CountCategory();
            bool hasFailed = false;
            {
                const MemoryFaults faults(allocator, number, false);
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

// A registration enters the class, then its first category, then its second; entries made before memory ran out remain.
// A repeated call completes the registration; the class then appears twice in a category that already contained it.
TEST(ClassFactoryFaults, RegistrationInTwoCategories_StaysDoneAsFarAsItCame)
{
    unsigned stoppedBetween = 0;
    std::uint64_t next = 1;
    for (const FaultyAllocator allocator : kFaultyAllocators) {
        unsigned refused = 1;
        for (unsigned number = 1; refused != 0; ++number) {
            SCOPED_TRACE(number);
            const Guid id(0xFA05, next++);
            const bool hasFailed = RegisterInAPair(id, allocator, number, refused);
            const unsigned first = CountCategory(OfPair(0));
            const unsigned second = CountCategory(OfPair(1));
            EXPECT_EQ(hasFailed ? 0u : 1u, second);
            EXPECT_TRUE(hasFailed ? first <= 1 : first == 1);
            EXPECT_TRUE(first == 0 || ClassFactory::GetClassTokenFromClassID(id) != nullptr);
            if (hasFailed) {
                stoppedBetween += first;
                ClassFactory::RegisterORLClass(id, "", "", &Create, &InAPair);
                EXPECT_EQ(first + 1, CountCategory(OfPair(0)));
                EXPECT_EQ(1u, CountCategory(OfPair(1)));
            }
        }
    }
    EXPECT_GE(stoppedBetween, 2u) << "the second category's place in the register, and the class's in it";
}
