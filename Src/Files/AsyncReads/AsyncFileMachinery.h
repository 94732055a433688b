// The state that all readers of the process share: one port, one thread that drains it, one executor that starts reads.
#pragma once

#include <Files/AsyncFileReaderImpl.h>

#include <tvxcore/Executor.h>

#include <boost/shared_ptr.hpp>

namespace ORL {
namespace AsyncFiles {

/// Null unless StartupAsyncFileOperations has created it.
extern Platform::Handle sCompletionPort;

/// The executor whose one thread starts every read. Empty unless StartupAsyncFileOperations has created it.
extern boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>& sReadThreadQueue;

/// The start of one read, as queued in the executor: small enough that a boost::function stores it without allocating.
struct ReadStart
{
    Platform::Handle mFile;
    AsyncReadRequest* mRequest;

    void operator()() const;
};

/// Must be called for each ReadStart, after the executor has accepted it.
void CountQueuedStart();

} // namespace AsyncFiles
} // namespace ORL
