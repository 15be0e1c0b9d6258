#include "config/store.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace agent::test {
namespace {

using Rows = std::vector<StoredRow>;

class StoreTest : public testing::Test {
protected:
    StoreTest()
    {
        char name[] = "/tmp/ofp-store-XXXXXX";
        directory_ = mkdtemp(name);
        path_ = directory_ + "/agent.db";
    }
    ~StoreTest() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }

    std::unique_ptr<Store> open() { return open_store(path_, why_not_); }
    // Why the file is refused; empty when it is not.
    std::string refusal()
    {
        const auto store = open();
        EXPECT_EQ(store == nullptr, !why_not_.empty());
        return why_not_;
    }
    Rows rows()
    {
        Rows rows;
        const auto store = open();
        EXPECT_NE(store, nullptr) << why_not_;
        EXPECT_EQ(store ? store->read(rows) : "", "");
        return rows;
    }
    // A store with one row, closed.
    void make() { EXPECT_EQ(open()->write(Rows{{"switch/ignore", 1}}), ""); }

    void execute(const char *sql) const
    {
        sqlite3 *database = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
    std::string contents() const
    {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void write_file(const std::string &text) const
    {
        std::ofstream(path_, std::ios::binary) << text;
    }

    std::string directory_;
    std::string path_;
    std::string why_not_;
};

TEST_F(StoreTest, KeepsValuesOfEveryKindInTheOrderOfTheirKeys)
{
    const Rows written = {
        {"a/1", 7},
        {"a/2", INT64_MIN},
        {"b", "text"},
        {"c", std::string()},
        {"d", std::string("\0\xff", 2)},
        {"e", StoredBytes{0, 1, 255}},
        {"f", StoredBytes{}},
    };
    Rows shuffled = written;
    std::reverse(shuffled.begin(), shuffled.end());
    EXPECT_EQ(open()->write(shuffled), "");
    EXPECT_EQ(rows(), written);
}

TEST_F(StoreTest, ReplacesAndRemovesRowsAndAllBelowASlash)
{
    const auto store = open();
    EXPECT_EQ(store->write(Rows{
                  {"i/5", 1}, {"i/5/a", 1}, {"i/5/b/c", 1}, {"i/50/a", 1}, {"i/5-", 1}, {"x", 1}}),
              "");
    EXPECT_EQ(
        store->write(Rows{{"i/5/", std::monostate{}}, {"x", 2}, {"not/there", std::monostate{}}}),
        "");
    Rows rows;
    EXPECT_EQ(store->read(rows), "");
    EXPECT_EQ(rows, (Rows{{"i/5", 1}, {"i/5-", 1}, {"i/50/a", 1}, {"x", 2}}));
    EXPECT_EQ(store->write(Rows{{"x", std::monostate{}}}), "");
    rows.clear();
    EXPECT_EQ(store->read(rows), "");
    EXPECT_EQ(rows.size(), 3u);
}

TEST_F(StoreTest, IsReadableByItsOwnerAlone)
{
    make();
    struct stat status {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(StoreTest, InMemoryLeavesNoFile)
{
    const auto store = open_store(STORE_IN_MEMORY, why_not_);
    ASSERT_NE(store, nullptr) << why_not_;
    EXPECT_EQ(store->write(Rows{{"a", 1}}), "");
    Rows rows;
    EXPECT_EQ(store->read(rows), "");
    EXPECT_EQ(rows.size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(STORE_IN_MEMORY));
}

// ---- Files that are refused, and left as they are

TEST_F(StoreTest, RefusesAFileThatIsNoDatabase)
{
    const std::string text = "This is somebody's text, longer than the header of a database file. "
                             "It must be found again as it was written, whatever is tried with it.";
    write_file(text);
    EXPECT_EQ(refusal(), "the configuration " + path_ + ": it is not a store of this agent");
    EXPECT_EQ(contents(), text);
}

TEST_F(StoreTest, RefusesADatabaseOfAnotherProgram)
{
    execute("CREATE TABLE theirs (a); INSERT INTO theirs VALUES (1)");
    const std::string before = contents();
    EXPECT_EQ(refusal(),
              "the configuration " + path_ + ": it is a database, but not a store of this agent");
    execute("SELECT a FROM theirs");
    EXPECT_FALSE(before.empty());
}

TEST_F(StoreTest, RefusesTheFormOfALaterVersion)
{
    make();
    execute("PRAGMA user_version = 2");
    EXPECT_EQ(refusal(),
              "the configuration " + path_ + ": it has the form of version 2, this agent knows 1");
    execute("PRAGMA user_version = 1");
    EXPECT_EQ(rows(), (Rows{{"switch/ignore", 1}}));
}

TEST_F(StoreTest, RefusesAStoreWithoutItsTable)
{
    make();
    execute("DROP TABLE setting");
    EXPECT_NE(refusal().find("no such table: setting"), std::string::npos) << why_not_;
}

TEST_F(StoreTest, RefusesADamagedFileOrReadsItWholeNeverInPart)
{
    {
        Rows many;
        for (int i = 0; i < 2000; ++i) {
            many.push_back({"row/" + std::to_string(100'000 + i), std::string(40, 'x')});
        }
        EXPECT_EQ(open()->write(many), "");
    }
    const std::string whole = contents();
    ASSERT_GT(whole.size(), 20u * 4096u);
    size_t refused = 0;
    for (size_t page = 0; page < whole.size(); page += 4096) {
        std::string damaged = whole;
        damaged.replace(page, 100, 100, '\xee');
        write_file(damaged);
        const auto store = open();
        if (!store) {
            ++refused;
            EXPECT_FALSE(why_not_.empty());
            EXPECT_EQ(contents(), damaged);
        }
    }
    EXPECT_EQ(refused, whole.size() / 4096);
    write_file(whole.substr(0, whole.size() / 2));
    EXPECT_EQ(open(), nullptr);
}

TEST_F(StoreTest, RefusesAFileThatAnotherProcessUses)
{
    const auto first = open();
    ASSERT_NE(first, nullptr);
    const pid_t child = fork(); // locks are a process's
    if (child == 0) {
        std::string why_not;
        const auto second = open_store(path_, why_not);
        _exit(!second && why_not.ends_with("it is in use by another process") ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(StoreTest, SaysWhyAFileCannotBeMade)
{
    path_ = directory_ + "/nowhere/agent.db";
    EXPECT_EQ(refusal(), "the configuration " + path_ + ": No such file or directory");
    path_ = directory_;
    EXPECT_EQ(refusal(), "the configuration " + path_ + ": Is a directory");
}

// ---- Writing

TEST_F(StoreTest, WritesNothingOfATransactionThatDoesNotFitTheDisk)
{
    make();
    const Rows many(2000, {"row", StoredBytes(1000)});
    Rows distinct;
    for (const StoredRow &row : many) {
        distinct.push_back({row.key + std::to_string(distinct.size()), row.value});
    }
    const pid_t child = fork(); // the limit is for the rest of a process's life
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{300'000, 300'000};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::string why_not;
        const auto store = open_store(path_, why_not);
        const bool refused = store && !store->write(distinct).empty();
        Rows rows;
        const bool unchanged =
            store && store->read(rows).empty() && rows == Rows{{"switch/ignore", 1}};
        const bool goes_on = store && store->write(Rows{{"switch/ignore", 2}}).empty();
        _exit(refused && unchanged && goes_on ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(rows(), (Rows{{"switch/ignore", 2}}));
}

TEST_F(StoreTest, HoldsWholeTransactionsAfterItsWriterWasKilled)
{
    make();
    for (int turn = 0; turn < 10; ++turn) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            std::string why_not;
            const auto store = open_store(path_, why_not);
            for (int64_t i = 1; store; ++i) {
                const bool stored = store->write(Rows{{"a", i}, {"b", i}}).empty();
                if (!stored || write(ends[1], &i, sizeof i) != sizeof i) {
                    break;
                }
            }
            _exit(1);
        }
        close(ends[1]);
        int64_t told = 0;
        while (told < 5 + 3 * turn && read(ends[0], &told, sizeof told) == sizeof told) {
        }
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        while (read(ends[0], &told, sizeof told) == sizeof told) {
        }
        close(ends[0]);
        const Rows found = rows();
        ASSERT_EQ(found.size(), 3u);
        EXPECT_EQ(found[0].value, found[1].value);
        EXPECT_GE(std::get<int64_t>(found[0].value), told);
        EXPECT_LE(std::get<int64_t>(found[0].value), told + 1);
    }
}

} // namespace
} // namespace agent::test
