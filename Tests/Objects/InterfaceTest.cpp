#include <ORLInterface.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace ORL;
using ORLTest::CheckRecorder;
using ORLTest::ExpectReport;

namespace {

constexpr Guid kUnknownGuid(1, 2);

class IShape : public ORLUnknown
{
public:
    static constexpr Guid kInterfaceID{0x1111, 0x2222};
    virtual int Corners() = 0;
};

class Square : public UnknownImpl<IShape, Square, IShape>
{
public:
    static constexpr Guid kInterfaceID{0x3333, 0x4444};
    Square() { ++sLiving; }
    ~Square() override { --sLiving; }
    Square(const Square& inOther) : UnknownImpl(inOther) { ++sLiving; }
    Square& operator=(const Square&) = default;
    int Corners() override { return 4; }

    static int sLiving;
};

int Square::sLiving = 0;

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

} // namespace

TEST(InterfaceRef, DefaultAndMadeFromNull_AreNull)
{
    const InterfaceRef<IShape> reference;
    const InterfaceRef<IShape> fromNull(nullptr);
    EXPECT_FALSE(reference);
    EXPECT_FALSE(fromNull);
    EXPECT_EQ(nullptr, reference.GetPtr());
    EXPECT_EQ(sizeof(void*), sizeof(reference));
}

TEST(InterfaceRef, NewObject_HasTheCountZeroUntilItIsReferenced)
{
    Square* const square = new Square;
    EXPECT_EQ(0, CountOf(square));
    const InterfaceRef<IShape> reference(square);
    EXPECT_EQ(1, CountOf(square));
    EXPECT_EQ(4, reference->Corners());
}

TEST(InterfaceRef, CopiesAndAssignments_CountEachAndTheLastDeletes)
{
    Square* const square = new Square;
    {
        const InterfaceRef<IShape> first(square);
        InterfaceRef<IShape> second(first);
        EXPECT_EQ(2, CountOf(square));
        second = InterfaceRef<IShape>(new Square);
        EXPECT_EQ(1, CountOf(square));
        EXPECT_EQ(2, Square::sLiving);
        second = first;
        EXPECT_EQ(2, CountOf(square));
        EXPECT_EQ(1, Square::sLiving) << "the old object went with its only reference";
    }
    EXPECT_EQ(0, Square::sLiving);
}

TEST(InterfaceRef, AssignedToItself_KeepsItsObject)
{
    InterfaceRef<IShape> reference(new Square);
    const InterfaceRef<IShape>& same = reference;
    reference = same;
    EXPECT_EQ(1, CountOf(reference.GetPtr()));
    EXPECT_EQ(4, reference->Corners());
}

TEST(InterfaceRef, Assignment_CountsTheNewBeforeItReleasesTheOld)
{
    static std::string sLog;
    struct Noting : LoneInterface
    {
        explicit Noting(char inName) : mName(inName) {}
        void AddRef() override { sLog += std::string("+") + mName; }
        void Release() override { sLog += std::string("-") + mName; }
        char mName;
    };
    Noting a('a'), b('b');
    {
        InterfaceRef<Noting, LoneInterface> reference(&a);
        const InterfaceRef<Noting, LoneInterface> other(&b);
        sLog.clear();
        reference = other;
        EXPECT_EQ("+b-a", sLog);
        sLog.clear();
        reference = other; // assigns the object that is already assigned
        EXPECT_EQ("+b-b", sLog);
    }
}

TEST(InterfaceRef, Moved_HandsItsCountOn)
{
    InterfaceRef<IShape> first(new Square);
    InterfaceRef<IShape> second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(1, CountOf(second.GetPtr()));
    InterfaceRef<IShape> third(new Square);
    third = std::move(second);
    EXPECT_EQ(1, Square::sLiving);
    EXPECT_EQ(1, CountOf(third.GetPtr()));
}

TEST(InterfaceRef, OfALoneInterface_CountsThroughTheInterfaceItself)
{
    LoneInterface object;
    {
        const InterfaceRef<LoneInterface, LoneInterface> reference(&object);
        const InterfaceRef<LoneInterface, LoneInterface> copy(reference);
        EXPECT_EQ(2, object.mCount);
    }
    EXPECT_EQ(0, object.mCount);
}

TEST(InterfaceRef, NullDereferenced_IsReportedAndThrows)
{
    CheckRecorder recorder;
    const InterfaceRef<IShape> null;
    EXPECT_THROW(null->Corners(), NullInterfaceException);
    ASSERT_EQ(1u, recorder.Reports().size());
    ExpectReport(recorder.Reports()[0]).Message("Attempt to use a NULL InterfaceRef\r\n");
}

