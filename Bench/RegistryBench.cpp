// Question: what do reading and writing settings cost, compared with databases that the host queries for each read?
//
// One key holds 10^4 values, which are read in random order. The peers hold the same values in an SQLite table (WAL,
// synchronous NORMAL, prepared statements) and in LMDB (with a read transaction renewed for each read). All stores are
// on this program's disk. The rows "beside a writer" are measured while another process changes one value in each store
// every two milliseconds.
#include "Harness.h"

#include <ORLRegistryKey.h>
#include <ORLString.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <lmdb.h>
#include <random>
#include <sqlite3.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr unsigned kValues = 10000;
constexpr unsigned kSubKeys = 1000;
const char* const kText = "twenty units of text"; // 20
constexpr auto kUser = ORL::RegistryRootKeys::kUser;
constexpr auto kAll = static_cast<ORL::RegistryKeyAccess::Type>(0);

[[noreturn]] void Fail(const char* inWhat)
{
    std::fprintf(stderr, "bench_RegistryBench: %s\n", inWhat);
    std::exit(1);
}

void Check(bool inIsRight, const char* inWhat)
{
    if (!inIsRight) {
        Fail(inWhat);
    }
}

std::string NumberName(unsigned inIndex)
{
    return "window position " + std::to_string(inIndex);
}

std::string TextName(unsigned inIndex)
{
    return "file name " + std::to_string(inIndex);
}

// Hand-written prepared statements on one table.
class Sqlite
{
public:
    explicit Sqlite(const fs::path& inFile)
    {
        Check(sqlite3_open(inFile.c_str(), &mDatabase) == SQLITE_OK, "cannot open the peer's database");
        sqlite3_busy_timeout(mDatabase, 20000);
        Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                "CREATE TABLE IF NOT EXISTS vals(key INTEGER, name TEXT, type INTEGER, data BLOB, PRIMARY KEY(key, "
                "name)) WITHOUT ROWID;"
                "CREATE TABLE IF NOT EXISTS keys(parent INTEGER, name TEXT, id INTEGER, PRIMARY KEY(parent, name)) "
                "WITHOUT ROWID");
        mGet = Prepare("SELECT type, data FROM vals WHERE key = ?1 AND name = ?2");
        mPut = Prepare(
            "INSERT INTO vals VALUES(?1, ?2, ?3, ?4) ON CONFLICT(key, name) DO UPDATE SET type = ?3, data = ?4");
        mFind = Prepare("SELECT id FROM keys WHERE parent = ?1 AND name = ?2");
        mScan = Prepare("SELECT name FROM keys WHERE parent = ?1 ORDER BY name");
        mAdd = Prepare("INSERT OR IGNORE INTO keys VALUES(?1, ?2, ?3)");
    }
    ~Sqlite()
    {
        for (sqlite3_stmt* const statement : {mGet, mPut, mFind, mScan, mAdd}) {
            sqlite3_finalize(statement);
        }
        sqlite3_close(mDatabase);
    }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    void Execute(const char* inText)
    {
        Check(sqlite3_exec(mDatabase, inText, nullptr, nullptr, nullptr) == SQLITE_OK, inText);
    }

    bool Get(const std::string& inName, std::string& outData)
    {
        sqlite3_bind_int(mGet, 1, 1);
        sqlite3_bind_text(mGet, 2, inName.data(), static_cast<int>(inName.size()), SQLITE_STATIC);
        const bool isThere = sqlite3_step(mGet) == SQLITE_ROW;
        if (isThere) {
            outData.assign(static_cast<const char*>(sqlite3_column_blob(mGet, 1)),
                           static_cast<std::size_t>(sqlite3_column_bytes(mGet, 1)));
        }
        sqlite3_reset(mGet);
        return isThere;
    }

    void Put(const std::string& inName, int inType, const void* inData, std::size_t inSize)
    {
        sqlite3_bind_int(mPut, 1, 1);
        sqlite3_bind_text(mPut, 2, inName.data(), static_cast<int>(inName.size()), SQLITE_STATIC);
        sqlite3_bind_int(mPut, 3, inType);
        sqlite3_bind_blob(mPut, 4, inData, static_cast<int>(inSize), SQLITE_STATIC);
        Check(sqlite3_step(mPut) == SQLITE_DONE, "the peer cannot write");
        sqlite3_reset(mPut);
    }

    void Add(int inParent, const std::string& inName, int inId)
    {
        sqlite3_bind_int(mAdd, 1, inParent);
        sqlite3_bind_text(mAdd, 2, inName.data(), static_cast<int>(inName.size()), SQLITE_STATIC);
        sqlite3_bind_int(mAdd, 3, inId);
        Check(sqlite3_step(mAdd) == SQLITE_DONE, "the peer cannot add a key");
        sqlite3_reset(mAdd);
    }

    int Find(int inParent, const std::string& inName)
    {
        sqlite3_bind_int(mFind, 1, inParent);
        sqlite3_bind_text(mFind, 2, inName.data(), static_cast<int>(inName.size()), SQLITE_STATIC);
        const int id = sqlite3_step(mFind) == SQLITE_ROW ? sqlite3_column_int(mFind, 0) : 0;
        sqlite3_reset(mFind);
        return id;
    }

    std::vector<std::string> Scan(int inParent)
    {
        std::vector<std::string> names;
        sqlite3_bind_int(mScan, 1, inParent);
        while (sqlite3_step(mScan) == SQLITE_ROW) {
            names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(mScan, 0)));
        }
        sqlite3_reset(mScan);
        return names;
    }

