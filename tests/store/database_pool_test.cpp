#include "OrvanStore/database_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "OrvanStore/store_error.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

class Pool : public testing::Test {
 protected:
  DatabasePool makePool(std::size_t mostReaders) { return makePool(mostReaders, folder_.path() / "pool.db"); }
  DatabasePool makePool(std::size_t mostReaders, const std::filesystem::path& file) {
    DatabasePool::Configuration configuration;
    configuration.mostReaders = mostReaders;
    configuration.connection.prepare = [this](Connection& connection) {
      ++opened_;
      if (opened_ == failingOpening_) {
        throw StoreError(StoreFault::rowMissing, "a preparation that fails");
      }
      connection.executeScript("PRAGMA journal_mode = WAL; CREATE TABLE IF NOT EXISTS note (text)");
    };
    return {file, std::move(configuration)};
  }

  static std::int64_t notes(Connection& connection) {
    return connection.fetchOptionalInteger("SELECT count(*) FROM note").value_or(-1);
  }
  static void addNote(Connection& connection) { connection.execute("INSERT INTO note VALUES ('a')"); }

  ScratchFolder folder_;
  std::atomic<int> opened_ = 0;
  std::atomic<int> failingOpening_ = -1;
};

TEST_F(Pool, OpensAReaderWhenOneIsNeededAndKeepsIt) {
  auto pool = makePool(4);
  pool.write(addNote);
  EXPECT_EQ(pool.readOnWriter(notes), 1);
  EXPECT_EQ(opened_, 1);
  for (int times = 0; times < 3; ++times) {
    EXPECT_EQ(pool.read(notes), 1);
  }
  EXPECT_EQ(opened_, 2);
  EXPECT_EQ(pool.read([&](Connection& /*outer*/) { return pool.read(notes); }), 1);
  EXPECT_EQ(opened_, 3);
}

TEST_F(Pool, ReadsTheLastCommittedStateBesideAWrite) {
  auto pool = makePool(1);
  pool.write([&](Connection& writer) {
    addNote(writer);
    EXPECT_EQ(pool.read(notes), 0);
  });
  EXPECT_EQ(pool.read(notes), 1);
}

TEST_F(Pool, ReadersCannotWrite) {
  auto pool = makePool(1);
  EXPECT_THROW(pool.read(addNote), StoreError);
  EXPECT_EQ(pool.read(notes), 0);
}

TEST_F(Pool, AReaderThatFailsToOpenTakesNobodysPlace) {
  auto pool = makePool(1);
  failingOpening_ = 2;
  EXPECT_THROW(pool.read(notes), StoreError);
  EXPECT_EQ(pool.read(notes), 0);
}

TEST_F(Pool, StaysWithTheFileItOpenedWhereverTheProgramGoes) {
  const auto home = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  auto pool = makePool(2, "pool.db");
  pool.write(addNote);
  std::filesystem::current_path(home);
  EXPECT_EQ(pool.read(notes), 1);
  const auto readInPlaceOf = [&pool](Connection& /*busy*/) { return faultOf([&pool] { return pool.read(notes); }); };
  std::filesystem::rename(folder_.path() / "pool.db", folder_.path() / "moved.db");
  EXPECT_NE(pool.read(readInPlaceOf), std::error_code{}) << "no file there";
  makePool(1);
  EXPECT_EQ(pool.read(readInPlaceOf), StoreFault::fileReplaced);
}

TEST_F(Pool, ReadsAndWritesFromSeveralThreadsTakeTurns) {
  auto pool = makePool(2);
  std::vector<std::jthread> working;
  working.reserve(4);
  for (int number = 0; number < 4; ++number) {
    working.emplace_back([&pool] {
      for (int times = 0; times < 20; ++times) {
        pool.write(addNote);
        EXPECT_GT(pool.read(notes), times);
      }
    });
  }
  working.clear();
  EXPECT_EQ(pool.read(notes), 4 * 20);
  EXPECT_LE(opened_, 3);
}

} // namespace
} // namespace orvan
