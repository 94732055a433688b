// Tests the published identity of the checks in the class factory, large buffers and names.
#include "PublishedSites.h"

#include <ORLClassFactory.h>
#include <ORLMemoryRecycler.h>
#include <Objects/ClassCategories.h>
#include <Strings/ImmutableStringRecord.h>

#include <map>
#include <vector>

// The linker redirects the library's calls to this function, which simulates a runtime whose heap calls new handlers.
int WrappedQueryNewMode() __asm__("__wrap__ZN3ORL10PageMemory8Platform17QueryNewMode_ImplEv");

namespace {

int sNewMode = 0;

} // namespace

int WrappedQueryNewMode()
{
    return sNewMode;
}

using namespace ORL;
using ORLTest::ExpectPublished;
using ORLTest::PublishedSite;

namespace {

void CreateNothing(InterfaceRef<ORLUnknown, ORLUnknown>&)
{
}

// Makes a class's entry contain the identifier of another class.
void RequestCorruptToken()
{
    constexpr Guid kClass(0x5173, 1);
    ClassFactory::RegisterORLClass(kClass, "", "", &CreateNothing, &ORLGetClassCategories);
    ClassFactory::GetClassTokenFromClassID(kClass)->mClassID = Guid(0x5173, 2);
    ClassFactory::GetClassTokenFromClassID(kClass);
}

// A map that loses its insertions. The end iterator can be dereferenced, because the code after the check does so.
class ForgetfulMap
{
public:
    using value_type = std::pair<const Guid, std::vector<Guid>>;
    using iterator = value_type*;

    iterator find(const Guid&) { return &mEnd; }
    iterator end() { return &mEnd; }
    void insert(const value_type&) {}

private:
    value_type mEnd;
};

void EnterACategoryThatIsLost()
{
    ForgetfulMap map;
    GetOrCreateClassIDVector(map, Guid(0x5173, 3));
}

class OwnBuffer : public MemoryBuffer
{
public:
    using MemoryBuffer::Allocate;
    using MemoryBuffer::Release;
    ~OwnBuffer()
    {
        if (GetBuffer() != nullptr) {
            Release();
        }
    }
};

void AllocateTwice()
{
    OwnBuffer buffer;
    buffer.Allocate(100);
    buffer.Allocate(100);
}

void AllocateUnderAnotherNewMode()
{
    OwnBuffer buffer;
    sNewMode = 1;
    buffer.Allocate(100);
    sNewMode = 0;
}

void ReleaseARecordOfNobody()
{
    ImmutableString::InternalRepresentation record(nullptr);
    record.RemoveRef();
}

const PublishedSite kSites[] = {
    {__LINE__, PublishedSite::kAssert, "item->first == item->second.mClassID", "", "ClassFactory", 214,
     "ORL::ClassFactory::GetClassTokenFromClassID", &RequestCorruptToken},
    {__LINE__, PublishedSite::kAssert, "i != inCategoryMap.end()", "", "ClassFactory", 288,
     "ORL::ClassFactory::GetOrCreateClassIDVector", &EnterACategoryThatIsLost},
    {__LINE__, PublishedSite::kInputContract, "mBuffer == NULL", "", "MemoryRecycler", 147, "", &AllocateTwice},
    {__LINE__, PublishedSite::kAssert, "_query_new_mode() == 0", "", "MemoryRecycler", 155,
     "ORL::MemoryBuffer::Allocate", &AllocateUnderAnotherNewMode},
    {__LINE__, PublishedSite::kAssert, "mBuffer != NULL", "", "MemoryRecycler", 207, "ORL::MemoryBuffer::Release",
     [] { OwnBuffer().Release(); }},
    {__LINE__, PublishedSite::kAssert, "AtomicRead(mReferenceCount) > 0", "", "ImmutableString", 70,
     "ORL::ImmutableString::InternalRepresentation::RemoveRef", &ReleaseARecordOfNobody},
};

} // namespace

TEST(PublishedSites, OfFactoryBuffersAndNames_AreReportedAsPublished)
{
    ExpectPublished(kSites);
}