private:
    sqlite3_stmt* Prepare(const char* inText)
    {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(mDatabase, inText, -1, &statement, nullptr) == SQLITE_OK, inText);
        return statement;
    }

    sqlite3* mDatabase = nullptr;
    sqlite3_stmt* mGet = nullptr;
    sqlite3_stmt* mPut = nullptr;
    sqlite3_stmt* mFind = nullptr;
    sqlite3_stmt* mScan = nullptr;
    sqlite3_stmt* mAdd = nullptr;
};

class Lmdb
{
public:
    explicit Lmdb(const fs::path& inFolder)
    {
        fs::create_directories(inFolder);
        Check(mdb_env_create(&mEnvironment) == 0 && mdb_env_set_mapsize(mEnvironment, std::size_t{64} << 20) == 0
                  && mdb_env_open(mEnvironment, inFolder.c_str(), MDB_NOSYNC, 0600) == 0,
              "cannot open the peer LMDB");
        MDB_txn* transaction = nullptr;
        Check(mdb_txn_begin(mEnvironment, nullptr, 0, &transaction) == 0
                  && mdb_dbi_open(transaction, nullptr, 0, &mTable) == 0 && mdb_txn_commit(transaction) == 0,
              "cannot open the table of LMDB");
        Check(mdb_txn_begin(mEnvironment, nullptr, MDB_RDONLY, &mReader) == 0, "cannot read LMDB");
        mdb_txn_reset(mReader);
    }
    ~Lmdb()
    {
        mdb_txn_abort(mReader);
        mdb_env_close(mEnvironment);
    }
    Lmdb(const Lmdb&) = delete;
    Lmdb& operator=(const Lmdb&) = delete;

    void Put(const std::vector<std::pair<std::string, std::string>>& inValues)
    {
        MDB_txn* transaction = nullptr;
        Check(mdb_txn_begin(mEnvironment, nullptr, 0, &transaction) == 0, "LMDB cannot write");
        for (const auto& value : inValues) {
            MDB_val key = Of(value.first);
            MDB_val data = Of(value.second);
            Check(mdb_put(transaction, mTable, &key, &data, 0) == 0, "LMDB cannot put");
        }
        Check(mdb_txn_commit(transaction) == 0, "LMDB cannot commit");
    }

    bool Get(const std::string& inName, std::string& outData)
    {
        MDB_val key = Of(inName);
        MDB_val data;
        bool isThere = mdb_txn_renew(mReader) == 0;
        isThere = isThere && mdb_get(mReader, mTable, &key, &data) == 0;
        if (isThere) {
            outData.assign(static_cast<const char*>(data.mv_data), data.mv_size);
        }
        mdb_txn_reset(mReader);
        return isThere;
    }

private:
    static MDB_val Of(const std::string& inText) { return MDB_val{inText.size(), const_cast<char*>(inText.data())}; }

    MDB_env* mEnvironment = nullptr;
    MDB_txn* mReader = nullptr;
    MDB_dbi mTable = 0;
};

