#include "application/sources/refresh.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/database_queue.h"
#include "application/import/ledger/own_addresses.h"
#include "application/session/source_freshness.h"
#include "application/sources/source_recognizer.h"
#include "application/sources/watched_folders.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Outcome = Refreshment::Outcome;

std::string header(const std::string& id) {
  return "From x Mon Mar  9 10:00:00 2026\nMessage-ID: <" + id +
         ">\nFrom: zoe@out.example\nTo: mira@home.example\nDate: Mon, 09 Mar 2026 10:00:00 +0000\n\n";
}

std::string mail(const std::string& id) {
  return header(id) + "Hello.\n\n";
}

/// A store and some files, read at moments that the test chooses.
class Refreshing : public testing::Test {
 protected:
  Refreshing() {
    deriveKeysQuickly();
    createStore(path("store.db"));
    store_.emplace(path("store.db"), keyedConfiguration(OpenMode::readWrite));
    // As whoever refreshes does first: an address that is told later has everything read again.
    store_->write([](Connection& connection) {
      rememberOwnAddresses(std::vector<std::string>{"mira@home.example"}, "2026-03-01T00:00:00Z", connection);
    });
  }

  fs::path path(const std::string& name) const { return folder_.path() / name; }

  void write(const std::string& name, const std::string& text, std::ios::openmode mode = std::ios::trunc) const {
    fs::create_directories(path(name).parent_path());
    std::ofstream(path(name), std::ios::binary | mode) << text;
    settle(name);
  }
  /// As though nobody had written there for a while.
  void settle(const std::string& name, int minutesAgo = 60) const {
    fs::last_write_time(path(name), fs::file_time_type::clock::now() - std::chrono::minutes{minutesAgo});
  }

  void remember(const std::string& name) {
    store_->write([&](Connection& connection) {
      for (const auto& source : recognizeSources(path(name))) {
        rememberSource(source.kind, source.path, std::chrono::hours{12}, asOf_, connection);
      }
    });
  }

  std::vector<Refreshment> refresh() {
    Refresh refresh(*store_, {{"mira@home.example"}, asOf_},
                    std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()));
    std::vector<Refreshment> results;
    for (const auto& source : store_->read(rememberedSources)) {
      results.push_back(refresh.bringIn(source));
    }
    return results;
  }
  /// How many mails the only source gave, and how many of these were new.
  std::string counts() {
    const auto result = refresh().at(0);
    return result.mail ? std::to_string(result.mail->read) + " " + std::to_string(result.mail->imported) : "none";
  }

  std::int64_t number(const char* sql) {
    return store_->read([sql](Connection& connection) { return connection.fetchOptionalInteger(sql).value_or(-1); });
  }
  std::string freshness() {
    bringFreshness();
    return store_
        ->read([](Connection& connection) {
          return connection.fetchOptionalText(
              "SELECT group_concat(freshness_state, ' ') FROM source_progress_projection WHERE operation LIKE "
              "'refresh%'");
        })
        .value_or("");
  }
  void bringFreshness() {
    store_->write([this](Connection& connection) {
      if (isFreshnessOutdated(asOf_, connection)) {
        bringFreshnessUpToDate(asOf_, connection);
      }
    });
  }

  Instant asOf_ = parseInternetDateTime("2026-03-10T12:00:00Z").value();
  ScratchFolder folder_;
  std::optional<DatabaseQueue> store_;
};

TEST_F(Refreshing, ReadsOfAMailboxWhatCameAndAllOfItWhenItIsAnother) {
  write("box", mail("a") + mail("b") + mail("c"));
  remember("box");
  EXPECT_EQ(counts(), "3 3");
  EXPECT_EQ(counts(), "none");
  write("box", mail("d"), std::ios::app);
  EXPECT_EQ(counts(), "2 1") << "the last mail that was read, and the new one";

  write("box", mail("a") + mail("e") + mail("f") + mail("g") + mail("h"));
  EXPECT_EQ(counts(), "5 4") << "rewritten in place, and longer";
  write("box", mail("i"));
  EXPECT_EQ(counts(), "1 1") << "shrunk";
  fs::rename(path("box"), path("former"));
  write("box", mail("j") + mail("k"));
  EXPECT_EQ(counts(), "2 2") << "another file";
}

TEST_F(Refreshing, ReadsAMailAgainThatWasHalfWritten) {
  write("box", mail("a") + "From x Mon Mar  9 10:00:00 2026\nMessage-ID: <b>\nFrom: zoe@out");
  settle("box", 0);
  remember("box");
  EXPECT_EQ(counts(), "1 1") << "half a header is no mail";
  write("box", mail("a") + header("b") + "Hello Mira,\n");
  settle("box", 0);
  EXPECT_EQ(counts(), "1 1") << "its other half may be to come";
  EXPECT_EQ(number("SELECT count(*) FROM pending_question"), 0);
  write("box", "shall we meet on Friday?\n\n" + mail("c"), std::ios::app);
  EXPECT_EQ(counts(), "2 1");
  EXPECT_EQ(number("SELECT count(*) FROM pending_question"), 1) << "what was asked in the other half";
  EXPECT_EQ(number("SELECT count(*) FROM interaction"), 3);
  EXPECT_EQ(counts(), "none");
}

