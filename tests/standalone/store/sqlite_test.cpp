// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "standalone/store/support.h"

namespace {

using namespace store_tests;
using reelhost::sqlite::Cause;
using reelhost::sqlite::Database;
using reelhost::sqlite::Failure;
using reelhost::sqlite::Statement;
using reelhost::sqlite::Transaction;

class SqliteWrapper : public testing::Test {
protected:
  SqliteWrapper() { runSql(file(), "CREATE TABLE t(a, b); INSERT INTO t VALUES(1, 'x'), (2, NULL)"); }
  std::string file() const { return (folder_ / "t.db").native(); }
  template <class Work>
  Failure failureOf(Work work)
  {
    try {
      work();
    } catch (const Failure& failure) {
      return failure;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Failure(Cause::Other, "nothing");
  }

private:
  TempFolder folder_;
};

TEST(SqliteLibrary, IsTheOneThatWasCompiledAgainst)
{
  EXPECT_STREQ(sqlite3_libversion(), SQLITE_VERSION);
  EXPECT_NE(sqlite3_threadsafe(), 0);
}

TEST_F(SqliteWrapper, MissingFileIsNotMade)
{
  const Failure failure = failureOf([&] { Database(file() + ".none", Database::Mode::ReadWrite); });
  EXPECT_EQ(failure.cause(), Cause::CannotOpen);
  EXPECT_STREQ(failure.what(), "unable to open database file: No such file or directory");
  EXPECT_FALSE(std::filesystem::exists(file() + ".none"));
}

TEST_F(SqliteWrapper, FirstValueOfTheFirstRow)
{
  Database database(file(), Database::Mode::ReadWrite);
  EXPECT_EQ(database.integer("SELECT a FROM t ORDER BY a DESC"), 2);
  EXPECT_EQ(database.integer("SELECT a FROM t WHERE a = 3"), 0);
  EXPECT_EQ(database.text("SELECT b FROM t ORDER BY a"), "x");
  EXPECT_EQ(database.text("SELECT b FROM t WHERE a = 3"), "");
}

TEST_F(SqliteWrapper, BoundValuesComeBack)
{
  Database database(file(), Database::Mode::ReadWrite);
  Statement statement(database, "SELECT ?1, ?2, ?3, ?4, typeof(?5), typeof(?6)");
  statement.bind(1, "\xFF").bind(2, std::string_view()).bind(3, std::int64_t{1} << 60).bind(4, -5);
  statement.bindNull(5).bindBlob(6, "ab", 2);
  ASSERT_TRUE(statement.step());
  EXPECT_EQ(statement.text(0), "\xFF");
  EXPECT_EQ(statement.text(1), "");
  EXPECT_FALSE(statement.isNull(1));
  EXPECT_EQ(statement.integer(2), std::int64_t{1} << 60);
  EXPECT_EQ(statement.integer(3), -5);
  EXPECT_EQ(statement.text(4), "null");
  EXPECT_EQ(statement.text(5), "blob");
  EXPECT_FALSE(statement.step());
}

TEST_F(SqliteWrapper, ReadOnlyConnectionRefusesToWrite)
{
  for (const auto mode : {Database::Mode::ReadOnly, Database::Mode::Immutable, Database::Mode::Alone}) {
    Database database(file(), mode);
    EXPECT_EQ(failureOf([&] { database.execute("DELETE FROM t"); }).cause(), Cause::ReadOnly);
    EXPECT_EQ(database.integer("SELECT count(*) FROM t"), 2);
  }
}

TEST_F(SqliteWrapper, CausesAreDistinguished)
{
  Database database(file(), Database::Mode::ReadWrite), other(file(), Database::Mode::ReadWrite);
  EXPECT_EQ(failureOf([&] { Statement(database, "SELECT * FROM none"); }).cause(), Cause::Damaged);
  EXPECT_STREQ(failureOf([&] { Statement(database, "SELECT * FROM none"); }).what(), "no such table: none");
  database.execute("CREATE UNIQUE INDEX i ON t(a)");
  EXPECT_EQ(failureOf([&] { database.execute("INSERT INTO t VALUES(1, 1)"); }).cause(), Cause::Constraint);
  database.execute("BEGIN IMMEDIATE");
  EXPECT_EQ(failureOf([&] { other.execute("BEGIN IMMEDIATE"); }).cause(), Cause::Busy);
  EXPECT_TRUE(database.inTransaction());
  database.execute("COMMIT");
  EXPECT_FALSE(database.inTransaction());
  EXPECT_EQ(failureOf([&] { Statement(database, "SELECT zeroblob(2000000000)").step(); }).cause(), Cause::Other);
}

TEST_F(SqliteWrapper, TryExecuteReturnsFalseWhenAStatementFails)
{
  Database database(file(), Database::Mode::ReadWrite);
  EXPECT_TRUE(database.tryExecute("INSERT INTO t VALUES(7, 7)"));
  EXPECT_FALSE(database.tryExecute("INSERT INTO none VALUES(7, 7)"));
  EXPECT_EQ(database.integer("SELECT count(*) FROM t WHERE a = 7"), 1);
}

TEST_F(SqliteWrapper, TransactionIsRolledBackWithItsOwner)
{
  Database database(file(), Database::Mode::ReadWrite);
  const std::int64_t before = database.integer("SELECT count(*) FROM t");
  {
    const Transaction transaction(database, Transaction::Kind::Write);
    EXPECT_EQ(transaction.kind(), Transaction::Kind::Write);
    database.execute("INSERT INTO t VALUES(7, 7)");
    EXPECT_TRUE(database.inTransaction());
  }
  EXPECT_FALSE(database.inTransaction());
  EXPECT_EQ(database.integer("SELECT count(*) FROM t"), before);
}

TEST_F(SqliteWrapper, TransactionThatIsCommittedStays)
{
  Database database(file(), Database::Mode::ReadWrite);
  const std::int64_t before = database.integer("SELECT count(*) FROM t");
  {
    Transaction transaction(database, Transaction::Kind::Read);
    EXPECT_EQ(transaction.kind(), Transaction::Kind::Read);
    database.execute("INSERT INTO t VALUES(7, 7)");
    transaction.commit();
    EXPECT_FALSE(database.inTransaction());
  }
  EXPECT_EQ(database.integer("SELECT count(*) FROM t"), before + 1);
}

TEST_F(SqliteWrapper, TransactionThatAnErrorEndedIsNotRolledBackAgain)
{
  Database database(file(), Database::Mode::ReadWrite);
  database.execute("CREATE UNIQUE INDEX i ON t(a)");
  {
    const Transaction transaction(database, Transaction::Kind::Write);
    EXPECT_THROW(database.execute("INSERT OR ROLLBACK INTO t VALUES(1, 1), (1, 1)"), Failure);
    EXPECT_FALSE(database.inTransaction());
  }
  EXPECT_FALSE(database.inTransaction());
}

TEST_F(SqliteWrapper, OnlyAWritingTransactionKeepsOtherWritersAway)
{
  Database database(file(), Database::Mode::ReadWrite), other(file(), Database::Mode::ReadWrite);
  {
    const Transaction reading(database, Transaction::Kind::Read);
    EXPECT_TRUE(other.tryExecute("INSERT INTO t VALUES(7, 7)"));
  }
  const Transaction writing(database, Transaction::Kind::Write);
  EXPECT_FALSE(other.tryExecute("INSERT INTO t VALUES(7, 7)"));
}

TEST_F(SqliteWrapper, StartOfTheFileIsReadAsItLies)
{
  Database database(file(), Database::Mode::ReadWrite);
  EXPECT_EQ(database.readStart(16), std::string("SQLite format 3\0", 16));
  EXPECT_EQ(database.fileSize(), static_cast<std::int64_t>(std::filesystem::file_size(file())));
  writeBytes(file() + ".short", "abc");
  Database small(file() + ".short", Database::Mode::ReadOnly);
  EXPECT_EQ(small.readStart(100), "abc");
}

TEST_F(SqliteWrapper, MovedFileIsNoticed)
{
  Database database(file(), Database::Mode::ReadWrite);
  EXPECT_FALSE(database.moved());
  std::filesystem::rename(file(), file() + ".away");
  EXPECT_TRUE(database.moved());
}

TEST_F(SqliteWrapper, CopyToAFileThatAnotherHoldsFails)
{
  const std::string copy = file() + ".copy";
  writeBytes(copy, "");
  Database holder(copy, Database::Mode::ReadWrite);
  holder.execute("BEGIN IMMEDIATE; CREATE TABLE other(a)");
  Database database(file(), Database::Mode::ReadWrite);
  EXPECT_EQ(failureOf([&] { database.copyTo(copy); }).cause(), Cause::Busy);
  holder.execute("ROLLBACK");
  database.copyTo(copy);
  EXPECT_EQ(runSql(copy, "SELECT count(*) FROM t"), "2");
}

TEST_F(SqliteWrapper, LogIsKeptOnCloseWhenAsked)
{
  runSql(file(), "PRAGMA journal_mode = WAL");
  for (const bool keep : {true, false}) {
    {
      Database database(file(), Database::Mode::ReadWrite);
      database.keepLogOnClose(keep);
      database.execute("INSERT INTO t VALUES(3, 3)");
    }
    EXPECT_EQ(std::filesystem::exists(file() + "-wal"), keep);
  }
  EXPECT_EQ(runSql(file(), "SELECT count(*) FROM t"), "4");
}

} // namespace
