#include "application/desktop/first_start_model.h"

#include <QLocale>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/secret_service/secret_service_vault.h"
#include "application/desktop/refusal_in_words.h"
#include "application/desktop/source_addition.h"
#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"
#include "application/import/address/normal_address.h"
#include "application/import/ledger/own_addresses.h"
#include "application/session/store_creation.h"
#include "application/sources/remembered_source.h"
#include "application/sources/source_adding.h"
#include "application/sources/source_fault.h"
#include "application/store/application_store_error.h"
#include "application/store/store_key.h"

namespace orvan {
namespace {

bool isThere(const std::filesystem::path& file) {
  std::error_code unreachable;
  return std::filesystem::exists(std::filesystem::symlink_status(file, unreachable));
}

/// On the thread that looks around: it may take a while until something on the bus answers.
FirstStartModel::Keyring askForKeyring() {
  try {
    // No store has this name: only whether there is an answer counts.
    SecretServiceVault("none").loadLocalStoreKey();
    return FirstStartModel::OpenKeyring;
  } catch (const Error& error) {
    return error.code() == CredentialVaultError::vaultLocked ? FirstStartModel::LockedKeyring
                                                             : FirstStartModel::NoKeyring;
  }
}

/// Waits on the executor's thread for what `work` gives.
template <typename Work>
Task<std::invoke_result_t<Work&>> performing(Work work) {
  co_return work();
}

} // namespace

/// What the store has already.
struct FirstStartModel::Known {
  std::vector<RememberedSource> sources;
  std::vector<OwnAddress> addresses;
};

/// What the user chose, for the store's thread.
struct FirstStartModel::Wish {
  KeyPlace keyPlace;
  std::vector<RecognizedSource> sources;
  std::vector<std::string> addresses;
  Instant now;
};

namespace {

/// Another program may make the store in the same moment: then that is the one.
void makeStoreUnlessThere(const SessionSettings& settings, KeyPlace place) {
  if (isThere(settings.store)) {
    return;
  }
  try {
    const StoreKey key(settings.keyFile);
    createStoreAndKey(settings, key.exists() ? key.place().value_or(place) : place);
  } catch (const Error& error) {
    if (error.code() != ApplicationStoreError::storeExists) {
      throw;
    }
  }
}

/// All that is remembered is remembered together.
std::vector<SourceAddition> remember(const std::vector<RecognizedSource>& sources,
                                     const std::vector<std::string>& addresses, Instant now, DatabaseQueue& store) {
  return store.write([&](Connection& connection) {
    rememberOwnAddresses(addresses, formatInternetDateTime(now), connection, ToldBy::user);
    return addSources(sources, now, connection);
  });
}

} // namespace

FirstStartModel::FirstStartModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                                 WindowModel& window, UserPlaces places, QObject* parent)
    : QObject(parent),
      loop_(loop),
      store_(store),
      clock_(clock),
      asOf_(asOf),
      window_(window),
      places_(std::move(places)),
      reading_(loop, store.settings(), [this] { return now(); }) {
  connect(&window_, &WindowModel::listRead, this, [this] {
    if (!std::exchange(hasSeenWhatIsLeft_, true)) {
      start(seeWhatIsLeft());
    }
  });
  connect(&reading_, &ReadingModel::stateChanged, &window_,
          [this] { window_.setIsWrittenTo(reading_.isReading() ? StoreUse::busy : StoreUse::usual); });
  connect(&reading_, &ReadingModel::ended, this, &FirstStartModel::endReading);
}

Instant FirstStartModel::now() const {
  return asOf_.value_or(clock_.now());
}

QString FirstStartModel::storePlace() const {
  return shownPath(store_.settings().store);
}

QString FirstStartModel::keyFilePlace() const {
  return shownPath(store_.settings().keyFile);
}

void FirstStartModel::setStep(Step step) {
  step_ = step;
  Q_EMIT stepChanged();
}

void FirstStartModel::setIsKeyForKeyring(bool isForKeyring) {
  isKeyForKeyring_ = isForKeyring;
  Q_EMIT placeChanged();
}

// Looking around

void FirstStartModel::look() {
  if (!isLooking_ && (!hasLooked_ || step_ == Begun)) {
    isLooking_ = true;
    hasLooked_ = true;
    start(lookAround());
  }
}

Task<FirstStartModel::Known> FirstStartModel::askWhatIsKnown() {
  co_return co_await store_.ask([](Session& session) {
    return session.readableStore().read(
        [](Connection& connection) { return Known{rememberedSources(connection), ownAddresses(connection)}; });
  });
}

