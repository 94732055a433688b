#include <ORLClassFactory.h>

#include <ORLException.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

using namespace ORL;

namespace {

class Instance : public UnknownImpl<ORLUnknown>
{
public:
    explicit Instance(int inMaker) : mMaker(inMaker) {}
    int mMaker;
};

using UnknownRef = InterfaceRef<ORLUnknown, ORLUnknown>;

template <int Maker>
void Create(UnknownRef& outRef)
{
    outRef = UnknownRef(new Instance(Maker));
}

void CreateNothing(UnknownRef&)
{
}

void ThrowWhileCreating(UnknownRef&)
{
    throw std::runtime_error("no");
}

int MakerOf(const UnknownRef& inRef)
{
    return static_cast<const Instance*>(inRef.GetPtr())->mMaker;
}

// The factory never forgets a registration, so each test uses fresh identifiers.
Guid FreshID()
{
    return Guid::CreateUnique();
}

const Guid kAnimals(0x1111, 1);
const Guid kPlants(0x1111, 2);
const Guid kRepeated(0x1111, 3);
const Guid kOrdered(0x1111, 4);

template <const Guid& Category>
void InCategory(std::vector<Guid>& outCategories)
{
    outCategories.push_back(Category);
}

void InAnimalsAndPlants(std::vector<Guid>& outCategories)
{
    EXPECT_TRUE(outCategories.empty());
    outCategories.push_back(kAnimals);
    outCategories.push_back(kPlants);
}

} // namespace

TEST(ClassFactory, ClassWithoutCategories_IsCreatedByIdentifierAndIsInNoCategory)
{
    const Guid id = FreshID();
    EXPECT_EQ(kSuccess, ClassFactory::RegisterORLClass(id, "one", "two", &Create<1>, &ORLGetClassCategories));
    UnknownRef ref;
    EXPECT_EQ(kSuccess, ClassFactory::CreateInstanceRef(id, ref));
    EXPECT_EQ(1, MakerOf(ref));
}

// Known categories stay unchanged; neither the class identifier nor zero becomes a category.
TEST(ClassFactory, ClassWithoutCategories_ChangesNoCategoryAndMakesNone)
{
    static const Guid known(0x1111, 6);
    ClassFactory::RegisterORLClass(FreshID(), "", "", &Create<1>, &InCategory<known>);
    const Guid id = FreshID();
    ClassFactory::RegisterORLClass(id, "", "", &Create<2>, &ORLGetClassCategories);
    UnknownRef ref;
    EXPECT_EQ(kCategoryIndexOutOfRange, ClassFactory::CreateClassByCategory(known, 1, ref));
    EXPECT_EQ(kCategoryNotRegistered, ClassFactory::CreateClassByCategory(id, 0, ref));
    EXPECT_EQ(kCategoryNotRegistered, ClassFactory::CreateClassByCategory(Guid(0, 0), 0, ref));
    std::vector<Guid> categories{known};
    ORLGetClassCategories(categories);
    EXPECT_EQ(std::vector<Guid>{known}, categories) << "it appends nothing";
}

TEST(ClassFactory, RegisteredTwice_KeepsTheFirstCreateFunction)
{
    const Guid id = FreshID();
    ClassFactory::RegisterORLClass(id, "one", "two", &Create<1>, &ORLGetClassCategories);
    EXPECT_EQ(kSuccess, ClassFactory::RegisterORLClass(id, "three", "four", &Create<2>, &ORLGetClassCategories));
    EXPECT_EQ(1, MakerOf(CreateClassInstanceRef(id)));
    EXPECT_STREQ("one", ClassFactory::GetClassTokenFromClassID(id)->mFirstName);
}

TEST(ClassFactory, RegisteredTwice_DiscardsTheSecondEntryWhole)
{
    const Guid id = FreshID();
    static const char sFirst[] = "one";
    static const char sSecond[] = "two";
    ClassFactory::RegisterORLClass(id, sFirst, sSecond, &Create<1>, &ORLGetClassCategories);
    ClassMapEntry* const token = ClassFactory::GetClassTokenFromClassID(id);
    ClassFactory::RegisterORLClass(id, "three", "four", &Create<2>, &ORLGetClassCategories);
    EXPECT_EQ(token, ClassFactory::GetClassTokenFromClassID(id));
    EXPECT_EQ(id, token->mClassID);
    EXPECT_EQ(sFirst, token->mFirstName) << "the pointer itself, which is stored and not read";
    EXPECT_EQ(sSecond, token->mSecondName);
    EXPECT_EQ(&Create<1>, token->mCreate);
}

TEST(ClassFactory, RegisteredTwice_StandsTwiceInItsCategory)
{
    const Guid id = FreshID();
    ClassFactory::RegisterORLClass(id, "", "", &Create<1>, &InCategory<kRepeated>);
    ClassFactory::RegisterORLClass(id, "", "", &Create<2>, &InCategory<kRepeated>);
    UnknownRef ref;
    EXPECT_EQ(kSuccess, ClassFactory::CreateClassByCategory(kRepeated, 1, ref));
    EXPECT_EQ(1, MakerOf(ref));
    EXPECT_EQ(kCategoryIndexOutOfRange, ClassFactory::CreateClassByCategory(kRepeated, 2, ref));
}

