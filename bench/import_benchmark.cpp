// Imports a generated mailbox into a new store, then compiles evidence from it and makes the catch-up list, and prints
// counts and ratios. Counts repeat exactly on every machine; seconds do not, and are without the derivation of keys.
//
//   import_benchmark [--mails N] [--people N] [--batch MAILS] [--folder FOLDER] [--quick]
//
// With --quick the mailbox is small and the counts are held against limits; the exit code tells whether they hold.

#include <sqlite3.h>
#include <sys/resource.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "OrvanSpineCore/key_file.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/mail/mbox_source.h"
#include "application/session/catch_up_list.h"
#include "application/session/contact_history.h"
#include "application/session/contact_overview.h"
#include "application/session/session.h"
#include "application/store/application_store.h"
#include "generated_mailbox.h"
#include "page_misses.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

constexpr Instant importedAt = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5};
constexpr std::size_t peopleCompiled = 200;

/// Where a run keeps what it makes.
struct Files {
  std::filesystem::path mbox;
  std::filesystem::path store;
  std::filesystem::path key;

  CredentialVault vault() const { return CredentialVault{std::make_shared<KeyFile>(key)}; }
};

class NoProjection final : public ProjectionReader {
 public:
  Task<Projection> project(std::int64_t /*minimumInteractions*/) override { co_return Projection{{}}; }
};

class Stopwatch {
 public:
  double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count(); }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

