#include "config/store.h"

#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include <sqlite3.h>

#include "config/schema.h"

namespace agent {

namespace {

constexpr int APPLICATION_ID = 0x4f465053; // tells such a file from other databases

struct Finalize {
    void operator()(sqlite3 *database) const { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Finalize>;
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

// A statement in use, reset with its scope.
class Run {
public:
    explicit Run(const Statement &statement) : statement_(statement.get()) {}
    ~Run()
    {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    int step() { return sqlite3_step(statement_); }
    bool done() { return step() == SQLITE_DONE; }

private:
    sqlite3_stmt *statement_;
};

bool bind_text(sqlite3_stmt *statement, int at, std::string_view text)
{
    return sqlite3_bind_text64(statement, at, text.data(), text.size(), SQLITE_STATIC,
                               SQLITE_UTF8) == SQLITE_OK;
}

bool bind(sqlite3_stmt *statement, int at, const StoredValue &value)
{
    if (const auto *const number = std::get_if<int64_t>(&value)) {
        return sqlite3_bind_int64(statement, at, *number) == SQLITE_OK;
    }
    if (const auto *const text = std::get_if<std::string>(&value)) {
        return bind_text(statement, at, *text);
    }
    const auto &bytes = std::get<StoredBytes>(value);
    const void *const data = bytes.empty() ? "" : static_cast<const void *>(bytes.data());
    return sqlite3_bind_blob64(statement, at, data, bytes.size(), SQLITE_STATIC) == SQLITE_OK;
}

StoredValue column(sqlite3_stmt *statement, int at)
{
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, at));
    switch (sqlite3_column_type(statement, at)) {
    case SQLITE_INTEGER:
        return sqlite3_column_int64(statement, at);
    case SQLITE_TEXT: {
        const auto *const text = reinterpret_cast<const char *>(sqlite3_column_text(statement, at));
        return std::string(text ? text : "", text ? size : 0);
    }
    case SQLITE_BLOB: {
        const auto *const bytes = static_cast<const uint8_t *>(sqlite3_column_blob(statement, at));
        return bytes ? StoredBytes(bytes, bytes + size) : StoredBytes();
    }
    default:
        return std::monostate{};
    }
}

class SqliteStore : public Store {
public:
    // Empty, or why the file cannot be used.
    std::string open(const std::string &path);

    std::string read(std::vector<StoredRow> &rows) override;
    std::string write(std::span<const StoredRow> rows) override;

private:
    struct Transaction;

    bool execute(const char *sql);
    bool prepare(const char *sql, Statement &statement);
    std::optional<int64_t> number(const char *sql); // what a query for one number gives
    std::string lock();
    std::string check();
    bool make();
    bool write(const StoredRow &row);
    bool put(const StoredRow &row);
    bool remove(const std::string &key);
    std::string failure(const char *what) const
    {
        return std::string(what) + ": " + sqlite3_errmsg(database_.get());
    }

