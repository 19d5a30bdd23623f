#include "application/session/session.h"

#include <malloc.h>

#include <future>
#include <span>
#include <utility>

#include "OrvanObservatory/attention_projection_reader.h"
#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/error.h"
#include "application/corrections/hiding.h"
#include "application/session/person_lookup.h"
#include "application/session/source_freshness.h"
#include "application/session/true_resumption.h"
#include "application/store/key_change.h"

namespace orvan {

namespace {

/// For as long as it lives, the connection does not wait for the locks of others.
class NoWaiting {
 public:
  explicit NoWaiting(Connection& connection) : connection_(connection) {
    sqlite3_busy_timeout(connection_.handle(), 0);
  }
  ~NoWaiting() { sqlite3_busy_timeout(connection_.handle(), static_cast<int>(connection_.busyTimeout().count())); }
  NoWaiting(const NoWaiting&) = delete;
  NoWaiting& operator=(const NoWaiting&) = delete;

 private:
  Connection& connection_;
};

} // namespace

/// The people as they were read last. The compiler is given those whom anything can bring onto a list, as many as its
/// cap lets through: it would cut by their keys.
class Session::PeopleToLookAt final : public ProjectionReader {
 public:
  explicit PeopleToLookAt(std::int64_t cap) : cap_(cap) {}

  void read(Instant asOf, DatabaseQueue& store) {
    outlooks_ = store.read([asOf](Connection& connection) { return contactOutlooks(asOf, connection); });
    asOf_ = asOf;
    count_ = AttentionProjectionReader::countToLookAt(outlooks_, cap_);
  }
  void forget() noexcept { asOf_ = std::nullopt; }

  Task<Projection> project(std::int64_t /*minimumInteractions*/) override {
    std::vector<ProjectedPerson> people;
    for (const auto& outlook : std::span{outlooks_}.first(count_)) {
      people.emplace_back(outlook.personKey, outlook.displayName);
    }
    co_return Projection{std::move(people)};
  }

  bool areReadFor(Instant asOf) const noexcept { return asOf_ == asOf; }
  const std::vector<ContactOutlook>& outlooks() const noexcept { return outlooks_; }
  std::size_t count() const noexcept { return count_; }

 private:
  std::int64_t cap_;
  std::optional<Instant> asOf_;
  std::vector<ContactOutlook> outlooks_;
  std::size_t count_ = 0;
};

Session::Session(SessionSettings settings)
    : settings_(std::move(settings)),
      vault_(std::make_shared<StoreKey>(settings_.keyFile)),
      people_(std::make_shared<PeopleToLookAt>(settings_.peopleCap)) {}

Session::~Session() = default;

AttentionEvidenceCompilerOptions Session::compilerOptions() const {
  const auto& shipped = AttentionEvidenceCompilerOptions::defaults;
  return {shipped.upcomingInteractionWindowDays(),
          shipped.quietPeriodThresholdDays(),
          shipped.recentWindowDays(),
          shipped.maxOpenThreadsPerPerson(),
          shipped.maxUpcomingInteractionsPerPerson(),
          shipped.maxCommitmentsPerPerson(),
          shipped.maxResumedInteractionIDsPerBundle(),
          settings_.peopleCap};
}

void Session::openForReading() {
  if (compiler_ == nullptr) {
    open(ApplicationStore::Access::read);
  }
}

void Session::openForShowing() {
  try {
    openForDeciding();
  } catch (const Error&) {
    // A store on a medium that cannot be written to can be shown; whatever else is wrong shows again.
    openForReading();
  }
}

void Session::openForDeciding() {
  if (compiler_ == nullptr || !isWritable()) {
    open(ApplicationStore::Access::write);
  }
}

void Session::open(ApplicationStore::Access access) {
  settings_.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings_.store);
  // Before all connections that are opened at once.
  settleKeyChange(settings_.store, StoreKey(settings_.keyFile));
  std::future<std::unique_ptr<AttentionEvidenceCompiler>> compiler;
  if (compiler_ == nullptr) {
    compiler = std::async(std::launch::async, [this] {
      return std::make_unique<AttentionEvidenceCompiler>(settings_.store, vault_, people_, compilerOptions());
    });
  }
  // What the application's own connection says of a store that does not open is the most telling.
  store(access);
  if (compiler.valid()) {
    compiler_ = compiler.get();
  }
}

