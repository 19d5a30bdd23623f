#include "OrvanStore/connection.h"

#include <gmock/gmock.h>

#include <chrono>

#include "OrvanStore/store_error.h"
#include "OrvanStore/transaction.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using testing::AllOf;
using testing::Property;
using testing::Throws;

Connection notesInMemory(std::size_t statementCacheCapacity = 128) {
  ConnectionConfiguration configuration;
  configuration.mode = OpenMode::readWrite;
  configuration.statementCacheCapacity = statementCacheCapacity;
  Connection connection(":memory:", configuration);
  connection.executeScript("CREATE TABLE note (id INTEGER PRIMARY KEY, text)");
  return connection;
}

std::vector<sqlite3_stmt*> compiledStatements(Connection& connection) {
  std::vector<sqlite3_stmt*> statements;
  for (auto* next = sqlite3_next_stmt(connection.handle(), nullptr); next != nullptr;
       next = sqlite3_next_stmt(connection.handle(), next)) {
    statements.push_back(next);
  }
  return statements;
}

TEST(Statements, AreCompiledOnceForEachTextAndStartFreshEachTime) {
  auto connection = notesInMemory();
  connection.execute("INSERT INTO note (text) VALUES (?)", "first");
  const auto compiled = compiledStatements(connection);
  ASSERT_EQ(compiled.size(), 1U);
  connection.execute("INSERT INTO note (text) VALUES (?)");
  EXPECT_EQ(compiledStatements(connection), compiled);
  EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM note WHERE text IS NULL"), 1);
}

TEST(Statements, RunTwiceAtOnceWithTheSameText) {
  auto connection = notesInMemory();
  connection.executeScript("INSERT INTO note VALUES (1, 'a'), (2, 'b')");
  auto outer = connection.query("SELECT text FROM note ORDER BY id");
  ASSERT_TRUE(outer.next());
  auto inner = connection.query("SELECT text FROM note ORDER BY id");
  ASSERT_TRUE(inner.next() && outer.next());
  EXPECT_EQ(inner.text(Column{0}), "a");
  EXPECT_EQ(outer.text(Column{0}), "b");
}

TEST(Statements, MakeRoomForEachOtherOnceThereAreTooMany) {
  auto connection = notesInMemory(2);
  for (const char* text : {"SELECT 1", "SELECT 2", "SELECT 1", "SELECT 3"}) {
    connection.execute(text);
  }
  std::vector<std::string> kept;
  for (auto* statement : compiledStatements(connection)) {
    kept.emplace_back(sqlite3_sql(statement));
  }
  EXPECT_THAT(kept, testing::UnorderedElementsAre("SELECT 1", "SELECT 3"));
}

TEST(Rows, GiveTextAsItIsAndAbsenceForNull) {
  auto connection = notesInMemory();
  connection.execute("INSERT INTO note VALUES (?, ?)", 1, std::string_view{"a\0b\xff", 4});
  connection.execute("INSERT INTO note VALUES (?, ?)", 2, "");
  connection.execute("INSERT INTO note VALUES (?, ?)", 3, std::optional<std::string>{});
  auto rows = connection.query("SELECT text FROM note ORDER BY id");
  const Column text = rows.column("text");
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.optionalText(text), (std::string_view{"a\0b\xff", 4}));
  EXPECT_EQ(rows.optionalText(rows.column("no such column")), std::nullopt);
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.optionalText(text), "");
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.optionalText(text), std::nullopt);
  EXPECT_EQ(faultOf([&] { rows.text(text); }), StoreFault::columnIsNull);
  EXPECT_FALSE(rows.next());
}

TEST(Rows, NeverConvertANumberOrABlobToText) {
  auto connection = notesInMemory();
  for (const char* value : {"7", "7.5", "x'6162'"}) {
    auto rows = connection.query(std::string{"SELECT "} + value);
    ASSERT_TRUE(rows.next());
    EXPECT_EQ(rows.optionalText(Column{0}), std::nullopt) << value;
    EXPECT_EQ(faultOf([&] { return rows.text(Column{0}); }), StoreFault::columnIsNotText) << value;
  }
}

TEST(Faults, CarryTheExtendedCodeAndTheStatementButNoBoundValue) {
  auto connection = notesInMemory();
  const std::string insertion = "INSERT INTO note VALUES (?, ?)";
  connection.execute(insertion, 7, "kept");
  EXPECT_THAT([&] { connection.execute(insertion, 7, "private words"); },
              Throws<StoreError>(AllOf(Property(&StoreError::extendedCode, SQLITE_CONSTRAINT_PRIMARYKEY),
                                       Property(&StoreError::statement, insertion),
                                       Property(&StoreError::what, testing::Not(testing::HasSubstr("private"))))));
  EXPECT_THAT([&] { connection.execute("SELECT nonsense"); },
              Throws<StoreError>(Property(&StoreError::statement, "SELECT nonsense")));
}

TEST(Transactions, EndAsTheyBeganWhateverIsThrown) {
  auto connection = notesInMemory();
  const auto insert = [](Connection& inside) {
    inside.execute("INSERT INTO note VALUES (1, 'a')");
    return inside.changes();
  };
  const auto insertAndThrow = [&](Connection& inside) {
    insert(inside);
    throw 7;
  };
  EXPECT_THROW(inTransaction(connection, TransactionKind::write, insertAndThrow), int);
  EXPECT_FALSE(connection.isInTransaction());
  EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM note"), 0);
  EXPECT_EQ(inTransaction(connection, TransactionKind::write, insert), 1);
  EXPECT_EQ(connection.fetchOptionalText("SELECT text FROM note"), "a");
}

TEST(Transactions, WaitForTheWriteLockAsLongAsTheConnectionWasPreparedTo) {
  const ScratchFolder folder;
  ConnectionConfiguration configuration;
  configuration.prepare = [](Connection& prepared) {
    prepared.executeScript("PRAGMA journal_mode = WAL; PRAGMA busy_timeout = 20");
  };
  Connection holder(folder.path() / "store.db", configuration);
  Connection waiting(folder.path() / "store.db", configuration);
  const Transaction held(holder, TransactionKind::write);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT([&] { const Transaction vain(waiting, TransactionKind::write); },
              Throws<StoreError>(Property(&StoreError::extendedCode, SQLITE_BUSY)));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds{20});
  EXPECT_EQ(waiting.fetchOptionalInteger("PRAGMA busy_timeout"), 20) << "SQLite's own waiting is back in force";
}

} // namespace
} // namespace orvan