TEST(InterfaceRef, NullDereferencedAfterItsCheckWasIgnoredForGood_StillThrows)
{
    CheckRecorder recorder;
    recorder.mIgnoreForGood = true;
    const InterfaceRef<IShape, IShape> null;
    for (int pass = 0; pass < 3; ++pass) {
        EXPECT_THROW(null->Corners(), NullInterfaceException);
    }
    EXPECT_EQ(1u, recorder.Reports().size());
}

TEST(InterfaceRef, SharedByManyThreads_DeletesOnce)
{
    std::vector<std::thread> threads;
    {
        const InterfaceRef<IShape> shared(new Square);
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([own = shared] {
                for (int round = 0; round < 10000; ++round) {
                    const InterfaceRef<IShape> copy(own);
                    EXPECT_EQ(4, copy->Corners());
                }
            });
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, Square::sLiving);
}

TEST(QueryInterface, EachOwnIdentifierAndTheRoot_AreAnsweredAndCounted)
{
    Square* const square = new Square;
    const InterfaceRef<IShape> reference(square);
    int owners = 1;
    for (const Guid& id : {Square::kInterfaceID, IShape::kInterfaceID, kInterfaceID_ORLUnknown}) {
        void* found = nullptr;
        EXPECT_EQ(kSuccess, square->QueryInterface(id, &found));
        EXPECT_EQ(square, found);
        EXPECT_EQ(++owners, CountOf(square)) << "one owner more for the caller";
    }
    while (owners-- > 1) {
        square->Release();
    }
}

TEST(QueryInterface, UnknownIdentifier_StoresNullAndCountsNothing)
{
    Square* const square = new Square;
    const InterfaceRef<IShape> reference(square);
    void* found = square;
    EXPECT_EQ(kNoSuchInterface, square->QueryInterface(kUnknownGuid, &found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(1, CountOf(square));
}

TEST(QueryInterface, IdentifierThatDiffersInOneWord_IsUnknown)
{
    Square* const square = new Square;
    const InterfaceRef<IShape> reference(square);
    const Guid& root = kInterfaceID_ORLUnknown;
    for (const Guid& id :
         {Guid(root.FirstWord(), 0), Guid(0, root.SecondWord()), Guid(root.SecondWord(), root.FirstWord())}) {
        void* found = square;
        EXPECT_EQ(kNoSuchInterface, square->QueryInterface(id, &found));
    }
}

TEST(QueryInterface, Class_MayAnswerForTheRootAlone)
{
    class Bare : public UnknownImpl<ORLUnknown>
    {
    };
    Bare* const bare = new Bare;
    const InterfaceRef<ORLUnknown, ORLUnknown> reference(bare);
    void* found = nullptr;
    EXPECT_EQ(kSuccess, bare->QueryInterface(kInterfaceID_ORLUnknown, &found));
    bare->Release();
    EXPECT_EQ(kNoSuchInterface, bare->QueryInterface(kUnknownGuid, &found));
}

TEST(InterfaceIdentifiers, AreTheValuesThatHostsKnow)
{
    struct Row
    {
        int mLine;
        Guid mGuid;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, kInterfaceID_ThreadedWorkQueue, "{20974874-84a4-4245-9372-b24a16498199}"},
        {__LINE__, kInterfaceID_ThreadedWorkQueueFlush, "{793307d6-fe55-4055-b134-3aafb14d0a74}"},
        {__LINE__, kInterfaceID_IThreadedQueueRequest, "{1df08fed-0ee7-42e7-92f4-8cb34d399ce0}"},
        {__LINE__, kInterfaceID_ORLUnknown, "{4f9cb3f7-c5df-4f33-b5a5-784cdf9c3fb9}"},
    };
    for (const Row& row : rows) {
        const UTF16String text = row.mGuid.AsString();
        EXPECT_EQ(row.mText, std::string(text.begin(), text.end())) << "row at line " << row.mLine;
    }
}

TEST(UnknownImpl, GetUnknown_CountsOneReference)
{
    Square* const square = new Square;
    const InterfaceRef<IShape> reference(square);
    {
        const InterfaceRef<ORLUnknown, ORLUnknown> unknown = square->GetUnknown();
        EXPECT_EQ(square, static_cast<void*>(unknown.GetPtr()));
        EXPECT_EQ(2, CountOf(square));
    }
    EXPECT_EQ(1, CountOf(square));
}

TEST(UnknownImpl, CopyOfAnObject_StartsWithoutOwners)
{
    const InterfaceRef<IShape> reference(new Square);
    Square* const copy = new Square(static_cast<const Square&>(*reference.GetPtr()));
    EXPECT_EQ(0, CountOf(copy));
    EXPECT_EQ(1, CountOf(reference.GetPtr()));
    *copy = static_cast<const Square&>(*reference.GetPtr());
    EXPECT_EQ(0, CountOf(copy));
    delete copy;
}
