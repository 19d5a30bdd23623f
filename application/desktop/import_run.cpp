#include "application/desktop/import_run.h"

#include <utility>

#include "application/import/ledger/own_addresses.h"
#include "application/session/session.h"
#include "application/sources/refresh.h"

namespace orvan {
namespace {

std::vector<std::string> addressesIn(DatabaseQueue& store) {
  std::vector<std::string> addresses;
  for (auto& own : store.read(ownAddresses)) {
    addresses.push_back(std::move(own.address));
  }
  return addresses;
}

void add(const RememberedSource& source, const Refreshment& result, ImportEnd& end) {
  end.isStopped |= result.outcome == Refreshment::Outcome::stopped;
  end.countNew += result.mail ? result.mail->imported : 0;
  end.countNew += result.meetings ? result.meetings->imported : 0;
  end.countNew += result.cards ? result.cards->imported : 0;
  for (const auto& trouble : result.troubles) {
    const auto place = trouble.name.empty() ? source.path : source.path / trouble.name;
    end.troubles.push_back({place.string(), trouble.sentence});
  }
}

} // namespace

ImportRun::ImportRun(SessionSettings settings, Instant now, std::function<void(ImportEnd)> ended)
    : thread_([this, settings = std::move(settings), now, ended = std::move(ended)] { ended(run(settings, now)); }) {}

ImportRun::~ImportRun() {
  requestStop();
}

std::optional<ImportStep> ImportRun::step() const {
  const MutexLock lock(mutex_);
  if (!current_) {
    return std::nullopt;
  }
  return ImportStep{current_->kind,  current_->path,    current_->place,
                    current_->count, watch_.progress(), std::chrono::steady_clock::now() - current_->since};
}

void ImportRun::setCurrent(std::optional<Current> current) {
  const MutexLock lock(mutex_);
  watch_.tellRead(0, {});
  watch_.tellStored(0);
  current_ = std::move(current);
}

ImportEnd ImportRun::run(const SessionSettings& settings, Instant now) {
  try {
    return read(settings, now);
  } catch (...) {
    ImportEnd end;
    end.failure = currentFailureInWords();
    return end;
  }
}

ImportEnd ImportRun::read(const SessionSettings& settings, Instant now) {
  Session session(settings);
  auto& store = session.writableStore();
  const auto sources = store.read(rememberedSources);
  Refresh refresh(store, {addressesIn(store), now, &watch_},
                  std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()));
  ImportEnd end;
  end.countSources = sources.size();
  for (std::size_t i = 0; i < sources.size(); ++i) {
    if (watch_.isStopRequested()) {
      end.isStopped = true;
      break;
    }
    const auto& source = sources[i];
    setCurrent(Current{source.kind, source.path.string(), i + 1, sources.size(), std::chrono::steady_clock::now()});
    add(source, refresh.bringIn(source), end);
  }
  setCurrent(std::nullopt);
  session.finish();
  return end;
}

} // namespace orvan
