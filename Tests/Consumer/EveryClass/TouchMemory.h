#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

namespace Consumer {

inline void TouchMemory()
{
    using namespace ORL;
    Allocator::Dispose(Allocator::Allocate(100), 100);
    const MemoryBufferWrapper wrapper(100000);
    const MemoryBuffer& buffer = wrapper;
    Touch(buffer.GetBuffer(), buffer.GetSize(), buffer.IsVirtual(), &TraceAllocatorStatistics);
    const ObjectPtr<MemoryRecycler, AtomicValue> recycler = MemoryRecycler::Instance();
    if (recycler) {
        MemoryBuffer raw = recycler->AllocateBuffer(100000);
        recycler->RecycleBuffer(raw);
        recycler->SetSize(recycler->GetSize());
        recycler->Purge(1);
    }
    const MemoryRecycler own;
    Touch(own);
}

} // namespace Consumer
