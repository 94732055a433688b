#include "LinuxRegistryDatabase.h"

#include "../../Calls/LinuxErrors.h"
#include "../../Calls/SystemCalls.h"
#include "../LinuxRegistryTrace.h"
#include "LinuxRegistryFolder.h"

#include <cerrno>
#include <cstring>
#include <sqlite3.h>
#include <utility>

namespace ORL {
namespace Registry {
namespace Linux {

using ORL::Linux::System;
using ORL::Linux::SystemErrorFromErrno;
using namespace SystemErrors;

namespace {

constexpr int kBusyMilliseconds = 20000;
constexpr int kOpenFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_PRIVATECACHE
                           | SQLITE_OPEN_EXRESCODE;
constexpr std::int64_t kApplication = 0x4F524C52; // "ORLR"
constexpr std::int64_t kVersion = 1;

constexpr char kSchema[] =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE aside(time TEXT NOT NULL, file TEXT NOT NULL, reason TEXT NOT NULL);"
    "CREATE TABLE keys(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL, folded BLOB NOT NULL, "
    "name BLOB NOT NULL, UNIQUE(parent, folded));"
    "CREATE TABLE vals(key INTEGER NOT NULL, folded BLOB NOT NULL, name BLOB NOT NULL, type INTEGER NOT NULL, "
    "data BLOB NOT NULL, PRIMARY KEY(key, folded)) WITHOUT ROWID;"
    "INSERT INTO keys VALUES(1, 0, x'', x'');"
    "INSERT INTO keys VALUES(2, 1, x'53004F00460054005700410052004500', x'53006F00660074007700610072006500');"
    "PRAGMA application_id = 1330793554;"
    "PRAGMA user_version = 1;"
    "COMMIT";

// The tables' SQL definitions, sorted by table name. A database with other tables was not created by this library.
constexpr char kSchemaText[] =
    "CREATE TABLE aside(time TEXT NOT NULL, file TEXT NOT NULL, reason TEXT NOT NULL)\n"
    "CREATE TABLE keys(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL, folded BLOB NOT NULL, "
    "name BLOB NOT NULL, UNIQUE(parent, folded))\n"
    "CREATE TABLE sqlite_sequence(name,seq)\n"
    "CREATE TABLE vals(key INTEGER NOT NULL, folded BLOB NOT NULL, name BLOB NOT NULL, type INTEGER NOT NULL, "
    "data BLOB NOT NULL, PRIMARY KEY(key, folded)) WITHOUT ROWID";

constexpr char kDescribe[] =
    "SELECT (SELECT application_id FROM pragma_application_id), (SELECT user_version FROM pragma_user_version), "
    "(SELECT group_concat(sql, char(10)) FROM (SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name))";

// Checks the whole database. Returns the last SQLite result code, which is SQLITE_DONE if the check completed.
int CheckIntegrity(sqlite3* inConnection, std::string& outFaults)
{
    sqlite3_stmt* query = nullptr;
    int code = sqlite3_prepare_v2(inConnection, "PRAGMA integrity_check(20)", -1, &query, nullptr);
    while (code == SQLITE_OK || code == SQLITE_ROW) {
        code = sqlite3_step(query);
        const auto* const text =
            code == SQLITE_ROW ? reinterpret_cast<const char*>(sqlite3_column_text(query, 0)) : nullptr;
        if (text != nullptr && std::strcmp(text, "ok") != 0) {
            outFaults += outFaults.empty() ? text : std::string("; ") + text;
        }
    }
    sqlite3_finalize(query);
    return code & 0xFF;
}

SystemError ErrorOfCode(int inCode, int inErrno)
{
    switch (inCode & 0xFF) {
    case SQLITE_OK: return kNoError;
    case SQLITE_NOMEM: return kErrorNotEnoughMemory;
    case SQLITE_FULL: return kErrorDiskFull;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH: return kErrorAccessDenied;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return kErrorBusy;
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
        if (inCode == SQLITE_IOERR_NOMEM) {
            return kErrorNotEnoughMemory;
        }
        return inErrno == 0 || inErrno == ENOENT || inErrno == ENOTDIR ? kErrorRegistryIoFailed
                                                                       : SystemErrorFromErrno(inErrno);
    default: return kErrorRegistryIoFailed;
    }
}

} // namespace

SystemError Database::Error(int inCode) noexcept
{
    const int code = sqlite3_extended_errcode(mConnection);
    const int primary = inCode & 0xFF;
    mIsDamaged = mIsDamaged || primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
    const bool isSame = (code & 0xFF) == primary;
    return ErrorOfCode(isSame ? code : inCode, sqlite3_system_errno(mConnection));
}

SystemError Database::Open(const StoreLocation& inLocation, IfMissing inIfMissing)
{
    Close();
    if (inLocation.mFolder.empty()) {
        return inIfMissing == IfMissing::kCreate ? kErrorRegistryIoFailed : kErrorFileNotFound;
    }
    SystemError error = CheckLocation(inLocation, mFile);
    if (error == kErrorFileNotFound && inIfMissing == IfMissing::kCreate) {
        error = MakeFolder(inLocation);
        error = error == kNoError ? CheckLocation(inLocation, mFile) : error;
        error = error == kErrorFileNotFound ? kNoError : error;
    }
    error = error == kNoError ? OpenBoard(inLocation) : error;
    error = error == kNoError ? mBoard.IsOpen() ? mBoard.Lock() : kNoError : error;
    if (error != kNoError) {
        mBoard.Close();
        return error;
    }
    error = OpenConnection(inLocation);
    error = error == kNoError ? Prepare() : error;
    if (mBoard.IsOpen()) {
        mBoard.Unlock();
    }
    if (error != kNoError && !mIsDamaged) {
        Close();
    }
    return error;
}

SystemError Database::OpenBoard(const StoreLocation& inLocation)
{
    const std::string folder = mFile.substr(0, mFile.rfind('/'));
    if (!HasSharedMemory(folder)) {
        return kNoError;
    }
    const SystemError error = mBoard.Open(mFile + "-changes", inLocation.mIsWorldReadable);
    // Without shared memory, every process reads from the database. If only this process cannot write the board, it
    // must not change the database, because other processes would not see the change.
    mIsReadOnly = error != kErrorNotSupported && !mBoard.IsWritable();
    return error == kErrorNotSupported || error == kErrorFileNotFound ? kNoError : error;
}

SystemError Database::OpenConnection(const StoreLocation& inLocation)
{
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    const bool isNew = !IdentityOf(mFile, device, inode);
    const int code = sqlite3_open_v2(mFile.c_str(), &mConnection, kOpenFlags | SQLITE_OPEN_CREATE, nullptr);
    if (code != SQLITE_OK) {
        const SystemError error = mConnection != nullptr ? Error(code) : kErrorNotEnoughMemory;
        return error;
    }
    if (isNew && System().mChMod(mFile.c_str(), inLocation.mIsWorldReadable ? 0644 : 0600) != 0) {
        return SystemErrorFromErrno(errno);
    }
    return RecordFileIdentity();
}

SystemError Database::RecordFileIdentity()
{
    return IdentityOf(mFile, mDevice, mInode) ? kNoError : kErrorRegistryIoFailed;
}

bool Database::IsFileCurrent() const noexcept
{
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    return IdentityOf(mFile, device, inode) && device == mDevice && inode == mInode
           && (!mBoard.IsOpen() || mBoard.IsFileCurrent());
}

SystemError Database::Prepare()
{
    sqlite3_busy_timeout(mConnection, kBusyMilliseconds);
    // Do not run code that an untrusted database contains, such as triggers and views.
    for (const auto& [option, value] : {std::pair{SQLITE_DBCONFIG_DEFENSIVE, 1},
                                        {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                                        {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
                                        {SQLITE_DBCONFIG_ENABLE_VIEW, 0}}) {
        sqlite3_db_config(mConnection, option, value, nullptr);
    }
    sqlite3_commit_hook(mConnection, &OnCommit, this);
    mIsReadOnly = mIsReadOnly || sqlite3_db_readonly(mConnection, "main") != 0;
    SystemError error = Execute("PRAGMA cell_size_check = ON");
    bool isNew = false;
    error = error == kNoError ? CheckSchema(isNew) : error;
    if (error == kNoError && !mIsReadOnly) {
        int keep = 1; // keep the journal's files: readers need them but cannot create them
        sqlite3_file_control(mConnection, "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
        error =
            Execute(mBoard.IsOpen() ? "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; "
                                      "PRAGMA journal_size_limit = 8388608" // twice its size between two checkpoints
                                    : "PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL");
    }
    if (error == kNoError && isNew) {
        error = mIsReadOnly ? kErrorFileNotFound : MakeSchema();
    }
    return error;
}

SystemError Database::CheckSchema(bool& outIsNew)
{
    sqlite3_stmt* query = nullptr;
    int code = sqlite3_prepare_v2(mConnection, kDescribe, -1, &query, nullptr);
    code = code == SQLITE_OK ? sqlite3_step(query) : code;
    SystemError error = code == SQLITE_ROW ? kNoError : Error(code);
    if (error == kNoError) {
        const std::int64_t application = sqlite3_column_int64(query, 0);
        const std::int64_t version = sqlite3_column_int64(query, 1);
        const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(query, 2));
        outIsNew = application == 0 && version == 0 && text == nullptr;
        if (application == kApplication && version > kVersion) {
            error = kErrorNotRegistryFile;
        } else if (!outIsNew
                   && (application != kApplication || text == nullptr || std::strcmp(text, kSchemaText) != 0)) {
            mIsDamaged = true;
            error = kErrorNotRegistryFile;
        }
    }
    sqlite3_finalize(query);
    return error;
}

SystemError Database::MakeSchema()
{
    mChange = Change();
    SystemError error = Execute(kSchema);
    if (error != kNoError) {
        sqlite3_exec(mConnection, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    if (error == kNoError && !mSetAside.mFile.empty()) {
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(mConnection, "INSERT INTO aside VALUES(?1, ?2, ?3)", -1, &insert, nullptr);
        if (insert != nullptr) { // a failure to record the reason is ignored
            sqlite3_bind_text(insert, 1, mSetAside.mTime.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(insert, 2, mSetAside.mFile.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(insert, 3, mSetAside.mReason.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_step(insert);
            sqlite3_finalize(insert);
            mSetAside = SetAside();
        }
    }
    FinishChange();
    return error;
}

SystemError Database::Execute(const char* inText)
{
    const int code = sqlite3_exec(mConnection, inText, nullptr, nullptr, nullptr);
    return code == SQLITE_OK ? kNoError : Error(code);
}

int Database::OnCommit(void* ioDatabase) noexcept
{
    Database& database = *static_cast<Database*>(ioDatabase);
    if (database.mBoard.IsWritable()) {
        database.mPosted = database.mBoard.PostChange(database.mChange);
    }
    return 0;
}

std::uint64_t Database::FinishChange() noexcept
{
    const std::uint64_t posted = std::exchange(mPosted, 0);
    if (posted != 0) {
        mBoard.FinishChange(posted);
    }
    mChange = Change();
    return posted;
}

void Database::CloseConnection() noexcept
{
    for (sqlite3_stmt*& statement : mStatements) {
        sqlite3_finalize(std::exchange(statement, nullptr));
    }
    sqlite3_close(std::exchange(mConnection, nullptr));
}

void Database::Close() noexcept
{
    CloseConnection();
    mBoard.Close();
    mIsDamaged = false;
    mIsReadOnly = false;
}

bool Database::SetAsideIfDamaged()
{
    if (!std::exchange(mIsDamaged, false)) {
        return false;
    }
    SetAside aside;
    aside.mReason = mConnection != nullptr ? sqlite3_errmsg(mConnection) : "";
    const bool isLocked = !mBoard.IsOpen() || mBoard.Lock() == kNoError;
    // Another process may have renamed the database already, and a transient read error is not damage.
    const bool isToMove = isLocked && !mIsReadOnly && IsFileCurrent() && IsStillDamaged(aside.mReason);
    CloseConnection();
    if (isToMove && MoveAside(mFile, aside.mFile, aside.mTime) == kNoError) {
        TraceSetAside(aside);
        mSetAside = std::move(aside);
        if (mBoard.IsWritable()) { // makes other processes open the new database
            mBoard.FinishChange(mBoard.PostChange(Change()));
        }
    }
    Close();
    return true;
}

// Opens the database again and checks all of it.
bool Database::IsStillDamaged(std::string& ioReason)
{
    CloseConnection();
    if (sqlite3_open_v2(mFile.c_str(), &mConnection, kOpenFlags, nullptr) != SQLITE_OK) {
        return false;
    }
    sqlite3_busy_timeout(mConnection, kBusyMilliseconds);
    bool isNew = false;
    const SystemError error = CheckSchema(isNew);
    if (std::exchange(mIsDamaged, false)) {
        const char* const message = sqlite3_errmsg(mConnection);
        ioReason = error == kErrorNotRegistryFile ? "its tables are not those of a settings database" : message;
        return true;
    }
    std::string faults;
    const int code = error == kNoError ? CheckIntegrity(mConnection, faults) : SQLITE_OK;
    const bool isDamaged = code == SQLITE_CORRUPT || code == SQLITE_NOTADB || (code == SQLITE_DONE && !faults.empty());
    ioReason = isDamaged && !faults.empty() ? faults : ioReason;
    return isDamaged;
}

std::string Database::FindFaults()
{
    std::string faults;
    const int code = CheckIntegrity(mConnection, faults);
    return code != SQLITE_DONE && faults.empty() ? sqlite3_errmsg(mConnection) : faults;
}

std::vector<SetAside> Database::ListSetAside()
{
    std::vector<SetAside> list;
    sqlite3_stmt* query = nullptr;
    int code =
        sqlite3_prepare_v2(mConnection, "SELECT time, file, reason FROM aside ORDER BY time", -1, &query, nullptr);
    const auto text = [&query](int inColumn) {
        const auto* const column = reinterpret_cast<const char*>(sqlite3_column_text(query, inColumn));
        return std::string(column != nullptr ? column : "");
    };
    while (code == SQLITE_OK || code == SQLITE_ROW) {
        code = sqlite3_step(query);
        if (code == SQLITE_ROW) {
            list.push_back({text(1), text(0), text(2)});
        }
    }
    sqlite3_finalize(query);
    return list;
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