TEST_F(Refreshing, ReadsOfFolderTreesWhatIsNewAndLeavesOutWhatWasThrownAway) {
  for (const char* folder : {"mail/cur", "mail/new", "mail/tmp", "mail/.Work/cur", "mail/.Trash/cur"}) {
    fs::create_directories(path(folder));
  }
  write("mail/new/1.m.home", mail("a").substr(mail("a").find('\n') + 1));
  write("mail/.Work/cur/1.m.home:2,S", mail("b").substr(mail("b").find('\n') + 1));
  write("mail/.Trash/cur/2.m.home:2,S", mail("c").substr(mail("c").find('\n') + 1));
  fs::create_directory_symlink(path("mail"), path("mail/.Work/circle"));
  for (const char* folder : {"mail/cur", "mail/new", "mail/.Work/cur"}) {
    settle(folder);
  }
  remember("mail");
  EXPECT_EQ(counts(), "2 2");
  EXPECT_EQ(counts(), "none");
  fs::rename(path("mail/new/1.m.home"), path("mail/cur/1.m.home:2,S"));
  write("mail/cur/3.m.home:2,", mail("d").substr(mail("d").find('\n') + 1));
  EXPECT_EQ(counts(), "1 1") << "and not the one that moved";
  write("mail/cur/4.m.home:2,", mail("e").substr(mail("e").find('\n') + 1));
  EXPECT_EQ(counts(), "1 1") << "a folder that has just changed may change again within the same moment";
}

TEST_F(Refreshing, DoesTheRestWhenOneIsGoneAndTellsHowFreshEachIs) {
  write("box", mail("a"));
  const auto event = [](const std::string& uid) {
    return "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:" + uid + "\nDTSTART:20260312T100000Z\nSUMMARY:Tea\n" +
           "ORGANIZER:mailto:zoe@out.example\nATTENDEE:mailto:mira@home.example\nEND:VEVENT\nEND:VCALENDAR\n";
  };
  write("calendars/one.ics", event("one"));
  write("calendars/two.ics", event("two"));
  write("gone", mail("z"));
  for (const char* name : {"gone", "box", "calendars"}) {
    remember(name);
  }
  const auto outcomes = [this] {
    std::vector<Outcome> each;
    for (const auto& result : refresh()) {
      each.push_back(result.outcome);
    }
    return each;
  };
  EXPECT_EQ(freshness(), "");
  EXPECT_THAT(outcomes(), ElementsAre(Outcome::read, Outcome::read, Outcome::read));
  EXPECT_EQ(number("SELECT count(*) FROM interaction WHERE kind = 'meeting'"), 2);

  fs::remove(path("gone"));
  fs::remove(path("calendars/one.ics"));
  EXPECT_THAT(outcomes(), ElementsAre(Outcome::failed, Outcome::unchanged, Outcome::read));
  EXPECT_EQ(number("SELECT count(*) FROM interaction WHERE kind = 'meeting'"), 1) << "the other file has it no more";
  EXPECT_EQ(number("SELECT count(*) FROM remembered_source WHERE last_fault IS NOT NULL"), 1);
  EXPECT_EQ(number("SELECT count(*) FROM source_progress_projection WHERE freshness_state = 'stale'"), 1);
  asOf_ += std::chrono::hours{12} - std::chrono::seconds{1};
  bringFreshness();
  EXPECT_EQ(number("SELECT count(*) FROM source_progress_projection WHERE freshness_state = 'current'"), 2);
  asOf_ += std::chrono::seconds{1};
  EXPECT_EQ(freshness(), "stale stale stale");

  fs::remove(path("calendars/two.ics"));
  fs::remove(path("box"));
  fs::create_directory(path("box"));
  EXPECT_THAT(outcomes(), ElementsAre(Outcome::failed, Outcome::failed, Outcome::failed));
  EXPECT_EQ(number("SELECT count(*) FROM interaction WHERE kind = 'meeting'"), 1)
      << "an empty folder withdraws nothing";
}

TEST_F(Refreshing, SaysInWhichFoldersSomethingNewShowsAndWhichFilesCountThere) {
  for (const char* name : {"profile/prefs.js", "profile/cookies.sqlite", "profile/Mail/Inbox", "profile/Mail/Inbox.msf",
                           "profile/Mail/Trash", "dir/cur/1", "tasks.ics"}) {
    write(name, mail("a"));
  }
  fs::create_directory(path("gone"));
  store_->write([this](Connection& connection) {
    for (const char* name : {"profile", "dir", "gone"}) {
      rememberSource(SourceKind::mail, path(name), std::chrono::hours{12}, asOf_, connection);
    }
    rememberSource(SourceKind::calendar, path("tasks.ics"), std::chrono::hours{12}, asOf_, connection);
  });
  fs::remove(path("gone"));
  std::vector<std::string> shown;
  for (const auto& folder : watchedFoldersOf(store_->read(rememberedSources))) {
    shown.push_back(fs::relative(folder.path, folder_.path()).string() + ":");
    for (const auto& name : folder.names.value_or(std::set<std::string>{"*"})) {
      shown.back() += " " + name;
    }
  }
  EXPECT_THAT(shown, ElementsAre(".: tasks.ics", "dir/cur: *", "profile/Mail: Inbox"));
}

} // namespace
} // namespace orvan
