// Floor: System
// The templates that run reads and changes of a store. Only the sources of Store include this header.
#pragma once

#include "LinuxRegistryStore.h"

#include <new>

namespace ORL {
namespace Registry {
namespace Linux {

/// Runs a read. inRead(ReadSource::kMemory) returns kNotInMemory if something is not loaded.
template <class Read>
SystemError Store::RunRead(Read inRead)
{
    {
        const MutexLock memory(mMemoryLock);
        if (IsUpToDate()) {
            const SystemError error = inRead(ReadSource::kMemory);
            if (error != kNotInMemory) {
                return error;
            }
        }
    }
    const FairMutexLock work(mDatabaseLock);
    const MutexLock memory(mMemoryLock);
    SystemError error = OpenAndUpdate(IfMissing::kReport);
    error = error == SystemErrors::kNoError ? inRead(ReadSource::kDatabase) : error;
    if (mDatabase.SetAsideIfDamaged()) {
        error = OpenAndUpdate(IfMissing::kCreate);
        error = error == SystemErrors::kNoError ? inRead(ReadSource::kDatabase) : error;
    }
    return error;
}

/// Runs a change. inWork changes the database in a transaction, but not memory. While inWork runs, the in-memory copy
/// is current and no other thread or process can write. inDone makes the same change in memory after the commit. inWork
/// and inDone both run under both locks.
template <class Work, class Done>
SystemError Store::RunChange(const Change& inChange, Work inWork, Done inDone)
{
    const FairMutexLock work(mDatabaseLock);
    SystemError error = RunChangeOnce(inChange, inWork, inDone);
    const MutexLock memory(mMemoryLock);
    if (!mDatabase.SetAsideIfDamaged()) {
        return error;
    }
    InvalidateMemory();
    return error;
}

template <class Work, class Done>
SystemError Store::RunChangeOnce(const Change& inChange, Work inWork, Done inDone)
{
    SystemError error = SystemErrors::kNoError;
    {
        const MutexLock memory(mMemoryLock);
        error = OpenAndUpdate(IfMissing::kCreate);
    }
    if (error == SystemErrors::kNoError) {
        error = Statement(mDatabase, Database::kBegin).Run(); // may wait for other processes
    }
    if (error != SystemErrors::kNoError) {
        return error;
    }
    const MutexLock memory(mMemoryLock);
    Transaction transaction(mDatabase, inChange);
    error = UpdateMemory();
    error = error == SystemErrors::kNoError ? inWork() : error;
    error = error == SystemErrors::kNoError ? transaction.Commit() : error;
    const std::uint64_t posted = mDatabase.FinishChange();
    if (error == SystemErrors::kNoError) {
        ApplyOwnChange(posted, inDone);
    }
    return error;
}

/// Applies this process's change in memory, unless changes by other processes must be processed first. The change is
/// already committed, so a failure of this step only makes the next read reload the keys.
template <class Done>
void Store::ApplyOwnChange(std::uint64_t inPosted, Done inDone) noexcept
{
    if (mDatabase.Board().IsOpen() && mAppliedGeneration != inPosted - 1) {
        return;
    }
    try {
        if (inDone() == SystemErrors::kNoError) {
            mAppliedGeneration = mDatabase.Board().IsOpen() ? inPosted + 1 : kUnknownGeneration;
            return;
        }
    } catch (const std::bad_alloc&) {
    }
    InvalidateMemory();
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