class Stores
{
public:
    Stores()
    {
        mFolder =
            fs::read_symlink("/proc/self/exe").parent_path() / ("orl-bench-" + std::to_string(std::random_device()()));
        fs::create_directories(mFolder);
        ::setenv("XDG_DATA_HOME", mFolder.c_str(), 1);
    }
    ~Stores() { fs::remove_all(mFolder); }
    Stores(const Stores&) = delete;
    Stores& operator=(const Stores&) = delete;

    fs::path SqliteFile() const { return mFolder / "peer.sqlite"; }
    fs::path LmdbFolder() const { return mFolder / "lmdb"; }

    void Fill()
    {
        Sqlite sqlite(SqliteFile());
        Lmdb lmdb(LmdbFolder());
        ORL::RegistryKey key;
        Check(ORL::ResultSucceeded(key.Create(kUser, ORL::MakeString("Software\\Company\\Product\\Settings"))),
              "no key");
        std::vector<std::pair<std::string, std::string>> values;
        sqlite.Execute("BEGIN");
        for (unsigned i = 0; i < kValues; ++i) {
            values.emplace_back(NumberName(i), std::string(reinterpret_cast<const char*>(&i), sizeof(i)));
            values.emplace_back(TextName(i), kText);
            sqlite.Put(NumberName(i), 4, &i, sizeof(i));
            sqlite.Put(TextName(i), 1, kText, 20);
            Check(key.SetUInt32Value(ORL::MakeString(NumberName(i)), i) == 0, "cannot write a number");
            Check(key.SetStringValue(ORL::MakeString(TextName(i)), std::string(kText)) == 0, "cannot write a text");
        }
        lmdb.Put(values);
        ORL::RegistryKey child;
        for (unsigned i = 0; i < kSubKeys; ++i) {
            sqlite.Add(9, "project " + std::to_string(i), static_cast<int>(1000 + i));
            child.Create(kUser, ORL::MakeString("Software\\Company\\Projects\\project " + std::to_string(i)));
        }
        const char* const levels[] = {"Software", "Company", "Product", "Settings"};
        for (int i = 0; i < 4; ++i) {
            sqlite.Add(i, levels[i], i + 1);
        }
        sqlite.Execute("COMMIT");
    }

private:
    fs::path mFolder;
};

