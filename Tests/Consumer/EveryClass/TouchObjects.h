#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

namespace Consumer {

class Work : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, Work, ORL::IThreadedQueueRequest>
{
public:
    static constexpr ORL::Guid kInterfaceID{0x0123456789ABCDEFu, 1};
    void Process() override {}
};

inline void CreateWork(ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>& outRef)
{
    outRef = ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>(new Work);
}

class Kept : public ORL::Managed
{
public:
    ~Kept() override = default;

private:
    void Destroy() override {}
};

class Keeper : public ORL::Manager
{
public:
    static void KeepForAMoment(Kept& ioKept)
    {
        AddRef(&ioKept);
        Release(&ioKept);
    }
};

inline void TouchAtomics()
{
    using namespace ORL;
    AtomicValue number = 0;
    int* pointer = nullptr;
    int object = 0;
    Touch(AtomicIncrement(number), AtomicDecrement(number), AtomicRead(number), AtomicCompareAndSet(number, 0, 1),
          AtomicExchange(number, 2), AtomicReadPtr(pointer), AtomicSetPtrIfNull(pointer, &object),
          AtomicNullifyPtr(pointer));
}

inline void TouchPointers()
{
    using namespace ORL;
    struct Record : Impl
    {
        int mNumber = 0;
    };
    ObjectPtr<Record> first(new Record);
    ObjectPtr<Record> second;
    second = first;
    second.Swap(first);
    const ObjectPtr<Impl> base = MakeObjectPtr<Record>();
    Touch(first->mNumber, (*first).mNumber, first.GetPtr(), first == second, base != first, base == nullptr);

    InterfaceRef<ORLUnknown, ORLUnknown> unknown = (new Work)->GetUnknown();
    const InterfaceRef<ORLUnknown, ORLUnknown> copy(unknown);
    void* found = nullptr;
    if (ResultSucceeded(copy->QueryInterface(Work::kInterfaceID, &found))) {
        copy->Release();
    }
    unknown = MakeInterfaceRef<Work>();
    Touch(unknown == copy, unknown != nullptr, unknown.As<IThreadedQueueRequest>());
    unknown = InterfaceRef<ORLUnknown, ORLUnknown>();
    if (IsWanted()) {
        unknown->AddRef(); // the reference is null: the call would report a failed check and throw
    }
}

inline void TouchManaged()
{
    Kept kept;
    Keeper::KeepForAMoment(kept);
    const ORL::SharedObjectBase::TagBase tag(ORL::SharedObjectBase::GetCriticalSection());
    tag.Lock();
    tag.Unlock();
    Touch(&tag.GetCriticalSection());
}

inline void TouchClassFactory()
{
    using namespace ORL;
    ClassFactory::RegisterORLClass(Work::kInterfaceID, "a", "b", &CreateWork, &ORLGetClassCategories);
    const ClassMapEntry* const token = ClassFactory::GetClassTokenFromClassID(Work::kInterfaceID);
    Touch(token, CreateClassInstanceRef(Work::kInterfaceID), &ClassFactory::CreateInstanceRef,
          &ClassFactory::CreateClassByCategory, &ClassFactory::GetClassIDFromClassToken,
          &ClassFactory::SetWarnAboutUnregisteredClasses);
}

inline void TouchObjects()
{
    TouchAtomics();
    TouchPointers();
    TouchManaged();
    TouchClassFactory();
}

} // namespace Consumer