TEST(ClassFactory, Category_ListsClassesInOrderOfRegistration)
{
    const Guid first(~std::uint64_t{0}, 0);
    const Guid second(0, 1);
    ClassFactory::RegisterORLClass(first, "", "", &Create<10>, &InCategory<kOrdered>);
    ClassFactory::RegisterORLClass(second, "", "", &Create<20>, &InCategory<kOrdered>);
    UnknownRef ref;
    EXPECT_EQ(kSuccess, ClassFactory::CreateClassByCategory(kOrdered, 0, ref));
    EXPECT_EQ(10, MakerOf(ref));
    EXPECT_EQ(kSuccess, ClassFactory::CreateClassByCategory(kOrdered, 1, ref));
    EXPECT_EQ(20, MakerOf(ref));
}

TEST(ClassFactory, ClassOfTwoCategories_IsFoundInBoth)
{
    ClassFactory::RegisterORLClass(FreshID(), "", "", &Create<7>, &InAnimalsAndPlants);
    for (const Guid& category : {kAnimals, kPlants}) {
        UnknownRef ref;
        EXPECT_EQ(kSuccess, ClassFactory::CreateClassByCategory(category, 0, ref));
        EXPECT_EQ(7, MakerOf(ref));
    }
}

TEST(ClassFactory, IndexEqualToTheSizeOfTheCategory_IsOutOfRange)
{
    static const Guid category(0x1111, 5);
    ClassFactory::RegisterORLClass(FreshID(), "", "", &Create<1>, &InCategory<category>);
    UnknownRef ref;
    EXPECT_EQ(kCategoryIndexOutOfRange, ClassFactory::CreateClassByCategory(category, 1, ref));
    EXPECT_EQ(kCategoryIndexOutOfRange, ClassFactory::CreateClassByCategory(category, 0xFFFFFFFFu, ref));
    EXPECT_FALSE(ref);
}

TEST(ClassFactory, CategoryThatNoClassNamed_IsNotRegistered)
{
    UnknownRef ref(new Instance(3));
    EXPECT_EQ(kCategoryNotRegistered, ClassFactory::CreateClassByCategory(FreshID(), 0, ref));
    EXPECT_EQ(3, MakerOf(ref));
}

TEST(ClassFactory, UnknownIdentifier_IsReportedAndLeavesTheReferenceAlone)
{
    UnknownRef ref(new Instance(3));
    EXPECT_EQ(kClassNotRegistered, ClassFactory::CreateInstanceRef(FreshID(), ref));
    EXPECT_EQ(3, MakerOf(ref));
}

TEST(ClassFactory, Token_LeadsBackToTheIdentifier)
{
    const Guid id = FreshID();
    ClassFactory::RegisterORLClass(id, "", "", &Create<1>, &ORLGetClassCategories);
    ClassMapEntry* const token = ClassFactory::GetClassTokenFromClassID(id);
    ASSERT_NE(nullptr, token);
    EXPECT_EQ(id, ClassFactory::GetClassIDFromClassToken(token));
    for (int i = 0; i < 100; ++i) {
        ClassFactory::RegisterORLClass(FreshID(), "", "", &Create<1>, &ORLGetClassCategories);
    }
    EXPECT_EQ(token, ClassFactory::GetClassTokenFromClassID(id)) << "tokens are stable";
}

TEST(ClassFactory, TokenOfUnknownIdentifier_IsNull)
{
    EXPECT_EQ(nullptr, ClassFactory::GetClassTokenFromClassID(FreshID()));
}

TEST(ClassFactory, CreateFunctionThatStoresNothing_StillSucceeds)
{
    const Guid id = FreshID();
    ClassFactory::RegisterORLClass(id, "", "", &CreateNothing, &ORLGetClassCategories);
    UnknownRef ref;
    EXPECT_EQ(kSuccess, ClassFactory::CreateInstanceRef(id, ref));
    EXPECT_FALSE(ref);
    EXPECT_FALSE(CreateClassInstanceRef(id));
}

TEST(ClassFactory, CreateFunctionThatThrows_PassesThrough)
{
    const Guid id = FreshID();
    ClassFactory::RegisterORLClass(id, "", "", &ThrowWhileCreating, &ORLGetClassCategories);
    UnknownRef ref;
    EXPECT_THROW(ClassFactory::CreateInstanceRef(id, ref), std::runtime_error);
    EXPECT_THROW(CreateClassInstanceRef(id), std::runtime_error);
    EXPECT_FALSE(ref);
}

TEST(CreateClassInstanceRef, UnknownIdentifier_ThrowsClassNotFound)
{
    EXPECT_THROW(CreateClassInstanceRef(FreshID()), exClassNotFound);
}

TEST(ClassFactory, WarningFlag_ChangesNothing)
{
    ClassFactory::SetWarnAboutUnregisteredClasses(false);
    EXPECT_THROW(CreateClassInstanceRef(FreshID()), exClassNotFound);
    ClassFactory::SetWarnAboutUnregisteredClasses(true);
    EXPECT_THROW(CreateClassInstanceRef(FreshID()), exClassNotFound);
}
