#include "application/session/session.h"

#include <future>
#include <optional>
#include <utility>

#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanSpineCore/key_file.h"
#include "application/session/person_lookup.h"

namespace orvan {

/// The people as they were read last, for the session and its compiler alike.
class Session::PeopleInHand final : public ProjectionReader {
 public:
  void read(DatabaseQueue& store) {
    projection_ = store.read([](Connection& connection) { return StoreProjectionReader::project(1, connection); });
  }

  Task<Projection> project(std::int64_t /*minimumInteractions*/) override { co_return *projection_; }
  bool areRead() const noexcept { return projection_.has_value(); }
  const std::vector<ProjectedPerson>& people() const noexcept { return projection_->people(); }

 private:
  std::optional<Projection> projection_;
};

Session::Session(SessionSettings settings)
    : settings_(std::move(settings)),
      vault_(std::make_shared<KeyFile>(settings_.keyFile)),
      people_(std::make_shared<PeopleInHand>()) {}

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

void Session::openForDeciding() {
  if (dispositions_ == nullptr) {
    // The session's own connection can write then, too, so that it can empty the log of what was decided.
    open(ApplicationStore::Access::write);
  }
}

void Session::open(ApplicationStore::Access access) {
  settings_.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings_.store);
  std::future<std::unique_ptr<AttentionEvidenceCompiler>> compiler;
  if (compiler_ == nullptr) {
    compiler = std::async(std::launch::async, [this] {
      return std::make_unique<AttentionEvidenceCompiler>(settings_.store, vault_, people_, compilerOptions());
    });
  }
  std::future<std::unique_ptr<AttentionDispositionStore>> dispositions;
  if (access == ApplicationStore::Access::write) {
    dispositions = std::async(std::launch::async,
                              [this] { return std::make_unique<AttentionDispositionStore>(settings_.store, vault_); });
  }
  // What the application's own connection says of a store that does not open is the most telling.
  store(access);
  people();
  if (compiler.valid()) {
    compiler_ = compiler.get();
  }
  if (dispositions.valid()) {
    dispositions_ = dispositions.get();
  }
}

DatabaseQueue& Session::store(ApplicationStore::Access access) {
  const bool suffices = access_ == ApplicationStore::Access::write || access == ApplicationStore::Access::read;
  if (store_ == nullptr || !suffices) {
    settings_.requirePrivateFolder();
    store_ = ApplicationStore::open(settings_.store, vault_, access);
    access_ = access;
  }
  return *store_;
}

const std::vector<ProjectedPerson>& Session::people() {
  if (!people_->areRead()) {
    readPeopleAgain();
  }
  return people_->people();
}

void Session::readPeopleAgain() {
  people_->read(store());
}

std::vector<ProjectedPerson> Session::peopleMatching(const std::string& text) {
  const auto& everybody = people();
  return store().read([&](Connection& connection) { return orvan::peopleMatching(text, everybody, connection); });
}

std::string Session::personKeyOf(const std::string& text) {
  return store().read([&text](Connection& connection) { return personKeyCalled(text, connection); });
}

std::vector<AttentionEvidenceBundle> Session::bundles(Instant asOf) {
  openForReading();
  return waitFor(compiler_->executor(), compiler_->compileAll(asOf));
}

AttentionEvidenceBundle Session::bundle(const std::string& personKey, Instant asOf) {
  openForReading();
  return waitFor(compiler_->executor(), compiler_->compile(personKey, asOf));
}

/// On the connection that is open anyway: a disposition store would derive the key twice more, to write and to read.
std::vector<AttentionItemDispositionRecord> Session::records(const std::string& personKey) {
  return store().read(
      [&personKey](Connection& connection) { return AttentionDispositionStore::records(personKey, connection); });
}

AttentionDispositionStore& Session::dispositions() {
  openForDeciding();
  return *dispositions_;
}

DatabaseQueue& Session::writableStore() {
  return store(ApplicationStore::Access::write);
}

void Session::finish() noexcept {
  if (store_ != nullptr && access_ == ApplicationStore::Access::write) {
    ApplicationStore::checkpointWithoutWaiting(*store_);
  }
}

} // namespace orvan
