#include "LinuxRegistryDatabase.h"

#include <cstring>
#include <sqlite3.h>

namespace ORL {
namespace Registry {
namespace Linux {

namespace {

constexpr const char* kTexts[] = {
    "SELECT id, folded, name FROM keys WHERE parent = ?1",
    "SELECT id, name FROM keys WHERE parent = ?1 AND folded = ?2",
    "SELECT 1 FROM keys WHERE parent = ?1 LIMIT 1",
    "INSERT INTO keys(parent, folded, name) VALUES(?1, ?2, ?3)",
    "SELECT folded, name, type, data FROM vals WHERE key = ?1",
    "SELECT folded, name, type, data FROM vals WHERE key = ?1 AND folded = ?2",
    // Sets a value only if its key exists. An existing value keeps the case of its name.
    "INSERT INTO vals(key, folded, name, type, data) SELECT ?1, ?2, ?3, ?4, ?5 WHERE EXISTS(SELECT 1 FROM keys WHERE "
    "id = ?1) "
    "ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data",
    "DELETE FROM vals WHERE key = ?1 AND folded = ?2",
    "WITH RECURSIVE doomed(id) AS (VALUES(?1) UNION SELECT keys.id FROM keys JOIN doomed ON keys.parent = doomed.id) "
    "DELETE FROM vals WHERE key IN (SELECT id FROM doomed)",
    "WITH RECURSIVE doomed(id) AS (VALUES(?1) UNION SELECT keys.id FROM keys JOIN doomed ON keys.parent = doomed.id) "
    "DELETE FROM keys WHERE id IN (SELECT id FROM doomed)",
    "PRAGMA data_version",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
};

static_assert(sizeof(kTexts) / sizeof(kTexts[0]) == Database::kQueryCount);

} // namespace

Transaction::~Transaction()
{
    if (!mIsOver) {
        Statement(mDatabase, Database::kRollBack).Run();
    }
}

SystemError Transaction::Commit()
{
    const SystemError error = Statement(mDatabase, Database::kCommit).Run();
    mIsOver = error == SystemErrors::kNoError;
    return error;
}

int Database::ChangedRows() const noexcept
{
    return sqlite3_changes(mConnection);
}

std::int64_t Database::LastRow() const noexcept
{
    return sqlite3_last_insert_rowid(mConnection);
}

Statement::Statement(Database& ioDatabase, Database::Query inQuery) : mDatabase(ioDatabase)
{
    sqlite3_stmt*& statement = ioDatabase.mStatements[inQuery];
    if (statement == nullptr) {
        Check(sqlite3_prepare_v3(ioDatabase.mConnection, kTexts[inQuery], -1, SQLITE_PREPARE_PERSISTENT, &statement,
                                 nullptr));
    }
    mStatement = statement;
}

Statement::~Statement()
{
    if (mStatement != nullptr) {
        sqlite3_reset(mStatement);
        sqlite3_clear_bindings(mStatement);
    }
}

void Statement::Check(int inCode)
{
    if (inCode != SQLITE_OK && mError == SystemErrors::kNoError) {
        mError = mDatabase.Error(inCode);
    }
}

Statement& Statement::Bind(int inIndex, std::int64_t inNumber)
{
    if (mStatement != nullptr) {
        Check(sqlite3_bind_int64(mStatement, inIndex, inNumber));
    }
    return *this;
}

Statement& Statement::Bind(int inIndex, UnitsView inText)
{
    return Bind(inIndex, inText.data(), inText.size() * sizeof(unsigned short));
}

Statement& Statement::Bind(int inIndex, const void* inData, std::size_t inSize)
{
    if (mStatement != nullptr) {
        const void* const data = inSize != 0 ? inData : ""; // a null pointer would bind NULL
        Check(sqlite3_bind_blob64(mStatement, inIndex, data, inSize, SQLITE_STATIC));
    }
    return *this;
}

bool Statement::Step()
{
    if (mError != SystemErrors::kNoError) {
        return false;
    }
    const int code = sqlite3_step(mStatement);
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        Check(code);
    }
    return code == SQLITE_ROW;
}

SystemError Statement::Run()
{
    while (Step()) {
    }
    return mError;
}

std::int64_t Statement::Number(int inColumn) const
{
    return sqlite3_column_int64(mStatement, inColumn);
}

// Copies the text with memcpy, because in a page of the database it may be unaligned.
void Statement::Text(int inColumn, Units& outText)
{
    std::size_t size = 0;
    const void* const blob = Blob(inColumn, size);
    outText.resize(size / sizeof(unsigned short));
    std::memcpy(outText.data(), blob, outText.size() * sizeof(unsigned short));
}

const void* Statement::Blob(int inColumn, std::size_t& outSize)
{
    const void* const blob = sqlite3_column_blob(mStatement, inColumn);
    if (blob == nullptr && sqlite3_errcode(mDatabase.mConnection) == SQLITE_NOMEM) {
        Check(SQLITE_NOMEM);
    }
    outSize = blob != nullptr ? static_cast<std::size_t>(sqlite3_column_bytes(mStatement, inColumn)) : 0;
    return blob != nullptr ? blob : "";
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
