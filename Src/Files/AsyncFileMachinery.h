// What all readers of the process share: one port, one thread that drains it, one executor that starts reads.
#pragma once

#include <AsyncFileReaderImpl.h>

#include <tvxcore/Executor.h>

#include <boost/shared_ptr.hpp>

namespace ORL {
namespace AsyncFiles {

/// Null while the machinery is not running.
extern Platform::Handle sCompletionPort;

/// Every read is started on its one thread. Empty while the machinery is not running.
extern boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>& sReadThreadQueue;

/// The start of one read, as it travels through the executor: small enough that a boost::function holds it without
/// memory of its own.
struct StartOfRead
{
    Platform::Handle mFile;
    AsyncReadRequest* mRequest;

    void operator()() const;
};

/// Called for each StartOfRead that the executor has accepted, after it has.
void CountQueuedStart();

} // namespace AsyncFiles
} // namespace ORL
