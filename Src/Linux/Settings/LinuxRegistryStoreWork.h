// Floor: System
// The templates that run reads and changes of a store. Only the sources of Store include this header.
#pragma once

#include "LinuxRegistryStore.h"

#include <new>

namespace ORL {
namespace Registry {
namespace Linux {

/// Runs a read. inRead(false) uses memory only and returns kNotInMemory if something is not loaded; inRead(true) may
/// load from the database.
template <class Read>
SystemError Store::FromMemory(Read inRead)
{
    {
        const std::lock_guard<std::mutex> memory(mMemory);
        if (IsUpToDate()) {
            const SystemError error = inRead(false);
            if (error != kNotInMemory) {
                return error;
            }
        }
    }
    const std::lock_guard<TurnLock> work(mWork);
    const std::lock_guard<std::mutex> memory(mMemory);
    SystemError error = CatchUp(false);
    error = error == SystemErrors::kNoError ? inRead(true) : error;
    if (mDatabase.SetAsideIfDamaged()) {
        error = CatchUp(true);
        error = error == SystemErrors::kNoError ? inRead(true) : error;
    }
    return error;
}

/// Runs a change. inWork changes the database in a transaction, but not memory. While inWork runs, the in-memory copy
/// is current and no other thread or process can write. inDone makes the same change in memory after the commit. inWork
/// and inDone both run under both locks.
template <class Work, class Done>
SystemError Store::RunChange(const Change& inChange, Work inWork, Done inDone)
{
    const std::lock_guard<TurnLock> work(mWork);
    SystemError error = RunChangeOnce(inChange, inWork, inDone);
    const std::lock_guard<std::mutex> memory(mMemory);
    if (!mDatabase.SetAsideIfDamaged()) {
        return error;
    }
    Forget();
    return error;
}

template <class Work, class Done>
SystemError Store::RunChangeOnce(const Change& inChange, Work inWork, Done inDone)
{
    SystemError error = SystemErrors::kNoError;
    {
        const std::lock_guard<std::mutex> memory(mMemory);
        error = CatchUp(true);
    }
    if (error == SystemErrors::kNoError) {
        error = Statement(mDatabase, Database::kBegin).Run(); // may wait for other processes
    }
    if (error != SystemErrors::kNoError) {
        return error;
    }
    const std::lock_guard<std::mutex> memory(mMemory);
    Transaction transaction(mDatabase, inChange);
    error = Refresh();
    error = error == SystemErrors::kNoError ? inWork() : error;
    error = error == SystemErrors::kNoError ? transaction.Commit() : error;
    const std::uint64_t announced = mDatabase.Settle();
    if (error == SystemErrors::kNoError) {
        ApplyOwnChange(announced, inDone);
    }
    return error;
}

/// Makes this process's own change in memory, unless changes by other processes must be processed first. The change is
/// already committed, so a failure here only makes the next read reload the keys.
template <class Done>
void Store::ApplyOwnChange(std::uint64_t inAnnounced, Done inDone) noexcept
{
    if (mDatabase.Board().IsOpen() && mSeen != inAnnounced - 1) {
        return;
    }
    try {
        if (inDone() == SystemErrors::kNoError) {
            mSeen = mDatabase.Board().IsOpen() ? inAnnounced + 1 : kNever;
            return;
        }
    } catch (const std::bad_alloc&) {
    }
    Forget();
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
