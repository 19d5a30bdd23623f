// Imports a generated mailbox into a new store, then compiles evidence from it, and prints counts and ratios. Counts
// repeat exactly on every machine; seconds do not.
//
//   import_benchmark [--mails N] [--batch MAILS] [--folder FOLDER] [--quick]
//
// With --quick the mailbox is small and the counts are held against limits; the exit code tells whether they hold.

#include <sqlite3.h>
#include <sys/resource.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/mail/mbox_source.h"
#include "application/store/application_store.h"
#include "generated_mailbox.h"

namespace orvan {
namespace {

constexpr Instant importedAt = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5};
constexpr std::size_t peopleCompiled = 200;

class FixedKey final : public CredentialSource {
 public:
  std::optional<SecretBytes> loadLocalStoreKey() const override {
    return SecretBytes(std::vector<unsigned char>(32, 7));
  }
};

CredentialVault vault() {
  return CredentialVault{std::make_shared<FixedKey>()};
}

class NoProjection final : public ProjectionReader {
 public:
  Task<Projection> project(std::int64_t /*minimumInteractions*/) override { co_return Projection{{}}; }
};

/// The handle that was opened last: the compiler does not give its own away.
sqlite3* lastOpened = nullptr;

int rememberHandle(sqlite3* handle, char** /*error*/, const void* /*api*/) {
  lastOpened = handle;
  return SQLITE_OK;
}

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
  MboxSource source{mbox};
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

Import importInto(const std::filesystem::path& store, const std::filesystem::path& mbox, std::size_t mailsPerBatch) {
  const auto queue = ApplicationStore::open(store, vault(), ApplicationStore::Access::write);
  MailImporter importer(*queue, {{std::string{GeneratedMailbox::ownAddress}}, importedAt}, mailsPerBatch);
  MboxSource source{mbox};
  Import done;
  const double processBefore = processorSeconds(RUSAGE_SELF);
  const double writerBefore = processorSeconds(RUSAGE_THREAD);
  const Stopwatch watch;
  done.report = importer.import(source, [&](const MailReport&) {
    done.largestLog = std::max(done.largestLog, ApplicationStore::logSize(store));
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

std::vector<std::string> people(const std::filesystem::path& store, std::string_view sql) {
  const auto queue = ApplicationStore::open(store, vault(), ApplicationStore::Access::read);
  return queue->read([&](Connection& connection) {
    std::vector<std::string> keys;
    auto rows = connection.query(sql, peopleCompiled);
    while (rows.next()) {
      keys.emplace_back(rows.text(Column{0}));
    }
    return keys;
  });
}

std::vector<std::string> firstPeople(const std::filesystem::path& store) {
  return people(store, "SELECT id FROM person ORDER BY id LIMIT ?");
}

/// Those whose history is nearest to the median.
std::vector<std::string> usualPeople(const std::filesystem::path& store) {
  return people(store, R"sql(
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

Compilation compile(const std::filesystem::path& store, const std::vector<std::string>& keys) {
  AttentionEvidenceCompiler compiler(store, vault(), std::make_shared<NoProjection>(),
                                     AttentionEvidenceCompilerOptions::defaults);
  Compilation done;
  const Stopwatch watch;
  for (const auto& key : keys) {
    const auto bundle = waitFor(compiler.executor(), compiler.compile(key, importedAt));
    done.withEvidence += bundle.isEmpty() ? 0U : 1U;
  }
  done.seconds = watch.seconds();
  done.pageMisses = pageCount(lastOpened, SQLITE_DBSTATUS_CACHE_MISS);
  return done;
}

struct Settings {
  std::size_t mails = 1'000'000;
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

void measureFirstImport(const Settings& settings, const std::filesystem::path& store, const std::filesystem::path& mbox,
                        Counts& counts) {
  const double parseSeconds = parseAlone(mbox);
  ApplicationStore::create(store, vault());
  const auto import = importInto(store, mbox, settings.mailsPerBatch);
  const auto mails = static_cast<double>(settings.mails);
  counts.tell("mails imported", static_cast<std::uintmax_t>(import.report.imported));
  counts.judge("store bytes per mail", std::filesystem::file_size(store) / settings.mails, 650);
  counts.judge("largest log, kilobytes", import.largestLog / 1024, 12'000);
  counts.judge("pages missed while importing", import.pagesMissed, 1000);
  counts.judge("pages written while importing", import.pagesWritten, 12'000);
  counts.tell("peak resident megabytes", static_cast<std::uintmax_t>(peakResidentMegabytes()));
  counts.tell("mails a second", mails / import.seconds);
  // What a machine reaches that has a processor for each thread.
  counts.tell("mails a processor second, reading", mails / import.readerSeconds);
  counts.tell("mails a processor second, writing", mails / import.writerSeconds);
  counts.tell("import time to parse time", import.seconds / parseSeconds);
}

void measureCompiling(const std::filesystem::path& store, Counts& counts) {
  const auto inKeyOrder = compile(store, firstPeople(store));
  counts.judge("page misses, first 200 people", inKeyOrder.pageMisses, 2500);
  const auto usual = compile(store, usualPeople(store));
  counts.judge("page misses, 200 usual people", usual.pageMisses, 2500);
  counts.tell("people of these with evidence", inKeyOrder.withEvidence + usual.withEvidence);
  counts.tell("compile seconds", inKeyOrder.seconds + usual.seconds);
}

void measureSecondImport(const Settings& settings, const std::filesystem::path& store,
                         const std::filesystem::path& mbox, Counts& counts) {
  const auto import = importInto(store, mbox, settings.mailsPerBatch);
  counts.judge("mails taken twice", static_cast<std::uintmax_t>(import.report.read - import.report.known), 0);
  counts.tell("mails a second, imported again", static_cast<double>(settings.mails) / import.seconds);
}

bool run(const Settings& settings, const std::filesystem::path& folder) {
  const auto mbox = folder / "mailbox.mbox";
  const auto store = folder / "store.db";
  Counts counts(settings.isQuick);
  counts.tell("mailbox bytes", writeGeneratedMailbox(settings.mails, mbox));
  measureFirstImport(settings, store, mbox, counts);
  std::fflush(stdout);
  measureCompiling(store, counts);
  std::fflush(stdout);
  measureSecondImport(settings, store, mbox, counts);
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
  sqlite3_auto_extension(reinterpret_cast<void (*)()>(orvan::rememberHandle));
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
