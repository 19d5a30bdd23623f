#include "application/desktop/sources_model.h"

#include <QCoreApplication>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <optional>
#include <utility>

#include "OrvanPlatform/human_date.h"
#include "application/desktop/refusal_in_words.h"
#include "application/desktop/source_addition.h"
#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"
#include "application/sources/source_adding.h"
#include "application/sources/source_news.h"
#include "application/sources/source_recognizer.h"

namespace orvan {
namespace {

using Sources = std::vector<RememberedSource>;

struct SourceWords {
  Q_DECLARE_TR_FUNCTIONS(SourceWords)
};

QString readingInWords(const RememberedSource& source, Instant now) {
  using namespace std::chrono_literals;
  if (!source.lastSucceededAt) {
    return SourceWords::tr("Not read yet");
  }
  const auto age = now - *source.lastSucceededAt;
  if (age < 1min) {
    return SourceWords::tr("Read just now");
  }
  if (age < 1h) {
    return SourceWords::tr("Read %1 min ago").arg(std::chrono::floor<std::chrono::minutes>(age).count());
  }
  if (age < 24h) {
    return SourceWords::tr("Read %1 h ago").arg(std::chrono::floor<std::chrono::hours>(age).count());
  }
  return SourceWords::tr("Read on %1").arg(displayText(humanDateText(*source.lastSucceededAt)));
}

std::vector<std::int64_t> numbersWithNews(const Sources& sources) {
  std::vector<std::int64_t> numbers;
  for (const auto& source : sources) {
    if (hasNews(source)) {
      numbers.push_back(source.number);
    }
  }
  return numbers;
}

std::optional<Instant> readAt(std::int64_t number, const Sources& sources) {
  const auto source = std::ranges::find(sources, number, &RememberedSource::number);
  return source == sources.end() ? std::nullopt : source->lastSucceededAt;
}

} // namespace

Task<void> SourcesModel::refresh() {
  auto remembered =
      co_await tools().store.ask([](Session& session) { return session.readableStore().read(rememberedSources); });
  // Of what was read meanwhile, nothing new is known.
  std::erase_if(withNews_, [&](auto number) { return readAt(number, remembered) != readAt(number, remembered_); });
  remembered_ = std::move(remembered);
  show();
}

void SourcesModel::lookForNew() {
  run(refreshWithNews());
}

Task<void> SourcesModel::refreshWithNews() {
  co_await refresh();
  withNews_ = co_await lookInto([sources = remembered_] { return numbersWithNews(sources); });
  show();
}

bool SourcesModel::isInTrouble() const {
  return std::ranges::any_of(remembered_, [](const auto& source) { return source.lastFault.has_value(); });
}

void SourcesModel::show() {
  QVariantList sources;
  int unreadable = 0;
  const auto now = tools().now();
  for (const auto& source : remembered_) {
    unreadable += source.lastFault ? 1 : 0;
    sources.push_back(QVariantMap{
        {"number", QVariant::fromValue<qlonglong>(source.number)},
        {"kind", orvan::inWords(source.kind)},
        {"path", shownPath(source.path)},
        {"state", readingInWords(source, now)},
        {"trouble", source.lastFault ? sourceFaultInWords(*source.lastFault) : QString{}},
        {"hasNews", std::ranges::find(withNews_, source.number) != withNews_.end()},
    });
  }
  if (std::exchange(sources_, sources) != sources) {
    Q_EMIT changed();
  }
  if (sources.isEmpty()) {
    setGlance(tr("No sources yet"));
  } else if (unreadable > 0) {
    setGlance(tr("%1 of %2 sources cannot be read").arg(unreadable).arg(sources.size()));
  } else {
    setGlance(sources.size() == 1 ? tr("1 source") : tr("%1 sources").arg(sources.size()));
  }
}

void SourcesModel::add(const QString& path) {
  if (!writtenPath(path).empty()) {
    begin(addAt(path));
  }
}

Task<void> SourcesModel::addAt(QString path) {
  const auto found = co_await lookInto([place = writtenPath(path)] { return recognizeSources(place); });
  const auto additions = co_await tools().store.ask([found, now = tools().now()](Session& session) {
    return session.writableStore().write([&](Connection& connection) { return addSources(found, now, connection); });
  });
  QStringList told;
  bool isAnyNew = false;
  bool isRefused = false;
  for (const auto& addition : additions) {
    told.push_back(inWords(addition));
    isAnyNew = isAnyNew || addition.outcome == AddedSource::Outcome::added;
    isRefused = isRefused || addition.outcome == AddedSource::Outcome::refused;
  }
  isRefused ? refuse(told.join(u'\n')) : say(told.join(u'\n'));
  co_await refresh();
  if (isAnyNew) {
    Q_EMIT added();
  }
}

void SourcesModel::remove(int number) {
  begin(removeNumbered(number));
}

Task<void> SourcesModel::removeNumbered(std::int64_t number) {
  co_await tools().store.ask([number](Session& session) {
    session.writableStore().write([number](Connection& connection) { forgetSource(number, connection); });
  });
  const auto removed = std::ranges::find(remembered_, number, &RememberedSource::number);
  if (removed != remembered_.end()) {
    say(tr("%1 is taken off the list; what was read from it stays.").arg(shownPath(removed->path)));
  }
  co_await refresh();
}

} // namespace orvan