// Changes a value in each store every two milliseconds in a child process, until the destructor kills it.
class Writer
{
public:
    explicit Writer(const Stores& inStores)
    {
        mChild = ::fork();
        if (mChild == 0) {
            Work(inStores);
        }
    }
    ~Writer()
    {
        ::kill(mChild, SIGKILL);
        ::waitpid(mChild, nullptr, 0);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

private:
    [[noreturn]] static void Work(const Stores& inStores)
    {
        Sqlite sqlite(inStores.SqliteFile());
        Lmdb lmdb(inStores.LmdbFolder());
        ORL::RegistryKey key;
        key.Open(kUser, ORL::MakeString("Software\\Company\\Product\\Settings"), kAll);
        for (unsigned round = 0;; ++round) {
            const std::string name = NumberName(round % kValues);
            sqlite.Put(name, 4, &round, sizeof(round));
            lmdb.Put({{name, std::string(reinterpret_cast<const char*>(&round), sizeof(round))}});
            key.SetUInt32Value(ORL::MakeString(name), round);
            ::usleep(2000);
        }
    }

    pid_t mChild = -1;
};

void Reads(Stores& ioStores, bool inBesideAWriter)
{
    Sqlite sqlite(ioStores.SqliteFile());
    Lmdb lmdb(ioStores.LmdbFolder());
    ORL::RegistryKey key;
    Check(key.Open(kUser, ORL::MakeString("Software\\Company\\Product\\Settings"), kAll) == 0, "cannot open the key");
    const std::string suffix = inBesideAWriter ? ", beside a writer" : "";
    const double small = inBesideAWriter ? 0.15 : 0.10;
    const double large = inBesideAWriter ? 1.5 : 1.0;
    std::mt19937 random(1);
    std::vector<std::string> names;
    std::vector<UTF16String> units;
    for (const bool isText : {false, true}) {
        names.clear();
        units.clear();
        for (unsigned i = 0; i < kValues; ++i) {
            const unsigned index = static_cast<unsigned>(random() % kValues);
            names.push_back(isText ? TextName(index) : NumberName(index));
            units.push_back(ORL::MakeString(names.back()));
        }
        const auto ours = [&](std::uint64_t inCount) {
            unsigned number = 0;
            UTF16String text;
            for (std::uint64_t i = 0; i < inCount; ++i) {
                const UTF16String& name = units[i % kValues];
                const ORL::Result result = isText ? key.GetStringValue(name, text) : key.GetUInt32Value(name, number);
                Check(result == 0, "cannot read");
                Bench::DoNotOptimize(number);
            }
        };
        std::string data;
        Bench::Group((isText ? "GetStringValue of 20 units" : "GetUInt32Value") + suffix)
            .Ours("RegistryKey, to SQLite", Bench::AtMost(small, "SQLite, prepared"), ours)
            .Ours("RegistryKey, to LMDB", Bench::AtMost(large, "LMDB, renewed"), ours)
            .Peer("SQLite, prepared",
                  [&](std::uint64_t inCount) {
                      for (std::uint64_t i = 0; i < inCount; ++i) {
                          Check(sqlite.Get(names[i % kValues], data), "SQLite cannot read");
                      }
                  })
            .Peer("LMDB, renewed",
                  [&](std::uint64_t inCount) {
                      for (std::uint64_t i = 0; i < inCount; ++i) {
                          Check(lmdb.Get(names[i % kValues], data), "LMDB cannot read");
                      }
                  })
            .Run();
    }
}

void Writes(Stores& ioStores)
{
    Sqlite sqlite(ioStores.SqliteFile());
    ORL::RegistryKey key;
    Check(key.Open(kUser, ORL::MakeString("Software\\Company\\Product\\Settings"), kAll) == 0, "cannot open the key");
    const std::string name = NumberName(5);
    const UTF16String units = ORL::MakeString(name);
    unsigned ours = 0;
    unsigned theirs = 0;
    Bench::Group("SetUInt32Value that changes the value")
        .Ours("RegistryKey", Bench::AtMost(1.2),
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      Check(key.SetUInt32Value(units, ++ours) == 0, "cannot write");
                  }
              })
        .Peer("SQLite, one transaction each",
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      ++theirs;
                      sqlite.Put(name, 4, &theirs, sizeof(theirs));
                  }
              })
        .Run();
}

void Keys(Stores& ioStores)
{
    Sqlite sqlite(ioStores.SqliteFile());
    const UTF16String path = ORL::MakeString("Software\\Company\\Product\\Settings");
    Bench::Group("Open and close, four levels deep")
        .Ours("RegistryKey", Bench::AtMost(0.3),
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      ORL::RegistryKey key;
                      Check(key.Open(kUser, path, kAll) == 0, "cannot open");
                  }
              })
        .Peer("SQLite, a look-up each level",
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      int key = 0;
                      for (const char* const level : {"Software", "Company", "Product", "Settings"}) {
                          key = sqlite.Find(key, level);
                      }
                      Check(key == 4, "SQLite cannot find");
                  }
              })
        .Run();
    ORL::RegistryKey projects;
    Check(projects.Open(kUser, ORL::MakeString("Software\\Company\\Projects"), kAll) == 0, "cannot open the projects");
    Bench::Group("EnumerateSubKeys of 1000 keys")
        .Ours("RegistryKey", Bench::AtMost(1.0),
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      std::vector<ORL::RegistryKey> keys;
                      projects.EnumerateSubKeys(keys);
                      Check(keys.size() == kSubKeys, "cannot list");
                  }
              })
        .Peer("SQLite, a scan and a look-up each",
              [&](std::uint64_t inCount) {
                  while (inCount-- != 0) {
                      const std::vector<std::string> names = sqlite.Scan(9);
                      for (const std::string& name : names) {
                          Check(sqlite.Find(9, name) != 0, "SQLite cannot find");
                      }
                      Check(names.size() == kSubKeys, "SQLite cannot list");
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    Stores stores;
    stores.Fill();
    Reads(stores, false);
    {
        const Writer writer(stores);
        Reads(stores, true);
    }
    Writes(stores);
    Keys(stores);
    return Bench::Finish();
}