    Database database_;
    Statement begin_;
    Statement commit_;
    Statement rollback_;
    Statement put_;
    Statement remove_;
    Statement remove_below_;
};

bool SqliteStore::execute(const char *sql)
{
    return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool SqliteStore::prepare(const char *sql, Statement &statement)
{
    sqlite3_stmt *prepared = nullptr;
    const int code =
        sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    return code == SQLITE_OK;
}

std::optional<int64_t> SqliteStore::number(const char *sql)
{
    Statement statement;
    if (!prepare(sql, statement) || sqlite3_step(statement.get()) != SQLITE_ROW) {
        return std::nullopt;
    }
    return sqlite3_column_int64(statement.get(), 0);
}

// ---- Opening

// The file is one process's alone. A commit is on the disk before it is answered.
std::string SqliteStore::lock()
{
    if (execute("PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = WAL;"
                "PRAGMA synchronous = FULL; BEGIN EXCLUSIVE; COMMIT")) {
        return {};
    }
    switch (sqlite3_errcode(database_.get())) {
    case SQLITE_BUSY:
        return "it is in use by another process";
    case SQLITE_NOTADB:
        return "it is not a store of this agent";
    default:
        return failure("it cannot be used");
    }
}

std::string SqliteStore::check()
{
    const auto application = number("PRAGMA application_id");
    const auto version = number("PRAGMA user_version");
    const auto tables = number("SELECT count(*) FROM sqlite_schema");
    if (!application || !version || !tables) {
        return failure("it is damaged");
    }
    if (*application == 0 && *version == 0 && *tables == 0) {
        return make() ? std::string() : failure("it cannot be set up");
    }
    if (*application != APPLICATION_ID) {
        return "it is a database, but not a store of this agent";
    }
    if (*version != SCHEMA_VERSION) {
        return "it has the form of version " + std::to_string(*version) + ", this agent knows " +
               std::to_string(SCHEMA_VERSION);
    }
    Statement statement;
    if (!prepare("PRAGMA quick_check(1)", statement) ||
        sqlite3_step(statement.get()) != SQLITE_ROW) {
        return failure("it is damaged");
    }
    const StoredValue found = column(statement.get(), 0);
    const auto *const text = std::get_if<std::string>(&found);
    return text && *text == "ok" ? std::string()
                                 : "it is damaged: " + (text ? *text : "no answer to the check");
}

bool SqliteStore::make()
{
    const std::string sql = "BEGIN;"
                            "CREATE TABLE setting (key TEXT PRIMARY KEY NOT NULL, value ANY NOT "
                            "NULL) STRICT, WITHOUT ROWID;"
                            "PRAGMA application_id = " +
                            std::to_string(APPLICATION_ID) +
                            ";"
                            "PRAGMA user_version = " +
                            std::to_string(SCHEMA_VERSION) +
                            ";"
                            "COMMIT";
    return execute(sql.c_str());
}

std::string SqliteStore::open(const std::string &path)
{
    sqlite3 *opened = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &opened,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE |
                                         SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
                                     nullptr);
    database_.reset(opened);
    if (code != SQLITE_OK) {
        return opened ? failure("it cannot be opened") : "memory is short";
    }
    std::string why_not = lock();
    if (why_not.empty()) {
        why_not = check();
    }
    if (!why_not.empty()) {
        return why_not;
    }
    const bool prepared =
        prepare("BEGIN IMMEDIATE", begin_) && prepare("COMMIT", commit_) &&
        prepare("ROLLBACK", rollback_) &&
        prepare("INSERT OR REPLACE INTO setting (key, value) VALUES (?1, ?2)", put_) &&
        prepare("DELETE FROM setting WHERE key = ?1", remove_) &&
        // '0' follows '/'
        prepare("DELETE FROM setting WHERE key >= ?1 || '/' AND key < ?1 || '0'", remove_below_);
    return prepared ? std::string() : failure("it cannot be used");
}

// ---- Reading and writing

std::string SqliteStore::read(std::vector<StoredRow> &rows)
{
    Statement statement;
    if (!prepare("SELECT key, value FROM setting ORDER BY key", statement)) {
        return failure("it cannot be read");
    }
    int code = sqlite3_step(statement.get());
    for (; code == SQLITE_ROW; code = sqlite3_step(statement.get())) {
        rows.push_back(
            {std::get<std::string>(column(statement.get(), 0)), column(statement.get(), 1)});
    }
    return code == SQLITE_DONE ? std::string() : failure("it cannot be read");
}

bool SqliteStore::put(const StoredRow &row)
{
    Run run(put_);
    return bind_text(put_.get(), 1, row.key) && bind(put_.get(), 2, row.value) && run.done();
}

bool SqliteStore::remove(const std::string &key)
{
    std::string_view name = key;
    const bool below = name.ends_with('/');
    if (below) {
        name.remove_suffix(1);
    }
    const Statement &statement = below ? remove_below_ : remove_;
    Run run(statement);
    return bind_text(statement.get(), 1, name) && run.done();
}

bool SqliteStore::write(const StoredRow &row)
{
    return std::holds_alternative<std::monostate>(row.value) ? remove(row.key) : put(row);
}

// Ends with its scope, undone unless it was committed.
struct SqliteStore::Transaction {
    explicit Transaction(SqliteStore &store) : store_(store) {}
    ~Transaction()
    {
        if (sqlite3_get_autocommit(store_.database_.get()) == 0) {
            Run(store_.rollback_).step();
        }
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    bool begin() { return Run(store_.begin_).done(); }
    bool commit() { return Run(store_.commit_).done(); }

private:
    SqliteStore &store_;
};

std::string SqliteStore::write(std::span<const StoredRow> rows)
{
    if (rows.size() == 1) { // a transaction of its own
        return write(rows.front()) ? std::string() : failure("it cannot be written");
    }
    Transaction transaction(*this);
    if (!transaction.begin()) {
        return failure("no transaction can begin");
    }
    for (const StoredRow &row : rows) {
        if (!write(row)) {
            return failure("it cannot be written");
        }
    }
    return transaction.commit() ? std::string() : failure("it cannot be written");
}

// A file of its owner's alone; empty, or why there is none.
std::string make_file(const std::string &path)
{
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (fd < 0) {
        return std::strerror(errno);
    }
    ::close(fd);
    return {};
}

} // namespace

std::unique_ptr<Store> open_store(const std::string &path, std::string &why_not)
{
    auto store = std::make_unique<SqliteStore>();
    why_not = path == STORE_IN_MEMORY ? std::string() : make_file(path);
    if (why_not.empty()) {
        why_not = store->open(path);
    }
    if (!why_not.empty()) {
        why_not = "the configuration " + path + ": " + why_not;
        store.reset();
    }
    return store;
}

} // namespace agent
