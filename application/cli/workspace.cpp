#include "application/cli/workspace.h"

#include <algorithm>
#include <cstdlib>
#include <future>
#include <optional>
#include <utility>

#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/disposition_store/disposition_rows.h"
#include "OrvanSpineCore/key_file.h"
#include "application/cli/command_failure.h"
#include "application/import/address/normal_address.h"

namespace orvan {
namespace {

std::filesystem::path userDataFolder() {
  // NOLINTBEGIN(concurrency-mt-unsafe): nothing changes the environment of this program.
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') {
    return std::filesystem::path{data} / "orvan";
  }
  const char* home = std::getenv("HOME");
  // NOLINTEND(concurrency-mt-unsafe)
  return std::filesystem::path{home == nullptr ? "." : home} / ".local" / "share" / "orvan";
}

/// Those who have the text as their name, or as one of their addresses.
std::vector<std::string> peopleCalled(const std::string& text, Connection& connection) {
  std::vector<std::string> keys;
  auto rows = connection.query(R"sql(
SELECT DISTINCT p.id
FROM person p
LEFT JOIN identity_membership im ON im.canonical_person_id = p.id AND im.ended_at IS NULL
LEFT JOIN source_identity si ON si.id = im.source_identity_id
WHERE p.display_name = ?1 COLLATE NOCASE OR si.address = ?2
LIMIT 2
)sql",
                               text, normalAddress(text));
  while (rows.next()) {
    keys.emplace_back(rows.text(Column{0}));
  }
  return keys;
}

} // namespace

/// The people as they were read once, for the command and the compiler alike.
class Workspace::PeopleInHand final : public ProjectionReader {
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

WorkspaceSettings WorkspaceSettings::defaults() {
  const auto folder = userDataFolder();
  return {folder / "store.db", folder / "key",
          std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now())};
}

void WorkspaceSettings::requirePrivateFolder() const {
  constexpr auto everyoneElse = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
  const auto folder = store.parent_path();
  std::error_code missing;
  const auto status = std::filesystem::status(folder, missing);
  if (folder == userDataFolder() && std::filesystem::is_directory(status) &&
      (status.permissions() & everyoneElse) != std::filesystem::perms::none) {
    throw Error(ApplicationStoreError::folderNotPrivate, "looking at the store's folder");
  }
}

Workspace::Workspace(WorkspaceSettings settings)
    : settings_(std::move(settings)),
      vault_(std::make_shared<KeyFile>(settings_.keyFile)),
      people_(std::make_shared<PeopleInHand>()) {}

Workspace::~Workspace() = default;

AttentionEvidenceCompilerOptions Workspace::compilerOptions() const {
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

void Workspace::openForReading() {
  if (compiler_ != nullptr) {
    return;
  }
  settings_.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings_.store);
  auto compiler = std::async(std::launch::async, [this] {
    return std::make_unique<AttentionEvidenceCompiler>(settings_.store, vault_, people_, compilerOptions());
  });
  // What the application's own connection says of a store that does not open is the most telling.
  people();
  compiler_ = compiler.get();
}

void Workspace::openForDeciding() {
  settings_.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings_.store);
  auto dispositions = std::async(
      std::launch::async, [this] { return std::make_unique<AttentionDispositionStore>(settings_.store, vault_); });
  access_ = ApplicationStore::Access::write;
  openForReading();
  dispositions_ = dispositions.get();
}

DatabaseQueue& Workspace::store() {
  if (store_ == nullptr) {
    settings_.requirePrivateFolder();
    store_ = ApplicationStore::open(settings_.store, vault_, access_);
  }
  return *store_;
}

const std::vector<ProjectedPerson>& Workspace::people() {
  if (!people_->areRead()) {
    people_->read(store());
  }
  return people_->people();
}

std::vector<AttentionEvidenceBundle> Workspace::bundles() {
  openForReading();
  return waitFor(compiler_->executor(), compiler_->compileAll(settings_.asOf));
}

AttentionEvidenceBundle Workspace::bundle(const std::string& personKey) {
  openForReading();
  return waitFor(compiler_->executor(), compiler_->compile(personKey, settings_.asOf));
}

/// On the connection that is open anyway: a disposition store would derive the key twice more, to write and to read.
std::vector<AttentionItemDispositionRecord> Workspace::records(const std::string& personKey) {
  return store().read([&personKey](Connection& connection) { return internal::loadRecords(personKey, connection); });
}

DatabaseQueue& Workspace::writableStore() {
  access_ = ApplicationStore::Access::write;
  return store();
}

void Workspace::finish() noexcept {
  if (store_ != nullptr && access_ == ApplicationStore::Access::write) {
    ApplicationStore::checkpointWithoutWaiting(*store_);
  }
}

std::string Workspace::personKeyOf(const std::string& person) {
  const auto& known = people();
  if (std::ranges::find(known, person, &ProjectedPerson::personKey) != known.end()) {
    return person;
  }
  const auto called = store().read([&person](Connection& connection) { return peopleCalled(person, connection); });
  if (called.size() > 1) {
    throw CommandFailure(ExitCode::failed,
                         "Several people go by that name; name the one you mean by key ('orvan people' lists them).");
  }
  return called.empty() ? person : called.front();
}

} // namespace orvan
