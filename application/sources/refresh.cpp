#include "application/sources/refresh.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/import/calendar/calendar_source.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/recognition/source_recognition.h"
#include "application/sources/kept_fault.h"
#include "application/sources/mail_folders.h"
#include "application/sources/source_fault.h"
#include "application/sources/source_position.h"

namespace orvan {
namespace {

using Outcome = Refreshment::Outcome;

std::string digestOf(const std::vector<std::string>& ownAddresses) {
  std::string text;
  for (const auto& address : std::set<std::string>(ownAddresses.begin(), ownAddresses.end())) {
    text += address + "\n";
  }
  constexpr std::size_t digestLength = 12;
  return stableID(text, digestLength);
}

/// The names of what was kept and is not there any more.
std::vector<std::string> namesGone(const SourcePositions& positions, const std::vector<Mailbox>& mailboxes) {
  std::vector<std::string> gone;
  for (const auto& [name, position] : positions) {
    if (std::ranges::find(mailboxes, name, &Mailbox::name) == mailboxes.end()) {
      gone.push_back(name);
    }
  }
  return gone;
}

/// Repeating events reach only so far ahead when they are read, so that even an unchanged calendar is read now and
/// then.
constexpr std::chrono::days calendarLasts{30};

bool isOutlived(const SourcePosition& position, std::chrono::days lasts, Instant now) {
  const Instant readAt{std::chrono::seconds{position.readUpTo}};
  return now < readAt || now - readAt > lasts;
}

std::int64_t secondsOf(Instant instant) {
  return instant.time_since_epoch() / std::chrono::seconds{1};
}

} // namespace

Refresh::Refresh(DatabaseQueue& store, ImportContext context, Instant systemNow)
    : store_(store), context_(std::move(context)), systemNow_(systemNow), readFor_(digestOf(context_.ownAddresses)) {
  context_.pace = ImportPace::considerate;
}

ImportContext Refresh::contextFor(const RememberedSource& source) const {
  auto context = context_;
  context.account = source.account;
  return context;
}

std::set<std::string> Refresh::ownAddresses() const {
  return {context_.ownAddresses.begin(), context_.ownAddresses.end()};
}

Refreshment Refresh::bringIn(const RememberedSource& source) {
  Refreshment result;
  try {
    switch (source.kind) {
      case SourceKind::mail:
        result = mail(source);
        break;
      case SourceKind::calendar:
        result = calendar(source);
        break;
      case SourceKind::cards:
        result = cards(source);
        break;
    }
  } catch (const Error& error) {
    const auto sentence = sentenceOnSource(error.code());
    if (!sentence) {
      throw;
    }
    result.troubles.push_back({"", *sentence});
  }
  if (!result.troubles.empty() && result.outcome != Outcome::stopped) {
    result.outcome = Outcome::failed;
  }
  record(source, result);
  return result;
}

void Refresh::record(const RememberedSource& source, const Refreshment& result) {
  store_.write([&](Connection& connection) {
    switch (result.outcome) {
      case Outcome::unchanged:
      case Outcome::read:
        recordReadingSucceeded(source, context_.now, connection);
        break;
      case Outcome::failed:
        recordReadingFailed(source, keptFaultText(result.troubles), context_.now, connection);
        break;
      case Outcome::stopped: // As though it had been asked for later.
        break;
    }
  });
}

Refreshment Refresh::mail(const RememberedSource& source) {
  auto folders = findMailFolders(source.path, MailboxTelling::byContent);
  auto positions =
      store_.write([&](Connection& connection) { return keptPositions(source.number, readFor_, connection); });
  if (folders.mailboxes.empty() && folders.unreadable.empty()) {
    throw Error(positions.empty() ? SourceFault::holdsNothing : SourceFault::emptied, "looking for mail");
  }
  Refreshment result;
  result.leftOut = std::move(folders.leftOut);
  result.isInUse = folders.isInUse;
  for (auto& name : folders.unreadable) {
    result.troubles.push_back({std::move(name), make_error_code(SourceFault::notPermitted).message()});
  }
  const auto gone = result.troubles.empty() ? namesGone(positions, folders.mailboxes) : std::vector<std::string>{};
  ChangedMail changed(std::move(folders.mailboxes), std::move(positions), ownAddresses(), systemNow_);
  if (changed.isAnything()) {
    changed.passOver(store_.read([&](Connection& connection) { return keptFiles(source.number, connection); }));
    result.mail = MailImporter(store_, contextFor(source)).import(changed, {}, [&changed, &source] {
      return changed.whatToKeep(source.number);
    });
    result.outcome = result.mail->isStopped  ? Outcome::stopped
                     : result.mail->read > 0 ? Outcome::read
                                             : Outcome::unchanged;
    std::ranges::copy(changed.troubles(), std::back_inserter(result.troubles));
    result.readAnew = changed.readAnew();
  }
  if (!gone.empty()) {
    store_.write([&](Connection& connection) {
      for (const auto& name : gone) {
        forgetPosition(source.number, name, connection);
      }
    });
  }
  return result;
}

std::optional<CollectionFiles> Refresh::filesToRead(const RememberedSource& source, std::string_view ending,
                                                    std::optional<std::chrono::days> lasts) {
  requireFileOrFolder(source.path, SourceFault::gone);
  auto files = CollectionFiles::at(source.path, systemNow_, ending);
  const auto positions =
      store_.write([&](Connection& connection) { return keptPositions(source.number, readFor_, connection); });
  const auto known = positions.find("");
  if (files.paths.empty()) {
    throw Error(known == positions.end() ? SourceFault::holdsNothing : SourceFault::emptied, "looking for files");
  }
  const bool isUnchanged = known != positions.end() && !files.digest.empty() && known->second.digest == files.digest;
  if (isUnchanged && !(lasts && isOutlived(known->second, *lasts, context_.now))) {
    return std::nullopt;
  }
  return files;
}

void Refresh::keepRead(const RememberedSource& source, const CollectionFiles& files) {
  store_.write([&](Connection& connection) {
    keepPosition(source.number, "", {{}, secondsOf(context_.now), files.digest}, connection);
  });
}

Refreshment Refresh::calendar(const RememberedSource& source) {
  const auto files = filesToRead(source, ".ics", calendarLasts);
  if (!files) {
    return {};
  }
  if (files->paths.size() == 1) {
    requireCalendar(files->paths.front());
  }
  CalendarSource meetings(files->paths, importWindow(context_.now), ownAddresses());
  Refreshment result;
  result.meetings = MeetingImporter(store_, contextFor(source), source.path).import(meetings);
  result.outcome = result.meetings->isStopped ? Outcome::stopped : Outcome::read;
  if (result.outcome == Outcome::read) {
    keepRead(source, *files);
  }
  return result;
}

Refreshment Refresh::cards(const RememberedSource& source) {
  const auto files = filesToRead(source, ".vcf", std::nullopt);
  if (!files) {
    return {};
  }
  CardSource cards(files->paths);
  Refreshment result;
  result.cards = CardImporter(store_, contextFor(source)).import(cards);
  result.outcome = result.cards->isStopped ? Outcome::stopped : Outcome::read;
  if (result.outcome == Outcome::read) {
    keepRead(source, *files);
  }
  return result;
}

} // namespace orvan
