// Floor: System
// The database of one store: one connection, its statements, and its error codes. The tables and their columns:
//
//   keys  id, parent, folded, name       the root has id 1; an id is never reused
//   vals  key, folded, name, type, data  all text is little-endian UTF-16
//   aside time, file, reason             databases that were set aside before this one was created
#pragma once

#include "../LinuxRegistryLocations.h"
#include "../LinuxRegistryNames.h"
#include "LinuxRegistryBoard.h"

#include <Platform/Registry.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace ORL {
namespace Registry {
namespace Linux {

using Platform::SetAside;

inline constexpr std::int64_t kRootKey = 1;
inline constexpr std::int64_t kSoftwareKey = 2; // every new store contains this key

enum class IfMissing { kReport, kCreate };

class Database
{
public:
    enum Query {
        kSelectSubKeys,
        kFindSubKey,
        kHasSubKey,
        kInsertKey,
        kSelectValues,
        kSelectValue,
        kPutValue,
        kDeleteValue,
        kDeleteTreeValues,
        kDeleteTree,
        kDataVersion,
        kBegin,
        kCommit,
        kRollBack,
        kQueryCount
    };

    Database() = default;
    ~Database() { Close(); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Opens the database at a location. With kReport, returns 2 if the database does not exist. Rejects a database
    /// with a newer version, a symbolic link, and a folder that other users may write. If Open fails on a damaged
    /// database, SetAsideIfDamaged can rename it.
    SystemError Open(const StoreLocation& inLocation, IfMissing inIfMissing);
    void Close() noexcept;
    bool IsOpen() const noexcept { return mConnection != nullptr; }

    /// Returns whether this process cannot write the store.
    bool IsReadOnly() const noexcept { return mIsReadOnly; }

    /// Returns whether the names of the database and its board still refer to the open files.
    bool IsFileCurrent() const noexcept;

    /// Returns the board of changes. The board is closed if the file system does not support shared memory.
    ChangeBoard& Board() noexcept { return mBoard; }

    /// Returns the number of rows that the last statement changed.
    int ChangedRows() const noexcept;

    /// Returns the identifier of the row that was inserted last.
    std::int64_t LastRow() const noexcept;

    /// Sets the change that the next commit posts on the board. The change is posted when the commit begins, under the
    /// write lock of the database.
    void SetChange(const Change& inChange) noexcept { mChange = inChange; }

    /// Called after a commit, even if it failed. Returns the generation that was posted, or 0 if none was posted.
    std::uint64_t FinishChange() noexcept;

    /// Returns false and does nothing if the last error does not report damage. Otherwise checks the database again,
    /// renames it to a dated name if it is still damaged, and closes it. Returns true: the caller may then retry.
    bool SetAsideIfDamaged();

    /// Checks the whole database. Returns a description of the faults; empty if the database is intact.
    std::string FindFaults();

    /// Returns the recorded databases that were set aside before this one was created.
    std::vector<SetAside> ListSetAside();

    /// Returns the system error number for an SQLite error code.
    SystemError Error(int inCode) noexcept;

    friend class Statement;

private:
    SystemError OpenBoard(const StoreLocation& inLocation);
    SystemError OpenConnection(const StoreLocation& inLocation);
    SystemError Prepare();
    SystemError CheckSchema(bool& outIsNew);
    SystemError MakeSchema();
    SystemError Execute(const char* inText);
    SystemError RecordFileIdentity();
    bool IsStillDamaged(std::string& ioReason);
    void CloseConnection() noexcept;
    static int OnCommit(void* ioDatabase) noexcept;

    sqlite3* mConnection = nullptr;
    std::array<sqlite3_stmt*, kQueryCount> mStatements{};
    ChangeBoard mBoard;
    Change mChange;
    std::uint64_t mPosted = 0;
    std::string mFile;
    std::uint64_t mDevice = 0;
    std::uint64_t mInode = 0;
    SetAside mSetAside; // the damaged file just renamed; empty once the new database has a row for it
    bool mIsReadOnly = false;
    bool mIsDamaged = false;
};

/// Owns the transaction that kBegin has started. The destructor rolls it back unless it is committed.
class Transaction
{
public:
    Transaction(Database& ioDatabase, const Change& inChange) noexcept : mDatabase(ioDatabase)
    {
        mDatabase.SetChange(inChange);
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    SystemError Commit();

private:
    Database& mDatabase;
    bool mIsOver = false;
};

/// An execution of a prepared statement. The destructor clears its bindings and releases its read lock.
class Statement
{
public:
    Statement(Database& ioDatabase, Database::Query inQuery);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& Bind(int inIndex, std::int64_t inNumber);
    Statement& Bind(int inIndex, UnitsView inText);
    Statement& Bind(int inIndex, const void* inData, std::size_t inSize);

    /// Returns true if there is a row; false at the end or after an error.
    bool Step();

    /// Runs the statement to completion.
    SystemError Run();

    SystemError Error() const noexcept { return mError; }

    std::int64_t Number(int inColumn) const;
    void Text(int inColumn, Units& outText);

    /// Never null. The bytes are valid until the next Step.
    const void* Blob(int inColumn, std::size_t& outSize);

private:
    void Check(int inCode);

    Database& mDatabase;
    sqlite3_stmt* mStatement = nullptr;
    SystemError mError = SystemErrors::kNoError;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
