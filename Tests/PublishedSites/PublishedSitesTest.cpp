// Tests the published identity of the checks in the folders Core and Objects.
#include "PublishedSites.h"
#include <ExpectReport.h>

#include <ORLAtomic.h>
#include <ORLDebug.h>
#include <ORLInterface.h>
#include <ORLObjectPtr.h>
#include <Objects/SingletonSection.h>

#include <cstring>

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::ExpectReport;
using ORLTest::PublishedSite;

namespace {

/// A target that is misaligned by one byte, but lies within one cache line.
template <class T>
struct Misaligned
{
    alignas(64) unsigned char mBytes[32] = {};

    explicit Misaligned(T inValue) { std::memcpy(mBytes + 1, &inValue, sizeof(inValue)); }

    ORL_ATOMIC_SERVES_MISALIGNED T& Target() { return *reinterpret_cast<T*>(mBytes + 1); }

    T Value() const
    {
        T value;
        std::memcpy(&value, mBytes + 1, sizeof(value));
        return value;
    }
};

using Number = Misaligned<std::int32_t>;
using Pointer = Misaligned<int*>;

int sObject;

// These functions also check that each operation still works on a misaligned target.
void IncrementMisaligned()
{
    Number number(5);
    EXPECT_EQ(6, AtomicIncrement(number.Target()));
    EXPECT_EQ(6, number.Value());
}

void DecrementMisaligned()
{
    Number number(5);
    EXPECT_EQ(4, AtomicDecrement(number.Target()));
    EXPECT_EQ(4, number.Value());
}

void ReadMisaligned()
{
    Number number(17);
    EXPECT_EQ(17, AtomicRead(number.Target()));
    EXPECT_EQ(17, number.Value());
}

void CompareAndSetMisaligned()
{
    Number number(5);
    EXPECT_TRUE(AtomicCompareAndSet(number.Target(), 5, 8));
    EXPECT_EQ(8, number.Value());
}

void ExchangeMisaligned()
{
    Number number(5);
    EXPECT_EQ(5, AtomicExchange(number.Target(), 8));
    EXPECT_EQ(8, number.Value());
}

void ReadPtrMisaligned()
{
    Pointer pointer(&sObject);
    EXPECT_EQ(&sObject, AtomicReadPtr(pointer.Target()));
    EXPECT_EQ(&sObject, pointer.Value());
}

void NullifyPtrMisaligned()
{
    Pointer pointer(&sObject);
    EXPECT_EQ(&sObject, AtomicNullifyPtr(pointer.Target()));
    EXPECT_EQ(nullptr, pointer.Value());
}

void SetPtrIfNullMisaligned()
{
    Pointer pointer(nullptr);
    EXPECT_TRUE(AtomicSetPtrIfNull(pointer.Target(), &sObject));
    EXPECT_EQ(&sObject, pointer.Value());
}

struct Held
{
    int mNumber = 0;
};

void ReleaseWithoutOwners()
{
    Held* const object = new Held;
    AtomicValue* counter = nullptr;
    {
        const ObjectPtr<Held> pointer(object);
        std::memcpy(&counter, static_cast<const void*>(&pointer), sizeof(counter));
        *counter = 0;
    }
    delete object;
    Allocator::Dispose(counter, sizeof(*counter));
}

void ArrowOfEmpty()
{
    const ObjectPtr<Held> empty;
    EXPECT_EQ(nullptr, empty.operator->());
}

void ArrowOfNullReference()
{
    const InterfaceRef<ORLUnknown, ORLUnknown> null;
    null->AddRef();
}

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kInputContract, "inBegin < inEnd", "", "Debug", 61, "",
     [] { IsValidAddressRange(&sObject, static_cast<const void*>(&sObject), false); }},
    // alignment
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioAddend) & 3L) == 0", "", "ORLAtomic", 90, "ORL::AtomicRead",
     &ReadMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioAddend) & 3L) == 0", "", "ORLAtomic", 137,
     "ORL::AtomicCompareAndSet", &CompareAndSetMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioTarget) & 3L) == 0", "", "ORLAtomic", 214, "ORL::AtomicExchange",
     &ExchangeMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioValue) & 3L) == 0", "", "ORLAtomic", 275, "ORL::AtomicIncrement",
     &IncrementMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioValue) & 3L) == 0", "", "ORLAtomic", 298, "ORL::AtomicDecrement",
     &DecrementMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioValue) & (sizeof(T*)-1)) == 0", "", "ORLAtomic", 421,
     "ORL::AtomicReadPtr", &ReadPtrMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioValue) & (sizeof(T*)-1)) == 0", "", "ORLAtomic", 448,
     "ORL::AtomicNullifyPtr", &NullifyPtrMisaligned},
    {__LINE__, PublishedSite::kAssert, "(intptr_t(&ioTarget) & (sizeof(T*)-1)) == 0", "", "ORLAtomic", 476,
     "ORL::AtomicSetPtrIfNull", &SetPtrIfNullMisaligned},
    // counted pointers
    {__LINE__, PublishedSite::kAssert, "*mCounter > CounterType(0)", "", "ORLObjectPtr", 119, "ORL::ObjectPtr::Release",
     &ReleaseWithoutOwners},
    {__LINE__, PublishedSite::kAssert, "IsValidAddress(mPtr)", "", "ORLObjectPtr", 209, "ORL::ObjectPtr::operator->",
     &ArrowOfEmpty},
    {__LINE__, PublishedSite::kAssert, "mIPtr != NULL", "Attempt to use a NULL InterfaceRef\r\n", "ORLInterface", 359,
     "ORL::InterfaceRef::operator->", &ArrowOfNullReference},
    {__LINE__, PublishedSite::kInputContract, "sCriticalSectionPtr != NULL", "", "ClassFactory", 62, "",
     [] { CheckedSingletonSection(nullptr); }},
};

} // namespace

TEST(PublishedSites, OfCoreAndObjects_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}

// The code after this check would dereference a null pointer, so the recorder throws from the report.
TEST(PublishedSites, StarOfAnEmptyObjectPtr_IsReportedAsPublished)
{
    ORLTest::CheckRecorder recorder;
    recorder.mThrowAssert = true;
    const ObjectPtr<Held> empty;
    EXPECT_THROW((void)(*empty).mNumber, ORLTest::CheckRecorder::ContractError);
    const auto reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ExpectReport(reports[0])
        .Expression("IsValidAddress(mPtr)")
        .Message("")
        .File("ORLObjectPtr")
        .Line(199)
        .Function("ORL::ObjectPtr::operator*");
}
