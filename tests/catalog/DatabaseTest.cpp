#include "catalog/sql/Database.h"
#include "base/UserError.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvo {

namespace {

template <typename Call>
DatabaseError errorOf(Call call)
{
    try {
        call();
    } catch (const DatabaseError& error) {
        return error;
    }
    throw std::logic_error("nothing was thrown");
}

} // namespace

TEST(Database, errorsCarrySQLitesMessageAndTheStatement)
{
    const TemporaryFolder folder;
    Database db(folder / "a.sqlite");
    db.exec("CREATE TABLE t (x INTEGER NOT NULL)");

    const auto compiling = errorOf([&] { db.prepare("SELECT y FROM t"); });
    EXPECT_EQ(compiling.which(), DatabaseError::Case::prepare);
    EXPECT_STREQ(compiling.what(), "Catalog error: no such column: y [SELECT y FROM t]");

    const auto running = errorOf([&] { db.run("INSERT INTO t VALUES (?)", std::nullopt); });
    EXPECT_EQ(running.which(), DatabaseError::Case::step);
    EXPECT_STREQ(running.what(), "Catalog error: NOT NULL constraint failed: t.x [INSERT INTO t VALUES (?)]");

    const auto opening = errorOf([&] { Database(folder / "none" / "a.sqlite"); });
    EXPECT_EQ(opening.which(), DatabaseError::Case::open);
    EXPECT_STREQ(opening.what(), "Couldn't open library: unable to open database file");
}

TEST(Database, whatThePhotographerCanMendIsSaidWithoutSQL)
{
    const TemporaryFolder folder;
    const auto file = folder / "a.sqlite";
    Database db(file);
    db.exec("CREATE TABLE t (x)");
    const auto insert = "INSERT INTO t VALUES (zeroblob(100000))";
    const auto busy = errorOf([&] {
        Database other(file);
        const Transaction writing(other);
        Transaction(db, std::chrono::milliseconds(1));
    });
    const auto readOnly = errorOf([&] {
        db.exec("PRAGMA query_only = ON");
        db.exec(insert);
    });
    const auto full = errorOf([&] {
        db.exec("PRAGMA query_only = OFF; PRAGMA max_page_count = 3");
        db.exec(insert);
    });
    const auto text = folder.write("text.sqlite", std::string(5000, 'x'));
    const auto foreign = errorOf([&] { Database::openReadOnly(text).exec("SELECT * FROM t"); });
    EXPECT_EQ(textForUser(busy), "Something else is writing to this library. Try again when it is done.");
    EXPECT_EQ(textForUser(readOnly),
        "The library cannot be written. Make its disk, its folder and its files writable, then try again.");
    EXPECT_EQ(textForUser(full), "The library's disk is full. Free some space there, then try again.");
    EXPECT_EQ(textForUser(foreign).rfind("The library's catalog.sqlite is no catalog. Choose", 0), 0U);
    EXPECT_EQ(textForUser(DatabaseError::open("no", SQLITE_CANTOPEN_ISDIR)),
        "Couldn't open library: no. See that its disk is connected and that you may read and write its "
        "folder, then try again.");
}