double processorSeconds(int whose) {
  rusage usage{};
  getrusage(whose, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long peakResidentMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

double parseAlone(const std::filesystem::path& mbox) {
  MboxSource source{mbox, {std::string{GeneratedMailbox::ownAddress}}};
  const Stopwatch watch;
  while (source.next()) {
  }
  return watch.seconds();
}

std::uintmax_t pageCount(sqlite3* handle, int what) {
  int count = 0;
  int highest = 0;
  sqlite3_db_status(handle, what, &count, &highest, 0);
  return static_cast<std::uintmax_t>(count);
}

struct Import {
  MailReport report;
  std::uintmax_t largestLog = 0;
  std::uintmax_t pagesMissed = 0;
  std::uintmax_t pagesWritten = 0;
  double seconds = 0;
  /// Of the two threads: the one that reads and the one that writes.
  double readerSeconds = 0;
  double writerSeconds = 0;
};

Import importInto(const Files& files, std::size_t mailsPerBatch) {
  const auto queue = ApplicationStore::open(files.store, files.vault(), ApplicationStore::Access::write);
  MailImporter importer(*queue, {{std::string{GeneratedMailbox::ownAddress}}, importedAt}, mailsPerBatch);
  MboxSource source{files.mbox, {std::string{GeneratedMailbox::ownAddress}}};
  Import done;
  const double processBefore = processorSeconds(RUSAGE_SELF);
  const double writerBefore = processorSeconds(RUSAGE_THREAD);
  const Stopwatch watch;
  done.report = importer.import(source, [&](const MailReport&) {
    done.largestLog = std::max(done.largestLog, ApplicationStore::logSize(files.store));
  });
  ApplicationStore::checkpoint(*queue);
  done.seconds = watch.seconds();
  done.writerSeconds = processorSeconds(RUSAGE_THREAD) - writerBefore;
  done.readerSeconds = processorSeconds(RUSAGE_SELF) - processBefore - done.writerSeconds;
  queue->withoutTransaction([&](Connection& connection) {
    done.pagesMissed = pageCount(connection.handle(), SQLITE_DBSTATUS_CACHE_MISS);
    done.pagesWritten = pageCount(connection.handle(), SQLITE_DBSTATUS_CACHE_WRITE);
  });
  return done;
}

std::vector<std::string> people(const Files& files, std::string_view sql) {
  const auto queue = ApplicationStore::open(files.store, files.vault(), ApplicationStore::Access::read);
  return queue->read([&](Connection& connection) {
    std::vector<std::string> keys;
    auto rows = connection.query(sql, peopleCompiled);
    while (rows.next()) {
      keys.emplace_back(rows.text(Column{0}));
    }
    return keys;
  });
}

std::vector<std::string> firstPeople(const Files& files) {
  return people(files, "SELECT id FROM person ORDER BY id LIMIT ?");
}

/// Those whose history is nearest to the median.
std::vector<std::string> usualPeople(const Files& files) {
  return people(files, R"sql(
WITH history AS (
  SELECT membership.canonical_person_id AS person, count(*) AS length
  FROM identity_membership membership
  JOIN interaction_participant participant ON participant.source_identity_id = membership.source_identity_id
  GROUP BY 1
), median AS (
  SELECT length FROM history ORDER BY length LIMIT 1 OFFSET (SELECT count(*) / 2 FROM history)
)
SELECT person FROM history ORDER BY abs(length - (SELECT length FROM median)), person LIMIT ?
)sql");
}

struct Compilation {
  std::uintmax_t pageMisses = 0;
  std::size_t withEvidence = 0;
  double seconds = 0;
};

Compilation compile(const Files& files, const std::vector<std::string>& keys) {
  const auto missesBefore = bench::pageMisses();
  AttentionEvidenceCompiler compiler(files.store, files.vault(), std::make_shared<NoProjection>(),
                                     AttentionEvidenceCompilerOptions::defaults);
  Compilation done;
  const Stopwatch watch;
  for (const auto& key : keys) {
    const auto bundle = waitFor(compiler.executor(), compiler.compile(key, importedAt));
    done.withEvidence += bundle.isEmpty() ? 0U : 1U;
  }
  done.seconds = watch.seconds();
  done.pageMisses = bench::pageMisses() - missesBefore;
  return done;
}

/// A second after the newest interaction.
Instant momentOfTheList(const Files& files) {
  const auto queue = ApplicationStore::open(files.store, files.vault(), ApplicationStore::Access::read);
  const auto newest = queue->read([](Connection& connection) {
    return connection.fetchOptionalText("SELECT max(occurred_at) FROM interaction").value();
  });
  return parseInternetDateTime(newest).value() + std::chrono::seconds{1};
}

struct ListMaking {
  std::uintmax_t pageMisses = 0;
  std::size_t people = 0;
  std::size_t lookedAt = 0;
  std::size_t rows = 0;
  double seconds = 0;
  double processorSeconds = 0;
};

/// Makes the list in a new session, as a program that has just started does.
ListMaking makeList(const Files& files, Instant asOf, std::int64_t cap) {
  const auto missesBefore = bench::pageMisses();
  const double processBefore = processorSeconds(RUSAGE_SELF);
  const Stopwatch watch;
  Session session({.store = files.store, .keyFile = files.key, .peopleCap = cap});
  const auto list = makeCatchUpList(session, asOf, Explanation::none);
  ListMaking done;
  done.seconds = watch.seconds();
  done.processorSeconds = processorSeconds(RUSAGE_SELF) - processBefore;
  done.pageMisses = bench::pageMisses() - missesBefore;
  done.people = session.outlooks(asOf).size();
  done.lookedAt = session.countLookedAt(asOf);
  done.rows = list.rows.size();
  return done;
}

struct Settings {
  std::size_t mails = 1'000'000;
  /// As many as the mailbox gives the user by itself when it is 0.
  std::size_t people = 0;
  std::size_t mailsPerBatch = MailImporter::usualMailsPerBatch;
  std::filesystem::path folder = std::filesystem::temp_directory_path();
  bool isQuick = false;
};

/// Prints counts and, in a quick run, holds them against limits.
class Counts {
 public:
  explicit Counts(bool areJudged) : areJudged_(areJudged) {}

  void tell(const char* name, std::uintmax_t count) const { std::printf("%-44s %14ju\n", name, count); }
  void tell(const char* name, double value) const { std::printf("%-44s %14.2f\n", name, value); }
  void judge(const char* name, std::uintmax_t count, std::uintmax_t most) {
    tell(name, count);
    if (areJudged_ && count > most) {
      std::printf("  too many: at most %ju were expected\n", most);
      hold_ = false;
    }
  }
  bool hold() const noexcept { return hold_; }

 private:
  bool areJudged_;
  bool hold_ = true;
};

void measureFirstImport(const Settings& settings, const Files& files, Counts& counts) {
  const double parseSeconds = parseAlone(files.mbox);
  ApplicationStore::create(files.store, files.vault());
  const auto import = importInto(files, settings.mailsPerBatch);
  const auto mails = static_cast<double>(settings.mails);
  counts.tell("mails imported", static_cast<std::uintmax_t>(import.report.imported));
  counts.judge("store bytes per mail", std::filesystem::file_size(files.store) / settings.mails, 600);
  counts.judge("largest log, kilobytes", import.largestLog / 1024, 9'500);
  counts.judge("pages missed while importing", import.pagesMissed, 100);
  counts.judge("pages written while importing", import.pagesWritten, 8'500);
  counts.tell("peak resident megabytes", static_cast<std::uintmax_t>(peakResidentMegabytes()));
  counts.tell("mails a second", mails / import.seconds);
  // What a machine reaches that has a processor for each thread.
  counts.tell("mails a processor second, reading", mails / import.readerSeconds);
  counts.tell("mails a processor second, writing", mails / import.writerSeconds);
  counts.tell("import time to parse time", import.seconds / parseSeconds);
}

void measureCompiling(const Files& files, Counts& counts) {
  const auto inKeyOrder = compile(files, firstPeople(files));
  counts.judge("page misses, first 200 people", inKeyOrder.pageMisses, 2300);
  const auto usual = compile(files, usualPeople(files));
  counts.judge("page misses, 200 usual people", usual.pageMisses, 2300);
  counts.tell("people of these with evidence", inKeyOrder.withEvidence + usual.withEvidence);
  counts.tell("compile seconds", inKeyOrder.seconds + usual.seconds);
}

void measureLists(const Files& files, Counts& counts) {
  const auto asOf = momentOfTheList(files);
  const auto usual = makeList(files, asOf, AttentionEvidenceCompilerOptions::defaults.maxPeopleGlobalCap());
  counts.tell("people", std::uintmax_t{usual.people});
  counts.tell("list: looked at", std::uintmax_t{usual.lookedAt});
  counts.tell("list: rows", std::uintmax_t{usual.rows});
  counts.judge("list: page misses", usual.pageMisses, 2300);
  counts.tell("list: seconds", usual.seconds);
  counts.tell("list: processor seconds", usual.processorSeconds);
  const auto uncapped = makeList(files, asOf, std::numeric_limits<std::int32_t>::max());
  counts.tell("list without a cap: looked at", std::uintmax_t{uncapped.lookedAt});
  counts.tell("list without a cap: rows", std::uintmax_t{uncapped.rows});
  counts.judge("list without a cap: page misses", uncapped.pageMisses, 2300);
  counts.tell("list without a cap: processor seconds", uncapped.processorSeconds);
}

/// Twice: of a connection that has just been opened, and once its pages are read.
void measureContact(const Files& files, const std::vector<std::string>& keys, Counts& counts) {
  const auto asOf = momentOfTheList(files);
  Session session({.store = files.store, .keyFile = files.key});
  session.openForReading();
  const auto missesBefore = bench::pageMisses();
  const double before = processorSeconds(RUSAGE_SELF);
  contactOverview(session, asOf);
  const double read = processorSeconds(RUSAGE_SELF);
  counts.judge("overview: page misses", bench::pageMisses() - missesBefore, 100);
  contactOverview(session, asOf);
  counts.tell("overview: processor milliseconds", 1000 * (read - before));
  counts.tell("overview again: processor milliseconds", 1000 * (processorSeconds(RUSAGE_SELF) - read));

  const auto missesBeforePeople = bench::pageMisses();
  for (const auto& key : keys) {
    contactHistory(session, key, asOf);
  }
  counts.judge("two years of 200 usual people: page misses", bench::pageMisses() - missesBeforePeople, 100);
}

void measureSecondImport(const Settings& settings, const Files& files, Counts& counts) {
  const auto import = importInto(files, settings.mailsPerBatch);
  counts.judge("mails taken twice", static_cast<std::uintmax_t>(import.report.read - import.report.known), 0);
  counts.tell("mails a second, imported again", static_cast<double>(settings.mails) / import.seconds);
}

bool run(const Settings& settings, const std::filesystem::path& folder) {
  const Files files{folder / "mailbox.mbox", folder / "store.db", folder / "key"};
  KeyFile(files.key).create();
  Counts counts(settings.isQuick);
  counts.tell("mailbox bytes", writeGeneratedMailbox(settings.mails, settings.people, files.mbox));
  measureFirstImport(settings, files, counts);
  std::fflush(stdout);
  measureCompiling(files, counts);
  measureLists(files, counts);
  measureContact(files, usualPeople(files), counts);
  std::fflush(stdout);
  measureSecondImport(settings, files, counts);
  return counts.hold();
}

Settings settingsOf(int count, char** arguments) {
  Settings settings;
  for (int index = 1; index < count; ++index) {
    const std::string_view argument = arguments[index];
    if (argument == "--quick") {
      settings.isQuick = true;
      settings.mails = 20'000;
      settings.mailsPerBatch = 4096;
    } else if (argument == "--mails" && index + 1 < count) {
      settings.mails = std::strtoull(arguments[++index], nullptr, 10);
    } else if (argument == "--people" && index + 1 < count) {
      settings.people = std::strtoull(arguments[++index], nullptr, 10);
    } else if (argument == "--batch" && index + 1 < count) {
      settings.mailsPerBatch = std::strtoull(arguments[++index], nullptr, 10);
    } else if (argument == "--folder" && index + 1 < count) {
      settings.folder = arguments[++index];
    }
  }
  return settings;
}

} // namespace
} // namespace orvan

int main(int count, char** arguments) {
  orvan::bench::countPageMisses();
  orvan::deriveKeysQuickly();
  const auto settings = orvan::settingsOf(count, arguments);
  std::string name = (settings.folder / "orvan-import-XXXXXX").native();
  const std::filesystem::path folder = mkdtemp(name.data());
  bool isWithinLimits = false;
  try {
    isWithinLimits = orvan::run(settings, folder);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  std::filesystem::remove_all(folder);
  return isWithinLimits ? EXIT_SUCCESS : EXIT_FAILURE;
}
