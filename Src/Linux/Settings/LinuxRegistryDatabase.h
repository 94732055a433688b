// Floor: System
// The database of one store: one connection, its statements, and the errors it gives.
//
//   keys  id, parent, folded, name       the root has id 1; an id is never used again
//   vals  key, folded, name, type, data  all text is UTF-16 in little endian
//   aside time, file, reason             databases that were set aside before this one was made
#pragma once

#include "LinuxRegistryBoard.h"
#include "LinuxRegistryNames.h"
#include "LinuxRegistryPlaces.h"

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
inline constexpr std::int64_t kSoftwareKey = 2; // every store has it from the beginning

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

    /// Opens the database of a place. 2 if there is none and inCreate is false. A damaged one is set aside, and then
    /// counts as none. A database of a newer version, a link, or a folder that others may write is refused.
    SystemError Open(const Place& inPlace, bool inCreate);
    void Close() noexcept;
    bool IsOpen() const noexcept { return mConnection != nullptr; }

    /// The store cannot be written by this process.
    bool IsReadOnly() const noexcept { return mIsReadOnly; }

    /// The database and its board are still those that their names lead to.
    bool IsInPlace() const noexcept;

    /// The board of changes; closed where the file system has no shared memory.
    ChangeBoard& Board() noexcept { return mBoard; }

    /// Rows that the last statement has changed.
    int ChangedRows() const noexcept;

    /// The identifier of the row that was put in last.
    std::int64_t LastRow() const noexcept;

    /// What the next commit changes. It is posted when the commit begins, under the lock of the database.
    void SetChange(const Change& inChange) noexcept { mChange = inChange; }

    /// After the commit, or after it has failed. Returns the generation that was announced, or 0 for none.
    std::uint64_t Settle() noexcept;

    /// If the last error says that the database is damaged: looks again, moves it out of the way under a dated name if it
    /// still is, and closes it. True if an operation may be tried again then.
    bool SetAsideIfDamaged();

    /// Reads the whole database. Empty if it is sound, else what is wrong with it.
    std::string FindFaults();

    /// The databases that were set aside before this one was made, as far as it knows.
    std::vector<SetAside> ListSetAside();

    /// The system's number for an error of SQLite.
    SystemError Error(int inCode) noexcept;

    friend class Statement;

private:
    SystemError OpenBoard(const Place& inPlace);
    SystemError OpenConnection(const Place& inPlace);
    SystemError Prepare();
    SystemError CheckSchema(bool& outIsNew);
    SystemError MakeSchema();
    SystemError Execute(const char* inText);
    SystemError RememberPlace();
    bool IsStillDamaged(std::string& ioReason);
    void CloseConnection() noexcept;
    static int OnCommit(void* ioDatabase) noexcept;

    sqlite3* mConnection = nullptr;
    std::array<sqlite3_stmt*, kQueryCount> mStatements{};
    ChangeBoard mBoard;
    Change mChange;
    std::uint64_t mAnnounced = 0;
    std::string mFile;
    std::uint64_t mDevice = 0;
    std::uint64_t mInode = 0;
    SetAside mSetAside; // not yet written down
    bool mIsReadOnly = false;
    bool mIsDamaged = false;
};

/// The transaction that kBegin has begun; rolled back unless it is committed.
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

/// One run of a prepared statement. Its bindings and its read lock end with it.
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

    /// True for a row; false at the end or after an error.
    bool Step();

    /// Runs to the end.
    SystemError Run();

    SystemError Error() const noexcept { return mError; }

    std::int64_t Number(int inColumn) const;
    void Text(int inColumn, Units& outText);
    void Data(int inColumn, std::basic_string<unsigned char>& outData);

private:
    void Check(int inCode);
    const void* Blob(int inColumn, std::size_t& outSize);

    Database& mDatabase;
    sqlite3_stmt* mStatement = nullptr;
    SystemError mError = SystemErrors::kNoError;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