DatabaseQueue& Session::store(ApplicationStore::Access access) {
  const bool suffices = access_ == ApplicationStore::Access::write || access == ApplicationStore::Access::read;
  if (store_ == nullptr || !suffices) {
    settings_.requirePrivateFolder();
    settleKeyChange(settings_.store, StoreKey(settings_.keyFile));
    store_ = ApplicationStore::open(settings_.store, vault_, access);
    access_ = access;
  }
  return *store_;
}

std::optional<ProjectedPerson> Session::person(const std::string& personKey) {
  const auto name = store().read([&personKey](Connection& connection) {
    return connection.fetchOptionalText("SELECT display_name FROM person WHERE id = ?", personKey);
  });
  return name ? std::optional<ProjectedPerson>{std::in_place, personKey, *name} : std::nullopt;
}

bool Session::isHidden(const std::string& personKey) {
  return store().read([&personKey](Connection& connection) { return isPersonHidden(personKey, connection); });
}

const std::vector<ContactOutlook>& Session::outlooks(Instant asOf) {
  if (!people_->areReadFor(asOf)) {
    people_->read(asOf, store());
  }
  return people_->outlooks();
}

void Session::readAgain() noexcept {
  people_->forget();
}

std::size_t Session::countLookedAt(Instant asOf) {
  outlooks(asOf);
  return people_->count();
}

std::string Session::personKeyOf(const std::string& text) {
  return store().read([&text](Connection& connection) { return personKeyCalled(text, connection); });
}

void Session::bringSourceFreshnessUpToDate(Instant asOf) {
  if (!store().read([asOf](Connection& connection) { return isFreshnessOutdated(asOf, connection); })) {
    return;
  }
  try {
    const auto writable =
        isWritable() ? store_ : ApplicationStore::open(settings_.store, vault_, ApplicationStore::Access::write);
    writable->withoutTransaction([asOf](Connection& connection) {
      const NoWaiting noWaiting(connection);
      bringFreshnessUpToDate(asOf, connection);
    });
  } catch (const Error&) { // NOLINT(bugprone-empty-catch): whoever opens the store next does it.
  }
}

std::vector<AttentionEvidenceBundle> Session::bundles(Instant asOf) {
  openForReading();
  bringSourceFreshnessUpToDate(asOf);
  outlooks(asOf);
  auto bundles = waitFor(compiler_->executor(), compiler_->compileAll(asOf));
  store().read([&](Connection& connection) {
    for (auto& bundle : bundles) {
      bundle = withTrueResumption(std::move(bundle), asOf, connection);
    }
  });
  std::erase_if(bundles, &AttentionEvidenceBundle::isEmpty);
  return bundles;
}

AttentionEvidenceBundle Session::bundle(const std::string& personKey, Instant asOf) {
  openForReading();
  bringSourceFreshnessUpToDate(asOf);
  auto bundle = waitFor(compiler_->executor(), compiler_->compile(personKey, asOf));
  return store().read([&](Connection& connection) { return withTrueResumption(std::move(bundle), asOf, connection); });
}

/// On the connection that is open anyway: a disposition store would derive the key twice more, to write and to read.
std::vector<AttentionItemDispositionRecord> Session::records(const std::string& personKey) {
  return store().read(
      [&personKey](Connection& connection) { return AttentionDispositionStore::records(personKey, connection); });
}

void Session::giveMemoryBack() {
  if (compiler_ != nullptr) {
    waitFor(compiler_->executor(), compiler_->releaseMemory());
  }
  if (store_ != nullptr) {
    store_->withoutTransaction([](Connection& connection) { connection.executeScript("PRAGMA shrink_memory"); });
  }
  malloc_trim(0);
}

DatabaseQueue& Session::writableStore() {
  return store(ApplicationStore::Access::write);
}

void Session::finish() noexcept {
  if (isWritable()) {
    ApplicationStore::checkpointWithoutWaiting(*store_);
  }
}

} // namespace orvan