TEST(Database, aDiskThatCannotBeReadIsNoDamageOfTheLibrary)
{
    const TemporaryFolder folder;
    Database(folder / "a.sqlite").exec("CREATE TABLE t (x); INSERT INTO t VALUES (zeroblob(20000))");
    Database db(folder / "a.sqlite");
    db.exec("PRAGMA journal_mode = DELETE");
    const auto readBy = [vfs = sqlite3_vfs_find(nullptr)](sqlite3_syscall_ptr call) {
        for (const auto* const name : {"pread", "pread64"})
            vfs->xSetSystemCall(vfs, name, call);
    };
    const auto failing = +[](int, void*, std::size_t, off_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    readBy(reinterpret_cast<sqlite3_syscall_ptr>(failing));
    const auto away = errorOf([&] { db.scalar("SELECT sum(length(x)) FROM t WHERE x > 1"); });
    readBy(nullptr); // the system's own
    EXPECT_EQ(textForUser(away),
        "The library's disk cannot be read or written. See that it is connected and sound, then try again.");
    folder.write("a.sqlite", readFile(folder / "a.sqlite").substr(0, 4096) + std::string(30000, 'x'));
    auto other = Database::openExisting(folder / "a.sqlite");
    const auto damaged = errorOf([&] { other.scalar("SELECT sum(length(x)) FROM t WHERE x > 1"); });
    EXPECT_EQ(textForUser(damaged).rfind("The library is damaged.", 0), 0U);
}

TEST(Transaction, leavesTheConnectionToOthersWhileItWaits)
{
    const TemporaryFolder folder;
    Database db(folder / "a.sqlite");
    db.exec("CREATE TABLE t (x)");
    Database other(folder / "a.sqlite");
    auto writing = std::make_optional<Transaction>(other);
    std::thread waiting([&] {
        Transaction change(db);
        db.exec("INSERT INTO t VALUES (1)");
        change.commit();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM t"), 0) << "read while the change waits";
    writing.reset();
    waiting.join();
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM t"), 1);
}

TEST(Database, queryKeepsStorageClassesAndLeavesNullsOut)
{
    const TemporaryFolder folder;
    Database db(folder / "a.sqlite");
    const auto rows
        = db.query("SELECT 9007199254740993 AS i, 0.5 AS d, 'Jürgen' AS t, x'00ff' AS b, NULL AS n");
    ASSERT_EQ(rows.size(), 1U);
    const Row expected{{"i", std::int64_t{9007199254740993}}, {"d", 0.5}, {"t", std::string("Jürgen")},
        {"b", std::vector<std::uint8_t>{0, 255}}};
    EXPECT_EQ(rows.front(), expected);
    EXPECT_EQ(db.scalar("SELECT 1 WHERE 0"), 0);
}

TEST(Database, keptStatementsMayBeUsedInsideEachOther)
{
    const TemporaryFolder folder;
    Database db(folder / "a.sqlite");
    constexpr auto sql = "SELECT ? + 1";
    auto outer = db.kept(sql);
    outer.bind(1);
    ASSERT_TRUE(outer.step());
    EXPECT_EQ(db.scalar(sql, 10), 11);
    EXPECT_EQ(outer.integer(0), 2);
}

TEST(Database, textWithZeroBytesAndInvalidUtf8SurvivesAndEmptyTextIsNotNull)
{
    const TemporaryFolder folder;
    Database db(folder / "a.sqlite");
    db.exec("CREATE TABLE t (x TEXT NOT NULL)");
    const std::string odd("a\0b\xFF", 4);
    db.run("INSERT INTO t VALUES (?)", odd);
    db.run("INSERT INTO t VALUES (?)", std::string_view());
    const auto rows = db.query("SELECT x FROM t ORDER BY rowid");
    EXPECT_EQ(std::get<std::string>(rows[0].at("x")), odd);
    EXPECT_EQ(std::get<std::string>(rows[1].at("x")), "");
}

TEST(Transaction, rollsBackWhatIsNotCommittedAndNests)
{
    const TemporaryFolder folder;
    Database db(folder / "a.sqlite");
    db.exec("CREATE TABLE t (x)");
    {
        Transaction outer(db);
        db.exec("INSERT INTO t VALUES (1)");
        {
            const Transaction inner(db);
            db.exec("INSERT INTO t VALUES (2)");
        }
        {
            Transaction inner(db);
            db.exec("INSERT INTO t VALUES (3)");
            inner.commit();
        }
        outer.commit();
    }
    {
        const Transaction abandoned(db);
        db.exec("INSERT INTO t VALUES (4)");
    }
    EXPECT_EQ(db.scalar("SELECT group_concat(x, '') FROM t"), 13);
}

TEST(Database, opensReadOnlyWithoutATraceWhateverThePathHolds)
{
    const TemporaryFolder folder;
    for (const std::string name : {"plain", "a?b=c#d%20e", "it's \"odd\"", "latin\xE9", "桜"}) {
        SCOPED_TRACE(name);
        const auto file = folder / name / "a.sqlite";
        std::filesystem::create_directories(file.parent_path());
        {
            Database db(file);
            db.exec("CREATE TABLE t (x); INSERT INTO t VALUES (7)");
        }
        const auto before = readFile(file);
        auto db = Database::openReadOnly(file);
        EXPECT_EQ(db.scalar("SELECT x FROM t"), 7);
        EXPECT_THROW(db.exec("DELETE FROM t"), DatabaseError);
        EXPECT_EQ(readFile(file), before);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1);
    }
}

} // namespace korvo