Task<void> FirstStartModel::lookAround() {
  hasStore_ = isThere(store_.settings().store);
  hasKey_ = isThere(store_.settings().keyFile);
  Q_EMIT placeChanged();
  known_.clear();
  sources_.clear();
  offered_.clear();
  addresses_.clear();
  remarks_.clear();
  failure_.clear();
  Q_EMIT remarksChanged();
  Q_EMIT failureChanged();
  setStep(Looking);
  if (hasStore_) {
    try {
      show(co_await askWhatIsKnown());
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the list tells of a store that does not open.
    }
  }
  try {
    const auto found = co_await runOn(
        looker_.get(), performing([this, places = places_] {
          auto discovery = discoverSources(
              places, [this](const DiscoveredSource& source) { loop_.post([this, source] { offer(source); }); });
          std::vector<std::filesystem::path> mail;
          for (const auto& source : discovery.sources) {
            if (source.kind == SourceKind::mail) {
              mail.push_back(source.path);
            }
          }
          return std::pair{std::move(discovery), ownAddressesInSettings(mail, places)};
        }));
    for (const auto& trouble : found.first.troubles) {
      addRemark(tr("%1: %2").arg(shownPath(trouble.name), sourceFaultInWords(trouble.sentence)));
    }
    if (found.first.isInThunderbirdsDatabases) {
      addRemark(
          tr("Thunderbird keeps its own calendar and address book in databases. Export them there as .ics and .vcf "
             "files, and add those."));
    }
    offerAddresses(found.second);
  } catch (const std::exception&) {
    addRemark(tr("Not everything could be looked at."));
  }
  isLooking_ = false;
  setStep(Choosing);
  start(lookForKeyring());
}

Task<void> FirstStartModel::lookForKeyring() {
  if (hasStore_ || hasKey_ || keyring_ != KeyringNotAsked) {
    co_return;
  }
  keyring_ = co_await runOn(looker_.get(), performing(&askForKeyring));
  isKeyForKeyring_ = keyring_ == OpenKeyring;
  Q_EMIT placeChanged();
}

void FirstStartModel::show(const Known& known) {
  known_ = known.sources;
  for (const auto& source : known.sources) {
    addSource({source.kind, source.path},
              {inWords(source.kind), shownPath(source.path), tr("remembered already"), true, true});
  }
  for (const auto& own : known.addresses) {
    addresses_.append({displayText(own.address), {}, tr("known already"), true, true});
  }
}

void FirstStartModel::offer(const DiscoveredSource& source) {
  if (isOffered(source.path) || isBroughtIn(source, known_)) {
    return;
  }
  const auto size = source.bytes == 0 ? tr("empty")
                                      : QLocale().formattedDataSize(static_cast<qint64>(source.bytes), 0,
                                                                    QLocale::DataSizeTraditionalFormat);
  auto detail = shownPath(source.path);
  if (source.isInUse) {
    detail = tr("%1 — in use by its program, and can be read all the same").arg(detail);
  }
  addSource({source.kind, source.path},
            {inWords(source.kind), detail, tr("%1, %2").arg(displayText(source.keeper), size), source.bytes > 0});
}

void FirstStartModel::addSource(RecognizedSource source, CheckListRow row) {
  offered_.push_back(std::move(source));
  sources_.append(std::move(row));
}

bool FirstStartModel::isOffered(const std::filesystem::path& path) const {
  return std::ranges::find(offered_, path, &RecognizedSource::path) != offered_.end();
}

void FirstStartModel::addRemark(const QString& line) {
  remarks_ += (remarks_.isEmpty() ? QString{} : QStringLiteral("\n")) + line;
  Q_EMIT remarksChanged();
}

void FirstStartModel::addPath(const QString& written) {
  auto path = writtenPath(written);
  if (!path.empty()) {
    start(recognize(path.string()));
  }
}

Task<void> FirstStartModel::recognize(std::string path) {
  pathFault_.clear();
  try {
    const auto found = co_await runOn(looker_.get(), performing([path] { return recognizeSources(path); }));
    for (const auto& source : found) {
      if (!isOffered(source.path)) {
        addSource(source, {inWords(source.kind), shownPath(source.path), {}, true});
      }
    }
  } catch (const Error&) {
    pathFault_ = tr("%1: %2").arg(shownPath(path), refusalOfCurrentException());
  } catch (const std::exception&) {
    pathFault_ = tr("%1: %2").arg(shownPath(path), inWords(SourceFault::cannotRead));
  }
  Q_EMIT pathFaultChanged();
}

// The user's addresses

std::vector<std::filesystem::path> FirstStartModel::chosenMail() const {
  std::vector<std::filesystem::path> mail;
  for (std::size_t i = 0; i < offered_.size(); ++i) {
    if (sources_.rows()[i].isChosen && offered_[i].kind == SourceKind::mail) {
      mail.push_back(offered_[i].path);
    }
  }
  return mail;
}

void FirstStartModel::goOn() {
  if (step_ == Choosing) {
    start(lookForAddresses());
  }
}

