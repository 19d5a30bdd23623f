#include "application/desktop/reading_model.h"

#include <QLocale>
#include <algorithm>
#include <chrono>
#include <utility>

#include "application/desktop/refusal_in_words.h"
#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

/// Of the source that is being read; nothing when it does not tell its size.
std::optional<double> shareOf(const ImportStep& step) {
  const auto& amount = step.progress.amount;
  if (amount.total == 0) {
    return std::nullopt;
  }
  return std::min(static_cast<double>(amount.read) / static_cast<double>(amount.total), 1.0);
}

qint64 rateOf(const ImportStep& step) {
  const auto seconds = std::chrono::duration<double>(step.took).count();
  return seconds < 1 ? 0 : static_cast<qint64>(static_cast<double>(step.progress.itemsRead) / seconds);
}

QString number(qint64 count) {
  return QLocale().toString(count);
}

} // namespace

ReadingModel::ReadingModel(QtLoop& loop, SessionSettings settings, std::function<Instant()> now, QObject* parent)
    : QObject(parent), loop_(loop), settings_(std::move(settings)), now_(std::move(now)) {
  tick_.setInterval(500ms);
  connect(&tick_, &QTimer::timeout, this, &ReadingModel::progressed);
}

void ReadingModel::setState(State state) {
  state_ = state;
  Q_EMIT stateChanged();
  Q_EMIT progressed();
}

void ReadingModel::readNew() {
  if (run_ != nullptr) {
    return;
  }
  end_ = {};
  run_ = std::make_unique<ImportRun>(settings_, now_(), [this](ImportEnd end) {
    loop_.post([this, end = std::move(end)]() mutable { take(std::move(end)); });
  });
  tick_.start();
  setState(Reading);
}

void ReadingModel::stop() {
  if (state_ == Reading) {
    run_->requestStop();
    setState(Stopping);
  }
}

void ReadingModel::forget() {
  if (!isReading()) {
    setState(Quiet);
  }
}

void ReadingModel::offerToGoOn() {
  isAnythingUnread_ = true;
  if (state_ == Quiet) {
    setState(Unfinished);
  }
}

void ReadingModel::take(ImportEnd end) {
  run_.reset();
  tick_.stop();
  end_ = std::move(end);
  isAnythingUnread_ = end_.isStopped || end_.failure;
  setState(end_.failure ? Failed : end_.isStopped ? Stopped : end_.troubles.empty() ? Quiet : Troubled);
  Q_EMIT ended();
}

QString ReadingModel::text() const {
  switch (state_) {
    case Unfinished:
      return tr("Some of your mail, calendars and contacts is not read yet.");
    case Stopping:
      return tr("Stopping: what was read is being kept…");
    case Stopped:
      return tr("Stopped. What was read so far is kept.");
    case Troubled: {
      const auto& first = end_.troubles.front();
      return tr("%1: %2").arg(shownPath(first.name), sourceFaultInWords(first.sentence));
    }
    case Failed:
      return tr("%1. %2").arg(end_.failure->title, end_.failure->text);
    case Quiet:
      return {};
    case Reading:
      break;
  }
  const auto step = run_->step();
  if (!step) {
    return tr("Looking for what is new…");
  }
  const auto name = shownPath(step->path);
  switch (step->kind) {
    case SourceKind::mail:
      return tr("Reading the mail in %1").arg(name);
    case SourceKind::calendar:
      return tr("Reading the calendar %1").arg(name);
    case SourceKind::cards:
      return tr("Reading the contacts in %1").arg(name);
  }
  return {};
}

QString ReadingModel::detail() const {
  if (state_ == Troubled) {
    const auto others = static_cast<int>(end_.troubles.size()) - 1;
    return others > 0 ? tr("%n more could not be read. Everything else is up to date.", nullptr, others)
                      : tr("Everything else is up to date.");
  }
  const auto step = state_ == Reading ? run_->step() : std::nullopt;
  if (!step) {
    return {};
  }
  QStringList parts;
  if (step->count > 1) {
    parts.append(tr("%1 of %2", "the place of what is being read").arg(step->place).arg(step->count));
  }
  if (step->progress.itemsRead > 0) {
    parts.append(tr("%1 read").arg(number(step->progress.itemsRead)));
  }
  if (const auto part = shareOf(*step)) {
    parts.append(tr("%1 %").arg(static_cast<int>(*part * 100)));
  }
  if (const auto rate = rateOf(*step); rate > 0) {
    parts.append(tr("%1 a second").arg(number(rate)));
  }
  return parts.join(QStringLiteral(" · "));
}

double ReadingModel::share() const {
  const auto step = isReading() ? run_->step() : std::nullopt;
  const auto part = step ? shareOf(*step) : std::nullopt;
  return part ? (static_cast<double>(step->place - 1) + *part) / static_cast<double>(step->count) : -1;
}

} // namespace orvan