Task<void> FirstStartModel::lookForAddresses() {
  setStep(LookingForAddresses);
  try {
    auto proposed =
        co_await runOn(looker_.get(), performing([mail = chosenMail()] { return ownAddressesInMail(mail); }));
    offerAddresses(proposed);
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the user knows their addresses.
  }
  setStep(ChoosingAddresses);
}

void FirstStartModel::offerAddresses(const std::vector<ProposedAddress>& proposed) {
  for (const auto& one : proposed) {
    const auto address = displayText(one.address);
    if (std::ranges::find(addresses_.rows(), address, &CheckListRow::title) == addresses_.rows().end()) {
      addresses_.append({address, {}, inWords(one.ground), one.isLikely});
    }
  }
}

bool FirstStartModel::addAddress(const QString& written) {
  const auto address = normalAddress(written.toStdString());
  addressFault_ = address ? QString{} : tr("That is no mail address; one looks like robin@example.org.");
  Q_EMIT addressFaultChanged();
  if (!address) {
    return false;
  }
  const auto title = displayText(*address);
  const auto known = std::ranges::find(addresses_.rows(), title, &CheckListRow::title);
  if (known == addresses_.rows().end()) {
    addresses_.append({title, {}, {}, true});
  } else {
    addresses_.setChosen(static_cast<int>(known - addresses_.rows().begin()), true);
  }
  return true;
}

// Beginning

FirstStartModel::Wish FirstStartModel::wish() const {
  Wish wish{isKeyForKeyring_ ? KeyPlace::keyring : KeyPlace::file, {}, {}, now()};
  for (std::size_t i = 0; i < offered_.size(); ++i) {
    if (sources_.rows()[i].isChosen) {
      wish.sources.push_back(offered_[i]);
    }
  }
  for (const auto& row : addresses_.rows()) {
    if (row.isChosen) {
      wish.addresses.push_back(row.title.toStdString());
    }
  }
  return wish;
}

void FirstStartModel::begin() {
  if (step_ == ChoosingAddresses && sources_.countChosen() > 0 && addresses_.countChosen() > 0) {
    start(makeAndRemember());
  }
}

QString FirstStartModel::whyItCouldNotBegin() const {
  const bool isOfKeyring = isKeyForKeyring_ && !isThere(store_.settings().keyFile);
  try {
    throw;
  } catch (const Error& error) {
    if (isOfKeyring && error.code() == CredentialVaultError::vaultLocked) {
      return tr(
          "Your keyring is locked. Unlock it with the desktop's password program and start again, or keep the key "
          "in a file.");
    }
    if (isOfKeyring && error.code().category() == make_error_code(CredentialVaultError{}).category()) {
      return tr("The keyring did not take the key. Start again, or keep the key in a file.");
    }
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): told below.
  }
  const auto words = currentFailureInWords();
  return tr("%1. %2 %3", "what is wrong, what to do, and a command").arg(words.title, words.text, words.commands);
}

Task<void> FirstStartModel::makeAndRemember() {
  setStep(Beginning);
  failure_.clear();
  try {
    const auto additions = co_await store_.ask([wish = wish()](Session& session) {
      makeStoreUnlessThere(session.settings(), wish.keyPlace);
      return remember(wish.sources, wish.addresses, wish.now, session.writableStore());
    });
    for (const auto& addition : additions) {
      if (addition.outcome == AddedSource::Outcome::refused) {
        window_.tell(inWords(addition));
      }
    }
  } catch (...) {
    failure_ = whyItCouldNotBegin();
  }
  hasKey_ = isThere(store_.settings().keyFile);
  hasStore_ = isThere(store_.settings().store);
  Q_EMIT failureChanged();
  Q_EMIT placeChanged();
  if (!failure_.isEmpty()) {
    setStep(ChoosingAddresses);
    co_return;
  }
  hasSeenWhatIsLeft_ = true;
  setStep(Begun);
  window_.tryAgain();
  reading_.offerToGoOn();
  reading_.readNew();
}

// Reading

Task<void> FirstStartModel::seeWhatIsLeft() {
  try {
    const auto known = co_await askWhatIsKnown();
    if (known.sources.empty() && !window_.hasPeople()) {
      Q_EMIT needed();
    }
    const bool isAnythingUnread = std::ranges::any_of(
        known.sources, [](const auto& source) { return !source.lastSucceededAt && !source.lastFault; });
    if (isAnythingUnread) {
      reading_.offerToGoOn();
    }
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the list tells of a store that does not open.
  }
}

void FirstStartModel::endReading() {
  window_.readAgain();
  if (reading_.end().countSources == 0 && !reading_.end().failure) {
    Q_EMIT needed();
  } else if (reading_.state() == ReadingModel::Quiet) {
    const auto count = static_cast<int>(reading_.end().countNew);
    window_.tell(count > 0 ? tr("Everything is read; %n new.", "mails, meetings and contacts", count)
                           : tr("Everything is read; nothing is new."));
  }
}

} // namespace orvan
